// What the tests of the environment tree share: short makers, a text form of a tree, and the checks that every sound
// block passes whatever was done to it before, by the library's own checker.
#ifndef ZR_TESTS_ENV_TREE_CHECKER_H
#define ZR_TESTS_ENV_TREE_CHECKER_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <zrclb/env.hpp>

#include "env/tree_check.h"

namespace zr::test {

using Zr::CZrEnv;
using Zr::CZrEnvBlock;
using Zr::CZrEnvDataElement;
using Zr::CZrEnvElement;
using Zr::CZrEnvSection;

// Makers

inline CZrEnvDataElement *NewLeaf(const char *szName, const char *szValue = nullptr) {
    return new CZrEnvDataElement(szName, szValue);
}

inline CZrEnvDataElement *NewLeaf(const std::string &name) {
    return NewLeaf(name.c_str());
}

inline CZrEnvBlock *NewBlock(const char *szName) {
    return new CZrEnvBlock(szName);
}

inline CZrEnvDataElement *AddLeaf(CZrEnvBlock &block, const char *szName, const char *szValue = nullptr) {
    CZrEnvDataElement *pLeaf = NewLeaf(szName, szValue);
    EXPECT_TRUE(block.InsertElement(pLeaf));
    return pLeaf;
}

inline CZrEnvBlock *AddBlock(CZrEnvBlock &block, const char *szName) {
    CZrEnvBlock *pBlock = NewBlock(szName);
    EXPECT_TRUE(block.InsertElement(pBlock));
    return pBlock;
}

// Ends a detached element of any kind: the destructors of leaves are closed to all but blocks.
inline void Discard(CZrEnvElement *pElem) {
    CZrEnvBlock bin("bin");
    EXPECT_TRUE(bin.InsertElement(pElem));
}

struct CloseEnv {
    void operator()(CZrEnv *pEnv) const { EXPECT_EQ(Zr::ENV_OK, CZrEnv::DestroyEnv(pEnv, false)); }
};

// An environment that is destroyed, alone, at the end of its scope; what holds it must be declared behind it.
using EnvPtr = std::unique_ptr<CZrEnv, CloseEnv>;

inline EnvPtr NewEnv(zr_long lID = 0, CZrEnv *pDefault = nullptr) {
    return EnvPtr(CZrEnv::CreateEnv(lID, pDefault));
}

// A node of a kind of its own, as a caller may derive one: neither leaf nor block.
class PlainElement : public CZrEnvElement {
public:
    explicit PlainElement(const char *szName) : CZrEnvElement(szName) {}
    PlainElement(const PlainElement &) = default;
    PlainElement &operator=(const PlainElement &) = default;
    ~PlainElement() override = default;
};

// A leaf that can stand on the stack, and can be copied: such a copy is a view of its source.
class OpenLeaf : public CZrEnvDataElement {
public:
    explicit OpenLeaf(const char *szName, const char *szValue = nullptr) : CZrEnvDataElement(szName, szValue) {}
    explicit OpenLeaf(const CZrEnvDataElement &source) : CZrEnvDataElement(source) {}
    OpenLeaf(const OpenLeaf &) = default;
    OpenLeaf &operator=(const OpenLeaf &) = default;
    ~OpenLeaf() override = default;
};

// Names of the dead, in the order of their end.
using Obituary = std::vector<std::string>;

// A derived leaf or block that notes its end.
template <class Base>
class Mortal : public Base {
public:
    template <class... Args>
    Mortal(Obituary &deaths, const char *szName, Args... args) : Base(szName, args...), m_deaths(deaths) {}
    Mortal(const Mortal &) = delete;
    Mortal &operator=(const Mortal &) = delete;
    ~Mortal() override { m_deaths.emplace_back(this->GetName() ? this->GetName() : "(nameless)"); }

private:
    Obituary &m_deaths;
};

inline Mortal<CZrEnvDataElement> *NewMortalLeaf(Obituary &deaths, const char *szName) {
    return new Mortal<CZrEnvDataElement>(deaths, szName, static_cast<const char *>(nullptr));
}

inline Mortal<CZrEnvBlock> *NewMortalBlock(Obituary &deaths, const char *szName) {
    return new Mortal<CZrEnvBlock>(deaths, szName);
}

// Views of a block

// The children as the links give them, at most `limit`, so that a ring ends too.
inline std::vector<CZrEnvElement *> Sequence(const CZrEnvBlock &block, std::size_t limit = 4000000) {
    std::vector<CZrEnvElement *> elems;
    for (CZrEnvElement *pElem = block.GetFirstElement(); pElem && elems.size() < limit; pElem = pElem->GetSuccElem())
        elems.push_back(pElem);
    return elems;
}

inline std::string NameOf(const CZrEnvElement *pElem) {
    return pElem && pElem->GetName() ? pElem->GetName() : "(null)";
}

// "a b{c d=1} a": names in sequence order, a value behind "=", children in braces. For shallow trees.
inline std::string Describe(const CZrEnvBlock &block) {
    std::string text;
    for (const CZrEnvElement *pElem : Sequence(block)) {
        if (!text.empty())
            text += ' ';
        text += NameOf(pElem);
        if (const CZrEnvDataElement *pData = pElem->ToEnvDataElement(); pData && pData->GetString())
            text += std::string("=") + pData->GetString();
        if (const CZrEnvBlock *pBlock = pElem->ToEnvBlock())
            text += "{" + Describe(*pBlock) + "}";
    }
    return text;
}

inline std::string Describe(const CZrEnv &env) {
    std::string text;
    for (CZrEnvSection *pSection = env.GetFirstSection(); pSection; pSection = env.GetNextSection(pSection))
        text += "[" + NameOf(pSection) + "]" + Describe(*pSection);
    return text;
}

// Checks

namespace checker {

inline testing::AssertionResult Outcome(const Zr::CZrEnvTreeFault &fault) {
    if (!fault)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << (fault.pWhere ? "block " + NameOf(fault.pWhere) + ": " : "") << fault.what;
}

// What a block hands out of its children is what the links give.
inline testing::AssertionResult ListsAreSound(CZrEnvBlock &block) {
    const std::vector<CZrEnvElement *> elems = Sequence(block);
    std::vector<CZrEnvElement *> listed;
    block.GetElems(listed);
    std::vector<std::string> names;
    block.GetElemNames(names);
    bool same = listed == elems && names.size() == elems.size() && block.GetElemCount() == elems.size();
    for (std::size_t i = 0; same && i < elems.size(); ++i)
        same = names[i] == (elems[i]->GetName() ? elems[i]->GetName() : "");
    if (same)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "block " << NameOf(&block)
                                       << ": its lists or its count differ from the links";
}

} // namespace checker

// Links, parents, kinds, counts, lists and look-ups by name of one block agree. For blocks without stale index entries.
inline testing::AssertionResult BlockIsSound(CZrEnvBlock &block) {
    if (const Zr::CZrEnvTreeFault fault = Zr::CZrEnvTreeCheck::OfBlock(block, Zr::CZrEnvTreeCheck::Indexes::Build))
        return checker::Outcome(fault);
    return checker::ListsAreSound(block);
}

// The same for a block and all below it.
inline testing::AssertionResult TreeIsSound(CZrEnvBlock &root) {
    std::vector<CZrEnvBlock *> waiting{&root};
    while (!waiting.empty()) {
        CZrEnvBlock *pBlock = waiting.back();
        waiting.pop_back();
        if (testing::AssertionResult result = BlockIsSound(*pBlock); !result)
            return result;
        for (CZrEnvElement *pElem = pBlock->GetFirstElement(); pElem; pElem = pElem->GetSuccElem())
            if (CZrEnvBlock *pInner = pElem->ToEnvBlock())
                waiting.push_back(pInner);
    }
    return testing::AssertionSuccess();
}

// A top-level environment with all its sections.
inline testing::AssertionResult EnvIsSound(CZrEnv &env) {
    if (const auto fault = Zr::CZrEnvTreeCheck::OfEnvironment(env, Zr::CZrEnvTreeCheck::Indexes::Build))
        return checker::Outcome(fault);
    std::vector<CZrEnvSection *> listed;
    if (env.GetSections(listed) != Zr::ENV_OK)
        return testing::AssertionFailure() << "GetSections fails";
    CZrEnvSection *pNext = env.GetFirstSection();
    for (CZrEnvSection *pSection : listed) {
        if (pSection != pNext)
            return testing::AssertionFailure() << "GetSections differs from the links";
        if (testing::AssertionResult result = TreeIsSound(*pSection); !result)
            return result;
        pNext = env.GetNextSection(pSection);
    }
    return pNext ? testing::AssertionFailure() << "a section too many" : testing::AssertionSuccess();
}

} // namespace zr::test

#endif
