/* Settings files with sections, read and written one value at a time. C17 and C++20.
 *
 * 1. Nothing is kept between two calls: each read scans the file from its start and stops at the value. The format is told in
 *    docs/ini-format.md. Texts are zero-terminated bytes in code page 1252.
 * 2. file is a path of at most 255 characters. Where "default file" is said, null and empty mean the settings file of the
 *    installation; elsewhere they name no file.
 * 3. section and entry are compared byte by byte. A null section, or one of blanks only, is the part of the file in front of the
 *    first header. Names in the file are trimmed, those given are not: " a" is never found.
 * 4. The first of several sections of one name counts, and the first of several entries.
 * 5. Reads answer one of the INI_ codes and, if that is not INI_DONE, leave the outputs alone, unless said otherwise.
 * 6. A line of the section without "=" is passed over and reported, tag "Ini": the error "Incorrect entry's format. '=' is not found.
 *    File below:" and an error with file, section and entry as its texts.
 * 7. Threads: any; files are not locked, so the last of two writers wins.
 */
#ifndef ZRCLB_INI_H
#define ZRCLB_INI_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Results. */
#define INI_DONE 0
#define INI_NO_FILE (-1) /* the file could not be opened, or an argument is not valid */
#define INI_NO_SECTION 1 /* section not found */
#define INI_NO_ENTRY 2   /* entry not found */
#define INI_NO_ROOM 3    /* the value did not fit */

/* ---- Reading --------------------------------------------------------------------------------------------------- */

/* The value of an entry, all that follows the first "=" of its line up to the last byte above 32: "a = 1" has the value " 1". On
 * input *size is the longest text that may be stored, buffer[0..*size]. INI_DONE: *size is the text's length. INI_NO_ROOM: the
 * first *size characters are in buffer, and *size stays. A null buffer only gives the length.
 * entry null lists the section's names into buffer, each with its terminator, and one more terminator behind the last: at most *size - 1
 * characters, not counting the last terminator, and *size becomes their number. INI_NO_ROOM: the list is cut there, in the midst
 * of a name if need be. A null buffer is INI_NO_FILE then.
 * INI_NO_FILE for a null size and a negative *size too. Default file. */
ZR_API int ini_read_string(const char *file, const char *section, const char *entry, char *buffer,
                           zr_long *size) ZR_NOEXCEPT;

/* The number at the start of an entry's value, read as convert_stol and convert_stod read it: 0 without one. INI_NO_FILE for a
 * null value. Default file. */
ZR_API int ini_read_long(const char *file, const char *section, const char *entry, zr_long *value) ZR_NOEXCEPT;
ZR_API int ini_read_double(const char *file, const char *section, const char *entry, double *value) ZR_NOEXCEPT;

/* The numbers of a value with commas between them, each as above; "1,,2," holds 1, 0 and 2. On input *count is the number of
 * elements of values, on output how many were stored, 0 on failure. INI_NO_ROOM: there are more. INI_NO_FILE for a null
 * values or count and for a negative *count. Default file. */
ZR_API int ini_read_longs(const char *file, const char *section, const char *entry, zr_long *values,
                          zr_long *count) ZR_NOEXCEPT;
ZR_API int ini_read_doubles(const char *file, const char *section, const char *entry, double *values,
                            zr_long *count) ZR_NOEXCEPT;

/* The version of a file's data, the entry "Version" of its section "_Zr_Data_Version_Info_": up to four numbers with commas
 * between them. What is missing is 0; each pointer may be null. Gives 0. Default file. */
ZR_API int ini_get_data_version(const char *file, zr_long *a, zr_long *b, zr_long *c, zr_long *d) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
