/* Window utilities. C17 and C++20.
 *
 * Texts are zero-terminated bytes in code page 1252. Nothing is reported. Threads: any.
 */
#ifndef ZRCLB_WINDOW_UTILITIES_H
#define ZRCLB_WINDOW_UTILITIES_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Looks an installed font up in the system's list and writes its file, as the list has it (usually a name without a
   folder), to buffer[0..size-1]: at most size - 1 characters of it, terminated. Font names are compared without
   regard to case, without the kind in parentheses at their end ("Arial (TrueType)") and without blanks around. Of
   several fonts of that name the first one counts. 1 if there is one; else 0, with an empty buffer. 0 also for a null
   argument and for a name of 260 characters and more. A size below 1 writes nothing.
   Linux has no such list: 0. */
ZR_API int wu_GetFontFile(const char *font_name, char *buffer, int size) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
