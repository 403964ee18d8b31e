// The German, English and ISO forms of dates and times.
#include "platform/date_text.h"

#include <cstdio>
#include <cstring>

namespace zr::platform {
namespace {

struct Names {
    const char *days[7]; // from Sunday on
    const char *months[12];
};

constexpr Names german = {{"Sonntag", "Montag", "Dienstag", "Mittwoch", "Donnerstag", "Freitag", "Samstag"},
                          {"Januar", "Februar", "M\xE4rz", "April", "Mai", "Juni", "Juli", "August", "September",
                           "Oktober", "November", "Dezember"}};

constexpr Names english = {{"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"},
                           {"January", "February", "March", "April", "May", "June", "July", "August", "September",
                            "October", "November", "December"}};

constexpr int days_of_400_years = 146097;
constexpr int days_to_1970 = 719468; // from 1 March of the year 0

bool IsDate(const Date &date) {
    if (date.year < 1601 || date.year > 30827 || date.month < 1 || date.month > 12 || date.day < 1 || date.day > 31)
        return false;
    return DateOfDay(DayNumber(date.year, date.month, date.day)).day == date.day;
}

bool IsLanguage(const char *locale, const char *language) {
    const std::size_t length = std::strlen(language);
    return std::strncmp(locale, language, length) == 0 && std::strchr("_.@", locale[length]) != nullptr;
}

} // namespace

// The year begins in March here, so that the day that comes and goes is its last.
std::int64_t DayNumber(int year, int month, int day) {
    const std::int64_t march_year = std::int64_t{year} - (month < 3 ? 1 : 0);
    const std::int64_t era = (march_year >= 0 ? march_year : march_year - 399) / 400;
    const std::int64_t year_of_era = march_year - era * 400;
    const std::int64_t day_of_year = (153 * (month + (month < 3 ? 9 : -3)) + 2) / 5 + std::int64_t{day} - 1;
    return era * days_of_400_years + year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year -
           days_to_1970;
}

Date DateOfDay(std::int64_t day) {
    const std::int64_t from_march = day + days_to_1970;
    const std::int64_t era = (from_march >= 0 ? from_march : from_march - days_of_400_years + 1) / days_of_400_years;
    const std::int64_t day_of_era = from_march - era * days_of_400_years;
    const std::int64_t year_of_era =
        (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / (days_of_400_years - 1)) / 365;
    const std::int64_t day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
    const std::int64_t march_month = (5 * day_of_year + 2) / 153;
    const std::int64_t month = march_month + (march_month < 10 ? 3 : -9);
    return {static_cast<int>(year_of_era + era * 400 + (month < 3 ? 1 : 0)), static_cast<int>(month),
            static_cast<int>(day_of_year - (153 * march_month + 2) / 5 + 1)};
}

int WeekDay(std::int64_t day) {
    return static_cast<int>(((day + 4) % 7 + 7) % 7); // 1 January 1970 was a Thursday
}

DateForm DateFormOf(const char *locale) {
    if (IsLanguage(locale, "de"))
        return DateForm::german;
    return IsLanguage(locale, "en") ? DateForm::english : DateForm::iso;
}

bool DateText(DateForm form, const Date &date, bool long_form, char (&out)[80]) {
    if (!IsDate(date))
        return false;
    const Names &names = form == DateForm::german ? german : english;
    const char *week_day = names.days[WeekDay(DayNumber(date.year, date.month, date.day))];
    const char *month = names.months[date.month - 1];
    if (form == DateForm::iso)
        std::snprintf(out, sizeof out, "%04d-%02d-%02d", date.year, date.month, date.day);
    else if (form == DateForm::german && long_form)
        std::snprintf(out, sizeof out, "%s, %d. %s %d", week_day, date.day, month, date.year);
    else if (form == DateForm::german)
        std::snprintf(out, sizeof out, "%02d.%02d.%d", date.day, date.month, date.year);
    else if (long_form)
        std::snprintf(out, sizeof out, "%s, %s %d, %d", week_day, month, date.day, date.year);
    else
        std::snprintf(out, sizeof out, "%d/%d/%d", date.month, date.day, date.year);
    return true;
}

bool TimeText(DateForm form, int hour, int minute, int second, bool seconds, char (&out)[80]) {
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59)
        return false;
    const bool halves = form == DateForm::english;
    char digits[24] = "";
    if (seconds)
        std::snprintf(digits, sizeof digits, ":%02d", second);
    if (halves)
        std::snprintf(out, sizeof out, "%d:%02d%s %s", (hour + 11) % 12 + 1, minute, digits, hour < 12 ? "AM" : "PM");
    else
        std::snprintf(out, sizeof out, "%02d:%02d%s", hour, minute, digits);
    return true;
}

} // namespace zr::platform
