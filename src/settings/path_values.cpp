// Paths as values of settings files: how they are read, and in which form they are kept.
#include "settings/path_values.h"

#include <algorithm>
#include <cstring>

#include <zrclb/ini.h>
#include <zrclb/installation.h>
#include <zrclb/paths.h>

#include "settings/path_variables.h"

namespace zr::settings {

namespace {

const char *FormOfOld(const char *old_value, const char *value, const char *folder, Path &out) {
    char variable[path_variable_size] = "";
    const char *base = folder;
    if (*old_value != '.') {
        zr_FindPathVar(old_value, variable, sizeof variable);
        base = variable;
    }
    return *base != '\0' && zr_BuildRelativePath(value, base, out) ? out : value;
}

const char *FormOfNew(const char *value, const char *folder, Path &out) {
    if (zr_BuildRelativePathEx(value, nullptr, out, 0))
        return out;
    return zr_BuildRelativePath(value, folder, out) && std::strncmp(out, "..", 2) != 0 ? out : value;
}

} // namespace

void FolderOf(const char *file, Path &out) {
    char drive[3];
    Path directory;
    out[0] = '\0';
    fio_divide(file, drive, directory, nullptr);
    fio_makepath(out, drive, directory, "");
}

int ExpandPathValue(const char *value, const char *folder, char *buffer, zr_long &size) {
    Path path;
    zr_BuildFullPath(value, folder, path);
    const auto length = static_cast<zr_long>(std::strlen(path));
    if (length > size)
        return INI_NO_ROOM;
    const zr_long stored = std::min(length, std::max<zr_long>(size - 1, 0));
    if (buffer != nullptr && size > 0)
        StoreText(buffer, path, static_cast<std::size_t>(stored));
    size = stored;
    return INI_DONE;
}

const char *PathValueToKeep(const char *old_value, const char *value, const char *folder, Path &out) {
    return old_value != nullptr ? FormOfOld(old_value, value, folder, out) : FormOfNew(value, folder, out);
}

} // namespace zr::settings
