// Calendars, time texts and the way back from local clocks, in the zones of the tables.
#include "platform/clock.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "golden_table.h"

namespace {

using namespace zr::platform;

// Sets a variable of the environment for its life.
class Variable {
public:
    Variable(const char *name, const char *value) : m_name(name) {
        const char *before = std::getenv(name);
        m_was_set = before != nullptr;
        if (m_was_set)
            m_before = before;
        setenv(name, value, 1);
    }
    ~Variable() {
        if (m_was_set)
            setenv(m_name, m_before.c_str(), 1);
        else
            unsetenv(m_name);
    }
    Variable(const Variable &) = delete;
    Variable &operator=(const Variable &) = delete;

private:
    const char *m_name;
    bool m_was_set = false;
    std::string m_before;
};

std::string Fields(const Calendar &c) {
    const int fields[] = {c.second, c.minute, c.hour, c.day, c.month - 1, c.year - 1900, c.week_day, c.year_day};
    std::string text;
    for (const int field : fields)
        text.append(std::to_string(field)).append(" ");
    return text.append(c.summer ? "dst=1" : "dst=0");
}

// The table's system applies the present rule of the zone to all years.
const char *ZoneOf(const GoldenTable::Row &row) {
    return row.at("zone") == "UTC" ? "UTC0" : "CET-1CEST,M3.5.0,M10.5.0/3";
}

std::tm FieldsOf(const std::string &text) {
    std::tm fields{};
    EXPECT_EQ(std::sscanf(text.c_str(), "%d %d %d %d %d %d", &fields.tm_sec, &fields.tm_min, &fields.tm_hour,
                          &fields.tm_mday, &fields.tm_mon, &fields.tm_year),
              6);
    return fields;
}

std::string Fields(const std::tm &fields) {
    const int numbers[] = {fields.tm_sec, fields.tm_min,  fields.tm_hour, fields.tm_mday,
                           fields.tm_mon, fields.tm_year, fields.tm_wday, fields.tm_yday};
    std::string text;
    for (const int number : numbers)
        text.append(std::to_string(number)).append(" ");
    return text;
}

TEST(ClockZones, TableHoldsInBothZones) {
    const GoldenTable table("crt_ctime.tsv");
    int checked = 0;
    for (const GoldenTable::Row &row : table.Rows()) {
        if (row.at("dll").find("ucrtbase") == std::string::npos || row.at("ctime64") == "\\N")
            continue;
        const Variable zone("TZ", ZoneOf(row));
        const std::int64_t time = std::stoll(row.at("time_value"));
        char text[26];
        CtimeText(time, text);
        EXPECT_EQ(text, row.at("ctime64")) << row.at("zone") << " " << time;
        Calendar c{};
        ASSERT_TRUE(LocalCalendar(time, c));
        EXPECT_EQ(Fields(c), row.at("localtime64_fields")) << row.at("zone") << " " << time;
        ++checked;
    }
    EXPECT_EQ(checked, 86);
}

TEST(ClockZones, TimesOfLocalClocksHoldInBothZones) {
    const GoldenTable table("crt_mktime.tsv");
    int checked = 0;
    for (const GoldenTable::Row &row : table.Rows()) {
        if (row.at("dll").find("ucrtbase") == std::string::npos || row.at("isdst") != "-1")
            continue;
        const Variable zone("TZ", ZoneOf(row));
        const std::string &input = row.at("sec_min_hour_mday_mon_year");
        std::tm fields = FieldsOf(input);
        EXPECT_EQ(std::to_string(TimeOfLocal(fields)), row.at("mktime64")) << row.at("zone") << " " << input;
        const std::string &after = row.at("fields_after");
        EXPECT_EQ(Fields(fields), after.substr(0, after.find("dst"))) << row.at("zone") << " " << input;
        ++checked;
    }
    EXPECT_EQ(checked, 50);
}

// The host's own data of the zone: the same as the present rule from 1996 on; before that, summer time ended in September, and
// before 1980 there was none.
TEST(ClockZones, HostsZoneAgreesInTheYearsOfItsPresentRule) {
    if (!std::filesystem::exists("/usr/share/zoneinfo/Europe/Berlin"))
        GTEST_SKIP() << "no data of time zones on this host";
    const Variable zone("TZ", "Europe/Berlin");
    int checked = 0;
    const GoldenTable times("crt_ctime.tsv");
    for (const GoldenTable::Row &row : times.Rows()) {
        const std::int64_t time = std::stoll(row.at("time_value"));
        Calendar c{};
        if (row.at("zone") == "UTC" || !LocalCalendar(time, c) || c.year < 1996)
            continue;
        EXPECT_EQ(Fields(c), row.at("localtime64_fields")) << time;
        ++checked;
    }
    const GoldenTable locals("crt_mktime.tsv");
    for (const GoldenTable::Row &row : locals.Rows()) {
        std::tm fields = FieldsOf(row.at("sec_min_hour_mday_mon_year"));
        if (row.at("zone") == "UTC" || row.at("isdst") != "-1" || fields.tm_year < 96)
            continue;
        EXPECT_EQ(std::to_string(TimeOfLocal(fields)), row.at("mktime64")) << row.at("sec_min_hour_mday_mon_year");
        ++checked;
    }
    EXPECT_EQ(checked, 61);
    // 15 July 1975 at noon was winter time.
    std::tm fields = FieldsOf("0 0 12 15 6 75");
    EXPECT_EQ(TimeOfLocal(fields), 174654000);
}

// Every quarter of an hour around both changes of the clocks, also where they change by half an hour, and around the world.
TEST(ClockZones, LocalClocksLeadBackToTheTime) {
    for (const char *name : {"CET-1CEST,M3.5.0,M10.5.0/3", "LHST-10:30LHDT-11,M10.1.0,M4.1.0", "XXX12", "XXX-14",
                             "UTC0", "NST3:30NDT,M3.2.0,M11.1.0"}) {
        const Variable zone("TZ", name);
        for (std::int64_t time = 1356998400; time < 1388534400; time += 900) {
            Calendar c{};
            ASSERT_TRUE(LocalCalendar(time, c));
            std::tm fields{};
            fields.tm_sec = c.second;
            fields.tm_min = c.minute;
            fields.tm_hour = c.hour;
            fields.tm_mday = c.day;
            fields.tm_mon = c.month - 1;
            fields.tm_year = c.year - 1900;
            const std::int64_t back = TimeOfLocal(fields);
            // An hour that comes twice stands for its second run.
            Calendar again{};
            ASSERT_TRUE(LocalCalendar(back, again));
            ASSERT_EQ(again.hour * 60 + again.minute, c.hour * 60 + c.minute) << name << " " << time;
            ASSERT_TRUE(back == time || (c.summer && !again.summer && back > time)) << name << " " << time;
            ASSERT_EQ(fields.tm_wday, c.week_day);
            ASSERT_EQ(fields.tm_yday, c.year_day);
        }
    }
}

// What the C library says of a time in the zone that the environment names now.
std::string FieldsOfTheHost(std::time_t time) {
    tzset();
    std::tm fields;
    localtime_r(&time, &fields);
    return Fields(fields) + (fields.tm_isdst > 0 ? "dst=1" : "dst=0");
}

std::string FieldsOfTheLibrary(std::time_t time) {
    Calendar c{};
    EXPECT_TRUE(LocalCalendar(time, c));
    return Fields(c);
}

// The zone is read anew when the variable changes: to another text of the same length, to none, to the empty one, and to texts of
// any length.
TEST(ClockZones, EveryChangeOfTheVariableIsFollowed) {
    constexpr std::time_t time = 1372636800;
    const std::string rule = "CET-1CEST,M3.5.0,M10.5.0/3", other_rule = "CET-1CEST,M3.5.0,M6.5.0/3";
    const std::string letters(200, 'A'), long_name = letters + "-3", other_long_name = letters + "-4";
    const Variable before("TZ", "UTC0");
    for (const std::string &name :
         {std::string("AAA-1"), std::string("AAA-2"), rule, other_rule, std::string(), long_name, other_long_name,
          std::string("none"), other_long_name, long_name, std::string(":/no such file"), std::string("AAA-1")}) {
        if (name == "none")
            unsetenv("TZ");
        else
            setenv("TZ", name.c_str(), 1);
        for (int i = 0; i < 2; ++i) {
            const std::string library = FieldsOfTheLibrary(time);
            EXPECT_EQ(library, FieldsOfTheHost(time)) << name;
        }
    }
    setenv("TZ", "AAA-2", 1); // the way back follows as well
    std::tm fields = FieldsOf("0 0 2 1 6 113");
    EXPECT_EQ(TimeOfLocal(fields), time);
    setenv("TZ", "AAA-1", 1);
    fields = FieldsOf("0 0 1 1 6 113");
    EXPECT_EQ(TimeOfLocal(fields), time);
}

TEST(ClockZones, ThreadsConvertAtOnce) {
    const Variable zone("TZ", "AAA-3");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (std::int64_t time = 1372636800; time < 1372636800 + 500; ++time) {
                Calendar c{};
                ASSERT_TRUE(LocalCalendar(time, c));
                ASSERT_EQ(c.hour, 3);
                std::tm fields = FieldsOf("0 0 3 1 6 113");
                ASSERT_EQ(TimeOfLocal(fields), 1372636800);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
}

TEST(ClockZones, UsersLocaleIsTheFirstOfThreeVariables) {
    const Variable zone("TZ", "UTC0");
    Calendar c{};
    ASSERT_TRUE(LocalCalendar(1362467289, c)); // 5 March 2013, 07:08:09
    const auto texts = [&c] {
        std::string joined;
        char text[80];
        for (const bool long_form : {false, true})
            joined += UserDateText(c, long_form, text) ? std::string(text) + "|" : "failed|";
        for (const bool seconds : {false, true})
            joined += UserTimeText(c, seconds, text) ? std::string(text) + "|" : "failed|";
        return joined;
    };
    const Variable all("LC_ALL", "de_DE.UTF-8");
    const Variable time("LC_TIME", "en_US.UTF-8");
    const Variable language("LANG", "C");
    EXPECT_EQ(texts(), "05.03.2013|Dienstag, 5. M\xE4rz 2013|07:08|07:08:09|");
    const Variable no_all("LC_ALL", "");
    EXPECT_EQ(texts(), "3/5/2013|Tuesday, March 5, 2013|7:08 AM|7:08:09 AM|");
    const Variable no_time("LC_TIME", "");
    EXPECT_EQ(texts(), "2013-03-05|2013-03-05|07:08|07:08:09|");
    const Variable german("LANG", "de");
    EXPECT_EQ(texts(), "05.03.2013|Dienstag, 5. M\xE4rz 2013|07:08|07:08:09|");
}

} // namespace
