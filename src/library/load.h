// Loading and unloading of the library.
#ifndef ZR_LIBRARY_LOAD_H
#define ZR_LIBRARY_LOAD_H

namespace zr::library {

// Brings the library into use: keeps the handle of its module, makes its four locks, takes over the C library's reports of
// bad arguments, tells the log what it has to know, and takes the memory that the settings ask for. That looks for the
// settings file, so it may report. Called once by the system's loader; by a program that
// holds the library's objects itself, from its main. Once loaded, a further call does nothing.
// Threads: while no other thread uses the library.
void LibraryLoad(void *module);

// Deletes the timers that are left in the table, and the locks. The exit list does not run, and nothing is saved. Without
// a load before, nothing. The library may be loaded again afterwards. Threads: while no other thread uses the library.
void LibraryUnload();

} // namespace zr::library

#endif
