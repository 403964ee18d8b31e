// Values of the registry, known folders, the library's own file: what holds on every platform.
#include "platform/registry.h"

#include <cstring>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/known_folders.h"
#include "platform/modules.h"
#include "platform/temp_folder.h"
#include "process_measures.h"
#include "registry_values.h"

namespace {

using namespace zr::platform;

std::string FreshKey() {
    return "Software\\zr_test_" + std::to_string(std::random_device{}());
}

// The value's text in angle brackets, or "none".
std::string ValueOf(const std::string &key, const char *name, std::size_t size = 256,
                    RegistryHive hive = RegistryHive::classes_root) {
    std::string buffer(size + 1, '#');
    const bool read = ReadRegistryText(hive, key.c_str(), name, buffer.data(), size);
    EXPECT_EQ(buffer[size], '#');
    if (!read) {
        EXPECT_EQ(buffer[0], size != 0 ? '\0' : '#');
        return "none";
    }
    return "<" + std::string(buffer.c_str()) + ">";
}

TEST(Registry, ValuesAreFoundByKeyAndName) {
    const std::string key = FreshKey();
    RegistryValues values(key);
    values.Set("InstallDir", "C:\\opt\\zr");
    values.Set("zr.ini", "$INSTALLDIR$\\bin");
    values.Set("", "own text");
    values.Set("Empty", "");
    values.Set("Umlaut", "C:\\M\xFCller;a=b");
    EXPECT_EQ(ValueOf(key, "InstallDir"), "<C:\\opt\\zr>");
    EXPECT_EQ(ValueOf(key, "INSTALLDIR"), "<C:\\opt\\zr>");
    EXPECT_EQ(ValueOf(key, "zr.ini"), "<$INSTALLDIR$\\bin>");
    EXPECT_EQ(ValueOf(key, ""), "<own text>");
    EXPECT_EQ(ValueOf(key, nullptr), "<own text>");
    EXPECT_EQ(ValueOf(key, "Empty"), "<>");
    EXPECT_EQ(ValueOf(key, "Umlaut"), "<C:\\M\xFCller;a=b>");
    std::string capitals = key;
    for (char &c : capitals)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_EQ(ValueOf(capitals, "zr.ini"), "<$INSTALLDIR$\\bin>");
}

TEST(Registry, WhatIsNotThereIsNotFound) {
    const std::string key = FreshKey();
    RegistryValues values(key);
    values.Set("a", "1");
    EXPECT_EQ(ValueOf(key, "b"), "none");
    EXPECT_EQ(ValueOf(key, ""), "none");
    EXPECT_EQ(ValueOf(key + "x", "a"), "none");
    EXPECT_EQ(ValueOf(key + "\\sub", "a"), "none");
    EXPECT_EQ(ValueOf(key, "a", 256, RegistryHive::local_machine), "none");
    EXPECT_EQ(ValueOf(key, "a", 256, RegistryHive::current_user), "none");
    char out[10] = "before";
    EXPECT_FALSE(ReadRegistryText(RegistryHive::classes_root, nullptr, "a", out, sizeof out));
    EXPECT_STREQ(out, "");
    EXPECT_FALSE(ReadRegistryText(RegistryHive::classes_root, key.c_str(), "a", nullptr, 10));
}

TEST(Registry, ValueNeedsRoomForItsTerminator) {
    const std::string key = FreshKey();
    RegistryValues values(key);
    const std::string text(255, 'x');
    values.Set("long", text);
    EXPECT_EQ(ValueOf(key, "long", 257), "<" + text + ">");
    EXPECT_EQ(ValueOf(key, "long", 256), "<" + text + ">");
    EXPECT_EQ(ValueOf(key, "long", 255), "none");
    EXPECT_EQ(ValueOf(key, "long", 1), "none");
    EXPECT_EQ(ValueOf(key, "long", 0), "none");
}

TEST(Registry, IsClosedAgainByEveryCall) {
    const std::string key = FreshKey();
    RegistryValues values(key);
    values.Set("a", "text");
    const auto read = [&] {
        EXPECT_EQ(ValueOf(key, "a"), "<text>");
        EXPECT_EQ(ValueOf(key, "a", 4), "none");
        EXPECT_EQ(ValueOf(key, "b"), "none");
        EXPECT_EQ(ValueOf(key + "x", "a"), "none");
    };
    read(); // what the system keeps from the first time on
    const auto before = ProcessMeasures::Now().handles;
    for (int i = 0; i < 5; ++i)
        read();
    EXPECT_EQ(ProcessMeasures::Now().handles, before);
}

TEST(KnownFolders, AreAbsoluteAndWithoutSeparatorAtTheEnd) {
    for (const int number : {user_data_folder, local_user_data_folder, common_data_folder}) {
        char path[path_size];
        ASSERT_TRUE(KnownFolder(number, path, sizeof path)) << number;
        EXPECT_EQ(std::string(path).substr(1, 2), ":\\");
        EXPECT_NE(path[std::strlen(path) - 1], '\\');
        EXPECT_TRUE(KnownFolder(number, path, std::strlen(path) + 1));
        EXPECT_FALSE(KnownFolder(number, path, std::strlen(path)));
        EXPECT_STREQ(path, "");
    }
    char path[path_size] = "before";
    EXPECT_FALSE(KnownFolder(9999, path, sizeof path));
    EXPECT_STREQ(path, "");
    EXPECT_FALSE(KnownFolder(user_data_folder, path, 0));
    EXPECT_FALSE(KnownFolder(user_data_folder, nullptr, 10));
}

TEST(KnownFolders, OneBelowMustExist) {
    char path[path_size] = "before";
    const std::string over_long(300, 'x');
    for (const char *below : {"zr no such folder\\", over_long.c_str(), "", static_cast<const char *>(nullptr)}) {
        EXPECT_FALSE(KnownFolderBelow(user_data_folder, below, path, sizeof path));
        EXPECT_STREQ(path, "");
    }
    EXPECT_FALSE(KnownFolderBelow(9999, "x", path, sizeof path));
}

TEST(KnownFolders, OneBelowKeepsTheSeparatorAtItsEnd) {
    char parent[path_size], path[path_size], host[path_size];
    ASSERT_TRUE(KnownFolder(local_user_data_folder, parent, sizeof parent));
    const std::string name = "zr_test_" + std::to_string(std::random_device{}());
    const std::string whole = parent + ("\\" + name);
    ASSERT_TRUE(HostPath(whole.c_str(), host, sizeof host));
    std::filesystem::create_directories(host);
    EXPECT_TRUE(KnownFolderBelow(local_user_data_folder, name.c_str(), path, sizeof path));
    EXPECT_EQ(path, whole);
    EXPECT_TRUE(KnownFolderBelow(local_user_data_folder, (name + "\\").c_str(), path, sizeof path));
    EXPECT_EQ(path, whole + "\\");
    EXPECT_FALSE(KnownFolderBelow(local_user_data_folder, (name + "\\").c_str(), path, whole.size() + 1));
    std::filesystem::remove(host);
}

TEST(LongPath, IsThatOfAnExistingFileAlone) {
    TempFolder folder;
    folder.Write("a file with a long name.text", "");
    char host[path_size], path[path_size] = "before";
    const std::string whole = folder.Path("a file with a long name.text");
    const std::size_t length = LongPath(whole.c_str(), path, sizeof path);
    EXPECT_EQ(length, std::strlen(path));
    ASSERT_TRUE(HostPath(path, host, sizeof host));
    EXPECT_TRUE(std::filesystem::exists(host));
    EXPECT_EQ(LongPath(whole.c_str(), path, length + 1), length);
    EXPECT_EQ(LongPath(whole.c_str(), path, length), length + 1);
    EXPECT_EQ(LongPath(folder.Path("none").c_str(), path, sizeof path), 0U);
    EXPECT_EQ(LongPath("", path, sizeof path), 0U);
}

TEST(ModulePath, IsThatOfTheProgramWhichHoldsTheCode) {
    char path[path_size], program[path_size];
    const std::size_t length = ModulePath(path, sizeof path);
    ASSERT_GT(length, 0U);
    ProgramPath(program, sizeof program);
    EXPECT_STREQ(path, program);
    EXPECT_EQ(ModulePath(path, length + 1), length);
    EXPECT_EQ(ModulePath(path, length), 0U);
    EXPECT_STREQ(path, "");
    EXPECT_EQ(ModulePath(path, 0), 0U);
    EXPECT_EQ(ModulePath(nullptr, 10), 0U);
}

} // namespace
