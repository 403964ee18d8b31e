// The beep pairs of the settings file.
#include "settings/beep_settings.h"

#include <zrclb/ini.h>

namespace {

int ReadPair(const char *entry, zr_long (&pair)[zr::settings::beep_values]) {
    zr_long count = zr::settings::beep_values;
    return ini_read_longs(nullptr, "Beep", entry, pair, &count);
}

} // namespace

extern "C" int ini_initialize_clib() noexcept {
    auto &beep = zr::settings::beep_settings;
    ReadPair("Error", beep.error);
    ReadPair("Warning", beep.warning);
    return ReadPair("Tick", beep.tick);
}
