// The calculator: the table of expressions, a plain recursive reference, depth, memory, and the face of the class.
#include <zrclb/zrclb.hpp>

#include <algorithm>
#include <bit>
#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "expressions/random_expression.h"
#include "expressions/reference_calculator.h"
#include "frame/refused_heap.h"
#include "frame/report_fixture.h"
#include "settings/installation_fixture.h"
#include "small_stack.h"

namespace {

using zr::test::HeapRefusal;
using zr::test::RandomExpression;
using zr::test::ReferenceCalculator;

constexpr double callers_value = 77.0;

struct Outcome {
    int error;
    zr_long row;
    zr_long column;
    double result;
};

bool SameBits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (std::isnan(a) && std::isnan(b));
}

bool operator==(const Outcome &a, const Outcome &b) {
    return a.error == b.error && a.row == b.row && a.column == b.column && SameBits(a.result, b.result);
}

std::ostream &operator<<(std::ostream &stream, const Outcome &outcome) {
    stream.precision(17);
    return stream << "error " << outcome.error << " at " << outcome.row << ":" << outcome.column << ", result "
                  << outcome.result;
}

Outcome Compute(CZrCalculator &calculator, const char *text) {
    double result = callers_value;
    const bool done = calculator.Calculate(text, &result);
    const CZrCalculatorError &error = calculator.GetLastError();
    EXPECT_EQ(done, error.GetErrorType() == CALCULATOR_OK);
    return {error.GetErrorType(), error.GetErrorRow(), error.GetErrorColumn(), result};
}

Outcome Compute(const std::string &text) {
    CZrCalculator calculator;
    return Compute(calculator, text.c_str());
}

Outcome ComputeByReference(const char *text) {
    ReferenceCalculator reference(text);
    double result = callers_value;
    reference.Calculate(result);
    return {reference.error, reference.Row(), reference.Column(), result};
}

double ValueOf(const std::string &text) {
    const Outcome outcome = Compute(text);
    EXPECT_EQ(outcome.error, 0) << text.substr(0, 100);
    return outcome.result;
}

std::string Repeated(const std::string &text, std::size_t times) {
    std::string repeated(text.size() * times, ' ');
    for (char *place = repeated.data(); times > 0; --times, place += text.size())
        std::memcpy(place, text.data(), text.size());
    return repeated;
}

// A row of the table.
struct Row {
    std::string group;
    std::string expression;
    Outcome outcome;
    bool bits; // else nearly
};

std::string Unescaped(const std::string &field) {
    std::string text;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] != '\\') {
            text += field[i];
        } else if (field[++i] == 'x') {
            text += static_cast<char>(std::stoi(field.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            text += field[i];
        }
    }
    return text;
}

double FromBits(const std::string &digits) {
    return digits == "nan" ? std::nan("") : std::bit_cast<double>(std::uint64_t{std::stoull(digits, nullptr, 16)});
}

std::vector<Row> ReadTable() {
    std::ifstream stream(ZR_GOLDEN_DIR "/../expressions/calculator_table.tsv", std::ios::binary);
    std::vector<Row> rows;
    std::string line;
    while (std::getline(stream, line)) {
        std::vector<std::string> fields;
        std::string field;
        for (std::istringstream parts(line); std::getline(parts, field, '\t');)
            fields.push_back(field);
        if (fields.size() != 7 || fields[0] == "group")
            continue;
        rows.push_back({fields[0],
                        Unescaped(fields[1]),
                        {std::stoi(fields[2]), std::stoi(fields[3]), std::stoi(fields[4]), FromBits(fields[5])},
                        fields[6] == "bits"});
    }
    return rows;
}

// Functions of two systems may differ in the last digits. Some reduce large angles with a pi of 66 bits, so what of an angle should
// be 0 but for its rounding may be off by so much. What must be 0 otherwise is.
bool Near(const Row &row, double value) {
    const double expected = row.outcome.result;
    if (std::isnan(expected) || std::isinf(expected))
        return SameBits(value, expected);
    bool angle = false;
    for (const char *function : {"SIN(", "COS(", "TAN(", "COT("})
        angle = angle || (row.outcome.error == 0 && row.expression.find(function) != std::string::npos);
    return std::fabs(value - expected) <= 8 * DBL_EPSILON * std::fabs(expected) + (angle ? 1e-18 : 0.0);
}

TEST(Calculator, Table_IsAnswered) {
    const std::vector<Row> rows = ReadTable();
    CZrCalculator shared;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.group + ": " + row.expression);
        const Outcome outcome = Compute(row.expression);
        EXPECT_EQ(Compute(shared, row.expression.c_str()), outcome); // what was computed before leaves no trace
        Outcome expected = row.outcome;
        if (!row.bits && Near(row, outcome.result))
            expected.result = outcome.result;
        EXPECT_EQ(outcome, expected);
    }
}

TEST(Calculator, Table_HoldsEveryGroupAndEveryError) {
    std::map<std::string, int> groups;
    std::map<int, std::map<std::string, int>> places; // by error
    for (const Row &row : ReadTable()) {
        ++groups[row.group];
        const Outcome &outcome = row.outcome;
        ++places[outcome.error][std::to_string(outcome.row) + ":" + std::to_string(outcome.column)];
    }
    EXPECT_GE(groups["valid"], 200);
    EXPECT_GE(groups["invalid"], 200);
    EXPECT_GE(groups["precedence"], 150);
    EXPECT_GE(groups["signs"], 40);
    EXPECT_GE(groups["special"], 100);
    EXPECT_GE(groups["words"], 100);
    EXPECT_GE(groups["errors"], 400);
    EXPECT_GE(groups["nested"], 8);
    EXPECT_EQ(places.size(), 9U);
    for (const int error : {1, 2, 3, 7, 14, 15, 16, 17})
        EXPECT_GE(places[error].size(), 8U) << error;
}

TEST(Calculator, RandomExpressions_AsTheReference) {
    RandomExpression random(5);
    CZrCalculator calculator;
    int good = 0;
    int good_and_deep = 0;
    int errors[18] = {};
    for (int i = 0; i < 20000; ++i) {
        const bool deep = i % 20 == 0;
        const std::string text = random.Make(deep ? 200 : 1 + i % 7);
        const Outcome outcome = Compute(calculator, text.c_str());
        ASSERT_EQ(outcome, ComputeByReference(text.c_str())) << text;
        good += outcome.error == 0 ? 1 : 0;
        good_and_deep += outcome.error == 0 && deep ? 1 : 0;
        ++errors[outcome.error];
    }
    EXPECT_GT(good, 5000);
    EXPECT_GT(good_and_deep, 20);
    for (const int error : {1, 2, 3, 7, 14, 15, 16, 17})
        EXPECT_GT(errors[error], 10) << error;
}

// Degrees times pi, then by 180; radians by pi, then times 180: the other order rounds differently.
TEST(Calculator, AnglesAreConvertedInThisOrder) {
    constexpr double pi = 3.141592653589793;
    struct Function {
        const char *name;
        int step; // of the argument, in hundredths
        double (*value)(double);
        double (*other_order)(double);
    };
    const Function functions[] = {
        {"SIN", 91, [](double x) { return std::sin(x * pi / 180.0); },
         [](double x) { return std::sin(pi / 180.0 * x); }},
        {"COS", 91, [](double x) { return std::cos(x * pi / 180.0); },
         [](double x) { return std::cos(pi / 180.0 * x); }},
        {"TAN", 91, [](double x) { return std::tan(x * pi / 180.0); },
         [](double x) { return std::tan(pi / 180.0 * x); }},
        {"COT", 91, [](double x) { return 1 / std::tan(x * pi / 180.0); },
         [](double x) { return 1 / std::tan(pi / 180.0 * x); }},
        {"ASN", 1, [](double x) { return std::asin(x) / pi * 180.0; },
         [](double x) { return std::asin(x) * 180.0 / pi; }},
        {"ACS", 1, [](double x) { return std::acos(x) / pi * 180.0; },
         [](double x) { return std::acos(x) * 180.0 / pi; }},
        {"ATN", 1, [](double x) { return std::atan(x) / pi * 180.0; },
         [](double x) { return std::atan(x) * 180.0 / pi; }},
        {"ACT", 1, [](double x) { return std::atan(1 / x) / pi * 180.0; },
         [](double x) { return std::atan(1 / x) * 180.0 / pi; }},
    };
    for (const Function &function : functions) {
        int told_apart = 0;
        for (int i = 1; i < 100; ++i) {
            const double x = i * function.step / 100.0;
            char text[32];
            std::snprintf(text, sizeof text, "%s(%.2f)", function.name, x);
            EXPECT_PRED2(SameBits, ValueOf(text), function.value(x)) << text;
            told_apart += function.value(x) != function.other_order(x) ? 1 : 0;
        }
        EXPECT_GT(told_apart, 5) << function.name;
    }
}

// Every text of the given tokens, up to four of them.
TEST(Calculator, AllShortTexts_AsTheReference) {
    const std::vector<std::string> tokens = {"2", "0", "(", ")",   "-",   "/",    "^",    "?",
                                             ":", ",", "<", "NOT", "AND", "SQRT", "MAX(", "1e999"};
    CZrCalculator calculator;
    const std::size_t count = tokens.size();
    for (std::size_t i = 0; i < count * count * count * count; ++i) {
        std::string text;
        for (std::size_t rest = i, n = 0; n < 4; ++n, rest /= count)
            text += tokens[rest % count] + " ";
        ASSERT_EQ(Compute(calculator, text.c_str()), ComputeByReference(text.c_str())) << text;
    }
}

constexpr std::size_t million = 1000000;
constexpr std::size_t small_stack = 256 * 1024;

TEST(CalculatorDepth, MillionParentheses_Evaluate) {
    zr::test::RunOnStack(small_stack, [] {
        EXPECT_EQ(ValueOf(Repeated("(", million) + "2" + Repeated(")", million)), 2);
        EXPECT_EQ(ValueOf(Repeated("1+(", million) + "2" + Repeated(")", million)), million + 2);
        EXPECT_EQ(Compute(Repeated("(", million)), (Outcome{1, 0, million, callers_value}));
        EXPECT_EQ(Compute(Repeated("(", million) + "5" + Repeated(")", million - 1)), (Outcome{3, 0, 2 * million, 5}));
        EXPECT_EQ(Compute(Repeated("1+(", million) + "1/0"), (Outcome{16, 0, 3 * million + 3, 1}));
    });
}

TEST(CalculatorDepth, MillionSigns_Evaluate) {
    zr::test::RunOnStack(small_stack, [] {
        EXPECT_EQ(ValueOf(Repeated("-", million) + "2"), 2);
        EXPECT_EQ(ValueOf(Repeated("-", million + 1) + "2"), -2);
        EXPECT_EQ(ValueOf(Repeated("NOT ", million) + "2"), 1);
        EXPECT_EQ(Compute(Repeated("-", million)), (Outcome{1, 0, million, callers_value}));
        EXPECT_EQ(Compute(Repeated("NOT-", million) + "SQRT 1"), (Outcome{2, 0, 4 * million + 5, callers_value}));
    });
}

TEST(CalculatorDepth, MillionChoices_Evaluate) {
    zr::test::RunOnStack(small_stack, [] {
        EXPECT_EQ(ValueOf(Repeated("1?", million) + "2" + Repeated(":3", million)), 2);
        EXPECT_EQ(ValueOf(Repeated("0?", million) + "2" + Repeated(":3", million)), 3);
        EXPECT_EQ(ValueOf(Repeated("0?4:", million) + "2"), 2);
        EXPECT_EQ(ValueOf(Repeated("1?4:", million) + "1/0"), 4);
        EXPECT_EQ(Compute(Repeated("0?4:", million) + "1/0"), (Outcome{16, 0, 4 * million + 3, 0}));
        EXPECT_EQ(Compute(Repeated("1?", million) + "2" + Repeated(":3", million - 1)),
                  (Outcome{7, 0, 4 * million - 1, 1}));
    });
}

TEST(CalculatorDepth, MillionPowers_Evaluate) {
    zr::test::RunOnStack(small_stack, [] {
        EXPECT_EQ(ValueOf("3" + Repeated("^1", million)), 3);
        EXPECT_EQ(ValueOf("2" + Repeated("^-1", million)), 0.5);
        EXPECT_EQ(Compute("5" + Repeated("^1", million) + "^"), (Outcome{1, 0, 2 * million + 2, 5}));
        EXPECT_EQ(Compute("5" + Repeated("^1", million) + "^(-1)^.5"), (Outcome{14, 0, 2 * million + 9, 5}));
    });
}

TEST(CalculatorDepth, MillionFunctions_Evaluate) {
    zr::test::RunOnStack(small_stack, [] {
        EXPECT_EQ(ValueOf(Repeated("abs(", million) + "-2" + Repeated(")", million)), 2);
        EXPECT_EQ(ValueOf(Repeated("MIN(1,", million) + "0.5" + Repeated(")", million)), 0.5);
        EXPECT_EQ(ValueOf("MAX(1" + Repeated(",2", million) + ")"), 2);
        EXPECT_EQ(Compute(Repeated("MIN(1,", million)), (Outcome{1, 0, 6 * million, callers_value}));
        EXPECT_EQ(Compute(Repeated("ABS(", million) + "1,"), (Outcome{3, 0, 4 * million + 1, callers_value}));
    });
}

TEST(CalculatorDepth, MillionOperators_Evaluate) {
    zr::test::RunOnStack(small_stack, [] {
        EXPECT_EQ(ValueOf("1" + Repeated("+1", million)), million + 1);
        EXPECT_EQ(ValueOf("1" + Repeated("*1/1", million)), 1);
        EXPECT_EQ(ValueOf("1" + Repeated(" AND 1<2", million)), 1);
        EXPECT_EQ(ValueOf(Repeated("2*(", million) + "0" + Repeated(")", million)), 0);
        EXPECT_EQ(ValueOf(Repeated("0<(", million) + "1" + Repeated(")", million)), 1);
        EXPECT_EQ(ValueOf(Repeated("1 AND (", million) + "5" + Repeated(")", million)), 1);
        EXPECT_EQ(ValueOf(Repeated("1^(", million) + "5" + Repeated(")", million)), 1);
    });
}

TEST(CalculatorDepth, PlainFunction_Evaluates) {
    zr::test::RunOnStack(small_stack, [] {
        const std::string text = Repeated("-(NOT ", million / 2) + "2" + Repeated(")", million / 2);
        double result = callers_value;
        char ok = 7;
        calc_expression(text.c_str(), &result, &ok);
        EXPECT_EQ(ok, 1);
        EXPECT_EQ(result, -1); // -1 of 0 and 0 of -1, from the inside
    });
}

TEST(Calculator, TenMegabytesOfAnything_EndWithTheRightError) {
    constexpr std::size_t size = 10 * million;
    EXPECT_EQ(Compute(std::string(size, ' ')), (Outcome{1, 0, size, callers_value}));
    EXPECT_EQ(Compute(std::string(size, '\n') + "7"), (Outcome{0, size, 1, 7}));
    EXPECT_EQ(Compute(std::string(size, 'x')), (Outcome{1, 0, 0, callers_value}));
    EXPECT_EQ(Compute(std::string(size, '7')), (Outcome{1, 0, 0, callers_value}));
    EXPECT_EQ(Compute("\"" + std::string(size, 'x')), (Outcome{1, 0, 0, callers_value}));
    EXPECT_EQ(Compute("5" + std::string(size, ' ') + "+ 6"), (Outcome{0, 0, size + 4, 11}));
}

TEST(Calculator, NumbersAndNamesAtTheLimitOfATokensText) {
    EXPECT_EQ(ValueOf(std::string(4095, '0')), 0);
    EXPECT_EQ(ValueOf(std::string(4093, '0') + "12"), 12);
    EXPECT_EQ(ValueOf(std::string(4094, '0') + "12"), 12);
    EXPECT_EQ(ValueOf("1." + std::string(4093, '0')), 1);
    EXPECT_EQ(Compute(std::string(4097, '0')).error, 1);
    EXPECT_EQ(Compute(std::string(4097, '0')).column, 0);
    for (const std::size_t length : {5U, 4095U, 4096U, 4097U})
        EXPECT_EQ(Compute("1+" + std::string(length, 'N')), (Outcome{1, 0, 2, 1})) << length;
    EXPECT_EQ(Compute("SIN" + std::string(5000, '_')), (Outcome{1, 0, 0, callers_value}));
}

// A zero is one whatever its exponent, and a number that was too large doesn't count against the next one.
TEST(Calculator, NumbersAtTheEndsOfTheirRange) {
    EXPECT_EQ(ValueOf("0e99999999999"), 0);
    EXPECT_EQ(ValueOf("0.000e-99999999999+2"), 2);
    EXPECT_EQ(Compute("1+3e99999999999"), (Outcome{1, 0, 2, 1}));
    EXPECT_EQ(Compute("1+3e-99999999999"), (Outcome{1, 0, 2, 1}));
    EXPECT_EQ(Compute("1+" + std::string(400, '9')), (Outcome{1, 0, 2, 1}));
    CZrCalculator calculator;
    for (const char *too_large : {"1e400", "99999999999", "-1e400", "1e-400"}) {
        Compute(calculator, too_large);
        EXPECT_EQ(Compute(calculator, "0.0"), (Outcome{0, 0, 3, 0.0})) << too_large;
        EXPECT_EQ(Compute(calculator, "7"), (Outcome{0, 0, 1, 7})) << too_large;
    }
}

TEST(Calculator, Numbers_IgnoreTheProcessLocale) {
    bool comma = false;
    for (const char *name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "German_Germany.1252", "fr_FR.UTF-8"})
        comma = comma || (std::setlocale(LC_ALL, name) != nullptr && *std::localeconv()->decimal_point == ',');
    const Outcome point = Compute("1.5+1.0000000000000000000000000000000000");
    const Outcome arguments = Compute("MIN(2,5)");
    char text[32] = "";
    char ok = 0;
    calc_string_expression("[!3/2] [!1/4(.3)]", text, sizeof text, &ok);
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(point.result, 2.5);
    EXPECT_EQ(arguments.result, 2);
    EXPECT_STREQ(text, "1.5 0.250");
    if (!comma)
        GTEST_SKIP() << "no locale with a decimal comma is installed";
}

TEST(Calculator, NothingIsReadBehindTheEnd) {
    for (const std::string text :
         {"", "1", "1.", "1e", "1<", "1+", "SI", "SIN", "-", "\\", "\"a", "'", "'a", "'\\", "1 \xFF"}) {
        const std::unique_ptr<char[]> exact = std::make_unique<char[]>(text.size() + 1);
        std::memcpy(exact.get(), text.c_str(), text.size() + 1);
        CZrCalculator calculator;
        EXPECT_EQ(Compute(calculator, exact.get()), ComputeByReference(text.c_str())) << text;
    }
    const std::unique_ptr<char[]> ended_by_ff = std::make_unique<char[]>(4);
    std::memcpy(ended_by_ff.get(), "1+2\xFF", 4); // no terminator
    CZrCalculator calculator;
    EXPECT_EQ(Compute(calculator, ended_by_ff.get()), (Outcome{0, 0, 3, 3}));
    for (const char *open_end : {"\"ab\xFF", "'ab\xFF", "2e1\xFF", "abc\xFF"}) {
        std::memcpy(ended_by_ff.get(), open_end, 4);
        const bool good = *open_end == '2';
        EXPECT_EQ(Compute(calculator, ended_by_ff.get()),
                  good ? (Outcome{0, 0, 3, 20}) : (Outcome{1, 0, 0, callers_value}))
            << open_end;
    }
}

TEST(Calculator, EveryByteAlone_AsTheReference) {
    CZrCalculator calculator;
    for (int byte = 1; byte < 256; ++byte) {
        for (const std::string before : {"", "1", "1+", "(2", "NOT ", "x", "9.", "<"}) {
            const std::string text = before + static_cast<char>(byte) + "3";
            EXPECT_EQ(Compute(calculator, text.c_str()), ComputeByReference(text.c_str())) << byte << " in " << text;
        }
    }
}

TEST(Calculator, NullText_IsAnEmptyOne) {
    CZrCalculator calculator;
    EXPECT_EQ(Compute(calculator, nullptr), (Outcome{1, 0, 0, callers_value}));
    EXPECT_EQ(Compute(calculator, "4"), (Outcome{0, 0, 1, 4}));
}

TEST(Calculator, NullResult_IsLeftOut) {
    CZrCalculator calculator;
    EXPECT_TRUE(calculator.Calculate("1+1", nullptr));
    EXPECT_FALSE(calculator.Calculate("1+", nullptr));
}

TEST(Calculator, SamplesOfEachRule) {
    EXPECT_NEAR(ValueOf("sin(30)"), 0.5, 1e-15);
    EXPECT_NEAR(ValueOf("ASN(1)"), 90, 1e-13);
    EXPECT_NEAR(ValueOf("COT(45)"), 1, 1e-15);
    EXPECT_NEAR(ValueOf("ACT(1)"), 45, 1e-13);
    EXPECT_EQ(ValueOf("PI"), std::bit_cast<double>(std::uint64_t{0x400921FB54442D18}));
    EXPECT_EQ(Compute("PI()"), (Outcome{1, 0, 2, ValueOf("PI")}));
    EXPECT_EQ(Compute("1 2"), (Outcome{1, 0, 2, 1}));
    EXPECT_EQ(Compute("1e400"), (Outcome{1, 0, 0, callers_value}));
    EXPECT_EQ(Compute("(1+2"), (Outcome{3, 0, 4, 3}));
    EXPECT_EQ(ValueOf("4294967296"), 4294967296.0);
}

class ReportedCalculator : public ReportFixture {};

// A word of logic with parentheses behind it is no function.
TEST_F(ReportedCalculator, LogicLikeAFunction_IsReportedAndLeavesTheValue) {
    EXPECT_EQ(Compute("AND(5)"), (Outcome{0, 0, 6, callers_value}));
    const std::string report = TakeLog();
    EXPECT_NE(report.find("SWITCH ERROR in"), std::string::npos) << report;
    EXPECT_NE(report.find("\"Calc\""), std::string::npos) << report;
    EXPECT_NE(report.find("switch value = 13!"), std::string::npos) << report;
    EXPECT_EQ(Compute("-OR(5)"), (Outcome{0, 0, 6, -callers_value}));
    EXPECT_NE(TakeLog().find("switch value = 14!"), std::string::npos);
    EXPECT_EQ(Compute("1+AND(5)"), (Outcome{0, 0, 8, 1}));
    EXPECT_NE(TakeLog(), "");
    EXPECT_EQ(Compute("0 ? AND(1) : 3"), (Outcome{0, 0, 14, 3}));
    EXPECT_EQ(Compute("AND(1"), (Outcome{3, 0, 5, callers_value}));
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(ReportedCalculator, OrdinaryFaults_AreNotReported) {
    for (const char *text : {"", "1/0", "SQRT(-1)", "(", "1e999", "(-1)^.5", "10^999"})
        EXPECT_NE(Compute(text).error, 0);
    EXPECT_EQ(TakeLog(), "");
}

class RoundedCalculator : public testing::Test {
protected:
    void TearDown() override { calc_init(0); }
};

TEST_F(RoundedCalculator, Digits_RoundTheResult) {
    EXPECT_EQ(ValueOf("1/3"), 1.0 / 3);
    EXPECT_EQ(calc_init(2), 2);
    EXPECT_EQ(ValueOf("1/3"), 0.33);
    EXPECT_EQ(ValueOf("2/3"), 0.67);
    EXPECT_EQ(ValueOf("1.005"), 1.0); // a double below it
    EXPECT_EQ(ValueOf("2/3*3"), 2);   // the result alone is rounded
    EXPECT_EQ(ValueOf("-2.5"), -2.5);
    EXPECT_EQ(ValueOf("1/3"), pround(1.0 / 3, -2));
    EXPECT_EQ(calc_init(-2), -2);
    EXPECT_EQ(ValueOf("1250"), 1300);
    EXPECT_EQ(ValueOf("-1250"), -1200);
    EXPECT_EQ(calc_init(0), 0);
    EXPECT_EQ(ValueOf("1250.125"), 1250.125);
}

TEST_F(RoundedCalculator, Init_IsTheSameForAllCalculators) {
    CZrCalculator before;
    CZrCalculator::Init(1);
    EXPECT_EQ(Compute(before, "2/3").result, pround(2.0 / 3, -1));
    EXPECT_EQ(ValueOf("2/3"), pround(2.0 / 3, -1));
    CZrCalculator::Init(0);
    EXPECT_EQ(ValueOf("2/3"), 2.0 / 3);
}

TEST_F(RoundedCalculator, Failure_RoundsWhatTheCallerHas) {
    calc_init(1);
    CZrCalculator calculator;
    double result = 1.26;
    EXPECT_FALSE(calculator.Calculate("x", &result));
    EXPECT_EQ(result, pround(1.26, -1));
    result = 0;
    EXPECT_FALSE(calculator.Calculate("1.26+x", &result));
    EXPECT_EQ(result, pround(1.26, -1));
    EXPECT_FALSE(calculator.Calculate("x", nullptr));
    char ok = 7;
    result = 1.26;
    calc_expression("(", &result, &ok);
    EXPECT_EQ(ok, 0);
    EXPECT_EQ(result, pround(1.26, -1));
}

TEST_F(RoundedCalculator, ExtremeDigits_AreHarmless) {
    for (const zr_long digits : {std::numeric_limits<zr_long>::min(), std::numeric_limits<zr_long>::max()}) {
        calc_init(digits);
        double result = 0;
        CZrCalculator calculator;
        EXPECT_TRUE(calculator.Calculate("1.5", &result));
        EXPECT_TRUE(std::isnan(result)) << digits; // infinitely many of nothing, or none of infinity
    }
    EXPECT_EQ(calc_init(300), 300);
    EXPECT_EQ(ValueOf("0.5"), pround(0.5, -300));
    EXPECT_EQ(calc_init(-300), -300);
    EXPECT_EQ(ValueOf("1e299"), 0);
}

// The digits in the settings file of the installation.
class InstalledCalculator : public InstallationFixture {
protected:
    void TearDown() override {
        calc_init(0);
        InstallationFixture::TearDown();
    }

    void Settings(const std::string &text) { Write("zr\\zr.zrini", text); }
};

TEST_F(InstalledCalculator, DigitsOfTheSettings_AreTaken) {
    Settings("[Other]\nNachkommastellen=5\n[Calculator]\nNachkommastellen = 3 \n");
    EXPECT_EQ(calc_init(7), 7);
    EXPECT_EQ(calc_init(-1), 3);
    EXPECT_EQ(ValueOf("2/3"), pround(2.0 / 3, -3));
    Settings("[Calculator]\nNachkommastellen=-1\n");
    CZrCalculator::Init(-1);
    EXPECT_EQ(ValueOf("126"), 130);
    Settings("[Calculator]\nNachkommastellen=0\n");
    EXPECT_EQ(calc_init(-1), 0);
    EXPECT_EQ(ValueOf("2/3"), 2.0 / 3);
    Settings("[Calculator]\nNachkommastellen=many\n"); // reads as 0
    calc_init(4);
    EXPECT_EQ(calc_init(-1), 0);
}

TEST_F(InstalledCalculator, NoDigitsInTheSettings_KeepWhatThereWas) {
    for (const char *text :
         {"", "[Calculator]\nDigits=3\n", "[calculator]\nNachkommastellen=3\n", "Nachkommastellen=3\n"}) {
        Settings(text);
        EXPECT_EQ(calc_init(4), 4);
        EXPECT_EQ(calc_init(-1), 4) << text;
        EXPECT_EQ(ValueOf("2/3"), pround(2.0 / 3, -4)) << text;
    }
}

TEST_F(InstalledCalculator, NoMemoryForTheSettings_KeepsWhatThereWas) {
    Settings("[Calculator]\nNachkommastellen=3\n");
    bool met = true;
    for (int others = 0; met; ++others) {
        ASSERT_LT(others, 100);
        calc_init(4);
        const HeapRefusal refusal(others);
        const zr_long digits = calc_init(-1);
        met = refusal.Met();
        EXPECT_TRUE(digits == 3 || (met && digits == 4)) << digits;
    }
    EXPECT_EQ(calc_init(-1), 3);
}

TEST_F(InstalledCalculator, NoSettings_KeepWhatThereWas) {
    EXPECT_EQ(calc_init(-1), 0);
    EXPECT_EQ(calc_init(2), 2);
    EXPECT_EQ(calc_init(-1), 2);
    EXPECT_EQ(ValueOf("2/3"), pround(2.0 / 3, -2));
}

TEST(CalcExpression, ComputesOrFails) {
    double result = callers_value;
    char ok = 7;
    calc_expression("6*7", &result, &ok);
    EXPECT_EQ(ok, 1);
    EXPECT_EQ(result, 42);
    calc_expression("6*", &result, &ok);
    EXPECT_EQ(ok, 0);
    EXPECT_EQ(result, 6);
    result = callers_value;
    calc_expression(nullptr, &result, &ok);
    EXPECT_EQ(ok, 0);
    EXPECT_EQ(result, callers_value);
    calc_expression("1", nullptr, &ok);
    EXPECT_EQ(ok, 1);
    calc_expression("1", &result, nullptr);
    EXPECT_EQ(result, 1);
    calc_expression(nullptr, nullptr, nullptr);
}

TEST(CalculatorMemory, NoneForTheCalculator_EverythingFails) {
    const HeapRefusal refusal(0);
    CZrCalculator calculator;
    EXPECT_TRUE(refusal.Met());
    double result = callers_value;
    EXPECT_FALSE(calculator.Calculate("1", &result));
    EXPECT_EQ(result, callers_value);
    char out[8] = "before";
    EXPECT_FALSE(calculator.CalculateStringExpression("a", out, 8));
    EXPECT_STREQ(out, "before");
    const CZrCalculatorError &error = calculator.GetLastError();
    EXPECT_EQ(error.GetErrorType(), CALCULATOR_SYNTAX);
    EXPECT_EQ(error.GetErrorRow(), 0);
    EXPECT_EQ(error.GetErrorColumn(), 0);
    CZrCalculator copy(calculator);
    EXPECT_FALSE(copy.Calculate("1", &result));
    CZrCalculator working;
    copy = working;
    EXPECT_TRUE(copy.Calculate("1", &result));
    working = calculator;
    EXPECT_FALSE(working.Calculate("1", &result));
}

TEST(CalculatorMemory, NoneForDepth_FailsAtEachGrowth) {
    const std::string text = Repeated("2+(", 1000) + "1" + Repeated(")", 1000);
    int growths = 0;
    for (bool met = true; met; ++growths) {
        ASSERT_LT(growths, 20);
        CZrCalculator calculator;
        {
            const HeapRefusal refusal(growths);
            const Outcome outcome = Compute(calculator, text.c_str());
            met = refusal.Met();
            EXPECT_EQ(outcome.error, met ? 1 : 0);
            EXPECT_EQ(outcome.result, met ? 2 : 2001);
        }
        EXPECT_EQ(Compute(calculator, text.c_str()).result, 2001);
    }
    EXPECT_EQ(growths, 7); // 32 parts stand in place, 2001 are wanted
}

TEST(CalculatorMemory, NoneForAnyKindOfPart_Fails) {
    for (const char *part : {"(", "-", "NOT ", "ABS(", "1?", "1?2:", "2^", "2*(", "1<(", "1 AND ("}) {
        const std::string text = Repeated(part, 100) + "1";
        const HeapRefusal refusal(1);
        CZrCalculator calculator;
        EXPECT_EQ(Compute(calculator, text.c_str()).error, 1) << part;
        EXPECT_TRUE(refusal.Met()) << part;
    }
}

TEST(CalculatorMemory, NoneForThePlainFunctions_Fails) {
    const std::string deep = Repeated("(", 400) + "1" + Repeated(")", 400);
    const std::string place = "[!" + deep + "]";
    int growths = 0;
    for (bool met = true; met; ++growths) {
        ASSERT_LT(growths, 20);
        double result = callers_value;
        char ok = 7;
        char out[64] = "before";
        char string_ok = 7;
        {
            const HeapRefusal refusal(growths);
            calc_expression(deep.c_str(), &result, &ok);
            met = refusal.Met();
        }
        {
            const HeapRefusal refusal(growths);
            calc_string_expression(place.c_str(), out, sizeof out, &string_ok);
            EXPECT_EQ(refusal.Met(), met);
        }
        EXPECT_EQ(ok, met ? 0 : 1);
        EXPECT_EQ(result, met ? callers_value : 1);
        EXPECT_EQ(string_ok, met ? 0 : 1);
        EXPECT_STREQ(out, met ? "" : "1");
    }
    EXPECT_EQ(growths, 5); // 32 parts stand in place, 401 are wanted
}

TEST(CalculatorCopies, ShareOneImplementation) {
    static_assert(sizeof(CZrCalculator) == sizeof(void *));
    CZrCalculator first;
    EXPECT_EQ(Compute(first, "1 2").column, 2);
    CZrCalculator second(first);
    EXPECT_EQ(second.GetLastError().GetErrorColumn(), 2);
    EXPECT_EQ(&second.GetLastError(), &first.GetLastError());
    CZrCalculator third;
    third = second;
    EXPECT_EQ(Compute(third, "(((").column, 3);
    EXPECT_EQ(first.GetLastError().GetErrorColumn(), 3);
}

TEST(CalculatorCopies, AssignmentToItselfAndInAChain_Holds) {
    CZrCalculator first;
    CZrCalculator &alias = first;
    first = alias;
    EXPECT_EQ(Compute(first, "5").result, 5);
    CZrCalculator second, third;
    third = second = first;
    EXPECT_EQ(&third.GetLastError(), &first.GetLastError());
    first = third;
    EXPECT_EQ(Compute(first, "6").result, 6);
}

TEST(CalculatorCopies, LastOne_FreesAllThatTheyHad) {
    const std::string deep = Repeated("(", 1000) + "1" + Repeated(")", 1000);
    const zr::test::HeapBalance balance;
    {
        CZrCalculator first;
        EXPECT_EQ(balance.Open(), 1);
        EXPECT_EQ(Compute(first, deep.c_str()).result, 1);
        EXPECT_EQ(balance.Open(), 2); // the stack is kept for the next expression
        {
            CZrCalculator second(first), third, fourth;
            EXPECT_EQ(balance.Open(), 4);
            third = second;
            EXPECT_EQ(balance.Open(), 3);
            first = fourth;
            EXPECT_EQ(balance.Open(), 3);
        }
        EXPECT_EQ(balance.Open(), 1); // that of the fourth, which the first one shares
    }
    EXPECT_EQ(balance.Open(), 0);
    double result = 0;
    char ok = 0;
    calc_expression(deep.c_str(), &result, &ok);
    EXPECT_EQ(ok, 1);
    calc_expression(Repeated("(", 1000).c_str(), &result, &ok);
    EXPECT_EQ(ok, 0);
    char out[8];
    calc_string_expression("[!1][!2]", out, sizeof out, &ok);
    EXPECT_STREQ(out, "12");
    EXPECT_EQ(balance.Open(), 0);
}

TEST(CalculatorCopies, LastOne_OutlivesTheOthers) {
    CZrCalculator last;
    {
        CZrCalculator first;
        EXPECT_EQ(Compute(first, "1+x").column, 2);
        last = first;
    }
    EXPECT_EQ(last.GetLastError().GetErrorColumn(), 2);
    EXPECT_EQ(Compute(last, "8").result, 8);
}

TEST(Calculator, LastError_BeforeAnything_IsNone) {
    const CZrCalculator calculator;
    const CZrCalculatorError &error = calculator.GetLastError();
    EXPECT_EQ(error.GetErrorType(), CALCULATOR_OK);
    EXPECT_EQ(error.GetErrorRow(), 0);
    EXPECT_EQ(error.GetErrorColumn(), 0);
}

TEST(Calculator, LastErrorsRecord_StaysUntilAskedAgain) {
    CZrCalculator calculator;
    EXPECT_FALSE(calculator.Calculate("1/0", nullptr));
    const CZrCalculatorError &error = calculator.GetLastError();
    EXPECT_TRUE(calculator.Calculate("1", nullptr));
    EXPECT_EQ(error.GetErrorType(), CALCULATOR_DIVISION);
    EXPECT_EQ(calculator.GetLastError().GetErrorType(), CALCULATOR_OK);
    EXPECT_EQ(error.GetErrorType(), CALCULATOR_OK);
}

TEST(CalculatorError, HoldsWhatIsSet) {
    static_assert(sizeof(CZrCalculatorError) == 3 * sizeof(zr_long));
    CZrCalculatorError error;
    EXPECT_EQ(error.GetErrorType(), CALCULATOR_OK);
    EXPECT_EQ(error.GetErrorRow(), 0);
    EXPECT_EQ(error.GetErrorColumn(), 0);
    error.SetErrorType(CALCULATOR_VARIABLE);
    error.SetErrorRow(3);
    error.SetErrorColumn(-4);
    const CZrCalculatorError copy = error;
    EXPECT_EQ(copy.GetErrorType(), CALCULATOR_VARIABLE);
    EXPECT_EQ(copy.GetErrorRow(), 3);
    EXPECT_EQ(copy.GetErrorColumn(), -4);
    const CZrCalculatorError made(CALCULATOR_ELSE, 7, 8);
    EXPECT_EQ(made.GetErrorType(), CALCULATOR_ELSE);
    EXPECT_EQ(made.GetErrorRow(), 7);
    EXPECT_EQ(made.GetErrorColumn(), 8);
    error = made;
    EXPECT_EQ(error.GetErrorType(), CALCULATOR_ELSE);
    EXPECT_EQ(error.GetErrorRow(), 7);
    EXPECT_EQ(error.GetErrorColumn(), 8);
    const CZrCalculatorError only_a_type(CALCULATOR_COMMA);
    EXPECT_EQ(only_a_type.GetErrorRow(), 0);
    EXPECT_EQ(only_a_type.GetErrorColumn(), 0);
}

// Type, row, column, in this order.
TEST(CalculatorError, IsThreeNumbers) {
    static_assert(std::is_trivially_copyable_v<CZrCalculatorError>);
    const CZrCalculatorError error(CALCULATOR_DIVISION, 5, 9);
    zr_long fields[3] = {};
    std::memcpy(fields, &error, sizeof fields);
    EXPECT_EQ(fields[0], 16);
    EXPECT_EQ(fields[1], 5);
    EXPECT_EQ(fields[2], 9);
}

TEST(CalculatorError, TypesHaveTheirNumbers) {
    const int types[] = {
        CALCULATOR_OK,       CALCULATOR_SYNTAX,       CALCULATOR_LEFT_PARENTHESIS, CALCULATOR_RIGHT_PARENTHESIS,
        CALCULATOR_COMMA,    CALCULATOR_PARAMETER,    CALCULATOR_PARAMETER_2,      CALCULATOR_ELSE,
        CALCULATOR_VARIABLE, CALCULATOR_FUNCTION,     CALCULATOR_NEGATIVE_POWER,   CALCULATOR_TOO_LARGE,
        CALCULATOR_DIVISION, CALCULATOR_NEGATIVE_ROOT};
    const int numbers[] = {0, 1, 2, 3, 4, 5, 6, 7, 11, 12, 14, 15, 16, 17};
    ASSERT_EQ(std::size(types), std::size(numbers));
    for (std::size_t i = 0; i < std::size(types); ++i)
        EXPECT_EQ(types[i], numbers[i]);
}

std::string MessageOf(int type, zr_long size = 64) {
    std::string buffer(static_cast<std::size_t>(size) + 1, '#');
    CZrCalculatorError(static_cast<CalculatorErrorType>(type)).GetMessageString(buffer.data(), size);
    EXPECT_EQ(buffer.back(), '#');
    return buffer.c_str();
}

TEST(CalculatorError, Messages_OfAllTypes) {
    const std::string other = "Fehler innerhalb des Ausdrucks";
    const std::string messages[] = {other,
                                    other,
                                    "Linke Klammer fehlt",
                                    "Rechte Klammer fehlt",
                                    "Komma fehlt",
                                    "Parameter-Fehler",
                                    "Parameter-Fehler",
                                    "ELSE-Zweig fehlt",
                                    other,
                                    other,
                                    other,
                                    "Unbekannte Variable",
                                    "Unbekannte Funktion",
                                    other,
                                    "Negative Wurzel",
                                    "Wert zu gross",
                                    "Division durch Null",
                                    "Negative Wurzel",
                                    other,
                                    other};
    for (int type = 0; type < 20; ++type)
        EXPECT_EQ(MessageOf(type), messages[type]) << type;
}

TEST(CalculatorError, Messages_AreCutToTheBuffer) {
    EXPECT_EQ(MessageOf(16, 5), "Divi");
    EXPECT_EQ(MessageOf(1, 7), "Fehler");
    EXPECT_EQ(MessageOf(3, 1), "");
    for (const int type : {0, 2, 16}) {
        const std::string whole = MessageOf(type);
        for (zr_long size = 1; size < 40; ++size)
            EXPECT_EQ(MessageOf(type, size), whole.substr(0, static_cast<std::size_t>(size) - 1));
    }
    char buffer[] = "kept";
    const CZrCalculatorError error(CALCULATOR_DIVISION);
    error.GetMessageString(nullptr, 10);
    error.GetMessageString(buffer, 0);
    error.GetMessageString(buffer, -1);
    EXPECT_STREQ(buffer, "kept");
}

// The examples of the manual are lines "    expression  -> answer".
TEST(CalculatorManual, Examples_AreTrue) {
    std::ifstream manual(ZR_GOLDEN_DIR "/../../docs/calculator.md");
    int examples = 0;
    for (std::string line; std::getline(manual, line);) {
        if (!line.starts_with("    ") || line.find("->") == std::string::npos)
            continue;
        const std::size_t split = line.find("  -> ");
        ASSERT_NE(split, std::string::npos) << line;
        ++examples;
        const std::string expression = line.substr(4, split - 4);
        const std::string answer = line.substr(split + 5);
        if (expression.find("[!") != std::string::npos) {
            char out[64] = "";
            char ok = 0;
            calc_string_expression(expression.c_str(), out, sizeof out, &ok);
            EXPECT_EQ(out, answer) << expression;
            continue;
        }
        const Outcome outcome = Compute(expression);
        if (answer.starts_with("error")) {
            EXPECT_EQ("error " + std::to_string(outcome.error) + " at column " + std::to_string(outcome.column), answer)
                << expression;
        } else {
            EXPECT_EQ(outcome.error, 0) << expression;
            EXPECT_NEAR(outcome.result, std::stod(answer), 1e-14 * std::fabs(outcome.result)) << expression;
        }
    }
    EXPECT_GE(examples, 40);
}

} // namespace
