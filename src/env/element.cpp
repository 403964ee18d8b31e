// CZrEnvElement: names, links, and how any node ends.
#include <cstring>
#include <utility>

#include "env/name_index.h"
#include "env/node_store.h"

namespace Zr {

CZrEnvElement::CZrEnvElement(const char *szName) {
    SetName(szName);
}

CZrEnvElement::CZrEnvElement(const CZrEnvElement &other)
    : m_szName(other.m_szName), m_pParent(other.m_pParent), m_pSucc(other.m_pSucc), m_uFlags(CZrEnvNodeStore::View) {}

CZrEnvElement &CZrEnvElement::operator=(const CZrEnvElement &other) {
    if (this != &other) {
        CZrEnvNodeStore::ScatterAround(*this);
        char *szName = other.m_szName;
        ReleaseName();
        m_szName = szName;
        m_pParent = other.m_pParent;
        m_pSucc = other.m_pSucc;
        m_uFlags |= CZrEnvNodeStore::View;
    }
    return *this;
}

CZrEnvElement::~CZrEnvElement() {
    ReleaseName();
}

void CZrEnvElement::operator delete(CZrEnvElement *pElem, std::destroying_delete_t) {
    const bool inChunk = (pElem->m_uFlags & CZrEnvNodeStore::InChunk) != 0;
    void *pMemory = dynamic_cast<void *>(pElem);
    pElem->~CZrEnvElement();
    if (inChunk)
        CZrEnvNodeStore::ReleaseSlot(pMemory);
    else
        ::operator delete(pMemory);
}

void CZrEnvElement::operator delete(void *pMemory) noexcept {
    ::operator delete(pMemory);
}

void CZrEnvElement::operator delete(void *pMemory, const std::nothrow_t &) noexcept {
    ::operator delete(pMemory);
}

void *CZrEnvElement::operator new(std::size_t uSize) {
    return ::operator new(uSize);
}

void *CZrEnvElement::operator new(std::size_t uSize, const std::nothrow_t &) noexcept {
    return ::operator new(uSize, std::nothrow);
}

void CZrEnvElement::ReleaseName() {
    if (m_uFlags & CZrEnvNodeStore::OwnsName)
        delete[] m_szName;
    m_uFlags &= ~std::uint32_t{CZrEnvNodeStore::OwnsName};
    m_szName = nullptr;
}

// The environment of the section at the top. A walk, not a call for each level.
CZrEnv *CZrEnvElement::GetEnv() const {
    if (!m_pParent)
        return nullptr;
    const CZrEnvBlock *pTop = m_pParent;
    while (pTop->m_pParent)
        pTop = pTop->m_pParent;
    return pTop->ToEnvSection() ? pTop->GetEnv() : nullptr;
}

CZrEnvBlock *CZrEnvElement::ToEnvBlock() {
    return nullptr;
}

const CZrEnvBlock *CZrEnvElement::ToEnvBlock() const {
    return nullptr;
}

CZrEnvDataElement *CZrEnvElement::ToEnvDataElement() {
    return nullptr;
}

const CZrEnvDataElement *CZrEnvElement::ToEnvDataElement() const {
    return nullptr;
}

CZrEnvSection *CZrEnvElement::ToEnvSection() {
    return nullptr;
}

const CZrEnvSection *CZrEnvElement::ToEnvSection() const {
    return nullptr;
}

bool CZrEnvElement::CheckName(const char *szName) {
    return CZrEnv::CheckElementName(szName, '\0');
}

bool CZrEnvElement::SetName(const char *szName) {
    if (!szName || !CheckName(szName))
        return false;
    if (m_pParent)
        m_pParent->OrderedIndex().Reserve(this); // with the names as they still are

    const std::size_t length = std::strlen(szName);
    if (m_szName && length <= std::strlen(m_szName)) {
        std::memmove(m_szName, szName, length + 1); // szName may be a part of the present name
    } else {
        char *szNew = new (std::nothrow) char[length + 1];
        if (szNew)
            std::memcpy(szNew, szName, length + 1);
        ReleaseName();
        m_szName = szNew;
        if (szNew) {
            CZrEnvNodeStore::ScatterAround(*this);
            m_uFlags |= CZrEnvNodeStore::OwnsName;
        }
    }

    if (m_pParent)
        m_pParent->ElemNameChanged(this);
    else if (CZrEnvSection *pSection = ToEnvSection(); pSection && pSection->m_pEnv)
        pSection->m_pEnv->SectionsChanged();
    return true;
}

} // namespace Zr
