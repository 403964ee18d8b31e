// Line ends of the desktop's text files, block by block.
#include "platform/posix/text_translation.h"

#include <algorithm>
#include <cstring>

namespace zr::platform::posix {

namespace {

const char *Find(const char *from, const char *end, char c) {
    const void *found = std::memchr(from, c, static_cast<std::size_t>(end - from));
    return found == nullptr ? end : static_cast<const char *>(found);
}

} // namespace

std::size_t DropCarriageReturns(char *block, std::size_t size) {
    const char *const end = block + size;
    const char *piece = block; // what isn't moved yet begins here
    char *put = block;
    for (const char *cr = Find(block, end, '\r'); cr != end; cr = Find(cr + 1, end, '\r')) {
        if (cr + 1 == end || cr[1] != '\n')
            continue;
        const auto length = static_cast<std::size_t>(cr - piece);
        if (put != piece)
            std::memmove(put, piece, length);
        put += length;
        piece = cr + 1;
    }
    const auto length = static_cast<std::size_t>(end - piece);
    if (put != piece)
        std::memmove(put, piece, length);
    return static_cast<std::size_t>(put - block) + length;
}

std::size_t AddCarriageReturns(const char *data, std::size_t size, char *out, std::size_t capacity, std::size_t &used) {
    const char *const end = data + size;
    const char *from = data;
    char *put = out;
    std::size_t room = capacity;
    while (from != end && room > 1) {
        const char *line_end = Find(from, end, '\n');
        const std::size_t length = std::min(static_cast<std::size_t>(line_end - from), room);
        std::memcpy(put, from, length);
        put += length;
        from += length;
        room -= length;
        if (from == line_end && from != end && room > 1) {
            *put++ = '\r';
            *put++ = '\n';
            room -= 2;
            ++from;
        }
    }
    used = static_cast<std::size_t>(from - data);
    return static_cast<std::size_t>(put - out);
}

std::size_t CountLineFeeds(const char *data, std::size_t size) {
    return static_cast<std::size_t>(std::count(data, data + size, '\n'));
}

} // namespace zr::platform::posix
