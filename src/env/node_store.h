// Where nodes of the environment tree live, and how they are made and ended.
//
// A node made on its own is one allocation that holds the object and, behind it, its name and value. The nodes of a
// text that is read are packed into chunks by a Batch. A chunk lives as long as one of its nodes does, whatever
// environment the node has moved to by then, so no node depends on the environment that it was read into.
// Texts that grow later get arrays of their own; the flags of a node tell which of its texts it has to free.
#ifndef ZR_ENV_NODE_STORE_H
#define ZR_ENV_NODE_STORE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include <zrclb/env.hpp>

#include "env/chunks.h"

namespace Zr {

class CZrEnvNodeStore {
public:
    enum Flag : std::uint32_t {
        InChunk = 1,    // the object lies in a chunk
        OwnsName = 2,   // m_szName is an array of its own
        OwnsData = 4,   // m_szData is an array of its own
        KindData = 8,   // what the virtual conversions answer, without the call
        KindBlock = 16, // set for sections too
        KindSection = 32,
        View = 64,           // a copy: the children belong to its source
        LibraryType = 128,   // exactly one of the library's own classes, made here
        LeavesTogether = 256 // of a block: all children are leaves that lie in one chunk and own no memory
    };

    // Of the texts in a chunk none is longer, name and value of one node together included, and behind each of them so
    // many bytes of the chunk may be read.
    static constexpr std::size_t LongestInChunk = 2048;
    static constexpr std::size_t ReadableBehind = zr::env::ChunkArena::ReadableBehind;

    // So many chunks, 4 MB, a text fills before regions are worth what they may leave empty.
    static constexpr unsigned SinglesOfReading = 64;

    // Single nodes. The name is stored as given, without any check. Null on no memory.
    static CZrEnvDataElement *NewData(std::string_view name); // without value
    static CZrEnvBlock *NewBlock(std::string_view name);

    // Holds a node until a block takes it: an exception on the way ends the node.
    struct End {
        void operator()(CZrEnvElement *pElem) const { EndNode(pElem); }
    };
    using Holder = std::unique_ptr<CZrEnvElement, End>;
    static void EndNode(CZrEnvElement *pElem) { delete pElem; }

    // Packs the nodes of one reading into chunks. Ending the batch leaves the nodes alive.
    class Batch {
    public:
        Batch() = default;
        ~Batch();
        Batch(const Batch &) = delete;
        Batch &operator=(const Batch &) = delete;

        // Names and values are stored as given, up to their first zero byte not included: callers pass none.
        CZrEnvDataElement *MakeData(std::string_view name, std::string_view value);
        // The same for a value that stands behind the name in one text, of which the bytes up to pReadable may be read.
        CZrEnvDataElement *MakeDataOfLine(std::string_view name, std::string_view value, const char *pReadable);
        CZrEnvBlock *MakeBlock(std::string_view name);
        CZrEnvSection *MakeSection(std::string_view name);

    private:
        // Blocks stand close together, apart from the leaves: look-ups go from block to block, to few leaves.
        zr::env::ChunkArena m_Leaves;
        zr::env::ChunkArena m_Blocks;
        zr::env::ChunkSource m_Source{SinglesOfReading};
    };

    // Appends a fresh, detached node to a block's sequence: constant time, no test.
    static void Append(CZrEnvBlock &block, CZrEnvElement *pElem) {
        Scatter(block);
        pElem->m_pParent = &block;
        pElem->m_pSucc = nullptr;
        if (block.m_pLast)
            block.m_pLast->m_pSucc = pElem;
        else
            block.m_pFirst = pElem;
        block.m_pLast = pElem;
        ++block.m_uCount;
    }

    // The same for a leaf that a batch has made: notes whether the block's leaves lie together.
    static void AppendLeaf(CZrEnvBlock &block, CZrEnvDataElement *pData) {
        const bool bPacked =
            (pData->m_uFlags & (InChunk | LibraryType | OwnsName | OwnsData)) == (InChunk | LibraryType);
        const bool bTogether =
            bPacked && (!block.m_pLast || ((block.m_uFlags & LeavesTogether) != 0 &&
                                           zr::env::ChunkOf(block.m_pLast) == zr::env::ChunkOf(pData)));
        Append(block, pData);
        if (bTogether)
            block.m_uFlags |= LeavesTogether;
    }

    // Before the sequence of a block changes, and before a node that may stand in one gets memory of its own or leaves
    // its links.
    static void Scatter(CZrEnvBlock &block) { block.m_uFlags &= ~std::uint32_t{LeavesTogether}; }
    static void ScatterAround(const CZrEnvElement &elem) {
        if ((elem.m_uFlags & (InChunk | View)) == InChunk && elem.m_pParent)
            Scatter(*elem.m_pParent);
    }

    // Ends all children with all that is below them, without recursion, and leaves the block empty.
    static void DestroyChildren(CZrEnvBlock &block);

    // Gives the memory of an ended node back to its chunk.
    static void ReleaseSlot(void *pNode);

    static bool IsBlock(const CZrEnvElement *pElem) { return (pElem->m_uFlags & KindBlock) != 0; }
    static bool IsSection(const CZrEnvElement &elem) { return (elem.m_uFlags & KindSection) != 0; }

    // Whether a node is of the library's own classes and owns what is below it.
    static bool IsPlain(const CZrEnvElement &elem) { return (elem.m_uFlags & (LibraryType | View)) == LibraryType; }

    // Whether the order among namesakes may be another than that of the sequence.
    static bool IsOrdered(const CZrEnvBlock &block);
};

} // namespace Zr

#endif
