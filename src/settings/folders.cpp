// The folders of the installation: its root, and those of its programs.
#include <zrclb/installation.h>

#include <initializer_list>

#include <zrclb/file_name.h>
#include <zrclb/files.h>
#include <zrclb/paths.h>

#include "platform/known_folders.h"
#include "platform/modules.h"
#include "settings/file_name_owner.h"
#include "settings/installation_state.h"
#include "settings/suite_registry.h"

using namespace zr::settings;

namespace {

using zr::platform::path_limit;

// The folder of the library's file, or that above it.
bool FindModuleFolder(bool above, Path &out) {
    Path module;
    if (zr::platform::ModulePath(module, sizeof module) == 0)
        return false;
    const FileNameOwner file(module);
    if (file.Handle() == 0)
        return false;
    if (above)
        zrFileRemoveLastDir(file.Handle());
    StoreText(out, zrFileGetDir(file.Handle(), 1), path_limit);
    return true;
}

bool ReadInstallDir(Path &out) {
    char value[registry_value_size];
    if (!read_suite_registry_value("InstallDir", value))
        return false;
    if (!fio_exist("", value)) {
        ReportZr("InstallDir nicht korrekt gesetzt.", __LINE__);
        return false;
    }
    StoreText(out, value, path_limit);
    return true;
}

void FindInstallDir(Path &out) {
    Path found;
    if (!ReadInstallDir(found) && !FindModuleFolder(true, found)) {
        ReportZr("Fehler beim Ermitteln des Installations-Ordners", __LINE__);
        return;
    }
    Path full;
    const std::size_t length = zr::platform::LongPath(found, full, sizeof full);
    StoreText(out, length > 0 && length < sizeof full ? full : found, path_limit);
}

// The folder `name` in `base`, or, with beside, next to it.
bool FindFolder(const char *base, bool beside, const char *name, Path &out) {
    const FileNameOwner file(nullptr, base);
    if (*base == '\0' || file.Handle() == 0)
        return false;
    if (beside)
        zrFileRemoveLastDir(file.Handle());
    if (!zrFileAddDir(file.Handle(), name))
        return false;
    StoreText(out, zrFileGetDir(file.Handle(), 1), path_limit);
    return *out != '\0';
}

// `file` under `folder`, whether it exists or not.
int ComposeFile(const char *(*folder)(), const char *file, char *out) {
    if (file == nullptr || out == nullptr) {
        ReportZr("Null-Pointer", __LINE__);
        return 0;
    }
    return fio_makepath(out, "", folder(), file) != nullptr;
}

// The first of the two files that exists.
int FindFile(int (*first)(const char *, char *), int (*second)(const char *, char *), const char *file, char *out) {
    for (const auto compose : {first, second})
        if (compose(file, out) && fio_exist("", out))
            return *out != '\0';
    if (out != nullptr)
        *out = '\0';
    return 0;
}

} // namespace

extern "C" {

const char *zr_GetInstallDir() noexcept {
    return KnownOrFound(installation.install_dir, FindInstallDir);
}

const char *zr_GetBinDir() noexcept {
    return KnownOrFound(installation.bin_dir, [](Path &out) {
        if (!FindModuleFolder(false, out))
            ReportZr("Fehler beim Ermitteln des bin-Ordners", __LINE__);
    });
}

const char *zr_GetBin32Dir() noexcept {
    return KnownOrFound(installation.bin32_dir, [](Path &out) {
        if (!FindFolder(zr_GetBinDir(), true, "bin", out))
            ReportZr("Fehler beim Ermitteln des bin32-Ordners", __LINE__);
    });
}

const char *zr_GetBin64Dir() noexcept {
    return KnownOrFound(installation.bin64_dir, [](Path &out) {
        if (!FindFolder(zr_GetBinDir(), true, "bin64", out))
            ReportZr("Fehler beim Ermitteln des bin64-Ordners", __LINE__);
    });
}

const char *zr_GetBinExt32Dir() noexcept {
    return KnownOrFound(installation.binext32_dir, [](Path &out) {
        if (!FindFolder(zr_GetInstallDir(), false, "binExt", out))
            ReportZr("Fehler beim Ermitteln des binExt32-Ordners", __LINE__);
    });
}

const char *zr_GetBinExt64Dir() noexcept {
    return KnownOrFound(installation.binext64_dir, [](Path &out) {
        if (!FindFolder(zr_GetInstallDir(), false, "binExt64", out))
            ReportZr("Fehler beim Ermitteln des binExt64-Ordners", __LINE__);
    });
}

const char *zr_GetBinExtDir() noexcept {
    return zr_GetBinExt32Dir();
}

int zr_GetBin32File(const char *file, char *out) noexcept {
    return ComposeFile(zr_GetBin32Dir, file, out);
}

int zr_GetBin64File(const char *file, char *out) noexcept {
    return ComposeFile(zr_GetBin64Dir, file, out);
}

int zr_GetBinExt32File(const char *file, char *out) noexcept {
    return ComposeFile(zr_GetBinExt32Dir, file, out);
}

int zr_GetBinExt64File(const char *file, char *out) noexcept {
    return ComposeFile(zr_GetBinExt64Dir, file, out);
}

int zr_GetBinFile(const char *file, char *out) noexcept {
    return FindFile(zr_GetBin32File, zr_GetBin64File, file, out);
}

int zr_GetBinExtFile(const char *file, char *out) noexcept {
    return FindFile(zr_GetBinExt32File, zr_GetBinExt64File, file, out);
}

} // extern "C"
