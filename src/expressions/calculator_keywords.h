// The words of the calculator.
#ifndef ZR_EXPRESSIONS_CALCULATOR_KEYWORDS_H
#define ZR_EXPRESSIONS_CALCULATOR_KEYWORDS_H

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include <zrclb/types.h>

namespace zr::expressions {

enum class Word : zr_long {
    None = -1,
    Sin,
    Cos,
    Tan,
    Cot,
    Asn,
    Acs,
    Atn,
    Act,
    Abs,
    Sqrt,
    Exp,
    Lgt,
    Log,
    And,
    Or,
    Not,
    Pi,
    Min,
    Max
};

// Up to four characters as one number.
constexpr std::uint32_t PackWord(std::string_view name) {
    std::uint32_t packed = 0;
    for (const char c : name)
        packed = packed << 8 | static_cast<unsigned char>(c);
    return packed;
}

inline constexpr std::uint32_t packed_words[] = {PackWord("SIN"), PackWord("COS"),  PackWord("TAN"), PackWord("COT"),
                                                 PackWord("ASN"), PackWord("ACS"),  PackWord("ATN"), PackWord("ACT"),
                                                 PackWord("ABS"), PackWord("SQRT"), PackWord("EXP"), PackWord("LGT"),
                                                 PackWord("LOG"), PackWord("AND"),  PackWord("OR"),  PackWord("NOT"),
                                                 PackWord("PI"),  PackWord("MIN"),  PackWord("MAX")};

// A list of keywords for the scanner that is known when the library is built. Their positions are those of Word.
class CalculatorKeywords {
public:
    static constexpr std::size_t longest = 4;

    constexpr CalculatorKeywords() {
        for (std::int8_t &place : m_places)
            place = -1;
        for (std::size_t i = 0; i < std::size(packed_words); ++i) {
            std::int8_t &place = m_places[Slot(packed_words[i])];
            m_distinct = m_distinct && place < 0;
            place = static_cast<std::int8_t>(i);
        }
    }

    // Every word has a slot of its own.
    constexpr bool IsDistinct() const { return m_distinct; }

    // The word of up to four packed characters in upper case, or None.
    Word Find(std::uint32_t packed) const {
        const int place = m_places[Slot(packed)];
        return place >= 0 && packed_words[place] == packed ? static_cast<Word>(place) : Word::None;
    }

    // Position of name[0..length-1], in upper case, or -1.
    zr_long Find(const char *name, std::size_t length, std::uint64_t) const {
        return static_cast<zr_long>(length <= longest ? Find(PackWord({name, length})) : Word::None);
    }

private:
    static constexpr std::size_t Slot(std::uint32_t packed) { return packed * 0x2265B1F5u >> 26; }

    std::int8_t m_places[64] = {};
    bool m_distinct = true;
};

inline constexpr CalculatorKeywords calculator_keywords;
static_assert(calculator_keywords.IsDistinct());

} // namespace zr::expressions

#endif
