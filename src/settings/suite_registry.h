// The suite's own key in the registry.
#ifndef ZR_SETTINGS_SUITE_REGISTRY_H
#define ZR_SETTINGS_SUITE_REGISTRY_H

#include <cstddef>

namespace zr::settings {

// Bytes that a value of the suite may have with its terminator.
inline constexpr std::size_t registry_value_size = 256;

// Puts the value `name` of the suite's key into `out`: 1, or 0 if there is none, it doesn't fit, or it begins with its
// terminator.
int read_suite_registry_value(const char *name, char (&out)[registry_value_size]);

} // namespace zr::settings

#endif
