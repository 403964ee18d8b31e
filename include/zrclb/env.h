/* The environment tree as plain functions over handles. C17 and C++20. */
#ifndef ZRCLB_ENV_H
#define ZRCLB_ENV_H

#include <zrclb/types.h>

/* How a reader treats a backslash at a line's end. */
typedef enum EEnvReadMode {
    eEnvReadWrapped = 0,    /* it can fold a line */
    eEnvReadNotWrapped = 1, /* it is a plain character */
    eEnvReadAuto = 2        /* decided by the first line */
} EEnvReadMode;

/* Results of environment operations. */
#ifdef __cplusplus
namespace Zr {
enum EZrEnvError : int
#else
enum EZrEnvError
#endif
{
    ENV_OK = 0,
    ENV_DATA = -1,
    ENV_BLOCK = -2,
    ENV_NOT_FOUND = -4,
    ENV_BAD_FORMAT = -5,
    ENV_EMPTY_PATH = -6,
    ENV_TOO_SMALL = -7,
    ENV_IN_USE = -8,
    ENV_ERROR = -10
};
#ifdef __cplusplus
}
#endif

#endif
