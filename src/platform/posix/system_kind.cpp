// What system the program runs on.
#include "platform/system_kind.h"

namespace zr::platform {

bool backend::GetSystemVersion(SystemVersion &out) {
    out = {2, 10, 0};
    return true;
}

} // namespace zr::platform
