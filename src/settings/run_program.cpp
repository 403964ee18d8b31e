// Starting other programs.
#include <zrclb/report.h>
#include <zrclb/str.h>
#include <zrclb/system.h>

#include "platform/command_line.h"
#include "platform/processes.h"
#include "platform/system_error.h"
#include "platform/system_text.h"

extern "C" int zr_WinExec(const char *command_line, unsigned short show) noexcept {
    using namespace zr::platform;
    constexpr int started = 40;
    constexpr int limit = static_cast<int>(longest_command_line);
    char line[limit + 1]; // the system may write to it
    str_ncpy(line, command_line, limit);
    const int code = StartProgram(line, show);
    if (code == done)
        return started;
    const SystemText reason(static_cast<unsigned long>(code));
    zr_error("CreateProcess is failed; The command line is", command_line, reason.Get(), "Zr", __LINE__);
    return 0;
}
