// CZrEnv: life cycle, sections, subenvironments, the default chain, the rules for names.
#include <algorithm>
#include <cstring>
#include <new>

#include <zrclb/report.h>

#include "env/name_index.h"
#include "env/node_store.h"
#include "env/tree_edits.h"

namespace Zr {

namespace {

constexpr const char *kTag = "ZrEnv";

// Among so few sections a walk along the list is as fast as an index.
constexpr zr_long kWalkAtMost = 8;

// Takes the last entry that holds pEnv out of a list.
bool TakeOut(std::vector<CZrEnv *> &rList, const CZrEnv *pEnv) {
    const auto at = std::find(rList.rbegin(), rList.rend(), pEnv); // what came last mostly goes first
    if (at == rList.rend())
        return false;
    rList.erase(std::next(at).base());
    return true;
}

// A new environment also needs a place in the lists of others: no memory for that is no memory for it.
template <class Make>
CZrEnv *OrNull(Make make) {
    try {
        return make();
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

} // namespace

// --- life cycle -------------------------------------------------------------------------------------------------------

CZrEnv::CZrEnv(zr_long lID, CZrEnv *pDefault) : m_lID(lID) {
    if (pDefault) {
        SetDefault(pDefault);
        ++pDefault->m_lRefCount;
    }
}

// A subenvironment. The count of the default does not rise for the pointer that is copied here.
CZrEnv::CZrEnv(CZrEnvElement *pRoot) : CZrEnv(pRoot, pRoot ? pRoot->GetEnv() : nullptr) {}

CZrEnv::CZrEnv(CZrEnvElement *pRoot, CZrEnv *pParent) : m_pSubEnvRoot(pRoot) {
    if (!pParent)
        return;
    SetDefault(pParent->m_pDefaultEnv);
    try {
        pParent->AddSubEnv(this);
    } catch (...) {
        SetDefault(nullptr);
        throw;
    }
    m_pParentEnv = pParent;
    m_cDelimiter = pParent->m_cDelimiter;
    m_szDelimiter[0] = pParent->m_cDelimiter;
    m_lFileMTime = pParent->m_lFileMTime;
    m_lID = pParent->m_lID;
}

CZrEnv::CZrEnv(const CZrEnv &other)
    : m_cDelimiter(other.m_cDelimiter), m_lID(other.m_lID), m_eLastError(other.m_eLastError),
      m_lRefCount(other.m_lRefCount), m_lFileMTime(other.m_lFileMTime), m_lSectionCount(other.m_lSectionCount),
      m_pFirstSection(other.m_pFirstSection), m_pLastSection(other.m_pLastSection), m_pParentEnv(other.m_pParentEnv),
      m_pSubEnvRoot(other.m_pSubEnvRoot), m_pDefaultEnv(other.m_pDefaultEnv), m_SubEnvs(other.m_SubEnvs), m_bView(true),
      m_lErrorLine(other.m_lErrorLine), m_lErrorColumn(other.m_lErrorColumn) {
    m_szDelimiter[0] = m_cDelimiter;
}

// What this environment owned stays alive and belongs to nobody, as with any copy field by field.
CZrEnv &CZrEnv::operator=(const CZrEnv &other) {
    if (this == &other)
        return *this;
    std::vector<CZrEnv *> subEnvs = other.m_SubEnvs;
    if (!m_bView) {
        SetDefault(nullptr);
        SectionsChanged();
    }
    m_cDelimiter = m_szDelimiter[0] = other.m_cDelimiter;
    m_lID = other.m_lID;
    m_eLastError = other.m_eLastError;
    m_lRefCount = other.m_lRefCount;
    m_lFileMTime = other.m_lFileMTime;
    m_lSectionCount = other.m_lSectionCount;
    m_pFirstSection = other.m_pFirstSection;
    m_pLastSection = other.m_pLastSection;
    m_pParentEnv = other.m_pParentEnv;
    m_pSubEnvRoot = other.m_pSubEnvRoot;
    m_pDefaultEnv = other.m_pDefaultEnv;
    m_SubEnvs.swap(subEnvs);
    m_bView = true;
    m_lErrorLine = other.m_lErrorLine;
    m_lErrorColumn = other.m_lErrorColumn;
    return *this;
}

// Other environments may still point here where the counts allowed the end: they are told.
CZrEnv::~CZrEnv() {
    if (m_bView) {
        delete m_pSectionIndex;
        return;
    }
    if (m_pParentEnv) {
        m_pParentEnv->RemoveSubEnv(this);
    } else {
        DeleteEnvironmentSections();
        if (m_pDefaultEnv)
            --m_pDefaultEnv->m_lRefCount;
    }
    SetDefault(nullptr);
    for (CZrEnv *pHolder : m_Holders)
        pHolder->m_pDefaultEnv = nullptr;
    for (CZrEnv *pSub : m_SubEnvs) {
        pSub->SetDefault(nullptr);
        pSub->m_pParentEnv = nullptr;
        pSub->m_pSubEnvRoot = nullptr;
    }
    delete m_pSectionIndex;
}

CZrEnv *CZrEnv::CreateEnv(zr_long lID, CZrEnv *pDefault) {
    return OrNull([=] { return new CZrEnv(lID, pDefault); });
}

EZrEnvError CZrEnv::DestroyEnv(CZrEnv *pEnv, bool bDefaults) {
    while (pEnv) {
        if (pEnv->m_lRefCount != 0)
            return ENV_IN_USE;
        CZrEnv *pDefault = pEnv->m_pDefaultEnv;
        const bool goOn = bDefaults && !pEnv->IsSubEnv();
        delete pEnv;
        if (!goOn)
            break;
        pEnv = pDefault;
    }
    return ENV_OK;
}

void CZrEnv::DeleteEnvironmentSections() {
    if (m_bView)
        return;
    for (CZrEnv *pSub : m_SubEnvs)
        pSub->m_pSubEnvRoot = nullptr;
    SectionsChanged();
    while (CZrEnvSection *pSection = m_pFirstSection) {
        m_pFirstSection = GetNextSection(pSection);
        delete pSection;
    }
    m_pLastSection = nullptr;
    m_lSectionCount = 0;
}

// --- state ------------------------------------------------------------------------------------------------------------

char CZrEnv::SetDelimiter(char cDelimiter) {
    const char cOld = m_cDelimiter;
    if (cDelimiter == '\0')
        zr_error("Bad delimiter", nullptr, nullptr, kTag, __LINE__);
    else
        m_cDelimiter = m_szDelimiter[0] = cDelimiter;
    return cOld;
}

zr_long CZrEnv::GetFileMTime() {
    return IsSubEnv() ? zr_long{ENV_ERROR} : m_lFileMTime;
}

void CZrEnv::SetFileMTime(zr_long lTime) {
    if (IsSubEnv())
        zr_message("Try to call 'env_core_set_mtime' for subenv", nullptr, nullptr, kTag, __LINE__);
    else
        m_lFileMTime = lTime;
}

EZrEnvElementType CZrEnv::GetElementType(CZrEnvElement *pElem) {
    if (!pElem)
        return ENV_TYPE_UNKNOWN;
    if (pElem->ToEnvDataElement())
        return ENV_TYPE_DATA;
    if (pElem->ToEnvSection())
        return ENV_TYPE_SECTION;
    return pElem->ToEnvBlock() ? ENV_TYPE_BLOCK : ENV_TYPE_UNKNOWN;
}

void CZrEnv::FreeString(char *szText) {
    delete[] szText;
}

// --- names ------------------------------------------------------------------------------------------------------------

bool CZrEnv::CheckSectionName(const char *szName) {
    return szName && !std::strchr(szName, ']');
}

bool CZrEnv::CheckElementName(const char *szName, char cDelimiter) {
    if (!szName || !*szName || std::strchr(szName, '='))
        return false;
    return cDelimiter == '\0' || !std::strchr(szName, cDelimiter);
}

bool CZrEnv::CheckElementName(const char *szName) {
    return CheckElementName(szName, m_cDelimiter);
}

// --- sections ---------------------------------------------------------------------------------------------------------

// The index of section names is a shortcut that any change but an append gives up.
void CZrEnv::SectionsChanged() {
    CountTreeEdit();
    delete m_pSectionIndex;
    m_pSectionIndex = nullptr;
}

// Takes a section away from the environment or block where it may still stand, so that no two owners share it.
bool CZrEnv::Detach(CZrEnvSection *pSection) {
    if (CZrEnv *pOwner = pSection->m_pEnv) {
        pOwner->UnlinkSection(pSection);
        --pOwner->m_lSectionCount;
    }
    if (!pSection->m_pParent)
        return true;
    CZrEnv *pHolder = pSection->CZrEnvElement::GetEnv(); // of the block that it stands in
    if (!pSection->m_pParent->RemoveElement(pSection, false))
        return false;
    if (pHolder)
        pHolder->ForgetRootsBelow(pSection);
    return true;
}

bool CZrEnv::InsertSection(CZrEnvSection *pSection) {
    if (IsSubEnv() || !pSection || pSection->GetEnv() == this) {
        zr_message("Fehler bei InsertSection", nullptr, nullptr, kTag, __LINE__);
        return false;
    }
    if (!CheckSectionName(pSection->GetName())) {
        zr_message("Wrong section name: ", pSection->GetName(), nullptr, kTag, __LINE__);
        return false;
    }
    if (!Detach(pSection))
        return false;
    if (m_pSectionIndex) {
        try {
            m_pSectionIndex->Insert(pSection);
        } catch (const std::bad_alloc &) {
            SectionsChanged();
        }
    }
    pSection->SetEnv(this);
    pSection->m_pSucc = nullptr;
    if (m_pLastSection)
        m_pLastSection->m_pSucc = pSection;
    else
        m_pFirstSection = pSection;
    m_pLastSection = pSection;
    ++m_lSectionCount;
    return true;
}

CZrEnvSection *CZrEnv::InsertSection(const char *szName) {
    auto *pSection = new (std::nothrow) CZrEnvSection(szName);
    if (!pSection) {
        zr_error("Out of memory", nullptr, nullptr, kTag, __LINE__);
        return nullptr;
    }
    if (InsertSection(pSection))
        return pSection;
    delete pSection;
    return nullptr;
}

bool CZrEnv::InsertSectionBefore(CZrEnvSection *pSection, CZrEnvSection *pBefore) {
    if (!pBefore)
        return InsertSection(pSection);
    if (!pSection || pSection->GetEnv() == this || pBefore->GetEnv() != this)
        return false;
    if (!Detach(pSection))
        return false;
    SectionsChanged();
    pSection->SetEnv(this);
    if (m_pFirstSection == pBefore) {
        m_pFirstSection = pSection;
    } else {
        CZrEnvElement *pAt = m_pFirstSection;
        while (pAt && pAt->m_pSucc != pBefore)
            pAt = pAt->m_pSucc;
        if (!pAt) {
            zr_error("Unexpected nil", nullptr, nullptr, kTag, __LINE__);
            return false;
        }
        pAt->m_pSucc = pSection;
    }
    pSection->m_pSucc = pBefore;
    ++m_lSectionCount;
    return true;
}

CZrEnvSection *CZrEnv::GetSection(const char *szName) const {
    if (!szName)
        return nullptr;
    if (IsSubEnv()) {
        zr_message("try find section in subenvironment", nullptr, nullptr, kTag, __LINE__);
        SetLastError(ENV_ERROR);
        return nullptr;
    }
    CZrEnvElement *pFound = nullptr;
    if (!m_pSectionIndex && m_lSectionCount > kWalkAtMost) {
        try {
            m_pSectionIndex = CZrEnvNameIndex::Make(m_pFirstSection, static_cast<std::size_t>(m_lSectionCount));
        } catch (const std::bad_alloc &) {
            m_pSectionIndex = nullptr; // the walk below finds it too
        }
    }
    if (m_pSectionIndex) {
        pFound = m_pSectionIndex->Find(szName, 1, static_cast<std::size_t>(m_lSectionCount));
    } else {
        pFound = m_pFirstSection;
        while (pFound && !(pFound->m_szName && std::strcmp(pFound->m_szName, szName) == 0))
            pFound = pFound->m_pSucc;
    }
    SetLastError(pFound ? ENV_OK : ENV_NOT_FOUND);
    return static_cast<CZrEnvSection *>(pFound);
}

CZrEnvSection *CZrEnv::GetNextSection(CZrEnvSection *pSection) const {
    return pSection && pSection->m_pSucc ? pSection->m_pSucc->ToEnvSection() : nullptr;
}

EZrEnvError CZrEnv::GetSections(std::vector<CZrEnvSection *> &rSections) const {
    if (IsSubEnv()) {
        zr_message("GetSections-Aufruf bei SubEnv", nullptr, nullptr, kTag, __LINE__);
        return SetLastError(ENV_ERROR);
    }
    for (CZrEnvSection *pSection = m_pFirstSection; pSection; pSection = GetNextSection(pSection))
        rSections.push_back(pSection);
    return SetLastError(ENV_OK);
}

EZrEnvError CZrEnv::GetSectionNames(std::vector<std::string> &rNames) const {
    if (IsSubEnv()) {
        zr_message("GetSectionNames-Aufruf bei SubEnv", nullptr, nullptr, kTag, __LINE__);
        return SetLastError(ENV_ERROR);
    }
    for (CZrEnvSection *pSection = m_pFirstSection; pSection; pSection = GetNextSection(pSection))
        rNames.emplace_back(pSection->GetName() ? pSection->GetName() : "");
    return SetLastError(ENV_OK);
}

// Takes a section out of the list; the count is the caller's matter.
void CZrEnv::UnlinkSection(CZrEnvSection *pSection) {
    SectionsChanged();
    ForgetRootsBelow(pSection);
    CZrEnvSection *pBefore = nullptr;
    CZrEnvSection *pAt = m_pFirstSection;
    while (pAt && pAt != pSection) {
        pBefore = pAt;
        pAt = GetNextSection(pAt);
    }
    if (!pAt)
        return;
    CZrEnvSection *pNext = GetNextSection(pSection);
    if (pBefore)
        pBefore->m_pSucc = pNext;
    else
        m_pFirstSection = pNext;
    if (m_pLastSection == pSection)
        m_pLastSection = pBefore;
    pSection->SetEnv(nullptr);
}

void CZrEnv::DeleteSection(CZrEnvSection *pSection) {
    if (!pSection)
        return;
    CZrEnv *pOwner = pSection->m_pEnv ? pSection->m_pEnv : this;
    pOwner->UnlinkSection(pSection);
    if (pOwner != this)
        --pOwner->m_lSectionCount;
    --m_lSectionCount; // whoever owned it
    delete pSection;
}

EZrEnvError CZrEnv::DeleteSection(const char *szName) {
    if (IsSubEnv()) {
        zr_message("DeleteSection-Aufruf bei SubEnv", nullptr, nullptr, kTag, __LINE__);
        return SetLastError(ENV_ERROR);
    }
    CZrEnvSection *pSection = GetSection(szName);
    if (!pSection)
        return SetLastError(ENV_NOT_FOUND);
    DeleteSection(pSection);
    return SetLastError(ENV_OK);
}

// --- subenvironments --------------------------------------------------------------------------------------------------

CZrEnv *CZrEnv::OpenSubenv(CZrEnvElement *pElem) {
    if (!pElem)
        return nullptr;
    if (!IsSubEnv() && pElem->GetEnv() != this)
        return nullptr;
    return OrNull([=] { return new CZrEnv(pElem); });
}

CZrEnv *CZrEnv::OpenSubenv(const char *szSection, const char *szPath, bool bDirect) {
    CZrEnvElement *pElem = GetElement(szSection, szPath, bDirect, false);
    return pElem ? OrNull([=] { return new CZrEnv(pElem); }) : nullptr;
}

CZrEnv *CZrEnv::CreateSubenv(const char *szSection, const char *szPath) {
    ResetLastError();
    CZrEnvElement *pElem = GetElement(szSection, szPath, true, false);
    if (!pElem)
        pElem = CreatePath(szSection, szPath, ENV_TYPE_BLOCK);
    if (!pElem) {
        SetLastError(ENV_ERROR);
        return nullptr;
    }
    return OpenSubenv(pElem);
}

void CZrEnv::AddSubEnv(CZrEnv *pSub) {
    CZrEnv *pTop = this;
    while (pTop->m_pParentEnv)
        pTop = pTop->m_pParentEnv;
    pTop->m_SubEnvs.push_back(pSub);
    ++pTop->m_lRefCount;
}

void CZrEnv::RemoveSubEnv(CZrEnv *pSub) {
    if (TakeOut(m_SubEnvs, pSub))
        --m_lRefCount;
}

// Subenvironments rooted at an element that is about to end, or below it, lose their root.
void CZrEnv::ForgetRootsBelow(const CZrEnvElement *pElem) {
    for (CZrEnv *pSub : m_SubEnvs) {
        const CZrEnvElement *pAt = pSub->m_pSubEnvRoot;
        while (pAt && pAt != pElem)
            pAt = pAt->GetParent();
        if (pAt)
            pSub->m_pSubEnvRoot = nullptr;
    }
}

// --- default chain ----------------------------------------------------------------------------------------------------

// Every environment knows who points at it, counted or not, so that no pointer outlives its target.
void CZrEnv::SetDefault(CZrEnv *pDefault) {
    if (pDefault)
        pDefault->m_Holders.push_back(this);
    if (m_pDefaultEnv)
        TakeOut(m_pDefaultEnv->m_Holders, this);
    m_pDefaultEnv = pDefault;
}

void CZrEnv::AttachAsLastDefault(CZrEnv *pDefault) {
    if (!pDefault) {
        zr_message("Attempt to attach NIL as new_default.\nIgnored.", nullptr, nullptr, kTag, __LINE__);
        return;
    }
    CZrEnv *pLast = this;
    while (pLast != pDefault && pLast->m_pDefaultEnv)
        pLast = pLast->m_pDefaultEnv;
    for (const CZrEnv *pAt = pDefault; pAt; pAt = pAt->m_pDefaultEnv)
        if (pAt == pLast) // it is in the chain already, or the chain would become a ring
            return;
    pLast->SetDefault(pDefault);
    ++pDefault->m_lRefCount;
}

CZrEnv *CZrEnv::DetachDefaultChain() {
    CZrEnv *pDefault = m_pDefaultEnv;
    if (pDefault) {
        SetDefault(nullptr);
        --pDefault->m_lRefCount;
    }
    return pDefault;
}

} // namespace Zr
