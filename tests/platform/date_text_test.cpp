// Dates and times as texts, against the table of the system's own, and dates as numbers of days.
#include "platform/date_text.h"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "golden_table.h"

namespace {

using namespace zr::platform;

std::string DateTextOf(DateForm form, const Date &date, bool long_form) {
    char text[80] = "untouched";
    return DateText(form, date, long_form, text) ? text : "failed " + std::string(text);
}

std::string TimeTextOf(DateForm form, int hour, int minute, int second, bool seconds) {
    char text[80] = "untouched";
    return TimeText(form, hour, minute, second, seconds, text) ? text : "failed " + std::string(text);
}

DateForm FormOf(const std::string &locale) {
    return locale.substr(0, 4) == "1031" ? DateForm::german : DateForm::english;
}

// Without the bit that asks for the system's own settings rather than the user's.
unsigned Flags(const GoldenTable::Row &row) {
    return static_cast<unsigned>(std::stoul(row.at("flags"), nullptr, 16)) & 0x7FFFFFFFU;
}

// What the system answers by its documentation, else what was measured.
std::string ExpectedDate(const GoldenTable::Row &row) {
    const std::string &documented = row.at("windows_documented");
    if (row.at("ret") == "0" || documented.find("ret 0") != std::string::npos)
        return "failed untouched";
    const std::size_t value = documented.find("dd.MM.yyyy: ");
    return value != std::string::npos ? documented.substr(value + 12) : row.at("text");
}

TEST(DateText, DateTable_Holds) {
    const GoldenTable table("win_dateformat.tsv");
    int checked = 0;
    for (const GoldenTable::Row &row : table.Rows()) {
        Date date{};
        if (Flags(row) != 1 && Flags(row) != 2) // year and month alone: not a form of ours
            continue;
        ASSERT_EQ(std::sscanf(row.at("date").c_str(), "%d-%d-%d", &date.year, &date.month, &date.day), 3);
        EXPECT_EQ(DateTextOf(FormOf(row.at("locale")), date, Flags(row) == 2), ExpectedDate(row))
            << row.at("locale") << " " << row.at("date") << " " << row.at("flags");
        ++checked;
    }
    EXPECT_EQ(checked, 184);
}

TEST(DateText, TimeTable_Holds) {
    const GoldenTable table("win_timeformat.tsv");
    int checked = 0;
    for (const GoldenTable::Row &row : table.Rows()) {
        int hour = 0;
        int minute = 0;
        int second = 0;
        if (Flags(row) != 0 && Flags(row) != 2) // hours alone, or 24 of them: not forms of ours
            continue;
        ASSERT_EQ(std::sscanf(row.at("time").c_str(), "%d:%d:%d", &hour, &minute, &second), 3);
        EXPECT_EQ(TimeTextOf(FormOf(row.at("locale")), hour, minute, second, Flags(row) == 0),
                  row.at("ret") == "0" ? "failed untouched" : row.at("text"))
            << row.at("locale") << " " << row.at("time") << " " << row.at("flags");
        ++checked;
    }
    EXPECT_EQ(checked, 103);
}

TEST(DateText, IsoForm_IsTheSameShortAndLong) {
    EXPECT_EQ(DateTextOf(DateForm::iso, {2013, 3, 5}, false), "2013-03-05");
    EXPECT_EQ(DateTextOf(DateForm::iso, {2013, 3, 5}, true), "2013-03-05");
    EXPECT_EQ(TimeTextOf(DateForm::iso, 7, 8, 9, false), "07:08");
    EXPECT_EQ(TimeTextOf(DateForm::iso, 7, 8, 9, true), "07:08:09");
}

TEST(DateText, WhatIsNoDateOrTime_Fails) {
    for (const DateForm form : {DateForm::german, DateForm::english, DateForm::iso}) {
        for (const Date &date :
             {Date{2013, 0, 1}, Date{2013, 13, 1}, Date{2013, 1, 0}, Date{2013, 1, 32}, Date{2013, 4, 31},
              Date{1900, 2, 29}, Date{1600, 12, 31}, Date{30828, 1, 1}, Date{-1, 1, 1}})
            EXPECT_EQ(DateTextOf(form, date, true), "failed untouched");
        EXPECT_EQ(TimeTextOf(form, 24, 0, 0, true), "failed untouched");
        EXPECT_EQ(TimeTextOf(form, 0, 60, 0, true), "failed untouched");
        EXPECT_EQ(TimeTextOf(form, 0, 0, 60, true), "failed untouched");
        EXPECT_EQ(TimeTextOf(form, -1, 0, 0, true), "failed untouched");
    }
    EXPECT_EQ(DateTextOf(DateForm::english, {2000, 2, 29}, false), "2/29/2000");
}

TEST(DateText, FormComesFromTheLanguageOfTheLocale) {
    for (const char *locale : {"de", "de_DE", "de_AT.UTF-8", "de_DE@euro", "de.UTF-8"})
        EXPECT_EQ(DateFormOf(locale), DateForm::german) << locale;
    for (const char *locale : {"en", "en_US.UTF-8", "en_GB"})
        EXPECT_EQ(DateFormOf(locale), DateForm::english) << locale;
    for (const char *locale : {"", "C", "C.UTF-8", "POSIX", "fr_FR", "d", "den_DK", "enm", "DE"})
        EXPECT_EQ(DateFormOf(locale), DateForm::iso) << locale;
}

TEST(DayNumbers, AgreeWithTheStandardCalendar) {
    using namespace std::chrono;
    for (std::int64_t day = -800000; day < 11000000; day += 97) {
        const year_month_day expected{sys_days{days{day}}};
        const Date date = DateOfDay(day);
        ASSERT_EQ(date.year, static_cast<int>(expected.year())) << day;
        ASSERT_EQ(static_cast<unsigned>(date.month), static_cast<unsigned>(expected.month())) << day;
        ASSERT_EQ(static_cast<unsigned>(date.day), static_cast<unsigned>(expected.day())) << day;
        ASSERT_EQ(DayNumber(date.year, date.month, date.day), day);
        ASSERT_EQ(static_cast<unsigned>(WeekDay(day)), weekday{sys_days{days{day}}}.c_encoding()) << day;
    }
}

} // namespace
