/* Files and folders by name: tests, verbs, listing, current folder and hosts. C17 and C++20.
 *
 * 1. dir and name make a path as fio_makepath("", dir, name) composes it: a name with a drive stands alone, any other
 *    lies under dir. Either may be null or empty. Paths have at most 259 characters; a longer one is reported as
 *    fio_makepath does it, the message "Buffer zu klein", and the function fails. A drive that doesn't exist fails,
 *    too.
 * 2. Failures show in the result; where nothing else is said nothing is reported.
 * 3. What is read-only is neither removed nor overwritten. On Linux that is a file or folder without any write
 *    permission, whoever asks. Links are followed, except by what removes or renames a name.
 * 4. A host is a drive: the first character of a text, of which leading blanks don't count, as "d", "D:" or "D:\x".
 * 5. Threads: any. The current drive and the current folder belong to the process; what asks for them, changes them or
 *    takes relative paths races with changes by other threads.
 */
#ifndef ZRCLB_FILES_H
#define ZRCLB_FILES_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Bits of fio_dirent.flags, and of the mask of fio_listdir. Not the system's attribute bits. */
#define FIO_IS_FILE 1      /* no folder */
#define FIO_IS_DIR 2       /* a folder */
#define FIO_IS_READONLY 8  /* read-only; on Linux nobody may write */
#define FIO_IS_HIDDEN 64   /* hidden; on Linux the name begins with a dot */
#define FIO_IS_SYSTEM 128  /* system file; never on Linux */
#define FIO_IS_ARCHIVE 512 /* changed since the last backup; never on Linux */

/* An entry of a folder. */
typedef struct fio_dirent {
    char name[256]; /* without its folder, terminated */
    uint32_t flags; /* FIO_IS_ bits */
    uint32_t size;  /* bytes; 0 for a folder, 4294967295 for a file of that size and more */
    int32_t mtime;  /* last write, seconds since 1970 as clock_makevalue gives them; the start of 1980 if unknown */
} fio_dirent;

/* 1 if the path names a file or a folder, else 0. */
ZR_API int fio_exist(const char *dir, const char *name) ZR_NOEXCEPT;

/* 1 if the path passes the standard access test, else 0. mode: 0 exists, 2 may be written, 4 may be read, 6 both. A
 * folder that exists passes them all; another mode fails. */
ZR_API int fio_access(const char *dir, const char *name, int mode) ZR_NOEXCEPT;

/* 1 if path, taken as it stands, names a folder, else 0. */
ZR_API int fio_ispath(const char *path) ZR_NOEXCEPT;

/* Removes a file: 0, or -1 for a folder, a read-only file and what isn't there. */
ZR_API int fio_purge(const char *dir, const char *name) ZR_NOEXCEPT;

/* Copies a file, with the time of its last write, over a target of that name if there is one: 0, or the system's error
 * code, in the desktop's numbering: 2 no such file, 3 no such folder or drive, 5 a folder, or a target that is
 * read-only, on Windows also one that is hidden, 32 onto itself. */
ZR_API int fio_copy(const char *from_dir, const char *from_name, const char *to_dir, const char *to_name) ZR_NOEXCEPT;

/* Gives a file or a folder another path, which nothing may bear yet: 0, or the system's error code, as above; 183 if
 * the target exists. A file moves to another drive, a folder doesn't. */
ZR_API int fio_move(const char *from_dir, const char *from_name, const char *to_dir, const char *to_name) ZR_NOEXCEPT;

/* Renames a file or a folder within dir and tells the shell: 0, or -1, also if the new name is taken. */
ZR_API int fio_rename(const char *dir, const char *old_name, const char *new_name) ZR_NOEXCEPT;

/* The same as an operation of the shell, which shows its progress but asks nothing: 0, or -1, also if the user ended
 * it. */
ZR_API int fio_rename_ex(const char *dir, const char *old_name, const char *new_name) ZR_NOEXCEPT;

/* Makes a new, empty file "zr_<hexadecimal number>.tmp" in the system's temporary folder, which is made if need be, and
 * writes its path to buffer[0..size-1], cut if it doesn't fit. Gives buffer; the file is the caller's. Null, with an
 * empty buffer, for a size below 1 (nothing is made then) and for the reports under "Fio": the message "NULL-Parameter"
 * for a null buffer, the errors "Failed GetTempPath call" (the system knows no such folder) and "Failed GetTempFileName
 * call" (no file can be made). */
ZR_API char *fio_tmpnam(char *buffer, int size) ZR_NOEXCEPT;

/* Makes the folder dir, the one above it must exist, and tells the shell: 0 or -1. */
ZR_API int fio_mkdir(const char *dir) ZR_NOEXCEPT;

/* Makes the folder path, absolute and taken as it stands, and all that is missing above it: 0, or -1, also if path
 * exists. */
ZR_API int fio_CreatePath(const char *path) ZR_NOEXCEPT;

/* Removes an empty folder: 0 or -1. */
ZR_API int fio_rmdir(const char *dir) ZR_NOEXCEPT;

/* Removes a folder with all that lies in it: 0, or -1 if the folder is still there, or was not; what could be removed
 * is gone. A link is removed as a link, what it leads to stays. Folders whose path has 255 characters or more stay. */
ZR_API int fio_rmdir_ex(const char *dir) ZR_NOEXCEPT;

/* Makes a folder current on its drive, and the drive current: 0 or -1. An empty path is 0 and changes nothing. */
ZR_API int fio_chdir(const char *dir) ZR_NOEXCEPT;

/* The current folder with its drive ("C:\home") in buffer[0..size-1], and buffer. Null if it doesn't fit, or has been
 * removed; buffer is then empty unless it is null or size is below 1. */
ZR_API char *fio_getcwd(char *buffer, int size) ZR_NOEXCEPT;

/* Lists the folder dir, taken as it stands; null or empty is the current one.
 *
 * pattern    with "*" and "?", matched without regard to case; null or empty is "*.*", all
 * mask       0 keeps all entries, else those whose flags share a bit with it. "." and ".." are entries like any others
 * *entries   an array in the order of names, to be given back by heap_free or heap_smart_free; null if there is
 *            none
 * *count     its number of entries
 *
 * 0, also if no entry was kept, or if there was no memory to begin with. -1, with null and 0 as outputs, if nothing
 * matches the pattern, the folder can't be read, memory runs out on the way, or entries or count are null. */
ZR_API int fio_listdir(const char *dir, const char *pattern, unsigned mask, fio_dirent **entries,
                       int *count) ZR_NOEXCEPT;

/* The current drive as "C:" in buffer[0..size-1]: 0. A size of 2 holds the letter alone. -1, with buffer as it was, for
 * a null buffer, a size below 2, and while no drive is current. */
ZR_API int fio_gethostname(char *buffer, int size) ZR_NOEXCEPT;

/* Makes a drive current: 0, or -1 if there is no such drive. Null or blank does nothing: 0. */
ZR_API int fio_sethostname(const char *host) ZR_NOEXCEPT;

/* 1 if there is such a drive, else 0. Null or blank: 1. The drive is current for a moment. */
ZR_API int fio_host_exist(const char *host) ZR_NOEXCEPT;

/* The current folder of a drive, as fio_getcwd; null or blank is the current drive, and so is one that doesn't exist.
 * Gives buffer, empty where fio_getcwd fails. The drive is current for a moment. */
ZR_API char *fio_get_host_cwd(const char *host, char *buffer, int size) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
