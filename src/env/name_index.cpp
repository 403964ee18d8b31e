// The children of one block by name: hash form and ordered form.
#include "env/name_index.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <new>

#include "env/chunks.h"
#include "platform/memory.h"

namespace Zr {

namespace {

template <class Word>
std::uint64_t Load(const char *p) {
    Word word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

// Twice, every bit of the word has a say in every bit of the result: the low ones choose the place.
std::uint64_t Mixed(std::uint64_t word) {
    word *= 0xD6E8FEB86659FD93u;
    return word ^ (word >> 32);
}

// Words of fixed sizes; the last overlaps the one before it.
std::uint64_t Hash(std::string_view name) {
    const char *p = name.data();
    const std::size_t size = name.size();
    std::uint64_t hash = size * 0x9E3779B97F4A7C15u;
    if (size > 8) {
        for (std::size_t at = 0; at + 8 < size; at += 8)
            hash = Mixed(hash ^ Load<std::uint64_t>(p + at));
        hash ^= Load<std::uint64_t>(p + size - 8);
    } else if (size >= 4) {
        hash ^= Load<std::uint32_t>(p) | Load<std::uint32_t>(p + size - 4) << 32;
    } else if (size != 0) {
        hash ^= Load<std::uint8_t>(p) | Load<std::uint8_t>(p + size / 2) << 8 | Load<std::uint8_t>(p + size - 1) << 16;
    }
    return Mixed(Mixed(hash ^ hash >> 32));
}

int Compare(const char *szA, std::string_view b) {
    const std::string_view a = szA ? szA : "";
    return a.compare(b);
}

} // namespace

// A null name sorts in front of all others, the empty one included.
bool CZrEnvNameIndex::Less::operator()(const CZrEnvElement *pA, const CZrEnvElement *pB) const {
    const char *szA = pA->GetName();
    const char *szB = pB->GetName();
    if (!szA || !szB)
        return !szA && szB;
    return std::strcmp(szA, szB) < 0;
}

bool CZrEnvNameIndex::Less::operator()(const CZrEnvElement *pA, std::string_view b) const {
    return !pA->GetName() || Compare(pA->GetName(), b) < 0;
}

bool CZrEnvNameIndex::Less::operator()(std::string_view a, const CZrEnvElement *pB) const {
    return pB->GetName() && Compare(pB->GetName(), a) > 0;
}

// ---- Making and ending

CZrEnvNameIndex::CZrEnvNameIndex(std::size_t uSlots, bool bPiece)
    : m_pSlots(FirstSlots()), m_uMask(uSlots - 1), m_bPiece(bPiece) {
    std::uninitialized_fill_n(m_pSlots, uSlots, Slot{0});
}

// The indexes of common blocks lie close together: look-ups go from one to another.
CZrEnvNameIndex *CZrEnvNameIndex::Empty(std::size_t uSlots) {
    constexpr std::size_t largestPiece = 4096;
    const std::size_t size = sizeof(CZrEnvNameIndex) + uSlots * sizeof(Slot);
    void *pPiece = size <= largestPiece ? zr::env::TakePiece(size) : nullptr;
    void *pMemory = pPiece ? pPiece : ::operator new(size);
    if (!pPiece)
        zr::platform::FillPagesAhead(pMemory, size);
    return ::new (pMemory) CZrEnvNameIndex(uSlots, pPiece != nullptr);
}

void CZrEnvNameIndex::operator delete(CZrEnvNameIndex *pIndex, std::destroying_delete_t) {
    const bool bPiece = pIndex->m_bPiece;
    pIndex->~CZrEnvNameIndex();
    if (bPiece)
        zr::env::ReleasePiece(pIndex);
    else
        ::operator delete(static_cast<void *>(pIndex));
}

CZrEnvNameIndex *CZrEnvNameIndex::Make(CZrEnvElement *pFirst, std::size_t uNames) {
    const std::size_t uSlots = SlotsFor(uNames);
    std::unique_ptr<CZrEnvNameIndex> pIndex(Empty(uSlots));
    for (CZrEnvElement *pElem = pFirst; pElem; pElem = pElem->m_pSucc)
        pIndex->InsertHashed(pElem);
    return pIndex.release();
}

CZrEnvNameIndex::~CZrEnvNameIndex() {
    DropHash();
}

void CZrEnvNameIndex::DropHash() {
    if (!m_pSlots)
        return;
    for (std::size_t at = 0; m_bGroups && at <= m_uMask; ++at)
        delete GroupIn(m_pSlots[at]);
    m_bGroups = false;
    if (m_pSlots != FirstSlots())
        delete[] m_pSlots;
    m_pSlots = nullptr;
    m_uUsed = 0;
}

void CZrEnvNameIndex::MakeOrdered(CZrEnvElement *pFirst) {
    auto pOrdered = std::make_unique<Ordered>();
    for (CZrEnvElement *pElem = pFirst; pElem; pElem = pElem->m_pSucc)
        pOrdered->insert(pElem);
    m_pOrdered = std::move(pOrdered);
    DropHash();
}

// ---- Either form

void CZrEnvNameIndex::Ordered::Enter(CZrEnvElement *pElem) {
    if (!spare) {
        insert(pElem);
        return;
    }
    spare.value() = pElem;
    insert(std::move(spare));
}

void CZrEnvNameIndex::Ordered::Enter(const_iterator hint, CZrEnvElement *pElem) {
    if (!spare) {
        insert(hint, pElem);
        return;
    }
    spare.value() = pElem;
    insert(hint, std::move(spare));
}

void CZrEnvNameIndex::Reserve(CZrEnvElement *pElem) {
    if (m_pOrdered->spare)
        return;
    Ordered one;
    m_pOrdered->spare = one.extract(one.insert(pElem));
}

void CZrEnvNameIndex::Insert(CZrEnvElement *pElem) {
    if (m_pOrdered)
        m_pOrdered->Enter(pElem);
    else
        InsertHashed(pElem);
}

// The hint goes where the comparisons made here let it stand: right before pBefore, right behind it, or in front of all
// namesakes.
void CZrEnvNameIndex::InsertBefore(CZrEnvElement *pElem, CZrEnvElement *pBefore) {
    const Less less;
    const auto at = std::find(m_pOrdered->begin(), m_pOrdered->end(), pBefore);
    if (at != m_pOrdered->end()) {
        if (!less(*at, pElem) && (at == m_pOrdered->begin() || !less(pElem, *std::prev(at)))) {
            m_pOrdered->Enter(at, pElem);
            return;
        }
        const auto behind = std::next(at);
        if (!less(pElem, *at) && (behind == m_pOrdered->end() || !less(*behind, pElem))) {
            m_pOrdered->Enter(behind, pElem);
            return;
        }
    }
    m_pOrdered->Enter(m_pOrdered->lower_bound(pElem), pElem);
}

CZrEnvNameIndex::Ordered::iterator CZrEnvNameIndex::EntryOf(CZrEnvElement *pElem) {
    const auto range = m_pOrdered->equal_range(pElem);
    const auto at = std::find(range.first, range.second, pElem);
    return at == range.second ? m_pOrdered->end() : at;
}

bool CZrEnvNameIndex::Remove(CZrEnvElement *pElem) {
    if (!m_pOrdered)
        return RemoveHashed(pElem);
    const auto at = EntryOf(pElem);
    if (at == m_pOrdered->end())
        return false;
    m_pOrdered->erase(at);
    return true;
}

void CZrEnvNameIndex::Forget(CZrEnvElement *pElem) {
    std::erase_if(*m_pOrdered, [pElem](const CZrEnvElement *pEntry) { return pEntry == pElem; });
}

void CZrEnvNameIndex::Replace(CZrEnvElement *pOld, CZrEnvElement *pNew) {
    const auto at = EntryOf(pOld);
    if (at == m_pOrdered->end()) {
        m_pOrdered->Enter(pNew);
        m_bStale = true;
        return;
    }
    auto entry = m_pOrdered->extract(at);
    entry.value() = pNew;
    m_pOrdered->insert(std::move(entry));
}

// Whether an entry in the range of a name bears it: one that stayed behind may stand between those of any name.
bool CZrEnvNameIndex::Fits(const CZrEnvElement *pElem, std::string_view name) const {
    return !m_bStale || (pElem->GetName() && name == pElem->GetName());
}

// In a large tree each step of a look-up waits for memory: the slot is asked for before the index itself has come.
CZrEnvElement *CZrEnvNameIndex::Find(std::string_view name, zr_long lPos, std::size_t uNames) const {
    const std::uint64_t hash = Hash(name);
    __builtin_prefetch(FirstSlots() + (static_cast<std::size_t>(hash) & (SlotsFor(uNames) - 1)));
    const std::size_t steps = lPos > 1 ? static_cast<std::size_t>(lPos) - 1 : 0;
    if (m_pOrdered) {
        std::size_t left = steps;
        auto [at, end] = m_pOrdered->equal_range(name);
        for (; at != end; ++at)
            if (Fits(*at, name) && left-- == 0)
                return *at;
        return nullptr;
    }
    const Slot slot = m_pSlots[Place(name, hash)];
    if (!slot)
        return nullptr;
    if (const Group *pGroup = GroupIn(slot))
        return steps < pGroup->size() ? pGroup->elems[pGroup->head + steps] : nullptr;
    return steps == 0 ? ElementIn(slot) : nullptr;
}

std::size_t CZrEnvNameIndex::Count(std::string_view name) const {
    if (m_pOrdered) {
        const auto [at, end] = m_pOrdered->equal_range(name);
        return static_cast<std::size_t>(
            std::count_if(at, end, [=, this](const CZrEnvElement *pElem) { return Fits(pElem, name); }));
    }
    const Slot slot = m_pSlots[Place(name, Hash(name))];
    if (!slot)
        return 0;
    const Group *pGroup = GroupIn(slot);
    return pGroup ? pGroup->size() : 1;
}

// ---- The hash form

// At most four fifths are used: what is looked for mostly stands in the line of memory where it should.
std::size_t CZrEnvNameIndex::SlotsFor(std::size_t uNames) {
    return std::bit_ceil(std::max<std::size_t>(8, uNames + uNames / 4 + 1));
}

CZrEnvNameIndex::Slot CZrEnvNameIndex::Tag(std::uint64_t uHash) {
    return static_cast<Slot>(uHash) & ~AddressBits;
}

// An address that leaves no room for the rest of a slot cannot stand in one, as if there were no memory for it.
CZrEnvNameIndex::Slot CZrEnvNameIndex::SlotOf(const void *pTarget, bool bGroup, Slot tag) {
    const auto address = reinterpret_cast<Slot>(pTarget);
    if ((address & ~AddressBits) != 0)
        throw std::bad_alloc();
    return address | tag | (bGroup ? 1 : 0);
}

const char *CZrEnvNameIndex::NameIn(Slot slot) {
    const Group *pGroup = GroupIn(slot);
    return (pGroup ? pGroup->elems[pGroup->head] : ElementIn(slot))->m_szName;
}

// The name mostly stands right behind its element.
bool CZrEnvNameIndex::Bears(Slot slot, std::string_view name) {
    __builtin_prefetch(reinterpret_cast<const char *>(slot & AddressBits) + sizeof(CZrEnvBlock));
    const char *szName = NameIn(slot);
    return std::strncmp(szName, name.data(), name.size()) == 0 && szName[name.size()] == '\0';
}

// Where a name stands, or the free slot where it would.
std::size_t CZrEnvNameIndex::Place(std::string_view name, std::uint64_t uHash) const {
    const Slot tag = Tag(uHash);
    std::size_t at = static_cast<std::size_t>(uHash) & m_uMask;
    while (m_pSlots[at] && ((m_pSlots[at] & ~AddressBits) != tag || !Bears(m_pSlots[at], name)))
        at = (at + 1) & m_uMask;
    return at;
}

void CZrEnvNameIndex::Grow() {
    const std::size_t uSlots = SlotsFor(2 * m_uUsed);
    std::unique_ptr<Slot[]> pSlots(new Slot[uSlots]());
    for (std::size_t at = 0; at <= m_uMask; ++at) {
        if (!m_pSlots[at])
            continue;
        std::size_t place = static_cast<std::size_t>(Hash(NameIn(m_pSlots[at]))) & (uSlots - 1);
        while (pSlots[place])
            place = (place + 1) & (uSlots - 1);
        pSlots[place] = m_pSlots[at];
    }
    if (m_pSlots != FirstSlots())
        delete[] m_pSlots;
    m_pSlots = pSlots.release();
    m_uMask = uSlots - 1;
}

// A nameless child is found by no name.
void CZrEnvNameIndex::InsertHashed(CZrEnvElement *pElem) {
    if (!pElem->m_szName)
        return;
    if (SlotsFor(m_uUsed + 1) > m_uMask + 1)
        Grow();
    const std::uint64_t hash = Hash(pElem->m_szName);
    Slot &slot = m_pSlots[Place(pElem->m_szName, hash)];
    if (!slot) {
        slot = SlotOf(pElem, false, Tag(hash));
        ++m_uUsed;
    } else if (Group *pGroup = GroupIn(slot)) {
        pGroup->elems.push_back(pElem);
    } else {
        auto group = std::make_unique<Group>();
        group->elems = {ElementIn(slot), pElem};
        slot = SlotOf(group.get(), true, Tag(hash));
        group.release();
        m_bGroups = true;
    }
}

bool CZrEnvNameIndex::RemoveHashed(CZrEnvElement *pElem) {
    if (!pElem->m_szName)
        return true;
    const std::uint64_t hash = Hash(pElem->m_szName);
    const std::size_t place = Place(pElem->m_szName, hash);
    Group *pGroup = GroupIn(m_pSlots[place]);
    if (!pGroup) {
        if (ElementIn(m_pSlots[place]) != pElem)
            return false;
        CloseGap(place);
        return true;
    }
    const auto first = pGroup->elems.begin() + static_cast<std::ptrdiff_t>(pGroup->head);
    const auto at = std::find(first, pGroup->elems.end(), pElem);
    if (at == pGroup->elems.end())
        return false;
    if (at != first) {
        pGroup->elems.erase(at);
    } else if (++pGroup->head * 2 >
               pGroup->elems.size()) { // taking the first ones out stays cheap, and gives memory back
        pGroup->elems.erase(pGroup->elems.begin(), first + 1);
        pGroup->head = 0;
    }
    if (pGroup->size() == 1) {
        m_pSlots[place] = SlotOf(pGroup->elems[pGroup->head], false, Tag(hash));
        delete pGroup;
    }
    return true;
}

// Moves later slots of the run up, so that no search ends early at the gap.
void CZrEnvNameIndex::CloseGap(std::size_t gap) {
    for (std::size_t at = (gap + 1) & m_uMask; m_pSlots[at]; at = (at + 1) & m_uMask) {
        const std::size_t home = static_cast<std::size_t>(Hash(NameIn(m_pSlots[at]))) & m_uMask;
        if (((at - home) & m_uMask) >= ((at - gap) & m_uMask)) {
            m_pSlots[gap] = m_pSlots[at];
            gap = at;
        }
    }
    m_pSlots[gap] = 0;
    --m_uUsed;
}

} // namespace Zr
