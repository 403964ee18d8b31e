// What the system's loader calls.
#ifndef ZR_PLATFORM_ENTRY_H
#define ZR_PLATFORM_ENTRY_H

// Defined by the library above the seam and called by the back end's entry: load once when the library comes into the
// process, with its module handle, and unload once when it leaves. On Linux load may come before the run-time
// initialisers of other sources, so what it touches has to be initialised statically.
namespace zr::library {
void LibraryLoad(void *module);
void LibraryUnload();
} // namespace zr::library

#endif
