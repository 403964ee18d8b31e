// The file name value: what needs the installation. Relative and absolute forms, directories from settings files.
#include <zrclb/file_name.hpp>

#include <zrclb/installation.h>
#include <zrclb/str.h>

#include "files/file_name_text.h"
#include "platform/path_text.h"
#include "settings/full_path.h"
#include "settings/installation_state.h"

using namespace zr::settings;

namespace {

using zr::files::ReportFileName;
using zr::platform::path_limit;

constexpr int folder_kind = 16;
constexpr int file_kind = 128;

// Makes a folder the project folder for its life.
class ProjectFolder {
public:
    explicit ProjectFolder(const char *folder) {
        StoreText(m_before, zr_GetProjDir(), proj_dir_limit);
        zr_SetProjDir(folder);
    }
    ~ProjectFolder() { zr_SetProjDir(m_before); }
    ProjectFolder(const ProjectFolder &) = delete;
    ProjectFolder &operator=(const ProjectFolder &) = delete;

private:
    char m_before[proj_dir_limit + 1];
};

} // namespace

const char *CZrFileName::GetAbsolutePath(const char *project_dir) const {
    char given[proj_dir_limit + 1]; // it may be a result of this object
    if (project_dir != nullptr)
        StoreText(given, project_dir, proj_dir_limit);
    *absolute_path = '\0';
    const ProjectFolder project(project_dir != nullptr ? given : nullptr);
    Path result;
    if (zr_BuildFullPath(GetPath(), nullptr, result))
        StoreText(absolute_path, result, path_limit);
    return absolute_path;
}

const char *CZrFileName::GetRelativePath(const char *from, int kind) const {
    if (kind != folder_kind && kind != file_kind) {
        ReportFileName("GetRelativePath : Falscher Parameter", nullptr, __LINE__);
        *relative_path = '\0';
        return relative_path;
    }
    Path full;
    Path result; // `from` may be a result of this object
    const char *start = FullPath(from, full) ? full : from;
    const auto start_kind = static_cast<std::uint32_t>(kind);
    const auto end_kind = static_cast<std::uint32_t>(*name == '\0' ? folder_kind : file_kind);
    zr::platform::RelativePath(result, start, start_kind, GetAbsolutePath(nullptr), end_kind);
    if (result[0] == '\\' && result[1] != '\\')
        str_ins(result, static_cast<int>(sizeof result), 0, ".");
    StoreText(relative_path, result, path_limit);
    return relative_path;
}

bool CZrFileName::SetDirFromConfig(const char *file, const char *section, const char *entry) {
    Path folder;
    return zr_suche_pfad_ex(file, section, entry, folder) == 0 && SetDir(folder);
}

bool CZrFileName::SetDirFromConfig(const char *section, const char *entry) {
    return SetDirFromConfig(nullptr, section, entry);
}

bool CZrFileName::SetFileNameFromConfig(const char *section, const char *entry, const char *new_name) {
    return SetDirFromConfig(section, entry) && SetFileName(new_name, true);
}

extern "C" {

const char *zrFileGetRelativePath(zr_value handle, const char *from, int kind) noexcept {
    if (handle == 0) {
        ReportFileName("zrFileGetRelativePath : Handle falsch", nullptr, __LINE__);
        return nullptr;
    }
    return reinterpret_cast<const CZrFileName *>(handle)->GetRelativePath(from, kind);
}

const char *zrFileGetAbsolutePath(zr_value handle) noexcept {
    if (handle == 0) {
        ReportFileName("zrFileGetAbsolutePath : Handle falsch", nullptr, __LINE__);
        return nullptr;
    }
    return reinterpret_cast<const CZrFileName *>(handle)->GetAbsolutePath(nullptr);
}

} // extern "C"
