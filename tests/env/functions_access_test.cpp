// The env_ functions that get and put single texts, take children by number, and iterate over them.
#include "env/functions_access.h"

#include <cstring>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "function_fixture.h"
#include "report_capture.h"

using namespace zr::test;
using testing::ElementsAre;

namespace {

const char *kModel = "[Model]\n"
                     "Title =Frame A\n"
                     "bar ={\nlength =1\n}\n"
                     "empty =\n"
                     "[Other]\nx =1\n";

// A node of neither kind.
class ForeignElement : public Zr::CZrEnvElement {
public:
    explicit ForeignElement(const char *szName) : CZrEnvElement(szName) {}
};

// What an iteration or look-up by number gave.
struct Got {
    int result;
    std::string name, text;

    bool operator==(const Got &) const = default;
};

void PrintTo(const Got &got, std::ostream *out) {
    *out << got.result << " " << got.name << "=" << got.text;
}

Got Pos(zr_env env, const char *section, const char *path, zr_long pos, zr_long nameSize = 50, zr_long textSize = 50) {
    char name[50] = "?";
    char text[50] = "?";
    const int result = env_get_pos(env, section, path, 1, pos, nullptr, nameSize, name, textSize, text);
    return {result, name, text};
}

Got First(zr_env env, const char *section, const char *path, zr_long nameSize = 50, zr_long textSize = 50) {
    char name[50] = "?";
    char text[50] = "?";
    const int result = env_get_first_core(env, section, path, 1, nullptr, nameSize, name, textSize, text);
    return {result, name, text};
}

Got Next(zr_env env, zr_long nameSize = 50, zr_long textSize = 50) {
    char name[50] = "?";
    char text[50] = "?";
    const int result = env_get_next_core(env, nameSize, name, textSize, text);
    return {result, name, text};
}

} // namespace

// --- get and put ------------------------------------------------------------------------------------------------------

TEST(EnvGet, CopiesTheTextAndGivesTheId) {
    EnvHandle deflt("[D]\nx =far\n", 7);
    EnvHandle env(kModel, 3, deflt);
    char text[20] = "";
    EXPECT_EQ(env_get(env, "Model", "Title", 1, sizeof text, text), 3);
    EXPECT_STREQ(text, "Frame A");
    EXPECT_EQ(env_get_string(env, "Model", "empty", 1, sizeof text, text), 3);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(env_get(env, "D", "x", 1, sizeof text, text), 7);
    EXPECT_STREQ(text, "far");
    EXPECT_EQ(env_get_string(env, "Model", "length", 0, sizeof text, text), 3);
    EXPECT_STREQ(text, "1");
}

TEST(EnvGet, FailuresKeepTheText) {
    EnvHandle env(kModel);
    char text[20] = "kept";
    EXPECT_EQ(env_get(nullptr, "Model", "Title", 1, sizeof text, text), -10);
    EXPECT_EQ(env_get(env, "Model", "Title", 1, sizeof text, nullptr), -10);
    EXPECT_EQ(env_get(env, "Model", "bar", 1, sizeof text, text), -1);
    EXPECT_EQ(env_get(env, "Model", nullptr, 1, sizeof text, text), -1);
    EXPECT_EQ(env_get(env, "Model", "", 1, sizeof text, text), -1);
    EXPECT_EQ(env_get(env, nullptr, "Title", 1, sizeof text, text), -1); // the first section answers
    EXPECT_EQ(env_get(env, "Model", "none", 1, sizeof text, text), -4);
    EXPECT_EQ(env_get(env, "Model", "length", 1, sizeof text, text), -4);
    EXPECT_EQ(env_get(env, "Nowhere", "Title", 1, sizeof text, text), -4);
    EXPECT_EQ(env_get(env, "Model", "Title", 1, 7, text), -7);
    EXPECT_EQ(env_get(env, "Model", "Title", 1, 0, text), -7);
    EXPECT_EQ(env_get(env, "Model", "Title", 1, -5, text), -7);
    EXPECT_EQ(env_get(env, "Model", std::string(100000, 'x').c_str(), 1, sizeof text, text), -4);
    EXPECT_STREQ(text, "kept");
    EXPECT_EQ(env_get(env, "Model", "Title", 1, 8, text), 0);
    EXPECT_STREQ(text, "Frame A");
}

TEST(EnvGet, BothNamesFailAlike) {
    EnvHandle env(kModel);
    char text[20] = "kept";
    EXPECT_EQ(env_get_string(nullptr, "Model", "Title", 1, sizeof text, text), -10);
    EXPECT_EQ(env_get_string(env, "Model", "Title", 1, sizeof text, nullptr), -10);
    EXPECT_EQ(env_get_string(env, "Model", "bar", 1, sizeof text, text), -1);
    EXPECT_EQ(env_get_string(env, "Model", "none", 1, sizeof text, text), -4);
    EXPECT_EQ(env_get_string(env, "Model", "Title", 1, 7, text), -7);
    EXPECT_STREQ(text, "kept");
    EXPECT_EQ(env_check(env, "Model", "Title", 1), -1); // here -1 is the success
}

TEST(EnvGet, ElementWithoutValueIsAnError) {
    EnvHandle env(kModel);
    ASSERT_EQ(env_insert_before(env, "Model", "Title", "new"), 0);
    char text[20] = "kept";
    EXPECT_EQ(env_get(env, "Model", "new", 1, sizeof text, text), -10);
    EXPECT_STREQ(text, "kept");
}

TEST(EnvPut, MakesAndChangesValues) {
    EnvHandle env;
    EXPECT_EQ(env_put(env, "S", "a@b", "1"), 0);
    EXPECT_EQ(env_put_string(env, "S", "a@b@2", "two"), 0);
    EXPECT_EQ(env_put(env, "S", "a@b", "longer than before"), 0);
    EXPECT_EQ(env_put(env, "S", "a@c", ""), 0);
    EXPECT_EQ(WrittenText(env), "[S]\n  a ={\n    b =longer than before\n    b =two\n    c =\n  }\n");
}

TEST(EnvPut, DefaultsAreNotTouched) {
    EnvHandle deflt("[D]\nx =1\n", 7);
    EnvHandle env("", 3, deflt);
    EXPECT_EQ(env_put(env, "D", "x", "2"), 0);
    EXPECT_EQ(ValueOf(deflt, "D", "x"), "1");
    EXPECT_EQ(ValueOf(env, "D", "x"), "2");
}

TEST(EnvPut, EmptyPathIsReported) {
    EnvHandle env(kModel);
    ReportCapture capture;
    EXPECT_EQ(env_put(env, "Model", "", "1"), -6);
    EXPECT_EQ(env_put_string(nullptr, "Model", "", "1"), -6);
    const Report report = Error("Env_pg", "Empty path passed to env_put_core");
    EXPECT_THAT(capture.Take(), ElementsAre(report, report));
    EXPECT_EQ(env_put(env, "Model", "", nullptr), -10);
    EXPECT_TRUE(capture.Take().empty());
}

TEST(EnvPut, NullAndRefusedArguments) {
    EnvHandle env(kModel);
    EXPECT_EQ(env_put(nullptr, "Model", "Title", "1"), -10);
    EXPECT_EQ(env_put(env, "Model", "Title", nullptr), -10);
    EXPECT_EQ(env_put_string(env, "Model", "Title", nullptr), -10);
    EXPECT_EQ(env_put(env, "Model", nullptr, "1"), -10); // a section takes no value
    EXPECT_EQ(env_put(env, "New", nullptr, "1"), -4);    // and is made
    EXPECT_EQ(env_put(env, "Model", "a@0", "1"), -10);
    EXPECT_EQ(ValueOf(env, "Model", "Title"), "Frame A");
    ReportCapture capture;
    EXPECT_EQ(env_put(env, "a]b", "x", "1"), -10);
    EXPECT_THAT(capture.Take(), ElementsAre(Message("ZrEnv", "Wrong section name: ")));
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 3);
}

TEST(EnvPut, OverLongNamesAndTexts) {
    EnvHandle env;
    const std::string section(70000, 's');
    const std::string name(70000, 'n');
    const std::string value(70000, 'v');
    EXPECT_EQ(env_put(env, section.c_str(), (name + "@" + name).c_str(), value.c_str()), 0);
    EXPECT_EQ(ValueOf(env, section.c_str(), (name + "@" + name).c_str()), value);
    EXPECT_EQ(env_data_length(env, section.c_str(), (name + "@" + name).c_str(), 1), 70000);
    EXPECT_EQ(env_put(env, "S", DeepPath(20000).c_str(), "deep"), 0);
    EXPECT_EQ(ValueOf(env, "S", DeepPath(20000).c_str()), "deep");
}

TEST(EnvPut, NullPathOfASubenvironmentIsItsRoot) {
    EnvHandle env(kModel);
    EnvHandle leaf(env_open_subenv(env, "Model", "Title", 1));
    EXPECT_EQ(env_put(leaf, nullptr, nullptr, "B"), 0);
    EXPECT_EQ(ValueOf(env, "Model", "Title"), "B");
    EnvHandle block(env_open_subenv(env, "Model", "bar", 1));
    EXPECT_EQ(env_put(block, nullptr, nullptr, "C"), 0);
    EXPECT_EQ(ValueOf(env, "Model", "bar"), "C");
    EXPECT_EQ(ValueOf(block, nullptr, nullptr), "C");
}

TEST(EnvPutCore, ExtDataIsRefused) {
    EnvHandle env(kModel);
    ReportCapture capture;
    EXPECT_EQ(zr::env::env_put_core(env, "Model", "", "1", "data"), -10);
    EXPECT_THAT(capture.Take(), ElementsAre(Message("Env_pg", "ext_data wird nicht mehr unterst\xFC"
                                                              "tzt.")));
    EXPECT_EQ(zr::env::env_put_core(nullptr, nullptr, nullptr, nullptr, "data"), -10);
    EXPECT_THAT(capture.Take(), testing::SizeIs(1)); // before all else
    EXPECT_EQ(zr::env::env_put_core(nullptr, "Model", "Title", "1", nullptr), -10);
    EXPECT_EQ(zr::env::env_put_core(env, "Model", "Title", nullptr, nullptr), -10);
    EXPECT_TRUE(capture.Take().empty());
    EXPECT_EQ(ValueOf(env, "Model", "Title"), "Frame A");
}

// --- children by number -----------------------------------------------------------------------------------------------

TEST(EnvGetPos, CopiesChildren) {
    EnvHandle env(kModel);
    EXPECT_EQ(Pos(env, "Model", nullptr, 1), (Got{-1, "Title", "Frame A"}));
    EXPECT_EQ(Pos(env, "Model", nullptr, 2), (Got{-2, "bar", "?"}));
    EXPECT_EQ(Pos(env, "Model", nullptr, 3), (Got{-1, "empty", ""}));
    EXPECT_EQ(Pos(env, "Model", "bar", 1), (Got{-1, "length", "1"}));
    EXPECT_EQ(Pos(env, nullptr, nullptr, 2), (Got{-2, "Other", "?"}));
}

TEST(EnvGetPos, IndirectSearchFindsTheBlockAnywhere) {
    EnvHandle env("[S]\na ={\nb ={\nx =1\ny =2\n}\n}\n");
    char name[20] = "?";
    char text[20] = "?";
    EXPECT_EQ(env_get_pos(env, "S", "b", 0, 2, nullptr, 20, name, 20, text), -1);
    EXPECT_STREQ(name, "y");
    EXPECT_STREQ(text, "2");
    EXPECT_EQ(env_get_pos(env, "S", "b", 1, 2, nullptr, 20, name, 20, text), -4);
    EXPECT_EQ(env_get_first_core(env, "S", "b", 0, nullptr, 20, name, 20, text), -1);
    EXPECT_STREQ(name, "x");
    EXPECT_EQ(env_get_next_core(env, 20, name, 20, text), -1);
    EXPECT_STREQ(name, "y");
    EXPECT_EQ(env_get_first_core(env, "S", "b", 1, nullptr, 20, name, 20, text), -4);
}

TEST(EnvGetPos, IdIsThatOfTheEnvironmentThatHasIt) {
    EnvHandle deflt("[D]\nx =1\n", 9);
    EnvHandle env(kModel, 4, deflt);
    zr_long id = -1;
    EXPECT_EQ(env_get_pos(env, "D", nullptr, 1, 1, &id, 0, nullptr, 0, nullptr), 0);
    EXPECT_EQ(id, 9);
    EXPECT_EQ(env_get_pos(env, "Model", nullptr, 1, 2, &id, 0, nullptr, 0, nullptr), 0);
    EXPECT_EQ(id, 4);
}

TEST(EnvGetPos, NothingThere) {
    EnvHandle env(kModel);
    EXPECT_EQ(Pos(nullptr, "Model", nullptr, 1), (Got{-10, "?", "?"}));
    EXPECT_EQ(Pos(env, "Model", nullptr, 0), (Got{-4, "?", "?"}));
    EXPECT_EQ(Pos(env, "Model", nullptr, -3), (Got{-4, "?", "?"}));
    EXPECT_EQ(Pos(env, "Model", nullptr, 4), (Got{-4, "?", "?"}));
    EXPECT_EQ(Pos(env, "Model", "Title", 1), (Got{-4, "?", "?"}));
    EXPECT_EQ(Pos(env, "Nowhere", nullptr, 1), (Got{-4, "?", "?"}));
    EXPECT_EQ(Pos(env, nullptr, nullptr, 0), (Got{-4, "?", "?"})); // before any look-up: no report
    EnvHandle empty;
    EXPECT_EQ(Pos(empty, nullptr, nullptr, 1), (Got{-4, "?", "?"}));
}

TEST(EnvGetPos, WhatDoesNotFitIsEmpty) {
    EnvHandle env(kModel);
    EXPECT_EQ(Pos(env, "Model", nullptr, 1, 6, 8), (Got{-1, "Title", "Frame A"}));
    EXPECT_EQ(Pos(env, "Model", nullptr, 1, 5, 8), (Got{-7, "", "Frame A"}));
    EXPECT_EQ(Pos(env, "Model", nullptr, 1, 6, 7), (Got{-7, "Title", ""}));
    EXPECT_EQ(Pos(env, "Model", nullptr, 1, 1, 1), (Got{-7, "", ""}));
    EXPECT_EQ(Pos(env, "Model", nullptr, 1, 0, 0), (Got{-7, "?", "?"}));
    EXPECT_EQ(Pos(env, "Model", nullptr, 1, -1, -1), (Got{-7, "?", "?"}));
    EXPECT_EQ(Pos(env, "Model", nullptr, 2, 4), (Got{-2, "bar", "?"}));
    EXPECT_EQ(Pos(env, "Model", nullptr, 2, 3), (Got{-7, "", "?"}));
    EXPECT_EQ(Pos(env, "Model", nullptr, 2, 0), (Got{-7, "?", "?"}));
}

TEST(EnvGetPos, NullBuffersAreNotFilled) {
    EnvHandle env(kModel);
    char name[20] = "?";
    char text[20] = "?";
    EXPECT_EQ(env_get_pos(env, "Model", nullptr, 1, 1, nullptr, 20, name, 20, nullptr), 0);
    EXPECT_STREQ(name, "Title");
    EXPECT_EQ(env_get_pos(env, "Model", nullptr, 1, 1, nullptr, 20, nullptr, 20, text), -1);
    EXPECT_STREQ(text, "Frame A");
    EXPECT_EQ(env_get_pos(env, "Model", nullptr, 1, 1, nullptr, 20, nullptr, 20, nullptr), 0);
    EXPECT_EQ(env_get_pos(env, "Model", nullptr, 1, 2, nullptr, 20, nullptr, 20, nullptr), 0);
}

TEST(EnvGetPos, ElementWithoutValueOrName) {
    EnvHandle env(kModel);
    ASSERT_EQ(env_insert_before(env, "Model", "Title", "new"), 0);
    EXPECT_EQ(Pos(env, "Model", nullptr, 1), (Got{-10, "new", "?"}));
    EXPECT_EQ(Pos(env, "Model", nullptr, 1, 2), (Got{-7, "", "?"}));
    ASSERT_EQ(env_insert_before(env, "Model", nullptr, "x]y"), 0);
    EXPECT_EQ(Pos(env, nullptr, nullptr, 1), (Got{-10, "?", "?"}));
    ASSERT_EQ(env_insert_before(env, "Model", "bar", nullptr), 0);
    EXPECT_EQ(Pos(env, "Model", nullptr, 3), (Got{-7, "", "?"})); // no value, and no name that could fit
    char text[20] = "?";
    EXPECT_EQ(env_get_pos(env, "Model", nullptr, 1, 3, nullptr, 0, nullptr, 20, text), -10);
}

TEST(EnvGetPos, UnknownElementIsReported) {
    EnvHandle env(kModel);
    Zr::CZrEnvBlock *bar = env->GetBlock("Model", "bar", true, false);
    ASSERT_TRUE(bar->InsertElement(new ForeignElement("strange")));
    ReportCapture capture;
    EXPECT_EQ(Pos(env, "Model", "bar", 2), (Got{-10, "?", "?"}));
    EXPECT_THAT(capture.Take(), ElementsAre(Message("Env_pg", "unbekanntes env-Element")));
    EXPECT_EQ(First(env, "Model", "bar"), (Got{-1, "length", "1"}));
    EXPECT_EQ(Next(env), (Got{-10, "strange", "?"}));
    const char *name = nullptr;
    EXPECT_EQ(env_get_core(env, "Model", "bar", 1, 2, nullptr, &name, nullptr), -10);
    EXPECT_STREQ(name, "strange");
    EXPECT_EQ(env_check(env, "Model", "bar@strange", 1), -4);
    EXPECT_EQ(env_exist(env, "Model", "bar@strange", 1), 1);
    EXPECT_EQ(env_exist_data(env, "Model", "bar@strange", 1), 0);
    EXPECT_EQ(env_exist_block(env, "Model", "bar@strange", 1), 0);
    char text[20] = "?";
    EXPECT_EQ(env_get(env, "Model", "bar@strange", 1, 20, text), -1);
    EnvHandle sub(env_open_subenv(env, "Model", "bar@strange", 1));
    EXPECT_EQ(env_check(sub, nullptr, nullptr, 1), -4);
    EXPECT_TRUE(capture.Take().empty());
    EXPECT_EQ(env_put(env, "Model", "bar@strange", "1"), -10);
    EXPECT_THAT(capture.Take(), ElementsAre(Error("ZrEnv", "unbekanntes Element")));
}

// --- iteration --------------------------------------------------------------------------------------------------------

TEST(EnvIteration, GoesThroughChildrenInSequence) {
    EnvHandle env(kModel);
    EXPECT_EQ(First(env, "Model", nullptr), (Got{-1, "Title", "Frame A"}));
    EXPECT_EQ(Next(env), (Got{-2, "bar", "?"}));
    EXPECT_EQ(Next(env), (Got{-1, "empty", ""}));
    EXPECT_EQ(Next(env), (Got{-4, "?", "?"}));
    EXPECT_EQ(Next(env), (Got{-10, "?", "?"}));
}

TEST(EnvIteration, GoesThroughSections) {
    EnvHandle env(kModel);
    EXPECT_EQ(First(env, nullptr, "not looked at"), (Got{-2, "Model", "?"}));
    EXPECT_EQ(Next(env), (Got{-2, "Other", "?"}));
    EXPECT_EQ(Next(env).result, -4);
}

TEST(EnvIteration, NothingFoundIsRemembered) {
    EnvHandle env(kModel);
    EXPECT_EQ(Next(env).result, -10);
    EXPECT_EQ(First(env, "Nowhere", nullptr).result, -4);
    EXPECT_EQ(Next(env).result, -4);
    EXPECT_EQ(Next(env).result, -10);
}

TEST(EnvIteration, NullHandle) {
    EXPECT_EQ(First(nullptr, "Model", nullptr).result, -10);
    EXPECT_EQ(Next(nullptr).result, -10);
}

TEST(EnvIteration, SecondFirstStartsAnew) {
    EnvHandle env(kModel);
    EXPECT_EQ(First(env, "Model", nullptr).name, "Title");
    EXPECT_EQ(Next(env).name, "bar");
    EXPECT_EQ(First(env, "Model", nullptr).name, "Title");
    EXPECT_EQ(Next(env).name, "bar");
    EXPECT_EQ(First(env, "Nowhere", nullptr).result, -4);
    EXPECT_EQ(Next(env).result, -4);
}

TEST(EnvIteration, EveryHandleHasItsOwn) {
    EnvHandle env(kModel);
    EnvHandle other(kModel);
    EnvHandle sub(env_open_subenv(env, "Model", nullptr, 1));
    EXPECT_EQ(First(env, nullptr, nullptr).name, "Model");
    EXPECT_EQ(First(other, "Other", nullptr).name, "x");
    EXPECT_EQ(First(sub, nullptr, nullptr).name, "Title");
    EXPECT_EQ(Next(env).name, "Other");
    EXPECT_EQ(Next(sub).name, "bar");
    EXPECT_EQ(Next(other).result, -4);
}

TEST(EnvIteration, TooSmallBuffersMoveOn) {
    EnvHandle env(kModel);
    EXPECT_EQ(First(env, "Model", nullptr, 5), (Got{-7, "?", "?"}));
    EXPECT_EQ(First(env, "Model", nullptr, 6, 7), (Got{-7, "Title", "?"}));
    EXPECT_EQ(Next(env, 3), (Got{-7, "?", "?"}));
    EXPECT_EQ(Next(env, 6, 1), (Got{-1, "empty", ""}));
    EXPECT_EQ(Next(env).result, -4);
    EXPECT_EQ(First(env, "Model", nullptr, 0, 0), (Got{-7, "?", "?"}));
    EXPECT_EQ(First(env, "Model", nullptr, -1, -1), (Got{-7, "?", "?"}));
}

TEST(EnvIteration, NullBuffersFail) {
    EnvHandle env(kModel);
    char name[20] = "?";
    char text[20] = "?";
    EXPECT_EQ(env_get_first_core(env, "Model", nullptr, 1, nullptr, 20, nullptr, 20, text), -10);
    EXPECT_STREQ(text, "?");
    EXPECT_EQ(env_get_first_core(env, "Model", nullptr, 1, nullptr, 20, name, 20, nullptr), -10);
    EXPECT_EQ(env_get_next_core(env, 20, name, 0, nullptr), -2); // a block has no text to copy
    EXPECT_STREQ(name, "bar");
}

TEST(EnvIteration, IdIsGivenOnSuccessOnly) {
    EnvHandle deflt("[D]\nx =1\n", 9);
    EnvHandle env(kModel, 4, deflt);
    char name[20];
    char text[20];
    zr_long id = 1;
    EXPECT_EQ(env_get_first_core(env, "Model", nullptr, 1, &id, 2, name, 20, text), -7);
    EXPECT_EQ(id, 1);
    EXPECT_EQ(env_get_first_core(env, "Model", nullptr, 1, &id, 20, name, 20, text), -1);
    EXPECT_EQ(id, 4);
    EXPECT_EQ(env_get_first_core(env, "D", nullptr, 1, &id, 20, name, 20, text), -1);
    EXPECT_EQ(id, 9);
    EXPECT_EQ(env_get_first_core(env, "Nowhere", nullptr, 1, &id, 20, name, 20, text), -4);
    EXPECT_EQ(id, 9);
}

TEST(EnvIteration, UnknownElementHasAnIdToo) {
    EnvHandle env("[S]\nbar ={\n}\n", 4);
    ASSERT_TRUE(env->GetBlock("S", "bar", true, false)->InsertElement(new ForeignElement("strange")));
    char name[20];
    zr_long id = -1;
    EXPECT_EQ(env_get_first_core(env, "S", "bar", 1, &id, 20, name, 0, nullptr), -10);
    EXPECT_STREQ(name, "strange");
    EXPECT_EQ(id, 4);
    id = -1;
    EXPECT_EQ(env_get_pos(env, "S", "bar", 1, 1, &id, 0, nullptr, 0, nullptr), -10);
    EXPECT_EQ(id, 4);
}

TEST(EnvIteration, MeetsWhatIsAppendedOnTheWay) {
    EnvHandle env(kModel);
    EXPECT_EQ(First(env, "Other", nullptr).name, "x");
    EXPECT_EQ(env_put(env, "Other", "y", "2"), 0);
    EXPECT_EQ(Next(env), (Got{-1, "y", "2"}));
    EXPECT_EQ(Next(env).result, -4);
}

TEST(EnvIteration, SubenvironmentOfAWalkStartsWithout) {
    // the place of an environment that has ended, though with -8, is given again
    EnvHandle held(kModel);
    EnvHandle holder("", 0, held);
    EnvHandle other(kModel);
    for (int i = 0; i < 20; ++i) {
        std::vector<zr_env> ended;
        for (int j = 0; j < 5; ++j) {
            ended.push_back(env_open(0, held));
            EXPECT_EQ(First(ended.back(), "Model", nullptr).name, "Title");
        }
        for (zr_env env : ended)
            EXPECT_EQ(env_close(env, 1), -8);
        const auto step = [](zr_env sub, const char *, const char *, void *) {
            EXPECT_EQ(Next(sub), (Got{-10, "?", "?"}));
        };
        EXPECT_EQ(env_traverse(other, "Model", nullptr, 1, step, nullptr), 0);
        EXPECT_EQ(env_traverse_leafs(other, step, nullptr), 0);
    }
}

TEST(EnvIteration, ElementWithoutValueLeavesTheText) {
    EnvHandle env(kModel);
    ASSERT_EQ(env_insert_before(env, "Model", "Title", "new"), 0);
    EXPECT_EQ(First(env, "Model", nullptr), (Got{-1, "new", "?"}));
    EXPECT_EQ(First(env, "Model", nullptr, 50, 0), (Got{-1, "new", "?"}));
}

TEST(EnvIteration, ElementWithoutNameLeavesTheName) {
    EnvHandle env(kModel);
    ASSERT_EQ(env_insert_before(env, "Model", "Title", nullptr), 0);
    EXPECT_EQ(First(env, "Model", nullptr, 0), (Got{-1, "?", "?"}));
    EXPECT_EQ(Next(env), (Got{-1, "Title", "Frame A"}));
}

TEST(EnvIteration, CloseForgetsAndANewHandleStartsWithout) {
    for (int i = 0; i < 3; ++i) { // an allocator likes to give the same place again
        zr_env env = env_open(0, nullptr);
        EXPECT_EQ(Next(env).result, -10);
        ASSERT_EQ(env_read_from_string(kModel, env), 0);
        EXPECT_EQ(First(env, "Model", nullptr).name, "Title");
        EXPECT_EQ(env_close(env, 0), 0);
    }
    for (int i = 0; i < 3; ++i) {
        EnvHandle held;
        EnvHandle holder("", 0, held);
        zr_env env = env_open(0, held);
        EXPECT_EQ(Next(env).result, -10);
        ASSERT_EQ(env_read_from_string(kModel, env), 0);
        EXPECT_EQ(First(env, "Model", nullptr).name, "Title");
        EXPECT_EQ(env_close(env, 1), -8); // ended, though the chain behind is not
    }
}

TEST(EnvIteration, RefusedCloseKeepsIt) {
    EnvHandle env(kModel);
    EXPECT_EQ(First(env, "Model", nullptr).name, "Title");
    EnvHandle sub(env_open_subenv(env, "Model", nullptr, 1));
    EXPECT_EQ(env_close(env, 0), -8);
    EXPECT_EQ(Next(env).name, "bar");
}

TEST(EnvIteration, PublicFormsIgnoreTheLastArgument) {
    EnvHandle env(kModel);
    char name[20];
    char text[20];
    zr_long id = -1;
    EXPECT_EQ(env_get_first(env, "Model", nullptr, 1, &id, 20, name, 20, text, 12345), -1);
    EXPECT_STREQ(name, "Title");
    EXPECT_STREQ(text, "Frame A");
    EXPECT_EQ(id, 0);
    EXPECT_EQ(env_get_next(env, 20, name, 20, text, -1), -2);
    EXPECT_STREQ(name, "bar");
    EXPECT_EQ(env_get_first(nullptr, "Model", nullptr, 1, &id, 20, name, 20, text, 0), -10);
    EXPECT_EQ(env_get_next(nullptr, 20, name, 20, text, 0), -10);
}
