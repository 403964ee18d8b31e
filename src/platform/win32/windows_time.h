// Numbers and times that the system tells in halves.
#ifndef ZR_PLATFORM_WINDOWS_TIME_H
#define ZR_PLATFORM_WINDOWS_TIME_H

#include <cstdint>

#include <windows.h>

namespace zr::platform::windows {

inline std::uint64_t Join(DWORD high, DWORD low) {
    return static_cast<std::uint64_t>(high) << 32 | low;
}

// From 100 nanoseconds since 1601 to seconds since 1970.
inline std::int64_t UnixTime(const FILETIME &time) {
    constexpr std::int64_t ticks_per_second = 10000000;
    constexpr std::int64_t seconds_1601_to_1970 = 11644473600;
    return static_cast<std::int64_t>(Join(time.dwHighDateTime, time.dwLowDateTime)) / ticks_per_second -
           seconds_1601_to_1970;
}

} // namespace zr::platform::windows

#endif
