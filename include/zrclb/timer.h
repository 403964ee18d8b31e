/* Timers, windows that receive their messages, and the pump that keeps the desktop alive during long work. C17 and
 * C++20.
 *
 * A timer calls a function every so many milliseconds as long as a window exists that receives its message: number 0x113
 * with the timer as identifier, which the window's procedure hands to zrTimerExecute. The class stands in timer.hpp;
 * here its timers are known by slots, numbers 0 to 99.
 *
 * 1. Windows are the desktop's own on Windows; zrWindowCreate makes one that works alike on both platforms.
 * 2. Errors: nothing is reported; results tell. No function of the caller may throw.
 * 3. Owners: functions and values that are handed over stay the caller's, and have to last as long as the timer, the window or
 *    the setting that has them. What the library makes for them is its own.
 * 4. Threads: slots, global window function, hook and switch belong to the one thread that owns the windows of their timers, and
 *    are not guarded. Another thread may have windows of its own, and timers of the class in them. Yield_and_PeekMessage looks at
 *    slots, hook and switch in whatever thread it is called: another one calls it only in a program whose slots are empty,
 *    and which leaves hook and switch as they are meanwhile.
 */
#ifndef ZRCLB_TIMER_H
#define ZRCLB_TIMER_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct zrTimer zrTimer;

/* What a timer does, with the value it was set with; may be null. It may delete its own timer and others, end windows, and call
 * Yield_and_PeekMessage. */
typedef void (*zr_timer_function)(void *user_data);

/* Says which window is current; null for none at the moment. Asked often: twice when a timer is set, and by all that says so here.
 * It may add and delete timers. */
typedef zr_window (*zr_window_function)(void);

/* What runs within each call of Yield_and_PeekMessage. */
typedef void (*zr_yield_hook)(void);

/* Receives the messages of a window of zrWindowCreate: the timer message, 0x113, with its identifier. It may end its
 * window. */
typedef void (*zr_window_procedure)(zr_window window, unsigned int message, zr_value identifier, void *user);

/* ---- Timers by slot ---- */

/* Sets a timer for the window that the global window function gives; without one, and in a window that is none, it is
 * idle. The period is in milliseconds: at least 10, less counts as that; negative ones count as the longest, 2147483647.
 * Answers the slot, 0 to 99, the first empty one; the timer lives until zrTimerDel or until the library is unloaded. On
 * success all timers of the table look for their windows, as zrTimerUpdateHwnd does.
 * -1 without memory, when there is no timer, and if all slots are taken: then the timer runs nevertheless, and can no more be
 * deleted. */
ZR_API int zrTimerSetWithoutHwnd(zr_long timeout, zr_timer_function function, void *user_data) ZR_NOEXCEPT;

/* The same with a window function of its own, which goes before the global one; null is none. */
ZR_API int zrTimerSet(zr_window_function hwnd_function, zr_long timeout, zr_timer_function function,
                      void *user_data) ZR_NOEXCEPT;

/* Ends the timer and empties its slot: 1; -1 if the slot is empty or none of 0 to 99. Its message, if one waits, is gone, too. A timer
 * that has lost its window goes on in the desktop, and its messages are ignored. */
ZR_API int zrTimerDel(int slot) ZR_NOEXCEPT;

/* Runs the timer's function once and counts that. For the window procedure, with the identifier of the timer message.
 * Always 1. What is no timer, or no more, is ignored: the desktop may deliver a message of a timer that has ended. */
ZR_API int zrTimerExecute(zrTimer *timer) ZR_NOEXCEPT;

/* All timers of the table ask for their current window. One that was running in another window goes on in the new
 * one, with the same period, from now. A timer that had no window only notes the new one and stays idle until
 * zrTimerChangeTimeOut. */
ZR_API void zrTimerUpdateHwnd(void) ZR_NOEXCEPT;

/* Sets the global window function, which counts for timers without their own; null for none. It is asked from the next look for
 * windows on. */
ZR_API void zrTimerSetHwndFunction(zr_window_function hwnd_function) ZR_NOEXCEPT;

/* Asks the timer for its current window, gives it a new period, as zrTimerSet takes it, from now, and starts it if it has a window.
 * For an empty slot, or one that is none of 0 to 99, nothing. */
ZR_API void zrTimerChangeTimeOut(int slot, zr_long timeout) ZR_NOEXCEPT;

/* ---- Long work ---- */

/* Sets the hook that Yield_and_PeekMessage calls; null for none. Answers the value given. */
ZR_API zr_yield_hook SetYieldCallback(zr_yield_hook hook) ZR_NOEXCEPT;

/* 0: Yield_and_PeekMessage no more takes messages; 1: it does, as in the beginning; any other mode only asks. Answers
 * the state after the call, 0 or 1. */
ZR_API int switch_Yield_and_PeekMessage(int mode) ZR_NOEXCEPT;

/* Lets the desktop live during long work: zrTimerUpdateHwnd, the hook, then all messages of this thread's windows are
 * taken and dispatched until none is left. Always 0. A quit message is swallowed. A timer function that takes longer
 * than its period leaves always one more message. Hook and functions may call this again; within 64 calls of the hook
 * in one another it is not called once more, and within 64 messages that are dispatched in one another no further one is
 * taken (on Windows: in a thread that has had timers). */
ZR_API int Yield_and_PeekMessage(void) ZR_NOEXCEPT;

/* ---- Windows and waiting ---- */

/* Makes a window of this thread that shows nothing and receives timer messages only, through `procedure`, with `user`
 * as it is given here. Null without memory and for a null procedure. It lasts until zrWindowDestroy, or the end of the
 * thread; it has to be destroyed before the library is unloaded. Threads: any. */
ZR_API zr_window zrWindowCreate(zr_window_procedure procedure, void *user) ZR_NOEXCEPT;

/* Ends a window of zrWindowCreate, and with it the timers that run in it: 1. Their objects and slots stay, and name a window that is
 * none. 0 for any other window, for one of another thread and for null. Threads: that of the window. */
ZR_API int zrWindowDestroy(zr_window window) ZR_NOEXCEPT;

/* Milliseconds, rounded up, until the next message of this thread is due: 0 if one is, -1 if none is to come. Counts the timers
 * of this library; on Windows, every message that waits. Threads: any, each for itself. */
ZR_API int zrPumpNextDue(void) ZR_NOEXCEPT;

/* A descriptor for poll on Linux, which can be read as soon as a message of this thread is due and until
 * Yield_and_PeekMessage has taken it. It belongs to the library, is the same for the life of the thread, and must be
 * neither read nor closed. -1 if the system has none left, and on Windows, where the system waits for messages
 * itself (MsgWaitForMultipleObjects). Threads: any, each for itself. */
ZR_API int zrPumpDescriptor(void) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
