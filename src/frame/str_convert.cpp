// Making texts, and numbers to texts and back.
#include <zrclb/str.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "frame/invalid_parameter.h"
#include "platform/format.h"

namespace zr::frame {
namespace {

constexpr std::size_t repeat_buffer_size = 256;
constinit char repeat_buffer[repeat_buffer_size] = "";

// Bytes that hold any finite number's digits before the point with its sign, the point, and the terminator.
constexpr std::size_t whole_size = std::numeric_limits<double>::max_exponent10 + 4;

bool IsSpace(char ch) {
    return ch == ' ' || (ch >= '\t' && ch <= '\r');
}

bool IsDigit(char ch) {
    return ch >= '0' && ch <= '9';
}

// Value of a digit in any base up to 16, or -1.
int DigitValue(char ch) {
    if (IsDigit(ch)) {
        return ch - '0';
    }
    char small = static_cast<char>(ch | 0x20);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

// The exponent at `text`, behind its letter; 0 without digits. It stops growing long before it could overflow.
std::int64_t ReadExponent(const char *text) {
    bool negative = *text == '-';
    if (*text == '-' || *text == '+') {
        ++text;
    }
    std::int64_t exponent = 0;
    for (; IsDigit(*text); ++text) {
        exponent = std::min<std::int64_t>(exponent * 10 + (*text - '0'), std::int64_t{1} << 48);
    }
    return negative ? -exponent : exponent;
}

// Whether the number at `digits`, which is known to be out of range, is too large and not too small: whether its first
// digit that counts stands, with the exponent applied, before the point.
bool IsTooLarge(const char *digits, bool hexadecimal) {
    const int base = hexadecimal ? 16 : 10;
    const int bits = hexadecimal ? 4 : 1;
    std::int64_t place = 0; // of the first digit that is not 0: above 0 before the point, else behind it
    bool behind_point = false;
    bool found = false;
    const char *text = digits;
    for (;; ++text) {
        if (*text == '.' && !behind_point) {
            behind_point = true;
            continue;
        }
        int value = DigitValue(*text);
        if (value < 0 || value >= base) {
            break;
        }
        found = found || value != 0;
        if (found && !behind_point) {
            ++place;
        } else if (!found && behind_point) {
            --place;
        }
    }
    char letter = static_cast<char>(*text | 0x20);
    std::int64_t exponent = letter == (hexadecimal ? 'p' : 'e') ? ReadExponent(text + 1) : 0;
    return place * bits + exponent > 0;
}

// Reads the number without sign at `text`. False, and 0, if there is none.
bool ReadUnsigned(const char *text, double &value) {
    value = 0.0;
    bool hexadecimal = text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const char *digits = hexadecimal ? text + 2 : text;
    if (hexadecimal && *digits != '.' && DigitValue(*digits) < 0) {
        return true; // the 0 alone
    }
    if (*digits == '-') {
        return false; // a second sign
    }
    std::from_chars_result result = std::from_chars(digits, digits + std::strlen(digits), value,
                                                    hexadecimal ? std::chars_format::hex : std::chars_format::general);
    if (result.ec == std::errc::result_out_of_range) {
        value = IsTooLarge(digits, hexadecimal) ? std::numeric_limits<double>::infinity() : 0.0;
        return true;
    }
    return result.ec == std::errc() || hexadecimal;
}

// Writes by `format` to `dst`, which has room for `size` bytes. Without success `dst` is empty and the fault reported.
int WriteNumber(char *dst, std::size_t size, const char *format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    int count = platform::FormatVA(dst, size, format, arguments);
    va_end(arguments);
    if (count < 0) {
        *dst = '\0';
        InvalidParameterReporter(nullptr, nullptr);
        return 0;
    }
    return count;
}

// Bytes that a field of `width` characters, left or right, takes at least.
std::size_t FieldSize(int width) {
    std::int64_t characters = width;
    return static_cast<std::size_t>(characters < 0 ? -characters : characters) + 1;
}

} // namespace
} // namespace zr::frame

using namespace zr::frame;

extern "C" {

char *str_rpt(int ch, int n) noexcept {
    int count = std::clamp(n, 0, static_cast<int>(repeat_buffer_size) - 1);
    auto length = static_cast<std::size_t>(count);
    std::memset(repeat_buffer, ch, length);
    repeat_buffer[length] = '\0';
    return repeat_buffer;
}

int str_printf(char *buf, unsigned int size, const char *format, ...) noexcept {
    int count = -1;
    if (buf != nullptr && size > 0 && format != nullptr) {
        std::va_list arguments;
        va_start(arguments, format);
        count = zr::platform::FormatVA(buf, size, format, arguments);
        va_end(arguments);
    }
    if (count < 0) {
        if (buf != nullptr && size > 0) {
            *buf = '\0';
        }
        InvalidParameterReporter(nullptr, nullptr);
        return -1;
    }
    return count;
}

double convert_stod(const char *s) noexcept {
    if (s == nullptr) {
        return 0.0;
    }
    while (IsSpace(*s)) {
        ++s;
    }
    bool negative = *s == '-';
    double value;
    bool found = ReadUnsigned(negative || *s == '+' ? s + 1 : s, value);
    return found && negative ? -value : value;
}

zr_long convert_stol(const char *s) noexcept {
    constexpr std::int64_t highest = std::numeric_limits<zr_long>::max();
    if (s == nullptr) {
        return 0;
    }
    while (IsSpace(*s)) {
        ++s;
    }
    bool negative = *s == '-';
    if (*s == '-' || *s == '+') {
        ++s;
    }
    std::int64_t value = 0;
    for (; IsDigit(*s); ++s) {
        value = std::min(value * 10 + (*s - '0'), highest + 1);
    }
    return static_cast<zr_long>(negative ? -value : std::min(value, highest));
}

int convert_dtos(double value, int width, int precision, char *dst) noexcept {
    if (dst == nullptr) {
        return 0;
    }
    *dst = '\0';
    if (precision < 0) {
        InvalidParameterReporter(nullptr, nullptr); // no format has such a precision
        return 0;
    }
    char format[16];
    if (str_printf(format, sizeof format, "%%%ld.%ldlf", static_cast<long>(width), static_cast<long>(precision)) < 0) {
        return 0;
    }
    std::size_t size = std::max(FieldSize(width), whole_size + static_cast<std::size_t>(precision));
    return WriteNumber(dst, size, format, value);
}

int convert_ltos(zr_long value, int width, char *dst) noexcept {
    if (dst == nullptr) {
        return 0;
    }
    constexpr std::size_t number_size = 12; // sign, ten digits, terminator
    char format[16];
    str_printf(format, sizeof format, "%%%ldld", static_cast<long>(width));
    return WriteNumber(dst, std::max(FieldSize(width), number_size), format, static_cast<long>(value));
}
}
