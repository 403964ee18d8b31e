// The file in the registry's place, where it and the known folders lie, and the path of a library loaded by a relative name.
#include "platform/registry.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>
#include <sys/stat.h>

#include "platform/files.h"
#include "platform/known_folders.h"
#include "platform/modules.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;

// Sets environment variables, which come back to what they were.
class Environment {
public:
    explicit Environment(const char *name, const char *value) : m_name(name) {
        const char *before = std::getenv(name);
        m_set = before != nullptr;
        m_before = m_set ? before : "";
        if (value != nullptr)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    ~Environment() {
        if (m_set)
            setenv(m_name, m_before.c_str(), 1);
        else
            unsetenv(m_name);
    }
    Environment(const Environment &) = delete;
    Environment &operator=(const Environment &) = delete;

private:
    const char *m_name;
    bool m_set;
    std::string m_before;
};

std::string ValueOf(const char *key, const char *name) {
    char out[256];
    return ReadRegistryText(RegistryHive::classes_root, key, name, out, sizeof out) ? "<" + std::string(out) + ">"
                                                                                    : "none";
}

// The value "a" of the key "Key" in a file with this content.
std::string ValueIn(const std::string &content) {
    const TempFolder folder;
    folder.Write("r.ini", content);
    const Environment named("ZR_REGISTRY", folder.Path("r.ini").c_str());
    return ValueOf("Key", "a");
}

TEST(RegistryFile, LinesAreReadByTheirRules) {
    EXPECT_EQ(ValueIn("[HKEY_CLASSES_ROOT\\Key]\na=1\n"), "<1>");
    EXPECT_EQ(ValueIn("\r\n  [ hkey_classes_root\\KEY ] rest\r\n\t A \t=  1 2 \t\r\n"), "<1 2>");
    EXPECT_EQ(ValueIn("[HKEY_CLASSES_ROOT\\Key]\na=1"), "<1>");
    EXPECT_EQ(ValueIn("[HKEY_CLASSES_ROOT\\Key]\na=\n"), "<>");
    EXPECT_EQ(ValueIn("[HKEY_CLASSES_ROOT\\Key]\n;a=1\n#a=2\nb=3\na\na=4\na=5\n"), "<4>");
    EXPECT_EQ(ValueIn("a=0\n[HKEY_CLASSES_ROOT\\Other]\na=1\n[HKEY_LOCAL_MACHINE\\Key]\na=2\n"), "none");
    EXPECT_EQ(ValueIn("[HKEY_CLASSES_ROOT\\Key]\n[x]\na=1\n[HKEY_CLASSES_ROOT\\Key]\na=2\n"), "<2>");
    EXPECT_EQ(ValueIn("[HKEY_CLASSES_ROOT\\Key\na=1\n"), "<1>");
    EXPECT_EQ(ValueIn("[HKEY_CLASSES_ROOTxKey]\na=1\n"), "none");
}

TEST(RegistryFile, EachHiveHasItsOwnKeys) {
    const TempFolder folder;
    folder.Write("r.ini", "[HKEY_CURRENT_USER\\Key]\na=user\n[HKEY_LOCAL_MACHINE\\Key]\na=machine\n"
                          "[HKEY_CLASSES_ROOT\\Key]\na=root\n");
    const Environment named("ZR_REGISTRY", folder.Path("r.ini").c_str());
    char out[256];
    EXPECT_TRUE(ReadRegistryText(RegistryHive::current_user, "Key", "a", out, sizeof out));
    EXPECT_STREQ(out, "user");
    EXPECT_TRUE(ReadRegistryText(RegistryHive::local_machine, "Key", "a", out, sizeof out));
    EXPECT_STREQ(out, "machine");
    EXPECT_EQ(ValueOf("Key", "a"), "<root>");
}

TEST(RegistryFile, CommentsAreNoValues) {
    const TempFolder folder;
    folder.Write("r.ini", "[HKEY_CLASSES_ROOT\\Key]\n;a=1\n #b=2\n");
    const Environment named("ZR_REGISTRY", folder.Path("r.ini").c_str());
    EXPECT_EQ(ValueOf("Key", ";a"), "none");
    EXPECT_EQ(ValueOf("Key", "#b"), "none");
}

TEST(RegistryFile, LinesHave2000BytesAndEndAtAZero) {
    const std::string key = "[HKEY_CLASSES_ROOT\\Key]\n";
    EXPECT_EQ(ValueIn(key + "a=" + std::string(1997, ' ') + "xy\n"), "<x>");
    EXPECT_EQ(ValueIn(key + "a=" + std::string(1998, ' ') + "xy\n"), "<>");
    EXPECT_EQ(ValueIn(key + "a=1" + '\0' + std::string(300, 'x') + "\n"), "<1>");
    EXPECT_EQ(ValueIn(key + "a" + '\0' + "=1\na=2\n"), "<2>");
}

TEST(RegistryFile, GarbageIsPassedOver) {
    EXPECT_EQ(ValueIn(""), "none");
    EXPECT_EQ(ValueIn(std::string(100000, '[')), "none");
    EXPECT_EQ(ValueIn(std::string(100000, '\0') + "\n[HKEY_CLASSES_ROOT\\Key]\na=1\n"), "<1>");
    EXPECT_EQ(ValueIn("[HKEY_CLASSES_ROOT\\Key]\n=\n]\n[\n\xFF\xFE=\xFF\n" + std::string(300000, 'x') + "\na=1\n"),
              "none"); // "[" ends the key
    EXPECT_EQ(ValueIn("[HKEY_CLASSES_ROOT\\Key]\n" + std::string(300000, 'x') + "\na=1\n"), "<1>");
    EXPECT_EQ(ValueIn("[HKEY_CLASSES_ROOT\\Key]\n" + std::string("a=1\0002\n", 6)), "<1>");
    EXPECT_EQ(ValueIn("[HKEY_CLASSES_ROOT\\Key]\na=" + std::string(300, 'x') + "\na=1\n"), "none"); // the first holds
}

TEST(RegistryFile, EachKindOfFileIsSurvived) {
    const TempFolder folder;
    const Environment named("ZR_REGISTRY", folder.Path("r.ini").c_str());
    EXPECT_EQ(ValueOf("Key", "a"), "none");
    std::filesystem::create_directory(folder.Path("r.ini"));
    EXPECT_EQ(ValueOf("Key", "a"), "none");
    std::filesystem::remove(folder.Path("r.ini"));
    ASSERT_EQ(mkfifo(folder.Path("r.ini").c_str(), 0600), 0);
    EXPECT_EQ(ValueOf("Key", "a"), "none");
    const Environment endless("ZR_REGISTRY", "/dev/zero");
    EXPECT_EQ(ValueOf("Key", "a"), "none");
    const Environment over_long("ZR_REGISTRY", ("/" + std::string(5000, 'x')).c_str());
    EXPECT_EQ(ValueOf("Key", "a"), "none");
}

TEST(RegistryFile, LiesInTheUsersConfigurationFolder) {
    const TempFolder folder;
    std::filesystem::create_directories(folder.Folder() / ".config/zr");
    std::filesystem::create_directories(folder.Folder() / "other/zr");
    folder.Write(".config/zr/registry.ini", "[HKEY_CLASSES_ROOT\\Key]\na=home\n");
    folder.Write("other/zr/registry.ini", "[HKEY_CLASSES_ROOT\\Key]\na=other\n");
    const Environment unnamed("ZR_REGISTRY", nullptr);
    const Environment home("HOME", folder.Path("").c_str());
    {
        const Environment none("XDG_CONFIG_HOME", nullptr);
        EXPECT_EQ(ValueOf("Key", "a"), "<home>");
        const Environment empty("ZR_REGISTRY", "");
        EXPECT_EQ(ValueOf("Key", "a"), "<home>");
    }
    {
        const Environment relative("XDG_CONFIG_HOME", "other");
        EXPECT_EQ(ValueOf("Key", "a"), "<home>");
    }
    const Environment absolute("XDG_CONFIG_HOME", folder.Path("other").c_str());
    EXPECT_EQ(ValueOf("Key", "a"), "<other>");
    const std::string in_library_form = "C:" + folder.Path(".config\\zr\\registry.ini");
    const Environment named("ZR_REGISTRY", in_library_form.c_str());
    EXPECT_EQ(ValueOf("Key", "a"), "<home>");
}

std::string FolderOf(int number) {
    char out[path_size];
    return KnownFolder(number, out, sizeof out) ? out : "none";
}

TEST(KnownFolders, FollowTheBaseDirectories) {
    const Environment home("HOME", "/home/me/");
    const Environment config("XDG_CONFIG_HOME", nullptr);
    const Environment data("XDG_DATA_HOME", nullptr);
    const Environment common("ZR_COMMON_DATA", nullptr);
    EXPECT_EQ(FolderOf(local_user_data_folder), "C:\\home\\me\\\\.local\\share");
    EXPECT_EQ(FolderOf(common_data_folder), "C:\\var\\lib");
    const Environment plain("HOME", "/home/me");
    EXPECT_EQ(FolderOf(user_data_folder), "C:\\home\\me\\.config");
    const Environment root("XDG_CONFIG_HOME", "/");
    EXPECT_EQ(FolderOf(user_data_folder), "C:\\");
    const Environment relative("XDG_DATA_HOME", "data");
    EXPECT_EQ(FolderOf(local_user_data_folder), "C:\\home\\me\\.local\\share");
    const Environment mine("ZR_COMMON_DATA", "/srv/all//");
    EXPECT_EQ(FolderOf(common_data_folder), "C:\\srv\\all");
    const Environment unrooted("ZR_COMMON_DATA", "srv");
    EXPECT_EQ(FolderOf(common_data_folder), "C:\\var\\lib");
    const Environment over_long("ZR_COMMON_DATA", ("/" + std::string(257, 'x')).c_str());
    EXPECT_EQ(FolderOf(common_data_folder), "none");
}

TEST(KnownFolders, OfAUserWithoutHomeAreThoseOfHisRecord) {
    const Environment config("XDG_CONFIG_HOME", nullptr);
    const Environment home("HOME", nullptr);
    EXPECT_TRUE(FolderOf(user_data_folder).ends_with("\\.config"));
}

TEST(KnownFolders, OneBelowIsComposedAndLookedFor) {
    const TempFolder folder;
    const Environment config("XDG_CONFIG_HOME", folder.Path("c").c_str());
    char out[path_size];
    EXPECT_FALSE(KnownFolderBelow(user_data_folder, "a\\b\\", out, sizeof out));
    std::filesystem::create_directories(folder.Folder() / "c/a");
    folder.Write("c/a/b", "");
    EXPECT_FALSE(KnownFolderBelow(user_data_folder, "a\\b", out, sizeof out));
    std::filesystem::remove(folder.Path("c/a/b"));
    std::filesystem::create_directories(folder.Folder() / "c/a/b");
    ASSERT_TRUE(KnownFolderBelow(user_data_folder, "a\\b\\", out, sizeof out));
    EXPECT_TRUE(std::string(out).ends_with("\\c\\a\\b\\")) << out;
    EXPECT_FALSE(KnownFolderBelow(user_data_folder, "a\\b\\", out, 20));
}

TEST(KnownFolders, OneBelowHasAtMost259Characters) {
    const TempFolder folder;
    const Environment config("XDG_CONFIG_HOME", folder.Path("").c_str());
    const std::size_t room = 259 - std::string("C:").size() - folder.Path("").size();
    for (const std::size_t more : {std::size_t{0}, std::size_t{1}}) {
        const std::string name(room + more, 'n');
        std::filesystem::create_directory(folder.Folder() / name);
        char out[path_size + 1];
        EXPECT_EQ(KnownFolderBelow(user_data_folder, name.c_str(), out, sizeof out), more == 0);
        EXPECT_EQ(std::strlen(out), more == 0 ? 259U : 0U);
    }
}

std::string LongFormOf(const std::string &path) {
    char out[path_size];
    const std::size_t length = LongPath(path.c_str(), out, sizeof out);
    EXPECT_TRUE(length == 0 || length == std::strlen(out));
    return length > 0 ? out : "none";
}

TEST(LongPath, IsInTheLibrarysForm) {
    EXPECT_EQ(LongFormOf("/usr/bin/"), "C:\\usr\\bin\\");
    EXPECT_EQ(LongFormOf("\\usr/bin"), "C:\\usr\\bin");
    EXPECT_EQ(LongFormOf("C:/usr"), "C:\\usr");
    EXPECT_EQ(LongFormOf("C:\\usr\\..\\usr"), "C:\\usr\\..\\usr");
    EXPECT_EQ(LongFormOf("/"), "C:\\");
    const TempFolder folder;
    const CurrentFolder here(folder.Folder());
    folder.Write("file", "");
    EXPECT_EQ(LongFormOf("./file"), ".\\file");
    EXPECT_EQ(LongFormOf("\\\\server\\share"), "none");
    char out[path_size];
    EXPECT_EQ(LongPath("/usr", out, 7), 6U);
    EXPECT_EQ(LongPath("/usr", out, 6), 7U);
}

TEST(ModulePath, OfALibraryIsWhereItWasLoaded) {
    void *library = dlopen("libstdc++.so.6", RTLD_NOW);
    ASSERT_NE(library, nullptr);
    const link_map *entry = static_cast<const link_map *>(library);
    void *before = StoredModule();
    StoreModule(reinterpret_cast<void *>(entry->l_addr));
    char host[path_size], path[path_size];
    EXPECT_GT(ModulePath(path, sizeof path), 0U);
    StoreModule(before);
    ASSERT_TRUE(HostPath(path, host, sizeof host));
    EXPECT_STREQ(host, entry->l_name);
    dlclose(library);
}

// A library loaded by a relative name is found again after the current folder has changed.
TEST(ModulePath, OfALibraryWithARelativeNameIsAbsolute) {
    const link_map *known = static_cast<const link_map *>(dlopen("libm.so.6", RTLD_NOW));
    ASSERT_NE(known, nullptr);
    const TempFolder folder;
    std::filesystem::copy_file(known->l_name, folder.Folder() / "mine.so");
    void *library = nullptr;
    {
        const CurrentFolder there(folder.Folder());
        library = dlopen("./mine.so", RTLD_NOW);
    }
    ASSERT_NE(library, nullptr) << dlerror();
    void *before = StoredModule();
    StoreModule(reinterpret_cast<void *>(static_cast<const link_map *>(library)->l_addr));
    char host[path_size], path[path_size];
    EXPECT_GT(ModulePath(path, sizeof path), 0U);
    StoreModule(before);
    ASSERT_TRUE(HostPath(path, host, sizeof host));
    EXPECT_EQ(std::filesystem::path(host), std::filesystem::canonical(folder.Folder() / "mine.so"));
    dlclose(library);
}

} // namespace
