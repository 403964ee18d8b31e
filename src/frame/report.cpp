// The four reports: message, error, exit and bad switch value.
#include <zrclb/report.h>

#include <atomic>
#include <cstdlib>

#include <zrclb/str.h>

#include "frame/log.h"
#include "frame/trace.h"
#include "platform/debug.h"
#include "platform/message_box.h"

namespace zr::frame {
namespace {

constinit std::atomic<int> error_log_on = 1;

// What an error says to the debugger: a header, and the texts as they are, one behind the other.
void SendToDebugger(const char *program, const char *const (&texts)[3], const char *file, int line) {
    char header[256];
    // A header that does not fit goes out empty.
    str_printf(header, sizeof header, "ZR_ERROR in %s \"%s\" line %d:\n", program, file != nullptr ? file : "", line);
    platform::DebugOutput(header);
    bool any = false;
    for (const char *text : texts) {
        if (text != nullptr) {
            platform::DebugOutput(text);
            any = true;
        }
    }
    if (any) {
        platform::DebugOutput("\n\n");
    }
}

void ShowExitBox(const char *const (&texts)[3]) {
    char joined[256] = "";
    int length = 0;
    for (const char *text : texts) {
        if (text != nullptr) {
            str_ncpy(joined + length, text, static_cast<int>(sizeof joined) - 1 - length);
            length = str_len(joined);
        }
    }
    constexpr unsigned always_on_top = 0x40000;
    platform::ShowMessageBox(platform::FocusWindow(), joined, "EXIT :", always_on_top);
}

} // namespace
} // namespace zr::frame

using namespace zr::frame;

extern "C" {

void zr_message(const char *text1, const char *text2, const char *text3, const char *file, int line) noexcept {
    char program[program_name_size];
    GetProgramName(program);
    LogRecord record;
    record.WriteStamp();
    record.WriteHeader("> MESSAGE in ", program, file, line);
    record.WriteTexts(text1, text2, text3);
    record.Write("\n\n");
}

void zr_error(const char *text1, const char *text2, const char *text3, const char *file, int line) noexcept {
    char program[program_name_size];
    GetProgramName(program);
    if (zr_error_onoff(-1) > 0) {
        LogRecord record;
        record.WriteStamp();
        record.WriteHeader(">ERROR  in ", program, file, line);
        record.WriteTexts(text1, text2, text3);
        record.Write("\n\n");
        WriteTraceback(record);
    }
    SendToDebugger(program, {text1, text2, text3}, file, line);
}

void zr_exit(const char *text1, const char *text2, const char *text3, const char *file, int line) noexcept {
    ShowExitBox({text1, text2, text3});
    {
        LogRecord record;
        record.WriteHeader("> EXIT    in", "", file, line);
        record.WriteTexts(text1, text2, text3);
        record.Write("\n\n");
        WriteTraceback(record);
    }
    zr_atexit();
    std::exit(0);
}

void zr_switch_error(int value, const char *file, int line) noexcept {
    LogRecord record;
    record.WriteHeader("SWITCH ERROR in", "", file, line);
    record.WriteSwitchValue(value);
    WriteTraceback(record);
}

int zr_error_onoff(int state) noexcept {
    if (state == 0 || state == 1) {
        return error_log_on.exchange(state, std::memory_order_relaxed);
    }
    return error_log_on.load(std::memory_order_relaxed);
}
}
