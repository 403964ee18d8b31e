// Composing an absolute path.
#include <zrclb/paths.h>

#include <cstring>

#include <zrclb/files.h>

#include "files/path_pieces.h"
#include "platform/files.h"

namespace zr::files {
namespace {

using platform::path_size;

struct Divided {
    explicit Divided(const char *path) { fio_divide(path, drive, folder, name); }

    char drive[3];
    char folder[path_size];
    char name[path_size];
};

// Puts `path` under the current folder of its drive, or of the current one, or of a root under its drive.
bool MakeAbsolute(char *path) {
    Divided parts(path);
    if (parts.drive[0] == '\0' && std::strncmp(path, "\\\\", 2) != 0)
        fio_gethostname(parts.drive, sizeof parts.drive); // a current folder on the network has no drive
    if (IsSeparator(parts.folder[0]))
        return fio_makepath(path, parts.drive, parts.folder, parts.name) != nullptr;
    char current[path_size];
    current[0] = '\0';
    fio_get_host_cwd(parts.drive, current, sizeof current);
    return current[0] != '\0' && fio_makepath(path, current, parts.folder, parts.name) != nullptr;
}

// A separator at the end stands only where it is the root's.
void CutLastSeparator(char *path) {
    const std::size_t length = std::strlen(path);
    if (length == 0 || !IsSeparator(path[length - 1]))
        return;
    const Divided parts(path);
    if (std::strlen(parts.folder) != 1)
        path[length - 1] = '\0';
}

} // namespace
} // namespace zr::files

using namespace zr::files;

char *fio_make_fullpath(char *out, const char *default_dir, const char *dir, const char *name) noexcept {
    if (out == nullptr)
        return nullptr;
    char path[path_size];
    if (fio_makepath(path, default_dir, dir, name) == nullptr || !MakeAbsolute(path))
        path[0] = '\0';
    CutLastSeparator(path);
    std::strcpy(out, path);
    return out;
}
