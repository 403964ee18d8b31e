// The file of an installed font.
#include <zrclb/window_utilities.h>

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/installed_fonts.h"

namespace {

using zr::platform::FontVisitor;

struct Font {
    std::string name;
    std::string file;
};

class FontFile : public testing::Test {
protected:
    void SetUp() override {
        visited = 0;
        fonts = {{"Tahoma Bold (TrueType)", "tahomabd.ttf"},
                 {"Arial (TrueType)", "arial.ttf"},
                 {"arial", "second.ttf"},
                 {"Plain", "plain.fon"},
                 {"(Odd)", "odd.ttf"},
                 {"Two (a) (b)", "two.ttf"},
                 {"Open (x", "open.ttf"},
                 {"Back )(x", "back.ttf"},
                 {"Behind (x) y", "behind.ttf"},
                 {"  Blank  (x)", "C:\\fonts\\blank.ttf"},
                 {"B\xFC"
                  "cher (TrueType)",
                  "buecher.ttf"}};
        zr::platform::services.installed_fonts = [](FontVisitor visit, void *context) {
            for (const Font &font : fonts) {
                ++visited;
                if (!visit(context, font.name.c_str(), font.file.c_str()))
                    return;
            }
        };
    }
    void TearDown() override { zr::platform::services = zr::platform::Services(); }

    // The file, or "none".
    static std::string FileOf(const char *name, int size = 100) {
        std::string buffer(120, '#');
        const int found = wu_GetFontFile(name, buffer.data(), size);
        EXPECT_EQ(buffer[static_cast<std::size_t>(size)], '#');
        if (found == 0)
            EXPECT_STREQ(buffer.c_str(), "");
        else
            EXPECT_EQ(found, 1);
        return found != 0 ? buffer.c_str() : "none";
    }

    static inline std::vector<Font> fonts;
    static inline int visited = 0;
};

TEST_F(FontFile, KindInParenthesesDoesNotCount) {
    EXPECT_EQ(FileOf("Arial"), "arial.ttf");
    EXPECT_EQ(FileOf("Tahoma Bold"), "tahomabd.ttf");
    EXPECT_EQ(FileOf("Plain"), "plain.fon");
    EXPECT_EQ(FileOf("Arial (TrueType)"), "none");
}

TEST_F(FontFile, CaseDoesNotCount) {
    EXPECT_EQ(FileOf("arial"), "arial.ttf");
    EXPECT_EQ(FileOf("TAHOMA bold"), "tahomabd.ttf");
    EXPECT_EQ(FileOf("b\xFC"
                     "cher"),
              "buecher.ttf");
}

TEST_F(FontFile, FirstOneEndsTheSearch) {
    EXPECT_EQ(FileOf("arial"), "arial.ttf");
    EXPECT_EQ(visited, 2);
}

TEST_F(FontFile, WhatIsNotThereIsNotFound) {
    EXPECT_EQ(FileOf("Ari"), "none");
    EXPECT_EQ(FileOf("Arial Black"), "none");
    EXPECT_EQ(FileOf(""), "none");
    fonts.clear();
    EXPECT_EQ(FileOf("Arial"), "none");
}

TEST_F(FontFile, OnlyTheLastParenthesesBehindANameAreCut) {
    EXPECT_EQ(FileOf("(Odd)"), "odd.ttf");
    EXPECT_EQ(FileOf("Two (a)"), "two.ttf");
    EXPECT_EQ(FileOf("Two"), "none");
    EXPECT_EQ(FileOf("Open (x"), "open.ttf");
    EXPECT_EQ(FileOf("Open"), "none");
    EXPECT_EQ(FileOf("Back )(x"), "back.ttf");
    EXPECT_EQ(FileOf("Behind"), "behind.ttf");
}

TEST_F(FontFile, BlanksAroundListedNamesDoNotCount) {
    EXPECT_EQ(FileOf("Blank"), "C:\\fonts\\blank.ttf");
    EXPECT_EQ(FileOf(" Blank"), "none");
    fonts = {{" (x)", "empty.ttf"}};
    EXPECT_EQ(FileOf(""), "empty.ttf");
}

TEST_F(FontFile, FileIsCutAtTheBuffersSize) {
    EXPECT_EQ(FileOf("Arial", 10), "arial.ttf");
    EXPECT_EQ(FileOf("Arial", 9), "arial.tt");
    EXPECT_EQ(FileOf("Arial", 2), "a");
    EXPECT_EQ(FileOf("Arial", 1), "");
    for (int size : {0, -1, -2147483647 - 1}) {
        char buffer[] = "##";
        EXPECT_EQ(wu_GetFontFile("Arial", buffer, size), 1);
        EXPECT_STREQ(buffer, "##");
        EXPECT_EQ(wu_GetFontFile("none", buffer, size), 0);
        EXPECT_STREQ(buffer, "##");
    }
}

TEST_F(FontFile, NamesOf260CharactersAreNotLookedUp) {
    const std::string longest(259, 'n');
    fonts = {{longest, "longest.ttf"}};
    EXPECT_EQ(FileOf(longest.c_str()), "longest.ttf");
    EXPECT_EQ(FileOf((longest + "n").c_str()), "none");
    EXPECT_EQ(visited, 1);
    EXPECT_EQ(FileOf((longest + std::string(10000, 'n')).c_str()), "none");
    EXPECT_EQ(visited, 1);
}

TEST_F(FontFile, NullIsNotFound) {
    char buffer[] = "before";
    EXPECT_EQ(wu_GetFontFile(nullptr, buffer, sizeof buffer), 0);
    EXPECT_STREQ(buffer, "before");
    EXPECT_EQ(wu_GetFontFile("Arial", nullptr, 10), 0);
    EXPECT_EQ(wu_GetFontFile(nullptr, nullptr, 0), 0);
    EXPECT_EQ(visited, 0);
}

} // namespace
