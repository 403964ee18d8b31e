// What system the program runs on.
#include "platform/system_kind.h"

#include <windows.h>

namespace zr::platform {

bool backend::GetSystemVersion(SystemVersion &out) {
    OSVERSIONINFOA information = {};
    information.dwOSVersionInfoSize = sizeof information;
    if (!GetVersionExA(&information))
        return false;
    out = {information.dwPlatformId, information.dwMajorVersion, information.dwMinorVersion};
    return true;
}

} // namespace zr::platform
