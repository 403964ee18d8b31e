// The German letters of the old DOS code page in their desktop forms.
#include "settings/dos_to_win.h"

#include <zrclb/ini.h>
#include <zrclb/str.h>

namespace zr::settings {
namespace {

// Reads the setting once for the process. A negative one is on as well, and is not taken for an unread one.
bool IsOn() {
    zr_long mode = dos_to_win_mode.load(std::memory_order_relaxed);
    if (mode == dos_to_win_unread) {
        zr_long setting = 0;
        const bool read = ini_read_long(nullptr, "System", "DosToWin", &setting) == INI_DONE;
        mode = read && setting != 0;
        dos_to_win_mode.store(mode, std::memory_order_relaxed);
    }
    return mode != 0;
}

char Converted(char c) {
    switch (static_cast<unsigned char>(c)) {
    case 0x81:
        return '\xFC'; // u umlaut
    case 0x84:
        return '\xE4'; // a umlaut
    case 0x8E:
        return '\xC4'; // A umlaut
    case 0x94:
        return '\xF6'; // o umlaut
    case 0x99:
        return '\xD6'; // O umlaut
    case 0x9A:
        return '\xDC'; // U umlaut
    case 0xE1:
        return '\xDF'; // sharp s
    default:
        return c;
    }
}

} // namespace
} // namespace zr::settings

extern "C" char *dos_to_win(char *s, int flag) noexcept {
    if (!zr::settings::IsOn() || flag != 0 || s == nullptr)
        return s;
    for (char *c = s; *c != '\0'; ++c)
        *c = zr::settings::Converted(*c);
    return s;
}
