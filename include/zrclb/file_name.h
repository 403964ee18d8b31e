/* The file name value through plain functions on handles. C17 and C++20. */
#ifndef ZRCLB_FILE_NAME_H
#define ZRCLB_FILE_NAME_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif
