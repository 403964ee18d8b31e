// Dates and times as texts, and calendar fields, in whatever zone the test runs.
#include <zrclb/clock.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "env/report_capture.h"
#include "platform/clock.h"
#include "platform/zone_rows.h"

namespace {

using zr::platform::services;

constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();

// Stops the clock at a time of the test's choice.
class Dates : public testing::Test {
protected:
    void SetUp() override {
        services.now = [] { return now; };
    }
    void TearDown() override { services = zr::platform::Services(); }

    // The time at which local clocks show the fields.
    static std::int64_t LocalTime(int year, int month, int day, int hour, int minute, int second) {
        clock_struct fields{second, minute, hour, day, month - 1, year - 1900, 0, 0};
        return clock_makevalue(&fields);
    }

    static inline std::int64_t now = 1000000000;
};

TEST_F(Dates, Fields_StandInTheOrderOfTheStandardRecord) {
    EXPECT_EQ(offsetof(clock_struct, second), 0U);
    EXPECT_EQ(offsetof(clock_struct, minute), sizeof(int));
    EXPECT_EQ(offsetof(clock_struct, hour), 2 * sizeof(int));
    EXPECT_EQ(offsetof(clock_struct, day), 3 * sizeof(int));
    EXPECT_EQ(offsetof(clock_struct, month), 4 * sizeof(int));
    EXPECT_EQ(offsetof(clock_struct, year), 5 * sizeof(int));
    EXPECT_EQ(offsetof(clock_struct, week_day), 6 * sizeof(int));
    EXPECT_EQ(offsetof(clock_struct, year_day), 7 * sizeof(int));
    EXPECT_EQ(sizeof(clock_struct), 8 * sizeof(int));
}

TEST_F(Dates, Value_IsThePresentTime) {
    EXPECT_EQ(clock_value(), 1000000000);
    now = 5000000000;
    EXPECT_EQ(clock_value(), 5000000000);
    now = 1000000000;
}

TEST_F(Dates, DateFormats_ShowDayMonthYear) {
    const std::int64_t time = LocalTime(2013, 3, 5, 12, 0, 0);
    EXPECT_STREQ(clock_date(time, 0), "05.03.13");
    EXPECT_STREQ(clock_date(time, 1), "05. Maerz 2013");
    EXPECT_STREQ(clock_date(LocalTime(2009, 12, 31, 12, 0, 0), 0), "31.12.09");
    EXPECT_STREQ(clock_date(LocalTime(2000, 2, 29, 12, 0, 0), 0), "29.02.00");
}

TEST_F(Dates, EachMonth_HasItsName) {
    const char *names[] = {"Januar", "Februar", "Maerz",     "April",   "Mai",      "Juni",
                           "Juli",   "August",  "September", "Oktober", "November", "Dezember"};
    for (int month = 1; month <= 12; ++month)
        EXPECT_EQ(clock_date(LocalTime(2021, month, 15, 12, 0, 0), 1),
                  std::string("15. ") + names[month - 1] + " 2021");
}

TEST_F(Dates, TimeFormats_ShowHourMinuteSecond) {
    const std::int64_t time = LocalTime(2013, 3, 5, 7, 8, 9);
    EXPECT_STREQ(clock_time(time, 0), "07:08");
    EXPECT_STREQ(clock_time(time, 1), "07:08:09");
}

TEST_F(Dates, UnknownFormats_CountAsOne) {
    const std::int64_t time = LocalTime(2013, 3, 5, 7, 8, 9);
    for (const int format : {7, -1, 4, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_STREQ(clock_date(time, format), "05. Maerz 2013") << format;
        EXPECT_STREQ(clock_time(time, format), "07:08:09") << format;
    }
}

TEST_F(Dates, SystemFormats_AreTheUsersTexts) {
    const std::int64_t time = LocalTime(2013, 3, 5, 7, 8, 9);
    zr::platform::Calendar c{};
    ASSERT_TRUE(zr::platform::LocalCalendar(time, c));
    char text[80];
    ASSERT_TRUE(zr::platform::UserDateText(c, false, text));
    EXPECT_STREQ(clock_date(time, 2), text);
    ASSERT_TRUE(zr::platform::UserDateText(c, true, text));
    EXPECT_STREQ(clock_date(time, 3), text);
    ASSERT_TRUE(zr::platform::UserTimeText(c, false, text));
    EXPECT_STREQ(clock_time(time, 2), text);
    ASSERT_TRUE(zr::platform::UserTimeText(c, true, text));
    EXPECT_STREQ(clock_time(time, 3), text);
}

TEST_F(Dates, TimeZero_MeansNow) {
    now = LocalTime(2024, 12, 24, 18, 30, 15);
    EXPECT_STREQ(clock_date(0, 0), "24.12.24");
    EXPECT_STREQ(clock_time(0, 1), "18:30:15");
    clock_struct fields{};
    EXPECT_EQ(clock_makestruct(0, &fields), &fields);
    EXPECT_EQ(fields.year, 124);
    EXPECT_EQ(fields.month, 11);
    EXPECT_EQ(fields.day, 24);
    EXPECT_EQ(fields.hour, 18);
    now = 4102488000; // 1 January 2100, 12:00 UTC: more than 32 bits
    clock_makestruct(0, &fields);
    EXPECT_EQ(fields.year, 200);
    EXPECT_EQ(std::string(clock_date(0, 1)).substr(4), "Januar 2100");
    now = -5; // a clock that was never set: now has no calendar either
    clock_makestruct(0, &fields);
    EXPECT_EQ(fields.day, 0);
    EXPECT_STREQ(clock_date(0, 1), "???");
    now = 1000000000;
}

TEST_F(Dates, TimesWithoutCalendar_GiveQuestionMarks) {
    for (const std::int64_t time :
         {std::int64_t{-1}, std::int64_t{-86400}, least, zr::platform::last_time + 1, std::int64_t{253402300800}, most})
        for (const int format : {0, 1, 2, 3, 7}) {
            EXPECT_STREQ(clock_date(time, format), "???") << time << " " << format;
            EXPECT_STREQ(clock_time(time, format), "???") << time << " " << format;
        }
    EXPECT_STRNE(clock_date(zr::platform::last_time, 0), "???");
}

TEST_F(Dates, TimesBeyond2038_HaveTexts) {
    const std::string date = clock_date(4102488000, 1); // 1 January 2100, 12:00 UTC
    EXPECT_EQ(date.substr(date.size() - 11), "Januar 2100");
}

TEST_F(Dates, Texts_OverwriteTheirOwnKind) {
    char *date = clock_date(1000000000, 0);
    char *time = clock_time(1000000000, 0);
    const std::string text = date;
    EXPECT_NE(date, time);
    EXPECT_EQ(clock_date(1100000000, 0), clock_date(1200000000, 1));
    EXPECT_EQ(clock_date(-1, 0), date);
    EXPECT_NE(text, date);
    EXPECT_EQ(clock_time(-1, 2), time);
    EXPECT_STREQ(date, "???");
}

TEST_F(Dates, Makestruct_GivesTheFields) {
    const auto time = static_cast<zr_long>(LocalTime(2012, 12, 31, 23, 59, 58));
    clock_struct fields;
    std::memset(&fields, 0x55, sizeof fields);
    EXPECT_EQ(clock_makestruct(time, &fields), &fields);
    EXPECT_EQ(fields.second, 58);
    EXPECT_EQ(fields.minute, 59);
    EXPECT_EQ(fields.hour, 23);
    EXPECT_EQ(fields.day, 31);
    EXPECT_EQ(fields.month, 11);
    EXPECT_EQ(fields.year, 112);
    EXPECT_EQ(fields.week_day, 1);
    EXPECT_EQ(fields.year_day, 365);
    EXPECT_EQ(clock_makevalue(&fields), time);
}

TEST_F(Dates, MakestructOfAFailure_ClearsTheFields) {
    for (const zr_long time : {zr_long{-1}, zr_long{-86400}, std::numeric_limits<zr_long>::min()}) {
        clock_struct fields;
        std::memset(&fields, 0x55, sizeof fields);
        const clock_struct cleared{};
        EXPECT_EQ(clock_makestruct(time, &fields), &fields);
        EXPECT_EQ(std::memcmp(&fields, &cleared, sizeof fields), 0);
    }
    EXPECT_EQ(clock_makestruct(5, nullptr), nullptr);
}

TEST_F(Dates, Makevalue_WritesOnlyTheDaysBack) {
    clock_struct fields{60, 59, 25, 31, 12, 112, 77, 77}; // 32 January 2013, 02:00
    const zr_long time = clock_makevalue(&fields);
    EXPECT_EQ(time, LocalTime(2013, 2, 1, 2, 0, 0));
    EXPECT_EQ(fields.week_day, 5);
    EXPECT_EQ(fields.year_day, 31);
    EXPECT_EQ(fields.second, 60);
    EXPECT_EQ(fields.minute, 59);
    EXPECT_EQ(fields.hour, 25);
    EXPECT_EQ(fields.day, 31);
    EXPECT_EQ(fields.month, 12);
    EXPECT_EQ(fields.year, 112);
}

TEST_F(Dates, MakevalueOfAFailure_IsMinusOne) {
    EXPECT_EQ(clock_makevalue(nullptr), -1);
    for (const int year : {69, -1900, 1101, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        clock_struct fields{0, 0, 0, 1, 0, year, 9, 9};
        EXPECT_EQ(clock_makevalue(&fields), -1) << year;
        EXPECT_EQ(fields.year, year);
    }
}

TEST_F(Dates, MakevalueBeyond2038_GivesTheLow32Bits) {
    clock_struct fields{0, 0, 12, 1, 0, 200, 0, 0}; // 1 January 2100, noon
    const zr_long low = clock_makevalue(&fields);
    const std::int64_t lowest = 4102488000 - 86400;
    const std::int64_t time =
        lowest + static_cast<std::uint32_t>(static_cast<std::uint32_t>(low) - static_cast<std::uint32_t>(lowest));
    EXPECT_LE(time, lowest + 2 * 86400);
    EXPECT_STREQ(clock_date(time, 1), "01. Januar 2100");
    EXPECT_STREQ(clock_time(time, 1), "12:00:00");
    EXPECT_EQ(fields.week_day, 5);
}

TEST_F(Dates, Failures_ReportNothing) {
    zr::test::ReportCapture reports;
    clock_struct fields{0, 0, 0, 1, 0, 69, 0, 0};
    EXPECT_EQ(clock_makevalue(&fields), -1);
    EXPECT_EQ(clock_makevalue(nullptr), -1);
    clock_makestruct(-1, &fields);
    clock_makestruct(1, nullptr);
    EXPECT_STREQ(clock_date(-1, 2), "???");
    EXPECT_STREQ(clock_time(-1, 3), "???");
    EXPECT_EQ(reports.Take(), zr::test::Reports{});
}

// The tables in UTC, where the test runs in that zone; other zones have their tests with the back ends.
TEST_F(Dates, TablesHoldInUtc) {
    for (std::int64_t time = 86400; time < zr::platform::last_time; time += 86400 * 30) {
        zr::platform::Calendar c{};
        ASSERT_TRUE(zr::platform::LocalCalendar(time, c));
        if (c.hour != 0)
            GTEST_SKIP() << "the zone here is not UTC";
    }
    EXPECT_EQ(zone_rows::CheckCalendars("UTC"), 49);
    EXPECT_EQ(zone_rows::CheckClocks("UTC"), 24);
}

} // namespace
