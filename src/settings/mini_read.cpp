// Settings files held in memory: reading and listing.
#include <zrclb/mini.h>

#include <cstddef>
#include <cstring>
#include <string_view>

#include <zrclb/str.h>

#include "settings/ini_values.h"
#include "settings/mini_load.h"
#include "settings/mini_memory.h"
#include "settings/path_values.h"

namespace zr::settings {

namespace {

constexpr zr_long measured_limit = 9999; // characters that are counted without a buffer

int ListEntries(const MiniSection &section, char *buffer, zr_long &size) {
    NameList list(buffer, size);
    const MiniEntry *entry = section.FirstEntry();
    while (entry != nullptr && list.Add(entry->Name()))
        entry = entry->Next();
    return list.End(size);
}

// Looks an entry up by names as they are given.
int FindEntry(MiniFile &file, const char *section, const char *entry, const MiniEntry *&out) {
    MiniSection *const found = file.Find(GivenName(section));
    if (found == nullptr)
        return INI_NO_SECTION;
    out = found->Find(entry);
    return out != nullptr ? INI_DONE : INI_NO_ENTRY;
}

template <class Value>
int ReadNumber(mini_file *handle, const char *section, const char *entry, Value *value,
               Value (*convert)(const char *) noexcept) {
    if (handle == nullptr)
        return INI_NO_FILE;
    if (value == nullptr)
        return INI_NO_ROOM;
    if (entry == nullptr)
        return INI_NO_ENTRY;
    const MiniEntry *found = nullptr;
    const int result = FindEntry(*FileOf(handle), section, entry, found);
    if (result != INI_DONE)
        return result;
    if (found->value_size > std::size_t{value_limit})
        return INI_NO_ROOM;
    *value = convert(found->value);
    return INI_DONE;
}

template <class Value>
int ReadNumbers(mini_file *handle, const char *section, const char *entry, Value *values, zr_long *count,
                Value (*convert)(const char *) noexcept) {
    if (handle == nullptr)
        return INI_NO_FILE;
    if (values == nullptr || count == nullptr)
        return INI_NO_ROOM;
    if (entry == nullptr)
        return INI_NO_ENTRY;
    if (*count < 0)
        return INI_NO_FILE;
    char text[value_limit + 1];
    zr_long size = value_limit;
    const int result = mini_read_string(handle, section, entry, text, &size);
    return result == INI_DONE ? SplitNumbers(text, values, *count, convert) : result;
}

// Names with a delimiter between them, as far as they fit into buffer[0..size-1].
template <class Record>
int JoinNames(const Record *record, char *buffer, zr_long size, char delimiter) {
    const std::size_t room = size > 0 ? static_cast<std::size_t>(size) : 0;
    std::size_t used = 0;
    for (; record != nullptr; record = record->Next()) {
        const std::string_view name = record->Name();
        if (name.size() + 1 > room - used)
            return INI_NO_ROOM;
        if (used > 0)
            buffer[used - 1] = delimiter;
        std::memcpy(buffer + used, name.data(), name.size());
        used += name.size() + 1;
        buffer[used - 1] = 0;
    }
    return INI_DONE;
}

// The value in memory; a section that isn't there may still be in the file.
const char *ValueOf(MiniFile &file, const char *section, const char *entry) {
    MiniSection *found = file.Find(section);
    if (found == nullptr)
        found = LoadSection(file, section);
    const MiniEntry *const value = found != nullptr ? found->Find(entry) : nullptr;
    return value != nullptr ? value->value : "";
}

} // namespace
} // namespace zr::settings

using namespace zr::settings;

extern "C" {

int mini_read_string(mini_file *handle, const char *section, const char *entry, char *buffer, zr_long *size) noexcept {
    if (handle == nullptr)
        return INI_NO_FILE;
    if (size == nullptr)
        return INI_NO_ROOM;
    if (buffer != nullptr && *size < 0)
        return INI_NO_FILE;
    MiniSection *const found = FileOf(handle)->Find(GivenName(section));
    if (found == nullptr)
        return INI_NO_SECTION;
    const MiniEntry *const value = entry != nullptr ? found->Find(entry) : nullptr;
    if (entry != nullptr && value == nullptr)
        return INI_NO_ENTRY;
    if (buffer == nullptr)
        *size = measured_limit;
    return entry != nullptr ? CopyValue(value->Value(), buffer, *size) : ListEntries(*found, buffer, *size);
}

int mini_read_long(mini_file *handle, const char *section, const char *entry, zr_long *value) noexcept {
    return ReadNumber(handle, section, entry, value, convert_stol);
}

int mini_read_double(mini_file *handle, const char *section, const char *entry, double *value) noexcept {
    return ReadNumber(handle, section, entry, value, convert_stod);
}

int mini_read_longs(mini_file *handle, const char *section, const char *entry, zr_long *values,
                    zr_long *count) noexcept {
    return ReadNumbers(handle, section, entry, values, count, convert_stol);
}

int mini_read_doubles(mini_file *handle, const char *section, const char *entry, double *values,
                      zr_long *count) noexcept {
    return ReadNumbers(handle, section, entry, values, count, convert_stod);
}

int mini_read_path(mini_file *handle, const char *section, const char *entry, char *buffer, zr_long *size) noexcept {
    if (handle == nullptr)
        return INI_NO_FILE;
    if (size == nullptr)
        return INI_NO_ROOM;
    if (entry == nullptr)
        return INI_NO_ENTRY;
    if (*size < 0)
        return INI_NO_FILE;
    char value[path_value_limit + 1];
    zr_long value_size = path_value_limit;
    const int result = mini_read_string(handle, section, entry, value, &value_size);
    return result == INI_DONE ? ExpandPathValue(value, handle->dir, buffer, *size) : result;
}

const char *mini_get_string(mini_file *handle, const char *section, const char *entry, char *buffer,
                            zr_long *size) noexcept {
    if (buffer != nullptr) {
        if (mini_read_string(handle, section, entry, buffer, size) != INI_DONE)
            buffer[0] = 0;
        return buffer;
    }
    if (handle == nullptr || section == nullptr || entry == nullptr)
        return "";
    return ValueOf(*FileOf(handle), section, entry);
}

int mini_get_sections(mini_file *handle, char *buffer, zr_long size, char delimiter) noexcept {
    if (handle == nullptr)
        return INI_NO_FILE;
    if (buffer == nullptr)
        return INI_NO_ROOM;
    return JoinNames(FileOf(handle)->FirstSection(), buffer, size, delimiter);
}

int mini_get_entries(mini_file *handle, const char *section, char *buffer, zr_long size, char delimiter) noexcept {
    if (handle == nullptr)
        return INI_NO_FILE;
    if (section == nullptr || buffer == nullptr)
        return INI_NO_ROOM;
    const MiniSection *const found = FileOf(handle)->Find(GivenName(section));
    return found != nullptr ? JoinNames(found->FirstEntry(), buffer, size, delimiter) : INI_NO_SECTION;
}

int mini_section_exists(mini_file *handle, const char *section) noexcept {
    if (handle == nullptr)
        return INI_NO_FILE;
    if (section == nullptr)
        return INI_NO_ROOM;
    return FileOf(handle)->Find(section) != nullptr ? 1 : 0;
}
}
