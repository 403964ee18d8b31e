// Any settings text of a serial port: read twice it gives the same, what is refused changes nothing, what is accepted
// lies in the range of a port, and a port's name in front makes no difference. Read as a configuration it gives the same
// as read plainly.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <zrclb/str.h>

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

// The pieces between commas; empty ones don't count.
std::vector<std::string> Fields(const std::string &text) {
    std::vector<std::string> fields(1);
    for (const char c : text) {
        if (c != ',')
            fields.back() += c;
        else if (!fields.back().empty())
            fields.emplace_back();
    }
    if (fields.back().empty())
        fields.pop_back();
    return fields;
}

// A configuration read plainly, one field after the other.
bool ReadPlainly(const std::string &text, PortSettings &settings) {
    const std::vector<std::string> fields = Fields(text.substr(0, zr::desktop::configuration_size - 1));
    const std::map<char, std::uint8_t> parities = {{'n', 0}, {'o', 1}, {'e', 2}, {'m', 3}};
    const std::map<std::string, std::uint8_t> stops = {{"1", 0}, {"1.5", 1}, {"2", 2}};
    bool sound = true;
    if (fields.size() > 0)
        settings.baud_rate = static_cast<std::uint32_t>(convert_stol(fields[0].c_str()));
    if (fields.size() > 1) {
        const auto parity = parities.find(fields[1][0]);
        sound = parity != parities.end();
        settings.parity = sound ? parity->second : settings.parity;
    }
    if (fields.size() > 2)
        settings.data_bits = static_cast<std::uint8_t>(std::clamp<zr_long>(convert_stol(fields[2].c_str()), 0, 255));
    if (fields.size() > 3 && stops.count(fields[3]) != 0)
        settings.stop_bits = stops.at(fields[3]);
    if (fields.size() > 4)
        sound = sound && std::string("epx").find(fields[4][0]) != std::string::npos;
    settings.rts = zr::platform::line_handshake;
    settings.dtr = zr::platform::line_disabled;
    settings.cts_flow = true;
    return sound;
}

// The reader of configurations, on top of what the parser made of the text and of nothing.
void CheckConfiguration(const std::string &text, const PortSettings &start) {
    for (const PortSettings &before : {start, PortSettings()}) {
        PortSettings settings = before, plain = before;
        Check(zr::desktop::ReadConfiguration(text.c_str(), settings) == ReadPlainly(text, plain));
        Check(Equal(settings, plain));
    }
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
