// Chunks of nodes, single nodes, and the end of trees.
#include "env/node_store.h"

#include <cstring>
#include <new>

#include "env/name_index.h"

namespace Zr {

using zr::env::Chunk;
using zr::env::ChunkOf;

namespace {

constexpr std::size_t kStride = 16;

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
    m_Source.Close();
}

CZrEnvDataElement *CZrEnvNodeStore::Batch::MakeData(std::string_view name, std::string_view value) {
    const bool ownName = name.size() > LongestInChunk / 2;
    const bool ownValue = value.size() > LongestInChunk / 2;
    const std::size_t nameSize = ownName ? 0 : name.size() + 1;
    const std::size_t valueSize = ownValue ? 0 : value.size() + 1;
    char *pPlace = m_Leaves.Take(sizeof(CZrEnvDataElement) + nameSize + valueSize, m_Source);
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
    m_Leaves.Count();
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
    char *pPlace = m_Leaves.Take(sizeof(CZrEnvDataElement) + size + 1, m_Source);
    char *pText = pPlace + sizeof(CZrEnvDataElement);
    std::memcpy(pText, pLine, 2 * kStride);
    for (std::size_t at = 2 * kStride; at < size; at += kStride)
        std::memcpy(pText + at, pLine + at, kStride);
    pText[name.size()] = '\0';
    pText[size] = '\0';
    m_Leaves.Count();
    return new (pPlace) CZrEnvDataElement(pText, pText + valueAt, InChunk | LibraryType | KindData);
}

CZrEnvBlock *CZrEnvNodeStore::Batch::MakeBlock(std::string_view name) {
    const bool ownName = name.size() > LongestInChunk;
    char *pPlace = m_Blocks.Take(sizeof(CZrEnvBlock) + (ownName ? 0 : name.size() + 1), m_Source);
    char *szName = ownName ? OwnText(name) : PutText(pPlace + sizeof(CZrEnvBlock), name);
    m_Blocks.Count();
    return new (pPlace) CZrEnvBlock(szName, InChunk | LibraryType | KindBlock | (ownName ? OwnsName : 0u));
}

CZrEnvSection *CZrEnvNodeStore::Batch::MakeSection(std::string_view name) {
    const bool ownName = name.size() > LongestInChunk;
    char *pPlace = m_Blocks.Take(sizeof(CZrEnvSection) + (ownName ? 0 : name.size() + 1), m_Source);
    char *szName = ownName ? OwnText(name) : PutText(pPlace + sizeof(CZrEnvSection), name);
    m_Blocks.Count();
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

void CZrEnvNodeStore::ReleaseSlot(void *pNode) {
    zr::env::ReleaseInChunk(ChunkOf(pNode), 1);
}

namespace {

// Tells chunks of the nodes that end in them. Nodes that follow one another mostly lie in one chunk: it is told of them
// once.
class EndedNodes {
public:
    EndedNodes() = default;
    ~EndedNodes() {
        if (m_pChunk)
            zr::env::ReleaseInChunk(m_pChunk, m_uEnded);
    }
    EndedNodes(const EndedNodes &) = delete;
    EndedNodes &operator=(const EndedNodes &) = delete;

    void Add(const CZrEnvElement *pElem, std::uint32_t uCount) {
        Chunk *pChunk = ChunkOf(pElem);
        if (pChunk == m_pChunk) {
            m_uEnded += uCount;
            return;
        }
        if (m_pChunk)
            zr::env::ReleaseInChunk(m_pChunk, m_uEnded);
        m_pChunk = pChunk;
        m_uEnded = uCount;
    }

private:
    Chunk *m_pChunk = nullptr;
    std::uint32_t m_uEnded = 0;
};

} // namespace

// Children of a block take its place in the walk, so the depth of the tree needs no memory. Leaves that lie together
// own nothing: they are not even looked at.
void CZrEnvNodeStore::DestroyChildren(CZrEnvBlock &block) {
    const bool bTogether = (block.m_uFlags & LeavesTogether) != 0;
    CZrEnvElement *pNext = block.m_pFirst;
    const std::uint32_t uCount = block.m_uCount;
    Scatter(block);
    block.m_pFirst = block.m_pLast = nullptr;
    block.m_uCount = 0;
    delete block.m_pIndex;
    block.m_pIndex = nullptr;

    EndedNodes leaves;
    EndedNodes blocks;
    if (bTogether) {
        leaves.Add(pNext, uCount);
        return;
    }
    while (pNext) {
        CZrEnvElement *pElem = pNext;
        pNext = pElem->m_pSucc;
        CZrEnvBlock *pBlock = IsBlock(pElem) ? static_cast<CZrEnvBlock *>(pElem) : nullptr;
        if (pBlock && pBlock->m_pFirst && !(pBlock->m_uFlags & View)) {
            if (pBlock->m_uFlags & LeavesTogether) {
                leaves.Add(pBlock->m_pFirst, pBlock->m_uCount);
                Scatter(*pBlock);
            } else {
                pBlock->m_pLast->m_pSucc = pNext;
                pNext = pBlock->m_pFirst;
            }
            pBlock->m_pFirst = pBlock->m_pLast = nullptr;
        }
        constexpr std::uint32_t packed = InChunk | LibraryType;
        if ((pElem->m_uFlags & packed) != packed) {
            delete pElem;
        } else if (pBlock) {
            blocks.Add(pElem, 1);
            pBlock->~CZrEnvBlock();
        } else {
            leaves.Add(pElem, 1);
            if (pElem->m_uFlags & (OwnsName | OwnsData)) // of the others the chunk holds all there is
                static_cast<CZrEnvDataElement *>(pElem)->CZrEnvDataElement::~CZrEnvDataElement();
        }
    }
}

bool CZrEnvNodeStore::IsOrdered(const CZrEnvBlock &block) {
    return block.m_pIndex && block.m_pIndex->IsOrdered();
}

} // namespace Zr
