// Module handle, program path and the reporter of bad arguments.
#include "platform/modules.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include "platform/posix/posix_paths.h"

namespace zr::platform {

namespace {

constinit void *library_module = nullptr;

// Path of the file that is mapped at `address`, from the system's list of mappings:
// first-end rights offset device inode      path
bool MappedFile(const void *address, posix::PathBuffer &out) {
    std::FILE *list = std::fopen("/proc/self/maps", "re");
    if (list == nullptr)
        return false;
    const auto wanted = reinterpret_cast<std::uintptr_t>(address);
    char line[sizeof out + 128];
    bool found = false;
    while (!found && std::fgets(line, sizeof line, list) != nullptr) {
        char *next = nullptr;
        const unsigned long long first = std::strtoull(line, &next, 16);
        const unsigned long long end = *next == '-' ? std::strtoull(next + 1, nullptr, 16) : 0;
        const char *path = std::strchr(line, '/');
        if (wanted < first || wanted >= end || path == nullptr)
            continue;
        line[std::strcspn(line, "\n")] = 0;
        found = std::strlen(path) < sizeof out;
        if (found)
            std::strcpy(out, path);
    }
    std::fclose(list);
    return found;
}

} // namespace

void StoreModule(void *module) {
    library_module = module;
}

void *StoredModule() {
    return library_module;
}

std::size_t backend::ProgramPath(char *out, std::size_t size) {
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

std::size_t backend::ModulePath(char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return 0;
    out[0] = 0;
    Dl_info information;
    void *entry = nullptr;
    if (library_module == nullptr || dladdr1(library_module, &information, &entry, RTLD_DL_LINKMAP) == 0 ||
        static_cast<const link_map *>(entry)->l_name[0] == 0) // the program's own name is empty
        return backend::ProgramPath(out, size);
    posix::PathBuffer mapped;
    const char *name = static_cast<const link_map *>(entry)->l_name;
    if (name[0] != '/') { // as it was at load, in a folder that may not be the current one any more
        if (!MappedFile(library_module, mapped))
            return 0;
        name = mapped;
    }
    return posix::FromHost(name, out, size) ? std::strlen(out) : 0;
}

// The C library here has no checked functions that would call a reporter.
void InstallInvalidParameterReporter(InvalidParameterReporter) {}

} // namespace zr::platform
