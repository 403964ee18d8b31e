// Path variables in front of a path: finding them, and replacing them by what they stand for.
#include "settings/path_variables.h"

#include <cstring>

#include <zrclb/installation.h>
#include <zrclb/paths.h>
#include <zrclb/str.h>

#include "settings/full_path.h"
#include "settings/installation_state.h"

namespace zr::settings {

const PathVariable path_var_table[path_variable_count] = {
    {"$INSTALLDIR$", zr_GetInstallDir},
    {"$PROJDIR$", zr_GetProjDir},
    {"$PROJDOCDIR$", get_proj_doc_dir},
    {"$INSTALLDIR_PROJEKTE$", zr_GetInstallDirProjekte},
    {"$APPDATA$", zr_GetAppDataDir},
    {"$LOCAL_APPDATA$", zr_GetLocalAppDataDir},
    {"$COMMON_APPDATA$", zr_GetCommonAppDataDir},
    {"$COMMON_DIR$", get_common_dir},
    {"$USER_DIR$", get_user_dir},
};

bool BeginsWith(const char *path, const PathVariable &variable) {
    return std::strncmp(path, variable.text, std::strlen(variable.text)) == 0;
}

int expand_path_var(Path &text) {
    for (const PathVariable &variable : path_var_table) {
        if (!BeginsWith(text, variable))
            continue;
        const char *value = variable.getter();
        if (value == nullptr)
            continue;
        str_repl(text, static_cast<int>(sizeof text), variable.text, value);
        break;
    }
    return 1;
}

namespace {

bool HasDrive(const char *path) {
    char drive[3];
    fio_divide(path, drive, nullptr, nullptr);
    return drive[0] != '\0';
}

} // namespace
} // namespace zr::settings

using namespace zr::settings;

extern "C" {

int zr_FindPathVar(const char *path, char *out, unsigned int size) noexcept {
    if (path == nullptr)
        return 0;
    for (const PathVariable &variable : path_var_table) {
        if (!BeginsWith(path, variable))
            continue;
        if (out != nullptr && size > 0)
            StoreText(out, variable.text, size - 1);
        return 1;
    }
    return 0;
}

int zr_BuildFullPath(const char *path, const char *base, char *out) noexcept {
    if (path == nullptr || out == nullptr)
        return 0;
    Path text;
    StoreText(text, path, zr::platform::path_limit);
    expand_path_var(text);
    if (text[0] == '\0') {
        *out = '\0';
        return 1;
    }
    if (base != nullptr && !HasDrive(text))
        fio_makepath(text, nullptr, base, text);
    Path full;
    StoreText(out, FullPath(text, full) ? full : text, zr::platform::path_limit);
    return 1;
}

} // extern "C"
