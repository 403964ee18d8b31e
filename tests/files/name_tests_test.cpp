// Names of files and folders, and where an extension begins.
#include <zrclb/paths.h>

#include <string>

#include <gtest/gtest.h>

namespace {

using NameTest = int (*)(const char *);

constexpr int good = 0;
constexpr int bad = 1;
constexpr int pattern = 2;

TEST(NameTests, FileNames_AreToldApart) {
    EXPECT_EQ(fio_test_filename("a b.txt"), good);
    EXPECT_EQ(fio_test_filename("x"), good);
    EXPECT_EQ(fio_test_filename("a*b"), pattern);
    EXPECT_EQ(fio_test_filename("a?b"), pattern);
    EXPECT_EQ(fio_test_filename("*.*"), pattern);
    EXPECT_EQ(fio_test_filename("a@b"), bad);
    EXPECT_EQ(fio_test_filename("*@"), bad);
    EXPECT_EQ(fio_test_filename("?a|"), bad);
}

TEST(NameTests, EachForbiddenCharacter_IsBadAnywhere) {
    const std::string forbidden = "\"/:;<>@\\|";
    for (const NameTest test : {fio_test_filename, fio_test_foldername})
        for (int c = 1; c < 256; ++c) {
            const auto letter = static_cast<char>(c);
            const std::string name = std::string("a") + letter + "b";
            const int expected = forbidden.find(letter) != std::string::npos ? bad
                                 : c == '*' || c == '?'                      ? pattern
                                                                             : good;
            EXPECT_EQ(test(name.c_str()), expected) << c;
            if (expected == bad) {
                EXPECT_EQ(test(std::string(1, letter).c_str()), bad) << c;
                EXPECT_EQ(test((std::string("ab*") + letter).c_str()), bad) << c;
            }
        }
}

TEST(NameTests, Length_IsFrom1To255) {
    for (const NameTest test : {fio_test_filename, fio_test_foldername}) {
        EXPECT_EQ(test(nullptr), bad);
        EXPECT_EQ(test(""), bad);
        EXPECT_EQ(test("a"), good);
        EXPECT_EQ(test(std::string(255, 'a').c_str()), good);
        for (const unsigned length : {256U, 257U, 259U, 260U, 10000U})
            EXPECT_EQ(test(std::string(length, 'a').c_str()), bad);
        EXPECT_EQ(test((std::string(254, 'a') + "*").c_str()), pattern);
        EXPECT_EQ(test((std::string(255, 'a') + "*").c_str()), bad);
    }
}

TEST(NameTests, HighBytes_AreNeutral) {
    EXPECT_EQ(fio_test_filename("\x80\xE4\xFF\xA0"), good);
    EXPECT_EQ(fio_test_foldername("\xA0\xE4"), good);
}

TEST(NameTests, FolderName_NeitherBeginsNorEndsInBlankTabOrDot) {
    for (const char *name : {".git", "a.", " a", "a ", "\ta", "a\t", ".", "..", " ", "*.", ".*"})
        EXPECT_EQ(fio_test_foldername(name), bad) << name;
    for (const char *name : {".git", "a.", " a", "a ", "\ta", "a\t", ".", "..", " "})
        EXPECT_EQ(fio_test_filename(name), good) << name;
    EXPECT_EQ(fio_test_foldername("a.b c\td"), good);
    EXPECT_EQ(fio_test_foldername("a.*"), pattern);
}

TEST(NameTests, ExtensionBeginsAtTheLastDotBehindTheFirstCharacter) {
    EXPECT_EQ(fio_get_extention_pos(".ini"), -1);
    EXPECT_EQ(fio_get_extention_pos("a.b"), 1);
    EXPECT_EQ(fio_get_extention_pos("a.b.c"), 3);
    EXPECT_EQ(fio_get_extention_pos("C:\\a.b\\file"), 4);
    EXPECT_EQ(fio_get_extention_pos("file."), 4);
    EXPECT_EQ(fio_get_extention_pos(".."), 1);
    EXPECT_EQ(fio_get_extention_pos("file"), -1);
    EXPECT_EQ(fio_get_extention_pos("."), -1);
    EXPECT_EQ(fio_get_extention_pos(""), -1);
    EXPECT_EQ(fio_get_extention_pos(nullptr), -1);
    EXPECT_EQ(fio_get_extention_pos((std::string(9999, '\xE4') + ".x").c_str()), 9999);
}

} // namespace
