// Writing settings held in memory to their file.
#ifndef ZR_SETTINGS_MINI_SAVE_H
#define ZR_SETTINGS_MINI_SAVE_H

#include "settings/mini_memory.h"

namespace zr::settings {

// Writes all sections to the file by way of a temporary one. False if the file is not what is in memory.
bool SaveFile(const MiniFile &file);

} // namespace zr::settings

#endif
