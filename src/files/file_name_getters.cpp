// The file name value: getters. Each builds its text in an array of its own; only the path is kept until a part
// changes.
#include <zrclb/file_name.hpp>

#include <algorithm>
#include <cstddef>
#include <cstring>

#include <zrclb/paths.h>
#include <zrclb/str.h>

#include "files/file_name_text.h"
#include "platform/path_text.h"
#include "platform/separator.h"

using namespace zr::files;
using zr::platform::IsSeparator;

namespace {

// Puts a root behind the first colon of path[0..size-1], if none is there. Without room for it `path` becomes empty,
// after a report.
void RootDrive(char *path, std::size_t size) {
    const char *colon = std::strchr(path, ':');
    if (colon == nullptr || IsSeparator(colon[1]))
        return;
    const std::size_t length = std::strlen(path);
    if (colon[1] != '\0') {
        if (str_ins(path, static_cast<int>(size), static_cast<int>(colon + 1 - path), "\\") == nullptr) {
            ReportFileName("GetPath(): Fehler bei str_ins", nullptr, __LINE__);
            *path = '\0';
        }
    } else if (length + 1 < size) {
        path[length] = '\\';
        path[length + 1] = '\0';
    } else {
        ReportFileName("GetPath(): Buffer zu klein", nullptr, __LINE__);
        *path = '\0';
    }
}

} // namespace

CZrFileName::operator const char *() const {
    return GetPath();
}

const char *CZrFileName::GetFileName(bool with_ext) const {
    if (!with_ext || *ext == '\0' || *name == '\0')
        return name;
    // "." and an extension: MakePath would take a dot at the extension's start for the one between the two.
    const std::size_t length = std::strlen(name);
    const std::size_t more = std::strlen(ext);
    if (length + 1 + more >= sizeof full_name) {
        *full_name = '\0';
        return full_name;
    }
    std::memcpy(full_name, name, length);
    full_name[length] = '.';
    std::memcpy(full_name + length + 1, ext, more + 1);
    return full_name;
}

const char *CZrFileName::GetExt() const {
    return ext;
}

const char *CZrFileName::GetDir(bool with_drive) const {
    if (!with_drive || *drive == '\0')
        return dir;
    *drive_dir = '\0'; // what can't be composed leaves it alone
    fio_makepath(drive_dir, drive, dir, "");
    return drive_dir;
}

const char *CZrFileName::GetDrive() const {
    return drive;
}

const char *CZrFileName::GetPath() const {
    if (path_dirty) {
        BuildPath();
        path_dirty = false;
    }
    return path;
}

void CZrFileName::BuildPath() const {
    *path = '\0';
    const bool only_ext = *name == '\0' && *dir == '\0' && *drive == '\0' && *ext != '\0';
    const std::size_t length = std::strlen(name) + std::strlen(ext) + std::strlen(dir) + std::strlen(drive);
    if (only_ext || length >= sizeof path) {
        ReportFileName("GetPath(): Kein g\xFCltiger Pfad", nullptr, __LINE__);
        return;
    }
    if (!zr::platform::MakePath(path, sizeof path, drive, dir, name, *name != '\0' ? ext : "")) {
        ReportFileName("GetPath(): Buffer zu klein", nullptr, __LINE__);
        return;
    }
    RootDrive(path, sizeof path);
}

const char *CZrFileName::GetCompactPath(zr_ulong width) const {
    // All bytes of the width are the service's, and a path stays whole only where the width has one to spare.
    char text[sizeof path + 1] = "";
    const auto room = static_cast<unsigned>(std::min<std::size_t>(width, sizeof text));
    if (zr::platform::CompactPath(text, GetPath(), room, 0) == 0) {
        ReportFileName("GetCompactPath: failed", nullptr, __LINE__);
        *text = '\0';
    }
    StoreUpTo(compact_path, text, sizeof compact_path - 1);
    return compact_path;
}

const char *CZrFileName::GetLastDir() const {
    std::memcpy(last_dir, dir, sizeof last_dir);
    CutTrailingBackslash(last_dir);
    // In standard form no other separator is left behind the last backslash.
    if (const char *last = std::strrchr(last_dir, '\\'))
        StoreUpTo(last_dir, last + 1, sizeof last_dir - 1);
    return last_dir;
}
