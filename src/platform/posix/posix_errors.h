// From errno to the codes of system_error.h.
#ifndef ZR_PLATFORM_POSIX_ERRORS_H
#define ZR_PLATFORM_POSIX_ERRORS_H

#include "platform/posix/posix_paths.h"
#include "platform/system_error.h"

namespace zr::platform::posix {

// The code for a value of errno alone.
int SystemCode(int error);

// The code for what failed on the host's path `host` with `error`: tells a missing file from a missing folder in front
// of it, a file with a separator behind its name, and a missing name that no file of the desktop can have.
int FailureCode(const char *host, int error);

// As ToHost, with a code as its answer: 0, path_too_long, or path_not_found for null, empty, network names and missing
// drives.
int Translate(const char *path, PathBuffer &host);

} // namespace zr::platform::posix

#endif
