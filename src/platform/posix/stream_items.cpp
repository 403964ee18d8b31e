// Small reads and writes without the stream's lock.
#include "platform/stream_items.h"

#include <stdio.h>

namespace zr::platform {

bool ReadItem(void *item, std::size_t size, std::FILE *stream) {
    return fread_unlocked(item, size, 1, stream) == 1;
}

bool WriteItem(const void *item, std::size_t size, std::FILE *stream) {
    return fwrite_unlocked(item, size, 1, stream) == 1;
}

int ReadCharacter(std::FILE *stream) {
    return getc_unlocked(stream);
}

} // namespace zr::platform
