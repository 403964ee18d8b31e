/* Whole folders and groups of files: copies, sums, temporary folders, drives, long paths in a line. C17 and C++20. */
#ifndef ZRCLB_FOLDERS_H
#define ZRCLB_FOLDERS_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif
