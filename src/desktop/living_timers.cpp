// Which timers exist.
#include "desktop/living_timers.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <new>

namespace zr::desktop {
namespace {

// The timers in the order of their addresses: timers[0..count-1] of a block with room for `room`. Not a container, as
// it has to last until the library is unloaded, which comes behind the end of static objects.
constinit const zrTimer **timers = nullptr;
constinit std::size_t count = 0;
constinit std::size_t room = 0;

constinit thread_local TimerWatch *innermost = nullptr;

const zrTimer **PlaceOf(const zrTimer *timer) {
    return std::lower_bound(timers, timers + count, timer, std::less<>());
}

bool StandsAt(const zrTimer *const *place, const zrTimer *timer) {
    return place != timers + count && *place == timer;
}

bool MakeRoom() {
    if (count < room)
        return true;
    const std::size_t wider = room != 0 ? room * 2 : 32;
    auto **block = new (std::nothrow) const zrTimer *[wider];
    if (block == nullptr)
        return false;
    std::copy(timers, timers + count, block);
    delete[] timers;
    timers = block;
    room = wider;
    return true;
}

} // namespace

void AddLivingTimer(const zrTimer *timer) noexcept {
    if (!MakeRoom())
        return;
    const zrTimer **place = PlaceOf(timer);
    std::copy_backward(place, timers + count, timers + count + 1);
    *place = timer;
    ++count;
}

void RemoveLivingTimer(const zrTimer *timer) noexcept {
    for (TimerWatch *watch = innermost; watch != nullptr; watch = watch->m_outer)
        if (watch->m_timer == timer)
            watch->m_timer = nullptr;
    const zrTimer **place = PlaceOf(timer);
    if (!StandsAt(place, timer))
        return;
    std::copy(place + 1, timers + count, place);
    --count;
    if (count == 0)
        ForgetLivingTimers();
}

bool IsLivingTimer(const zrTimer *timer) noexcept {
    return StandsAt(PlaceOf(timer), timer);
}

void ForgetLivingTimers() noexcept {
    delete[] timers;
    timers = nullptr;
    count = 0;
    room = 0;
}

TimerWatch::TimerWatch(const zrTimer *timer) noexcept : m_timer(timer), m_outer(innermost) {
    innermost = this;
}

TimerWatch::~TimerWatch() {
    innermost = m_outer;
}

} // namespace zr::desktop
