// Names in the system's temporary folder.
//
// Each writes a path to buffer[0..size-1], terminated and cut if it doesn't fit, and answers `buffer`. Null for a null
// `buffer`, for a `size` below 1, in which case nothing is made, and where the system has no folder or no name;
// `buffer` is then empty. A missing temporary folder is made. Reports, under the tag "Fio": the message
// "NULL-Parameter" for a null `buffer`, the errors "Failed GetTempPath call" and "Failed GetTempFileName call".
// Threads: any.
#ifndef ZR_FILES_TEMPORARY_NAME_H
#define ZR_FILES_TEMPORARY_NAME_H

namespace zr::files {

// The name of a new, empty file, which is the caller's.
char *NameOfTemporaryFile(char *buffer, int size);

// A name made from the tick count. Nothing is made under it, and something may exist there.
char *NameByTickCount(char *buffer, int size);

} // namespace zr::files

#endif
