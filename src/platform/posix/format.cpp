// Formatting by the C library, in the C locale.
#include "platform/format.h"

#include <cstdio>

#include <locale.h>

namespace zr::platform {

namespace {

// Switches the calling thread to the C locale, whose decimal sign is a point, and back.
class PointScope {
public:
    PointScope() {
        static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
        m_before = uselocale(c_locale);
    }
    ~PointScope() { uselocale(m_before); }
    PointScope(const PointScope &) = delete;
    PointScope &operator=(const PointScope &) = delete;

private:
    locale_t m_before;
};

} // namespace

int FormatVA(char *buf, std::size_t size, const char *format, std::va_list arguments) {
    if (buf == nullptr || size == 0 || format == nullptr)
        return -1;
    const PointScope scope;
    const int length = std::vsnprintf(buf, size, format, arguments);
    return length >= 0 && static_cast<std::size_t>(length) < size ? length : -1;
}

} // namespace zr::platform
