// The desktop's attribute bits of a file of the host.
#ifndef ZR_PLATFORM_POSIX_ATTRIBUTES_H
#define ZR_PLATFORM_POSIX_ATTRIBUTES_H

#include <cstdint>

#include <sys/stat.h>

#include "platform/file_verbs.h"

namespace zr::platform::posix {

inline constexpr mode_t any_write = 0222;
inline constexpr mode_t all_permissions = 07777;

// Read-only is a missing write permission, hidden a leading dot of `name`, the last element of the path.
inline std::uint32_t AttributesOf(const struct stat &status, const char *name) {
    const bool hidden = name[0] == '.' && name[1] != 0 && (name[1] != '.' || name[2] != 0);
    return (S_ISDIR(status.st_mode) ? attribute_folder : 0U) |
           ((status.st_mode & any_write) == 0 ? attribute_read_only : 0U) | (hidden ? attribute_hidden : 0U);
}

} // namespace zr::platform::posix

#endif
