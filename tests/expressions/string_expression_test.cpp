// Texts with computed places: what is copied, what is computed, how values are written, sizes, reports.
#include <zrclb/zrclb.hpp>

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "env/report_capture.h"
#include "expressions/random_expression.h"
#include "expressions/reference_string_expression.h"

namespace {

using zr::test::Error;
using zr::test::Reports;

constexpr const char *bad_parameter = "calc_string_expression(): falscher Parameter";
constexpr const char *bad_expression = "calc_string_expression(): \"Fehler beim Berechnen des Ausdrucks:";
constexpr const char *too_small = "calc_string_expression(): \"Buffer zu klein";

struct Answer {
    bool ok;
    std::string text;
    Reports reports;
};

// A buffer of exactly `size` bytes, so that a sanitizer sees every byte written behind it.
Answer Fill(const char *text, zr_long size) {
    zr::test::ReportCapture capture;
    const std::unique_ptr<char[]> out = std::make_unique<char[]>(static_cast<std::size_t>(size));
    std::memset(out.get(), '#', static_cast<std::size_t>(size));
    char ok = 7;
    calc_string_expression(text, out.get(), size, &ok);
    EXPECT_TRUE(ok == 0 || ok == 1);
    return {ok == 1, out.get(), capture.Take()};
}

std::string Filled(const std::string &text) {
    const Answer answer = Fill(text.c_str(), 2048);
    EXPECT_TRUE(answer.ok) << text;
    EXPECT_EQ(answer.reports, Reports{}) << text;
    return answer.text;
}

void ExpectFailure(const Answer &answer, const zr::test::Report &report) {
    EXPECT_FALSE(answer.ok);
    EXPECT_EQ(answer.text, "");
    EXPECT_EQ(answer.reports, Reports{report});
}

TEST(StringExpression, Places_AreReplaced) {
    EXPECT_EQ(Filled("[!1+1]"), "2");
    EXPECT_EQ(Filled("Wert: [!2*3] m"), "Wert: 6 m");
    EXPECT_EQ(Filled("[!1][!2]x[!3]"), "12x3");
    EXPECT_EQ(Filled("[!  sqrt(16)\t]"), "4");
    EXPECT_EQ(Filled("\xE4[!1]\xFF"), "\xE4"
                                      "1\xFF");
}

TEST(StringExpression, WhatIsNoPlace_IsCopied) {
    for (const char *text : {"", "plain", "[! 1", "[1+1]", "[", "[!", "]", "][!", "a]b", "[ !1]", "!1]", "[[1]]"})
        EXPECT_EQ(Filled(text), text);
    EXPECT_EQ(Filled("[[!1]]"), "[1]");
    EXPECT_EQ(Filled("[!1] [!2"), "1 [!2");
}

// The first "]" ends a place, whatever stands in front of it.
TEST(StringExpression, Place_EndsAtTheFirstBracket) {
    EXPECT_EQ(Filled("[!1]]"), "1]");
    ExpectFailure(Fill("[![!1]]", 64), Error("Calc", bad_expression, "[!1"));
    ExpectFailure(Fill("[!1 [!2]", 64), Error("Calc", bad_expression, "1 [!2"));
    ExpectFailure(Fill("[!\"]\"]", 64), Error("Calc", bad_expression, "\""));
}

TEST(StringExpression, Decimals_AsAsked) {
    EXPECT_EQ(Filled("[!1/3(.3)]"), "0.333");
    EXPECT_EQ(Filled("[!2/3 (.2)]"), "0.67");
    EXPECT_EQ(Filled("[!2/3 (.2) ]"), "0.67");
    EXPECT_EQ(Filled("[!5(.0)]"), "5");
    EXPECT_EQ(Filled("[!2.75(.0)]"), "3");
    EXPECT_EQ(Filled("[!5(.+2)]"), "5.00");
    EXPECT_EQ(Filled("[!5(. 2)]"), "5.00");
    EXPECT_EQ(Filled("[!5(.)]"), "5");
    EXPECT_EQ(Filled("[!5(.2x)]"), "5.00");
    EXPECT_EQ(Filled("[!(1+1)*2(.1)]"), "4.0");
    EXPECT_EQ(Filled("[!1/3(.-4)]"), "0.33333333333333");
    EXPECT_EQ(Filled("[!1e15(.1)]"), "1000000000000000.0");
    EXPECT_EQ(Filled("[!-1/3(.2)]"), "-0.33");
}

TEST(StringExpression, ManyDecimals_CountAs300) {
    EXPECT_EQ(Filled("[!1(.300)]"), "1." + std::string(300, '0'));
    EXPECT_EQ(Filled("[!1(.301)]"), "1." + std::string(300, '0'));
    EXPECT_EQ(Filled("[!1(.99999999999)]"), "1." + std::string(300, '0'));
    EXPECT_EQ(Filled("[!1.7976931348623157e308(.300)]").size(), 309U + 1 + 300);
    EXPECT_EQ(Filled("[!-1.7976931348623157e308(.300)]").size(), 1U + 309 + 1 + 300);
}

TEST(StringExpression, ParenthesesOfAnotherForm_BelongToTheExpression) {
    EXPECT_EQ(Filled("[!2*(3)]"), "6");
    EXPECT_EQ(Filled("[!sqrt(4)]"), "2");
    EXPECT_EQ(Filled("[!2*(0.5)]"), "1");
    ExpectFailure(Fill("[!5( .2)]", 64), Error("Calc", bad_expression, "5( .2)"));
    ExpectFailure(Fill("[!5(.2))]", 64), Error("Calc", bad_expression, "5(.2))"));
    ExpectFailure(Fill("[!5(.2)\t]", 64), Error("Calc", bad_expression, "5(.2)\t")); // only blanks are trimmed
    ExpectFailure(Fill("[!1.5(.2)(.3)]", 64), Error("Calc", bad_expression, "1.5(.2)"));
    ExpectFailure(Fill("[!2(.2)+1]", 64), Error("Calc", bad_expression, "2(.2)+1"));
    ExpectFailure(Fill("[!2(.2]", 64), Error("Calc", bad_expression, "2(.2"));
    ExpectFailure(Fill("[!2*(.5)]", 64), Error("Calc", bad_expression, "2*")); // asks for five decimals
}

TEST(StringExpression, WithoutDecimals_FifteenDigitsWithoutZerosAtTheEnd) {
    EXPECT_EQ(Filled("[!0]"), "0");
    EXPECT_EQ(Filled("[!1/3]"), "0.33333333333333");
    EXPECT_EQ(Filled("[!10]"), "10");
    EXPECT_EQ(Filled("[!1.5]"), "1.5");
    EXPECT_EQ(Filled("[!-2.25]"), "-2.25");
    EXPECT_EQ(Filled("[!1000/3]"), "333.333333333333");
    EXPECT_EQ(Filled("[!123456789012345]"), "123456789012345");
    EXPECT_EQ(Filled("[!12345678901234.5]"), "12345678901234.5");
    EXPECT_EQ(Filled("[!9.999999999999999]"), "10"); // its whole part has two digits once rounded
    EXPECT_EQ(Filled("[!0.1+0.2]"), "0.3");
}

TEST(StringExpression, Infinity_IsWrittenAsSuch) {
    EXPECT_EQ(Filled("[!exp(1000)]"), "inf");
    EXPECT_EQ(Filled("[!-exp(1000)(.2)]"), "-inf");
}

TEST(StringExpression, NotANumber_IsWrittenAsSuch) {
    EXPECT_THAT(Filled("[!asn(2)]"), testing::AnyOf("nan", "-nan")); // its sign is the system's
    EXPECT_THAT(Filled("[!asn(2)(.2)]"), testing::AnyOf("nan", "-nan"));
}

TEST(StringExpression, Minus_IsKeptInFrontOfZero) {
    EXPECT_EQ(Filled("[!0*-1]"), "-0");
    EXPECT_EQ(Filled("[!-1e-300]"), "-0");
    EXPECT_EQ(Filled("[!-0.2(.0)]"), "-0");
}

// Where there is no point the zeros are lost all the same.
TEST(StringExpression, WholeNumbersOfFifteenDigits_LoseTheirZeros) {
    EXPECT_EQ(Filled("[!100000000000000]"), "1");
    EXPECT_EQ(Filled("[!123000000000000]"), "123");
    EXPECT_EQ(Filled("[!1e20]"), "1");
    EXPECT_EQ(Filled("[!10000000000000]"), "10000000000000");
    EXPECT_EQ(Filled("[!1234567890123456]"), "1234567890123456");
    char digits[400];
    std::snprintf(digits, sizeof digits, "%.0f", 1e300);
    EXPECT_EQ(Filled("[!1e300]") + "0", digits);   // it has one zero at the end
    EXPECT_EQ(Filled("[!-10000000000000]"), "-1"); // the sign is one of the fifteen
    EXPECT_EQ(Filled("[!-1000000000000]"), "-1000000000000");
    EXPECT_EQ(Filled("[!100000000000000(.0)]"), "100000000000000"); // only what is not asked for
}

TEST(StringExpression, FaultyPlace_IsReported) {
    ExpectFailure(Fill("[!x]", 64), Error("Calc", bad_expression, "x"));
    ExpectFailure(Fill("a [!1] [! 1/0 ] b", 64), Error("Calc", bad_expression, "1/0"));
    ExpectFailure(Fill("[!1+(.2)]", 64), Error("Calc", bad_expression, "1+"));
    ExpectFailure(Fill("[!a+b (.2)]", 64), Error("Calc", bad_expression, "a+b "));
    ExpectFailure(Fill("[!]", 64), Error("Calc", bad_expression, ""));
    ExpectFailure(Fill("[!(.2)]", 64), Error("Calc", bad_expression, ""));
}

TEST(StringExpression, LastError_IsThatOfTheLastPlace) {
    zr::test::ReportCapture capture;
    CZrCalculator calculator;
    char out[64];
    EXPECT_FALSE(calculator.CalculateStringExpression("[!1] [! 2+3*x] [!1/0]", out, sizeof out));
    EXPECT_EQ(calculator.GetLastError().GetErrorType(), CALCULATOR_SYNTAX);
    EXPECT_EQ(calculator.GetLastError().GetErrorColumn(), 4);
    EXPECT_FALSE(calculator.CalculateStringExpression("\n[!1+\n\n 1/0]", out, sizeof out));
    EXPECT_STREQ(out, "");
    EXPECT_EQ(calculator.GetLastError().GetErrorType(), CALCULATOR_DIVISION);
    EXPECT_EQ(calculator.GetLastError().GetErrorRow(), 2);
    EXPECT_EQ(calculator.GetLastError().GetErrorColumn(), 4);
    EXPECT_TRUE(calculator.CalculateStringExpression("[!1] and nothing", out, sizeof out));
    EXPECT_STREQ(out, "1 and nothing");
    EXPECT_EQ(calculator.GetLastError().GetErrorType(), CALCULATOR_OK);
    EXPECT_FALSE(calculator.CalculateStringExpression(nullptr, out, sizeof out));
    EXPECT_EQ(calculator.GetLastError().GetErrorType(), CALCULATOR_OK);
}

TEST(StringExpression, Size_MustHoldTheTerminator) {
    EXPECT_EQ(Fill("Wert: [!2*3] m", 10).text, "Wert: 6 m");
    ExpectFailure(Fill("Wert: [!2*3] m", 9), Error("Calc", too_small));
    EXPECT_EQ(Fill("[!1/4]", 5).text, "0.25");
    ExpectFailure(Fill("[!1/4]", 4), Error("Calc", too_small));
    EXPECT_TRUE(Fill("", 1).ok);
    ExpectFailure(Fill("a", 1), Error("Calc", too_small));
    ExpectFailure(Fill("ab[!x]", 2), Error("Calc", too_small));
    ExpectFailure(Fill("ab[!x]", 3), Error("Calc", bad_expression, "x"));
}

TEST(StringExpression, NoSize_NothingIsWritten) {
    zr::test::ReportCapture capture;
    for (const zr_long size : {0, -1, -2147483647 - 1}) {
        for (const char *text : {"", "a", "[!1]"}) {
            char out[] = "kept";
            char ok = 7;
            calc_string_expression(text, out, size, &ok);
            EXPECT_EQ(ok, 0);
            EXPECT_STREQ(out, "kept");
            EXPECT_EQ(capture.Take(), Reports{Error("Calc", too_small)}) << text;
        }
        char out[] = "kept";
        char ok = 7;
        calc_string_expression(nullptr, out, size, &ok);
        EXPECT_EQ(ok, 0);
        calc_string_expression(std::string(1024, 'x').c_str(), out, size, &ok);
        EXPECT_EQ(ok, 0);
        EXPECT_STREQ(out, "kept");
        EXPECT_EQ(capture.Take(), (Reports{Error("Calc", bad_parameter), Error("Calc", bad_parameter)}));
    }
}

TEST(StringExpression, Text_HasLessThan1024Characters) {
    const std::string longest(1023, 'x');
    EXPECT_EQ(Filled(longest), longest);
    ExpectFailure(Fill(std::string(1024, 'x').c_str(), 2048), Error("Calc", bad_parameter));
    ExpectFailure(Fill(std::string(100000, 'x').c_str(), 2048), Error("Calc", bad_parameter));
    EXPECT_EQ(Filled("[!" + std::string(1019, ' ') + "4]"), "4");
    EXPECT_EQ(Fill(longest.c_str(), 1024).text, longest);
    ExpectFailure(Fill(longest.c_str(), 1023), Error("Calc", too_small));
}

TEST(StringExpression, Nulls_AreBadParameters) {
    ExpectFailure(Fill(nullptr, 8), Error("Calc", bad_parameter));
    zr::test::ReportCapture capture;
    char ok = 7;
    calc_string_expression("a", nullptr, 8, &ok);
    EXPECT_EQ(ok, 0);
    EXPECT_EQ(capture.Take(), Reports{Error("Calc", bad_parameter)});
    char out[8] = "kept";
    calc_string_expression(nullptr, out, 8, nullptr);
    EXPECT_STREQ(out, "");
    calc_string_expression("[!3]", out, 8, nullptr);
    EXPECT_STREQ(out, "3");
}

TEST(StringExpression, ManyValues_MayOutgrowTheText) {
    std::string text, expected;
    for (int i = 0; i < 60; ++i) {
        text += "[!1/3(.30)]";
        expected += Filled("[!1/3(.30)]");
    }
    EXPECT_EQ(Filled(text), expected);
    ExpectFailure(Fill(text.c_str(), static_cast<zr_long>(expected.size())), Error("Calc", too_small));
}

// The texts of the one report of the service itself, empty if there is none; words of logic that are called report themselves.
std::vector<std::string> OwnReport(const Reports &reports) {
    std::vector<std::string> texts;
    for (const zr::test::Report &report : reports) {
        if (report.texts.empty() || !report.texts[0].starts_with("calc_string_expression"))
            continue;
        EXPECT_TRUE(texts.empty());
        EXPECT_EQ(report.kind, zr::test::Report::Error);
        EXPECT_EQ(report.tag, "Calc");
        texts = report.texts;
    }
    return texts;
}

std::string RandomText(std::mt19937 &random, zr::test::RandomExpression &expressions) {
    static constexpr const char *pieces[] = {"[!",   "[!",    "[!",  "]",     "]", "[", "a",   " ",
                                             "(.2)", "( .3)", "(.)", "(.-1)", "1", "!", "\xE4"};
    std::string text;
    for (auto count = random() % 12; count > 0; --count) {
        switch (random() % 4) {
        case 0:
            text += "[! " + expressions.Make(static_cast<int>(random() % 3)) + "]";
            break;
        case 1:
            text += "[!7/3+1e" + std::to_string(random() % 20) + " (." + std::to_string(random() % 32) + ") ]";
            break;
        default:
            text += pieces[random() % std::size(pieces)];
            break;
        }
    }
    return text;
}

TEST(StringExpression, RandomTexts_AsTheReference) {
    std::mt19937 random(7);
    zr::test::RandomExpression expressions(8);
    std::map<std::string, int> outcomes;
    for (int i = 0; i < 600; ++i) {
        const std::string text = RandomText(random, expressions);
        const std::size_t size = random() % 4 == 0 ? 1 + random() % 30 : 5000;
        zr::test::ReferenceStringExpression reference;
        const bool done = reference.Fill(text, size);
        const Answer answer = Fill(text.c_str(), static_cast<zr_long>(size));
        ASSERT_EQ(answer.ok, done) << text;
        ASSERT_EQ(answer.text, reference.out) << text;
        ++outcomes[reference.report];
        const std::vector<std::string> texts = OwnReport(answer.reports);
        ASSERT_EQ(texts.empty() ? "" : texts[0], reference.report) << text;
        if (!reference.detail.empty() && reference.detail.find('\n') == std::string::npos) { // one line in the log
            ASSERT_EQ(texts.size(), 2U) << text;
            ASSERT_EQ(texts[1], reference.detail) << text;
        }
    }
    for (const char *report : {"", bad_expression, too_small})
        EXPECT_GT(outcomes[report], 40) << report;
}

// Each call has all that it needs for itself.
TEST(PlainFunctions, RunInParallel) {
    std::vector<int> wrong(4);
    std::vector<std::thread> threads;
    for (int &count : wrong) {
        const int number = static_cast<int>(threads.size());
        threads.emplace_back([&count, number] {
            const std::string expression = std::to_string(number) + "+MIN(3,1)*2-(1?4:5)";
            for (int round = 0; round < 500; ++round) {
                double result = 0;
                char ok = 0;
                calc_expression(expression.c_str(), &result, &ok);
                count += ok != 1 || result != number - 2 ? 1 : 0;
                char out[64];
                calc_string_expression(("<[!" + expression + "(.1)]>").c_str(), out, sizeof out, &ok);
                count += ok != 1 || out != "<" + std::to_string(number - 2) + ".0>" ? 1 : 0;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, std::vector<int>(4));
}

TEST(StringExpression, RoundingDigits_Count) {
    calc_init(1);
    EXPECT_EQ(Filled("[!0.26(.3)]"), "0.300");
    EXPECT_EQ(Filled("[!0.26] [!2/3]"), "0.3 0.7");
    calc_init(0);
    EXPECT_EQ(Filled("[!0.26]"), "0.26");
}

} // namespace
