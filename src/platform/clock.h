// The time of day, its calendar and its texts, and waiting.
#ifndef ZR_PLATFORM_CLOCK_H
#define ZR_PLATFORM_CLOCK_H

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "platform/services.h"

namespace zr::platform {

struct Calendar {
    int second;   // 0..59
    int minute;   // 0..59
    int hour;     // 0..23
    int day;      // of the month, 1..31
    int month;    // 1..12
    int year;     // as written, 1970..3001
    int week_day; // 0 Sunday .. 6 Saturday
    int year_day; // 0..365
    bool summer;  // daylight saving time is in force
};

// Range of the times that have a calendar, in seconds since 1970 UTC, both ends included.
inline constexpr std::int64_t first_time = 0;
inline constexpr std::int64_t last_time = 32535244799;

// Seconds since 1970 UTC.
inline std::int64_t Now() {
    return services.now();
}

// Milliseconds since 1970 UTC.
inline std::int64_t NowMilliseconds() {
    return services.now_milliseconds();
}

// `time` in the zone of the process. False, with `out` untouched, outside first_time..last_time. Threads: any. On Linux
// the zone is that of TZ, whose changes are followed, or without it that of the system as it was when it was first
// asked for.
bool LocalCalendar(std::int64_t time, Calendar &out);

// The time at which the clocks of the process's zone show `fields`, which may be any numbers: what is beyond its range
// carries over. Looks at second to year alone (month from 0, year since 1900) and finds out by itself about daylight
// saving time; an hour that comes twice is the second of the two, one that is left out lies as far behind the last
// moment before it. -1 outside first_time..last_time. `fields` is then made regular, as C's mktime does it, unless its
// year lies before 1970 or behind 3000. Threads: any.
std::int64_t TimeOfLocal(std::tm &fields);

// Date or time of `calendar` as the user's locale of the system has them, into `out`: the short or the long date, the
// time without or with its seconds. False, with nothing defined in `out`, if the system has no such text or it is
// longer than 78 characters. Threads: any, as long as none changes the environment.
bool UserDateText(const Calendar &calendar, bool long_form, char (&out)[80]);
bool UserTimeText(const Calendar &calendar, bool seconds, char (&out)[80]);

// Holds the thread for at least that long; for ever if it is 0xFFFFFFFF.
void Wait(std::uint32_t milliseconds);

// `time` as "Thu Jan  1 01:00:00 1970\n": always 24 characters, a line feed and the terminator, English, a day below 10
// padded with a blank. The empty text where LocalCalendar fails. Threads: any.
inline void CtimeText(std::int64_t time, char (&out)[26]) {
    static constexpr char days[][4] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr char months[][4] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    Calendar c;
    out[0] = 0;
    if (!LocalCalendar(time, c))
        return;
    char text[96]; // room for any numbers; those of a calendar fill 25 characters
    std::snprintf(text, sizeof text, "%s %s %2d %02d:%02d:%02d %d\n", days[c.week_day], months[c.month - 1], c.day,
                  c.hour, c.minute, c.second, c.year);
    std::memcpy(out, text, sizeof out - 1);
    out[sizeof out - 1] = 0;
}

} // namespace zr::platform

#endif
