// Which device of the host a serial port is.
#ifndef ZR_PLATFORM_POSIX_PORTS_H
#define ZR_PLATFORM_POSIX_PORTS_H

#include "platform/posix/posix_drives.h"

namespace zr::platform::posix {

// Writes the host's path of the device that a port's name stands for, as OpenPort tells (serial_port.h). False if it is no
// path or doesn't fit. Threads: as for std::getenv.
bool HostPort(const char *port, PathBuffer &out);

} // namespace zr::platform::posix

#endif
