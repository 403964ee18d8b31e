// Time of day, calendar, texts and waiting.
#include "platform/clock.h"

#include <ctime>

#include <windows.h>

namespace zr::platform {

namespace {

constexpr int text_limit = 79; // bytes that a text of the system may take

SYSTEMTIME SystemTimeOf(const Calendar &c) {
    SYSTEMTIME time{};
    time.wYear = static_cast<WORD>(c.year);
    time.wMonth = static_cast<WORD>(c.month);
    time.wDay = static_cast<WORD>(c.day);
    time.wDayOfWeek = static_cast<WORD>(c.week_day);
    time.wHour = static_cast<WORD>(c.hour);
    time.wMinute = static_cast<WORD>(c.minute);
    time.wSecond = static_cast<WORD>(c.second);
    return time;
}

// Milliseconds of a clock that nobody sets.
std::int64_t SteadyMilliseconds() {
    LARGE_INTEGER ticks;
    LARGE_INTEGER per_second;
    QueryPerformanceCounter(&ticks);
    QueryPerformanceFrequency(&per_second);
    return ticks.QuadPart / per_second.QuadPart * 1000 +
           ticks.QuadPart % per_second.QuadPart * 1000 / per_second.QuadPart;
}

} // namespace

std::int64_t backend::Now() {
    return _time64(nullptr);
}

std::int64_t backend::NowMilliseconds() {
    constexpr std::int64_t ticks_of_a_millisecond = 10000;
    constexpr std::int64_t milliseconds_1601_to_1970 = 11644473600000;
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const std::int64_t ticks = static_cast<std::int64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime;
    return ticks / ticks_of_a_millisecond - milliseconds_1601_to_1970;
}

bool LocalCalendar(std::int64_t time, Calendar &out) {
    const __time64_t system_time = time;
    std::tm fields;
    if (time < first_time || time > last_time || _localtime64_s(&fields, &system_time) != 0)
        return false;
    out = {fields.tm_sec,         fields.tm_min,  fields.tm_hour, fields.tm_mday,     fields.tm_mon + 1,
           fields.tm_year + 1900, fields.tm_wday, fields.tm_yday, fields.tm_isdst > 0};
    return true;
}

std::int64_t TimeOfLocal(std::tm &fields) {
    fields.tm_isdst = -1;
    const std::int64_t time = _mktime64(&fields);
    return time >= first_time && time <= last_time ? time : -1;
}

bool UserDateText(const Calendar &calendar, bool long_form, char (&out)[80]) {
    const SYSTEMTIME time = SystemTimeOf(calendar);
    return GetDateFormatA(LOCALE_SYSTEM_DEFAULT, long_form ? DATE_LONGDATE : DATE_SHORTDATE, &time, nullptr, out,
                          text_limit) > 0;
}

bool UserTimeText(const Calendar &calendar, bool seconds, char (&out)[80]) {
    const SYSTEMTIME time = SystemTimeOf(calendar);
    return GetTimeFormatA(LOCALE_SYSTEM_DEFAULT, seconds ? 0 : TIME_NOSECONDS, &time, nullptr, out, text_limit) > 0;
}

void Wait(std::uint32_t milliseconds) {
    const std::int64_t end = SteadyMilliseconds() + milliseconds + 1; // of the millisecond under way, a part is gone
    Sleep(milliseconds);
    // The system may wake up to one tick too early.
    while (milliseconds > 0 && SteadyMilliseconds() < end)
        Sleep(1);
}

} // namespace zr::platform
