// Values of the registry as programs store them otherwise than as a text with its terminator.
#include "platform/registry.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

#include "registry_values.h"

namespace {

using namespace zr::platform;

TEST(RegistryValue, BytesUpToTheFirstZeroAreItsText) {
    const std::string key = "Software\\zr_test_" + std::to_string(std::random_device{}());
    RegistryValues values(key);
    values.SetBytes("binary", REG_BINARY, std::string("ab\0cd", 5));
    values.SetBytes("unterminated", REG_BINARY, "abcdefg");
    values.SetBytes("nothing", REG_BINARY, "");
    char out[8];
    const auto read = [&](const char *name, std::size_t size) {
        return ReadRegistryText(RegistryHive::classes_root, key.c_str(), name, out, size);
    };
    EXPECT_TRUE(read("binary", 5));
    EXPECT_STREQ(out, "ab");
    EXPECT_TRUE(read("unterminated", 8));
    EXPECT_STREQ(out, "abcdefg");
    EXPECT_FALSE(read("unterminated", 7)); // no room for the terminator
    EXPECT_STREQ(out, "");
    EXPECT_TRUE(read("nothing", 8));
    EXPECT_STREQ(out, "");
}

// A value under a key of this hive is found there and not in the other hive, and is gone with its key.
void CheckHive(HKEY root, RegistryHive hive, RegistryHive other) {
    const std::string key = "Software\\zr_test_" + std::to_string(std::random_device{}());
    HKEY made;
    ASSERT_EQ(
        RegCreateKeyExA(root, key.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &made, nullptr),
        ERROR_SUCCESS);
    const BYTE text[] = "mine";
    RegSetValueExA(made, "a", 0, REG_SZ, text, sizeof text);
    RegCloseKey(made);
    char out[8], unread[8];
    const bool read = ReadRegistryText(hive, key.c_str(), "a", out, sizeof out);
    EXPECT_FALSE(ReadRegistryText(other, key.c_str(), "a", unread, sizeof unread));
    RegDeleteKeyA(root, key.c_str());
    EXPECT_TRUE(read);
    EXPECT_STREQ(out, "mine");
    EXPECT_FALSE(ReadRegistryText(hive, key.c_str(), "a", out, sizeof out));
}

TEST(RegistryValue, OfTheSystemsOwnKeyIsFound) {
    CheckHive(HKEY_CLASSES_ROOT, RegistryHive::classes_root, RegistryHive::current_user);
}

TEST(RegistryValue, OfTheUserIsFoundInItsOwnHive) {
    CheckHive(HKEY_CURRENT_USER, RegistryHive::current_user, RegistryHive::classes_root);
}

} // namespace
