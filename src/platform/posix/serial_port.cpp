// Serial ports: terminal devices, set up as bare lines. Rates of any size need the kernel's own record of a terminal's
// settings in place of the C library's.
#include "platform/serial_port.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>

#include <asm/termbits.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "platform/posix/posix_descriptors.h"
#include "platform/posix/posix_paths.h"
#include "platform/posix/posix_ports.h"

namespace zr::platform {

namespace {

struct Rate {
    std::uint32_t bits;
    tcflag_t code;
};

// The rates that have a code; all others stand as numbers.
constexpr Rate coded_rates[] = {
    {50, B50},           {75, B75},           {110, B110},         {134, B134},         {150, B150},
    {200, B200},         {300, B300},         {600, B600},         {1200, B1200},       {1800, B1800},
    {2400, B2400},       {4800, B4800},       {9600, B9600},       {19200, B19200},     {38400, B38400},
    {57600, B57600},     {115200, B115200},   {230400, B230400},   {460800, B460800},   {500000, B500000},
    {576000, B576000},   {921600, B921600},   {1000000, B1000000}, {1152000, B1152000}, {1500000, B1500000},
    {2000000, B2000000}, {2500000, B2500000}, {3000000, B3000000}, {3500000, B3500000}, {4000000, B4000000},
};

tcflag_t CodeOf(std::uint32_t rate) {
    for (const Rate &coded : coded_rates) {
        if (coded.bits == rate)
            return coded.code;
    }
    return BOTHER;
}

int DescriptorOf(zr_value port) {
    return port <= INT_MAX ? static_cast<int>(port) : -1;
}

bool ReadTerminal(int descriptor, termios2 &terminal) {
    return ioctl(descriptor, TCGETS2, &terminal) == 0;
}

// The number behind "COM", in any case and with a colon at the end or without; 0 for other names.
int PortNumber(const char *port) {
    const auto is_letter = [](char c, char small) { return (c | 0x20) == small; };
    if (!is_letter(port[0], 'c') || !is_letter(port[1], 'o') || !is_letter(port[2], 'm'))
        return 0;
    const char *at = port + 3;
    int number = 0;
    for (; *at >= '0' && *at <= '9' && number < 1000; ++at)
        number = number * 10 + (*at - '0');
    if (*at == ':')
        ++at;
    return *at == 0 && port[3] != '0' && number < 1000 ? number : 0;
}

// Makes the terminal this caller's alone. The system's own claim does not keep the superuser out, hence the lock.
bool Claim(int descriptor) {
    int claimed = 0;
    if (ioctl(descriptor, TIOCGEXCL, &claimed) == 0 && claimed != 0)
        return false;
    return flock(descriptor, LOCK_EX | LOCK_NB) == 0 && ioctl(descriptor, TIOCEXCL) == 0;
}

// Bytes pass as they are, no key ends the program, and no carrier is waited for.
bool MakeBare(int descriptor) {
    termios2 terminal;
    if (!ReadTerminal(descriptor, terminal))
        return false;
    terminal.c_iflag &= ~static_cast<tcflag_t>(BRKINT | PARMRK | ISTRIP | INLCR | IGNCR | ICRNL | IXON | IXANY | IXOFF);
    terminal.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    terminal.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL | ICANON | ISIG | IEXTEN);
    terminal.c_cflag |= CREAD | CLOCAL;
    terminal.c_cc[VMIN] = 1;
    terminal.c_cc[VTIME] = 0;
    return ioctl(descriptor, TCSETS2, &terminal) == 0;
}

// Without waiting for a carrier the terminal has to be opened not to wait for anything at all.
bool LetWait(int descriptor) {
    const int flags = fcntl(descriptor, F_GETFL);
    return flags != -1 && fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK) == 0;
}

// 0 is no handle.
int MoveFromZero(int descriptor) {
    if (descriptor != 0)
        return descriptor;
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, 1);
    close(descriptor);
    return moved;
}

tcflag_t SizeFlag(std::uint8_t data_bits) {
    constexpr tcflag_t flags[] = {CS5, CS6, CS7, CS8};
    return flags[data_bits - 5];
}

tcflag_t ParityFlags(std::uint8_t parity) {
    constexpr tcflag_t flags[] = {0, PARENB | PARODD, PARENB, PARENB | PARODD | CMSPAR, PARENB | CMSPAR};
    return flags[parity];
}

bool AreValid(const PortSettings &settings) {
    return settings.baud_rate > 0 && settings.baud_rate <= INT_MAX && settings.data_bits >= 5 &&
           settings.data_bits <= 8 && settings.parity <= space_parity && settings.stop_bits <= two_stop_bits;
}

void StoreLine(const PortSettings &settings, termios2 &terminal) {
    constexpr tcflag_t line = CBAUD | (CBAUD << IBSHIFT) | CSIZE | PARENB | PARODD | CMSPAR | CSTOPB | CRTSCTS;
    terminal.c_cflag &= ~line;
    // No code for the rate of input means that it is that of output.
    terminal.c_cflag |=
        CodeOf(settings.baud_rate) | SizeFlag(settings.data_bits) | ParityFlags(settings.parity) | CREAD | CLOCAL;
    terminal.c_ispeed = terminal.c_ospeed = settings.baud_rate;
    if (settings.stop_bits != one_stop_bit)
        terminal.c_cflag |= CSTOPB;
    if (settings.cts_flow || settings.rts == line_handshake)
        terminal.c_cflag |= CRTSCTS;
    terminal.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF);
    if (settings.xon_output)
        terminal.c_iflag |= IXON;
    if (settings.xon_input)
        terminal.c_iflag |= IXOFF;
}

// Ports without such lines refuse, which is as good.
void SwitchLine(int descriptor, int line, std::uint8_t control) {
    if (control == line_disabled)
        ioctl(descriptor, TIOCMBIC, &line);
    else if (control == line_enabled)
        ioctl(descriptor, TIOCMBIS, &line);
}

} // namespace

bool posix::HostPort(const char *port, PathBuffer &out) {
    const int number = PortNumber(port);
    if (number == 0)
        return ToHost(port, out, sizeof out);
    char variable[32];
    std::snprintf(variable, sizeof variable, "ZR_PORT_COM%d", number);
    const char *device = std::getenv(variable);
    const int length = device != nullptr && device[0] == '/'
                           ? std::snprintf(out, sizeof out, "%s", device)
                           : std::snprintf(out, sizeof out, "/dev/ttyS%d", number - 1);
    return length > 0 && static_cast<std::size_t>(length) < sizeof out;
}

zr_value backend::OpenPort(const char *port) {
    posix::PathBuffer device;
    if (!posix::HostPort(port, device))
        return 0;
    const int descriptor = MoveFromZero(posix::Open(device, O_RDWR | O_NOCTTY | O_NONBLOCK, 0));
    if (descriptor == -1)
        return 0;
    if (isatty(descriptor) == 1 && Claim(descriptor) && MakeBare(descriptor) && LetWait(descriptor))
        return static_cast<zr_value>(descriptor);
    close(descriptor);
    return 0;
}

bool backend::BuildPortSettings(const char *port, const char *configuration, PortSettings &out) {
    char text[512];
    const char *name = PortNumber(port) != 0 ? port : "";
    const int length = std::snprintf(text, sizeof text, "%s%s%s", name, *name != 0 ? ":" : "", configuration);
    return length >= 0 && static_cast<std::size_t>(length) < sizeof text && ParsePortText(text, out);
}

bool backend::ApplyPortSettings(zr_value port, const PortSettings &settings) {
    const int descriptor = DescriptorOf(port);
    termios2 terminal;
    if (!AreValid(settings) || !ReadTerminal(descriptor, terminal))
        return false;
    StoreLine(settings, terminal);
    if (ioctl(descriptor, TCSETS2, &terminal) != 0)
        return false;
    SwitchLine(descriptor, TIOCM_DTR, settings.dtr);
    SwitchLine(descriptor, TIOCM_RTS, settings.rts);
    return true;
}

std::size_t backend::WritePort(zr_value port, const void *bytes, std::size_t size) {
    const int descriptor = DescriptorOf(port);
    if (isatty(descriptor) != 1)
        return 0;
    const std::size_t written = posix::WriteAll(descriptor, static_cast<const char *>(bytes), size);
    while (ioctl(descriptor, TCSBRK, 1) == -1 && errno == EINTR) // waits until all is sent
        continue;
    return written;
}

void backend::ClosePort(zr_value port) {
    const int descriptor = DescriptorOf(port);
    if (isatty(descriptor) != 1 && errno != EIO) // a terminal that has hung up says EIO
        return;
    ioctl(descriptor, TIOCNXCL);
    close(descriptor);
}

} // namespace zr::platform
