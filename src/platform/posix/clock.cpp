// Time of day and calendar.
#include "platform/clock.h"

#include <ctime>

namespace zr::platform {

std::int64_t backend::Now() {
    return std::time(nullptr);
}

bool LocalCalendar(std::int64_t time, Calendar &out) {
    const auto system_time = static_cast<std::time_t>(time); // 32 bits on some builds
    std::tm fields;
    if (time < first_time || time > last_time || system_time != time)
        return false;
    tzset(); // localtime_r need not look at a zone that changed
    if (localtime_r(&system_time, &fields) == nullptr)
        return false;
    out = {fields.tm_sec,         fields.tm_min,  fields.tm_hour, fields.tm_mday,     fields.tm_mon + 1,
           fields.tm_year + 1900, fields.tm_wday, fields.tm_yday, fields.tm_isdst > 0};
    return true;
}

} // namespace zr::platform
