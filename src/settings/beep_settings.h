// The beep pairs of the settings file.
#ifndef ZR_SETTINGS_BEEP_SETTINGS_H
#define ZR_SETTINGS_BEEP_SETTINGS_H

#include <zrclb/types.h>

namespace zr::settings {

inline constexpr zr_long beep_values = 2;

struct BeepSettings {
    zr_long error[beep_values] = {500, 700};
    zr_long warning[beep_values] = {100, 700};
    zr_long tick[beep_values] = {1, 0};
};

// Loaded by ini_initialize_clib; no sound depends on them. Not guarded.
inline constinit BeepSettings beep_settings;

} // namespace zr::settings

#endif
