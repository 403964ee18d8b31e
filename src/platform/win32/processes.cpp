// Starting other programs.
#include "platform/processes.h"

#include <windows.h>

#include "platform/system_error.h"

namespace zr::platform {

int backend::StartProgram(char *command_line, unsigned short show) {
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESHOWWINDOW;
    start.wShowWindow = show;
    // The handles of process and thread stay open, as callers were promised: the process's number is not given to
    // another one.
    PROCESS_INFORMATION process;
    if (CreateProcessA(nullptr, command_line, nullptr, nullptr, FALSE, CREATE_DEFAULT_ERROR_MODE, nullptr, nullptr,
                       &start, &process))
        return done;
    return static_cast<int>(GetLastError());
}

} // namespace zr::platform
