// The debugger channel.
#ifndef ZR_PLATFORM_DEBUG_H
#define ZR_PLATFORM_DEBUG_H

#include "platform/services.h"

namespace zr::platform {

// Passes `text` to the debugger as it is, without a line end of its own; nothing for null. On Linux it is appended to the
// file that the environment variable ZR_DEBUG names (a path of the host), goes to standard error for ZR_DEBUG=stderr, and
// nowhere without the variable. Failures are silent. Threads: any.
inline void DebugOutput(const char *text) {
    services.debug_output(text);
}

} // namespace zr::platform

#endif
