/* Settings files with sections, read and written one value at a time. C17 and C++20.
 *
 * 1. Nothing is kept between two calls: each read scans the file from its start and stops at the value. The format is
 *    told in docs/ini-format.md. Texts are zero-terminated bytes in code page 1252.
 * 2. file is a path of at most 255 characters. Where "default file" is said, null and empty mean the settings file of
 *    the installation; elsewhere they name no file.
 * 3. section and entry are compared byte by byte. A null section, or one of blanks only, is the part of the file in
 *    front of the first header. Names in the file are trimmed, those given are not: " a" is never found.
 * 4. The first of several sections of one name counts, and the first of several entries.
 * 5. Reads answer one of the INI_ codes and, if that is not INI_DONE, leave the outputs alone, unless said otherwise.
 * 6. A line of the section without "=" is passed over and reported, tag "Ini": the error "Incorrect entry's format.
 *    '=' is not found. File below:" and an error with file, section and entry as its texts.
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

/* The value of an entry, all that follows the first "=" of its line up to the last byte above 32: "a = 1" has the
 * value " 1". On input *size is the longest text that may be stored, buffer[0..*size]. INI_DONE: *size is the text's
 * length. INI_NO_ROOM: the first *size characters are in buffer, and *size stays. A null buffer only gives the
 * length. entry null lists the section's names into buffer, each with its terminator, and one more terminator behind
 * the last: at most *size - 1 characters, not counting the last terminator, and *size becomes their number.
 * INI_NO_ROOM: the list is cut there, in the midst of a name if need be. A null buffer is INI_NO_FILE then.
 * INI_NO_FILE for a null size and a negative *size too. Default file. */
ZR_API int ini_read_string(const char *file, const char *section, const char *entry, char *buffer,
                           zr_long *size) ZR_NOEXCEPT;

/* The path that an entry names, as zr_BuildFullPath makes it: behind a path variable, or relative to the folder of the
 * file. Of the value at most 260 characters are read. On input *size is the size of buffer, on output the length of the
 * path. A path of just *size characters loses its last one. INI_NO_ROOM: the value or the path is longer. INI_NO_FILE for
 * a null or negative *size too. Default file. Reports: those of zr_BuildFullPath. */
ZR_API int ini_read_path(const char *file, const char *section, const char *entry, char *buffer,
                         zr_long *size) ZR_NOEXCEPT;

/* The number at the start of an entry's value, read as convert_stol and convert_stod read it: 0 without one.
 * INI_NO_FILE for a null value. Default file. */
ZR_API int ini_read_long(const char *file, const char *section, const char *entry, zr_long *value) ZR_NOEXCEPT;
ZR_API int ini_read_double(const char *file, const char *section, const char *entry, double *value) ZR_NOEXCEPT;

/* The numbers of a value with commas between them, each as above; "1,,2," holds 1, 0 and 2. On input *count is the
 * number of elements of values, on output how many were stored, 0 on failure. INI_NO_ROOM: there are more.
 * INI_NO_FILE for a null values or count and for a negative *count. Default file. */
ZR_API int ini_read_longs(const char *file, const char *section, const char *entry, zr_long *values,
                          zr_long *count) ZR_NOEXCEPT;
ZR_API int ini_read_doubles(const char *file, const char *section, const char *entry, double *values,
                            zr_long *count) ZR_NOEXCEPT;

/* The version of a file's data, the entry "Version" of its section "_Zr_Data_Version_Info_": up to four numbers with
 * commas between them. What is missing is 0; each pointer may be null. Gives 0. Default file. */
ZR_API int ini_get_data_version(const char *file, zr_long *a, zr_long *b, zr_long *c, zr_long *d) ZR_NOEXCEPT;

/* Reads the pairs of beep values, entries "Error", "Warning" and "Tick" of section "Beep" of the default file, and gives what
 * ini_read_longs gives for the last one. What is missing stays as it was, at first 500,700, 100,700 and 1,0. zr_beep and
 * zr_tone do not heed them. */
ZR_API int ini_initialize_clib(void) ZR_NOEXCEPT;

/* ---- Writing --------------------------------------------------------------------------------------------------- */

/* The file is written anew into a temporary one, which is then copied over it in place. What stands behind the change
 * stays as it is; in front of it lines lose blanks at both ends, blank lines and texts behind a header's "]" go, and
 * a blank line stands in front of each header; in the section itself names lose the blanks in front of "=".
 * docs/ini-format.md tells it with examples. Nothing has changed where the result is INI_NO_FILE: no such file where
 * one is needed, one that can't be read, no temporary file, or no room for it. Other failures are the system's error
 * codes as fio_copy gives them, 5 for a file that is read-only; where the file could not be given the room it needs,
 * it is as it was. A line without "=" in the section, in front of the change, is lost and reported: the error
 * "Incorrect entry's format. '=' is not found.", tag "Ini". Reports of others: those of fio_tmpnam.
 */

/* Sets an entry's value, or adds the entry at the end of its section, a missing section at the end of the file, a
 * missing file. A null value counts as empty; a null entry is INI_NO_FILE. Default file. */
ZR_API int ini_write_string(const char *file, const char *section, const char *entry, const char *value) ZR_NOEXCEPT;

/* Stores a path in a portable form. Where the entry has a value of at most 260 characters, that value's form is kept:
 * relative to the folder of the file if it begins with ".", else behind the path variable that it begins with, else the
 * path as it is. A new entry gets the form behind a path variable that leaves the fewest folders, else the relative one,
 * neither of which may go up, else the path as it is. Where file is a name without a folder nothing is relative to it: a new
 * entry then takes the form behind a variable also if it goes up. INI_NO_FILE without the file too, which is not made.
 * Default file. */
ZR_API int ini_write_path(const char *file, const char *section, const char *entry, const char *value) ZR_NOEXCEPT;

/* The same with the number as text: "%ld", and "%lf", which keeps six decimals and no more. Default file. */
ZR_API int ini_write_long(const char *file, const char *section, const char *entry, zr_long value) ZR_NOEXCEPT;
ZR_API int ini_write_double(const char *file, const char *section, const char *entry, double value) ZR_NOEXCEPT;

/* The same with values[0..count-1], a comma between two of them, doubles as "%lg". A list that with a comma at its
 * end has more than 2047 characters gives INI_NO_ROOM and calls zr_end; nothing is written. A count below 1 writes an
 * empty value. INI_NO_FILE for null values otherwise. Default file. */
ZR_API int ini_write_longs(const char *file, const char *section, const char *entry, const zr_long *values,
                           zr_long count) ZR_NOEXCEPT;
ZR_API int ini_write_doubles(const char *file, const char *section, const char *entry, const double *values,
                             zr_long count) ZR_NOEXCEPT;

/* Writes the four numbers of the version of a file's data. */
ZR_API int ini_set_data_version(const char *file, zr_long a, zr_long b, zr_long c, zr_long d) ZR_NOEXCEPT;

/* Both directions of one routine: write not 0 is the function that writes, 0 the one that reads. A null value, values
 * or count is INI_NO_ROOM in both. */
ZR_API int ini_rw_string(int write, const char *file, const char *section, const char *entry, char *buffer,
                         zr_long *size) ZR_NOEXCEPT;
ZR_API int ini_rw_long(int write, const char *file, const char *section, const char *entry, zr_long *value) ZR_NOEXCEPT;
ZR_API int ini_rw_double(int write, const char *file, const char *section, const char *entry,
                         double *value) ZR_NOEXCEPT;
ZR_API int ini_rw_longs(int write, const char *file, const char *section, const char *entry, zr_long *values,
                        zr_long *count) ZR_NOEXCEPT;
ZR_API int ini_rw_doubles(int write, const char *file, const char *section, const char *entry, double *values,
                          zr_long *count) ZR_NOEXCEPT;

/* ---- Removing and renaming ------------------------------------------------------------------------------------- */

/* The file must be given and be there, else INI_NO_FILE. It is written anew also where nothing was found. */

/* INI_DONE, INI_NO_SECTION, INI_NO_ENTRY; whether the copy over the file succeeded isn't told. A null entry is
 * INI_NO_FILE. */
ZR_API int ini_delete_entry(const char *file, const char *section, const char *entry) ZR_NOEXCEPT;

/* Removes a section with its comments; of the lines in front of the first header comments stay. INI_DONE,
 * INI_NO_SECTION. */
ZR_API int ini_delete_section(const char *file, const char *section) ZR_NOEXCEPT;

/* Of a new name the first 79 characters count, trimmed; 5 if none are left. Of the sections' names too. A null or
 * blank old section is the lines in front of the first header, which get one of their own behind the comments that
 * they begin with. INI_NO_SECTION, INI_NO_ENTRY; a null old entry is INI_NO_FILE. Two of one name may come of it. */
ZR_API int ini_rename_section(const char *file, const char *old_section, const char *new_section) ZR_NOEXCEPT;
ZR_API int ini_rename_entry(const char *file, const char *section, const char *old_entry,
                            const char *new_entry) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
