// The children of one block by name: hash form and ordered form.
#include "env/name_index.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace Zr {

namespace {

std::uint64_t Load8(const char *p) {
    std::uint64_t word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

// Every bit of the word has a say in every bit of the result: the low ones choose the place.
std::uint64_t Mixed(std::uint64_t word) {
    word ^= word >> 32;
    word *= 0xD6E8FEB86659FD93u;
    word ^= word >> 32;
    word *= 0xD6E8FEB86659FD93u;
    return word ^ (word >> 32);
}

// Eight bytes at a time; the last word overlaps the one before it.
std::uint64_t Hash(std::string_view name) {
    const std::size_t size = name.size();
    std::uint64_t hash = size * 0x9E3779B97F4A7C15u;
    if (size < 8) {
        std::uint64_t word = 0;
        if (size != 0)
            std::memcpy(&word, name.data(), size);
        return Mixed(hash ^ word);
    }
    for (std::size_t at = 0; at + 8 < size; at += 8)
        hash = Mixed(hash ^ Load8(name.data() + at));
    return Mixed(hash ^ Load8(name.data() + size - 8));
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

CZrEnvNameIndex::CZrEnvNameIndex(CZrEnvElement *pFirst) {
    try {
        for (CZrEnvElement *pElem = pFirst; pElem; pElem = pElem->m_pSucc)
            InsertHashed(pElem);
    } catch (...) {
        DropHash();
        throw;
    }
}

CZrEnvNameIndex::~CZrEnvNameIndex() {
    DropHash();
}

void CZrEnvNameIndex::DropHash() {
    for (const Slot slot : m_Slots)
        delete GroupIn(slot);
    m_Slots = {};
    m_uUsed = 0;
}

void CZrEnvNameIndex::MakeOrdered(CZrEnvElement *pFirst) {
    Ordered ordered;
    for (CZrEnvElement *pElem = pFirst; pElem; pElem = pElem->m_pSucc)
        ordered.insert(pElem);
    m_Ordered.swap(ordered);
    m_bOrdered = true;
    DropHash();
}

void CZrEnvNameIndex::Insert(CZrEnvElement *pElem) {
    if (m_bOrdered)
        m_Ordered.insert(pElem);
    else
        InsertHashed(pElem);
}

// The hint goes where the comparisons made here let it stand: right before pBefore, right behind it, or in front of all
// namesakes.
void CZrEnvNameIndex::InsertBefore(CZrEnvElement *pElem, CZrEnvElement *pBefore) {
    const Less less;
    const auto at = std::find(m_Ordered.begin(), m_Ordered.end(), pBefore);
    if (at != m_Ordered.end()) {
        if (!less(*at, pElem) && (at == m_Ordered.begin() || !less(pElem, *std::prev(at)))) {
            m_Ordered.insert(at, pElem);
            return;
        }
        const auto behind = std::next(at);
        if (!less(pElem, *at) && (behind == m_Ordered.end() || !less(*behind, pElem))) {
            m_Ordered.insert(behind, pElem);
            return;
        }
    }
    m_Ordered.insert(m_Ordered.lower_bound(pElem), pElem);
}

CZrEnvNameIndex::Ordered::iterator CZrEnvNameIndex::EntryOf(CZrEnvElement *pElem) {
    const auto range = m_Ordered.equal_range(pElem);
    const auto at = std::find(range.first, range.second, pElem);
    return at == range.second ? m_Ordered.end() : at;
}

bool CZrEnvNameIndex::Remove(CZrEnvElement *pElem) {
    if (!m_bOrdered)
        return RemoveHashed(pElem);
    const auto at = EntryOf(pElem);
    if (at == m_Ordered.end())
        return false;
    m_Ordered.erase(at);
    return true;
}

void CZrEnvNameIndex::Forget(CZrEnvElement *pElem) {
    std::erase_if(m_Ordered, [pElem](const CZrEnvElement *pEntry) { return pEntry == pElem; });
}

void CZrEnvNameIndex::Replace(CZrEnvElement *pOld, CZrEnvElement *pNew) {
    const auto at = EntryOf(pOld);
    if (at == m_Ordered.end()) {
        m_Ordered.insert(pNew);
        m_bStale = true;
        return;
    }
    auto entry = m_Ordered.extract(at);
    entry.value() = pNew;
    m_Ordered.insert(std::move(entry));
}

// Whether an entry in the range of a name bears it: one that stayed behind may stand between those of any name.
bool CZrEnvNameIndex::Fits(const CZrEnvElement *pElem, std::string_view name) const {
    return !m_bStale || (pElem->GetName() && name == pElem->GetName());
}

CZrEnvElement *CZrEnvNameIndex::Find(std::string_view name, zr_long lPos) const {
    const std::size_t steps = lPos > 1 ? static_cast<std::size_t>(lPos) - 1 : 0;
    if (m_bOrdered) {
        std::size_t left = steps;
        auto [at, end] = m_Ordered.equal_range(name);
        for (; at != end; ++at)
            if (Fits(*at, name) && left-- == 0)
                return *at;
        return nullptr;
    }
    if (m_Slots.empty())
        return nullptr;
    const Slot slot = m_Slots[Place(name)];
    if (!slot)
        return nullptr;
    if (const Group *pGroup = GroupIn(slot))
        return steps < pGroup->size() ? pGroup->elems[pGroup->head + steps] : nullptr;
    return steps == 0 ? ElementIn(slot) : nullptr;
}

std::size_t CZrEnvNameIndex::Count(std::string_view name) const {
    if (m_bOrdered) {
        const auto [at, end] = m_Ordered.equal_range(name);
        return static_cast<std::size_t>(
            std::count_if(at, end, [=, this](const CZrEnvElement *pElem) { return Fits(pElem, name); }));
    }
    if (m_Slots.empty())
        return 0;
    const Slot slot = m_Slots[Place(name)];
    if (!slot)
        return 0;
    const Group *pGroup = GroupIn(slot);
    return pGroup ? pGroup->size() : 1;
}

const char *CZrEnvNameIndex::NameIn(Slot slot) {
    const Group *pGroup = GroupIn(slot);
    return (pGroup ? pGroup->elems[pGroup->head] : ElementIn(slot))->m_szName;
}

// Where a name stands, or the free slot where it would.
std::size_t CZrEnvNameIndex::Place(std::string_view name) const {
    const std::size_t mask = m_Slots.size() - 1;
    std::size_t at = static_cast<std::size_t>(Hash(name)) & mask;
    while (m_Slots[at] && name != NameIn(m_Slots[at]))
        at = (at + 1) & mask;
    return at;
}

void CZrEnvNameIndex::Grow() {
    std::vector<Slot> old(std::max<std::size_t>(16, m_Slots.size() * 2));
    old.swap(m_Slots);
    for (const Slot slot : old)
        if (slot)
            m_Slots[Place(NameIn(slot))] = slot;
}

// A nameless child is found by no name.
void CZrEnvNameIndex::InsertHashed(CZrEnvElement *pElem) {
    if (!pElem->m_szName)
        return;
    if (m_uUsed * 2 >= m_Slots.size())
        Grow();
    Slot &slot = m_Slots[Place(pElem->m_szName)];
    if (!slot) {
        slot = reinterpret_cast<Slot>(pElem);
        ++m_uUsed;
    } else if (Group *pGroup = GroupIn(slot)) {
        pGroup->elems.push_back(pElem);
    } else {
        auto group = std::make_unique<Group>();
        group->elems = {ElementIn(slot), pElem};
        slot = reinterpret_cast<Slot>(group.release()) + 1;
    }
}

bool CZrEnvNameIndex::RemoveHashed(CZrEnvElement *pElem) {
    if (!pElem->m_szName)
        return true;
    if (m_Slots.empty())
        return false;
    const std::size_t place = Place(pElem->m_szName);
    const Slot slot = m_Slots[place];
    Group *pGroup = GroupIn(slot);
    if (!pGroup) {
        if (ElementIn(slot) != pElem)
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
        m_Slots[place] = reinterpret_cast<Slot>(pGroup->elems[pGroup->head]);
        delete pGroup;
    }
    return true;
}

// Moves later slots of the run up, so that no search ends early at the gap.
void CZrEnvNameIndex::CloseGap(std::size_t gap) {
    const std::size_t mask = m_Slots.size() - 1;
    for (std::size_t at = (gap + 1) & mask; m_Slots[at]; at = (at + 1) & mask) {
        const std::size_t home = static_cast<std::size_t>(Hash(NameIn(m_Slots[at]))) & mask;
        if (((at - home) & mask) >= ((at - gap) & mask)) {
            m_Slots[gap] = m_Slots[at];
            gap = at;
        }
    }
    m_Slots[gap] = 0;
    --m_uUsed;
}

} // namespace Zr
