// Numbers as texts: written forms against the C library and measured answers, and the way back.
#include "env/number_text.h"

#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "golden_table.h"

namespace {

using namespace zr::env;

constexpr double Infinity = std::numeric_limits<double>::infinity();

std::string LongText(zr_long value) {
    char text[LongTextSize];
    const std::size_t length = FormatLong(text, value);
    EXPECT_EQ(length, std::strlen(text));
    return text;
}

std::string G13Text(double value) {
    char text[G13TextSize];
    const std::size_t length = FormatG13(text, value);
    EXPECT_EQ(length, std::strlen(text));
    return text;
}

std::string F6Text(double value) {
    char text[F6TextSize];
    const std::size_t length = FormatF6(text, value);
    EXPECT_EQ(length, std::strlen(text));
    return text;
}

double FromBits(std::uint64_t bits) {
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

std::uint64_t Bits(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

std::uint64_t HexBits(const std::string &text) {
    return std::stoull(text, nullptr, 16);
}

std::string PrintfText(const char *format, double value) {
    char text[F6TextSize];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

// Whether the exact value lies in the middle between two texts of the format, judged by far more digits.
bool IsTie(const std::string &format, double value) {
    char exact[2000];
    if (format == "%f") {
        std::snprintf(exact, sizeof exact, "%.1080f", value);
        const std::string rest = std::strchr(exact, '.') + 7;
        return rest.find_last_not_of('0') == 0 && rest[0] == '5';
    }
    std::snprintf(exact, sizeof exact, "%.800e", value);
    const std::string rest = std::string(std::strchr(exact, '.') + 13, std::strchr(exact, 'e'));
    return rest.find_last_not_of('0') == 0 && rest[0] == '5';
}

TEST(FormatLong, WritesPlainDecimal) {
    EXPECT_EQ(LongText(0), "0");
    EXPECT_EQ(LongText(-5), "-5");
    EXPECT_EQ(LongText(2147483647), "2147483647");
    EXPECT_EQ(LongText(std::numeric_limits<std::int32_t>::min()), "-2147483648");
}

TEST(FormatG13, WritesThirteenSignificantDigits) {
    EXPECT_EQ(G13Text(0.0), "0");
    EXPECT_EQ(G13Text(-0.0), "-0");
    EXPECT_EQ(G13Text(0.1), "0.1");
    EXPECT_EQ(G13Text(1.0), "1");
    EXPECT_EQ(G13Text(1.5), "1.5");
    EXPECT_EQ(G13Text(1.0 / 3.0), "0.3333333333333");
    EXPECT_EQ(G13Text(-1.0 / 3.0), "-0.3333333333333");
    EXPECT_EQ(G13Text(9999999999999.0), "9999999999999");
    EXPECT_EQ(G13Text(10000000000000.0), "1e+13");
    EXPECT_EQ(G13Text(0.0001), "0.0001");
    EXPECT_EQ(G13Text(0.00001), "1e-05");
    EXPECT_EQ(G13Text(-1.234567890123e-308), "-1.234567890123e-308");
    EXPECT_EQ(G13Text(5e-324), "4.940656458412e-324");
    EXPECT_EQ(G13Text(1.7976931348623157e308), "1.797693134862e+308");
}

TEST(FormatG13, RoundsTiesToEven) {
    EXPECT_EQ(G13Text(1000000000000.5), "1000000000000");
    EXPECT_EQ(G13Text(1000000000001.5), "1000000000002");
    EXPECT_EQ(G13Text(9999999999999.5), "1e+13");
}

TEST(FormatG13, InfinitiesAreWords) {
    EXPECT_EQ(G13Text(Infinity), "inf");
    EXPECT_EQ(G13Text(-Infinity), "-inf");
    EXPECT_EQ(G13Text(std::numeric_limits<double>::quiet_NaN()), "nan");
}

TEST(FormatF6, WritesSixDecimals) {
    EXPECT_EQ(F6Text(1.5), "1.500000");
    EXPECT_EQ(F6Text(-0.0), "-0.000000");
    EXPECT_EQ(F6Text(1e-7), "0.000000");
    EXPECT_EQ(F6Text(0.0000005), "0.000000");
    EXPECT_EQ(F6Text(0.00000150000000001), "0.000002");
    EXPECT_EQ(F6Text(3.4028234663852886e38), "340282346638528859811704183484516925440.000000");
    EXPECT_EQ(F6Text(Infinity), "inf");
    EXPECT_EQ(F6Text(-Infinity), "-inf");
    EXPECT_EQ(F6Text(-1.7976931348623157e308).size(), 317U);
}

TEST(FormatDouble, AgreesWithMeasuredAnswersExceptForTies) {
    const GoldenTable table("crt_printf_double.tsv");
    int compared = 0;
    int ties = 0;
    for (const GoldenTable::Row &row : table.Rows()) {
        const std::string &format = row.at("format");
        // Two digits at least in an exponent, and words for infinities, are what the newest of the runtimes writes.
        if ((format != "%.13g" && format != "%f") || row.at("dll").find("ucrtbase") == std::string::npos)
            continue;
        const double value = FromBits(HexBits(row.at("value_bits")));
        if (std::isnan(value) && std::signbit(value))
            continue; // the runtime adds "(ind)"
        const std::string text = format == "%f" ? F6Text(value) : G13Text(value);
        if (text != row.at("text") && std::isfinite(value) && IsTie(format, value))
            ++ties; // the runtimes round those away from zero
        else
            EXPECT_EQ(text, row.at("text")) << row.at("value_bits") << " with " << format;
        ++compared;
    }
    EXPECT_GT(compared, 150);
    EXPECT_LT(ties, 10);
}

TEST(FormatDouble, AgreesWithTheStandardLibrary) {
    std::mt19937_64 random(20111);
    for (int i = 0; i < 100000; ++i) {
        double value = FromBits(random());
        if (i % 2 == 0)
            value = static_cast<double>(static_cast<std::int32_t>(random())) / std::pow(10.0, random() % 12);
        if (std::isnan(value))
            continue;
        ASSERT_EQ(G13Text(value), PrintfText("%.13g", value));
        ASSERT_EQ(F6Text(value), PrintfText("%f", value));
    }
}

// Switches to a locale with a decimal comma, under the names that systems have for one. False if there is none.
bool SetLocaleWithComma() {
    for (const char *name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "German_Germany.1252", "fr_FR.UTF-8"}) {
        if (std::setlocale(LC_ALL, name) != nullptr && *std::localeconv()->decimal_point == ',')
            return true;
    }
    return false;
}

TEST(FormatDouble, IgnoresTheProcessLocale) {
    const bool hasComma = SetLocaleWithComma();
    EXPECT_EQ(G13Text(1.5), "1.5");
    EXPECT_EQ(F6Text(1.5), "1.500000");
    EXPECT_EQ(ReadDouble("1.5"), 1.5);
    EXPECT_EQ(ReadDouble("1,5"), 1.0);
    EXPECT_EQ(ReadDouble("1.00000000000000000000000000000000000000005"), 1.0); // too long for the short ways
    std::setlocale(LC_ALL, "C");
    if (!hasComma)
        GTEST_SKIP() << "no locale with a decimal comma is installed: only the C locale was looked at";
}

struct Scanned {
    std::size_t length;
    double value;
};

Scanned Scan(const std::string &text) {
    DecimalNumber number;
    const char *end = ScanDecimal(text.c_str(), number);
    return end != nullptr ? Scanned{static_cast<std::size_t>(end - text.c_str()), ToDouble(number)} : Scanned{0, 0.0};
}

void ExpectScan(const std::string &text, std::size_t length, double value) {
    const Scanned scanned = Scan(text);
    EXPECT_EQ(scanned.length, length) << text.substr(0, 80);
    EXPECT_EQ(Bits(scanned.value), Bits(value)) << text.substr(0, 80) << " gives " << scanned.value;
}

void ExpectWhole(const std::string &text, double value) {
    ExpectScan(text, text.size(), value);
}

TEST(ScanDecimal, TakesWhatTheNumberIs) {
    ExpectScan("12", 2, 12);
    ExpectScan("-12x", 3, -12);
    ExpectScan("+7 ", 2, 7);
    ExpectScan("5.", 2, 5);
    ExpectScan(".5", 2, 0.5);
    ExpectScan("+.5e3", 5, 500);
    ExpectScan("1..2", 2, 1);
    ExpectScan("1.2.3", 3, 1.2);
    ExpectScan("-0", 2, -0.0);
    ExpectScan("-0.0e5", 6, -0.0);
}

TEST(ScanDecimal, TakesAnExponentWithAnyLetter) {
    for (const char letter : {'e', 'E', 'd', 'D'}) {
        const std::string mark(1, letter);
        ExpectScan("1" + mark, 2, 1);
        ExpectScan("1." + mark, 3, 1);
        ExpectScan("1" + mark + "3", 3, 1000);
        ExpectScan("1" + mark + "+3", 4, 1000);
        ExpectScan("25" + mark + "-1", 5, 2.5);
        ExpectScan("1" + mark + "+", 2, 1);
        ExpectScan("1" + mark + "-x", 2, 1);
        ExpectScan("1" + mark + mark, 2, 1);
        ExpectScan("1" + mark + "5.5", 3, 1e5);
    }
}

TEST(ScanDecimal, RefusesWhatHasNoDigits) {
    DecimalNumber number;
    for (const char *text :
         {"", ".", "+", "-", "-.", "e5", ".e5", "+e5", "x1", " 1", "--1", "+-1", "- 1", ",1", "\xB2"})
        EXPECT_EQ(ScanDecimal(text, number), nullptr) << text;
}

TEST(ScanDecimal, OutOfRangeIsInfiniteOrZero) {
    ExpectWhole("1e309", Infinity);
    ExpectWhole("-1e309", -Infinity);
    ExpectWhole("1.7976931348623159e308", Infinity);
    ExpectWhole("1e99999999999999999999999999", Infinity);
    ExpectWhole("1e-99999999999999999999999999", 0.0);
    ExpectWhole("-1e-400", -0.0);
    ExpectWhole("0e99999999999999999999999999", 0.0);
    ExpectWhole("5e-324", 5e-324);
    ExpectWhole("2e-324", 0.0);
    ExpectWhole("2.2250738585072011e-308", 2.2250738585072011e-308);
}

TEST(ScanDecimal, LongMantissasAndExponentsCancelOut) {
    const std::string zeros(1000000, '0');
    ExpectWhole("1" + zeros + "e-1000000", 1.0);
    ExpectWhole("0." + zeros + "1e1000001", 1.0);
    ExpectWhole(zeros + "25", 25.0);
    ExpectWhole(zeros + ".5" + zeros, 0.5);
    ExpectWhole("0" + zeros + "." + zeros, 0.0);
    ExpectWhole("1" + zeros + "e-2000000", 0.0);
    ExpectWhole("1" + zeros, Infinity);
}

TEST(ScanDecimal, ALastNonZeroDigitDecidesBetweenNeighbours) {
    // 2^53 + 1 lies in the middle between two doubles.
    ExpectWhole("9007199254740993", 9007199254740992.0);
    ExpectWhole("9007199254740993.0000000000000000001", 9007199254740994.0);
    const std::string zeros(1000, '0');
    ExpectWhole("9007199254740993." + zeros, 9007199254740992.0);
    ExpectWhole("9007199254740993." + zeros + "1", 9007199254740994.0);
    ExpectWhole("9007199254740991.4999999999999999999999999999999995", 9007199254740991.0);
}

TEST(ReadDouble, AgreesWithMeasuredAnswers) {
    const GoldenTable table("crt_strtod.tsv");
    int compared = 0;
    for (const GoldenTable::Row &row : table.Rows()) {
        // The runtimes that take D and d as exponents and no hexadecimal or worded numbers.
        if (row.at("dll").find("msvcrt") == std::string::npos)
            continue;
        EXPECT_EQ(Bits(ReadDouble(row.at("text").c_str())), HexBits(row.at("value_bits"))) << row.at("text");
        ++compared;
    }
    EXPECT_GT(compared, 100);
}

TEST(ReadDouble, AgreesWithTheStandardLibrary) {
    std::mt19937_64 random(20112);
    char text[80];
    for (int i = 0; i < 100000; ++i) {
        const double value = FromBits(random());
        if (!std::isfinite(value))
            continue;
        std::snprintf(text, sizeof text, "%.*e", static_cast<int>(random() % 40), value);
        ASSERT_EQ(Bits(ReadDouble(text)), Bits(std::strtod(text, nullptr))) << text;
        std::snprintf(text, sizeof text, "%d.%0*d", static_cast<int>(random() % 100000),
                      static_cast<int>(random() % 25), static_cast<int>(random() % 100000));
        ASSERT_EQ(Bits(ReadDouble(text)), Bits(std::strtod(text, nullptr))) << text;
    }
}

TEST(ReadDouble, NoNumberIsZero) {
    for (const char *text : {"", "abc", "  ", "inf", "nan", "+"})
        EXPECT_EQ(Bits(ReadDouble(text)), 0U) << text;
    EXPECT_EQ(ReadDouble("0x10"), 0.0);
    EXPECT_EQ(ReadDouble(" \t\n\v\f\r1"), 1.0);
}

TEST(ScanLong, StopsBehindTheDigits) {
    zr_long value = 99;
    const char *text = "-12,5";
    EXPECT_EQ(ScanLong(text, value), text + 3);
    EXPECT_EQ(value, -12);
    value = 99;
    for (const char *bad : {"", "+", "-", "x", " 1", "+-1", ".5"})
        EXPECT_EQ(ScanLong(bad, value), nullptr) << bad;
    EXPECT_EQ(value, 99);
}

TEST(ReadLong, AgreesWithMeasuredAnswers) {
    const GoldenTable table("crt_strtol.tsv");
    int compared = 0;
    for (const GoldenTable::Row &row : table.Rows()) {
        if (row.at("base") != "10" || row.at("dll").find("ucrtbase") == std::string::npos)
            continue;
        const std::string &text = row.at("text");
        const char *end = nullptr;
        EXPECT_EQ(ReadLong(text.c_str(), &end), std::stoll(row.at("value"))) << text;
        EXPECT_EQ(end - text.c_str(), std::stoll(row.at("end_offset"))) << text;
        ++compared;
    }
    EXPECT_GT(compared, 30);
}

TEST(ReadLong, SaturatesAt32Bits) {
    EXPECT_EQ(ReadLong("2147483647"), 2147483647);
    EXPECT_EQ(ReadLong("2147483648"), 2147483647);
    EXPECT_EQ(ReadLong("-2147483648"), -2147483647 - 1);
    EXPECT_EQ(ReadLong("-2147483649"), -2147483647 - 1);
    EXPECT_EQ(ReadLong("99999999999999999999999999999999"), 2147483647);
    const std::string digits(10000000, '9');
    EXPECT_EQ(ReadLong(("-" + digits).c_str()), -2147483647 - 1);
}

} // namespace
