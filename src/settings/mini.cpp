// Settings files held in memory: opening, closing, updating, unloading.
#include <zrclb/mini.h>

#include <new>

#include <zrclb/files.h>
#include <zrclb/heap.h>
#include <zrclb/installation.h>
#include <zrclb/list.h>
#include <zrclb/paths.h>
#include <zrclb/report.h>
#include <zrclb/str.h>

#include "platform/files.h"
#include "settings/mini_load.h"
#include "settings/mini_memory.h"
#include "settings/mini_save.h"

namespace zr::settings {

namespace {

// Characters of a caller's folder. With more it would compose to nothing, and the current folder take its place.
constexpr int folder_limit = 255;

// Folder, drive included, and name of a file.
struct FilePlace {
    char folder[platform::path_size];
    char name[platform::path_size];
};

void Divide(const char *path, FilePlace &out) {
    char drive[3];
    char directory[platform::path_size];
    fio_divide(path, drive, directory, out.name);
    str_printf(out.folder, sizeof out.folder, "%s%s", drive, directory);
}

// Takes the settings file of the installation; none gives empty texts.
void DivideDefault(FilePlace &out) {
    char path[platform::path_size];
    if (zr_suche_datei(nullptr, nullptr, nullptr, path) != 0) {
        zr_error("zr_suche_datei did not find ZRINIFILE", nullptr, nullptr, mini_tag, __LINE__);
        path[0] = 0;
    }
    Divide(path, out);
}

void FindPlace(const char *dir, const char *name, FilePlace &out) {
    Divide(name != nullptr ? name : "", out);
    if (out.name[0] == 0)
        DivideDefault(out);
    if (out.folder[0] != 0)
        return;
    if (dir != nullptr && dir[0] != 0)
        str_ncpy(out.folder, dir, folder_limit);
    else
        fio_getcwd(out.folder, sizeof out.folder);
}

void Free(MiniFile *file) {
    RemoveAllSections(*file);
    heap_free(file->dir);
    heap_free(file->name);
    heap_free(file);
}

// A handle without sections, or null.
MiniFile *MakeFile(const FilePlace &place, zr_long flags) {
    void *const memory = heap_malloc(sizeof(MiniFile));
    if (memory == nullptr)
        return nullptr;
    auto *const file = new (memory) MiniFile();
    list_init(&file->sections);
    file->dir = str_alloc(place.folder);
    file->name = str_alloc(place.name);
    file->flags = static_cast<std::int32_t>(flags) | MINI_ALL_LOADED | MINI_PRELOAD;
    if (file->dir != nullptr && file->name != nullptr)
        return file;
    Free(file);
    return nullptr;
}

int Close(mini_file **handle, bool updates) {
    if (handle == nullptr || *handle == nullptr)
        return 0;
    MiniFile *const file = FileOf(*handle);
    const int result = !updates || file->Has(MINI_READONLY) ? 1 : mini_update_file(file);
    Free(file);
    *handle = nullptr;
    return result;
}

} // namespace
} // namespace zr::settings

using namespace zr::settings;

extern "C" {

mini_file *mini_open(const char *dir, const char *name, zr_long flags) noexcept {
    FilePlace place;
    FindPlace(dir, name, place);
    MiniFile *const file = MakeFile(place, flags);
    if (file == nullptr || LoadFile(*file) || !file->Has(MINI_READONLY))
        return file;
    Free(file);
    return nullptr;
}

int mini_close(mini_file **handle) noexcept {
    return Close(handle, true);
}

int mini_close_ex(mini_file **handle) noexcept {
    return Close(handle, false);
}

int mini_update_file(mini_file *handle) noexcept {
    const MiniFile *const file = FileOf(handle);
    return file != nullptr && !file->Has(MINI_READONLY) && !file->is_cut && SaveFile(*file) ? 1 : 0;
}

int mini_unload_all_sections(mini_file *handle) noexcept {
    if (handle == nullptr)
        return INI_NO_FILE;
    RemoveAllSections(*FileOf(handle));
    return INI_DONE;
}

int mini_unload_one_section(mini_file *handle, const char *section) noexcept {
    if (handle == nullptr)
        return INI_NO_FILE;
    MiniSection *const found = section != nullptr ? FileOf(handle)->Find(section) : nullptr;
    if (found == nullptr)
        return INI_NO_SECTION;
    RemoveSection(*FileOf(handle), found);
    return INI_DONE;
}
}
