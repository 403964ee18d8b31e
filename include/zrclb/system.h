/* What surrounds a program: versions, the kind of system, users, other programs, environment variables. C17 and C++20.
 *
 * 1. Texts are zero-terminated bytes in code page 1252. A null text that is not spoken of counts as empty.
 * 2. Answers that are kept are found out at the first call and hold for the process; an empty answer is not kept, so
 *    the next call looks again. A text that is returned is the library's, and valid until the answer changes.
 * 3. Reports carry the tag "Zr". Functions that look for the settings file report what zr_suche_datei reports where there
 *    is none.
 * 4. Threads: one at a time, for what is kept and for the environment. zr_base_check_version and zr_WinExec: any.
 */
#ifndef ZRCLB_SYSTEM_H
#define ZRCLB_SYSTEM_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Versions -------------------------------------------------------------------------------------------------- */

/* Whether a module can work on data: 1 if the data's version, as its first two numbers tell it, is not above the
 * highest that the module knows, else 0. Data of a lower major version pass whatever their minor version is. 0 comes
 * with two error reports, an English and a German one, of at most 1023 characters each; showing them to the user
 * is the caller's business. data_name and module_name stand in the reports only. */
ZR_API int zr_base_check_version(const char *data_name, zr_long data_major, zr_long data_minor, const char *module_name,
                                 zr_long module_major, zr_long module_minor) ZR_NOEXCEPT;

/* Writes the version of the library's file, as users know it, to out[0..size-1], cut if need be, and gives out. Of
 * the four numbers a.b.c.d 2013.1.2.0 reads "2013.012", 2013.1.2.3 "2013.0123", 2013.52.6.0 "2013.000 VA",
 * 2013.60.7.0 "2013.006007"; without a version it is "2013". Null for a null out and a size of 0, 1 or above
 * 2147483648. The text is kept. */
ZR_API char *zr_get_tek_version(char *out, unsigned int size) ZR_NOEXCEPT;

/* ---- System ---------------------------------------------------------------------------------------------------- */

/* The kinds of operating system that zr_get_win32 tells. */
#define ZR_SYSTEM_UNKNOWN 0
#define ZR_SYSTEM_32S 2
#define ZR_SYSTEM_NT_3 3  /* and before */
#define ZR_SYSTEM_9X 4    /* the Windows 95 family */
#define ZR_SYSTEM_NT_4 5  /* 4.x, and 5.2 and up within 5 */
#define ZR_SYSTEM_NT_50 6 /* 5.0, and so on */
#define ZR_SYSTEM_NT_51 7
#define ZR_SYSTEM_NT_60 8
#define ZR_SYSTEM_NT_61 9
#define ZR_SYSTEM_NT_62 10
#define ZR_SYSTEM_LATER 11 /* above 6.2; Linux too */

/* The kind of system, one of the numbers above; 0 if it can't be found out. Kept. On Windows it is what the system
 * tells this program, which for a program that names no later system in its manifest may be an older one. */
ZR_API int zr_get_win32(void) ZR_NOEXCEPT;

/* ---- Programs -------------------------------------------------------------------------------------------------- */

/* Starts a program and doesn't wait for it: 40 if it runs, else 0, with the error report "CreateProcess is failed; The
 * command line is", the command line and the system's reason. Of the command line the first 1023 characters count. It
 * begins with the program's name, in quotes if the name has blanks; without quotes the shortest beginning in front of a
 * blank that names a program counts. A name without folder is looked for in the folder of the running program, the
 * current folder, the system's folders and those of PATH. The program gets the rest of the line as its arguments, the
 * current folder and the environment; no open files but the standard streams on Linux, no handles on Windows. show: how
 * its window is shown at first, a number of the desktop system; without meaning on Linux.
 * docs/system.md tells the rules for quotes and names. */
ZR_API int zr_WinExec(const char *command_line, unsigned short show) ZR_NOEXCEPT;

/* ---- Users ----------------------------------------------------------------------------------------------------- */

/* The name of the user as it is shown: the entry "User" of the section "System" of the installation's settings file, at
 * most 512 characters without the blanks at both ends; if that is missing or blank, the system's name of the
 * user; empty without either. Never null. Kept. */
ZR_API const char *zr_GetUserName(void) ZR_NOEXCEPT;

/* Writes that entry and, if this succeeds, makes the first 511 characters of name, without the blanks at both ends, the
 * answer of zr_GetUserName. Where it can't be written, nothing changes, without a report of its own. Null: nothing. */
ZR_API void zr_SetUserName(const char *name) ZR_NOEXCEPT;

/* The name under which the user has logged in, "DOMAIN\user", at most 511 characters of it; on Linux with the host's
 * name in capital letters for the domain. If only the user is known, "user"; empty without either. Never null. Kept. */
ZR_API const char *zr_GetUserLogin(void) ZR_NOEXCEPT;

/* ---- Environment variables ------------------------------------------------------------------------------------- */

/* The value of an environment variable, or default_value if it isn't set or name is null. The text belongs to the
 * environment and is valid until the variable changes. Upper and lower case are one on Windows only. */
ZR_API char *zr_getenv(const char *name, char *default_value) ZR_NOEXCEPT;

/* Sets an environment variable for this process; an empty value removes it, which also succeeds if there is none. 0, or
 * an error number of the C library: 22 for a null name or value, a name that is empty or begins with "=", and a name
 * or value of more than 32766 characters; 12 without memory. Of a name with a "=" in it what follows belongs to the
 * value. */
ZR_API int zr_putenv(const char *name, const char *value) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
