/* Counted allocation. C17 and C++20.
 *
 * What these functions give is the caller's and goes back through heap_free; so does every text that another part of
 * the library hands over with a word to that effect. A process-wide count of blocks stands beside them, to be seen in
 * a debugger: plus 1 at each heap_malloc and heap_calloc, successful or not, minus 1 at each heap_free of a block.
 * Threads: as safe as the standard allocator.
 */
#ifndef ZRCLB_HEAP_H
#define ZRCLB_HEAP_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A block of size bytes, or null. No report on failure. */
ZR_API void *heap_malloc(unsigned int size) ZR_NOEXCEPT;

/* A block of count elements of size bytes each, all zero, or null. No report on failure. */
ZR_API void *heap_calloc(unsigned int count, unsigned int size) ZR_NOEXCEPT;

/* Gives block the new size, moving it if need be, or null: then block is as it was. A size of 0 frees block and gives
   null. A null block is a new one. The count sees none of this. */
ZR_API void *heap_realloc(void *block, unsigned int size) ZR_NOEXCEPT;

/* Frees block. Null does nothing. */
ZR_API void heap_free(void *block) ZR_NOEXCEPT;

/* Frees the block that *place holds, if any, and sets *place to null. A null place is reported by the message
   "heap_smart_free: NIL-reference". */
ZR_API void heap_smart_free(void **place) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
