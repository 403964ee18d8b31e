// CZrEnv: reading and writing of values by section and path, and changes of the tree by path.
//
// A read takes every step as a direct child and goes through the default chain. A write looks in this environment only,
// and makes what is missing: a data element that stands where a block is needed becomes an empty block, and a block that
// stands where a value is to go becomes a data element.
#include <zrclb/report.h>

#include "env/node_store.h"
#include "env/path.h"

namespace Zr {

namespace {

constexpr const char *kTag = "ZrEnv";

} // namespace

// --- reads ------------------------------------------------------------------------------------------------------------

// The data element to read, or null with the last error set: ENV_NOT_FOUND, or ENV_DATA for an element of another kind.
CZrEnvDataElement *CZrEnv::ReadableElement(const char *szSection, const char *szPath, bool bDirect) const {
    CZrEnvElement *pElem = GetElement(szSection, szPath, bDirect, true);
    CZrEnvDataElement *pData = pElem ? pElem->ToEnvDataElement() : nullptr;
    if (!pData)
        SetLastError(pElem ? ENV_DATA : ENV_NOT_FOUND);
    return pData;
}

EZrEnvError CZrEnv::GetLong(const char *szSection, const char *szPath, zr_long &rlValue) const {
    const CZrEnvDataElement *pData = ReadableElement(szSection, szPath, true);
    return pData ? SetLastError(pData->GetLong(rlValue)) : GetLastError();
}

zr_long CZrEnv::GetLong(const char *szSection, const char *szPath) const {
    zr_long lValue = 0;
    GetLong(szSection, szPath, lValue);
    return lValue;
}

EZrEnvError CZrEnv::GetDouble(const char *szSection, const char *szPath, double &rdValue) const {
    const CZrEnvDataElement *pData = ReadableElement(szSection, szPath, true);
    return pData ? SetLastError(pData->GetDouble(rdValue)) : GetLastError();
}

double CZrEnv::GetDouble(const char *szSection, const char *szPath) const {
    double dValue = 0.0;
    GetDouble(szSection, szPath, dValue);
    return dValue;
}

EZrEnvError CZrEnv::GetString(const char *szSection, const char *szPath, zr_long lSize, char *szBuffer) const {
    const CZrEnvDataElement *pData = ReadableElement(szSection, szPath, true);
    const zr_ulong ulSize = lSize > 0 ? static_cast<zr_ulong>(lSize) : 0;
    return pData ? SetLastError(pData->GetString(ulSize, szBuffer)) : GetLastError();
}

const char *CZrEnv::GetString(const char *szSection, const char *szPath) const {
    const CZrEnvDataElement *pData = ReadableElement(szSection, szPath, true);
    if (!pData)
        return nullptr;
    ResetLastError();
    return pData->GetString();
}

EZrEnvError CZrEnv::GetBinary(const char *szSection, const char *szPath, zr_long *plLength, char *pBuffer) const {
    CZrEnvDataElement *pData = ReadableElement(szSection, szPath, true);
    return pData ? SetLastError(pData->GetBinary(plLength, pBuffer)) : GetLastError();
}

EZrEnvError CZrEnv::GetLongs(const char *szSection, const char *szPath, zr_long &rlCount, zr_long *plValues) const {
    if (CZrEnvDataElement *pData = ReadableElement(szSection, szPath, true))
        return SetLastError(pData->GetLongs(rlCount, plValues));
    rlCount = 0;
    return GetLastError();
}

EZrEnvError CZrEnv::GetDoubles(const char *szSection, const char *szPath, zr_long &rlCount, double *pdValues) const {
    if (CZrEnvDataElement *pData = ReadableElement(szSection, szPath, true))
        return SetLastError(pData->GetDoubles(rlCount, pdValues));
    rlCount = 0;
    return GetLastError();
}

// The last error keeps what the look-up left, whatever the element answers.
EZrEnvError CZrEnv::GetStrings(const char *szSection, const char *szPath, zr_long &rlCount, zr_long lSize,
                               char **pszValues) const {
    if (CZrEnvDataElement *pData = ReadableElement(szSection, szPath, true))
        return pData->GetStrings(rlCount, lSize, pszValues);
    rlCount = 0;
    return GetLastError();
}

zr_long CZrEnv::GetDataLength(const char *szSection, const char *szPath, bool bDirect) const {
    const CZrEnvDataElement *pData = GetDataElement(szSection, szPath, bDirect, true);
    return pData ? static_cast<zr_long>(pData->GetDataLength()) : 0;
}

EZrEnvError CZrEnv::GetArraySize(const char *szSection, const char *szPath, bool bDirect, zr_long &rlCount,
                                 zr_long &rlMaxLength) const {
    CZrEnvElement *pElem = GetElement(szSection, szPath, bDirect, true);
    if (!pElem)
        return GetLastError() == ENV_OK ? SetLastError(ENV_ERROR) : GetLastError();
    const CZrEnvDataElement *pData = pElem->ToEnvDataElement();
    return SetLastError(pData ? pData->GetArraySize(rlCount, rlMaxLength) : ENV_DATA);
}

// --- writes -----------------------------------------------------------------------------------------------------------

EZrEnvError CZrEnv::SetLong(const char *szSection, const char *szPath, zr_long lValue) {
    CZrEnvDataElement *pData = GetOrCreateEnvDataElement(szSection, szPath);
    return pData ? SetLastError(pData->SetLong(lValue)) : GetLastError();
}

EZrEnvError CZrEnv::SetDouble(const char *szSection, const char *szPath, double dValue) {
    CZrEnvDataElement *pData = GetOrCreateEnvDataElement(szSection, szPath);
    return pData ? SetLastError(pData->SetDouble(dValue)) : GetLastError();
}

// The element's result is not kept as the last error.
EZrEnvError CZrEnv::SetString(const char *szSection, const char *szPath, const char *szValue) {
    CZrEnvDataElement *pData = GetOrCreateEnvDataElement(szSection, szPath);
    return pData ? pData->SetString(szValue) : GetLastError();
}

EZrEnvError CZrEnv::SetBinary(const char *szSection, const char *szPath, zr_ulong ulLength, const char *pData) {
    CZrEnvDataElement *pElem = GetOrCreateEnvDataElement(szSection, szPath);
    return pElem ? SetLastError(pElem->SetBinary(ulLength, pData)) : GetLastError();
}

EZrEnvError CZrEnv::SetLongs(const char *szSection, const char *szPath, zr_long lCount, const zr_long *plValues) {
    if (lCount < 1 || !plValues)
        return SetLastError(ENV_ERROR);
    CZrEnvDataElement *pData = GetOrCreateEnvDataElement(szSection, szPath);
    return pData ? SetLastError(pData->SetLongs(lCount, plValues)) : GetLastError();
}

EZrEnvError CZrEnv::SetDoubles(const char *szSection, const char *szPath, zr_long lCount, const double *pdValues) {
    if (lCount < 1 || !pdValues)
        return SetLastError(ENV_ERROR);
    CZrEnvDataElement *pData = GetOrCreateEnvDataElement(szSection, szPath);
    return pData ? SetLastError(pData->SetDoubles(lCount, pdValues)) : GetLastError();
}

EZrEnvError CZrEnv::SetStrings(const char *szSection, const char *szPath, zr_long lCount, const char **pszValues) {
    if (lCount < 1 || !pszValues)
        return SetLastError(ENV_ERROR);
    CZrEnvDataElement *pData = GetOrCreateEnvDataElement(szSection, szPath);
    return pData ? SetLastError(pData->SetStrings(lCount, pszValues)) : GetLastError();
}

CZrEnvDataElement *CZrEnv::GetOrCreateEnvDataElement(const char *szSection, const char *szPath) {
    CZrEnvElement *pElem = GetElement(szSection, szPath, true, false);
    if (!pElem) {
        pElem = CreatePath(szSection, szPath, ENV_TYPE_DATA);
        if (CZrEnvDataElement *pData = pElem ? pElem->ToEnvDataElement() : nullptr) {
            ResetLastError();
            return pData;
        }
        if (!pElem || szPath)
            SetLastError(ENV_ERROR);
        return nullptr; // a new section alone: the last error is that of its look-up
    }
    if (CZrEnvDataElement *pData = pElem->ToEnvDataElement())
        return pData;
    if (pElem->ToEnvSection()) {
        SetLastError(ENV_ERROR);
        return nullptr;
    }
    if (!pElem->ToEnvBlock()) {
        zr_error("unbekanntes Element", nullptr, nullptr, kTag, __LINE__);
        SetLastError(ENV_ERROR);
        return nullptr;
    }
    CZrEnvDataElement *pNew = CZrEnvNodeStore::NewData(pElem->GetName() ? pElem->GetName() : "");
    CZrEnvNodeStore::Holder held(pNew);
    if (!pNew || !ReplaceElement(pElem, pNew)) {
        zr_error("unbekannter Fehler", nullptr, nullptr, kTag, __LINE__);
        SetLastError(ENV_ERROR);
        return nullptr;
    }
    held.release();
    ResetLastError();
    return pNew;
}

// The block at which a new path begins.
CZrEnvBlock *CZrEnv::CreateStart(const char *szSection, bool bHasSteps) {
    if (!IsSubEnv()) {
        CZrEnvSection *pSection = GetSection(szSection);
        return pSection ? pSection : InsertSection(szSection);
    }
    if (!m_pSubEnvRoot || !bHasSteps)
        return nullptr;
    if (CZrEnvBlock *pBlock = m_pSubEnvRoot->ToEnvBlock())
        return pBlock;
    CZrEnvBlock *pNew = CZrEnvNodeStore::NewBlock(m_pSubEnvRoot->GetName() ? m_pSubEnvRoot->GetName() : "");
    if (!pNew) {
        zr_error("Out of memory", nullptr, nullptr, kTag, __LINE__);
        return nullptr;
    }
    CZrEnvNodeStore::Holder held(pNew);
    if (!ReplaceElement(m_pSubEnvRoot, pNew))
        return nullptr;
    held.release();
    return pNew;
}

// The block of an inner step: the one that is there, a new one in place of a data element, or a new one.
CZrEnvBlock *CZrEnv::CreateStepBlock(CZrEnvBlock *pBlock, const CZrEnvPathElem &rStep) {
    CZrEnvElement *pElem = pBlock->Find(rStep.m_Name, rStep.m_lPos);
    if (!pElem) {
        pElem = pBlock->CreateNewElement(rStep, ENV_TYPE_BLOCK);
        return pElem ? pElem->ToEnvBlock() : nullptr;
    }
    if (CZrEnvBlock *pPresent = pElem->ToEnvBlock())
        return pPresent;
    CZrEnvBlock *pNew = CZrEnvNodeStore::NewBlock(rStep.m_Name);
    if (!pNew) {
        zr_error("Out of memory", nullptr, nullptr, kTag, __LINE__);
        return nullptr;
    }
    CZrEnvNodeStore::Holder held(pNew);
    if (!ReplaceElement(pElem, pNew))
        return nullptr;
    held.release();
    return pNew;
}

CZrEnvElement *CZrEnv::CreatePath(const char *szSection, const char *szPath, EZrEnvElementType eType) {
    CZrEnvPath path(szPath ? szPath : "", m_cDelimiter);
    CZrEnvPathElem step;
    bool more = path.Next(step);
    CZrEnvBlock *pBlock = CreateStart(szSection, more);
    if (!more)
        return pBlock;
    for (CZrEnvPathElem next; pBlock && path.Next(next); step = next)
        pBlock = CreateStepBlock(pBlock, step);
    if (!pBlock)
        return nullptr;
    if (eType != ENV_TYPE_DATA && eType != ENV_TYPE_BLOCK) {
        zr_message("Falscher Element-Typ", nullptr, nullptr, kTag, __LINE__);
        eType = ENV_TYPE_DATA;
    }
    return pBlock->CreateNewElement(step, eType);
}

// --- changes of the tree ----------------------------------------------------------------------------------------------

// Roots follow the new element in this object and in the subenvironments that it lists itself, and nowhere else. They are
// moved first, since the block lets go of all that stand at or below the old element.
bool CZrEnv::ReplaceElement(CZrEnvElement *pOld, CZrEnvElement *pNew) {
    if (!pOld || !pNew)
        return false;
    if (!pOld->m_pParent) {
        zr_error("unbekannter Fehler", nullptr, nullptr, kTag, __LINE__);
        return false;
    }
    const auto moveRoots = [this](const CZrEnvElement *pFrom, CZrEnvElement *pTo) {
        if (m_pSubEnvRoot == pFrom)
            m_pSubEnvRoot = pTo;
        for (CZrEnv *pSub : m_SubEnvs)
            if (pSub->m_pSubEnvRoot == pFrom)
                pSub->m_pSubEnvRoot = pTo;
    };
    moveRoots(pOld, pNew);
    bool replaced = false;
    try {
        replaced = pOld->m_pParent->ReplaceElement(pOld, pNew);
    } catch (...) {
        moveRoots(pNew, pOld);
        throw;
    }
    if (!replaced)
        moveRoots(pNew, pOld);
    return replaced;
}

EZrEnvError CZrEnv::Rename(const char *szSection, const char *szPath, const char *szNewName) {
    if (!IsSubEnv() && !szSection) {
        zr_message("Rename-Aufruf mit szSection == NULL", nullptr, nullptr, kTag, __LINE__);
        return SetLastError(ENV_ERROR);
    }
    CZrEnvElement *pElem = GetElement(szSection, szPath, true, false);
    if (!pElem)
        return SetLastError(ENV_NOT_FOUND);
    return SetLastError(pElem->SetName(szNewName) ? ENV_OK : ENV_ERROR);
}

EZrEnvError CZrEnv::Delete(const char *szSection, const char *szPath) {
    if (!szPath && szSection)
        return SetLastError(DeleteSection(szSection));
    if (!szPath && IsSubEnv()) {
        zr_error("env_delete (env, NIL, NIL) called with subenv", nullptr, nullptr, kTag, __LINE__);
        return SetLastError(ENV_ERROR);
    }
    if (!szPath) {
        DeleteEnvironmentSections();
        return SetLastError(ENV_OK);
    }
    if (!szSection && !IsSubEnv()) {
        zr_message("szPath != NULL and szSection = NULL, env_delete called", nullptr, nullptr, kTag, __LINE__);
        return SetLastError(ENV_ERROR);
    }
    CZrEnvElement *pElem = GetElement(szSection, szPath, true, false);
    if (!pElem)
        return SetLastError(ENV_NOT_FOUND);
    DeleteElement(pElem);
    return SetLastError(ENV_OK);
}

bool CZrEnv::DeleteElement(CZrEnvElement *pElem) {
    if (!pElem)
        return false;
    if (CZrEnvBlock *pParent = pElem->m_pParent) {
        const bool removed = pParent->RemoveElement(pElem, true);
        SetLastError(removed ? ENV_OK : ENV_ERROR);
        return removed;
    }
    if (CZrEnvSection *pSection = pElem->ToEnvSection()) {
        DeleteSection(pSection);
        SetLastError(ENV_OK);
        return true;
    }
    zr_message("CZrEnv::DeleteElement - unbekanntes Objekt", nullptr, nullptr, kTag, __LINE__);
    SetLastError(ENV_NOT_FOUND);
    return false;
}

} // namespace Zr
