// The portable forms of dates and times beside the system's own, the public texts in the user's locale, and the tables
// of calendars in the zone of the process.
#include "platform/date_text.h"

#include <cstdlib>
#include <ctime>
#include <string>

#include <gtest/gtest.h>
#include <zrclb/clock.h>

#include <windows.h>

#include "platform/zone_rows.h"

namespace {

using namespace zr::platform;

constexpr LCID german = MAKELCID(MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN), SORT_DEFAULT);
constexpr LCID english = MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT);

std::string SystemDate(LCID locale, DWORD flags, const SYSTEMTIME &time) {
    char text[80] = "";
    return GetDateFormatA(locale, flags | LOCALE_NOUSEROVERRIDE, &time, nullptr, text, sizeof text) > 0 ? text
                                                                                                        : "failed";
}

std::string SystemTime(LCID locale, DWORD flags, const SYSTEMTIME &time) {
    char text[80] = "";
    return GetTimeFormatA(locale, flags | LOCALE_NOUSEROVERRIDE, &time, nullptr, text, sizeof text) > 0 ? text
                                                                                                        : "failed";
}

// The short German date is left out: Wine writes day and month with one digit there.
TEST(WindowsDates, PortableDatesAgreeWithTheSystem) {
    for (std::int64_t day = 0; day < 376000; day += 37) {
        const Date date = DateOfDay(day);
        SYSTEMTIME time{};
        time.wYear = static_cast<WORD>(date.year);
        time.wMonth = static_cast<WORD>(date.month);
        time.wDay = static_cast<WORD>(date.day);
        char text[80];
        ASSERT_TRUE(DateText(DateForm::english, date, false, text));
        ASSERT_EQ(text, SystemDate(english, DATE_SHORTDATE, time));
        ASSERT_TRUE(DateText(DateForm::english, date, true, text));
        ASSERT_EQ(text, SystemDate(english, DATE_LONGDATE, time));
        ASSERT_TRUE(DateText(DateForm::german, date, true, text));
        ASSERT_EQ(text, SystemDate(german, DATE_LONGDATE, time));
    }
}

TEST(WindowsDates, PortableTimesAgreeWithTheSystem) {
    for (int second = 0; second < 86400; second += 61) {
        SYSTEMTIME time{};
        time.wYear = 2013;
        time.wMonth = 3;
        time.wDay = 5;
        time.wHour = static_cast<WORD>(second / 3600);
        time.wMinute = static_cast<WORD>(second / 60 % 60);
        time.wSecond = static_cast<WORD>(second % 60);
        for (const bool seconds : {false, true}) {
            const DWORD flags = seconds ? 0 : TIME_NOSECONDS;
            char text[80];
            ASSERT_TRUE(TimeText(DateForm::english, time.wHour, time.wMinute, time.wSecond, seconds, text));
            ASSERT_EQ(text, SystemTime(english, flags, time));
            ASSERT_TRUE(TimeText(DateForm::german, time.wHour, time.wMinute, time.wSecond, seconds, text));
            ASSERT_EQ(text, SystemTime(german, flags, time));
        }
    }
}

// Formats 2 and 3 are the system's texts with its own settings, in the locale of the user.
TEST(WindowsDates, SystemFormatsAreTheSystemsTexts) {
    for (const std::int64_t time : {std::int64_t{86400}, std::int64_t{1362467289}, std::int64_t{4102488000}}) {
        Calendar c{};
        ASSERT_TRUE(LocalCalendar(time, c));
        SYSTEMTIME system_time{};
        system_time.wYear = static_cast<WORD>(c.year);
        system_time.wMonth = static_cast<WORD>(c.month);
        system_time.wDay = static_cast<WORD>(c.day);
        system_time.wHour = static_cast<WORD>(c.hour);
        system_time.wMinute = static_cast<WORD>(c.minute);
        system_time.wSecond = static_cast<WORD>(c.second);
        char text[79];
        ASSERT_GT(GetDateFormatA(2048, 1, &system_time, nullptr, text, sizeof text), 0);
        EXPECT_STREQ(clock_date(time, 2), text);
        ASSERT_GT(GetDateFormatA(2048, 2, &system_time, nullptr, text, sizeof text), 0);
        EXPECT_STREQ(clock_date(time, 3), text);
        ASSERT_GT(GetTimeFormatA(2048, 2, &system_time, nullptr, text, sizeof text), 0);
        EXPECT_STREQ(clock_time(time, 2), text);
        ASSERT_GT(GetTimeFormatA(2048, 0, &system_time, nullptr, text, sizeof text), 0);
        EXPECT_STREQ(clock_time(time, 3), text);
    }
}

// The system finds its zone in the host's variable TZ when the process starts. The runtime would read the same variable
// by rules of its own, so it must not see it.
TEST(WindowsZones, TablesHoldInTheZoneOfTheProcess) {
    const char *variable = std::getenv("TZ");
    const std::string zone = variable != nullptr ? variable : "";
    if (zone != "UTC" && zone != "Europe/Berlin")
        GTEST_SKIP() << "TZ names no zone of the tables";
    ASSERT_EQ(_putenv("TZ="), 0);
    _tzset();
    EXPECT_EQ(zone_rows::CheckCalendars(zone), zone == "UTC" ? 49 : 45);
    EXPECT_EQ(zone_rows::CheckClocks(zone), zone == "UTC" ? 24 : 26);
}

} // namespace
