// Names in settings files: as they are given and as they stand in lines.
#ifndef ZR_SETTINGS_INI_NAMES_H
#define ZR_SETTINGS_INI_NAMES_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "settings/ini_lines.h"

namespace zr::settings {

inline constexpr std::size_t section_limit = 79; // characters of a section's name

// What counts of a section's name that a caller gave: its first 79 characters, trimmed. Null counts as empty.
inline std::string_view GivenSection(const char *section) {
    return section == nullptr ? std::string_view() : Trimmed({section, strnlen(section, section_limit)});
}

// Does the name mean the lines in front of the first header?
inline bool IsTopArea(const char *section) {
    return GivenSection(section).empty();
}

// Without the bytes of 32 and below at its end.
inline std::string_view TrimmedEnd(std::string_view text) {
    while (!text.empty() && static_cast<unsigned char>(text.back()) <= ' ')
        text.remove_suffix(1);
    return text;
}

// Where the first "=" of a line is, or npos. Names are short: a loop over their first characters is over before a
// call would be.
inline std::size_t FindEqualSign(std::string_view line) {
    constexpr std::size_t short_name = 16;
    const std::size_t near = std::min(line.size(), short_name);
    for (std::size_t i = 0; i < near; ++i) {
        if (line[i] == '=')
            return i;
    }
    return line.find('=', near);
}

} // namespace zr::settings

#endif
