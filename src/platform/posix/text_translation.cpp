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

// Lines are short: a loop that stores every byte and goes on behind it unless it is to go is faster than a search for
// each line's end, and has no branch that a processor could guess wrong.
std::size_t DropCarriageReturns(char *block, std::size_t size) {
    if (size == 0)
        return 0;
    const char *const last = block + size - 1;
    const char *from = Find(block, last, '\r'); // nothing moves in front of the first one
    char *put = block + (from - block);
    for (; from != last; ++from) {
        *put = *from;
        put += static_cast<std::size_t>(!(from[0] == '\r' && from[1] == '\n'));
    }
    *put = *last;
    return static_cast<std::size_t>(put - block) + 1;
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
