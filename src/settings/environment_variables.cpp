// The environment variables of the process.
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include <zrclb/system.h>

#include "platform/environment.h"

namespace {

// The desktop's runtime takes no names and values of this many characters.
constexpr std::size_t too_long = 32767;

bool IsTooLong(const char *text) {
    return std::memchr(text, 0, too_long) == nullptr;
}

} // namespace

extern "C" {

char *zr_getenv(const char *name, char *default_value) noexcept {
    char *const value = name != nullptr ? std::getenv(name) : nullptr;
    return value != nullptr ? value : default_value;
}

int zr_putenv(const char *name, const char *value) noexcept {
    if (name == nullptr || value == nullptr || *name == 0 || *name == '=' || IsTooLong(name) || IsTooLong(value))
        return EINVAL;
    const char *const sign = std::strchr(name, '=');
    if (sign == nullptr)
        return zr::platform::SetVariable(name, value);
    // name and value become one line "name=value", whose first sign parts them.
    const std::size_t name_length = static_cast<std::size_t>(sign - name);
    const std::size_t kept = std::strlen(sign + 1);
    const std::size_t value_length = std::strlen(value);
    const std::unique_ptr<char[]> line(new (std::nothrow) char[name_length + 1 + kept + 1 + value_length + 1]);
    if (line == nullptr)
        return ENOMEM;
    std::memcpy(line.get(), name, name_length);
    line[name_length] = 0;
    char *const whole = line.get() + name_length + 1;
    std::memcpy(whole, sign + 1, kept);
    whole[kept] = '=';
    std::memcpy(whole + kept + 1, value, value_length + 1);
    return zr::platform::SetVariable(line.get(), whole);
}
}
