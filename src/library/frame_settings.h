// What the settings file tells the frame: the log's switch and place, the name of the program, memory to keep away from it.
#ifndef ZR_LIBRARY_FRAME_SETTINGS_H
#define ZR_LIBRARY_FRAME_SETTINGS_H

#include <cstddef>
#include <cstdlib>

namespace zr::library {

// Whether entry ZrLog of section System is 1. Without the settings file that is reported.
bool LogIsOn();

// The path of the settings file with "zrlog.txt" in the place of its first "zr.zrini", to out[0..size-1]. False where the file
// isn't found, which is reported, or the result has no room in size.
bool LogPath(char *out, std::size_t size);

// The running program as "name.exe[C:\folder\...]", to out[0..size-1]: its file's name, and at most 20 characters each of
// drive and folder; "GetModuleFileName??" if its path isn't known. True. size is above 1.
bool ProgramName(char *out, std::size_t size);

// Asks for the blocks of reserve_memory: the standard allocator, unless a test puts its own here.
using ReserveBlock = void *(*)(std::size_t size);
inline constinit ReserveBlock reserve_block = std::malloc;

// Takes address space away from the program on purpose: as many megabytes as entry AllocMByte of section System says, each
// full 1000 of them as a block of 1 GiB, and the rest, even of 0, as one more. Only in the program whose file name is entry
// AllocProg, in every program if that entry is empty, in none without it. The blocks are neither touched nor given back, and
// it does no harm if some are refused.
void ReserveMemory();

} // namespace zr::library

#endif
