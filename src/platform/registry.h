// Values that the system keeps for programs: the registry, on Linux a file in its place.
//
// On Linux the file is the one that ZR_REGISTRY names, else zr/registry.ini in the user's configuration folder (XDG_CONFIG_HOME, else
// ~/.config). A section per key, named hive and path, an entry per value:
//
//     [HKEY_CLASSES_ROOT\Software\Zr Works\Zr Bench\2013]
//     InstallDir=C:\opt\zr
//     @=the key's own value
//
// It is read at every call. Names of keys and values are compared without regard to case (ASCII), blanks and tabs around names and
// values don't count, and of several equal names the first one holds. Lines that begin with ";" or "#", that have no "=", or
// that stand in front of the first section are passed over, and so is everything of a line behind its 2000th byte. A zero byte ends
// its line's text. What is no regular file has no values.
//
// Threads: any, as long as none changes the environment.
#ifndef ZR_PLATFORM_REGISTRY_H
#define ZR_PLATFORM_REGISTRY_H

#include <cstddef>

#include "platform/services.h"

namespace zr::platform {

enum class RegistryHive {
    classes_root,
    current_user,
    local_machine
};

// Writes the text of the value `name` of the key to out[0..size-1], terminated; null and the empty name mean the key's own value. False,
// with an empty `out` if size is not 0, if there is no such key or value, it may not be read, or it needs more than `size`
// bytes with its terminator. The type of the value doesn't count: its bytes up to the first zero are the text.
inline bool ReadRegistryText(RegistryHive hive, const char *key, const char *name, char *out, std::size_t size) {
    return services.registry_text(hive, key, name, out, size);
}

} // namespace zr::platform

#endif
