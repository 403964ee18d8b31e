// The configuration of a serial port, as the system's settings file keeps it.
#ifndef ZR_DESKTOP_PORT_CONFIGURATION_H
#define ZR_DESKTOP_PORT_CONFIGURATION_H

#include <cstddef>

#include "platform/serial_port.h"

namespace zr::desktop {

inline constexpr std::size_t configuration_size = 64; // with the terminator

// Reads a configuration of less than 64 characters, "baud,parity,data,stop,handshake", into the settings that the system's
// parser has made of it. A field that is missing leaves them alone, and so do stop bits other than "1", "1.5" and "2".
// Hardware handshake is set in any case. False if the letter of parity or handshake is there but is none of those
// that are known: the configuration is faulty, and the settings are made all the same. Threads: any.
bool ReadConfiguration(const char *configuration, platform::PortSettings &settings);

} // namespace zr::desktop

#endif
