// Shared libraries that are loaded while the program runs.
//
// Threads: any.
#ifndef ZR_PLATFORM_LIBRARIES_H
#define ZR_PLATFORM_LIBRARIES_H

#include "platform/services.h"

namespace zr::platform {

// Loads the library `name`, which the system looks for where it looks for libraries. Answers its handle, null if it can't be
// loaded.
inline void *OpenLibrary(const char *name) {
    return services.open_library(name);
}

// The function that a loaded library shows under the name, null if there is none. It is gone when the library is closed. On
// Windows a number in the form of MAKEINTRESOURCE may stand for the name.
inline LibraryFunction FindFunction(void *library, const char *name) {
    return services.find_function(library, name);
}

// Gives up a loaded library.
inline void CloseLibrary(void *library) {
    services.close_library(library);
}

} // namespace zr::platform

#endif
