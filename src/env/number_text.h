// Numbers as texts: the written forms of longs, doubles and floats, and the way back.
//
// All of it is independent of setlocale and the same on every platform. The written forms are those of the C standard's
// printf in the C locale: an exponent has two digits at least, ties go to even, infinities and not-a-numbers are words.
// Nothing here allocates, and nothing throws.
#ifndef ZR_ENV_NUMBER_TEXT_H
#define ZR_ENV_NUMBER_TEXT_H

#include <cstddef>
#include <cstdint>

#include <zrclb/types.h>

namespace zr::env {

// Bytes that the written forms need, terminator included.
inline constexpr std::size_t LongTextSize = 12; // "-2147483648"
inline constexpr std::size_t G13TextSize = 24;  // "-1.234567890123e-308"
inline constexpr std::size_t F6TextSize = 320;  // 309 digits in front of the point, 6 behind it

// Write the text and its terminator to out[0..] and give the text's length.
std::size_t FormatLong(char *out, zr_long value); // "%ld",   out[0..LongTextSize-1]
std::size_t FormatG13(char *out, double value);   // "%.13g", out[0..G13TextSize-1]
std::size_t FormatF6(char *out, double value);    // "%f",    out[0..F6TextSize-1]

// A decimal number as it stands in a text, taken apart.
struct DecimalNumber {
    const char *mantissa = nullptr; // first byte behind the sign
    const char *mantissaEnd = nullptr;
    std::uint64_t digits = 0;  // all digits of the mantissa as one whole number, if `exact`
    std::int64_t exponent = 0; // power of ten that scales `digits`
    const char *end = nullptr; // first byte behind the number
    bool exact = true;         // false: too many digits for `digits`, they have to be read from the text
    bool plain = true;         // false: an exponent with D or d, or a very large one
    bool negative = false;
};

// Scans [sign] digits [point digits] [exponent] at the start of a zero-terminated text, with a digit on at least one side
// of the point. The exponent's letter is one of E, e, D, d; its digits, with a sign in front of them, may be missing, and a
// sign without digits behind it is left alone. Gives the first byte behind the number, or null where there is none.
const char *ScanDecimal(const char *text, DecimalNumber &out);

// The nearest double, ties to even. Too large gives +-HUGE_VAL, too small a subnormal or zero of that sign.
double ToDouble(const DecimalNumber &number);

// Scans [sign] digits. Out of range gives the nearer end of the 32 bits. Null, with out untouched, where there is no digit.
const char *ScanLong(const char *text, zr_long &out);

// The standard conversions: leading white space, then the number; what stands behind it is not looked at. A text without
// a number reads as 0. ReadLong tells in *end where it stopped: at the text's start if there was no number.
double ReadDouble(const char *text);
zr_long ReadLong(const char *text, const char **end = nullptr);

} // namespace zr::env

#endif
