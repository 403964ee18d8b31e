// A look at the whole source first, then a walk through both trees. Neither needs memory for the depth.
#include "env/tree_copy.h"

#include <cstring>
#include <memory>
#include <string_view>
#include <unordered_set>

#include "env/name_index.h"
#include "env/node_store.h"
#include "env/sibling_walk.h"

namespace Zr {

namespace {

using Store = CZrEnvNodeStore;

// What a position and two delimiters take in a path at most.
constexpr std::size_t kLongestPosition = 12;

// Whether puts to the paths of the leaves, as a walk tells them, would make the same tree again.
class PlainSource {
public:
    explicit PlainSource(char cDelimiter) : m_cDelimiter(cDelimiter) {}

    bool Accepts(const CZrEnv &rSource);

private:
    bool AcceptsSection(const CZrEnvSection &rSection);
    bool AcceptsNode(const CZrEnvElement &rElem);
    bool AcceptsName(const char *szName) const;

    const char m_cDelimiter;
    std::size_t m_uPath = 0; // of the block whose children are looked at, at most
    std::unordered_set<std::string_view> m_Sections;
};

bool PlainSource::Accepts(const CZrEnv &rSource) {
    if (m_cDelimiter == '=' || (m_cDelimiter >= '0' && m_cDelimiter <= '9'))
        return false;
    for (const CZrEnvElement *pElem = rSource.GetFirstSection(); pElem; pElem = pElem->GetSuccElem())
        if (!Store::IsPlain(*pElem) || !AcceptsSection(*pElem->ToEnvSection()))
            return false;
    return true;
}

// A section that stays open while its leaves are looked at.
bool PlainSource::AcceptsSection(const CZrEnvSection &rSection) {
    if (!CZrEnv::CheckSectionName(rSection.GetName()) || !m_Sections.insert(rSection.GetName()).second)
        return false;
    m_uPath = 0;
    const CZrEnvElement *pElem = rSection.GetFirstElement();
    while (pElem) {
        if (!AcceptsNode(*pElem))
            return false;
        if (Store::IsBlock(pElem)) {
            m_uPath += std::strlen(pElem->GetName()) + kLongestPosition;
            pElem = static_cast<const CZrEnvBlock *>(pElem)->GetFirstElement();
            continue;
        }
        while (pElem != &rSection && !pElem->GetSuccElem()) {
            pElem = pElem->GetParent();
            if (pElem != &rSection)
                m_uPath -= std::strlen(pElem->GetName()) + kLongestPosition;
        }
        pElem = pElem == &rSection ? nullptr : pElem->GetSuccElem();
    }
    return !Store::IsOrdered(rSection);
}

bool PlainSource::AcceptsNode(const CZrEnvElement &rElem) {
    if (!Store::IsPlain(rElem) || !AcceptsName(rElem.GetName()))
        return false;
    if (!Store::IsBlock(&rElem))
        return static_cast<const CZrEnvDataElement &>(rElem).GetString() != nullptr;
    const auto &rBlock = static_cast<const CZrEnvBlock &>(rElem);
    return rBlock.GetFirstElement() && !Store::IsOrdered(rBlock) && !Store::IsSection(rElem);
}

bool PlainSource::AcceptsName(const char *szName) const {
    if (!szName)
        return false;
    const std::string_view name = szName;
    return !name.empty() && m_uPath + name.size() + kLongestPosition <= zr::env::PathText::kMaxLength &&
           name.find('=') == std::string_view::npos && name.find(m_cDelimiter) == std::string_view::npos;
}

// Copies what is below one block to below another, which is empty.
void CopyBelow(CZrEnvBlock &rTo, const CZrEnvBlock &rFrom, Store::Batch &rBatch) {
    CZrEnvBlock *pTo = &rTo;
    const CZrEnvElement *pElem = rFrom.GetFirstElement();
    while (pElem) {
        if (Store::IsBlock(pElem)) {
            CZrEnvBlock *pInner = rBatch.MakeBlock(pElem->GetName());
            Store::Append(*pTo, pInner);
            pTo = pInner;
            pElem = static_cast<const CZrEnvBlock *>(pElem)->GetFirstElement();
            continue;
        }
        const auto *pData = static_cast<const CZrEnvDataElement *>(pElem);
        Store::AppendLeaf(*pTo, rBatch.MakeData(pData->GetName(), pData->GetString()));
        while (pElem != &rFrom && !pElem->GetSuccElem()) {
            pElem = pElem->GetParent();
            pTo = pTo->GetParent();
        }
        pElem = pElem == &rFrom ? nullptr : pElem->GetSuccElem();
    }
}

} // namespace

bool CopyPlainTree(CZrEnv &rTarget, const CZrEnv &rSource) {
    if (rSource.GetID() < 0 || !CZrEnvWalk::IsPlainTop(rSource) || !CZrEnvWalk::IsPlainTop(rTarget) ||
        CZrEnvWalk::HasDefault(rTarget) || rTarget.GetFirstSection() || !rSource.GetFirstSection() ||
        rTarget.GetDelimiter() != rSource.GetDelimiter() || !PlainSource(rSource.GetDelimiter()).Accepts(rSource))
        return false;
    Store::Batch batch;
    for (const CZrEnvElement *pElem = rSource.GetFirstSection(); pElem; pElem = pElem->GetSuccElem()) {
        const CZrEnvSection &rSection = *pElem->ToEnvSection();
        if (!rSection.GetFirstElement())
            continue;
        std::unique_ptr<CZrEnvSection> pCopy(batch.MakeSection(rSection.GetName()));
        if (!rTarget.InsertSection(pCopy.get()))
            return false;
        CopyBelow(*pCopy.release(), rSection, batch);
    }
    rSource.ResetLastError();
    rTarget.ResetLastError();
    return true;
}

} // namespace Zr
