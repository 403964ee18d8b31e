// Reading paths from settings files.
#include <zrclb/ini.h>

#include <algorithm>
#include <cstring>

#include <zrclb/installation.h>
#include <zrclb/paths.h>

#include "platform/files.h"
#include "settings/ini_default_file.h"

namespace {

using zr::platform::path_size;

// The folder in which the file lies.
void FolderOf(const char *file, char (&out)[path_size]) {
    char drive[3];
    char directory[path_size];
    out[0] = '\0';
    fio_divide(file, drive, directory, nullptr);
    fio_makepath(out, drive, directory, "");
}

} // namespace

int ini_read_path(const char *file, const char *section, const char *entry, char *buffer, zr_long *size) noexcept {
    if (size == nullptr || *size < 0)
        return INI_NO_FILE;
    const zr::settings::IniPath place(file);
    if (place.Text() == nullptr)
        return INI_NO_FILE;
    char value[path_size + 1];
    zr_long value_size = path_size;
    const int result = ini_read_string(place.Text(), section, entry, value, &value_size);
    if (result != INI_DONE)
        return result;
    char folder[path_size];
    char path[path_size];
    FolderOf(place.Text(), folder);
    zr_BuildFullPath(value, folder, path);
    const auto length = static_cast<zr_long>(std::strlen(path));
    if (length > *size)
        return INI_NO_ROOM;
    const zr_long stored = std::min(length, std::max<zr_long>(*size - 1, 0));
    if (buffer != nullptr && *size > 0) {
        std::memcpy(buffer, path, static_cast<std::size_t>(stored));
        buffer[stored] = '\0';
    }
    *size = stored;
    return INI_DONE;
}
