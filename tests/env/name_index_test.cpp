// Children by name: the order among namesakes against a literal model, what renames leave behind, great numbers.
#include "env/env_probe.h"
#include "env/name_index.h"
#include "env/tree_checker.h"

#include <random>

namespace zr::test {
namespace {

// Stale entries: with a first and b behind it in the index tree, b's new name is looked for on the other side of a.
// Each case is run with the index built by a look-up before the rename and without one.
class StaleEntry : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        m_pA = AddLeaf(m_block, "a");
        m_pB = AddLeaf(m_block, "b");
        if (GetParam()) {
            ASSERT_EQ(m_pA, m_block.GetElement("a", 1));
        }
    }

    CZrEnvBlock m_block{"block"};
    CZrEnvDataElement *m_pA = nullptr;
    CZrEnvDataElement *m_pB = nullptr;
};

INSTANTIATE_TEST_SUITE_P(Index, StaleEntry, testing::Bool(),
                         [](const auto &place) { return place.param ? "BuiltBefore" : "NotBuilt"; });

TEST_P(StaleEntry, Rename_AcrossASiblingCountsTwice) {
    EXPECT_TRUE(m_pB->SetName("0"));
    EXPECT_EQ(3u, m_block.GetElemCount());
    EXPECT_EQ("a 0", Describe(m_block));
    std::vector<CZrEnvElement *> elems;
    m_block.GetElems(elems);
    EXPECT_EQ((std::vector<CZrEnvElement *>{m_pA, m_pB}), elems);
    EXPECT_EQ(m_pB, m_block.GetElement("0", 1));
    EXPECT_GE(m_block.GetElemCount("0"), 1u);
    EXPECT_LE(m_block.GetElemCount("0"), 2u);
    EXPECT_EQ(nullptr, m_block.GetElement("b", 1));
    EXPECT_EQ(0u, m_block.GetElemCount("b"));
    EXPECT_EQ(m_pA, m_block.GetElement("a", 1));
    EXPECT_EQ(1u, m_block.GetElemCount("a"));
}

TEST_P(StaleEntry, Rename_OfTheTreesRootIsClean) {
    EXPECT_TRUE(m_pA->SetName("z"));
    EXPECT_EQ(2u, m_block.GetElemCount());
    EXPECT_EQ("z b", Describe(m_block));
    EXPECT_TRUE(BlockIsSound(m_block));
}

TEST_P(StaleEntry, Remove_TakesAllEntries) {
    ASSERT_TRUE(m_pB->SetName("0"));
    EXPECT_TRUE(m_block.RemoveElement(m_pB, true));
    EXPECT_EQ(1u, m_block.GetElemCount());
    EXPECT_EQ(nullptr, m_block.GetElement("0", 1));
    EXPECT_EQ(0u, m_block.GetElemCount("0"));
    EXPECT_TRUE(BlockIsSound(m_block));
    AddLeaf(m_block, "0");
    EXPECT_TRUE(BlockIsSound(m_block));
}

TEST_P(StaleEntry, Remove_DetachedElementLeavesNothing) {
    ASSERT_TRUE(m_pB->SetName("0"));
    EXPECT_TRUE(m_block.RemoveElement(m_pB, false));
    EXPECT_EQ(1u, m_block.GetElemCount());
    EXPECT_TRUE(m_pB->SetName("elsewhere"));
    EXPECT_EQ(1u, m_block.GetElemCount());
    EXPECT_TRUE(m_block.InsertElement(m_pB));
    EXPECT_TRUE(BlockIsSound(m_block));
}

TEST_P(StaleEntry, Replace_TakesAllEntries) {
    ASSERT_TRUE(m_pB->SetName("0"));
    EXPECT_TRUE(m_block.ReplaceElement(m_pB, NewLeaf("n")));
    EXPECT_EQ(2u, m_block.GetElemCount());
    EXPECT_EQ("a n", Describe(m_block));
    EXPECT_TRUE(BlockIsSound(m_block));
}

TEST_P(StaleEntry, Rename_OftenThenEnd) {
    for (const char *szName : {"0", "z", "1", "y", "0", "b"})
        EXPECT_TRUE(m_pB->SetName(szName));
    EXPECT_GE(m_block.GetElemCount(), 3u);
    EXPECT_EQ("a b", Describe(m_block));
    EXPECT_TRUE(m_block.RemoveElement(m_pB, true));
    EXPECT_TRUE(BlockIsSound(m_block));
}

TEST_P(StaleEntry, End_OfTheBlock) {
    ASSERT_TRUE(m_pB->SetName("0")); // the block dies with the stale entry in it
}

// Three children in order of their names stand balanced: the middle one is the root, and the outer ones hang below it.
TEST(StaleEntryOfThree, Rename_DependsOnThePlaceInTheTree) {
    struct Row {
        const char *szOld, *szNew;
        zr_ulong count;
    };
    for (const Row &row :
         {Row{"a", "z", 4}, Row{"c", "0", 4}, Row{"b", "z", 3}, Row{"b", "0", 3}, Row{"a", "0", 3}, Row{"c", "z", 3}}) {
        SCOPED_TRACE(std::string(row.szOld) + " to " + row.szNew);
        CZrEnvBlock block("block");
        for (const char *szName : {"a", "b", "c"})
            AddLeaf(block, szName);
        EXPECT_TRUE(block.GetElement(row.szOld, 1)->SetName(row.szNew));
        EXPECT_EQ(row.count, block.GetElemCount());
        EXPECT_EQ(3u, Sequence(block).size());
    }
}

// Whatever renames leave behind: the sequence is right, look-ups give living children of the name, nothing dead is read.
TEST(StaleEntryStorm, RandomRenames_NeverShowADeadElement) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };
        const char *const names[] = {"a", "b", "c", "d", "e"};
        CZrEnvBlock block("block");
        std::vector<CZrEnvElement *> model;
        for (int step = 0; step < 400; ++step) {
            const std::size_t action = model.empty() ? 0 : below(6);
            if (action <= 1) {
                model.push_back(AddLeaf(block, names[below(5)]));
            } else if (action <= 3) {
                ASSERT_TRUE(model[below(model.size())]->SetName(names[below(5)]));
            } else if (action == 4) {
                const std::size_t place = below(model.size());
                if (block.RemoveElement(model[place], true))
                    model.erase(model.begin() + static_cast<std::ptrdiff_t>(place));
            } else {
                const std::size_t place = below(model.size());
                CZrEnvElement *pNew = NewLeaf(names[below(5)]);
                ASSERT_TRUE(block.ReplaceElement(model[place], pNew));
                model[place] = pNew;
            }
            ASSERT_EQ(model, Sequence(block));
            ASSERT_GE(block.GetElemCount(), model.size());
            for (const char *szName : names) {
                const zr_long found = static_cast<zr_long>(block.GetElemCount(szName));
                for (zr_long position = 1; position <= found; ++position) {
                    CZrEnvElement *pElem = block.GetElement(szName, position);
                    ASSERT_NE(model.end(), std::find(model.begin(), model.end(), pElem));
                    ASSERT_STREQ(szName, pElem->GetName());
                }
            }
        }
    }
}

// The namesake order against a literal model

// The told rules on two plain vectors. Renames are left to the caller to choose clean: the index then stays in order.
class Model {
public:
    std::vector<CZrEnvElement *> sequence, index;

    void Append(CZrEnvElement *pElem) {
        sequence.push_back(pElem);
        InsertUpper(pElem);
    }

    void InsertBefore(CZrEnvElement *pElem, CZrEnvElement *pBefore) {
        sequence.insert(Find(sequence, pBefore), pElem);
        const auto hint = Find(index, pBefore);
        const bool fitsBefore = !Less(pBefore, pElem) && (hint == index.begin() || !Less(pElem, *(hint - 1)));
        const bool fitsBehind = !Less(pElem, pBefore) && (hint + 1 == index.end() || !Less(*(hint + 1), pElem));
        if (fitsBefore)
            index.insert(hint, pElem);
        else if (fitsBehind)
            index.insert(hint + 1, pElem);
        else
            index.insert(std::lower_bound(index.begin(), index.end(), pElem, Less), pElem);
    }

    void Remove(CZrEnvElement *pElem) {
        sequence.erase(Find(sequence, pElem));
        index.erase(Find(index, pElem));
    }

    void Replace(CZrEnvElement *pOld, CZrEnvElement *pNew) {
        *Find(sequence, pOld) = pNew;
        index.erase(Find(index, pOld));
        InsertUpper(pNew);
    }

    // True when the index stays in order with the new name at the old place: any descent then reaches the entry.
    bool RenameIsClean(CZrEnvElement *pElem, const std::string &name) {
        const auto entry = Find(index, pElem);
        return (entry == index.begin() || (*(entry - 1))->GetName() <= name) &&
               (entry + 1 == index.end() || name <= (*(entry + 1))->GetName());
    }

    void Renamed(CZrEnvElement *pElem) { // the name is the new one already
        index.erase(Find(index, pElem));
        InsertUpper(pElem);
    }

private:
    static bool Less(const CZrEnvElement *pLeft, const CZrEnvElement *pRight) {
        return std::string_view(pLeft->GetName()) < std::string_view(pRight->GetName());
    }
    static std::vector<CZrEnvElement *>::iterator Find(std::vector<CZrEnvElement *> &elems, CZrEnvElement *pElem) {
        const auto place = std::find(elems.begin(), elems.end(), pElem);
        EXPECT_NE(elems.end(), place);
        return place;
    }
    void InsertUpper(CZrEnvElement *pElem) {
        index.insert(std::upper_bound(index.begin(), index.end(), pElem, Less), pElem);
    }
};

const char *const modelNames[] = {"a", "b", "c", "\xE4", "ab"};

testing::AssertionResult Agrees(CZrEnvBlock &block, const Model &model) {
    if (Sequence(block) != model.sequence)
        return testing::AssertionFailure() << "sequence differs: " << Describe(block);
    if (block.GetElemCount() != model.index.size())
        return testing::AssertionFailure() << "counts " << block.GetElemCount() << " for " << model.index.size();
    for (const char *szName : modelNames) {
        std::vector<CZrEnvElement *> expected, found;
        for (CZrEnvElement *pElem : model.index)
            if (std::string_view(pElem->GetName()) == szName)
                expected.push_back(pElem);
        while (CZrEnvElement *pElem = block.GetElement(szName, static_cast<zr_long>(found.size()) + 1))
            found.push_back(pElem);
        if (found != expected || block.GetElemCount(szName) != expected.size())
            return testing::AssertionFailure() << "order of " << szName << " differs in " << Describe(block);
    }
    return testing::AssertionSuccess();
}

// One random course of changes. Looking only now and then lets the index be built late, from any state.
class Course {
public:
    explicit Course(unsigned seed) : m_random(seed) {}

    void Run(int steps, std::size_t lookEvery) {
        for (int step = 0; step < steps; ++step) {
            Step();
            if (Below(lookEvery) == 0) {
                ASSERT_TRUE(Agrees(m_block, m_model)) << "step " << step;
            }
        }
        ASSERT_TRUE(Agrees(m_block, m_model));
        ASSERT_TRUE(BlockIsSound(m_block));
        for (CZrEnvElement *pElem : m_free)
            Discard(pElem);
    }

private:
    std::size_t Below(std::size_t n) { return static_cast<std::size_t>(m_random() % n); }
    const char *Name() { return modelNames[Below(std::size(modelNames))]; }
    CZrEnvElement *Child() { return m_model.sequence[Below(m_model.sequence.size())]; }

    // A new element, or one that was removed before and still has its old link.
    CZrEnvElement *Fresh() {
        if (m_free.empty() || Below(3) == 0)
            return Below(2) ? static_cast<CZrEnvElement *>(NewLeaf(Name())) : NewBlock(Name());
        CZrEnvElement *pElem = m_free.back();
        m_free.pop_back();
        return pElem;
    }

    void Step() {
        const std::size_t size = m_model.sequence.size();
        switch (size < 2 ? 0 : Below(size > 30 ? 11 : 7)) {
        case 0:
        case 1: {
            CZrEnvElement *pElem = Fresh();
            ASSERT_TRUE(m_block.InsertElement(pElem));
            m_model.Append(pElem);
            break;
        }
        case 2:
        case 3: {
            CZrEnvElement *pElem = Fresh(), *pBefore = Child();
            ASSERT_TRUE(m_block.InsertElementBefore(pElem, pBefore));
            m_model.InsertBefore(pElem, pBefore);
            break;
        }
        case 4:
        case 5:
            Rename();
            break;
        case 6: {
            CZrEnvElement *pOld = Child(), *pNew = Fresh();
            m_model.Replace(pOld, pNew);
            ASSERT_TRUE(m_block.ReplaceElement(pOld, pNew));
            break;
        }
        default: {
            CZrEnvElement *pElem = Child();
            const bool bDelete = Below(2) == 0;
            m_model.Remove(pElem);
            ASSERT_TRUE(m_block.RemoveElement(pElem, bDelete));
            if (!bDelete)
                m_free.push_back(pElem);
        }
        }
    }

    void Rename() {
        CZrEnvElement *pElem = Child();
        const char *szName = Name();
        if (!m_model.RenameIsClean(pElem, szName))
            szName = pElem->GetName();
        ASSERT_TRUE(pElem->SetName(std::string(szName).c_str()));
        m_model.Renamed(pElem);
    }

    std::mt19937 m_random;
    CZrEnvBlock m_block{"block"};
    Model m_model;
    std::vector<CZrEnvElement *> m_free;
};

TEST(NamesakeOrder, RandomChanges_AgreeWithTheModel) {
    for (unsigned seed = 1; seed <= 30; ++seed)
        for (std::size_t lookEvery : {1u, 7u, 60u}) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", looking every " + std::to_string(lookEvery));
            Course(seed).Run(600, lookEvery);
        }
}

// The hash form: nothing but appends and removals, so that the order among namesakes is that of the sequence.

class HashForm : public testing::TestWithParam<unsigned> {};

INSTANTIATE_TEST_SUITE_P(Index, HashForm, testing::Values(1u, 3u, 40u, 5000u), testing::PrintToStringParamName());

TEST_P(HashForm, RandomAppendsAndRemovals_AgreeWithTheSequence) {
    std::mt19937 random(GetParam());
    const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    CZrEnvBlock block("block");
    std::vector<CZrEnvElement *> model;
    for (int step = 0; step < 4000; ++step) {
        const bool grows = below(8) < (step / 1000 % 2 == 0 ? 6u : 2u);
        if (model.size() < 12 || grows) {
            const std::string name = below(50) == 0 ? "=" : "n" + std::to_string(below(GetParam()));
            model.push_back(NewLeaf(name)); // "=" is refused: a child without name
            ASSERT_TRUE(block.InsertElement(model.back()));
        } else {
            const auto at = model.begin() + static_cast<std::ptrdiff_t>(below(3) == 0 ? 0 : below(model.size()));
            ASSERT_TRUE(block.RemoveElement(*at, true));
            model.erase(at);
        }
        block.GetElemCount("n0"); // makes the index, where there is none
        if (step % 100 == 0) {
            ASSERT_TRUE(Sequence(block) == model);
            ASSERT_TRUE(BlockIsSound(block)) << step;
        }
    }
    ASSERT_NE(nullptr, Zr::CZrEnvProbe::Index(block));
    EXPECT_FALSE(Zr::CZrEnvProbe::Index(block)->IsOrdered());
}

TEST(HashForm, CopyOfAChild_IsNoChild) {
    CZrEnvBlock block("block");
    for (int i = 0; i < 20; ++i)
        AddLeaf(block, ("n" + std::to_string(i % 15)).c_str());
    for (const char *szName : {"n0", "n14"}) { // one of two namesakes, and one alone
        const OpenLeaf source(*block.GetDataElement(szName, 1));
        OpenLeaf view(source);
        EXPECT_FALSE(block.RemoveElement(&view, false)) << szName;
    }
    EXPECT_TRUE(BlockIsSound(block));
    EXPECT_EQ(20u, block.GetElemCount());
}

// Great numbers

const int million = 1000000;

TEST(NameIndexNumber, AMillionNamesakes) {
    CZrEnvBlock block("block");
    for (int i = 0; i < million; ++i)
        ASSERT_TRUE(block.InsertElement(NewLeaf("n")));
    CZrEnvElement *pFirst = block.GetFirstElement();
    EXPECT_EQ(static_cast<zr_ulong>(million), block.GetElemCount());
    EXPECT_EQ(static_cast<zr_ulong>(million), block.GetElemCount("n"));
    EXPECT_EQ(pFirst, block.GetElement("n", 1));
    EXPECT_NE(nullptr, block.GetElement("n", million));
    EXPECT_EQ(nullptr, block.GetElement("n", million)->GetSuccElem());
    EXPECT_EQ(nullptr, block.GetElement("n", million + 1));
    EXPECT_EQ(pFirst->GetSuccElem(), block.GetElement("n", 2));

    EXPECT_TRUE(pFirst->SetName("n")); // now the last by number, still the first of the sequence
    EXPECT_EQ(pFirst, block.GetElement("n", million));
    EXPECT_EQ(pFirst, block.GetFirstElement());
    EXPECT_TRUE(block.RemoveElement(pFirst, true));
    EXPECT_EQ(static_cast<zr_ulong>(million) - 1, block.GetElemCount("n"));
    CZrEnvElement *pHead = NewLeaf("n");
    EXPECT_TRUE(block.InsertElementBefore(pHead, block.GetFirstElement()));
    EXPECT_EQ(pHead, block.GetElement("n", 1));
}

TEST(NameIndexNumber, AMillionNamesakes_RemovedFromTheHead) {
    CZrEnvBlock block("block");
    for (int i = 0; i < million; ++i)
        ASSERT_TRUE(block.InsertElement(NewLeaf("n")));
    ASSERT_EQ(static_cast<zr_ulong>(million), block.GetElemCount("n"));
    for (int i = 0; i < 1000; ++i)
        ASSERT_TRUE(block.RemoveElement(block.GetFirstElement(), true));
    EXPECT_EQ(static_cast<zr_ulong>(million) - 1000, block.GetElemCount("n"));
}

TEST(NameIndexNumber, AMillionNames) {
    CZrEnvBlock block("block");
    for (int i = 0; i < million; ++i)
        ASSERT_TRUE(block.InsertElement(NewLeaf(std::to_string(i * 7 % million))));
    for (int i = 0; i < million; i += 99999) {
        CZrEnvElement *pElem = block.GetElement(std::to_string(i).c_str(), 1);
        ASSERT_NE(nullptr, pElem);
        EXPECT_EQ(std::to_string(i), pElem->GetName());
        EXPECT_EQ(1u, block.GetElemCount(std::to_string(i).c_str()));
    }
}

} // namespace
} // namespace zr::test
