/* File handles: a stream under a path of the library, with typed values, a byte-order header and locks. C17 and C++20.
 *
 * 1. A file is named by folder and name, which fio_makepath composes; the path has at most 259 characters.
 * 2. A handle belongs to one thread at a time; different ones may be used side by side.
 * 3. A null handle, and one whose stream is null, give the failure value; fio_fp alone does not look.
 * 4. Where no null is spoken of, any other null argument gives the failure value, and the file stays as it is.
 * 5. Typed values lie in the file without gaps: char 1 byte, short 2, long 4, float 4, double 8 (IEEE 754), the lowest
 *    byte first. Their calls fail at a stream error, at the end of the file, and where they are refused as told.
 * 6. Refusals are errors (zr_error) with the tag "Fio". End of file and stream errors are told apart by no function.
 * 7. Where the same stream is written and then read, or the reverse, a fio_seek stands between the two.
 */
#ifndef ZRCLB_FILE_HANDLE_H
#define ZRCLB_FILE_HANDLE_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The mode word: one of the first three, and any of the others. */
enum {
    FIO_READ = 1,      /* from the start; the file must exist */
    FIO_WRITE = 2,     /* from the start; an old content is dropped, a missing file is made */
    FIO_APPEND = 4,    /* at the end of the file; a missing file is made */
    FIO_UPDATE = 8,    /* the other direction, too */
    FIO_TEXT = 16,     /* line ends are translated: LF is CR LF in the file, and byte 0x1A ends a read */
    FIO_BYTEORDER = 32 /* the file starts with a header; counts for FIO_READ and FIO_WRITE without FIO_TEXT */
};

/* An open file. Opaque to callers; made by fio_open, ended by fio_close. */
typedef struct fio_handle {
    FILE *stream;
    int32_t byte_order; /* 0: the machine's own; 1: longs and doubles are reversed when read; -1: no header was found */
    uint32_t mode;      /* as given to fio_open */
    char *name;         /* the composed path, or "????" where memory did not suffice for it */
} fio_handle;

/* ---- Open and close ------------------------------------------------------------------------------------------- */

/* Opens the file name in the folder dir, both as fio_makepath takes them, and gives a handle that fio_close ends.
 *
 * With FIO_BYTEORDER a file that is written gets a header of 16 bytes: "1.1  @zr", then "INTEL   ". A file that is read
 * is headed if its first 8 bytes hold "1.1" or "@zr" in front of any zero byte; then the next 8 bytes are taken, too,
 * and if they are "MOTOROLA", longs and doubles are reversed on reading. The handle then stands behind the header. A
 * file that is not headed is read from its start. Failures to write the header don't show here.
 *
 * Null, without a report: none or several of FIO_READ, FIO_WRITE, FIO_APPEND; no such file or folder; a folder; no
 * permission; no memory. An over-long path gives null, too, with what fio_makepath reports. */
ZR_API fio_handle *fio_open(const char *dir, const char *name, int mode) ZR_NOEXCEPT;

/* Writes out what is still in memory, closes the stream, frees the handle. 0; -1 if something could not be written, the
   handle being freed all the same. Null: nothing, 0. */
ZR_API int fio_close(fio_handle *handle) ZR_NOEXCEPT;

/* The path of the open file; null for a null handle. It is the handle's, and goes with it. */
ZR_API const char *fio_filename(fio_handle *handle) ZR_NOEXCEPT;

/* The stream, for use with the standard functions. It is the handle's: don't close it. handle must not be null. */
ZR_API FILE *fio_fp(fio_handle *handle) ZR_NOEXCEPT;

/* ---- Position ------------------------------------------------------------------------------------------------- */

/* Length of the file in bytes, header included, with what was written and is still in memory. -1 on failure and for
   more than 2147483647 bytes. The position stays as it was, in text mode as far as fio_tell knows it. */
ZR_API zr_long fio_length(fio_handle *handle) ZR_NOEXCEPT;

/* Moves the position offset bytes from the start (whence 0), from the present position (1) or from the end (any other
   whence), behind the end too. 0; -1 for a place before the start, and where what was written and is still in memory
   can't be handed over. The header counts. */
ZR_API int fio_seek(fio_handle *handle, zr_long offset, int whence) ZR_NOEXCEPT;

/* Bytes in front of the position, header included; -1 on failure and for more than 2147483647. In text mode it is exact
   in files whose lines end in CR LF, since a line feed that was read ahead counts as two bytes. */
ZR_API zr_long fio_tell(fio_handle *handle) ZR_NOEXCEPT;

/* Hands what was written over to the system. 0, or -1. */
ZR_API int fio_flush(fio_handle *handle) ZR_NOEXCEPT;

/* ---- Blocks --------------------------------------------------------------------------------------------------- */

/* Reads or writes count items of size bytes each and gives the number of whole items done; 0 if handle, stream, buffer,
   size or count is 0. The byte order of the file plays no part. */
ZR_API size_t fio_fread(void *buffer, size_t size, size_t count, fio_handle *handle) ZR_NOEXCEPT;
ZR_API size_t fio_fwrite(const void *buffer, size_t size, size_t count, fio_handle *handle) ZR_NOEXCEPT;

/* ---- Writing values ------------------------------------------------------------------------------------------- */

/* Write value; 0, or -1. Never reversed, whatever the file's header says. A handle in text mode is refused without a
   report. With FIO_APPEND and a byte_order other than 0 they report "fio_putdouble: not yet implemented in append-mode"
   or "fio_putlong: not yet implemented in append-mode", and give -1. */
ZR_API int fio_putdouble(fio_handle *handle, double value) ZR_NOEXCEPT;
ZR_API int fio_putlong(fio_handle *handle, zr_long value) ZR_NOEXCEPT;

/* Write value; 0, or -1. A byte_order other than 0 is refused with "HPUX/AIX - not yet implemented". */
ZR_API int fio_putfloat(fio_handle *handle, float value) ZR_NOEXCEPT;
ZR_API int fio_putshort(fio_handle *handle, short value) ZR_NOEXCEPT;

/* Writes one byte; 0, or -1. */
ZR_API int fio_putchar(fio_handle *handle, char value) ZR_NOEXCEPT;

/* Writes text as a field of width characters, filled with blanks or cut; no terminator. Width 0 stands for the length
   of text. 0, or -1. A negative width is a field without room: nothing is written, 0. */
ZR_API int fio_putstring(fio_handle *handle, const char *text, int width) ZR_NOEXCEPT;

/* ---- Reading values ------------------------------------------------------------------------------------------- */

/* Read a value, reversed if byte_order is 1; 0, or -1 with *value as it was. A handle in text mode is refused without a
   report and without reading. With a byte_order that is none of 0, 1 and -1 the bytes are taken from the file, "file
   system undefined" is reported, and the result is -1. */
ZR_API int fio_getdouble(fio_handle *handle, double *value) ZR_NOEXCEPT;
ZR_API int fio_getlong(fio_handle *handle, zr_long *value) ZR_NOEXCEPT;

/* Read a value; 0, or -1 with *value as it was. A byte_order other than 0 is refused with "HPUX/AIX - not yet
   implemented", without reading. */
ZR_API int fio_getfloat(fio_handle *handle, float *value) ZR_NOEXCEPT;
ZR_API int fio_getshort(fio_handle *handle, short *value) ZR_NOEXCEPT;

/* Reads one byte. With a value: 0, or -1 at the end of the file, where *value becomes char(-1). With a null value: the
   byte as a number from 0 to 255, or -1 at the end of the file. */
ZR_API int fio_getchar(fio_handle *handle, char *value) ZR_NOEXCEPT;

/* Reads at most max characters into buffer[0..max], terminator included. A line feed, a zero byte and the end of the
   file end the text and are not stored; a carriage return is an ordinary character. 0 if anything was read, a bare line
   feed included; -1 with an empty text at the end of the file. -1, buffer as it was, for a max below 1. */
ZR_API int fio_getstring(fio_handle *handle, int max, char *buffer) ZR_NOEXCEPT;

/* The same, and any character of delimiters ends the text, too, as its last character. -1 with an empty text for a max
   below 1 and for null delimiters; -1, buffer as it was, for a null handle. */
ZR_API int fio_getstringdel(fio_handle *handle, int max, const char *delimiters, char *buffer) ZR_NOEXCEPT;

/* ---- Locks ---------------------------------------------------------------------------------------------------- */

/* A lock is for those who ask for it. It holds between processes and between handles of one process, on handles for
 * reading too, and ends with the handle or the process, however that ends. The position stays as it was; nothing is
 * flushed.
 *
 *             Linux                                   Windows
 *   covers    the file, whatever it grows to          the bytes that it has at the call, in an empty file none
 *   others    may read and write all the same         can't read or write these bytes
 *
 * A handle that holds the lock does not get it once more. */

/* Takes the lock without waiting. 0 done; -1 it is held, by somebody else or by this handle; -4 null handle or no
   descriptor; -5 any other failure, among them a file that has no position or length. */
ZR_API int fio_lock(fio_handle *handle) ZR_NOEXCEPT;

/* Gives the lock back. 0 done; -1 null handle, no descriptor, no position or length; -2 any other failure, such as a
   lock that this handle does not hold, or on Windows a file that has another length than when it was locked. */
ZR_API int fio_unlock(fio_handle *handle) ZR_NOEXCEPT;

/* Tries the lock and gives it back at once. 1 if it is held, by this handle too, which keeps it; else 0, also where it
   can't be told. */
ZR_API int fio_islock(fio_handle *handle) ZR_NOEXCEPT;

/* The same for the file name in the folder dir; 0 for a file that can't be opened for reading. */
ZR_API int fio_fileislock(const char *dir, const char *name) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
