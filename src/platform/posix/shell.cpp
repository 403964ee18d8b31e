// The shell's part in file work, on a host without a shell: missing folders; notices that nobody waits for.
#include "platform/shell.h"

#include <cstring>

#include "platform/file_verbs.h"
#include "platform/files.h"

namespace zr::platform {

namespace {

// Relative in the eyes of the shell, to which a slash is no start.
bool IsRelative(const char *path) {
    return path == nullptr || path[0] == 0 || (path[0] != '\\' && path[1] != ':');
}

} // namespace

int CreateMissingFolders(const char *path) {
    static constexpr char long_path[] = "\\\\?\\"; // in front of a path of any length; it changes nothing else
    if (IsRelative(path))
        return bad_path_name;
    if (strnlen(path, path_size) > longest_folder)
        return path_too_long;
    if (std::strncmp(path, long_path, sizeof long_path - 1) == 0)
        path += sizeof long_path - 1;
    const int code = MakeFolder(path);
    if (code != path_not_found)
        return code;
    char part[path_size];
    int last_code = code;
    for (std::size_t i = path[1] == ':' ? 3 : 1; path[i - 1] != 0 && path[i] != 0; ++i) {
        if (path[i] != '\\')
            continue;
        std::memcpy(part, path, i);
        part[i] = 0;
        last_code = MakeFolder(part);
        if (last_code != done && last_code != already_exists)
            return last_code;
    }
    return path[std::strlen(path) - 1] == '\\' ? last_code : MakeFolder(path);
}

void NoticeRename(bool, const char *, const char *) {}

void NoticeNewFolder(const char *) {}

} // namespace zr::platform
