// Degrees, rounding, signs, special values, waiting and sound.
#include <zrclb/numbers.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "platform/services.h"

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
constexpr double pi = 3.14159265358979323846;

TEST(Degrees, QuarterTurns_AreExact) {
    for (int turn = -270; turn <= 270; ++turn) {
        EXPECT_EQ(sin_deg(360.0 * turn), 0.0);
        EXPECT_EQ(sin_deg(360.0 * turn + 90), 1.0);
        EXPECT_EQ(sin_deg(360.0 * turn + 180), 0.0);
        EXPECT_EQ(sin_deg(360.0 * turn + 270), -1.0);
        EXPECT_EQ(cos_deg(360.0 * turn), 1.0);
        EXPECT_EQ(cos_deg(360.0 * turn + 90), 0.0);
        EXPECT_EQ(cos_deg(360.0 * turn + 180), -1.0);
        EXPECT_EQ(cos_deg(360.0 * turn + 270), 0.0);
    }
    EXPECT_EQ(sin_deg(450), 1.0);
    EXPECT_EQ(sin_deg(-90), -1.0);
    EXPECT_EQ(cos_deg(-180), -1.0);
    EXPECT_FALSE(std::signbit(sin_deg(-0.0)));
}

TEST(Degrees, OtherAngles_FollowTheStandardFunctions) {
    EXPECT_DOUBLE_EQ(sin_deg(30), std::sin(30 * 0.017453292519943295));
    EXPECT_DOUBLE_EQ(cos_deg(60), std::cos(60 * 0.017453292519943295));
    EXPECT_NEAR(sin_deg(-30), -0.5, 1e-15);
    EXPECT_NEAR(cos_deg(-60), 0.5, 1e-15);
    EXPECT_NEAR(tan_deg(45), 1.0, 1e-15);
    EXPECT_NEAR(tan_deg(-45), -1.0, 1e-14);
    EXPECT_NE(sin_deg(90.000001), 1.0);
    EXPECT_NEAR(sin_deg(std::nextafter(180.0, 0.0)), 0.0, 1e-14);
}

// Just below zero a turn leads to 360 itself, which is no quarter turn of the table and not reduced again.
TEST(Degrees, AngleJustBelowZero_IsAFullTurn) {
    for (const double angle : {-1e-20, -1e-300, -std::numeric_limits<double>::denorm_min()}) {
        EXPECT_NEAR(sin_deg(angle), -2.449e-16, 1e-18) << angle;
        EXPECT_EQ(cos_deg(angle), 1.0) << angle;
        EXPECT_NEAR(tan_deg(angle), -2.449e-16, 1e-18) << angle;
    }
}

// The turns are taken off one by one, each step rounded to a double.
TEST(Degrees, Turns_AreSubtractedNotDivided) {
    for (const double start : {99999.123456789, -99999.987654321, 12345.678901234, -0.1}) {
        volatile double angle = start; // each step is stored
        while (angle >= 360.0)
            angle = angle - 360.0;
        while (angle < 0.0)
            angle = angle + 360.0;
        EXPECT_DOUBLE_EQ(sin_deg(start), std::sin(angle * 0.017453292519943295)) << start;
        EXPECT_DOUBLE_EQ(cos_deg(start), std::cos(angle * 0.017453292519943295)) << start;
        EXPECT_DOUBLE_EQ(tan_deg(start), std::tan(angle * 0.017453292519943295)) << start;
    }
}

TEST(Degrees, Tangent_HasNoExactTable) {
    EXPECT_EQ(tan_deg(0), 0.0);
    EXPECT_EQ(tan_deg(360), 0.0);
    EXPECT_GT(std::fabs(tan_deg(90)), 1e15);
    EXPECT_GT(std::fabs(tan_deg(270)), 1e15);
    EXPECT_TRUE(std::isfinite(tan_deg(90)));
    EXPECT_NE(tan_deg(180), 0.0);
}

TEST(Degrees, LargeAngles_GiveFixedResults) {
    EXPECT_NEAR(sin_deg(100000), std::sin(280 * pi / 180), 1e-12);
    EXPECT_NEAR(cos_deg(-100000), std::cos(280 * pi / 180), 1e-12);
    EXPECT_NEAR(sin_deg(-100000), std::sin(80 * pi / 180), 1e-12);
    EXPECT_NEAR(cos_deg(100000), std::cos(280 * pi / 180), 1e-12);
    EXPECT_NEAR(tan_deg(100000), std::tan(280 * pi / 180), 1e-11);
    EXPECT_NEAR(tan_deg(-100000), std::tan(80 * pi / 180), 1e-11);
    const double beyond = std::nextafter(100000.0, infinity);
    for (const double angle : {beyond, -beyond, 100000.5, -100000.5, 1e300, infinity, -infinity}) {
        EXPECT_EQ(sin_deg(angle), 1.0);
        EXPECT_EQ(cos_deg(angle), 0.0);
        EXPECT_EQ(tan_deg(angle), 0.0);
    }
}

TEST(Degrees, NotANumber_StaysOne) {
    EXPECT_TRUE(std::isnan(sin_deg(not_a_number)));
    EXPECT_TRUE(std::isnan(cos_deg(not_a_number)));
    EXPECT_TRUE(std::isnan(tan_deg(not_a_number)));
    EXPECT_TRUE(std::isnan(asin_deg(not_a_number)));
    EXPECT_TRUE(std::isnan(acos_deg(not_a_number)));
    EXPECT_TRUE(std::isnan(atan_deg(not_a_number)));
    EXPECT_TRUE(std::isnan(atan2_deg(not_a_number, 1)));
    EXPECT_TRUE(std::isnan(atan2_deg(1, not_a_number)));
}

TEST(Degrees, InverseFunctions_GiveDegrees) {
    EXPECT_DOUBLE_EQ(asin_deg(1), 90.0);
    EXPECT_DOUBLE_EQ(asin_deg(-0.5), -30.0);
    EXPECT_DOUBLE_EQ(acos_deg(-1), 180.0);
    EXPECT_DOUBLE_EQ(acos_deg(0.5), 60.0);
    EXPECT_DOUBLE_EQ(atan_deg(1), 45.0);
    EXPECT_DOUBLE_EQ(atan_deg(-infinity), -90.0);
    EXPECT_DOUBLE_EQ(atan2_deg(1, -1), 135.0);
    EXPECT_DOUBLE_EQ(atan2_deg(-1, 0), -90.0);
    EXPECT_EQ(atan2_deg(0, 1), 0.0);
    EXPECT_EQ(atan2_deg(0, 0), 0.0);
    EXPECT_DOUBLE_EQ(atan2_deg(0, -1), 180.0);
    EXPECT_DOUBLE_EQ(atan2_deg(-0.0, -1), -180.0);
    EXPECT_TRUE(std::isnan(asin_deg(-infinity)));
    EXPECT_TRUE(std::isnan(asin_deg(1.5)));
    EXPECT_TRUE(std::isnan(acos_deg(-1.5)));
}

TEST(Rounding, Pround_RoundsToThePowerOfTen) {
    EXPECT_DOUBLE_EQ(pround(3.14159, -2), 3.14);
    EXPECT_EQ(pround(12345, 3), 12000.0);
    EXPECT_EQ(pround(12500, 3), 13000.0);
    EXPECT_EQ(pround(2.5, 0), 3.0);
    EXPECT_EQ(pround(-2.5, 0), -2.0);
    EXPECT_EQ(pround(-2.6, 0), -3.0);
    EXPECT_EQ(pround(0, 5), 0.0);
    const volatile double quotient = 1.005 / std::pow(10.0, -2.0);
    EXPECT_DOUBLE_EQ(pround(1.005, -2), std::floor(quotient + 0.5) * std::pow(10.0, -2.0));
}

// 2.675 is a little less than that, but a hundredth of it is nearest to 267.5.
TEST(Rounding, Pround_RoundsEachStepToADouble) {
    EXPECT_EQ(pround(2.675, -2), 268 * 0.01);
    EXPECT_EQ(pround(1.005, -2), 100 * 0.01);
}

// Every power of ten that a double holds, those below the normal numbers too.
TEST(Rounding, EachPowerOfTen_IsTheNearestDouble) {
    for (int exponent = -323; exponent <= 308; ++exponent)
        EXPECT_EQ(pround(std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr), exponent),
                  std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr))
            << exponent;
}

TEST(Rounding, ProundWithHugeExponents_IsDefined) {
    for (const int exponent : {400, 401, std::numeric_limits<int>::max()})
        EXPECT_TRUE(std::isnan(pround(5, exponent))) << exponent; // 0 times infinity
    for (const int exponent : {-400, -401, std::numeric_limits<int>::min()})
        EXPECT_TRUE(std::isnan(pround(5, exponent))) << exponent; // infinity times 0
    EXPECT_EQ(pround(infinity, 0), infinity);
    EXPECT_TRUE(std::isnan(pround(not_a_number, 0)));
}

TEST(Rounding, RoundSig_KeepsSignificantDigits) {
    EXPECT_DOUBLE_EQ(RoundSig(1234.567, 3), 1230.0);
    EXPECT_DOUBLE_EQ(RoundSig(-1234.567, 3), -1230.0);
    EXPECT_DOUBLE_EQ(RoundSig(1234.567, 6), 1234.57);
    EXPECT_DOUBLE_EQ(RoundSig(1234.567, 4), 1235.0);
    EXPECT_DOUBLE_EQ(RoundSig(1.5, 1), 2.0);
    EXPECT_DOUBLE_EQ(RoundSig(-1.5, 1), -1.0);
    EXPECT_DOUBLE_EQ(RoundSig(1e300, 2), 1e300);
    EXPECT_DOUBLE_EQ(RoundSig(1234.567, 0), 0.0);
    EXPECT_DOUBLE_EQ(RoundSig(9876, 0), 10000.0);
    EXPECT_EQ(RoundSig(1.0, 1), 1.0);
    EXPECT_DOUBLE_EQ(RoundSig(-1.0, 3), -1.0);
    EXPECT_DOUBLE_EQ(RoundSig(999.6, 3), 1000.0);
    EXPECT_DOUBLE_EQ(RoundSig(-9.99, 1), -10.0);
}

// The number of digits changes exactly at a power of ten.
TEST(Rounding, RoundSigAtEachPowerOfTen_CountsItsDigits) {
    double power = 1.0;
    for (int exponent = 0; exponent <= 15; ++exponent, power *= 10.0) {
        EXPECT_DOUBLE_EQ(RoundSig(1.26 * power, 2), 1.3 * power) << exponent;
        EXPECT_DOUBLE_EQ(RoundSig(power, 1), power) << exponent;
        if (exponent > 0) {
            EXPECT_DOUBLE_EQ(RoundSig(0.9926 * power, 3), 0.993 * power) << exponent;
        }
    }
}

TEST(Rounding, RoundSigWithoutWholePart_GivesZeroOrNotANumber) {
    for (const double value : {0.0, -0.0, 0.5, 0.999, -0.999, 1e-300, infinity, -infinity, not_a_number})
        for (const unsigned digits : {1U, 3U, 8U, 400U, std::numeric_limits<unsigned>::max()})
            EXPECT_EQ(RoundSig(value, digits), 0.0) << value << " " << digits;
    for (const double value : {0.0, 0.5, -0.999, infinity, -infinity, not_a_number})
        EXPECT_TRUE(std::isnan(RoundSig(value, 0))) << value;
}

TEST(Rounding, RoundSigWithHugeDigits_WrapsAndIsDefined) {
    // The exponent wraps in 32 bits: -1 - 4 here.
    EXPECT_DOUBLE_EQ(RoundSig(1234.5, std::numeric_limits<unsigned>::max()), 0.0);
    EXPECT_DOUBLE_EQ(RoundSig(99999.0, std::numeric_limits<unsigned>::max()), 0.0);
    EXPECT_EQ(RoundSig(1234.5, 0x80000004U), 0.0);          // the lowest exponent: the power is 0
    EXPECT_TRUE(std::isnan(RoundSig(1234.5, 0x7FFFFFFFU))); // infinity by infinity
    EXPECT_TRUE(std::isnan(RoundSig(1234.5, 1000)));
}

TEST(Rounding, FloatToDouble_KeepsEightDigits) {
    EXPECT_EQ(FloatToDouble(0.0F), 0.0);
    EXPECT_EQ(FloatToDouble(0.75F), 0.0);
    EXPECT_EQ(FloatToDouble(-0.75F), 0.0);
    EXPECT_EQ(FloatToDouble(1234.5F), 1234.5);
    EXPECT_DOUBLE_EQ(FloatToDouble(1234.56F), 1234.5601);
    EXPECT_DOUBLE_EQ(FloatToDouble(-1234.56F), -1234.5601);
    EXPECT_EQ(FloatToDouble(16777216.0F), 16777216.0);
    EXPECT_EQ(FloatToDouble(std::numeric_limits<float>::infinity()), 0.0);
    EXPECT_EQ(FloatToDouble(std::numeric_limits<float>::quiet_NaN()), 0.0);
    EXPECT_EQ(FloatToDouble(1.0F), 1.0);
    EXPECT_DOUBLE_EQ(FloatToDouble(3.4e38F), 3.4e38);
}

TEST(Signs, AreMinusOneZeroOrOne) {
    EXPECT_EQ(lsgn(0), 0);
    EXPECT_EQ(lsgn(5), 1);
    EXPECT_EQ(lsgn(-5), -1);
    EXPECT_EQ(lsgn(std::numeric_limits<zr_long>::min()), -1);
    EXPECT_EQ(lsgn(std::numeric_limits<zr_long>::max()), 1);
    EXPECT_EQ(fsgn(1e-310), 1.0);
    EXPECT_EQ(fsgn(-infinity), -1.0);
    EXPECT_EQ(fsgn(infinity), 1.0);
    EXPECT_EQ(fsgn(-1e-310), -1.0);
    EXPECT_EQ(fsgn(0.0), 0.0);
    EXPECT_EQ(fsgn(-0.0), 0.0);
    EXPECT_FALSE(std::signbit(fsgn(-0.0)));
    EXPECT_EQ(fsgn(not_a_number), 0.0);
}

TEST(SpecialValues, AreTold) {
    EXPECT_NE(zr_isnan(not_a_number), 0);
    EXPECT_NE(zr_isnan(-not_a_number), 0);
    EXPECT_EQ(zr_isnan(infinity), 0);
    EXPECT_EQ(zr_isnan(-infinity), 0);
    EXPECT_EQ(zr_isnan(0.0), 0);
    EXPECT_EQ(zr_isinf(infinity), 1);
    EXPECT_EQ(zr_isinf(-infinity), 1);
    EXPECT_EQ(zr_isinf(not_a_number), 0);
    EXPECT_EQ(zr_isinf(std::numeric_limits<double>::max()), 0);
    EXPECT_EQ(zr_isinf(std::numeric_limits<double>::lowest()), 0);
    EXPECT_EQ(zr_isinf(0.0), 0);
}

TEST(Waiting, NeverEndsEarly) {
    using clock = std::chrono::steady_clock;
    for (const zr_ulong milliseconds : {zr_ulong{0}, zr_ulong{1}, zr_ulong{17}, zr_ulong{60}}) {
        const clock::time_point start = clock::now();
        zr_wait(milliseconds);
        EXPECT_GE(clock::now() - start, std::chrono::milliseconds(milliseconds));
    }
    zr_pause();
}

TEST(Sound, GivesWhatTheSystemGives) {
    static int calls;
    calls = 0;
    zr::platform::services.simple_sound = [] { return ++calls; };
    EXPECT_EQ(zr_beep(), 1);
    EXPECT_EQ(zr_tone(), 2);
    zr::platform::services.simple_sound = [] { return 0; };
    EXPECT_EQ(zr_beep(), 0);
    EXPECT_EQ(zr_tone(), 0);
    zr::platform::services = zr::platform::Services();
    EXPECT_EQ(zr_beep(), zr::platform::backend::SimpleSound());
    EXPECT_EQ(zr_tone(), zr::platform::backend::SimpleSound());
}

} // namespace
