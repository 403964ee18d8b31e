// Trees, texts and files far larger than usual, through all functions, on a small stack. ZR_TEST_LONG makes them as large as
// they can be: a million levels and children, a value and a file of a gigabyte.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "env/function_fixture.h"
#include "env/refused_memory.h"
#include "env/tree_check.h"
#include "small_stack.h"

using namespace zr::test;

namespace {

constexpr std::size_t StackSize = 256 * 1024; // programs have 8 MB on Linux and 1 MB on Windows
constexpr std::size_t Megabyte = 1 << 20;
constexpr bool HasWideAddresses = sizeof(void *) > 4;

// The size of the short form, or of the long one; a program of 32 bits has no room for the largest.
std::size_t SizeOf(std::size_t shortForm, std::size_t longForm, std::size_t narrowForm) {
    static const bool isLong = std::getenv("ZR_TEST_LONG") != nullptr;
    return !isLong ? shortForm : HasWideAddresses ? longForm : narrowForm;
}

void ExpectSound(const EnvHandle &env) {
    using Check = Zr::CZrEnvTreeCheck;
    EXPECT_EQ(Check::OfEnvironment(*env.operator->(), Check::Indexes::Build).what, "");
}

void CountLeaf(zr_env, const char *, const char *, void *user) {
    ++*static_cast<std::size_t *>(user);
}

std::size_t LeavesOf(zr_env env) {
    std::size_t leaves = 0;
    EXPECT_EQ(env_traverse_leafs(env, CountLeaf, &leaves), 0);
    return leaves;
}

std::string Repeated(std::size_t count, const std::string &text) {
    std::string all;
    all.reserve(count * text.size());
    for (std::size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

// Equal texts, told without printing them.
testing::AssertionResult IsSame(const std::string &text, const std::string &expected) {
    if (text == expected)
        return testing::AssertionSuccess();
    const auto at =
        std::mismatch(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(std::min(text.size(), expected.size())),
                      expected.begin());
    return testing::AssertionFailure() << "texts of " << text.size() << " and " << expected.size()
                                       << " bytes, different from byte " << at.first - text.begin() << " on";
}

// What is written to a file is what is written to a string, and reads back as the same.
void ExpectRoundTrip(const EnvHandle &env) {
    const TempFolder folder;
    const std::string path = folder.File("round.env");
    for (const int wrap : {1, 0}) {
        char *written = env_write_to_string_ex(env, wrap);
        ASSERT_NE(written, nullptr);
        EXPECT_EQ(env_write_file_ex(path.c_str(), env, wrap), 1);
        const EnvHandle fromFile;
        EXPECT_EQ(env_read_file(path.c_str(), fromFile), 0);
        char *again = env_write_to_string_ex(fromFile, wrap);
        EXPECT_TRUE(std::strcmp(again, written) == 0);
        env_free_string(again);
        const EnvHandle fromString;
        EXPECT_EQ(env_read_from_string(written, fromString), 0);
        env_free_string(written);
        EXPECT_EQ(env_write_file_ex(path.c_str(), fromString, wrap), 1);
        ExpectSound(fromString);
    }
}

// ---- Depth

// Blocks of one name in one another, a leaf in the innermost. No indentation: with it the text has two blanks more on each
// line, some terabytes for a million levels, so that writing is tried at fewer.
std::string NestedText(std::size_t levels) {
    return "[S]\n" + Repeated(levels, "b ={\n") + "x =1\n" + Repeated(levels, "}\n");
}

void ReadAndChangeDeepTree() {
    const std::size_t levels = SizeOf(100000, 1000000, 1000000);
    const std::string text = NestedText(levels);
    const std::string blocks = Repeated(levels, "b@");
    const std::string block = blocks.substr(0, blocks.size() - 1);
    const std::string leaf = blocks + "x";
    const EnvHandle env(text.c_str());
    ExpectSound(env);

    zr_long value = 0;
    EXPECT_EQ(env_get_long(env, "S", leaf.c_str(), 1, &value), 0);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(env_get_long(env, "S", "x", 0, &value), 0) << "found in the tree";
    EXPECT_EQ(env_exist(env, "S", "none", 0), 0);
    EXPECT_EQ(env_check(env, "S", block.c_str(), 1), -2);
    EXPECT_EQ(env_count_path(env, "S", leaf.c_str(), 1), 1);
    EXPECT_EQ(env_put_long(env, "S", leaf.c_str(), 2), 0);
    EXPECT_EQ(env_put(env, "S", (blocks + "c@d").c_str(), "new"), 0);
    EXPECT_EQ(env_insert_before(env, "S", leaf.c_str(), "i"), 0);
    EXPECT_EQ(env_put(env, "S", (blocks + "i").c_str(), "inserted"), 0);
    char names[20];
    EXPECT_EQ(env_list_elem_names(env, "S", block.c_str(), 1, ',', sizeof names, names), 0);
    EXPECT_STREQ(names, "i,x,c,");
    std::size_t siblings = 0;
    EXPECT_EQ(env_traverse(env, "S", block.c_str(), 1, CountLeaf, &siblings), 0);
    EXPECT_EQ(siblings, 3u);
    EXPECT_EQ(LeavesOf(env), 3u);

    const zr_env sub = env_open_subenv(env, "S", block.c_str(), 1);
    EXPECT_EQ(ValueOf(sub, nullptr, "x"), "2");
    EXPECT_EQ(env_close(sub, 0), 0);
    EXPECT_EQ(env_rename(env, "S", leaf.c_str(), "y"), 0);
    EXPECT_EQ(ValueOf(env, "S", (blocks + "y").c_str()), "2");
    const std::string half = blocks.substr(0, levels / 2 * 2 - 1);
    EXPECT_EQ(env_rename(env, "S", half.c_str(), "h"), 0);
    EXPECT_EQ(env_exist(env, "S", leaf.c_str(), 1), 0);
    ExpectSound(env);
    EXPECT_EQ(env_delete(env, "S", "b"), 0);
    EXPECT_EQ(WrittenText(env), "[S]\n");
}

// The walk cuts paths behind 10239 characters, a copy that appends behind 255: what lies deeper goes to another place, at
// four characters for each level, and nothing breaks.
void CopyDeepTree() {
    const std::size_t levels = SizeOf(100000, 1000000, 1000000);
    const EnvHandle env(NestedText(levels).c_str());
    constexpr int reached = 10240 / 4;
    const int goesTo[] = {reached, 256 / 4, reached, 0}; // by the mode; what is not there is not updated
    for (const zr_long mode : {0, 1, 2, 3}) {
        const EnvHandle target("[S]\nz =7\n");
        EXPECT_EQ(env_sink(target, env, mode), 0);
        EXPECT_EQ(ValueOf(target, "S", DeepPath(goesTo[mode], "b").c_str()), goesTo[mode] ? "1" : "(-1)") << mode;
        EXPECT_EQ(LeavesOf(target), goesTo[mode] ? 2u : 1u);
        ExpectSound(target);
    }
    const EnvHandle target;
    EXPECT_EQ(env_copy_block(target, env, "S", "b", 2), 0);
    EXPECT_EQ(ValueOf(target, "S", DeepPath(1 + reached, "b").c_str()), "1");
    EXPECT_EQ(LeavesOf(target), 1u);
    ExpectSound(target);
    ExpectSound(env);

    // Built by its path, and read as a file.
    const EnvHandle built;
    const std::string leaf = Repeated(levels, "b@") + "x";
    EXPECT_EQ(env_put_long(built, "S", leaf.c_str(), 1), 0);
    const TempFolder folder;
    const std::string path = folder.File("deep.env");
    std::ofstream(path, std::ios::binary) << NestedText(levels);
    EXPECT_EQ(env_read_file(path.c_str(), env), 0);
    EXPECT_EQ(ValueOf(env, "S", leaf.c_str()), ValueOf(built, "S", leaf.c_str()));
}

void WriteDeepTree() {
    const EnvHandle env(NestedText(SizeOf(2000, 15000, 5000)).c_str());
    ExpectRoundTrip(env);
}

// ---- Width

void ChangeWideTree() {
    const std::size_t count = SizeOf(30000, 1000000, 1000000);
    std::string text = "[S]\nnames ={\n";
    for (std::size_t i = 0; i < count; ++i)
        text += "n" + std::to_string(i) + " =" + std::to_string(i) + "\n";
    text += "}\nsame ={\n" + Repeated(count, "a =1\n") + "}\n";
    const EnvHandle env(text.c_str());
    const std::string last = "names@n" + std::to_string(count - 1);
    const std::string lastSame = "same@a@" + std::to_string(count);
    const auto longCount = static_cast<zr_long>(count);

    EXPECT_EQ(ValueOf(env, "S", last.c_str()), std::to_string(count - 1));
    EXPECT_EQ(ValueOf(env, "S", lastSame.c_str()), "1");
    EXPECT_EQ(env_count_elements(env, "S", "names", 1), longCount);
    EXPECT_EQ(env_count_path(env, "S", "same@a", 1), longCount);
    EXPECT_EQ(env_exist(env, "S", "none", 0), 0);
    char name[40];
    char value[40];
    EXPECT_EQ(env_get_pos(env, "S", "names", 1, longCount, nullptr, 40, name, 40, value), -1);
    EXPECT_STREQ(value, std::to_string(count - 1).c_str());
    std::size_t seen = 0;
    for (int kind = env_get_first_core(env, "S", "names", 1, nullptr, 40, name, 40, value); kind == -1; ++seen)
        kind = env_get_next_core(env, 40, name, 40, value);
    EXPECT_EQ(seen, count);
    std::string names(count * 9, '\0');
    EXPECT_EQ(env_list_elem_names(env, "S", "names", 1, ',', static_cast<zr_long>(names.size()), names.data()), 0);
    EXPECT_TRUE(std::string(names.c_str()).ends_with(",n" + std::to_string(count - 1) + ","));
    EXPECT_EQ(LeavesOf(env), 2 * count);
    ExpectRoundTrip(env);
    for (const zr_long mode : {2, 0}) {
        const EnvHandle target;
        EXPECT_EQ(env_sink(target, env, mode), 0);
        EXPECT_EQ(LeavesOf(target), 2 * count);
        EXPECT_TRUE(IsSame(WrittenText(target), WrittenText(env)));
    }

    EXPECT_EQ(env_rename(env, "S", "names@n0", "renamed"), 0);
    EXPECT_EQ(env_rename(env, "S", last.c_str(), "renamed"), 0);
    EXPECT_EQ(ValueOf(env, "S", "names@renamed@2"), std::to_string(count - 1));
    EXPECT_EQ(env_delete(env, "S", "names@renamed"), 0);
    EXPECT_EQ(env_delete(env, "S", lastSame.c_str()), 0);
    EXPECT_EQ(env_delete(env, "S", "same@a"), 0);
    std::size_t siblings = 0;
    for (const char *path : {"names", "same"}) // the callback gets a null handle for what a rename has hidden
        EXPECT_EQ(env_traverse(env, "S", path, 1, CountLeaf, &siblings), 0);
    EXPECT_EQ(siblings, 2 * count - 3);
    ExpectSound(env);
    EXPECT_EQ(env_delete(env, "S", "names"), 0);
    EXPECT_EQ(env_delete(env, "S", "same"), 0);
    EXPECT_EQ(WrittenText(env), "[S]\n");
}

// ---- Long values, names and paths

void ChangeLongValue() {
    const std::size_t size = SizeOf(16 * Megabyte, 1024 * Megabyte, 128 * Megabyte);
    const EnvHandle env;
    {
        std::string value(size, 'v');
        value.back() = '.';
        EXPECT_EQ(env_put(env, "S", "x", value.c_str()), 0);
        EXPECT_EQ(env_put(env, "S", "y", "1"), 0);
    }
    EXPECT_EQ(env_data_length(env, "S", "x", 1), static_cast<zr_long>(size));
    char small[10] = "";
    EXPECT_EQ(env_get(env, "S", "x", 1, sizeof small, small), -7);
    zr_long number = 0;
    EXPECT_EQ(env_get_long(env, "S", "x", 1, &number), -5);
    {
        std::string copy(size + 1, '\0');
        EXPECT_EQ(env_get(env, "S", "x", 1, static_cast<zr_long>(size), copy.data()), -7);
        EXPECT_EQ(env_get(env, "S", "x", 1, static_cast<zr_long>(size + 1), copy.data()), 0);
        EXPECT_EQ(copy.find_first_not_of('v'), size - 1);
    }
    {
        const EnvHandle target;
        EXPECT_EQ(env_sink(target, env, 2), 0);
        EXPECT_EQ(env_data_length(target, "S", "x", 1), static_cast<zr_long>(size));
    }
    ExpectRoundTrip(env);
    EXPECT_EQ(env_rename(env, "S", "x", "z"), 0);
    EXPECT_EQ(env_put(env, "S", "z", "short"), 0);
    EXPECT_EQ(env_delete(env, "S", "y"), 0);
    EXPECT_EQ(WrittenText(env), "[S]\n  z =short\n");
}

// Bytes of which each takes two characters, and a list of numbers.
void PutLongBinaryAndList() {
    const std::size_t size = SizeOf(16 * Megabyte, 1024 * Megabyte, 128 * Megabyte) / 2;
    const EnvHandle env;
    {
        std::string bytes(size, '\0');
        bytes.back() = 'x';
        EXPECT_EQ(env_put_bin(env, "S", "bin", bytes.data(), static_cast<zr_long>(size)), 0);
        EXPECT_EQ(env_data_length(env, "S", "bin", 1), static_cast<zr_long>(2 + 2 * size - 1)); // the version in front
        std::string back(size + 1, '#');
        auto got = static_cast<zr_long>(size);
        EXPECT_EQ(env_get_bin(env, "S", "bin", 1, back.data(), &got), -7);
        got = static_cast<zr_long>(size + 1);
        EXPECT_EQ(env_get_bin(env, "S", "bin", 1, back.data(), &got), 0);
        EXPECT_EQ(got, static_cast<zr_long>(size));
        EXPECT_TRUE(IsSame(back, bytes + '#'));
    }
    const std::vector<zr_long> numbers(size / 16, -2147483647);
    const auto count = static_cast<zr_long>(numbers.size());
    EXPECT_EQ(env_put_longs(env, "S", "list", count, numbers.data()), 0);
    EXPECT_EQ(env_data_length(env, "S", "list", 1), 12 * count - 1);
    std::vector<zr_long> back(numbers.size());
    zr_long got = count - 1;
    EXPECT_EQ(env_get_longs(env, "S", "list", 1, &got, back.data()), -7);
    got = count;
    EXPECT_EQ(env_get_longs(env, "S", "list", 1, &got, back.data()), 0);
    EXPECT_EQ(got, count);
    EXPECT_TRUE(back == numbers);
    zr_long width = 0;
    EXPECT_EQ(env_get_array_size(env, "S", "list", 1, &got, &width), 0);
    EXPECT_EQ(got, count);
    EXPECT_EQ(width, 11);
}

void ChangeLongNames() {
    const std::string a(Megabyte, 'a');
    const std::string b(Megabyte, 'b');
    const std::string path = a + "@" + b + "@" + a;
    const EnvHandle env;
    std::string made(path.size() + 1, '#');
    const auto needed = static_cast<zr_long>(made.size());
    const char *const end = nullptr;
    EXPECT_EQ(env_create_path(env, needed - 1, made.data(), a.c_str(), b.c_str(), a.c_str(), end), -7);
    EXPECT_EQ(env_create_path(env, needed, made.data(), a.c_str(), b.c_str(), a.c_str(), end), 0);
    EXPECT_TRUE(IsSame(made.c_str(), path));
    EXPECT_EQ(env_put(env, b.c_str(), path.c_str(), "1"), 0);
    EXPECT_EQ(env_put(env, b.c_str(), path.c_str(), "2"), 0);
    EXPECT_EQ(ValueOf(env, b.c_str(), path.c_str()), "2");
    EXPECT_EQ(ValueOf(env, b.c_str(), (path + "b").c_str()), "(-4)");
    EXPECT_EQ(env_count_path(env, b.c_str(), path.c_str(), 1), 1);
    EXPECT_EQ(env_exist(env, b.c_str(), b.c_str(), 0), 1);
    const zr_env sub = env_create_subenv(env, b.c_str(), (a + "@" + b).c_str());
    EXPECT_EQ(ValueOf(sub, nullptr, a.c_str()), "2");
    EXPECT_EQ(env_close(sub, 0), 0);
    std::string names(Megabyte + 3, '\0');
    EXPECT_EQ(env_list_elem_names(env, b.c_str(), nullptr, 1, ',', static_cast<zr_long>(Megabyte) + 1, names.data()),
              -7);
    EXPECT_EQ(env_list_elem_names(env, b.c_str(), nullptr, 1, ',', static_cast<zr_long>(Megabyte) + 2, names.data()),
              0);
    EXPECT_TRUE(IsSame(names.c_str(), a + ","));
    char small[10];
    EXPECT_EQ(env_get_pos(env, b.c_str(), nullptr, 1, 1, nullptr, sizeof small, small, 0, nullptr), -7);
    EXPECT_EQ(env_get_first_core(env, b.c_str(), nullptr, 1, nullptr, sizeof small, small, sizeof small, small), -7);
    ExpectRoundTrip(env);
    ExpectSound(env);

    std::size_t leaves = 0;
    EXPECT_EQ(env_traverse_leafs(env, CountLeaf, &leaves), -10) << "the path of a step that long is cut, to nowhere";
    EXPECT_EQ(leaves, 0u);
    const EnvHandle target("[S]\nz =7\n");
    EXPECT_EQ(env_sink(target, env, 2), -10);
    EXPECT_EQ(WrittenText(target), "[S]\n  z =7\n");
    EXPECT_EQ(env_rename(env, b.c_str(), path.c_str(), b.c_str()), 0);
    EXPECT_EQ(env_rename(env, b.c_str(), a.c_str(), "short"), 0);
    EXPECT_EQ(ValueOf(env, b.c_str(), ("short@" + b + "@" + b).c_str()), "2");
    EXPECT_EQ(env_insert_before(env, b.c_str(), "short", a.c_str()), 0);
    ExpectSound(env);
    EXPECT_EQ(env_delete(env, b.c_str(), ("short@" + b).c_str()), 0);
    EXPECT_EQ(env_delete(env, b.c_str(), nullptr), 0);
    EXPECT_EQ(WrittenText(env), "");
}

// ---- A long file

// As programs write them: blocks of fifty leaves. Answers how many leaves there are.
std::size_t WriteLongFile(const std::string &path, std::size_t size) {
    std::ofstream file(path, std::ios::binary);
    std::size_t leaves = 0;
    std::size_t written = 0;
    file << "__ZR_ENV_READ_MODE__=NOT_WRAPPED\r\n[Model]\r\n";
    for (std::size_t block = 0; written < size; ++block) {
        std::string text = "  element" + std::to_string(block) + " ={\r\n";
        for (int leaf = 0; leaf < 50; ++leaf, ++leaves)
            text += "    factor" + std::to_string(leaf) + " =" + std::to_string(leaves) + ".25\r\n";
        text += "  }\r\n";
        file << text;
        written += text.size();
    }
    EXPECT_TRUE(file.good());
    return leaves;
}

testing::AssertionResult AreSameFiles(const std::string &one, const std::string &other) {
    std::ifstream first(one, std::ios::binary);
    std::ifstream second(other, std::ios::binary);
    std::string a(Megabyte, '\0');
    std::string b(Megabyte, '\0');
    while (first.good() && second.good()) {
        first.read(a.data(), static_cast<std::streamsize>(a.size()));
        second.read(b.data(), static_cast<std::streamsize>(b.size()));
        if (first.gcount() != second.gcount() || a != b)
            return testing::AssertionFailure() << "the files differ";
    }
    return first.eof() && second.eof() ? testing::AssertionSuccess() : testing::AssertionFailure() << "other lengths";
}

void ReadLongFile() {
    constexpr long long perLeaf = 100;
    constexpr long long perLeafIndexed = 125;
    constexpr long long buffers = 512 * 1024; // of the reader and the stream
    const TempFolder folder;
    const std::string path = folder.File("long.env");
    const std::size_t leaves = WriteLongFile(path, SizeOf(16 * Megabyte, 1024 * Megabyte, 256 * Megabyte));
    const EnvHandle env;
    const MemoryBalance reading;
    EXPECT_EQ(env_read_file(path.c_str(), env), 0);
    const long long final = reading.Bytes();
    EXPECT_LE(final, perLeaf * static_cast<long long>(leaves));
    EXPECT_LE(reading.MostBytes(), final + final / 20 + buffers);
    std::printf("%zu leaves, %.1f bytes each\n", leaves, static_cast<double>(final) / static_cast<double>(leaves));

    const std::string last = "element" + std::to_string(leaves / 50 - 1) + "@factor49";
    EXPECT_EQ(ValueOf(env, "Model", last.c_str()), std::to_string(leaves - 1) + ".25");
    EXPECT_EQ(env_count_elements(env, "Model", nullptr, 1), static_cast<zr_long>(leaves / 50));
    const std::string copy = folder.File("copy.env");
    const MemoryBalance writing;
    EXPECT_EQ(env_write_file_ex(copy.c_str(), env, 0), 1);
    EXPECT_LE(writing.MostBytes(), buffers) << "writing takes no more with the size of the tree";
    EXPECT_TRUE(AreSameFiles(path, copy));
    ExpectSound(env);
    EXPECT_LE(reading.Bytes(), perLeafIndexed * static_cast<long long>(leaves)) << "with an index of every block";
}

} // namespace

TEST(Extremes, DeepTree_ReadsAndChanges) {
    RunOnStack(StackSize, ReadAndChangeDeepTree);
}

TEST(Extremes, DeepTree_Copies) {
    RunOnStack(StackSize, CopyDeepTree);
}

TEST(Extremes, DeepTree_IsWritten) {
    RunOnStack(StackSize, WriteDeepTree);
}

TEST(Extremes, WideTree_ReadsWritesAndChanges) {
    RunOnStack(StackSize, ChangeWideTree);
}

TEST(Extremes, LongValue_ReadsWritesAndChanges) {
    RunOnStack(StackSize, ChangeLongValue);
}

TEST(Extremes, LongBinaryValueAndList_AreKept) {
    RunOnStack(StackSize, PutLongBinaryAndList);
}

TEST(Extremes, LongNamesAndPaths_ReadWriteAndChange) {
    RunOnStack(StackSize, ChangeLongNames);
}

TEST(Extremes, LongFile_IsStreamed) {
    RunOnStack(StackSize, ReadLongFile);
}
