// Making texts, and numbers to texts and back.
#include <zrclb/str.h>

#include <climits>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "frame/report_fixture.h"
#include "golden_table.h"

namespace {

class StrConvert : public ReportFixture {
protected:
    // Whether just the message of a bad parameter was reported since the last call.
    static bool TakeInvalidParameter() {
        std::string log = TakeLog();
        std::string head = Stamp() + "> MESSAGE in prog.exe \"clib\" line ";
        std::string tail = ":\n  Invalid Parameter!\n  !\n  !\n\n\n";
        return log.substr(0, head.size()) == head && log.size() > tail.size() &&
               log.substr(log.size() - tail.size()) == tail && log.find("MESSAGE", head.size()) == std::string::npos;
    }
};

std::uint64_t Bits(double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

double FromBits(const std::string &text) {
    std::uint64_t bits = std::stoull(text, nullptr, 16);
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

TEST_F(StrConvert, RptRepeats) {
    EXPECT_STREQ(str_rpt('x', 3), "xxx");
    EXPECT_STREQ(str_rpt(0xE4, 2), "\xE4\xE4");
    EXPECT_STREQ(str_rpt(0x100 + 'y', 1), "y");
    EXPECT_EQ(str_rpt('x', 255), std::string(255, 'x'));
    EXPECT_EQ(str_rpt('x', 256), std::string(255, 'x'));
    EXPECT_EQ(str_rpt('x', 1000), std::string(255, 'x'));
    EXPECT_EQ(str_rpt('x', INT_MAX), std::string(255, 'x'));
    EXPECT_STREQ(str_rpt('x', 0), "");
    EXPECT_STREQ(str_rpt('x', -1), "");
    EXPECT_STREQ(str_rpt('x', INT_MIN), "");
    EXPECT_STREQ(str_rpt(0, 3), "");
    EXPECT_EQ(str_rpt('a', 1), str_rpt('b', 1));
}

TEST_F(StrConvert, PrintfWritesAndCounts) {
    char out[32];
    EXPECT_EQ(str_printf(out, sizeof out, "%s=%d", "a", -5), 4);
    EXPECT_STREQ(out, "a=-5");
    EXPECT_EQ(str_printf(out, sizeof out, "%.13g %5.2f|%-4ld|%%", 0.1, 2.345, 7L), 16);
    EXPECT_STREQ(out, "0.1  2.35|7   |%");
    EXPECT_EQ(str_printf(out, sizeof out, "%s", ""), 0);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(StrConvert, PrintfTakesTheWholeBuffer) {
    char out[5] = "####";
    EXPECT_EQ(str_printf(out, sizeof out, "%s", "abcd"), 4);
    EXPECT_STREQ(out, "abcd");
    EXPECT_EQ(TakeLog(), "");
    EXPECT_EQ(str_printf(out, sizeof out, "%s", "abcde"), -1);
    EXPECT_STREQ(out, "");
    EXPECT_TRUE(TakeInvalidParameter());
    EXPECT_EQ(str_printf(out, 1, "%s", ""), 0);
    EXPECT_EQ(str_printf(out, 1, "%s", "a"), -1);
    EXPECT_STREQ(out, "");
    EXPECT_TRUE(TakeInvalidParameter());
}

TEST_F(StrConvert, PrintfRefusesNullAndNoRoom) {
    char out[5] = "old";
    const char *no_format = nullptr;
    EXPECT_EQ(str_printf(nullptr, 5, "%s", "a"), -1);
    EXPECT_TRUE(TakeInvalidParameter());
    EXPECT_EQ(str_printf(out, 0, "%s", "a"), -1);
    EXPECT_TRUE(TakeInvalidParameter());
    EXPECT_STREQ(out, "old");
    EXPECT_EQ(str_printf(out, sizeof out, no_format, "a"), -1);
    EXPECT_TRUE(TakeInvalidParameter());
    EXPECT_STREQ(out, "");
}

TEST_F(StrConvert, PrintfFollowsTheTableOfNumbers) {
    GoldenTable table("crt_printf_double.tsv");
    int checked = 0;
    for (const auto &row : table.Rows()) {
        double value = FromBits(row.at("value_bits"));
        if (row.at("dll").find("ucrtbase") == std::string::npos || !row.at("windows_documented").empty() ||
            !std::isfinite(value)) {
            continue;
        }
        char out[512];
        const char *format = row.at("format").c_str();
        EXPECT_EQ(str_printf(out, sizeof out, format, value), static_cast<int>(row.at("text").size()));
        EXPECT_EQ(out, row.at("text")) << format;
        ++checked;
    }
    EXPECT_GE(checked, 500);
}

TEST_F(StrConvert, StodFollowsTheTable) {
    GoldenTable table("crt_strtod.tsv");
    int checked = 0;
    for (const auto &row : table.Rows()) {
        if (row.at("dll").find("ucrtbase") == std::string::npos || !row.at("windows_documented").empty()) {
            continue;
        }
        double value = convert_stod(row.at("text").c_str());
        double expected = FromBits(row.at("value_bits"));
        if (std::isnan(expected)) {
            EXPECT_TRUE(std::isnan(value)) << row.at("text");
        } else {
            EXPECT_EQ(Bits(value), Bits(expected)) << row.at("text");
        }
        ++checked;
    }
    EXPECT_GE(checked, 100);
}

TEST_F(StrConvert, StodTakesTheLetterDForNoExponent) {
    EXPECT_EQ(convert_stod("1d1"), 1.0);
    EXPECT_EQ(convert_stod("1.5D-3"), 1.5);
    EXPECT_EQ(convert_stod("1d400"), 1.0);
    EXPECT_EQ(convert_stod("0d5"), 0.0);
}

TEST_F(StrConvert, StodBeyondTheRange) {
    double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(convert_stod("1e400"), infinity);
    EXPECT_EQ(convert_stod("-1e400"), -infinity);
    EXPECT_EQ(convert_stod("1e-400"), 0.0);
    EXPECT_EQ(convert_stod("0.000e99999999999999999999"), 0.0);
    EXPECT_EQ(convert_stod("1e99999999999999999999"), infinity);
    EXPECT_EQ(convert_stod("1e-99999999999999999999"), 0.0);
    EXPECT_EQ(convert_stod(("1" + std::string(400, '0')).c_str()), infinity);
    EXPECT_EQ(convert_stod(("1" + std::string(400, '0') + "e-400").c_str()), 1.0);
    EXPECT_EQ(convert_stod(("0." + std::string(400, '0') + "1").c_str()), 0.0);
    EXPECT_EQ(convert_stod("0x1p2000"), infinity);
    EXPECT_EQ(convert_stod("-0x1p2000"), -infinity);
    EXPECT_EQ(convert_stod("0x1p-2000"), 0.0);
    EXPECT_EQ(convert_stod("-0x1p-2"), -0.25);
}

TEST_F(StrConvert, StodOfNoNumberIsZero) {
    for (const char *text :
         {"", " ", "x", "+-1", "-+1", "--1", "0x", "0x-1", "0xinf", "0xg", "-", ".", "e5", "i", "na"}) {
        EXPECT_EQ(convert_stod(text), 0.0) << text;
    }
    EXPECT_EQ(convert_stod(nullptr), 0.0);
    EXPECT_EQ(TakeLog(), "");
    EXPECT_TRUE(debugger.empty());
}

TEST_F(StrConvert, StolFollowsTheTable) {
    GoldenTable table("crt_atol.tsv");
    int checked = 0;
    for (const auto &row : table.Rows()) {
        if (row.at("dll").find("ucrtbase") == std::string::npos) {
            continue;
        }
        EXPECT_EQ(convert_stol(row.at("text").c_str()), std::stoll(row.at("atol"))) << row.at("text");
        ++checked;
    }
    EXPECT_GE(checked, 50);
    EXPECT_EQ(convert_stol(nullptr), 0);
    EXPECT_EQ(convert_stol(std::string(100000, '9').c_str()), 2147483647);
}

TEST_F(StrConvert, DtosFollowsTheTable) {
    GoldenTable table("crt_printf_widthprec.tsv");
    int checked = 0;
    for (const auto &row : table.Rows()) {
        double value = FromBits(row.at("value_bits"));
        if (row.at("dll").find("ucrtbase") == std::string::npos || !row.at("windows_documented").empty() ||
            row.at("format_built").find("lf") == std::string::npos || !std::isfinite(value)) {
            continue;
        }
        char out[512];
        int count = convert_dtos(value, std::stoi(row.at("width")), std::stoi(row.at("precision")), out);
        EXPECT_EQ(out, row.at("text")) << row.at("format_built");
        EXPECT_EQ(count, static_cast<int>(row.at("text").size()));
        ++checked;
    }
    EXPECT_GE(checked, 50);
}

TEST_F(StrConvert, DtosTiesGoToEven) {
    char out[64];
    EXPECT_EQ(convert_dtos(-2.25, 0, 1, out), 4);
    EXPECT_STREQ(out, "-2.2");
    EXPECT_EQ(convert_dtos(0.5, 3, 0, out), 3);
    EXPECT_STREQ(out, "  0");
}

TEST_F(StrConvert, DtosOfTheLargestNumberAndOfNoneAtAll) {
    char out[700];
    EXPECT_EQ(convert_dtos(-std::numeric_limits<double>::max(), 0, 300, out), 1 + 309 + 1 + 300);
    EXPECT_EQ(convert_dtos(std::numeric_limits<double>::infinity(), 5, 2, out), 5);
    EXPECT_STREQ(out, "  inf");
    EXPECT_EQ(convert_dtos(1.0, 600, 1, out), 600);
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(StrConvert, DtosWithAFormatThatDoesNotFitGivesTheEmptyText) {
    char out[32] = "old";
    EXPECT_EQ(convert_dtos(1.0, INT_MIN, INT_MAX, out), 0);
    EXPECT_STREQ(out, "");
    EXPECT_TRUE(TakeInvalidParameter());
    std::strcpy(out, "old");
    EXPECT_EQ(convert_dtos(1.0, INT_MIN, 1, out), 0); // one character more than the format has room for
    EXPECT_STREQ(out, "");
    EXPECT_TRUE(TakeInvalidParameter());
    EXPECT_EQ(convert_dtos(1.0, 1, 1, nullptr), 0);
}

TEST_F(StrConvert, DtosWithANegativePrecisionGivesTheEmptyText) {
    for (int precision : {-1, INT_MIN}) {
        char out[32] = "old";
        EXPECT_EQ(convert_dtos(1.0, 8, precision, out), 0);
        EXPECT_STREQ(out, "");
        EXPECT_TRUE(TakeInvalidParameter());
    }
}

TEST_F(StrConvert, LtosFillsItsField) {
    char out[64];
    EXPECT_EQ(convert_ltos(42, 6, out), 6);
    EXPECT_STREQ(out, "    42");
    EXPECT_EQ(convert_ltos(42, -6, out), 6);
    EXPECT_STREQ(out, "42    ");
    EXPECT_EQ(convert_ltos(42, 0, out), 2);
    EXPECT_STREQ(out, "42");
    EXPECT_EQ(convert_ltos(-2147483647 - 1, 3, out), 11);
    EXPECT_STREQ(out, "-2147483648");
    EXPECT_EQ(convert_ltos(2147483647, 1, out), 10);
    EXPECT_STREQ(out, "2147483647");
    EXPECT_EQ(convert_ltos(0, 1, nullptr), 0);
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(StrConvert, LocaleDoesNotMatter) {
    const char *names[] = {"de_DE.UTF-8", "de_DE", "de_DE@euro", "German_Germany.1252", "fr_FR.UTF-8"};
    bool found = false;
    for (const char *name : names) {
        found = found || std::setlocale(LC_ALL, name) != nullptr;
    }
    char out[32];
    convert_dtos(1.5, 0, 1, out);
    std::string written = out;
    str_printf(out, sizeof out, "%.1f", 2.5);
    std::string printed = out;
    double read = convert_stod("1.5");
    int folded = str_ieq("\xE4", "\xC4");
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(written, "1.5");
    EXPECT_EQ(printed, "2.5");
    EXPECT_EQ(read, 1.5);
    EXPECT_EQ(folded, 0);
    if (!found) {
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
}

} // namespace
