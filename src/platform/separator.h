// What separates the elements of a path.
#ifndef ZR_PLATFORM_SEPARATOR_H
#define ZR_PLATFORM_SEPARATOR_H

#include <array>

namespace zr::platform {

// A table, as every character of a path is asked for.
inline constexpr std::array<bool, 256> separators = [] {
    std::array<bool, 256> bytes{};
    bytes['\\'] = bytes['/'] = true;
    return bytes;
}();

inline bool IsSeparator(char c) {
    return separators[static_cast<unsigned char>(c)];
}

} // namespace zr::platform

#endif
