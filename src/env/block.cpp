// CZrEnvBlock: the children of a block, in sequence and by name.
#include <memory>

#include <zrclb/report.h>

#include "env/name_index.h"
#include "env/node_store.h"
#include "env/path.h"
#include "env/tree_edits.h"

namespace Zr {

namespace {

constexpr const char *kTag = "ZrEnvBlock";

// Among so few children a walk finds a name as fast as an index does.
constexpr std::uint32_t kWalkAtMost = 8;

bool HasName(const CZrEnvElement *pElem, std::string_view name) {
    return pElem->GetName() && name == pElem->GetName();
}

// A block that stands above pElem, or is it, cannot become its child.
bool IsAtOrAbove(const CZrEnvElement *pUpper, const CZrEnvElement *pElem) {
    while (pElem && pElem != pUpper)
        pElem = pElem->GetParent();
    return pElem != nullptr;
}

} // namespace

CZrEnvBlock::CZrEnvBlock(const char *szName) : CZrEnvElement(szName) {
    m_uFlags |= CZrEnvNodeStore::KindBlock;
}

CZrEnvBlock::~CZrEnvBlock() {
    if (!(m_uFlags & CZrEnvNodeStore::View))
        CZrEnvNodeStore::DestroyChildren(*this);
    delete m_pIndex;
}

CZrEnvBlock::CZrEnvBlock(const CZrEnvBlock &other)
    : CZrEnvElement(other), m_uCount(other.m_uCount), m_pFirst(other.m_pFirst), m_pLast(other.m_pLast) {
    m_uFlags |= CZrEnvNodeStore::KindBlock;
}

CZrEnvBlock &CZrEnvBlock::operator=(const CZrEnvBlock &other) {
    if (this != &other) {
        CZrEnvBlock view(other); // other may stand below this block, and end with its children
        if (!(m_uFlags & CZrEnvNodeStore::View))
            CZrEnvNodeStore::DestroyChildren(*this);
        delete m_pIndex;
        m_pIndex = nullptr;
        CZrEnvElement::operator=(view);
        m_uCount = view.m_uCount;
        m_pFirst = view.m_pFirst;
        m_pLast = view.m_pLast;
    }
    return *this;
}

CZrEnvBlock *CZrEnvBlock::ToEnvBlock() {
    return this;
}

const CZrEnvBlock *CZrEnvBlock::ToEnvBlock() const {
    return this;
}

// The index for look-ups, if there is one or it is worth making one; null stands for a walk along the sequence, which
// gives the same answers as long as there is no ordered index.
CZrEnvNameIndex *CZrEnvBlock::LookUpIndex() const {
    if (!m_pIndex && m_uCount > kWalkAtMost) {
        try {
            m_pIndex = CZrEnvNameIndex::Make(m_pFirst, m_uCount);
        } catch (const std::bad_alloc &) {
            return nullptr;
        }
    }
    return m_pIndex;
}

CZrEnvNameIndex &CZrEnvBlock::OrderedIndex() const {
    if (!m_pIndex) { // none is kept before it is complete
        std::unique_ptr<CZrEnvNameIndex> pIndex(CZrEnvNameIndex::Make(nullptr, 0));
        pIndex->MakeOrdered(m_pFirst);
        m_pIndex = pIndex.release();
    } else if (!m_pIndex->IsOrdered()) {
        m_pIndex->MakeOrdered(m_pFirst);
    }
    return *m_pIndex;
}

// Takes an element away from where it may still stand, so that no two owners share it. False if it cannot become a child.
// One that leaves another block finds its place in the index reserved here: no lack of memory leaves it without a block.
bool CZrEnvBlock::Adopt(CZrEnvElement *pElem) {
    const CZrEnvBlock *pBlock = pElem->ToEnvBlock();
    if (pBlock && (pBlock == this || pBlock->m_pFirst) && IsAtOrAbove(pElem, this))
        return false;
    if (const CZrEnvSection *pSection = pElem->ToEnvSection(); pSection && pSection->m_pEnv)
        return false;
    if (!pElem->m_pParent)
        return true;
    if (m_pIndex && m_pIndex->IsOrdered())
        m_pIndex->Reserve(pElem);
    CZrEnv *pOwner = pElem->CZrEnvElement::GetEnv(); // a section in a block knows none itself
    if (!pElem->m_pParent->RemoveElement(pElem, false))
        return false;
    if (pOwner && pOwner != (m_pParent ? CZrEnvElement::GetEnv() : GetEnv()))
        pOwner->ForgetRootsBelow(pElem); // it leaves the tree that those are views of
    return true;
}

void CZrEnvBlock::InsertElementIntoContainer(CZrEnvElement *pElem) {
    if (!m_pIndex)
        return;
    try {
        m_pIndex->Insert(pElem);
    } catch (const std::bad_alloc &) {
        if (m_pIndex->IsOrdered())
            throw;
        delete m_pIndex; // a shortcut that would no longer be complete
        m_pIndex = nullptr;
    }
}

// Without an index the sequence stands for it: a copy of a child names this block too, but is not found.
bool CZrEnvBlock::RemoveElementFromContainer(CZrEnvElement *pElem) {
    if (m_pIndex)
        return m_pIndex->Remove(pElem);
    const CZrEnvElement *pAt = m_pFirst;
    while (pAt && pAt != pElem)
        pAt = pAt->m_pSucc;
    return pAt != nullptr;
}

bool CZrEnvBlock::InsertElement(CZrEnvElement *pElem) {
    if (!pElem || pElem->m_pParent == this || !Adopt(pElem))
        return false;
    InsertElementIntoContainer(pElem);
    CZrEnvNodeStore::Append(*this, pElem);
    return true;
}

bool CZrEnvBlock::InsertElementBefore(CZrEnvElement *pElem, CZrEnvElement *pBefore) {
    if (!pBefore)
        return InsertElement(pElem);
    if (!pElem || pElem->m_pParent == this || pBefore->m_pParent != this)
        return false;
    CZrEnvNameIndex &rIndex = OrderedIndex();
    if (!Adopt(pElem))
        return false;
    CountTreeEdit();
    rIndex.InsertBefore(pElem, pBefore);
    CZrEnvNodeStore::Scatter(*this);
    pElem->m_pParent = this;
    CZrEnvElement **ppLink = &m_pFirst;
    while (*ppLink && *ppLink != pBefore)
        ppLink = &(*ppLink)->m_pSucc;
    if (!*ppLink) {
        zr_error("Unexpected nil", nullptr, nullptr, kTag, __LINE__);
        return false;
    }
    pElem->m_pSucc = pBefore;
    *ppLink = pElem;
    ++m_uCount;
    return true;
}

// Takes a child out of the sequence. Its own successor link stays as it is.
void CZrEnvBlock::Disown(CZrEnvElement *pElem) {
    CZrEnvNodeStore::Scatter(*this);
    CZrEnvElement *pBefore = nullptr;
    CZrEnvElement *pAt = m_pFirst;
    while (pAt && pAt != pElem) {
        pBefore = pAt;
        pAt = pAt->m_pSucc;
    }
    if (!pAt)
        return;
    (pBefore ? pBefore->m_pSucc : m_pFirst) = pElem->m_pSucc;
    if (m_pLast == pElem)
        m_pLast = pBefore;
    --m_uCount;
}

bool CZrEnvBlock::RemoveElement(CZrEnvElement *pElem, bool bDelete) {
    if (!pElem)
        return false;
    if (pElem->m_pParent != this) {
        zr_message("CZrEnvBlock::RemoveElement - Element geh\xF6rt nicht zum Block", nullptr, nullptr, kTag, __LINE__);
        return false;
    }
    if (!RemoveElementFromContainer(pElem))
        return false;
    if (m_pIndex && m_pIndex->IsOrdered() && m_pIndex->EntryCount() >= m_uCount)
        m_pIndex->Forget(pElem);
    if (CZrEnv *pEnv = bDelete ? pElem->CZrEnvElement::GetEnv() : nullptr)
        pEnv->ForgetRootsBelow(pElem);
    CountTreeEdit();
    pElem->m_pParent = nullptr;
    Disown(pElem);
    if (bDelete)
        delete pElem;
    return true;
}

bool CZrEnvBlock::ReplaceElement(CZrEnvElement *pOld, CZrEnvElement *pNew) {
    if (!pOld || !pNew || pOld == pNew)
        return false;
    if (pOld->m_pParent != this) {
        zr_message("CZrEnvBlock::ReplaceElement - Element geh\xF6rt nicht zum Block", nullptr, nullptr, kTag, __LINE__);
        return false;
    }
    CZrEnvNameIndex &rIndex = OrderedIndex();
    if (!Adopt(pNew))
        return false;
    rIndex.Replace(pOld, pNew);
    rIndex.Forget(pOld);
    if (CZrEnv *pEnv = pOld->CZrEnvElement::GetEnv())
        pEnv->ForgetRootsBelow(pOld);

    CountTreeEdit();
    CZrEnvNodeStore::Scatter(*this);
    pNew->m_pParent = this;
    if (m_pLast == pOld)
        m_pLast = pNew;
    CZrEnvElement **ppLink = &m_pFirst;
    while (*ppLink && *ppLink != pOld)
        ppLink = &(*ppLink)->m_pSucc;
    if (*ppLink) {
        pNew->m_pSucc = pOld->m_pSucc;
        *ppLink = pNew;
    }
    pOld->m_pParent = nullptr;
    delete pOld;
    return true;
}

// The entry is looked for under the new name, where the old one may not be found: it then stays, and the element counts
// twice from here on.
void CZrEnvBlock::ElemNameChanged(CZrEnvElement *pElem) {
    if (!pElem || pElem->m_pParent != this)
        return;
    CountTreeEdit();
    OrderedIndex().Replace(pElem, pElem);
}

CZrEnvElement *CZrEnvBlock::Find(std::string_view name, zr_long lPos) const {
    if (const CZrEnvNameIndex *pIndex = LookUpIndex())
        return pIndex->Find(name, lPos, m_uCount);
    if (lPos < 1)
        lPos = 1;
    for (CZrEnvElement *pElem = m_pFirst; pElem; pElem = pElem->m_pSucc)
        if (HasName(pElem, name) && --lPos == 0)
            return pElem;
    return nullptr;
}

zr_ulong CZrEnvBlock::Count(std::string_view name) const {
    if (const CZrEnvNameIndex *pIndex = LookUpIndex())
        return static_cast<zr_ulong>(pIndex->Count(name));
    zr_ulong count = 0;
    for (const CZrEnvElement *pElem = m_pFirst; pElem; pElem = pElem->m_pSucc)
        count += HasName(pElem, name) ? 1 : 0;
    return count;
}

CZrEnvElement *CZrEnvBlock::GetElement(const char *szName, zr_long lPos) {
    return CZrEnv::CheckElementName(szName, '\0') ? Find(szName, lPos) : nullptr;
}

CZrEnvDataElement *CZrEnvBlock::GetDataElement(const char *szName, zr_long lPos) {
    CZrEnvElement *pElem = GetElement(szName, lPos);
    return pElem ? pElem->ToEnvDataElement() : nullptr;
}

CZrEnvBlock *CZrEnvBlock::GetBlock(const char *szName, zr_long lPos) {
    CZrEnvElement *pElem = GetElement(szName, lPos);
    return pElem ? pElem->ToEnvBlock() : nullptr;
}

zr_ulong CZrEnvBlock::GetElemCount() const {
    if (m_pIndex && m_pIndex->IsOrdered())
        return static_cast<zr_ulong>(m_pIndex->EntryCount());
    return m_uCount;
}

zr_ulong CZrEnvBlock::GetElemCount(const char *szName) const {
    return CZrEnv::CheckElementName(szName, '\0') ? Count(szName) : 0;
}

CZrEnvElement *CZrEnvBlock::GetNextElement(const CZrEnvElement *pElem) const {
    return pElem ? pElem->m_pSucc : nullptr;
}

void CZrEnvBlock::GetElems(std::vector<CZrEnvElement *> &rElems) {
    for (CZrEnvElement *pElem = m_pFirst; pElem; pElem = pElem->m_pSucc)
        rElems.push_back(pElem);
}

void CZrEnvBlock::GetElemNames(std::vector<std::string> &rNames) {
    for (const CZrEnvElement *pElem = m_pFirst; pElem; pElem = pElem->m_pSucc)
        rNames.emplace_back(pElem->m_szName ? pElem->m_szName : "");
}

// Fills up with empty data elements to two less than the position that was asked for, and adds the new element behind
// them: so a jump by more than one past the namesakes ends one short of that position.
CZrEnvElement *CZrEnvBlock::CreateNewElement(const CZrEnvPathElem &rStep, EZrEnvElementType eType) {
    const zr_long fillTo = rStep.m_lPos < 2 ? 0 : rStep.m_lPos < 3 ? 1 : rStep.m_lPos - 2;
    for (zr_ulong count = Count(rStep.m_Name); count < static_cast<zr_ulong>(fillTo); ++count) {
        CZrEnvNodeStore::Holder filler(CZrEnvNodeStore::NewData(rStep.m_Name));
        if (!filler) {
            zr_message("Out of memory", nullptr, nullptr, kTag, __LINE__);
            return nullptr;
        }
        InsertElement(filler.get());
        filler.release();
    }
    if (rStep.m_lPos < 1)
        return nullptr;
    if (CZrEnvElement *pPresent = Find(rStep.m_Name, rStep.m_lPos))
        return pPresent;
    if (eType != ENV_TYPE_DATA && eType != ENV_TYPE_BLOCK)
        return nullptr;
    CZrEnvNodeStore::Holder added;
    if (eType == ENV_TYPE_DATA)
        added.reset(CZrEnvNodeStore::NewData(rStep.m_Name));
    else
        added.reset(CZrEnvNodeStore::NewBlock(rStep.m_Name));
    if (!added) {
        zr_message("Out of memory", nullptr, nullptr, kTag, __LINE__);
        return nullptr;
    }
    InsertElement(added.get());
    return added.release();
}

} // namespace Zr
