// File descriptors: calls that outlast signals.
#include "platform/posix/posix_descriptors.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace zr::platform::posix {

int Open(const char *host_path, int flags, mode_t mode) {
    int descriptor;
    do
        descriptor = open(host_path, flags | O_CLOEXEC, mode);
    while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

ssize_t Read(int descriptor, char *buffer, size_t size) {
    ssize_t count;
    do
        count = read(descriptor, buffer, size);
    while (count < 0 && errno == EINTR);
    return count;
}

size_t WriteAll(int descriptor, const char *data, size_t size) {
    size_t done = 0;
    while (done < size) {
        const ssize_t count = write(descriptor, data + done, size - done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        done += static_cast<size_t>(count);
    }
    return done;
}

} // namespace zr::platform::posix
