// Line ends of the desktop's text files, block by block: pure functions on memory.
#ifndef ZR_PLATFORM_POSIX_TEXT_TRANSLATION_H
#define ZR_PLATFORM_POSIX_TEXT_TRANSLATION_H

#include <cstddef>

namespace zr::platform::posix {

// Turns each CR LF of block[0..size-1] into LF, in place, and answers the new size. A CR in the last byte stays.
std::size_t DropCarriageReturns(char *block, std::size_t size);

// The same from data[0..size-1] to out, which does not overlap it and has room for size bytes: faster.
std::size_t CopyWithoutCarriageReturns(const char *data, std::size_t size, char *out);

// Copies text from data[0..size-1] to out[0..capacity-1] with CR LF for each LF until one of them ends. Answers the
// bytes put; `used` gets the bytes taken. `capacity` is at least 2, so that every call with a size above 0 takes
// something.
std::size_t AddCarriageReturns(const char *data, std::size_t size, char *out, std::size_t capacity, std::size_t &used);

// Number of line feeds in data[0..size-1].
std::size_t CountLineFeeds(const char *data, std::size_t size);

} // namespace zr::platform::posix

#endif
