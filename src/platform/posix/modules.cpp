// Module handle, program path and the reporter of bad arguments.
#include "platform/modules.h"

#include <cstddef>

#include <unistd.h>

#include "platform/posix/posix_paths.h"

namespace zr::platform {

namespace {

constinit void *library_module = nullptr;

} // namespace

void StoreModule(void *module) {
    library_module = module;
}

void *StoredModule() {
    return library_module;
}

std::size_t ProgramPath(char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return 0;
    out[0] = 0;
    posix::PathBuffer host;
    const ssize_t length = readlink("/proc/self/exe", host, sizeof host - 1);
    if (length <= 0)
        return 0;
    host[length] = 0;
    constexpr std::size_t drive = 2;
    return posix::FromHost(host, out, size) ? drive + static_cast<std::size_t>(length) : 0;
}

// The C library here has no checked functions that would call a reporter.
void InstallInvalidParameterReporter(InvalidParameterReporter) {}

} // namespace zr::platform
