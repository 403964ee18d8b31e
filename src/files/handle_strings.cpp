// File handles: text fields of a width, and lines.
#include <zrclb/file_handle.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "files/handle_parts.h"
#include "platform/stream_items.h"

namespace zr::files {
namespace {

// Length of `text`, of which at most `limit` characters are looked at.
std::size_t BoundedLength(const char *text, std::size_t limit) {
    const void *end = std::memchr(text, '\0', limit);
    return end != nullptr ? static_cast<std::size_t>(static_cast<const char *>(end) - text) : limit;
}

bool PutBlanks(std::FILE *stream, std::size_t count) {
    constexpr char blanks[] = "                                ";
    constexpr std::size_t step = sizeof blanks - 1;
    bool done = true;
    for (; done && count > 0; count -= std::min(count, step))
        done = platform::WriteItem(blanks, std::min(count, step), stream);
    return done;
}

// Reads at most `max` characters of a text that ends at a line feed, a zero byte, the end of the file, or behind one of
// the delimiters. Answers whether anything was read.
bool GetText(std::FILE *stream, int max, const char *delimiters, char *buffer) {
    bool read = false;
    char *end = buffer;
    while (end - buffer < max) {
        const int character = platform::ReadCharacter(stream);
        if (character == EOF)
            break;
        read = true;
        if (character == '\0' || character == '\n')
            break;
        *end++ = static_cast<char>(character);
        if (std::strchr(delimiters, character) != nullptr)
            break;
    }
    *end = '\0';
    return read;
}

} // namespace
} // namespace zr::files

using namespace zr::files;
using namespace zr;

extern "C" {

int fio_putstring(fio_handle *handle, const char *text, int width) noexcept {
    std::FILE *stream = StreamOf(handle);
    if (stream == nullptr || text == nullptr)
        return -1;
    if (width < 0)
        return 0;
    const std::size_t length = width == 0 ? std::strlen(text) : BoundedLength(text, static_cast<std::size_t>(width));
    if (length > 0 && !platform::WriteItem(text, length, stream))
        return -1;
    return ResultOf(width == 0 || PutBlanks(stream, static_cast<std::size_t>(width) - length));
}

int fio_getstring(fio_handle *handle, int max, char *buffer) noexcept {
    if (StreamOf(handle) == nullptr || max <= 0 || buffer == nullptr)
        return -1;
    return ResultOf(GetText(handle->stream, max, "", buffer));
}

int fio_getstringdel(fio_handle *handle, int max, const char *delimiters, char *buffer) noexcept {
    if (StreamOf(handle) == nullptr || buffer == nullptr)
        return -1;
    return ResultOf(GetText(handle->stream, delimiters != nullptr ? max : 0, delimiters, buffer));
}
}
