// Copying a folder with all below it, and clearing attributes in a tree.
//
// Both call themselves for each level. The depth has its bound in the length of a path, and a frame is small.
#include <zrclb/folders.h>

#include <cstdint>
#include <cstring>
#include <memory>

#include <zrclb/files.h>
#include <zrclb/heap.h>

#include "files/entry_path.h"
#include "platform/file_verbs.h"
#include "platform/files.h"

namespace {

using zr::files::EntryPath;
using zr::files::IsComposable;
using zr::files::IsDotEntry;
using zr::platform::path_size;

struct FreeEntries {
    void operator()(fio_dirent *entries) const { heap_free(entries); }
};

// The files and folders of a folder, "." and ".." included.
struct Listing {
    std::unique_ptr<fio_dirent, FreeEntries> entries;
    int count = 0;

    const fio_dirent *begin() const { return entries.get(); }
    const fio_dirent *end() const { return entries.get() + count; }
};

// False if the folder can't be read, and without memory: then the listing is empty, though what it asks for matches all
// entries.
bool List(const char *dir, const char *pattern, Listing &out) {
    fio_dirent *entries = nullptr;
    const bool listed = fio_listdir(dir, pattern, FIO_IS_FILE | FIO_IS_DIR, &entries, &out.count) == 0;
    out.entries.reset(entries);
    return listed && out.count != 0;
}

bool IsFolder(const fio_dirent &entry) {
    return (entry.flags & FIO_IS_DIR) != 0;
}

bool CopyFolder(const char *to_dir, const char *from_dir, const char *name) {
    char from[path_size], to[path_size];
    return EntryPath(from, from_dir, name) && EntryPath(to, to_dir, name) && fio_mkdir(to) != -1 &&
           fio_exist("", to) != 0 && fio_CopyDirectory(to, from) != 0;
}

// Clears the bits of one entry. `found` gets its attributes, all bits if they can't be read.
bool ClearAttributes(const char *path, std::uint32_t bits, std::uint32_t &found) {
    if (zr::platform::GetAttributes(path, found) != 0) {
        found = ~std::uint32_t{0};
        return false;
    }
    return (found & bits) == 0 || zr::platform::SetAttributes(path, found & ~bits) == 0;
}

// A link, or what can't be told from one: rings of links would never end.
bool IsLink(const char *path) {
    char target[path_size];
    return !zr::platform::FollowLinks(path, target, sizeof target) || std::strcmp(path, target) != 0;
}

} // namespace

extern "C" {

int fio_CopyDirectory(const char *to_dir, const char *from_dir) noexcept {
    if (to_dir == nullptr || from_dir == nullptr || !IsComposable(to_dir) || !IsComposable(from_dir))
        return 0;
    Listing listing;
    if (!List(from_dir, "*.*", listing))
        return 0;
    for (const fio_dirent &entry : listing)
        if (IsFolder(entry) && !IsDotEntry(entry.name) && !CopyFolder(to_dir, from_dir, entry.name))
            return 0;
    for (const fio_dirent &entry : listing)
        if (!IsFolder(entry))
            fio_copy(from_dir, entry.name, to_dir, entry.name);
    return 1;
}

int fio_RemoveFileAttributes(const char *path, zr_ulong attributes) noexcept {
    if (path == nullptr)
        return 0;
    const std::uint32_t bits = static_cast<std::uint32_t>(attributes);
    std::uint32_t found;
    int result = ClearAttributes(path, bits, found) ? 1 : 0;
    if ((found & zr::platform::attribute_folder) == 0)
        return result;
    Listing listing;
    if (!List(path, "*", listing))
        return 0;
    for (const fio_dirent &entry : listing) {
        if (IsDotEntry(entry.name))
            continue;
        char entry_path[path_size];
        if (!EntryPath(entry_path, path, entry.name)) {
            result = 0;
            continue;
        }
        if (!ClearAttributes(entry_path, bits, found))
            result = 0;
        if (IsFolder(entry) && !IsLink(entry_path))
            result &= fio_RemoveFileAttributes(entry_path, attributes);
    }
    return result;
}
}
