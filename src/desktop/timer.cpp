// A timer of a window.
#include <zrclb/timer.hpp>

#include "desktop/living_timers.h"
#include "desktop/timer_table.h"
#include "platform/window_timers.h"

using namespace zr::desktop;
namespace platform = zr::platform;

zrTimer::zrTimer(zr_long period, void (*called)(void *), void *value) noexcept
    : zrTimer(static_cast<zr_window (*)()>(nullptr), period, called, value) {}

zrTimer::zrTimer(zr_window window, zr_long period, void (*called)(void *), void *value) noexcept
    : timer_id(0), timeout(period), function(called), user_data(value), run_count(0), hwnd(window),
      hwnd_function(nullptr) {
    AddLivingTimer(this);
    InitTimer(GetHwnd());
}

zrTimer::zrTimer(zr_window (*window_function)(), zr_long period, void (*called)(void *), void *value) noexcept
    : timer_id(0), timeout(period), function(called), user_data(value), run_count(0), hwnd(nullptr),
      hwnd_function(window_function) {
    AddLivingTimer(this);
    UpdateHwndFunction();
    InitTimer(GetHwnd());
}

zrTimer::zrTimer(const zrTimer &other) noexcept
    : timer_id(other.timer_id), timeout(other.timeout), function(other.function), user_data(other.user_data),
      run_count(other.run_count), hwnd(other.hwnd), hwnd_function(other.hwnd_function) {
    AddLivingTimer(this);
}

zrTimer &zrTimer::operator=(const zrTimer &other) noexcept = default;

zrTimer::~zrTimer() {
    RemoveLivingTimer(this);
    if (hwnd != nullptr && timer_id != 0)
        platform::StopWindowTimer(hwnd, timer_id);
}

// A timer whose message would not be known to be its own is not started.
void zrTimer::InitTimer(zr_window window) noexcept {
    timer_id = window != nullptr && IsLivingTimer(this)
                   ? platform::StartWindowTimer(window, reinterpret_cast<zr_value>(this), timeout)
                   : 0;
}

void zrTimer::ExecuteFunction() noexcept {
    const TimerWatch watch(this);
    if (function != nullptr)
        function(user_data);
    if (!watch.IsGone())
        run_count = static_cast<int32_t>(static_cast<uint32_t>(run_count) + 1);
}

void zr::desktop::LookForWindow(zrTimer &timer) noexcept {
    const auto current = timer.hwnd_function != nullptr ? timer.hwnd_function : GlobalWindowFunction();
    if (current == nullptr)
        return;
    const TimerWatch watch(&timer);
    const zr_window window = current();
    if (watch.IsGone())
        return;
    const zr_window old = timer.hwnd;
    if (window == old)
        return;
    timer.hwnd = window;
    if (old != nullptr && window != nullptr) {
        platform::StopWindowTimer(old, timer.timer_id);
        timer.InitTimer(window);
    }
}

void zrTimer::UpdateHwndFunction() noexcept {
    LookForWindow(*this);
}

zr_window zrTimer::GetHwnd() noexcept {
    if (function == nullptr)
        return hwnd;
    const TimerWatch watch(this);
    UpdateHwndFunction();
    return watch.IsGone() ? nullptr : hwnd;
}

void zrTimer::SetHwndFunction(zr_window (*window_function)()) noexcept {
    if (hwnd == nullptr && hwnd_function == nullptr)
        hwnd_function = window_function;
}

void zrTimer::ChangeTimeOut(zr_long period) noexcept {
    const TimerWatch watch(this);
    const zr_window window = GetHwnd();
    if (watch.IsGone())
        return;
    timeout = period;
    platform::StopWindowTimer(window, timer_id);
    InitTimer(window);
}
