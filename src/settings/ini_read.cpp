// Reading single values of settings files.
#include <zrclb/ini.h>

#include <cstddef>
#include <string_view>

#include <zrclb/report.h>
#include <zrclb/str.h>

#include "settings/ini_default_file.h"
#include "settings/ini_lines.h"
#include "settings/ini_names.h"
#include "settings/ini_values.h"

namespace zr::settings {

namespace {

constexpr char source_tag[] = "Ini";

constexpr char version_section[] = "_Zr_Data_Version_Info_";
constexpr char version_entry[] = "Version";
constexpr zr_long version_parts = 4;

// Whose lines are read, as the caller named it.
struct Place {
    const char *file;
    const char *section;
    const char *entry;
};

void ReportMalformedLine(const Place &place) {
    zr_error("Incorrect entry's format. '=' is not found. File below:", nullptr, nullptr, source_tag, __LINE__);
    zr_error(place.file, place.section, place.entry, source_tag, __LINE__);
}

// The next entry of the section, its name trimmed. False at the section's end.
bool NextEntry(IniLines &lines, const Place &place, std::string_view &name, std::string_view &value) {
    std::string_view line;
    while (lines.Next(line)) {
        if (line[0] == ';')
            continue;
        if (line[0] == '[')
            return false;
        const std::size_t sign = FindEqualSign(line);
        if (sign != std::string_view::npos) {
            name = TrimmedEnd(line.substr(0, sign));
            value = line.substr(sign + 1);
            return true;
        }
        ReportMalformedLine(place);
    }
    return false;
}

int ListNames(IniLines &lines, const Place &place, char *buffer, zr_long &size) {
    NameList list(buffer, size);
    std::string_view name, value;
    while (NextEntry(lines, place, name, value) && list.Add(name)) {
    }
    return list.End(size);
}

bool FindSection(IniLines &lines, const char *section) {
    if (IsTopArea(section))
        return true;
    const std::string_view wanted(section);
    std::string_view name;
    while (lines.NextHeader(name)) {
        if (name == wanted)
            return true;
    }
    return false;
}

int FindValue(IniLines &lines, const Place &place, std::string_view &value) {
    const std::string_view wanted(place.entry);
    std::string_view name;
    while (NextEntry(lines, place, name, value)) {
        if (name == wanted)
            return INI_DONE;
    }
    return INI_NO_ENTRY;
}

// Reads an entry's value, cut if need be, into a text for `convert`.
template <class Value>
int ReadNumber(const Place &place, Value *value, Value (*convert)(const char *) noexcept) {
    if (value == nullptr)
        return INI_NO_FILE;
    char text[value_limit + 1];
    zr_long size = value_limit;
    const int result = ini_read_string(place.file, place.section, place.entry, text, &size);
    if (result == INI_DONE)
        *value = convert(text);
    return result;
}

template <class Value>
int ReadNumbers(const Place &place, Value *values, zr_long *count, Value (*convert)(const char *) noexcept) {
    char text[value_limit + 1];
    zr_long size = value_limit;
    int result = INI_NO_FILE;
    if (values != nullptr && count != nullptr && *count >= 0)
        result = ini_read_string(place.file, place.section, place.entry, text, &size);
    if (result == INI_DONE)
        return SplitNumbers(text, values, *count, convert);
    if (count != nullptr)
        *count = 0;
    return result;
}

} // namespace
} // namespace zr::settings

using namespace zr::settings;

extern "C" {

int ini_read_string(const char *file, const char *section, const char *entry, char *buffer, zr_long *size) noexcept {
    const IniPath path(file);
    if (size == nullptr || *size < 0 || (entry == nullptr && buffer == nullptr))
        return INI_NO_FILE;
    IniLines lines;
    if (!lines.Open(path.Text()))
        return INI_NO_FILE;
    if (!FindSection(lines, section))
        return INI_NO_SECTION;
    const Place place = {file, section, entry};
    if (entry == nullptr)
        return ListNames(lines, place, buffer, *size);
    std::string_view value;
    const int result = FindValue(lines, place, value);
    return result == INI_DONE ? CopyValue(value, buffer, *size) : result;
}

int ini_read_long(const char *file, const char *section, const char *entry, zr_long *value) noexcept {
    return ReadNumber({file, section, entry}, value, convert_stol);
}

int ini_read_double(const char *file, const char *section, const char *entry, double *value) noexcept {
    return ReadNumber({file, section, entry}, value, convert_stod);
}

int ini_read_longs(const char *file, const char *section, const char *entry, zr_long *values, zr_long *count) noexcept {
    return ReadNumbers({file, section, entry}, values, count, convert_stol);
}

int ini_read_doubles(const char *file, const char *section, const char *entry, double *values,
                     zr_long *count) noexcept {
    return ReadNumbers({file, section, entry}, values, count, convert_stod);
}

int ini_get_data_version(const char *file, zr_long *a, zr_long *b, zr_long *c, zr_long *d) noexcept {
    zr_long parts[version_parts] = {};
    zr_long count = version_parts;
    ini_read_longs(file, version_section, version_entry, parts, &count);
    zr_long *const outputs[version_parts] = {a, b, c, d};
    for (int i = 0; i < version_parts; ++i) {
        if (outputs[i] != nullptr)
            *outputs[i] = parts[i];
    }
    return INI_DONE;
}
}
