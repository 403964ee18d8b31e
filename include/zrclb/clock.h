/* Clock: dates and times as texts, calendar fields, stopwatches. C17 and C++20.
 *
 * 1. A time is a number of seconds since 1 January 1970, 00:00 UTC. Local times are those of the process's time zone.
 * 2. A calendar exists from 1970 to the end of the year 3000; other times fail, also negative ones.
 * 3. No function reports anything. Texts are zero-terminated bytes in code page 1252.
 * 4. Threads: the result texts of clock_date and clock_time and the table of timers are the process's, with no guard; a
 *    timer belongs to one thread at a time. The other functions may run in any thread.
 */
#ifndef ZRCLB_CLOCK_H
#define ZRCLB_CLOCK_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The fields of a calendar. */
typedef struct clock_struct {
    int second;   /* 0..59 */
    int minute;   /* 0..59 */
    int hour;     /* 0..23 */
    int day;      /* of the month, 1..31 */
    int month;    /* 0..11 */
    int year;     /* since 1900 */
    int week_day; /* 0 Sunday .. 6 Saturday */
    int year_day; /* 0..365 */
} clock_struct;

/* A stopwatch. Whether it runs is nowhere kept: start and stop alone say it. */
typedef struct clock_timer {
    char name[80]; /* terminated */
    int64_t start_seconds;
    int64_t start_milliseconds;  /* 0..999, beside start_seconds */
    uint64_t total_milliseconds; /* sum of all intervals */
    zr_long starts;              /* intervals in that sum */
} clock_timer;

/* The present time. */
ZR_API int64_t clock_value(void) ZR_NOEXCEPT;

/* The local date of time, 0 for now, as text:
 *
 *   format 0   "05.03.13"
 *   format 1   "05. Maerz 2013", also for every format but 0 to 3
 *   format 2   the system's short date in the user's locale
 *   format 3   the system's long date in the user's locale
 *
 * "???" if time has no calendar or the system has no text. On Linux the locale is the first of LC_ALL, LC_TIME and LANG
 * that is set and not empty: German gives "05.03.2013" and "Dienstag, 5. M\xE4rz 2013", English "3/5/2013" and
 * "Tuesday, March 5, 2013", any other "2013-03-05" for both. The text belongs to the library and is overwritten by the
 * next call. */
ZR_API char *clock_date(int64_t time, int format) ZR_NOEXCEPT;

/* The local time of day of time, 0 for now, as text:
 *
 *   format 0   "07:08"
 *   format 1   "07:08:09", also for every format but 0 to 3
 *   format 2   the system's time without seconds in the user's locale
 *   format 3   the system's time with seconds in the user's locale
 *
 * On Linux English gives "7:08 AM" and "7:08:09 AM", any other locale the forms of 0 and 1. Otherwise as clock_date,
 * with a text of its own. */
ZR_API char *clock_time(int64_t time, int format) ZR_NOEXCEPT;

/* The local calendar of time, 0 for now, to *out; all fields are 0 if time is negative. Gives out; null for null. */
ZR_API clock_struct *clock_makestruct(zr_long time, clock_struct *out) ZR_NOEXCEPT;

/* The time at which local clocks show second to year of *fields. Fields beyond their range carry over (day 32, month
 * -1). The system decides about daylight saving time. Writes week_day and year_day to *fields, and changes nothing else
 * there. Gives the low 32 bits of the time; -1 for a time with no calendar and for null. */
ZR_API zr_long clock_makevalue(clock_struct *fields) ZR_NOEXCEPT;

/* A new stopwatch at 0 with at most 79 characters of name; null counts as the empty name. It belongs to the library and
 * lives as long as the process. Null if there are 100 already, or no memory. */
ZR_API clock_timer *clock_timeropen(const char *name) ZR_NOEXCEPT;

/* Clears all but the name. Gives timer; null for null. */
ZR_API clock_timer *clock_timerreset(clock_timer *timer) ZR_NOEXCEPT;

/* Notes the present time as the start of an interval, in place of an earlier start. Null does nothing. */
ZR_API void clock_timerstart(clock_timer *timer) ZR_NOEXCEPT;

/* Adds the interval since the last start, and counts it. With no start it begins in 1970. Null does nothing. */
ZR_API void clock_timerstop(clock_timer *timer) ZR_NOEXCEPT;

/* The low 32 bits of the sum of milliseconds; 0 for null. */
ZR_API zr_long clock_timerget(clock_timer *timer) ZR_NOEXCEPT;

/* Writes a table of all stopwatches in the order of their opening to the text file path, behind what it holds if mode
 * is 1, else in place of that. Does nothing if the file can't be opened, and does not tell whether all could be
 * written. */
ZR_API void clock_timertable(const char *path, int mode) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
