// Settings files held in memory: writing values.
#include <zrclb/mini.h>

#include <string_view>

#include <zrclb/str.h>

#include "settings/ini_values.h"
#include "settings/mini_load.h"
#include "settings/mini_memory.h"
#include "settings/path_values.h"

namespace zr::settings {

namespace {

constexpr std::int32_t changed = 1;

// What keeps an entry from being written: a null handle, entry or value.
int Refusal(const mini_file *handle, const char *entry, const void *value) {
    if (handle == nullptr)
        return INI_NO_FILE;
    if (entry == nullptr)
        return INI_NO_ENTRY;
    return value == nullptr ? INI_NO_ROOM : INI_DONE;
}

MiniSection *FindOrMakeSection(MiniFile &file, std::string_view name) {
    MiniSection *section = file.Find(name);
    if (section == nullptr)
        section = LoadSection(file, name);
    if (section != nullptr)
        return section;
    section = MakeSection(name);
    AddSection(file, section);
    return section;
}

template <class Value>
int WriteNumber(mini_file *handle, const char *section, const char *entry, Value value, const char *format) {
    char text[number_size];
    str_printf(text, sizeof text, format, value);
    return mini_write_string(handle, section, entry, text);
}

template <class Value>
int WriteList(mini_file *handle, const char *section, const char *entry, const Value *values, zr_long count,
              const char *format) {
    char list[list_size];
    int result = Refusal(handle, entry, values != nullptr || count < 1 ? list : nullptr);
    if (result == INI_DONE)
        result = FormatList(values, count, format, list);
    return result == INI_DONE ? mini_write_string(handle, section, entry, list) : result;
}

} // namespace
} // namespace zr::settings

using namespace zr::settings;

extern "C" {

int mini_write_string(mini_file *handle, const char *section, const char *entry, const char *value) noexcept {
    const int refusal = Refusal(handle, entry, value);
    if (refusal != INI_DONE)
        return refusal;
    MiniSection *const found = FindOrMakeSection(*FileOf(handle), GivenName(section));
    const std::string_view name = Trimmed(entry);
    if (name.empty())
        return INI_NO_ENTRY;
    MiniEntry *target = found->Find(name);
    if (target == nullptr) {
        target = MakeEntry(name);
        SetValue(*target, value);
        AddEntry(*found, target);
    } else {
        SetValue(*target, value);
    }
    found->state |= changed;
    return INI_DONE;
}

int mini_write_long(mini_file *handle, const char *section, const char *entry, zr_long value) noexcept {
    return WriteNumber(handle, section, entry, static_cast<long>(value), "%ld");
}

int mini_write_double(mini_file *handle, const char *section, const char *entry, double value) noexcept {
    return WriteNumber(handle, section, entry, value, "%lg");
}

int mini_write_longs(mini_file *handle, const char *section, const char *entry, const zr_long *values,
                     zr_long count) noexcept {
    return WriteList(handle, section, entry, values, count, "%d,");
}

int mini_write_doubles(mini_file *handle, const char *section, const char *entry, const double *values,
                       zr_long count) noexcept {
    return WriteList(handle, section, entry, values, count, "%lg,");
}

int mini_write_path(mini_file *handle, const char *section, const char *entry, const char *value) noexcept {
    const int refusal = Refusal(handle, entry, value);
    if (refusal != INI_DONE)
        return refusal;
    char old_value[path_value_limit + 1];
    zr_long size = path_value_limit;
    const bool has_old = mini_read_string(handle, section, entry, old_value, &size) == INI_DONE;
    Path path;
    return mini_write_string(handle, section, entry,
                             PathValueToKeep(has_old ? old_value : nullptr, value, handle->dir, path));
}

int mini_rw_string(int write, mini_file *handle, const char *section, const char *entry, char *buffer,
                   zr_long *size) noexcept {
    return write != 0 ? mini_write_string(handle, section, entry, buffer)
                      : mini_read_string(handle, section, entry, buffer, size);
}

int mini_rw_long(int write, mini_file *handle, const char *section, const char *entry, zr_long *value) noexcept {
    if (value == nullptr)
        return INI_NO_ROOM;
    return write != 0 ? mini_write_long(handle, section, entry, *value) : mini_read_long(handle, section, entry, value);
}

int mini_rw_double(int write, mini_file *handle, const char *section, const char *entry, double *value) noexcept {
    if (value == nullptr)
        return INI_NO_ROOM;
    return write != 0 ? mini_write_double(handle, section, entry, *value)
                      : mini_read_double(handle, section, entry, value);
}

int mini_rw_longs(int write, mini_file *handle, const char *section, const char *entry, zr_long *values,
                  zr_long *count) noexcept {
    if (values == nullptr || count == nullptr)
        return INI_NO_ROOM;
    return write != 0 ? mini_write_longs(handle, section, entry, values, *count)
                      : mini_read_longs(handle, section, entry, values, count);
}

int mini_rw_doubles(int write, mini_file *handle, const char *section, const char *entry, double *values,
                    zr_long *count) noexcept {
    if (values == nullptr || count == nullptr)
        return INI_NO_ROOM;
    return write != 0 ? mini_write_doubles(handle, section, entry, values, *count)
                      : mini_read_doubles(handle, section, entry, values, count);
}
}
