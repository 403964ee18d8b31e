// The daily log: where it is, the first record of a day, the formats of its lines, and the name of the program in them.
#include "frame/log.h"

#include <cstdint>
#include <cstring>
#include <initializer_list>

#include <zrclb/report.h>
#include <zrclb/str.h>

#include "frame/log_hook.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/streams.h"

namespace zr::frame {
namespace {

constexpr std::size_t log_path_size = 256;

constinit platform::Lock log_section;

// All of this is guarded by the log section.
constinit LogHook log_hook;
constinit bool log_checked = false;
constinit bool log_on = false;
constinit char log_path[log_path_size] = "zrlog.txt";
constinit char program_name[program_name_size] = "";

// Asks once whether the log is on and where it is. Marked as done before it starts, since the hook's functions may report
// and so come back.
void CheckLog() {
    if (log_checked) {
        return;
    }
    log_checked = true;
    log_on = log_hook.is_on != nullptr && log_hook.is_on();
    char path[platform::path_size] = "";
    if (log_hook.path != nullptr && log_hook.path(path, sizeof path)) {
        str_ncpy(log_path, path, log_path_size - 1);
    }
}

bool SameDay(std::int64_t a, std::int64_t b) {
    platform::Calendar day_a;
    platform::Calendar day_b;
    return platform::LocalCalendar(a, day_a) && platform::LocalCalendar(b, day_b) && day_a.day == day_b.day &&
           day_a.month == day_b.month && day_a.year == day_b.year;
}

// The first record of a day drops what the log held.
std::FILE *OpenLog() {
    CheckLog();
    if (!log_on) {
        return nullptr;
    }
    platform::FileStatus status;
    bool keep = !platform::GetFileStatus(log_path, status) || SameDay(status.modified, platform::Now());
    return platform::OpenText(log_path, keep ? "a" : "w");
}

const char *TextOrEmpty(const char *text) {
    return text != nullptr ? text : "";
}

void StoreProgramName(const char *name) {
    str_ncpy(program_name, name, program_name_limit);
}

void DeriveProgramName() {
    char name[platform::path_size] = "";
    if (log_hook.program_name != nullptr && log_hook.program_name(name, sizeof name)) {
        StoreProgramName(name);
    }
}

} // namespace

platform::Lock &LogSection() {
    return log_section;
}

void SetLogHook(const LogHook &hook) {
    platform::LockGuard guard(log_section);
    log_hook = hook;
    log_checked = false;
    log_on = false;
    str_cpy(log_path, "zrlog.txt");
}

LogRecord::LogRecord() : m_guard(log_section), m_stream(OpenLog()) {}

LogRecord::~LogRecord() {
    if (m_stream != nullptr) {
        std::fclose(m_stream);
    }
}

void LogRecord::Write(const char *text) {
    if (m_stream != nullptr) {
        std::fputs(text, m_stream);
    }
}

void LogRecord::WriteStamp() {
    char stamp[26];
    platform::CtimeText(platform::Now(), stamp);
    Write(stamp);
}

void LogRecord::WriteHeader(const char *lead, const char *program, const char *file, int line) {
    if (m_stream != nullptr) {
        std::fprintf(m_stream, "%s%s \"%s\" line %d:\n", lead, program, TextOrEmpty(file), line);
    }
}

void LogRecord::WriteTexts(const char *text1, const char *text2, const char *text3) {
    for (const char *text : {text1, text2, text3}) {
        if (m_stream != nullptr && text != nullptr) {
            std::fprintf(m_stream, "  %s!\n", text);
        }
    }
}

void LogRecord::WriteCall(const char *name, unsigned count) {
    if (m_stream == nullptr) {
        return;
    }
    if (count == 1) {
        std::fprintf(m_stream, "  - %s called from ...\n", name);
    } else {
        std::fprintf(m_stream, "  - %ld * %s called from ...\n\n", static_cast<long>(count), name);
    }
}

void LogRecord::WriteSwitchValue(int value) {
    if (m_stream != nullptr) {
        std::fprintf(m_stream, "  switch value = %d!\n\n", value);
    }
}

void GetProgramName(char (&out)[program_name_size]) {
    platform::LockGuard guard(log_section);
    if (program_name[0] == '\0') {
        DeriveProgramName();
    }
    std::memcpy(out, program_name, program_name_size);
}

} // namespace zr::frame

extern "C" {

void zr_error_setname(const char *name) noexcept {
    zr::platform::LockGuard guard(zr::frame::log_section);
    if (name != nullptr) {
        zr::frame::StoreProgramName(name);
    } else {
        zr::frame::DeriveProgramName();
    }
}
}
