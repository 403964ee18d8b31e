/* Version of the library: of the headers at compile time, of the library that is loaded at run time. C17 and C++20.
   This is the one place where the version stands; the build reads it from here. */
#ifndef ZRCLB_VERSION_H
#define ZRCLB_VERSION_H

#include <zrclb/types.h>

#define ZR_VERSION_MAJOR 0
#define ZR_VERSION_MINOR 1
#define ZR_VERSION_PATCH 0

/* The three numbers as text, "major.minor.patch". */
#define ZR_VERSION ZR_VERSION_TEXT_(ZR_VERSION_MAJOR, ZR_VERSION_MINOR, ZR_VERSION_PATCH)
#define ZR_VERSION_TEXT_(major, minor, patch) ZR_VERSION_QUOTE_(major.minor.patch)
#define ZR_VERSION_QUOTE_(text) #text

#ifdef __cplusplus
extern "C" {
#endif

/* Returns the version of the library in use, as ZR_VERSION has it: a constant text that is never freed. Differs from
   ZR_VERSION when the program was compiled against the headers of another version. Any thread may call it at any time,
   before load and after unload too. */
ZR_API const char *zr_Version(void) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
