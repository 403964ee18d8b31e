// Timers of windows, the messages they post, and windows that receive them.
//
// Each thread has its own windows, timers and messages; what belongs to another one is not known to it.
#ifndef ZR_PLATFORM_WINDOW_TIMERS_H
#define ZR_PLATFORM_WINDOW_TIMERS_H

#include <cstdint>

#include <zrclb/types.h>

#include "platform/services.h"

namespace zr::platform {

// Number of the message that a timer posts to its window when its period has passed.
inline constexpr unsigned timer_message = 0x113;

// Periods of timers in milliseconds: what is outside counts as the nearest one, and a negative number as the longest.
inline constexpr std::uint32_t shortest_period = 10;
inline constexpr std::uint32_t longest_period = 0x7FFFFFFF;

// Nanoseconds of a clock that nobody sets and that runs on in the same measure; only differences count. Threads: any.
inline std::int64_t SteadyNanoseconds() {
    return services.steady_nanoseconds();
}

using WindowProcedure = void (*)(zr_window window, unsigned message, zr_value identifier, void *user);

// Makes a window of this thread that shows nothing. Its timer messages go to `procedure`, with `user`; all else is not seen.
// Null without memory. REQUIRES: `procedure` is not null.
zr_window CreateMessageWindow(WindowProcedure procedure, void *user);

// Ends such a window with its timers. False for another window, for one of another thread, and null.
bool DestroyMessageWindow(zr_window window);

// Starts a timer that posts timer_message with `id` to `window`, of this thread, each time `period` has passed, from now; one
// that runs with the same id in the same window ends. At most one message of a timer waits. Answers the identifier to
// stop it by; 0 for a window that is none and without memory.
inline zr_value StartWindowTimer(zr_window window, zr_value id, zr_long period) {
    return services.start_window_timer(window, id, period);
}

// Ends the timer and takes back its message. False if none runs, and for null.
inline bool StopWindowTimer(zr_window window, zr_value id) {
    return services.stop_window_timer(window, id);
}

// A timer whose function takes longer than its period and pumps itself would have its messages dispatched in one another without
// end: in a thread with timers no more calls of PumpMessage than so many do that.
inline constexpr int pump_limit = 64;

// Takes the next message of this thread's windows and dispatches it; false if none waits, and within pump_limit calls that
// dispatch. A procedure may come back here.
bool PumpMessage();

// Milliseconds, rounded up, until PumpMessage has a message; 0 if it has, -1 if none is to come.
int NextMessageDue();

// A descriptor that can be read while a message of this thread is due, the same for the life of the thread; -1 if there is
// none.
int PumpDescriptor();

// Gives back what this thread's pump holds and all threads share. At unload: no window may be left.
void EndMessagePumps();

} // namespace zr::platform

#endif
