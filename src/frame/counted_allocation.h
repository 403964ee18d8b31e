// The count of blocks that heap_malloc and heap_calloc gave and heap_free has not taken back.
#ifndef ZR_FRAME_COUNTED_ALLOCATION_H
#define ZR_FRAME_COUNTED_ALLOCATION_H

#include <atomic>

#include <zrclb/types.h>

namespace zr::frame {

// Nothing in the library reads it; it is there to be seen in a debugger and by tests.
extern std::atomic<zr_long> heap_block_count;

} // namespace zr::frame

#endif
