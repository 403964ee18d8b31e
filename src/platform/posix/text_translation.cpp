// Line ends of the desktop's text files, block by block.
#include "platform/posix/text_translation.h"

#include <algorithm>
#include <bit>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zr::platform::posix {

namespace {

const char *Find(const char *from, const char *end, char c) {
    const void *found = std::memchr(from, c, static_cast<std::size_t>(end - from));
    return found == nullptr ? end : static_cast<const char *>(found);
}

// Copies all but each CR in front of an LF, of at least one byte, and answers where the copy ends. `put` may lie in
// what is copied, not behind `from`.
char *CopyEach(const char *from, const char *end, char *put) {
    const char *const last = end - 1;
    for (; from != last; ++from) {
        *put = *from;
        put += static_cast<std::size_t>(!(from[0] == '\r' && from[1] == '\n'));
    }
    *put++ = *last;
    return put;
}

#ifdef __SSE2__
constexpr int stride = 16;
#endif

} // namespace

// Lines are short: a loop that stores every byte and goes on behind it unless it is to go is faster than a search for
// each line's end, and has no branch that a processor could guess wrong.
std::size_t DropCarriageReturns(char *block, std::size_t size) {
    if (size == 0)
        return 0;
    const char *const first = Find(block, block + size - 1, '\r'); // nothing moves in front of it
    char *const put = block + (first - block);
    return static_cast<std::size_t>(CopyEach(first, block + size, put) - block);
}

// Sixteen bytes at a time, of which those behind a CR are taken anew.
std::size_t CopyWithoutCarriageReturns(const char *data, std::size_t size, char *out) {
    if (size == 0)
        return 0;
    const char *from = data;
    char *put = out;
#ifdef __SSE2__
    while (data + size - from > stride) { // the byte behind the sixteen is there as well
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(from));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(put), bytes);
        const int found = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\r')));
        const int length = found == 0 ? stride : std::countr_zero(static_cast<unsigned>(found));
        from += length;
        put += length;
        if (found == 0)
            continue;
        if (from[1] != '\n')
            *put++ = '\r';
        ++from;
    }
#endif
    return static_cast<std::size_t>(CopyEach(from, data + size, put) - out);
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
