// Chunks, regions, and those that are kept.
#include "env/chunks.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include "platform/memory.h"

namespace zr::env {

// Stands in the gap behind the first chunk of a region.
struct Region {
    std::atomic<std::uint32_t> live; // chunks in use, and one for the source that gives them out
};

namespace {

constexpr std::size_t kRegionSize = ChunksInRegion * ChunkSpan - (ChunkSpan - ChunkSize);
static_assert(sizeof(Region) <= ChunkSpan - ChunkSize);

// What an open chunk counts beside its things, so that it outlives those that end before it is closed.
constexpr std::uint32_t kOpen = 1u << 30;

// Pieces are few as long as environments are small.
constexpr unsigned kSinglesOfPieces = 4;
constexpr std::size_t kCacheLine = 64;
static_assert(sizeof(Chunk) <= kCacheLine);

// Whoever finds another thread at something goes without.
class TryGuard {
public:
    explicit TryGuard(std::atomic_flag &rInUse)
        : m_rInUse(rInUse), m_bMine(!rInUse.test_and_set(std::memory_order_acquire)) {}
    ~TryGuard() {
        if (m_bMine)
            m_rInUse.clear(std::memory_order_release);
    }
    TryGuard(const TryGuard &) = delete;
    TryGuard &operator=(const TryGuard &) = delete;
    explicit operator bool() const { return m_bMine; }

private:
    std::atomic_flag &m_rInUse;
    bool m_bMine;
};

constexpr std::align_val_t kAlignment{ChunkSpan};

// Blocks of one size that wait for the next reading, aligned by ChunkSpan: first those whose contents are forgotten, then
// those that are kept as they are, which go first.
template <std::size_t Size, std::size_t Kept, std::size_t Most>
class Spares {
public:
    // Null if none waits.
    void *Take() {
        const TryGuard guard(m_InUse);
        if (!guard || m_uCount == 0)
            return nullptr;
        void *pBlock = m_Blocks[--m_uCount];
        m_uForgotten = std::min(m_uForgotten, m_uCount);
        return pBlock;
    }
    void KeepOrDelete(void *pBlock) {
        if (const TryGuard guard(m_InUse); !guard || !Keep(pBlock))
            ::operator delete(pBlock, kAlignment);
    }
    void Drop() {
        while (void *pBlock = Take())
            ::operator delete(pBlock, kAlignment);
    }

private:
    bool Keep(void *pBlock) {
        if (m_uCount == Most)
            return false;
        if (m_uCount - m_uForgotten < Kept) {
            m_Blocks[m_uCount++] = pBlock;
            return true;
        }
        if (!platform::ForgetContents(pBlock, Size))
            return false;
        m_Blocks[m_uCount++] = std::exchange(m_Blocks[m_uForgotten++], pBlock);
        return true;
    }

    std::array<void *, Most> m_Blocks{};
    std::size_t m_uForgotten = 0;
    std::size_t m_uCount = 0; // of all
    std::atomic_flag m_InUse;
};

constinit Spares<ChunkSize, ChunksKept, MostSpareChunks> SpareChunks;
constinit Spares<kRegionSize, RegionsKept, MostSpareRegions> SpareRegions;

constinit ChunkSource PieceSource{kSinglesOfPieces};
constinit ChunkArena Pieces;
constinit std::atomic_flag PiecesInUse;

void *NewSingle() {
    void *pSpare = SpareChunks.Take();
    return pSpare ? pSpare : ::operator new(ChunkSize, kAlignment);
}

char *StartOf(Region *pRegion) {
    return reinterpret_cast<char *>(pRegion) - ChunkSize;
}

void ReleaseRegion(Region *pRegion) {
    if (pRegion->live.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    char *pMemory = StartOf(pRegion);
    pRegion->~Region();
    SpareRegions.KeepOrDelete(pMemory);
}

} // namespace

void ReleaseInChunk(Chunk *pChunk, std::uint32_t uCount) {
    if (pChunk->live.fetch_sub(uCount, std::memory_order_acq_rel) != uCount)
        return;
    Region *pRegion = pChunk->pRegion;
    pChunk->~Chunk();
    if (pRegion)
        ReleaseRegion(pRegion);
    else
        SpareChunks.KeepOrDelete(pChunk);
}

// False on no memory.
bool ChunkSource::OpenRegion() {
    auto *pMemory = static_cast<char *>(SpareRegions.Take());
    m_bFresh = !pMemory;
    try {
        if (m_bFresh)
            pMemory = static_cast<char *>(::operator new(kRegionSize, kAlignment));
    } catch (const std::bad_alloc &) {
        return false;
    }
    Close();
    m_pRegion = ::new (pMemory + ChunkSize) Region{{1}};
    m_uGiven = 0;
    return true;
}

void *ChunkSource::Take(Region *&rpRegion) {
    rpRegion = nullptr;
    if (m_uSingles != 0) {
        void *pSingle = NewSingle();
        --m_uSingles;
        return pSingle;
    }
    if ((!m_pRegion || m_uGiven == ChunksInRegion) && !OpenRegion())
        return NewSingle();
    m_pRegion->live.fetch_add(1, std::memory_order_relaxed);
    rpRegion = m_pRegion;
    char *pMemory = StartOf(m_pRegion) + ChunkSpan * m_uGiven++;
    if (m_bFresh)
        platform::FillPagesAhead(pMemory, ChunkSize);
    return pMemory;
}

void ChunkSource::Close() {
    if (m_pRegion)
        ReleaseRegion(m_pRegion);
    m_pRegion = nullptr;
}

void ChunkArena::OpenNext(ChunkSource &rSource) {
    Region *pRegion = nullptr;
    void *pMemory = rSource.Take(pRegion);
    Close();
    m_pChunk = ::new (pMemory) Chunk{{kOpen}, pRegion};
    m_pNext = static_cast<char *>(pMemory) + kCacheLine;
    m_pEnd = static_cast<char *>(pMemory) + ChunkSize - ReadableBehind;
}

void ChunkArena::Close() {
    if (m_pChunk)
        ReleaseInChunk(m_pChunk, kOpen - m_uThings);
    m_pChunk = nullptr;
    m_pNext = m_pEnd = nullptr;
    m_uThings = 0;
}

void *TakePiece(std::size_t size) {
    const TryGuard guard(PiecesInUse);
    if (!guard)
        return nullptr;
    Pieces.Align(kCacheLine);
    void *pPiece = Pieces.Take(size, PieceSource);
    Pieces.Count();
    return pPiece;
}

void ReleasePiece(void *pPiece) {
    ReleaseInChunk(ChunkOf(pPiece), 1);
}

void DropSpareChunks() {
    if (const TryGuard guard(PiecesInUse); guard) {
        Pieces.Close();
        PieceSource.Close();
        PieceSource = ChunkSource(kSinglesOfPieces);
    }
    SpareChunks.Drop();
    SpareRegions.Drop();
}

} // namespace zr::env
