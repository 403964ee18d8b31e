// File status, the host's form of a path, and the steps by which a file is replaced safely.
//
// A `path` is a zero-terminated text in the library's form (drive, backslash or slash) of at most 259 characters; null,
// empty and longer ones fail, and so do drives that don't exist. All functions answer true on success. After a failure
// errno holds a reason. Threads: no state; any thread.
#ifndef ZR_PLATFORM_FILES_H
#define ZR_PLATFORM_FILES_H

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "platform/services.h"

namespace zr::platform {

// Characters that a path may have, and bytes that hold one with its terminator.
inline constexpr std::size_t path_limit = 259;
inline constexpr std::size_t path_size = path_limit + 1;

struct FileStatus {
    std::int64_t modified; // time of last modification, seconds since 1970 UTC
    std::uint64_t size;    // bytes; 0 for a folder
    bool folder;
};

// Status of the file or folder `path`, links followed. On failure (a bare drive such as "C:" is one) `out` is
// untouched.
inline bool GetFileStatus(const char *path, FileStatus &out) {
    return services.file_status(path, out);
}

// The host's form of `path` into out[0..size-1], terminated. Nothing need exist under that path except its drive. On
// failure, which includes a result of `size` or more characters, `out` holds the empty text if size is not 0. `path`
// and `out` must not overlap.
bool HostPath(const char *path, char *out, std::size_t size);

// Makes a new empty file beside `target`, in the same folder, with a name that nothing there had, and writes its path
// in the library's form to out[0..size-1]. On Linux only the present user may read or write it. On failure `out` is
// empty if size is not 0, and no file is left.
bool CreateBeside(const char *target, char *out, std::size_t size);

// Writes what the stream holds in memory and makes the system put the file's content on the disk. The stream stays
// open.
bool FlushToDisk(std::FILE *stream);

// Renames the file `from` to `to`, both on one drive, in one step: whoever opens `to` finds the old content or the new.
// Fails, with both files untouched, if `to` is a folder or is write-protected, or `from` doesn't exist.
bool MoveOver(const char *from, const char *to);

// The file that `path` stands for in the end, in the library's form, into out[0..size-1]: for a symbolic link its
// target, through any number of further links up to 40; for everything else, missing files included, `path` itself. The
// target of the last link need not exist on Linux; on Windows it must. On failure (a ring of links, no room) `out` is
// empty if size is not 0.
bool FollowLinks(const char *path, char *out, std::size_t size);

// Gives the file `to` the permissions (on Windows the attributes read-only, hidden and system) of the file `from`.
bool CopyMode(const char *from, const char *to);

// Removes the file or link `path`, write-protected or not; fails for a folder.
bool RemoveFile(const char *path);

} // namespace zr::platform

#endif
