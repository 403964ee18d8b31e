// Folders of the user, of the machine and of the system, and the long form of a path.
#ifndef ZR_PLATFORM_KNOWN_FOLDERS_H
#define ZR_PLATFORM_KNOWN_FOLDERS_H

#include <cstddef>

#include "platform/services.h"

namespace zr::platform {

// Numbers of folders, those of the desktop.
inline constexpr int user_data_folder = 26;       // on Linux XDG_CONFIG_HOME, else .config in the home folder
inline constexpr int local_user_data_folder = 28; // on Linux XDG_DATA_HOME, else .local/share in the home folder
inline constexpr int common_data_folder = 35;     // on Linux ZR_COMMON_DATA, else /var/lib

// Path of the folder in the library's form, without a separator at its end, into out[0..size-1]. False with an empty `out` (if
// size is not 0) for other numbers, a path of more than 259 characters or without room, and a user without a home
// folder. On Linux the folder need not exist; what the variables hold counts if it is an absolute path.
// Threads: any, as long as none changes the environment.
inline bool KnownFolder(int number, char *out, std::size_t size) {
    return services.known_folder(number, out, size);
}

// The same with `below` behind it, a relative path that is not empty. False too if that is no folder that exists.
inline bool KnownFolderBelow(int number, const char *below, char *out, std::size_t size) {
    return services.known_folder_below(number, below, out, size);
}

// Folder of the system's old settings files in the library's form into out[0..size-1]. Answers its length, terminator
// not counted; 0 with an empty `out` (if size is not 0) when it isn't known or doesn't fit. On Linux the folder that ZR_WINDOWS_DIR
// names with an absolute host path, else /etc/zr, which need not exist.
inline std::size_t WindowsFolder(char *out, std::size_t size) {
    return services.windows_folder(out, size);
}

// The path with the long names of its elements into out[0..size-1]; on Linux, where names have one form, the path in the
// library's form, from a root on with the current drive. Answers its length, terminator not counted; the size needed if
// it doesn't fit, with `out` undefined; 0 if nothing exists under that path.
inline std::size_t LongPath(const char *path, char *out, std::size_t size) {
    return services.long_path(path, out, size);
}

} // namespace zr::platform

#endif
