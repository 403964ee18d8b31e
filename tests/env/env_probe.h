// The tests' way to the private parts of elements and environments: each call goes straight to the member of its name.
#ifndef ZR_TESTS_ENV_ENV_PROBE_H
#define ZR_TESTS_ENV_ENV_PROBE_H

#include <vector>

#include <zrclb/env.hpp>

#include "env/name_index.h"
#include "env/path.h"

namespace Zr {

class CZrEnvProbe {
public:
    // Elements
    static void SetEnv(CZrEnvSection &section, CZrEnv *pEnv) { section.SetEnv(pEnv); }

    // Links and counts, to be read and to be damaged
    static CZrEnvElement *&Succ(CZrEnvElement &elem) { return elem.m_pSucc; }
    static CZrEnvBlock *&Parent(CZrEnvElement &elem) { return elem.m_pParent; }
    static std::uint32_t &Flags(CZrEnvElement &elem) { return elem.m_uFlags; }
    static CZrEnvElement *&First(CZrEnvBlock &block) { return block.m_pFirst; }
    static CZrEnvElement *&Last(CZrEnvBlock &block) { return block.m_pLast; }
    static std::uint32_t &Count(CZrEnvBlock &block) { return block.m_uCount; }
    static CZrEnvNameIndex *&Index(CZrEnvBlock &block) { return block.m_pIndex; }
    static std::size_t &SlotsInUse(CZrEnvNameIndex &index) { return index.m_uUsed; }
    // All but one out of the first group of namesakes.
    static void ShrinkGroup(CZrEnvNameIndex &index) {
        for (std::size_t at = 0; at <= index.m_uMask; ++at)
            if (auto *pGroup = CZrEnvNameIndex::GroupIn(index.m_pSlots[at])) {
                pGroup->elems.resize(pGroup->head + 1);
                return;
            }
    }
    static CZrEnvSection *&LastSection(CZrEnv &env) { return env.m_pLastSection; }
    static zr_long &SectionCount(CZrEnv &env) { return env.m_lSectionCount; }
    static CZrEnvNameIndex *&SectionIndex(CZrEnv &env) { return env.m_pSectionIndex; }
    static CZrEnv *&Default(CZrEnv &env) { return env.m_pDefaultEnv; }

    // Blocks
    static void InsertIntoIndex(CZrEnvBlock &block, CZrEnvElement *pElem) { block.InsertElementIntoContainer(pElem); }
    static bool RemoveFromIndex(CZrEnvBlock &block, CZrEnvElement *pElem) {
        return block.RemoveElementFromContainer(pElem);
    }
    static CZrEnvElement *CreateNewElement(CZrEnvBlock &block, const char *szName, zr_long lPos,
                                           EZrEnvElementType eType) {
        return block.CreateNewElement(Step(szName, lPos), eType);
    }

    // Environments
    static void SetFileMTime(CZrEnv &env, zr_long lTime) { env.SetFileMTime(lTime); }
    static zr_long FileMTime(const CZrEnv &env) { return env.m_lFileMTime; }
    static zr_long RefCount(const CZrEnv &env) { return env.m_lRefCount; }
    static CZrEnv *&Parent(CZrEnv &env) { return env.m_pParentEnv; }
    static std::vector<CZrEnv *> &SubEnvs(CZrEnv &env) { return env.m_SubEnvs; }
    static std::vector<CZrEnv *> &Holders(CZrEnv &env) { return env.m_Holders; }
    static void RemoveSubEnv(CZrEnv &env, CZrEnv *pSub) { env.RemoveSubEnv(pSub); }

    static CZrEnvElement *SearchProc(const CZrEnv &env, const char *szSection, const char *szPath, bool bDirect) {
        return env.SearchProc(szSection, szPath, bDirect);
    }
    static CZrEnvElement *CommonSearch(const CZrEnv &env, const char *szPath, bool bDirect, CZrEnvBlock *pStart) {
        return env.CommonSearch(szPath, bDirect, pStart);
    }
    static CZrEnvElement *SearchInTree(const CZrEnv &env, CZrEnvBlock *pBlock, const char *szName, zr_long lPos) {
        return env.SearchInTree(pBlock, Step(szName, lPos));
    }
    static CZrEnvElement *FindElement(const CZrEnv &env, const char *szSection, const char *szPath, zr_long lPos,
                                      bool bDirect) {
        return env.FindElement(szSection, szPath, lPos, bDirect);
    }
    static CZrEnvElement *SetPosBlock(const CZrEnv &env, zr_long lPos, CZrEnvBlock *pBlock) {
        return env.SetPosBlock(lPos, pBlock);
    }
    static CZrEnvElement *SetPosEnv(const CZrEnv &env, zr_long lPos) { return env.SetPosEnv(lPos); }

    static CZrEnvElement *CreatePath(CZrEnv &env, const char *szSection, const char *szPath, EZrEnvElementType eType) {
        return env.CreatePath(szSection, szPath, eType);
    }
    static bool ReplaceElement(CZrEnv &env, CZrEnvElement *pOld, CZrEnvElement *pNew) {
        return env.ReplaceElement(pOld, pNew);
    }

private:
    static CZrEnvPathElem Step(const char *szName, zr_long lPos) {
        CZrEnvPathElem step;
        step.m_Name = szName;
        step.m_lPos = lPos;
        return step;
    }
};

} // namespace Zr

#endif
