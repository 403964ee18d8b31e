// Memory of many small things that end together: chunks that are filled from front to back and given back as a whole.
//
// A chunk lives until all that was taken from it has been released, whoever does that. The first chunks of a source are
// allocations of their own; where more are wanted they are cut from regions, and in a fresh region the system is asked for
// all pages of a chunk at once. Empty chunks and regions wait for the next reading: fresh memory costs as much as what is then done with it.
#ifndef ZR_ENV_CHUNKS_H
#define ZR_ENV_CHUNKS_H

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace zr::env {

// A chunk starts on a multiple of its span, so an address tells the chunk that it lies in. The size leaves room for the
// allocator's own words, so that neighbouring chunks can follow each other without a hole.
constexpr std::size_t ChunkSpan = 64 * 1024;
constexpr std::size_t ChunkSize = ChunkSpan - 64;

// What waits at most for the next reading. So many chunks of their own and regions of 2 MB are kept as they are, 4 MB and 64
// MB (4 MB where addresses are scarce); more only where the system may take what is behind them meanwhile: they cost
// nothing but addresses then.
constexpr std::size_t ChunksInRegion = 32;
constexpr std::size_t ChunksKept = 64;
constexpr std::size_t RegionsKept = sizeof(void *) == 8 ? 32 : 2;
constexpr std::size_t MostSpareChunks = sizeof(void *) == 8 ? 4096 : 128;
constexpr std::size_t MostSpareRegions = sizeof(void *) == 8 ? 256 : 8;

struct Region;

// Stands at the start of a chunk.
struct Chunk {
    std::atomic<std::uint32_t> live; // things in it; more while it is open
    Region *pRegion;                 // null for a chunk of its own
};

inline Chunk *ChunkOf(const void *pThing) {
    return reinterpret_cast<Chunk *>(reinterpret_cast<std::uintptr_t>(pThing) & ~(std::uintptr_t{ChunkSpan} - 1));
}

// Tells a chunk that so many of its things have ended. Any thread.
void ReleaseInChunk(Chunk *pChunk, std::uint32_t uCount);

// Where the chunks of one owner come from. Nothing happens at its end: the owner calls Close.
class ChunkSource {
public:
    // The first chunks, so many, are no parts of regions.
    constexpr explicit ChunkSource(unsigned uSingles) : m_uSingles(uSingles) {}

    void *Take(Region *&rpRegion); // ChunkSize bytes and the region to be noted there; std::bad_alloc on no memory
    void Close();                  // gives up the rest of the region

private:
    bool OpenRegion();

    unsigned m_uSingles;
    Region *m_pRegion = nullptr; // whose chunks are given out
    bool m_bFresh = false;       // it was none that had waited
    std::size_t m_uGiven = 0;    // of it
};

// An open chunk, and after it the next. Nothing happens at its end: the owner calls Close.
class ChunkArena {
public:
    // Bytes for one thing, aligned for pointers, far fewer than a chunk has; so many bytes behind them may be read and,
    // until the next call, be written. Count says that the thing is there. std::bad_alloc on no memory.
    char *Take(std::size_t size, ChunkSource &rSource) {
        size = Rounded(size, alignof(void *));
        if (static_cast<std::size_t>(m_pEnd - m_pNext) < size)
            OpenNext(rSource);
        char *pTaken = m_pNext;
        m_pNext += size;
        return pTaken;
    }
    void Count() { ++m_uThings; }

    // What is taken next starts on a multiple of a power of two up to 64, if there is room for that.
    void Align(std::size_t uBoundary) {
        const std::size_t gap =
            Rounded(reinterpret_cast<std::uintptr_t>(m_pNext), uBoundary) - reinterpret_cast<std::uintptr_t>(m_pNext);
        if (m_pNext && static_cast<std::size_t>(m_pEnd - m_pNext) >= gap)
            m_pNext += gap;
    }
    void Close();

    static constexpr std::size_t ReadableBehind = 32;

private:
    static constexpr std::size_t Rounded(std::size_t size, std::size_t uBoundary) {
        return (size + uBoundary - 1) / uBoundary * uBoundary;
    }
    void OpenNext(ChunkSource &rSource);

    char *m_pNext = nullptr;
    char *m_pEnd = nullptr;
    Chunk *m_pChunk = nullptr;
    std::uint32_t m_uThings = 0; // counted in the open chunk
};

// Memory for a thing of some kilobytes at most that shares chunks with such things of all owners, at the start of a
// line of the processor's cache. Null where another thread is at it: the caller then allocates. std::bad_alloc on no
// memory. Any thread.
void *TakePiece(std::size_t size);
void ReleasePiece(void *pPiece);

// Gives back the chunks and regions that are kept for the next reading, and the rest of what the pieces come from.
void DropSpareChunks();

} // namespace zr::env

#endif
