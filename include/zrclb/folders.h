/* Whole folders and groups of files: copies, sums, temporary folders, drives, long paths in a line. C17 and C++20.
 *
 * 1. Paths have at most 259 characters; a longer one makes the function fail. A text is null-terminated, in code page
 *    1252.
 * 2. Reports are messages with the tag "Fio", and only those named here, beside "Buffer zu klein" where composing a
 *    path fails, and the errors of the system's temporary names. All other failures show in the result alone.
 * 3. Nothing is kept between calls. Threads: any; relative paths race with changes of the current folder by other
 *    threads.
 */
#ifndef ZRCLB_FOLDERS_H
#define ZRCLB_FOLDERS_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Values of `operation` of fio_group_operation. */
#define FIO_GROUP_COPY 0
#define FIO_GROUP_MOVE 1
#define FIO_GROUP_DELETE 2

/* Copies, moves or deletes files and whole folders, through the shell where there is one.
 *
 * from_dir, from_names  the sources: an array of names that ends with a null, each composed with from_dir (null counts
 *                       as empty) as by fio_makepath; "*" and "?" may stand in the last element
 * to_dir, to_names      the targets, in the same way; null to_names takes the names of the sources. Not read for a
 *                       deletion. One target for several sources is the folder they go to, and so is one that is a
 *                       folder already; otherwise there is one for each source.
 * operation             FIO_GROUP_COPY, _MOVE or _DELETE
 * files_only            not 0: wildcards find no folders
 * progress_title        title of the shell's progress box; null: no box. On Linux there is none
 * owner                 window that the box belongs to, or null
 *
 * 0 done; 1 aborted by the user, or by the shell for something that was left out (on Linux never); 2 failed. Nobody is
 * asked: existing targets are overwritten, missing folders of targets are made. A failure ends the operation; what was
 * done before stays. Where there is no shell, links are copied, moved and deleted as links, and a write-protected
 * source is not deleted. Messages, with result 2: "Bad fioOperation"; "pFrom == NIL!" for null from_names; "Wrong
 * 'from' names" and "Wrong 'to' names" for a path that gets too long, and without memory. A shell's box may run a
 * message loop in this thread. The arrays and texts remain the caller's. */
ZR_API int fio_group_operation(const char *from_dir, const char **from_names, const char *to_dir, const char **to_names,
                               int operation, int files_only, const char *progress_title, zr_window owner) ZR_NOEXCEPT;

/* Makes a new folder in the system's temporary folder and writes its path to buffer[0..size-1]: 1, or 0 with the buffer
 * untouched. The folder is the caller's to delete. If no name is free this takes up to 5 seconds. Messages: "Can't
 * receive temporary file name." for each of up to 50 tries that gets none, behind the error of fio_tmpnam; "Puffer zu
 * klein." if the path doesn't fit, in which case a folder may have been made and stays. Null buffer: 0, and no folder
 * is made. */
ZR_API int fio_CreateTempDirectory(char *buffer, int size) ZR_NOEXCEPT;

/* Deletes the folder dir with all that lies in it, if it lies in the system's temporary folder, which it must name
 * exactly as the system does: 1, or 0 if it is still there, or wasn't. What is read-only in it stays, and so does dir
 * then. The message "Directory is not a temporary directory! ", with dir as its second text, refuses any other, the
 * temporary folder itself, and a path that leaves it by "..". The message "GetTempPath failed": the system knows no
 * such folder. Null: 0. */
ZR_API int fio_DeleteTempDirectory(const char *dir) ZR_NOEXCEPT;

/* Copies all that lies in from_dir into the folder to_dir, which must exist: 1, or 0. A folder of the same name in
 * to_dir makes it fail; the folders come first, so no file of that level is copied then. Files overwrite those of the
 * same name; one that can't be copied is passed over and doesn't count. What was copied before a failure stays. Links
 * are followed; a ring of links fails, and so does a copy of a folder into one that lies in it. A null is a failure,
 * and so is too little memory. */
ZR_API int fio_CopyDirectory(const char *to_dir, const char *from_dir) ZR_NOEXCEPT;

/* Clears the system's attribute bits `attributes` (1 read-only, 2 hidden, 4 system, 32 archive) of path and, if that is
 * a folder, of all below it: 1, or 0 if something could not be read or changed; the rest is changed all the same. Links
 * to folders are not entered. On Linux read-only alone can be cleared, which gives the owner the right to write; other
 * bits make no difference. Null: 0. */
ZR_API int fio_RemoveFileAttributes(const char *path, zr_ulong attributes) ZR_NOEXCEPT;

/* Sums up a folder; recursive not 0: with all folders below it. 1, or 0, with zeros, if dir can't be read. A subfolder
 * that can't be read counts as empty, and a link to a folder is one that is not entered. Any output may be null.
 *
 * *size     bytes of the files; of each file the low 32 bits of its size count
 * *folders  number of folders, without dir itself
 * *files    number of all other entries
 * *items    both together */
ZR_API int fio_GetFolderInfo(const char *dir, int recursive, double *size, zr_long *folders, zr_long *files,
                             zr_long *items) ZR_NOEXCEPT;

/* The size alone, reckoned as above; 0.0 for a folder that can't be read. */
ZR_API double fio_GetFolderSize(const char *dir, int recursive) ZR_NOEXCEPT;

/* The numbers of entries in dir itself; the result is their sum. All are 0 for a folder that can't be read. Either
 * output may be null. */
ZR_API zr_long fio_GetFolderItemsCount(const char *dir, zr_long *folders, zr_long *files) ZR_NOEXCEPT;

/* Bytes free to the present user on a drive, 0.0 on failure. path: a drive's letter alone, or a folder, of which 255
 * characters count; null or empty is the current drive. A success writes "\nGetDiskFreeSpaceEx:\n" to the standard
 * output, on systems that know only the older call "\nGetDiskFreeSpace:\n". */
ZR_API double fio_getdiskfree(const char *path) ZR_NOEXCEPT;

/* Kind of the drive that path lies on: 0 unknown or null, 1 no root folder, 2 removable, 3 fixed, 4 remote (all names
 * on the network), 5 CD-ROM, 6 RAM disk. What the system takes for no root folder is asked for again by its drive
 * alone. */
ZR_API int fio_GetDriveType(const char *path) ZR_NOEXCEPT;

/* Writes path to out[0..width-1], cut down to at most width - 1 characters by "..." in front of its last separator; a
 * name that is too long for that is cut at its end. flags have no effect. 1, or 0 for a null pointer. out and path must
 * not overlap. */
ZR_API int fio_CompactPath(char *out, const char *path, unsigned width, zr_ulong flags) ZR_NOEXCEPT;

/* Breaks path into lines of at most width characters, 1..255, joined by a line feed each, and writes them to
 * out[0..out_size-1]. A line ends behind a backslash. Of the last line at most as many characters are kept as the line
 * before it has; what is longer loses its end.
 *
 * 0; -1 with "fio_WrapPath: falsche Parameter" for a null pointer, a size or width below 1, a width above 255; -2 with
 * "fio_WrapPath: Buffer zu klein"; -3 with "fio_WrapPath: Umbruch nicht m<o umlaut>glich" if a line has no backslash.
 * With -2 and -3 from the middle of a path out holds the lines before. out and path must not overlap. */
ZR_API int fio_WrapPath(char *out, const char *path, int out_size, int width) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
