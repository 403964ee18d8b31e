// Finding the program that a command line names, and starting it.
#ifndef ZR_PLATFORM_POSIX_PROGRAMS_H
#define ZR_PLATFORM_POSIX_PROGRAMS_H

#include <string_view>

#include "platform/posix/posix_drives.h"

namespace zr::platform::posix {

// The host's path of the program `name`, a path in the library's form or a name that is looked for as processes.h
// tells; relative ones have a separator. A code of system_error.h: 0, file_not_found, access_denied for a folder. A
// path counts whatever its file's rights are; a name only where it may be run, so that data of that name are passed
// over.
int FindProgram(std::string_view name, PathBuffer &host);

// The host's path of the program `name`, which has no folder, in the folders of PATH; false if none has it.
bool FindInSearchPath(std::string_view name, PathBuffer &host);

// Starts the program at the host's path with arguments that end with null, and doesn't wait for it; whose child it is
// and what it gets, processes.h tells. 0, or the error number of what failed.
int StartDetached(const char *program, char *const *arguments);

} // namespace zr::platform::posix

#endif
