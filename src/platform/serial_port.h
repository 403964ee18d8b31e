// Serial ports: opened for one caller alone, set up, written to.
#ifndef ZR_PLATFORM_SERIAL_PORT_H
#define ZR_PLATFORM_SERIAL_PORT_H

#include <cstddef>
#include <cstdint>

#include "platform/services.h"

namespace zr::platform {

// The numbers are those of the desktop's control block.
enum PortParity : std::uint8_t {
    no_parity = 0,
    odd_parity = 1,
    even_parity = 2,
    mark_parity = 3,
    space_parity = 4,
};

enum PortStopBits : std::uint8_t {
    one_stop_bit = 0,
    one_and_a_half_stop_bits = 1,
    two_stop_bits = 2,
};

enum PortLine : std::uint8_t {
    line_disabled = 0,
    line_enabled = 1,
    line_handshake = 2,
    line_toggled = 3,
};

// What a port is set up with.
struct PortSettings {
    std::uint32_t baud_rate = 0;
    std::uint8_t data_bits = 0;
    std::uint8_t parity = no_parity;       // PortParity
    std::uint8_t stop_bits = one_stop_bit; // PortStopBits
    std::uint8_t rts = line_disabled;      // PortLine: request to send
    std::uint8_t dtr = line_disabled;      // PortLine, not toggled: data terminal ready
    bool cts_flow = false;                 // output waits for clear to send
    bool dsr_flow = false;                 // output waits for data set ready
    bool dsr_sensitive = false;            // input counts while data set ready is on only
    bool xon_output = false;               // output stops at XOFF
    bool xon_input = false;                // XOFF is sent when input comes too fast
};

// Opens the port for reading and writing, for this caller alone; it passes bytes on as they are. Answers its handle, the
// system's own, to be given to ClosePort; 0 if there is no such port, it is open already, or it is a file of another
// kind.
//
// On Linux "COM1" to "COM999", in any case and perhaps with a colon, is the device that the variable ZR_PORT_COM1 (and so on) names
// with an absolute host path, else /dev/ttyS0 (and so on); every other name is a path in the library's form. A device counts as
// open when another program has locked it (flock) or claimed it (TIOCEXCL). Child processes don't inherit it.
// Threads: any.
inline zr_value OpenPort(const char *port) {
    return services.open_port(port);
}

// Reads `port`, ":", `configuration` as ParsePortText tells, by the system's own parser where there is one. On Linux a
// port with another name than COMn has no share in the text.
inline bool BuildPortSettings(const char *port, const char *configuration, PortSettings &out) {
    return services.build_port_settings(port, configuration, out);
}

// Sets an open port up. False if it refuses; what it was set to before then holds. Linux has no DSR handshake and no toggled
// line, which then stay as they are, and more than one stop bit are as many as the hardware has. Where a port has no
// lines to switch, that is no failure. Pseudo-terminals always have 8 bits and no parity.
inline bool ApplyPortSettings(zr_value port, const PortSettings &settings) {
    return services.apply_port_settings(port, settings);
}

// Writes the bytes and waits until they are sent, however long the device makes it wait. Answers how many were written: fewer than
// `size` if the port is gone. What was already on its way when it went counts as written.
inline std::size_t WritePort(zr_value port, const void *bytes, std::size_t size) {
    return services.write_port(port, bytes, size);
}

// Closes an open port. What is none (on Linux no terminal, on Windows no device of characters) stays open.
inline void ClosePort(zr_value port) {
    services.close_port(port);
}

// Reads a settings text in one of the two forms of the desktop's mode command into the fields that it speaks of; false, with `out` as it was,
// if the text is malformed. Both may begin with the name of a port, COM and its number (from 1), then a colon or a blank
// or both. Letters have any case.
//
//   baud,parity,data,stop[,handshake]   blanks around each field, but not in front of the first one without a port's name. parity: n,
//       o, e, m or s; data: 5 to 8; stop: 1, 1.5 or 2; handshake: p for hardware, x for XON/XOFF, none
//       without. 11, 15, 30, 60, 12, 24, 48, 96 and 19 are short for 110, 150, 300, 600, 1200, 2400, 4800, 9600 and
//       19200. Handshakes are set, so those that aren't named are switched off.
//   baud=n parity=p data=n stop=n to=on xon=on odsr=on octs=on dtr=on rts=on idsr=on   any of these, parted by blanks. Instead of
//       on: off; dtr=hs, rts=hs and rts=tg as well. Without stop it is 2 for baud=110, else 1. "to" has nothing to set
//       here.
//
// An empty text, and one of nothing but a port's name, are of the second form. Numbers beyond 32 bits count as the
// highest. Threads: any.
bool ParsePortText(const char *text, PortSettings &out);

} // namespace zr::platform

#endif
