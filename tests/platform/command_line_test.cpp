// Command lines: which part names the program, and what its arguments are.
#include "platform/command_line.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace zr::platform;
using Texts = std::vector<std::string>;

// Each candidate as "name|arguments".
Texts Names(const std::string &line) {
    ProgramNames names(line);
    std::string_view name, arguments;
    Texts found;
    while (names.Next(name, arguments))
        found.push_back(std::string(name) + "|" + std::string(arguments));
    return found;
}

Texts Arguments(const std::string &line) {
    ArgumentList list;
    EXPECT_TRUE(list.Split("p", line));
    Texts found(list.Values(), list.Values() + list.Count());
    EXPECT_EQ(list.Values()[list.Count()], nullptr);
    EXPECT_EQ(found.at(0), "p");
    found.erase(found.begin());
    return found;
}

TEST(ProgramNames, WithoutBlanks_TheWholeLine) {
    EXPECT_EQ(Names("a"), (Texts{"a|"}));
    EXPECT_EQ(Names("C:\\x\\a.exe"), (Texts{"C:\\x\\a.exe|"}));
    EXPECT_EQ(Names(""), (Texts{"|"}));
}

TEST(ProgramNames, WithBlanks_EachBeginningInTurn) {
    EXPECT_EQ(Names("C:\\w o\\p q r"),
              (Texts{"C:\\w| o\\p q r", "C:\\w o\\p| q r", "C:\\w o\\p q| r", "C:\\w o\\p q r|"}));
    EXPECT_EQ(Names("a\tb"), (Texts{"a|\tb", "a\tb|"}));
    EXPECT_EQ(Names("a  b"), (Texts{"a|  b", "a | b", "a  b|"}));
    EXPECT_EQ(Names(" a"), (Texts{"| a", " a|"}));
    EXPECT_EQ(Names("a "), (Texts{"a| ", "a |"}));
}

TEST(ProgramNames, InQuotes_OnlyWhatStandsBetween) {
    EXPECT_EQ(Names("\"w o\\p q\" r s"), (Texts{"w o\\p q| r s"}));
    EXPECT_EQ(Names("\"a\""), (Texts{"a|"}));
    EXPECT_EQ(Names("\"\" a"), (Texts{"| a"}));
    EXPECT_EQ(Names("\""), (Texts{"|"}));
}

TEST(ProgramNames, WithoutClosingQuote_AllThatFollows) {
    EXPECT_EQ(Names("\"a b"), (Texts{"a b|"}));
}

TEST(ProgramNames, WhatIsGluedToTheQuotes_BelongsToTheFirstWord) {
    EXPECT_EQ(Names("\"a\"x y"), (Texts{"a| y"}));
    EXPECT_EQ(Names("\"a b\"c\" d\" e"), (Texts{"a b| e"}));
    EXPECT_EQ(Names("\"C:\\a\\\" b"), (Texts{"C:\\a\\| b"}));
}

TEST(ArgumentList, BlanksAndTabsPart) {
    EXPECT_EQ(Arguments(""), Texts{});
    EXPECT_EQ(Arguments(" \t "), Texts{});
    EXPECT_EQ(Arguments(" a"), Texts{"a"});
    EXPECT_EQ(Arguments("a\tb  c "), (Texts{"a", "b", "c"}));
    EXPECT_EQ(Arguments(" a\nb"), Texts{"a\nb"});
}

TEST(ArgumentList, QuotesKeepTogetherAndGo) {
    EXPECT_EQ(Arguments("\"b c\""), Texts{"b c"});
    EXPECT_EQ(Arguments("a\"b c\"d"), Texts{"ab cd"});
    EXPECT_EQ(Arguments("\"\" x \"\""), (Texts{"", "x", ""}));
    EXPECT_EQ(Arguments("\"a b"), Texts{"a b"});
    EXPECT_EQ(Arguments("\"a\tb\" c"), (Texts{"a\tb", "c"}));
}

TEST(ArgumentList, TwoQuotesBetweenQuotes_AreOne) {
    EXPECT_EQ(Arguments("\"g\"\"h\" i"), (Texts{"g\"h", "i"}));
    EXPECT_EQ(Arguments("\"g\"\" h\" i"), (Texts{"g\" h", "i"}));
    EXPECT_EQ(Arguments("\"\"\" a\" b"), (Texts{"\" a", "b"}));
}

TEST(ArgumentList, BackslashesCountBeforeQuotesOnly) {
    EXPECT_EQ(Arguments("a\\b c\\\\d \\"), (Texts{"a\\b", "c\\\\d", "\\"}));
    EXPECT_EQ(Arguments("i\\\"j k"), (Texts{"i\"j", "k"}));
    EXPECT_EQ(Arguments("i\\\\\"j k\" l"), (Texts{"i\\j k", "l"}));
    EXPECT_EQ(Arguments("i\\\\\\\"j k"), (Texts{"i\\\"j", "k"}));
    EXPECT_EQ(Arguments("\"C:\\a b\\\\\" c"), (Texts{"C:\\a b\\", "c"}));
    EXPECT_EQ(Arguments("\"C:\\a b\\\" c"), Texts{"C:\\a b\" c"});
    EXPECT_EQ(Arguments("\"a\\\"\" b"), (Texts{"a\"", "b"}));
    EXPECT_EQ(Arguments("d\\\\\"e f\""), Texts{"d\\e f"});
}

TEST(ArgumentList, LongestLine_IsTakenWhole) {
    const std::size_t most = longest_command_line;
    std::string line(most, 'x');
    EXPECT_EQ(Arguments(line), Texts{line});
    line.clear();
    while (line.size() + 2 <= most)
        line += "x ";
    line += "x";
    ASSERT_EQ(line.size(), most);
    EXPECT_EQ(Arguments(line), Texts(512, "x"));
    EXPECT_EQ(Arguments(std::string(most, '\\')), Texts{std::string(most, '\\')});
    EXPECT_EQ(Arguments(std::string(most, '"')).size(), 1U);
}

TEST(ArgumentList, LongerOnesAreRefused) {
    const std::string longest(longest_command_line, 'x');
    ArgumentList list;
    EXPECT_FALSE(list.Split("p", longest + "x"));
    EXPECT_EQ(list.Count(), 0U);
    EXPECT_EQ(list.Values()[0], nullptr);
    EXPECT_FALSE(list.Split(longest + "x", ""));
    EXPECT_TRUE(list.Split(longest, longest));
    EXPECT_EQ(list.Values()[0], longest);
    EXPECT_EQ(list.Values()[1], longest);
    EXPECT_EQ(list.Count(), 2U);
}

TEST(ArgumentList, CanBeSplitAnew) {
    ArgumentList list;
    ASSERT_TRUE(list.Split("p", "a b c"));
    ASSERT_TRUE(list.Split("q", "d"));
    EXPECT_EQ(Texts(list.Values(), list.Values() + list.Count()), (Texts{"q", "d"}));
    EXPECT_EQ(list.Values()[2], nullptr);
}

} // namespace
