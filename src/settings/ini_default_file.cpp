// The file that a call without one means.
#include "settings/ini_default_file.h"

#include <zrclb/installation.h>

namespace zr::settings {

IniPath::IniPath(const char *file) : m_text(file) {
    if (file != nullptr && file[0] != 0)
        return;
    m_text = zr_suche_datei(nullptr, nullptr, nullptr, m_default) == 0 ? m_default : nullptr;
}

} // namespace zr::settings
