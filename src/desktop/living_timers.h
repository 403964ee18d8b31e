// Which timers exist.
//
// The desktop may deliver the message of a timer that has ended, and the caller's functions may end the timer that called
// them. Threads: any; a timer itself belongs to one.
#ifndef ZR_DESKTOP_LIVING_TIMERS_H
#define ZR_DESKTOP_LIVING_TIMERS_H

#include <atomic>
#include <cstdint>

#include <zrclb/timer.h>

namespace zr::platform {
class Lock;
}

namespace zr::desktop {

// The lock of all that is noted here. Made when the library is loaded and unmade when it is unloaded; before and after,
// entering does nothing.
platform::Lock &TimerSection() noexcept;

// Notes that a timer exists; one without memory for that counts as none.
void AddLivingTimer(const zrTimer *timer) noexcept;

// Notes that it exists no more. Nothing if it isn't noted.
void RemoveLivingTimer(const zrTimer *timer) noexcept;

// Any pointer may be asked for.
bool IsLivingTimer(const zrTimer *timer) noexcept;

// Forgets them all and gives the memory back, at unload.
void ForgetLivingTimers() noexcept;

// How many timers were ever noted, and how many of them have ended.
inline constinit std::atomic<std::uint64_t> timer_starts = 0;
inline constinit std::atomic<std::uint64_t> timer_ends = 0;

// Tells whether a timer outlives a call of a function of the caller's. Costs next to nothing, as it stands around each question
// for a window: as long as no timer at all has ended, this one has not. Otherwise it has to be noted still, and since
// before the call, because another one may stand at its place.
class TimerWatch {
public:
    explicit TimerWatch(const zrTimer *timer) noexcept
        : m_timer(timer), m_starts(timer_starts.load(std::memory_order_relaxed)),
          m_ends(timer_ends.load(std::memory_order_relaxed)) {}

    bool IsGone() const noexcept { return timer_ends.load(std::memory_order_relaxed) != m_ends && !IsStillNoted(); }

private:
    bool IsStillNoted() const noexcept;

    const zrTimer *m_timer;
    std::uint64_t m_starts;
    std::uint64_t m_ends;
};

} // namespace zr::desktop

#endif
