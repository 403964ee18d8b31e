// What the parts of the file handles share.
#ifndef ZR_FILES_HANDLE_PARTS_H
#define ZR_FILES_HANDLE_PARTS_H

#include <cstdio>

#include <zrclb/file_handle.h>

namespace zr::files {

// The stream below a handle, null for a null handle.
inline std::FILE *StreamOf(const fio_handle *handle) {
    return handle != nullptr ? handle->stream : nullptr;
}

inline bool HasMode(const fio_handle &handle, unsigned bits) {
    return (handle.mode & bits) != 0;
}

// The result of a plain function.
inline int ResultOf(bool done) {
    return done ? 0 : -1;
}

} // namespace zr::files

#endif
