// Small reads and writes of a stream that only one thread uses: without the lock that the C library takes for each call,
// where the system offers that.
#ifndef ZR_PLATFORM_STREAM_ITEMS_H
#define ZR_PLATFORM_STREAM_ITEMS_H

#include <cstddef>
#include <cstdio>

namespace zr::platform {

// As fread and fwrite of one item of `size` bytes, `size` not 0. Answer whether the whole item was moved.
bool ReadItem(void *item, std::size_t size, std::FILE *stream);
bool WriteItem(const void *item, std::size_t size, std::FILE *stream);

// As getc.
int ReadCharacter(std::FILE *stream);

} // namespace zr::platform

#endif
