/* Counted allocation and pools. C17 and C++20.
 *
 * What these functions give is the caller's and goes back through heap_free; so does every text that another part of
 * the library hands over with a word to that effect. A process-wide count of blocks stands beside them, to be seen in
 * a debugger: plus 1 at each heap_malloc and heap_calloc, successful or not, minus 1 at each heap_free of a block.
 * A pool serves many small blocks that are all given back at once: heap_open, any number of heap_allocate, heap_close.
 * Threads: as safe as the standard allocator; a pool belongs to one thread at a time.
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

/* One block of a pool: this header and its data behind it, in one allocation. A pool is a chain of them, and its first
   one is the handle. The data begins at the first multiple of 8 bytes behind the header. For reading only: heap_allocate
   trusts these fields. */
typedef struct heap_pool_block {
    zr_long cachesize;                  /* bytes of data, a multiple of 8 */
    zr_long free;                       /* of these, not yet handed out */
    zr_long clear;                      /* not 0: what is handed out is zero */
    void *next_free;                    /* the first byte not yet handed out */
    struct heap_pool_block *next_block; /* null in the last one */
} heap_pool_block;

/* A new pool, which heap_close ends, of blocks with cachesize bytes each, rounded up to a multiple of 8; the first one is
   made at once. With clear not 0 the pool hands out zeros, else bytes of any value. A pool of 0 bytes serves requests of 0
   bytes alone, each from a block of its own. Null, with the error "heap_open: out of space" under the tag "Heap", without
   memory and for more than 2147483640 bytes. */
ZR_API heap_pool_block *heap_open(unsigned int cachesize, int clear) ZR_NOEXCEPT;

/* size bytes on a multiple of 8, valid until heap_close. They come from the first block of the chain that has more left
   than size rounded up to a multiple of 8, so none is filled to its last byte but by the request that opens it; where
   there is none, a new block is hung behind the last. The time grows with the number of blocks. Blocks of 0 bytes may
   have the same address.
   Null, and the pool as it was, with one of these errors under the tag "Heap":
     "heap_allocate: incorrect ID for this heap"                    pool is null
     "heap_allocate: parameter 'size' greater than cachesize"       of the first block, compared rounded, or of the last
                                                                    one, after which a new block is made
     "heap_allocate: out of space"
   A process-wide sum of all sizes asked of pools, the failed ones of the last two kinds included, is there to be seen in
   a debugger; calls of several threads may miss one another in it. */
ZR_API void *heap_allocate(heap_pool_block *pool, unsigned int size) ZR_NOEXCEPT;

/* Gives nothing back: memory of a pool returns with heap_close alone. A null pool is the error "heap_deallocate: incorrect
   ID for this heap" under the tag "Heap". Further arguments are ignored. */
ZR_API void heap_deallocate(heap_pool_block *pool, ...) ZR_NOEXCEPT;

/* Frees pool and all blocks behind it in the chain, and with them all that was allocated there. Null does nothing, and is
   not reported. */
ZR_API void heap_close(heap_pool_block *pool) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
