// The scanner: options, kinds, texts, errors, places, keywords, characters, limits; and beside the plain reference.
#include <algorithm>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/scan.h>
#include <zrclb/scan.hpp>

#include "child_process.h"
#include "env/report_capture.h"
#include "expressions/scanner.h"
#include "expressions/scanner_comparison.h"
#include "frame/refused_heap.h"

namespace {

using scan_test::Call;
using scan_test::Comparison;
using std::string;

constexpr zr_long untouched = 77;

// What a second process does: reads from a source that throws. Its code is 0 if that ends it.
[[noreturn]] void ReadFromAThrowingSource(const string &how) {
    std::set_terminate([] { std::_Exit(0); });
    try {
        const auto token = std::make_unique<ZrScanToken>();
        CZrScanner *scanner = scan_open([]() -> int { throw 1; }, 0, nullptr);
        zr_long kind = 0;
        char c = 0;
        if (how == "token")
            scan_token(scanner, &kind, token.get());
        else
            scan_character(scanner, &kind, &c);
    } catch (...) {
        std::_Exit(2);
    }
    std::_Exit(1);
}

// It never gets to the tests.
const struct SecondProcess {
    SecondProcess() {
        if (!ChildProcess::Argument().empty())
            ReadFromAThrowingSource(ChildProcess::Argument());
    }
} second_process;

// What the scanners of these tests read: ints, and behind them the end.
std::vector<int> characters;
std::size_t taken = 0;

int Next() {
    return taken < characters.size() ? characters[taken++] : 0;
}

zr_long Taken() {
    return static_cast<zr_long>(taken);
}

void SetSource(std::vector<int> text) {
    characters = std::move(text);
    taken = 0;
}

void SetSource(const string &text, bool as_signed = false) {
    std::vector<int> values;
    for (const char c : text)
        values.push_back(as_signed ? static_cast<signed char>(c) : static_cast<unsigned char>(c));
    SetSource(values);
}

struct Token {
    int error;
    zr_long kind;
    string text;
    zr_long long_value;
    double double_value;
    zr_long row;
    zr_long column;
    zr_long user;
};

// Applications pass and store the numbers.
static_assert(SCAN_KEEP_EOL == 0x1 && SCAN_BLOCK_COMMENT == 0x2 && SCAN_LINE_COMMENT == 0x4 &&
              SCAN_BANG_COMMENT == 0x8);
static_assert(SCAN_SIGNED_NUMBERS == 0x10 && SCAN_COMPOSE_RELATIONS == 0x20 && SCAN_LOWER == 0x40 &&
              SCAN_UPPER == 0x80);
static_assert(SCAN_BACKSLASH_JOIN == 0x100 && SCAN_HASH_STYLE == 0x200 && SCAN_UMLAUTS == 0x400);
static_assert(SCAN_APOSTROPHE_NAMES == 0x800 && SCAN_KEYWORDS_NOCASE == 0x1000 && SCAN_TRACE == 0x8000);
static_assert(SCAN_STAR_POWER == 0x10000 && SCAN_STRING_ESCAPES == (0x20000 | 0x40000) && SCAN_STRING_JOIN == 0x80000);
static_assert(SCAN_ERROR_NULL == -1 && SCAN_ERROR_NONE == 0 && SCAN_ERROR_NAME_TOO_LONG == 1);
static_assert(SCAN_ERROR_STRING_TOO_LONG == 2 && SCAN_ERROR_CHARACTER_OPEN == 3 && SCAN_ERROR_STRING_OPEN == 4);
static_assert(SCAN_ERROR_NUMBER == 5 && SCAN_ERROR_EXPONENT == 6 && SCAN_ERROR_ESCAPE == 7);
static_assert(SCAN_ERROR_LONG_TOO_LARGE == 9 && SCAN_ERROR_DOUBLE_TOO_LARGE == 10 && SCAN_ERROR_DOUBLE_TOO_SMALL == 11);
static_assert(SCAN_KIND_VOID == 0 && SCAN_KIND_LETTER == 1 && SCAN_KIND_DIGIT == 2 && SCAN_KIND_PRINTABLE == 3);
static_assert(SCAN_KIND_BLANK == 4 && SCAN_KIND_KEYWORD == 5 && SCAN_KIND_IDENTIFIER == 6 && SCAN_KIND_LONG == 7);
static_assert(SCAN_KIND_DOUBLE == 8 && SCAN_KIND_CHARACTER == 9 && SCAN_KIND_STRING == 10 && SCAN_KIND_QUOTED == 11);

// Its fields stand in this order, without room that others could not know of.
static_assert(sizeof ZrScanToken::text == 4096 && offsetof(ZrScanToken, text) == 0);
static_assert(offsetof(ZrScanToken, doubleValue) == 4096 && offsetof(ZrScanToken, longValue) == 4104);
static_assert(offsetof(ZrScanToken, row) == 4108 && offsetof(ZrScanToken, column) == 4112);
static_assert(offsetof(ZrScanToken, user) == 4116 && sizeof(ZrScanToken) == 4120);

class Scanner : public testing::Test {
protected:
    ~Scanner() override { scan_close(handle); }

    template <class Text>
    void Open(zr_long options, const Text &text, const char **keywords = nullptr) {
        scan_close(handle);
        SetSource(text);
        handle = scan_open_with_userdata(Next, Taken, options, keywords);
        ASSERT_NE(handle, nullptr);
    }

    // The next token; kind, row and column are those of nobody if the call leaves them.
    Token Read() {
        zr_long kind = untouched;
        raw->row = raw->column = untouched;
        std::memset(raw->text, 'U', sizeof raw->text);
        const int error = scan_token(handle, &kind, raw.get());
        const void *end = std::memchr(raw->text, 0, sizeof raw->text);
        const std::size_t length =
            end != nullptr ? static_cast<std::size_t>(static_cast<const char *>(end) - raw->text) : sizeof raw->text;
        return {error,       kind,     string(raw->text, length), raw->longValue, raw->doubleValue, raw->row,
                raw->column, raw->user};
    }

    // All tokens up to the end, "kind:text", with the error in front of those that have one; parted by blanks.
    string All() {
        string all;
        for (int i = 0; i < 1000; ++i) {
            const Token token = Read();
            if (token.kind == SCAN_KIND_END)
                return all;
            all += all.empty() ? "" : " ";
            all += token.error != 0 ? "!" + std::to_string(token.error) + "!" : "";
            all += std::to_string(token.kind) + ":" + token.text;
        }
        return all + " and no end";
    }
    string All(zr_long options, const string &text, const char **keywords = nullptr) {
        Open(options, text, keywords);
        return All();
    }
    Token First(zr_long options, const string &text, const char **keywords = nullptr) {
        Open(options, text, keywords);
        return Read();
    }

    CZrScanner *handle = nullptr;
    std::unique_ptr<ZrScanToken> raw = std::make_unique<ZrScanToken>();
};

TEST_F(Scanner, PlainText_GivesTheOrdinaryKinds) {
    EXPECT_EQ(All(0, "abc 12 3.5 'x' \"s\""), "6:abc 7:12 8:3.5 9:x 10:s");
    EXPECT_EQ(Read().kind, 44); // and so on for ever
    EXPECT_EQ(Read().kind, 44);
    EXPECT_EQ(Read().text, " ");
}

TEST_F(Scanner, Symbols_EachHaveTheirKind) {
    EXPECT_EQ(
        All(0, "=#,;.:+-*/^<>(){}[]$@%&?!|~"),
        "12:= 13:# 14:, 15:; 16:. 17:: 18:+ 19:- 20:* 21:/ 22:^ 23:< 24:> 27:( 28:) 29:{ 30:} 31:[ 32:] 33:$ 34:@ 35:% "
        "36:& 37:? 38:! 39:| 41:~");
    EXPECT_EQ(All(0, "` \x7f \x80 \xff"), "0:` 0:\x7f 0:\x80 0:\xff");
    EXPECT_EQ(All(SCAN_HASH_STYLE, "\""), "42:\"");
}

TEST_F(Scanner, UserFunction_IsAskedForNamesAndSymbolsBeforeMoreIsRead) {
    Open(SCAN_COMPOSE_RELATIONS, "ab =( <= 'c' 1 \"s\" + - . / * ! \\");
    EXPECT_EQ(Read().user, 3); // a name ends where another character is read
    EXPECT_EQ(Read().user, 4); // "=" is the character read ahead
    EXPECT_EQ(Read().user, 5);
    const Token composed = Read();
    EXPECT_EQ(composed.text, "<=");
    EXPECT_EQ(composed.user, 7);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(Read().user, 0) << i;
    const Token end = Read();
    EXPECT_EQ(end.kind, 44);
    EXPECT_EQ(end.user, static_cast<zr_long>(characters.size()));
}

TEST_F(Scanner, UserFunction_IsAskedOnceForAToken) {
    static zr_long asked;
    asked = 0;
    SetSource("a if <= ^ ** ~\n\x7f \" `q' 'c' 1 + " + string(5000, 'n') + " >x");
    const char *keywords[] = {"if", nullptr};
    handle = scan_open_with_userdata(
        Next, [] { return ++asked; }, SCAN_COMPOSE_RELATIONS | SCAN_STAR_POWER | SCAN_KEEP_EOL | SCAN_HASH_STYLE,
        keywords);
    const zr_long expected[][2] = {{6, 1},  {5, 2}, {25, 3}, {22, 4}, {22, 0}, {41, 5}, {43, 6}, {0, 7},  {42, 0},
                                   {11, 0}, {9, 0}, {7, 0},  {18, 0}, {6, 8},  {24, 9}, {6, 10}, {44, 11}};
    for (const auto &[kind, user] : expected) {
        const Token token = Read();
        EXPECT_EQ(token.kind, kind) << user;
        EXPECT_EQ(token.user, user) << kind;
    }
    zr_long kind = untouched;
    char c = 'Q';
    scan_character(handle, &kind, &c);
    EXPECT_EQ(asked, 11);
}

TEST_F(Scanner, SignedNumbers_TakeTheSignOfASumToo) {
    EXPECT_EQ(All(0, "a+1"), "6:a 18:+ 7:1");
    EXPECT_EQ(All(SCAN_SIGNED_NUMBERS, "a+1"), "6:a 7:1");
    EXPECT_EQ(First(SCAN_SIGNED_NUMBERS, "-12").long_value, -12);
    EXPECT_EQ(First(SCAN_SIGNED_NUMBERS, "+12").text, "12");
    EXPECT_EQ(First(SCAN_SIGNED_NUMBERS, "-.5").double_value, -0.5);
    EXPECT_EQ(First(SCAN_SIGNED_NUMBERS, "-.5").text, "-.5");
    EXPECT_EQ(First(SCAN_SIGNED_NUMBERS, "+.5").double_value, 0.5);
    EXPECT_EQ(First(SCAN_SIGNED_NUMBERS, "+.5").text, ".5");
    EXPECT_EQ(First(0, "+.5").kind, 18);
    EXPECT_TRUE(std::signbit(First(SCAN_SIGNED_NUMBERS, "-0.0").double_value));
    EXPECT_EQ(All(SCAN_SIGNED_NUMBERS, "- 1 -x --1"), "19:- 7:1 19:- 6:x 19:- 7:-1");
}

TEST_F(Scanner, SignAndDot_OweTheDot) {
    EXPECT_EQ(All(SCAN_SIGNED_NUMBERS, "+.x -."), "18:+ 16:. 6:x 19:- 16:.");
    Open(SCAN_SIGNED_NUMBERS, " +.x");
    const Token sign = Read();
    EXPECT_EQ(sign.column, 1);
    const std::size_t before = taken;
    const Token dot = Read();
    EXPECT_EQ(taken, before); // the source is not looked at
    EXPECT_EQ(dot.error, 0);
    EXPECT_EQ(dot.user, 0);
    EXPECT_EQ(dot.row, untouched);
    EXPECT_EQ(dot.column, untouched);
    EXPECT_EQ(Read().column, 3);
    Open(SCAN_SIGNED_NUMBERS, "+.x");
    Read();
    scan_reset(handle);         // forgets the dot
    EXPECT_EQ(Read().kind, 44); // and the "x" that was read ahead
}

TEST_F(Scanner, Numbers_TakeWhatBelongsToThem) {
    EXPECT_EQ(All(0, ".5 . 1. 1.e5 1e5 1E+5 1e-5 1.2.3"), "8:.5 16:. 8:1. 8:1.e5 8:1e5 8:1e+5 8:1e-5 8:1.2 8:.3");
    EXPECT_EQ(First(0, "1e5").double_value, 1e5);
    EXPECT_EQ(First(0, "1.").double_value, 1.0);
    EXPECT_EQ(First(0, ".25E2").double_value, 25.0);
    EXPECT_EQ(First(0, "12").long_value, 12);
    EXPECT_EQ(First(0, "12").double_value, 0.0);
    EXPECT_EQ(All(0, "0x1f 5a"), "7:0 6:x1f 7:5 6:a");
    EXPECT_EQ(First(SCAN_UPPER, "1e5").text, "1e5");
}

TEST_F(Scanner, ExponentWithoutDigits_IsAnErrorThatLeavesTheKind) {
    for (const char *text : {"1e", "1.5e+ ", ".5e-x", "7ex"}) {
        const Token token = First(0, text);
        EXPECT_EQ(token.error, 6) << text;
        EXPECT_EQ(token.kind, untouched) << text;
        EXPECT_EQ(token.double_value, 0.0) << text;
        EXPECT_EQ(token.long_value, 0) << text;
    }
    EXPECT_EQ(First(0, ".5e-x").text, ".5e-");
}

TEST_F(Scanner, Longs_Have32Bits) {
    EXPECT_EQ(First(0, "2147483647").long_value, 2147483647);
    EXPECT_EQ(First(0, "2147483647").kind, 7);
    EXPECT_EQ(First(0, "2147483648").kind, 8);
    EXPECT_EQ(First(0, "4294967296").kind, 8);
    EXPECT_EQ(First(0, "4294967296").double_value, 4294967296.0);
    EXPECT_EQ(First(0, "4294967296").long_value, 0);
    EXPECT_EQ(First(SCAN_SIGNED_NUMBERS, "-2147483648").long_value, INT_MIN);
    EXPECT_EQ(First(SCAN_SIGNED_NUMBERS, "-2147483648").kind, 7);
    EXPECT_EQ(First(SCAN_SIGNED_NUMBERS, "-2147483649").double_value, -2147483649.0);
}

TEST_F(Scanner, NumbersBeyondADouble_AreErrors) {
    const struct {
        string text;
        int error;
    } cases[] = {{string(400, '9'), 9}, {"1e309", 10},         {"1e-400", 11},
                 {"0.0e-400", 0},       {"4.9e-324", 0},       {string(400, '9') + ".0", 10},
                 {"1e99999999999", 10}, {"1e-99999999999", 11}};
    for (const auto &[text, error] : cases) {
        const Token token = First(0, text);
        EXPECT_EQ(token.error, error) << text;
        EXPECT_EQ(token.kind, error == 0 ? 8 : untouched) << text;
        EXPECT_EQ(token.text, text);
        EXPECT_TRUE(error == 0 || token.double_value == 0.0) << text;
    }
}

TEST_F(Scanner, HostileExponents_AreReadToTheirEnd) {
    const string zeros(4000, '0');
    const string nines(4000, '9');
    EXPECT_EQ(First(0, "1e" + zeros + "5").double_value, 1e5);
    EXPECT_EQ(First(0, "1e-" + zeros + "5").double_value, 1e-5);
    EXPECT_EQ(First(0, "1e" + nines).error, 10);
    EXPECT_EQ(First(0, "1e-" + nines).error, 11);
    const Token zero = First(0, "0e" + nines);
    EXPECT_EQ(zero.error, 0);
    EXPECT_EQ(zero.kind, 8);
    EXPECT_EQ(zero.double_value, 0.0);
    for (const char *start : {"1e", "1e-", "0e+", "1.5E"}) {
        const string number = start + string(10000, '3');
        const Token token = First(0, number + " x");
        EXPECT_EQ(token.error, 10) << start;
        EXPECT_EQ(token.kind, untouched) << start;
        EXPECT_EQ(token.text.size(), 4096U) << start;
        EXPECT_EQ(Read().column, static_cast<zr_long>(number.size() + 1)) << start;
    }
}

TEST_F(Scanner, NumbersOfAnyLength_AreTheNearestDoubles) {
    std::mt19937 random(5);
    for (int i = 0; i < 3000; ++i) {
        string number = random() % 2 == 0 ? "-" : "";
        const std::size_t digits = 1 + random() % 24;
        const std::size_t point = random() % (digits + 1);
        for (std::size_t k = 0; k < digits; ++k) {
            number += k == point ? "." : "";
            number += static_cast<char>('0' + random() % 10);
        }
        const Token token = First(SCAN_SIGNED_NUMBERS, number);
        const double expected = std::strtod(number.c_str(), nullptr);
        ASSERT_EQ(token.error, 0) << number;
        ASSERT_EQ(token.text, number);
        if (point < digits || std::abs(expected) > 2147483648.0) {
            ASSERT_EQ(token.kind, 8) << number;
            ASSERT_EQ(std::memcmp(&token.double_value, &expected, sizeof expected), 0) << number;
        } else if (expected != 2147483648.0) {
            ASSERT_EQ(token.kind, 7) << number;
            ASSERT_EQ(token.long_value, expected) << number;
        }
    }
    // Its digits alone are more than a double holds: their quotient would not be the nearest one.
    EXPECT_EQ(First(0, "91399620.84340797").double_value, 91399620.84340797);
}

TEST_F(Scanner, AnEarlierOverflow_DoesNotSpoilALaterZero) {
    Open(0, "1e-999 0.0 1e999 0.0 2147483647");
    EXPECT_EQ(Read().error, 11);
    EXPECT_EQ(Read().error, 0);
    EXPECT_EQ(Read().error, 10);
    const Token zero = Read();
    EXPECT_EQ(zero.error, 0);
    EXPECT_EQ(zero.kind, 8);
    EXPECT_EQ(Read().kind, 7);
}

TEST_F(Scanner, Numbers_IgnoreTheProcessLocale) {
    bool comma = false;
    for (const char *name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "German_Germany.1252", "fr_FR.UTF-8"})
        comma = comma || (std::setlocale(LC_ALL, name) != nullptr && *std::localeconv()->decimal_point == ',');
    const string all = All(0, "1.5 1,5");
    const double value = First(0, "1.00000000000000000000000000000000000000005").double_value;
    const double half = First(0, "2.5").double_value;
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(all, "8:1.5 7:1 14:, 7:5");
    EXPECT_EQ(value, 1.0);
    EXPECT_EQ(half, 2.5);
    if (!comma)
        GTEST_SKIP() << "no locale with a decimal comma is installed";
}

TEST_F(Scanner, NumberAtTheLimit_IsConvertedWithoutATerminator) {
    EXPECT_EQ(First(0, string(4094, '0') + "7").long_value, 7);
    const Token full = First(0, string(4095, '0') + "7");
    EXPECT_EQ(full.error, 0);
    EXPECT_EQ(full.kind, 7);
    EXPECT_EQ(full.long_value, 7);
    EXPECT_EQ(full.text.size(), 4096U); // no terminator
    const Token large = First(0, string(4096, '1') + " x");
    EXPECT_EQ(large.error, 9);
    EXPECT_EQ(large.kind, untouched);
    for (const std::size_t length : {std::size_t{4097}, std::size_t{100000}}) {
        const Token longer = First(0, string(length, '1') + " x");
        EXPECT_EQ(longer.error, 10);
        EXPECT_EQ(longer.kind, untouched);
        EXPECT_EQ(longer.text, string(4096, '1'));
        EXPECT_EQ(Read().column, static_cast<zr_long>(length + 1)); // it was read to its end
    }
    EXPECT_EQ(First(0, "0." + string(4094, '0')).error, 0);
    EXPECT_EQ(First(0, "0." + string(4095, '0')).error, 10);
    EXPECT_EQ(First(0, string(4096, '0') + "e1").error, 10);
    EXPECT_EQ(First(0, string(4096, '0') + "e").error, 10); // rather than without digits
    EXPECT_EQ(First(0, string(4095, '0') + "e+").error, 10);
    EXPECT_EQ(First(0, string(4095, '0') + "e").error, 6);
    EXPECT_EQ(First(0, string(4096, '0') + ".").error, 10);
    EXPECT_EQ(First(0, string(4094, '0') + "e+1").error, 10);
}

TEST_F(Scanner, ComposedRelations_HaveOneTokenOfTwoCharacters) {
    EXPECT_EQ(All(SCAN_COMPOSE_RELATIONS, "<= =< >= => <> >< == << >> < > = <<= =a"),
              "25:<= 25:=< 26:>= 26:=> 13:<> 13:>< 12:== 23:<< 24:>> 23:< 24:> 12:= 23:<< 12:= 12:= 6:a");
    EXPECT_EQ(All(0, "<= =< >= => <> >< =="), "23:< 12:= 12:= 23:< 24:> 12:= 12:= 24:> 23:< 24:> 24:> 23:< 12:= 12:=");
}

TEST_F(Scanner, HashStyle_HasCommentsAndQuotedStrings) {
    EXPECT_EQ(All(0, "a # b"), "6:a 13:# 6:b");
    EXPECT_EQ(All(SCAN_HASH_STYLE, "a # b\nc `d e' \" `x\\'y' ``'"), "6:a 6:c 11:d e 42:\" 11:x\\'y 11:`");
    EXPECT_EQ(All(SCAN_HASH_STYLE | SCAN_KEEP_EOL, "a # b\nc"), "6:a 43:  6:c");
    EXPECT_EQ(First(SCAN_HASH_STYLE, "`d e'").long_value, 3);
    EXPECT_EQ(First(SCAN_HASH_STYLE, "`\\\\'").text, "\\\\");
    const Token open = First(SCAN_HASH_STYLE, "`abc\n");
    EXPECT_EQ(open.error, 4);
    EXPECT_EQ(open.kind, 11);
    EXPECT_EQ(open.text, "abc");
    EXPECT_EQ(open.long_value, 3);
}

TEST_F(Scanner, QuotedStringAtTheLimit_HasNoTerminator) {
    const Token fits = First(SCAN_HASH_STYLE, "`" + string(4095, 'q') + "'");
    EXPECT_EQ(fits.error, 0);
    EXPECT_EQ(fits.long_value, 4095);
    for (const std::size_t length : {std::size_t{4096}, std::size_t{4097}, std::size_t{100000}}) {
        const Token full = First(SCAN_HASH_STYLE, "`" + string(length, 'q') + "' x");
        EXPECT_EQ(full.error, 2);
        EXPECT_EQ(full.kind, 11);
        EXPECT_EQ(full.text, string(4096, 'q'));
        EXPECT_EQ(full.long_value, 0);
        EXPECT_EQ(Read().column, static_cast<zr_long>(length + 3));
    }
    EXPECT_EQ(First(SCAN_HASH_STYLE, "`" + string(4096, 'q') + "\n").error, 2); // rather than open
    EXPECT_EQ(First(SCAN_HASH_STYLE, "`" + string(4095, 'q') + "\\''").error, 2);
}

TEST_F(Scanner, Comments_ArePassedOver) {
    EXPECT_EQ(All(0, "/*a*/ //b"), "21:/ 20:* 6:a 20:* 21:/ 21:/ 21:/ 6:b");
    EXPECT_EQ(All(SCAN_BLOCK_COMMENT, "/*a\n*/b /*/c /* /* */ d /x //"), "6:b 6:c 6:d 21:/ 6:x 21:/ 21:/");
    EXPECT_EQ(All(SCAN_BLOCK_COMMENT, "a /* open *"), "6:a");
    EXPECT_EQ(All(SCAN_LINE_COMMENT, "a // b\nc / d // e"), "6:a 6:c 21:/ 6:d");
    EXPECT_EQ(All(SCAN_LINE_COMMENT | SCAN_KEEP_EOL, "a // b\nc"), "6:a 43:  6:c");
    EXPECT_EQ(First(SCAN_LINE_COMMENT | SCAN_KEEP_EOL, "// b\nc").column, 4); // its line feed
    EXPECT_EQ(All(SCAN_BANG_COMMENT, "a ! b\nc !"), "6:a 6:c");
    EXPECT_EQ(All(0, "a ! b"), "6:a 38:! 6:b");
    Open(SCAN_BLOCK_COMMENT, "/* 1\n2 */ a");
    const Token token = Read();
    EXPECT_EQ(token.row, 1);
    EXPECT_EQ(token.column, 5);
}

TEST_F(Scanner, StarPower_ReadsTwoStarsAsOneToken) {
    EXPECT_EQ(All(SCAN_STAR_POWER, "a**b*c***"), "6:a 22:^ 6:b 20:* 6:c 22:^ 20:*");
    EXPECT_EQ(All(0, "a**b"), "6:a 20:* 20:* 6:b");
}

TEST_F(Scanner, LineFeeds_AreBlanksOrTokens) {
    EXPECT_EQ(All(0, "a\n\nb"), "6:a 6:b");
    EXPECT_EQ(All(SCAN_KEEP_EOL, "a\n\nb"), "6:a 43:  43:  6:b");
}

TEST_F(Scanner, ControlCharacters_AreBlanks) {
    EXPECT_EQ(All(0, "a\tb\r\n\x01\x1f\x0b"
                     "c"),
              "6:a 6:b 6:c");
    EXPECT_EQ(All(0, "\"a\tb\rc\""), "10:a b c");
    for (char c = 1; c < ' '; ++c) {
        const char *expected = c == '\n' ? "6:a 43:  9:\n" : "6:a 9: ";
        EXPECT_EQ(All(SCAN_KEEP_EOL, string("a") + c + "'" + c + "'"), expected) << int{c};
    }
}

TEST_F(Scanner, Folding_ChangesWhatIsRead) {
    EXPECT_EQ(All(SCAN_UPPER, "abc 'x' \"Str\" [`"), "6:ABC 9:X 10:STR 31:[ 0:`");
    EXPECT_EQ(All(SCAN_LOWER, "ABC 'X' \"Str\" @Z"), "6:abc 9:x 10:str 34:@ 6:z");
    EXPECT_EQ(All(SCAN_LOWER | SCAN_UPPER, "aB"), "6:ab");           // lower wins
    EXPECT_EQ(All(SCAN_UPPER, "'\\n' '\\x4a'"), "!7!9:\\N 9:\\X4A"); // of an escape, too
    EXPECT_EQ(All(SCAN_UPPER | SCAN_STRING_ESCAPES, "\"a\\nb\""), "10:A\\NB");
    EXPECT_EQ(All(SCAN_LOWER, "'\\N'"), "9:\\n");
    const char *keywords[] = {"ABC", nullptr};
    EXPECT_EQ(First(SCAN_UPPER, "abc", keywords).kind, 5);
    EXPECT_EQ(First(SCAN_LOWER, "ABC", keywords).kind, 6);
}

TEST_F(Scanner, Umlauts_AreLettersByOption) {
    const string lower = "\x84\x94\x81\xe1";
    const string upper = "\x8e\x99\x9a\xe1";
    EXPECT_EQ(All(SCAN_UMLAUTS, lower + " " + upper + "a1"), "6:" + lower + " 6:" + upper + "a1");
    EXPECT_EQ(All(SCAN_UMLAUTS | SCAN_LOWER, upper), "6:" + lower);
    EXPECT_EQ(All(SCAN_UMLAUTS | SCAN_UPPER, lower), "6:" + upper);
    EXPECT_EQ(All(0, "\x84\x8e"), "0:\x84 0:\x8e");
    EXPECT_EQ(All(SCAN_UPPER, "\x84"), "0:\x84"); // nor do they fold
    EXPECT_EQ(All(SCAN_LOWER, "\"\x8e\x99\x9a\""), "10:\x8e\x99\x9a");
    for (int c = 0x7F; c <= 0xFF; ++c) { // no others are
        const bool is_letter = (lower + upper).find(static_cast<char>(c)) != string::npos;
        const string text(1, static_cast<char>(c));
        EXPECT_EQ(First(SCAN_UMLAUTS, text).kind, is_letter ? 6 : 0) << c;
        EXPECT_EQ(First(0, text).kind, 0) << c;
        EXPECT_TRUE(is_letter || First(SCAN_UMLAUTS | SCAN_UPPER, text).text == text) << c;
        EXPECT_TRUE(is_letter || First(SCAN_UMLAUTS | SCAN_LOWER, text).text == text) << c;
    }
}

TEST_F(Scanner, BytesOfASignedSource_AreClassifiedByRange) {
    for (const zr_long options : {zr_long{0}, zr_long{SCAN_UMLAUTS | SCAN_LOWER}}) {
        scan_close(handle);
        SetSource("\x84 \"\xe1\" \x80", true);
        handle = scan_open(Next, options, nullptr);
        const Token letter = Read();
        EXPECT_EQ(letter.kind, 0);
        EXPECT_EQ(letter.text, " "); // it lies below the blank
        EXPECT_EQ(All(), "10:\xe1 0: ");
    }
    Open(0, std::vector<int>{'a', ' ', -1, 'b', 'c'});
    EXPECT_EQ(All(), "6:a"); // byte FF ends the input
    EXPECT_EQ(Read().kind, 44);
    EXPECT_EQ(taken, 3U); // and the end is not asked again
}

TEST_F(Scanner, Characters_MayBeAnyInt) {
    const std::vector<int> text = {'\'', 1000, '\'', 256, INT_MAX, INT_MIN, -2, '"', 256 + 'A', '"', 'a', 256 + 'b'};
    Open(SCAN_UPPER | SCAN_UMLAUTS, text);
    const Token character = Read();
    EXPECT_EQ(character.kind, 9);
    EXPECT_EQ(character.long_value, 1000);
    EXPECT_EQ(Read().kind, 0);
    EXPECT_EQ(Read().text, "\xff");
    EXPECT_EQ(Read().text, " ");
    EXPECT_EQ(Read().text, " ");
    EXPECT_EQ(All(), "10:A 6:A 0:b");
}

// Nor are those what their low bytes mean.
TEST_F(Scanner, CharactersBeyondBytes_HaveNoMeaning) {
    constexpr zr_long options = SCAN_UMLAUTS | SCAN_COMPOSE_RELATIONS | SCAN_STAR_POWER | SCAN_BLOCK_COMMENT |
                                SCAN_LINE_COMMENT | SCAN_APOSTROPHE_NAMES | SCAN_KEEP_EOL;
    for (const char c : {' ', '\n', '1', '.', '<', '*', '/', '\\', '"', '\'', '!', '_', '\x84'}) {
        const int byte = static_cast<unsigned char>(c);
        Open(options, std::vector<int>{'<', 256 + byte, '*', 65536 + byte, '/', 256 + byte, '1', 256 + byte});
        EXPECT_EQ(All(), string("23:< 0:") + c + " 20:* 0:" + c + " 21:/ 0:" + c + " 7:1 0:" + c) << byte;
        Open(options | SCAN_STRING_ESCAPES, std::vector<int>{'"', 256 + byte, 'n', '"', 'a'});
        EXPECT_EQ(All(), string("10:") + c + "n 6:a") << byte;
        Open(SCAN_HASH_STYLE, std::vector<int>{'`', 256 + byte, '\'', '\'', 'b', 256 + byte, 'c'});
        EXPECT_EQ(All(), string("11:") + c + " !3!9:b 0:" + c + " 6:c") << byte;
    }
}

TEST_F(Scanner, TheEnd_IsZeroOrMinusOne) {
    Open(0, std::vector<int>{'a', 0, 'b'});
    EXPECT_EQ(All(), "6:a");
    Open(0, std::vector<int>{'a', -1, 'b'});
    EXPECT_EQ(All(), "6:a");
    EXPECT_EQ(First(0, "").kind, 44);
    EXPECT_EQ(raw->row, 0);
    EXPECT_EQ(raw->column, 0);
}

TEST_F(Scanner, ApostropheNames_HaveNoCharacterLiterals) {
    EXPECT_EQ(All(SCAN_APOSTROPHE_NAMES, "a' 'b' '1 1'"), "6:a' 6:'b' 6:'1 7:1 6:'");
    EXPECT_EQ(All(0, "a'b'"), "6:a 9:b");
}

TEST_F(Scanner, CharacterLiterals_HaveTheirValues) {
    const struct {
        const char *text;
        zr_long value;
        const char *content;
        int error;
    } cases[] = {{"'x'", 'x', "x", 0},
                 {"'\\101'", 65, "\\101", 0},
                 {"'\\7'", 7, "\\7", 0},
                 {"'\\99'", 81, "\\99", 0}, // eights and nines count
                 {"'\\1234'", 83, "\\123", 3},
                 {"'\\x41'", 65, "\\x41", 0},
                 {"'\\X4a'", 74, "\\X4a", 0},
                 {"'\\xaBc'", 0xABC, "\\xaBc", 0},
                 {"'\\xaBcd'", 0xABC, "\\xaBc", 3},
                 {"'\\xg'", 0, "\\x", 3},
                 {"'\\x'", 0, "\\x", 0},
                 {"'\\a'", 7, "\\a", 0},
                 {"'\\b'", 8, "\\b", 0},
                 {"'\\f'", 12, "\\f", 0},
                 {"'\\n'", 10, "\\n", 0},
                 {"'\\r'", 13, "\\r", 0},
                 {"'\\t'", 9, "\\t", 0},
                 {"'\\v'", 11, "\\v", 0},
                 {"'\\''", '\'', "\\'", 0},
                 {"'\\\"'", '"', "\\\"", 0},
                 {"'\\\\'", '\\', "\\\\", 0},
                 {"'\\q'", 32, "\\q", 7},
                 {"'\\N'", 32, "\\N", 7}, // the case counts
                 {"'\\q", 32, "\\q", 3},
                 {"'ab'", 'a', "a", 3},
                 {"''", '\'', "'", 3},
                 {"'''", '\'', "'", 0},
                 {"'\n'", '\n', "\n", 0},
                 {"'", 0, "", 3},
                 {"'\\", 32, "\\", 3}};
    for (const auto &[text, value, content, error] : cases) {
        const Token token = First(0, text);
        EXPECT_EQ(token.kind, 9) << text;
        EXPECT_EQ(token.long_value, value) << text;
        EXPECT_EQ(token.text, content) << text;
        EXPECT_EQ(token.error, error) << text;
    }
}

TEST_F(Scanner, Strings_EndAtTheirQuote) {
    EXPECT_EQ(First(0, "\"abc\"").long_value, 3);
    EXPECT_EQ(All(0, "\"\" \"a'b`c\""), "10: 10:a'b`c");
    EXPECT_EQ(All(0, "\"a\\\"b\\\\\" x"), "10:a\\\"b\\\\ 6:x"); // backslashes stay, one hides a quote
    EXPECT_EQ(All(0, "\"a\\bc\" x"), "10:a\\bc 6:x");           // and nothing but the character behind it
    const Token open = First(0, "\"abc\n");
    EXPECT_EQ(open.error, 4);
    EXPECT_EQ(open.kind, 10);
    EXPECT_EQ(open.text, "abc");
    EXPECT_EQ(open.long_value, 3);
    EXPECT_EQ(First(0, "\"abc").error, 4);
}

TEST_F(Scanner, StringEscapes_AreTaken) {
    for (const zr_long option : {0x20000, 0x40000, 0x60000}) {
        EXPECT_EQ(All(option, "\"a\\nb\" \"\\\\\" \"\\q\""), "10:a\nb 10:\\\\ 10:\\q");
        EXPECT_EQ(All(option, "\"a\\\"b"), "10:a\\\" 6:b");      // the quote closes all the same
        EXPECT_EQ(All(option, "\"a\\\nb\" c"), "10:a\\\nb 6:c"); // nor does the line end there
        EXPECT_EQ(All(option, "\"a\\\\\nb"), "!4!10:a\\\\ 6:b");
    }
    const Token open = First(SCAN_STRING_ESCAPES, "\"a\\"); // the end is what the backslash escapes
    EXPECT_EQ(open.error, 4);
    EXPECT_EQ(open.text, "a\\");
    EXPECT_EQ(open.long_value, 3);
    Open(SCAN_STRING_ESCAPES, "\"a\\nb\" c"); // the line feed counts for the place
    EXPECT_EQ(Read().long_value, 3);
    const Token behind = Read();
    EXPECT_EQ(behind.row, 1);
    EXPECT_EQ(behind.column, 3);
}

TEST_F(Scanner, JoinedStrings_AreOne) {
    const Token token = First(SCAN_STRING_JOIN, "\"ab\"\\ \n \"cd\"\\\"e\" f");
    EXPECT_EQ(token.text, "abcde");
    EXPECT_EQ(token.long_value, 5);
    EXPECT_EQ(Read().text, "f");
    EXPECT_EQ(All(0, "\"ab\"\\\"cd\""), "10:ab 77:\\ 10:cd");
    EXPECT_EQ(First(SCAN_STRING_JOIN, "\"ab\"\\").error, 4);
    EXPECT_EQ(First(SCAN_STRING_JOIN, "\"ab\"\\xcd\"").text, "abcd"); // whatever stands where the quote should
    EXPECT_EQ(All(SCAN_STRING_JOIN, "\"ab\n\\\"cd\""), "!4!10:ab 77:\\ 10:cd"); // none behind an error
    EXPECT_EQ(All(SCAN_STRING_JOIN, "\"ab\" \\\"cd\""), "10:ab 77:\\ 10:cd");   // nor behind a blank
    EXPECT_EQ(All(SCAN_STRING_JOIN, "\"ab\"\\\"cd\n\"e\""), "!4!10:abcd 10:e");
    // A line feed that is a token is no blank: it stands where the quote should.
    EXPECT_EQ(All(SCAN_STRING_JOIN | SCAN_KEEP_EOL, "\"ab\"\\ \ncd\" e"), "10:abcd 6:e");
    EXPECT_EQ(All(SCAN_STRING_JOIN | SCAN_HASH_STYLE, "`a'\\`b'"), "11:a 77:\\ 11:b"); // of double quotes only
}

TEST_F(Scanner, AMillionJoinedStrings_AreReadInALoop) {
    string text;
    for (int i = 0; i < 1000000; ++i)
        text += i % 1000 == 0 ? "\"a\"\\" : "\"\"\\";
    const Token token = First(SCAN_STRING_JOIN, text + "\"b\" c");
    EXPECT_EQ(token.error, 0);
    EXPECT_EQ(token.text, string(1000, 'a') + "b");
    EXPECT_EQ(Read().text, "c");
}

TEST_F(Scanner, StringAtTheLimit_HasNoTerminator) {
    const Token fits = First(0, "\"" + string(4095, 's') + "\"");
    EXPECT_EQ(fits.error, 0);
    EXPECT_EQ(fits.long_value, 4095);
    for (const std::size_t length : {std::size_t{4096}, std::size_t{4097}, std::size_t{100000}}) {
        const Token full = First(0, "\"" + string(length, 's') + "\" x");
        EXPECT_EQ(full.error, 2);
        EXPECT_EQ(full.kind, 10);
        EXPECT_EQ(full.text, string(4096, 's'));
        EXPECT_EQ(full.long_value, 0);
        EXPECT_EQ(raw->doubleValue, 0.0);
        EXPECT_EQ(Read().text, "x");
    }
    EXPECT_EQ(First(0, "\"" + string(4096, 's') + "\n").error, 2); // rather than open
    EXPECT_EQ(First(SCAN_STRING_JOIN, "\"" + string(4095, 's') + "\"\\\"s\"").error, 2);
    EXPECT_EQ(First(SCAN_STRING_ESCAPES, "\"" + string(4095, 's') + "\\\\\"").error, 2);
    // Want of room shows late behind an escape, so that the next part is read still.
    EXPECT_EQ(All(0xE0000, "\"" + string(4096, 's') + "\\\\\"\\\"t\" x").substr(4103), "6:x");
    EXPECT_EQ(All(0xE0000, "\"" + string(4097, 's') + "\"\\\"t\" x").substr(4103), "77:\\ 10:t 6:x");
    for (const char *escape : {"\\q", "\\n"}) // not behind these
        EXPECT_EQ(All(0xE0000, "\"" + string(4096, 's') + escape + "\"\\\"t\" x").substr(4103), "77:\\ 10:t 6:x");
    EXPECT_EQ(All(0xE0000, "\"" + string(4095, 's') + "\\q\"\\\"t\" x").substr(4103), "77:\\ 10:t 6:x");
    EXPECT_EQ(All(0xE0000, "\"" + string(4094, 's') + "\\q\"\\\"t\" x").substr(4103), "6:x");
}

TEST_F(Scanner, NameAtTheLimit_IsLookedUpNoMore) {
    const string fits(4095, 'n');
    const string full(4096, 'n');
    const char *keywords[] = {"a", fits.c_str(), full.c_str(), nullptr};
    EXPECT_EQ(First(0, fits, keywords).kind, 5);
    EXPECT_EQ(First(0, fits).long_value, 4095);
    for (const std::size_t length : {std::size_t{4096}, std::size_t{4097}, std::size_t{100000}}) {
        const Token token = First(0, string(length, 'n') + " x", keywords);
        EXPECT_EQ(token.error, 1);
        EXPECT_EQ(token.kind, 6);
        EXPECT_EQ(token.text, full);
        EXPECT_EQ(token.long_value, 0);
        EXPECT_EQ(token.double_value, 0.0);
        EXPECT_EQ(token.user, static_cast<zr_long>(length + 1));
        const Token next = Read();
        EXPECT_EQ(next.error, 0);
        EXPECT_EQ(next.column, static_cast<zr_long>(length + 1));
    }
}

TEST_F(Scanner, Backslash_JoinsLinesOrHasNoKind) {
    EXPECT_EQ(All(SCAN_BACKSLASH_JOIN | SCAN_KEEP_EOL, "a \\ \t\n b \\\\ c"), "6:a 6:b 77:\\ 77:\\ 6:c");
    EXPECT_EQ(All(SCAN_KEEP_EOL, "a \\ \n b"), "6:a 77:\\ 43:  6:b");
    EXPECT_EQ(All(0, "\\a"), "77:\\ 6:a");
    const Token token = First(SCAN_BACKSLASH_JOIN, "\\\n  b");
    EXPECT_EQ(token.row, 1);
    EXPECT_EQ(token.column, 2);
}

TEST_F(Scanner, Places_CountFromZero) {
    Open(0, "  ab\n+ \n\n  \tc 12");
    const zr_long places[][2] = {{0, 2}, {1, 0}, {3, 3}, {3, 5}, {3, 7}};
    for (const auto &place : places) {
        const Token token = Read();
        EXPECT_EQ(token.row, place[0]) << token.text;
        EXPECT_EQ(token.column, place[1]) << token.text;
    }
    for (int i = 0; i < 2; ++i) { // the end stays where it is
        const Token end = Read();
        EXPECT_EQ(end.kind, 44);
        EXPECT_EQ(end.row, 3);
        EXPECT_EQ(end.column, 7);
    }
}

TEST_F(Scanner, Keywords_GiveTheirPlaceInTheCallersList) {
    const char *keywords[] = {"while", "if", "else", "do", "_x", "If", nullptr};
    for (zr_long i = 0; keywords[i] != nullptr; ++i) {
        const Token token = First(0, keywords[i], keywords);
        EXPECT_EQ(token.kind, 5);
        EXPECT_EQ(token.long_value, i);
        EXPECT_EQ(token.text, keywords[i]);
    }
    for (const char *name : {"whil", "whilex", "WHILE", "i", "eLse", "zz", "a", "d", "dn", "dp"}) {
        const Token token = First(0, name, keywords);
        EXPECT_EQ(token.kind, 6) << name;
        EXPECT_EQ(token.long_value, static_cast<zr_long>(std::strlen(name)));
    }
    EXPECT_STREQ(keywords[0], "while"); // the list stays as it is
}

TEST_F(Scanner, KeywordsNoCase_MatchAnyCase) {
    const char *keywords[] = {"While", "IF", "x_Y1", nullptr};
    for (const char *name : {"while", "WHILE", "wHiLe"})
        EXPECT_EQ(First(SCAN_KEYWORDS_NOCASE, name, keywords).long_value, 0);
    const Token token = First(SCAN_KEYWORDS_NOCASE, "X_y1", keywords);
    EXPECT_EQ(token.kind, 5);
    EXPECT_EQ(token.long_value, 2);
    EXPECT_EQ(token.text, "X_y1"); // as read
    EXPECT_EQ(First(SCAN_KEYWORDS_NOCASE, "xXY1", keywords).kind, 6);
}

TEST_F(Scanner, BitsThatAreNoOptions_ChangeNothing) {
    const char *keywords[] = {"if", nullptr};
    const string text = "if IF <= -1 a\n/*b*/ 'x' \"s\\n\" ** ! # \\ it's";
    EXPECT_EQ(All(INT_MIN | 0x7FF06000, text, keywords), All(0, text, keywords));
}

TEST_F(Scanner, FewKeywords_AreFound) {
    const char *none[] = {nullptr};
    const char *one[] = {"a", nullptr};
    const char *two[] = {"b", "a", nullptr};
    EXPECT_EQ(First(0, "a", none).kind, 6);
    EXPECT_EQ(First(0, "a", one).kind, 5);
    EXPECT_EQ(First(0, "b", one).kind, 6);
    EXPECT_EQ(First(0, "a", two).kind, 5);
    EXPECT_EQ(First(0, "a", two).long_value, 1);
    EXPECT_EQ(First(0, "b", two).kind, 5);
    EXPECT_EQ(First(0, "b", two).long_value, 0);
    EXPECT_EQ(First(0, "ab", two).kind, 6);
}

// The first and the last of the sorted list are looked at ahead, then the middle ones.
TEST_F(Scanner, RepeatedKeywords_GiveTheOneThatABisectionMeets) {
    const struct {
        std::vector<const char *> keywords;
        const char *name;
        zr_long place;
    } cases[] = {{{"rr", "rr", nullptr}, "rr", 0},
                 {{"ra", "rr", "rr", nullptr}, "rr", 2},
                 {{"zz", "rr", "rr", "rr", nullptr}, "rr", 1},
                 {{"rr", "aa", "rr", "rr", nullptr}, "rr", 3},
                 {{"rr", "rr", "aa", "zz", "rr", nullptr}, "rr", 1},
                 {{"rr", "aa", "rr", "bb", "rr", "rr", "zz", nullptr}, "rr", 2}};
    for (const auto &[keywords, name, place] : cases) {
        std::vector<const char *> list = keywords;
        const Token token = First(0, name, list.data());
        EXPECT_EQ(token.kind, 5) << keywords.size();
        EXPECT_EQ(token.long_value, place) << keywords.size();
    }
    std::vector<const char *> many(100, "rr");
    many.push_back(nullptr);
    const Token first = First(0, "rr", many.data());
    EXPECT_EQ(first.kind, 5);
    EXPECT_EQ(first.long_value, 0);
    many[0] = "aa"; // the middle one of 1 to 99 is met, as none is looked at ahead
    many[99] = "zz";
    EXPECT_EQ(First(0, "rr", many.data()).long_value, 49);
    const char *cases_of_one[] = {"zz", "Rr", "aa", "rR", "RR", nullptr};
    EXPECT_EQ(First(SCAN_KEYWORDS_NOCASE, "rr", cases_of_one).long_value, 3);
    EXPECT_EQ(First(0, "Rr", cases_of_one).long_value, 1);
    EXPECT_EQ(First(0, "RR", cases_of_one).long_value, 4);
}

TEST_F(Scanner, LongKeywords_AreComparedToTheirEnd) {
    const string tail(60, 't');
    const string long_one = "identifier" + tail;
    const char *keywords[] = {"identify",   "identifier",     "identifiers", "identifi",
                              "Identifier", long_one.c_str(), "x_______1",   nullptr};
    for (zr_long i = 0; keywords[i] != nullptr; ++i) {
        EXPECT_EQ(First(0, keywords[i], keywords).long_value, i);
        EXPECT_EQ(First(0, keywords[i], keywords).kind, 5);
    }
    for (const string &name : {string("identif"), string("identifie"), string("identifiert"), string("x_______2"),
                               string("x_______"), long_one + "t", "identifieR" + tail, string("IDENTIFY")})
        EXPECT_EQ(First(0, name, keywords).kind, 6) << name;
    EXPECT_EQ(First(SCAN_KEYWORDS_NOCASE, "IDENTIFIERS", keywords).long_value, 2);
    EXPECT_EQ(First(SCAN_KEYWORDS_NOCASE, "iDENTIFY", keywords).long_value, 0);
    EXPECT_EQ(First(SCAN_KEYWORDS_NOCASE, "X_______1", keywords).long_value, 6);
    EXPECT_EQ(First(SCAN_KEYWORDS_NOCASE, "IDENTIFIERt", keywords).kind, 6);
}

TEST_F(Scanner, KeywordsThatNoNameCanBe_AreNeverFound) {
    const char *keywords[] = {"", "1a", "+", "a b", "@bc", "{bc", nullptr};
    EXPECT_EQ(All(0, "1a + a b abc", keywords), "7:1 6:a 18:+ 6:a 6:b 6:abc");
    EXPECT_EQ(All(SCAN_KEYWORDS_NOCASE, "1a _bc Abc [bc `bc", keywords), "7:1 6:a 6:_bc 6:Abc 31:[ 6:bc 0:` 6:bc");
}

TEST_F(Scanner, KeywordsNoCase_KnowAllLetters) {
    const char *keywords[] = {"abcdefg", "HIJKLMNO", "pqrstuv", "WXYZ", "abcdefghijklmnopqrstuvwxyz", nullptr};
    for (const char *text : {"abcdefg hijklmno pqrstuv wxyz abcdefghijklmnopqrstuvwxyz",
                             "ABCDEFG HIJKLMNO PQRSTUV WXYZ ABCDEFGHIJKLMNOPQRSTUVWXYZ"}) {
        Open(SCAN_KEYWORDS_NOCASE, text, keywords);
        for (zr_long i = 0; i < 5; ++i) {
            const Token token = Read();
            EXPECT_EQ(token.kind, 5) << token.text;
            EXPECT_EQ(token.long_value, i) << token.text;
        }
    }
}

TEST_F(Scanner, KeywordsNoCase_LeaveUmlautsAsTheyAre) {
    const char *keywords[] = {"m\x84r", "\xe1", "a\xc1", nullptr};
    EXPECT_EQ(First(SCAN_UMLAUTS | SCAN_KEYWORDS_NOCASE, "A\xe1", keywords).kind, 6);
    EXPECT_EQ(First(SCAN_UMLAUTS | SCAN_KEYWORDS_NOCASE, "M\x84R", keywords).kind, 5);
    EXPECT_EQ(First(SCAN_UMLAUTS | SCAN_KEYWORDS_NOCASE, "M\x8eR", keywords).kind, 6);
    EXPECT_EQ(First(SCAN_UMLAUTS | SCAN_KEYWORDS_NOCASE | SCAN_LOWER, "M\x8eR", keywords).kind,
              5); // folded as it was read
    EXPECT_EQ(First(SCAN_UMLAUTS, "\xe1", keywords).kind, 5);
    EXPECT_EQ(First(SCAN_UMLAUTS, "\xe1", keywords).long_value, 1);
}

TEST_F(Scanner, AThousandKeywords_AreAllFound) {
    std::vector<string> texts;
    for (int i = 0; i < 1000; ++i)
        texts.push_back((i % 3 == 0 ? "a_common_start_" : "k") + std::to_string(i * 7919 % 1000));
    std::vector<const char *> keywords;
    string text;
    for (const string &keyword : texts) {
        keywords.push_back(keyword.c_str());
        text += keyword + " " + keyword + "_ ";
    }
    keywords.push_back(nullptr);
    Open(0, text, keywords.data());
    for (zr_long i = 0; i < 1000; ++i) {
        const Token token = Read();
        EXPECT_EQ(token.kind, 5) << token.text;
        EXPECT_EQ(token.long_value, i);
        EXPECT_EQ(Read().kind, 6);
    }
}

TEST_F(Scanner, Reset_ForgetsPlaceAndWhatWasReadAhead) {
    Open(0, "a\nbc d");
    Read();
    Read();
    EXPECT_EQ(scan_reset(handle), handle);
    const Token token = Read(); // the blank behind "bc" is forgotten
    EXPECT_EQ(token.text, "d");
    EXPECT_EQ(token.row, 0);
    EXPECT_EQ(token.column, 0);
    taken = 0;
    scan_reset(handle);
    EXPECT_EQ(Read().text, "a");
}

TEST_F(Scanner, NullArguments_DoNothing) {
    zr_long kind = untouched;
    char c = 'Q';
    Open(0, "a");
    EXPECT_EQ(scan_token(nullptr, &kind, raw.get()), -1);
    EXPECT_EQ(scan_token(handle, nullptr, raw.get()), -1);
    EXPECT_EQ(scan_token(handle, &kind, nullptr), -1);
    for (auto *read : {scan_character, scan_character_ex}) {
        read(nullptr, &kind, &c);
        read(handle, nullptr, &c);
        read(handle, &kind, nullptr);
    }
    EXPECT_EQ(kind, untouched);
    EXPECT_EQ(c, 'Q');
    EXPECT_EQ(taken, 0U);
    EXPECT_EQ(scan_reset(nullptr), nullptr);
    scan_close(nullptr);
}

TEST_F(Scanner, NoSource_IsAnEmptyInput) {
    handle = scan_open(nullptr, 0, nullptr);
    EXPECT_EQ(Read().kind, 44);
    EXPECT_EQ(raw->user, 0); // nor is there a user function
}

TEST(ScannerSource, ThatThrows_EndsTheProcess) {
    EXPECT_TRUE(ChildProcess("token").Passes());
    EXPECT_TRUE(ChildProcess("character").Passes());
}

class ScanCharacters : public Scanner {
protected:
    // Classes and characters, "class:character", of so many calls.
    string Characters(int count, bool comments) {
        string all;
        for (int i = 0; i < count; ++i) {
            zr_long kind = untouched;
            char c = 'Q';
            (comments ? scan_character_ex : scan_character)(handle, &kind, &c);
            all += (i > 0 ? " " : "") + std::to_string(kind) + ":" + (c != 0 ? string(1, c) : "");
        }
        return all;
    }
};

TEST_F(ScanCharacters, EachHasItsClass) {
    Open(0, "aZ_0\t\n\x84'\x7f");
    EXPECT_EQ(Characters(12, false), "4:  1:a 1:Z 3:_ 2:0 4:  43:\n 3:\x84 3:' 3:\x7f 44: 44:");
    Open(SCAN_UMLAUTS | SCAN_APOSTROPHE_NAMES | SCAN_UPPER, "\x84\xe1'b");
    EXPECT_EQ(Characters(6, false), "4:  1:\x8e 1:\xe1 3:' 1:B 44:");
    Open(0, std::vector<int>{-2, -128, 256 + 'a', 300});
    EXPECT_EQ(Characters(5, false), "4:  0:\xfe 0:\x80 3:a 3:,");
}

TEST_F(ScanCharacters, Comments_ArePassedOverByTheExtendedCallOnly) {
    constexpr zr_long options = SCAN_BLOCK_COMMENT | SCAN_LINE_COMMENT;
    Open(options, "a/*b*/c");
    EXPECT_EQ(Characters(8, false), "4:  1:a 3:/ 3:* 1:b 3:* 3:/ 1:c");
    Open(options, "a/*b*/c//d\ne");
    EXPECT_EQ(Characters(6, true), "4:  1:a 1:c 43:\n 1:e 44:");
    Open(options, "a/b");
    EXPECT_EQ(Characters(4, true), "4:  1:a 1:b 44:"); // a plain slash is lost
    Open(0, "a/*b");
    EXPECT_EQ(Characters(4, true), "4:  1:a 3:* 1:b");
}

TEST_F(ScanCharacters, MixWithTokens) {
    Open(0, "ab cd");
    EXPECT_EQ(Read().text, "ab");
    EXPECT_EQ(Characters(2, false), "4:  1:c");
    const Token token = Read();
    EXPECT_EQ(token.text, "d");
    EXPECT_EQ(token.column, 4);
}

TEST_F(ScanCharacters, LeaveAnOwedDotToTheTokens) {
    Open(SCAN_SIGNED_NUMBERS, "+.xy");
    EXPECT_EQ(Read().kind, 18);
    EXPECT_EQ(Characters(1, false), "1:x");
    EXPECT_EQ(Read().kind, 16);
    EXPECT_EQ(Read().text, "y");
}

// A reset lets the character stand that was read ahead: the call that looks for comments sees it.
TEST_F(ScanCharacters, AfterAReset) {
    for (const bool comments : {false, true}) {
        Open(SCAN_LINE_COMMENT, "a/bc");
        Read();
        scan_reset(handle);
        EXPECT_EQ(Characters(2, comments), comments ? "1:b 1:c" : "4:  1:b");
    }
}

// The class form.
static_assert(std::is_abstract_v<IZrScannerGetChar>);

class TextSource : public IZrScannerGetChar {
public:
    explicit TextSource(const char *text) : text_(text) {}
    int GetChar() override { return *text_ != 0 ? *text_++ : -1; }

private:
    const char *text_;
};

TEST(ScannerObject, ReadsFromASourceObject) {
    TextSource source("ab 12");
    const char *keywords[] = {"ab", nullptr};
    CZrScanner scanner(&source, 0, keywords);
    const auto token = std::make_unique<ZrScanToken>();
    zr_long kind = untouched;
    EXPECT_EQ(scanner.NextToken(kind, *token), 0);
    EXPECT_EQ(kind, 5);
    EXPECT_EQ(token->user, 0);
    EXPECT_EQ(scanner.NextToken(kind, *token), 0);
    EXPECT_EQ(token->longValue, 12);
    EXPECT_EQ(scanner.NextToken(kind, *token), 0);
    EXPECT_EQ(kind, 44);
}

TEST(ScannerObject, WithoutASource_IsAnEmptyInput) {
    CZrScanner scanner(nullptr, 0, nullptr);
    const auto token = std::make_unique<ZrScanToken>();
    zr_long kind = untouched;
    EXPECT_EQ(scanner.NextToken(kind, *token), 0);
    EXPECT_EQ(kind, 44);
}

TEST(ScannerObject, GivesCharactersAndStartsAnew) {
    TextSource source("+.b");
    CZrScanner scanner(&source, SCAN_SIGNED_NUMBERS | SCAN_UPPER, nullptr);
    const auto token = std::make_unique<ZrScanToken>();
    zr_long kind = untouched;
    scanner.NextToken(kind, *token);
    EXPECT_EQ(kind, 18);
    scanner.Reset();
    char c = 0;
    scanner.NextCharacter(kind, c, false);
    EXPECT_EQ(c, ' ');
    scanner.NextCharacter(kind, c, false);
    EXPECT_EQ(kind, 44); // "b" was read ahead, and is forgotten
}

// One knows nothing of the other.
TEST(ScannerObject, TwoAtATime_AreIndependent) {
    TextSource first_source("a 'b 3\n\"x");
    TextSource second_source("1 If +");
    const char *keywords[] = {"if", nullptr};
    CZrScanner first(&first_source, SCAN_APOSTROPHE_NAMES, nullptr);
    CZrScanner second(&second_source, SCAN_KEYWORDS_NOCASE | SCAN_LOWER, keywords);
    const auto token = std::make_unique<ZrScanToken>();
    string read;
    for (int i = 0; i < 4; ++i) {
        for (CZrScanner *scanner : {&first, &second}) {
            zr_long kind = untouched;
            const int error = scanner->NextToken(kind, *token);
            read += std::to_string(error) + ":" + std::to_string(kind) + ":" + token->text + " ";
        }
    }
    EXPECT_EQ(read, "0:6:a 0:7:1 0:6:'b 0:5:if 0:7:3 0:18:+ 4:10:x 0:44:  ");
}

TEST_F(Scanner, NoMemoryForTheScanner_GivesNull) {
    SetSource("a");
    {
        zr::test::HeapRefusal refusal(0);
        EXPECT_EQ(scan_open(Next, 0, nullptr), nullptr);
        EXPECT_TRUE(refusal.Met());
    }
    zr::test::HeapRefusal refusal(0);
    EXPECT_EQ(scan_open_with_userdata(Next, Taken, 0, nullptr), nullptr);
    EXPECT_TRUE(refusal.Met());
    EXPECT_EQ(taken, 0U);
}

TEST_F(Scanner, NoMemoryForTheKeywords_LeavesAScannerWithoutThem) {
    const char *keywords[] = {"if", "else", "do", nullptr};
    zr::test::ReportCapture reports;
    SetSource("if 12");
    {
        zr::test::HeapRefusal refusal(1);
        handle = scan_open(Next, 0, keywords);
        EXPECT_TRUE(refusal.Met());
    }
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(reports.Take(), zr::test::Reports{zr::test::Error("Scan", "Nicht gen\xFCgend Speicher")});
    EXPECT_EQ(All(), "6:if 7:12");
    EXPECT_EQ(reports.Take(), zr::test::Reports{});
}

TEST_F(Scanner, Tokens_NeedNoMemory) {
    const char *keywords[] = {"if", "else", "do", nullptr};
    SetSource("if name 12 3.5e300 'x' \"s\" + \n" + string(5000, 'n') + " " + string(5000, '1') + " `");
    zr::test::HeapRefusal refusal(2); // the scanner and its keywords are all
    handle = scan_open(Next, SCAN_KEEP_EOL, keywords);
    for (int i = 0; i < 11; ++i)
        Read();
    EXPECT_EQ(Read().kind, 44);
    scan_reset(handle);
    EXPECT_FALSE(refusal.Met());
}

// Texts of pieces that mean something to the scanner, under random options and calls.
class Pieces {
public:
    explicit Pieces(unsigned seed) : random_(seed) {}

    Comparison::Case Make() {
        static const std::vector<string> keywords = {"if",
                                                     "IF",
                                                     "else",
                                                     "x",
                                                     "e5",
                                                     "ab'",
                                                     "\x84"
                                                     "b",
                                                     "if"};
        Comparison::Case made;
        made.options = static_cast<zr_long>(random_() & 0xFFFFF & ~unsigned{SCAN_TRACE});
        made.keywords.assign(keywords.begin(), keywords.begin() + Below(static_cast<int>(keywords.size()) + 1));
        for (int i = Below(60); i >= 0; --i)
            Append(made.text);
        if (Below(3) == 0) {
            made.calls.clear();
            for (int i = 0; i < 5; ++i)
                made.calls.push_back(static_cast<Call>(Below(2) * Below(5)));
        }
        return made;
    }

private:
    int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

    void Append(std::vector<int> &text) {
        static const char *const pieces[] = {
            "if",   "IF",       "else",        "x",       "e5",       "ab'",     "name_1",
            "\x84", "\xe1\x9a", "12",          "0.5",     ".5",       ".",       "e",
            "1e",   "1e-3",     "99999999999", "1e999",   "1e-999",   "+",       "-",
            "+.",   "-.",       "'",           "'x'",     "'\\n'",    "'\\101'", "'\\xfF'",
            "\"",   "\"s\"",    "\"a\\\"b\"",  "\"\\n\"", "\"\\\\\"", "\\",      "\"a\"\\ \"b\"",
            "`q'",  "`q\\'",    "/*",          "*/",      "//",       "/",       "**",
            "*",    "!",        "#",           "\n",      "\\ \n",    " ",       "\t",
            "\r",   "<=",       "=>",          "<>",      "==",       "(",       "]",
            "~",    "\x7f"};
        if (Below(25) == 0) {
            text.push_back(Below(5) == 0 ? static_cast<int>(random_()) : Below(600) - 200);
            return;
        }
        const int repeats = Below(400) == 0 ? 4094 + Below(5) : 1;
        for (const char *c = pieces[random_() % std::size(pieces)]; *c != 0; ++c)
            text.insert(text.end(), static_cast<std::size_t>(repeats), static_cast<unsigned char>(*c));
    }

    std::mt19937 random_;
};

TEST(ScannerComparison, RandomTexts_AreReadAsByTheReference) {
    Pieces pieces(20131);
    for (int i = 0; i < 800; ++i) {
        const Comparison::Case made = pieces.Make();
        ASSERT_EQ(Comparison(made).Run(), "") << "case " << i << ", options " << std::hex << made.options;
    }
    EXPECT_GT(Comparison::tokens, 20000U);
}

// The examples of the manual are lines "    [OPTION OPTION] text  -> tokens", the options as far as there are any.
class ScannerManual : public Scanner {
protected:
    static void Replace(string &text, const string &old, const string &now) {
        for (std::size_t at = text.find(old); at != string::npos; at = text.find(old, at + now.size()))
            text.replace(at, old.size(), now);
    }

    static zr_long TakeOptions(string &text) {
        static const std::vector<std::pair<string, zr_long>> names = {{"KEEP_EOL", SCAN_KEEP_EOL},
                                                                      {"BLOCK_COMMENT", SCAN_BLOCK_COMMENT},
                                                                      {"LINE_COMMENT", SCAN_LINE_COMMENT},
                                                                      {"BANG_COMMENT", SCAN_BANG_COMMENT},
                                                                      {"SIGNED_NUMBERS", SCAN_SIGNED_NUMBERS},
                                                                      {"COMPOSE_RELATIONS", SCAN_COMPOSE_RELATIONS},
                                                                      {"LOWER", SCAN_LOWER},
                                                                      {"UPPER", SCAN_UPPER},
                                                                      {"BACKSLASH_JOIN", SCAN_BACKSLASH_JOIN},
                                                                      {"HASH_STYLE", SCAN_HASH_STYLE},
                                                                      {"APOSTROPHE_NAMES", SCAN_APOSTROPHE_NAMES},
                                                                      {"STAR_POWER", SCAN_STAR_POWER},
                                                                      {"STRING_ESCAPES", SCAN_STRING_ESCAPES},
                                                                      {"STRING_JOIN", SCAN_STRING_JOIN}};
        zr_long options = 0;
        if (!text.starts_with("["))
            return 0;
        const std::size_t end = text.find("] ");
        std::istringstream words(text.substr(1, end - 1));
        for (string word; words >> word;) {
            const auto known =
                std::find_if(names.begin(), names.end(), [&](const auto &name) { return name.first == word; });
            EXPECT_NE(known, names.end()) << word;
            options |= known != names.end() ? known->second : 0;
        }
        text.erase(0, end + 2);
        return options;
    }
};

TEST_F(ScannerManual, Examples_AreTrue) {
    std::ifstream manual(ZR_GOLDEN_DIR "/../../docs/scanner.md");
    int examples = 0;
    for (string line; std::getline(manual, line);) {
        const std::size_t split = line.find("  -> ");
        if (!line.starts_with("    ") || split == string::npos)
            continue;
        ++examples;
        string text = line.substr(4, split - 4);
        string expected = line.substr(split + 5);
        if (expected.ends_with('\r'))
            expected.pop_back();
        const zr_long options = TakeOptions(text);
        Replace(text, "<nl>", "\n");
        Replace(expected, "<nl>", "\n");
        Replace(expected, "-:", std::to_string(untouched) + ":");
        EXPECT_EQ(All(options, text), expected) << line;
    }
    EXPECT_GT(examples, 25);
}

} // namespace
