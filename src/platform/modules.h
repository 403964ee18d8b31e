// The library's own module, the running program, and the runtime's reporter of bad arguments.
#ifndef ZR_PLATFORM_MODULES_H
#define ZR_PLATFORM_MODULES_H

#include <cstddef>

#include "platform/services.h"

namespace zr::platform {

// The handle of the library's module (on Linux the address at which it is loaded), as stored at load; null before.
// Threads: stored once at load, read by any.
void StoreModule(void *module);
void *StoredModule();

// Path of the library's own file in the library's form into out[0..size-1]: of the module that is stored, or, while none is or
// the library's code lies in the program itself, of the program. Answers its length, terminator not counted; 0 with an empty text (if
// size is not 0) when it isn't known or doesn't fit.
inline std::size_t ModulePath(char *out, std::size_t size) {
    return services.module_path(out, size);
}

// Path of the running program in the library's form into out[0..size-1]. Answers its length, terminator not counted; 0 with
// an empty text (if size is not 0) when it isn't known or doesn't fit.
inline std::size_t ProgramPath(char *out, std::size_t size) {
    return services.program_path(out, size);
}

// Called when the C library is handed a bad argument; either text may be null. After it the checked function fails by its
// own rule.
using InvalidParameterReporter = void (*)(const wchar_t *expression, const wchar_t *function);

// Makes `reporter` the C library's handler for the whole process; null brings back the one that was there before the first
// call. On Linux the C library has no such check and never calls it; nor does msvcrt.dll in a MinGW-w64 build, whose
// handler is a stand-in, while the UCRT calls it. Threads: at load and unload only.
void InstallInvalidParameterReporter(InvalidParameterReporter reporter);

} // namespace zr::platform

#endif
