// The tree with one refused allocation at a time: what each operation then gives and reports, that the tree is still sound
// and that nothing leaks.
#include "env/chunks.h"
#include "env/refused_memory.h"
#include "env/report_capture.h"
#include "env/tree_checker.h"

#include <functional>

namespace zr::test {
namespace {

using Zr::ENV_ERROR;
using Zr::ENV_OK;

enum class Outcome {
    Whole, // no allocation was left to refuse
    Told,  // one was refused, and the call came back
    Threw  // one was refused, and std::bad_alloc came out
};

// Runs the call with its allocation number `refused`, from 0, refused.
template <class Call>
Outcome Refusing(int refused, Call call) {
    const NthAllocation refusal(refused);
    try {
        call();
    } catch (const std::bad_alloc &) {
        return Outcome::Threw;
    }
    return refusal.Met() ? Outcome::Told : Outcome::Whole;
}

// S: 12 leaves n0 to n11, three leaves m, a block b { x=1 }; with a rename that has called for the ordered index.
class TreeMemory : public testing::Test {
protected:
    void SetUp() override { Build(); }
    void TearDown() override { EXPECT_TRUE(EnvIsSound(*m_env)); }

    void Build() {
        m_env = NewEnv(1);
        m_pSection = m_env->InsertSection("S");
        for (int i = 0; i < 12; ++i)
            AddLeaf(*m_pSection, ("n" + std::to_string(i)).c_str());
        for (int i = 0; i < 3; ++i)
            AddLeaf(*m_pSection, "m");
        m_pBlock = AddBlock(*m_pSection, "b");
        AddLeaf(*m_pBlock, "x", "1");
    }

    void MakeOrdered() { ASSERT_TRUE(m_pSection->GetFirstElement()->SetName("n0")); }

    // Does the change with each of its allocations refused in turn, each time on a fresh tree, and looks at what is left.
    // `check` gets what came out. Gives the number of refusals.
    template <class Change, class Check>
    int EachRefused(Change change, Check check) {
        for (int refused = 0;; ++refused) {
            const testing::ScopedTrace trace(__FILE__, __LINE__, "refused: number " + std::to_string(refused));
            m_env.reset();
            m_reports.Take();
            zr::env::DropSpareChunks();
            const MemoryBalance balance;
            Build();
            const Outcome outcome = change(refused);
            if (outcome != Outcome::Whole) {
                check(outcome);
                EXPECT_TRUE(EnvIsSound(*m_env));
            }
            m_env.reset();
            zr::env::DropSpareChunks(); // of the indexes
            EXPECT_EQ(0, balance.Open()) << "something leaks";
            Build();
            if (outcome == Outcome::Whole || refused > 1000)
                return refused;
        }
    }

    ReportCapture m_reports;
    EnvPtr m_env;
    CZrEnvSection *m_pSection = nullptr;
    CZrEnvBlock *m_pBlock = nullptr;
};

const Report noMemoryInBlock = Message("ZrEnvBlock", "Out of memory");
const Report noMemory = Error("ZrEnv", "Out of memory");

// Names

TEST(TreeMemoryName, LongerNameWithoutMemory_LeavesNameless) {
    CZrEnvBlock block("short");
    bool set = false;
    EXPECT_EQ(Outcome::Told, Refusing(0, [&] { set = block.SetName("longer than before"); }));
    EXPECT_TRUE(set);
    EXPECT_EQ(nullptr, block.GetName());
    EXPECT_TRUE(block.SetName("again"));
    EXPECT_STREQ("again", block.GetName());
    EXPECT_EQ(Outcome::Whole, Refusing(0, [&] { set = block.SetName("agai"); })) << "the present buffer will do";
    EXPECT_STREQ("agai", block.GetName());
}

TEST(TreeMemoryName, ConstructorWithoutMemory_LeavesNameless) {
    alignas(CZrEnvBlock) std::byte place[sizeof(CZrEnvBlock)];
    CZrEnvBlock *pBlock = nullptr;
    EXPECT_EQ(Outcome::Told, Refusing(0, [&] { pBlock = ::new (place) CZrEnvBlock("name"); }));
    EXPECT_EQ(nullptr, pBlock->GetName());
    EXPECT_EQ(0u, pBlock->GetElemCount());
    pBlock->~CZrEnvBlock();
}

TEST_F(TreeMemory, RenameOfAChild_NamelessOrUntouched) {
    CZrEnvElement *pElem = nullptr;
    bool set = false;
    int nameless = 0;
    const int refusals = EachRefused(
        [&](int refused) {
            pElem = m_pSection->GetElement("m", 2);
            return Refusing(refused, [&] { set = pElem->SetName("a longer name"); });
        },
        [&](Outcome outcome) {
            if (outcome == Outcome::Threw) {
                EXPECT_STREQ("m", pElem->GetName());
                EXPECT_EQ(pElem, m_pSection->GetElement("m", 2));
                return;
            }
            ++nameless;
            EXPECT_TRUE(set);
            EXPECT_EQ(nullptr, pElem->GetName());
            EXPECT_EQ(2u, m_pSection->GetElemCount("m"));
            EXPECT_TRUE(m_pSection->RemoveElement(pElem, true)); // no stale entry is left for the checks behind
        });
    EXPECT_GT(refusals, 16) << "the ordered index takes an allocation for each child";
    EXPECT_EQ(1, nameless);
}

// Insertion and replacement

TEST_F(TreeMemory, LookUpsDoWithoutAnIndex) {
    for (int refused = 0; refused < 3; ++refused) {
        Build();
        CZrEnvElement *pFound = nullptr;
        EXPECT_EQ(Outcome::Told, Refusing(refused, [&] { pFound = m_pSection->GetElement("m", 3); }));
        EXPECT_EQ("m", NameOf(pFound));
        zr_ulong count = 0;
        Build();
        EXPECT_EQ(Outcome::Told, Refusing(refused, [&] { count = m_pSection->GetElemCount("m"); }));
        EXPECT_EQ(3u, count);
    }
    for (int i = 0; i < 20; ++i)
        m_env->InsertSection("many");
    CZrEnvSection *pFound = nullptr;
    EXPECT_EQ(Outcome::Told, Refusing(0, [&] { pFound = m_env->GetSection("S"); }));
    EXPECT_EQ(m_pSection, pFound);
}

TEST_F(TreeMemory, Insert_AbandonedElementStaysTheCallers) {
    CZrEnvDataElement *pNew = NewLeaf("m");
    MakeOrdered();
    AddLeaf(*m_pSection, "m"); // in the entry that the rename has kept
    const std::string tree = Describe(*m_env);
    EXPECT_EQ(Outcome::Threw, Refusing(0, [&] { m_pSection->InsertElement(pNew); }));
    EXPECT_EQ(nullptr, pNew->GetParent());
    EXPECT_EQ(tree, Describe(*m_env));
    EXPECT_TRUE(EnvIsSound(*m_env));
    EXPECT_TRUE(m_pSection->InsertElement(pNew));
}

TEST_F(TreeMemory, InsertBefore_AbandonedElementStaysTheCallers) {
    CZrEnvDataElement *pNew = nullptr;
    const std::string tree = Describe(*m_env);
    const int refusals = EachRefused(
        [&](int refused) {
            pNew = NewLeaf("m");
            return Refusing(refused, [&] { m_pSection->InsertElementBefore(pNew, m_pSection->GetElement("m", 2)); });
        },
        [&](Outcome outcome) {
            if (outcome == Outcome::Told) { // the look-up did without its index
                EXPECT_EQ(pNew, m_pSection->GetElement("m", 2));
                return;
            }
            EXPECT_EQ(nullptr, pNew->GetParent());
            EXPECT_EQ(tree, Describe(*m_env));
            Discard(pNew);
        });
    EXPECT_GT(refusals, 16);
}

TEST_F(TreeMemory, Replace_AbandonedChangesNothing) {
    CZrEnvDataElement *pNew = nullptr;
    const std::string tree = Describe(*m_env);
    const int refusals = EachRefused(
        [&](int refused) {
            pNew = NewLeaf("m");
            CZrEnvElement *pOld = m_pBlock;
            return Refusing(refused, [&] { m_pSection->ReplaceElement(pOld, pNew); });
        },
        [&](Outcome outcome) {
            EXPECT_EQ(Outcome::Threw, outcome);
            EXPECT_EQ(nullptr, pNew->GetParent());
            EXPECT_EQ(tree, Describe(*m_env));
            Discard(pNew);
        });
    EXPECT_GT(refusals, 16);
}

TEST_F(TreeMemory, IndexesOfNames_AreGivenUpWithoutMemory) {
    for (int i = 0; i < 20; ++i)
        ASSERT_NE(nullptr, m_env->InsertSection("section"));
    ASSERT_EQ(m_pSection, m_env->GetSection("S"));
    ASSERT_NE(nullptr, m_pSection->GetElement("m", 1));
    int given = 0;
    for (int i = 0; i < 100; ++i) {
        const std::string name = std::to_string(i);
        auto *pSection = new CZrEnvSection(name.c_str());
        CZrEnvDataElement *pLeaf = NewLeaf(name);
        given += Refusing(0, [&] { EXPECT_TRUE(m_env->InsertSection(pSection)); }) == Outcome::Told ? 1 : 0;
        given += Refusing(0, [&] { EXPECT_TRUE(m_pSection->InsertElement(pLeaf)); }) == Outcome::Told ? 1 : 0;
        EXPECT_EQ(pSection, m_env->GetSection(name.c_str()));
        EXPECT_EQ(pLeaf, m_pSection->GetElement(name.c_str(), 1));
    }
    EXPECT_GE(given, 4);
}

// Changes that happen wholly or, when std::bad_alloc comes out, not at all: also where an element comes from elsewhere, and
// where the entry of a name stays behind. T, the second section, is { b=1 a{ x=2 } c }, u, the third, { a 0=3 c }, both
// with an ordered index, in which the element 0 has two entries.
class WholeOrNot : public TreeMemory {
protected:
    using Change = std::function<void(CZrEnv &env)>;

    void BuildMore() {
        CZrEnvSection *pSecond = m_env->InsertSection("T");
        AddLeaf(*pSecond, "b", "1");
        AddLeaf(*AddBlock(*pSecond, "a"), "x", "2");
        ASSERT_TRUE(pSecond->GetFirstElement()->SetName("b"));
        CZrEnvSection *pThird = m_env->InsertSection("u");
        AddLeaf(*pThird, "a");
        ASSERT_TRUE(AddLeaf(*pThird, "b", "3")->SetName("0"));
        ASSERT_EQ(3u, pThird->GetElemCount());
        // The entries that the renames have kept are used up.
        AddLeaf(*pSecond, "c");
        AddLeaf(*pThird, "c");
    }

    static CZrEnvBlock &Below(CZrEnv &env, const char *szSection) { return *env.GetSection(szSection); }

    void Expect(const char *szName, const std::string &expected, const Change &change) {
        SCOPED_TRACE(szName);
        EachRefused(
            [&](int refused) {
                BuildMore();
                const std::string before = Describe(*m_env);
                const Outcome outcome = Refusing(refused, [&] { change(*m_env); });
                if (outcome == Outcome::Threw) {
                    EXPECT_EQ(before, Describe(*m_env));
                    EXPECT_FALSE(Fault());
                    change(*m_env);
                }
                EXPECT_NE(std::string::npos, Describe(*m_env).find(expected)) << Describe(*m_env);
                EXPECT_FALSE(Fault());
                m_env->DeleteEnvironmentSections(); // with the entries that have stayed behind
                return outcome;
            },
            [](Outcome) {});
    }

    bool Fault() {
        const auto fault = Zr::CZrEnvTreeCheck::OfEnvironment(*m_env, Zr::CZrEnvTreeCheck::Indexes::AsTheyAre);
        EXPECT_EQ("", fault.what);
        return static_cast<bool>(fault);
    }
};

TEST_F(WholeOrNot, RenamesAcrossASibling) {
    Expect("among few", "[T]z=1 a{x=2} c", [](CZrEnv &env) { Below(env, "T").GetFirstElement()->SetName("z"); });
    Expect("with an entry left behind", "[u]a z=3 c",
           [](CZrEnv &env) { Below(env, "u").GetElement("0", 1)->SetName("z"); });
    Expect("among many", "[S]0 n1 n2", [](CZrEnv &env) { Below(env, "S").GetFirstElement()->SetName("0"); });
}

TEST_F(WholeOrNot, MovesFromBlockToBlock) {
    const auto moved = [](CZrEnv &env) { return Below(env, "T").GetElement("a", 1); };
    Expect("to many without an index", "b{x=1} a{x=2}[T]b=1 c",
           [&](CZrEnv &env) { EXPECT_TRUE(Below(env, "S").InsertElement(moved(env))); });
    Expect("to an ordered index", "[u]a 0=3 c a{x=2}",
           [&](CZrEnv &env) { EXPECT_TRUE(Below(env, "u").InsertElement(moved(env))); });
    Expect("in front", "[S]a{x=2} n0", [&](CZrEnv &env) {
        CZrEnvBlock &to = Below(env, "S");
        EXPECT_TRUE(to.InsertElementBefore(moved(env), to.GetFirstElement()));
    });
    Expect("in front of one with two entries", "[u]a a{x=2} 0=3 c", [&](CZrEnv &env) {
        CZrEnvBlock &to = Below(env, "u");
        EXPECT_TRUE(to.InsertElementBefore(moved(env), to.GetElement("0", 1)));
    });
    Expect("in place of one with two entries", "[u]a a{x=2} c", [&](CZrEnv &env) {
        CZrEnvBlock &to = Below(env, "u");
        EXPECT_TRUE(to.ReplaceElement(to.GetElement("0", 1), moved(env)));
    });
    Expect("in place of one among many", "[S]a{x=2} n1", [&](CZrEnv &env) {
        CZrEnvBlock &to = Below(env, "S");
        EXPECT_TRUE(to.ReplaceElement(to.GetFirstElement(), moved(env)));
    });
}

TEST_F(WholeOrNot, DeletionsAndLists) {
    Expect("removed among many", "[S]n1 n2",
           [](CZrEnv &env) { Below(env, "S").RemoveElement(Below(env, "S").GetFirstElement(), true); });
    Expect("removed with two entries", "[u]a c", [](CZrEnv &env) { EXPECT_EQ(ENV_OK, env.Delete("u", "0")); });
    Expect("a section", "b{x=1}[u]", [](CZrEnv &env) { EXPECT_EQ(ENV_OK, env.DeleteSection("T")); });
    Expect("lists", "[S]n0 n1", [](CZrEnv &env) {
        std::vector<CZrEnvElement *> elems;
        std::vector<CZrEnvSection *> sections;
        std::vector<std::string> names;
        EXPECT_EQ(ENV_OK, env.GetElems("S", nullptr, true, elems));
        EXPECT_EQ(ENV_OK, env.GetElemNames("S", nullptr, true, names));
        EXPECT_EQ(ENV_OK, env.GetSections(sections));
        EXPECT_EQ(ENV_OK, env.GetSectionNames(names));
        EXPECT_EQ(elems.size() + 3, names.size());
        EXPECT_EQ(3u, sections.size());
    });
    Expect("default chains", "[S]n0 n1", [](CZrEnv &env) {
        const EnvPtr other(CZrEnv::CreateEnv(2, nullptr));
        if (!other)
            throw std::bad_alloc();
        env.AttachAsLastDefault(other.get());
        EXPECT_EQ(other.get(), env.DetachDefaultChain());
    });
}

// Environments

TEST_F(TreeMemory, CreateEnv_NullWithoutMemory) {
    for (CZrEnv *pDefault : {static_cast<CZrEnv *>(nullptr), m_env.get()}) {
        int refused = 0;
        for (;; ++refused) {
            const MemoryBalance balance;
            CZrEnv *pEnv = m_env.get();
            const Outcome outcome = Refusing(refused, [&] { pEnv = CZrEnv::CreateEnv(1, pDefault); });
            if (outcome == Outcome::Whole) {
                EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pEnv, false));
                break;
            }
            EXPECT_EQ(Outcome::Told, outcome);
            EXPECT_EQ(nullptr, pEnv);
            EXPECT_EQ(0, balance.Open());
        }
        EXPECT_EQ(pDefault ? 2 : 1, refused);
    }
}

TEST_F(TreeMemory, OpenSubenv_NullWithoutMemory) {
    CZrEnv *pSub = nullptr;
    for (const bool byPath : {false, true}) {
        const int refusals = EachRefused(
            [&](int refused) {
                pSub = m_env.get();
                const Outcome outcome = Refusing(refused, [&] {
                    pSub = byPath ? m_env->OpenSubenv("S", nullptr, true) : m_env->OpenSubenv(m_pSection);
                });
                if (outcome == Outcome::Whole) {
                    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pSub, false));
                }
                return outcome;
            },
            [&](Outcome outcome) {
                EXPECT_EQ(Outcome::Told, outcome);
                EXPECT_EQ(nullptr, pSub);
            });
        EXPECT_EQ(2, refusals) << "the object, and its place in the list of its parent";
    }
}

TEST_F(TreeMemory, InsertSection_ObjectOrNameWithoutMemory) {
    CZrEnvSection *pSection = m_pSection;
    m_env->SetLastError(Zr::ENV_EMPTY_PATH);
    EXPECT_EQ(Outcome::Told, Refusing(0, [&] { pSection = m_env->InsertSection("T"); }));
    EXPECT_EQ(nullptr, pSection);
    EXPECT_EQ(Reports{noMemory}, m_reports.Take());
    EXPECT_EQ(Outcome::Told, Refusing(1, [&] { pSection = m_env->InsertSection("T"); }));
    EXPECT_EQ(nullptr, pSection);
    EXPECT_EQ(std::vector<std::string>{"Wrong section name: "}, TextsOf(m_reports)) << "it got no name";
    EXPECT_EQ(Zr::ENV_EMPTY_PATH, m_env->GetLastError());
    EXPECT_EQ(1, m_env->CountElements(nullptr, nullptr, true));
}

// Writes

// Each write with what it reports, if it comes back at all: the tree may be left half made.
TEST_F(TreeMemory, Writes_FailWithAReport) {
    struct Row {
        const char *szPath;
        std::vector<Report> told;
    };
    const Report replacing = Error("ZrEnv", "unbekannter Fehler");
    const Report value = Message("ZrEnvDataElement", "Out of memory");
    const Row rows[] = {{"y@3", {noMemoryInBlock, value}},
                        {"y@z@2", {noMemoryInBlock, value}},
                        {"b", {replacing, value}},
                        {"b@x@k", {noMemory, noMemoryInBlock, value}}};
    for (const Row &row : rows)
        for (const bool ordered : {false, true}) {
            SCOPED_TRACE(std::string(row.szPath) + (ordered ? ", ordered" : ""));
            Zr::EZrEnvError result = ENV_OK;
            const int refusals = EachRefused(
                [&](int refused) {
                    if (ordered)
                        MakeOrdered();
                    m_reports.Take();
                    return Refusing(refused, [&] { result = m_env->SetLong("S", row.szPath, 1234567890); });
                },
                [&](Outcome outcome) {
                    const Reports reports = m_reports.Take();
                    if (outcome == Outcome::Threw || result == ENV_OK) { // or a look-up did without its index
                        EXPECT_EQ(Reports{}, reports);
                        return;
                    }
                    EXPECT_EQ(ENV_ERROR, result);
                    EXPECT_EQ(ENV_ERROR, m_env->GetLastError());
                    ASSERT_EQ(1u, reports.size());
                    EXPECT_NE(row.told.end(), std::find(row.told.begin(), row.told.end(), reports[0])) << reports[0];
                });
            EXPECT_GE(refusals, 2);
        }
}

TEST_F(TreeMemory, SubenvironmentsLeafRoot_StaysWithoutMemory) {
    for (const bool ordered : {false, true}) {
        EachRefused(
            [&](int refused) {
                if (ordered)
                    MakeOrdered();
                CZrEnvElement *pRoot = m_pSection->GetFirstElement();
                const EnvPtr sub(m_env->OpenSubenv(pRoot));
                m_reports.Take();
                Zr::EZrEnvError result = ENV_OK;
                const Outcome outcome = Refusing(refused, [&] { result = sub->SetLong(nullptr, "k", 1); });
                if (refused == 0) {
                    EXPECT_EQ(ENV_ERROR, result);
                    EXPECT_EQ(Reports{noMemory}, m_reports.Take());
                }
                if (outcome == Outcome::Threw) {
                    EXPECT_EQ(pRoot, sub->GetSubEnvRootElement());
                    EXPECT_EQ(pRoot, m_pSection->GetFirstElement());
                }
                return outcome;
            },
            [](Outcome) {});
    }
}

} // namespace
} // namespace zr::test
