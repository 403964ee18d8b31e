// When the timers of a thread's windows are due.
#include "platform/timer_schedule.h"

#include <algorithm>
#include <new>

#include "platform/window_timers.h"

namespace zr::platform {

namespace {

constexpr std::int64_t millisecond = 1000000;

std::int64_t PeriodOf(zr_long period) {
    return std::clamp(static_cast<std::uint32_t>(period), shortest_period, longest_period) * millisecond;
}

} // namespace

bool TimerSchedule::Start(zr_window window, zr_value id, zr_long period, std::int64_t now) noexcept {
    const std::int64_t length = PeriodOf(period);
    const auto place = m_places.find(KeyOf(window, id));
    if (place != m_places.end()) {
        Move(place, now + length, length);
        return true;
    }
    auto timer = m_order.end();
    try {
        timer = m_order.insert({now + length, m_number, length, window, id}).first;
        m_places.emplace(KeyOf(window, id), timer);
    } catch (const std::bad_alloc &) {
        if (timer != m_order.end())
            m_order.erase(timer);
        return false;
    }
    ++m_number;
    return true;
}

bool TimerSchedule::Remove(zr_window window, zr_value id) noexcept {
    const auto place = m_places.find(KeyOf(window, id));
    if (place == m_places.end())
        return false;
    m_order.erase(place->second);
    m_places.erase(place);
    return true;
}

void TimerSchedule::RemoveWindow(zr_window window) noexcept {
    const Key first = KeyOf(window, 0);
    for (auto place = m_places.lower_bound(first); place != m_places.end() && place->first.first == first.first;) {
        m_order.erase(place->second);
        place = m_places.erase(place);
    }
}

void TimerSchedule::Repeat(zr_window window, zr_value id, std::int64_t now) noexcept {
    const auto place = m_places.find(KeyOf(window, id));
    if (place == m_places.end())
        return;
    const std::int64_t period = place->second->period;
    const std::int64_t next = place->second->due + period;
    Move(place, next > now ? next : now + period, period);
}

void TimerSchedule::RepeatInStep(zr_window window, zr_value id, std::int64_t now) noexcept {
    const auto place = m_places.find(KeyOf(window, id));
    if (place == m_places.end())
        return;
    const std::int64_t period = place->second->period;
    const std::int64_t due = place->second->due;
    Move(place, now < due ? now + period : due + ((now - due) / period + 1) * period, period);
}

// A node that is taken out and put back takes no memory.
void TimerSchedule::Move(Places::iterator place, std::int64_t due, std::int64_t period) noexcept {
    auto node = m_order.extract(place->second);
    node.value().due = due;
    node.value().period = period;
    node.value().number = m_number++;
    place->second = m_order.insert(std::move(node)).position;
}

} // namespace zr::platform
