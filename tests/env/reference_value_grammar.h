// The value grammar, rule by rule, as a plain reference for the parser: every rule tries its alternatives in order and
// goes back where one of them fails. Slow, and kept simple on purpose.
#ifndef TESTS_ENV_REFERENCE_VALUE_GRAMMAR_H
#define TESTS_ENV_REFERENCE_VALUE_GRAMMAR_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "env/value_sink.h"

namespace zr::test {

class ReferenceValueGrammar {
public:
    using Rule = void (ReferenceValueGrammar::*)();

    ReferenceValueGrammar(const std::string &text, Zr::CZrEnvValueSink &sink) : m_text(text), m_sink(sink) {}

    int Run(Rule rule) {
        (this->*rule)();
        return status == 0 ? 0 : -1;
    }

    int status = 0;
    const char *message = nullptr;

    void ParseDouble() { Sequence(&R::Blanks, &R::DoubleItem, &R::Blanks, &R::EndOrNewline); }
    void ParseLong() { Sequence(&R::Blanks, &R::LongItem, &R::Blanks, &R::NewlineOrEnd); }
    void ParseDoubles() { Sequence(&R::Blanks, &R::DoubleItem, &R::Blanks, &R::DoubleTails, &R::EndOrNewline); }
    void ParseLongs() { Sequence(&R::Blanks, &R::LongItem, &R::Blanks, &R::LongTails, &R::EndOrNewline); }

private:
    using R = ReferenceValueGrammar;

    // Leaves
    char Here() const { return m_cursor < m_text.size() ? m_text[m_cursor] : '\0'; }

    void Match(bool matches, const char *missed) {
        if (matches) {
            m_cursor += Here() != '\0';
        } else {
            status = 1;
            message = missed;
        }
    }

    bool IsOneOf(const char *set) const { return Here() != '\0' && std::strchr(set, Here()) != nullptr; }
    void MatchBlank() { Match(Here() == ' ' || Here() == '\t', "bad_space"); }
    void MatchDigit() { Match(Here() >= '0' && Here() <= '9', "bad_digit"); }
    void MatchSign() { Match(IsOneOf("+-"), "unexpected symbol"); }
    void MatchComma() { Match(Here() == ',', "unexpected symbol"); }
    void MatchDot() { Match(Here() == '.', "unexpected symbol"); }
    void MatchNewline() { Match(IsOneOf("\n\r"), "unexpected symbol"); }
    void MatchEnd() { Match(Here() == '\0', "EOF expected"); }
    void MatchExponentLetter() { Match(IsOneOf("EeDd"), "exponent symbol expected"); }

    // Composition
    void GoBack(std::size_t saved) { m_cursor = std::min(m_cursor, saved); }

    void Clear() {
        status = 0;
        message = nullptr;
    }

    template <class... Steps>
    void Sequence(Steps... steps) {
        const std::size_t saved = m_cursor;
        bool going = true;
        const auto run = [&](Rule step) {
            if (!going)
                return;
            (this->*step)();
            going = status == 0;
            if (status == 1)
                GoBack(saved);
        };
        (run(steps), ...);
    }

    void Repeat(Rule step) {
        for (;;) {
            const std::size_t saved = m_cursor;
            (this->*step)();
            if (status == 1) {
                GoBack(saved);
                Clear();
                return;
            }
        }
    }

    void Optional(Rule step) {
        const std::size_t saved = m_cursor;
        (this->*step)();
        if (status == 1) {
            GoBack(saved);
            Clear();
        }
    }

    void Either(Rule first, Rule second) {
        const std::size_t saved = m_cursor;
        (this->*first)();
        if (status != 1)
            return;
        Clear();
        (this->*second)();
        if (status == 1)
            GoBack(saved);
    }

    // Numbers
    void Blanks() { Repeat(&R::MatchBlank); }
    void Digits() { Repeat(&R::MatchDigit); }
    void OptionalSign() { Optional(&R::MatchSign); }
    void OptionalDot() { Optional(&R::MatchDot); }
    void ExponentStart() { Sequence(&R::OptionalSign, &R::MatchDigit); }
    void OptionalExponentStart() { Optional(&R::ExponentStart); }
    void ExponentTail() { Sequence(&R::OptionalExponentStart, &R::Digits); }
    void FloatExpWithLead() {
        Sequence(&R::OptionalSign, &R::MatchDigit, &R::Digits, &R::OptionalDot, &R::Digits, &R::MatchExponentLetter,
                 &R::ExponentTail);
    }
    void FloatExpNoLead() {
        Sequence(&R::OptionalSign, &R::Digits, &R::OptionalDot, &R::MatchDigit, &R::Digits, &R::MatchExponentLetter,
                 &R::ExponentTail);
    }
    void FloatDotWithLead() { Sequence(&R::OptionalSign, &R::MatchDigit, &R::Digits, &R::MatchDot, &R::Digits); }
    void FloatDotNoLead() { Sequence(&R::OptionalSign, &R::Digits, &R::MatchDot, &R::MatchDigit, &R::Digits); }
    void Integer() { Sequence(&R::OptionalSign, &R::MatchDigit, &R::Digits); }
    void Number() { Either(&R::FloatExpWithLead, &R::NumberFrom2); }
    void NumberFrom2() { Either(&R::FloatExpNoLead, &R::NumberFrom3); }
    void NumberFrom3() { Either(&R::FloatDotWithLead, &R::NumberFrom4); }
    void NumberFrom4() { Either(&R::FloatDotNoLead, &R::Integer); }

    // Delivery, through the C library's conversions
    void DoubleItem() {
        const std::size_t start = m_cursor;
        Number();
        if (status != 0)
            return GoBack(start);
        std::string number = m_text.substr(start, m_cursor - start);
        std::replace(number.begin(), number.end(), 'D', 'e');
        std::replace(number.begin(), number.end(), 'd', 'e');
        m_sink.StoreDouble(std::strtod(number.c_str(), nullptr));
    }

    void LongItem() {
        const std::size_t start = m_cursor;
        Integer();
        if (status != 0)
            return GoBack(start);
        const std::string number = m_text.substr(start, m_cursor - start);
        const long long value = std::strtoll(number.c_str(), nullptr, 10);
        m_sink.StoreLong(static_cast<zr_long>(std::clamp<long long>(value, std::numeric_limits<std::int32_t>::min(),
                                                                    std::numeric_limits<std::int32_t>::max())));
    }

    // Top rules
    void EndOrNewline() { Either(&R::MatchEnd, &R::MatchNewline); }
    void NewlineOrEnd() { Either(&R::MatchNewline, &R::MatchEnd); }
    void DoubleTail() { Sequence(&R::MatchComma, &R::Blanks, &R::DoubleItem, &R::Blanks); }
    void LongTail() { Sequence(&R::MatchComma, &R::Blanks, &R::LongItem, &R::Blanks); }
    void DoubleTails() { Repeat(&R::DoubleTail); }
    void LongTails() { Repeat(&R::LongTail); }

    std::string m_text;
    std::size_t m_cursor = 0;
    Zr::CZrEnvValueSink &m_sink;
};

} // namespace zr::test

#endif
