// The runtime's full path call.
#include "settings/full_path.h"

#include <cstring>

#include "platform/drives.h"
#include "platform/path_text.h"

namespace zr::settings {

namespace {

bool FolderOfDrive(void *, int drive, char *out, std::size_t size) {
    return drive == 0 ? platform::CurrentFolder(out, size) : platform::CurrentFolderOf(drive, out, size);
}

} // namespace

bool FullPath(const char *path, char (&out)[platform::path_size]) {
    if (path == nullptr || *path == '\0')
        return platform::CurrentFolder(out, sizeof out);
    char full[platform::path_size];
    const std::size_t length = platform::FullPath(path, {FolderOfDrive, nullptr}, full, sizeof full, nullptr);
    const bool fits = length > 0 && length < sizeof full;
    std::strcpy(out, fits ? full : "");
    return fits;
}

} // namespace zr::settings
