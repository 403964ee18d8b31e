// One level of a walk.
#include "env/sibling_walk.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include <zrclb/env.h>

#include "env/function_call.h"
#include "env/functions_access.h"
#include "env/tree_edits.h"

using Zr::CZrEnv;
using Zr::CZrEnvElement;

namespace zr::env {

namespace {

// So few elements are counted by a walk sooner than by a table.
constexpr unsigned kCountDirectly = 16;

bool IsNamesake(const CZrEnvElement &rA, const CZrEnvElement &rB) {
    const char *szA = rA.GetName();
    const char *szB = rB.GetName();
    return szA && szB ? std::strcmp(szA, szB) == 0 : szA == szB;
}

// The first of the siblings of an element, as they are now.
const CZrEnvElement *HeadOf(const CZrEnvElement &rElem) {
    if (const Zr::CZrEnvBlock *pParent = rElem.GetParent())
        return pParent->GetFirstElement();
    const CZrEnv *pEnv = rElem.GetEnv();
    return pEnv ? pEnv->GetFirstSection() : &rElem;
}

} // namespace

// --- PathText ---------------------------------------------------------------------------------------------------------

void PathText::Cut(std::size_t length) {
    m_length = std::min(length, m_length);
    m_text[m_length] = '\0';
}

void PathText::Add(char c) {
    if (m_length < kMaxLength)
        m_text[m_length++] = c;
    m_text[m_length] = '\0';
}

void PathText::Add(const char *szText) {
    if (!szText)
        return;
    while (*szText && m_length < kMaxLength)
        m_text[m_length++] = *szText++;
    m_text[m_length] = '\0';
}

void PathText::Add(zr_long number) {
    char digits[16];
    *std::to_chars(digits, digits + sizeof digits - 1, number).ptr = '\0';
    Add(digits);
}

// --- OwnerMemo --------------------------------------------------------------------------------------------------------

CZrEnv *OwnerMemo::Of(const CZrEnvElement &rElem) {
    const std::size_t edits = Zr::TreeEdits();
    if (!m_bKnown || edits != m_uEdits) {
        // A section inside a block knows of no environment, but its siblings do.
        m_pOwner = rElem.GetParent() ? rElem.CZrEnvElement::GetEnv() : rElem.GetEnv();
        m_uEdits = edits;
        m_bKnown = true;
    }
    return m_pOwner;
}

// --- NamesakeCounter --------------------------------------------------------------------------------------------------

zr_long &NamesakeCounter::Counts::Of(const CZrEnvElement &rElem) {
    return rElem.GetName() ? named[rElem.GetName()] : nameless;
}

zr_long NamesakeCounter::Number(const CZrEnvElement &rElem) {
    if (m_uAsked < kCountDirectly) {
        ++m_uAsked;
        zr_long number = 1;
        for (const CZrEnvElement *pElem = HeadOf(rElem); pElem && pElem != &rElem; pElem = pElem->GetSuccElem())
            number += IsNamesake(*pElem, rElem) ? 1 : 0;
        return number;
    }
    const std::size_t edits = Zr::TreeEdits();
    if (!m_counts || edits != m_uEdits || m_pLast->GetSuccElem() != &rElem) {
        m_counts = std::make_unique<Counts>();
        for (const CZrEnvElement *pElem = HeadOf(rElem); pElem && pElem != &rElem; pElem = pElem->GetSuccElem())
            ++m_counts->Of(*pElem);
    }
    m_pLast = &rElem;
    m_uEdits = edits;
    return ++m_counts->Of(rElem);
}

// --- SiblingWalk ------------------------------------------------------------------------------------------------------

void SubenvCloser::operator()(CZrEnv *pSub) const {
    env_close(Handle(pSub), 0);
}

SiblingWalk::SiblingWalk(CZrEnv &rEnv, const char *section, const char *path, bool bDirect)
    : m_pEnv(&rEnv), m_section(section), m_path(path), m_bDirect(bDirect) {
    Watch(rEnv.GetPosElement(section, path, 1, bDirect, true));
}

SiblingWalk::SiblingWalk(Subenv sub, const char *section, const SiblingWalk &rAbove)
    : m_root(std::move(sub)), m_pEnv(m_root.get()), m_section(section), m_path(nullptr), m_bDirect(true),
      m_elementOwner(rAbove.m_subOwner), m_subOwner(rAbove.m_subOwner) {
    Watch(m_pEnv->GetPosElement(section, nullptr, 1, true, true));
}

void SiblingWalk::Watch(CZrEnvElement *pNext) {
    m_next.reset(pNext ? Zr::CZrEnvWalk::Open(pNext, m_elementOwner.Of(*pNext)) : nullptr);
}

// As with every new handle, nothing may be left of the iteration of one that lay at the same place.
CZrEnv *SiblingWalk::OpenSub(const StepAddress &rAddress) {
    CZrEnvElement *pElem = m_pEnv->GetElement(rAddress.section, rAddress.Path(), m_bDirect, false);
    if (!pElem)
        return nullptr;
    const bool isInnerSection =
        pElem->GetParent() && pElem->ToEnvSection(); // a view of one is a view of no environment
    CZrEnv *pSub = Zr::CZrEnvWalk::Open(pElem, isInnerSection ? pElem->GetEnv() : m_subOwner.Of(*pElem));
    ForgetIteration(Handle(pSub));
    return pSub;
}

Subenv SiblingWalk::Step(StepAddress &rAddress) {
    const CZrEnvElement &rElem = *Next();
    rAddress.hasPath = m_section || m_pEnv->IsSubEnv();
    if (rAddress.hasPath) {
        const char cDelimiter = m_pEnv->GetDelimiter();
        PathText &rPath = rAddress.pathText;
        rAddress.section = m_section;
        rPath.Cut(0);
        if (m_path) {
            rPath.Add(m_path);
            rPath.Add(cDelimiter);
        }
        rPath.Add(rElem.GetName());
        rPath.Add(cDelimiter);
        rPath.Add(m_numbers.Number(rElem));
    } else {
        rAddress.sectionName = rElem.GetName() ? rElem.GetName() : "";
        rAddress.section = rElem.GetName() ? rAddress.sectionName.c_str() : nullptr;
    }
    CZrEnvElement *pSucc = rElem.GetSuccElem();
    Subenv sub(OpenSub(rAddress));
    Watch(pSucc);
    return sub;
}

} // namespace zr::env
