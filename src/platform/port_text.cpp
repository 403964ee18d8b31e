// Settings texts of serial ports.
#include <algorithm>
#include <iterator>
#include <string_view>

#include "platform/serial_port.h"

namespace zr::platform {

namespace {

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// What is left of a text. Each step takes its piece from the front, or answers false.
class Rest {
public:
    explicit Rest(std::string_view text) : m_text(text) {}

    bool AtEnd() const { return m_text.empty(); }
    bool At(char c) const { return !m_text.empty() && Lower(m_text.front()) == c; }

    void SkipBlanks() { m_text.remove_prefix(std::min(m_text.find_first_not_of(' '), m_text.size())); }

    bool Take(char c) {
        if (!At(c))
            return false;
        m_text.remove_prefix(1);
        return true;
    }

    // `word` is in small letters.
    bool TakeWord(std::string_view word) {
        if (m_text.size() < word.size() ||
            !std::equal(word.begin(), word.end(), m_text.begin(), [](char small, char c) { return small == Lower(c); }))
            return false;
        m_text.remove_prefix(word.size());
        return true;
    }

    // Digits, at least one.
    bool TakeNumber(std::uint32_t &number) {
        if (m_text.empty() || !IsDigit(m_text.front()))
            return false;
        std::uint64_t value = 0;
        for (; !m_text.empty() && IsDigit(m_text.front()); m_text.remove_prefix(1))
            value = std::min<std::uint64_t>(value * 10 + static_cast<std::uint64_t>(m_text.front() - '0'), 0xFFFFFFFF);
        number = static_cast<std::uint32_t>(value);
        return true;
    }

    bool TakeParity(std::uint8_t &parity) {
        constexpr std::string_view letters = "noems"; // in the order of their numbers
        const std::size_t number = m_text.empty() ? letters.npos : letters.find(Lower(m_text.front()));
        if (number == letters.npos)
            return false;
        m_text.remove_prefix(1);
        parity = static_cast<std::uint8_t>(number);
        return true;
    }

    bool TakeDataBits(std::uint8_t &bits) {
        std::uint32_t number;
        if (!TakeNumber(number) || number < 5 || number > 8)
            return false;
        bits = static_cast<std::uint8_t>(number);
        return true;
    }

    bool TakeStopBits(std::uint8_t &bits) {
        std::uint32_t number;
        if (!TakeNumber(number) || number < 1 || number > 2)
            return false;
        bits = number == 1 ? one_stop_bit : two_stop_bits;
        if (number == 1 && TakeWord(".5"))
            bits = one_and_a_half_stop_bits;
        return true;
    }

private:
    std::string_view m_text;
};

// Baud rates that have a short form, which is what they begin with.
std::uint32_t FullBaudRate(std::uint32_t rate) {
    struct ShortRate {
        std::uint32_t given;
        std::uint32_t meant;
    };
    static constexpr ShortRate rates[] = {{11, 110},  {15, 150},  {30, 300},  {60, 600},  {12, 1200},
                                          {24, 2400}, {48, 4800}, {96, 9600}, {19, 19200}};
    const auto *found = std::find_if(std::begin(rates), std::end(rates), [&](auto &r) { return r.given == rate; });
    return found != std::end(rates) ? found->meant : rate;
}

bool TakeBaudRate(Rest &rest, std::uint32_t &rate) {
    if (!rest.TakeNumber(rate))
        return false;
    rate = FullBaudRate(rate);
    return true;
}

// A port's name with what parts it from the settings; without one `rest` stays as it is.
void TakePort(Rest &rest) {
    Rest behind = rest;
    std::uint32_t number;
    if (!behind.TakeWord("com") || behind.At('0') || !behind.TakeNumber(number) || (!behind.At(':') && !behind.At(' ')))
        return;
    behind.SkipBlanks();
    behind.Take(':');
    behind.SkipBlanks();
    rest = behind;
}

// A comma with blanks around it.
bool TakeComma(Rest &rest) {
    rest.SkipBlanks();
    if (!rest.Take(','))
        return false;
    rest.SkipBlanks();
    return true;
}

// The handshake letter, or none, up to the end of the text.
bool TakeHandshake(Rest &rest, PortSettings &settings) {
    const bool hardware = rest.Take('p');
    const bool software = !hardware && rest.Take('x');
    settings.cts_flow = settings.dsr_flow = hardware;
    settings.dtr = settings.rts = hardware ? line_handshake : line_enabled;
    settings.xon_output = settings.xon_input = software;
    rest.SkipBlanks();
    return rest.AtEnd();
}

bool ParseFields(Rest rest, PortSettings &settings) {
    if (!TakeBaudRate(rest, settings.baud_rate) || !TakeComma(rest) || !rest.TakeParity(settings.parity) ||
        !TakeComma(rest) || !rest.TakeDataBits(settings.data_bits) || !TakeComma(rest) ||
        !rest.TakeStopBits(settings.stop_bits))
        return false;
    rest.SkipBlanks();
    if (!rest.AtEnd() && !TakeComma(rest))
        return false;
    return TakeHandshake(rest, settings);
}

bool TakeSwitch(Rest &rest, bool &on) {
    on = rest.TakeWord("on");
    return on || rest.TakeWord("off");
}

// "on", "off", "hs", and "tg" where the line can toggle.
bool TakeLine(Rest &rest, std::uint8_t &line, bool toggles) {
    bool on;
    if (TakeSwitch(rest, on))
        line = on ? line_enabled : line_disabled;
    else if (rest.TakeWord("hs"))
        line = line_handshake;
    else if (toggles && rest.TakeWord("tg"))
        line = line_toggled;
    else
        return false;
    return true;
}

bool TakeXon(Rest &rest, PortSettings &settings) {
    bool on;
    if (!TakeSwitch(rest, on))
        return false;
    settings.xon_output = settings.xon_input = on;
    return true;
}

// Which of the settings that depend on one another a text has.
struct Given {
    bool rate = false;
    bool stop = false;
};

// One setting with its name.
bool TakeSetting(Rest &rest, PortSettings &settings, Given &given) {
    bool ignored;
    if (rest.TakeWord("baud="))
        return given.rate = TakeBaudRate(rest, settings.baud_rate);
    if (rest.TakeWord("parity="))
        return rest.TakeParity(settings.parity);
    if (rest.TakeWord("data="))
        return rest.TakeDataBits(settings.data_bits);
    if (rest.TakeWord("stop="))
        return given.stop = rest.TakeStopBits(settings.stop_bits);
    if (rest.TakeWord("to="))
        return TakeSwitch(rest, ignored);
    if (rest.TakeWord("xon="))
        return TakeXon(rest, settings);
    if (rest.TakeWord("odsr="))
        return TakeSwitch(rest, settings.dsr_flow);
    if (rest.TakeWord("octs="))
        return TakeSwitch(rest, settings.cts_flow);
    if (rest.TakeWord("dtr="))
        return TakeLine(rest, settings.dtr, false);
    if (rest.TakeWord("rts="))
        return TakeLine(rest, settings.rts, true);
    return rest.TakeWord("idsr=") && TakeSwitch(rest, settings.dsr_sensitive);
}

bool ParseNamed(Rest rest, PortSettings &settings) {
    Given given;
    if (!rest.AtEnd() && !TakeSetting(rest, settings, given))
        return false;
    while (rest.Take(' ')) {
        rest.SkipBlanks();
        if (!TakeSetting(rest, settings, given))
            return false;
    }
    if (!given.stop)
        settings.stop_bits = given.rate && settings.baud_rate == 110 ? two_stop_bits : one_stop_bit;
    return rest.AtEnd();
}

} // namespace

bool ParsePortText(const char *text, PortSettings &out) {
    const std::string_view whole = text;
    Rest rest(whole);
    TakePort(rest);
    PortSettings settings = out;
    const bool fields = whole.find(',') != whole.npos;
    if (fields ? !ParseFields(rest, settings) : !ParseNamed(rest, settings))
        return false;
    out = settings;
    return true;
}

} // namespace zr::platform
