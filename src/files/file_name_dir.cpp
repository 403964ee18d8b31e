// The file name value: changes within its directory.
#include <zrclb/file_name.hpp>

#include <cstddef>
#include <cstring>

#include <zrclb/str.h>

#include "files/file_name_text.h"

using namespace zr::files;

namespace {

// Longest text that the splitter takes: a drive, and a directory, a name and an extension of 255 characters each.
constexpr std::size_t longest_split = 2 + 3 * part_limit;

} // namespace

bool CZrFileName::AddDir(const char *text) {
    if (text == nullptr) {
        ReportFileName("AddDir(): NULL-Pointer", nullptr, __LINE__);
        return false;
    }
    if (*text == '\0')
        return true;
    const bool good = DirValid(text);
    if (!good)
        ReportFileName("AddDir(): Verzeichnis nicht g\xFCltig :", text, __LINE__);
    const std::size_t length = std::strlen(dir);
    const std::size_t more = LengthUpTo(text, sizeof dir);
    if (length + more >= sizeof dir) {
        ReportFileName("AddDir(): Verzeichnis zu lang", nullptr, __LINE__);
        return false;
    }
    // text may be dir itself: its end is written last.
    std::memmove(dir + length, text, more);
    dir[length + more] = '\0';
    StandardizeDir(nullptr);
    path_dirty = true;
    return good;
}

bool CZrFileName::RemoveLastDir() {
    if (*dir == '\0')
        return false;
    CutTrailingBackslash(dir);
    char *last = std::strrchr(dir, '\\');
    *(last != nullptr ? last : dir) = '\0';
    StandardizeDir(nullptr);
    path_dirty = true;
    return true;
}

bool CZrFileName::ReplaceDir(const char *from, const char *to) {
    bool good = true;
    if (!IsEmpty(to) && !DirValid(to)) {
        ReportFileName("ReplaceDir(): Verzeichnis nicht g\xFCltig :", to, __LINE__);
        good = false;
    }
    if (IsEmpty(from)) {
        ReportFileName("ReplaceDir(): Falscher Parameter", nullptr, __LINE__);
        return false;
    }
    char old_part[part_limit + 1];
    char new_part[part_limit + 1];
    StoreUpTo(old_part, from, part_limit);
    StoreUpTo(new_part, to, part_limit);
    StandardizeDir(old_part);
    StandardizeDir(new_part);
    if (str_repl(dir, static_cast<int>(sizeof dir), old_part, new_part) == nullptr) {
        ReportFileName("ReplaceDir() : Fehler beim Ersetzen", nullptr, __LINE__);
        good = false;
    }
    path_dirty = true;
    StandardizeDir(nullptr);
    return good;
}

bool CZrFileName::FNToDir(const char *text) {
    // text may lie in dir, which changes first. What is cut off here no splitter would take anyway.
    char new_name[longest_split + 2];
    StoreUpTo(new_name, text, longest_split + 1);
    char whole[sizeof name + sizeof ext]; // the terminator of the first makes room for the dot
    StoreUpTo(whole, name, part_limit);
    if (*name != '\0' && *ext != '\0') {
        const std::size_t length = std::strlen(whole);
        whole[length] = '.';
        StoreUpTo(whole + length + 1, ext, part_limit);
    }
    if (!AddDir(whole))
        return false;
    return SetFileName(new_name, true);
}
