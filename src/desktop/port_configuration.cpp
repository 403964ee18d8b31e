// The configuration of a serial port, as the system's settings file keeps it.
#include "desktop/port_configuration.h"

#include <algorithm>

#include <zrclb/str.h>

namespace zr::desktop {
namespace {

using namespace platform;

bool ReadParity(const char *field, PortSettings &settings) {
    switch (*field) {
    case 'e':
        settings.parity = even_parity;
        return true;
    case 'm':
        settings.parity = mark_parity;
        return true;
    case 'n':
        settings.parity = no_parity;
        return true;
    case 'o':
        settings.parity = odd_parity;
        return true;
    default:
        return false;
    }
}

void ReadStopBits(const char *field, PortSettings &settings) {
    if (str_eq(field, "1") != 0)
        settings.stop_bits = one_stop_bit;
    else if (str_eq(field, "1.5") != 0)
        settings.stop_bits = one_and_a_half_stop_bits;
    else if (str_eq(field, "2") != 0)
        settings.stop_bits = two_stop_bits;
}

// Beyond the range: a number of bits that no port takes.
std::uint8_t DataBits(const char *field) {
    return static_cast<std::uint8_t>(std::clamp<zr_long>(convert_stol(field), 0, 255));
}

// The letter doesn't choose the handshake: devices get the hardware's, which all of them understand.
bool ReadHandshake(const char *field) {
    return *field == 'e' || *field == 'p' || *field == 'x';
}

void SetHardwareHandshake(PortSettings &settings) {
    settings.rts = line_handshake;
    settings.cts_flow = true;
    settings.dtr = line_disabled;
}

} // namespace

bool ReadConfiguration(const char *configuration, PortSettings &settings) {
    char text[configuration_size];
    str_ncpy(text, configuration, static_cast<int>(sizeof text) - 1);
    bool sound = true;
    const char *field = str_tok(text, ",");
    const auto next = [&] { return field != nullptr ? field = str_tok(nullptr, ",") : nullptr; };
    if (field != nullptr)
        settings.baud_rate = static_cast<std::uint32_t>(convert_stol(field));
    if (next() != nullptr)
        sound = ReadParity(field, settings);
    if (next() != nullptr)
        settings.data_bits = DataBits(field);
    if (next() != nullptr)
        ReadStopBits(field, settings);
    if (next() != nullptr)
        sound = ReadHandshake(field) && sound;
    SetHardwareHandshake(settings);
    return sound;
}

} // namespace zr::desktop
