// Any settings text of a serial port: read twice it gives the same, what is refused changes nothing, what is accepted
// lies in the range of a port, and a port's name in front makes no difference.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "desktop/port_configuration.h"
#include "platform/serial_port.h"

namespace {

using zr::platform::ParsePortText;
using zr::platform::PortSettings;

void Check(bool holds) {
    if (!holds)
        std::abort();
}

bool Equal(const PortSettings &a, const PortSettings &b) {
    return a.baud_rate == b.baud_rate && a.data_bits == b.data_bits && a.parity == b.parity &&
           a.stop_bits == b.stop_bits && a.rts == b.rts && a.dtr == b.dtr && a.cts_flow == b.cts_flow &&
           a.dsr_flow == b.dsr_flow && a.dsr_sensitive == b.dsr_sensitive && a.xon_output == b.xon_output &&
           a.xon_input == b.xon_input;
}

// Numbers that no text can give, so that a field that was set shows.
PortSettings Untouched() {
    PortSettings settings;
    settings.data_bits = settings.parity = settings.stop_bits = settings.rts = settings.dtr = 99;
    return settings;
}

void CheckRanges(const PortSettings &settings, bool fields) {
    Check(settings.data_bits == 99 ? !fields : settings.data_bits >= 5 && settings.data_bits <= 8);
    Check(settings.parity == 99 ? !fields : settings.parity <= zr::platform::space_parity);
    Check(settings.stop_bits <= zr::platform::two_stop_bits);
    Check(settings.rts == 99 ? !fields : settings.rts <= zr::platform::line_toggled);
    Check(settings.dtr == 99 ? !fields : settings.dtr <= zr::platform::line_handshake);
    Check(!fields || settings.xon_input == settings.xon_output);
    Check(!fields || settings.cts_flow == (settings.rts == zr::platform::line_handshake));
}

// The reader of configurations on top of it, which tells the same whatever was there before.
void CheckConfiguration(const std::string &text, const PortSettings &start) {
    PortSettings first = start;
    PortSettings second;
    const bool sound = zr::desktop::ReadConfiguration(text.c_str(), first);
    Check(zr::desktop::ReadConfiguration(text.c_str(), second) == sound);
    for (const PortSettings &settings : {first, second}) {
        Check(settings.rts == zr::platform::line_handshake && settings.dtr == zr::platform::line_disabled);
        Check(settings.cts_flow);
    }
    const bool has_rate = text.substr(0, zr::desktop::configuration_size - 1).find_first_not_of(',') != text.npos;
    Check(has_rate ? first.baud_rate == second.baud_rate : first.baud_rate == start.baud_rate);
}

} // namespace

// The text up to its first zero byte is what is read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string text(std::string(reinterpret_cast<const char *>(data), size).c_str());
    PortSettings settings = Untouched();
    const bool accepted = ParsePortText(text.c_str(), settings);
    PortSettings again = settings;
    Check(ParsePortText(text.c_str(), again) == accepted && Equal(again, settings));
    if (accepted)
        CheckRanges(settings, text.find(',') != text.npos);
    else
        Check(Equal(settings, Untouched()));
    CheckConfiguration(text, settings);

    // A text that begins with a digit has no port; one may be put in front.
    if (!text.empty() && text[0] >= '0' && text[0] <= '9') {
        PortSettings with_port = Untouched();
        Check(ParsePortText(("CoM7 : " + text).c_str(), with_port) == accepted && Equal(with_port, settings));
    }
    return 0;
}
