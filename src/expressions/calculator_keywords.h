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
struct CalculatorKeywords {
    // Position of name[0..length-1], or -1. Names are in upper case.
    static zr_long Find(const char *name, std::size_t length) {
        if (length < 2 || length > 4)
            return -1;
        const std::uint32_t packed = PackWord({name, length});
        for (std::size_t i = 0; i < std::size(packed_words); ++i)
            if (packed_words[i] == packed)
                return static_cast<zr_long>(i);
        return -1;
    }
};

} // namespace zr::expressions

#endif
