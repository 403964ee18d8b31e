/* File handles: a stream under a path of the library, with typed values, an optional byte-order header and locks. C17 and C++20. */
#ifndef ZRCLB_FILE_HANDLE_H
#define ZRCLB_FILE_HANDLE_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif
