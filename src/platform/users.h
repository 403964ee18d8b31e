// The user who runs the program.
#ifndef ZR_PLATFORM_USERS_H
#define ZR_PLATFORM_USERS_H

#include <cstddef>

#include "platform/services.h"

namespace zr::platform {

// The user's name to out[0..size-1]. False with an empty text (if size is not 0) if it isn't known or doesn't fit.
inline bool GetSystemUser(char *out, std::size_t size) {
    return services.system_user(out, size);
}

// The name with the domain in front, "DOMAIN\user", to out[0..size-1], cut if it doesn't fit; on Linux the first part
// of the host's name in capital letters stands for the domain. False with an empty text (if size is not 0) if it isn't
// known or without memory.
inline bool GetSystemLogin(char *out, std::size_t size) {
    return services.system_login(out, size);
}

} // namespace zr::platform

#endif
