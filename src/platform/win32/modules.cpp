// Module handle, program path and the reporter of bad arguments.
#include "platform/modules.h"

#include <cstdint>
#include <cstdlib>

#include <windows.h>

namespace zr::platform {

namespace {

constinit void *library_module = nullptr;
constinit InvalidParameterReporter current_reporter = nullptr;
constinit _invalid_parameter_handler handler_before = nullptr;
constinit bool installed = false;

void PassToReporter(const wchar_t *expression, const wchar_t *function, const wchar_t *, unsigned, std::uintptr_t) {
    if (current_reporter != nullptr)
        current_reporter(expression, function);
}

std::size_t PathOf(HMODULE module, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return 0;
    const DWORD room = size > MAXDWORD ? MAXDWORD : static_cast<DWORD>(size);
    const DWORD length = GetModuleFileNameA(module, out, room);
    if (length != 0 && length < room) // a path that doesn't fit is cut to the room
        return length;
    out[0] = 0;
    return 0;
}

} // namespace

void StoreModule(void *module) {
    library_module = module;
}

void *StoredModule() {
    return library_module;
}

std::size_t backend::ProgramPath(char *out, std::size_t size) {
    return PathOf(nullptr, out, size);
}

std::size_t backend::ModulePath(char *out, std::size_t size) {
    return PathOf(static_cast<HMODULE>(library_module), out, size);
}

void InstallInvalidParameterReporter(InvalidParameterReporter reporter) {
    current_reporter = reporter;
    if (reporter != nullptr && !installed) {
        handler_before = _set_invalid_parameter_handler(PassToReporter);
        installed = true;
    } else if (reporter == nullptr && installed) {
        _set_invalid_parameter_handler(handler_before);
        installed = false;
    }
}

} // namespace zr::platform
