// The search for the settings file, and for files and folders through its entries; paths stored there.
#include <zrclb/installation.h>

#include <cstring>

#include <zrclb/files.h>
#include <zrclb/ini.h>
#include <zrclb/paths.h>
#include <zrclb/str.h>

#include "settings/installation_state.h"
#include "settings/path_values.h"
#include "settings/suite_registry.h"

namespace zr::settings {
namespace {

using platform::path_limit;
using platform::path_size;

constexpr const char *settings_file = "zr.zrini";
constexpr const char *not_found = "zr.zrini not found";

// Composes the path of the settings file if it lies in the folder. One that isn't known is none: the current folder, which an empty
// text would stand for, is nobody's installation.
bool FindIn(const char *folder, Path &out) {
    if (*folder == '\0' || !fio_exist(folder, settings_file))
        return false;
    fio_makepath(out, "", folder, settings_file);
    return *out != '\0';
}

bool FindByRegistry(Path &out) {
    char value[registry_value_size];
    Path folder;
    if (!read_suite_registry_value("zr.ini", value))
        return false;
    zr_BuildFullPath(value, nullptr, folder);
    return FindIn(folder, out);
}

void FindSettingsFile(Path &out) {
    if (!FindByRegistry(out) && !FindIn(zr_GetInstallDir(), out) && !FindIn(zr_GetBinDir(), out))
        ReportZr(not_found, __LINE__);
}

// Whether the settings file is being searched for: then nothing reports that it isn't known.
bool Searching() {
    return installation.settings_file_path.working;
}

const char *SettingsFile() {
    return KnownOrFound(installation.settings_file_path, FindSettingsFile);
}

bool IsExe(const char *section, const char *entry) {
    return section != nullptr && entry != nullptr && str_icmp(section, "System") == 0 && str_icmp(entry, "Exe") == 0;
}

int CopySettingsFile(char *out) {
    const char *path = SettingsFile();
    if (*path == '\0' && !Searching())
        ReportZr(not_found, __LINE__);
    StoreText(out, path, path_limit);
    return *path != '\0' ? 0 : -1;
}

// Looks for the file in the folders of the list, which is taken apart.
int FindInFolders(char *folders, const char *path, const char *file, char *out) {
    Path base;
    FolderOf(path, base);
    for (char *folder = folders + std::strspn(folders, ";"); *folder != '\0'; folder += std::strspn(folder, ";")) {
        char *end = folder + std::strcspn(folder, ";");
        const bool last = *end == '\0';
        *end = '\0';
        Path full;
        zr_BuildFullPath(folder, base, full);
        if (fio_exist(full, file)) {
            fio_makepath(out, "", full, file);
            return 0;
        }
        folder = last ? end : end + 1;
    }
    return -1;
}

// The settings file for a path in it. Without one that is reported once more than the search does.
bool SettingsFileOfPath(Path &out) {
    if (CopySettingsFile(out) == 0)
        return true;
    if (!Searching())
        ReportZr(not_found, __LINE__);
    return false;
}

int FindByRegistryValue(const char *file, char *out) {
    char value[registry_value_size];
    if (!read_suite_registry_value(file, value))
        return -1;
    Path folder;
    zr_BuildFullPath(value, nullptr, folder);
    if (fio_exist(folder, file))
        fio_makepath(out, "", folder, file);
    return 0; // the value counts by itself
}

} // namespace
} // namespace zr::settings

using namespace zr::settings;

extern "C" {

int zr_suche_datei(const char *section, const char *entry, const char *file, char *out) noexcept {
    if (out == nullptr)
        return -1;
    if (file == nullptr)
        return CopySettingsFile(out);
    Path path;
    StoreText(path, SettingsFile(), path_limit);
    if (section == nullptr || *section == '\0' || entry == nullptr || *entry == '\0') {
        *out = '\0';
        fio_makepath(out, "", "", path);
        return 0;
    }
    if (IsExe(section, entry))
        return zr_GetBinFile(file, out) ? 0 : -1;
    char folders[path_size + 1];
    zr_long size = path_size;
    if (ini_read_string(path, section, entry, folders, &size) != 0)
        return FindByRegistryValue(file, out);
    return FindInFolders(folders, path, file, out);
}

int zr_suche_pfad(const char *section, const char *entry, char *out) noexcept {
    Path path;
    if (out == nullptr)
        return -1;
    if (!SettingsFileOfPath(path))
        return -1;
    if (IsExe(section, entry)) {
        StoreText(out, zr_GetBinDir(), path_limit);
        return 0;
    }
    return zr_suche_pfad_ex(path, section, entry, out);
}

int zr_suche_pfad_ex(const char *inifile, const char *section, const char *entry, char *out) noexcept {
    if (inifile == nullptr)
        return zr_suche_pfad(section, entry, out);
    if (out == nullptr)
        return -1;
    char text[path_size + 1];
    zr_long size = path_size;
    if (ini_read_path(inifile, section, entry, text, &size) != 0)
        return -1;
    StoreText(out, text, path_limit);
    return 0;
}

int zr_schreibe_pfad(const char *section, const char *entry, const char *path) noexcept {
    Path file;
    if (!SettingsFileOfPath(file))
        return -1;
    if (IsExe(section, entry)) {
        zr_message("Pfad System / Exe wird nicht mehr geschrieben.", nullptr, nullptr, "Zr", __LINE__);
        return 0;
    }
    return zr_schreibe_pfad_ex(file, section, entry, path);
}

int zr_schreibe_pfad_ex(const char *inifile, const char *section, const char *entry, const char *path) noexcept {
    if (inifile == nullptr)
        return zr_schreibe_pfad(section, entry, path);
    return ini_write_path(inifile, section, entry, path) == 0 ? 0 : -1;
}

} // extern "C"
