// The user, the kind of system, its texts for errors, and the library's version and string table.
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "platform/environment.h"
#include "platform/library_record.h"
#include "platform/services.h"
#include "platform/system_kind.h"
#include "platform/system_text.h"
#include "platform/temp_folder.h"
#include "platform/users.h"

namespace {

using namespace zr::platform;

TEST(Users, UserHasAName) {
    char user[512], small[512];
    ASSERT_TRUE(GetSystemUser(user, sizeof user));
    const std::size_t length = std::strlen(user);
    ASSERT_GT(length, 0U);
    EXPECT_EQ(std::strpbrk(user, "\\/:"), nullptr);
    EXPECT_TRUE(GetSystemUser(small, length + 1));
    EXPECT_STREQ(small, user);
    EXPECT_FALSE(GetSystemUser(small, length));
    EXPECT_STREQ(small, "");
    EXPECT_FALSE(GetSystemUser(small, 0));
    EXPECT_FALSE(GetSystemUser(nullptr, 512));
}

TEST(Users, LoginIsHostAndUser) {
    char user[512], login[512], small[512];
    ASSERT_TRUE(GetSystemUser(user, sizeof user));
    ASSERT_TRUE(GetSystemLogin(login, sizeof login));
    const std::string text = login;
    const std::size_t sign = text.find('\\');
    ASSERT_NE(sign, std::string::npos) << text;
    EXPECT_EQ(text.substr(sign + 1), user);
    EXPECT_GT(sign, 0U);
    for (const char letter : text.substr(0, sign))
        EXPECT_FALSE((letter >= 'a' && letter <= 'z') || letter == '.') << text;
    EXPECT_TRUE(GetSystemLogin(small, text.size() + 1));
    EXPECT_EQ(small, text);
    EXPECT_TRUE(GetSystemLogin(small, text.size()));
    EXPECT_EQ(small, text.substr(0, text.size() - 1));
    EXPECT_TRUE(GetSystemLogin(small, 2));
    EXPECT_EQ(small, text.substr(0, 1));
    EXPECT_FALSE(GetSystemLogin(small, 0));
    EXPECT_FALSE(GetSystemLogin(nullptr, 512));
}

TEST(SystemKind, SystemTellsItsVersion) {
    SystemVersion version;
    ASSERT_TRUE(GetSystemVersion(version));
    EXPECT_EQ(version.platform, 2U);
    EXPECT_GE(version.major, 5U);
}

TEST(SystemText, KnownCodesHaveALineOfText) {
    for (const unsigned long code : {0UL, 2UL, 3UL, 5UL, 87UL, 193UL, 1223UL}) {
        const SystemText text(code);
        ASSERT_NE(text.Get(), nullptr) << code;
        const std::string bytes = text.Get();
        EXPECT_GT(bytes.size(), 5U) << code;
        EXPECT_TRUE(bytes.ends_with("\r\n")) << code;
    }
    EXPECT_STRNE(SystemText(2).Get(), SystemText(5).Get());
    const SystemText insert(193);
    EXPECT_NE(std::strstr(insert.Get(), "%1"), nullptr) << insert.Get();
}

TEST(SystemText, UnknownCodesHaveNone) {
    for (const unsigned long code : {12345UL, 99999UL, 0xFFFFFFFFUL})
        EXPECT_EQ(SystemText(code).Get(), nullptr) << code;
}

TEST(LibraryRecord, TextsOfTheTable) {
    char text[1024];
    const std::string minor_text = "Die Daten %s entsprechen Version %ld,%ld.\n"
                                   "Das Modul %s kann nur korrekt mit Daten bis einschl. Version %ld,%ld arbeiten.\n"
                                   "Mit diesen Daten arbeitet das Modul eventuell nicht richtig.\n"
                                   "Bitte aktualisieren Sie das Modul.";
    const std::string major_text = "Die Daten %s entsprechen Version %ld,%ld.\n"
                                   "Das Modul %s kann nur mit Daten bis einschl. Version %ld,%ld arbeiten.\n"
                                   "Das Modul kann nicht mit den Daten arbeiten.\n"
                                   "Bitte aktualisieren Sie das Modul.";
    EXPECT_EQ(GetLibraryText(LibraryText::data_of_later_minor, text, sizeof text), minor_text.size());
    EXPECT_EQ(text, minor_text);
    EXPECT_EQ(GetLibraryText(LibraryText::data_of_later_major, text, sizeof text), major_text.size());
    EXPECT_EQ(text, major_text);
}

TEST(LibraryRecord, TextsAreCutToTheirRoom) {
    char text[1024];
    EXPECT_EQ(GetLibraryText(LibraryText::data_of_later_minor, text, 10), 9U);
    EXPECT_STREQ(text, "Die Daten");
    EXPECT_EQ(GetLibraryText(LibraryText::data_of_later_minor, text, 1), 0U);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(GetLibraryText(LibraryText::data_of_later_minor, text, 0), 0U);
    EXPECT_EQ(GetLibraryText(LibraryText::data_of_later_minor, nullptr, 10), 0U);
}

TEST(LibraryRecord, TextThatIsNotThereIsEmpty) {
    char text[80] = "before";
    for (const unsigned number : {0U, 3U, 16U, 100U}) {
        std::strcpy(text, "before");
        EXPECT_EQ(GetLibraryText(static_cast<LibraryText>(number), text, sizeof text), 0U) << number;
        EXPECT_STREQ(text, "") << number;
    }
}

TEST(Environment, EmptyValueRemoves) {
    EXPECT_EQ(SetVariable("ZR_TEST_VARIABLE", "x"), 0);
    EXPECT_STREQ(std::getenv("ZR_TEST_VARIABLE"), "x");
    EXPECT_EQ(SetVariable("ZR_TEST_VARIABLE", ""), 0);
    EXPECT_EQ(std::getenv("ZR_TEST_VARIABLE"), nullptr);
    EXPECT_EQ(SetVariable("ZR_TEST_VARIABLE", ""), 0);
}

} // namespace
