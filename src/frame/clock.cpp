// Time values, their calendar and their texts.
#include <zrclb/clock.h>

#include <cstdio>
#include <cstring>

#include "platform/clock.h"

namespace zr::frame {
namespace {

using platform::Calendar;

constexpr std::size_t text_size = 80;

char date_text[text_size];
char time_text[text_size];

constexpr const char *months[] = {"Januar", "Februar", "Maerz",     "April",   "Mai",      "Juni",
                                  "Juli",   "August",  "September", "Oktober", "November", "Dezember"};

// The calendar of `time`, of now if that is 0.
bool CalendarOf(std::int64_t time, Calendar &out) {
    return platform::LocalCalendar(time != 0 ? time : platform::Now(), out);
}

bool WriteDate(std::int64_t time, int format, char (&out)[text_size]) {
    Calendar c{};
    if (!CalendarOf(time, c))
        return false;
    if (format == 2 || format == 3)
        return platform::UserDateText(c, format == 3, out);
    if (format == 0)
        std::snprintf(out, sizeof out, "%02d.%02d.%02d", c.day, c.month, c.year % 100);
    else
        std::snprintf(out, sizeof out, "%02d. %s %4d", c.day, months[c.month - 1], c.year);
    return true;
}

bool WriteTime(std::int64_t time, int format, char (&out)[text_size]) {
    Calendar c{};
    if (!CalendarOf(time, c))
        return false;
    if (format == 2 || format == 3)
        return platform::UserTimeText(c, format == 3, out);
    if (format == 0)
        std::snprintf(out, sizeof out, "%02d:%02d", c.hour, c.minute);
    else
        std::snprintf(out, sizeof out, "%02d:%02d:%02d", c.hour, c.minute, c.second);
    return true;
}

} // namespace
} // namespace zr::frame

using namespace zr::frame;

extern "C" {

int64_t clock_value(void) noexcept {
    return zr::platform::Now();
}

char *clock_date(int64_t time, int format) noexcept {
    if (!WriteDate(time, format, date_text))
        std::strcpy(date_text, "???");
    return date_text;
}

char *clock_time(int64_t time, int format) noexcept {
    if (!WriteTime(time, format, time_text))
        std::strcpy(time_text, "???");
    return time_text;
}

clock_struct *clock_makestruct(zr_long time, clock_struct *out) noexcept {
    if (out == nullptr)
        return nullptr;
    Calendar c{};
    if (CalendarOf(time, c))
        *out = {c.second, c.minute, c.hour, c.day, c.month - 1, c.year - 1900, c.week_day, c.year_day};
    else
        *out = {};
    return out;
}

zr_long clock_makevalue(clock_struct *fields) noexcept {
    if (fields == nullptr)
        return -1;
    std::tm system_fields{};
    system_fields.tm_sec = fields->second;
    system_fields.tm_min = fields->minute;
    system_fields.tm_hour = fields->hour;
    system_fields.tm_mday = fields->day;
    system_fields.tm_mon = fields->month;
    system_fields.tm_year = fields->year;
    const std::int64_t time = zr::platform::TimeOfLocal(system_fields);
    fields->week_day = system_fields.tm_wday;
    fields->year_day = system_fields.tm_yday;
    return static_cast<zr_long>(static_cast<zr_ulong>(time));
}

} // extern "C"
