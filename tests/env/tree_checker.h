// What the tests of the environment tree share: short makers, a text form of a tree, and the checks that every sound
// block passes whatever was done to it before.
#ifndef ZR_TESTS_ENV_TREE_CHECKER_H
#define ZR_TESTS_ENV_TREE_CHECKER_H

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <zrclb/env.hpp>

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

inline testing::AssertionResult Fault(const CZrEnvBlock &block, const std::string &what) {
    return testing::AssertionFailure() << "block " << NameOf(&block) << ": " << what;
}

inline testing::AssertionResult LinksAreSound(CZrEnvBlock &block, const std::vector<CZrEnvElement *> &elems) {
    std::vector<CZrEnvElement *> sorted = elems;
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end())
        return Fault(block, "an element stands twice in the sequence");
    for (std::size_t i = 0; i < elems.size(); ++i) {
        if (elems[i]->GetParent() != &block)
            return Fault(block, "child " + std::to_string(i) + " has another parent");
        if (block.GetNextElement(elems[i]) != (i + 1 < elems.size() ? elems[i + 1] : nullptr))
            return Fault(block, "child " + std::to_string(i) + " has a wrong successor");
        if (elems[i]->GetEnv() != block.GetEnv())
            return Fault(block, "child " + std::to_string(i) + " is of another environment");
    }
    return testing::AssertionSuccess();
}

inline testing::AssertionResult ListsAreSound(CZrEnvBlock &block, const std::vector<CZrEnvElement *> &elems) {
    std::vector<CZrEnvElement *> listed;
    block.GetElems(listed);
    if (listed != elems)
        return Fault(block, "GetElems differs from the links");
    std::vector<std::string> names;
    block.GetElemNames(names);
    if (names.size() != elems.size())
        return Fault(block, "GetElemNames differs from the links in number");
    for (std::size_t i = 0; i < elems.size(); ++i)
        if (elems[i]->GetName() && names[i] != elems[i]->GetName())
            return Fault(block, "name " + std::to_string(i) + " differs");
    return testing::AssertionSuccess();
}

// What the look-ups by one name give must be the children of that name, each once, in whatever order.
inline testing::AssertionResult NamesakesAreSound(CZrEnvBlock &block, const std::string &name,
                                                  std::vector<CZrEnvElement *> namesakes) {
    const std::size_t count = namesakes.size();
    if (block.GetElemCount(name.c_str()) != count)
        return Fault(block, "counts " + std::to_string(block.GetElemCount(name.c_str())) + " of " + name + ", has " +
                                std::to_string(count));
    if (block.GetElement(name.c_str(), static_cast<zr_long>(count) + 1))
        return Fault(block, "finds one too many of " + name);
    if (block.GetElement(name.c_str(), 0) != block.GetElement(name.c_str(), 1))
        return Fault(block, "position 0 isn't the first of " + name);
    if (count > 100) // each look-up may step through all of them
        return testing::AssertionSuccess();
    std::vector<CZrEnvElement *> found;
    for (std::size_t i = 1; i <= count; ++i)
        found.push_back(block.GetElement(name.c_str(), static_cast<zr_long>(i)));
    std::sort(found.begin(), found.end());
    std::sort(namesakes.begin(), namesakes.end());
    if (found != namesakes)
        return Fault(block, "look-ups of " + name + " give other elements than the sequence");
    return testing::AssertionSuccess();
}

inline testing::AssertionResult IndexIsSound(CZrEnvBlock &block, const std::vector<CZrEnvElement *> &elems) {
    if (block.GetElemCount() != elems.size())
        return Fault(block, "counts " + std::to_string(block.GetElemCount()) + ", has " + std::to_string(elems.size()));
    std::map<std::string, std::vector<CZrEnvElement *>> byName;
    for (CZrEnvElement *pElem : elems)
        if (CZrEnv::CheckElementName(pElem->GetName(), '\0'))
            byName[pElem->GetName()].push_back(pElem);
    for (const auto &[name, namesakes] : byName)
        if (testing::AssertionResult result = NamesakesAreSound(block, name, namesakes); !result)
            return result;
    return testing::AssertionSuccess();
}

// The tail is no public fact: an element appended must stand behind the last one.
inline testing::AssertionResult TailIsSound(CZrEnvBlock &block, const std::vector<CZrEnvElement *> &elems) {
    CZrEnvDataElement *pProbe = NewLeaf("probe of the tail");
    if (!block.InsertElement(pProbe))
        return Fault(block, "refuses an element");
    const CZrEnvElement *pBefore = elems.empty() ? nullptr : elems.back();
    const bool linked = pBefore ? pBefore->GetSuccElem() == pProbe : block.GetFirstElement() == pProbe;
    const bool last = pProbe->GetSuccElem() == nullptr;
    if (!block.RemoveElement(pProbe, true))
        return Fault(block, "does not let go of an element");
    if (!linked || !last)
        return Fault(block, "appends elsewhere than at the tail");
    return testing::AssertionSuccess();
}

} // namespace checker

// Links, parents, lists, counts, look-ups by name and tail of one block agree. For blocks without stale index entries.
inline testing::AssertionResult BlockIsSound(CZrEnvBlock &block) {
    const std::vector<CZrEnvElement *> elems = Sequence(block);
    if (testing::AssertionResult result = checker::LinksAreSound(block, elems); !result)
        return result;
    if (testing::AssertionResult result = checker::ListsAreSound(block, elems); !result)
        return result;
    if (testing::AssertionResult result = checker::IndexIsSound(block, elems); !result)
        return result;
    return checker::TailIsSound(block, elems);
}

// The same for a block and all below it.
inline testing::AssertionResult TreeIsSound(CZrEnvBlock &root) {
    std::vector<CZrEnvBlock *> waiting{&root};
    while (!waiting.empty()) {
        CZrEnvBlock *pBlock = waiting.back();
        waiting.pop_back();
        if (testing::AssertionResult result = BlockIsSound(*pBlock); !result)
            return result;
        for (CZrEnvElement *pElem : Sequence(*pBlock))
            if (CZrEnvBlock *pInner = pElem->ToEnvBlock())
                waiting.push_back(pInner);
    }
    return testing::AssertionSuccess();
}

// All sections of a top-level environment: list, count, environment and trees.
inline testing::AssertionResult EnvIsSound(CZrEnv &env) {
    std::vector<CZrEnvSection *> listed;
    if (env.GetSections(listed) != Zr::ENV_OK)
        return testing::AssertionFailure() << "GetSections fails";
    if (env.CountElements(nullptr, nullptr, true) != static_cast<zr_long>(listed.size()))
        return testing::AssertionFailure()
               << "counts " << env.CountElements(nullptr, nullptr, true) << " sections, has " << listed.size();
    CZrEnvSection *pNext = env.GetFirstSection();
    for (CZrEnvSection *pSection : listed) {
        if (pSection != pNext)
            return testing::AssertionFailure() << "GetSections differs from the links";
        if (pSection->GetEnv() != &env || pSection->GetParent())
            return testing::AssertionFailure() << "section " << NameOf(pSection) << " stands elsewhere";
        if (testing::AssertionResult result = TreeIsSound(*pSection); !result)
            return result;
        pNext = env.GetNextSection(pSection);
    }
    return pNext ? testing::AssertionFailure() << "a section too many" : testing::AssertionSuccess();
}

} // namespace zr::test

#endif
