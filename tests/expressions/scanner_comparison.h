// Runs the library's scanner and the plain reference over the same text, and tells the first difference.
#ifndef TESTS_EXPRESSIONS_SCANNER_COMPARISON_H
#define TESTS_EXPRESSIONS_SCANNER_COMPARISON_H

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <zrclb/scan.h>

#include "expressions/reference_scanner.h"

namespace scan_test {

// What is done with a scanner. Resets come with and without the source going back to its start.
enum class Call {
    Token,
    Character,
    CharacterPastComments,
    Reset,
    ResetAndRewind
};

class Comparison {
public:
    // `calls` are made in turn, again and again.
    struct Case {
        zr_long options = 0;
        std::vector<int> text;
        std::vector<std::string> keywords;
        std::vector<Call> calls = {Call::Token};
    };

    explicit Comparison(const Case &input)
        : case_(input),
          reference_(
              [this] {
                  ++reads_;
                  return Next(reference_position_);
              },
              [this] { return static_cast<zr_long>(reference_position_); }, input.options, input.keywords) {
        for (const std::string &keyword : case_.keywords)
            keywords_.push_back(keyword.c_str());
        keywords_.push_back(nullptr);
    }

    // The first difference; empty if there is none. Goes on until the text has ended a few times, with at most 2 calls a character; the
    // text is read again eight times at most.
    std::string Run() {
        s_current = this;
        position_ = 0;
        scanner_ = scan_open_with_userdata([] { return s_current->Next(s_current->position_); },
                                           [] { return static_cast<zr_long>(s_current->position_); }, case_.options,
                                           keywords_.data());
        if (scanner_ == nullptr)
            return "not opened";
        std::string difference;
        const std::size_t limit = 2 * case_.text.size() + 3 * case_.calls.size() + 4;
        const std::size_t most_reads = 9 * (case_.text.size() + 1);
        for (std::size_t i = 0; difference.empty() && i < limit && ends_ <= case_.calls.size() && reads_ < most_reads;
             ++i)
            difference = Step(case_.calls[i % case_.calls.size()]);
        scan_close(scanner_);
        return difference;
    }

    // Tokens compared since the start of the program.
    static inline std::size_t tokens = 0;

private:
    int Next(std::size_t &position) const { return position < case_.text.size() ? case_.text[position++] : 0; }

    std::string Step(Call call) {
        switch (call) {
        case Call::Token:
            return CompareTokens();
        case Call::Character:
        case Call::CharacterPastComments:
            return CompareCharacters(call == Call::CharacterPastComments);
        case Call::Reset:
        case Call::ResetAndRewind:
            break;
        }
        scan_reset(scanner_);
        reference_.Reset();
        if (call == Call::ResetAndRewind)
            position_ = reference_position_ = 0;
        return "";
    }

    std::string CompareTokens() {
        // What stands in kind and place before tells what a call left alone.
        zr_long kind = 77;
        zr_long expected_kind = kind;
        ZrScanToken &token = *token_;
        ReferenceScanner::Token expected;
        token.row = expected.row = -5;
        token.column = expected.column = -6;
        std::memset(token.text, 0x55, 8);
        ++tokens;
        const int expected_error = reference_.NextToken(expected_kind, expected);
        const int error = scan_token(scanner_, &kind, &token);
        ends_ += expected_kind == SCAN_KIND_END ? 1 : 0;
        std::string out;
        Compare(out, "error", error, expected_error);
        Compare(out, "kind", kind, expected_kind);
        Compare(out, "longValue", token.longValue, expected.long_value);
        Compare(out, "row", token.row, expected.row);
        Compare(out, "column", token.column, expected.column);
        Compare(out, "user", token.user, expected.user);
        Compare(out, "characters taken", position_, reference_position_);
        if (std::memcmp(&token.doubleValue, &expected.double_value, sizeof(double)) != 0)
            out += " doubleValue " + std::to_string(token.doubleValue) + " instead of " +
                   std::to_string(expected.double_value);
        const std::size_t length = expected.text.size();
        if (std::memcmp(token.text, expected.text.data(), length) != 0)
            out += " text instead of " + expected.text;
        if (expected.terminated && token.text[length] != 0)
            out += " text not ended";
        return out;
    }

    std::string CompareCharacters(bool comments) {
        zr_long kind = 77;
        zr_long expected_kind = kind;
        char c = 'Q';
        char expected = c;
        reference_.NextCharacter(expected_kind, expected, comments);
        (comments ? scan_character_ex : scan_character)(scanner_, &kind, &c);
        ends_ += expected_kind == SCAN_KIND_END ? 1 : 0;
        std::string out;
        Compare(out, "class", kind, expected_kind);
        Compare(out, "character", int{c}, int{expected});
        Compare(out, "characters taken", position_, reference_position_);
        return out;
    }

    template <class T>
    static void Compare(std::string &out, const char *name, T actual, T expected) {
        if (actual != expected)
            out += std::string(" ") + name + " " + std::to_string(actual) + " instead of " + std::to_string(expected);
    }

    static inline Comparison *s_current = nullptr;

    const Case &case_;
    std::vector<const char *> keywords_;
    std::size_t reference_position_ = 0;
    std::size_t position_ = 0;
    std::size_t reads_ = 0; // of the reference
    std::size_t ends_ = 0;
    ReferenceScanner reference_;
    CZrScanner *scanner_ = nullptr;
    std::unique_ptr<ZrScanToken> token_ = std::make_unique<ZrScanToken>();
};

} // namespace scan_test

#endif
