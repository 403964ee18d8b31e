// Size of a folder and number of its entries, by searches of the system without a list.
//
// The walk calls itself for each level. The depth has its bound in the length of a path, and a frame is small.
#include <zrclb/folders.h>

#include <cstdint>

#include <zrclb/paths.h>

#include "files/entry_path.h"
#include "platform/file_verbs.h"
#include "platform/files.h"
#include "platform/folder_search.h"

namespace {

using zr::platform::FoundEntry;
using zr::platform::path_size;

struct Sums {
    double size = 0.0;
    zr_long folders = 0;
    zr_long files = 0;
};

// Adds what lies in `dir`. False if it can't be read.
bool AddFolder(const char *dir, bool recursive, Sums &sums) noexcept;

void AddEntry(const char *dir, const FoundEntry &entry, bool recursive, Sums &sums) {
    if ((entry.attributes & zr::platform::attribute_folder) == 0) {
        ++sums.files;
        sums.size += static_cast<std::uint32_t>(entry.size); // the low word alone
        return;
    }
    if (zr::files::IsDotEntry(entry.name))
        return;
    ++sums.folders;
    char path[path_size];
    if (recursive && (entry.attributes & zr::platform::attribute_link) == 0 &&
        zr::files::EntryPath(path, dir, entry.name))
        AddFolder(path, recursive, sums);
}

bool AddFolder(const char *dir, bool recursive, Sums &sums) noexcept {
    char pattern[path_size];
    if (!zr::files::IsComposable(dir) || fio_makepath(pattern, "", dir, "*.*") == nullptr)
        return false;
    zr::platform::FolderSearch search;
    FoundEntry entry;
    if (search.Start(pattern, zr::platform::SearchOrder::any, entry) != 0)
        return false;
    do
        AddEntry(dir, entry, recursive, sums);
    while (search.Next(entry) == 0);
    return true;
}

template <class T>
void Put(T *out, T value) {
    if (out != nullptr)
        *out = value;
}

} // namespace

extern "C" {

int fio_GetFolderInfo(const char *dir, int recursive, double *size, zr_long *folders, zr_long *files,
                      zr_long *items) noexcept {
    Sums sums;
    const bool read = AddFolder(dir, recursive != 0, sums);
    Put(size, sums.size);
    Put(folders, sums.folders);
    Put(files, sums.files);
    Put(items, static_cast<zr_long>(sums.folders + sums.files));
    return read ? 1 : 0;
}

double fio_GetFolderSize(const char *dir, int recursive) noexcept {
    Sums sums;
    AddFolder(dir, recursive != 0, sums);
    return sums.size;
}

zr_long fio_GetFolderItemsCount(const char *dir, zr_long *folders, zr_long *files) noexcept {
    Sums sums;
    AddFolder(dir, false, sums);
    Put(folders, sums.folders);
    Put(files, sums.files);
    return sums.folders + sums.files;
}
}
