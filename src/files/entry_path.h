// What composing a path would misread: over-long parts, and names that a listing gave.
#ifndef ZR_FILES_ENTRY_PATH_H
#define ZR_FILES_ENTRY_PATH_H

#include <cstring>

#include <zrclb/paths.h>

#include "files/path_pieces.h"
#include "platform/files.h"

namespace zr::files {

// Can a path be composed of this text as it stands? One with an over-long part would count as empty there, and what is
// done to a folder's entry would be done to the folder, or to the current one. Null and empty are no fault.
inline bool IsComposable(const char *text) {
    return text == nullptr || text[0] == 0 ||
           (strnlen(text, platform::path_size) <= platform::path_limit && Divide(text).Length() != 0);
}

// The folder itself and the one above it, which every listing holds.
inline bool IsDotEntry(const char *name) {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

// Composes folder and name. False, with `out` unspecified, if the path gets too long, or if the name would be taken for
// a path: a host may have files called "C:" or "a\b", and what they compose to lies elsewhere.
inline bool EntryPath(char (&out)[platform::path_size], const char *dir, const char *name) {
    const bool plain = name[0] != 0 && name[1] != ':' && std::strpbrk(name, "\\/") == nullptr;
    return plain && IsComposable(dir) && IsComposable(name) && fio_makepath(out, "", dir, name) != nullptr;
}

} // namespace zr::files

#endif
