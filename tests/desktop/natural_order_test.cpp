// The order of names that mix letters and numbers, and of dates.
#include <zrclb/window_utilities.h>

#include <iterator>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "desktop/reference_natural_order.h"
#include "env/refused_memory.h"
#include "frame/refused_heap.h"

namespace {

int Sign(int value) {
    return (value > 0) - (value < 0);
}

// The sign of the comparison; the other way round it must be the other one.
int Order(const std::string &a, const std::string &b) {
    const int order = wu_ANCmp(a.c_str(), b.c_str());
    EXPECT_EQ(Sign(wu_ANCmp(b.c_str(), a.c_str())), -Sign(order)) << a << " | " << b;
    EXPECT_EQ(order, reference::ANCmp(a, b)) << a << " | " << b;
    return Sign(order);
}

TEST(NaturalOrder, EmptyTextsComeFirst) {
    EXPECT_EQ(Order("", ""), 0);
    EXPECT_EQ(Order("", "x"), -1);
    EXPECT_EQ(Order("", "-"), -1);
    EXPECT_EQ(wu_ANCmp("", "x"), -'x');
    EXPECT_EQ(wu_ANCmp("X", ""), 'x');
}

TEST(NaturalOrder, NullsComeBeforeEverything) {
    EXPECT_EQ(wu_ANCmp(nullptr, nullptr), 0);
    EXPECT_LT(wu_ANCmp(nullptr, ""), 0);
    EXPECT_GT(wu_ANCmp("a", nullptr), 0);
}

TEST(NaturalOrder, NumbersBehindLettersCount) {
    EXPECT_EQ(Order("a2", "a10"), -1);
    EXPECT_EQ(Order("Pos 9", "Pos 10"), -1);
    EXPECT_EQ(Order("D12", "D12"), 0);
    EXPECT_EQ(Order("a007", "a7"), 0);
    EXPECT_EQ(Order("a007b", "a7b"), Sign('0' - '7')); // digits inside are letters like others
    EXPECT_EQ(Order("b1", "a2"), 1);
    EXPECT_EQ(Order("2", "10"), -1);
    EXPECT_EQ(Order("00", "0"), 0);
}

TEST(NaturalOrder, CaseOfEqualLettersDecidesBeforeNumbers) {
    EXPECT_EQ(wu_ANCmp("A1", "a1"), -1);
    EXPECT_EQ(wu_ANCmp("a1", "A1"), 1);
    EXPECT_EQ(Order("A2", "a1"), -1);
    EXPECT_EQ(Order("aB1", "Ab1"), 1);
    EXPECT_EQ(Order("1A", "1a"), -1);
    EXPECT_EQ(Order("2A", "1a"), -1);
    EXPECT_EQ(Order("Abc", "abc"), 0); // without a number it doesn't
    EXPECT_EQ(Order("Abc 2", "abc 1"), 1);
}

TEST(NaturalOrder, NumbersBeforeLettersCount) {
    EXPECT_EQ(Order("10a", "10b"), -1);
    EXPECT_EQ(Order("9a", "10a"), -1);
    EXPECT_EQ(Order("9b", "10a"), 1);
    EXPECT_EQ(Order("09a", "9a"), 0);
    EXPECT_EQ(Order("1a", "a1"), -1);
}

TEST(NaturalOrder, EachTokenCounts) {
    EXPECT_EQ(Order("1.10", "1.9"), 1);
    EXPECT_EQ(Order("a-1", "a_1"), 0);
    EXPECT_EQ(Order("a-1", "a--1"), 1); // an empty token stands in front
    EXPECT_EQ(Order("a1-b2", "a01_b10"), -1);
    EXPECT_EQ(Order("geh\xF6rt 2", "geh\xE4rt 10"), -1);
    EXPECT_EQ(Order("abc", "abcd"), -1);
    EXPECT_EQ(Order("abc", "abc d"), -1);
    EXPECT_EQ(Order("abc", "abc "), 0); // the separator goes with the token in front of it
    EXPECT_EQ(Order("abc", "abc  "), -1);
    EXPECT_EQ(Order("abc ", "abc-x"), -1);
    EXPECT_EQ(Order("-", "_"), 0);
}

TEST(NaturalOrder, NumbersBeyondTheRangeAreEqual) {
    EXPECT_EQ(Order("a2147483646", "a2147483647"), -1);
    EXPECT_EQ(Order("a2147483647", "a2147483648"), 0);
    EXPECT_EQ(Order("a2147483647", "a" + std::string(1000, '9')), 0);
    EXPECT_EQ(Order("a" + std::string(1000, '0') + "5", "a5"), 0);
    EXPECT_EQ(Order("99999999999x", "99999999998x"), 0);
    EXPECT_EQ(Order("99999999999 2", "99999999998 1"), 1);
}

// Why no list is in order by it: three names that stand behind one another in a ring.
TEST(NaturalOrder, IsNoOrderOfAWholeList) {
    EXPECT_EQ(Order("9", "10"), -1);
    EXPECT_EQ(Order("10", "10a"), -1);
    EXPECT_EQ(Order("10a", "9"), -1);
}

TEST(NaturalOrder, RandomNames_AsThePlainWay) {
    std::mt19937 random(20131);
    const std::string signs = "aAbBzZ0129 -\xE4\xC4@";
    for (int i = 0; i < 20000; ++i) {
        std::string texts[2];
        for (std::string &text : texts)
            for (std::size_t length = random() % 9; text.size() < length;)
                text += signs[random() % signs.size()];
        Order(texts[0], texts[1]);
        EXPECT_EQ(Order(texts[0], texts[0]), 0);
        Order(texts[0] + texts[1], texts[0] + texts[1].substr(0, texts[1].size() / 2) + texts[0]);
    }
}

// Each byte beside those at the borders of letters and digits, at each place of a token.
TEST(NaturalOrder, EveryByte_IsALetterADigitOrNeither) {
    const std::string borders = "/09:@AMZ[`amz{\x7F\x80\x8A\x9A\xB2\xC4\xE4\xFF";
    for (int byte = 1; byte < 256; ++byte) {
        for (const char border : borders) {
            const std::string a(1, static_cast<char>(byte)), b(1, border);
            Order(a, b);
            Order(a + "x2", b + "x1");
            Order("x" + a + "2", "x" + b + "1");
            Order("2" + a, "1" + b);
            Order("x" + a, "x" + a + b);
        }
    }
}

TEST(Orders, NeedNoMemory) {
    const std::string name = "Level 12a-" + std::string(300, 'x') + "7",
                      other = "Level 12a-" + std::string(300, 'x') + "12";
    const std::string first = "31.12.2013 10:11:12", second = "31.12.2013 10:11:13";
    int orders[2];
    const zr::test::HeapRefusal heap(0, true);
    const zr::test::NthAllocation memory(0);
    orders[0] = wu_ANCmp(name.c_str(), other.c_str());
    orders[1] = wu_DateCmp(first.c_str(), second.c_str());
    EXPECT_FALSE(heap.Met());
    EXPECT_FALSE(memory.Met());
    EXPECT_EQ(orders[0], -1);
    EXPECT_EQ(orders[1], -1);
}

TEST(NaturalOrder, LongTexts) {
    const std::string tokens(100000, '-'), letters(100000, 'x'), digits(100000, '7');
    EXPECT_EQ(Order(tokens + "1", tokens + "2"), -1);
    EXPECT_EQ(Order(letters, letters + "x"), -1);
    EXPECT_EQ(Order(digits, digits + "7"), 0);
    std::string numbered, other;
    for (int i = 0; i < 20000; ++i) {
        numbered += "a1-";
        other += "a01_";
    }
    EXPECT_EQ(Order(numbered, other), 0);
    EXPECT_EQ(Order(numbered + "b", other + "c"), -1);
}

int DateOrder(const std::string &a, const std::string &b) {
    const int order = wu_DateCmp(a.c_str(), b.c_str());
    EXPECT_EQ(wu_DateCmp(b.c_str(), a.c_str()), -order) << a << " | " << b;
    EXPECT_EQ(order, reference::DateCmp(a, b)) << a << " | " << b;
    return order;
}

TEST(DateOrder, YearsRunFrom1980To2079) {
    EXPECT_EQ(DateOrder("31.12.99", "01.01.00"), -1);
    EXPECT_EQ(DateOrder("01.01.80", "01.01.79"), -1);
    EXPECT_EQ(DateOrder("01.01.80", "01.01.99"), -1);
    EXPECT_EQ(DateOrder("01.01.2013", "01.01.2012"), 1);
    EXPECT_EQ(DateOrder("01.01.100", "01.01.00"), 0);
}

TEST(DateOrder, GreaterPartsDecideFirst) {
    EXPECT_EQ(DateOrder("01.01.00 10:00:00", "01.01.00"), 1);
    EXPECT_EQ(DateOrder("01.02.13 00:00:00", "31.01.13 23:59:59"), 1);
    EXPECT_EQ(DateOrder("02.01.13 00:00:00", "01.01.13 23:59:59"), 1);
    EXPECT_EQ(DateOrder("01.01.13 01:00:00", "01.01.13 00:59:59"), 1);
    EXPECT_EQ(DateOrder("01.01.13 00:01:00", "01.01.13 00:00:59"), 1);
    EXPECT_EQ(DateOrder("01.01.13 00:00:01", "01.01.13 00:00:02"), -1);
    EXPECT_EQ(DateOrder("01.01.13 00:00:01", "1.1.13 0:0:1"), 0);
}

TEST(DateOrder, AnyOfTheSignsParts) {
    EXPECT_EQ(DateOrder("01:02 13.10.11.12", "01.02.13 10:11:12"), 0);
    EXPECT_EQ(DateOrder("01.02.13.", "01.02.13"), 0);
    EXPECT_EQ(DateOrder("01.02.13  5", "01.02.13 0:5"), 0); // two signs have a 0 between them
    EXPECT_EQ(DateOrder("1.2.3 4:5:6:7", "1.2.3 4:5:6:8"), 0);
}

TEST(DateOrder, MissingAndOddNumbers) {
    EXPECT_EQ(wu_DateCmp(nullptr, nullptr), 0);
    EXPECT_EQ(wu_DateCmp(nullptr, ""), 0);
    EXPECT_EQ(wu_DateCmp("1", nullptr), 1);
    EXPECT_EQ(DateOrder("", "0.0.0 0:0:0"), 0);
    EXPECT_EQ(DateOrder("x.y.z", ""), 0);
    EXPECT_EQ(DateOrder("-1", ""), -1);
    EXPECT_EQ(DateOrder("12a.\t3", "12.3"), 0);
    EXPECT_EQ(DateOrder("99999999999", "2147483647"), 0);
    EXPECT_EQ(DateOrder("1.1.99999999999", "1.1.2147483647"), 0);
    EXPECT_EQ(DateOrder("1.1.-99999999999", "1.1.-2147483648"), 0);
}

TEST(DateOrder, Only80CharactersCount) {
    EXPECT_EQ(DateOrder(std::string(79, '0') + "1", std::string(79, '0') + "2"), -1);
    EXPECT_EQ(DateOrder(std::string(80, '0') + "1", std::string(80, '0') + "2"), 0);
    EXPECT_EQ(DateOrder(std::string(78, '0') + ".1", std::string(78, '0') + ".2"), -1);
    EXPECT_EQ(DateOrder(std::string(79, '0') + ".1", std::string(79, '0') + ".2"), 0);
    EXPECT_EQ(DateOrder(std::string(100000, '9'), std::string(100000, '8')), 0);
}

TEST(DateOrder, RandomDates_AsThePlainWay) {
    std::mt19937 random(20131);
    const char *pieces[] = {"1", "02", "12", "79", "80", "99", "2013", "-1", "x", "", "2147483647"};
    const std::string signs = ".. ::-";
    const auto date = [&] {
        std::string text;
        for (std::size_t count = random() % 8; count > 0; --count) {
            text += pieces[random() % std::size(pieces)];
            text += signs[random() % signs.size()];
        }
        return text + pieces[random() % std::size(pieces)];
    };
    for (int i = 0; i < 5000; ++i) {
        const std::string one = date();
        std::string other = date();
        DateOrder(one, other);
        DateOrder(one, one.substr(0, one.size() / 2) + other);
    }
}

} // namespace
