// When the timers of a thread's windows are due.
#ifndef ZR_PLATFORM_TIMER_SCHEDULE_H
#define ZR_PLATFORM_TIMER_SCHEDULE_H

#include <cstdint>
#include <map>
#include <set>
#include <utility>

#include <zrclb/types.h>

namespace zr::platform {

// Timers by window and identifier, and in the order in which they are due; of those that are due at the same time the one
// that was started earlier stands in front. Times are nanoseconds of the steady clock. Not guarded.
//
// Invariant: every timer stands in both m_order and m_places, which holds its place in the first.
class TimerSchedule {
public:
    struct Timer {
        std::int64_t due;
        std::uint64_t number; // counts the starts
        std::int64_t period;
        zr_window window;
        zr_value id;
    };

    // Adds the timer, due one period (milliseconds, within the limits of window_timers.h or brought into them) from `now`,
    // or starts it anew if it is there. False without memory; then all is as it was.
    bool Start(zr_window window, zr_value id, zr_long period, std::int64_t now) noexcept;

    // False if it isn't there.
    bool Remove(zr_window window, zr_value id) noexcept;
    void RemoveWindow(zr_window window) noexcept;

    // The timer that is due first; null if there is none. Valid until the next change.
    const Timer *First() const noexcept { return m_order.empty() ? nullptr : &*m_order.begin(); }

    // Makes a timer that is due wait for its next period, which follows upon the last one; if that has passed, too, for a
    // period from now. Nothing if it isn't there. Takes no memory.
    void Repeat(zr_window window, zr_value id, std::int64_t now) noexcept;

    // The same in step with the start: the next time that is a whole number of periods behind the one that it was due at. For one
    // that isn't due yet, a period from now, from where on that is its step. Never later than that.
    void RepeatInStep(zr_window window, zr_value id, std::int64_t now) noexcept;

private:
    struct Earlier {
        bool operator()(const Timer &a, const Timer &b) const {
            return a.due != b.due ? a.due < b.due : a.number < b.number;
        }
    };
    using Order = std::set<Timer, Earlier>;
    using Key = std::pair<zr_value, zr_value>; // window, identifier
    using Places = std::map<Key, Order::iterator>;

    static Key KeyOf(zr_window window, zr_value id) { return {reinterpret_cast<zr_value>(window), id}; }
    void Move(Places::iterator place, std::int64_t due, std::int64_t period) noexcept;

    Order m_order;
    Places m_places;
    std::uint64_t m_number = 0;
};

} // namespace zr::platform

#endif
