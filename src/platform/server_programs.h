// Programs that serve documents of a class: their class, the version records of their files, their windows, their start.
//
// Linux has no such programs: there nothing is found, and nothing starts. Threads: any.
#ifndef ZR_PLATFORM_SERVER_PROGRAMS_H
#define ZR_PLATFORM_SERVER_PROGRAMS_H

#include <cstddef>
#include <cstdint>

#include "platform/library_record.h"
#include "platform/services.h"

namespace zr::platform {

// Bytes of a class id's text with its terminator.
inline constexpr std::size_t class_id_size = 39;

// Writes the id of the class with that name ("Word.Document", ASCII) to out[0..size-1] as a text in braces, terminated.
// False, with an empty `out` if size is not 0, if there is no such class or it doesn't fit.
inline bool FindClassId(const char *program_id, char *out, std::size_t size) {
    return services.class_id(program_id, out, size);
}

// Bytes of the version record of a file; 0 if there is none.
inline std::size_t VersionRecordSize(const char *path) {
    return services.version_record_size(path);
}

// Reads the version record of a file to record[0..size-1]. False if it can't be read.
inline bool ReadVersionRecord(const char *path, void *record, std::size_t size) {
    return services.read_version_record(path, record, size);
}

// The version of the product that a record of ReadVersionRecord tells of. False, with `out` as it was, if it tells of
// none.
inline bool FindProductVersion(const void *record, FileVersion &out) {
    return services.product_version(record, out);
}

// Gives each top-level window with its title (empty if it has none; 255 characters at most) to `visit`.
inline void VisitTopWindows(WindowVisitor visit, void *context) {
    services.top_windows(visit, context);
}

// Whether the window still is one. False for null.
inline bool IsWindowAlive(zr_window window) {
    return services.is_window_alive(window);
}

// Starts the program that the command line names, with none of this process's handles, and waits until it is ready for its
// user, for so many milliseconds at most; whether it gets ready doesn't count. False if it does not start. The line
// may be changed by the call. `show` is how its window is shown at first.
inline bool StartServer(char *command_line, unsigned short show, std::uint32_t milliseconds) {
    return services.start_server(command_line, show, milliseconds);
}

} // namespace zr::platform

#endif
