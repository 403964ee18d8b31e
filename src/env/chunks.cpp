// Chunks, regions, and those that are kept.
#include "env/chunks.h"

#include <array>
#include <new>

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

constinit std::array<void *, MostSpareChunks> SpareChunks{};
constinit std::size_t SpareChunkCount = 0;
constinit std::array<void *, MostSpareRegions> SpareRegions{};
constinit std::size_t SpareRegionCount = 0;
constinit std::atomic_flag SparesInUse;

constinit ChunkSource PieceSource{kSinglesOfPieces};
constinit ChunkArena Pieces;
constinit std::atomic_flag PiecesInUse;

constexpr std::align_val_t kAlignment{ChunkSpan};

void *NewSingle() {
    if (const TryGuard guard(SparesInUse); guard && SpareChunkCount != 0)
        return SpareChunks[--SpareChunkCount];
    return ::operator new(ChunkSize, kAlignment);
}

void DeleteSingle(void *pMemory) {
    if (const TryGuard guard(SparesInUse); guard && SpareChunkCount != SpareChunks.size())
        SpareChunks[SpareChunkCount++] = pMemory;
    else
        ::operator delete(pMemory, kAlignment);
}

char *StartOf(Region *pRegion) {
    return reinterpret_cast<char *>(pRegion) - ChunkSize;
}

// std::bad_alloc on no memory.
char *NewRegionMemory() {
    if (const TryGuard guard(SparesInUse); guard && SpareRegionCount != 0)
        return static_cast<char *>(SpareRegions[--SpareRegionCount]);
    void *pMemory = ::operator new(kRegionSize, kAlignment);
    platform::FillPagesAhead(pMemory, kRegionSize);
    return static_cast<char *>(pMemory);
}

void ReleaseRegion(Region *pRegion) {
    if (pRegion->live.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    char *pMemory = StartOf(pRegion);
    pRegion->~Region();
    if (const TryGuard guard(SparesInUse);
        guard && (SpareRegionCount < RegionsKept ||
                  (SpareRegionCount != SpareRegions.size() && platform::ForgetContents(pMemory, kRegionSize))))
        SpareRegions[SpareRegionCount++] = pMemory;
    else
        ::operator delete(pMemory, kAlignment);
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
        DeleteSingle(pChunk);
}

// False on no memory.
bool ChunkSource::OpenRegion() {
    char *pMemory = nullptr;
    try {
        pMemory = NewRegionMemory();
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
    return StartOf(m_pRegion) + ChunkSpan * m_uGiven++;
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
    const TryGuard guard(SparesInUse);
    while (guard && SpareChunkCount != 0)
        ::operator delete(SpareChunks[--SpareChunkCount], kAlignment);
    while (guard && SpareRegionCount != 0)
        ::operator delete(SpareRegions[--SpareRegionCount], kAlignment);
}

} // namespace zr::env
