// Names against wildcards: the table of measured and documented answers, and what every rule means.
#include <string>

#include <gtest/gtest.h>

#include "golden_table.h"
#include "platform/reference_wildcard.h"
#include "platform/wildcard.h"

using zr::platform::MatchWildcard;
using zr::platform::Wildcard;

namespace {

// The answer of a row by the long name alone: the documented one where there is one. It says "0 by the long name; ..."
// where the match came about through a second, short name that the measured system made up.
bool DocumentedMatch(const GoldenTable::Row &row) {
    const std::string &documented = row.at("windows_documented");
    return (documented.empty() ? row.at("match") : documented)[0] == '1';
}

bool IsDotFolder(const std::string &name) {
    return name == "." || name == "..";
}

} // namespace

TEST(Wildcard, TableRows_AsDocumentedByTheLongName) {
    int rows = 0;
    const GoldenTable table("win_wildcard.tsv");
    for (const auto &row : table.Rows()) {
        if (IsDotFolder(row.at("name")))
            continue;
        EXPECT_EQ(MatchWildcard(row.at("pattern").c_str(), row.at("name").c_str()), DocumentedMatch(row))
            << row.at("pattern") << " " << row.at("name");
        ++rows;
    }
    EXPECT_GE(rows, 3986);
}

// For "." and ".." there are only measured answers, from a system known to read "?", ">" and "*." at the end in its own
// way.
TEST(Wildcard, TableRowsOfDotFolders_AsMeasuredWhereThePatternIsReadAlike) {
    const GoldenTable table("win_wildcard.tsv");
    int rows = 0;
    for (const auto &row : table.Rows()) {
        const std::string &pattern = row.at("pattern");
        const bool read_alike = pattern.find_first_of("?>") == std::string::npos &&
                                (pattern.size() < 2 || pattern.substr(pattern.size() - 2) != "*.");
        if (!IsDotFolder(row.at("name")) || !read_alike)
            continue;
        EXPECT_EQ(MatchWildcard(pattern.c_str(), row.at("name").c_str()), DocumentedMatch(row))
            << pattern << " " << row.at("name");
        ++rows;
    }
    EXPECT_GE(rows, 147);
}

TEST(Wildcard, Star_MatchesAnyRun) {
    EXPECT_TRUE(MatchWildcard("*", ""));
    EXPECT_TRUE(MatchWildcard("*", "a.b.c"));
    EXPECT_TRUE(MatchWildcard("*.*", "no point"));
    EXPECT_TRUE(MatchWildcard("a*b*c", "aXbYbZc"));
    EXPECT_FALSE(MatchWildcard("a*b*c", "aXcYb"));
    EXPECT_TRUE(MatchWildcard("*ab", "aab"));
    EXPECT_FALSE(MatchWildcard("*.txt", "a.txt.bak"));
    EXPECT_FALSE(MatchWildcard("*.htm", "a.html"));
}

TEST(Wildcard, QuestionMark_MatchesOneOrNothingAtAPointOrTheEnd) {
    EXPECT_TRUE(MatchWildcard("????", "ab"));
    EXPECT_TRUE(MatchWildcard("??.txt", "a.txt"));
    EXPECT_TRUE(MatchWildcard("a.?", "a"));
    EXPECT_TRUE(MatchWildcard("*?", "abc"));
    EXPECT_FALSE(MatchWildcard("??", "a.b"));
    EXPECT_FALSE(MatchWildcard("?b", "b"));
    EXPECT_FALSE(MatchWildcard("?", "ab"));
}

TEST(Wildcard, StarPoint_TakesNamesWithoutExtension) {
    EXPECT_TRUE(MatchWildcard("*.", "readme"));
    EXPECT_FALSE(MatchWildcard("*.", "readme.txt"));
    EXPECT_TRUE(MatchWildcard("r*.", "readme"));
    EXPECT_FALSE(MatchWildcard("r*.", "r.e"));
    EXPECT_TRUE(MatchWildcard("*a*.", "a.ba"));
    EXPECT_TRUE(MatchWildcard("*. ", "readme.txt"));
}

TEST(Wildcard, PointsAndBlanksAtTheEnd_DoNotCount) {
    EXPECT_TRUE(MatchWildcard("readme. .", "readme"));
    EXPECT_TRUE(MatchWildcard("*.txt .", "a.txt"));
    EXPECT_FALSE(MatchWildcard("a .txt", "a.txt"));
}

TEST(Wildcard, Letters_MatchByTheCodePage) {
    EXPECT_TRUE(MatchWildcard("\xE4\x9A\xFF*", "\xC4\x8A\x9Fx"));
    EXPECT_TRUE(MatchWildcard("?", "\x80"));
    EXPECT_FALSE(MatchWildcard("\xF7", "\xD7"));
    EXPECT_FALSE(MatchWildcard("\xDF", "S"));
}

TEST(Wildcard, SignsOfOtherLanguages_StandForThemselves) {
    EXPECT_TRUE(MatchWildcard("<>\"[a]+", "<>\"[A]+"));
    EXPECT_FALSE(MatchWildcard("[ab]", "a"));
    EXPECT_FALSE(MatchWildcard("<", "a"));
}

TEST(Wildcard, NullAndNothing_MatchNothing) {
    EXPECT_FALSE(MatchWildcard(nullptr, "a"));
    EXPECT_FALSE(MatchWildcard("*", nullptr));
    EXPECT_FALSE(MatchWildcard(nullptr, nullptr));
    for (const char *pattern : {"", ".", "..", " ", ". . "}) {
        EXPECT_FALSE(MatchWildcard(pattern, "a")) << pattern;
        EXPECT_FALSE(MatchWildcard(pattern, "")) << pattern;
        EXPECT_FALSE(MatchWildcard(pattern, ".")) << pattern;
    }
}

TEST(Wildcard, PatternOverItsLimit_MatchesNothing) {
    EXPECT_TRUE(MatchWildcard(std::string(259, '*').c_str(), "a"));
    EXPECT_FALSE(MatchWildcard(std::string(260, '*').c_str(), "a"));
    EXPECT_FALSE(MatchWildcard(std::string(10000, '*').c_str(), "a"));
    EXPECT_TRUE(MatchWildcard(std::string(259, 'a').c_str(), std::string(259, 'A').c_str()));
}

// Patterns like these cost exponential time where every star is tried again.
TEST(Wildcard, ManyStars_EndSoon) {
    std::string stars;
    for (int i = 0; i < 64; ++i)
        stars += "*a?*";
    const std::string name(10000, 'a');
    EXPECT_TRUE(MatchWildcard(stars.c_str(), name.c_str()));
    EXPECT_FALSE(MatchWildcard((stars + "b").c_str(), name.c_str()));
    EXPECT_FALSE(MatchWildcard((stars.substr(2) + "b*.").c_str(), name.c_str()));
}

TEST(Wildcard, CompiledForm_ServesManyNames) {
    const std::string pattern = "*.T?T";
    const Wildcard wildcard(pattern.c_str());
    EXPECT_TRUE(wildcard.Match("a.txt"));
    EXPECT_FALSE(wildcard.Match("a.c"));
    EXPECT_TRUE(wildcard.Match(std::string_view("a.txt.bak", 5)));
    EXPECT_FALSE(Wildcard(nullptr).Match("a"));
}

// All patterns of up to five of these signs against names of up to three, among them every mixture of stars and points.
TEST(Wildcard, AllShortPatterns_AgreeWithTheReference) {
    const std::string signs = "*?.a ";
    const std::string letters = ".Ab";
    std::vector<std::string> names{""};
    for (std::size_t i = 0; names[i].size() < 3; ++i) {
        for (const char letter : letters)
            names.push_back(names[i] + letter);
    }
    std::vector<std::string> patterns{""};
    for (std::size_t i = 0; i < patterns.size(); ++i) {
        for (const std::string &name : names)
            ASSERT_EQ(MatchWildcard(patterns[i].c_str(), name.c_str()), reference::MatchWildcard(patterns[i], name))
                << patterns[i] << " | " << name;
        for (const char sign : signs) {
            if (patterns[i].size() < 5)
                patterns.push_back(patterns[i] + sign);
        }
    }
    EXPECT_EQ(patterns.size(), 3906U);
}
