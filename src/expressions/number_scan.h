// The numbers of the scanner: texts to values, whatever setlocale says.
#ifndef ZR_EXPRESSIONS_NUMBER_SCAN_H
#define ZR_EXPRESSIONS_NUMBER_SCAN_H

#include <cstddef>

#include <zrclb/types.h>

namespace zr::expressions {

// Powers of ten that a double holds exactly.
inline constexpr double exact_powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                          1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

enum class NumberFit {
    fits,
    too_large,
    too_small
};

// text[0..length-1] is a "-" or none and digits, at least one. False if the value has no place in 32 bits.
bool ToLong(const char *text, std::size_t length, zr_long &value);

// text[0..length-1] is a "-" or none, digits with or without a point, at least one digit, and an exponent with the letter "e" or
// none. The nearest double; `value` is untouched unless it fits. A value that rounds to 0 without being 0 is too small.
NumberFit ToDouble(const char *text, std::size_t length, double &value);

} // namespace zr::expressions

#endif
