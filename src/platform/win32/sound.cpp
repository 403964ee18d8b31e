// The simple beep.
#include "platform/sound.h"

#include <windows.h>

namespace zr::platform {

int backend::SimpleSound() {
    return MessageBeep(0xFFFFFFFF);
}

} // namespace zr::platform
