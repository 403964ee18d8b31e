// Folders for data: those of user and machine, those that the settings file names, and the project's.
#include <zrclb/installation.h>

#include <cstring>

#include <zrclb/file_name.h>
#include <zrclb/files.h>
#include <zrclb/ini.h>
#include <zrclb/paths.h>

#include "platform/known_folders.h"
#include "settings/file_name_owner.h"
#include "settings/installation_state.h"

namespace zr::settings {
namespace {

using platform::path_limit;

constexpr const char *suite_folder = "Zr Works\\Zr Bench\\2013\\";

// The suite's folder in the known folder with this number, made if need be.
void FindDataFolder(int number, Path &out) {
    if (platform::KnownFolderBelow(number, suite_folder, out, sizeof out))
        return;
    Path parent;
    if (!platform::KnownFolder(number, parent, sizeof parent)) {
        *out = '\0';
        zr_message("SHGetFolderPath failed", nullptr, nullptr, "Zr", __LINE__);
        return;
    }
    Path folder = "";
    fio_makepath(folder, "", parent, suite_folder);
    const std::size_t length = std::strlen(folder);
    if (length > 0 && length < path_limit && folder[length - 1] != '\\')
        std::strcpy(folder + length, "\\");
    if (fio_CreatePath(folder) != 0) {
        *out = '\0';
        zr_message("fio_CreatePath failed", folder, nullptr, "Zr", __LINE__);
        return;
    }
    StoreText(out, folder, path_limit);
}

// A folder of the settings file's section System; without such an entry the install root.
void FindSystemFolder(const char *entry, Path &out) {
    Path found = "";
    if (zr_suche_pfad("System", entry, found) != 0 || *found == '\0')
        StoreText(found, zr_GetInstallDir(), path_limit);
    StoreText(out, found, path_limit);
}

} // namespace

const char *get_common_dir() {
    return KnownOrFound(installation.common_dir, [](Path &out) { FindSystemFolder("COMMON_DIR", out); });
}

const char *get_user_dir() {
    return KnownOrFound(installation.user_dir, [](Path &out) { FindSystemFolder("USER_DIR", out); });
}

const char *get_proj_doc_dir() {
    const FileNameOwner file(zr_GetProjDir());
    if (file.Handle() == 0)
        return nullptr;
    zrFileFNToDir(file.Handle(), "");
    zrFileAddDir(file.Handle(), installation.proj_doc_folder);
    StoreText(installation.proj_doc_dir, zrFileGetPath(file.Handle()), sizeof installation.proj_doc_dir - 1);
    return installation.proj_doc_dir;
}

} // namespace zr::settings

using namespace zr::settings;

extern "C" {

const char *zr_GetAppDataDir() noexcept {
    return KnownOrFound(installation.appdata_dir,
                        [](Path &out) { FindDataFolder(zr::platform::user_data_folder, out); });
}

const char *zr_GetLocalAppDataDir() noexcept {
    return KnownOrFound(installation.local_appdata_dir,
                        [](Path &out) { FindDataFolder(zr::platform::local_user_data_folder, out); });
}

const char *zr_GetCommonAppDataDir() noexcept {
    return KnownOrFound(installation.common_appdata_dir,
                        [](Path &out) { FindDataFolder(zr::platform::common_data_folder, out); });
}

const char *zr_GetInstallDirProjekte() noexcept {
    if (installation.reading_install_dir_projekte)
        return "";
    installation.reading_install_dir_projekte = true;
    Path file;
    char text[sizeof installation.install_dir_projekte];
    zr_long size = sizeof text - 1;
    if (zr_suche_datei(nullptr, nullptr, nullptr, file) == 0 &&
        ini_read_string(file, "Zr Tekbau Tek+", "InstallDirProjekte", text, &size) == 0)
        StoreText(installation.install_dir_projekte, text, sizeof text - 1);
    installation.reading_install_dir_projekte = false;
    return installation.install_dir_projekte;
}

const char *zr_GetProjDir() noexcept {
    return installation.proj_dir;
}

void zr_SetProjDir(const char *dir) noexcept {
    if (dir != nullptr)
        StoreText(installation.proj_dir, dir, proj_dir_limit);
}

void zr_SetProjDocFolder(const char *name) noexcept {
    if (name != nullptr)
        StoreText(installation.proj_doc_folder, name, proj_doc_folder_limit);
}

} // extern "C"
