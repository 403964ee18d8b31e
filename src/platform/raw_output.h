// Files that are there already, written over in place: what the new bytes don't reach stays until the length is cut.
//
// The functions answer codes of system_error.h. Small files need no stream with a buffer of its own, and whoever writes over
// something that must not get lost decides about the order of the steps.
#ifndef ZR_PLATFORM_RAW_OUTPUT_H
#define ZR_PLATFORM_RAW_OUTPUT_H

#include <cstddef>
#include <cstdint>

#include "platform/services.h"
#include "platform/system_error.h"

namespace zr::platform {

// A file open for writing, closed at the end of its life at the latest. Threads: one at a time.
class RawOutput {
public:
    RawOutput() = default;
    ~RawOutput() { Close(); }
    RawOutput(const RawOutput &) = delete;
    RawOutput &operator=(const RawOutput &) = delete;

    // Opens the file `path` (library's form, at most 259 characters); nothing of it changes. access_denied for folders, what
    // is read-only by attribute and, on the desktop, hidden files. Child processes don't inherit the file.
    int Open(const char *path) {
        Close();
        m_at = 0;
        return services.open_output(path, m_handle, m_size);
    }

    bool IsOpen() const { return m_handle != no_file; }

    // Takes all permissions from everybody but the owner, where the system has such.
    void MakePrivate() { backend::MakePrivate(m_handle); }

    // Bytes written since the opening.
    std::uint64_t Written() const { return m_at; }

    // Makes sure of room on the disk for a file of so many bytes. What the file holds stays, and its length, too, where the
    // system can set room aside; elsewhere zeros stand behind the old end afterwards. On failure nothing has changed. A file
    // system that writes to a fresh place each time can still run out of room.
    int Reserve(std::uint64_t size) {
        const int code = services.reserve_output(m_handle, size);
        if (code != not_supported)
            return code;
        return size > m_size ? FillUpTo(size) : int{done};
    }

    // Writes behind what was written, from the start of the file on.
    int Write(const char *bytes, std::size_t size) {
        const int code = services.write_output(m_handle, m_at, bytes, size);
        if (code == done)
            m_at += size;
        return code;
    }

    // Ends the file behind what was written.
    int Cut() { return services.cut_output(m_handle, m_at); }

    // Tells what the system tells only now.
    int Close() {
        const std::intptr_t handle = m_handle;
        m_handle = no_file;
        return handle == no_file ? int{done} : services.close_output(handle);
    }

private:
    static constexpr std::intptr_t no_file = -1;

    int FillUpTo(std::uint64_t size) {
        static constexpr char zeros[4096] = {};
        int code = done;
        for (std::uint64_t at = m_size; code == done && at < size; at += sizeof zeros) {
            const std::uint64_t left = size - at;
            code = services.write_output(m_handle, at, zeros,
                                         left < sizeof zeros ? static_cast<std::size_t>(left) : sizeof zeros);
        }
        if (code != done)
            services.cut_output(m_handle, m_size);
        return code;
    }

    std::intptr_t m_handle = no_file;
    std::uint64_t m_size = 0; // at the opening
    std::uint64_t m_at = 0;
};

} // namespace zr::platform

#endif
