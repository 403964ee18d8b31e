// Mode texts of streams.
#include "platform/open_mode.h"

namespace zr::platform {

bool ParseOpenMode(const char *mode, char kind, OpenMode &out) {
    if (mode == nullptr || (*mode != 'r' && *mode != 'w' && *mode != 'a'))
        return false;
    out.letter = *mode++;
    out.update = *mode == '+';
    if (out.update)
        ++mode;
    if (*mode == kind)
        ++mode;
    return *mode == 0;
}

} // namespace zr::platform
