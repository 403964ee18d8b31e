// Names in the system's temporary folder.
#include "files/temporary_name.h"

#include <cstdint>

#include <zrclb/files.h>
#include <zrclb/report.h>
#include <zrclb/str.h>

#include "platform/files.h"
#include "platform/temporary.h"

namespace zr::files {

namespace {

using platform::path_size;

constexpr char source_tag[] = "Fio";

bool PutName(const char *folder, unsigned number, char (&name)[path_size]) {
    return platform::TempFileName(folder, "zr_", number, name) != 0;
}

// Writes a name made with `number`, as TempFileName takes it, to the buffer.
char *TemporaryName(char *buffer, int size, unsigned number) {
    if (buffer == nullptr) {
        zr_message("NULL-Parameter", nullptr, nullptr, source_tag, __LINE__);
        return nullptr;
    }
    if (size < 1)
        return nullptr;
    buffer[0] = 0;
    char folder[path_size], name[path_size];
    const std::size_t length = platform::TempFolder(folder, sizeof folder);
    if (length < 1 || length > platform::path_limit) {
        zr_error("Failed GetTempPath call", nullptr, nullptr, source_tag, __LINE__);
        return nullptr;
    }
    if (!PutName(folder, number, name)) {
        fio_CreatePath(folder);
        if (!PutName(folder, number, name)) {
            zr_error("Failed GetTempFileName call", nullptr, nullptr, source_tag, __LINE__);
            return nullptr;
        }
    }
    if (size == 1)
        return buffer;
    return str_ncpy(buffer, name, size - 1);
}

} // namespace

char *NameOfTemporaryFile(char *buffer, int size) {
    return TemporaryName(buffer, size, 0);
}

char *NameByTickCount(char *buffer, int size) {
    // Only 16 bits count, and without one of them set the system would pick a number and make the file.
    const unsigned ticks = platform::TickCount() & 0xFFFFU;
    return TemporaryName(buffer, size, ticks != 0 ? ticks : 1);
}

} // namespace zr::files

extern "C" {

char *fio_tmpnam(char *buffer, int size) noexcept {
    return zr::files::NameOfTemporaryFile(buffer, size);
}
}
