// Streams of the system's C runtime, which translates text itself.
#include "platform/streams.h"

#include <cerrno>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include "platform/open_mode.h"
#include "platform/win32/windows_errors.h"

namespace zr::platform {

namespace {

constexpr std::size_t buffer_size = 65536;
constexpr char end_of_text = 0x1A;

int OpenFlags(const OpenMode &mode) {
    int flags = _O_BINARY | _O_NOINHERIT;
    if (mode.update)
        flags |= _O_RDWR;
    else
        flags |= mode.letter == 'r' ? _O_RDONLY : _O_WRONLY;
    if (mode.letter == 'w')
        flags |= _O_CREAT | _O_TRUNC;
    if (mode.letter == 'a')
        flags |= _O_CREAT | _O_APPEND;
    return flags;
}

// The system decides so by itself, unless the user may do everything.
bool IsReadOnly(const char *path) {
    const DWORD attributes = GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

// Takes off an 0x1A that ends the file, if that is possible; the position is then the start. `descriptor` doesn't
// translate.
void DropEndOfText(int descriptor) {
    const std::int64_t last = _lseeki64(descriptor, -1, SEEK_END);
    char c;
    if (last >= 0 && _read(descriptor, &c, 1) == 1 && c == end_of_text)
        _chsize_s(descriptor, last);
    _lseeki64(descriptor, 0, SEEK_SET);
}

// By way of a descriptor, since the mode text of fopen has no portable way to keep the file from child processes, and
// what a mode without "t" or "b" means can be changed by the program. The descriptor begins binary: runtimes differ in
// which modes of text make them take off a last 0x1A.
std::FILE *OpenStream(const char *path, const char *mode_text, char kind) {
    OpenMode mode;
    if (!ParseOpenMode(mode_text, kind, mode)) {
        errno = EINVAL;
        return nullptr;
    }
    if (!windows::IsUsablePath(path))
        return nullptr;
    if ((mode.letter != 'r' || mode.update) && IsReadOnly(path)) {
        errno = EACCES;
        return nullptr;
    }
    const int descriptor = _open(path, OpenFlags(mode), _S_IREAD | _S_IWRITE);
    if (descriptor < 0)
        return nullptr;
    if (kind == 't') {
        if (mode.letter == 'a' && mode.update)
            DropEndOfText(descriptor);
        _setmode(descriptor, _O_TEXT);
    }
    const char update = mode.update ? '+' : kind;
    const char full_mode[] = {mode.letter, update, mode.update ? kind : '\0', 0};
    std::FILE *stream = _fdopen(descriptor, full_mode);
    if (stream == nullptr)
        _close(descriptor);
    else
        std::setvbuf(stream, nullptr, _IOFBF, buffer_size);
    return stream;
}

} // namespace

std::FILE *backend::OpenText(const char *path, const char *mode) {
    return OpenStream(path, mode, 't');
}

std::FILE *backend::OpenBinary(const char *path, const char *mode) {
    return OpenStream(path, mode, 'b');
}

std::int64_t TellStream(std::FILE *stream) {
    return stream == nullptr ? -1 : _ftelli64(stream);
}

// The runtime empties its buffer before it finds out that a place is before the start, and then stands elsewhere. A
// place counted from the end is left to it all the same: where that is depends on what is unwritten. It doesn't tell
// either that what was unwritten is lost, so that is written before; as this may drop what was read ahead, the present
// position is taken first.
bool SeekStream(std::FILE *stream, std::int64_t offset, int whence) {
    if (stream == nullptr || (whence != SEEK_SET && whence != SEEK_CUR && whence != SEEK_END))
        return windows::Fail(EINVAL);
    if (whence == SEEK_CUR) {
        const std::int64_t position = TellStream(stream);
        if (position < 0)
            return false;
        if (offset > INT64_MAX - position)
            return windows::Fail(EINVAL);
        offset += position;
        whence = SEEK_SET;
    }
    if (whence == SEEK_SET && offset < 0)
        return windows::Fail(EINVAL);
    return std::fflush(stream) == 0 && _fseeki64(stream, offset, whence) == 0;
}

} // namespace zr::platform
