// Small reads and writes without the stream's lock: from and to the FILE's own buffer while that has what is wanted, as the C
// library's getc_unlocked and putc_unlocked do for single bytes, and by its calls otherwise.
#include "platform/stream_items.h"

#include <cstring>

#include <stdio.h>

namespace zr::platform {

namespace {

bool HasRoom(const char *from, const char *to, std::size_t size) {
    return to > from && static_cast<std::size_t>(to - from) >= size;
}

} // namespace

bool ReadItem(void *item, std::size_t size, std::FILE *stream) {
    if (!HasRoom(stream->_IO_read_ptr, stream->_IO_read_end, size))
        return fread_unlocked(item, size, 1, stream) == 1;
    std::memcpy(item, stream->_IO_read_ptr, size);
    stream->_IO_read_ptr += size;
    return true;
}

// A stream that keeps nothing back, or only lines, never has room.
bool WriteItem(const void *item, std::size_t size, std::FILE *stream) {
    if (!HasRoom(stream->_IO_write_ptr, stream->_IO_write_end, size))
        return fwrite_unlocked(item, size, 1, stream) == 1;
    std::memcpy(stream->_IO_write_ptr, item, size);
    stream->_IO_write_ptr += size;
    return true;
}

int ReadCharacter(std::FILE *stream) {
    return getc_unlocked(stream);
}

} // namespace zr::platform
