// How the time of timer messages passes in tests: here by waiting, as the system's timers follow its clock alone.
#ifndef TESTS_PLATFORM_WIN32_MESSAGE_TIME_H
#define TESTS_PLATFORM_WIN32_MESSAGE_TIME_H

#include <windows.h>

#include <zrclb/timer.h>

namespace zr::test {

inline constexpr bool has_pump_descriptor = false;

inline constexpr bool time_is_held = false; // otherwise time that passes unasked adds messages

// From here on time passes through PassTime only, as far as it can be held.
inline void HoldTime() {}

// Lets so many milliseconds pass: as many, or a few more where time cannot be held.
inline void PassTime(int milliseconds) {
    Sleep(static_cast<DWORD>(milliseconds) + 25); // the system's timers may come a tick late
}

// Really waits for a message of this thread, at most that long. False if none came.
inline bool WaitForMessage(int milliseconds) {
    return MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(milliseconds), QS_ALLINPUT,
                                       MWMO_INPUTAVAILABLE) == WAIT_OBJECT_0;
}

} // namespace zr::test

#endif
