// CZrEnv: look-ups by section and path, by position, counts, and the composing of paths.
#include <cstring>

#include <zrclb/report.h>

#include "env/node_store.h"
#include "env/path.h"

namespace Zr {

namespace {

constexpr const char *kTag = "ZrEnv";

// The element lPos - 1 links behind the first.
template <class Node>
CZrEnvElement *AtPosition(Node *pFirst, zr_long lPos) {
    CZrEnvElement *pElem = pFirst;
    for (; pElem && lPos > 1; --lPos)
        pElem = pElem->GetSuccElem();
    return pElem;
}

} // namespace

// --- one step of a tree search ----------------------------------------------------------------------------------------

// Breadth-first: all children of a block before those of the blocks among them. A namesake that does not count far enough
// is not searched inside, and the count begins afresh in each block.
CZrEnvElement *CZrEnv::SearchInTree(CZrEnvBlock *pBlock, const CZrEnvPathElem &rStep) const {
    if (!pBlock) {
        zr_error("NULL-Pointer", nullptr, nullptr, kTag, __LINE__);
        return nullptr;
    }
    std::vector<CZrEnvBlock *> queue;
    for (std::size_t next = 0;; ++next) {
        if (rStep.m_lPos < 1 && pBlock->m_pFirst)
            return pBlock->m_pFirst;
        zr_long lLeft = rStep.m_lPos;
        for (CZrEnvElement *pElem = pBlock->m_pFirst; pElem; pElem = pElem->m_pSucc) {
            if (pElem->m_szName && rStep.m_Name == pElem->m_szName) {
                if (--lLeft == 0)
                    return pElem;
            } else if (CZrEnvNodeStore::IsBlock(pElem)) {
                queue.push_back(static_cast<CZrEnvBlock *>(pElem));
            }
        }
        if (next == queue.size())
            return nullptr;
        pBlock = queue[next];
    }
}

CZrEnvElement *CZrEnv::CommonSearch(const char *szPath, bool bDirect, CZrEnvBlock *pStart) const {
    if (!pStart) {
        SetLastError(ENV_ERROR);
        return nullptr;
    }
    CZrEnvElement *pElem = pStart;
    CZrEnvPath path(szPath, m_cDelimiter);
    for (CZrEnvPathElem step; path.Next(step);) {
        if (CZrEnvNodeStore::IsBlock(pElem)) {
            auto *pBlock = static_cast<CZrEnvBlock *>(pElem);
            pElem = bDirect ? pBlock->Find(step.m_Name, step.m_lPos) : SearchInTree(pBlock, step);
        } else {
            pElem = nullptr;
        }
        if (!pElem) {
            SetLastError(ENV_NOT_FOUND);
            return nullptr;
        }
    }
    SetLastError(ENV_OK);
    return pElem;
}

// A search that came to nothing leaves ENV_OK too; only the null result tells.
CZrEnvElement *CZrEnv::SearchProc(const char *szSection, const char *szPath, bool bDirect) const {
    CZrEnvElement *pStart = IsSubEnv() ? m_pSubEnvRoot : GetSection(szSection);
    if (!pStart) {
        SetLastError(ENV_NOT_FOUND);
        return nullptr;
    }
    if (!szPath) {
        SetLastError(ENV_OK);
        return pStart;
    }
    CZrEnvBlock *pBlock = pStart->ToEnvBlock();
    if (!pBlock) {
        SetLastError(ENV_ERROR);
        return nullptr;
    }
    CZrEnvElement *pElem = CommonSearch(szPath, bDirect, pBlock);
    SetLastError(ENV_OK);
    return pElem;
}

// --- look-ups with the default chain ----------------------------------------------------------------------------------

// Asks this environment, then, if wanted, one default after the other. `look` gives what one environment has and says
// whether that is the answer at once. The last error of the one that answered is copied to all in front of it.
template <class Look>
CZrEnvElement *CZrEnv::AlongDefaults(bool bDefaults, Look look) const {
    const CZrEnv *pEnv = this;
    CZrEnvElement *pElem = nullptr;
    for (;;) {
        pEnv->ResetLastError();
        bool atOnce = false;
        pElem = look(*pEnv, atOnce);
        if (pElem || atOnce)
            break;
        if (!bDefaults || !pEnv->m_pDefaultEnv) {
            pEnv->SetLastError(ENV_NOT_FOUND);
            break;
        }
        pEnv = pEnv->m_pDefaultEnv;
    }
    for (const CZrEnv *pAsked = this; pAsked != pEnv; pAsked = pAsked->m_pDefaultEnv)
        pAsked->SetLastError(pEnv->m_eLastError);
    return pElem;
}

CZrEnvElement *CZrEnv::GetHere(const char *szSection, const char *szPath, bool bDirect, bool &rbAtOnce) const {
    if (IsSubEnv()) {
        rbAtOnce = !szPath;
        return szPath ? SearchProc(nullptr, szPath, bDirect) : m_pSubEnvRoot;
    }
    if (!szSection) {
        rbAtOnce = true;
        return m_pFirstSection;
    }
    return szPath ? SearchProc(szSection, szPath, bDirect) : GetSection(szSection);
}

CZrEnvElement *CZrEnv::GetElement(const char *szSection, const char *szPath, bool bDirect, bool bDefaults) const {
    return AlongDefaults(bDefaults, [=](const CZrEnv &rEnv, bool &rbAtOnce) {
        return rEnv.GetHere(szSection, szPath, bDirect, rbAtOnce);
    });
}

CZrEnvDataElement *CZrEnv::GetDataElement(const char *szSection, const char *szPath, bool bDirect,
                                          bool bDefaults) const {
    CZrEnvElement *pElem = GetElement(szSection, szPath, bDirect, bDefaults);
    return pElem ? pElem->ToEnvDataElement() : nullptr;
}

CZrEnvBlock *CZrEnv::GetBlock(const char *szSection, const char *szPath, bool bDirect, bool bDefaults) const {
    CZrEnvElement *pElem = GetElement(szSection, szPath, bDirect, bDefaults);
    return pElem ? pElem->ToEnvBlock() : nullptr;
}

CZrEnvElement *CZrEnv::GetPosElement(const char *szSection, const char *szPath, zr_long lPos, bool bDirect,
                                     bool bDefaults) const {
    return AlongDefaults(
        bDefaults, [=](const CZrEnv &rEnv, bool &) { return rEnv.FindElement(szSection, szPath, lPos, bDirect); });
}

CZrEnvElement *CZrEnv::GetNextElement(CZrEnvElement *pElem) const {
    return pElem ? pElem->m_pSucc : nullptr;
}

EZrEnvError CZrEnv::Check(const char *szSection, const char *szPath, bool bDirect) const {
    switch (GetElementType(SearchProc(szSection, szPath, bDirect))) {
    case ENV_TYPE_DATA:
        return ENV_DATA;
    case ENV_TYPE_BLOCK:
    case ENV_TYPE_SECTION:
        return ENV_BLOCK;
    default:
        return ENV_NOT_FOUND;
    }
}

// --- access by position -----------------------------------------------------------------------------------------------

CZrEnvElement *CZrEnv::FindElement(const char *szSection, const char *szPath, zr_long lPos, bool bDirect) const {
    ResetLastError();
    CZrEnvElement *pTarget = nullptr;
    if (IsSubEnv()) {
        pTarget = szPath ? SearchProc(nullptr, szPath, bDirect) : m_pSubEnvRoot;
    } else if (!szSection) {
        if (lPos >= 1)
            return SetPosEnv(lPos);
        zr_error("szSection == NIL and pos == 0", nullptr, nullptr, kTag, __LINE__);
        SetLastError(ENV_ERROR);
        return nullptr;
    } else {
        pTarget = szPath ? SearchProc(szSection, szPath, bDirect) : GetSection(szSection);
    }
    if (lPos < 1 || !pTarget)
        return pTarget;
    if (CZrEnvBlock *pBlock = pTarget->ToEnvBlock())
        return SetPosBlock(lPos, pBlock);
    SetLastError(ENV_NOT_FOUND);
    return nullptr;
}

CZrEnvElement *CZrEnv::SetPosBlock(zr_long lPos, CZrEnvBlock *pBlock) const {
    CZrEnvElement *pElem = pBlock ? AtPosition(pBlock->m_pFirst, lPos) : nullptr;
    SetLastError(pElem ? ENV_OK : ENV_NOT_FOUND);
    return pElem;
}

CZrEnvElement *CZrEnv::SetPosEnv(zr_long lPos) const {
    if (IsSubEnv())
        zr_message("SetPosEnv-Aufruf bei SubEnv", nullptr, nullptr, kTag, __LINE__);
    CZrEnvElement *pElem = IsSubEnv() ? nullptr : AtPosition(m_pFirstSection, lPos);
    SetLastError(pElem ? ENV_OK : ENV_NOT_FOUND);
    return pElem;
}

// --- counts and lists -------------------------------------------------------------------------------------------------

zr_long CZrEnv::CountElements(const char *szSection, const char *szPath, bool bDirect) {
    if (!IsSubEnv() && !szSection)
        return m_lSectionCount;
    CZrEnvElement *pElem = nullptr;
    if (szPath)
        pElem = SearchProc(szSection, szPath, bDirect);
    else
        pElem = IsSubEnv() ? m_pSubEnvRoot : GetSection(szSection);
    const CZrEnvBlock *pBlock = pElem ? pElem->ToEnvBlock() : nullptr;
    return pBlock ? static_cast<zr_long>(pBlock->GetElemCount()) : 0;
}

zr_long CZrEnv::CountPath(const char *szSection, const char *szPath, bool bDirect) {
    if (!szPath)
        return 0;
    const CZrEnvElement *pElem = SearchProc(szSection, szPath, bDirect);
    const CZrEnvBlock *pParent = pElem ? pElem->GetParent() : nullptr;
    if (!pParent)
        return 0;
    const char *pDelimiter = std::strrchr(szPath, m_cDelimiter);
    return static_cast<zr_long>(pParent->GetElemCount(pDelimiter ? pDelimiter + 1 : szPath));
}

EZrEnvError CZrEnv::GetElems(const char *szSection, const char *szPath, bool bDirect,
                             std::vector<CZrEnvElement *> &rElems) const {
    if (!IsSubEnv() && !szSection) {
        for (CZrEnvSection *pSection = m_pFirstSection; pSection; pSection = GetNextSection(pSection))
            rElems.push_back(pSection);
        return SetLastError(ENV_OK);
    }
    CZrEnvBlock *pBlock = GetBlock(szSection, szPath, bDirect, true);
    if (!pBlock)
        return SetLastError(ENV_NOT_FOUND);
    pBlock->GetElems(rElems);
    return SetLastError(ENV_OK);
}

zr_long CZrEnv::GetElemNames(const char *szSection, const char *szPath, bool bDirect,
                             std::vector<std::string> &rNames) const {
    if (!IsSubEnv() && !szSection)
        return GetSectionNames(rNames);
    CZrEnvBlock *pBlock = GetBlock(szSection, szPath, bDirect, true);
    if (!pBlock)
        return SetLastError(ENV_BLOCK);
    pBlock->GetElemNames(rNames);
    return SetLastError(ENV_OK);
}

// --- composing of paths -----------------------------------------------------------------------------------------------

zr_long CZrEnv::BuildPath(zr_ulong ulSize, char *szBuffer, const char *szFirst, ...) {
    va_list args;
    va_start(args, szFirst);
    const zr_long result = BuildPathVA(m_cDelimiter, ulSize, szBuffer, szFirst, args);
    va_end(args);
    return result;
}

zr_long CZrEnv::BuildPath(char cDelimiter, zr_ulong ulSize, char *szBuffer, const char *szFirst, ...) {
    va_list args;
    va_start(args, szFirst);
    const zr_long result = BuildPathVA(cDelimiter, ulSize, szBuffer, szFirst, args);
    va_end(args);
    return result;
}

zr_long CZrEnv::BuildPathVA(zr_ulong ulSize, char *szBuffer, const char *szFirst, va_list pArgs) {
    return BuildPathVA(m_cDelimiter, ulSize, szBuffer, szFirst, pArgs);
}

zr_long CZrEnv::BuildPathVA(char cDelimiter, zr_ulong ulSize, char *szBuffer, const char *szFirst, va_list pArgs) {
    if (ulSize == 0)
        return ENV_TOO_SMALL;
    if (!szFirst)
        return ENV_OK;
    if (!szBuffer)
        return ENV_TOO_SMALL;
    std::size_t length = std::strlen(szFirst);
    if (length + 1 > ulSize)
        return ENV_TOO_SMALL;
    std::memmove(szBuffer, szFirst, length + 1);
    while (const char *szNext = va_arg(pArgs, const char *)) {
        const std::size_t more = std::strlen(szNext);
        if (more + 2 > ulSize - length) {
            szBuffer[0] = '\0';
            return ENV_TOO_SMALL;
        }
        szBuffer[length] = cDelimiter;
        std::memcpy(szBuffer + length + 1, szNext, more + 1);
        length += more + 1;
    }
    return ENV_OK;
}

} // namespace Zr
