// Formatting: the C standard's texts, the same on every platform and under every locale.
#include "platform/format.h"

#include <bit>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "golden_table.h"

namespace {

using zr::platform::FormatVA;
using Row = GoldenTable::Row;

int FormatInto(char *buf, std::size_t size, const char *format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int length = FormatVA(buf, size, format, arguments);
    va_end(arguments);
    return length;
}

template <typename... Arguments>
std::string Formatted(const char *format, Arguments... arguments) {
    char buf[1000];
    const int length = FormatInto(buf, sizeof buf, format, arguments...);
    if (length < 0)
        return "(failed)";
    EXPECT_EQ(buf[length], 0);
    return {buf, static_cast<std::size_t>(length)};
}

double FromBits(const std::string &digits) {
    return std::bit_cast<double>(static_cast<std::uint64_t>(std::stoull(digits, nullptr, 16)));
}

bool IsRowOfNewestRuntime(const Row &row) {
    return row.at("dll").find("ucrtbase") != std::string::npos;
}

// What the row promises: the newest runtime's text, with exact ties to even and plain names for what is no number.
std::string Promised(const Row &row) {
    const std::string &documented = row.at("windows_documented");
    std::string text = row.at("text");
    const std::size_t even = documented.find("exact ties go to even): ");
    if (even != std::string::npos)
        text = documented.substr(even + std::strlen("exact ties go to even): "));
    const std::size_t indefinite = text.find("(ind)");
    if (indefinite != std::string::npos)
        text.erase(indefinite, std::strlen("(ind)"));
    return text;
}

TEST(Format, TableOfDoublesHolds) {
    const GoldenTable table("crt_printf_double.tsv");
    int checked = 0;
    for (const Row &row : table.Rows()) {
        const std::string &format = row.at("format");
        // Widths that the table measured with "(ind)" in the text say nothing of the padding without it.
        const bool padded = row.at("text").find("(ind)") != std::string::npos && format.find_first_of("123456789") == 1;
        if (!IsRowOfNewestRuntime(row) || padded)
            continue;
        EXPECT_EQ(Formatted(format.c_str(), FromBits(row.at("value_bits"))), Promised(row))
            << row.at("value_17e") << " " << format;
        ++checked;
    }
    EXPECT_EQ(checked, 1367);
}

TEST(Format, TableOfWidthsAndPrecisionsHolds) {
    const GoldenTable table("crt_printf_widthprec.tsv");
    int checked = 0;
    for (const Row &row : table.Rows()) {
        if (!IsRowOfNewestRuntime(row))
            continue;
        EXPECT_EQ(Formatted(row.at("format_built").c_str(), FromBits(row.at("value_bits"))), Promised(row));
        EXPECT_EQ(Formatted("%*.*f", std::stoi(row.at("width")), std::stoi(row.at("precision")),
                            FromBits(row.at("value_bits"))),
                  Promised(row));
        ++checked;
    }
    EXPECT_EQ(checked, 126);
}

// The C long of the platform may be wider than the table's 32 bits, where hexadecimal shows the sign's width.
std::string FormattedLong(const std::string &format, long value) {
    const bool is_unsigned = format.find_first_of("xXu") != std::string::npos;
    if (is_unsigned)
        return Formatted(format.c_str(), static_cast<unsigned long>(static_cast<std::uint32_t>(value)));
    return Formatted(format.c_str(), value);
}

TEST(Format, TableOfIntegersHolds) {
    const GoldenTable table("crt_printf_int.tsv");
    int checked = 0;
    for (const Row &row : table.Rows()) {
        const std::string &format = row.at("format");
        if (!IsRowOfNewestRuntime(row) || format.find('(') != std::string::npos)
            continue;
        const auto value = static_cast<long>(static_cast<std::int32_t>(std::stoll(row.at("value"))));
        const bool is_long = format.find('l') != std::string::npos;
        EXPECT_EQ(is_long ? FormattedLong(format, value) : Formatted(format.c_str(), static_cast<int>(value)),
                  row.at("text"))
            << row.at("value") << " " << format;
        ++checked;
    }
    EXPECT_EQ(checked, 240);
}

TEST(Format, InfinitiesAndNaNsKeepTheirSign) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(Formatted("%f %g %e", infinity, infinity, -infinity), "inf inf -inf");
    EXPECT_EQ(Formatted("%F %G %E", infinity, -infinity, infinity), "INF -INF INF");
    EXPECT_EQ(Formatted("%f %.13g", std::copysign(nan, 1.0), std::copysign(nan, -1.0)), "nan -nan");
    EXPECT_EQ(Formatted("[%8.2f][%-8.2f][%+f]", infinity, infinity, infinity), "[     inf][inf     ][+inf]");
    EXPECT_EQ(Formatted("[%08f]", infinity), "[     inf]");
}

TEST(Format, NaNStandsAmongAllOtherConversions) {
    const double nan = -std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(Formatted("%-6d|%lld|%s|%c|%%|%5.1f|%-*f|%6F|%.2s|%lu|%zu|%*d|%x", -3, LLONG_MIN, "nan", 'c', 2.25, 6,
                        nan, nan, "xyz", 7UL, sizeof(int), 4, 9, 255),
              "-3    |-9223372036854775808|nan|c|%|  2.2|-nan  |  -NAN|xy|7|4|   9|ff");
    EXPECT_EQ(Formatted("%Lg %.*f %#x", static_cast<long double>(nan), 3, 1.0, 16), "-nan 1.000 0x10");
    char buf[6];
    EXPECT_EQ(FormatInto(buf, 5, "%f", nan), 4);
    EXPECT_EQ(FormatInto(buf, 4, "%f", nan), -1);
}

TEST(Format, DecimalsAreExactToTheLastDigit) {
    EXPECT_EQ(Formatted("%.50f", 0.1), "0.10000000000000000555111512312578270211815834045410");
    EXPECT_EQ(Formatted("%.0f", 1e22), "10000000000000000000000");
    EXPECT_EQ(Formatted("%.0f|%.0f|%.0f|%.0f", 0.5, 1.5, 2.5, -0.5), "0|2|2|-0");
    EXPECT_EQ(Formatted("%.1f|%.1f|%.2f", 0.25, 0.75, 1.005), "0.2|0.8|1.00");
    EXPECT_EQ(Formatted("%g", std::numeric_limits<double>::denorm_min()), "4.94066e-324");
    EXPECT_EQ(Formatted("%.17g", std::numeric_limits<double>::max()), "1.7976931348623157e+308");
    EXPECT_EQ(Formatted("%.13g", 123456789012345678.0), "1.234567890123e+17");
}

TEST(Format, ExponentsHaveTwoDigitsOrMore) {
    EXPECT_EQ(Formatted("%e|%e|%e|%g", 1.0, 1e-9, 1e100, 1e-10), "1.000000e+00|1.000000e-09|1.000000e+100|1e-10");
}

TEST(Format, FlagsOfTheStandardWork) {
    EXPECT_EQ(Formatted("%#g|%#.0f|%+d|% d|%05d|%-5d|%#o|%#x", 1.0, 1.0, 3, 3, 3, 3, 8, 255),
              "1.00000|1.|+3| 3|00003|3    |010|0xff");
    EXPECT_EQ(Formatted("%.3s|%5s|%-5s|%.0s|", "abcdef", "ab", "ab", "ab"), "abc|   ab|ab   ||");
    EXPECT_EQ(Formatted("%c%%%i", 'x', -1), "x%-1");
    EXPECT_EQ(Formatted("%hhd %hd %lld %zu %jd", 300, 70000, LLONG_MIN, sizeof(int), std::intmax_t{5}),
              "44 4464 -9223372036854775808 4 5");
    EXPECT_EQ(Formatted("%ld", LONG_MIN), std::to_string(LONG_MIN));
    EXPECT_EQ(Formatted("%lu", ULONG_MAX), std::to_string(ULONG_MAX));
    EXPECT_EQ(Formatted("%Lf", 1.5L), "1.500000");
    EXPECT_EQ(Formatted("%a", 1.5), "0x1.8p+0");
}

TEST(Format, BytesOfTheCodePagePassUnchanged) {
    EXPECT_EQ(Formatted("geh\xF6rt %s", "\xE4\xFF\x80"), "geh\xF6rt \xE4\xFF\x80");
    EXPECT_EQ(Formatted("\xE4%d\xFF", 5), "\xE4"
                                          "5\xFF");
}

TEST(Format, TextThatDoesNotFitFails) {
    char buf[8];
    EXPECT_EQ(FormatInto(buf, 4, "%s", "abc"), 3);
    EXPECT_STREQ(buf, "abc");
    std::memset(buf, '#', sizeof buf);
    EXPECT_EQ(FormatInto(buf, 4, "%s", "abcd"), -1);
    EXPECT_EQ(buf[4], '#');
    EXPECT_EQ(FormatInto(buf, 1, "%s", ""), 0);
    EXPECT_STREQ(buf, "");
    EXPECT_EQ(FormatInto(buf, 1, "%s", "a"), -1);
    EXPECT_EQ(FormatInto(buf, sizeof buf, "%f", 1e300), -1);
}

TEST(Format, BadArgumentsFail) {
    char buf[8] = "before";
    EXPECT_EQ(FormatInto(nullptr, 5, "a"), -1);
    EXPECT_EQ(FormatInto(buf, 0, "a"), -1);
    EXPECT_EQ(FormatInto(buf, sizeof buf, nullptr), -1);
    EXPECT_STREQ(buf, "before");
}

TEST(Format, LongTextsPass) {
    const std::string text(200000, 'x');
    std::string buf(text.size() + 1, '#');
    EXPECT_EQ(FormatInto(buf.data(), buf.size(), "%s", text.c_str()), 200000);
    EXPECT_EQ(FormatInto(buf.data(), buf.size() - 1, "%s", text.c_str()), -1);
}

} // namespace
