// Shared libraries that are loaded while the program runs.
#include "platform/libraries.h"

#include <dlfcn.h>

namespace zr::platform {

void *backend::OpenLibrary(const char *name) {
    return dlopen(name, RTLD_NOW | RTLD_LOCAL);
}

LibraryFunction backend::FindFunction(void *library, const char *name) {
    return reinterpret_cast<LibraryFunction>(dlsym(library, name));
}

void backend::CloseLibrary(void *library) {
    dlclose(library);
}

} // namespace zr::platform
