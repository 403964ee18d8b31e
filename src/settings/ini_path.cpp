// Paths in settings files.
#include <zrclb/ini.h>

#include "settings/ini_default_file.h"
#include "settings/path_values.h"

using namespace zr::settings;

extern "C" {

int ini_read_path(const char *file, const char *section, const char *entry, char *buffer, zr_long *size) noexcept {
    const IniPath place(file);
    if (size == nullptr || *size < 0 || entry == nullptr || place.Text() == nullptr)
        return INI_NO_FILE;
    char value[path_value_limit + 1];
    zr_long length = path_value_limit;
    const int result = ini_read_string(place.Text(), section, entry, value, &length);
    if (result != INI_DONE)
        return result;
    Path folder;
    FolderOf(place.Text(), folder);
    return ExpandPathValue(value, folder, buffer, *size);
}

int ini_write_path(const char *file, const char *section, const char *entry, const char *value) noexcept {
    const IniPath place(file);
    if (entry == nullptr || place.Text() == nullptr)
        return INI_NO_FILE;
    char old_value[path_value_limit + 1];
    zr_long length = path_value_limit;
    const int result = ini_read_string(place.Text(), section, entry, old_value, &length);
    if (result == INI_NO_FILE)
        return INI_NO_FILE;
    Path folder;
    Path kept;
    FolderOf(place.Text(), folder);
    return ini_write_string(place.Text(), section, entry,
                            PathValueToKeep(result == INI_DONE ? old_value : nullptr, value, folder, kept));
}

} // extern "C"
