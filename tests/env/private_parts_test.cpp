// Private members of elements and environments whose results and reports no public call shows as they are.
#include "env/env_probe.h"
#include "env/report_capture.h"
#include "env/tree_checker.h"

#include <climits>

namespace zr::test {
namespace {

using Probe = Zr::CZrEnvProbe;
using Zr::ENV_ERROR;
using Zr::ENV_NOT_FOUND;
using Zr::ENV_OK;

// A last error that no operation leaves: it shows what an operation does not touch.
const Zr::EZrEnvError untouched = Zr::ENV_EMPTY_PATH;

// S: a=1  b { c=2 }  e { }    T:
class PrivateParts : public testing::Test {
protected:
    void SetUp() override {
        m_pSection = m_env->InsertSection("S");
        m_pLeaf = AddLeaf(*m_pSection, "a", "1");
        m_pBlock = AddBlock(*m_pSection, "b");
        m_pInner = AddLeaf(*m_pBlock, "c", "2");
        m_pEmpty = AddBlock(*m_pSection, "e");
        m_pSecond = m_env->InsertSection("T");
        m_env->SetLastError(untouched);
    }

    void TearDown() override { EXPECT_TRUE(EnvIsSound(*m_env)); }

    // What an operation found, and the last error that it left.
    void Expect(const CZrEnvElement *pExpected, Zr::EZrEnvError expected, const CZrEnvElement *pFound) {
        EXPECT_EQ(pExpected, pFound);
        EXPECT_EQ(expected, m_env->GetLastError());
        m_env->SetLastError(untouched);
    }
    std::string Tree() { return Describe(*m_env); }

    ReportCapture m_reports;
    EnvPtr m_env = NewEnv(3);
    CZrEnvSection *m_pSection = nullptr, *m_pSecond = nullptr;
    CZrEnvDataElement *m_pLeaf = nullptr, *m_pInner = nullptr;
    CZrEnvBlock *m_pBlock = nullptr, *m_pEmpty = nullptr;
};

// Elements

TEST_F(PrivateParts, SetEnv_StoresThePointerAlone) {
    CZrEnvSection section("section");
    Probe::SetEnv(section, m_env.get());
    EXPECT_EQ(m_env.get(), section.GetEnv());
    EXPECT_EQ(2, m_env->CountElements(nullptr, nullptr, true));
    EXPECT_EQ(nullptr, m_env->GetSection("section"));
    Probe::SetEnv(section, nullptr);
}

// The index is the one that keeps an entry for each child, once a rename has asked for it.
TEST_F(PrivateParts, Index_AloneIsLeftAndEnteredBehindTheNamesakes) {
    CZrEnvBlock block("block");
    CZrEnvDataElement *pFirst = AddLeaf(block, "a"), *pSecond = AddLeaf(block, "a");
    ASSERT_TRUE(pSecond->SetName("a"));
    EXPECT_TRUE(Probe::RemoveFromIndex(block, pFirst));
    EXPECT_EQ(1u, block.GetElemCount());
    EXPECT_EQ(pSecond, block.GetElement("a", 1));
    EXPECT_EQ(&block, pFirst->GetParent());
    EXPECT_EQ((std::vector<CZrEnvElement *>{pFirst, pSecond}), Sequence(block));
    EXPECT_FALSE(Probe::RemoveFromIndex(block, pFirst)) << "its entry is gone";
    EXPECT_FALSE(block.RemoveElement(pFirst, false)) << "and without it the element stays entirely";
    EXPECT_EQ(&block, pFirst->GetParent());
    EXPECT_EQ(2u, Sequence(block).size());

    Probe::InsertIntoIndex(block, pFirst);
    EXPECT_EQ(pSecond, block.GetElement("a", 1));
    EXPECT_EQ(pFirst, block.GetElement("a", 2));
    EXPECT_TRUE(BlockIsSound(block));
    EXPECT_EQ(Reports{}, m_reports.Take());
}

// Environments

TEST_F(PrivateParts, SetFileMTime_StoresAtTopLevelOnly) {
    Probe::SetFileMTime(*m_env, 1234567);
    EXPECT_EQ(1234567, m_env->GetFileMTime());
    const EnvPtr sub(m_env->OpenSubenv(m_pBlock));
    EXPECT_EQ(1234567, Probe::FileMTime(*sub)) << "copied from the parent";
    EXPECT_EQ(-10, sub->GetFileMTime());
    EXPECT_EQ(Reports{}, m_reports.Take());
    Probe::SetFileMTime(*sub, 7);
    EXPECT_EQ(Reports{Message("ZrEnv", "Try to call 'env_core_set_mtime' for subenv")}, m_reports.Take());
    EXPECT_EQ(1234567, Probe::FileMTime(*sub));
    EXPECT_EQ(1234567, m_env->GetFileMTime());
}

TEST_F(PrivateParts, Subenvironments_AreListedAtTopLevelOnly) {
    using List = std::vector<CZrEnv *>;
    CZrEnv *pOuter = m_env->OpenSubenv(m_pSection);
    CZrEnv *pInner = pOuter->OpenSubenv(nullptr, "b", true);
    EXPECT_EQ(m_env.get(), Probe::Parent(*pOuter));
    EXPECT_EQ(m_env.get(), Probe::Parent(*pInner)) << "not the one that it was opened through";
    EXPECT_EQ((List{pOuter, pInner}), Probe::SubEnvs(*m_env));
    EXPECT_EQ(List{}, Probe::SubEnvs(*pOuter));
    EXPECT_EQ(2, Probe::RefCount(*m_env));
    EXPECT_EQ(0, Probe::RefCount(*pOuter));

    EnvPtr stranger = NewEnv();
    Probe::RemoveSubEnv(*m_env, stranger.get());
    EXPECT_EQ(2, Probe::RefCount(*m_env)) << "one that is not listed changes nothing";
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pOuter, false));
    EXPECT_EQ(List{pInner}, Probe::SubEnvs(*m_env));
    EXPECT_EQ(1, Probe::RefCount(*m_env));
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pInner, false));
    EXPECT_EQ(0, Probe::RefCount(*m_env));
}

TEST_F(PrivateParts, Counts_OfDefaults) {
    EnvPtr def = NewEnv();
    EnvPtr env = NewEnv(1, def.get());
    EXPECT_EQ(1, Probe::RefCount(*def));
    CZrEnv *pSub = env->OpenSubenv(env->InsertSection("S"));
    EXPECT_EQ(1, Probe::RefCount(*def)) << "the copy of the pointer does not count";
    EXPECT_EQ(def.get(), pSub->DetachDefaultChain());
    EXPECT_EQ(0, Probe::RefCount(*def)) << "lowered, though never raised";
    pSub->AttachAsLastDefault(def.get());
    EXPECT_EQ(1, Probe::RefCount(*def));
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pSub, false));
    EXPECT_EQ(1, Probe::RefCount(*def)) << "not lowered by the end of the subenvironment";
    EXPECT_EQ(def.get(), env->DetachDefaultChain());
    EXPECT_EQ(0, Probe::RefCount(*def));
}

// Search

TEST_F(PrivateParts, SearchProc_LeavesOkWhateverItFinds) {
    Expect(m_pInner, ENV_OK, Probe::SearchProc(*m_env, "S", "b@c", true));
    Expect(m_pInner, ENV_OK, Probe::SearchProc(*m_env, "S", "c", false));
    Expect(m_pSection, ENV_OK, Probe::SearchProc(*m_env, "S", nullptr, true));
    Expect(m_pSection, ENV_OK, Probe::SearchProc(*m_env, "S", "", true));
    Expect(nullptr, ENV_OK, Probe::SearchProc(*m_env, "S", "c", true));
    Expect(nullptr, ENV_OK, Probe::SearchProc(*m_env, "S", "a@x", true));
    Expect(nullptr, ENV_NOT_FOUND, Probe::SearchProc(*m_env, "U", "a", true));
    Expect(nullptr, ENV_NOT_FOUND, Probe::SearchProc(*m_env, nullptr, "a", true));
    const EnvPtr sub(m_env->OpenSubenv(m_pLeaf));
    EXPECT_EQ(m_pLeaf, Probe::SearchProc(*sub, "any", nullptr, true));
    EXPECT_EQ(ENV_OK, sub->GetLastError());
    EXPECT_EQ(nullptr, Probe::SearchProc(*sub, "any", "", true));
    EXPECT_EQ(ENV_ERROR, sub->GetLastError()) << "no start at a leaf";
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(PrivateParts, CommonSearch_TellsAMiss) {
    Expect(nullptr, ENV_ERROR, Probe::CommonSearch(*m_env, "a", true, nullptr));
    Expect(m_pSection, ENV_OK, Probe::CommonSearch(*m_env, "", true, m_pSection));
    Expect(m_pInner, ENV_OK, Probe::CommonSearch(*m_env, "c", false, m_pSection));
    Expect(nullptr, ENV_NOT_FOUND, Probe::CommonSearch(*m_env, "c", true, m_pSection));
    Expect(nullptr, ENV_NOT_FOUND, Probe::CommonSearch(*m_env, "a@x", true, m_pSection));
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(PrivateParts, SearchInTree_NullBlockIsTold) {
    EXPECT_EQ(nullptr, Probe::SearchInTree(*m_env, nullptr, "a", 1));
    EXPECT_EQ(Reports{Error("ZrEnv", "NULL-Pointer")}, m_reports.Take());
    EXPECT_EQ(m_pInner, Probe::SearchInTree(*m_env, m_pSection, "c", 1));
    EXPECT_EQ(m_pLeaf, Probe::SearchInTree(*m_env, m_pSection, "c", 0)) << "the first child, unseen";
    EXPECT_EQ(nullptr, Probe::SearchInTree(*m_env, m_pEmpty, "c", -1));
    EXPECT_EQ(untouched, m_env->GetLastError());
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(PrivateParts, FindElement_Rows) {
    Expect(nullptr, ENV_ERROR, Probe::FindElement(*m_env, nullptr, "b", 0, true));
    EXPECT_EQ(Reports{Error("ZrEnv", "szSection == NIL and pos == 0")}, m_reports.Take());
    Expect(m_pSecond, ENV_OK, Probe::FindElement(*m_env, nullptr, "b", 2, true));
    Expect(nullptr, ENV_NOT_FOUND, Probe::FindElement(*m_env, nullptr, nullptr, 3, true));
    Expect(m_pBlock, ENV_OK, Probe::FindElement(*m_env, "S", "b", 0, true));
    Expect(m_pInner, ENV_OK, Probe::FindElement(*m_env, "S", "b", 1, true));
    Expect(nullptr, ENV_NOT_FOUND, Probe::FindElement(*m_env, "S", "a", 1, true));
    Expect(nullptr, ENV_NOT_FOUND, Probe::FindElement(*m_env, "U", nullptr, 0, true));
    Expect(nullptr, ENV_OK, Probe::FindElement(*m_env, "S", "q", 1, true)); // what the search leaves
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(PrivateParts, SetPosBlock_Rows) {
    Expect(nullptr, ENV_NOT_FOUND, Probe::SetPosBlock(*m_env, 1, nullptr));
    Expect(nullptr, ENV_NOT_FOUND, Probe::SetPosBlock(*m_env, 0, m_pEmpty));
    for (zr_long position : {INT_MIN, -1, 0, 1})
        Expect(m_pLeaf, ENV_OK, Probe::SetPosBlock(*m_env, position, m_pSection));
    Expect(m_pEmpty, ENV_OK, Probe::SetPosBlock(*m_env, 3, m_pSection));
    Expect(nullptr, ENV_NOT_FOUND, Probe::SetPosBlock(*m_env, 4, m_pSection));
}

TEST_F(PrivateParts, SetPosEnv_Rows) {
    for (zr_long position : {INT_MIN, 0, 1})
        Expect(m_pSection, ENV_OK, Probe::SetPosEnv(*m_env, position));
    Expect(m_pSecond, ENV_OK, Probe::SetPosEnv(*m_env, 2));
    Expect(nullptr, ENV_NOT_FOUND, Probe::SetPosEnv(*m_env, 3));
    EXPECT_EQ(Reports{}, m_reports.Take());
    const EnvPtr sub(m_env->OpenSubenv(m_pSection));
    EXPECT_EQ(nullptr, Probe::SetPosEnv(*sub, 1));
    EXPECT_EQ(ENV_NOT_FOUND, sub->GetLastError());
    EXPECT_EQ(Reports{Message("ZrEnv", "SetPosEnv-Aufruf bei SubEnv")}, m_reports.Take());
}

// Editing

TEST_F(PrivateParts, CreatePath_WrongTypeGoesOnAsADataElement) {
    const Reports told{Message("ZrEnv", "Falscher Element-Typ")};
    for (const Zr::EZrEnvElementType eType : {Zr::ENV_TYPE_SECTION, Zr::ENV_TYPE_UNKNOWN}) {
        CZrEnvElement *pMade = Probe::CreatePath(*m_env, "T", "x@y", eType);
        EXPECT_EQ(told, m_reports.Take());
        EXPECT_EQ(Zr::ENV_TYPE_DATA, CZrEnv::GetElementType(pMade));
        EXPECT_EQ("x{y}", Describe(*m_pSecond));
        ASSERT_TRUE(m_pSecond->RemoveElement(m_pSecond->GetFirstElement(), true));
        EXPECT_EQ(m_pSecond, Probe::CreatePath(*m_env, "T", "", eType)) << "no step, no type";
        EXPECT_EQ(Reports{}, m_reports.Take());
    }
}

TEST_F(PrivateParts, CreatePath_GivesWhatIsThere) {
    EXPECT_EQ(m_pBlock, Probe::CreatePath(*m_env, "S", "b", Zr::ENV_TYPE_DATA));
    EXPECT_EQ(m_pLeaf, Probe::CreatePath(*m_env, "S", "a", Zr::ENV_TYPE_BLOCK));
    EXPECT_EQ(m_pSection, Probe::CreatePath(*m_env, "S", nullptr, Zr::ENV_TYPE_BLOCK));
    EXPECT_EQ("[S]a=1 b{c=2} e{}[T]", Tree());
    const EnvPtr sub(m_env->OpenSubenv(m_pBlock));
    EXPECT_EQ(nullptr, Probe::CreatePath(*sub, "S", nullptr, Zr::ENV_TYPE_BLOCK)) << "a root needs steps";
    EXPECT_EQ(nullptr, Probe::CreatePath(*sub, "S", "@", Zr::ENV_TYPE_BLOCK));
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(PrivateParts, CreateNewElement_Rows) {
    EXPECT_EQ(nullptr, Probe::CreateNewElement(*m_pEmpty, "n", 0, Zr::ENV_TYPE_DATA));
    EXPECT_EQ(nullptr, Probe::CreateNewElement(*m_pEmpty, "n", 1, Zr::ENV_TYPE_SECTION));
    EXPECT_EQ("", Describe(*m_pEmpty));
    EXPECT_EQ(nullptr, Probe::CreateNewElement(*m_pEmpty, "n", 2, Zr::ENV_TYPE_UNKNOWN));
    EXPECT_EQ("n", Describe(*m_pEmpty)) << "filled up before the type is looked at";
    CZrEnvElement *pBlock = Probe::CreateNewElement(*m_pEmpty, "n", 2, Zr::ENV_TYPE_BLOCK);
    EXPECT_EQ("n n{}", Describe(*m_pEmpty));
    EXPECT_EQ(pBlock, Probe::CreateNewElement(*m_pEmpty, "n", 2, Zr::ENV_TYPE_DATA)) << "what is there";
    EXPECT_EQ(pBlock, Probe::CreateNewElement(*m_pEmpty, "n", 2, Zr::ENV_TYPE_SECTION));
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(PrivateParts, ReplaceElement_Refusals) {
    CZrEnvDataElement *pNew = NewLeaf("n");
    EXPECT_FALSE(Probe::ReplaceElement(*m_env, nullptr, pNew));
    EXPECT_FALSE(Probe::ReplaceElement(*m_env, m_pLeaf, nullptr));
    const EnvPtr sub(m_env->OpenSubenv(m_pLeaf));
    EXPECT_FALSE(Probe::ReplaceElement(*m_env, m_pLeaf, m_pLeaf));
    EXPECT_EQ(m_pLeaf, sub->GetSubEnvRootElement());
    EXPECT_EQ(Reports{}, m_reports.Take());
    CZrEnvBlock detached("detached");
    for (CZrEnvElement *pOld : {static_cast<CZrEnvElement *>(m_pSection), static_cast<CZrEnvElement *>(&detached)}) {
        EXPECT_FALSE(Probe::ReplaceElement(*m_env, pOld, pNew));
        EXPECT_EQ(Reports{Error("ZrEnv", "unbekannter Fehler")}, m_reports.Take());
    }
    EXPECT_EQ("[S]a=1 b{c=2} e{}[T]", Tree());
    Discard(pNew);
}

TEST_F(PrivateParts, ReplaceElement_MovesEveryListedRoot) {
    const EnvPtr first(m_env->OpenSubenv(m_pBlock)), second(m_env->OpenSubenv(m_pBlock)),
        other(m_env->OpenSubenv(m_pLeaf)), below(m_env->OpenSubenv(m_pInner));
    CZrEnvDataElement *pNew = NewLeaf("b");
    EXPECT_TRUE(Probe::ReplaceElement(*m_env, m_pBlock, pNew));
    EXPECT_EQ(pNew, first->GetSubEnvRootElement());
    EXPECT_EQ(pNew, second->GetSubEnvRootElement());
    EXPECT_EQ(m_pLeaf, other->GetSubEnvRootElement());
    EXPECT_EQ(nullptr, below->GetSubEnvRootElement()) << "its root is dead";
    EXPECT_EQ("[S]a=1 b e{}[T]", Tree());
}

} // namespace
} // namespace zr::test
