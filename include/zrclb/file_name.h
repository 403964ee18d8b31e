/* The file name value through plain functions on handles. C17 and C++20.

   A file name value holds a path taken apart into drive, directory, name and extension; each part is set, tested and
   replaced on its own. What the parts are and what each operation does is told with the class CZrFileName in
   <zrclb/file_name.hpp>, whose members these functions reach.

   Conventions
    1. Handles. A handle comes from zrFileCreateFileHandle and is alive until zrFileFreeFileHandle. A handle of 0 gives
       0 or null (zrFileGetError: 5) after the error report "NAME : Handle falsch", NAME being the function's; any other
       value that is no live handle must not be passed.
    2. Texts are zero-terminated bytes in code page 1252. A null text counts as empty, unless a function says otherwise.
       Texts given are copied, and may be results of the same handle.
    3. Texts got belong to the handle, at most until it is freed, and are never null for a live one. A built one (path,
       compact path, name with extension, directory with drive) stays as it is until that function is called again, the
       path also until zrFileGetError is; a stored part follows its setters.
    4. Setters give 1, or 0 if what they were given is invalid. An invalid part is stored all the same, cut to its room.
    5. Reports carry the tag ZrFileName.
    6. Threads: a handle belongs to one thread at a time, reads included. Nothing throws. */
#ifndef ZRCLB_FILE_NAME_H
#define ZRCLB_FILE_NAME_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What zrFileGetError tells: the first fault in the order name, extension, directory, drive, path. */
typedef enum ZR_FILE_NAME_ERROR {
    ZR_FILE_NAME_OK = 0,        /* no fault */
    ZR_FILE_NAME_BAD_NAME = 1,  /* the name was set and is invalid */
    ZR_FILE_NAME_BAD_EXT = 2,   /* the extension was set and is invalid */
    ZR_FILE_NAME_BAD_DIR = 3,   /* the directory was set and is invalid */
    ZR_FILE_NAME_BAD_DRIVE = 4, /* the drive was set and is invalid */
    ZR_FILE_NAME_BAD_PATH = 5   /* all parts pass, but no path can be built, as for a fresh value; or a null handle */
} ZR_FILE_NAME_ERROR;

/* A new value, with the parts that are not empty: name, which may be a whole path, first, then ext, dir and drive. An
   ext takes the place of the one that name brought along, which then belongs to the name: "a.b" with "c" is "a.b.c".
   Bad parts show in zrFileGetError. The caller frees the handle. Without memory 0, after the error report
   "zrFileCreateFileHandle: Fehler beim Erzeugen von File-Handle". */
ZR_API zr_value zrFileCreateFileHandle(const char *name, const char *ext, const char *dir,
                                       const char *drive) ZR_NOEXCEPT;

/* Ends the value with all texts that were got from it. 0 does nothing, without a report. */
ZR_API void zrFileFreeFileHandle(zr_value handle) ZR_NOEXCEPT;

/* The name; for a with_ext of 1 with dot and extension, if it has both. Empty if these exceed 259 characters. */
ZR_API const char *zrFileGetFileName(zr_value handle, int with_ext) ZR_NOEXCEPT;

/* The extension without its dot. */
ZR_API const char *zrFileGetExt(zr_value handle) ZR_NOEXCEPT;

/* The directory, with a backslash at its end; for a with_drive of 1 behind its drive, if it has one, and then without
   that backslash unless it is a root. */
ZR_API const char *zrFileGetDir(zr_value handle, int with_drive) ZR_NOEXCEPT;

/* The drive as "C:". */
ZR_API const char *zrFileGetDrive(zr_value handle) ZR_NOEXCEPT;

/* The whole path, empty where none can be built (reports: CZrFileName::GetPath). */
ZR_API const char *zrFileGetPath(zr_value handle) ZR_NOEXCEPT;

/* The path shortened by an ellipsis to at most width bytes, terminator counted. */
ZR_API const char *zrFileGetCompactPath(zr_value handle, zr_ulong width) ZR_NOEXCEPT;

/* The path as seen from the folder (kind 16) or file (kind 128) `from`, or the empty text (reports:
   CZrFileName::GetRelativePath). */
ZR_API const char *zrFileGetRelativePath(zr_value handle, const char *from, int kind) ZR_NOEXCEPT;

/* The full path, with a path variable in front of the directory replaced by its folder. */
ZR_API const char *zrFileGetAbsolutePath(zr_value handle) ZR_NOEXCEPT;

/* Takes the parts that name, a name or a whole path, holds; parts that it lacks stay. */
ZR_API int zrFileSetFileName(zr_value handle, const char *name) ZR_NOEXCEPT;

/* Sets the extension, given with or without its dot; an empty text clears it. */
ZR_API int zrFileSetExt(zr_value handle, const char *text) ZR_NOEXCEPT;

/* Sets the directory, and the drive if text brings one along; an empty text clears the directory. */
ZR_API int zrFileSetDir(zr_value handle, const char *text) ZR_NOEXCEPT;

/* Appends text to the directory. An empty text does nothing; null is a fault (reports: CZrFileName::AddDir). */
ZR_API int zrFileAddDir(zr_value handle, const char *text) ZR_NOEXCEPT;

/* Sets the drive, a letter and a colon; an empty text clears it. */
ZR_API int zrFileSetDrive(zr_value handle, const char *text) ZR_NOEXCEPT;

/* The present name, with its extension, becomes the last element of the directory, text the new name. */
ZR_API int zrFileFNToDir(zr_value handle, const char *text) ZR_NOEXCEPT;

/* Takes the last element from the directory; 0 if there is none. */
ZR_API int zrFileRemoveLastDir(zr_value handle) ZR_NOEXCEPT;

/* Replaces the first occurrence of from in the directory by to (reports: CZrFileName::ReplaceDir). */
ZR_API int zrFileReplaceDir(zr_value handle, const char *from, const char *to) ZR_NOEXCEPT;

/* The first fault of the value, a ZR_FILE_NAME_ERROR. */
ZR_API int zrFileGetError(zr_value handle) ZR_NOEXCEPT;

/* Tests of a text, without a handle: 1 valid, 0 not, also for null and the empty text. No report. Any thread.
   - Name: 1 to 255 characters, none of " / : ; < > @ \ | * ?
   - Ext: the same; a leading dot is passed over, and something must follow it.
   - Dir: 1 to 259 characters, no drive; between slashes and backslashes "." or ".." or valid names that neither begin
     nor end with a blank, a tab or a dot.
   - Drive: a letter A to Z or a to z and a colon.
   - Path: 1 to 259 characters; the parts that it has are valid, and no extension stands without a name. */
ZR_API int zrFileNameValid(const char *text) ZR_NOEXCEPT;
ZR_API int zrFileExtValid(const char *text) ZR_NOEXCEPT;
ZR_API int zrFileDirValid(const char *text) ZR_NOEXCEPT;
ZR_API int zrFileDriveValid(const char *text) ZR_NOEXCEPT;
ZR_API int zrFilePathValid(const char *text) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
