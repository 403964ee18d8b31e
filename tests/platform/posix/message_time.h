// How the time of timer messages passes in tests: here on a clock that stands still until it is moved.
#ifndef TESTS_PLATFORM_POSIX_MESSAGE_TIME_H
#define TESTS_PLATFORM_POSIX_MESSAGE_TIME_H

#include <cstdint>

#include <poll.h>

#include <zrclb/timer.h>

#include "platform/services.h"

namespace zr::test {

inline constexpr bool has_pump_descriptor = true;

inline std::int64_t message_clock = 0; // nanoseconds

inline constexpr bool time_is_held = true; // otherwise time that passes unasked adds messages

// From here on time passes through PassTime only, until the services are put back.
inline void HoldTime() {
    platform::services.steady_nanoseconds = [] { return message_clock; };
}

// Lets so many milliseconds pass: as many, or a few more where time cannot be held.
inline void PassTime(int milliseconds) {
    message_clock += std::int64_t{milliseconds} * 1000000;
}

// Really waits for a message of this thread, at most that long. False if none came.
inline bool WaitForMessage(int milliseconds) {
    pollfd item{zrPumpDescriptor(), POLLIN, 0};
    return poll(&item, 1, milliseconds) == 1;
}

} // namespace zr::test

#endif
