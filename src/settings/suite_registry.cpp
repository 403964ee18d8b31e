// The suite's own key in the registry.
#include "settings/suite_registry.h"

#include "platform/registry.h"

namespace zr::settings {

int read_suite_registry_value(const char *name, char (&out)[registry_value_size]) {
    constexpr const char *key = "Software\\Zr Works\\Zr Bench\\2013";
    return platform::ReadRegistryText(platform::RegistryHive::classes_root, key, name, out, sizeof out) && *out != '\0';
}

} // namespace zr::settings
