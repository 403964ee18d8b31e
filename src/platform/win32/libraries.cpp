// Shared libraries that are loaded while the program runs.
#include "platform/libraries.h"

#include <windows.h>

namespace zr::platform {

void *backend::OpenLibrary(const char *name) {
    return LoadLibraryA(name);
}

LibraryFunction backend::FindFunction(void *library, const char *name) {
    return reinterpret_cast<LibraryFunction>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void backend::CloseLibrary(void *library) {
    FreeLibrary(static_cast<HMODULE>(library));
}

} // namespace zr::platform
