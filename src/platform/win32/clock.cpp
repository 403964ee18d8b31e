// Time of day and calendar.
#include "platform/clock.h"

#include <ctime>

namespace zr::platform {

std::int64_t backend::Now() {
    return _time64(nullptr);
}

bool LocalCalendar(std::int64_t time, Calendar &out) {
    const __time64_t system_time = time;
    std::tm fields;
    if (time < first_time || time > last_time || _localtime64_s(&fields, &system_time) != 0)
        return false;
    out = {fields.tm_sec,         fields.tm_min,  fields.tm_hour, fields.tm_mday,     fields.tm_mon + 1,
           fields.tm_year + 1900, fields.tm_wday, fields.tm_yday, fields.tm_isdst > 0};
    return true;
}

} // namespace zr::platform
