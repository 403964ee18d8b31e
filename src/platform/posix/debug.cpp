// Debugger channel: a file, standard error, or nowhere, as ZR_DEBUG says.
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

#include "platform/posix/posix_descriptors.h"
#include "platform/services.h"

namespace zr::platform {

void backend::DebugOutput(const char *text) {
    const char *target = std::getenv("ZR_DEBUG");
    if (text == nullptr || target == nullptr || target[0] == 0)
        return;
    if (std::strcmp(target, "stderr") == 0) {
        posix::WriteAll(STDERR_FILENO, text, std::strlen(text));
        return;
    }
    // Opened for each text, so that the file can be read, moved or removed while the program runs.
    const int descriptor = posix::Open(target, O_WRONLY | O_APPEND | O_CREAT, 0666);
    if (descriptor >= 0) {
        posix::WriteAll(descriptor, text, std::strlen(text));
        close(descriptor);
    }
}

} // namespace zr::platform
