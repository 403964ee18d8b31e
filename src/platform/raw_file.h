// Files read block by block, as the bytes that they hold: what is looked at once needs no stream with a buffer of its
// own.
#ifndef ZR_PLATFORM_RAW_FILE_H
#define ZR_PLATFORM_RAW_FILE_H

#include <cstddef>
#include <cstdint>

#include "platform/services.h"

namespace zr::platform {

// A file open for reading, closed at the end of its life at the latest. Threads: one at a time.
class RawFile {
public:
    RawFile() = default;
    ~RawFile() { Close(); }
    RawFile(const RawFile &) = delete;
    RawFile &operator=(const RawFile &) = delete;

    // Opens the file `path` (library's form, at most 259 characters). False, with errno set, for what a stream can't
    // be opened for reading on either: but a folder may pass and then fail to be read. Child processes don't inherit
    // the file.
    bool Open(const char *path) {
        Close();
        m_handle = services.open_raw(path);
        return IsOpen();
    }

    bool IsOpen() const { return m_handle != no_file; }

    // The next bytes of the file into out[0..size-1]; answers how many, 0 at its end, -1 on failure. Fewer than
    // `size` don't mean that the end is near.
    std::ptrdiff_t Read(char *out, std::size_t size) { return services.read_raw(m_handle, out, size); }

    void Close() {
        if (IsOpen())
            backend::CloseRaw(m_handle);
        m_handle = no_file;
    }

private:
    static constexpr std::intptr_t no_file = -1;

    std::intptr_t m_handle = no_file;
};

} // namespace zr::platform

#endif
