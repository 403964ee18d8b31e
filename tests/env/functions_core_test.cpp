// The env_ functions on environments as such, on the presence of elements, and on the shape of the tree.
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
                     "bar ={\nlength =2\nlength =3\n}\n"
                     "empty ={\n}\n"
                     "[Other]\nx =1\n"
                     "[Blank]\n";

const char *const kNull = nullptr;

} // namespace

// --- life cycle and identity ------------------------------------------------------------------------------------------

TEST(EnvOpen, NewEnvironmentIsEmpty) {
    EnvHandle env(env_open(7, nullptr));
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 0);
    EXPECT_EQ(env_get_delimiter(env), '@');
    EXPECT_STREQ(env_get_str_delimiter(env), "@");
    EXPECT_EQ(env_get_file_mtime(env), -1);
    EXPECT_EQ(env->GetID(), 7);
}

TEST(EnvOpen, DefaultIsHeldUntilClosed) {
    zr_env deflt = env_open(1, nullptr);
    zr_env env = env_open(2, deflt);
    EXPECT_EQ(env_close(deflt, 0), -8);
    EXPECT_EQ(env_close(env, 0), 0);
    EXPECT_EQ(env_close(deflt, 0), 0);
}

TEST(EnvClose, AllEndsTheChain) {
    zr_env last = env_open(1, nullptr);
    zr_env middle = env_open(2, last);
    zr_env env = env_open(3, middle);
    EXPECT_EQ(env_close(env, 1), 0);
}

TEST(EnvClose, AllStopsAtAnEnvironmentThatIsHeld) {
    EnvHandle last("", 1);
    EnvHandle holder("", 9, last);
    zr_env middle = env_open(2, last);
    zr_env env = env_open(3, middle);
    EXPECT_EQ(env_close(env, 1), -8);
    EXPECT_EQ(last->GetID(), 1);
}

TEST(EnvClose, AllOfSubenvironmentLeavesTheDefault) {
    EnvHandle deflt("[D]\nx =1\n", 1);
    EnvHandle env(kModel, 2, deflt);
    zr_env sub = env_open_subenv(env, "Model", nullptr, 1);
    EXPECT_EQ(env_close(sub, 1), 0);
    EXPECT_EQ(ValueOf(deflt, "D", "x"), "1");
}

TEST(EnvClose, NullIsDone) {
    EXPECT_EQ(env_close(nullptr, 0), 0);
    EXPECT_EQ(env_close(nullptr, 1), 0);
}

TEST(EnvClose, OpenSubenvironmentHoldsItsEnvironment) {
    EnvHandle env(kModel);
    zr_env sub = env_open_subenv(env, "Model", "bar@2", 1);
    EXPECT_EQ(env_close(env, 0), -8);
    EXPECT_EQ(ValueOf(sub, nullptr, "length@2"), "3");
    EXPECT_EQ(env_close(sub, 0), 0);
}

TEST(EnvOpenSubenv, RootIsTheAddressedElement) {
    EnvHandle env(kModel, 5);
    EnvHandle section(env_open_subenv(env, "Model", nullptr, 1));
    EXPECT_EQ(ValueOf(section, nullptr, "bar@2@length@2"), "3");
    EnvHandle leaf(env_open_subenv(env, "Model", "Title", 1));
    EXPECT_EQ(ValueOf(leaf, nullptr, nullptr), "Frame A");
    EnvHandle found(env_open_subenv(env, "Model", "length@2", 0));
    EXPECT_EQ(ValueOf(found, nullptr, nullptr), "3");
    EXPECT_EQ(found->GetID(), 5);
    EnvHandle nested(env_open_subenv(section, nullptr, "bar", 1));
    EXPECT_EQ(ValueOf(nested, "ignored", "length"), "1");
}

TEST(EnvOpenSubenv, NullForWhatIsNotThere) {
    EnvHandle deflt("[D]\nx =1\n");
    EnvHandle env(kModel, 0, deflt);
    EXPECT_EQ(env_open_subenv(nullptr, "Model", nullptr, 1), nullptr);
    EXPECT_EQ(env_open_subenv(env, "Nowhere", nullptr, 1), nullptr);
    EXPECT_EQ(env_open_subenv(env, "Model", "nothing", 1), nullptr);
    EXPECT_EQ(env_open_subenv(env, "Model", "length", 1), nullptr); // not a direct child
    EXPECT_EQ(env_open_subenv(env, "D", "x", 1), nullptr);          // only in the default
    EnvHandle empty;
    EXPECT_EQ(env_open_subenv(empty, nullptr, nullptr, 1), nullptr);
}

TEST(EnvOpenSubenv, DelimiterIsThatOfTheEnvironmentWhenOpened) {
    EnvHandle env(kModel);
    EnvHandle before(env_open_subenv(env, "Model", nullptr, 1));
    EXPECT_EQ(env_set_delimiter(env, '/'), '@');
    EnvHandle after(env_open_subenv(env, "Model", nullptr, 1));
    EXPECT_EQ(env_get_delimiter(before), '@');
    EXPECT_EQ(env_get_delimiter(after), '/');
    EXPECT_EQ(ValueOf(after, nullptr, "bar/2/length"), "2");
}

TEST(EnvCreateSubenv, MakesWhatIsMissing) {
    EnvHandle env;
    {
        EnvHandle sub(env_create_subenv(env, "New", "a@b"));
        EXPECT_EQ(env_put(sub, nullptr, "x", "1"), 0);
    }
    EXPECT_EQ(WrittenText(env), "[New]\n  a ={\n    b ={\n      x =1\n    }\n  }\n");
    EnvHandle same(env_create_subenv(env, "New", "a@b@x"));
    EXPECT_EQ(ValueOf(same, nullptr, nullptr), "1");
    EnvHandle section(env_create_subenv(env, "Second", nullptr));
    EXPECT_EQ(env_exist_block(env, "Second", nullptr, 1), 1);
}

TEST(EnvCreateSubenv, NullForWhatCannotBeMade) {
    EnvHandle env;
    EXPECT_EQ(env_create_subenv(nullptr, "S", "a"), nullptr);
    ReportCapture capture;
    EXPECT_EQ(env_create_subenv(env, "a]b", nullptr), nullptr);
    EXPECT_EQ(capture.Take().size(), 1u);
}

TEST(EnvDefaults, ChainIsAttachedAndTakenOff) {
    EnvHandle first("[S]\na =1\n", 1);
    EnvHandle second("[S]\nb =2\n", 2);
    EnvHandle env("[S]\nc =3\n", 3);
    env_attach_as_last_default(env, first);
    env_attach_as_last_default(env, second);
    zr_long value = 0;
    EXPECT_EQ(env_get_long(env, "S", "b", 1, &value), 2);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(env_detach_default_chain(env), static_cast<zr_env>(first));
    EXPECT_EQ(env_get_long(env, "S", "b", 1, &value), -4);
    EXPECT_EQ(env_get_long(first, "S", "b", 1, &value), 2);
    EXPECT_EQ(env_detach_default_chain(env), nullptr);
    EXPECT_EQ(env_detach_default_chain(first), static_cast<zr_env>(second));
}

TEST(EnvDefaults, NullAndCirclesAreIgnored) {
    EnvHandle env;
    EnvHandle deflt;
    ReportCapture capture;
    env_attach_as_last_default(nullptr, env);
    EXPECT_TRUE(capture.Take().empty());
    EXPECT_EQ(env_detach_default_chain(nullptr), nullptr);
    env_attach_as_last_default(env, nullptr);
    EXPECT_THAT(capture.Take(), ElementsAre(Message("ZrEnv", "Attempt to attach NIL as new_default.\nIgnored.")));
    env_attach_as_last_default(env, deflt);
    env_attach_as_last_default(env, deflt);
    env_attach_as_last_default(deflt, env);
    EXPECT_EQ(env_exist(env, "S", "x", 1), 0);
    EXPECT_EQ(env_detach_default_chain(env), static_cast<zr_env>(deflt));
}

TEST(EnvDelimiter, SetGivesTheFormerOne) {
    EnvHandle env(kModel);
    EXPECT_EQ(env_set_delimiter(env, '#'), '@');
    EXPECT_EQ(env_get_delimiter(env), '#');
    EXPECT_STREQ(env_get_str_delimiter(env), "#");
    EXPECT_EQ(ValueOf(env, "Model", "bar#2#length"), "2");
    ReportCapture capture;
    EXPECT_EQ(env_set_delimiter(env, '\0'), '#');
    EXPECT_THAT(capture.Take(), ElementsAre(Error("ZrEnv", "Bad delimiter")));
    EXPECT_EQ(env_get_delimiter(env), '#');
}

TEST(EnvDelimiter, NullHandleMeansTheUsualOne) {
    EXPECT_EQ(env_set_delimiter(nullptr, '#'), '@');
    EXPECT_EQ(env_get_delimiter(nullptr), '@');
    EXPECT_STREQ(env_get_str_delimiter(nullptr), "@");
}

TEST(EnvFileMtime, TellsOfEnvironmentsOnly) {
    EnvHandle env(kModel);
    EnvHandle sub(env_open_subenv(env, "Model", nullptr, 1));
    EXPECT_EQ(env_get_file_mtime(env), -1);
    EXPECT_EQ(env_get_file_mtime(sub), -10);
    EXPECT_EQ(env_get_file_mtime(nullptr), -10);
}

TEST(EnvCheckSectionName, RefusesNullAndBracket) {
    EXPECT_EQ(env_CheckSectionName("Model @=[ 1"), 1);
    EXPECT_EQ(env_CheckSectionName(""), 1);
    EXPECT_EQ(env_CheckSectionName("a]b"), 0);
    EXPECT_EQ(env_CheckSectionName(nullptr), 0);
}

TEST(EnvErrorPosition, TellsWhereAReadStopped) {
    EnvHandle env;
    zr_long line = 77;
    zr_long column = 78;
    EXPECT_EQ(env_get_error_position(env, &line, &column), -4);
    EXPECT_EQ(line, 77);
    EXPECT_EQ(column, 78);
    EXPECT_EQ(env_read_from_string("[S]\na =1\nb ={\n", env), -5);
    EXPECT_EQ(env_get_error_position(env, &line, &column), 0);
    EXPECT_GE(line, 3);
    EXPECT_GE(column, 1);
    EXPECT_EQ(env_get_error_position(env, nullptr, nullptr), 0);
    EXPECT_EQ(env_read_from_string("[S]\n", env), 0);
    EXPECT_EQ(env_get_error_position(env, &line, &column), -4);
    EXPECT_EQ(env_get_error_position(nullptr, &line, &column), -10);
}

// --- queries ----------------------------------------------------------------------------------------------------------

TEST(EnvExist, TellsKinds) {
    EnvHandle env(kModel);
    const struct {
        const char *section, *path;
        int direct, any, data, block;
    } cases[] = {
        {"Model", "Title", 1, 1, 1, 0},   {"Model", "bar@2", 1, 1, 0, 1},   {"Model", "bar@3", 1, 0, 0, 0},
        {"Model", nullptr, 1, 1, 0, 1},   {"Model", "", 1, 1, 0, 1},        {"Model", "length", 1, 0, 0, 0},
        {"Model", "length", 0, 1, 1, 0},  {"Nowhere", nullptr, 1, 0, 0, 0}, {nullptr, nullptr, 1, 1, 0, 1},
        {nullptr, "nothing", 1, 1, 0, 1}, {"", nullptr, 1, 0, 0, 0},        {"Model", "Title@x", 1, 0, 0, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.section ? c.section : "(null)") + " " + (c.path ? c.path : "(null)"));
        EXPECT_EQ(env_exist(env, c.section, c.path, c.direct), c.any);
        EXPECT_EQ(env_exist_data(env, c.section, c.path, c.direct), c.data);
        EXPECT_EQ(env_exist_block(env, c.section, c.path, c.direct), c.block);
    }
}

TEST(EnvExist, NullHandleHasNothing) {
    EXPECT_EQ(env_exist(nullptr, "S", "a", 1), 0);
    EXPECT_EQ(env_exist_data(nullptr, "S", "a", 1), 0);
    EXPECT_EQ(env_exist_block(nullptr, "S", "a", 1), 0);
}

TEST(EnvExist, LooksIntoDefaults) {
    EnvHandle deflt("[D]\nx =1\nb ={\n}\n");
    EnvHandle env(kModel, 0, deflt);
    EXPECT_EQ(env_exist(env, "D", "x", 1), 1);
    EXPECT_EQ(env_exist_data(env, "D", "x", 1), 1);
    EXPECT_EQ(env_exist_block(env, "D", "b", 1), 1);
}

TEST(EnvExist, OverLongPathIsSearched) {
    EnvHandle env(kModel);
    const std::string path(100000, 'p');
    EXPECT_EQ(env_exist(env, "Model", path.c_str(), 0), 0);
    EXPECT_EQ(env_exist(env, path.c_str(), "Title", 0), 0);
    EXPECT_EQ(env_exist(env, "Model", DeepPath(50000).c_str(), 1), 0);
}

TEST(EnvCount, PathCountsNamesakes) {
    EnvHandle deflt("[D]\nx =1\n");
    EnvHandle env(kModel, 0, deflt);
    EXPECT_EQ(env_count_path(env, "Model", "bar", 1), 2);
    EXPECT_EQ(env_count_path(env, "Model", "bar@2@length", 1), 2);
    EXPECT_EQ(env_count_path(env, "Model", "bar@2", 1), 0);
    EXPECT_EQ(env_count_path(env, "Model", "bar@", 1), 0);
    EXPECT_EQ(env_count_path(env, "Model", "length", 0), 1);
    EXPECT_EQ(env_count_path(env, "Model", nullptr, 1), 0);
    EXPECT_EQ(env_count_path(env, "Model", "", 1), 0);
    EXPECT_EQ(env_count_path(env, "Model", "none", 1), 0);
    EXPECT_EQ(env_count_path(env, "D", "x", 1), 0); // without defaults
    EXPECT_EQ(env_count_path(nullptr, "Model", "bar", 1), -10);
}

TEST(EnvCount, ElementsOfBlocks) {
    EnvHandle deflt("[D]\nx =1\n");
    EnvHandle env(kModel, 0, deflt);
    EXPECT_EQ(env_count_elements(env, nullptr, "whatever", 1), 3);
    EXPECT_EQ(env_count_elements(env, "Model", nullptr, 1), 4);
    EXPECT_EQ(env_count_elements(env, "Model", "bar@2", 1), 2);
    EXPECT_EQ(env_count_elements(env, "Model", "empty", 1), 0);
    EXPECT_EQ(env_count_elements(env, "Model", "Title", 1), 0);
    EXPECT_EQ(env_count_elements(env, "Nowhere", nullptr, 1), 0);
    EXPECT_EQ(env_count_elements(env, "D", nullptr, 1), 0); // without defaults
    EXPECT_EQ(env_count_elements(nullptr, nullptr, nullptr, 1), -10);
    EnvHandle sub(env_open_subenv(env, "Model", "bar@2", 1));
    EXPECT_EQ(env_count_elements(sub, nullptr, nullptr, 1), 2);
}

TEST(EnvCheck, EnvironmentAnswersByKind) {
    EnvHandle deflt("[D]\nx =1\n");
    EnvHandle env(kModel, 0, deflt);
    EXPECT_EQ(env_check(nullptr, "Model", nullptr, 1), -10);
    EXPECT_EQ(env_check(env, nullptr, nullptr, 1), -2);
    EXPECT_EQ(env_check(env, nullptr, "no such path", 1), -2); // the path is not looked at
    EXPECT_EQ(env_check(env, "Model", nullptr, 1), -2);
    EXPECT_EQ(env_check(env, "Blank", nullptr, 1), -2);
    EXPECT_EQ(env_check(env, "Nowhere", nullptr, 1), -4);
    EXPECT_EQ(env_check(env, "Model", "Title", 1), -1);
    EXPECT_EQ(env_check(env, "Model", "bar", 1), -2);
    EXPECT_EQ(env_check(env, "Model", "empty", 1), -2);
    EXPECT_EQ(env_check(env, "Model", "", 1), -2);
    EXPECT_EQ(env_check(env, "Model", "length", 1), -4);
    EXPECT_EQ(env_check(env, "Model", "length", 0), -1);
    EXPECT_EQ(env_check(env, "Nowhere", "a", 1), -4);
    EXPECT_EQ(env_check(env, "D", "x", 1), -4); // without defaults
    EXPECT_EQ(env_check(env, "D", nullptr, 1), -4);
    EnvHandle empty;
    EXPECT_EQ(env_check(empty, nullptr, "a", 1), -4);
}

TEST(EnvCheck, SubenvironmentPassesEmptyBlockBy) {
    EnvHandle env(kModel);
    EnvHandle block(env_open_subenv(env, "Model", "bar", 1));
    EXPECT_EQ(env_check(block, nullptr, nullptr, 1), -2);
    EXPECT_EQ(env_check(block, "ignored", "length", 1), -1);
    EXPECT_EQ(env_check(block, nullptr, "length@2", 1), -4);
    EnvHandle leaf(env_open_subenv(env, "Model", "Title", 1));
    EXPECT_EQ(env_check(leaf, nullptr, nullptr, 1), -1);
    EXPECT_EQ(env_check(leaf, nullptr, "x", 1), -4);
    EnvHandle empty(env_open_subenv(env, "Model", "empty", 1));
    EXPECT_EQ(env_check(empty, nullptr, nullptr, 1), -4);
    EnvHandle blank(env_open_subenv(env, "Blank", nullptr, 1));
    EXPECT_EQ(env_check(blank, "Blank", nullptr, 1), -4);
}

TEST(EnvCheck, SubenvironmentWhoseRootIsGoneHasNothing) {
    EnvHandle env(kModel);
    EnvHandle sub(env_open_subenv(env, "Model", "bar", 1));
    EXPECT_EQ(env_delete(env, "Model", "bar"), 0);
    EXPECT_EQ(env_check(sub, nullptr, nullptr, 1), -4);
    EXPECT_EQ(env_exist(sub, nullptr, "length", 1), 0);
}

TEST(EnvGetCore, LendsNameAndText) {
    EnvHandle env(kModel, 4);
    zr_long id = -1;
    const char *name = nullptr;
    const char *text = "unchanged";
    EXPECT_EQ(env_get_core(env, "Model", nullptr, 1, 1, &id, &name, &text), -1);
    EXPECT_EQ(id, 4);
    EXPECT_STREQ(name, "Title");
    EXPECT_STREQ(text, "Frame A");
    text = "unchanged";
    EXPECT_EQ(env_get_core(env, "Model", nullptr, 1, 3, &id, &name, &text), -2);
    EXPECT_STREQ(name, "bar");
    EXPECT_STREQ(text, "unchanged");
    EXPECT_EQ(env_get_core(env, nullptr, nullptr, 1, 2, &id, &name, &text), -2);
    EXPECT_STREQ(name, "Other");
    EXPECT_EQ(env_get_core(env, "Model", "bar@2", 1, 0, &id, &name, &text), -2); // the block itself
    EXPECT_STREQ(name, "bar");
    EXPECT_EQ(env_get_core(env, "Model", "bar@2", 1, 2, nullptr, nullptr, nullptr), -1);
}

TEST(EnvGetCore, DefaultAnswersWithItsId) {
    EnvHandle deflt("[D]\nx =1\n", 9);
    EnvHandle env(kModel, 4, deflt);
    zr_long id = -1;
    const char *text = nullptr;
    EXPECT_EQ(env_get_core(env, "D", nullptr, 1, 1, &id, nullptr, &text), -1);
    EXPECT_EQ(id, 9);
    EXPECT_STREQ(text, "1");
}

TEST(EnvGetCore, FailuresLeaveOutputs) {
    EnvHandle env(kModel);
    zr_long id = 5;
    const char *name = "n";
    const char *text = "t";
    EXPECT_EQ(env_get_core(nullptr, "Model", nullptr, 1, 1, &id, &name, &text), -10);
    EXPECT_EQ(env_get_core(env, "Model", nullptr, 1, 5, &id, &name, &text), -4);
    EXPECT_EQ(env_get_core(env, "Model", "empty", 1, 1, &id, &name, &text), -4);
    EXPECT_EQ(env_get_core(env, "Nowhere", nullptr, 1, 1, &id, &name, &text), -4);
    EXPECT_EQ(env_get_core(env, "Model", "Title", 1, 1, &id, &name, &text), -4);
    EXPECT_EQ(env_get_core(env, "Model", nullptr, 1, 2147483647, &id, &name, &text), -4);
    EXPECT_EQ(id, 5);
    EXPECT_STREQ(name, "n");
    EXPECT_STREQ(text, "t");
    ReportCapture capture;
    EXPECT_EQ(env_get_core(env, nullptr, nullptr, 1, 0, &id, &name, &text), -4);
    EXPECT_THAT(capture.Take(), ElementsAre(Error("ZrEnv", "szSection == NIL and pos == 0")));
}

TEST(EnvGetCore, ElementWithoutValueLendsNull) {
    EnvHandle env(kModel);
    ASSERT_EQ(env_insert_before(env, "Model", "Title", "new"), 0);
    const char *text = "t";
    EXPECT_EQ(env_get_core(env, "Model", nullptr, 1, 1, nullptr, nullptr, &text), -1);
    EXPECT_EQ(text, kNull);
}

// --- changes of the shape ---------------------------------------------------------------------------------------------

TEST(EnvRename, ElementsAndSections) {
    EnvHandle env("[S]\na =1\n");
    EXPECT_EQ(env_rename(env, "S", "a", "b"), 0);
    EXPECT_EQ(env_rename(env, "S", nullptr, "T"), 0);
    EXPECT_EQ(WrittenText(env), "[T]\n  b =1\n");
    EXPECT_EQ(env_rename(env, "T", "a", "c"), -4);
    EXPECT_EQ(env_rename(env, "S", nullptr, "c"), -4);
    EXPECT_EQ(env_rename(env, "T", "b", ""), -10);
    EXPECT_EQ(env_rename(env, "T", "b", "x=y"), -10);
    EXPECT_EQ(env_rename(env, "T", "b", nullptr), -10);
    EXPECT_EQ(env_rename(env, "T", nullptr, "x]y"), -10);
    EXPECT_EQ(env_rename(nullptr, "T", "b", "c"), -10);
    ReportCapture capture;
    EXPECT_EQ(env_rename(env, nullptr, "b", "c"), -10);
    EXPECT_THAT(capture.Take(), ElementsAre(Message("ZrEnv", "Rename-Aufruf mit szSection == NULL")));
    EXPECT_EQ(WrittenText(env), "[T]\n  b =1\n");
}

TEST(EnvDelete, ElementsSectionsAndAll) {
    EnvHandle env(kModel);
    EXPECT_EQ(env_delete(env, "Model", "bar@2"), 0);
    EXPECT_EQ(env_count_path(env, "Model", "bar", 1), 1);
    EXPECT_EQ(env_delete(env, "Model", "bar@2"), -4);
    EXPECT_EQ(env_delete(env, "Other", nullptr), 0);
    EXPECT_EQ(env_delete(env, "Other", nullptr), -4);
    EXPECT_EQ(env_delete(nullptr, "Model", nullptr), -10);
    ReportCapture capture;
    EXPECT_EQ(env_delete(env, nullptr, "bar"), -10);
    EXPECT_EQ(capture.Take().size(), 1u);
    EXPECT_EQ(env_delete(env, nullptr, nullptr), 0);
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 0);
}

TEST(EnvInsertBefore, ElementGoesInFront) {
    EnvHandle env("[S]\na =1\nb =2\n");
    EXPECT_EQ(env_insert_before(env, "S", "b", "m"), 0);
    EXPECT_EQ(env_count_elements(env, "S", nullptr, 1), 3);
    EXPECT_EQ(WrittenText(env), "[S]\n  a =1\n  b =2\n"); // not written without a value
    EXPECT_EQ(env_put(env, "S", "m", "x"), 0);
    EXPECT_EQ(WrittenText(env), "[S]\n  a =1\n  m =x\n  b =2\n");
    EXPECT_EQ(env_insert_before(env, "S", "b", "b"), 0);
    EXPECT_EQ(ValueOf(env, "S", "b@2"), "2"); // the new one took its number
    EXPECT_EQ(ValueOf(env, "S", "b"), "(null)");
}

TEST(EnvInsertBefore, SubenvironmentRootIsAnAnchor) {
    EnvHandle env("[S]\na ={\nx =1\n}\n");
    EnvHandle block(env_open_subenv(env, "S", "a", 1));
    EXPECT_EQ(env_insert_before(block, nullptr, nullptr, "new"), 0);
    EXPECT_EQ(env_insert_before(block, nullptr, "x", "first"), 0);
    char names[20];
    EXPECT_EQ(env_list_elem_names(env, "S", nullptr, 1, ' ', sizeof names, names), 0);
    EXPECT_STREQ(names, "new a ");
    EXPECT_EQ(env_list_elem_names(env, "S", "a", 1, ' ', sizeof names, names), 0);
    EXPECT_STREQ(names, "first x ");
    EnvHandle section(env_open_subenv(env, "S", nullptr, 1));
    EXPECT_EQ(env_insert_before(section, nullptr, nullptr, "new"), -10); // a section is in no block
}

TEST(EnvInsertBefore, SectionGoesInFrontOfSection) {
    EnvHandle env(kModel);
    EXPECT_EQ(env_insert_before(env, "Other", nullptr, "New"), 0);
    EXPECT_EQ(env_insert_before(env, "Model", nullptr, "Head"), 0);
    char names[40];
    EXPECT_EQ(env_list_elem_names(env, nullptr, nullptr, 1, ',', sizeof names, names), 0);
    EXPECT_STREQ(names, "Head,Model,New,Other,Blank,");
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 5);
    EXPECT_EQ(env_count_elements(env, "New", nullptr, 1), 0);
}

TEST(EnvInsertBefore, MissingAnchorOrHandle) {
    EnvHandle env(kModel);
    EXPECT_EQ(env_insert_before(nullptr, "Model", "Title", "n"), -10);
    EXPECT_EQ(env_insert_before(env, "Model", "nothing", "n"), -4);
    EXPECT_EQ(env_insert_before(env, "Nowhere", "Title", "n"), -4);
    EXPECT_EQ(env_insert_before(env, "Nowhere", nullptr, "n"), -4);
    EXPECT_EQ(env_insert_before(env, nullptr, nullptr, "n"), -4);
    EXPECT_EQ(env_insert_before(env, nullptr, "Title", "n"), -10); // the first section answers, and is in no block
    EXPECT_EQ(env_insert_before(env, "Model", "", "n"), -10);
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 3);
}

TEST(EnvInsertBefore, RefusedNameLeavesTheNewOneNameless) {
    EnvHandle env("[S]\na =1\n");
    for (const char *name : {"", "x=y", kNull})
        EXPECT_EQ(env_insert_before(env, "S", "a", name), 0);
    EXPECT_EQ(env_count_elements(env, "S", nullptr, 1), 4);
    const char *name = "n";
    EXPECT_EQ(env_get_core(env, "S", nullptr, 1, 1, nullptr, &name, nullptr), -1);
    EXPECT_EQ(name, kNull);
    EXPECT_EQ(env_insert_before(env, "S", nullptr, "x]y"), 0);
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 2);
    EXPECT_EQ(env_get_core(env, nullptr, nullptr, 1, 1, nullptr, &name, nullptr), -2);
    EXPECT_EQ(name, kNull);
}

TEST(EnvInsertBefore, DefaultElementIsAnAnchorInItsOwnBlock) {
    EnvHandle deflt("[D]\nx =1\n");
    EnvHandle env(kModel, 0, deflt);
    EXPECT_EQ(env_insert_before(env, "D", "x", "n"), 0);
    EXPECT_EQ(env_count_elements(deflt, "D", nullptr, 1), 2);
}

TEST(EnvCreatePath, JoinsWithTheDelimiter) {
    EnvHandle env;
    char buffer[16] = "unchanged";
    EXPECT_EQ(env_create_path(env, 16, buffer, "a", "2", "b", kNull), 0);
    EXPECT_STREQ(buffer, "a@2@b");
    env_set_delimiter(env, '/');
    EXPECT_EQ(env_create_path(env, 16, buffer, "a", "b", kNull), 0);
    EXPECT_STREQ(buffer, "a/b");
    EXPECT_EQ(env_create_path(nullptr, 16, buffer, "a", "b", kNull), 0);
    EXPECT_STREQ(buffer, "a@b");
    EXPECT_EQ(env_create_path(env, 16, buffer, "100%d", kNull), 0);
    EXPECT_STREQ(buffer, "100%d");
}

TEST(EnvCreatePath, TellsWhenItDoesNotFit) {
    char buffer[8] = "keep";
    EXPECT_EQ(env_create_path(nullptr, 5, buffer, "a", "b", "c", kNull), -7);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(env_create_path(nullptr, 6, buffer, "a", "b", "c", kNull), 0);
    EXPECT_STREQ(buffer, "a@b@c");
    EXPECT_EQ(env_create_path(nullptr, 4, buffer, "long", kNull), -7);
    EXPECT_STREQ(buffer, "a@b@c");
    EXPECT_EQ(env_create_path(nullptr, 0, buffer, "x", kNull), -7);
    EXPECT_EQ(env_create_path(nullptr, -1, buffer, "x", kNull), -7);
    EXPECT_EQ(env_create_path(nullptr, 0, nullptr, "x", kNull), -7);
    EXPECT_EQ(env_create_path(nullptr, 8, buffer, nullptr), 0);
    EXPECT_EQ(env_create_path(nullptr, 8, nullptr, "x", kNull), -10);
    EXPECT_STREQ(buffer, "a@b@c");
}
