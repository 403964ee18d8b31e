// Chunks and the regions that they are cut from: what is taken does not overlap, and all goes back once the last thing
// has ended, in whatever order. What is allocated with an alignment goes through the counter below.
#include "env/chunks.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <random>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/memory.h"

namespace {

std::atomic<int> blocks = 0;
bool largeRefused = false; // blocks beyond a chunk

void *Allocate(std::size_t size, std::size_t alignment) {
    if (largeRefused && size > zr::env::ChunkSize)
        throw std::bad_alloc();
    void *memory = std::malloc(size + alignment + sizeof(void *));
    if (!memory)
        throw std::bad_alloc();
    ++blocks;
    const auto first = reinterpret_cast<std::uintptr_t>(memory) + sizeof(void *);
    void **block = reinterpret_cast<void **>((first + alignment - 1) / alignment * alignment);
    block[-1] = memory;
    return block;
}

void Release(void *block) noexcept {
    if (!block)
        return;
    --blocks;
    std::free(static_cast<void **>(block)[-1]);
}

} // namespace

void *operator new(std::size_t size, std::align_val_t alignment) {
    return Allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void *block, std::align_val_t) noexcept {
    Release(block);
}
void operator delete(void *block, std::size_t, std::align_val_t) noexcept {
    Release(block);
}
namespace zr::env {
namespace {

// How many of so many chunks or regions wait for the next source.
int ThatWait(std::size_t uCount, std::size_t uKept, std::size_t uMost) {
    std::vector<char> pages(std::size_t{1} << 16);
    const bool more = platform::ForgetContents(pages.data(), pages.size());
    return static_cast<int>(std::min(uCount, more ? uMost : uKept));
}

int ChunksThatWait(std::size_t uChunks) {
    return ThatWait(uChunks, ChunksKept, MostSpareChunks);
}

int RegionsThatWait(std::size_t uRegions) {
    return ThatWait(uRegions, RegionsKept, MostSpareRegions);
}

class Chunks : public testing::Test {
protected:
    Chunks() { DropSpareChunks(); }
    ~Chunks() override {
        largeRefused = false;
        DropSpareChunks();
        EXPECT_EQ(0, blocks);
    }

    // Things of random sizes, each filled with a byte of its own.
    void Fill(ChunkSource &source, std::size_t uTotal) {
        ChunkArena arena;
        for (std::size_t sum = 0; sum < uTotal; sum += m_things.back().size()) {
            const std::size_t size = std::uniform_int_distribution<std::size_t>(1, 3000)(m_random);
            char *pThing = arena.Take(size, source);
            EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(pThing) % alignof(void *));
            arena.Count();
            std::memset(pThing, static_cast<int>(m_things.size() % 251), size);
            m_things.push_back({pThing, size});
        }
        arena.Close();
    }

    // As many chunks with one thing each.
    void TakeChunks(ChunkSource &source, std::size_t uChunks) {
        ChunkArena arena;
        constexpr std::size_t size = ChunkSize / 2;
        for (std::size_t i = 0; i != uChunks; ++i) {
            m_things.push_back({arena.Take(size, source), size});
            arena.Count();
        }
        arena.Close();
    }

    bool AllHoldTheirByte() const {
        for (std::size_t i = 0; i < m_things.size(); ++i)
            for (const char byte : m_things[i])
                if (static_cast<unsigned char>(byte) != i % 251)
                    return false;
        return true;
    }

    void ReleaseAllShuffled() {
        std::shuffle(m_things.begin(), m_things.end(), m_random);
        for (const std::string_view thing : m_things)
            ReleaseInChunk(ChunkOf(thing.data()), 1);
        m_things.clear();
    }

    std::mt19937 m_random{7};
    std::vector<std::string_view> m_things;
};

TEST_F(Chunks, ThingsOfChunksAndRegions_DoNotOverlap) {
    ChunkSource source(4);
    Fill(source, 5 * 1024 * 1024);
    EXPECT_TRUE(AllHoldTheirByte());
    EXPECT_EQ(4 + 3, blocks) << "256 KB in chunks of their own, the rest in three regions";
    source.Close();
    ReleaseAllShuffled();
    EXPECT_EQ(4 + RegionsThatWait(3), blocks);
}

TEST_F(Chunks, RegionWithoutMemory_ChunksOfTheirOwnInstead) {
    ChunkSource source(1);
    largeRefused = true;
    Fill(source, 1024 * 1024);
    EXPECT_TRUE(AllHoldTheirByte());
    EXPECT_GT(blocks, 16);
    source.Close();
    ReleaseAllShuffled();
}

TEST_F(Chunks, LastThing_HoldsItsRegion) {
    ChunkSource source(0);
    Fill(source, 100000);
    source.Close();
    DropSpareChunks();
    const std::string_view last = m_things.back();
    m_things.pop_back();
    ReleaseAllShuffled();
    DropSpareChunks();
    EXPECT_EQ(1, blocks);
    m_things.push_back(last);
    ReleaseAllShuffled();
    DropSpareChunks();
    EXPECT_EQ(0, blocks);
}

TEST_F(Chunks, NoMoreThanSoManyWait) {
    for (const std::size_t chunks : {ChunksKept + 1, MostSpareChunks + 1}) {
        ChunkSource source(static_cast<unsigned>(chunks));
        TakeChunks(source, chunks);
        source.Close();
        ReleaseAllShuffled();
        EXPECT_EQ(ChunksThatWait(chunks), blocks) << chunks;
    }
    DropSpareChunks();
    for (const std::size_t regions : {RegionsKept + 1, MostSpareRegions + 1}) {
        ChunkSource source(0);
        TakeChunks(source, regions * ChunksInRegion);
        source.Close();
        ReleaseAllShuffled();
        EXPECT_EQ(RegionsThatWait(regions), blocks) << regions;
    }
}

TEST_F(Chunks, NextSource_TakesWhatWaits) {
    for (int round = 0; round < 3; ++round) {
        ChunkSource source(4);
        Fill(source, 3 * 1024 * 1024);
        source.Close();
        EXPECT_EQ(4 + RegionsThatWait(2), blocks);
        ReleaseAllShuffled();
    }
}

TEST_F(Chunks, SourceThatTookNothing_ClosesWithoutEffect) {
    ChunkSource source(1);
    ChunkArena arena;
    arena.Close();
    source.Close();
    EXPECT_EQ(0, blocks);
}

TEST_F(Chunks, Pieces_StartOnLinesOfTheCacheAndStandApart) {
    for (std::size_t i = 0; i < 2000; ++i) {
        auto *pPiece = static_cast<char *>(TakePiece(1 + i % 4000));
        ASSERT_NE(nullptr, pPiece);
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(pPiece) % 64);
        std::memset(pPiece, static_cast<int>(i % 251), 1 + i % 4000);
        m_things.push_back({pPiece, 1 + i % 4000});
    }
    EXPECT_TRUE(AllHoldTheirByte());
    DropSpareChunks();
    EXPECT_TRUE(AllHoldTheirByte()) << "pieces in use stay";
    ReleaseAllShuffled();
}

TEST_F(Chunks, ThreadsThatTakeAndRelease_LeaveNothing) {
    const auto work = [](unsigned seed) {
        std::mt19937 random{seed};
        std::vector<std::pair<char *, std::size_t>> pieces;
        ChunkSource source(2);
        ChunkArena arena;
        for (int i = 0; i < 5000; ++i) {
            const std::size_t size = std::uniform_int_distribution<std::size_t>(8, 2000)(random);
            auto *pPiece = static_cast<char *>(TakePiece(size));
            if (!pPiece) { // another thread is at it
                pPiece = arena.Take(size, source);
                arena.Count();
            }
            std::memset(pPiece, static_cast<int>(seed), size);
            pieces.push_back({pPiece, size});
            if (pieces.size() > 50) {
                std::swap(pieces[random() % pieces.size()], pieces.back());
                EXPECT_EQ(static_cast<char>(seed), pieces.back().first[pieces.back().second - 1]);
                ReleasePiece(pieces.back().first);
                pieces.pop_back();
            }
        }
        arena.Close();
        source.Close();
        for (const auto &[pPiece, size] : pieces) {
            EXPECT_EQ(static_cast<char>(seed), pPiece[0]);
            ReleasePiece(pPiece);
        }
    };
    std::thread others[] = {std::thread(work, 1U), std::thread(work, 2U), std::thread(work, 3U)};
    for (std::thread &other : others)
        other.join();
}

TEST(PagesAhead, ContentsStayAndErrnoToo) {
    std::vector<char> memory(std::size_t{1} << 20, 'x');
    errno = 17;
    platform::FillPagesAhead(memory.data(), memory.size());
    platform::FillPagesAhead(memory.data() + 1, 100);
    platform::FillPagesAhead(nullptr, 0);
    EXPECT_EQ(17, errno);
    EXPECT_EQ(memory.size(), static_cast<std::size_t>(std::count(memory.begin(), memory.end(), 'x')));
}

// Of what is around the whole pages nothing is forgotten; what they hold is written anew.
TEST(ForgottenPages, NeighboursStayAndErrnoToo) {
    constexpr std::size_t margin = 100;
    std::vector<char> memory((std::size_t{1} << 20) + 2 * margin, 'x');
    errno = 17;
    const bool forgotten = platform::ForgetContents(memory.data() + margin, memory.size() - 2 * margin);
    EXPECT_EQ(17, errno);
    for (std::size_t i = 0; i != margin; ++i) {
        ASSERT_EQ('x', memory[i]);
        ASSERT_EQ('x', memory[memory.size() - 1 - i]);
    }
    std::fill(memory.begin(), memory.end(), 'y');
    EXPECT_EQ(memory.size(), static_cast<std::size_t>(std::count(memory.begin(), memory.end(), 'y')));
    EXPECT_FALSE(platform::ForgetContents(memory.data() + 1, 100)) << "no whole page";
    EXPECT_FALSE(platform::ForgetContents(nullptr, 0));
    EXPECT_EQ(forgotten, platform::ForgetContents(memory.data(), memory.size())) << "each system knows it or does not";
}

} // namespace
} // namespace zr::env
