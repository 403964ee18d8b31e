// The tables of calendars and of local clocks, held against the zone that the process runs in.
#ifndef TESTS_PLATFORM_ZONE_ROWS_H
#define TESTS_PLATFORM_ZONE_ROWS_H

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <limits>
#include <string>

#include <gtest/gtest.h>
#include <zrclb/clock.h>

#include "golden_table.h"
#include "platform/clock.h"

namespace zone_rows {

using zr::platform::Calendar;

// Fields as the tables have them, without the mark of daylight saving time.
inline std::string Joined(const clock_struct &c) {
    std::string text;
    for (const int field : {c.second, c.minute, c.hour, c.day, c.month, c.year, c.week_day, c.year_day})
        text.append(std::to_string(field)).append(" ");
    return text;
}

inline clock_struct StructOf(const Calendar &c) {
    return {c.second, c.minute, c.hour, c.day, c.month - 1, c.year - 1900, c.week_day, c.year_day};
}

inline clock_struct StructOf(const std::tm &t) {
    return {t.tm_sec, t.tm_min, t.tm_hour, t.tm_mday, t.tm_mon, t.tm_year, t.tm_wday, t.tm_yday};
}

inline std::string Joined(const Calendar &c) {
    return Joined(StructOf(c)) + (c.summer ? "dst=1" : "dst=0");
}

// The first six fields of a row; the other two are set to what no calendar has.
inline clock_struct FieldsOf(const std::string &text) {
    clock_struct c{};
    EXPECT_EQ(std::sscanf(text.c_str(), "%d %d %d %d %d %d", &c.second, &c.minute, &c.hour, &c.day, &c.month, &c.year),
              6);
    c.week_day = c.year_day = 777;
    return c;
}

// The public forms of one time: texts of date and time, and the fields where 32 bits hold the time.
inline void CheckForms(std::int64_t time, const std::string &fields) {
    const clock_struct c = FieldsOf(fields);
    char text[32];
    std::snprintf(text, sizeof text, "%02d.%02d.%02d", c.day, c.month + 1, c.year % 100);
    EXPECT_STREQ(clock_date(time, 0), text) << time;
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", c.hour, c.minute, c.second);
    EXPECT_STREQ(clock_time(time, 1), text) << time;
    if (time <= std::numeric_limits<zr_long>::max()) {
        clock_struct out;
        std::memset(&out, 0x55, sizeof out);
        EXPECT_EQ(clock_makestruct(static_cast<zr_long>(time), &out), &out);
        EXPECT_EQ(Joined(out) + fields.substr(fields.find("dst")), fields);
    }
}

// Holds the rows of `zone` from `first_year` on, and tells how many there are.
inline int CheckCalendars(const std::string &zone, int first_year = 1970) {
    const GoldenTable table("crt_ctime.tsv");
    int checked = 0;
    for (const GoldenTable::Row &row : table.Rows()) {
        if (row.at("zone") != zone || row.at("dll").find("ucrtbase") == std::string::npos)
            continue;
        const std::int64_t time = std::stoll(row.at("time_value"));
        const bool has_calendar = row.at("ctime64") != "\\N";
        const std::string &fields = row.at("localtime64_fields");
        if (first_year > 1970 && (!has_calendar || FieldsOf(fields).year + 1900 < first_year))
            continue;
        ++checked;
        char text[26];
        zr::platform::CtimeText(time, text);
        EXPECT_EQ(text, has_calendar ? row.at("ctime64") : "") << zone << " " << time;
        Calendar c{};
        EXPECT_EQ(zr::platform::LocalCalendar(time, c), has_calendar) << zone << " " << time;
        if (has_calendar) {
            EXPECT_EQ(Joined(c), fields) << zone << " " << time;
        } else {
            EXPECT_STREQ(clock_date(time, 0), "???") << zone << " " << time;
        }
        if (has_calendar && time != 0) // 0 stands for the present time
            CheckForms(time, fields);
    }
    return checked;
}

// The same for times of local clocks. Rows that prescribe daylight saving time have nothing that they could be given
// to.
inline int CheckClocks(const std::string &zone, int first_year = 1970) {
    const GoldenTable table("crt_mktime.tsv");
    int checked = 0;
    for (const GoldenTable::Row &row : table.Rows()) {
        const std::string &input = row.at("sec_min_hour_mday_mon_year");
        const std::string &after = row.at("fields_after");
        clock_struct fields = FieldsOf(input);
        if (row.at("zone") != zone || row.at("isdst") != "-1" || (first_year > 1970 && fields.year + 1900 < first_year))
            continue;
        ++checked;
        std::tm system_fields{};
        system_fields.tm_sec = fields.second;
        system_fields.tm_min = fields.minute;
        system_fields.tm_hour = fields.hour;
        system_fields.tm_mday = fields.day;
        system_fields.tm_mon = fields.month;
        system_fields.tm_year = fields.year;
        const std::int64_t time = std::stoll(row.at("mktime64"));
        EXPECT_EQ(zr::platform::TimeOfLocal(system_fields), time) << zone << " " << input;
        EXPECT_EQ(Joined(StructOf(system_fields)), after.substr(0, after.find("dst"))) << zone << " " << input;
        const zr_long low = clock_makevalue(&fields);
        EXPECT_EQ(low, static_cast<zr_long>(static_cast<zr_ulong>(time))) << zone << " " << input;
        // What was given stays as it is; the two days come in addition.
        const std::string days =
            std::to_string(system_fields.tm_wday) + " " + std::to_string(system_fields.tm_yday) + " ";
        EXPECT_EQ(Joined(fields), input + " " + days) << zone;
    }
    return checked;
}

} // namespace zone_rows

#endif
