// The file name value: setters of the parts. Each reads its argument before it writes, since that may be a text of the
// object's own.
#include <zrclb/file_name.hpp>

#include <cstddef>
#include <cstring>

#include "files/file_name_text.h"
#include "platform/path_text.h"

using namespace zr::files;
using zr::platform::PathParts;

namespace {

// Moves the extension to the end of the name; it is lost where that has no room for it.
void JoinExtension(PathParts &parts) {
    const std::size_t length = std::strlen(parts.name);
    const std::size_t more = std::strlen(parts.extension);
    if (length + more <= part_limit)
        std::memcpy(parts.name + length, parts.extension, more + 1);
    else
        ReportFileName("Buffer too small", nullptr, __LINE__);
    parts.extension[0] = '\0';
}

} // namespace

bool CZrFileName::SetFileName(const char *text, bool split_ext) {
    name_set = !IsEmpty(text);
    PathParts parts;
    // What can't be split has no parts, so its name is empty and therefore bad.
    zr::platform::SplitPath(text, parts);
    if (!split_ext)
        JoinExtension(parts);
    bool good = !name_set || FileNameValid(parts.name);
    StoreUpTo(name, parts.name, part_limit);
    if (*parts.extension != '\0')
        good = SetExt(parts.extension) && good;
    if (*parts.drive != '\0')
        good = SetDrive(parts.drive) && good;
    if (*parts.folder != '\0')
        good = SetDir(parts.folder) && good;
    path_dirty = true;
    return good;
}

bool CZrFileName::SetExt(const char *text) {
    ext_set = !IsEmpty(text);
    const bool good = !ext_set || ExtValid(text);
    StoreUpTo(ext, text, part_limit);
    if (ext[0] == '.')
        StoreUpTo(ext, ext + 1, part_limit);
    path_dirty = true;
    return good;
}

bool CZrFileName::SetDir(const char *text) {
    dir_set = !IsEmpty(text);
    char local[part_limit + 1];
    StoreUpTo(local, text, part_limit);
    TerminateDir(local);
    PathParts parts;
    zr::platform::SplitPath(local, parts);
    StoreUpTo(dir, parts.folder, part_limit);
    bool good = *parts.drive == '\0' || SetDrive(parts.drive);
    if (dir_set && !DirValid(dir))
        good = false;
    StandardizeDir(nullptr);
    path_dirty = true;
    return good;
}

bool CZrFileName::SetDrive(const char *text) {
    drive_set = !IsEmpty(text);
    const bool good = !drive_set || DriveValid(text);
    StoreUpTo(drive, text, sizeof drive - 1);
    path_dirty = true;
    return good;
}
