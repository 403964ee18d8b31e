// The kinds of operating system that zr_get_win32 tells.
#include "settings/system_kind.h"

#include <zrclb/system.h>

#include "settings/system_answers.h"

namespace zr::settings {

namespace {

// Versions of the last family; those between them count as the one told for all others.
int KindOfLastFamily(std::uint32_t version, std::uint32_t minor) {
    if (version <= 3)
        return ZR_SYSTEM_NT_3;
    if (version > 6 || (version == 6 && minor > 2))
        return ZR_SYSTEM_LATER;
    if (version == 6)
        return ZR_SYSTEM_NT_60 + static_cast<int>(minor);
    if (version == 5 && minor <= 1)
        return ZR_SYSTEM_NT_50 + static_cast<int>(minor);
    return ZR_SYSTEM_NT_4;
}

} // namespace

int SystemKind(const platform::SystemVersion &version) {
    switch (version.platform) {
    case 0:
        return ZR_SYSTEM_32S;
    case 1:
        return ZR_SYSTEM_9X;
    case 2:
        return KindOfLastFamily(version.major, version.minor);
    default:
        return ZR_SYSTEM_UNKNOWN;
    }
}

} // namespace zr::settings

using namespace zr::settings;

extern "C" int zr_get_win32(void) noexcept {
    zr::platform::SystemVersion version;
    if (system_answers.win32_kind <= 0 && zr::platform::GetSystemVersion(version))
        system_answers.win32_kind = SystemKind(version);
    return system_answers.win32_kind;
}
