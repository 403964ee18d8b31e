// The env_ functions that read and write typed values, files and texts, and the version of data.
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "function_fixture.h"
#include "platform/files.h"
#include "report_capture.h"

using namespace zr::test;
using testing::ElementsAre;

namespace {

const char *kModel = "[Model]\n"
                     "long =42\n"
                     "double =1.5\n"
                     "text =abc\n"
                     "both =12 34\n"
                     "longs =1,2,3\n"
                     "doubles =1.5,2\n"
                     "words =one,two,three\n"
                     "empty =\n"
                     "bar ={\nlength =7\n}\n";

std::string Bytes(const std::string &file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// All typed getters of one element, to ask the same of each.
struct Getters {
    zr_env env;
    const char *section;
    const char *path;
    int direct = 1;
    zr_long count = 3;
    zr_long size = 50;
    zr_long lValue = 99;
    double dValue = 99;
    zr_long longs[3] = {};
    double doubles[3] = {};
    char bytes[50] = "?";
    const char *lent = "?";

    std::vector<int> All() {
        char word[3][20] = {};
        char *items[3] = {word[0], word[1], word[2]};
        return {env_get(env, section, path, direct, 50, bytes),
                env_get_bin(env, section, path, direct, bytes, &size),
                env_get_double(env, section, path, direct, &dValue),
                env_get_long(env, section, path, direct, &lValue),
                env_get_doubles(env, section, path, direct, &(count = 3), doubles),
                env_get_longs(env, section, path, direct, &(count = 3), longs),
                env_get_strings(env, section, path, direct, &(count = 3), 20, items),
                env_get_reference(env, section, path, direct, &lent)};
    }
};

} // namespace

// --- files and texts --------------------------------------------------------------------------------------------------

TEST(EnvFile, WriteGivesOneAndReadNull) {
    const TempFolder folder;
    const std::string file = folder.File("model.env");
    EnvHandle env(kModel);
    EXPECT_EQ(env_write_file(file.c_str(), env), 1);
    EnvHandle copy;
    EXPECT_EQ(env_read_file(file.c_str(), copy), 0);
    EXPECT_EQ(WrittenText(copy), WrittenText(env));
    zr::platform::FileStatus status;
    ASSERT_TRUE(zr::platform::GetFileStatus(file.c_str(), status));
    EXPECT_EQ(env_get_file_mtime(copy), status.modified);
    EnvHandle sub(env_open_subenv(copy, "Model", nullptr, 1));
    EXPECT_EQ(env_get_file_mtime(sub), -10);
}

TEST(EnvFile, PlainFormsWriteWrappedAndReadAutomatically) {
    const TempFolder folder;
    const std::string file = folder.File("model.env");
    EnvHandle env;
    ASSERT_EQ(env_put(env, "S", "a", std::string(300, 'v').c_str()), 0);
    EXPECT_EQ(env_write_file(file.c_str(), env), 1);
    const std::string wrapped = Bytes(file);
    EXPECT_TRUE(wrapped.starts_with("[S]\r\n  a =v"));
    EXPECT_NE(wrapped.find("v\\\r\nv"), std::string::npos); // long values are folded
    char *text = env_write_to_string(env);
    EXPECT_EQ(wrapped, text);
    env_free_string(text);
    EXPECT_EQ(env_write_file_ex(file.c_str(), env, 0), 1);
    EXPECT_EQ(Bytes(file).find('\\'), std::string::npos);
    text = env_write_to_string_ex(env, 0);
    EXPECT_EQ(Bytes(file), text);
    env_free_string(text);
    // a first line that says "not wrapped" decides where the mode is automatic, and only there
    const char *marked = "__ZR_ENV_READ_MODE__=NOT_WRAPPED\n[S]\na =1\\\nb =2\n";
    std::ofstream(file, std::ios::binary) << marked;
    EXPECT_EQ(env_read_file(file.c_str(), env), 0);
    EXPECT_EQ(ValueOf(env, "S", "a"), "1\\");
    EXPECT_EQ(env_read_from_string(marked, env), 0);
    EXPECT_EQ(ValueOf(env, "S", "a"), "1\\");
    EXPECT_EQ(env_read_file_ex(file.c_str(), env, 2), 0);
    EXPECT_EQ(ValueOf(env, "S", "a"), "1\\");
    EXPECT_EQ(env_read_file_ex(file.c_str(), env, 0), 0);
    EXPECT_EQ(ValueOf(env, "S", "a"), "1b =2");
    EXPECT_EQ(env_read_from_string_ex(marked, env, 0), 0);
    EXPECT_EQ(ValueOf(env, "S", "a"), "1b =2");
}

TEST(EnvFile, SubenvironmentIsNotReadInto) {
    const TempFolder folder;
    const std::string file = folder.File("model.env");
    EnvHandle env(kModel);
    ASSERT_EQ(env_write_file(file.c_str(), env), 1);
    EnvHandle sub(env_open_subenv(env, "Model", "bar", 1));
    ReportCapture capture;
    EXPECT_EQ(env_read_file(file.c_str(), sub), -10);
    EXPECT_EQ(env_read_file_ex(file.c_str(), sub, 1), -10);
    EXPECT_EQ(env_read_from_string("[S]\n", sub), -10);
    EXPECT_EQ(env_read_from_string_ex("[S]\n", sub, 1), -10);
    EXPECT_EQ(ValueOf(sub, nullptr, "length"), "7");
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 1);
}

TEST(EnvFile, ModesAndWraps) {
    const TempFolder folder;
    const std::string file = folder.File("model.env");
    EnvHandle env("[S]\na =1\n");
    EXPECT_EQ(env_write_file_ex(file.c_str(), env, 0), 1);
    EXPECT_EQ(Bytes(file), "__ZR_ENV_READ_MODE__=NOT_WRAPPED\r\n[S]\r\n  a =1\r\n");
    EXPECT_EQ(env_write_file_ex(file.c_str(), env, 2), 1);
    EXPECT_EQ(Bytes(file), "[S]\r\n  a =1\r\n");
    for (zr_long mode : {0, 1, 2, 3, -1, 1000}) {
        EnvHandle copy;
        EXPECT_EQ(env_read_file_ex(file.c_str(), copy, mode), 0) << mode;
        EXPECT_EQ(ValueOf(copy, "S", "a"), "1");
    }
    const char *folded = "[S]\na =1\\\nb =2\n";
    const struct {
        zr_long mode;
        const char *value;
    } cases[] = {{0, "1b =2"}, {1, "1\\"}, {2, "1b =2"}, {3, "1b =2"}, {-1, "1b =2"}};
    for (const auto &c : cases) {
        EnvHandle copy;
        EXPECT_EQ(env_read_from_string_ex(folded, copy, c.mode), 0);
        EXPECT_EQ(ValueOf(copy, "S", "a"), c.value) << c.mode;
    }
}

TEST(EnvFile, Failures) {
    const TempFolder folder;
    EnvHandle env(kModel);
    ReportCapture capture;
    EXPECT_EQ(env_read_file("x", nullptr), -10);
    EXPECT_EQ(env_read_file_ex("x", nullptr, 0), -10);
    EXPECT_EQ(env_write_file("x", nullptr), -10);
    EXPECT_EQ(env_write_file_ex("x", nullptr, 1), -10);
    EXPECT_EQ(env_read_from_string("[S]\n", nullptr), -10);
    EXPECT_EQ(env_read_from_string_ex("[S]\n", nullptr, 1), -10);
    EXPECT_EQ(env_write_to_string(nullptr), nullptr);
    EXPECT_EQ(env_write_to_string_ex(nullptr, 0), nullptr);
    EXPECT_TRUE(capture.Take().empty());
    const std::string missing = folder.File("missing.env");
    EXPECT_EQ(env_read_file(missing.c_str(), env), -10);
    EXPECT_THAT(capture.Take(), ElementsAre(Error("ZrEnv", "Can't open to read:", missing)));
    for (const std::string &path : {folder.File("no/such/folder/x"), folder.File(std::string(300, 'x').c_str())}) {
        EXPECT_EQ(env_read_file(path.c_str(), env), -10);
        EXPECT_THAT(capture.Take(), ElementsAre(Error("ZrEnv", "Can't open to read:", path)));
        EXPECT_EQ(env_write_file(path.c_str(), env), 0);
        EXPECT_THAT(capture.Take(), testing::SizeIs(1));
    }
    EXPECT_NE(env_read_file(folder.File(".").c_str(), env), 0);
    EXPECT_EQ(env_write_file(folder.File(".").c_str(), env), 0);
    EXPECT_EQ(env_read_file(nullptr, env), -10);
    EXPECT_EQ(env_read_file("", env), -10);
    EXPECT_EQ(env_read_from_string(nullptr, env), -10);
    EXPECT_EQ(env_write_file(nullptr, env), 0);
    EXPECT_EQ(env_write_file("", env), 0);
    capture.Take();
    EXPECT_EQ(env_read_from_string("[S]\nb ={\n", env), -5);
    EXPECT_FALSE(capture.Take().empty());
    EXPECT_EQ(env_read_from_string("", env), 0);
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 0);
}

TEST(EnvText, WrittenAndFreed) {
    EnvHandle env("[S]\na =1\n");
    char *text = env_write_to_string(env);
    EXPECT_STREQ(text, "[S]\r\n  a =1\r\n");
    env_free_string(text);
    text = env_write_to_string_ex(env, 0);
    EXPECT_STREQ(text, "__ZR_ENV_READ_MODE__=NOT_WRAPPED\r\n[S]\r\n  a =1\r\n");
    env_free_string(text);
    env_free_string(nullptr);
    EnvHandle empty;
    text = env_write_to_string_ex(empty, 7);
    EXPECT_STREQ(text, "");
    env_free_string(text);
}

// --- typed getters ----------------------------------------------------------------------------------------------------

TEST(EnvTyped, ValuesAndIds) {
    EnvHandle deflt("[D]\nx =5\n", 7);
    EnvHandle env(kModel, 3, deflt);
    zr_long lValue = 0;
    double dValue = 0;
    EXPECT_EQ(env_get_long(env, "Model", "long", 1, &lValue), 3);
    EXPECT_EQ(lValue, 42);
    EXPECT_EQ(env_get_double(env, "Model", "double", 1, &dValue), 3);
    EXPECT_EQ(dValue, 1.5);
    EXPECT_EQ(env_get_long(env, "D", "x", 1, &lValue), 7);
    EXPECT_EQ(lValue, 5);
    EXPECT_EQ(env_get_long(env, "Model", "length", 0, &lValue), 3);
    EXPECT_EQ(lValue, 7);
    EnvHandle zero("[Z]\nz =1\n");
    EXPECT_EQ(env_get_long(zero, "Z", "z", 1, &lValue), 0);
    EnvHandle sub(env_open_subenv(env, "Model", "bar", 1));
    EXPECT_EQ(env_get_long(sub, nullptr, "length", 1, &lValue), 3);
}

TEST(EnvTyped, DefaultsAnswerWithTheirId) {
    EnvHandle last("[D]\nx =5\nb ={\ny =6\n}\n", 7);
    EnvHandle middle("", 2, last);
    EnvHandle env(kModel, 3, middle);
    EXPECT_THAT((Getters{env, "D", "x"}.All()), testing::Each(7));
    EXPECT_THAT((Getters{env, "D", "b@y"}.All()), testing::Each(7));
    EXPECT_THAT((Getters{env, "D", "y"}.All()), testing::Each(-4));
    EXPECT_THAT((Getters{env, "D", "y", 0}.All()), testing::Each(7));
    EXPECT_THAT((Getters{env, "Model", "length", 0}.All()), testing::Each(3));
    EXPECT_THAT((Getters{env, "D", "b"}.All()), testing::Each(-1));
    EnvHandle zero("[D]\nx =5\n", 0, middle);
    EXPECT_THAT((Getters{zero, "D", "x"}.All()), testing::Each(0));
    EnvHandle negative("[D]\nx =5\n", -7);
    EXPECT_THAT((Getters{negative, "D", "x"}.All()), testing::Each(-7));
}

TEST(EnvTyped, Lists) {
    EnvHandle env(kModel, 3);
    zr_long longs[3] = {};
    double doubles[3] = {};
    zr_long count = 3;
    EXPECT_EQ(env_get_longs(env, "Model", "longs", 1, &count, longs), 3);
    EXPECT_THAT(longs, ElementsAre(1, 2, 3));
    EXPECT_EQ(count, 3);
    EXPECT_EQ(env_get_doubles(env, "Model", "doubles", 1, &count, doubles), 3);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(doubles[1], 2.0);
    EXPECT_EQ(env_get_longs(env, "Model", "longs", 1, &(count = 2), longs), -7);
    EXPECT_EQ(count, 0);
    char word[3][6];
    char *items[3] = {word[0], word[1], word[2]};
    EXPECT_EQ(env_get_strings(env, "Model", "words", 1, &(count = 3), 6, items), 3);
    EXPECT_EQ(count, 3);
    EXPECT_STREQ(word[0], "one");
    EXPECT_STREQ(word[2], "three");
    EXPECT_EQ(env_get_strings(env, "Model", "words", 1, &(count = 3), 5, items), -7);
    EXPECT_EQ(env_get_strings(env, "Model", "words", 1, &(count = 2), 6, items), -7);
}

TEST(EnvTyped, WrongForms) {
    EnvHandle env(kModel);
    zr_long lValue = 99;
    double dValue = 99;
    EXPECT_EQ(env_get_long(env, "Model", "text", 1, &lValue), -5);
    EXPECT_EQ(lValue, 99);
    EXPECT_EQ(env_get_double(env, "Model", "text", 1, &dValue), -5);
    EXPECT_EQ(dValue, 99);
    EXPECT_EQ(env_get_long(env, "Model", "both", 1, &lValue), -5);
    EXPECT_EQ(lValue, 12);
    zr_long count = 3;
    zr_long longs[3];
    EXPECT_EQ(env_get_longs(env, "Model", "text", 1, &count, longs), -5);
    EXPECT_EQ(count, 0);
    double doubles[3];
    EXPECT_EQ(env_get_doubles(env, "Model", "words", 1, &(count = 3), doubles), -5);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(env_get_doubles(env, "Model", "longs", 1, &(count = 2), doubles), -7);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(env_get_double(env, "Model", "both", 1, &dValue), -5);
    EXPECT_EQ(dValue, 12);
    EXPECT_EQ(env_get_long(env, "Model", "double", 1, &(lValue = 99)), -5);
    for (zr_long none : {0, -1, -2147483647 - 1}) {
        char word[6];
        char *items[] = {word};
        EXPECT_EQ(env_get_longs(env, "Model", "longs", 1, &(count = none), longs), -7) << none;
        EXPECT_EQ(env_get_doubles(env, "Model", "longs", 1, &(count = none), doubles), -7) << none;
        EXPECT_EQ(env_get_strings(env, "Model", "words", 1, &(count = none), 6, items), -10) << none;
        EXPECT_EQ(env_get_strings(env, "Model", "words", 1, &(count = 1), none, items), -10) << none;
        items[0] = nullptr;
        EXPECT_EQ(env_get_strings(env, "Model", "words", 1, &(count = 1), 6, items), -10);
    }
}

TEST(EnvTyped, NotFoundAndNoData) {
    EnvHandle env(kModel);
    for (const char *path : {"none", "length", "long@2"}) {
        Getters getters{env, "Model", path};
        EXPECT_THAT(getters.All(), testing::Each(-4)) << path;
        EXPECT_EQ(getters.lValue, 99);
        EXPECT_EQ(getters.dValue, 99);
        EXPECT_EQ(getters.size, 50);
        EXPECT_STREQ(getters.bytes, "?");
        EXPECT_STREQ(getters.lent, "?");
        EXPECT_THAT(getters.longs, testing::Each(0));
        EXPECT_THAT(getters.doubles, testing::Each(0));
        EXPECT_EQ(getters.count, 0);
    }
    Getters ofBlock{env, "Model", "bar"};
    EXPECT_THAT(ofBlock.All(), testing::Each(-1));
    EXPECT_EQ(ofBlock.lValue, 99);
    EXPECT_EQ(ofBlock.dValue, 99);
    EXPECT_EQ(ofBlock.size, 50);
    EXPECT_STREQ(ofBlock.bytes, "?");
    EXPECT_STREQ(ofBlock.lent, "?");
    EXPECT_THAT((Getters{env, "Nowhere", "long"}.All()), testing::Each(-4));
    EXPECT_THAT((Getters{env, "Model", std::string(20000, 'x').c_str()}.All()), testing::Each(-4));
    EXPECT_THAT((Getters{env, "Model", "bar"}.All()), testing::Each(-1));
    EXPECT_THAT((Getters{env, "Model", nullptr}.All()), testing::Each(-1));
    EXPECT_THAT((Getters{env, "Model", ""}.All()), testing::Each(-1));
    EXPECT_THAT((Getters{env, nullptr, "long"}.All()), testing::Each(-1));
}

TEST(EnvTyped, CountIsNullWhereNothingWasRead) {
    EnvHandle env(kModel);
    zr_long longs[3];
    double doubles[3];
    char *items[3] = {};
    for (const char *path : {"none", "bar"}) {
        zr_long count = 3;
        env_get_longs(env, "Model", path, 1, &count, longs);
        EXPECT_EQ(count, 0);
        env_get_doubles(env, "Model", path, 1, &(count = 3), doubles);
        EXPECT_EQ(count, 0);
        env_get_strings(env, "Model", path, 1, &(count = 3), 9, items);
        EXPECT_EQ(count, 0);
    }
    zr_long count = 3;
    EXPECT_EQ(env_get_longs(nullptr, "Model", "longs", 1, &count, longs), -10);
    EXPECT_EQ(count, 3);
}

TEST(EnvTyped, NullHandleAndOutputs) {
    EnvHandle env(kModel);
    zr_long number = 3;
    double real = 0;
    char bytes[20];
    char *items[1] = {bytes};
    const char *text = "kept";
    EXPECT_EQ(env_get_bin(nullptr, "Model", "text", 1, bytes, &number), -10);
    EXPECT_EQ(env_get_bin(env, "Model", "text", 1, nullptr, &number), -10);
    EXPECT_EQ(env_get_bin(env, "Model", "text", 1, bytes, nullptr), -10);
    EXPECT_EQ(env_get_double(nullptr, "Model", "double", 1, &real), -10);
    EXPECT_EQ(env_get_double(env, "Model", "double", 1, nullptr), -10);
    EXPECT_EQ(env_get_long(nullptr, "Model", "long", 1, &number), -10);
    EXPECT_EQ(env_get_long(env, "Model", "long", 1, nullptr), -10);
    EXPECT_EQ(env_get_doubles(nullptr, "Model", "doubles", 1, &number, &real), -10);
    EXPECT_EQ(env_get_doubles(env, "Model", "doubles", 1, nullptr, &real), -10);
    EXPECT_EQ(env_get_doubles(env, "Model", "doubles", 1, &number, nullptr), -10);
    EXPECT_EQ(env_get_longs(env, "Model", "longs", 1, nullptr, &number), -10);
    EXPECT_EQ(env_get_longs(env, "Model", "longs", 1, &number, nullptr), -10);
    EXPECT_EQ(env_get_strings(nullptr, "Model", "words", 1, &number, 20, items), -10);
    EXPECT_EQ(env_get_strings(env, "Model", "words", 1, nullptr, 20, items), -10);
    EXPECT_EQ(env_get_strings(env, "Model", "words", 1, &number, 20, nullptr), -10);
    EXPECT_EQ(env_get_reference(nullptr, "Model", "text", 1, &text), 0);
    EXPECT_EQ(env_get_reference(env, "Model", "text", 1, nullptr), 0);
    EXPECT_STREQ(text, "kept");
    EXPECT_EQ(number, 3);
}

TEST(EnvTyped, ElementWithoutValue) {
    EnvHandle env(kModel);
    ASSERT_EQ(env_insert_before(env, "Model", "long", "new"), 0);
    Getters getters{env, "Model", "new"};
    EXPECT_THAT(getters.All(), ElementsAre(-10, -10, -10, -10, -10, -10, -10, 0));
    EXPECT_EQ(getters.lValue, 99);
    EXPECT_EQ(getters.dValue, 99);
    EXPECT_STREQ(getters.bytes, "?");
    EXPECT_EQ(getters.lent, nullptr);
    EXPECT_EQ(env_data_length(env, "Model", "new", 1), 0);
}

TEST(EnvReference, LendsTheTextItself) {
    EnvHandle deflt("[D]\nx =5\n", 7);
    EnvHandle env(kModel, 3, deflt);
    const char *text = nullptr;
    EXPECT_EQ(env_get_reference(env, "Model", "text", 1, &text), 3);
    EXPECT_EQ(text, env->GetString("Model", "text"));
    EXPECT_EQ(env_get_reference(env, "D", "x", 1, &text), 7);
    EXPECT_STREQ(text, "5");
}

TEST(EnvBinary, RoundTrip) {
    EnvHandle env("", 3);
    const char data[] = {0, 1, '\n', static_cast<char>(0xFF), '_', 0};
    EXPECT_EQ(env_put_bin(env, "S", "bin", data, sizeof data), 0);
    char back[10] = {};
    zr_long size = sizeof back;
    EXPECT_EQ(env_get_bin(env, "S", "bin", 1, back, &size), 3);
    ASSERT_EQ(size, 6);
    EXPECT_EQ(std::string(back, 6), std::string(data, 6));
    ReportCapture capture;
    for (zr_long small : {5, 1, 0, -1}) {
        size = small;
        EXPECT_EQ(env_get_bin(env, "S", "bin", 1, back, &size), -7) << small;
        EXPECT_THAT(TextsOf(capture), testing::Each(testing::HasSubstr("Small buffer")));
    }
    EXPECT_EQ(env_put_bin(nullptr, "S", "bin", data, 1), -10);
    EXPECT_EQ(env_put_bin(env, "S", nullptr, data, 1), -10);
}

TEST(EnvBinary, NothingToStore) {
    EnvHandle env("", 3);
    const char data[] = {'a', 'b'};
    char back[10] = "?";
    for (zr_long none : {0, -1, -2147483647 - 1}) {
        EXPECT_EQ(env_put_bin(env, "S", "bin", data, none), 0) << none;
        zr_long size = sizeof back;
        EXPECT_EQ(env_get_bin(env, "S", "bin", 1, back, &size), 3);
        EXPECT_EQ(size, 0);
    }
    EXPECT_EQ(env_put_bin(env, "S", "bin", nullptr, 0), 0);
    EXPECT_EQ(env_put_bin(env, "S", "", data, 2), -10); // the section itself
}

TEST(EnvBinary, PlainTextIsGivenAsItIs) {
    EnvHandle env(kModel, 3);
    char back[10] = "#########";
    zr_long size = 4;
    EXPECT_EQ(env_get_bin(env, "Model", "text", 1, back, &size), 3);
    EXPECT_EQ(size, 3);
    EXPECT_EQ(std::string(back, 5), std::string("abc\0#", 5));
    std::memcpy(back, "#########", 10);
    size = 3;
    EXPECT_EQ(env_get_bin(env, "Model", "text", 1, back, &size), 3);
    EXPECT_EQ(size, 3);
    EXPECT_EQ(std::string(back, 4), "abc#"); // no room for a terminator
    size = 2;
    EXPECT_EQ(env_get_bin(env, "Model", "text", 1, back, &size), -7);
}

TEST(EnvArraySize, CountsAndMeasures) {
    EnvHandle deflt("[D]\nx =ab,c\n");
    EnvHandle env(kModel, 3, deflt);
    zr_long count = 9;
    zr_long width = 9;
    EXPECT_EQ(env_get_array_size(env, "Model", "words", 1, &count, &width), 0);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(width, 5);
    EXPECT_EQ(env_get_array_size(env, "D", "x", 1, &count, &width), 0);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(width, 2);
    EXPECT_EQ(env_get_array_size(env, "Model", "empty", 1, &count, &width), 0);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(width, 0);
    EXPECT_EQ(env_get_array_size(env, "Model", "length", 0, nullptr, nullptr), 0);
    EXPECT_EQ(env_get_array_size(env, "Model", "longs", 1, nullptr, &width), 0);
    EXPECT_EQ(width, 1);
    EXPECT_EQ(env_get_array_size(env, "Model", "longs", 1, &count, nullptr), 0);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(env_get_array_size(env, "Model", "length", 1, &count, &width), -4);
}

TEST(EnvArraySize, FailuresGiveZeros) {
    EnvHandle env(kModel);
    EnvHandle empty;
    ASSERT_EQ(env_insert_before(env, "Model", "long", "new"), 0);
    const struct {
        zr_env env;
        const char *section, *path;
        int result;
    } cases[] = {{nullptr, "Model", "words", -10}, {env, "Model", "none", -4}, {env, "Nowhere", "a", -4},
                 {env, "Model", "bar", -1},        {env, "Model", "new", -10}, {empty, nullptr, "a", -10}};
    for (const auto &c : cases) {
        zr_long count = 9;
        zr_long width = 9;
        EXPECT_EQ(env_get_array_size(c.env, c.section, c.path, 1, &count, &width), c.result);
        EXPECT_EQ(count, 0);
        EXPECT_EQ(width, 0);
        EXPECT_EQ(env_get_array_size(c.env, c.section, c.path, 1, nullptr, nullptr), c.result);
    }
}

TEST(EnvDataLength, CountsTheText) {
    EnvHandle deflt("[D]\nx =abcdef\n");
    EnvHandle env(kModel, 3, deflt);
    EXPECT_EQ(env_data_length(env, "Model", "text", 1), 3);
    EXPECT_EQ(env_data_length(env, "Model", "empty", 1), 0);
    EXPECT_EQ(env_data_length(env, "Model", "bar", 1), 0);
    EXPECT_EQ(env_data_length(env, "Model", "length", 0), 1);
    EXPECT_EQ(env_data_length(env, "Model", "none", 1), 0);
    EXPECT_EQ(env_data_length(env, "D", "x", 1), 6);
    EXPECT_EQ(env_data_length(nullptr, "Model", "text", 1), -10);
}

// --- typed setters ----------------------------------------------------------------------------------------------------

TEST(EnvTypedPut, StoresTexts) {
    EnvHandle env;
    const zr_long longs[] = {1, -2, 2147483647};
    const double doubles[] = {0.1, 2};
    const char *items[] = {"a", "", "b c"};
    EXPECT_EQ(env_put_long(env, "S", "l", -2147483647 - 1), 0);
    EXPECT_EQ(env_put_double(env, "S", "d", 0.1), 0);
    EXPECT_EQ(env_put_longs(env, "S", "ls", 3, longs), 0);
    EXPECT_EQ(env_put_doubles(env, "S", "ds", 2, doubles), 0);
    EXPECT_EQ(env_put_strings(env, "S", "ss", 3, items), 0);
    EXPECT_EQ(WrittenText(env), "[S]\n  l =-2147483648\n  d =0.1\n  ls =1,-2,2147483647\n  ds =0.1,2\n  ss =a,,b c\n");
}

TEST(EnvTypedPut, DoublesHaveThirteenDigits) {
    EnvHandle env;
    const double values[] = {1.0 / 3, 1e300, -123456789012345.0};
    EXPECT_EQ(env_put_double(env, "S", "d", 2.0 / 3), 0);
    EXPECT_EQ(ValueOf(env, "S", "d"), "0.6666666666667");
    EXPECT_EQ(env_put_doubles(env, "S", "ds", 3, values), 0);
    EXPECT_EQ(ValueOf(env, "S", "ds"), "0.3333333333333,1e+300,-1.234567890123e+14");
}

TEST(EnvTypedPut, DefaultsAreNotTouched) {
    EnvHandle deflt("[D]\nx =1\n", 7);
    const zr_long longs[] = {2, 3};
    const double doubles[] = {2, 3};
    const char *items[] = {"2", "3"};
    const std::function<int(zr_env)> puts[] = {
        [](zr_env env) { return env_put_long(env, "D", "x", 2); },
        [](zr_env env) { return env_put_double(env, "D", "x", 2); },
        [](zr_env env) { return env_put_bin(env, "D", "x", "2", 1); },
        [&](zr_env env) { return env_put_longs(env, "D", "x", 2, longs); },
        [&](zr_env env) { return env_put_doubles(env, "D", "x", 2, doubles); },
        [&](zr_env env) { return env_put_strings(env, "D", "x", 2, items); },
    };
    for (const auto &put : puts) {
        EnvHandle env("", 3, deflt);
        EXPECT_EQ(put(env), 0);
        EXPECT_EQ(ValueOf(deflt, "D", "x"), "1");
        EXPECT_NE(ValueOf(env, "D", "x"), "1");
    }
}

TEST(EnvTypedPut, NullPathOfASubenvironmentIsItsRoot) {
    EnvHandle env(kModel);
    EnvHandle leaf(env_open_subenv(env, "Model", "text", 1));
    const zr_long longs[] = {2, 3};
    const double doubles[] = {2.5, 3};
    const char *items[] = {"a", "b"};
    EXPECT_EQ(env_put_long(leaf, "ignored", nullptr, 5), 0);
    EXPECT_EQ(ValueOf(env, "Model", "text"), "5");
    EXPECT_EQ(env_put_double(leaf, nullptr, nullptr, 5.5), 0);
    EXPECT_EQ(ValueOf(env, "Model", "text"), "5.5");
    EXPECT_EQ(env_put_longs(leaf, nullptr, nullptr, 2, longs), 0);
    EXPECT_EQ(ValueOf(env, "Model", "text"), "2,3");
    EXPECT_EQ(env_put_doubles(leaf, nullptr, nullptr, 2, doubles), 0);
    EXPECT_EQ(ValueOf(env, "Model", "text"), "2.5,3");
    EXPECT_EQ(env_put_strings(leaf, nullptr, nullptr, 2, items), 0);
    EXPECT_EQ(ValueOf(env, "Model", "text"), "a,b");
}

TEST(EnvTypedPut, NullAndEmptyInputs) {
    EnvHandle env;
    const zr_long longs[] = {1};
    const double doubles[] = {1};
    const char *items[] = {"a"};
    EXPECT_EQ(env_put_long(nullptr, "S", "l", 1), -10);
    EXPECT_EQ(env_put_double(nullptr, "S", "l", 1), -10);
    EXPECT_EQ(env_put_longs(nullptr, "S", "l", 1, longs), -10);
    EXPECT_EQ(env_put_doubles(nullptr, "S", "l", 1, doubles), -10);
    EXPECT_EQ(env_put_strings(nullptr, "S", "l", 1, items), -10);
    EXPECT_EQ(env_put_longs(env, "S", "l", 1, nullptr), -10);
    EXPECT_EQ(env_put_doubles(env, "S", "l", 1, nullptr), -10);
    EXPECT_EQ(env_put_strings(env, "S", "l", 1, nullptr), -10);
    for (zr_long count : {0, -1}) {
        EXPECT_EQ(env_put_longs(env, "S", "l", count, longs), -10);
        EXPECT_EQ(env_put_doubles(env, "S", "l", count, doubles), -10);
        EXPECT_EQ(env_put_strings(env, "S", "l", count, items), -10);
    }
    EXPECT_EQ(env_count_elements(env, nullptr, nullptr, 1), 0); // nothing was made
    EXPECT_EQ(env_put_long(env, "S", nullptr, 1), -4);
    EXPECT_EQ(env_put_double(env, "S", nullptr, 1), -10);
    EXPECT_EQ(env_put_long(env, "S", "", 1), -10); // the section itself: no empty path here
}

TEST(EnvTypedPut, ReplacesWhatStandsInTheWay) {
    EnvHandle env(kModel);
    EXPECT_EQ(env_put_long(env, "Model", "bar", 1), 0);
    EXPECT_EQ(env_check(env, "Model", "bar", 1), -1);
    EXPECT_EQ(env_put_long(env, "Model", "text@deep@x", 2), 0);
    EXPECT_EQ(ValueOf(env, "Model", "text@deep@x"), "2");
}

// --- version of data --------------------------------------------------------------------------------------------------

TEST(EnvDataVersion, SetMakesTheSection) {
    EnvHandle env;
    EXPECT_EQ(env_set_data_version(env, 1, 2, 3, 4), 0);
    EXPECT_EQ(WrittenText(env), "[_Zr_Data_Version_Info_]\n  Version =1,2,3,4\n");
    zr_long a = 9, b = 9, c = 9, d = 9;
    env_get_data_version(env, &a, &b, &c, &d);
    EXPECT_THAT((std::vector<zr_long>{a, b, c, d}), ElementsAre(1, 2, 3, 4));
    env_get_data_version(env, nullptr, nullptr, &c, nullptr);
    EXPECT_EQ(c, 3);
    EXPECT_EQ(env_set_data_version(nullptr, 1, 2, 3, 4), -10);
}

TEST(EnvDataVersion, MissingPartsAreZero) {
    const struct {
        const char *text;
        std::vector<zr_long> version;
    } cases[] = {{"", {0, 0, 0, 0}},
                 {"[_Zr_Data_Version_Info_]\n", {0, 0, 0, 0}},
                 {"[_Zr_Data_Version_Info_]\nVersion ={\n}\n", {0, 0, 0, 0}},
                 {"[_Zr_Data_Version_Info_]\nVersion =no\n", {0, 0, 0, 0}},
                 {"[_Zr_Data_Version_Info_]\nVersion =5,6\n", {5, 6, 0, 0}},
                 {"[_Zr_Data_Version_Info_]\nb ={\nVersion =5,6,7,8\n}\n", {0, 0, 0, 0}}};
    for (const auto &c : cases) {
        EnvHandle env(c.text);
        zr_long v[4] = {9, 9, 9, 9};
        env_get_data_version(env, &v[0], &v[1], &v[2], &v[3]);
        EXPECT_THAT(v, testing::ElementsAreArray(c.version)) << c.text;
    }
    zr_long a = 9;
    env_get_data_version(nullptr, &a, nullptr, nullptr, nullptr);
    EXPECT_EQ(a, 0);
    env_get_data_version(nullptr, nullptr, nullptr, nullptr, nullptr);
}

TEST(EnvDataVersion, DefaultAnswers) {
    EnvHandle deflt;
    ASSERT_EQ(env_set_data_version(deflt, 1, 2, 3, 4), 0);
    EnvHandle env("", 0, deflt);
    zr_long d = 9;
    env_get_data_version(env, nullptr, nullptr, nullptr, &d);
    EXPECT_EQ(d, 4);
}
