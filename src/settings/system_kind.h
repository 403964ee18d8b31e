// The kinds of operating system that zr_get_win32 tells.
#ifndef ZR_SETTINGS_SYSTEM_KIND_H
#define ZR_SETTINGS_SYSTEM_KIND_H

#include "platform/system_kind.h"

namespace zr::settings {

// One of the ZR_SYSTEM_ numbers.
int SystemKind(const platform::SystemVersion &version);

} // namespace zr::settings

#endif
