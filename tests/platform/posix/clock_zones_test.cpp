// Time texts in the zones of the table.
#include "platform/clock.h"

#include <cstdlib>
#include <cstring>
#include <string>

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

TEST(ClockZones, TableHoldsInBothZones) {
    const GoldenTable table("crt_ctime.tsv");
    int checked = 0;
    for (const GoldenTable::Row &row : table.Rows()) {
        if (row.at("dll").find("ucrtbase") == std::string::npos || row.at("ctime64") == "\\N")
            continue;
        // The table's system applies the present rule of the zone to all years.
        const Variable zone("TZ", row.at("zone") == "UTC" ? "UTC0" : "CET-1CEST,M3.5.0,M10.5.0/3");
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

} // namespace
