/* Texts: copying, comparing, searching, changing, converting. C17 and C++20.
 *
 * 1. A text is a zero-terminated array of bytes in code page 1252. Indices count from 0; ranges include both ends.
 * 2. Nothing here allocates for the caller but str_alloc.
 * 3. Where no null is spoken of, a null argument is the caller's fault: the function then does nothing and gives null,
 *    0 or -1, whichever says that there is nothing.
 * 4. A destination without a size must have room for the result; it must not overlap the source unless said so.
 * 5. Reports carry the tag "Str".
 * 6. Case counts for ASCII letters in comparisons, and for all letters of code page 1252 in str_cap and str_low.
 *    No result depends on setlocale.
 * 7. Threads: str_tok with null delimiters and str_rpt keep process-wide state and belong to one thread at a time; the
 *    others touch only their arguments.
 */
#ifndef ZRCLB_STR_H
#define ZRCLB_STR_H

#include <zrclb/types.h>

/* Lets a compiler that can do so check the arguments of a formatted write. */
#if defined(__clang__)
#define ZR_FORMAT(text, first) __attribute__((__format__(__printf__, text, first)))
#elif defined(__GNUC__)
#define ZR_FORMAT(text, first) __attribute__((__format__(__gnu_printf__, text, first)))
#else
#define ZR_FORMAT(text, first)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Copy and join -------------------------------------------------------------------------------------------- */

/* Copies src to dst and gives dst. Null dst: nothing, null. Null src: dst becomes empty. */
ZR_API char *str_cpy(char *dst, const char *src) ZR_NOEXCEPT;

/* Copies at most n characters of src and a terminator behind them, so up to n + 1 bytes: callers pass the buffer's size
   less 1. Gives dst. n below 1 or null dst: nothing, null. Null src: dst becomes empty. */
ZR_API char *str_ncpy(char *dst, const char *src, int n) ZR_NOEXCEPT;

/* Copies src[first..last], last cut to the last character, and gives dst. A negative index, first above last, or first
   behind the end make dst empty. dst may be src. */
ZR_API char *str_pcpy(char *dst, const char *src, int first, int last) ZR_NOEXCEPT;

/* Appends src to dst and gives dst. */
ZR_API char *str_cat(char *dst, const char *src) ZR_NOEXCEPT;

/* Appends at most n characters of src and a terminator to dst and gives dst. A negative n is no limit. */
ZR_API char *str_ncat(char *dst, const char *src, short n) ZR_NOEXCEPT;

/* Appends src[first..last] as str_pcpy would copy it and gives dst. A range that is none leaves dst as it was. */
ZR_API char *str_pcat(char *dst, const char *src, int first, int last) ZR_NOEXCEPT;

/* A copy of src that the caller gives back through heap_free; null for null src or without memory. */
ZR_API char *str_alloc(const char *src) ZR_NOEXCEPT;

/* ---- Compare and measure -------------------------------------------------------------------------------------- */

/* 1 if a and b have the same bytes, else 0. */
ZR_API int str_eq(const char *a, const char *b) ZR_NOEXCEPT;

/* -1, 0 or 1 as a stands before, equal to or behind b, by unsigned bytes. A null stands before every text. */
ZR_API int str_cmp(const char *a, const char *b) ZR_NOEXCEPT;

/* The same for at most n characters: below, equal to or above 0. */
ZR_API int str_ncmp(const char *a, const char *b, unsigned int n) ZR_NOEXCEPT;

/* Below, equal to or above 0 as a stands before, equal to or behind b, by unsigned bytes, with A to Z taken as a to z.
   The value is the difference of the first two bytes that differ. A null stands before every text. */
ZR_API int str_icmp(const char *a, const char *b) ZR_NOEXCEPT;

/* 1 if str_icmp finds a and b equal, else 0. */
ZR_API int str_ieq(const char *a, const char *b) ZR_NOEXCEPT;

/* Number of characters, the terminator not counted. */
ZR_API int str_len(const char *s) ZR_NOEXCEPT;

/* ---- Search --------------------------------------------------------------------------------------------------- */

/* The first or the last ch in s, or null. A ch of 0 finds the terminator. */
ZR_API char *str_chr(char *s, char ch) ZR_NOEXCEPT;
ZR_API char *str_rchr(char *s, char ch) ZR_NOEXCEPT;

/* The index of the first or the last ch in s, or -1. */
ZR_API int str_ichr(char *s, char ch) ZR_NOEXCEPT;
ZR_API int str_irchr(char *s, char ch) ZR_NOEXCEPT;

/* The first what in s, or null. An empty what is found at the start. */
ZR_API char *str_pos(char *s, const char *what) ZR_NOEXCEPT;

/* The index of the first what in s, or -1. */
ZR_API int str_ipos(char *s, const char *what) ZR_NOEXCEPT;

/* With delimiters: the next run of characters that are none of them, terminated in place; null at the end. s starts
   a text, null goes on in it, and gives null before any start. The place reached is kept for each thread apart.
   With null delimiters: walks strings packed one behind the other, each with its terminator, up to an empty one. s
   starts, null goes on; each call gives the next string, and null from the empty one on. Going on before any start
   reports the error "The str_tok was called with wrong parameter <source>." and gives null.
   The texts stay the caller's, and must stay where they are during the walk. */
ZR_API char *str_tok(char *s, const char *delimiters) ZR_NOEXCEPT;

/* ---- Change in place ------------------------------------------------------------------------------------------ */

/* Turns all letters into capital or small ones, umlauts included, and gives s. */
ZR_API char *str_cap(char *s) ZR_NOEXCEPT;
ZR_API char *str_low(char *s) ZR_NOEXCEPT;

/* Removes the blanks (byte 32 alone) on both sides, on the left, on the right, and gives s. */
ZR_API char *str_trim(char *s) ZR_NOEXCEPT;
ZR_API char *str_ltrim(char *s) ZR_NOEXCEPT;
ZR_API char *str_rtrim(char *s) ZR_NOEXCEPT;

/* Replaces the first from in s by to, in a buffer of size bytes, and gives s. An empty from changes nothing and gives
   s. Null where from does not occur. Null after an error report, s unchanged, for a null argument ("str_repl : Falsche
   Parameter") and a result that does not fit ("str_repl : Buffer zu klein"). to must not lie in s. */
ZR_API char *str_repl(char *s, int size, const char *from, const char *to) ZR_NOEXCEPT;

/* Replaces every from in s by to, from left to right and never inside what was put in, in a buffer of size bytes. Gives
   the number of replacements; 0 for an empty from, and for a null argument after the error report "str_repl_all :
   Falsche Parameter". Where a step would not fit, it reports "str_repl_all : Buffer zu klein" and gives -1, and the
   replacements up to there stay. Linear in the longer of the two texts. from and to must not lie in s. */
ZR_API int str_repl_all(char *s, int size, const char *from, const char *to) ZR_NOEXCEPT;

/* Inserts text into s before index pos, which may be the length, in a buffer of size bytes, and gives s. An empty s
   takes what fits of text without a report. Null after an error report, s unchanged, for a null argument, a size below
   1 or a negative pos ("str_ins: Falsche Parameter"), a pos behind the end ("str_ins: Index zu gro\xDF"), and a result
   that does not fit ("str_ins: Buffer zu klein"). text must not lie in s. */
ZR_API char *str_ins(char *s, int size, int pos, const char *text) ZR_NOEXCEPT;

/* str_stoe turns escape sequences into the bytes they stand for, str_etos the reverse: \a \b \t \n \v \f \r for 7 to 13,
   \" \' \\ for the sign itself. A backslash that begins none of them stands for itself. The result goes to dst, or in
   place of src if dst is null, and is given back; that of str_etos is up to twice as long, and no limit is
   checked. Null src: nothing, dst. Without memory: null, the target as it was. */
ZR_API char *str_stoe(char *dst, char *src) ZR_NOEXCEPT;
ZR_API char *str_etos(char *dst, char *src) ZR_NOEXCEPT;

/* ---- Make and convert ----------------------------------------------------------------------------------------- */

/* A text of n times ch, n cut to 255, empty for n below 1. It is the library's, and valid until the next call. */
ZR_API char *str_rpt(int ch, int n) ZR_NOEXCEPT;

/* Writes by the standard format into buf[0..size-1], terminator included, and gives the number of characters written,
   less the terminator. The decimal sign is a point. A text that does not fit makes buf empty and gives -1, with the message
   "Invalid Parameter", tag "clib"; so do a null buf or format and a size of 0. */
ZR_API int str_printf(char *buf, unsigned int size, const char *format, ...) ZR_NOEXCEPT ZR_FORMAT(3, 4);

/* The number at the start of s, behind white space; 0 if there is none. The decimal sign is a point, the exponent letter e
   or E; hexadecimal numbers, inf and nan are read. Beyond the range: infinity or 0 with the sign. */
ZR_API double convert_stod(const char *s) ZR_NOEXCEPT;

/* The decimal integer at the start of s, behind white space; 0 if there is none. Beyond the range of 32 bits: its nearest
   end. */
ZR_API zr_long convert_stol(const char *s) ZR_NOEXCEPT;

/* Writes value with precision digits behind the point, filled with blanks on the left to width characters, on the right
   for a negative width. Gives the number of characters written. dst has no limit. With a negative precision, and where
   width and precision together have more than 11 characters, dst becomes empty and the result is 0, with the message
   "Invalid Parameter". */
ZR_API int convert_dtos(double value, int width, int precision, char *dst) ZR_NOEXCEPT;

/* The same for a long. */
ZR_API int convert_ltos(zr_long value, int width, char *dst) ZR_NOEXCEPT;

/* Turns the German letters of the old DOS code page in s into those of code page 1252, in place, and gives s. Only where
   entry "DosToWin" of section "System" of the installation's settings file is neither missing nor 0, which the first call
   of the process looks up, and flag is 0: with another flag, or for null, nothing changes. Reports of the look-up: those of
   ini_read_long with a null file. */
ZR_API char *dos_to_win(char *s, int flag) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
