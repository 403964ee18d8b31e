// Calendar, time texts and the way back, in whatever zone the test runs.
#include "platform/clock.h"

#include <chrono>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "golden_table.h"

namespace {

using namespace zr::platform;

std::string TextOf(std::int64_t time) {
    char text[26];
    std::memset(text, '#', sizeof text);
    CtimeText(time, text);
    return text;
}

// Days since 1970 of a date.
std::int64_t DayNumber(const Calendar &c) {
    using namespace std::chrono;
    const year_month_day date{year{c.year}, month{static_cast<unsigned>(c.month)}, day{static_cast<unsigned>(c.day)}};
    return sys_days{date}.time_since_epoch().count();
}

TEST(Clock, NowAgreesWithTheSystemClock) {
    const auto expected = std::chrono::system_clock::now().time_since_epoch();
    EXPECT_NEAR(static_cast<double>(Now()),
                static_cast<double>(std::chrono::duration_cast<std::chrono::seconds>(expected).count()), 5);
}

// Whatever the zone: it is less than a day off, fields belong together, and an hour later is an hour later.
TEST(Clock, CalendarFieldsBelongTogether) {
    for (std::int64_t time = 100000; time < last_time - 100000; time += 86400 * 97 + 3607) {
        Calendar c{};
        ASSERT_TRUE(LocalCalendar(time, c)) << time;
        const std::int64_t local = DayNumber(c) * 86400 + c.hour * 3600 + c.minute * 60 + c.second;
        ASSERT_LT(std::abs(local - time), 86400);
        ASSERT_EQ(c.week_day, (DayNumber(c) + 4) % 7);
        Calendar first = c;
        first.month = 1;
        first.day = 1;
        ASSERT_EQ(c.year_day, DayNumber(c) - DayNumber(first));
    }
}

TEST(Clock, TimesOutsideTheRangeFail) {
    for (const std::int64_t time :
         {std::int64_t{-1}, std::int64_t{-86400}, last_time + 1, std::int64_t{253402300799},
          std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        Calendar c{};
        c.year = 1234;
        EXPECT_FALSE(LocalCalendar(time, c)) << time;
        EXPECT_EQ(c.year, 1234);
        EXPECT_EQ(TextOf(time), "");
    }
}

TEST(Clock, EndsOfTheRangeHaveACalendar) {
    Calendar c{};
    EXPECT_TRUE(LocalCalendar(first_time, c));
    EXPECT_TRUE(c.year == 1970 || c.year == 1969);
    EXPECT_TRUE(LocalCalendar(last_time, c));
    EXPECT_TRUE(c.year == 3000 || c.year == 3001);
}

TEST(Clock, TextShowsTheCalendar) {
    for (const std::int64_t time : {std::int64_t{86400}, std::int64_t{951782400}, std::int64_t{1700000000}}) {
        Calendar c{};
        ASSERT_TRUE(LocalCalendar(time, c));
        const std::string text = TextOf(time);
        ASSERT_EQ(text.size(), 25U);
        EXPECT_EQ(text[24], '\n');
        EXPECT_EQ(text.substr(8, 2), (c.day < 10 ? " " : "") + std::to_string(c.day));
        EXPECT_EQ(text.substr(20, 4), std::to_string(c.year));
        EXPECT_EQ(std::stoi(text.substr(11, 2)), c.hour);
        EXPECT_EQ(std::stoi(text.substr(14, 2)), c.minute);
        EXPECT_EQ(std::stoi(text.substr(17, 2)), c.second);
    }
}

// Rows of the table in the zone that the test runs in; the other ones have their tests with the back ends.
TEST(Clock, TableRowsThatFailFailInEveryZone) {
    const GoldenTable table("crt_ctime.tsv");
    int checked = 0;
    for (const GoldenTable::Row &row : table.Rows())
        if (row.at("ctime64") == "\\N") {
            EXPECT_EQ(TextOf(std::stoll(row.at("time_value"))), "");
            ++checked;
        }
    EXPECT_EQ(checked, 8);
}

std::tm FieldsOf(const Calendar &c) {
    std::tm fields{};
    fields.tm_sec = c.second;
    fields.tm_min = c.minute;
    fields.tm_hour = c.hour;
    fields.tm_mday = c.day;
    fields.tm_mon = c.month - 1;
    fields.tm_year = c.year - 1900;
    return fields;
}

// One time or the other where clocks are put back: an hour apart at most.
TEST(Clock, LocalFieldsLeadBackToTheTime) {
    for (std::int64_t time = 200000; time < last_time - 200000; time += 86400 * 97 + 3607) {
        Calendar c{};
        ASSERT_TRUE(LocalCalendar(time, c));
        std::tm fields = FieldsOf(c);
        const std::int64_t back = TimeOfLocal(fields);
        ASSERT_LE(std::abs(back - time), 3600) << time;
        ASSERT_EQ(fields.tm_wday, c.week_day);
        ASSERT_EQ(fields.tm_yday, c.year_day);
        ASSERT_EQ(fields.tm_hour, c.hour);
    }
}

TEST(Clock, FieldsBeyondTheirRangeCarryOver) {
    Calendar c{};
    ASSERT_TRUE(LocalCalendar(1000000000, c));
    const std::tm regular = FieldsOf(c);
    std::tm fields = regular;
    fields.tm_mon += 12;
    fields.tm_year -= 1;
    fields.tm_hour += 48;
    fields.tm_mday -= 2;
    fields.tm_min -= 120;
    fields.tm_sec += 7200;
    EXPECT_EQ(TimeOfLocal(fields), 1000000000);
    EXPECT_EQ(fields.tm_mon, regular.tm_mon);
    EXPECT_EQ(fields.tm_year, regular.tm_year);
    EXPECT_EQ(fields.tm_mday, regular.tm_mday);
}

TEST(Clock, FieldsOutsideTheRangeHaveNoTime) {
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    for (const int year : {69, 0, -1900, 1101, 2013, most, least}) {
        std::tm fields{};
        fields.tm_mday = 1;
        fields.tm_year = year;
        EXPECT_EQ(TimeOfLocal(fields), -1) << year;
        EXPECT_EQ(fields.tm_year, year);
    }
    std::tm fields{};
    fields.tm_mday = 1;
    fields.tm_mon = -1;
    fields.tm_year = 70;
    EXPECT_EQ(TimeOfLocal(fields), -1);
    std::tm far{};
    far.tm_mday = far.tm_hour = far.tm_min = far.tm_sec = most;
    far.tm_year = 1100;
    EXPECT_EQ(TimeOfLocal(far), -1);
}

TEST(Clock, MillisecondsBelongToTheSeconds) {
    const std::int64_t before = Now();
    const std::int64_t milliseconds = NowMilliseconds();
    EXPECT_LE(before, milliseconds / 1000);
    EXPECT_LE(milliseconds / 1000, Now());
}

// The texts are the user's; that they hold the date and the time is all that can be said of them here.
TEST(Clock, UsersTextsHoldDateAndTime) {
    Calendar c{};
    ASSERT_TRUE(LocalCalendar(1000000000, c));
    char text[80];
    for (const bool long_form : {false, true}) {
        ASSERT_TRUE(UserDateText(c, long_form, text));
        EXPECT_NE(std::string(text).find(std::to_string(c.year % 100)), std::string::npos) << text;
    }
    ASSERT_TRUE(UserTimeText(c, true, text));
    EXPECT_NE(std::string(text).find(":" + std::to_string(c.minute) + ":" + std::to_string(c.second)),
              std::string::npos)
        << text;
    ASSERT_TRUE(UserTimeText(c, false, text));
    EXPECT_NE(std::string(text).find(":" + std::to_string(c.minute)), std::string::npos) << text;
    EXPECT_EQ(std::string(text).find(":" + std::to_string(c.second)), std::string::npos) << text;
}

} // namespace
