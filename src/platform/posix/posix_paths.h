// Paths at the border to the system: the one place that turns the library's form into the host's and back.
#ifndef ZR_PLATFORM_POSIX_PATHS_H
#define ZR_PLATFORM_POSIX_PATHS_H

#include <climits>
#include <cstddef>

namespace zr::platform::posix {

// Host path of one call. The mapped drive's root comes in front of up to 259 characters, hence the size.
using PathBuffer = char[PATH_MAX];

// Translates `path`, or answers false with errno set and `out` empty. `size` is above 0.
bool ToHost(const char *path, char *out, std::size_t size);

// The library's form of a host path: backslashes, and "C:" in front of an absolute one. False with errno set and `out` empty
// if it doesn't fit. `size` is above 0. `path` and `out` must not overlap.
bool FromHost(const char *path, char *out, std::size_t size);

} // namespace zr::platform::posix

#endif
