/* Window utilities. C17 and C++20.
 *
 * Texts are zero-terminated bytes in code page 1252. Nothing is reported, allocated or kept. Threads: any.
 */
#ifndef ZRCLB_WINDOW_UTILITIES_H
#define ZRCLB_WINDOW_UTILITIES_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Orders names that mix letters and numbers, such as "Pos 9" before "Pos 10": below, equal to or above 0 as a stands
 * before, equal to or behind b.
 *
 * What is neither an ASCII letter nor a digit parts a name into tokens, whichever character it is: "a-1" equals "a_1".
 * Tokens are compared one behind the other, the first difference decides, and a name that has no more of them stands in
 * front. Two tokens that both end in digits, with the same letters in front apart from their case, are ordered by the
 * first letter that differs in case, the capital one in front, and then by the number; so are two that both begin with
 * digits, by the number and the rest. All others are compared as str_icmp compares them. Numbers beyond 2147483647
 * count as that. A null stands before every text.
 *
 * Exchanging a and b turns the sign round; equal names need not be the same. As the rule depends on both tokens this is
 * no order of a whole list: "10" stands behind "9", "10a" behind "10", and "9" behind "10a". What sorts with it must
 * be a sort that ends all the same. */
ZR_API int wu_ANCmp(const char *a, const char *b) ZR_NOEXCEPT;

/* Orders two dates of the form dd.mm.yy hh:mm:ss: 1 if a is later than b, -1 if it is earlier, else 0. Each of the up
 * to six numbers is read as convert_stol reads it, from the first 80 characters; points, blanks and colons part them,
 * and missing ones are 0. Years from 80 on count as 100 less, so they run from 80 (1980) to 79 (2079). Null counts as
 * empty. */
ZR_API int wu_DateCmp(const char *a, const char *b) ZR_NOEXCEPT;

/* Looks an installed font up in the system's list and writes its file, as the list has it (usually a name without a
   folder), to buffer[0..size-1]: at most size - 1 characters of it, terminated. Font names are compared without
   regard to case, without the kind in parentheses at their end ("Arial (TrueType)") and without blanks around. Of
   several fonts of that name the first one counts. 1 if there is one; else 0, with an empty buffer. 0 also for a null
   argument and for a name of 260 characters and more. A size below 1 writes nothing.
   Linux has no such list: 0. */
ZR_API int wu_GetFontFile(const char *font_name, char *buffer, int size) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
