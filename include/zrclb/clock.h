/* Clock: dates and times as texts, calendar fields, stopwatches. C17 and C++20. */
#ifndef ZRCLB_CLOCK_H
#define ZRCLB_CLOCK_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif
