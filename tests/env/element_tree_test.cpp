// Elements, blocks and sections: kinds, names, insertion, removal, replacement, renaming, look-up, copies and ends.
#include "env/report_capture.h"
#include "env/tree_checker.h"

#include <climits>
#include <cstdlib>

namespace zr::test {
namespace {

const char *const foreignOnRemove = "CZrEnvBlock::RemoveElement - Element geh\xF6"
                                    "rt nicht zum Block";
const char *const foreignOnReplace = "CZrEnvBlock::ReplaceElement - Element geh\xF6"
                                     "rt nicht zum Block";

const std::size_t longLengths[] = {300, 10000, 1000000};

// A block of its own with reports captured; ends sound or the test fails.
class Block : public testing::Test {
protected:
    void TearDown() override {
        if (m_endsSound) {
            EXPECT_TRUE(TreeIsSound(m_block));
        }
    }

    CZrEnvDataElement *Leaf(const char *szName) { return AddLeaf(m_block, szName); }

    ReportCapture m_reports;
    CZrEnvBlock m_block{"block"};
    bool m_endsSound = true;
};

// Kinds

TEST(ElementKind, Leaf_IsOnlyADataElement) {
    CZrEnvDataElement *pLeaf = NewLeaf("a");
    const CZrEnvElement *pConst = pLeaf;
    CZrEnvElement *pElem = pLeaf;
    EXPECT_EQ(pLeaf, pElem->ToEnvDataElement());
    EXPECT_EQ(pLeaf, pConst->ToEnvDataElement());
    EXPECT_EQ(nullptr, pElem->ToEnvBlock());
    EXPECT_EQ(nullptr, pConst->ToEnvBlock());
    EXPECT_EQ(nullptr, pElem->ToEnvSection());
    EXPECT_EQ(nullptr, pConst->ToEnvSection());
    Discard(pLeaf);
}

TEST(ElementKind, Block_IsOnlyABlock) {
    CZrEnvBlock block("a");
    CZrEnvElement *pElem = &block;
    const CZrEnvElement *pConst = &block;
    EXPECT_EQ(&block, pElem->ToEnvBlock());
    EXPECT_EQ(&block, pConst->ToEnvBlock());
    EXPECT_EQ(nullptr, pElem->ToEnvDataElement());
    EXPECT_EQ(nullptr, pConst->ToEnvDataElement());
    EXPECT_EQ(nullptr, pElem->ToEnvSection());
    EXPECT_EQ(nullptr, pConst->ToEnvSection());
}

TEST(ElementKind, Section_IsSectionAndBlock) {
    CZrEnvSection section("a");
    CZrEnvElement *pElem = &section;
    const CZrEnvElement *pConst = &section;
    EXPECT_EQ(&section, pElem->ToEnvBlock());
    EXPECT_EQ(&section, pConst->ToEnvBlock());
    EXPECT_EQ(&section, pElem->ToEnvSection());
    EXPECT_EQ(&section, pConst->ToEnvSection());
    EXPECT_EQ(nullptr, pElem->ToEnvDataElement());
    EXPECT_EQ(nullptr, pConst->ToEnvDataElement());
}

TEST(ElementKind, DerivedFromTheRoot_IsNone) {
    PlainElement plain("a");
    CZrEnvElement *pElem = &plain;
    const CZrEnvElement *pConst = &plain;
    EXPECT_EQ(nullptr, pElem->ToEnvBlock());
    EXPECT_EQ(nullptr, pConst->ToEnvBlock());
    EXPECT_EQ(nullptr, pElem->ToEnvDataElement());
    EXPECT_EQ(nullptr, pConst->ToEnvDataElement());
    EXPECT_EQ(nullptr, pElem->ToEnvSection());
    EXPECT_EQ(nullptr, pConst->ToEnvSection());
}

TEST(ElementState, NewElements_AreDetached) {
    CZrEnvDataElement *pLeaf = NewLeaf("a");
    CZrEnvBlock block("b");
    CZrEnvSection section("c");
    for (CZrEnvElement *pElem : {static_cast<CZrEnvElement *>(pLeaf), static_cast<CZrEnvElement *>(&block),
                                 static_cast<CZrEnvElement *>(&section)}) {
        EXPECT_EQ(nullptr, pElem->GetParent());
        EXPECT_EQ(nullptr, pElem->GetSuccElem());
        EXPECT_EQ(nullptr, pElem->GetEnv());
    }
    EXPECT_EQ(nullptr, block.GetFirstElement());
    EXPECT_EQ(0u, block.GetElemCount());
    EXPECT_STREQ("a", pLeaf->GetName());
    EXPECT_STREQ("b", block.GetName());
    EXPECT_STREQ("c", section.GetName());
    Discard(pLeaf);
}

TEST(ElementState, GetEnv_FollowsTheParentsToTheSection) {
    EnvPtr env = NewEnv();
    CZrEnvSection *pSection = env->InsertSection("S");
    CZrEnvBlock *pOuter = AddBlock(*pSection, "outer");
    CZrEnvBlock *pInner = AddBlock(*pOuter, "inner");
    CZrEnvDataElement *pLeaf = AddLeaf(*pInner, "leaf");
    EXPECT_EQ(env.get(), pSection->GetEnv());
    EXPECT_EQ(env.get(), pLeaf->GetEnv());
    EXPECT_EQ(nullptr, pSection->GetParent());
    EXPECT_EQ(pInner, pLeaf->GetParent());

    ASSERT_TRUE(pOuter->RemoveElement(pInner, false));
    EXPECT_EQ(nullptr, pInner->GetEnv());
    EXPECT_EQ(nullptr, pLeaf->GetEnv());
    Discard(pInner);
}

// Names

struct NameRow {
    const char *szName;
    bool element, section;
};

const NameRow nameRows[] = {
    {"a", true, true},    {"name with blanks", true, true},
    {"", false, true},    {nullptr, false, false},
    {"=", false, true},   {"a=b", false, true},
    {"a=", false, true},  {"a]b", true, false},
    {"]", true, false},   {"]=", false, false},
    {"[a", true, true},   {"a@b", true, true},
    {"@", true, true},    {"12", true, true},
    {"{", true, true},    {";", true, true},
    {"a\nb", true, true}, {"\xE4\xF6\xFC\xDF", true, true},
    {"\xFF", true, true}, {" ", true, true},
};

TEST(ElementName, SetName_AsksTheRuleOfTheKind) {
    ReportCapture reports;
    for (const NameRow &row : nameRows) {
        SCOPED_TRACE(row.szName ? row.szName : "(null)");
        CZrEnvDataElement *pLeaf = NewLeaf("old");
        CZrEnvBlock block("old");
        CZrEnvSection section("old");
        EXPECT_EQ(row.element, pLeaf->SetName(row.szName));
        EXPECT_EQ(row.element, block.SetName(row.szName));
        EXPECT_EQ(row.section, section.SetName(row.szName));
        EXPECT_STREQ(row.element ? row.szName : "old", pLeaf->GetName());
        EXPECT_STREQ(row.element ? row.szName : "old", block.GetName());
        EXPECT_STREQ(row.section ? row.szName : "old", section.GetName());
        Discard(pLeaf);
    }
    EXPECT_EQ(Reports{}, reports.Take());
}

TEST(ElementName, Constructor_RefusedNameLeavesNameless) {
    ReportCapture reports;
    for (const NameRow &row : nameRows) {
        SCOPED_TRACE(row.szName ? row.szName : "(null)");
        CZrEnvDataElement *pLeaf = NewLeaf(row.szName, "value");
        CZrEnvBlock block(row.szName);
        CZrEnvSection section(row.szName);
        EXPECT_STREQ(row.element ? row.szName : nullptr, pLeaf->GetName());
        EXPECT_STREQ(row.element ? row.szName : nullptr, block.GetName());
        EXPECT_STREQ(row.section ? row.szName : nullptr, section.GetName());
        EXPECT_STREQ("value", pLeaf->GetString());
        Discard(pLeaf);
    }
    EXPECT_EQ(Reports{}, reports.Take());
}

TEST(ElementName, Constructor_CopiesTheText) {
    char name[] = "abc";
    CZrEnvBlock block(name);
    name[0] = 'x';
    EXPECT_STREQ("abc", block.GetName());
}

TEST(ElementName, SetName_ShorterLongerAndNamelessElements) {
    CZrEnvBlock block("");
    ASSERT_EQ(nullptr, block.GetName());
    for (const char *szName : {"first", "a", "longer than all before", "b", "longer", ""}) {
        const bool set = block.SetName(szName);
        EXPECT_EQ(*szName != '\0', set);
        if (set) {
            EXPECT_STREQ(szName, block.GetName());
        }
    }
    EXPECT_STREQ("longer", block.GetName());
}

TEST(ElementName, SetName_OverLongNames) {
    for (std::size_t length : longLengths) {
        const std::string name(length, 'n');
        CZrEnvBlock block(name.c_str());
        EXPECT_EQ(name, block.GetName());
        EXPECT_TRUE(block.SetName("short"));
        EXPECT_TRUE(block.SetName((name + "x").c_str()));
        EXPECT_EQ(name + "x", block.GetName());
        EXPECT_FALSE(block.SetName((name + "=").c_str()));
        EXPECT_EQ(name + "x", block.GetName());
    }
}

TEST(ElementName, SetName_ToItsOwnText) {
    for (const char *szName : {"x", "a name", "a name much longer than any small buffer would hold"}) {
        CZrEnvBlock parent("parent");
        CZrEnvBlock *pBlock = AddBlock(parent, szName);
        EXPECT_TRUE(pBlock->SetName(pBlock->GetName()));
        EXPECT_STREQ(szName, pBlock->GetName());
        EXPECT_EQ(pBlock, parent.GetElement(szName, 1));
    }
    CZrEnvBlock block("tail of it");
    EXPECT_TRUE(block.SetName(block.GetName() + 5));
    EXPECT_STREQ("of it", block.GetName());
}

TEST(ElementName, SetName_KeepsTheBufferForAShorterName) {
    CZrEnvBlock block("eight by");
    const char *szBuffer = block.GetName();
    for (const char *szName : {"eight bz", "three", "a"}) {
        EXPECT_TRUE(block.SetName(szName));
        EXPECT_EQ(szBuffer, block.GetName());
    }
}

// A caller's own rule: only names that begin with "ok".
class Picky : public CZrEnvBlock {
public:
    explicit Picky(const char *szName) : CZrEnvBlock(szName) {}
    Picky(const Picky &) = default;
    Picky &operator=(const Picky &) = default;
    ~Picky() override = default;

protected:
    bool CheckName(const char *szName) override { return std::string_view(szName).substr(0, 2) == "ok"; }
};

TEST(ElementName, SetName_AsksTheDerivedRule) {
    Picky picky("built under the rule of the base");
    EXPECT_STREQ("built under the rule of the base", picky.GetName());
    EXPECT_FALSE(picky.SetName("a"));
    EXPECT_TRUE(picky.SetName("ok=1"));
    EXPECT_STREQ("ok=1", picky.GetName());
    EXPECT_FALSE(picky.SetName(nullptr)) << "null is refused before the rule is asked";
}

TEST(ElementName, SetName_WithTheDelimiterOfTheEnvironment) {
    EnvPtr env = NewEnv();
    CZrEnvBlock *pBlock = AddBlock(*env->InsertSection("S"), "a");
    EXPECT_TRUE(pBlock->SetName("a@b"));
    EXPECT_EQ(nullptr, env->GetElement("S", "a@b", true, false));
    EXPECT_EQ(nullptr, env->GetElement("S", "a@b", false, false));
}

// Insertion

TEST_F(Block, Insert_NullIsRefused) {
    EXPECT_FALSE(m_block.InsertElement(nullptr));
    EXPECT_EQ(0u, m_block.GetElemCount());
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Block, Insert_TwiceIsRefused) {
    CZrEnvDataElement *pA = Leaf("a");
    CZrEnvDataElement *pB = Leaf("b");
    EXPECT_FALSE(m_block.InsertElement(pA));
    EXPECT_FALSE(m_block.InsertElement(pB));
    EXPECT_EQ("a b", Describe(m_block));
    EXPECT_EQ(2u, m_block.GetElemCount());
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Block, Insert_AppendsAndSetsTheParent) {
    std::vector<CZrEnvElement *> expected;
    for (const char *szName : {"c", "a", "b", "a"}) {
        expected.push_back(Leaf(szName));
        EXPECT_EQ(&m_block, expected.back()->GetParent());
        EXPECT_EQ(nullptr, expected.back()->GetSuccElem());
        EXPECT_EQ(expected, Sequence(m_block));
    }
}

TEST_F(Block, Insert_LeafThenBlockOfOneName) {
    CZrEnvDataElement *pLeaf = Leaf("a");
    CZrEnvBlock *pInner = AddBlock(m_block, "a");
    EXPECT_EQ(pLeaf, m_block.GetElement("a", 1));
    EXPECT_EQ(pInner, m_block.GetElement("a", 2));
    EXPECT_EQ(nullptr, m_block.GetElement("a", 3));
    EXPECT_EQ(pLeaf, m_block.GetElement("a", 0));
    EXPECT_EQ(pLeaf, m_block.GetElement("a", -5));
    EXPECT_EQ(pLeaf, m_block.GetElement("a", INT_MIN));
    EXPECT_EQ(nullptr, m_block.GetElement("a", INT_MAX));
    EXPECT_EQ(2u, m_block.GetElemCount("a"));
    EXPECT_EQ(2u, m_block.GetElemCount());
    EXPECT_EQ(pLeaf, m_block.GetDataElement("a", 1));
    EXPECT_EQ(nullptr, m_block.GetDataElement("a", 2));
    EXPECT_EQ(nullptr, m_block.GetDataElement("a", 3));
    EXPECT_EQ(nullptr, m_block.GetBlock("a", 1));
    EXPECT_EQ(pInner, m_block.GetBlock("a", 2));
    EXPECT_EQ(nullptr, m_block.GetBlock("a", 3));
    EXPECT_EQ(nullptr, m_block.GetBlock("b", 1));
}

TEST_F(Block, Insert_NamelessChildIsNotFoundByName) {
    CZrEnvDataElement *pNameless = Leaf("");
    CZrEnvDataElement *pNamed = Leaf("a");
    ASSERT_EQ(nullptr, pNameless->GetName());
    EXPECT_EQ(2u, m_block.GetElemCount());
    EXPECT_EQ(pNamed, m_block.GetElement("a", 1));
    EXPECT_EQ(nullptr, m_block.GetElement(nullptr, 1));
    EXPECT_EQ(nullptr, m_block.GetElement("", 1));
    EXPECT_EQ(0u, m_block.GetElemCount(nullptr));
    EXPECT_EQ(0u, m_block.GetElemCount(""));
    std::vector<std::string> names;
    m_block.GetElemNames(names);
    EXPECT_EQ((std::vector<std::string>{"", "a"}), names);

    EXPECT_TRUE(pNameless->SetName("z"));
    EXPECT_EQ(pNameless, m_block.GetElement("z", 1));
    EXPECT_TRUE(m_block.RemoveElement(pNameless, true));
}

TEST_F(Block, Insert_NamelessChildCanBeRemoved) {
    CZrEnvDataElement *pFirst = Leaf("");
    CZrEnvDataElement *pSecond = Leaf("");
    Leaf("a");
    EXPECT_TRUE(m_block.RemoveElement(pSecond, true));
    EXPECT_TRUE(m_block.RemoveElement(pFirst, true));
    EXPECT_EQ("a", Describe(m_block));
}

TEST_F(Block, Insert_ChildOfAnotherBlockLeavesThatOne) {
    CZrEnvBlock other("other");
    CZrEnvDataElement *pLeaf = AddLeaf(other, "a");
    AddLeaf(other, "b");
    EXPECT_TRUE(m_block.InsertElement(pLeaf));
    EXPECT_EQ(&m_block, pLeaf->GetParent());
    EXPECT_EQ(pLeaf, m_block.GetElement("a", 1));
    EXPECT_EQ("b", Describe(other)) << "one owner at a time";
    EXPECT_TRUE(BlockIsSound(other));
    EXPECT_EQ(Reports{}, m_reports.Take());
}

// Nothing may come to stand below itself, and a section has one owner.
TEST_F(Block, Insert_WhatCannotBecomeAChild) {
    EnvPtr env = NewEnv();
    CZrEnvSection *pHeld = env->InsertSection("S");
    CZrEnvBlock *pOuter = AddBlock(m_block, "outer");
    CZrEnvBlock *pInner = AddBlock(*pOuter, "inner");
    CZrEnvDataElement *pLeaf = AddLeaf(*pInner, "leaf");
    for (CZrEnvElement *pElem : {static_cast<CZrEnvElement *>(pInner), static_cast<CZrEnvElement *>(pOuter),
                                 static_cast<CZrEnvElement *>(&m_block), static_cast<CZrEnvElement *>(pHeld)}) {
        EXPECT_FALSE(pInner->InsertElement(pElem));
        EXPECT_FALSE(pInner->InsertElementBefore(pElem, pLeaf));
        EXPECT_FALSE(pInner->ReplaceElement(pLeaf, pElem));
    }
    CZrEnvBlock empty("empty");
    EXPECT_FALSE(empty.InsertElement(&empty));
    EXPECT_EQ("outer{inner{leaf}}", Describe(m_block));
    EXPECT_EQ(pLeaf, pInner->GetElement("leaf", 1));
    EXPECT_EQ(env.get(), pHeld->GetEnv());
    EXPECT_TRUE(EnvIsSound(*env));
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Block, Insert_SectionThatNoEnvironmentHolds) {
    CZrEnvSection *pSection = new CZrEnvSection("S");
    EXPECT_TRUE(m_block.InsertElement(pSection));
    EXPECT_EQ(pSection, m_block.GetBlock("S", 1));
    EXPECT_EQ(nullptr, pSection->GetEnv());
}

// What was removed keeps its link, and the next insertion as a tail must not close a ring with it.
TEST_F(Block, Insert_OfARemovedElementEndsTheSequence) {
    CZrEnvDataElement *pA = Leaf("a");
    CZrEnvDataElement *pB = Leaf("b");
    CZrEnvDataElement *pC = Leaf("c");
    ASSERT_TRUE(m_block.RemoveElement(pA, false));
    EXPECT_EQ(pB, pA->GetSuccElem()) << "a removed element keeps its link";
    ASSERT_TRUE(m_block.InsertElement(pA));
    EXPECT_EQ("b c a", Describe(m_block));
    EXPECT_EQ(nullptr, pA->GetSuccElem());

    ASSERT_TRUE(m_block.RemoveElement(pC, false));
    EXPECT_EQ(pA, pC->GetSuccElem());
    CZrEnvBlock other("other");
    ASSERT_TRUE(other.InsertElement(pC));
    EXPECT_EQ(nullptr, pC->GetSuccElem());
    EXPECT_TRUE(BlockIsSound(other));
}

// Insertion before

TEST_F(Block, InsertBefore_NullPlaceIsAnAppend) {
    Leaf("a");
    EXPECT_TRUE(m_block.InsertElementBefore(NewLeaf("b"), nullptr));
    EXPECT_EQ("a b", Describe(m_block));
    EXPECT_FALSE(m_block.InsertElementBefore(nullptr, nullptr));
}

TEST_F(Block, InsertBefore_BadArgumentsAreRefused) {
    CZrEnvDataElement *pA = Leaf("a");
    CZrEnvDataElement *pB = Leaf("b");
    CZrEnvBlock other("other");
    CZrEnvDataElement *pForeign = AddLeaf(other, "x");
    CZrEnvDataElement *pFree = NewLeaf("free");
    CZrEnvDataElement *pFresh = NewLeaf("fresh");
    EXPECT_FALSE(m_block.InsertElementBefore(nullptr, pA));
    EXPECT_FALSE(m_block.InsertElementBefore(pB, pA));
    EXPECT_FALSE(m_block.InsertElementBefore(pA, pA));
    EXPECT_FALSE(m_block.InsertElementBefore(pA, nullptr));
    EXPECT_FALSE(m_block.InsertElementBefore(pFresh, pForeign));
    EXPECT_FALSE(m_block.InsertElementBefore(pFresh, pFree));
    EXPECT_FALSE(m_block.InsertElementBefore(pFresh, pFresh));
    EXPECT_EQ(nullptr, pFresh->GetParent());
    EXPECT_EQ("a b", Describe(m_block));
    EXPECT_EQ(Reports{}, m_reports.Take());
    Discard(pFree);
    Discard(pFresh);
}

TEST_F(Block, InsertBefore_ChildOfAnotherBlockLeavesThatOne) {
    CZrEnvDataElement *pA = Leaf("a");
    CZrEnvBlock other("other");
    CZrEnvDataElement *pX = AddLeaf(other, "x");
    AddLeaf(other, "y");
    EXPECT_TRUE(m_block.InsertElementBefore(pX, pA));
    EXPECT_EQ("x a", Describe(m_block));
    EXPECT_EQ("y", Describe(other));
    EXPECT_TRUE(BlockIsSound(other));
}

TEST_F(Block, InsertBefore_HeadMiddleTailAndOnly) {
    CZrEnvDataElement *pB = Leaf("b");
    EXPECT_TRUE(m_block.InsertElementBefore(NewLeaf("a"), pB)); // the only one, so head and tail
    EXPECT_EQ("a b", Describe(m_block));
    EXPECT_TRUE(BlockIsSound(m_block));
    EXPECT_TRUE(m_block.InsertElementBefore(NewLeaf("head"), m_block.GetFirstElement()));
    EXPECT_EQ("head a b", Describe(m_block));
    EXPECT_TRUE(m_block.InsertElementBefore(NewLeaf("middle"), m_block.GetElement("a", 1)));
    EXPECT_EQ("head middle a b", Describe(m_block));
    EXPECT_TRUE(m_block.InsertElementBefore(NewLeaf("last but one"), pB));
    EXPECT_EQ("head middle a last but one b", Describe(m_block));
    EXPECT_TRUE(BlockIsSound(m_block));
    Leaf("tail");
    EXPECT_EQ("head middle a last but one b tail", Describe(m_block));
}

TEST_F(Block, InsertBefore_RemovedElementGetsANewLink) {
    CZrEnvDataElement *pA = Leaf("a");
    Leaf("b");
    CZrEnvDataElement *pC = Leaf("c");
    ASSERT_TRUE(m_block.RemoveElement(pA, false));
    EXPECT_TRUE(m_block.InsertElementBefore(pA, pC));
    EXPECT_EQ("b a c", Describe(m_block));
}

TEST_F(Block, InsertBefore_NamesakeTakesTheNumber) {
    CZrEnvDataElement *pFirst = Leaf("a");
    CZrEnvDataElement *pSecond = Leaf("a");
    CZrEnvDataElement *pNew = NewLeaf("a");
    EXPECT_TRUE(m_block.InsertElementBefore(pNew, pSecond));
    EXPECT_EQ(pFirst, m_block.GetElement("a", 1));
    EXPECT_EQ(pNew, m_block.GetElement("a", 2));
    EXPECT_EQ(pSecond, m_block.GetElement("a", 3));
    CZrEnvDataElement *pHead = NewLeaf("a");
    EXPECT_TRUE(m_block.InsertElementBefore(pHead, pFirst));
    EXPECT_EQ(pHead, m_block.GetElement("a", 1));
    EXPECT_EQ(pSecond, m_block.GetElement("a", 4));
}

// Where an element lands among its namesakes when it is put before one of another name.
TEST_F(Block, InsertBefore_OtherNameNumbersByTheHint) {
    CZrEnvDataElement *pB1 = Leaf("b");
    CZrEnvDataElement *pB2 = Leaf("b");
    CZrEnvDataElement *pC = Leaf("c");
    CZrEnvDataElement *pA = Leaf("a");
    CZrEnvDataElement *pX = Leaf("x");

    CZrEnvDataElement *pBeforeC = NewLeaf("b"); // the entry before c's is b: directly before c, behind all b
    EXPECT_TRUE(m_block.InsertElementBefore(pBeforeC, pC));
    EXPECT_EQ(pBeforeC, m_block.GetElement("b", 3));

    CZrEnvDataElement *pBeforeA = NewLeaf("b"); // the entry behind a's is b: directly behind a, in front of all b
    EXPECT_TRUE(m_block.InsertElementBefore(pBeforeA, pA));
    EXPECT_EQ(pBeforeA, m_block.GetElement("b", 1));

    CZrEnvDataElement *pBeforeX = NewLeaf("b"); // x has no b beside it: in front of all b
    EXPECT_TRUE(m_block.InsertElementBefore(pBeforeX, pX));
    EXPECT_EQ(pBeforeX, m_block.GetElement("b", 1));
    EXPECT_EQ(pBeforeA, m_block.GetElement("b", 2));
    EXPECT_EQ(pB1, m_block.GetElement("b", 3));
    EXPECT_EQ(pB2, m_block.GetElement("b", 4));
    EXPECT_EQ(pBeforeC, m_block.GetElement("b", 5));
    EXPECT_EQ("b b b c b a b x", Describe(m_block));
}

// A copy of a child names this block as its parent but stands nowhere in it.
TEST_F(Block, InsertBefore_PlaceThatIsNotInTheSequence) {
    Leaf("a");
    CZrEnvDataElement *pB = Leaf("b");
    OpenLeaf view(*pB);
    ASSERT_EQ(&m_block, view.GetParent());
    CZrEnvDataElement *pNew = NewLeaf("n");
    EXPECT_FALSE(m_block.InsertElementBefore(pNew, &view));
    EXPECT_EQ(Reports{Error("ZrEnvBlock", "Unexpected nil")}, m_reports.Take());
    EXPECT_EQ(&m_block, pNew->GetParent());
    EXPECT_EQ(pNew, m_block.GetElement("n", 1)) << "it stays in the index";
    EXPECT_EQ(3u, m_block.GetElemCount());
    EXPECT_EQ("a b", Describe(m_block));
    EXPECT_TRUE(m_block.RemoveElement(pNew, true));
    EXPECT_EQ(2u, m_block.GetElemCount());
}

// Removal

TEST_F(Block, Remove_NullAndForeign) {
    Leaf("a");
    CZrEnvBlock other("other");
    CZrEnvDataElement *pForeign = AddLeaf(other, "x");
    CZrEnvDataElement *pFree = NewLeaf("free");
    EXPECT_FALSE(m_block.RemoveElement(nullptr, true));
    EXPECT_EQ(Reports{}, m_reports.Take());
    EXPECT_FALSE(m_block.RemoveElement(pForeign, true));
    EXPECT_EQ(Reports{Message("ZrEnvBlock", foreignOnRemove)}, m_reports.Take());
    EXPECT_FALSE(m_block.RemoveElement(pFree, false));
    EXPECT_EQ(Reports{Message("ZrEnvBlock", foreignOnRemove)}, m_reports.Take());
    EXPECT_EQ("x", Describe(other));
    EXPECT_EQ("a", Describe(m_block));
    Discard(pFree);
}

TEST_F(Block, Remove_EveryPlaceOfThree) {
    for (int place = 0; place < 3; ++place) {
        SCOPED_TRACE(place);
        CZrEnvBlock block("three");
        for (const char *szName : {"a", "b", "c"})
            AddLeaf(block, szName);
        std::vector<CZrEnvElement *> expected = Sequence(block);
        CZrEnvElement *pGone = expected[static_cast<std::size_t>(place)];
        CZrEnvElement *pSucc = pGone->GetSuccElem();
        expected.erase(expected.begin() + place);
        EXPECT_TRUE(block.RemoveElement(pGone, false));
        EXPECT_EQ(expected, Sequence(block));
        EXPECT_EQ(nullptr, pGone->GetParent());
        EXPECT_EQ(pSucc, pGone->GetSuccElem());
        EXPECT_EQ(nullptr, block.GetElement(pGone->GetName(), 1));
        EXPECT_TRUE(BlockIsSound(block));
        AddLeaf(block, "d");
        EXPECT_TRUE(BlockIsSound(block));
        EXPECT_STREQ("d", Sequence(block).back()->GetName());
        Discard(pGone);
    }
}

TEST_F(Block, Remove_OnlyChildLeavesTheBlockUsable) {
    CZrEnvDataElement *pOnly = Leaf("a");
    EXPECT_TRUE(m_block.RemoveElement(pOnly, true));
    EXPECT_EQ(nullptr, m_block.GetFirstElement());
    EXPECT_EQ(0u, m_block.GetElemCount());
    EXPECT_EQ(nullptr, m_block.GetElement("a", 1));
    Leaf("b");
    EXPECT_EQ("b", Describe(m_block));
}

TEST_F(Block, Remove_TwiceIsForeign) {
    CZrEnvDataElement *pLeaf = Leaf("a");
    EXPECT_TRUE(m_block.RemoveElement(pLeaf, false));
    EXPECT_FALSE(m_block.RemoveElement(pLeaf, false));
    EXPECT_EQ(Reports{Message("ZrEnvBlock", foreignOnRemove)}, m_reports.Take());
    Discard(pLeaf);
}

TEST_F(Block, Remove_DestroysOnlyWhenAsked) {
    Obituary deaths;
    Mortal<CZrEnvBlock> *pTree = NewMortalBlock(deaths, "tree");
    ASSERT_TRUE(pTree->InsertElement(NewMortalLeaf(deaths, "leaf")));
    ASSERT_TRUE(m_block.InsertElement(pTree));
    EXPECT_TRUE(m_block.RemoveElement(pTree, false));
    EXPECT_EQ(Obituary{}, deaths);
    ASSERT_TRUE(m_block.InsertElement(pTree));
    EXPECT_TRUE(m_block.RemoveElement(pTree, true));
    std::sort(deaths.begin(), deaths.end());
    EXPECT_EQ((Obituary{"leaf", "tree"}), deaths);
}

TEST_F(Block, Remove_CopyOfAChildIsNotInTheIndex) {
    CZrEnvDataElement *pLeaf = Leaf("a");
    OpenLeaf view(*pLeaf);
    EXPECT_FALSE(m_block.RemoveElement(&view, false));
    EXPECT_EQ(&m_block, view.GetParent());
    EXPECT_EQ(1u, m_block.GetElemCount());
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Block, Remove_MiddleNamesakeClosesTheNumbers) {
    CZrEnvDataElement *pFirst = Leaf("a");
    CZrEnvDataElement *pSecond = Leaf("a");
    CZrEnvDataElement *pThird = Leaf("a");
    EXPECT_TRUE(m_block.RemoveElement(pSecond, true));
    EXPECT_EQ(pFirst, m_block.GetElement("a", 1));
    EXPECT_EQ(pThird, m_block.GetElement("a", 2));
    EXPECT_EQ(nullptr, m_block.GetElement("a", 3));
}

// Replacement

TEST_F(Block, Replace_NullAndIdenticalAreRefused) {
    CZrEnvDataElement *pOld = Leaf("a");
    CZrEnvDataElement *pNew = NewLeaf("n");
    EXPECT_FALSE(m_block.ReplaceElement(nullptr, pNew));
    EXPECT_FALSE(m_block.ReplaceElement(pOld, nullptr));
    EXPECT_FALSE(m_block.ReplaceElement(nullptr, nullptr));
    EXPECT_FALSE(m_block.ReplaceElement(pOld, pOld));
    EXPECT_EQ(nullptr, pNew->GetParent());
    EXPECT_EQ("a", Describe(m_block));
    Discard(pNew);
}

TEST_F(Block, Replace_ForeignIsRefused) {
    Leaf("a");
    CZrEnvBlock other("other");
    CZrEnvDataElement *pForeign = AddLeaf(other, "x");
    CZrEnvDataElement *pNew = NewLeaf("n");
    EXPECT_FALSE(m_block.ReplaceElement(pForeign, pNew));
    EXPECT_EQ(Reports{Message("ZrEnvBlock", foreignOnReplace)}, m_reports.Take());
    EXPECT_EQ(nullptr, pNew->GetParent());
    EXPECT_EQ("x", Describe(other));
    EXPECT_EQ("a", Describe(m_block));
    Discard(pNew);
}

TEST_F(Block, Replace_ByAChildOfAnotherBlock) {
    CZrEnvDataElement *pOld = Leaf("a");
    CZrEnvBlock other("other");
    CZrEnvDataElement *pX = AddLeaf(other, "x");
    AddLeaf(other, "y");
    EXPECT_TRUE(m_block.ReplaceElement(pOld, pX));
    EXPECT_EQ("x", Describe(m_block));
    EXPECT_EQ("y", Describe(other));
    EXPECT_TRUE(BlockIsSound(other));
}

TEST_F(Block, Replace_BySiblingsOnEitherSide) {
    for (const std::size_t place : {0u, 1u, 3u, 4u}) {
        SCOPED_TRACE(place);
        CZrEnvBlock block("five");
        for (const char *szName : {"a", "b", "c", "d", "e"})
            AddLeaf(block, szName);
        std::vector<CZrEnvElement *> expected = Sequence(block);
        CZrEnvElement *pOld = expected[2], *pNew = expected[place];
        expected[2] = pNew;
        expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(place));
        EXPECT_TRUE(block.ReplaceElement(pOld, pNew));
        EXPECT_EQ(expected, Sequence(block)) << "it leaves its old place";
        EXPECT_TRUE(BlockIsSound(block));
    }
}

TEST_F(Block, Replace_EveryPlaceOfThree) {
    const char *const expected[] = {"n b c", "a n c", "a b n"};
    for (std::size_t place = 0; place < 3; ++place) {
        SCOPED_TRACE(place);
        Obituary deaths;
        CZrEnvBlock block("three");
        for (const char *szName : {"a", "b", "c"})
            ASSERT_TRUE(block.InsertElement(NewMortalLeaf(deaths, szName)));
        CZrEnvElement *pOld = Sequence(block)[place];
        const Obituary gone{pOld->GetName()};
        CZrEnvDataElement *pNew = NewLeaf("n");
        EXPECT_TRUE(block.ReplaceElement(pOld, pNew));
        EXPECT_EQ(gone, deaths);
        EXPECT_EQ(expected[place], Describe(block));
        EXPECT_EQ(&block, pNew->GetParent());
        EXPECT_TRUE(BlockIsSound(block));
    }
}

TEST_F(Block, Replace_OnlyChildWithItsSubtree) {
    Obituary deaths;
    CZrEnvBlock *pOld = NewMortalBlock(deaths, "old");
    ASSERT_TRUE(pOld->InsertElement(NewMortalLeaf(deaths, "leaf")));
    ASSERT_TRUE(m_block.InsertElement(pOld));
    EXPECT_TRUE(m_block.ReplaceElement(pOld, NewLeaf("old")));
    EXPECT_EQ(2u, deaths.size());
    EXPECT_EQ("old", Describe(m_block));
}

TEST_F(Block, Replace_RemovedElementGetsTheOldLink) {
    CZrEnvDataElement *pA = Leaf("a");
    Leaf("b");
    CZrEnvDataElement *pC = Leaf("c");
    ASSERT_TRUE(m_block.RemoveElement(pA, false));
    EXPECT_TRUE(m_block.ReplaceElement(pC, pA)); // its link still leads to b
    EXPECT_EQ("b a", Describe(m_block));
}

TEST_F(Block, Replace_FirstOfThreeNamesakesBecomesNumberThree) {
    CZrEnvDataElement *pFirst = Leaf("a");
    CZrEnvDataElement *pSecond = Leaf("a");
    CZrEnvDataElement *pThird = Leaf("a");
    CZrEnvDataElement *pNew = NewLeaf("a");
    EXPECT_TRUE(m_block.ReplaceElement(pFirst, pNew));
    EXPECT_EQ((std::vector<CZrEnvElement *>{pNew, pSecond, pThird}), Sequence(m_block));
    EXPECT_EQ(pSecond, m_block.GetElement("a", 1));
    EXPECT_EQ(pThird, m_block.GetElement("a", 2));
    EXPECT_EQ(pNew, m_block.GetElement("a", 3));
}

TEST_F(Block, Replace_CopyOfAChildLeavesTheNewOneUnlinked) {
    CZrEnvDataElement *pLeaf = Leaf("a");
    CZrEnvDataElement *pNew = NewLeaf("n");
    EXPECT_TRUE(m_block.ReplaceElement(new OpenLeaf(*pLeaf), pNew));
    EXPECT_EQ("a", Describe(m_block));
    EXPECT_EQ(&m_block, pNew->GetParent());
    EXPECT_EQ(pNew, m_block.GetElement("n", 1));
    EXPECT_EQ(2u, m_block.GetElemCount());
    EXPECT_TRUE(m_block.RemoveElement(pNew, true));
    EXPECT_STREQ("a", pLeaf->GetName()) << "the copy owned nothing";
}

// Renaming

TEST_F(Block, Rename_OnlyChildIsClean) {
    CZrEnvDataElement *pLeaf = Leaf("m");
    for (const char *szName : {"a", "z", "0", "m"}) {
        EXPECT_TRUE(pLeaf->SetName(szName));
        EXPECT_EQ(1u, m_block.GetElemCount());
        EXPECT_EQ(pLeaf, m_block.GetElement(szName, 1));
    }
}

TEST_F(Block, Rename_RefusedChangesNothing) {
    CZrEnvDataElement *pFirst = Leaf("a");
    Leaf("a");
    EXPECT_FALSE(pFirst->SetName("a=b"));
    EXPECT_FALSE(pFirst->SetName(""));
    EXPECT_FALSE(pFirst->SetName(nullptr));
    EXPECT_EQ(pFirst, m_block.GetElement("a", 1)) << "not even its number";
}

TEST_F(Block, Rename_ToTheSameNameMovesBehindTheNamesakes) {
    CZrEnvDataElement *pFirst = Leaf("a");
    CZrEnvDataElement *pSecond = Leaf("a");
    EXPECT_TRUE(pFirst->SetName("a"));
    EXPECT_EQ(pSecond, m_block.GetElement("a", 1));
    EXPECT_EQ(pFirst, m_block.GetElement("a", 2));
    EXPECT_EQ((std::vector<CZrEnvElement *>{pFirst, pSecond}), Sequence(m_block));
    EXPECT_EQ(2u, m_block.GetElemCount());
}

TEST_F(Block, Rename_BetweenTheSameNeighboursIsClean) {
    Leaf("a");
    CZrEnvDataElement *pMiddle = Leaf("m");
    Leaf("z");
    for (const char *szName : {"b", "y", "n"}) {
        EXPECT_TRUE(pMiddle->SetName(szName));
        EXPECT_EQ(3u, m_block.GetElemCount());
        EXPECT_TRUE(BlockIsSound(m_block));
    }
}

// The entry that the rename left behind stands between c and the search for it.
TEST_F(Block, Rename_MayHideASibling_WhichThenStays) {
    m_endsSound = false;
    for (const char *szName : {"a", "b", "c", "d", "e"})
        Leaf(szName);
    CZrEnvElement *pC = m_block.GetElement("c", 1);
    EXPECT_TRUE(m_block.GetElement("d", 1)->SetName("0"));
    CZrEnvBlock other("other");
    CZrEnvElement *pX = AddLeaf(other, "x");
    EXPECT_FALSE(m_block.RemoveElement(pC, true));
    EXPECT_FALSE(other.InsertElement(pC));
    EXPECT_FALSE(other.InsertElementBefore(pC, pX));
    EXPECT_FALSE(other.ReplaceElement(pX, pC));
    EXPECT_EQ("a b c 0 e", Describe(m_block));
    EXPECT_EQ(&m_block, pC->GetParent());
    EXPECT_EQ("x", Describe(other));
    EXPECT_TRUE(BlockIsSound(other));
    EXPECT_EQ("", Zr::CZrEnvTreeCheck::OfBlock(m_block, Zr::CZrEnvTreeCheck::Indexes::AsTheyAre).what);
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Block, NameChanged_NullAndForeignDoNothing) {
    CZrEnvDataElement *pFirst = Leaf("a");
    Leaf("a");
    CZrEnvBlock other("other");
    CZrEnvDataElement *pForeign = AddLeaf(other, "a");
    CZrEnvDataElement *pFree = NewLeaf("a");
    m_block.ElemNameChanged(nullptr);
    m_block.ElemNameChanged(pForeign);
    m_block.ElemNameChanged(pFree);
    EXPECT_EQ(2u, m_block.GetElemCount());
    EXPECT_EQ(pFirst, m_block.GetElement("a", 1));
    EXPECT_EQ(Reports{}, m_reports.Take());
    Discard(pFree);
}

TEST_F(Block, NameChanged_MovesBehindTheNamesakes) {
    CZrEnvDataElement *pFirst = Leaf("a");
    CZrEnvDataElement *pSecond = Leaf("a");
    m_block.ElemNameChanged(pFirst);
    EXPECT_EQ(pSecond, m_block.GetElement("a", 1));
    EXPECT_EQ(pFirst, m_block.GetElement("a", 2));
}

// Look-up

TEST_F(Block, Find_ComparesWholeNamesByByte) {
    CZrEnvDataElement *pLower = Leaf("a");
    CZrEnvDataElement *pUpper = Leaf("A");
    CZrEnvDataElement *pLonger = Leaf("ab");
    CZrEnvDataElement *pUmlaut = Leaf("\xE4");
    CZrEnvDataElement *pCapital = Leaf("\xC4");
    EXPECT_EQ(pLower, m_block.GetElement("a", 1));
    EXPECT_EQ(pUpper, m_block.GetElement("A", 1));
    EXPECT_EQ(pLonger, m_block.GetElement("ab", 1));
    EXPECT_EQ(pUmlaut, m_block.GetElement("\xE4", 1));
    EXPECT_EQ(pCapital, m_block.GetElement("\xC4", 1));
    EXPECT_EQ(nullptr, m_block.GetElement("abc", 1));
    EXPECT_EQ(nullptr, m_block.GetElement("a ", 1));
    EXPECT_EQ(1u, m_block.GetElemCount("a"));
}

TEST_F(Block, Find_RefusedNamesAreNotThere) {
    Leaf("a");
    ASSERT_TRUE(m_block.InsertElement(new CZrEnvSection("a=b"))); // the only way to have such a name in a block
    for (const char *szName : {static_cast<const char *>(nullptr), "", "=", "a=b"}) {
        EXPECT_EQ(nullptr, m_block.GetElement(szName, 1));
        EXPECT_EQ(nullptr, m_block.GetDataElement(szName, 1));
        EXPECT_EQ(nullptr, m_block.GetBlock(szName, 1));
        EXPECT_EQ(0u, m_block.GetElemCount(szName));
    }
    EXPECT_EQ(2u, m_block.GetElemCount());
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Block, Find_OverLongNames) {
    for (std::size_t length : longLengths) {
        const std::string name(length, 'n');
        EXPECT_EQ(nullptr, m_block.GetElement(name.c_str(), 1));
        CZrEnvDataElement *pLeaf = Leaf(name.c_str());
        EXPECT_EQ(pLeaf, m_block.GetElement(name.c_str(), 1));
        EXPECT_EQ(1u, m_block.GetElemCount(name.c_str()));
        EXPECT_EQ(nullptr, m_block.GetElement((name + "n").c_str(), 1));
    }
}

TEST_F(Block, Find_InAnEmptyBlock) {
    EXPECT_EQ(nullptr, m_block.GetElement("a", 1));
    EXPECT_EQ(0u, m_block.GetElemCount("a"));
    EXPECT_EQ(0u, m_block.GetElemCount());
    EXPECT_EQ(nullptr, m_block.GetFirstElement());
}

TEST_F(Block, Find_ManyNames) {
    std::vector<CZrEnvElement *> leaves;
    for (int i = 0; i < 2000; ++i)
        leaves.push_back(Leaf(("n" + std::to_string(i * 7919 % 2000)).c_str()));
    for (int i = 0; i < 2000; ++i)
        EXPECT_EQ(leaves[static_cast<std::size_t>(i)],
                  m_block.GetElement(("n" + std::to_string(i * 7919 % 2000)).c_str(), 1));
    for (std::size_t i = 0; i < leaves.size(); i += 2)
        EXPECT_TRUE(m_block.RemoveElement(leaves[i], true));
    EXPECT_EQ(1000u, m_block.GetElemCount());
}

TEST_F(Block, Next_DoesNotAskTheBlock) {
    CZrEnvBlock other("other");
    CZrEnvDataElement *pX = AddLeaf(other, "x");
    CZrEnvDataElement *pY = AddLeaf(other, "y");
    EXPECT_EQ(pY, m_block.GetNextElement(pX));
    EXPECT_EQ(nullptr, m_block.GetNextElement(pY));
    EXPECT_EQ(nullptr, m_block.GetNextElement(nullptr));
}

TEST_F(Block, Lists_AppendWithoutClearing) {
    CZrEnvDataElement *pA = Leaf("b");
    CZrEnvDataElement *pB = Leaf("a");
    std::vector<CZrEnvElement *> elems{pB};
    m_block.GetElems(elems);
    EXPECT_EQ((std::vector<CZrEnvElement *>{pB, pA, pB}), elems);
    std::vector<std::string> names{"before"};
    m_block.GetElemNames(names);
    EXPECT_EQ((std::vector<std::string>{"before", "b", "a"}), names);
    CZrEnvBlock empty("empty");
    empty.GetElems(elems);
    empty.GetElemNames(names);
    EXPECT_EQ(3u, elems.size());
    EXPECT_EQ(3u, names.size());
}

// Whatever a block does, its environment's last error is no matter of it.
TEST(BlockLastError, IsNotTouched) {
    const Zr::EZrEnvError untouched = Zr::ENV_EMPTY_PATH;
    EnvPtr env = NewEnv();
    CZrEnvSection *pSection = env->InsertSection("S");
    env->SetLastError(untouched);
    CZrEnvDataElement *pA = AddLeaf(*pSection, "a");
    EXPECT_TRUE(pSection->InsertElementBefore(NewLeaf("b"), pA));
    EXPECT_FALSE(pSection->InsertElement(pA));
    EXPECT_FALSE(pA->SetName("="));
    EXPECT_TRUE(pA->SetName("c"));
    EXPECT_EQ(nullptr, pSection->GetElement("missing", 1));
    EXPECT_EQ(pA, pSection->GetElement("c", 1));
    EXPECT_TRUE(pSection->ReplaceElement(pA, NewLeaf("d")));
    CZrEnvBlock foreign("foreign");
    EXPECT_FALSE(pSection->RemoveElement(&foreign, false));
    EXPECT_TRUE(pSection->RemoveElement(pSection->GetFirstElement(), true));
    EXPECT_EQ(untouched, env->GetLastError());
}

// Copies

TEST(ElementCopy, Leaf_SharesTextsAndLinks) {
    CZrEnvBlock block("block");
    CZrEnvDataElement *pFirst = AddLeaf(block, "a", "value");
    CZrEnvDataElement *pSecond = AddLeaf(block, "b", "other");
    {
        OpenLeaf view(*pFirst);
        EXPECT_EQ(pFirst->GetName(), view.GetName());
        EXPECT_EQ(pFirst->GetString(), view.GetString());
        EXPECT_EQ(&block, view.GetParent());
        EXPECT_EQ(pSecond, view.GetSuccElem());
        OpenLeaf viewOfView(view);
        EXPECT_EQ(pFirst->GetName(), viewOfView.GetName());
        OpenLeaf assigned("before", "its own value");
        assigned = view;
        EXPECT_EQ(pFirst->GetString(), assigned.GetString());
        EXPECT_EQ(pSecond, assigned.GetSuccElem());
        view = static_cast<const OpenLeaf &>(view); // to itself
        EXPECT_STREQ("a", view.GetName());
    }
    EXPECT_STREQ("a", pFirst->GetName());
    EXPECT_STREQ("value", pFirst->GetString());
    EXPECT_TRUE(BlockIsSound(block));
}

TEST(ElementCopy, Block_SharesTheChildren) {
    Obituary deaths;
    CZrEnvBlock block("block");
    CZrEnvElement *pB = NewMortalLeaf(deaths, "b");
    CZrEnvElement *pA = NewMortalLeaf(deaths, "a");
    ASSERT_TRUE(block.InsertElement(pB));
    ASSERT_TRUE(block.InsertElement(pA));
    {
        CZrEnvBlock view(block);
        EXPECT_EQ(block.GetName(), view.GetName());
        EXPECT_EQ(pB, view.GetFirstElement());
        EXPECT_EQ(2u, view.GetElemCount());
        EXPECT_EQ(pA, view.GetElement("a", 1));
        EXPECT_EQ(1u, view.GetElemCount("b"));
        CZrEnvBlock assigned("before");
        assigned = view;
        EXPECT_EQ(pB, assigned.GetFirstElement());
        EXPECT_EQ(pA, assigned.GetElement("a", 1));
        EXPECT_EQ("b a", Describe(assigned));
    }
    EXPECT_EQ(Obituary{}, deaths);
    EXPECT_TRUE(BlockIsSound(block));
}

TEST(ElementCopy, Section_SharesTheEnvironment) {
    EnvPtr env = NewEnv();
    CZrEnvSection *pFirst = env->InsertSection("S");
    CZrEnvSection *pSecond = env->InsertSection("T");
    AddLeaf(*pFirst, "a");
    {
        CZrEnvSection view(*pFirst);
        EXPECT_EQ(env.get(), view.GetEnv());
        EXPECT_EQ(pSecond, view.GetSuccElem());
        EXPECT_EQ("a", Describe(view));
        CZrEnvSection assigned("before");
        assigned = *pSecond;
        EXPECT_EQ(env.get(), assigned.GetEnv());
        EXPECT_STREQ("T", assigned.GetName());
    }
    EXPECT_TRUE(EnvIsSound(*env));
}

// Ends

TEST(ElementEnd, Block_EndsItsChildrenFromTheHead) {
    Obituary deaths;
    {
        CZrEnvBlock block("block");
        for (const char *szName : {"c", "a", "b"})
            ASSERT_TRUE(block.InsertElement(NewMortalLeaf(deaths, szName)));
    }
    EXPECT_EQ((Obituary{"c", "a", "b"}), deaths);
}

TEST(ElementEnd, NestedDerivedBlocks_EndOnce) {
    Obituary deaths;
    {
        CZrEnvBlock root("root");
        CZrEnvBlock *pBlock = &root;
        for (int level = 0; level < 50; ++level) {
            CZrEnvBlock *pInner = level % 3 ? NewMortalBlock(deaths, "block") : NewBlock("plain");
            ASSERT_TRUE(pBlock->InsertElement(NewMortalLeaf(deaths, "leaf")));
            ASSERT_TRUE(pBlock->InsertElement(pInner));
            ASSERT_TRUE(pBlock->InsertElement(new PlainElement("own kind")));
            pBlock = pInner;
        }
    }
    EXPECT_EQ(50, std::count(deaths.begin(), deaths.end(), "leaf"));
    EXPECT_EQ(33, std::count(deaths.begin(), deaths.end(), "block"));
    EXPECT_EQ(83u, deaths.size());
}

TEST(ElementEnd, StackChild_RemovedBeforeItsParentEnds) {
    OpenLeaf leaf("leaf", "value");
    CZrEnvBlock block("block");
    ASSERT_TRUE(block.InsertElement(&leaf));
    EXPECT_TRUE(block.RemoveElement(&leaf, false));
    EXPECT_STREQ("value", leaf.GetString());
}

TEST(ElementEnd, DeleteOfDetachedElements) {
    Obituary deaths;
    delete NewBlock("block");
    delete new CZrEnvSection("section");
    delete new PlainElement("plain");
    delete new OpenLeaf("leaf", "value");
    delete NewMortalLeaf(deaths, "leaf");
    CZrEnvBlock *pDerived = NewMortalBlock(deaths, "block");
    ASSERT_TRUE(pDerived->InsertElement(NewLeaf("inner")));
    delete pDerived;
    EXPECT_EQ((Obituary{"leaf", "block"}), deaths);
    delete static_cast<CZrEnvBlock *>(nullptr);
}

TEST(ElementEnd, EveryFormOfNew) {
    Obituary deaths;
    CZrEnvBlock *pBlock = new (std::nothrow) Mortal<CZrEnvBlock>(deaths, "nothrow");
    ASSERT_NE(nullptr, pBlock);
    delete pBlock;
    alignas(CZrEnvSection) std::byte place[sizeof(CZrEnvSection)];
    CZrEnvSection *pPlaced = new (place) CZrEnvSection("placed");
    EXPECT_EQ(static_cast<void *>(place), pPlaced);
    AddLeaf(*pPlaced, "leaf");
    pPlaced->~CZrEnvSection();
    EXPECT_EQ(Obituary{"nothrow"}, deaths);
}

// The element is not the first base, so its address is not that of the allocation. The compiler takes the call of the
// deleting operator for a release of that address.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wfree-nonheap-object"
#endif
class Extra {
public:
    virtual ~Extra() = default;
    std::string m_text = std::string(100, 't');
};

class LeafWithExtra : public Extra, public CZrEnvDataElement {
public:
    explicit LeafWithExtra(const char *szName) : CZrEnvDataElement(szName, "value") {}
    LeafWithExtra(const LeafWithExtra &) = delete;
    LeafWithExtra &operator=(const LeafWithExtra &) = delete;
    ~LeafWithExtra() override = default;
};

class BlockWithExtra : public Extra, public CZrEnvBlock {
public:
    explicit BlockWithExtra(const char *szName) : CZrEnvBlock(szName) {}
    BlockWithExtra(const BlockWithExtra &) = delete;
    BlockWithExtra &operator=(const BlockWithExtra &) = delete;
    ~BlockWithExtra() override = default;
};

#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

TEST(ElementEnd, ElementsThatAreNotTheFirstBase) {
    CZrEnvBlock root("root");
    BlockWithExtra *pBlock = new BlockWithExtra("block");
    ASSERT_TRUE(root.InsertElement(pBlock));
    ASSERT_TRUE(pBlock->InsertElement(new LeafWithExtra("leaf")));
    LeafWithExtra *pLeaf = new LeafWithExtra("leaf");
    ASSERT_TRUE(root.InsertElement(pLeaf));
    EXPECT_TRUE(root.RemoveElement(pLeaf, true));
    delete new LeafWithExtra("free");
    delete static_cast<CZrEnvBlock *>(new BlockWithExtra("free"));
    EXPECT_TRUE(TreeIsSound(root));
}

// A derived class with storage of its own gets its storage back.
class Pooled : public CZrEnvBlock {
public:
    explicit Pooled(const char *szName) : CZrEnvBlock(szName) {}
    Pooled(const Pooled &) = delete;
    Pooled &operator=(const Pooled &) = delete;
    ~Pooled() override = default;

    static void *operator new(std::size_t size) {
        ++living;
        return std::malloc(size);
    }
    static void operator delete(void *p) {
        --living;
        std::free(p);
    }

    static inline int living = 0;
};

TEST(ElementEnd, DerivedStorageIsGivenBackToItsClass) {
    {
        CZrEnvBlock root("root");
        ASSERT_TRUE(root.InsertElement(new Pooled("a")));
        CZrEnvElement *pSecond = new Pooled("b");
        ASSERT_TRUE(root.InsertElement(pSecond));
        EXPECT_EQ(2, Pooled::living);
        EXPECT_TRUE(root.RemoveElement(pSecond, true));
        EXPECT_EQ(1, Pooled::living);
    }
    EXPECT_EQ(0, Pooled::living);
}

// Elements of a text that was read

const char *const modelText = "[S]\n  a =1\n  b ={\n    c =2\n    d ={\n      e =3\n    }\n  }\n  a =4\n[T]\n  f =5\n";

TEST(ElementOfText, OutlivesItsEnvironment) {
    CZrEnvElement *pLeaf = nullptr, *pBlock = nullptr;
    {
        EnvPtr env = NewEnv();
        ASSERT_EQ(Zr::ENV_OK, env->ReadString(modelText, eEnvReadAuto));
        CZrEnvSection *pSection = env->GetSection("S");
        ASSERT_NE(nullptr, pSection);
        pLeaf = pSection->GetElement("a", 1);
        pBlock = pSection->GetElement("b", 1);
        ASSERT_TRUE(pSection->RemoveElement(pLeaf, false));
        ASSERT_TRUE(pSection->RemoveElement(pBlock, false));
        EXPECT_TRUE(EnvIsSound(*env));
    }
    EXPECT_STREQ("a", pLeaf->GetName());
    EXPECT_STREQ("1", pLeaf->ToEnvDataElement()->GetString());
    EXPECT_EQ("c=2 d{e=3}", Describe(*pBlock->ToEnvBlock()));

    EnvPtr other = NewEnv();
    CZrEnvSection *pSection = other->InsertSection("other");
    ASSERT_TRUE(pSection->InsertElement(pBlock));
    ASSERT_TRUE(pSection->InsertElement(pLeaf));
    EXPECT_EQ("b{c=2 d{e=3}} a=1", Describe(*pSection));
    EXPECT_EQ(other.get(), pLeaf->GetEnv());
    EXPECT_TRUE(pLeaf->SetName("a much longer name than the one that was read"));
    EXPECT_EQ(Zr::ENV_OK, other->SetString("other", "b@d@e", "a longer value than the one that was read"));
    EXPECT_TRUE(EnvIsSound(*other));
}

TEST(ElementOfText, CanBeDeletedAfterItsEnvironment) {
    CZrEnvElement *pBlock = nullptr;
    {
        EnvPtr env = NewEnv();
        ASSERT_EQ(Zr::ENV_OK, env->ReadString(modelText, eEnvReadAuto));
        pBlock = env->GetElement("S", "b@d", true, false);
        ASSERT_TRUE(pBlock->GetParent()->RemoveElement(pBlock, false));
    }
    delete pBlock->ToEnvBlock();
}

TEST(ElementOfText, EveryChangeOfPlace) {
    EnvPtr env = NewEnv();
    ASSERT_EQ(Zr::ENV_OK, env->ReadString(modelText, eEnvReadAuto));
    CZrEnvSection *pSection = env->GetSection("S");
    CZrEnvElement *pSecond = pSection->GetElement("a", 2);
    ASSERT_TRUE(pSection->RemoveElement(pSecond, false));
    ASSERT_TRUE(pSection->InsertElementBefore(pSecond, pSection->GetFirstElement()));
    EXPECT_EQ("a=4 a=1 b{c=2 d{e=3}}", Describe(*pSection));
    EXPECT_EQ(pSecond, pSection->GetElement("a", 1));
    ASSERT_TRUE(pSection->ReplaceElement(pSection->GetElement("b", 1), NewLeaf("b")));
    EXPECT_EQ("a=4 a=1 b", Describe(*pSection));
    ASSERT_TRUE(pSection->RemoveElement(pSecond, true));
    EXPECT_TRUE(EnvIsSound(*env));
    env->DeleteSection(pSection);
    EXPECT_EQ("[T]f=5", Describe(*env));
    EXPECT_TRUE(EnvIsSound(*env));
}

TEST(ElementOfText, CopiesAreViews) {
    EnvPtr env = NewEnv();
    ASSERT_EQ(Zr::ENV_OK, env->ReadString(modelText, eEnvReadAuto));
    {
        CZrEnvSection section(*env->GetSection("S"));
        EXPECT_EQ("a=1 b{c=2 d{e=3}} a=4", Describe(section));
        OpenLeaf leaf(*env->GetDataElement("S", "a", true, false));
        EXPECT_STREQ("1", leaf.GetString());
        CZrEnvBlock block(*env->GetBlock("S", "b", true, false));
        EXPECT_EQ("c=2 d{e=3}", Describe(block));
    }
    EXPECT_TRUE(EnvIsSound(*env));
}

// Depth

const int million = 1000000;

CZrEnvBlock *BuildDeep(CZrEnvBlock &root, int levels) {
    CZrEnvBlock *pBlock = &root;
    for (int level = 0; level < levels; ++level) {
        CZrEnvBlock *pInner = NewBlock("b");
        if (!pBlock->InsertElement(pInner))
            return nullptr;
        pBlock = pInner;
    }
    return pBlock;
}

TEST(ElementDepth, AMillionLevels_BuiltAndEnded) {
    EnvPtr env = NewEnv(5);
    CZrEnvBlock *pDeepest = BuildDeep(*env->InsertSection("S"), million);
    ASSERT_NE(nullptr, pDeepest);
    CZrEnvDataElement *pLeaf = AddLeaf(*pDeepest, "leaf");
    EXPECT_EQ(env.get(), pLeaf->GetEnv());
}

TEST(ElementDepth, AMillionLevels_LinkedFromBelow) {
    CZrEnvBlock *pBlock = NewBlock("b");
    for (int level = 1; level < million; ++level) {
        CZrEnvBlock *pOuter = NewBlock("b");
        ASSERT_TRUE(pOuter->InsertElement(pBlock));
        pBlock = pOuter;
    }
    delete pBlock;
}

TEST(ElementDepth, AMillionLevels_CopiedByWalking) {
    CZrEnvBlock source("source"), target("target");
    ASSERT_NE(nullptr, BuildDeep(source, million));
    CZrEnvBlock *pFrom = &source, *pTo = &target;
    int levels = 0;
    while (pFrom->GetFirstElement()) {
        pFrom = pFrom->GetFirstElement()->ToEnvBlock();
        CZrEnvBlock *pCopy = NewBlock(pFrom->GetName());
        ASSERT_TRUE(pTo->InsertElement(pCopy));
        pTo = pCopy;
        ++levels;
    }
    EXPECT_EQ(million, levels);
    EXPECT_TRUE(target.RemoveElement(target.GetFirstElement(), true));
    EXPECT_EQ(nullptr, target.GetFirstElement());
}

TEST(ElementDepth, AMillionLevels_Replaced) {
    CZrEnvBlock root("root");
    CZrEnvBlock *pTop = AddBlock(root, "top");
    ASSERT_NE(nullptr, BuildDeep(*pTop, million));
    EXPECT_TRUE(root.ReplaceElement(pTop, NewLeaf("top")));
    EXPECT_EQ("top", Describe(root));
}

TEST(ElementDepth, DerivedBlocks_AMillionLevels) {
    Obituary deaths;
    deaths.reserve(million);
    {
        CZrEnvBlock root("root");
        CZrEnvBlock *pBlock = &root;
        for (int level = 0; level < million; ++level) {
            CZrEnvBlock *pInner = NewMortalBlock(deaths, "b");
            ASSERT_TRUE(pBlock->InsertElement(pInner));
            pBlock = pInner;
        }
    }
    EXPECT_EQ(static_cast<std::size_t>(million), deaths.size());
}

// A class of a caller whose constructor fails when the library's part of the object is there.
class Failing : public CZrEnvBlock {
public:
    Failing() : CZrEnvBlock("failing") { throw 7; }
    Failing(const Failing &) = default;
    Failing &operator=(const Failing &) = default;
};

TEST(DerivedElement, ConstructorThatThrows_GivesTheMemoryBack) {
    const auto make = [] { return new Failing; };
    const auto makeOrNull = [] { return new (std::nothrow) Failing; };
    EXPECT_THROW(make(), int);
    EXPECT_THROW(makeOrNull(), int);
}

} // namespace
} // namespace zr::test
