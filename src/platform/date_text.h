// Dates and times as the desktop writes them in German and in English, and in the ISO form; dates as numbers of days.
#ifndef ZR_PLATFORM_DATE_TEXT_H
#define ZR_PLATFORM_DATE_TEXT_H

#include <cstdint>

namespace zr::platform {

enum class DateForm {
    german,  // "05.03.2013", "Dienstag, 5. M\xE4rz 2013"; "07:08", "07:08:09"
    english, // "3/5/2013", "Tuesday, March 5, 2013"; "7:08 AM", "7:08:09 AM"
    iso      // "2013-03-05" short and long; "07:08", "07:08:09"
};

struct Date {
    int year;  // as written
    int month; // 1..12
    int day;   // of the month, 1..31
};

// Days from 1 January 1970 to a date of the Gregorian calendar with a month of 1 to 12 and any day.
std::int64_t DayNumber(int year, int month, int day);

// The date of a day number within 2^31 days of 1970.
Date DateOfDay(std::int64_t day);

// 0 Sunday .. 6 Saturday.
int WeekDay(std::int64_t day);

// The form that a locale's name ("de_DE.UTF-8", "en", "C") asks for.
DateForm DateFormOf(const char *locale);

// The date as text in code page 1252, terminated. False, with `out` untouched, if there is no such date or its year
// isn't 1601 to 30827.
bool DateText(DateForm form, const Date &date, bool long_form, char (&out)[80]);

// The time of day as text. False, with `out` untouched, if there is no such time.
bool TimeText(DateForm form, int hour, int minute, int second, bool seconds, char (&out)[80]);

} // namespace zr::platform

#endif
