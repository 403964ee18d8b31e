// The file that a call without one means.
#include "settings/ini_default_file.h"

namespace zr::settings {

IniPath::IniPath(const char *file) : m_text(file != nullptr && file[0] != 0 ? file : nullptr) {}

} // namespace zr::settings
