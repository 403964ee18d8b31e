/* Settings files with sections, held in memory between open and close. C17 and C++20.
 *
 * 1. mini_open loads the whole file; reads and writes then work in memory, and mini_update_file or mini_close write the
 *    file anew. The format is that of the ini_ functions (docs/ini-format.md), but comments and blank lines are not
 *    kept. What others write into the file meanwhile is not seen, and goes at the next update.
 * 2. Texts are zero-terminated bytes in code page 1252. Names are compared byte by byte.
 * 3. Of a section's name the first 255 characters count, trimmed of bytes of 32 and below; null and blank mean the part
 *    of the file in front of the first header, which is a section of empty name, the first of all. An entry's name is
 *    taken as it is given, unless said otherwise.
 * 4. The first of several sections of one name counts, and the first of several entries; an update writes them all.
 * 5. Functions answer one of the INI_ codes of ini.h or the MINI_ codes below, unless said otherwise. A null handle is
 *    INI_NO_FILE. Reads leave their outputs alone if the result is not INI_DONE, unless said otherwise.
 * 6. No memory ends the process: zr_exit with "Insufficient of memory.". Reports carry the tag "Mini".
 * 7. Threads: a handle belongs to one thread at a time; different ones may be used side by side. The last of two
 *    processes that update a file wins.
 */
#ifndef ZRCLB_MINI_H
#define ZRCLB_MINI_H

#include <stdint.h>

#include <zrclb/ini.h>
#include <zrclb/list.h>
#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* More results. */
#define MINI_IS_READONLY 4 /* refused: the handle is for reading only */
#define MINI_BLANK_NAME 5  /* the new name is blank */

/* Bits of the flags of a handle. */
enum {
    MINI_ALL_LOADED = 1, /* the lists hold the whole file; always set by mini_open */
    MINI_PRELOAD = 2,    /* all sections are loaded when it is opened; always set by mini_open */
    MINI_READONLY = 4    /* the file must exist and is never written by an update */
};

/* The records behind a handle. They are the library's: opaque to callers, and changed through the functions only. */
typedef struct mini_entry {
    list_element *prev;
    list_element *next;
    char *name;  /* trimmed */
    char *value; /* as behind the "=", with its leading blanks */
} mini_entry;

typedef struct mini_section {
    list_element *prev;
    list_element *next;
    char *name;              /* trimmed; empty for the lines in front of the first header */
    list_descriptor entries; /* of mini_entry, in the order of the file */
    int32_t state;           /* bit 1: an entry was written since the section was loaded */
} mini_section;

typedef struct mini_file {
    char *dir;                /* the file's folder; with its trailing separator if it came from a path */
    char *name;               /* the file's name with extension */
    int32_t flags;            /* MINI_ bits */
    list_descriptor sections; /* of mini_section, in the order of the file */
} mini_file;

/* ---- Open and close --------------------------------------------------------------------------------------------- */

/* Loads the file `name` and gives a handle. The folder is that in `name`, else the first 255 characters of `dir`, else
 * the current one. Without a file name in `name`, or with one that fio_divide finds too long, the settings file of the
 * installation is taken, folder and all; if there is none, the error "zr_suche_datei did not find ZRINIFILE" is reported
 * and the handle has no file. flags: 0 or MINI_READONLY.
 * A file that can't be opened is taken for an empty one, unless MINI_READONLY is set: null then. Null too where memory
 * does not even suffice for the handle. A line without "=" is passed over with the error "Incorrect entry's format. '=' is
 * not found. Dir,File=", folder, name; a header without a name, and all lines up to the next one, with the error
 * "Section's name is not defined. Description is ignored". A file whose reading fails on the way is held as far as it
 * was read, and no update writes over it. */
ZR_API mini_file *mini_open(const char *dir, const char *name, zr_long flags) ZR_NOEXCEPT;

/* Updates the file, changed or not, unless the handle is for reading only, frees the handle and sets *handle to null. Gives
 * what mini_update_file gives; 1 for a handle for reading only; 0 for a null one. */
ZR_API int mini_close(mini_file **handle) ZR_NOEXCEPT;

/* The same without writing: 1, or 0 for a null handle. */
ZR_API int mini_close_ex(mini_file **handle) ZR_NOEXCEPT;

/* Writes all that is in memory to a temporary file and copies that over the file in place: 1, else 0, also for null and a
 * handle for reading only. The file's permissions stay. If the temporary file can't be written whole, an existing file
 * stays as it was; a missing one comes to be with what was written. An entry's line is cut behind 2047 characters. What
 * is in memory stays as it is. */
ZR_API int mini_update_file(mini_file *handle) ZR_NOEXCEPT;

/* Forgets all sections, written or not. An update then empties the file. */
ZR_API int mini_unload_all_sections(mini_file *handle) ZR_NOEXCEPT;

/* Forgets a section whose name is just `section`: INI_DONE, INI_NO_SECTION (also for null). An update then removes it
 * from the file; mini_write_string and mini_get_string bring it back from there, behind all others. */
ZR_API int mini_unload_one_section(mini_file *handle, const char *section) ZR_NOEXCEPT;

/* ---- Reading ---------------------------------------------------------------------------------------------------- */

/* The value of an entry, as ini_read_string gives it, cut with INI_NO_ROOM; so is the list of names for a null entry. A
 * null size is INI_NO_ROOM, a negative *size INI_NO_FILE. With a null buffer nothing is stored, and *size becomes the
 * length: at most 9999, with INI_NO_ROOM if it is more. */
ZR_API int mini_read_string(mini_file *handle, const char *section, const char *entry, char *buffer,
                            zr_long *size) ZR_NOEXCEPT;

/* The number at the start of a value of at most 2047 characters, as convert_stol and convert_stod read it. A null value is
 * INI_NO_ROOM, a null entry INI_NO_ENTRY. */
ZR_API int mini_read_long(mini_file *handle, const char *section, const char *entry, zr_long *value) ZR_NOEXCEPT;
ZR_API int mini_read_double(mini_file *handle, const char *section, const char *entry, double *value) ZR_NOEXCEPT;

/* The numbers of a list, as ini_read_longs and ini_read_doubles read them, but a failure leaves *count as it was. Null
 * values or count are INI_NO_ROOM, a null entry INI_NO_ENTRY, a negative *count INI_NO_FILE. */
ZR_API int mini_read_longs(mini_file *handle, const char *section, const char *entry, zr_long *values,
                           zr_long *count) ZR_NOEXCEPT;
ZR_API int mini_read_doubles(mini_file *handle, const char *section, const char *entry, double *values,
                             zr_long *count) ZR_NOEXCEPT;

/* A path, as ini_read_path reads it, relative ones under the handle's folder. A null size is INI_NO_ROOM, a negative *size
 * INI_NO_FILE, a null entry INI_NO_ENTRY. */
ZR_API int mini_read_path(mini_file *handle, const char *section, const char *entry, char *buffer,
                          zr_long *size) ZR_NOEXCEPT;

/* The value of an entry, never null.
 * With a buffer: in it, as mini_read_string gives it, and empty where that fails; gives buffer.
 * Without: the text in memory, valid until the entry is changed, or its section unloaded, or the handle closed. The
 * name of the section must be exact, and one that isn't in memory is looked for in the file. Empty where there is none,
 * and for any null. size doesn't count. */
ZR_API const char *mini_get_string(mini_file *handle, const char *section, const char *entry, char *buffer,
                                   zr_long *size) ZR_NOEXCEPT;

/* ---- Writing ----------------------------------------------------------------------------------------------------
 *
 * In memory, also with a handle for reading only. A null or blank entry is INI_NO_ENTRY, a null value or array INI_NO_ROOM.
 */

/* Sets the value of an entry, whose name is trimmed first. A new entry goes behind the last of its section; a section that
 * isn't in memory is looked for in the file, else it is new and goes behind the last, that of empty name in front
 * of the first. A new section stays also where a blank entry is refused. */
ZR_API int mini_write_string(mini_file *handle, const char *section, const char *entry, const char *value) ZR_NOEXCEPT;

/* The same with a number as text, "%ld" and "%lg". */
ZR_API int mini_write_long(mini_file *handle, const char *section, const char *entry, zr_long value) ZR_NOEXCEPT;
ZR_API int mini_write_double(mini_file *handle, const char *section, const char *entry, double value) ZR_NOEXCEPT;

/* The same with values[0..count-1], a comma between two of them. A list that with a comma at its end has more than 2047
 * characters gives INI_NO_ROOM and calls zr_end; nothing is written. A count below 1 writes an empty value. */
ZR_API int mini_write_longs(mini_file *handle, const char *section, const char *entry, const zr_long *values,
                            zr_long count) ZR_NOEXCEPT;
ZR_API int mini_write_doubles(mini_file *handle, const char *section, const char *entry, const double *values,
                              zr_long count) ZR_NOEXCEPT;

/* The same with a path in the form that ini_write_path gives it, with the handle's folder as that of the file. */
ZR_API int mini_write_path(mini_file *handle, const char *section, const char *entry, const char *value) ZR_NOEXCEPT;

/* Both directions of one routine: write not 0 is the function that writes, 0 the one that reads. A null value, values or
 * count is INI_NO_ROOM in both. */
ZR_API int mini_rw_string(int write, mini_file *handle, const char *section, const char *entry, char *buffer,
                          zr_long *size) ZR_NOEXCEPT;
ZR_API int mini_rw_long(int write, mini_file *handle, const char *section, const char *entry,
                        zr_long *value) ZR_NOEXCEPT;
ZR_API int mini_rw_double(int write, mini_file *handle, const char *section, const char *entry,
                          double *value) ZR_NOEXCEPT;
ZR_API int mini_rw_longs(int write, mini_file *handle, const char *section, const char *entry, zr_long *values,
                         zr_long *count) ZR_NOEXCEPT;
ZR_API int mini_rw_doubles(int write, mini_file *handle, const char *section, const char *entry, double *values,
                           zr_long *count) ZR_NOEXCEPT;

/* ---- Removing and renaming ---------------------------------------------------------------------------------------
 *
 * What is in memory changes there, and the file at the next update; sections change in the file at once too, whatever
 * comes of that. A section that isn't in memory: what the ini_ function of like name does and answers for the file. A
 * null name to remove or rename is INI_NO_ENTRY; a handle for reading only is MINI_IS_READONLY.
 */
ZR_API int mini_delete_entry(mini_file *handle, const char *section, const char *entry) ZR_NOEXCEPT;
ZR_API int mini_delete_section(mini_file *handle, const char *section) ZR_NOEXCEPT;

/* Of a new name the first 255 characters count, trimmed; MINI_BLANK_NAME if none are left. In the file 79 count. */
ZR_API int mini_rename_entry(mini_file *handle, const char *section, const char *old_entry,
                             const char *new_entry) ZR_NOEXCEPT;
ZR_API int mini_rename_section(mini_file *handle, const char *old_section, const char *new_section) ZR_NOEXCEPT;

/* ---- Listing ---------------------------------------------------------------------------------------------------- */

/* The names of all sections, or of a section's entries, in their order with delimiter between them, in
 * buffer[0..size-1], which without any stays as it was. INI_NO_ROOM if they don't fit: those in front of the first that
 * doesn't are there. INI_NO_ROOM for a null buffer or section too; INI_NO_SECTION. The section of empty name, which every
 * loaded file has, makes the text begin with delimiter. */
ZR_API int mini_get_sections(mini_file *handle, char *buffer, zr_long size, char delimiter) ZR_NOEXCEPT;
ZR_API int mini_get_entries(mini_file *handle, const char *section, char *buffer, zr_long size,
                            char delimiter) ZR_NOEXCEPT;

/* Whether a section whose name is just `section` is in memory: 1 or 0; INI_NO_ROOM for null. */
ZR_API int mini_section_exists(mini_file *handle, const char *section) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
