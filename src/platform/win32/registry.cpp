// Values of the registry.
#include "platform/registry.h"

#include <cstring>

#include <windows.h>

namespace zr::platform {

namespace {

HKEY HandleOf(RegistryHive hive) {
    switch (hive) {
    case RegistryHive::classes_root:
        return HKEY_CLASSES_ROOT;
    case RegistryHive::current_user:
        return HKEY_CURRENT_USER;
    default:
        return HKEY_LOCAL_MACHINE;
    }
}

} // namespace

bool backend::ReadRegistryText(RegistryHive hive, const char *key, const char *name, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return false;
    out[0] = 0;
    HKEY opened;
    if (key == nullptr || RegOpenKeyExA(HandleOf(hive), key, 0, KEY_READ, &opened) != ERROR_SUCCESS)
        return false;
    DWORD length = size > MAXDWORD ? MAXDWORD : static_cast<DWORD>(size);
    const LSTATUS status = RegQueryValueExA(opened, name, nullptr, nullptr, reinterpret_cast<BYTE *>(out), &length);
    RegCloseKey(opened);
    // A value may have been stored without its terminator.
    const bool terminated = status == ERROR_SUCCESS && length != 0 && std::memchr(out, 0, length) != nullptr;
    const bool room = status == ERROR_SUCCESS && length < size;
    if (room)
        out[length] = 0;
    else if (!terminated)
        out[0] = 0;
    return terminated || room;
}

} // namespace zr::platform
