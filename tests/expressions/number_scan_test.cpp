// Texts to numbers: bit by bit as the standard's own conversions.
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "expressions/number_scan.h"

namespace {

using zr::expressions::NumberFit;
using zr::expressions::ToDouble;
using zr::expressions::ToLong;

std::uint64_t Bits(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

NumberFit Convert(const std::string &text, double &value) {
    return ToDouble(text.data(), text.size(), value);
}

double Double(const std::string &text) {
    double value = 77;
    EXPECT_EQ(Convert(text, value), NumberFit::fits) << text;
    return value;
}

TEST(ToLong, HasTheRangeOf32Bits) {
    zr_long value = 0;
    const auto convert = [&](const std::string &text) {
        return ToLong(text.data(), text.size(), value) ? value : 1234;
    };
    EXPECT_EQ(convert("0"), 0);
    EXPECT_EQ(convert("-0"), 0);
    EXPECT_EQ(convert("007"), 7);
    EXPECT_EQ(convert("999999999"), 999999999);
    EXPECT_EQ(convert("-999999999"), -999999999);
    EXPECT_EQ(convert("1000000000"), 1000000000);
    EXPECT_EQ(convert("2147483647"), 2147483647);
    EXPECT_EQ(convert("-2147483648"), std::numeric_limits<zr_long>::min());
    EXPECT_EQ(convert(std::string(5000, '0') + "5"), 5);
    for (const char *text : {"2147483648", "-2147483649", "4294967296", "99999999999999999999999999"})
        EXPECT_FALSE(ToLong(text, std::strlen(text), value)) << text;
}

TEST(ToDouble, OutOfRange_LeavesTheValue) {
    double value = 77;
    for (const char *text :
         {"1e309", "1.8e308", "-1e400", "1e999999999999999999999", "123456789012345678901234567890e290"})
        EXPECT_EQ(Convert(text, value), NumberFit::too_large) << text;
    for (const char *text : {"1e-400", "2e-324", "-1e-999", "1e-999999999999999999999", "0.00001e-320"})
        EXPECT_EQ(Convert(text, value), NumberFit::too_small) << text;
    EXPECT_EQ(Convert(std::string(400, '9'), value), NumberFit::too_large);
    EXPECT_EQ(Convert("." + std::string(400, '0') + "1", value), NumberFit::too_small);
    EXPECT_EQ(value, 77);
}

TEST(ToDouble, Edges_Fit) {
    EXPECT_EQ(Double("4.9406564584124654e-324"), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(Double("3e-324"), std::numeric_limits<double>::denorm_min()); // rounds up
    EXPECT_EQ(Double("2.2250738585072011e-308"), 2.2250738585072011e-308);
    EXPECT_EQ(Double("1.7976931348623157e308"), std::numeric_limits<double>::max());
    EXPECT_EQ(Double("1.7976931348623158e308"), std::numeric_limits<double>::max());
    EXPECT_EQ(Bits(Double("-0")), Bits(-0.0));
    EXPECT_EQ(Bits(Double("-0.00e-999999")), Bits(-0.0));
    EXPECT_EQ(Bits(Double("0e999999999999")), Bits(0.0));
    EXPECT_EQ(Double("." + std::string(400, '0') + "1e401"), 1.0);
    EXPECT_EQ(Double("1" + std::string(400, '0') + "e-400"), 1.0);
    EXPECT_EQ(Double("9007199254740993"), 9007199254740992.0); // a tie, to even
    EXPECT_EQ(Double("9007199254740993.0000000000000000000000001"), 9007199254740994.0);
    EXPECT_EQ(Double("5."), 5.0);
    EXPECT_EQ(Double(".5"), 0.5);
}

class NumberTexts {
public:
    std::string Make() {
        std::string text = Below(4) == 0 ? "-" : "";
        const int whole = Below(Below(10) == 0 ? 40 : 12);
        AddDigits(text, whole);
        if (whole == 0 || Below(2) == 0) {
            text += '.';
            AddDigits(text, whole == 0 ? 1 + Below(20) : Below(20));
        }
        if (Below(2) == 0) {
            constexpr const char *signs[] = {"e", "e-", "e+"};
            text += signs[Below(3)] + std::to_string(Below(Below(2) == 0 ? 25 : 345));
        }
        return text;
    }

private:
    int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    void AddDigits(std::string &text, int count) {
        const bool zeros = Below(10) == 0;
        for (; count > 0; --count)
            text += static_cast<char>('0' + (zeros ? 0 : Below(10)));
    }

    std::mt19937 random_{77};
};

TEST(ToDouble, RandomTexts_AreNearestDoubles) {
    NumberTexts texts;
    for (int i = 0; i < 60000; ++i) {
        const std::string text = texts.Make();
        double expected = 77;
        const auto result = std::from_chars(text.data(), text.data() + text.size(), expected);
        double value = 77;
        const NumberFit fit = Convert(text, value);
        ASSERT_EQ(fit == NumberFit::fits, result.ec == std::errc{}) << text;
        ASSERT_EQ(Bits(value), Bits(expected)) << text;
        errno = 0;
        const double slow = std::strtod(text.c_str(), nullptr);
        if (fit == NumberFit::fits) {
            ASSERT_EQ(Bits(value), Bits(slow)) << text;
        } else {
            ASSERT_EQ(fit == NumberFit::too_large, std::isinf(slow)) << text;
            ASSERT_EQ(errno, ERANGE) << text;
        }
    }
}

} // namespace
