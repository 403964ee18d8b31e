// Paths at the border to the system: the one place that turns the library's form into the host's and back.
#ifndef ZR_PLATFORM_POSIX_PATHS_H
#define ZR_PLATFORM_POSIX_PATHS_H

#include <cstddef>

#include "platform/posix/posix_drives.h"

namespace zr::platform::posix {

// Translates `path`, or answers false with errno set and `out` empty. `size` is above 0.
//
// "X:\a" lies below the drive's root, "\a" below that of the current drive, "X:a" in the current folder of the drive,
// "a" in the working folder; a bare "X:" is the root. Elements "." and ".." are resolved in the text, as on the
// desktop: "a\..\b" is "b" and needs no folder a, and nothing leads above a drive's root. Trailing separators stay.
bool ToHost(const char *path, char *out, std::size_t size);

// The same as an absolute path without separators at its end. `root_length` is the length of the drive's root in front:
// a path of no more than that is the root.
bool ToAbsoluteHost(const char *path, PathBuffer &out, std::size_t &root_length);

// The library's form of a host path: backslashes, and "C:" in front of an absolute one. False with errno set and `out`
// empty if it doesn't fit. `size` is above 0. `path` and `out` must not overlap.
bool FromHost(const char *path, char *out, std::size_t size);

// Whether an element of `path`, in either form, is "." or "..".
bool HasDotElement(const char *path);

} // namespace zr::platform::posix

#endif
