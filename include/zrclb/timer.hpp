// A timer of a window as a class. C++20.
#ifndef ZRCLB_TIMER_HPP
#define ZRCLB_TIMER_HPP

#include <zrclb/timer.h>

// Calls a function every so many milliseconds as long as a window receives its message; see timer.h. An object stays where
// it is: its address is the identifier of its message. Nothing is reported. Functions and values stay the caller's and have to
// last as long as the object.
//
// Threads: an object belongs to the thread that owns its windows, and several threads may have objects. The global window function
// belongs to the thread of timer.h; where other threads have objects without a function of their own, it has to be one for all.
struct ZR_API zrTimer {
    // Store the arguments, ask for the window, and start in it; without a window the timer is idle. The first one asks the
    // global window function, the second has a fixed window (which a global window function replaces), the third asks
    // its own. The period is that of zrTimerSet. Without memory for the library's note of it, a timer is idle for ever, and
    // zrTimerExecute takes it for none.
    zrTimer(zr_long timeout, void (*function)(void *), void *user_data) noexcept;
    zrTimer(zr_window hwnd, zr_long timeout, void (*function)(void *), void *user_data) noexcept;
    zrTimer(zr_window (*hwnd_function)(), zr_long timeout, void (*function)(void *), void *user_data) noexcept;

    // Copy all seven fields, timer_id too, and nothing else: of the two objects, it is the other one that the running
    // timer's message names, and either one's end ends it. A timer that ran in the target runs on.
    zrTimer(const zrTimer &other) noexcept;
    zrTimer &operator=(const zrTimer &other) noexcept;

    // Ends the running timer if window and identifier are there.
    ~zrTimer();

    // Starts the timer in `hwnd`, which is not kept; one that runs there starts anew. Null only clears the identifier, which is 0, too,
    // if the desktop refuses.
    void InitTimer(zr_window hwnd) noexcept;

    // Calls the function, if there is one, and counts that behind the call. The function may end the object.
    void ExecuteFunction() noexcept;

    // Asks for the current window: its own window function, else the global one; without either the window stays. From one
    // window to another a timer moves. From none to one it only notes the window. From one to none it forgets the window
    // while the running timer goes on.
    void UpdateHwndFunction() noexcept;

    // The window, which may be null; asked for anew if the timer has a function (not: a window function).
    zr_window GetHwnd() noexcept;

    // Counts only while the timer has neither a window nor a window function. Asks nothing yet, and starts nothing.
    void SetHwndFunction(zr_window (*hwnd_function)()) noexcept;

    // A new period, in milliseconds: asks for the window, ends the running timer and starts in the window.
    void ChangeTimeOut(zr_long timeout) noexcept;

    zr_value timer_id;            // what the desktop calls the running timer; 0 for none
    zr_long timeout;              // period in milliseconds
    void (*function)(void *);     // may be null
    void *user_data;              // handed to the function
    int32_t run_count;            // executions so far
    zr_window hwnd;               // receives the message; may be null
    zr_window (*hwnd_function)(); // says which window is current; may be null
};

#endif
