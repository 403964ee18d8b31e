// Text streams of the system's C runtime, which translates them itself.
#include "platform/streams.h"

#include <cerrno>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include "platform/win32/windows_errors.h"

namespace zr::platform {

namespace {

constexpr std::size_t buffer_size = 65536;
constexpr int common_flags = _O_TEXT | _O_NOINHERIT;

// Flags of _open for the mode, or -1 for a mode that isn't known.
int OpenFlags(const char *mode) {
    if (mode == nullptr || mode[0] == 0 || (mode[1] != 0 && (mode[1] != 't' || mode[2] != 0)))
        return -1;
    switch (mode[0]) {
    case 'r':
        return common_flags | _O_RDONLY;
    case 'w':
        return common_flags | _O_WRONLY | _O_CREAT | _O_TRUNC;
    case 'a':
        return common_flags | _O_WRONLY | _O_CREAT | _O_APPEND;
    default:
        return -1;
    }
}

} // namespace

// By way of a descriptor, since the mode text of fopen has no portable way to keep the file from child processes, and what a
// mode without "t" means can be changed by the program.
std::FILE *backend::OpenText(const char *path, const char *mode) {
    const int flags = OpenFlags(mode);
    if (flags < 0) {
        errno = EINVAL;
        return nullptr;
    }
    if (!windows::IsUsablePath(path))
        return nullptr;
    const int descriptor = _open(path, flags, _S_IREAD | _S_IWRITE);
    if (descriptor < 0)
        return nullptr;
    const char mode_text[] = {mode[0], 't', 0};
    std::FILE *stream = _fdopen(descriptor, mode_text);
    if (stream == nullptr)
        _close(descriptor);
    else
        std::setvbuf(stream, nullptr, _IOFBF, buffer_size);
    return stream;
}

std::int64_t TellStream(std::FILE *stream) {
    return _ftelli64(stream);
}

bool SeekStream(std::FILE *stream, std::int64_t offset, int whence) {
    return _fseeki64(stream, offset, whence) == 0;
}

} // namespace zr::platform
