// Time of day, calendar, texts and waiting.
#include "platform/clock.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <mutex>

#include "platform/date_text.h"

namespace zr::platform {

namespace {

constexpr std::int64_t day_seconds = 86400;

// The zone that the C library converts with.
class Zone {
public:
    // Makes it that of TZ, or of the system without it. tzset alone would do, but it asks the disk each time for the
    // file that the zone was read from, which takes many times as long as a conversion.
    void FollowEnvironment() {
        const char *name = std::getenv("TZ");
        const std::lock_guard<std::mutex> lock(m_mutex);
        const bool is_set = name != nullptr;
        if (m_known && is_set == m_is_set && (!is_set || std::strcmp(name, m_name) == 0))
            return;
        tzset();
        m_is_set = is_set;
        m_known = !is_set || std::strlen(name) < sizeof m_name;
        if (is_set && m_known)
            std::strcpy(m_name, name);
    }

private:
    std::mutex m_mutex;
    bool m_known = false;
    bool m_is_set = false;
    char m_name[128] = {}; // longer ones are set anew each time
};

Zone zone;

// LocalCalendar in the zone that was followed last.
bool CalendarOf(std::int64_t time, Calendar &out) {
    const auto system_time = static_cast<std::time_t>(time); // 32 bits on some builds
    std::tm fields;
    if (time < first_time || time > last_time || system_time != time || localtime_r(&system_time, &fields) == nullptr)
        return false;
    out = {fields.tm_sec,         fields.tm_min,  fields.tm_hour, fields.tm_mday,     fields.tm_mon + 1,
           fields.tm_year + 1900, fields.tm_wday, fields.tm_yday, fields.tm_isdst > 0};
    return true;
}

// What the calendar of a time is ahead of UTC, in seconds.
std::int64_t OffsetOf(const Calendar &c, std::int64_t time) {
    return DayNumber(c.year, c.month, c.day) * day_seconds + c.hour * 3600 + c.minute * 60 + c.second - time;
}

// What the clocks are ahead of UTC at a time, or at the nearest one that has a calendar, in seconds.
std::int64_t OffsetAt(std::int64_t time) {
    Calendar c{};
    const std::int64_t inside = std::clamp(time, first_time, last_time);
    return CalendarOf(inside, c) ? OffsetOf(c, inside) : 0;
}

// The time at which the clocks show what would be `shown` in UTC.
std::int64_t TimeShown(std::int64_t shown) {
    const std::int64_t after = OffsetAt(shown + day_seconds);
    const std::int64_t before = OffsetAt(shown - day_seconds);
    const bool is_before = before != after && OffsetAt(shown - after) != after && OffsetAt(shown - before) == before;
    return shown - (is_before ? before : after);
}

// `shown`, a time as UTC, as the fields that stand for it.
void SetFields(std::int64_t shown, bool summer, std::tm &fields) {
    const std::int64_t day = shown >= 0 ? shown / day_seconds : -((-shown + day_seconds - 1) / day_seconds);
    const auto second = static_cast<int>(shown - day * day_seconds);
    const Date date = DateOfDay(day);
    fields.tm_sec = second % 60;
    fields.tm_min = second / 60 % 60;
    fields.tm_hour = second / 3600;
    fields.tm_mday = date.day;
    fields.tm_mon = date.month - 1;
    fields.tm_year = date.year - 1900;
    fields.tm_wday = WeekDay(day);
    fields.tm_yday = static_cast<int>(day - DayNumber(date.year, 1, 1));
    fields.tm_isdst = summer ? 1 : 0;
}

DateForm UserDateForm() {
    for (const char *name : {"LC_ALL", "LC_TIME", "LANG"}) {
        const char *locale = std::getenv(name);
        if (locale != nullptr && *locale != '\0')
            return DateFormOf(locale);
    }
    return DateForm::iso;
}

} // namespace

std::int64_t backend::Now() {
    return std::time(nullptr);
}

std::int64_t backend::NowMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

bool LocalCalendar(std::int64_t time, Calendar &out) {
    zone.FollowEnvironment();
    return CalendarOf(time, out);
}

std::int64_t TimeOfLocal(std::tm &fields) {
    // The month may count years.
    const std::int64_t months = std::int64_t{fields.tm_year} * 12 + fields.tm_mon;
    if (months < 70 * 12 || months >= 1101 * 12)
        return -1;
    const std::int64_t first_day =
        DayNumber(static_cast<int>(months / 12) + 1900, static_cast<int>(months % 12) + 1, 1);
    const std::int64_t shown = (first_day + fields.tm_mday - 1) * day_seconds + std::int64_t{fields.tm_hour} * 3600 +
                               std::int64_t{fields.tm_min} * 60 + fields.tm_sec;
    zone.FollowEnvironment();
    const std::int64_t time = TimeShown(shown);
    Calendar c{};
    if (!CalendarOf(time, c)) {
        SetFields(shown, false, fields);
        return -1;
    }
    SetFields(time + OffsetOf(c, time), c.summer, fields);
    return time;
}

bool UserDateText(const Calendar &calendar, bool long_form, char (&out)[80]) {
    return DateText(UserDateForm(), {calendar.year, calendar.month, calendar.day}, long_form, out);
}

bool UserTimeText(const Calendar &calendar, bool seconds, char (&out)[80]) {
    return TimeText(UserDateForm(), calendar.hour, calendar.minute, calendar.second, seconds, out);
}

void Wait(std::uint32_t milliseconds) {
    timespec end{};
    clock_gettime(CLOCK_MONOTONIC, &end);
    const std::int64_t nanoseconds = std::int64_t{milliseconds % 1000} * 1000000 + end.tv_nsec;
    end.tv_sec += static_cast<std::time_t>(milliseconds / 1000 + nanoseconds / 1000000000);
    end.tv_nsec = static_cast<long>(nanoseconds % 1000000000);
    // Signals end a sleep early.
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR || milliseconds == 0xFFFFFFFF) {
    }
}

} // namespace zr::platform
