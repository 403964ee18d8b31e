// What the log has to know and only the floors above can find out.
#ifndef ZR_FRAME_LOG_HOOK_H
#define ZR_FRAME_LOG_HOOK_H

#include <cstddef>

namespace zr::frame {

// A null function counts as one that answers false. The functions may report themselves.
struct LogHook {
    // Whether the log is on. Asked once, at the first report.
    bool (*is_on)() = nullptr;
    // Where the log is: writes the path, in the library's form, to out[0..size-1]. False: "zrlog.txt" in the current
    // folder. Asked right after is_on, whatever that answered.
    bool (*path)(char *out, std::size_t size) = nullptr;
    // What the program is called, to out[0..size-1]. False: not known.
    bool (*program_name)(char *out, std::size_t size) = nullptr;
};

// Puts `hook` in the place of the one before; the next report asks it anew. Threads: while no other thread reports.
void SetLogHook(const LogHook &hook);

} // namespace zr::frame

#endif
