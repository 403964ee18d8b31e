// What the library's own file carries besides its code: the version record and the string table.
#ifndef ZR_PLATFORM_LIBRARY_RECORD_H
#define ZR_PLATFORM_LIBRARY_RECORD_H

#include <cstddef>
#include <cstdint>

#include "platform/services.h"

namespace zr::platform {

// The four places of a file's version.
struct FileVersion {
    std::uint16_t a = 0;
    std::uint16_t b = 0;
    std::uint16_t c = 0;
    std::uint16_t d = 0;
};

// Texts of the string table, by their numbers there.
enum class LibraryText : unsigned {
    data_of_later_minor = 1,
    data_of_later_major = 2,
};

// The version of the file that the stored module (modules.h) was loaded from; on Linux the one that was compiled in.
// False without a version record or memory.
inline bool GetFileVersion(FileVersion &out) {
    return services.file_version(out);
}

// Writes a text of the table to out[0..size-1], cut if it doesn't fit, and answers its length; 0 with an empty text (if
// size is not 0) if there is none.
inline std::size_t GetLibraryText(LibraryText text, char *out, std::size_t size) {
    return services.library_text(text, out, size);
}

} // namespace zr::platform

#endif
