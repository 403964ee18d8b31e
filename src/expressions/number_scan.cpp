// The numbers of the scanner: texts to values, whatever setlocale says.
#include "expressions/number_scan.h"

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <system_error>

namespace zr::expressions {

namespace {

// A number's text taken apart: (-) mantissa x 10^scale, the first digits of it at least.
struct Parts {
    bool negative = false;
    bool whole = true; // all digits are in the mantissa
    std::uint64_t mantissa = 0;
    std::int64_t scale = 0;
};

constexpr std::uint64_t mantissa_limit = 1'000'000'000'000'000'000; // one more digit still fits
constexpr std::int64_t exponent_limit = 1'000'000'000;
constexpr std::uint64_t exact_mantissa = std::uint64_t{1} << 53;

constexpr std::int64_t largest_power = std::size(exact_powers) - 1;

std::int64_t Exponent(const char *text, const char *end) {
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+')
        ++text;
    std::int64_t exponent = 0;
    for (; text != end; ++text)
        exponent = std::min(exponent * 10 + (*text - '0'), exponent_limit);
    return negative ? -exponent : exponent;
}

Parts TakeApart(const char *text, const char *end) {
    Parts parts;
    if (*text == '-') {
        parts.negative = true;
        ++text;
    }
    int behind_point = 0; // 1 there
    for (; text != end; ++text) {
        const unsigned digit = static_cast<unsigned char>(*text) - unsigned{'0'};
        if (digit > 9) {
            if (*text != '.')
                break;
            behind_point = 1;
        } else if (parts.mantissa < mantissa_limit) {
            parts.mantissa = parts.mantissa * 10 + digit;
            parts.scale -= behind_point;
        } else {
            parts.whole = false;
            parts.scale += 1 - behind_point;
        }
    }
    if (text != end)
        parts.scale += Exponent(text + 1, end);
    return parts;
}

// A product or quotient of two exact doubles is rounded once, hence right, where the machine computes in doubles.
bool Quick(const Parts &parts, double &value) {
    if (FLT_EVAL_METHOD != 0 || !parts.whole || parts.mantissa > exact_mantissa || parts.scale > largest_power ||
        parts.scale < -largest_power)
        return false;
    const auto mantissa = static_cast<double>(parts.mantissa);
    const double size = parts.scale < 0 ? mantissa / exact_powers[-parts.scale] : mantissa * exact_powers[parts.scale];
    value = parts.negative ? -size : size;
    return true;
}

} // namespace

bool ToLong(const char *text, std::size_t length, zr_long &value) {
    return std::from_chars(text, text + length, value).ec == std::errc{};
}

NumberFit ToDouble(const char *text, std::size_t length, double &value) {
    const char *end = text + length;
    const Parts parts = TakeApart(text, end);
    if (Quick(parts, value))
        return NumberFit::fits;
    if (parts.mantissa == 0) {
        value = parts.negative ? -0.0 : 0.0;
        return NumberFit::fits;
    }
    if (std::from_chars(text, end, value).ec == std::errc{})
        return NumberFit::fits;
    return parts.scale > 0 ? NumberFit::too_large : NumberFit::too_small; // its mantissa has 19 digits at most
}

} // namespace zr::expressions
