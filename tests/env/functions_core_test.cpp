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

TEST(EnvOpenSubenv, DefaultIsAskedWithTheSection) {
    EnvHandle deflt("[D]\nx =far\n[Model]\nonly =d\n", 7);
    EnvHandle env(kModel, 2, deflt);
    EnvHandle sub(env_open_subenv(env, "Model", "bar", 1));
    char text[20] = "";
    EXPECT_EQ(env_get(sub, "D", "x", 1, sizeof text, text), 7);
    EXPECT_STREQ(text, "far");
    EXPECT_EQ(env_get(sub, "Model", "only", 1, sizeof text, text), 7);
    EXPECT_EQ(env_get(sub, "Model", "length", 1, sizeof text, text), 2); // its own comes first, below its root
    EXPECT_EQ(env_get(sub, "D", "y", 1, sizeof text, text), -4);
}

TEST(EnvOpenSubenv, AnyDirectButZeroIsDirect) {
    EnvHandle env(kModel);
    for (int direct : {1, 2, -1, 256, 65536}) {
        EXPECT_EQ(env_open_subenv(env, "Model", "length", direct), nullptr) << direct;
        EXPECT_EQ(env_check(env, "Model", "length", direct), -4) << direct;
        EXPECT_EQ(env_exist(env, "Model", "length", direct), 0) << direct;
        EXPECT_EQ(env_count_path(env, "Model", "length", direct), 0) << direct;
    }
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
    EXPECT_THAT(capture.Take(), ElementsAre(Message("ZrEnv", "Wrong section name: ")));
    EXPECT_EQ(env_create_subenv(env, nullptr, "a"), nullptr); // no first section that could answer
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 0);
    capture.Take();
    EXPECT_EQ(env_create_subenv(env, "S", "x@0"), nullptr);
    EXPECT_TRUE(capture.Take().empty());
    EXPECT_EQ(WrittenText(env), "[S]\n");
}

TEST(EnvCreateSubenv, DataInTheMidstBecomesABlock) {
    EnvHandle env(kModel);
    {
        EnvHandle sub(env_create_subenv(env, "Model", "Title@inner"));
        EXPECT_EQ(env_check(env, "Model", "Title", 1), -2);
        EXPECT_EQ(env_check(env, "Model", "Title@inner", 1), -2);
    }
    EnvHandle block(env_open_subenv(env, "Model", "bar", 1));
    EnvHandle below(env_create_subenv(block, "ignored", "new@deep"));
    EXPECT_EQ(env_put(below, nullptr, "x", "1"), 0);
    EXPECT_EQ(ValueOf(env, "Model", "bar@1@new@deep@x"), "1");
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

TEST(EnvDefaults, AttachedDefaultIsHeldUntilTakenOff) {
    EnvHandle env("[S]\nc =3\n", 3);
    const zr_env deflt = env_open(1, nullptr);
    env_attach_as_last_default(env, deflt);
    EXPECT_EQ(env_close(deflt, 0), -8);
    EXPECT_EQ(env_detach_default_chain(env), deflt);
    EXPECT_EQ(env_close(deflt, 0), 0);
    EXPECT_EQ(env_exist(env, "S", "x", 1), 0);
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
    env_attach_as_last_default(deflt, deflt);
    EXPECT_TRUE(capture.Take().empty());
    EXPECT_EQ(env_exist(env, "S", "x", 1), 0);
    EXPECT_EQ(env_exist(deflt, "S", "x", 1), 0);
    EXPECT_EQ(env_detach_default_chain(deflt), nullptr);
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
    EXPECT_EQ(env_set_delimiter(env, '\xA7'), '#');
    EXPECT_EQ(env_get_delimiter(env), '\xA7');
    EXPECT_STREQ(env_get_str_delimiter(env), "\xA7");
    EXPECT_EQ(ValueOf(env, "Model",
                      "bar\xA7"
                      "2\xA7length"),
              "2");
}

TEST(EnvDelimiter, NullHandleMeansTheUsualOne) {
    ReportCapture capture;
    EXPECT_EQ(env_set_delimiter(nullptr, '#'), '@');
    EXPECT_EQ(env_set_delimiter(nullptr, '\0'), '@');
    EXPECT_TRUE(capture.Take().empty());
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
    EXPECT_EQ(env_CheckSectionName(std::string(100000, 's').c_str()), 1);
    EXPECT_EQ(env_CheckSectionName((std::string(100000, 's') + "]").c_str()), 0);
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
    EXPECT_EQ(line, 4);
    EXPECT_EQ(column, 1);
    line = column = 77;
    EXPECT_EQ(env_get_error_position(env, nullptr, nullptr), 0);
    EXPECT_EQ(env_get_error_position(env, &line, nullptr), 0);
    EXPECT_EQ(line, 4);
    EXPECT_EQ(env_get_error_position(env, nullptr, &column), 0);
    EXPECT_EQ(column, 1);
    EXPECT_EQ(env_read_from_string("[S]\na =1\n  }x\n", env), -5);
    EXPECT_EQ(env_get_error_position(env, &line, &column), 0);
    EXPECT_EQ(line, 3);
    EXPECT_EQ(column, 3);
    line = column = 77;
    EXPECT_EQ(env_read_from_string("[S]\n", env), 0);
    EXPECT_EQ(env_get_error_position(env, &line, &column), -4);
    EnvHandle sub(env_open_subenv(env, "S", nullptr, 1));
    EXPECT_EQ(env_get_error_position(sub, &line, &column), -4);
    EXPECT_EQ(env_get_error_position(nullptr, &line, &column), -10);
    EXPECT_EQ(line, 77);
    EXPECT_EQ(column, 77);
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
    EnvHandle nested("[S]\na ={\nb ={\nx =1\ny =2\nz =3\n}\n}\n");
    EXPECT_EQ(env_count_elements(nested, "S", "b", 0), 3);
    EXPECT_EQ(env_count_elements(nested, "S", "b", 1), 0);
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
    EXPECT_EQ(env_check(leaf, nullptr, "", 1), -4); // a path needs a block to begin in
    EnvHandle empty(env_open_subenv(env, "Model", "empty", 1));
    EXPECT_EQ(env_check(empty, nullptr, nullptr, 1), -4);
    EXPECT_EQ(env_check(empty, nullptr, "", 1), -2);
    EnvHandle blank(env_open_subenv(env, "Blank", nullptr, 1));
    EXPECT_EQ(env_check(blank, "Blank", nullptr, 1), -4);
}

TEST(EnvCheck, SubenvironmentWhoseRootIsGoneHasNothing) {
    EnvHandle env(kModel);
    EnvHandle sub(env_open_subenv(env, "Model", "bar", 1));
    EXPECT_EQ(env_delete(env, "Model", "bar"), 0);
    EXPECT_EQ(env_check(sub, nullptr, nullptr, 1), -4);
    EXPECT_EQ(env_exist(sub, nullptr, "length", 1), 0);
    EXPECT_EQ(env_exist(sub, nullptr, nullptr, 1), 0);
    EXPECT_EQ(env_count_elements(sub, nullptr, nullptr, 1), 0);
    EXPECT_EQ(env_insert_before(sub, nullptr, nullptr, "n"), -4);
    EXPECT_EQ(env_put(sub, nullptr, "x", "1"), -10);
    EXPECT_EQ(env_delete(sub, nullptr, "length"), -4);
    EXPECT_EQ(env_rename(sub, nullptr, nullptr, "n"), -4);
    EXPECT_EQ(env_create_subenv(sub, nullptr, "x"), nullptr);
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

TEST(EnvGetCore, PositionBelowOneIsTheElementItself) {
    EnvHandle env(kModel, 4);
    for (zr_long pos : {0, -1, -2147483647 - 1}) {
        const char *name = nullptr;
        const char *text = "unchanged";
        zr_long id = -1;
        EXPECT_EQ(env_get_core(env, "Model", "bar", 1, pos, &id, &name, &text), -2);
        EXPECT_STREQ(name, "bar");
        EXPECT_STREQ(text, "unchanged");
        EXPECT_EQ(id, 4);
        EXPECT_EQ(env_get_core(env, "Model", "Title", 1, pos, &id, &name, &text), -1);
        EXPECT_STREQ(name, "Title");
        EXPECT_STREQ(text, "Frame A");
    }
}

TEST(EnvGetCore, IndirectSearchFindsTheBlockAnywhere) {
    EnvHandle env("[S]\na ={\nb ={\nx =1\n}\n}\n");
    const char *name = nullptr;
    EXPECT_EQ(env_get_core(env, "S", "b", 0, 1, nullptr, &name, nullptr), -1);
    EXPECT_STREQ(name, "x");
    EXPECT_EQ(env_get_core(env, "S", "b", 1, 1, nullptr, &name, nullptr), -4);
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

TEST(EnvRename, RootOfASubenvironment) {
    EnvHandle env(kModel);
    EnvHandle sub(env_open_subenv(env, "Model", "bar@2", 1));
    EXPECT_EQ(env_rename(sub, nullptr, nullptr, "rod"), 0);
    EXPECT_EQ(env_rename(sub, "ignored", "length@2", "width"), 0);
    EXPECT_EQ(ValueOf(env, "Model", "rod@width"), "3");
    EnvHandle section(env_open_subenv(env, "Other", nullptr, 1));
    EXPECT_EQ(env_rename(section, nullptr, nullptr, "Last"), 0);
    EXPECT_EQ(ValueOf(env, "Last", "x"), "1");
}

TEST(EnvRename, NameWithTheDelimiterIsOutOfReach) {
    EnvHandle deflt("[D]\nx =1\n");
    EnvHandle env("[S]\na =1\n", 0, deflt);
    EXPECT_EQ(env_rename(env, "S", "a", "x@y"), 0);
    EXPECT_EQ(env_exist(env, "S", "x@y", 1), 0);
    EXPECT_EQ(WrittenText(env), "[S]\n  x@y =1\n");
    EXPECT_EQ(env_rename(env, "D", "x", "y"), -4); // without defaults
    const std::string name(100000, 'n');
    EXPECT_EQ(env_rename(env, "S", nullptr, name.c_str()), 0);
    EXPECT_EQ(env_exist(env, name.c_str(), nullptr, 1), 1);
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
    EXPECT_THAT(capture.Take(),
                ElementsAre(Message("ZrEnv", "szPath != NULL and szSection = NULL, env_delete called")));
    EXPECT_EQ(env_delete(env, nullptr, nullptr), 0);
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 0);
}

TEST(EnvDelete, SubenvironmentDeletesBelowItsRoot) {
    EnvHandle deflt("[D]\nx =1\n");
    EnvHandle env(kModel, 0, deflt);
    EnvHandle sub(env_open_subenv(env, "Model", "bar@2", 1));
    EXPECT_EQ(env_delete(sub, nullptr, "length"), 0);
    EXPECT_EQ(ValueOf(env, "Model", "bar@2@length"), "3");
    ReportCapture capture;
    EXPECT_EQ(env_delete(sub, nullptr, nullptr), -10);
    EXPECT_THAT(capture.Take(), ElementsAre(Error("ZrEnv", "env_delete (env, NIL, NIL) called with subenv")));
    EXPECT_EQ(env_delete(sub, "Other", nullptr), -10);
    EXPECT_THAT(capture.Take(), ElementsAre(Message("ZrEnv", "DeleteSection-Aufruf bei SubEnv")));
    EXPECT_EQ(env_delete(env, "D", "x"), -4); // without defaults
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 3);
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
    EXPECT_EQ(env_create_path(nullptr, 8, nullptr, nullptr), 0);
    EXPECT_EQ(env_create_path(nullptr, 0, buffer, nullptr), -7);
    const std::string longer(100000, 'p');
    EXPECT_EQ(env_create_path(nullptr, 8, buffer, longer.c_str(), kNull), -7);
    EXPECT_STREQ(buffer, "a@b@c");
    EXPECT_EQ(env_create_path(nullptr, 8, buffer, "a", longer.c_str(), kNull), -7);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(env_create_path(nullptr, 8, buffer, "a", "", "", kNull), 0);
    EXPECT_STREQ(buffer, "a@@");
    EXPECT_EQ(env_create_path(nullptr, 8, buffer, "a@b@c", kNull), 0);
    EXPECT_EQ(env_create_path(nullptr, 8, nullptr, "x", kNull), -10);
    EXPECT_STREQ(buffer, "a@b@c");
}

// --- addresses that lead nowhere --------------------------------------------------------------------------------------

namespace {

void Never(zr_env, const char *, const char *, void *) {
    ADD_FAILURE();
}

// What every function that looks an element up gives for it, in the order of the header.
std::vector<int> LookUps(zr_env env, const char *section, const char *path, int direct) {
    char text[20] = "?";
    char *items[] = {text};
    zr_long number = 1;
    zr_long count = 1;
    zr_long size = 20;
    double real = 0;
    const char *lent = nullptr;
    const zr_env sub = env_open_subenv(env, section, path, direct);
    EXPECT_EQ(env_close(sub, 0), 0);
    return {sub != nullptr,
            env_get(env, section, path, direct, 20, text),
            env_get_string(env, section, path, direct, 20, text),
            env_get_bin(env, section, path, direct, text, &size),
            env_get_double(env, section, path, direct, &real),
            env_get_long(env, section, path, direct, &number),
            env_get_doubles(env, section, path, direct, &(count = 1), &real),
            env_get_longs(env, section, path, direct, &(count = 1), &number),
            env_get_strings(env, section, path, direct, &(count = 1), 20, items),
            env_get_reference(env, section, path, direct, &lent),
            env_get_array_size(env, section, path, direct, &count, &number),
            env_data_length(env, section, path, direct),
            env_exist(env, section, path, direct),
            env_exist_data(env, section, path, direct),
            env_exist_block(env, section, path, direct),
            env_count_path(env, section, path, direct),
            env_count_elements(env, section, path, direct),
            env_check(env, section, path, direct),
            env_rename(env, section, path, "n"),
            env_delete(env, section, path),
            env_insert_before(env, section, path, "n"),
            env_get_core(env, section, path, direct, 1, nullptr, nullptr, nullptr),
            env_get_pos(env, section, path, direct, 1, nullptr, 20, text, 20, text),
            env_get_first(env, section, path, direct, nullptr, 20, text, 20, text, 0),
            env_traverse(env, section, path, direct, Never, nullptr),
            env_copy_block(env, env, section, path, 2),
            env_list_elem_names(env, section, path, direct, ',', 20, text)};
}

const std::vector<int> kNothing = {0, -4, -4, -4, -4, -4, -4, -4, -4, -4, -4, 0,   0, 0,
                                   0, 0,  0,  -4, -4, -4, -4, -4, -4, -4, -4, -10, -2};

} // namespace

TEST(EnvAddresses, OverLongAndMalformedOnesLeadNowhere) {
    EnvHandle env(kModel);
    const std::string before = WrittenText(env);
    const std::string longName(100000, 'p');
    const std::string deep = DeepPath(20000, "bar");
    const std::string longPosition = "bar@" + std::string(1000, '9');
    const std::pair<const char *, const char *> addresses[] = {
        {"Model", longName.c_str()},
        {longName.c_str(), "Title"},
        {longName.c_str(), nullptr},
        {"Model", deep.c_str()},
        {"Model", longPosition.c_str()},
        {"Model", "bar@2147483648"},
        {"Model", "Title@Title"},
        {"Model", "title"},
        {"model", "Title"},
        {"", "Title"},
        {"", nullptr},
        {"Model]", "Title"},
        {"Model", "bar@\xFF"},
        {"\xFF", nullptr},
        {"Model", "bar@3"},
    };
    ReportCapture capture;
    for (const auto &[section, path] : addresses) {
        SCOPED_TRACE(std::string(section).substr(0, 20) + " " + std::string(path ? path : "(null)").substr(0, 20));
        EXPECT_EQ(LookUps(env, section, path, 1), kNothing);
        EXPECT_EQ(LookUps(env, section, path, 0), kNothing);
    }
    EXPECT_TRUE(capture.Take().empty());
    EXPECT_EQ(WrittenText(env), before);
}

TEST(EnvAddresses, StepsThatAreNoNamesAreLeftOut) {
    EnvHandle env(kModel);
    for (const char *path : {"@@bar@2@@length@2", "a=b@bar@2@length@2@", "bar@02@length@0000002", "bar@2@=@length@2@@"})
        EXPECT_EQ(ValueOf(env, "Model", path), "3") << path;
}
