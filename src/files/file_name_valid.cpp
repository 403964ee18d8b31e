// The file name value: tests of its parts and of texts, and the first fault.
#include <zrclb/file_name.hpp>

#include <cstddef>
#include <cstring>

#include <zrclb/paths.h>

#include "files/file_name_text.h"
#include "platform/files.h"
#include "platform/path_text.h"

using namespace zr::files;

namespace {

// Whether `text` has 1 to `limit` characters.
bool HasLength(const char *text, std::size_t limit) {
    return !IsEmpty(text) && LengthUpTo(text, limit + 1) <= limit;
}

bool IsElementValid(const char *element) {
    return std::strcmp(element, ".") == 0 || std::strcmp(element, "..") == 0 || fio_test_foldername(element) == 0;
}

bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

} // namespace

bool CZrFileName::FileNameValid() const {
    return FileNameValid(name);
}

bool CZrFileName::ExtValid() const {
    return ExtValid(ext);
}

bool CZrFileName::DirValid() const {
    return DirValid(dir);
}

bool CZrFileName::DriveValid() const {
    return DriveValid(drive);
}

bool CZrFileName::PathValid() const {
    return PathValid(GetPath());
}

bool CZrFileName::FileNameValid(const char *text) {
    return HasLength(text, part_limit) && fio_test_filename(text) == 0;
}

bool CZrFileName::ExtValid(const char *text) {
    return HasLength(text, part_limit) && fio_test_filename(*text == '.' ? text + 1 : text) == 0;
}

bool CZrFileName::DirValid(const char *text) {
    if (!HasLength(text, zr::platform::path_limit))
        return false;
    char copy[zr::platform::path_size];
    StoreUpTo(copy, text, zr::platform::path_limit);
    for (char *element = copy; *element != '\0';) {
        const std::size_t length = std::strcspn(element, "\\/");
        const bool last = element[length] == '\0';
        element[length] = '\0';
        if (length > 0 && !IsElementValid(element))
            return false;
        element += last ? length : length + 1;
    }
    return true;
}

bool CZrFileName::DriveValid(const char *text) {
    return text != nullptr && IsLetter(text[0]) && text[1] == ':' && text[2] == '\0';
}

bool CZrFileName::PathValid(const char *text) {
    zr::platform::PathParts parts;
    if (!HasLength(text, zr::platform::path_limit) || !zr::platform::SplitPath(text, parts))
        return false;
    if (*parts.drive != '\0' && !DriveValid(parts.drive))
        return false;
    if (*parts.folder != '\0' && !DirValid(parts.folder))
        return false;
    if (*parts.name == '\0')
        return *parts.extension == '\0';
    return FileNameValid(parts.name) && (*parts.extension == '\0' || ExtValid(parts.extension));
}

ZR_FILE_NAME_ERROR CZrFileName::GetError() const {
    if (name_set && !FileNameValid())
        return ZR_FILE_NAME_BAD_NAME;
    if (ext_set && !ExtValid())
        return ZR_FILE_NAME_BAD_EXT;
    if (dir_set && !DirValid())
        return ZR_FILE_NAME_BAD_DIR;
    if (drive_set && !DriveValid())
        return ZR_FILE_NAME_BAD_DRIVE;
    return *GetPath() == '\0' ? ZR_FILE_NAME_BAD_PATH : ZR_FILE_NAME_OK;
}
