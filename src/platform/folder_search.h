// The search for the entries of a folder that match a pattern.
#ifndef ZR_PLATFORM_FOLDER_SEARCH_H
#define ZR_PLATFORM_FOLDER_SEARCH_H

#include <cstdint>
#include <memory>

#include "platform/files.h"
#include "platform/system_error.h"

namespace zr::platform {

struct FoundEntry {
    char name[path_size];     // without its folder, as it is on disk; names of 260 bytes and more are not delivered
    std::uint32_t attributes; // bits of file_verbs.h; on Linux a link that leads nowhere has no folder bit
    std::uint64_t size;       // bytes; 0 for a folder
    std::int64_t modified;    // seconds since 1970 UTC; -1 unknown
};

enum class SearchOrder {
    any,     // as the host delivers
    by_name, // ".", "..", then by name in upper case of code page 1252, on every platform
};

// One search. Entries "." and ".." are delivered like any others where the pattern matches them, except in a drive's
// root.
class FolderSearch {
public:
    FolderSearch();
    ~FolderSearch(); // ends the search
    FolderSearch(const FolderSearch &) = delete;
    FolderSearch &operator=(const FolderSearch &) = delete;

    // Starts the search for `pattern`, a path whose last element may hold the wildcards "*" and "?", matched without
    // regard to case, and finds the first entry. A pattern that ends in "." or ".." means that folder by its own name.
    // A code of system_error.h: 0; file_not_found if nothing matches, also for a pattern that ends in a separator and
    // for a root by its own name; path_not_found if the folder does not exist; invalid_name if it is a file;
    // path_too_long; out_of_memory. An earlier search of this object is ended. Ordered by name everything is read here,
    // at about 50 bytes for an entry; else the folder is read as the search goes on.
    int Start(const char *pattern, SearchOrder order, FoundEntry &first);

    // The next entry: 0, or no_more_files at the end and ever after. An entry that vanished between the listing of its
    // name and the look at its facts is passed over; a folder that is removed meanwhile ends the search.
    int Next(FoundEntry &next);

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace zr::platform

#endif
