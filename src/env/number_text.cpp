// Numbers as texts, over std::to_chars and std::from_chars.
#include "env/number_text.h"

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace zr::env {

namespace {

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool IsWhite(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

const char *SkipDigits(const char *text) {
    while (IsDigit(*text))
        ++text;
    return text;
}

// Explicit exponents saturate here. No text in memory has enough digits to bring such a number back into range.
constexpr std::int64_t MaxExponent = std::numeric_limits<std::int64_t>::max() / 4;

// The exponent behind its letter; a bare letter means none. Gives the first byte behind it.
const char *ScanExponent(const char *text, std::int64_t &exponent) {
    const bool signedExponent = *text == '+' || *text == '-';
    const char *p = signedExponent ? text + 1 : text;
    if (!IsDigit(*p)) {
        exponent = 0;
        return text;
    }
    std::int64_t value = 0;
    for (; IsDigit(*p); ++p) {
        if (value < MaxExponent / 10)
            value = value * 10 + (*p - '0');
        else
            value = MaxExponent;
    }
    exponent = signedExponent && *text == '-' ? -value : value;
    return p;
}

// Whether more than 19 digits still fit 64 bits, because the first ones are zeros.
bool FitsWithoutZeros(const char *mantissa, const char *end, std::int64_t digits) {
    for (const char *p = mantissa; p != end && (*p == '0' || *p == '.'); ++p)
        digits -= *p == '0';
    return digits <= 19;
}

// Powers of ten that a double holds exactly: with a mantissa of up to 53 bits, one multiplication or division rounds
// once and so gives the nearest double. That needs arithmetic without excess precision.
constexpr double ExactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                  1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr std::int64_t MaxExactPower = 22;
constexpr std::uint64_t MaxExactDigits = std::uint64_t{1} << 53;

// No double needs more decimal digits than these to be told from its neighbours and their midpoints.
constexpr std::size_t SignificantDigits = 780;

// Beyond this power of ten the result is infinite or zero, whatever the significant digits are.
constexpr std::int64_t DecidedExponent = 10000;

// Copies the significant digits of a long mantissa; a last digit of 1 stands for all that is cut, if any of it is not
// zero. Gives the number of digits, and in `exponent` the power of ten that scales the copied whole number.
std::size_t CopySignificant(const DecimalNumber &number, char *out, std::int64_t &exponent) {
    std::size_t count = 0;
    std::int64_t cut = 0;
    bool cutNonZero = false;
    for (const char *p = number.mantissa; p != number.mantissaEnd; ++p) {
        if (*p == '.' || (count == 0 && *p == '0'))
            continue;
        if (count < SignificantDigits) {
            out[count++] = *p;
        } else {
            ++cut;
            cutNonZero = cutNonZero || *p != '0';
        }
    }
    exponent = number.exponent + cut;
    if (cutNonZero) {
        out[count++] = '1';
        --exponent;
    }
    return count;
}

// The value of the digits and the exponent, put together anew.
double ConvertComposed(const DecimalNumber &number) {
    char text[SignificantDigits + 32];
    std::int64_t exponent = number.exponent;
    std::size_t length = 0;
    if (number.exact)
        length = static_cast<std::size_t>(std::to_chars(text, text + 20, number.digits).ptr - text);
    else
        length = CopySignificant(number, text, exponent);
    if (length == 0)
        return 0.0;
    exponent = std::clamp(exponent, -DecidedExponent, DecidedExponent);
    text[length] = 'e';
    const char *end = std::to_chars(text + length + 1, text + sizeof text, exponent).ptr;
    double value = 0.0;
    const auto result = std::from_chars(text, end, value);
    if (result.ec != std::errc{})
        return exponent + static_cast<std::int64_t>(length) > 0 ? HUGE_VAL : 0.0;
    return value;
}

double ConvertGeneral(const DecimalNumber &number) {
    double value = 0.0;
    if (number.plain && std::from_chars(number.mantissa, number.end, value).ec == std::errc{})
        return value;
    return ConvertComposed(number);
}

} // namespace

std::size_t FormatLong(char *out, zr_long value) {
    char *end = std::to_chars(out, out + LongTextSize - 1, value).ptr;
    *end = '\0';
    return static_cast<std::size_t>(end - out);
}

std::size_t FormatG13(char *out, double value) {
    char *end = std::to_chars(out, out + G13TextSize - 1, value, std::chars_format::general, 13).ptr;
    *end = '\0';
    return static_cast<std::size_t>(end - out);
}

std::size_t FormatF6(char *out, double value) {
    char *end = std::to_chars(out, out + F6TextSize - 1, value, std::chars_format::fixed, 6).ptr;
    *end = '\0';
    return static_cast<std::size_t>(end - out);
}

const char *ScanDecimal(const char *text, DecimalNumber &out) {
    const char *p = text;
    out.negative = *p == '-';
    if (*p == '-' || *p == '+')
        ++p;
    out.mantissa = p;
    std::uint64_t digits = 0; // wraps on long mantissas, which then are not exact
    for (; IsDigit(*p); ++p)
        digits = digits * 10 + static_cast<std::uint64_t>(*p - '0');
    std::int64_t count = p - out.mantissa;
    std::int64_t exponent = 0;
    if (*p == '.') {
        const char *fraction = p + 1;
        const char *end = fraction;
        for (; IsDigit(*end); ++end)
            digits = digits * 10 + static_cast<std::uint64_t>(*end - '0');
        exponent = fraction - end;
        count -= exponent;
        p = end;
    }
    if (count == 0)
        return nullptr;
    out.mantissaEnd = p;
    out.plain = true;
    if (*p == 'e' || *p == 'E' || *p == 'd' || *p == 'D') {
        std::int64_t given = 0;
        out.plain = *p == 'e' || *p == 'E';
        p = ScanExponent(p + 1, given);
        out.plain = out.plain && given > -DecidedExponent && given < DecidedExponent;
        exponent += given;
    }
    out.end = p;
    out.digits = digits;
    out.exponent = exponent;
    out.exact = count <= 19 || FitsWithoutZeros(out.mantissa, out.mantissaEnd, count);
    return p;
}

double ToDouble(const DecimalNumber &number) {
    double value = 0.0;
    const std::int64_t exponent = number.exponent;
    if (FLT_EVAL_METHOD == 0 && number.exact && number.digits <= MaxExactDigits && exponent >= -MaxExactPower &&
        exponent <= MaxExactPower) {
        value = static_cast<double>(number.digits);
        if (exponent < 0)
            value /= ExactPowers[-exponent];
        else
            value *= ExactPowers[exponent];
    } else {
        value = ConvertGeneral(number);
    }
    return number.negative ? -value : value;
}

const char *ScanLong(const char *text, zr_long &out) {
    const bool negative = *text == '-';
    const char *p = *text == '-' || *text == '+' ? text + 1 : text;
    if (!IsDigit(*p))
        return nullptr;
    const std::int64_t limit = negative ? std::int64_t{2147483648} : std::int64_t{2147483647};
    std::int64_t value = 0;
    for (; IsDigit(*p); ++p) {
        value = value * 10 + (*p - '0');
        if (value > limit) {
            value = limit;
            p = SkipDigits(p);
            break;
        }
    }
    out = static_cast<zr_long>(negative ? -value : value);
    return p;
}

double ReadDouble(const char *text) {
    while (IsWhite(*text))
        ++text;
    DecimalNumber number;
    return ScanDecimal(text, number) != nullptr ? ToDouble(number) : 0.0;
}

zr_long ReadLong(const char *text, const char **end) {
    const char *p = text;
    while (IsWhite(*p))
        ++p;
    zr_long value = 0;
    const char *stop = ScanLong(p, value);
    if (end != nullptr)
        *end = stop != nullptr ? stop : text;
    return value;
}

} // namespace zr::env
