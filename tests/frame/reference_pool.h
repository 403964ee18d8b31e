// A pool as its contract tells it: what the library's is compared with.
#ifndef TESTS_FRAME_REFERENCE_POOL_H
#define TESTS_FRAME_REFERENCE_POOL_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <zrclb/heap.h>

namespace zr::test {

class ReferencePool {
public:
    // Where an allocation lies: in the block with that number, so many bytes from the start of its data.
    struct Place {
        std::size_t block;
        std::int64_t offset;
    };

    explicit ReferencePool(unsigned cachesize) { m_used.push_back(0), m_cachesize = RoundUp(cachesize); }

    // None if a block cannot hold as much.
    std::optional<Place> Allocate(unsigned size) {
        const std::int64_t rounded = RoundUp(size);
        if (rounded > m_cachesize)
            return std::nullopt;
        std::size_t block = 0;
        while (block < m_used.size() && m_cachesize - m_used[block] <= rounded)
            ++block;
        if (block == m_used.size())
            m_used.push_back(0);
        const Place place{block, m_used[block]};
        m_used[block] += rounded;
        return place;
    }

    std::size_t BlockCount() const { return m_used.size(); }

    // Whether `pool` has the same blocks, with as much free in each.
    bool IsLike(const heap_pool_block *pool, zr_long clear) const {
        const heap_pool_block *block = pool;
        for (const std::int64_t used : m_used) {
            if (block == nullptr || block->cachesize != m_cachesize || block->free != m_cachesize - used ||
                block->clear != clear || static_cast<const char *>(block->next_free) != DataOf(block) + used)
                return false;
            block = block->next_block;
        }
        return block == nullptr;
    }

    // The block of `pool` with that number.
    static heap_pool_block *BlockAt(heap_pool_block *pool, std::size_t number) {
        for (; number > 0; --number)
            pool = pool->next_block;
        return pool;
    }

    static char *DataOf(heap_pool_block *block) { return reinterpret_cast<char *>(block) + RoundUp(sizeof *block); }
    static const char *DataOf(const heap_pool_block *block) {
        return reinterpret_cast<const char *>(block) + RoundUp(sizeof *block);
    }

private:
    static std::int64_t RoundUp(std::uint64_t size) { return static_cast<std::int64_t>((size + 7) / 8 * 8); }

    std::int64_t m_cachesize = 0;
    std::vector<std::int64_t> m_used;
};

} // namespace zr::test

#endif
