/* Types that every header of the library shares. C17 and C++20. */
#ifndef ZRCLB_TYPES_H
#define ZRCLB_TYPES_H

#include <stdint.h>

/* Marks what the library exports. The build of the library itself decides through its export list, so only importing
   compilers that need a word for data of a class get one. */
#if defined(_MSC_VER) && !defined(ZRCLB_BUILD)
#define ZR_API __declspec(dllimport)
#elif defined(__GNUC__) && !defined(_WIN32)
#define ZR_API __attribute__((visibility("default")))
#else
#define ZR_API
#endif

/* Plain functions never throw. */
#ifdef __cplusplus
#define ZR_NOEXCEPT noexcept
#else
#define ZR_NOEXCEPT
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* 32 bits wide on every platform: all that the interface calls long. */
#ifdef _WIN32
typedef long zr_long;
typedef unsigned long zr_ulong;
#else
typedef int32_t zr_long;
typedef uint32_t zr_ulong;
#endif

/* A caller's value, as wide as a pointer, handed back as it was given. */
typedef uintptr_t zr_value;

/* The platform's window handle; null for none. */
typedef void *zr_window;

/* Handle of an environment: opaque, made by env_open and its kin, ended by env_close. Null is tested everywhere. */
typedef struct zr_environment *zr_env;

#ifdef __cplusplus
}
#endif

#endif
