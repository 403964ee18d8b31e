/* Help for an application and a topic: on the web, or from a local help file. C17 and C++20.
 *
 * 1. What is shown, and from where, stands in section "System" of the installation's settings file:
 *      UseWebHelp   1: help on the web, which a missing entry means too; anything else: the local file
 *      HelpURL      where help lies on the web, at most 511 characters, with the places "$$VERSION", "$$APP", "$$ID"
 *      Help         the folder of the local files, a path as zr_suche_pfad reads it
 *    UseWebHelp and HelpURL are kept for the process once they were read; a later change of the file isn't seen.
 * 2. Texts are zero-terminated bytes in code page 1252. They stay the caller's, and nothing of them is kept. What can't be read for
 *    want of memory counts as missing.
 * 3. Messages and errors carry the tag "zrHelp". Those of the search for the settings file may come in front of them.
 * 4. Threads: for the thread of the user interface; what is kept is not guarded. */
#ifndef ZRCLB_HELP_H
#define ZRCLB_HELP_H

#ifndef __cplusplus
#include <stdbool.h>
#endif

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Where help comes from. */
typedef enum EZrHelpType
#ifdef __cplusplus
    : int
#endif
{
    ZR_HELP_DEFAULT = 0, /* what the settings say */
    ZR_HELP_WEB = 1,
    ZR_HELP_LOCAL = 2
} EZrHelpType;

/* Opens the help of the application for topic id. True if it was opened, whatever the system made of it. A type that
 * isn't in the list is the local one.
 * - Web: if the machine is online, the system's browser gets the URL of zrHelp_GetHelpURL. Without one the message
 *   "HelpURL konnte nicht ermittelt werden." comes a second time and local help is tried; offline it is tried, too.
 * - Local: the file with the name of the application and the extension "chm" in the folder of the settings, at the
 *   topic, or at its start for id 0. Without it false, without a report. On Linux the first help viewer that is
 *   installed shows it (docs/desktop.md).
 * False for a null application, after the error "Invalid parameter". */
ZR_API bool zrHelp(const char *application, zr_ulong id, EZrHelpType type) ZR_NOEXCEPT;

/* What the settings say: ZR_HELP_WEB or ZR_HELP_LOCAL. A negative UseWebHelp is local help, and is read again at the next
 * call. */
ZR_API EZrHelpType zrHelp_GetHelpType(void) ZR_NOEXCEPT;

/* Sets that, for the process and at once in the settings file. What is neither ZR_HELP_WEB nor ZR_HELP_LOCAL sets web
 * help, after the message "zrHelp_SetHelpType - falscher Help-Type". Whether the file could be written isn't told. */
ZR_API void zrHelp_SetHelpType(EZrHelpType type) ZR_NOEXCEPT;

/* Writes the URL of the topic to buffer[0..size-1], terminated: HelpURL, cut to size - 1 characters, in which the first
 * "$$VERSION" is "2013", then the first "$$APP" the application in small letters, then the first "$$ID" the id as a signed
 * number. What has no room stays unfilled, after the error of str_repl. True if buffer isn't empty then.
 * Without HelpURL the message "HelpURL konnte nicht ermittelt werden." comes, and buffer stays as it was: also true, if it
 * held something. It is then read again at the next call. False, with nothing done, for a null argument and a size of
 * 0. The application must not lie in buffer. */
ZR_API bool zrHelp_GetHelpURL(const char *application, zr_ulong id, char *buffer, zr_ulong size) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
