// The children of one block by name.
//
// Two forms. As long as the order among namesakes is that of the sequence, a hash table answers look-ups; it is a mere
// shortcut, and is dropped when memory runs out. A rename, a replacement or an insertion before an element can make the
// order among namesakes differ from the sequence: before such a step the ordered form is built, which keeps for each child
// an entry in a tree sorted by name, and from then on it is the truth about order and counts.
//
// In the ordered form an entry can stay behind at its old place when an element gets a new name. Entries are compared by the
// names that their elements bear at that time, and no element dies before all of its entries are dropped.
#ifndef ZR_ENV_NAME_INDEX_H
#define ZR_ENV_NAME_INDEX_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <set>
#include <string_view>
#include <vector>

#include <zrclb/env.hpp>

namespace Zr {

class CZrEnvNameIndex {
public:
    // The hash form over a sequence of siblings, with room for so many names at once. std::bad_alloc on no memory. The
    // caller deletes it.
    static CZrEnvNameIndex *Make(CZrEnvElement *pFirst, std::size_t uNames);
    CZrEnvNameIndex(const CZrEnvNameIndex &other) = delete;
    CZrEnvNameIndex &operator=(const CZrEnvNameIndex &other) = delete;
    ~CZrEnvNameIndex();
    static void operator delete(CZrEnvNameIndex *pIndex, std::destroying_delete_t);

    // Gives up the hash form for the ordered one. On std::bad_alloc the hash form stays.
    void MakeOrdered(CZrEnvElement *pFirst);
    bool IsOrdered() const { return m_pOrdered != nullptr; }

    // Behind all namesakes. On std::bad_alloc nothing is inserted; a hash form is then no longer complete.
    void Insert(CZrEnvElement *pElem);
    // Ordered form only: keeps the memory of one entry, so that the next insertion or replacement, here of pElem, cannot fail.
    void Reserve(CZrEnvElement *pElem);
    // Ordered form only: before the entry of pBefore, if the name fits there.
    void InsertBefore(CZrEnvElement *pElem, CZrEnvElement *pBefore);
    // Takes out the entry found under the present name; false if there is none.
    bool Remove(CZrEnvElement *pElem);
    // Ordered form only: drops what entries an element has left, at whatever place.
    void Forget(CZrEnvElement *pElem);
    // Ordered form only: pNew takes over the memory of pOld's entry and goes behind its own namesakes. Identical arguments
    // move an element behind its namesakes. Needs memory only if pOld's entry is not found, where a new one is made.
    void Replace(CZrEnvElement *pOld, CZrEnvElement *pNew);

    // The lPos-th of that name, from 1; less than 1 counts as 1. For how many names the index was made is a mere hint.
    CZrEnvElement *Find(std::string_view name, zr_long lPos, std::size_t uNames) const;
    std::size_t Count(std::string_view name) const;
    std::size_t EntryCount() const { return m_pOrdered->size(); } // ordered form only

private:
    friend class CZrEnvTreeCheck;
    friend class CZrEnvProbe;

    struct Less {
        using is_transparent = void;
        bool operator()(const CZrEnvElement *pA, const CZrEnvElement *pB) const;
        bool operator()(const CZrEnvElement *pA, std::string_view b) const;
        bool operator()(std::string_view a, const CZrEnvElement *pB) const;
    };
    struct Ordered : std::multiset<CZrEnvElement *, Less> {
        // Takes the kept entry, if there is one.
        void Enter(CZrEnvElement *pElem);
        void Enter(const_iterator hint, CZrEnvElement *pElem);

        node_type spare;
    };

    // Several children of one name, in order, from `head` on.
    struct Group {
        std::vector<CZrEnvElement *> elems;
        std::size_t head = 0;
        std::size_t size() const { return elems.size() - head; }
    };
    // A slot is 0 while it is free. Else it holds an address, in the lowest bit whether that is an element's or a group's,
    // and, where an address leaves the uppermost bits free, a part of the hash there: most names that differ from the one
    // that is looked for are passed without being touched.
    using Slot = std::uintptr_t;
    static constexpr unsigned TagBits = sizeof(Slot) == 8 ? 16 : 0;
    static constexpr Slot AddressBits = ~Slot{0} >> TagBits;

    CZrEnvNameIndex(std::size_t uSlots, bool bPiece);
    static CZrEnvNameIndex *Empty(std::size_t uSlots);

    static std::size_t SlotsFor(std::size_t uNames);
    static Slot Tag(std::uint64_t uHash);
    static Slot SlotOf(const void *pTarget, bool bGroup, Slot tag);
    static CZrEnvElement *ElementIn(Slot slot) { return reinterpret_cast<CZrEnvElement *>(slot & AddressBits); }
    static Group *GroupIn(Slot slot) {
        return (slot & 1) ? reinterpret_cast<Group *>((slot & AddressBits) - 1) : nullptr;
    }
    static const char *NameIn(Slot slot);
    static bool Bears(Slot slot, std::string_view name);
    Slot *FirstSlots() { return reinterpret_cast<Slot *>(this + 1); }
    const Slot *FirstSlots() const { return reinterpret_cast<const Slot *>(this + 1); }
    std::size_t Place(std::string_view name, std::uint64_t uHash) const;
    void InsertHashed(CZrEnvElement *pElem);
    bool RemoveHashed(CZrEnvElement *pElem);
    void CloseGap(std::size_t gap);
    void Grow();
    void DropHash();
    Ordered::iterator EntryOf(CZrEnvElement *pElem);
    bool Fits(const CZrEnvElement *pElem, std::string_view name) const;

    Slot *m_pSlots; // a power of two of them, some free: at first right behind this object; null in the ordered form
    std::size_t m_uMask;
    std::size_t m_uUsed = 0;
    bool m_bGroups = false; // there may be some
    bool m_bStale = false;  // an entry has stayed behind at an old place
    const bool m_bPiece;    // this object and its first slots share a chunk with others
    std::unique_ptr<Ordered> m_pOrdered;
};

} // namespace Zr

#endif
