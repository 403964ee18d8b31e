/* Paths: composing them, taking them apart, testing names; the host's form of a path. C17 and C++20.
 *
 * 1. A path has at most 259 characters in code page 1252; a buffer for one holds 260 bytes.
 * 2. The separator is the backslash; a slash is taken as one in what is given, and never stands in a composed path.
 * 3. Null counts as the empty text wherever nothing else is said. No text given is kept beyond the call.
 * 4. Nothing here looks at the disk, apart from the current folder that fio_make_fullpath asks for.
 * 5. Threads: any; fio_make_fullpath depends on the current folder and drive, which belong to the whole process.
 */
#ifndef ZRCLB_PATHS_H
#define ZRCLB_PATHS_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Composes a path from name, the folder dir that it lies in, and default_dir, where dir is relative to, and writes it
 * to out[0..259], terminated. Gives out; null, with out untouched, if out is null or the path would have more than 259
 * characters on the way, which is also told by the message "Buffer zu klein".
 *
 *   default_dir   dir      name           result
 *   ""            "C:\a"   "sub/x.txt"    "C:\a\sub\x.txt"
 *   "C:\base"     "rel"    "x"            "C:\base\rel\x"
 *   "C:\base"     "D:\d"   "x"            "D:\d\x"         a drive in dir: default_dir is not used
 *   ""            "C:\a"   "D:\y.txt"     "D:\y.txt"       a drive in name: neither is
 *   ""            "C:\a"   "\y.txt"       "C:\a\y.txt"     a separator in front of name does not make it absolute
 *   ""            "C:\a"   "\\srv\sh\f"   "\\srv\sh\f"     nor anything in front of a network name, if dir is not null
 *   ""            "C:foo"  ""             "C:\foo"         a drive in dir stands for its root
 *   ""            "C:\a\"  ""             "C:\a"           no separator at the end
 *   ""            "a\"     ""             "a\"             unless two characters or fewer stand behind the drive
 *
 * Of each argument the first 260 characters count. One whose folder, base name or extension has more than 255
 * characters counts as empty. out may be one of the arguments. */
ZR_API char *fio_makepath(char *out, const char *default_dir, const char *dir, const char *name) ZR_NOEXCEPT;

/* As fio_makepath, and absolute: a path without a drive gets the current one; a relative one lies under the current
 * folder of its drive, and under that of the current drive if its own doesn't exist. No separator stands at the end but
 * a root's. "." and ".." stay as they are. The file need not exist. Gives out; out is empty where fio_makepath fails,
 * which it reports, and where a relative path has no current folder to lie under. Null for a null out. */
ZR_API char *fio_make_fullpath(char *out, const char *default_dir, const char *dir, const char *name) ZR_NOEXCEPT;

/* Takes the first 260 characters of path apart: the drive ("C:" or empty) to drive[0..2], the folder with the separator
 * at its end to dir[0..255], the last element with its extension to name[0..259], all terminated. A null output is left
 * out. All are empty if folder, base name or extension have more than 255 characters; of a name of 260 characters the
 * last one is cut. path and the outputs must not overlap. Gives 0. */
ZR_API int fio_divide(const char *path, char *drive, char *dir, char *name) ZR_NOEXCEPT;

/* The index (from 0) of the last "." of path at an index of 1 or more: ".ini" has no extension, and in "C:\a.b\file"
 * the point of the folder is found. -1 if there is none, or if the index does not fit. */
ZR_API int fio_get_extention_pos(const char *path) ZR_NOEXCEPT;

/* Whether name can name a file: 0 yes, 1 no, 2 yes, but it holds a wildcard (* or ?). No are null, the empty text, more
 * than 255 characters, and any of / : ; < > @ \ | and the quotation mark. A path is not a name. */
ZR_API int fio_test_filename(const char *name) ZR_NOEXCEPT;

/* As fio_test_filename for the name of a folder, which neither begins nor ends in a blank, a tab or a point besides. */
ZR_API int fio_test_foldername(const char *name) ZR_NOEXCEPT;

/* Writes the form in which the host knows path to out[0..size-1], terminated, and answers 1. The file need not exist.
 *
 * On Windows that is path with backslashes for slashes. On Linux "C:" is the root folder: "C:\a\b" gives "/a/b", "C:"
 * gives "/". Another drive X: exists if the environment variable ZR_DRIVE_X names a folder, which takes the place of
 * its root: "X:\a" gives "$ZR_DRIVE_X/a". What has no separator behind the drive starts at the current folder of that
 * drive, and stays relative on the current one; without a drive the current one counts. "." and ".." are resolved in
 * the text, and nothing leads above a drive's root. The case of a drive's letter doesn't matter; the bytes of names
 * pass unchanged.
 *
 * Answers 0 for a null or empty path or one of more than 259 characters, a null out, a size of 0, a drive that doesn't
 * exist, and on Linux for a name on the network (two leading separators); also if the result and its terminator need
 * more than size bytes. out then holds the empty text, unless it is null or size is 0. No report.
 * path and out must not overlap. Threads: any, as long as none changes the environment. */
ZR_API int zr_HostPath(const char *path, char *out, zr_ulong size) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
