// The env_ functions that walk a tree with callbacks, and those built on such walks.
#include <chrono>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "function_fixture.h"
#include "report_capture.h"

using namespace zr::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const char *kModel = "[Model]\n"
                     "Title =Frame A\n"
                     "bar ={\nlength =1\n}\n"
                     "empty ={\n}\n"
                     "bar ={\nlength =2\nlength =3\ndeep ={\nx =4\n}\n}\n"
                     "[Blank]\n"
                     "[Other]\nx =5\n";

using Visitor = std::function<void(zr_env sub, const char *section, const char *path)>;

void CallVisitor(zr_env sub, const char *section, const char *path, void *user) {
    (*static_cast<const Visitor *>(user))(sub, section, path);
}

int Traverse(zr_env env, const char *section, const char *path, int direct, const Visitor &visit) {
    return env_traverse(env, section, path, direct, CallVisitor, const_cast<Visitor *>(&visit));
}

int TraverseLeafs(zr_env env, const Visitor &visit) {
    return env_traverse_leafs(env, CallVisitor, const_cast<Visitor *>(&visit));
}

std::string Shown(const char *text) {
    return text ? text : "-";
}

// "section:path=value", the value being that of the subenvironment's root.
std::string Step(zr_env sub, const char *section, const char *path) {
    return Shown(section) + ":" + Shown(path) + "=" + (sub ? ValueOf(sub, nullptr, nullptr) : "none");
}

std::vector<std::string> Siblings(zr_env env, const char *section, const char *path, int direct = 1, int expected = 0) {
    std::vector<std::string> steps;
    EXPECT_EQ(Traverse(env, section, path, direct,
                       [&](zr_env sub, const char *s, const char *p) { steps.push_back(Step(sub, s, p)); }),
              expected);
    return steps;
}

std::vector<std::string> Leafs(zr_env env, int expected = 0) {
    std::vector<std::string> steps;
    EXPECT_EQ(TraverseLeafs(env, [&](zr_env sub, const char *s, const char *p) { steps.push_back(Step(sub, s, p)); }),
              expected);
    return steps;
}

// The leaf walk as a plain recursion over the siblings of each level.
class ReferenceWalk {
public:
    explicit ReferenceWalk(zr_env env) { Traverse(env, nullptr, nullptr, 1, Visitor()); }

    const std::vector<std::string> &Steps() const { return m_steps; }
    int Result() const { return m_failed ? -10 : 0; }

private:
    ::Visitor Visitor() {
        return [this](zr_env sub, const char *section, const char *path) { Visit(sub, section, path); };
    }

    void Visit(zr_env sub, const char *section, const char *path) {
        if (m_failed)
            return;
        const std::string above = m_prefix;
        const bool joined = !above.empty() && path;
        const std::string full = path ? (joined ? above + env_get_delimiter(sub) + path : path) : above;
        switch (env_check(sub, nullptr, nullptr, 1)) {
        case -1:
            m_steps.push_back(Step(sub, section, full.substr(0, 10239).c_str()));
            break;
        case -2:
            m_prefix = full.substr(0, 10239);
            Traverse(sub, section, nullptr, 1, Visitor());
            m_prefix = above;
            break;
        case -4:
            break;
        default:
            m_failed = true;
        }
    }

    bool m_failed = false;
    std::string m_prefix;
    std::vector<std::string> m_steps;
};

// A tree of few names, so that there are many namesakes; with so many elements at least in each block.
std::string RandomTree(std::mt19937 &random, int depth, unsigned atLeast = 0) {
    std::string text;
    const auto count = atLeast + random() % (6 - atLeast);
    for (auto i = count; i > 0; --i) {
        const std::string name(1, static_cast<char>('a' + random() % 3));
        if (depth > 0 && random() % 2)
            text += name + " ={\n" + RandomTree(random, depth - 1, atLeast) + "}\n";
        else
            text += name + " =" + std::to_string(random() % 100) + "\n";
    }
    return text;
}

std::string Names(zr_env env, const char *section, const char *path) {
    std::string names(1000, '\0');
    const int result = env_list_elem_names(env, section, path, 1, ',', 1000, names.data());
    return result == 0 ? names.c_str() : "(" + std::to_string(result) + ")";
}

double Seconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

} // namespace

// --- env_traverse
// -----------------------------------------------------------------------------------------------------

TEST(EnvTraverse, NumbersNamesakes) {
    EnvHandle env("[S]\na =1\nb =2\na =3\nblock ={\nx =4\nx =5\n}\n");
    EXPECT_THAT(Siblings(env, "S", nullptr), ElementsAre("S:a@1=1", "S:b@1=2", "S:a@2=3", "S:block@1=(-1)"));
    EXPECT_THAT(Siblings(env, "S", "block"), ElementsAre("S:block@x@1=4", "S:block@x@2=5"));
    EXPECT_THAT(Siblings(env, "S", "block@1"), ElementsAre("S:block@1@x@1=4", "S:block@1@x@2=5"));
    EXPECT_THAT(Siblings(env, "S", ""), ElementsAre("S:@a@1=1", "S:@b@1=2", "S:@a@2=3", "S:@block@1=(-1)"));
}

TEST(EnvTraverse, CaseTellsNamesApart) {
    EnvHandle env("[S]\na =1\nA =2\na =3\n");
    EXPECT_THAT(Siblings(env, "S", nullptr), ElementsAre("S:a@1=1", "S:A@1=2", "S:a@2=3"));
}

TEST(EnvTraverse, SectionsHaveNoPath) {
    EnvHandle env(kModel);
    EXPECT_THAT(Siblings(env, nullptr, "not looked at"), ElementsAre("Model:-=(-1)", "Blank:-=(-1)", "Other:-=(-1)"));
}

TEST(EnvTraverse, SubenvironmentHandsSectionOn) {
    EnvHandle env(kModel);
    EnvHandle sub(env_open_subenv(env, "Model", "bar@2", 1));
    EXPECT_THAT(Siblings(sub, nullptr, nullptr), ElementsAre("-:length@1=2", "-:length@2=3", "-:deep@1=(-1)"));
    EXPECT_THAT(Siblings(sub, "any", "deep"), ElementsAre("any:deep@x@1=4"));
}

TEST(EnvTraverse, IndirectSearchFindsTheBlockAnywhere) {
    EnvHandle env("[S]\na ={\nb ={\nx =1\ny =2\n}\n}\n");
    EXPECT_THAT(Siblings(env, "S", "b", 0), ElementsAre("S:b@x@1=1", "S:b@y@1=2"));
    EXPECT_THAT(Siblings(env, "S", "b", 1, -4), IsEmpty());
}

TEST(EnvTraverse, ResultsWithoutCallback) {
    EnvHandle env(kModel);
    EnvHandle empty;
    EXPECT_THAT(Siblings(empty, nullptr, nullptr, 1, 0), IsEmpty());
    EXPECT_THAT(Siblings(empty, "S", nullptr, 1, 0), IsEmpty());
    EXPECT_THAT(Siblings(env, "Nowhere", nullptr, 1, -4), IsEmpty());
    EXPECT_THAT(Siblings(env, "Model", "none", 1, -4), IsEmpty());
    EXPECT_THAT(Siblings(env, "Model", "empty", 1, -4), IsEmpty());
    EXPECT_THAT(Siblings(env, "Model", "Title", 1, -4), IsEmpty());
    EXPECT_THAT(Siblings(env, "Blank", nullptr, 1, -4), IsEmpty());
    EXPECT_THAT(Siblings(nullptr, nullptr, nullptr, 1, -10), IsEmpty());
    EXPECT_EQ(env_traverse(env, nullptr, nullptr, 1, nullptr, nullptr), -10);
}

TEST(EnvTraverse, DelimiterIsThatOfTheEnvironment) {
    EnvHandle env(kModel);
    env_set_delimiter(env, '/');
    EXPECT_THAT(Siblings(env, "Model", "bar/2"),
                ElementsAre("Model:bar/2/length/1=2", "Model:bar/2/length/2=3", "Model:bar/2/deep/1=(-1)"));
}

TEST(EnvTraverse, DefaultsAreWalkedWithoutSubenvironments) {
    EnvHandle deflt("[D]\nx =1\ny =2\n");
    EnvHandle env(kModel, 0, deflt);
    EXPECT_THAT(Siblings(env, "D", nullptr), ElementsAre("D:x@1=none", "D:y@1=none"));
}

TEST(EnvTraverse, DuplicateSectionsAllLeadToTheFirst) {
    EnvHandle env("[S]\na =1\n");
    ASSERT_TRUE(env->InsertSection(new Zr::CZrEnvSection("S")));
    std::vector<zr_long> counts;
    EXPECT_EQ(Traverse(env, nullptr, nullptr, 1,
                       [&](zr_env sub, const char *, const char *) {
                           counts.push_back(env_count_elements(sub, nullptr, nullptr, 1));
                       }),
              0);
    EXPECT_THAT(counts, ElementsAre(1, 1));
}

TEST(EnvTraverse, SequenceAndIndexMayDisagree) {
    EnvHandle env("[S]\na =1\nb =2\nb =3\n");
    ASSERT_EQ(env_rename(env, "S", "a", "b"), 0); // first in sequence, last by name
    const std::vector<std::string> steps = Siblings(env, "S", nullptr);
    ASSERT_EQ(steps.size(), 3u);
    for (int i = 0; i < 3; ++i) {
        const std::string path = "b@" + std::to_string(i + 1);
        EXPECT_EQ(steps[static_cast<std::size_t>(i)], "S:" + path + "=" + ValueOf(env, "S", path.c_str()));
    }
}

TEST(EnvTraverse, OverLongNameIsCut) {
    const std::string name(10238, 'n');
    EnvHandle env(("[S]\n" + name + " =1\n" + name + "nn =2\n").c_str());
    std::vector<std::size_t> lengths;
    std::vector<bool> opened;
    EXPECT_EQ(Traverse(env, "S", nullptr, 1,
                       [&](zr_env sub, const char *, const char *path) {
                           lengths.push_back(std::strlen(path));
                           opened.push_back(sub != nullptr);
                       }),
              0);
    EXPECT_THAT(lengths, ElementsAre(10239, 10239));
    EXPECT_THAT(opened, ElementsAre(true, false)); // "nnn@" leads to the first, a name cut by one to nothing
}

TEST(EnvTraverse, NamelessElements) {
    EnvHandle env("[S]\na =1\n");
    ASSERT_EQ(env_insert_before(env, "S", "a", nullptr), 0);
    ASSERT_EQ(env_insert_before(env, "S", "a", nullptr), 0);
    std::vector<std::string> paths;
    Traverse(env, "S", nullptr, 1, [&](zr_env, const char *, const char *path) { paths.push_back(path); });
    EXPECT_THAT(paths, ElementsAre("@1", "@2", "a@1"));
    // a nameless section is opened as the first one, which is what no name stands for
    ASSERT_EQ(env_insert_before(env, "S", nullptr, "x]y"), 0);
    EXPECT_THAT(Siblings(env, nullptr, nullptr), ElementsAre("-:-=(-1)", "S:-=(-1)"));
}

TEST(EnvTraverse, SubIsOpenDuringTheCallback) {
    EnvHandle env(kModel);
    int calls = 0;
    EXPECT_EQ(Traverse(env, "Model", nullptr, 1,
                       [&](zr_env sub, const char *, const char *) {
                           ++calls;
                           EXPECT_EQ(env_close(env, 0), -8);
                           EXPECT_NE(sub, static_cast<zr_env>(env));
                       }),
              0);
    EXPECT_EQ(calls, 4);
}

TEST(EnvTraverse, CallbackWritesReadsAndAppends) {
    EnvHandle env("[S]\na =1\nb =2\n");
    std::vector<std::string> steps;
    EXPECT_EQ(Traverse(env, "S", nullptr, 1,
                       [&](zr_env sub, const char *section, const char *path) {
                           steps.push_back(Step(sub, section, path));
                           EXPECT_EQ(env_put(sub, nullptr, nullptr, "new"), 0);
                           const char *added = steps.size() == 1 ? "c" : steps.size() == 3 ? "d" : "a";
                           EXPECT_EQ(env_put(env, "S", added, "3"), 0);
                           EXPECT_EQ(ValueOf(env, section, path), "new");
                       }),
              0);
    // c comes while a is visited and is walked; d comes behind the last element and is not
    EXPECT_THAT(steps, ElementsAre("S:a@1=1", "S:b@1=2", "S:c@1=3"));
    EXPECT_EQ(ValueOf(env, "S", "d"), "3");
}

TEST(EnvTraverse, CallbackDeletesItsOwnElement) {
    EnvHandle env("[S]\na =1\na =2\nb =3\na =4\n");
    std::vector<std::string> steps;
    EXPECT_EQ(Traverse(env, "S", nullptr, 1,
                       [&](zr_env sub, const char *section, const char *path) {
                           steps.push_back(Step(sub, section, path));
                           EXPECT_EQ(env_delete(env, section, path), 0);
                       }),
              0);
    EXPECT_THAT(steps, ElementsAre("S:a@1=1", "S:a@1=2", "S:b@1=3", "S:a@1=4")); // counted from the present head
    EXPECT_EQ(env_count_elements(env, "S", nullptr, 1), 0);
}

TEST(EnvTraverse, CallbackDeletesEverySection) {
    EnvHandle env(kModel);
    std::vector<std::string> sections;
    EXPECT_EQ(Traverse(env, nullptr, nullptr, 1,
                       [&](zr_env, const char *section, const char *) {
                           EXPECT_EQ(env_delete(env, section, nullptr), 0);
                           sections.push_back(section); // still there to read
                       }),
              0);
    EXPECT_THAT(sections, ElementsAre("Model", "Blank", "Other"));
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 0);
}

TEST(EnvTraverse, WalkEndsWhereTheSuccessorIsDeleted) {
    EnvHandle env("[S]\na =1\nb =2\nc =3\n[T]\n[U]\n");
    int calls = 0;
    EXPECT_EQ(Traverse(env, "S", nullptr, 1,
                       [&](zr_env, const char *, const char *) {
                           ++calls;
                           env_delete(env, "S", "b");
                       }),
              0);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(Traverse(env, nullptr, nullptr, 1,
                       [&](zr_env, const char *, const char *) {
                           ++calls;
                           env_delete(env, nullptr, nullptr);
                       }),
              0);
    EXPECT_EQ(calls, 2);
}

TEST(EnvTraverse, CallbackReadsTheEnvironmentAnew) {
    EnvHandle env(kModel);
    int calls = 0;
    EXPECT_EQ(Traverse(env, "Model", nullptr, 1,
                       [&](zr_env sub, const char *, const char *) {
                           ++calls;
                           EXPECT_EQ(env_read_from_string("[S]\na =1\n", env), 0);
                           EXPECT_EQ(env_exist(sub, nullptr, "x", 1), 0);
                       }),
              0);
    EXPECT_EQ(calls, 1);
}

TEST(EnvTraverse, CallbackRenamesAndInsertsBefore) {
    // beyond the first few siblings the numbers come from a table, which has to notice the changes
    std::string text = "[S]\n";
    for (int i = 0; i < 40; ++i)
        text += "a =" + std::to_string(i) + "\n";
    for (const char *change : {"rename", "insert", "delete first", "nothing"}) {
        EnvHandle env(text.c_str());
        std::vector<std::string> paths;
        std::vector<std::string> expected;
        int visited = 0;
        const std::string what = change;
        int shift = 0;
        EXPECT_EQ(Traverse(env, "S", nullptr, 1,
                           [&](zr_env, const char *, const char *path) {
                               ++visited;
                               paths.push_back(path);
                               expected.push_back("a@" + std::to_string(visited + shift));
                               if (visited == 20 || visited == 30) {
                                   if (what == "rename" && env_rename(env, "S", "a", "z") == 0)
                                       --shift;
                                   if (what == "insert" && env_insert_before(env, "S", "a", "a") == 0)
                                       ++shift;
                                   if (what == "delete first" && env_delete(env, "S", "a") == 0)
                                       --shift;
                               }
                           }),
                  0);
        EXPECT_EQ(paths, expected) << change;
        EXPECT_EQ(visited, 40);
        EXPECT_EQ(shift != 0, what != "nothing");
    }
}

TEST(EnvTraverse, NestedWalksAreIndependent) {
    EnvHandle env("[S]\na ={\nx =1\nx =2\n}\nb ={\ny =3\n}\n");
    std::vector<std::string> steps;
    EXPECT_EQ(Traverse(env, "S", nullptr, 1,
                       [&](zr_env sub, const char *, const char *) {
                           Traverse(sub, nullptr, nullptr, 1, [&](zr_env inner, const char *s, const char *p) {
                               steps.push_back(Step(inner, s, p));
                           });
                       }),
              0);
    EXPECT_THAT(steps, ElementsAre("-:x@1=1", "-:x@2=2", "-:y@1=3"));
}

TEST(EnvTraverse, MillionNamesakes) {
    constexpr int kCount = 1000000;
    EnvHandle env;
    {
        std::string text = "[S]\n";
        for (int i = 0; i < kCount; ++i)
            text += "a =" + std::to_string(i % 10) + "\n";
        ASSERT_EQ(env_read_from_string(text.c_str(), env), 0);
    }
    const auto start = std::chrono::steady_clock::now();
    int calls = 0;
    int wrong = 0;
    EXPECT_EQ(Traverse(env, "S", nullptr, 1,
                       [&](zr_env sub, const char *, const char *path) {
                           ++calls;
                           wrong += path != "a@" + std::to_string(calls) ? 1 : 0;
                           wrong += ValueOf(sub, nullptr, nullptr)[0] != '0' + (calls - 1) % 10 ? 1 : 0;
                       }),
              0);
    EXPECT_EQ(calls, kCount);
    EXPECT_EQ(wrong, 0);
    RecordProperty("seconds", std::to_string(Seconds(start)));
}

// --- env_traverse_leafs
// -----------------------------------------------------------------------------------------------

TEST(EnvTraverseLeafs, VisitsLeafsInSequence) {
    EnvHandle env(kModel);
    EXPECT_THAT(Leafs(env), ElementsAre("Model:Title@1=Frame A", "Model:bar@1@length@1=1", "Model:bar@2@length@1=2",
                                        "Model:bar@2@length@2=3", "Model:bar@2@deep@1@x@1=4", "Other:x@1=5"));
}

TEST(EnvTraverseLeafs, SubenvironmentHasNoSection) {
    EnvHandle env(kModel);
    EnvHandle sub(env_open_subenv(env, "Model", "bar@2", 1));
    EXPECT_THAT(Leafs(sub), ElementsAre("-:length@1=2", "-:length@2=3", "-:deep@1@x@1=4"));
}

TEST(EnvTraverseLeafs, NothingToVisit) {
    EnvHandle env(kModel);
    EnvHandle empty;
    EXPECT_THAT(Leafs(empty), IsEmpty());
    EnvHandle blanks("[A]\n[B]\nx ={\n}\ny ={\nz ={\n}\n}\n");
    EXPECT_THAT(Leafs(blanks), IsEmpty());
    EXPECT_THAT(Leafs(nullptr, -10), IsEmpty());
    EXPECT_EQ(env_traverse_leafs(env, nullptr, nullptr), -10);
    EnvHandle leaf(env_open_subenv(env, "Model", "Title", 1));
    EXPECT_THAT(Leafs(leaf, -10), IsEmpty());
    EnvHandle block(env_open_subenv(env, "Model", "empty", 1));
    EXPECT_THAT(Leafs(block, -10), IsEmpty());
}

// A section inside a block makes a view of no environment, which has no children; its siblings are visited.
TEST(EnvTraverseLeafs, InnerSectionIsPassedBy) {
    EnvHandle env("[S]\na =1\nb =2\n");
    auto *section = reinterpret_cast<Zr::CZrEnv *>(static_cast<zr_env>(env))->GetFirstSection();
    auto *inner = new Zr::CZrEnvSection("inner");
    ASSERT_TRUE(inner->InsertElement(new Zr::CZrEnvDataElement("x", "3")));
    ASSERT_TRUE(section->InsertElementBefore(inner, section->GetFirstElement()));
    EXPECT_THAT(Leafs(env), ElementsAre("S:a@1=1", "S:b@1=2"));
    ASSERT_EQ(env_put(env, "S", "b", "4"), 0);
    EXPECT_THAT(Leafs(env), ElementsAre("S:a@1=1", "S:b@1=4"));
}

TEST(EnvTraverseLeafs, ElementThatCannotBeOpenedEndsTheWalk) {
    SwitchCapture capture;
    EnvHandle env("[S]\na =1\nb =2\n");
    ASSERT_EQ(env_insert_before(env, "S", "b", nullptr), 0);
    EXPECT_THAT(Leafs(env, -10), ElementsAre("S:a@1=1"));
    EXPECT_THAT(capture.Take(), ElementsAre("Env_uti2: -10"));
}

TEST(EnvTraverseLeafs, EmptySubenvironmentMeetsTheSectionsOfItsDefault) {
    SwitchCapture capture;
    EnvHandle deflt("[D]\nx =1\n");
    EnvHandle env(kModel, 0, deflt);
    EnvHandle block(env_open_subenv(env, "Model", "empty", 1));
    EXPECT_THAT(Leafs(block, -10), IsEmpty());
    EXPECT_THAT(capture.Take(), ElementsAre("Env_uti2: -10"));
}

TEST(EnvTraverseLeafs, AgreesWithThePlainRecursion) {
    std::mt19937 random(4711);
    for (int round = 0; round < 200; ++round) {
        std::string text;
        const auto sections = random() % 4;
        for (unsigned i = 0; i < sections; ++i)
            text += "[" + std::string(1, static_cast<char>('A' + i)) + "]\n" + RandomTree(random, 4);
        EnvHandle env(text.c_str());
        if (random() % 2)
            env_rename(env, "A", "a", "b");
        if (random() % 3 == 0)
            env_set_delimiter(env, '/');
        const ReferenceWalk reference(env); // a rename may leave elements that no path finds: both end there
        EXPECT_EQ(Leafs(env, reference.Result()), reference.Steps()) << text;
    }
}

TEST(EnvTraverseLeafs, LongPathsAreCut) {
    const std::string name(500, 'n');
    std::string text = "[S]\n";
    for (int i = 0; i < 30; ++i)
        text += name + " ={\n";
    text += "x =1\ny =2\n";
    for (int i = 0; i < 30; ++i)
        text += "}\n";
    EnvHandle env((text + "z =3\n").c_str());
    const std::vector<std::string> steps = Leafs(env);
    ASSERT_EQ(steps.size(), 3u);
    EXPECT_EQ(steps[0].size(), std::strlen("S:=1") + 10239);
    EXPECT_EQ(steps[1].substr(0, 10000), steps[0].substr(0, 10000));
    EXPECT_EQ(steps[1].back(), '2');
    EXPECT_EQ(steps[2], "S:z@1=3");
    EXPECT_EQ(steps, ReferenceWalk(env).Steps());
}

TEST(EnvTraverseLeafs, CallbackDeletesItsOwnLeaf) {
    EnvHandle env(kModel);
    std::vector<std::string> steps;
    EXPECT_EQ(TraverseLeafs(env,
                            [&](zr_env sub, const char *section, const char *path) {
                                steps.push_back(Step(sub, section, path));
                                EXPECT_EQ(env_delete(env, section, path), 0);
                                EXPECT_EQ(env_check(sub, nullptr, nullptr, 1), -4);
                            }),
              0);
    EXPECT_THAT(steps, ElementsAre("Model:Title@1=Frame A", "Model:bar@1@length@1=1", "Model:bar@2@length@1=2",
                                   "Model:bar@2@length@1=3", "Model:bar@2@deep@1@x@1=4", "Other:x@1=5"));
    EXPECT_THAT(Leafs(env), IsEmpty());
}

TEST(EnvTraverseLeafs, CallbackDeletesTheGroundUnderTheWalk) {
    for (const char *path : {"bar@2@deep", "bar@2", "-section", "-all"}) {
        EnvHandle env(kModel);
        std::vector<std::string> steps;
        const std::string what = path;
        EXPECT_EQ(TraverseLeafs(env,
                                [&](zr_env sub, const char *section, const char *p) {
                                    steps.push_back(Step(sub, section, p));
                                    if (std::string(p) != "bar@2@length@1")
                                        return;
                                    if (what == "-section")
                                        env_delete(env, "Model", nullptr);
                                    else if (what == "-all")
                                        env_delete(env, nullptr, nullptr);
                                    else
                                        env_delete(env, "Model", path);
                                }),
                  0);
        std::vector<std::string> expected = {"Model:Title@1=Frame A", "Model:bar@1@length@1=1",
                                             "Model:bar@2@length@1=2"};
        if (what == "bar@2@deep")
            expected.push_back("Model:bar@2@length@2=3");
        if (what != "-all")
            expected.push_back("Other:x@1=5");
        EXPECT_EQ(steps, expected) << path;
    }
}

TEST(EnvTraverseLeafs, CallbackRenamesTheSection) {
    EnvHandle env("[S]\na =1\nb =2\n");
    std::vector<std::string> steps;
    EXPECT_EQ(TraverseLeafs(env,
                            [&](zr_env sub, const char *section, const char *path) {
                                steps.push_back(Step(sub, section, path));
                                env_rename(env, "S", nullptr, "a much longer name than before");
                            }),
              0);
    EXPECT_THAT(steps, ElementsAre("S:a@1=1", "S:b@1=2"));
}

TEST(EnvTraverseLeafs, NestedWalkThatFailsEndsTheOuterOne) {
    EnvHandle env("[S]\na =1\nb =2\n");
    EnvHandle other("[S]\na =1\n");
    EnvHandle leaf(env_open_subenv(other, "S", "a", 1));
    SwitchCapture capture;
    ASSERT_EQ(env_insert_before(other, "S", "a", nullptr), 0);
    int calls = 0;
    EXPECT_EQ(TraverseLeafs(env,
                            [&](zr_env, const char *, const char *) {
                                ++calls;
                                EXPECT_EQ(TraverseLeafs(other, [](zr_env, const char *, const char *) {}), -10);
                            }),
              -10);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(TraverseLeafs(env, [&](zr_env, const char *, const char *) { ++calls; }), 0);
    EXPECT_EQ(calls, 3);
}

TEST(EnvTraverseLeafs, MillionLevels) {
    constexpr int kDepth = 1000000;
    EnvHandle env;
    ASSERT_EQ(env_read_from_string(NestedText(kDepth, "x =1\ny =2\n").c_str(), env), 0);
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::string> values;
    EXPECT_EQ(TraverseLeafs(env,
                            [&](zr_env sub, const char *section, const char *path) {
                                EXPECT_STREQ(section, "S");
                                EXPECT_EQ(std::strlen(path), 10239u);
                                EXPECT_EQ(std::string(path, 8), "b@1@b@1@");
                                values.push_back(ValueOf(sub, nullptr, nullptr));
                            }),
              0);
    EXPECT_THAT(values, ElementsAre("1", "2"));
    RecordProperty("seconds", std::to_string(Seconds(start)));
}

// --- env_sink
// ---------------------------------------------------------------------------------------------------------

TEST(EnvSink, AddsWhatIsMissing) {
    EnvHandle source("[S]\na =1\nb ={\nx =2\n}\n[T]\nc =3\n");
    EnvHandle target("[S]\na =old\n");
    EXPECT_EQ(env_sink(target, source, 0), 0);
    EXPECT_EQ(WrittenText(target), "[S]\n  a =old\n  b ={\n    x =2\n  }\n[T]\n  c =3\n");
}

TEST(EnvSink, AppendsNamesakes) {
    EnvHandle source("[S]\na =1\na =2\nb ={\nx =3\nx =4\n}\n");
    EnvHandle target("[S]\na =old\n");
    EXPECT_EQ(env_sink(target, source, 1), 0);
    EXPECT_EQ(WrittenText(target), "[S]\n  a =old\n  a =1\n  a =2\n  b ={\n    x =3\n    x =4\n  }\n");
}

TEST(EnvSink, Overwrites) {
    EnvHandle source("[S]\na =1\na =2\n");
    EnvHandle target("[S]\na =old\nb =kept\n");
    EXPECT_EQ(env_sink(target, source, 2), 0);
    EXPECT_EQ(WrittenText(target), "[S]\n  a =1\n  b =kept\n  a =2\n");
}

TEST(EnvSink, UpdatesWhatExists) {
    EnvHandle source("[S]\na =1\nb =2\n");
    EnvHandle target("[S]\na =old\nc =kept\n");
    EXPECT_EQ(env_sink(target, source, 3), 0);
    EXPECT_EQ(WrittenText(target), "[S]\n  a =1\n  c =kept\n");
}

TEST(EnvSink, OtherModesAreReported) {
    EnvHandle source(kModel);
    EnvHandle target;
    SwitchCapture capture;
    for (zr_long mode : {4, -1, 2147483647})
        EXPECT_EQ(env_sink(target, source, mode), -10);
    EXPECT_THAT(capture.Take(), ElementsAre("Env_uti2: 4", "Env_uti2: -1", "Env_uti2: 2147483647"));
    EXPECT_EQ(WrittenText(target), "");
    EnvHandle nothing;
    EXPECT_EQ(env_sink(target, nothing, 4), 0); // no leaf, no look at the mode
    EXPECT_THAT(capture.Take(), IsEmpty());
}

TEST(EnvSink, NullHandles) {
    EnvHandle env(kModel);
    EXPECT_EQ(env_sink(nullptr, env, 2), -10);
    EXPECT_EQ(env_sink(env, nullptr, 2), -10);
}

TEST(EnvSink, ValuelessLeafStopsIt) {
    EnvHandle source("[S]\na =1\nb =2\nc =3\n");
    ASSERT_EQ(env_insert_before(source, "S", "b", "n"), 0);
    EnvHandle target;
    EXPECT_EQ(env_sink(target, source, 2), -10);
    EXPECT_EQ(WrittenText(target), "[S]\n  a =1\n");
}

TEST(EnvSink, DefaultsOfTheTargetCountAsThere) {
    EnvHandle deflt("[S]\na =d\n");
    EnvHandle source("[S]\na =1\nb =2\n");
    EnvHandle target("", 0, deflt);
    EXPECT_EQ(env_sink(target, source, 0), 0);
    EXPECT_EQ(WrittenText(target), "[S]\n  b =2\n");
    EXPECT_EQ(env_sink(target, source, 3), 0);
    EXPECT_EQ(WrittenText(target), "[S]\n  b =2\n  a =1\n");
    EXPECT_EQ(WrittenText(deflt), "[S]\n  a =d\n");
}

TEST(EnvSink, NegativeIdOfTheSourceStopsIt) {
    EnvHandle source("[S]\na =1\nb =2\n", -5);
    EnvHandle target;
    EXPECT_EQ(env_sink(target, source, 2), -10);
    EXPECT_EQ(WrittenText(target), "[S]\n  a =1\n");
}

TEST(EnvSink, PathsCarryTheDelimiterOfTheSource) {
    EnvHandle source("[S]\nb ={\nx =1\n}\n");
    env_set_delimiter(source, '/');
    EnvHandle target;
    EXPECT_EQ(env_sink(target, source, 2), 0);
    EXPECT_EQ(WrittenText(target), "[S]\n  b/1/x/1 =1\n"); // one name where the delimiter is another
    EnvHandle same;
    env_set_delimiter(same, '/');
    EXPECT_EQ(env_sink(same, source, 1), 0);
    EXPECT_EQ(WrittenText(same), WrittenText(source));
}

TEST(EnvSink, LongPathsOfAppendedLeafsAreCut) {
    const std::string name(300, 'n');
    EnvHandle source(("[S]\n" + name + " =1\n").c_str());
    EnvHandle target;
    EXPECT_EQ(env_sink(target, source, 1), 0);
    EXPECT_EQ(ValueOf(target, "S", name.substr(0, 255).c_str()), "1");
    EXPECT_EQ(env_count_elements(target, "S", nullptr, 1), 1);
    EnvHandle whole;
    EXPECT_EQ(env_sink(whole, source, 2), 0);
    EXPECT_EQ(WrittenText(whole), WrittenText(source));
}

TEST(EnvSink, CopiesARandomTreeWhole) {
    std::mt19937 random(42);
    for (int round = 0; round < 50; ++round) {
        // an empty block is not copied, and would shift the numbers of its namesakes
        EnvHandle source(("[S]\n" + RandomTree(random, 4, 1)).c_str());
        const std::string text = WrittenText(source);
        for (zr_long mode : {0, 1, 2}) {
            EnvHandle target;
            EXPECT_EQ(env_sink(target, source, mode), 0);
            EXPECT_EQ(WrittenText(target), text) << mode;
        }
        EnvHandle updated;
        EXPECT_EQ(env_sink(updated, source, 3), 0);
        EXPECT_EQ(WrittenText(updated), "");
    }
}

TEST(EnvSink, IntoItselfChangesNothing) {
    EnvHandle env(kModel);
    const std::string before = WrittenText(env);
    for (zr_long mode : {0, 2, 3}) {
        EXPECT_EQ(env_sink(env, env, mode), 0) << mode;
        EXPECT_EQ(WrittenText(env), before) << mode;
    }
}

// What env_sink into an environment comes to, step by step: the modes that copy what is missing, or all.
int PlainSink(zr_env target, zr_env source, zr_long mode) {
    int fault = 0;
    const int result = TraverseLeafs(source, [&](zr_env sub, const char *section, const char *path) {
        if (fault != 0 || (mode == 0 && env_exist(target, section, path, 1)))
            return;
        const char *text = nullptr;
        env_get_reference(sub, nullptr, nullptr, 1, &text);
        fault = env_put(target, section, path, text);
    });
    return result == 0 && fault == 0 ? 0 : -10;
}

// Names that repeat, that a path takes apart or cannot lead to, empty blocks, sections of one name, sections without
// leaves.
std::string RandomModel(std::mt19937 &random, bool strange) {
    static const char *const plain[] = {"a", "b", "c", "12", "a long name of a leaf"};
    static const char *const odd[] = {"a", "a@2", "@", "b@x", "3"};
    std::string text;
    int open = 0;
    for (int sections = 1 + static_cast<int>(random() % 4); sections > 0; --sections) {
        text += "[S" + std::to_string(strange ? random() % 3 : static_cast<unsigned>(sections)) + "]\n";
        for (int left = static_cast<int>(random() % 25); left > 0; --left) {
            const char *name = strange ? odd[random() % 5] : plain[random() % 5];
            const auto kind = random() % 6;
            if (kind == 0) {
                text += std::string(name) + " ={\n" + (strange && random() % 2 == 0 ? "" : "x =1\n");
                ++open;
            } else if (kind == 1 && open > 0) {
                text += "}\n";
                --open;
            } else {
                text += std::string(name) + " =" + std::string(random() % 40, 'v') + "\n";
            }
        }
        for (; open > 0; --open)
            text += "}\n";
    }
    return text;
}

void ExpectSameSink(zr_env source, const char *delimiter, const std::string &told) {
    for (zr_long mode : {0, 2}) {
        EnvHandle target;
        EnvHandle reference;
        env_set_delimiter(target, *delimiter);
        env_set_delimiter(reference, *delimiter);
        const int expected = PlainSink(reference, source, mode);
        EXPECT_EQ(env_sink(target, source, mode), expected) << told;
        EXPECT_EQ(WrittenText(target), WrittenText(reference)) << told;
        EXPECT_EQ(target->GetLastError(), reference->GetLastError()) << told;
    }
}

TEST(EnvSink, IntoAnEmptyOneDoesAsPutsDo) {
    std::mt19937 random(7);
    for (int round = 0; round < 400; ++round) {
        const std::string text = RandomModel(random, round % 2 != 0);
        EnvHandle source(text.c_str());
        ExpectSameSink(source, "@", text);
        if (round % 16 < 2)
            ExpectSameSink(source, "1", text);
        for (const char *delimiter : {"/", "1", "="}) {
            env_set_delimiter(source, *delimiter);
            if (round % 16 < 2)
                ExpectSameSink(source, delimiter, text);
        }
    }
}

// After a rename, a move, a value that is longer, an element without value.
TEST(EnvSink, OfAChangedTreeDoesAsPutsDo) {
    std::mt19937 random(8);
    for (int round = 0; round < 100; ++round) {
        const std::string text = "[S]\na =1\na =2\nb ={\na =3\nc =4\nc =5\n}\nb =6\n[T]\nx =7\n";
        EnvHandle source(text.c_str());
        for (int edits = 0; edits < 3; ++edits) {
            switch (random() % 6) {
            case 0:
                env_rename(source, "S", "b@a", random() % 2 ? "c" : "a much longer name");
                break;
            case 1:
                env_put(source, "S", random() % 2 ? "b@c@3" : "b@c@6", "8");
                break;
            case 2:
                env_delete(source, "S", random() % 2 ? "a" : "b@c");
                break;
            case 3:
                env_put(source, "T", "x", std::string(3000, 'w').c_str());
                break;
            case 4:
                source->GetBlock("S", nullptr, true, false)
                    ->InsertElementBefore(new Zr::CZrEnvDataElement("a", "9"),
                                          source->GetElement("S", "a", true, false));
                break;
            default:
                env_delete(source, "T", nullptr);
            }
        }
        ExpectSameSink(source, "@", std::to_string(round));
    }
}

TEST(EnvSink, OfWhatWasSunkBuildsTheSameTree) {
    EnvHandle source("[S]\na =1\nb ={\nx =2\n}\n[T]\nc =3\n");
    EnvHandle target;
    EXPECT_EQ(env_sink(target, source, 2), 0);
    EXPECT_EQ(env_put(target, "S", "b@x", "a longer value than before"), 0);
    EXPECT_EQ(env_put(target, "S", "b@y", "new"), 0);
    EXPECT_EQ(ValueOf(source, "S", "b@x"), "2");
    EnvHandle again;
    EXPECT_EQ(env_sink(again, target, 0), 0);
    EXPECT_EQ(WrittenText(again), WrittenText(target));
}

TEST(EnvSink, DefaultsCountAsThere) {
    EnvHandle source("[S]\na =1\nb =2\n");
    EnvHandle deflt("[S]\na =old\n");
    EnvHandle target("", 0, deflt);
    EXPECT_EQ(env_sink(target, source, 0), 0);
    EXPECT_EQ(WrittenText(target), "[S]\n  b =2\n");
}

// --- env_copy_block
// ---------------------------------------------------------------------------------------------------

TEST(EnvCopyBlock, CopiesToTheSameAddress) {
    EnvHandle source(kModel);
    EnvHandle target;
    EXPECT_EQ(env_copy_block(target, source, "Model", "bar@2", 2), 0);
    EXPECT_EQ(Names(target, "Model", nullptr), "bar,bar,"); // one filled up in front
    EXPECT_EQ(ValueOf(target, "Model", "bar@2@deep@x"), "4");
    EXPECT_EQ(env_copy_block(target, source, "Other", nullptr, 2), 0);
    EXPECT_EQ(ValueOf(target, "Other", "x"), "5");
}

TEST(EnvCopyBlock, CopiesToAnotherAddress) {
    EnvHandle source(kModel);
    EnvHandle target;
    EXPECT_EQ(env_copy_block_to(target, source, "New", "a@b", "Model", "bar@2", 2), 0);
    EXPECT_EQ(WrittenText(target),
              "[New]\n  a ={\n    b ={\n      length =2\n      length =3\n      deep ={\n        x =4\n"
              "      }\n    }\n  }\n");
    EXPECT_EQ(env_copy_block_to(source, source, "Copy", nullptr, "Model", nullptr, 2), 0);
    EXPECT_EQ(ValueOf(source, "Copy", "bar@2@deep@x"), "4");
}

TEST(EnvCopyBlock, EndsThatCannotBeOpened) {
    EnvHandle source(kModel);
    EnvHandle target;
    EXPECT_EQ(env_copy_block(target, source, "Nowhere", nullptr, 2), -10);
    EXPECT_EQ(env_copy_block(target, source, "Model", "none", 2), -10);
    EXPECT_EQ(env_copy_block(nullptr, source, "Model", nullptr, 2), -10);
    EXPECT_EQ(env_copy_block(target, nullptr, "Model", nullptr, 2), -10);
    EXPECT_EQ(env_count_elements(target, nullptr, nullptr, 1), 0);
    EXPECT_EQ(env_copy_block(target, source, "Model", "length", 2), -10); // not a direct child
    EXPECT_EQ(env_count_elements(target, nullptr, nullptr, 1), 0);
    ReportCapture capture;
    EXPECT_EQ(env_copy_block_to(target, source, "a]b", nullptr, "Model", nullptr, 2), -10);
    EXPECT_THAT(capture.Take(), ElementsAre(Message("ZrEnv", "Wrong section name: ")));
    EXPECT_EQ(env_copy_block_to(target, source, nullptr, "x", "Model", nullptr, 2), -10);
    EXPECT_EQ(env_copy_block_to(nullptr, source, "x", nullptr, "Model", nullptr, 2), -10);
}

TEST(EnvCopyBlock, ModesAreThoseOfTheSink) {
    EnvHandle source("[S]\nb ={\nx =1\ny =2\n}\n");
    const char *before = "[S]\n  b ={\n    x =old\n  }\n";
    const struct {
        zr_long mode;
        int result;
        const char *after;
    } cases[] = {{0, 0, "[S]\n  b ={\n    x =old\n    y =2\n  }\n"},
                 {1, 0, "[S]\n  b ={\n    x =old\n    x =1\n    y =2\n  }\n"},
                 {2, 0, "[S]\n  b ={\n    x =1\n    y =2\n  }\n"},
                 {3, 0, "[S]\n  b ={\n    x =1\n  }\n"},
                 {4, -10, before}};
    SwitchCapture capture;
    for (const auto &c : cases) {
        EnvHandle target(before);
        EXPECT_EQ(env_copy_block(target, source, "S", "b", c.mode), c.result) << c.mode;
        EXPECT_EQ(WrittenText(target), c.after) << c.mode;
        EnvHandle other(before);
        EXPECT_EQ(env_copy_block_to(other, source, "S", "b", "S", "b", c.mode), c.result) << c.mode;
        EXPECT_EQ(WrittenText(other), c.after) << c.mode;
    }
    EXPECT_THAT(capture.Take(), ElementsAre("Env_uti2: 4", "Env_uti2: 4"));
}

TEST(EnvCopyBlock, LeafOrEmptyBlockIsNoBlockToCopy) {
    EnvHandle source(kModel);
    EnvHandle target;
    EXPECT_EQ(env_copy_block(target, source, "Model", "Title", 2), -10);
    EXPECT_EQ(env_copy_block(target, source, "Model", "empty", 2), -10);
    EXPECT_EQ(env_check(target, "Model", "Title", 1), -2); // the target's end was made all the same
}

TEST(EnvCopyBlock, BothEndsAreClosedAgain) {
    zr_env source = env_open(0, nullptr);
    zr_env target = env_open(0, nullptr);
    ASSERT_EQ(env_read_from_string(kModel, source), 0);
    EXPECT_EQ(env_copy_block(target, source, "Model", nullptr, 0), 0);
    EXPECT_EQ(env_close(source, 0), 0);
    EXPECT_EQ(env_close(target, 0), 0);
}

// --- env_list_elem_names
// ----------------------------------------------------------------------------------------------

TEST(EnvListElemNames, NamesAndSeparators) {
    EnvHandle deflt("[D]\nx =1\n");
    EnvHandle env(kModel, 0, deflt);
    EXPECT_EQ(Names(env, "Model", nullptr), "Title,bar,empty,bar,");
    EXPECT_EQ(Names(env, "Model", "bar@2"), "length,length,deep,");
    EXPECT_EQ(Names(env, nullptr, "x"), "Model,Blank,Other,");
    EXPECT_EQ(Names(env, "Blank", nullptr), "");
    EXPECT_EQ(Names(env, "D", nullptr), "x,");
    EnvHandle sub(env_open_subenv(env, "Model", "bar", 1));
    EXPECT_EQ(Names(sub, nullptr, nullptr), "length,");
    char out[20] = "kept";
    EXPECT_EQ(env_list_elem_names(env, "Model", "deep", 0, ',', 20, out), 0);
    EXPECT_STREQ(out, "x,");
    EXPECT_EQ(env_list_elem_names(env, "Model", "deep", 1, ',', 20, out), -2);
    EXPECT_STREQ(out, "");
    EnvHandle leaf(env_open_subenv(env, "Model", "Title", 1));
    EXPECT_EQ(Names(leaf, nullptr, nullptr), "(-2)");
    EnvHandle empty;
    EXPECT_EQ(Names(empty, nullptr, nullptr), "");
    EXPECT_EQ(env_delete(env, "Model", "bar@1"), 0);
    EXPECT_EQ(Names(sub, nullptr, nullptr), "(-2)"); // the default has no block for a null section
}

TEST(EnvListElemNames, NamelessAndValuelessOnesAreListed) {
    EnvHandle env("[S]\na =1\n");
    ASSERT_EQ(env_insert_before(env, "S", "a", nullptr), 0);
    ASSERT_EQ(env_insert_before(env, "S", "a", "n"), 0);
    EXPECT_EQ(Names(env, "S", nullptr), ",n,a,");
}

TEST(EnvListElemNames, CapacityCountsTheTerminator) {
    EnvHandle env("[S]\nab =1\nc =2\n");
    char out[8] = "kept";
    EXPECT_EQ(env_list_elem_names(env, "S", nullptr, 1, ';', 5, out), -7);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(env_list_elem_names(env, "S", nullptr, 1, ';', 6, out), 0);
    EXPECT_STREQ(out, "ab;c;");
    EXPECT_EQ(env_list_elem_names(env, "S", nullptr, 1, ';', 1, out), -7);
    EXPECT_STREQ(out, "");
    std::memcpy(out, "kept", 5);
    EXPECT_EQ(env_list_elem_names(env, "S", nullptr, 1, ';', 0, out), -7);
    EXPECT_EQ(env_list_elem_names(env, "S", nullptr, 1, ';', -1, out), -7);
    EXPECT_STREQ(out, "kept");
    EXPECT_EQ(env_list_elem_names(env, "S", nullptr, 1, '\0', 8, out), 0);
    EXPECT_EQ(std::string(out, 6), std::string("ab\0c\0\0", 6));
}

TEST(EnvListElemNames, Failures) {
    EnvHandle env(kModel);
    char out[8] = "kept";
    EXPECT_EQ(env_list_elem_names(nullptr, "Model", nullptr, 1, ',', 8, out), 0);
    EXPECT_STREQ(out, "kept");
    EXPECT_EQ(env_list_elem_names(nullptr, "Model", nullptr, 1, ',', 8, nullptr), 0);
    EXPECT_EQ(env_list_elem_names(env, "Model", nullptr, 1, ',', 8, nullptr), -10);
    EXPECT_EQ(env_list_elem_names(env, "Nowhere", nullptr, 1, ',', 8, out), -2);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(env_list_elem_names(env, "Model", "Title", 1, ',', 8, out), -2);
    EXPECT_EQ(env_list_elem_names(env, "Model", "none", 1, ',', 8, out), -2);
}
