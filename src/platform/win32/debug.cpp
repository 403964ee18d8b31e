// Debugger channel of the system.
#include "platform/services.h"

#include <windows.h>

namespace zr::platform {

void backend::DebugOutput(const char *text) {
    if (text != nullptr)
        OutputDebugStringA(text);
}

} // namespace zr::platform
