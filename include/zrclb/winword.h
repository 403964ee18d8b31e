/* The link to Microsoft Word: whether it is installed, its version and path, its window, its start. C17 and C++20.
 *
 * 1. Version numbers: above 0 is the major version; 0: not found; -1: found by the older entry of the registry, which has no
 *    usable version; -2: found, but the version record of its program can't be read.
 * 2. The system's registry is searched once, at the first call of a function that needs it, which may be any of them but
 *    winword_FindWindow. What was found then, and also that nothing was, holds until the program ends.
 * 3. On Linux nothing is found: 0, no window, and winword_Run fails as where Word isn't installed.
 * 4. Threads: one at a time; what was found is not guarded.
 */
#ifndef ZRCLB_WINWORD_H
#define ZRCLB_WINWORD_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What is known of an installed Word. */
typedef struct winword_info {
    char version[80]; /* as the older entry of the registry has it; else empty */
    char path[256];   /* of the program, without quotes */
} winword_info;

/* Fills *info, and gives the version number. With 0, path may hold what the registry names though it is no file. The
   search can tell by a message (tag "winword") why a version record can't be read: "Invalid function call: file must
   exist", "Not enough memory", "Could not retrieve Winword version info: VerQueryValue FAILED". A null info gives 0 and
   the error report "NULL pInfo parameter", without a search. */
ZR_API int winword_GetInfo(winword_info *info) ZR_NOEXCEPT;

/* The version number. */
ZR_API int winword_GetVersion(void) ZR_NOEXCEPT;

/* Writes the program's path, without quotes, to path[0..255], terminated, and gives the version number. With 0 path
   stays as it is. A null path gives 0. */
ZR_API int winword_GetPath(char *path) ZR_NOEXCEPT;

/* Starts Word and waits until it is ready for its user, up to a minute. Unless force is set, nothing is started while
   winword_FindWindow finds a window. show is how its window is shown at first (5: as it likes, active). arguments, if
   neither null nor empty, follow the program's path, cut where that makes a line of 1023 characters. It gets no handles
   of this process. Gives 1 if Word was found running or has been started, ready or not; 0 with the error report
   "winword_GetPath FAILED" if it isn't installed, or "CreateProcess FAILED" if it doesn't start, tag "winword". */
ZR_API int winword_Run(int force, unsigned short show, const char *arguments) ZR_NOEXCEPT;

/* winword_Run(0, 5, NULL). */
ZR_API int winword_EnsureRunning(void) ZR_NOEXCEPT;

/* The last of the top-level windows whose title begins with "Microsoft Word", in this very spelling; null for none. It
   stays Word's, and may be gone at any time. */
ZR_API zr_window winword_FindWindow(void) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
