// The replaceable calls of the platform seam, as a table of pointers.
//
// Every call of the seam that waits for a person, depends on the time of day or reaches a file goes through this table,
// so that a test or a tool can put its own function there, on either platform. The table starts with the back end's
// functions. It is not guarded: replace entries before other threads call the seam, and put the old value back.
#ifndef ZR_PLATFORM_SERVICES_H
#define ZR_PLATFORM_SERVICES_H

#include <cstdint>
#include <cstdio>

#include <zrclb/types.h>

namespace zr::platform {

struct FileStatus;

// What the back end provides. Contracts stand at the callers' faces: streams.h, files.h, message_box.h, debug.h, clock.h.
namespace backend {
std::FILE *OpenText(const char *path, const char *mode);
bool GetFileStatus(const char *path, FileStatus &out);
int ShowMessageBox(zr_window owner, const char *text, const char *caption, unsigned type);
zr_window FocusWindow();
void DebugOutput(const char *text);
std::int64_t Now();
} // namespace backend

struct Services {
    std::FILE *(*open_text)(const char *path, const char *mode) = backend::OpenText;
    bool (*file_status)(const char *path, FileStatus &out) = backend::GetFileStatus;
    int (*show_message_box)(zr_window owner, const char *text, const char *caption,
                            unsigned type) = backend::ShowMessageBox;
    zr_window (*focus_window)() = backend::FocusWindow;
    void (*debug_output)(const char *text) = backend::DebugOutput;
    std::int64_t (*now)() = backend::Now;
};

inline constinit Services services;

} // namespace zr::platform

#endif
