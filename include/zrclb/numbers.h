/* Numeric helpers: degrees, rounding, signs, special values; waiting and sound. C17 and C++20. */
#ifndef ZRCLB_NUMBERS_H
#define ZRCLB_NUMBERS_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif
