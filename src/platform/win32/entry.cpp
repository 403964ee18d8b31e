// What the loader calls when it brings the library in and takes it out.
#include "platform/entry.h"

#include <cstddef> // tells which runtime it is

#include <windows.h>

#ifdef __GLIBCXX__
namespace __gnu_cxx {
// The runtime's own: gives back the memory that it keeps for exceptions without memory.
void __freeres();
} // namespace __gnu_cxx
#endif

namespace {

// Of the runtime that is part of the library, what it would leave in a process that goes on.
void EndRuntime() {
#ifdef __GLIBCXX__
    __gnu_cxx::__freeres();
#endif
}

} // namespace

// Found by this name in the library; in a program that holds the library's objects it is an ordinary, uncalled function.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID);

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID process_ends) {
    if (reason == DLL_PROCESS_ATTACH) {
        zr::library::LibraryLoad(module);
    } else if (reason == DLL_PROCESS_DETACH) {
        zr::library::LibraryUnload();
        if (process_ends == nullptr)
            EndRuntime();
    }
    return TRUE;
}
