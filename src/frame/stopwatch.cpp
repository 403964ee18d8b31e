// Named stopwatches and the table of them.
#include <zrclb/clock.h>

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include <zrclb/heap.h>
#include <zrclb/str.h>

#include "platform/clock.h"
#include "platform/format.h"
#include "platform/streams.h"

namespace zr::frame {
namespace {

constexpr int most_timers = 100;

// The timers of the process, in the order of their opening. None is ever taken out.
clock_timer *timer_table[most_timers];
int timer_count = 0;

// Writes a line whose numbers have a decimal point in every locale.
#if defined(__GNUC__)
__attribute__((format(printf, 2, 3)))
#endif
void Write(std::FILE *file, const char *format, ...) {
    char line[160];
    std::va_list arguments;
    va_start(arguments, format);
    if (platform::FormatVA(line, sizeof line, format, arguments) >= 0)
        std::fputs(line, file);
    va_end(arguments);
}

void WriteRule(std::FILE *file) {
    Write(file, "   -%15s-|-%7s-|-%9s\n", "---------------", "-------", "---------");
}

void WriteTable(std::FILE *file) {
    Write(file, "   Zeitmessung vom %s, %s\n\n", clock_date(0, 0), clock_time(0, 1));
    if (timer_count == 0) {
        Write(file, "keine Timer vorhanden.");
        return;
    }
    Write(file, "    %15s | %7s | %9s\n", "   Timername", " Starts", " Sekunden");
    WriteRule(file);
    for (int i = 0; i < timer_count; ++i) {
        const clock_timer &timer = *timer_table[i];
        Write(file, "    %15s | %7ld | %9.3f\n", timer.name, static_cast<long>(timer.starts),
              static_cast<double>(timer.total_milliseconds) / 1000.0);
        WriteRule(file);
    }
}

// `after` less `before`, however far apart they are.
std::uint64_t Difference(std::int64_t after, std::int64_t before) {
    return static_cast<std::uint64_t>(after) - static_cast<std::uint64_t>(before);
}

} // namespace
} // namespace zr::frame

using namespace zr::frame;

extern "C" {

clock_timer *clock_timeropen(const char *name) noexcept {
    if (timer_count >= most_timers)
        return nullptr;
    auto *timer = static_cast<clock_timer *>(heap_malloc(sizeof(clock_timer)));
    if (timer == nullptr)
        return nullptr;
    *timer = {};
    str_ncpy(timer->name, name, sizeof timer->name - 1);
    timer_table[timer_count++] = timer;
    return timer;
}

clock_timer *clock_timerreset(clock_timer *timer) noexcept {
    if (timer != nullptr) {
        timer->start_seconds = 0;
        timer->start_milliseconds = 0;
        timer->total_milliseconds = 0;
        timer->starts = 0;
    }
    return timer;
}

void clock_timerstart(clock_timer *timer) noexcept {
    if (timer == nullptr)
        return;
    const std::int64_t now = zr::platform::NowMilliseconds();
    timer->start_seconds = now / 1000;
    timer->start_milliseconds = now % 1000;
}

void clock_timerstop(clock_timer *timer) noexcept {
    if (timer == nullptr)
        return;
    const std::int64_t now = zr::platform::NowMilliseconds();
    timer->total_milliseconds +=
        Difference(now / 1000, timer->start_seconds) * 1000U + Difference(now % 1000, timer->start_milliseconds);
    timer->starts = static_cast<zr_long>(static_cast<zr_ulong>(timer->starts) + 1U);
}

zr_long clock_timerget(clock_timer *timer) noexcept {
    return timer != nullptr ? static_cast<zr_long>(static_cast<zr_ulong>(timer->total_milliseconds)) : 0;
}

void clock_timertable(const char *path, int mode) noexcept {
    std::FILE *file = zr::platform::OpenText(path, mode == 1 ? "a" : "w");
    if (file == nullptr)
        return;
    WriteTable(file);
    std::fclose(file);
}

} // extern "C"
