// The checker of trees: it finds nothing in sound ones, whatever was done to them, and every damage in the others.
#include "env/env_probe.h"
#include "env/tree_checker.h"

#include "env/node_store.h"

#include <utility>

namespace zr::test {
namespace {

using Check = Zr::CZrEnvTreeCheck;
using Fault = Zr::CZrEnvTreeFault;
using Probe = Zr::CZrEnvProbe;
using Indexes = Check::Indexes;

constexpr int many = 40; // children are looked up by an index

// S: a=1  b { c c d }  l { n0 .. n39 n0 }    T:
class TreeCheck : public testing::Test {
protected:
    void SetUp() override {
        m_pSection = m_env->InsertSection("S");
        m_pLeaf = AddLeaf(*m_pSection, "a", "1");
        m_pBlock = AddBlock(*m_pSection, "b");
        m_pFirst = AddLeaf(*m_pBlock, "c");
        m_pSecond = AddLeaf(*m_pBlock, "c");
        m_pThird = AddLeaf(*m_pBlock, "d");
        m_pLarge = AddBlock(*m_pSection, "l");
        for (int i = 0; i < many; ++i)
            AddLeaf(*m_pLarge, ("n" + std::to_string(i)).c_str());
        AddLeaf(*m_pLarge, "n0");
        m_pOther = m_env->InsertSection("T");
    }

    // A damage is told with the block that it is in, in either way of looking, and is gone when it is undone.
    template <class Link>
    void ExpectTold(const char *what, const CZrEnvElement *pWhere, Link &link, Link damage) {
        const Link sound = link;
        link = damage;
        for (const Indexes indexes : {Indexes::AsTheyAre, Indexes::Build}) {
            const Fault fault = Check::OfEnvironment(*m_env, indexes);
            EXPECT_EQ(what, fault.what);
            EXPECT_EQ(pWhere, fault.pWhere);
        }
        link = sound;
        EXPECT_EQ("", What()) << what;
    }

    std::string What(Indexes indexes = Indexes::AsTheyAre) { return Check::OfEnvironment(*m_env, indexes).what; }

    EnvPtr m_env = NewEnv();
    CZrEnvSection *m_pSection = nullptr, *m_pOther = nullptr;
    CZrEnvBlock *m_pBlock = nullptr, *m_pLarge = nullptr;
    CZrEnvDataElement *m_pLeaf = nullptr, *m_pFirst = nullptr, *m_pSecond = nullptr, *m_pThird = nullptr;
};

TEST_F(TreeCheck, SoundTree_HasNoFaultAndIsNotChanged) {
    m_env->SetLastError(Zr::ENV_EMPTY_PATH);
    EXPECT_EQ("", What());
    EXPECT_EQ(nullptr, Probe::Index(*m_pLarge)) << "none was built";
    EXPECT_EQ("", What(Indexes::Build));
    EXPECT_NE(nullptr, Probe::Index(*m_pLarge));
    EXPECT_EQ("", What());
    EXPECT_EQ(Zr::ENV_EMPTY_PATH, m_env->GetLastError());
    EXPECT_EQ("", Check::OfTree(*m_pBlock, Indexes::Build).what);
    EXPECT_EQ("", Check::OfBlock(*m_pSection, Indexes::Build).what);
    EXPECT_EQ("", Check::OfEnvironment(*NewEnv(), Indexes::Build).what);
    EXPECT_FALSE(Fault());
}

TEST_F(TreeCheck, Links_OfASequence) {
    ExpectTold<CZrEnvElement *>("the sequence is a ring", m_pBlock, Probe::Succ(*m_pThird), m_pFirst);
    ExpectTold<CZrEnvElement *>("the sequence is a ring", m_pBlock, Probe::Succ(*m_pThird), m_pThird);
    ExpectTold<CZrEnvElement *>("the sequence is a ring", m_pBlock, Probe::Succ(*m_pThird), m_pSecond);
    ExpectTold<CZrEnvElement *>("another parent stands in child 4", m_pBlock, Probe::Succ(*m_pThird), m_pLeaf);
    ExpectTold<CZrEnvElement *>("the tail is not the last child", m_pBlock, Probe::Succ(*m_pSecond), nullptr);
    ExpectTold<CZrEnvElement *>("the tail is not the last child", m_pBlock, Probe::Last(*m_pBlock), m_pSecond);
    ExpectTold<CZrEnvElement *>("the tail is not the last child", m_pOther, Probe::Last(*m_pOther), m_pSecond);
    ExpectTold<CZrEnvBlock *>("another parent stands in child 2", m_pBlock, Probe::Parent(*m_pSecond), m_pSection);
    ExpectTold<CZrEnvBlock *>("another parent stands in child 2", m_pSection, Probe::Parent(*m_pBlock), nullptr);
    ExpectTold("counts 4 children, has 3", m_pBlock, Probe::Count(*m_pBlock), 4u);
    ExpectTold("counts 2 children, has 3", m_pBlock, Probe::Count(*m_pBlock), 2u);
}

TEST_F(TreeCheck, Kinds_AreNotedInTheFlags) {
    using Store = Zr::CZrEnvNodeStore;
    const char *what = "the wrong kind is noted in child 2";
    ExpectTold<std::uint32_t>(what, m_pBlock, Probe::Flags(*m_pSecond), 0);
    ExpectTold<std::uint32_t>(what, m_pBlock, Probe::Flags(*m_pSecond), Store::KindData | Store::KindBlock);
    ExpectTold<std::uint32_t>(what, m_pSection, Probe::Flags(*m_pBlock), 0);
    ExpectTold<std::uint32_t>(what, m_pSection, Probe::Flags(*m_pBlock), Store::KindBlock | Store::KindSection);
    ExpectTold<std::uint32_t>("no section is section 2", nullptr, Probe::Flags(*m_pOther), Store::KindBlock);
}

TEST_F(TreeCheck, BlockBelowItself) {
    CZrEnvBlock top("top");
    CZrEnvBlock *pBelow = AddBlock(top, "below");
    Probe::Parent(top) = pBelow;
    EXPECT_EQ("", Check::OfTree(top, Indexes::AsTheyAre).what) << "what stands above is not looked at";
    Probe::First(*pBelow) = Probe::Last(*pBelow) = &top;
    Probe::Count(*pBelow) = 1;
    const Fault fault = Check::OfTree(top, Indexes::AsTheyAre);
    EXPECT_EQ("the block stands below itself", fault.what);
    EXPECT_EQ(pBelow, fault.pWhere);
    Probe::First(*pBelow) = Probe::Last(*pBelow) = nullptr;
    Probe::Count(*pBelow) = 0;
    Probe::Parent(top) = nullptr;
}

TEST_F(TreeCheck, Sections_OfAnEnvironment) {
    ExpectTold<CZrEnvElement *>("the list of sections is a ring", nullptr, Probe::Succ(*m_pOther), m_pSection);
    ExpectTold<CZrEnvElement *>("no section is section 3", nullptr, Probe::Succ(*m_pOther), m_pLeaf);
    ExpectTold<CZrEnvBlock *>("another owner stands in section 2", nullptr, Probe::Parent(*m_pOther), m_pBlock);
    ExpectTold("the tail is not the last section", nullptr, Probe::LastSection(*m_env), m_pSection);
    ExpectTold("counts 3 sections, has 2", nullptr, Probe::SectionCount(*m_env), zr_long{3});
    ExpectTold("counts -1 sections, has 2", nullptr, Probe::SectionCount(*m_env), zr_long{-1});
    const EnvPtr stranger = NewEnv();
    Probe::SetEnv(*m_pOther, stranger.get());
    EXPECT_EQ("another owner stands in section 2", What());
    Probe::SetEnv(*m_pOther, m_env.get());

    auto *pInner = new CZrEnvSection("inner");
    ASSERT_TRUE(m_pBlock->InsertElement(pInner));
    EXPECT_EQ("", What());
    Probe::SetEnv(*pInner, m_env.get());
    EXPECT_EQ("an environment, too, holds child 4", What());
    Probe::SetEnv(*pInner, nullptr);
}

// --- Indexes: what the hash form promises

TEST_F(TreeCheck, HashIndex_OfAnotherBlock) {
    CZrEnvBlock twin("twin");
    for (int i = 0; i < many; ++i)
        AddLeaf(twin, ("n" + std::to_string(i)).c_str());
    AddLeaf(twin, "n0");
    ASSERT_NE(nullptr, twin.GetElement("n1", 1));
    ASSERT_NE(nullptr, m_pLarge->GetElement("n1", 1));
    ExpectTold("the index has an entry that is no child with a name", m_pLarge, Probe::Index(*m_pLarge),
               Probe::Index(twin));
}

TEST_F(TreeCheck, HashIndex_EntryMissingOrTooMany) {
    CZrEnvElement *pOne = m_pLarge->GetElement("n1", 1);
    ASSERT_TRUE(Probe::RemoveFromIndex(*m_pLarge, pOne));
    EXPECT_EQ("the index has 40 entries for 41 children with names", What());
    EXPECT_EQ("the index has 40 entries for 41 children with names", What(Indexes::Build));
    Probe::InsertIntoIndex(*m_pLarge, pOne);
    EXPECT_EQ("", What());
    Probe::InsertIntoIndex(*m_pLarge, pOne);
    EXPECT_EQ("the index has 42 entries for 41 children with names", What());
}

TEST_F(TreeCheck, HashIndex_NamesakesOutOfTheirOrder) {
    CZrEnvElement *pFirst = m_pLarge->GetElement("n0", 1);
    ASSERT_TRUE(Probe::RemoveFromIndex(*m_pLarge, pFirst));
    Probe::InsertIntoIndex(*m_pLarge, pFirst);
    const Fault fault = Check::OfEnvironment(*m_env, Indexes::AsTheyAre);
    EXPECT_EQ("a look-up does not find namesake 1 of the name n0", fault.what);
    EXPECT_EQ(m_pLarge, fault.pWhere);
}

TEST_F(TreeCheck, HashIndex_NameChangedBehindItsBack) {
    CZrEnvElement *pOne = m_pLarge->GetElement("n1", 1);
    const_cast<char *>(pOne->GetName())[0] = 'm';
    EXPECT_EQ("a look-up does not find namesake 1 of the name m1", What());
    const_cast<char *>(pOne->GetName())[0] = 'n';
    EXPECT_EQ("", What());
}

TEST_F(TreeCheck, HashIndex_MiscountedOrWithAGroupOfOne) {
    ASSERT_NE(nullptr, m_pLarge->GetElement("n1", 1));
    Zr::CZrEnvNameIndex &index = *Probe::Index(*m_pLarge);
    ExpectTold("the index counts 41 slots in use, has 40 of 64", m_pLarge, Probe::SlotsInUse(index), std::size_t{41});
    Probe::ShrinkGroup(index);
    EXPECT_EQ("the index has a group of fewer than two", What());
}

TEST_F(TreeCheck, HashIndex_OfSections) {
    for (int i = 0; i < many; ++i)
        ASSERT_NE(nullptr, m_env->InsertSection(i % 3 == 0 ? "" : ("s" + std::to_string(i)).c_str()));
    EXPECT_EQ("", What());
    EXPECT_EQ(nullptr, Probe::SectionIndex(*m_env));
    EXPECT_EQ("", What(Indexes::Build));
    ASSERT_NE(nullptr, Probe::SectionIndex(*m_env));
    const_cast<char *>(m_pOther->GetName())[0] = 'U';
    const Fault fault = Check::OfEnvironment(*m_env, Indexes::AsTheyAre);
    EXPECT_EQ("a look-up does not find namesake 1 of the name U", fault.what);
    EXPECT_EQ(nullptr, fault.pWhere);
}

// --- Indexes: what the ordered form promises

class OrderedTreeCheck : public TreeCheck {
protected:
    void SetUp() override {
        TreeCheck::SetUp();
        ASSERT_TRUE(m_pSecond->SetName("c"));
        ASSERT_EQ("", What(Indexes::Build));
    }
};

TEST_F(OrderedTreeCheck, EntryMissingOrTooMany) {
    ASSERT_TRUE(Probe::RemoveFromIndex(*m_pBlock, m_pFirst));
    EXPECT_EQ("the index has entries for other elements than the children", What());
    Probe::InsertIntoIndex(*m_pBlock, m_pFirst);
    EXPECT_EQ("", What());
    Probe::InsertIntoIndex(*m_pBlock, m_pFirst);
    EXPECT_EQ("the index has 4 entries for 3 children", What());
    ASSERT_TRUE(Probe::RemoveFromIndex(*m_pBlock, m_pFirst));
    EXPECT_EQ("", What());
    Probe::InsertIntoIndex(*m_pBlock, m_pLeaf);
    EXPECT_EQ("the index has entries for other elements than the children", What());
    ASSERT_TRUE(Probe::RemoveFromIndex(*m_pBlock, m_pLeaf));
}

TEST_F(OrderedTreeCheck, NameChangedBehindItsBack) {
    const_cast<char *>(m_pFirst->GetName())[0] = 'z';
    EXPECT_EQ("the index is not in the order of the names", What());
    EXPECT_EQ(m_pBlock, Check::OfEnvironment(*m_env, Indexes::Build).pWhere);
}

TEST_F(OrderedTreeCheck, EntryLeftBehindByARename_IsNoFault) {
    CZrEnvBlock block("block");
    AddLeaf(block, "a");
    CZrEnvDataElement *pB = AddLeaf(block, "b");
    ASSERT_TRUE(pB->SetName("0"));
    ASSERT_EQ(3u, block.GetElemCount());
    EXPECT_EQ("", Check::OfBlock(block, Indexes::Build).what);
    ASSERT_TRUE(pB->SetName("b"));
    EXPECT_EQ("", Check::OfBlock(block, Indexes::Build).what);
    Probe::RemoveFromIndex(block, block.GetFirstElement());
    EXPECT_EQ("the index has entries for other elements than the children", Check::OfBlock(block, Indexes::Build).what);
    Probe::InsertIntoIndex(block, block.GetFirstElement());
}

TEST_F(OrderedTreeCheck, SoundBlocksOfAnyKind_DoNotEndTheLook) {
    const auto expectLookBehind = [this] {
        ExpectTold("counts 1 children, has 0", m_pOther, Probe::Count(*m_pOther), 1u);
    };
    expectLookBehind(); // an ordered index in front
    AddBlock(*m_pLarge, "empty");
    ASSERT_TRUE(m_pThird->SetName("0"));
    ASSERT_EQ(4u, m_pBlock->GetElemCount()) << "an entry is left behind";
    expectLookBehind();
    const CZrEnvBlock source("source");
    ASSERT_TRUE(m_pSection->InsertElement(new CZrEnvBlock(source))) << "a view";
    expectLookBehind();
    ASSERT_TRUE(m_pSection->RemoveElement(m_pSection->GetElement("source", 1), true));
}

TEST_F(OrderedTreeCheck, NamelessChild_IsSound) {
    auto *pNameless = NewLeaf("=");
    ASSERT_TRUE(m_pBlock->InsertElement(pNameless));
    ASSERT_TRUE(m_pLarge->InsertElement(NewLeaf("=")));
    EXPECT_EQ("", What(Indexes::Build));
}

// --- Chains, subenvironments, copies

TEST_F(TreeCheck, Defaults_KnowTheirHolders) {
    const EnvPtr def = NewEnv();
    m_env->AttachAsLastDefault(def.get());
    EXPECT_EQ("", What());
    EXPECT_EQ("", Check::OfEnvironment(*def, Indexes::Build).what);
    std::vector<CZrEnv *> &holders = Probe::Holders(*def);
    ExpectTold("the default does not know of its holder", nullptr, holders, {});
    holders.push_back(def.get());
    EXPECT_EQ("an environment that should hold this one as its default does not",
              Check::OfEnvironment(*def, Indexes::AsTheyAre).what);
    Probe::Default(*def) = def.get();
    EXPECT_EQ("the default chain is a ring", What());
    Probe::Default(*def) = nullptr;
    holders.pop_back();
    EXPECT_EQ(def.get(), m_env->DetachDefaultChain());
}

TEST_F(TreeCheck, Subenvironments_KnowTheirParent) {
    const EnvPtr sub(m_env->OpenSubenv(m_pLarge)), leaf(m_env->OpenSubenv(m_pLeaf));
    EXPECT_EQ("", What());
    EXPECT_EQ("", Check::OfEnvironment(*leaf, Indexes::Build).what);
    EXPECT_EQ("", Check::OfEnvironment(*sub, Indexes::Build).what);
    EXPECT_NE(nullptr, Probe::Index(*m_pLarge)) << "the root is looked into";
    Probe::Count(*m_pLarge) += 1;
    EXPECT_EQ(m_pLarge, Check::OfEnvironment(*sub, Indexes::AsTheyAre).pWhere);
    Probe::Count(*m_pLarge) -= 1;
    const EnvPtr stranger = NewEnv();
    CZrEnv *&parent = Probe::Parent(*sub);
    ExpectTold("a subenvironment names another parent", nullptr, parent, stranger.get());
    parent = stranger.get();
    EXPECT_EQ("the parent does not know of its subenvironment", Check::OfEnvironment(*sub, Indexes::AsTheyAre).what);
    parent = m_env.get();
}

TEST_F(TreeCheck, Copies_AreNotLookedInto) {
    CZrEnvBlock *pView = nullptr;
    {
        const CZrEnvBlock source("source");
        pView = new CZrEnvBlock(source);
    }
    EXPECT_EQ("", Check::OfTree(*pView, Indexes::Build).what);
    const CZrEnvBlock view(*m_pBlock);
    EXPECT_EQ("", Check::OfTree(view, Indexes::Build).what);
    const EnvPtr copy(new CZrEnv(*m_env));
    Probe::SectionCount(*m_env) = 9;
    EXPECT_EQ("", Check::OfEnvironment(*copy, Indexes::Build).what);
    Probe::SectionCount(*m_env) = 2;
    Discard(pView);
}

TEST_F(TreeCheck, DeepTree_NeedsNoStack) {
    CZrEnvBlock *pBlock = m_pOther;
    for (int level = 0; level < 200000; ++level) {
        auto *pInner = new CZrEnvBlock("x");
        ASSERT_TRUE(pBlock->InsertElement(pInner));
        pBlock = pInner;
    }
    EXPECT_EQ("", What());
    Probe::Count(*pBlock) = 1;
    EXPECT_EQ(pBlock, Check::OfEnvironment(*m_env, Indexes::Build).pWhere);
}

// Leaves that were read lie together until one of them, or their sequence, changes.
class LeavesThatWereRead : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(Zr::ENV_OK,
                  m_env->ReadString("[S]\r\nb ={\r\na =1\r\nb =2\r\nc =3\r\n}\r\n[T]\r\nx =1\r\n", Zr::eEnvReadAuto));
        m_pBlock = m_env->GetBlock("S", "b", true, false);
        m_pLeaf = m_env->GetDataElement("S", "b@b", true, false);
    }
    void TearDown() override { EXPECT_EQ("", Check::OfEnvironment(*m_env, Indexes::Build).what); }
    bool Together() { return (Probe::Flags(*m_pBlock) & Zr::CZrEnvNodeStore::LeavesTogether) != 0; }

    EnvPtr m_env = NewEnv();
    CZrEnvBlock *m_pBlock = nullptr;
    CZrEnvDataElement *m_pLeaf = nullptr;
    const std::string m_long = std::string(3000, 'v');
};

TEST_F(LeavesThatWereRead, Untouched_LieTogether) {
    EXPECT_TRUE(Together());
}

TEST_F(LeavesThatWereRead, SaidToLieTogetherThoughTheyDoNot_IsTold) {
    using Store = Zr::CZrEnvNodeStore;
    const auto expectTold = [&](const CZrEnvBlock *pWhere) {
        const Fault fault = Check::OfEnvironment(*m_env, Indexes::AsTheyAre);
        EXPECT_EQ("the leaves do not lie together", fault.what);
        EXPECT_EQ(pWhere, fault.pWhere);
    };
    std::uint32_t &leaf = Probe::Flags(*m_pLeaf);
    for (const std::uint32_t other : {leaf & ~std::uint32_t{Store::InChunk}, leaf & ~std::uint32_t{Store::LibraryType},
                                      leaf | Store::OwnsName, leaf | Store::OwnsData}) {
        const std::uint32_t sound = std::exchange(leaf, other);
        expectTold(m_pBlock);
        leaf = sound;
    }
    EXPECT_EQ("", Check::OfEnvironment(*m_env, Indexes::AsTheyAre).what);
    CZrEnvBlock *pMade = AddBlock(*m_env->GetSection("T"), "made");
    AddLeaf(*pMade, "a");
    Probe::Flags(*pMade) |= Store::LeavesTogether;
    expectTold(pMade);
    Probe::Flags(*pMade) &= ~std::uint32_t{Store::LeavesTogether};
}

TEST_F(LeavesThatWereRead, ShorterValueAndName_LieTogether) {
    m_pLeaf->SetString("9");
    EXPECT_TRUE(Together());
    EXPECT_TRUE(m_pLeaf->SetName("z"));
    EXPECT_TRUE(Together());
}

TEST_F(LeavesThatWereRead, LongerValue_Not) {
    m_pLeaf->SetString(m_long.c_str());
    EXPECT_FALSE(Together());
}

TEST_F(LeavesThatWereRead, LongerName_Not) {
    EXPECT_TRUE(m_pLeaf->SetName(m_long.c_str()));
    EXPECT_FALSE(Together());
}

TEST_F(LeavesThatWereRead, OneMore_Not) {
    AddLeaf(*m_pBlock, "d", "4");
    EXPECT_FALSE(Together());
}

TEST_F(LeavesThatWereRead, OneBefore_Not) {
    EXPECT_TRUE(m_pBlock->InsertElementBefore(NewLeaf("d", "4"), m_pLeaf));
    EXPECT_FALSE(Together());
}

TEST_F(LeavesThatWereRead, OneLess_Not) {
    EXPECT_TRUE(m_pBlock->RemoveElement(m_pLeaf, true));
    EXPECT_FALSE(Together());
}

TEST_F(LeavesThatWereRead, OneMovedElsewhere_Not) {
    EXPECT_TRUE(m_env->GetSection("T")->InsertElement(m_pLeaf));
    EXPECT_FALSE(Together());
}

TEST_F(LeavesThatWereRead, OneReplaced_Not) {
    EXPECT_TRUE(m_pBlock->ReplaceElement(m_pLeaf, NewLeaf("d", m_long.c_str())));
    EXPECT_FALSE(Together());
}

// It shows the name and the value of another, and what it is given later is its own.
TEST_F(LeavesThatWereRead, LeafThatBecameAView_Not) {
    CZrEnvDataElement *pLast = m_env->GetDataElement("S", "b@c", true, false);
    *pLast = *m_env->GetDataElement("T", "x", true, false);
    EXPECT_FALSE(Together());
    Probe::Parent(*pLast) = m_pBlock;
    pLast->SetString(m_long.c_str());
    EXPECT_FALSE(Together());
}

TEST_F(LeavesThatWereRead, LongValueInTheText_Not) {
    const std::string text = "[S]\r\nb ={\r\na =1\r\nb =" + m_long + "\r\n}\r\n";
    ASSERT_EQ(Zr::ENV_OK, m_env->ReadString(text.c_str(), Zr::eEnvReadAuto));
    m_pBlock = m_env->GetBlock("S", "b", true, false);
    EXPECT_FALSE(Together());
}

TEST_F(LeavesThatWereRead, MoreThanAChunkHolds_Not) {
    std::string text = "[S]\r\nb ={\r\n";
    for (int i = 0; i < 3000; ++i)
        text += "name =value\r\n";
    ASSERT_EQ(Zr::ENV_OK, m_env->ReadString((text + "}\r\n").c_str(), Zr::eEnvReadAuto));
    m_pBlock = m_env->GetBlock("S", "b", true, false);
    EXPECT_FALSE(Together());
    Probe::Flags(*m_pBlock) |= Zr::CZrEnvNodeStore::LeavesTogether;
    EXPECT_EQ("the leaves do not lie together", Check::OfEnvironment(*m_env, Indexes::AsTheyAre).what);
    Probe::Flags(*m_pBlock) &= ~std::uint32_t{Zr::CZrEnvNodeStore::LeavesTogether};
}

} // namespace
} // namespace zr::test
