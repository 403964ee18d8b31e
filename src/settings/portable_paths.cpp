// Paths in their shortest portable form: relative, or behind a path variable.
#include <zrclb/installation.h>

#include <cstring>

#include <zrclb/file_name.h>
#include <zrclb/str.h>

#include "settings/file_name_owner.h"
#include "settings/path_variables.h"

namespace zr::settings {
namespace {

using platform::path_limit;

constexpr int folder_kind = 16; // what zrFileGetRelativePath calls a folder

// Levels of the path's directory, -1 without memory.
int LevelsOf(const char *path) {
    const FileNameOwner file(path);
    if (file.Handle() == 0)
        return -1;
    int levels = 0;
    while (zrFileRemoveLastDir(file.Handle()))
        ++levels;
    return levels;
}

// Puts the candidate in the place of `out` if it is the better one of the two: it has fewer levels, or as many while `out` begins
// with no path variable.
void keep_shorter_path(char *out, const char *candidate) {
    if (candidate == nullptr || *candidate == '\0')
        return;
    if (*out != '\0') {
        const int kept = LevelsOf(out); // -1 without memory: then every candidate has more
        const int levels = LevelsOf(candidate);
        if (levels < 0 || levels > kept || (levels == kept && zr_FindPathVar(out, nullptr, 0)))
            return;
    }
    StoreText(out, candidate, path_limit);
}

// Puts the path variable in front of `text`, which is seen from its folder. False if there is no room.
bool PutBehind(const char *variable, Path &text) {
    constexpr int size = static_cast<int>(sizeof text);
    if (std::strncmp(text, ".\\", 2) == 0)
        str_repl(text, size, ".\\", "\\");
    if (*text != '\\' && str_ins(text, size, 0, "\\") == nullptr)
        return false;
    return str_ins(text, size, 0, variable) != nullptr;
}

enum class Run {
    no_memory,
    no_form,
    form_found
};

// Looks for the form of `path` as seen from `base`.
Run TryBase(const char *path, const char *base, char *out, bool allow_up) {
    char variable[path_variable_size] = "";
    Path full;
    zr_FindPathVar(base, variable, sizeof variable);
    zr_BuildFullPath(base, nullptr, full);
    const FileNameOwner file(path);
    if (file.Handle() == 0) {
        keep_shorter_path(out, path);
        return Run::no_memory;
    }
    const char *relative = zrFileGetRelativePath(file.Handle(), full, folder_kind);
    if (relative == nullptr || *relative == '\0') {
        keep_shorter_path(out, zrFileGetAbsolutePath(file.Handle()));
        return Run::no_form;
    }
    Path text;
    StoreText(text, relative, path_limit);
    if (*variable == '\0') {
        keep_shorter_path(out, text);
        return Run::form_found;
    }
    if ((!allow_up && std::strncmp(text, "..\\", 3) == 0) || !PutBehind(variable, text)) {
        keep_shorter_path(out, path);
        return Run::no_form;
    }
    keep_shorter_path(out, text);
    return Run::form_found;
}

} // namespace
} // namespace zr::settings

using namespace zr::settings;

extern "C" {

int zr_BuildRelativePathEx(const char *path, const char *base, char *out, int allow_up) noexcept {
    if (out == nullptr)
        return 0;
    *out = '\0';
    if (path == nullptr || *path == '\0')
        return 0;
    if (base != nullptr && *base != '\0')
        return TryBase(path, base, out, allow_up != 0) == Run::form_found;
    bool found = false;
    for (const PathVariable &variable : path_var_table) {
        const char *folder = variable.getter();
        if (folder == nullptr || *folder == '\0')
            continue;
        const Run run = TryBase(path, variable.text, out, allow_up != 0);
        if (run == Run::no_memory)
            return 0;
        found = found || run == Run::form_found;
    }
    return found;
}

int zr_BuildRelativePath(const char *path, const char *base, char *out) noexcept {
    return zr_BuildRelativePathEx(path, base, out, 1);
}

int zr_BuildInstallDirPath(const char *path, char *out) noexcept {
    return zr_BuildRelativePathEx(path, "$INSTALLDIR$", out, 0);
}

int zr_BuildProjDirPath(const char *path, char *out) noexcept {
    return zr_BuildRelativePathEx(path, "$PROJDIR$", out, 0);
}

int zr_BuildProjDocDirPath(const char *path, char *out) noexcept {
    return zr_BuildRelativePathEx(path, "$PROJDOCDIR$", out, 0);
}

} // extern "C"
