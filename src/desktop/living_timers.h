// Which timers exist.
//
// The desktop may deliver the message of a timer that has ended, and the caller's functions may end the timer that called
// them. Threads: as timer.h tells, none but the one of the timers.
#ifndef ZR_DESKTOP_LIVING_TIMERS_H
#define ZR_DESKTOP_LIVING_TIMERS_H

#include <zrclb/timer.h>

namespace zr::desktop {

// Notes that a timer exists; one without memory for that counts as none.
void AddLivingTimer(const zrTimer *timer) noexcept;

// Notes that it exists no more, and tells those that watch it. Nothing if it isn't noted.
void RemoveLivingTimer(const zrTimer *timer) noexcept;

// Any pointer may be asked for.
bool IsLivingTimer(const zrTimer *timer) noexcept;

// Forgets them all and gives the memory back, at unload.
void ForgetLivingTimers() noexcept;

// Tells whether a timer outlives a call of a function of the caller's. Lives on the stack.
class TimerWatch {
public:
    explicit TimerWatch(const zrTimer *timer) noexcept;
    TimerWatch(const TimerWatch &) = delete;
    TimerWatch &operator=(const TimerWatch &) = delete;
    ~TimerWatch();

    bool IsGone() const noexcept { return m_timer == nullptr; }

private:
    friend void RemoveLivingTimer(const zrTimer *timer) noexcept;

    const zrTimer *m_timer; // null when it has ended
    TimerWatch *m_outer;
};

} // namespace zr::desktop

#endif
