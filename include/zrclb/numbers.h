/* Numeric helpers: degrees, rounding, signs, special values; waiting and sound. C17 and C++20.
 *
 * No function has a state, reports anything or allocates. Threads: any.
 */
#ifndef ZRCLB_NUMBERS_H
#define ZRCLB_NUMBERS_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Sine, cosine and tangent of an angle in degrees. Sine and cosine are exact at each quarter turn: sin_deg(180) is 0.0.
   The tangent is not, and gives a very large number at 90 and 270. Angles beyond 100000 on either side give 1.0 for
   the sine and 0.0 for the others; a NaN gives a NaN. */
ZR_API double sin_deg(double degrees) ZR_NOEXCEPT;
ZR_API double cos_deg(double degrees) ZR_NOEXCEPT;
ZR_API double tan_deg(double degrees) ZR_NOEXCEPT;

/* The standard inverse functions, in degrees: asin_deg and atan_deg from -90 to 90, acos_deg from 0 to 180, atan2_deg
   from -180 to 180. asin_deg and acos_deg give a NaN outside -1 to 1. */
ZR_API double asin_deg(double x) ZR_NOEXCEPT;
ZR_API double acos_deg(double x) ZR_NOEXCEPT;
ZR_API double atan_deg(double x) ZR_NOEXCEPT;
ZR_API double atan2_deg(double y, double x) ZR_NOEXCEPT;

/* value rounded to a multiple of 10 to the power of exponent: -2 leaves two decimals, 3 leaves thousands. Halves go up,
   below zero too: pround(-2.5, 0) is -2.0. It is floor(value / p + 0.5) * p in double arithmetic, with no correction
   for decimals that a double can't hold. An exponent beyond -400 or 400 counts as that. */
ZR_API double pround(double value, int exponent) ZR_NOEXCEPT;

/* value rounded to that many significant digits, halves up. A value with nothing in front of the decimal point, a NaN
   and an infinity give 0.0, and for 0 digits a NaN. */
ZR_API double RoundSig(double value, unsigned int digits) ZR_NOEXCEPT;

/* RoundSig(value, 8): what is left of a float beside the digits that it can hold. 0.0 for a value below 1 on either
   side of zero. */
ZR_API double FloatToDouble(float value) ZR_NOEXCEPT;

/* The sign: -1 below zero, 1 above, 0 for zero. For a NaN, fsgn gives 0.0. */
ZR_API zr_long lsgn(zr_long value) ZR_NOEXCEPT;
ZR_API double fsgn(double value) ZR_NOEXCEPT;

/* Whether value is a NaN, or is infinite: not 0 and 0; zr_isinf gives 1 and 0. */
ZR_API int zr_isnan(double value) ZR_NOEXCEPT;
ZR_API int zr_isinf(double value) ZR_NOEXCEPT;

/* Holds the calling thread for that many milliseconds or a little longer, never shorter. 4294967295 waits for ever. */
ZR_API void zr_wait(zr_ulong milliseconds) ZR_NOEXCEPT;

/* The system's simple sound, both alike. On Linux that is the bell of the controlling terminal, if there is one.
   Not 0 if the system took the call, else 0. */
ZR_API int zr_beep(void) ZR_NOEXCEPT;
ZR_API int zr_tone(void) ZR_NOEXCEPT;

/* Does nothing. */
ZR_API void zr_pause(void) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
