// Calendars, time texts and the way back from local clocks, in the zones of the tables.
#include "platform/clock.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/zone_rows.h"

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

// The tables' system applies the present rule of the zone to all years.
constexpr const char *present_rule = "CET-1CEST,M3.5.0,M10.5.0/3";

TEST(ClockZones, CalendarsOfTheTableHoldInBothZones) {
    const Variable utc("TZ", "UTC0");
    EXPECT_EQ(zone_rows::CheckCalendars("UTC"), 49);
    const Variable berlin("TZ", present_rule);
    EXPECT_EQ(zone_rows::CheckCalendars("Europe/Berlin"), 45);
}

TEST(ClockZones, TimesOfLocalClocksHoldInBothZones) {
    const Variable utc("TZ", "UTC0");
    EXPECT_EQ(zone_rows::CheckClocks("UTC"), 24);
    const Variable berlin("TZ", present_rule);
    EXPECT_EQ(zone_rows::CheckClocks("Europe/Berlin"), 26);
}

// The host's own data of the zone: the same as the present rule from 1996 on; before that, summer time ended in
// September, and before 1980 there was none.
TEST(ClockZones, HostsZoneAgreesInTheYearsOfItsPresentRule) {
    if (!std::filesystem::exists("/usr/share/zoneinfo/Europe/Berlin"))
        GTEST_SKIP() << "no data of time zones on this host";
    const Variable zone("TZ", "Europe/Berlin");
    EXPECT_EQ(zone_rows::CheckCalendars("Europe/Berlin", 1996), 29);
    EXPECT_EQ(zone_rows::CheckClocks("Europe/Berlin", 1996), 19);
    // 15 July 1975 at noon was winter time.
    clock_struct fields{0, 0, 12, 15, 6, 75, 0, 0};
    EXPECT_EQ(clock_makevalue(&fields), 174654000);
}

// Every quarter of an hour around both changes of the clocks, also where they change by half an hour, and around the
// world.
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
    return zone_rows::Joined(zone_rows::StructOf(fields)) + (fields.tm_isdst > 0 ? "dst=1" : "dst=0");
}

std::string FieldsOfTheLibrary(std::time_t time) {
    Calendar c{};
    EXPECT_TRUE(LocalCalendar(time, c));
    return zone_rows::Joined(c);
}

// The zone is read anew when the variable changes: to another text of the same length, to none, to the empty one, and
// to texts of any length.
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
    clock_struct fields{0, 0, 2, 1, 6, 113, 0, 0};
    EXPECT_EQ(clock_makevalue(&fields), time);
    setenv("TZ", "AAA-1", 1);
    fields.hour = 1;
    EXPECT_EQ(clock_makevalue(&fields), time);
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
                clock_struct fields{0, 0, 3, 1, 6, 113, 0, 0};
                ASSERT_EQ(clock_makevalue(&fields), 1372636800);
            }
        });
    for (std::thread &thread : threads)
        thread.join();
}

TEST(ClockZones, UsersLocaleIsTheFirstOfThreeVariables) {
    const Variable zone("TZ", "UTC0");
    constexpr std::int64_t time_shown = 1362467289; // 5 March 2013, 07:08:09
    const auto texts = [] {
        std::string joined;
        for (const int format : {2, 3})
            joined += std::string(clock_date(time_shown, format)) + "|";
        for (const int format : {2, 3})
            joined += std::string(clock_time(time_shown, format)) + "|";
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
