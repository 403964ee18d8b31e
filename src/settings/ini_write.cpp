// Writing single values of settings files.
#include <zrclb/ini.h>

#include <cstddef>
#include <string_view>

#include <zrclb/str.h>

#include "settings/ini_default_file.h"
#include "settings/ini_names.h"
#include "settings/ini_rewrite.h"
#include "settings/ini_values.h"

namespace zr::settings {

namespace {

constexpr char version_section[] = "_Zr_Data_Version_Info_";
constexpr char version_entry[] = "Version";
constexpr zr_long version_parts = 4;

constexpr std::size_t decimals_size = 400; // any double with six decimals

// At the end of a file without the section.
void PutNewSection(IniRewrite &rewrite, const char *section, std::string_view entry, std::string_view value) {
    rewrite.PutSeparator();
    rewrite.PutHeader(section);
    rewrite.Put("\n");
    rewrite.PutEntry(entry, value);
}

// Behind the section's header: in the place of the entry, or at the section's end.
void PutIntoSection(IniRewrite &rewrite, std::string_view entry, std::string_view value) {
    std::string_view text, name, old_value;
    LineKind kind;
    while ((kind = rewrite.Next(text)) == LineKind::other) {
        if (!SplitEntry(text, name, old_value))
            continue;
        rewrite.PutLineFeed();
        const bool found = name == entry;
        rewrite.PutEntry(name, found ? value : old_value);
        if (found) {
            rewrite.PutRest();
            return;
        }
    }
    rewrite.PutLineFeed();
    rewrite.PutEntry(entry, value);
    if (kind == LineKind::header) {
        rewrite.Put("\n\n");
        rewrite.PutHeader(text);
    }
    rewrite.PutRest();
}

template <class Value>
int WriteList(const char *file, const char *section, const char *entry, const Value *values, zr_long count,
              const char *format) {
    if (values == nullptr && count > 0)
        return INI_NO_FILE;
    char list[list_size];
    const int result = FormatList(values, count, format, list);
    return result == INI_DONE ? ini_write_string(file, section, entry, list) : result;
}

} // namespace
} // namespace zr::settings

using namespace zr::settings;

extern "C" {

int ini_write_string(const char *file, const char *section, const char *entry, const char *value) noexcept {
    const IniPath path(file);
    IniRewrite rewrite;
    if (entry == nullptr || !rewrite.Open(path.Text(), IniRewrite::Missing::is_new))
        return INI_NO_FILE;
    const std::string_view text = value != nullptr ? value : "";
    if (IsTopArea(section) || rewrite.FindSection(section, true))
        PutIntoSection(rewrite, entry, text);
    else
        PutNewSection(rewrite, section, entry, text);
    return rewrite.Finish();
}

int ini_write_long(const char *file, const char *section, const char *entry, zr_long value) noexcept {
    char text[number_size];
    str_printf(text, sizeof text, "%ld", static_cast<long>(value));
    return ini_write_string(file, section, entry, text);
}

int ini_write_double(const char *file, const char *section, const char *entry, double value) noexcept {
    char text[decimals_size];
    str_printf(text, sizeof text, "%lf", value);
    return ini_write_string(file, section, entry, text);
}

int ini_write_longs(const char *file, const char *section, const char *entry, const zr_long *values,
                    zr_long count) noexcept {
    return WriteList(file, section, entry, values, count, "%d,");
}

int ini_write_doubles(const char *file, const char *section, const char *entry, const double *values,
                      zr_long count) noexcept {
    return WriteList(file, section, entry, values, count, "%lg,");
}

int ini_rw_string(int write, const char *file, const char *section, const char *entry, char *buffer,
                  zr_long *size) noexcept {
    return write != 0 ? ini_write_string(file, section, entry, buffer)
                      : ini_read_string(file, section, entry, buffer, size);
}

int ini_rw_long(int write, const char *file, const char *section, const char *entry, zr_long *value) noexcept {
    if (value == nullptr)
        return INI_NO_ROOM;
    return write != 0 ? ini_write_long(file, section, entry, *value) : ini_read_long(file, section, entry, value);
}

int ini_rw_double(int write, const char *file, const char *section, const char *entry, double *value) noexcept {
    if (value == nullptr)
        return INI_NO_ROOM;
    return write != 0 ? ini_write_double(file, section, entry, *value) : ini_read_double(file, section, entry, value);
}

int ini_rw_longs(int write, const char *file, const char *section, const char *entry, zr_long *values,
                 zr_long *count) noexcept {
    if (values == nullptr || count == nullptr)
        return INI_NO_ROOM;
    return write != 0 ? ini_write_longs(file, section, entry, values, *count)
                      : ini_read_longs(file, section, entry, values, count);
}

int ini_rw_doubles(int write, const char *file, const char *section, const char *entry, double *values,
                   zr_long *count) noexcept {
    if (values == nullptr || count == nullptr)
        return INI_NO_ROOM;
    return write != 0 ? ini_write_doubles(file, section, entry, values, *count)
                      : ini_read_doubles(file, section, entry, values, count);
}

int ini_set_data_version(const char *file, zr_long a, zr_long b, zr_long c, zr_long d) noexcept {
    const zr_long parts[version_parts] = {a, b, c, d};
    return ini_write_longs(file, version_section, version_entry, parts, version_parts);
}
}
