// Pools.
#include "frame/pool.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <zrclb/heap.h>

#include "frame/counted_allocation.h"
#include "frame/reference_pool.h"
#include "frame/refused_heap.h"
#include "frame/report_fixture.h"

// Lets allocations that are too large fail under the sanitizers as they do without.
extern "C" const char *__asan_default_options() {
    return "allocator_may_return_null=1";
}
extern "C" const char *__tsan_default_options() {
    return "allocator_may_return_null=1";
}

namespace {

using zr::frame::heap_block_count;
using zr::frame::heap_pool_bytes;
using zr::test::HeapBalance;
using zr::test::HeapRefusal;
using zr::test::ReferencePool;

const zr_long bytes_at_start = heap_pool_bytes; // before any pool

constexpr unsigned largest = 2147483640; // the greatest multiple of 8 in 31 bits
constexpr const char *too_large = "heap_allocate: parameter 'size' greater than cachesize";

class Pool : public ReportFixture {
protected:
    void SetUp() override {
        ReportFixture::SetUp();
        m_blocks = heap_block_count;
        m_bytes = heap_pool_bytes;
    }

    void TearDown() override {
        EXPECT_EQ(TakeError(), "");
        for (heap_pool_block *pool : m_pools)
            heap_close(pool);
        EXPECT_EQ(heap_block_count, m_blocks);
        ReportFixture::TearDown();
    }

    // A pool that is closed at the end.
    heap_pool_block *Open(unsigned cachesize, int clear = 0) {
        heap_pool_block *pool = heap_open(cachesize, clear);
        if (pool != nullptr)
            m_pools.push_back(pool);
        return pool;
    }

    void Close(heap_pool_block *pool) {
        heap_close(pool);
        std::erase(m_pools, pool);
    }

    // The text of the one error since the last call, empty if there was none.
    static std::string TakeError() {
        std::string text = debugger.size() == 3 ? debugger[1] : "";
        if (!debugger.empty()) {
            EXPECT_EQ(debugger.size(), 3u);
            EXPECT_EQ(debugger[0].find("ZR_ERROR in prog.exe \"Heap\" line "), 0u);
        }
        debugger.clear();
        return text;
    }

    static std::ptrdiff_t Offset(heap_pool_block *block, const void *data) {
        return static_cast<const char *>(data) - ReferencePool::DataOf(block);
    }

    zr_long Blocks() const { return heap_block_count - m_blocks; }
    zr_long Bytes() const { return heap_pool_bytes - m_bytes; }

private:
    zr_long m_blocks = 0;
    zr_long m_bytes = 0;
    std::vector<heap_pool_block *> m_pools;
};

TEST_F(Pool, FieldsStandInTheirOrder) {
    EXPECT_EQ(offsetof(heap_pool_block, cachesize), 0u);
    EXPECT_EQ(offsetof(heap_pool_block, free), 4u);
    EXPECT_EQ(offsetof(heap_pool_block, clear), 8u);
    EXPECT_EQ(offsetof(heap_pool_block, next_free), sizeof(void *) == 8 ? 16u : 12u);
    EXPECT_EQ(offsetof(heap_pool_block, next_block), sizeof(void *) == 8 ? 24u : 16u);
}

TEST_F(Pool, OpenMakesOneBlockOfTheRoundedSize) {
    const unsigned sizes[][2] = {{100, 104}, {104, 104}, {1, 8}, {8, 8}, {9, 16}, {0, 0}, {1000001, 1000008}};
    zr_long blocks = 0;
    for (const auto &[asked, rounded] : sizes) {
        heap_pool_block *pool = Open(asked, 5);
        ASSERT_NE(pool, nullptr);
        EXPECT_EQ(Blocks(), ++blocks);
        EXPECT_EQ(pool->cachesize, static_cast<zr_long>(rounded));
        EXPECT_EQ(pool->free, static_cast<zr_long>(rounded));
        EXPECT_EQ(pool->clear, 5);
        EXPECT_EQ(pool->next_free, ReferencePool::DataOf(pool));
        EXPECT_EQ(pool->next_block, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pool->next_free) % 8, 0u);
    }
    EXPECT_EQ(Bytes(), 0);
}

TEST_F(Pool, EachBlockIsOneAllocation) {
    const HeapBalance balance;
    heap_pool_block *pool = Open(100);
    EXPECT_EQ(balance.Open(), 1);
    heap_allocate(pool, 40);
    heap_allocate(pool, 40);
    EXPECT_EQ(balance.Open(), 1);
    heap_allocate(pool, 40);
    EXPECT_EQ(balance.Open(), 2);
    EXPECT_EQ(Blocks(), 2);
    Close(pool);
    EXPECT_EQ(balance.Open(), 0);
    EXPECT_EQ(Blocks(), 0);
}

TEST_F(Pool, BlockIsNotFilledToItsLastByte) {
    heap_pool_block *pool = Open(100);
    void *data = heap_allocate(pool, 104);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(pool->free, 104);
    EXPECT_EQ(pool->next_free, ReferencePool::DataOf(pool));
    ASSERT_NE(pool->next_block, nullptr);
    EXPECT_EQ(pool->next_block->cachesize, 104);
    EXPECT_EQ(pool->next_block->free, 0);
    EXPECT_EQ(pool->next_block->next_block, nullptr);
    EXPECT_EQ(data, ReferencePool::DataOf(pool->next_block));
    EXPECT_EQ(Blocks(), 2);
    EXPECT_EQ(Offset(pool, heap_allocate(pool, 96)), 0);
    EXPECT_EQ(pool->free, 8);
    heap_allocate(pool, 8);
    EXPECT_EQ(pool->free, 8);
    EXPECT_EQ(Blocks(), 3);
}

TEST_F(Pool, AllocationsTakeMultiplesOfEight) {
    heap_pool_block *pool = Open(1000);
    EXPECT_EQ(Offset(pool, heap_allocate(pool, 1)), 0);
    EXPECT_EQ(pool->free, 992);
    EXPECT_EQ(Offset(pool, heap_allocate(pool, 8)), 8);
    EXPECT_EQ(Offset(pool, heap_allocate(pool, 9)), 16);
    EXPECT_EQ(Offset(pool, heap_allocate(pool, 24)), 32);
    EXPECT_EQ(pool->free, 1000 - 56);
    EXPECT_EQ(Offset(pool, pool->next_free), 56);
}

TEST_F(Pool, ClearZeroesTheBytesAskedFor) {
    for (int clear : {1, -1, 0}) {
        heap_pool_block *pool = Open(100, clear);
        const unsigned char zero = clear != 0 ? 0 : 0xAA;
        std::memset(pool->next_free, 0xAA, 104);
        const auto *one = static_cast<unsigned char *>(heap_allocate(pool, 1));
        const auto *ten = static_cast<unsigned char *>(heap_allocate(pool, 10));
        EXPECT_EQ(one[0], zero);
        for (int i = 1; i < 8; ++i)
            EXPECT_EQ(one[i], 0xAA);
        for (int i = 0; i < 10; ++i)
            EXPECT_EQ(ten[i], zero);
        for (int i = 10; i < 16; ++i)
            EXPECT_EQ(ten[i], 0xAA);
        EXPECT_EQ(ten - one, 8);
    }
}

TEST_F(Pool, NewBlockGivesZerosToo) {
    heap_pool_block *pool = Open(4096, 1);
    heap_allocate(pool, 2000);
    const auto *data = static_cast<unsigned char *>(heap_allocate(pool, 4096));
    EXPECT_EQ(pool->next_block->clear, 1);
    int set = 0;
    for (int i = 0; i < 4096; ++i)
        set += data[i] != 0;
    EXPECT_EQ(set, 0);
}

TEST_F(Pool, FirstBlockWithMoreThanEnoughServes) {
    heap_pool_block *pool = Open(64);
    heap_allocate(pool, 40); // leaves 24
    heap_allocate(pool, 48); // a second block, leaves 16
    heap_allocate(pool, 56); // a third one, leaves 8
    heap_pool_block *second = pool->next_block;
    heap_pool_block *third = second->next_block;
    EXPECT_EQ(Offset(pool, heap_allocate(pool, 16)), 40); // leaves 8
    EXPECT_EQ(Offset(second, heap_allocate(pool, 8)), 48);
    EXPECT_EQ(pool->free, 8);
    EXPECT_EQ(second->free, 8);
    EXPECT_EQ(third->free, 8);
    void *data = heap_allocate(pool, 8);
    ASSERT_NE(third->next_block, nullptr);
    EXPECT_EQ(Offset(third->next_block, data), 0);
    EXPECT_EQ(third->next_block->free, 56);
}

TEST_F(Pool, NewBlockTakesAfterTheLastOne) {
    heap_pool_block *pool = Open(64);
    heap_allocate(pool, 64);
    heap_pool_block *second = pool->next_block;
    second->clear = 1;
    std::memset(ReferencePool::DataOf(pool), 0xAA, 64);
    EXPECT_EQ(*static_cast<unsigned char *>(heap_allocate(pool, 8)), 0xAA); // the serving block decides
    const auto *data = static_cast<unsigned char *>(heap_allocate(pool, 60));
    EXPECT_EQ(second->next_block->cachesize, 64);
    EXPECT_EQ(second->next_block->clear, 1);
    for (int i = 0; i < 60; ++i)
        EXPECT_EQ(data[i], 0);

    second->next_block->cachesize = 128;
    EXPECT_EQ(heap_allocate(pool, 65), nullptr); // the first block decides
    EXPECT_EQ(TakeError(), too_large);
    void *fourth = heap_allocate(pool, 56);
    heap_pool_block *last = second->next_block->next_block;
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(fourth, ReferencePool::DataOf(last));
    EXPECT_EQ(last->cachesize, 128);
    EXPECT_EQ(last->free, 72);
    EXPECT_EQ(heap_allocate(pool, 64), ReferencePool::DataOf(last) + 56);
    EXPECT_EQ(Blocks(), 4);
}

// Two pools that were made one.
TEST_F(Pool, NewBlockThatWouldBeTooSmallIsRefused) {
    heap_pool_block *pool = Open(64);
    pool->next_block = heap_open(16, 0);
    EXPECT_EQ(heap_allocate(pool, 64), nullptr);
    EXPECT_EQ(TakeError(), too_large);
    EXPECT_EQ(Blocks(), 2);
    EXPECT_EQ(pool->free, 64);
    EXPECT_EQ(pool->next_block->free, 16);
    EXPECT_EQ(pool->next_block->next_block, nullptr);
    EXPECT_EQ(heap_allocate(pool, 56), ReferencePool::DataOf(pool));
    void *third = heap_allocate(pool, 16);
    ASSERT_NE(pool->next_block->next_block, nullptr);
    EXPECT_EQ(third, ReferencePool::DataOf(pool->next_block->next_block));
}

TEST_F(Pool, MoreThanTheCachesizeIsRefused) {
    heap_pool_block *pool = Open(100);
    heap_allocate(pool, 10);
    const heap_pool_block before = *pool;
    EXPECT_EQ(heap_allocate(pool, 105), nullptr);
    EXPECT_EQ(TakeError(), too_large);
    EXPECT_EQ(std::memcmp(pool, &before, sizeof before), 0);
    EXPECT_EQ(Bytes(), 115);
    EXPECT_EQ(Blocks(), 1);
    EXPECT_NE(heap_allocate(pool, 101), nullptr); // 104 after rounding
    EXPECT_EQ(Blocks(), 2);
    EXPECT_EQ(heap_allocate(pool, 105), nullptr);
    EXPECT_EQ(TakeError(), too_large);
    EXPECT_EQ(Blocks(), 2);
}

TEST_F(Pool, SizesThatRoundBeyondAllBitsAreRefused) {
    heap_pool_block *pool = Open(100);
    heap_pool_block *empty = Open(0);
    for (unsigned size : {UINT_MAX, UINT_MAX - 6, UINT_MAX - 7, 0x80000000u, 0x7FFFFFF9u, 0x7FFFFFF8u}) {
        EXPECT_EQ(heap_allocate(pool, size), nullptr);
        EXPECT_EQ(TakeError(), too_large) << size;
        EXPECT_EQ(heap_allocate(empty, size), nullptr);
        EXPECT_EQ(TakeError(), too_large) << size;
    }
    EXPECT_EQ(pool->free, 104);
    EXPECT_EQ(Blocks(), 2);
    for (unsigned size : {UINT_MAX, UINT_MAX - 6, UINT_MAX - 7, 0x80000000u, largest + 1}) {
        HeapRefusal refusal(0);
        EXPECT_EQ(Open(size), nullptr);
        EXPECT_EQ(TakeError(), "heap_open: out of space") << size;
        EXPECT_FALSE(refusal.Met()) << size;
    }
}

TEST_F(Pool, LargestPoolIsThereIfMemoryIs) {
    for (unsigned size : {largest, largest - 7}) {
        HeapRefusal refusal(0);
        EXPECT_EQ(Open(size), nullptr);
        EXPECT_TRUE(refusal.Met()) << size;
        EXPECT_EQ(TakeError(), "heap_open: out of space");
    }
    heap_pool_block *pool = Open(largest);
    if (pool == nullptr) {
        EXPECT_EQ(TakeError(), "heap_open: out of space");
        --heap_block_count; // failures count
        return;
    }
    EXPECT_EQ(pool->cachesize, 2147483640);
    auto *data = static_cast<char *>(heap_allocate(pool, largest - 8));
    EXPECT_EQ(Offset(pool, data), 0);
    EXPECT_EQ(pool->free, 8);
    data[largest - 9] = 1;
    EXPECT_EQ(heap_allocate(pool, largest + 1), nullptr);
    EXPECT_EQ(TakeError(), too_large);
}

TEST_F(Pool, LargestNewBlockIsThereIfMemoryIs) {
    heap_pool_block *pool = Open(64);
    pool->cachesize = static_cast<zr_long>(largest); // as if it were one
    for (unsigned size : {largest, largest - 7}) {
        HeapRefusal refusal(0);
        EXPECT_EQ(heap_allocate(pool, size), nullptr);
        EXPECT_TRUE(refusal.Met()) << size;
        EXPECT_EQ(TakeError(), "heap_allocate: out of space");
    }
    EXPECT_EQ(heap_allocate(pool, largest + 1), nullptr);
    EXPECT_EQ(TakeError(), too_large);
    EXPECT_EQ(pool->next_block, nullptr);
}

TEST_F(Pool, ZeroBytesAreAnAllocation) {
    heap_pool_block *pool = Open(16, 1);
    std::memset(pool->next_free, 0xAA, 16);
    void *first = heap_allocate(pool, 0);
    EXPECT_EQ(Offset(pool, first), 0);
    EXPECT_EQ(*static_cast<unsigned char *>(first), 0xAA);
    EXPECT_EQ(heap_allocate(pool, 0), first);
    EXPECT_EQ(pool->free, 16);
    heap_allocate(pool, 16);
    heap_allocate(pool, 8);
    EXPECT_EQ(pool->free, 8);
    EXPECT_EQ(Offset(pool, heap_allocate(pool, 0)), 8);
}

TEST_F(Pool, PoolOfZeroBytesServesZeroBytes) {
    heap_pool_block *pool = Open(0);
    void *first = heap_allocate(pool, 0);
    void *second = heap_allocate(pool, 0);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second); // each from a block of its own
    EXPECT_EQ(first, ReferencePool::DataOf(pool->next_block));
    EXPECT_EQ(Blocks(), 3);
    EXPECT_EQ(heap_allocate(pool, 1), nullptr);
    EXPECT_EQ(TakeError(), too_large);
    EXPECT_EQ(Blocks(), 3);
}

TEST_F(Pool, NullHandleIsReported) {
    EXPECT_EQ(heap_allocate(nullptr, 10), nullptr);
    EXPECT_EQ(TakeError(), "heap_allocate: incorrect ID for this heap");
    heap_deallocate(nullptr);
    EXPECT_EQ(TakeError(), "heap_deallocate: incorrect ID for this heap");
    heap_deallocate(nullptr, "more", 7);
    EXPECT_EQ(TakeError(), "heap_deallocate: incorrect ID for this heap");
    heap_close(nullptr);
    EXPECT_EQ(TakeError(), "");
    EXPECT_EQ(Bytes(), 0);
}

TEST_F(Pool, DeallocateGivesNothingBack) {
    heap_pool_block *pool = Open(100);
    heap_pool_block *other = Open(100);
    void *data = heap_allocate(pool, 10);
    const heap_pool_block before = *pool;
    heap_deallocate(pool);
    heap_deallocate(pool, data);
    heap_deallocate(pool, data, 10u, 1.5, "more");
    heap_deallocate(other, data); // not of that pool
    EXPECT_EQ(std::memcmp(pool, &before, sizeof before), 0);
    EXPECT_EQ(other->free, 104);
    EXPECT_EQ(Blocks(), 2);
    EXPECT_EQ(Bytes(), 10);
}

TEST_F(Pool, CloseFreesTheWholeChain) {
    heap_pool_block *pool = Open(1000);
    for (int i = 0; i < 3000; ++i)
        heap_allocate(pool, 900);
    EXPECT_EQ(Blocks(), 3000);
    Close(pool);
    EXPECT_EQ(Blocks(), 0);
}

TEST_F(Pool, LaterBlockAsHandleIsTheRestOfTheChain) {
    heap_pool_block *pool = Open(64);
    for (int i = 0; i < 3; ++i)
        heap_allocate(pool, 32);
    EXPECT_EQ(Blocks(), 3);
    heap_pool_block *second = pool->next_block;
    EXPECT_EQ(heap_allocate(second, 24), ReferencePool::DataOf(second) + 32);
    EXPECT_EQ(pool->free, 32);
    pool->next_block = nullptr;
    heap_close(second);
    EXPECT_EQ(Blocks(), 1);
}

TEST_F(Pool, SumOfSizesStartsAtZero) {
    EXPECT_EQ(bytes_at_start, 0);
}

TEST_F(Pool, SizesAreSummedAsTheyWereAsked) {
    heap_pool_block *pool = Open(100);
    heap_allocate(pool, 1);
    heap_allocate(pool, 9);
    EXPECT_EQ(Bytes(), 10);
    heap_allocate(nullptr, 1000);
    EXPECT_EQ(Bytes(), 10);
    TakeError();
    heap_allocate(pool, 2000);
    EXPECT_EQ(Bytes(), 2010);
    TakeError();
    {
        HeapRefusal refusal(0);
        heap_allocate(pool, 104);
        TakeError();
    }
    EXPECT_EQ(Bytes(), 2114);
    const zr_long before = heap_pool_bytes;
    heap_allocate(pool, UINT_MAX); // wraps
    TakeError();
    EXPECT_EQ(heap_pool_bytes, before - 1);
}

TEST_F(Pool, OpenWithoutMemoryReports) {
    HeapRefusal refusal(0);
    EXPECT_EQ(Open(100), nullptr);
    EXPECT_TRUE(refusal.Met());
    EXPECT_EQ(TakeError(), "heap_open: out of space");
    EXPECT_EQ(Blocks(), 0);
    EXPECT_EQ(Bytes(), 0);
}

TEST_F(Pool, AllocateWithoutMemoryLeavesThePool) {
    heap_pool_block *pool = Open(100);
    auto *data = static_cast<char *>(heap_allocate(pool, 90));
    std::memset(data, 'x', 90);
    heap_allocate(pool, 90);
    const heap_pool_block first = *pool;
    const heap_pool_block second = *pool->next_block;
    {
        HeapRefusal refusal(0, true);
        EXPECT_EQ(heap_allocate(pool, 90), nullptr);
        EXPECT_TRUE(refusal.Met());
        EXPECT_EQ(TakeError(), "heap_allocate: out of space");
    }
    EXPECT_EQ(Blocks(), 2);
    EXPECT_EQ(std::memcmp(pool, &first, sizeof first), 0);
    EXPECT_EQ(std::memcmp(pool->next_block, &second, sizeof second), 0);
    EXPECT_EQ(std::string(data, 90), std::string(90, 'x'));
    EXPECT_NE(heap_allocate(pool, 90), nullptr);
    EXPECT_EQ(Blocks(), 3);
}

// Any sizes: places are those of the reference, and what was written stays.
TEST_F(Pool, AnyAllocationsGoAsTold) {
    std::mt19937 random(5);
    for (int round = 0; round < 40; ++round) {
        const auto cachesize = static_cast<unsigned>(random() % 300);
        const int clear = static_cast<int>(random() % 2);
        heap_pool_block *pool = Open(cachesize, clear);
        ReferencePool reference(cachesize);
        std::vector<std::pair<unsigned char *, std::size_t>> given;
        for (int call = 0; call < 100; ++call) {
            const auto size = static_cast<unsigned>(random() % (cachesize + 12));
            auto *data = static_cast<unsigned char *>(heap_allocate(pool, size));
            const auto expected = reference.Allocate(size);
            ASSERT_EQ(TakeError(), expected ? "" : too_large);
            ASSERT_TRUE(reference.IsLike(pool, clear)) << cachesize << " " << size;
            ASSERT_EQ(data != nullptr, expected.has_value());
            if (!expected)
                continue;
            ASSERT_EQ(Offset(ReferencePool::BlockAt(pool, expected->block), data), expected->offset);
            std::memset(data, static_cast<int>(given.size()), size);
            given.emplace_back(data, size);
        }
        for (std::size_t i = 0; i < given.size(); ++i) {
            for (std::size_t byte = 0; byte < given[i].second; ++byte)
                ASSERT_EQ(given[i].first[byte], static_cast<unsigned char>(i));
        }
        Close(pool);
    }
}

TEST_F(Pool, PoolsOfSeveralThreadsShareOnlyTheSum) {
    constexpr int count = 20000;
    bool good[2] = {};
    const auto work = [&good](std::size_t which) {
        const auto mark = static_cast<unsigned char>(which + 1);
        heap_pool_block *pool = heap_open(24 * 1000, 1);
        std::vector<unsigned char *> given;
        int wrong = 0;
        for (int i = 0; i < count; ++i) {
            given.push_back(static_cast<unsigned char *>(heap_allocate(pool, 24)));
            wrong += given.back()[0] + given.back()[23];
            std::memset(given.back(), mark, 24);
        }
        for (const unsigned char *data : given)
            wrong += data[0] != mark || data[23] != mark ? 1 : 0;
        heap_close(pool);
        good[which] = wrong == 0;
    };
    std::thread other(work, 1u);
    work(0);
    other.join();
    EXPECT_TRUE(good[0]);
    EXPECT_TRUE(good[1]);
    EXPECT_GE(Bytes(), 24);
    EXPECT_LE(Bytes(), 2 * 24 * count);
}

} // namespace
