/* Paths: the host's form of a path of the library. C17 and C++20. */
#ifndef ZRCLB_PATHS_H
#define ZRCLB_PATHS_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Writes the form in which the host knows path to out[0..size-1], terminated, and answers 1. The file need not exist.
 *
 * On Windows that is path with backslashes for slashes. On Linux "C:" is the root folder: "C:\a\b" and "\a\b" give
 * "/a/b", "C:" gives "/"; what has no leading separator, with or without "C:", stays relative to the current folder, with
 * slashes for backslashes. Another drive X: exists if the environment variable ZR_DRIVE_X names a folder, which takes its
 * place: "X:\a" and "X:a" give "$ZR_DRIVE_X/a". The case of a drive's letter doesn't matter; the bytes of names pass
 * unchanged.
 *
 * Answers 0 for a null or empty path or one of more than 259 characters, a null out, a size of 0, a drive that doesn't
 * exist, and on Linux for a name on the network (two leading separators); also if the result and its terminator need
 * more than size bytes. out then holds the empty text, unless it is null or size is 0. No report.
 * path and out must not overlap. Threads: any, as long as none changes the environment. */
ZR_API int zr_HostPath(const char *path, char *out, zr_ulong size) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
