// The table of timers that are known by slots.
#include "desktop/timer_table.h"

#include <algorithm>
#include <new>

#include <zrclb/timer.hpp>

#include "desktop/living_timers.h"

namespace zr::desktop {
namespace {

constinit zrTimer *table[timer_slots] = {};
constinit int slots_in_use = 0; // one behind the last slot with a timer
constinit zr_window_function global_window_function = nullptr;

// The timer of a slot; null for an empty one, and for what is none.
zrTimer *TimerOf(int slot) {
    return slot >= 0 && slot < timer_slots ? table[slot] : nullptr;
}

// Puts a timer, which may be null, into the first empty slot: its number, or -1.
int AddTimer(zrTimer *timer) {
    if (timer == nullptr)
        return -1;
    const int slot = static_cast<int>(std::find(table, table + slots_in_use, nullptr) - table);
    if (slot == timer_slots)
        return -1;
    table[slot] = timer;
    slots_in_use = std::max(slots_in_use, slot + 1);
    zrTimerUpdateHwnd();
    return slot;
}

// Null without memory for all that belongs to it.
zrTimer *NewTimer(zr_window_function hwnd_function, zr_long timeout, zr_timer_function function, void *user_data) {
    auto *timer = new (std::nothrow) zrTimer(hwnd_function, timeout, function, user_data);
    if (timer != nullptr && !IsLivingTimer(timer)) {
        delete timer;
        return nullptr;
    }
    return timer;
}

} // namespace

zr_window_function GlobalWindowFunction() noexcept {
    return global_window_function;
}

void DeleteTimers() noexcept {
    for (int slot = 0; slot < timer_slots; ++slot)
        zrTimerDel(slot);
    ForgetLivingTimers();
}

} // namespace zr::desktop

using namespace zr::desktop;

extern "C" {

int zrTimerSetWithoutHwnd(zr_long timeout, zr_timer_function function, void *user_data) noexcept {
    return AddTimer(NewTimer(nullptr, timeout, function, user_data));
}

int zrTimerSet(zr_window_function hwnd_function, zr_long timeout, zr_timer_function function,
               void *user_data) noexcept {
    return AddTimer(NewTimer(hwnd_function, timeout, function, user_data));
}

int zrTimerDel(int slot) noexcept {
    zrTimer *timer = TimerOf(slot);
    if (timer == nullptr)
        return -1;
    table[slot] = nullptr;
    while (slots_in_use > 0 && table[slots_in_use - 1] == nullptr)
        --slots_in_use;
    delete timer;
    return 1;
}

int zrTimerExecute(zrTimer *timer) noexcept {
    if (IsLivingTimer(timer))
        timer->ExecuteFunction();
    return 1;
}

// A window function may add and delete timers, so each slot is looked at when its turn has come.
void zrTimerUpdateHwnd(void) noexcept {
    for (int slot = 0; slot < slots_in_use; ++slot)
        if (zrTimer *timer = table[slot]; timer != nullptr)
            LookForWindow(*timer);
}

void zrTimerSetHwndFunction(zr_window_function hwnd_function) noexcept {
    global_window_function = hwnd_function;
}

void zrTimerChangeTimeOut(int slot, zr_long timeout) noexcept {
    if (zrTimer *timer = TimerOf(slot); timer != nullptr)
        timer->ChangeTimeOut(timeout);
}
}
