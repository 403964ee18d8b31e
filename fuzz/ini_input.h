// What the fuzz targets of settings files have in common: the parts of an input, a count of reports.
#ifndef FUZZ_INI_INPUT_H
#define FUZZ_INI_INPUT_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>

#include <zrclb/report.h>

#include "byte_input.h"
#include "platform/services.h"
#include "scratch_file.h"

namespace fuzz {

// A byte of choices, then lines, then the bytes of the file.
class IniInput {
public:
    IniInput(const std::uint8_t *data, std::size_t size) : m_rest(reinterpret_cast<const char *>(data), size) {
        if (size == 0)
            return;
        m_choices = data[0];
        m_rest.erase(0, 1);
    }

    // One of so many.
    unsigned Choose(unsigned count) {
        const unsigned choice = m_choices % count;
        m_choices /= count;
        return choice;
    }

    // The next line, as a plain function is given it.
    std::string Line() {
        const std::size_t end = std::min(m_rest.find('\n'), m_rest.size());
        const std::string line = m_rest.substr(0, end).c_str();
        m_rest.erase(0, end + 1);
        return line;
    }

    // The same, or a null text.
    std::optional<std::string> LineOrNull() {
        const bool is_null = Choose(2) == 1;
        const std::string line = Line();
        return is_null ? std::nullopt : std::optional(line);
    }

    const std::string &Rest() const { return m_rest; }

private:
    unsigned m_choices = 0;
    std::string m_rest;
};

inline const char *OrNull(const std::optional<std::string> &text) {
    return text ? text->c_str() : nullptr;
}

// Counts how often the text is reported as an error.
class ReportCount {
public:
    explicit ReportCount(const char *text) {
        s_text = text;
        s_count = 0;
        zr_error_onoff(0); // to the debugger channel alone
        zr::platform::services.debug_output = [](const char *output) { s_count += std::strcmp(output, s_text) == 0; };
    }

    static int Take() {
        const int count = s_count;
        s_count = 0;
        return count;
    }

private:
    static inline const char *s_text = "";
    static inline int s_count = 0;
};

} // namespace fuzz

#endif
