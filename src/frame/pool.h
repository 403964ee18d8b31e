// The sum of the sizes asked of pools, and where the data of a pool's block begins.
#ifndef ZR_FRAME_POOL_H
#define ZR_FRAME_POOL_H

#include <atomic>
#include <cstddef>

#include <zrclb/heap.h>

namespace zr::frame {

// Nothing in the library reads it; it is there to be seen in a debugger and by tests. It wraps at 32 bits.
extern std::atomic<zr_long> heap_pool_bytes;

// Bytes from the start of a block to its data.
constexpr std::size_t pool_data_offset = (sizeof(heap_pool_block) + 7) & ~std::size_t{7};

} // namespace zr::frame

#endif
