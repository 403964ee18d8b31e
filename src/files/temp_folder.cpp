// Making and deleting folders in the system's temporary folder.
#include "files/temp_folder.h"

#include <zrclb/folders.h>

#include <cstddef>
#include <cstdio>
#include <cstring>

#include <zrclb/files.h>
#include <zrclb/paths.h>
#include <zrclb/report.h>

#include "files/path_pieces.h"
#include "files/temporary_name.h"
#include "platform/files.h"
#include "platform/temporary.h"

namespace {

using zr::files::IsSeparator;
using zr::platform::path_limit;
using zr::platform::path_size;

constexpr char source_tag[] = "Fio";

enum class Outcome {
    made,      // the buffer holds the folder's path
    no_room,   // reported; the path doesn't fit
    none_free, // nothing was made
};

bool GetTempFolder(char (&out)[path_size]) {
    const std::size_t length = zr::platform::TempFolder(out, sizeof out);
    return length >= 1 && length <= path_limit;
}

bool Fits(const char *path, int size) {
    return static_cast<long long>(std::strlen(path)) <= static_cast<long long>(size) - 1;
}

Outcome NoRoom(int line) {
    zr_message("Puffer zu klein.", nullptr, nullptr, source_tag, line);
    return Outcome::no_room;
}

Outcome MakeByTickCount(char *buffer, int size) {
    constexpr int tries = 50;
    constexpr zr_ulong pause = 100;
    for (int i = 0; i < tries; ++i) {
        char path[path_size];
        if (zr::files::NameByTickCount(path, sizeof path) == nullptr || path[0] == 0) {
            zr_message("Can't receive temporary file name.", nullptr, nullptr, source_tag, __LINE__);
            continue;
        }
        if (fio_mkdir(path) == 0) {
            if (!Fits(path, size))
                return NoRoom(__LINE__);
            std::strcpy(buffer, path);
            return Outcome::made;
        }
        zr::files::temp_folder_calls.wait(pause);
    }
    return Outcome::none_free;
}

bool PutUuidName(char (&out)[path_size]) {
    constexpr int local_only = 1824; // unique on this machine, which is enough
    zr::platform::Uuid id;
    const int status = zr::platform::CreateUuid(id);
    if (status != 0 && status != local_only)
        return false;
    const std::uint8_t *d = id.data4;
    std::snprintf(out, sizeof out, "zr_%08lX-%04X-%04x-%02X%02X-%02X%02X%02X%02X%02X%02X",
                  static_cast<unsigned long>(id.data1), id.data2, id.data3, d[0], d[1], d[2], d[3], d[4], d[5], d[6],
                  d[7]);
    return true;
}

Outcome MakeByUuid(char *buffer, int size) {
    char name[path_size], folder[path_size], path[path_size];
    if (!PutUuidName(name) || !GetTempFolder(folder) || fio_makepath(path, "", folder, name) == nullptr)
        return Outcome::none_free;
    if (!Fits(path, size))
        return NoRoom(__LINE__);
    if (fio_mkdir(path) != 0)
        return Outcome::none_free;
    std::strcpy(buffer, path);
    return Outcome::made;
}

// Does `rest`, a path below a folder, lead to something in that folder, and neither to the folder itself nor out of it?
// Elements of points and blanks alone are not trusted: systems drop what stands at the end of a name.
bool StaysBelow(const char *rest) {
    int depth = 0;
    while (*rest != 0) {
        while (IsSeparator(*rest))
            ++rest;
        const std::size_t length = std::strcspn(rest, "\\/");
        const bool named = std::strspn(rest, ". ") < length;
        const bool current = length == 1 && rest[0] == '.';
        const bool above = length == 2 && rest[0] == '.' && rest[1] == '.';
        if (length != 0 && !named && !current && !above)
            return false;
        depth += named ? 1 : above ? -1 : 0;
        if (depth < 0)
            return false;
        rest += length;
    }
    return depth > 0;
}

} // namespace

extern "C" {

int fio_CreateTempDirectory(char *buffer, int size) noexcept {
    if (buffer == nullptr)
        return 0;
    constexpr std::size_t shortest_path = 4;
    Outcome outcome = MakeByTickCount(buffer, size);
    if (outcome == Outcome::none_free)
        outcome = MakeByUuid(buffer, size);
    return outcome == Outcome::made && std::strlen(buffer) >= shortest_path ? 1 : 0;
}

int fio_DeleteTempDirectory(const char *dir) noexcept {
    if (dir == nullptr)
        return 0;
    char folder[path_size];
    if (!GetTempFolder(folder)) {
        zr_message("GetTempPath failed", nullptr, nullptr, source_tag, __LINE__);
        return 0;
    }
    const std::size_t length = std::strlen(folder);
    if (std::strncmp(dir, folder, length) != 0 || !StaysBelow(dir + length)) {
        zr_message("Directory is not a temporary directory! ", dir, nullptr, source_tag, __LINE__);
        return 0;
    }
    return fio_rmdir_ex(dir) == 0 ? 1 : 0;
}
}
