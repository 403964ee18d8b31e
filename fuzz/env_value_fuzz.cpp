// One data element through any row of setters and getters: the texts are those of the C library's printf and of plain
// joining, and what is read of them follows the grammar rule by rule.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <zrclb/env.hpp>

#include "byte_input.h"
#include "caught_reports.h"
#include "env/reference_value_grammar.h"

namespace {

using fuzz::Require;
using zr::test::ReferenceValueGrammar;
using Zr::CZrEnvDataElement;
using Zr::EZrEnvError;

// Steps of a byte each and what they need: texts up to a zero byte, numbers as their bytes.
class Input : public fuzz::ByteInput {
public:
    using ByteInput::ByteInput;

    std::string Text() {
        std::string text;
        while (!Empty()) {
            const std::uint8_t byte = Byte();
            if (byte == 0)
                break;
            text += static_cast<char>(byte);
        }
        return text;
    }

    template <class Number>
    Number Bits() {
        unsigned char bytes[sizeof(Number)];
        for (unsigned char &byte : bytes)
            byte = Byte();
        Number number;
        std::memcpy(&number, bytes, sizeof number);
        return number;
    }

    template <class Number>
    std::vector<Number> Numbers() {
        std::vector<Number> numbers(Byte() % 6U);
        for (Number &number : numbers)
            number = Bits<Number>();
        return numbers;
    }
};

// ---- How values are written

std::string Printed(zr_long value) {
    return std::to_string(value);
}

// The sign of what is not a number is not told by all C libraries.
std::string Printed(double value, const char *format = "%.13g") {
    if (std::isnan(value))
        return std::signbit(value) ? "-nan" : "nan";
    char text[400];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

template <class Number>
std::string Joined(const std::vector<Number> &numbers) {
    std::string text;
    for (const Number &number : numbers)
        text += (text.empty() ? "" : ",") + Printed(number);
    return text;
}

// ---- How they are read

// What a rule makes of a text: all numbers that it stores, with room for each.
template <class Number>
struct Parsed {
    Parsed(const std::string &text, ReferenceValueGrammar::Rule rule) : numbers(text.size() + 1) {
        auto sink = Zr::CZrEnvValueSink::ForWriting(numbers.data(), numbers.size() * sizeof(Number));
        matched = ReferenceValueGrammar(text, sink).Run(rule) == 0;
        numbers.resize(sink.BytesWritten() / sizeof(Number));
    }

    std::vector<Number> numbers;
    bool matched;
};

template <class Number>
bool SameBits(const Number &a, const Number &b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

using Text = std::optional<std::string>;

template <class Number, class Get>
void CheckScalar(const Text &text, ReferenceValueGrammar::Rule rule, Get get) {
    const Number untouched = static_cast<Number>(-77);
    Number value = untouched;
    const EZrEnvError result = get(value);
    if (!text) {
        Require(result == Zr::ENV_ERROR && SameBits(value, untouched), "number of no value");
        return;
    }
    const Parsed<Number> parsed(*text, rule);
    Require(result == (parsed.matched ? Zr::ENV_OK : Zr::ENV_BAD_FORMAT), "result of a number");
    Require(SameBits(value, parsed.numbers.empty() ? untouched : parsed.numbers[0]), "number");
}

template <class Number, class Get>
void CheckList(const Text &text, ReferenceValueGrammar::Rule rule, zr_long capacity, Get get) {
    const Number untouched = static_cast<Number>(-77);
    std::vector<Number> values(static_cast<std::size_t>(std::max<zr_long>(capacity, 0)) + 1, untouched);
    const std::size_t room = values.size() - 1;
    zr_long count = capacity;
    const EZrEnvError result = get(count, values.data());
    if (!text) {
        Require(result == Zr::ENV_ERROR && count == 0, "list of no value");
        return;
    }
    const Parsed<Number> parsed(*text, rule);
    const std::size_t stored = std::min(room, parsed.numbers.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        Require(SameBits(values[i], i < stored ? parsed.numbers[i] : untouched), "number of a list");
    const bool fits = parsed.numbers.size() <= room;
    Require(result == (!parsed.matched ? Zr::ENV_BAD_FORMAT
                       : fits          ? Zr::ENV_OK
                                       : Zr::ENV_TOO_SMALL),
            "result of a list");
    Require(count == (parsed.matched && fits ? static_cast<zr_long>(stored) : 0), "count of a list");
}

// A text that is longer is not doubled any more.
constexpr std::size_t LongestDoubled = 2000;

// The element under test and the text that it must have. It belongs to a block, as leaves do.
class Run {
public:
    Run() { m_block.InsertElement(m_pLeaf); }

    void Step(Input &input) {
        switch (input.Byte() % 10) {
        case 0:
        case 1:
        case 2:
            SetString(input.Text());
            break;
        case 3: {
            const auto value = input.Bits<zr_long>();
            Expect(m_pLeaf->SetLong(value), Printed(value));
            break;
        }
        case 4: {
            const auto value = input.Bits<double>();
            Expect(m_pLeaf->SetDouble(value), Printed(value));
            break;
        }
        case 5: {
            const auto value = input.Bits<float>();
            Expect(m_pLeaf->SetFloat(value), Printed(static_cast<double>(value), "%f"));
            break;
        }
        case 6: {
            const auto values = input.Numbers<zr_long>();
            SetList(values.size(), Joined(values),
                    m_pLeaf->SetLongs(static_cast<zr_long>(values.size()), values.data()));
            break;
        }
        case 7: {
            const auto values = input.Numbers<double>();
            SetList(values.size(), Joined(values),
                    m_pLeaf->SetDoubles(static_cast<zr_long>(values.size()), values.data()));
            break;
        }
        case 8:
            SetStrings(input);
            break;
        default:
            SetPartOfItself(input.Byte());
        }
        CheckText();
        CheckNumbers(static_cast<zr_long>(input.Byte() % 5U) - 1);
        CheckStrings(static_cast<zr_long>(input.Byte() % 6U) - 1, static_cast<zr_long>(input.Byte() % 9U) - 1);
        CheckString(input.Byte());
        Require(fuzz::TakeReports().empty(), "no report");
    }

private:
    void Expect(EZrEnvError result, const std::string &text) {
        Require(result == Zr::ENV_OK, "set");
        m_text = text;
    }

    void SetString(const std::string &text) { Expect(m_pLeaf->SetString(text.c_str()), text); }

    void SetList(std::size_t count, const std::string &text, EZrEnvError result) {
        if (count > 0)
            Expect(result, text);
        else
            Require(result == Zr::ENV_ERROR, "an empty list is refused");
    }

    void SetStrings(Input &input) {
        std::vector<std::string> texts(input.Byte() % 6U);
        std::vector<const char *> pointers;
        std::string joined;
        for (std::string &text : texts) {
            text = input.Text();
            pointers.push_back(text.c_str());
            joined += (&text == texts.data() ? "" : ",") + text;
        }
        SetList(texts.size(), joined, m_pLeaf->SetStrings(static_cast<zr_long>(texts.size()), pointers.data()));
    }

    // The new text may lie in the present one; twice, as a list.
    void SetPartOfItself(std::uint8_t where) {
        if (!m_text) {
            Require(m_pLeaf->SetString(nullptr) == Zr::ENV_ERROR, "null is refused");
            return;
        }
        const std::size_t at = where / 2U % (m_text->size() + 1);
        const std::string part = m_text->substr(at);
        const char *present = m_pLeaf->GetString() + at;
        const char *twice[] = {present, present};
        if (where % 2 == 0 || part.size() > LongestDoubled)
            Expect(m_pLeaf->SetString(present), part);
        else
            Expect(m_pLeaf->SetStrings(2, twice), part + "," + part);
    }

    void CheckText() const {
        const char *text = m_pLeaf->GetString();
        Require(m_text ? text != nullptr && *m_text == text : text == nullptr, "text");
        Require(m_pLeaf->GetDataLength() == (m_text ? m_text->size() : 0), "length");
        zr_long count = -1;
        zr_long longest = -1;
        const EZrEnvError result = m_pLeaf->GetArraySize(count, longest);
        const std::vector<std::string> items = Items();
        std::size_t most = 0;
        for (const std::string &item : items)
            most = std::max(most, item.size());
        Require(result == (m_text ? Zr::ENV_OK : Zr::ENV_ERROR), "result of the size");
        Require(count == static_cast<zr_long>(items.size()) && longest == static_cast<zr_long>(most), "size");
    }

    // The text, split at each comma; nothing without value.
    std::vector<std::string> Items() const {
        std::vector<std::string> items;
        if (!m_text)
            return items;
        items.emplace_back();
        for (const char c : *m_text) {
            if (c == ',')
                items.emplace_back();
            else
                items.back() += c;
        }
        return items;
    }

    void CheckNumbers(zr_long capacity) {
        using Grammar = ReferenceValueGrammar;
        CZrEnvDataElement &leaf = *m_pLeaf;
        CheckScalar<zr_long>(m_text, &Grammar::ParseLong, [&](zr_long &value) { return leaf.GetLong(value); });
        CheckScalar<double>(m_text, &Grammar::ParseDouble, [&](double &value) { return leaf.GetDouble(value); });
        CheckList<zr_long>(m_text, &Grammar::ParseLongs, capacity,
                           [&](zr_long &count, zr_long *values) { return leaf.GetLongs(count, values); });
        CheckList<double>(m_text, &Grammar::ParseDoubles, capacity,
                          [&](zr_long &count, double *values) { return leaf.GetDoubles(count, values); });
        double number = 0.0;
        float narrow = -77.0F;
        const EZrEnvError result = leaf.GetDouble(number);
        Require(leaf.GetFloat(narrow) == result, "result of a float");
        const float expected = result == Zr::ENV_OK ? static_cast<float>(number) : -77.0F;
        Require(SameBits(narrow, expected), "float");
        Require(SameBits(leaf.GetDouble(), number), "double without result");
        Require(SameBits(leaf.GetFloat(), result == Zr::ENV_OK ? expected : 0.0F), "float without result");
        zr_long whole = 0;
        leaf.GetLong(whole);
        Require(leaf.GetLong() == whole, "long without result");
    }

    // One character at a time, into buffers of which every byte is compared.
    void CheckStrings(zr_long count, zr_long width) {
        const std::size_t size = static_cast<std::size_t>(std::max<zr_long>(width, 0)) + 2;
        const std::size_t buffers = static_cast<std::size_t>(std::max<zr_long>(count, 0)) + 1;
        std::vector<std::string> got(buffers, std::string(size, '#'));
        std::vector<std::string> expected = got;
        std::vector<char *> pointers;
        for (std::string &buffer : got)
            pointers.push_back(buffer.data());
        zr_long filled = count;
        const EZrEnvError result = m_pLeaf->GetStrings(filled, width, pointers.data());
        zr_long number = count;
        Require(result == ExpectedStrings(number, width, expected), "result of strings");
        Require(filled == number, "number of strings");
        Require(got == expected, "strings");
    }

    EZrEnvError ExpectedStrings(zr_long &count, zr_long width, std::vector<std::string> &buffers) const {
        if (!m_text) {
            count = 0;
            return Zr::ENV_ERROR;
        }
        if (count < 1 || width < 1)
            return Zr::ENV_ERROR;
        std::size_t at = 0;
        for (zr_long i = 0; i < count; ++i) {
            std::string &buffer = buffers[static_cast<std::size_t>(i)];
            std::size_t length = 0;
            for (; at < m_text->size() && (*m_text)[at] != ','; ++at) {
                if (length + 1 >= static_cast<std::size_t>(width))
                    return Zr::ENV_TOO_SMALL;
                buffer[length++] = (*m_text)[at];
            }
            buffer[length] = '\0';
            if (at == m_text->size()) {
                count = i + 1;
                return Zr::ENV_OK;
            }
            ++at;
        }
        return Zr::ENV_TOO_SMALL;
    }

    void CheckString(std::uint8_t choice) const {
        const std::size_t length = m_text ? m_text->size() : 0;
        const std::size_t size = choice % 4 == 3 ? choice / 4U : length + choice % 3U; // about as much as it takes
        std::string buffer(size + 1, '#');
        std::string expected = buffer;
        if (m_text && length < size)
            expected.replace(0, length + 1, m_text->c_str(), length + 1);
        const EZrEnvError result = m_pLeaf->GetString(static_cast<zr_ulong>(size), buffer.data());
        Require(result == (!m_text ? Zr::ENV_ERROR : length < size ? Zr::ENV_OK : Zr::ENV_TOO_SMALL), "result of text");
        Require(buffer == expected, "text in a buffer");
    }

    Zr::CZrEnvBlock m_block{"block"};
    CZrEnvDataElement *m_pLeaf = new CZrEnvDataElement("leaf", static_cast<const char *>(nullptr));
    Text m_text;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::TakeReports();
    Input input(data, size);
    Run run;
    do
        run.Step(input);
    while (!input.Empty());
    return 0;
}
