// What the loader calls when it brings the library in and takes it out.
#include "platform/entry.h"

#include <windows.h>

// Found by this name in the library; in a program that holds the library's objects it is an ordinary, uncalled function.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID);

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH)
        zr::library::LibraryLoad(module);
    else if (reason == DLL_PROCESS_DETACH)
        zr::library::LibraryUnload();
    return TRUE;
}
