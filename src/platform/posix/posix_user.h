// Folders of the present user by the host's rules.
#ifndef ZR_PLATFORM_POSIX_USER_H
#define ZR_PLATFORM_POSIX_USER_H

#include "platform/posix/posix_drives.h"

namespace zr::platform::posix {

// Host path of one of the user's base folders: what the environment variable `variable` holds, if that is an absolute path, else
// `below_home` in the home folder, which HOME names or the user's record. False without either, or without room.
bool BaseFolder(const char *variable, const char *below_home, PathBuffer &out);

} // namespace zr::platform::posix

#endif
