// Files read block by block.
#include "platform/raw_file.h"

#include <fcntl.h>
#include <unistd.h>

#include "platform/posix/posix_descriptors.h"
#include "platform/posix/posix_paths.h"

namespace zr::platform {

std::intptr_t backend::OpenRaw(const char *path) {
    posix::PathBuffer host;
    return posix::ToHost(path, host, sizeof host) ? posix::Open(host, O_RDONLY, 0) : -1;
}

std::ptrdiff_t backend::ReadRaw(std::intptr_t file, char *out, std::size_t size) {
    return posix::Read(static_cast<int>(file), out, size);
}

void backend::CloseRaw(std::intptr_t file) {
    close(static_cast<int>(file));
}

} // namespace zr::platform
