// Counted allocation.
#include "frame/counted_allocation.h"

#include <cstdlib>

#include <zrclb/heap.h>
#include <zrclb/report.h>

namespace zr::frame {

constinit std::atomic<zr_long> heap_block_count = 0;

} // namespace zr::frame

using zr::frame::heap_block_count;

extern "C" {

void *heap_malloc(unsigned int size) noexcept {
    heap_block_count.fetch_add(1, std::memory_order_relaxed);
    return std::malloc(size);
}

void *heap_calloc(unsigned int count, unsigned int size) noexcept {
    heap_block_count.fetch_add(1, std::memory_order_relaxed);
    return std::calloc(count, size);
}

void *heap_realloc(void *block, unsigned int size) noexcept {
    return std::realloc(block, size);
}

void heap_free(void *block) noexcept {
    if (block != nullptr) {
        heap_block_count.fetch_sub(1, std::memory_order_relaxed);
        std::free(block);
    }
}

void heap_smart_free(void **place) noexcept {
    if (place == nullptr) {
        zr_message("heap_smart_free: NIL-reference", nullptr, nullptr, "Heap", __LINE__);
        return;
    }
    heap_free(*place);
    *place = nullptr;
}
}
