// Pools: many small blocks that are given back at once.
#include "frame/pool.h"

#include <climits>
#include <cstdint>
#include <cstring>

#include <zrclb/report.h>

namespace zr::frame {

constinit std::atomic<zr_long> heap_pool_bytes = 0;

namespace {

constexpr std::int64_t largest_block = INT32_MAX; // of what the fields can say

// In 64 bits, so that no size comes out smaller than it was.
std::int64_t RoundUp(unsigned size) {
    return (std::int64_t{size} + 7) & ~std::int64_t{7};
}

// Read and written apart: an addition that is one for all threads would cost more than all the rest of an allocation.
void CountBytes(unsigned size) {
    const auto before = static_cast<std::uint32_t>(heap_pool_bytes.load(std::memory_order_relaxed));
    heap_pool_bytes.store(static_cast<zr_long>(before + size), std::memory_order_relaxed);
}

// A block with all of its `cachesize` bytes free, or null.
heap_pool_block *MakeBlock(zr_long cachesize, zr_long clear) {
    void *memory = heap_malloc(static_cast<unsigned>(pool_data_offset) + static_cast<unsigned>(cachesize));
    if (memory == nullptr)
        return nullptr;
    auto *block = static_cast<heap_pool_block *>(memory);
    *block = {cachesize, cachesize, clear, static_cast<char *>(memory) + pool_data_offset, nullptr};
    return block;
}

// Hands out the next `rounded` bytes of a block, the first `size` of them zero if the block says so. What is then free follows
// from next_free: calls behind one another wait for one value that was just written instead of two.
void *Serve(heap_pool_block *block, std::int64_t rounded, unsigned size) {
    auto *data = static_cast<char *>(block->next_free);
    const char *end = reinterpret_cast<char *>(block) + pool_data_offset + block->cachesize;
    block->next_free = data + rounded;
    block->free = static_cast<zr_long>(end - data - rounded);
    return block->clear != 0 ? std::memset(data, 0, size) : data;
}

void ReportTooLarge(int line) {
    zr_error("heap_allocate: parameter 'size' greater than cachesize", nullptr, nullptr, "Heap", line);
}

// For a request that the first block cannot serve: from the rest of the chain, or from a new block behind it. Apart, so that
// the common way through an allocation has no registers to save.
[[gnu::noinline]] void *ServeBehind(heap_pool_block *first, std::int64_t rounded, unsigned size) {
    if (rounded > first->cachesize) {
        ReportTooLarge(__LINE__);
        return nullptr;
    }
    heap_pool_block *last = first;
    for (heap_pool_block *block = first->next_block; block != nullptr; block = block->next_block) {
        if (block->free > rounded)
            return Serve(block, rounded, size);
        last = block;
    }
    // Of different sizes are only pools that their owner hung together.
    if (rounded > last->cachesize) {
        ReportTooLarge(__LINE__);
        return nullptr;
    }
    heap_pool_block *added = MakeBlock(last->cachesize, last->clear);
    if (added == nullptr) {
        zr_error("heap_allocate: out of space", nullptr, nullptr, "Heap", __LINE__);
        return nullptr;
    }
    last->next_block = added;
    return Serve(added, rounded, size);
}

} // namespace
} // namespace zr::frame

using namespace zr::frame;

extern "C" {

heap_pool_block *heap_open(unsigned int cachesize, int clear) noexcept {
    const std::int64_t rounded = RoundUp(cachesize);
    heap_pool_block *pool = rounded <= largest_block ? MakeBlock(static_cast<zr_long>(rounded), clear) : nullptr;
    if (pool == nullptr)
        zr_error("heap_open: out of space", nullptr, nullptr, "Heap", __LINE__);
    return pool;
}

void *heap_allocate(heap_pool_block *pool, unsigned int size) noexcept {
    if (pool == nullptr) {
        zr_error("heap_allocate: incorrect ID for this heap", nullptr, nullptr, "Heap", __LINE__);
        return nullptr;
    }
    CountBytes(size);
    const std::int64_t rounded = RoundUp(size);
    // What a block has free is never above its cachesize: what fits is not too large.
    if (pool->free > rounded)
        return Serve(pool, rounded, size);
    return ServeBehind(pool, rounded, size);
}

void heap_deallocate(heap_pool_block *pool, ...) noexcept {
    if (pool == nullptr)
        zr_error("heap_deallocate: incorrect ID for this heap", nullptr, nullptr, "Heap", __LINE__);
}

void heap_close(heap_pool_block *pool) noexcept {
    while (pool != nullptr) {
        heap_pool_block *next = pool->next_block;
        heap_free(pool);
        pool = next;
    }
}
}
