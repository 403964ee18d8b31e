// Texts with places "[!expression]" that are replaced by their values.
#include <algorithm>
#include <cstring>
#include <limits>

#include <zrclb/report.h>
#include <zrclb/str.h>

#include "expressions/calculator_impl.h"

namespace {

constexpr std::size_t text_size = 1024; // with its terminator
constexpr int field_width = 15;
constexpr zr_long most_decimals = 300;
constexpr std::size_t value_size = std::numeric_limits<double>::max_exponent10 + most_decimals + 16;

void Report(const char *text, const char *detail, int line) {
    zr_error(text, detail, nullptr, "Calc", line);
}

// Cuts the wish for decimals, "(.n)", off the end of `expression` and answers it; -1 if there is none.
zr_long TakeDigits(char *expression) {
    char *open = std::strrchr(expression, '(');
    if (open == nullptr || open[1] != '.')
        return -1;
    const char *close = std::strchr(open, ')');
    if (close == nullptr || close[1] != 0)
        return -1;
    *open = 0;
    return convert_stol(open + 2);
}

void Format(double value, zr_long decimals, char *out) {
    convert_dtos(value, field_width, static_cast<int>(std::clamp(decimals, zr_long{0}, most_decimals)), out);
    str_trim(out);
}

// Drops zeros at the end, and a point that is left there. Whole numbers of 15 digits lose their zeros too.
void StripZeros(char *text) {
    std::size_t length = std::strlen(text);
    while (length > 0 && text[length - 1] == '0')
        --length;
    if (length > 0 && text[length - 1] == '.')
        --length;
    text[length] = 0;
}

// `out` holds value_size characters.
void FormatValue(double value, zr_long digits, char *out) {
    if (digits >= 0)
        return Format(value, digits, out);
    Format(value, 0, out);
    Format(value, field_width - static_cast<zr_long>(std::strlen(out)), out);
    StripZeros(out);
}

} // namespace

// The caller's buffer, which may be of no size. Every character needs room for one more behind it.
struct CZrCalculatorImpl::StringOutput {
    char *text;
    std::size_t size;
    std::size_t length = 0;

    bool Add(const char *s, std::size_t count) {
        if (count + length >= size) {
            Report("calc_string_expression(): \"Buffer zu klein", nullptr, __LINE__);
            return false;
        }
        std::memcpy(text + length, s, count);
        length += count;
        return true;
    }

    void End(std::size_t at) {
        if (at < size)
            text[at] = 0;
    }
};

// Computes the place "[!" at `place` that ends at `close`, and adds its value. Reports what goes wrong.
bool CZrCalculatorImpl::AddPlace(char *place, char *close, StringOutput &output) {
    *close = 0;
    char *expression = str_trim(place + 2);
    const zr_long digits = TakeDigits(expression);
    double value = 0.0;
    if (!Calculate(expression, &value)) {
        Report("calc_string_expression(): \"Fehler beim Berechnen des Ausdrucks:", expression, __LINE__);
        return false;
    }
    char formatted[value_size];
    FormatValue(value, digits, formatted);
    return output.Add(formatted, std::strlen(formatted));
}

bool CZrCalculatorImpl::CalculateStringExpression(const char *text, char *out, zr_long size) {
    StringOutput output{out, static_cast<std::size_t>(std::max(size, zr_long{0}))};
    if (out != nullptr)
        output.End(0);
    if (out == nullptr || text == nullptr || strnlen(text, text_size) == text_size) {
        Report("calc_string_expression(): falscher Parameter", nullptr, __LINE__);
        return false;
    }
    char copy[text_size];
    std::strcpy(copy, text);
    bool done = true;
    for (char *p = copy; *p != 0 && done; ++p) {
        char *close = p[0] == '[' && p[1] == '!' ? std::strchr(p, ']') : nullptr;
        done = close == nullptr ? output.Add(p, 1) : AddPlace(p, close, output);
        if (close != nullptr)
            p = close;
    }
    done = done && output.Add(copy, 0); // an empty text wants room for its terminator
    output.End(done ? output.length : 0);
    return done;
}
