// The daily log: one record at a time, on disk as soon as it is complete.
#ifndef ZR_FRAME_LOG_H
#define ZR_FRAME_LOG_H

#include <cstddef>
#include <cstdio>

#include "platform/locks.h"

namespace zr::frame {

// Characters that a program name may have, and bytes that hold one.
inline constexpr std::size_t program_name_limit = 40;
inline constexpr std::size_t program_name_size = program_name_limit + 1;

// Held while a record is written, and while the hook is asked: a hook that reports comes back in the same thread.
platform::Lock &LogSection();

// Writes one record. Its life spans the holding of the log section; the file is open for just as long, if the log is on
// and the file can be opened. All writing does nothing without a file.
class LogRecord {
public:
    LogRecord();
    ~LogRecord();
    LogRecord(const LogRecord &) = delete;
    LogRecord &operator=(const LogRecord &) = delete;

    void Write(const char *text);
    // The line that says when.
    void WriteStamp();
    // The head of a record: `lead`, the program's name if there is one to give, source tag and line.
    void WriteHeader(const char *lead, const char *program, const char *file, int line);
    // A line for each text that is not null.
    void WriteTexts(const char *text1, const char *text2, const char *text3);
    // A line for one slot of the trace stack.
    void WriteCall(const char *name, unsigned count);
    void WriteSwitchValue(int value);

private:
    platform::LockGuard m_guard;
    std::FILE *m_stream;
};

// The program's name, found out if none is set yet, and empty where that cannot be done. Threads: any.
void GetProgramName(char (&out)[program_name_size]);

} // namespace zr::frame

#endif
