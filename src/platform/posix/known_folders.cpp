// Folders of the user and of the machine, and the long form of a path.
#include "platform/known_folders.h"

#include <cstdlib>
#include <cstring>

#include <sys/stat.h>

#include "platform/files.h"
#include "platform/posix/posix_paths.h"
#include "platform/posix/posix_user.h"

namespace zr::platform {

namespace {

using posix::PathBuffer;

bool CommonFolder(PathBuffer &out) {
    const char *folder = std::getenv("ZR_COMMON_DATA");
    if (folder == nullptr || folder[0] != '/')
        folder = "/var/lib";
    if (std::strlen(folder) >= sizeof out)
        return false;
    std::strcpy(out, folder);
    return true;
}

bool HostFolder(int number, PathBuffer &out) {
    switch (number) {
    case user_data_folder:
        return posix::BaseFolder("XDG_CONFIG_HOME", "/.config", out);
    case local_user_data_folder:
        return posix::BaseFolder("XDG_DATA_HOME", "/.local/share", out);
    case common_data_folder:
        return CommonFolder(out);
    default:
        return false;
    }
}

void CutLastSeparators(PathBuffer &path) {
    for (std::size_t length = std::strlen(path); length > 1 && path[length - 1] == '/'; --length)
        path[length - 1] = 0;
}

} // namespace

bool backend::KnownFolder(int number, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return false;
    out[0] = 0;
    PathBuffer host;
    if (!HostFolder(number, host))
        return false;
    CutLastSeparators(host);
    return posix::FromHost(host, out, size < path_size ? size : path_size);
}

bool backend::KnownFolderBelow(int number, const char *below, char *out, std::size_t size) {
    if (!backend::KnownFolder(number, out, size))
        return false;
    const std::size_t length = std::strlen(out);
    const std::size_t separator = out[length - 1] != '\\' ? 1 : 0;
    const std::size_t more = below != nullptr && below[0] != 0 ? strnlen(below, path_size) : path_size;
    if (length + separator + more < size && length + separator + more <= path_limit) {
        out[length] = '\\'; // a root has it already
        std::memcpy(out + length + separator, below, more + 1);
        FileStatus status;
        if (backend::GetFileStatus(out, status) && status.folder)
            return true;
    }
    out[0] = 0;
    return false;
}

std::size_t backend::WindowsFolder(char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return 0;
    out[0] = 0;
    const char *folder = std::getenv("ZR_WINDOWS_DIR");
    PathBuffer host = "/etc/zr";
    if (folder != nullptr && folder[0] == '/') {
        if (strnlen(folder, sizeof host) == sizeof host)
            return 0;
        std::strcpy(host, folder);
    }
    CutLastSeparators(host);
    return posix::FromHost(host, out, size < path_size ? size : path_size) ? std::strlen(out) : 0;
}

std::size_t backend::LongPath(const char *path, char *out, std::size_t size) {
    PathBuffer host;
    struct stat status;
    if (!posix::ToHost(path, host, sizeof host) || lstat(host, &status) != 0)
        return 0;
    const auto is_separator = [](char c) { return c == '/' || c == '\\'; };
    const std::size_t drive = is_separator(path[0]) && !is_separator(path[1]) ? 2 : 0; // missing characters
    const std::size_t length = drive + std::strlen(path);
    if (length >= size)
        return length + 1;
    if (drive > 0) {
        out[0] = static_cast<char>('A' + posix::WorkingDrive() - 1);
        out[1] = ':';
    }
    for (std::size_t i = drive; i < length; ++i)
        out[i] = is_separator(path[i - drive]) ? '\\' : path[i - drive];
    out[length] = 0;
    return length;
}

} // namespace zr::platform
