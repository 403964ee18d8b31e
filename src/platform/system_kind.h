// What system the program runs on.
#ifndef ZR_PLATFORM_SYSTEM_KIND_H
#define ZR_PLATFORM_SYSTEM_KIND_H

#include <cstdint>

#include "platform/services.h"

namespace zr::platform {

// In the numbers of the desktop system. Platforms: 0 the one that sits on an older system, 1 and 2 its two families.
struct SystemVersion {
    std::uint32_t platform = 0;
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
};

// False if the system doesn't tell. On Linux always the last family's version 10.0: what asks for the version wants to
// know whether it may count on what came with it.
inline bool GetSystemVersion(SystemVersion &out) {
    return services.system_version(out);
}

} // namespace zr::platform

#endif
