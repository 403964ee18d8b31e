// Copies of single files.
#ifndef ZR_PLATFORM_POSIX_COPY_H
#define ZR_PLATFORM_POSIX_COPY_H

namespace zr::platform::posix {

// Copies the file `from` with its permissions and its time of modification to `to`, both the host's paths. An existing
// target is written over in place. A code of system_error.h. If it fails half-way, a new target is removed; a former
// target has lost its content.
int CopyOver(const char *from, const char *to);

// The same to a name that must be new: already_exists otherwise. `from` is not followed if it is a link: the link is
// made anew.
int CopyToNewFile(const char *from, const char *to);

} // namespace zr::platform::posix

#endif
