/* Files and folders by name: tests, verbs, listing, current folder and hosts. C17 and C++20. */
#ifndef ZRCLB_FILES_H
#define ZRCLB_FILES_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif
