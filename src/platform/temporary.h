// Temporary folder and names, and the number that no other call gives.
#ifndef ZR_PLATFORM_TEMPORARY_H
#define ZR_PLATFORM_TEMPORARY_H

#include <cstddef>
#include <cstdint>

#include "platform/services.h"

namespace zr::platform {

// The folder for temporary files, with a separator at its end, in the library's form, into out[0..size-1]. Answers its
// length; 0 on failure; the size needed, its terminator counted, if it doesn't fit, with `out` empty then if size isn't
// 0. It need not exist. On Linux it is TMPDIR, else "C:\tmp\".
inline std::size_t TempFolder(char *out, std::size_t size) {
    return services.temp_folder(out, size);
}

// A name "<folder>\<at most 3 characters of prefix><hexadecimal number>.tmp" into `out`, which holds 260 characters. Of
// `unique` the low 16 bits count: not 0, they are the number, and no file is made; 0 lets the system pick a number that
// no file there has and make the file, empty. Answers the number used, or 0 with `out` empty: no such folder, a path
// over 260 - 14 characters, no right to write there. A null prefix counts as empty. The number's digits are capitals on
// Linux; on Windows the system decides.
inline unsigned TempFileName(const char *folder, const char *prefix, unsigned unique, char *out) {
    return services.temp_file_name(folder, prefix, unique, out);
}

// Milliseconds since some moment, 32 bits, wrapping.
inline std::uint32_t TickCount() {
    return services.tick_count();
}

// Fields of a universally unique identifier, in their order.
struct Uuid {
    std::uint32_t data1;
    std::uint16_t data2;
    std::uint16_t data3;
    std::uint8_t data4[8];
};

// A new one, random. Answers the system's status: 0; 1824 for one that is unique on this machine only; any other is a
// failure.
inline int CreateUuid(Uuid &out) {
    return services.create_uuid(out);
}

} // namespace zr::platform

#endif
