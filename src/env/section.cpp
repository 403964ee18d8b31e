// CZrEnvSection: a block at the top level of one environment.
#include "env/node_store.h"

namespace Zr {

// The block is made without a name, so that the rule for section names decides, not that for elements.
CZrEnvSection::CZrEnvSection(const char *szName) : CZrEnvBlock(static_cast<const char *>(nullptr)) {
    m_uFlags |= CZrEnvNodeStore::KindSection;
    SetName(szName);
}

CZrEnvSection::CZrEnvSection(const CZrEnvSection &other) : CZrEnvBlock(other), m_pEnv(other.m_pEnv) {
    m_uFlags |= CZrEnvNodeStore::KindSection;
}

CZrEnvSection &CZrEnvSection::operator=(const CZrEnvSection &other) {
    CZrEnvBlock::operator=(other);
    m_pEnv = other.m_pEnv;
    return *this;
}

CZrEnvSection::~CZrEnvSection() = default;

CZrEnv *CZrEnvSection::GetEnv() const {
    return m_pEnv;
}

CZrEnvSection *CZrEnvSection::ToEnvSection() {
    return this;
}

const CZrEnvSection *CZrEnvSection::ToEnvSection() const {
    return this;
}

bool CZrEnvSection::CheckName(const char *szName) {
    return CZrEnv::CheckSectionName(szName);
}

} // namespace Zr
