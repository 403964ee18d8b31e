// The checker of trees.
#include "env/tree_check.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "env/name_index.h"
#include "env/node_store.h"

namespace Zr {

namespace {

// Told of one link after the other, it knows a ring after at most three times its length.
class RingWatch {
public:
    bool Closes(const void *pAt) {
        if (pAt == m_pMark)
            return true;
        if (++m_uSteps == m_uNext) {
            m_pMark = pAt;
            m_uNext *= 2;
        }
        return false;
    }

private:
    const void *m_pMark = nullptr;
    std::size_t m_uSteps = 0;
    std::size_t m_uNext = 1;
};

bool Holds(const std::vector<CZrEnv *> &list, const CZrEnv *pEnv) {
    return std::find(list.begin(), list.end(), pEnv) != list.end();
}

std::string Numbered(const char *what, std::size_t number) {
    return what + std::to_string(number);
}

} // namespace

// All checks are true when they find nothing; the first that is not has noted its fault.
class CZrEnvTreeCheck::Work {
public:
    explicit Work(Indexes indexes) : m_bBuild(indexes == Indexes::Build) {}

    bool Block(const CZrEnvBlock &block);
    bool Tree(const CZrEnvBlock &root);
    bool Environment(const CZrEnv &env);

    CZrEnvTreeFault m_fault;

private:
    using Children = std::vector<const CZrEnvElement *>;

    bool Fail(const CZrEnvElement *pWhere, std::string what);
    static bool IsOfItsKind(const CZrEnvElement &elem);
    static const CZrEnvBlock *FirstBlock(const CZrEnvElement *pElem);

    static bool LieTogether(const CZrEnvBlock &block);
    bool Sequence(const CZrEnvBlock &block);
    bool BlockIndex(const CZrEnvBlock &block);
    bool SectionIndex(const CZrEnv &env);
    bool Hashed(const CZrEnvNameIndex &index, const Children &named);
    template <class Find, class Count>
    bool LookUps(const CZrEnvElement *pFirst, Find find, Count count);
    bool IndexLookUps(const CZrEnvElement *pFirst, const CZrEnvNameIndex &index, std::size_t uNames);
    bool Ordered(const CZrEnvNameIndex &index, const Children &children);
    bool Namesakes(const CZrEnvNameIndex &index);

    bool Sections(const CZrEnv &env);
    bool Defaults(const CZrEnv &env);
    bool Subenvironments(const CZrEnv &env);

    const bool m_bBuild;
    const CZrEnvElement *m_pWhere = nullptr; // of the index that is looked at
};

bool CZrEnvTreeCheck::Work::Fail(const CZrEnvElement *pWhere, std::string what) {
    m_fault = {pWhere, std::move(what)};
    return false;
}

// --- the sequence -----------------------------------------------------------------------------------------------------

// The flags answer as the virtual conversions do.
bool CZrEnvTreeCheck::Work::IsOfItsKind(const CZrEnvElement &elem) {
    const auto flagged = [&](CZrEnvNodeStore::Flag flag) { return (elem.m_uFlags & flag) != 0; };
    return flagged(CZrEnvNodeStore::KindData) == (elem.ToEnvDataElement() != nullptr) &&
           flagged(CZrEnvNodeStore::KindBlock) == (elem.ToEnvBlock() != nullptr) &&
           flagged(CZrEnvNodeStore::KindSection) == (elem.ToEnvSection() != nullptr);
}

// Leaves that are said to lie together are ended without a look at them.
bool CZrEnvTreeCheck::Work::LieTogether(const CZrEnvBlock &block) {
    constexpr std::uint32_t asked = CZrEnvNodeStore::InChunk | CZrEnvNodeStore::LibraryType |
                                    CZrEnvNodeStore::KindData | CZrEnvNodeStore::OwnsName | CZrEnvNodeStore::OwnsData;
    constexpr std::uint32_t packed =
        CZrEnvNodeStore::InChunk | CZrEnvNodeStore::LibraryType | CZrEnvNodeStore::KindData;
    for (const CZrEnvElement *pElem = block.m_pFirst; pElem; pElem = pElem->m_pSucc)
        if ((pElem->m_uFlags & asked) != packed || zr::env::ChunkOf(pElem) != zr::env::ChunkOf(block.m_pFirst))
            return false;
    return true;
}

bool CZrEnvTreeCheck::Work::Sequence(const CZrEnvBlock &block) {
    RingWatch watch;
    std::size_t number = 0;
    const CZrEnvElement *pLast = nullptr;
    for (const CZrEnvElement *pElem = block.m_pFirst; pElem; pElem = pElem->m_pSucc) {
        if (watch.Closes(pElem))
            return Fail(&block, "the sequence is a ring");
        ++number;
        if (pElem->m_pParent != &block)
            return Fail(&block, Numbered("another parent stands in child ", number));
        if (!IsOfItsKind(*pElem))
            return Fail(&block, Numbered("the wrong kind is noted in child ", number));
        if (const CZrEnvSection *pSection = pElem->ToEnvSection(); pSection && pSection->m_pEnv)
            return Fail(&block, Numbered("an environment, too, holds child ", number));
        pLast = pElem;
    }
    if (pLast != block.m_pLast)
        return Fail(&block, "the tail is not the last child");
    if (number != block.m_uCount)
        return Fail(&block, "counts " + std::to_string(block.m_uCount) + " children, has " + std::to_string(number));
    if ((block.m_uFlags & CZrEnvNodeStore::LeavesTogether) != 0 && !LieTogether(block))
        return Fail(&block, "the leaves do not lie together");
    return true;
}

bool CZrEnvTreeCheck::Work::Block(const CZrEnvBlock &block) {
    if (block.m_uFlags & CZrEnvNodeStore::View)
        return true;
    return Sequence(block) && BlockIndex(block);
}

// --- the indexes ------------------------------------------------------------------------------------------------------

bool CZrEnvTreeCheck::Work::BlockIndex(const CZrEnvBlock &block) {
    m_pWhere = &block;
    const CZrEnvNameIndex *pIndex = m_bBuild ? block.LookUpIndex() : block.m_pIndex;
    if (!pIndex)
        return !m_bBuild ||
               LookUps(
                   block.m_pFirst, [&](const char *szName, zr_long number) { return block.Find(szName, number); },
                   [&](std::string_view name) { return block.Count(name); });
    Children children;
    for (const CZrEnvElement *pElem = block.m_pFirst; pElem; pElem = pElem->m_pSucc)
        if (pIndex->IsOrdered() || pElem->m_szName)
            children.push_back(pElem);
    std::sort(children.begin(), children.end());
    if (pIndex->IsOrdered())
        return Ordered(*pIndex, children);
    return Hashed(*pIndex, children) && IndexLookUps(block.m_pFirst, *pIndex, block.m_uCount);
}

// Every slot holds children that bear a name, and there are as many of them in all as there should be.
bool CZrEnvTreeCheck::Work::Hashed(const CZrEnvNameIndex &index, const Children &named) {
    std::size_t used = 0;
    std::size_t entries = 0;
    const auto isChild = [&](const CZrEnvElement *pElem) {
        ++entries;
        return std::binary_search(named.begin(), named.end(), pElem);
    };
    for (std::size_t at = 0; at <= index.m_uMask; ++at) {
        const CZrEnvNameIndex::Slot slot = index.m_pSlots[at];
        if (!slot)
            continue;
        ++used;
        const CZrEnvNameIndex::Group *pGroup = CZrEnvNameIndex::GroupIn(slot);
        if (pGroup && (pGroup->head >= pGroup->elems.size() || pGroup->size() < 2))
            return Fail(m_pWhere, "the index has a group of fewer than two");
        const bool known = pGroup ? std::all_of(pGroup->elems.begin() + static_cast<std::ptrdiff_t>(pGroup->head),
                                                pGroup->elems.end(), isChild)
                                  : isChild(CZrEnvNameIndex::ElementIn(slot));
        if (!known)
            return Fail(m_pWhere, "the index has an entry that is no child with a name");
    }
    if (used != index.m_uUsed || used > index.m_uMask)
        return Fail(m_pWhere, "the index counts " + std::to_string(index.m_uUsed) + " slots in use, has " +
                                  std::to_string(used) + " of " + std::to_string(index.m_uMask + 1));
    if (entries != named.size())
        return Fail(m_pWhere, "the index has " + std::to_string(entries) + " entries for " +
                                  std::to_string(named.size()) + " children with names");
    return true;
}

// The n-th bearer of a name in the sequence is what a look-up of the n-th gives, and there are no more.
template <class Find, class Count>
bool CZrEnvTreeCheck::Work::LookUps(const CZrEnvElement *pFirst, Find find, Count count) {
    std::unordered_map<std::string_view, zr_long> bearers;
    for (const CZrEnvElement *pElem = pFirst; pElem; pElem = pElem->m_pSucc) {
        if (!pElem->m_szName)
            continue;
        const zr_long number = ++bearers[pElem->m_szName];
        if (find(pElem->m_szName, number) != pElem)
            return Fail(m_pWhere, Numbered("a look-up does not find namesake ", static_cast<std::size_t>(number)) +
                                      " of the name " + pElem->m_szName);
    }
    for (const auto &[name, number] : bearers)
        if (count(name) != static_cast<std::size_t>(number))
            return Fail(m_pWhere, "the bearers are miscounted of the name " + std::string(name));
    return true;
}

bool CZrEnvTreeCheck::Work::IndexLookUps(const CZrEnvElement *pFirst, const CZrEnvNameIndex &index,
                                         std::size_t uNames) {
    return LookUps(
        pFirst, [&](const char *szName, zr_long number) { return index.Find(szName, number, uNames); },
        [&](std::string_view name) { return index.Count(name); });
}

bool CZrEnvTreeCheck::Work::Ordered(const CZrEnvNameIndex &index, const Children &children) {
    const CZrEnvNameIndex::Ordered &rEntries = *index.m_pOrdered;
    Children indexed(rEntries.begin(), rEntries.end());
    std::sort(indexed.begin(), indexed.end());
    indexed.erase(std::unique(indexed.begin(), indexed.end()), indexed.end());
    if (indexed != children)
        return Fail(m_pWhere, "the index has entries for other elements than the children");
    if (index.m_bStale)
        return true;
    if (rEntries.size() != children.size())
        return Fail(m_pWhere, "the index has " + std::to_string(rEntries.size()) + " entries for " +
                                  std::to_string(children.size()) + " children");
    if (!std::is_sorted(rEntries.begin(), rEntries.end(), CZrEnvNameIndex::Less()))
        return Fail(m_pWhere, "the index is not in the order of the names");
    return Namesakes(index);
}

// The entries of one name stand together: the first and the last of them are what look-ups give.
bool CZrEnvTreeCheck::Work::Namesakes(const CZrEnvNameIndex &index) {
    const CZrEnvNameIndex::Ordered &rEntries = *index.m_pOrdered;
    for (auto at = rEntries.begin(); at != rEntries.end();) {
        const auto end = std::find_if(at, rEntries.end(),
                                      [&](const CZrEnvElement *pElem) { return CZrEnvNameIndex::Less()(*at, pElem); });
        const char *szName = (*at)->m_szName;
        const auto count = static_cast<std::size_t>(std::distance(at, end));
        if (szName && (index.Count(szName) != count || index.Find(szName, 1, count) != *at ||
                       index.Find(szName, static_cast<zr_long>(count), count) != *std::prev(end)))
            return Fail(m_pWhere, std::string("look-ups do not give the entries of the name ") + szName);
        at = end;
    }
    return true;
}

// --- trees ------------------------------------------------------------------------------------------------------------

// The first block that can be looked into, from one sibling on.
const CZrEnvBlock *CZrEnvTreeCheck::Work::FirstBlock(const CZrEnvElement *pElem) {
    while (pElem && (!CZrEnvNodeStore::IsBlock(pElem) || (pElem->m_uFlags & CZrEnvNodeStore::View)))
        pElem = pElem->m_pSucc;
    return pElem ? pElem->ToEnvBlock() : nullptr;
}

// Every element names the one block that it was met in, so none but the root can be met twice.
bool CZrEnvTreeCheck::Work::Tree(const CZrEnvBlock &root) {
    const CZrEnvBlock *pBlock = &root;
    for (;;) {
        if (!Block(*pBlock))
            return false;
        const CZrEnvBlock *pNext = FirstBlock(pBlock->m_uFlags & CZrEnvNodeStore::View ? nullptr : pBlock->m_pFirst);
        while (!pNext && pBlock != &root) {
            pNext = FirstBlock(pBlock->m_pSucc);
            pBlock = pBlock->m_pParent;
        }
        if (!pNext)
            return true;
        if (pNext == &root)
            return Fail(pBlock, "the block stands below itself");
        pBlock = pNext;
    }
}

// --- environments -----------------------------------------------------------------------------------------------------

bool CZrEnvTreeCheck::Work::Sections(const CZrEnv &env) {
    RingWatch watch;
    std::size_t number = 0;
    const CZrEnvElement *pLast = nullptr;
    for (const CZrEnvElement *pElem = env.m_pFirstSection; pElem; pElem = pElem->m_pSucc) {
        if (watch.Closes(pElem))
            return Fail(nullptr, "the list of sections is a ring");
        ++number;
        const CZrEnvSection *pSection = pElem->ToEnvSection();
        if (!pSection || !IsOfItsKind(*pElem))
            return Fail(nullptr, Numbered("no section is section ", number));
        if (pSection->m_pEnv != &env || pSection->m_pParent)
            return Fail(nullptr, Numbered("another owner stands in section ", number));
        pLast = pElem;
    }
    if (pLast != env.m_pLastSection)
        return Fail(nullptr, "the tail is not the last section");
    if (env.m_lSectionCount < 0 || number != static_cast<std::size_t>(env.m_lSectionCount))
        return Fail(nullptr,
                    "counts " + std::to_string(env.m_lSectionCount) + " sections, has " + std::to_string(number));
    return true;
}

bool CZrEnvTreeCheck::Work::SectionIndex(const CZrEnv &env) {
    m_pWhere = nullptr;
    if (m_bBuild && !env.IsSubEnv()) {
        const EZrEnvError eLast = env.GetLastError();
        env.GetSection("");
        env.SetLastError(eLast);
    }
    if (!env.m_pSectionIndex)
        return true;
    Children named;
    for (const CZrEnvElement *pElem = env.m_pFirstSection; pElem; pElem = pElem->m_pSucc)
        if (pElem->m_szName)
            named.push_back(pElem);
    std::sort(named.begin(), named.end());
    return Hashed(*env.m_pSectionIndex, named) && IndexLookUps(env.m_pFirstSection, *env.m_pSectionIndex, named.size());
}

// Whoever is pointed at knows who points there.
bool CZrEnvTreeCheck::Work::Defaults(const CZrEnv &env) {
    if (env.m_pDefaultEnv && !Holds(env.m_pDefaultEnv->m_Holders, &env))
        return Fail(nullptr, "the default does not know of its holder");
    for (const CZrEnv *pHolder : env.m_Holders)
        if (pHolder->m_pDefaultEnv != &env)
            return Fail(nullptr, "an environment that should hold this one as its default does not");
    RingWatch watch;
    for (const CZrEnv *pAt = &env; pAt; pAt = pAt->m_pDefaultEnv)
        if (watch.Closes(pAt))
            return Fail(nullptr, "the default chain is a ring");
    return true;
}

bool CZrEnvTreeCheck::Work::Subenvironments(const CZrEnv &env) {
    for (const CZrEnv *pSub : env.m_SubEnvs)
        if (pSub->m_pParentEnv != &env)
            return Fail(nullptr, "a subenvironment names another parent");
    if (env.IsSubEnv() && !Holds(env.m_pParentEnv->m_SubEnvs, &env))
        return Fail(nullptr, "the parent does not know of its subenvironment");
    return true;
}

bool CZrEnvTreeCheck::Work::Environment(const CZrEnv &env) {
    if (env.m_bView)
        return true;
    if (!Defaults(env) || !Subenvironments(env) || !Sections(env) || !SectionIndex(env))
        return false;
    for (const CZrEnvSection *pAt = env.m_pFirstSection; pAt;
         pAt = env.GetNextSection(const_cast<CZrEnvSection *>(pAt)))
        if (!Tree(*pAt))
            return false;
    const CZrEnvBlock *pRoot = env.m_pSubEnvRoot ? env.m_pSubEnvRoot->ToEnvBlock() : nullptr;
    return !pRoot || Tree(*pRoot);
}

// --- the border -------------------------------------------------------------------------------------------------------

CZrEnvTreeFault CZrEnvTreeCheck::OfBlock(const CZrEnvBlock &block, Indexes indexes) {
    Work work(indexes);
    work.Block(block);
    return work.m_fault;
}

CZrEnvTreeFault CZrEnvTreeCheck::OfTree(const CZrEnvBlock &root, Indexes indexes) {
    Work work(indexes);
    work.Tree(root);
    return work.m_fault;
}

CZrEnvTreeFault CZrEnvTreeCheck::OfEnvironment(const CZrEnv &env, Indexes indexes) {
    Work work(indexes);
    work.Environment(env);
    return work.m_fault;
}

} // namespace Zr
