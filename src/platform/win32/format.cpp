// Formatting by the compiler's own runtime, which follows the C standard where the system's does not. It loses the sign of
// what is not a number, so texts with such a value are made once more, conversion by conversion.
#include "platform/format.h"

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstring>

#include <locale.h>

namespace zr::platform {

namespace {

// Where setlocale has changed the decimal sign, gives the calling thread the C locale's numbers for the scope's life.
class PointScope {
public:
    PointScope() {
        if (std::strcmp(std::localeconv()->decimal_point, ".") == 0)
            return;
        m_own_locale = _configthreadlocale(_ENABLE_PER_THREAD_LOCALE);
        const char *before = std::setlocale(LC_NUMERIC, nullptr);
        if (before != nullptr && std::strlen(before) < sizeof m_before)
            std::strcpy(m_before, before);
        std::setlocale(LC_NUMERIC, "C");
    }
    ~PointScope() {
        if (m_own_locale == unchanged)
            return;
        std::setlocale(LC_NUMERIC, m_before);
        _configthreadlocale(m_own_locale);
    }
    PointScope(const PointScope &) = delete;
    PointScope &operator=(const PointScope &) = delete;

private:
    static constexpr int unchanged = -2;
    int m_own_locale = unchanged;
    char m_before[128] = "C";
};

// One conversion of a format, its stars resolved: "%-12.3Lf".
struct Conversion {
    char text[64];   // as a format of its own
    char field[24];  // its "%", left alignment and width alone
    char length[3];  // "hh", "ll", "L" and so on, or empty
    char kind;       // the letter at its end
    const char *end; // behind it in the format
};

// Where the arguments of a format are taken from.
struct Arguments {
    std::va_list list;
};

// Appends what fits in the room of a number; no sensible format needs more.
template <std::size_t size>
void Append(char (&text)[size], const char *piece, std::size_t count) {
    const std::size_t used = std::strlen(text);
    if (used + count < size) {
        std::memcpy(text + used, piece, count);
        text[used + count] = 0;
    }
}

// Reads digits or a star at `p` into `number`. Nothing there leaves `number`.
const char *ReadNumber(const char *p, Arguments &arguments, int &number) {
    if (*p == '*') {
        number = va_arg(arguments.list, int);
        return p + 1;
    }
    for (bool first = true; *p >= '0' && *p <= '9'; ++p, first = false)
        number = (first ? 0 : number * 10) + (*p - '0');
    return p;
}

// Reads the conversion whose "%" is at `p`.
Conversion ReadConversion(const char *p, Arguments &arguments) {
    Conversion c = {"%", "%", "", 0, nullptr};
    const std::size_t flags = std::strspn(++p, "-+ #0");
    Append(c.text, p, flags);
    if (std::memchr(p, '-', flags) != nullptr)
        Append(c.field, "-", 1);
    int width = 0, precision = -1;
    char digits[16];
    p = ReadNumber(p + flags, arguments, width);
    if (width != 0) {
        const auto count = static_cast<std::size_t>(__mingw_snprintf(digits, sizeof digits, "%d", width));
        Append(c.text, digits, count);
        Append(c.field, digits, count);
    }
    if (*p == '.') {
        precision = 0;
        p = ReadNumber(p + 1, arguments, precision);
        if (precision >= 0)
            Append(c.text, digits, static_cast<std::size_t>(__mingw_snprintf(digits, sizeof digits, ".%d", precision)));
    }
    const std::size_t length = std::strspn(p, "hljztL");
    Append(c.length, p, length);
    Append(c.text, p, length);
    p += length;
    Append(c.text, p, *p != 0 ? 1 : 0);
    c.kind = *p;
    c.end = *p != 0 ? p + 1 : p;
    return c;
}

template <typename Number>
int PutFloating(char *out, std::size_t room, const Conversion &c, Number value) {
    if (!std::isnan(value) || !std::signbit(value))
        return __mingw_snprintf(out, room, c.text, value);
    char format[sizeof c.field + 1] = "";
    Append(format, c.field, std::strlen(c.field));
    Append(format, "s", 1);
    return __mingw_snprintf(out, room, format, c.kind < 'a' ? "-NAN" : "-nan");
}

int PutInteger(char *out, std::size_t room, const Conversion &c, Arguments &arguments) {
    if (std::strcmp(c.length, "ll") == 0 || c.length[0] == 'j')
        return __mingw_snprintf(out, room, c.text, va_arg(arguments.list, long long));
    if (c.length[0] == 'l')
        return __mingw_snprintf(out, room, c.text, va_arg(arguments.list, long));
    if (c.length[0] == 'z' || c.length[0] == 't')
        return __mingw_snprintf(out, room, c.text, va_arg(arguments.list, std::ptrdiff_t));
    return __mingw_snprintf(out, room, c.text, va_arg(arguments.list, int));
}

// Writes one conversion's text; like snprintf.
int PutConversion(char *out, std::size_t room, const Conversion &c, Arguments &arguments) {
    switch (c.kind) {
    case 'd':
    case 'i':
    case 'o':
    case 'u':
    case 'x':
    case 'X':
    case 'c':
        return PutInteger(out, room, c, arguments);
    case 'a':
    case 'A':
    case 'e':
    case 'E':
    case 'f':
    case 'F':
    case 'g':
    case 'G':
        if (c.length[0] == 'L')
            return PutFloating(out, room, c, va_arg(arguments.list, long double));
        return PutFloating(out, room, c, va_arg(arguments.list, double));
    case 's':
    case 'p':
        return __mingw_snprintf(out, room, c.text, va_arg(arguments.list, void *));
    case 'n':
        static_cast<void>(va_arg(arguments.list, void *)); // the first pass has stored it
        return 0;
    default:
        return __mingw_snprintf(out, room, "%s", c.kind == '%' ? "%" : c.text);
    }
}

int FormatPiecewise(char *buf, std::size_t size, const char *format, Arguments &arguments) {
    std::size_t used = 0;
    while (*format != 0) {
        int count = 1;
        if (*format == '%') {
            const Conversion conversion = ReadConversion(format, arguments);
            count = PutConversion(buf + used, size - used, conversion, arguments);
            format = conversion.end;
        } else {
            buf[used] = *format++;
        }
        if (count < 0 || static_cast<std::size_t>(count) >= size - used)
            return -1;
        used += static_cast<std::size_t>(count);
    }
    buf[used] = 0;
    return static_cast<int>(used);
}

} // namespace

int FormatVA(char *buf, std::size_t size, const char *format, std::va_list arguments) {
    if (buf == nullptr || size == 0 || format == nullptr)
        return -1;
    const PointScope scope;
    Arguments again;
    va_copy(again.list, arguments);
    int length = __mingw_vsnprintf(buf, size, format, arguments);
    if (length >= 0 && static_cast<std::size_t>(length) < size &&
        (std::strstr(buf, "nan") != nullptr || std::strstr(buf, "NAN") != nullptr))
        length = FormatPiecewise(buf, size, format, again);
    va_end(again.list);
    return length >= 0 && static_cast<std::size_t>(length) < size ? length : -1;
}

} // namespace zr::platform
