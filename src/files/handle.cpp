// File handles: opening with header, closing, position, blocks.
#include <zrclb/file_handle.h>

#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>

#include <zrclb/heap.h>
#include <zrclb/paths.h>
#include <zrclb/str.h>

#include "files/handle_parts.h"
#include "platform/files.h"
#include "platform/streams.h"

namespace zr::files {
namespace {

constexpr unsigned base_modes = FIO_READ | FIO_WRITE | FIO_APPEND;

// Stands for the path where memory did not suffice for a copy; all handles share it, and none frees it.
char no_name[] = "????";

// The header: format mark and order word, both without terminator.
constexpr std::size_t word_size = 8;
constexpr char format_mark[] = "1.1  @zr";
constexpr char native_order[] = "INTEL   ";
constexpr char foreign_order[] = "MOTOROLA";
constexpr char version_text[] = "1.1";
constexpr char mark_text[] = "@zr";

// The mode for the stream: base letter, "+", and "t" or "b".
struct StreamMode {
    explicit StreamMode(unsigned mode) {
        char *end = text;
        *end++ = (mode & FIO_READ) != 0 ? 'r' : (mode & FIO_WRITE) != 0 ? 'w' : 'a';
        if ((mode & FIO_UPDATE) != 0)
            *end++ = '+';
        *end++ = (mode & FIO_TEXT) != 0 ? 't' : 'b';
        *end = '\0';
    }
    char text[4];
};

std::FILE *OpenStream(const char *path, unsigned mode) {
    const StreamMode stream_mode(mode);
    return (mode & FIO_TEXT) != 0 ? platform::OpenText(path, stream_mode.text)
                                  : platform::OpenBinary(path, stream_mode.text);
}

// Failures show at the writes that follow, or when the handle is closed.
void WriteHeader(std::FILE *stream) {
    std::fwrite(format_mark, 1, word_size, stream);
    std::fwrite(native_order, 1, word_size, stream);
}

// Reads a word of the header and terminates it. A file that ends before gives a shorter one.
void ReadWord(std::FILE *stream, char (&word)[word_size + 1]) {
    word[std::fread(word, 1, word_size, stream)] = '\0';
}

// Goes behind the header, if there is one, and answers the byte order for the handle.
std::int32_t ReadHeader(std::FILE *stream) {
    char word[word_size + 1];
    ReadWord(stream, word);
    if (std::strstr(word, mark_text) == nullptr && std::strstr(word, version_text) == nullptr) {
        std::rewind(stream);
        return -1;
    }
    ReadWord(stream, word);
    return std::strcmp(word, foreign_order) == 0 ? 1 : 0;
}

void HandleHeader(fio_handle &handle) {
    if (HasMode(handle, FIO_WRITE))
        WriteHeader(handle.stream);
    else
        handle.byte_order = ReadHeader(handle.stream);
    // A stream changes its direction only where it is positioned, and the caller may want the other one.
    if (HasMode(handle, FIO_UPDATE))
        platform::SeekStream(handle.stream, 0, SEEK_CUR);
}

// Not every runtime tells at closing that the last write failed, so what is unwritten goes out before.
bool CloseStream(const fio_handle &handle) {
    const bool written = !HasMode(handle, FIO_WRITE | FIO_APPEND | FIO_UPDATE) || std::fflush(handle.stream) == 0;
    return std::fclose(handle.stream) == 0 && written;
}

zr_long AsLong(std::int64_t position) {
    return position >= 0 && position <= INT32_MAX ? static_cast<zr_long>(position) : -1;
}

} // namespace
} // namespace zr::files

using namespace zr::files;
using namespace zr;

extern "C" {

fio_handle *fio_open(const char *dir, const char *name, int mode) noexcept {
    const auto mode_bits = static_cast<unsigned>(mode);
    if (std::popcount(mode_bits & base_modes) != 1)
        return nullptr;
    // A path that can't be composed stays empty, and nothing is opened.
    char path[platform::path_size] = {};
    fio_makepath(path, "", dir, name);
    std::FILE *stream = OpenStream(path, mode_bits);
    if (stream == nullptr)
        return nullptr;
    auto *handle = static_cast<fio_handle *>(heap_malloc(sizeof(fio_handle)));
    if (handle == nullptr) {
        std::fclose(stream);
        return nullptr;
    }
    char *own_name = str_alloc(path);
    *handle = {stream, 0, mode_bits, own_name != nullptr ? own_name : no_name};
    if (HasMode(*handle, FIO_BYTEORDER) && !HasMode(*handle, FIO_TEXT | FIO_APPEND))
        HandleHeader(*handle);
    return handle;
}

int fio_close(fio_handle *handle) noexcept {
    if (handle == nullptr)
        return 0;
    const bool closed = handle->stream == nullptr || CloseStream(*handle);
    if (handle->name != no_name)
        heap_free(handle->name);
    heap_free(handle);
    return ResultOf(closed);
}

const char *fio_filename(fio_handle *handle) noexcept {
    return handle != nullptr ? handle->name : nullptr;
}

FILE *fio_fp(fio_handle *handle) noexcept {
    return handle->stream;
}

zr_long fio_length(fio_handle *handle) noexcept {
    std::FILE *stream = StreamOf(handle);
    if (stream == nullptr)
        return -1;
    const std::int64_t position = platform::TellStream(stream);
    if (position < 0 || !platform::SeekStream(stream, 0, SEEK_END))
        return -1;
    const std::int64_t length = platform::TellStream(stream);
    return platform::SeekStream(stream, position, SEEK_SET) ? AsLong(length) : -1;
}

int fio_seek(fio_handle *handle, zr_long offset, int whence) noexcept {
    std::FILE *stream = StreamOf(handle);
    const int origin = whence == 0 ? SEEK_SET : whence == 1 ? SEEK_CUR : SEEK_END;
    return ResultOf(stream != nullptr && platform::SeekStream(stream, offset, origin));
}

zr_long fio_tell(fio_handle *handle) noexcept {
    std::FILE *stream = StreamOf(handle);
    return stream != nullptr ? AsLong(platform::TellStream(stream)) : -1;
}

int fio_flush(fio_handle *handle) noexcept {
    std::FILE *stream = StreamOf(handle);
    return ResultOf(stream != nullptr && std::fflush(stream) == 0);
}

size_t fio_fread(void *buffer, size_t size, size_t count, fio_handle *handle) noexcept {
    std::FILE *stream = StreamOf(handle);
    if (stream == nullptr || buffer == nullptr || size == 0 || count == 0)
        return 0;
    return std::fread(buffer, size, count, stream);
}

size_t fio_fwrite(const void *buffer, size_t size, size_t count, fio_handle *handle) noexcept {
    std::FILE *stream = StreamOf(handle);
    if (stream == nullptr || buffer == nullptr || size == 0 || count == 0)
        return 0;
    return std::fwrite(buffer, size, count, stream);
}
}
