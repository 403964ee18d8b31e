// A timer of a window as a class. C++20.
#ifndef ZRCLB_TIMER_HPP
#define ZRCLB_TIMER_HPP

#include <zrclb/timer.h>

// Calls a function every so many milliseconds as long as a window receives its message; see timer.h. An object stays where
// it is: its address is the identifier of its message. Objects belong to the thread that owns their windows.
struct ZR_API zrTimer {
    // Store the arguments, ask for the window, and start in it; without a window the timer is idle. The first one asks the
    // global window function, the second has a fixed window (which a global window function replaces), the third asks
    // its own. Without memory a timer is idle for ever, and does nothing.
    zrTimer(zr_long timeout, void (*function)(void *), void *user_data) noexcept;
    zrTimer(zr_window hwnd, zr_long timeout, void (*function)(void *), void *user_data) noexcept;
    zrTimer(zr_window (*hwnd_function)(), zr_long timeout, void (*function)(void *), void *user_data) noexcept;

    // Copy all seven fields, timer_id too, and nothing else: of the two objects, it is the other one that the running
    // timer's message names, and either one's end ends it. A timer that ran in the target runs on.
    zrTimer(const zrTimer &other) noexcept;
    zrTimer &operator=(const zrTimer &other) noexcept;

    // Ends the running timer if window and identifier are there.
    ~zrTimer();

    // Starts the timer in `hwnd`, which is not kept; null only clears the identifier.
    void InitTimer(zr_window hwnd) noexcept;

    // Calls the function, if there is one, and counts that.
    void ExecuteFunction() noexcept;

    // Asks for the current window: its own window function, else the global one; without either the window stays. From one
    // window to another a timer moves. From none to one it only notes the window. From one to none it forgets the window
    // while the running timer goes on.
    void UpdateHwndFunction() noexcept;

    // The window; asked for anew if the timer has a function.
    zr_window GetHwnd() noexcept;

    // Counts only while the timer has neither a window nor a window function.
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
