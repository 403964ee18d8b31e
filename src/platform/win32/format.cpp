// Formatting by the compiler's own runtime, which follows the C standard where the system's does not.
#include "platform/format.h"

#include <clocale>
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

} // namespace

int FormatVA(char *buf, std::size_t size, const char *format, std::va_list arguments) {
    if (buf == nullptr || size == 0 || format == nullptr)
        return -1;
    const PointScope scope;
    const int length = __mingw_vsnprintf(buf, size, format, arguments);
    return length >= 0 && static_cast<std::size_t>(length) < size ? length : -1;
}

} // namespace zr::platform
