// One scratch buffer for the conversions: a fixed block for requests that fit it, else one block of the counted
// allocation. One owner at a time, without any lock. Nothing in the library uses it at present.
#ifndef ZR_ENV_STD_ALLOC_BUFFER_H
#define ZR_ENV_STD_ALLOC_BUFFER_H

#include <zrclb/types.h>

namespace zr::env {

// The allocated block, or null while there is none.
extern void *g_StdAllocBuff;

// Gives count * itemSize + 1 bytes, uninitialised, valid until StdFreeBuffer: the fixed block where that is below 10002,
// else a block of heap_malloc, or null.
// Reports, tag ZrEnvDataConvert: zr_error "g_StdAllocBuff !=  NIL" if an allocated block was not freed before, which is
// then forgotten and the caller's to free; zr_error "heap_malloc" on no memory, or for a size beyond 32 bits.
void *StdAllocBuffer(zr_ulong count, zr_ulong itemSize);

// Frees the allocated block, if there is one.
void StdFreeBuffer();

} // namespace zr::env

#endif
