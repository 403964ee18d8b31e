// The system's simple sound.
#ifndef ZR_PLATFORM_SOUND_H
#define ZR_PLATFORM_SOUND_H

#include "platform/services.h"

namespace zr::platform {

// Makes the sound and does not wait for its end. On Linux it is the bell of the controlling terminal. Not 0 if the
// system took it, 0 if it did not or there is no such terminal. Threads: any.
inline int SimpleSound() {
    return services.simple_sound();
}

} // namespace zr::platform

#endif
