// The path of an entry that a listing named.
#ifndef ZR_FILES_ENTRY_PATH_H
#define ZR_FILES_ENTRY_PATH_H

#include <cstring>

#include <zrclb/paths.h>

#include "platform/files.h"

namespace zr::files {

// The folder itself and the one above it, which every listing holds.
inline bool IsDotEntry(const char *name) {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

// Composes folder and name. False, with `out` unspecified, if the path gets too long, or if the name would be taken for a path: a host
// may have files called "C:" or "a\b", and what they compose to lies elsewhere.
inline bool EntryPath(char (&out)[platform::path_size], const char *dir, const char *name) {
    const bool plain = name[0] != 0 && name[1] != ':' && std::strpbrk(name, "\\/") == nullptr;
    return plain && fio_makepath(out, "", dir, name) != nullptr;
}

} // namespace zr::files

#endif
