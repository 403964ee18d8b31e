// Formatting by the rules of the C standard, the same text on every platform.
#ifndef ZR_PLATFORM_FORMAT_H
#define ZR_PLATFORM_FORMAT_H

#include <cstdarg>
#include <cstddef>

namespace zr::platform {

// Writes `format` with its arguments to buf[0..size-1], terminated, and answers the number of characters without the
// terminator. -1, with nothing defined in `buf`, when the text doesn't fit in `size` bytes, the format is not valid, or a
// pointer is null or size 0.
//
// All that C's vsnprintf knows. The decimal sign is a point whatever setlocale says; exponents have two digits or more;
// decimals are rounded exactly, ties to even; infinities and NaN are "inf", "nan" with their sign ("INF", "NAN" for the
// upper-case conversions). `%ld` takes a C long of the platform, `%p` writes as the platform does. Threads: any.
int FormatVA(char *buf, std::size_t size, const char *format, std::va_list arguments);

} // namespace zr::platform

#endif
