// The portable forms of dates and times beside the system's own.
#include "platform/date_text.h"

#include <string>

#include <gtest/gtest.h>

#include <windows.h>

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

} // namespace
