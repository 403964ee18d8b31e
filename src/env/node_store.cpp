// Chunks of nodes, single nodes, and the end of trees.
#include "env/node_store.h"

#include <array>
#include <atomic>
#include <cstring>
#include <new>

#include "env/name_index.h"

namespace Zr {

namespace {

// A chunk starts on a multiple of its span, so a node's address tells the chunk that it lies in. The size leaves room
// for the allocator's own words, so that neighbouring chunks can follow each other without a hole.
constexpr std::size_t kChunkSpan = 64 * 1024;
constexpr std::size_t kChunkSize = kChunkSpan - 64;
constexpr std::size_t kGrain = alignof(void *);

// What an open chunk counts beside its nodes, so that it outlives the nodes that end before it is closed.
constexpr std::uint32_t kOpen = 1u << 30;

constexpr std::size_t kStride = 16;

struct Chunk {
    std::atomic<std::uint32_t> live;
};

// Empty chunks for the next reading: fresh memory costs as much as what is then done with it. Whoever finds another thread
// at them goes without.
constinit std::array<void *, 128> SpareChunks{};
constinit std::size_t SpareCount = 0;
constinit std::atomic_flag SparesInUse;

class SpareGuard {
public:
    SpareGuard() : m_bMine(!SparesInUse.test_and_set(std::memory_order_acquire)) {}
    ~SpareGuard() {
        if (m_bMine)
            SparesInUse.clear(std::memory_order_release);
    }
    SpareGuard(const SpareGuard &) = delete;
    SpareGuard &operator=(const SpareGuard &) = delete;
    explicit operator bool() const { return m_bMine; }

private:
    bool m_bMine;
};

void *NewChunkMemory() {
    if (const SpareGuard guard; guard && SpareCount != 0)
        return SpareChunks[--SpareCount];
    return ::operator new (kChunkSize, std::align_val_t{kChunkSpan});
}

void DeleteChunkMemory(void *pMemory) {
    if (const SpareGuard guard; guard && SpareCount != SpareChunks.size())
        SpareChunks[SpareCount++] = pMemory;
    else
        ::operator delete (pMemory, std::align_val_t{kChunkSpan});
}

constexpr std::size_t Rounded(std::size_t size) {
    return (size + kGrain - 1) / kGrain * kGrain;
}

Chunk *ChunkOf(void *pNode) {
    return reinterpret_cast<Chunk *>(reinterpret_cast<std::uintptr_t>(pNode) & ~(std::uintptr_t{kChunkSpan} - 1));
}

void Release(Chunk *pChunk, std::uint32_t uCount) {
    if (pChunk->live.fetch_sub(uCount, std::memory_order_acq_rel) == uCount) {
        pChunk->~Chunk();
        DeleteChunkMemory(pChunk);
    }
}

char *PutText(char *pTo, std::string_view text) {
    if (!text.empty()) // the text of an empty view may be null
        std::memcpy(pTo, text.data(), text.size());
    pTo[text.size()] = '\0';
    return pTo;
}

char *OwnText(std::string_view text) {
    return PutText(new char[text.size() + 1], text);
}

} // namespace

CZrEnvNodeStore::Batch::~Batch() {
    m_Leaves.Close();
    m_Blocks.Close();
}

void CZrEnvNodeStore::Batch::Arena::Close() {
    if (m_pChunk)
        Release(static_cast<Chunk *>(m_pChunk), kOpen - m_uNodes);
    m_pChunk = nullptr;
    m_uNodes = 0;
}

// A part of a chunk for one node. Requests are far smaller than a chunk.
char *CZrEnvNodeStore::Batch::Arena::Take(std::size_t size) {
    size = Rounded(size);
    if (static_cast<std::size_t>(m_pEnd - m_pNext) < size) {
        void *pMemory = NewChunkMemory();
        Close();
        m_pChunk = new (pMemory) Chunk{{kOpen}};
        m_pNext = static_cast<char *>(pMemory) + Rounded(sizeof(Chunk));
        m_pEnd = static_cast<char *>(pMemory) + kChunkSize - ReadableBehind;
    }
    char *pTaken = m_pNext;
    m_pNext += size;
    return pTaken;
}

CZrEnvDataElement *CZrEnvNodeStore::Batch::MakeData(std::string_view name, std::string_view value) {
    const bool ownName = name.size() > LongestInChunk / 2;
    const bool ownValue = value.size() > LongestInChunk / 2;
    const std::size_t nameSize = ownName ? 0 : name.size() + 1;
    const std::size_t valueSize = ownValue ? 0 : value.size() + 1;
    char *pPlace = m_Leaves.Take(sizeof(CZrEnvDataElement) + nameSize + valueSize);
    char *pText = pPlace + sizeof(CZrEnvDataElement);
    char *szName = ownName ? OwnText(name) : PutText(pText, name);
    char *szValue = nullptr;
    try {
        szValue = ownValue ? OwnText(value) : PutText(pText + nameSize, value);
    } catch (...) {
        if (ownName)
            delete[] szName;
        throw;
    }
    ++m_Leaves.m_uNodes;
    return new (pPlace) CZrEnvDataElement(
        szName, szValue, InChunk | LibraryType | KindData | (ownName ? OwnsName : 0u) | (ownValue ? OwnsData : 0u));
}

// Name, value and what stands between them are one text here, copied in whole strides, at least two: most need no more.
// Beyond its end that writes into what of the chunk is not handed out yet.
CZrEnvDataElement *CZrEnvNodeStore::Batch::MakeDataOfLine(std::string_view name, std::string_view value,
                                                          const char *pReadable) {
    const char *pLine = name.data();
    const auto valueAt = static_cast<std::size_t>(value.data() - pLine);
    const std::size_t size = valueAt + value.size();
    if (valueAt > name.size() + 2 || size > LongestInChunk ||
        static_cast<std::size_t>(pReadable - pLine) < size + ReadableBehind)
        return MakeData(name, value);
    char *pPlace = m_Leaves.Take(sizeof(CZrEnvDataElement) + size + 1);
    char *pText = pPlace + sizeof(CZrEnvDataElement);
    std::memcpy(pText, pLine, 2 * kStride);
    for (std::size_t at = 2 * kStride; at < size; at += kStride)
        std::memcpy(pText + at, pLine + at, kStride);
    pText[name.size()] = '\0';
    pText[size] = '\0';
    ++m_Leaves.m_uNodes;
    return new (pPlace) CZrEnvDataElement(pText, pText + valueAt, InChunk | LibraryType | KindData);
}

CZrEnvBlock *CZrEnvNodeStore::Batch::MakeBlock(std::string_view name) {
    const bool ownName = name.size() > LongestInChunk;
    char *pPlace = m_Blocks.Take(sizeof(CZrEnvBlock) + (ownName ? 0 : name.size() + 1));
    char *szName = ownName ? OwnText(name) : PutText(pPlace + sizeof(CZrEnvBlock), name);
    ++m_Blocks.m_uNodes;
    return new (pPlace) CZrEnvBlock(szName, InChunk | LibraryType | KindBlock | (ownName ? OwnsName : 0u));
}

CZrEnvSection *CZrEnvNodeStore::Batch::MakeSection(std::string_view name) {
    const bool ownName = name.size() > LongestInChunk;
    char *pPlace = m_Blocks.Take(sizeof(CZrEnvSection) + (ownName ? 0 : name.size() + 1));
    char *szName = ownName ? OwnText(name) : PutText(pPlace + sizeof(CZrEnvSection), name);
    ++m_Blocks.m_uNodes;
    return new (pPlace)
        CZrEnvSection(szName, InChunk | LibraryType | KindBlock | KindSection | (ownName ? OwnsName : 0u));
}

CZrEnvDataElement *CZrEnvNodeStore::NewData(std::string_view name) {
    void *pPlace = ::operator new(sizeof(CZrEnvDataElement) + name.size() + 1, std::nothrow);
    if (!pPlace)
        return nullptr;
    char *szName = PutText(static_cast<char *>(pPlace) + sizeof(CZrEnvDataElement), name);
    return ::new (pPlace) CZrEnvDataElement(szName, nullptr, LibraryType | KindData);
}

CZrEnvBlock *CZrEnvNodeStore::NewBlock(std::string_view name) {
    void *pPlace = ::operator new(sizeof(CZrEnvBlock) + name.size() + 1, std::nothrow);
    if (!pPlace)
        return nullptr;
    char *szName = PutText(static_cast<char *>(pPlace) + sizeof(CZrEnvBlock), name);
    return ::new (pPlace) CZrEnvBlock(szName, LibraryType | KindBlock);
}

void CZrEnvNodeStore::ReleaseSlot(void *pNode, std::uint32_t uCount) {
    Release(ChunkOf(pNode), uCount);
}

// Children of a block take its place in the walk, so the depth of the tree needs no memory. Nodes that follow one another
// mostly lie in one chunk: it is told of them once.
void CZrEnvNodeStore::DestroyChildren(CZrEnvBlock &block) {
    CZrEnvElement *pNext = block.m_pFirst;
    block.m_pFirst = block.m_pLast = nullptr;
    block.m_uCount = 0;
    delete block.m_pIndex;
    block.m_pIndex = nullptr;

    Chunk *pChunk = nullptr;
    std::uint32_t uEnded = 0;
    while (pNext) {
        CZrEnvElement *pElem = pNext;
        pNext = pElem->m_pSucc;
        CZrEnvBlock *pBlock = IsBlock(pElem) ? static_cast<CZrEnvBlock *>(pElem) : nullptr;
        if (pBlock && pBlock->m_pFirst && !(pBlock->m_uFlags & View)) {
            pBlock->m_pLast->m_pSucc = pNext;
            pNext = pBlock->m_pFirst;
            pBlock->m_pFirst = pBlock->m_pLast = nullptr;
        }
        constexpr std::uint32_t packed = InChunk | LibraryType;
        if ((pElem->m_uFlags & packed) != packed) {
            delete pElem;
            continue;
        }
        if (ChunkOf(pElem) != pChunk) {
            if (pChunk)
                Release(pChunk, uEnded);
            pChunk = ChunkOf(pElem);
            uEnded = 0;
        }
        ++uEnded;
        if (pBlock)
            pBlock->~CZrEnvBlock();
        else if (pElem->m_uFlags & (OwnsName | OwnsData)) // of the others the chunk holds all there is
            static_cast<CZrEnvDataElement *>(pElem)->CZrEnvDataElement::~CZrEnvDataElement();
    }
    if (pChunk)
        Release(pChunk, uEnded);
}

void CZrEnvNodeStore::DropSpareChunks() {
    const SpareGuard guard;
    while (guard && SpareCount != 0)
        ::operator delete (SpareChunks[--SpareCount], std::align_val_t{kChunkSpan});
}

} // namespace Zr
