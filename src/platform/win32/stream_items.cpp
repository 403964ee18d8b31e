// Small reads and writes of a stream. The runtime here has no calls without the stream's lock that every version of it offers.
#include "platform/stream_items.h"

namespace zr::platform {

bool ReadItem(void *item, std::size_t size, std::FILE *stream) {
    return std::fread(item, size, 1, stream) == 1;
}

bool WriteItem(const void *item, std::size_t size, std::FILE *stream) {
    return std::fwrite(item, size, 1, stream) == 1;
}

int ReadCharacter(std::FILE *stream) {
    return std::getc(stream);
}

} // namespace zr::platform
