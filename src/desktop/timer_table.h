// The table of timers that are known by slots.
#ifndef ZR_DESKTOP_TIMER_TABLE_H
#define ZR_DESKTOP_TIMER_TABLE_H

#include <zrclb/timer.h>

namespace zr::desktop {

inline constexpr int timer_slots = 100;

// The one for timers without their own; null for none.
zr_window_function GlobalWindowFunction() noexcept;

// What zrTimer::UpdateHwndFunction does, which calls within the library reach by a detour.
void LookForWindow(zrTimer &timer) noexcept;

// Deletes the timers that are left in the table, and forgets all others; at unload.
void DeleteTimers() noexcept;

} // namespace zr::desktop

#endif
