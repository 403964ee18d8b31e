// Text streams: the C library's FILE with the desktop's text translation below it, on every platform.
#ifndef ZR_PLATFORM_STREAMS_H
#define ZR_PLATFORM_STREAMS_H

#include <cstdint>
#include <cstdio>

#include "platform/services.h"

namespace zr::platform {

// Opens the file `path` (library's form, at most 259 characters) as a text stream, to be closed with fclose.
//
//   mode "r", "rt"  read from the start; the file must exist
//   mode "w", "wt"  write; an old content is dropped, a missing file is made
//   mode "a", "at"  write at the end of what the file holds at each write; a missing file is made
//
// Reading turns CR LF into LF and ends at a byte 0x1A or at the end of the file; every other byte, a lone CR or LF and
// NUL among them, passes as it is. Writing turns LF into CR LF and passes everything else. Once an 0x1A was met, reading
// ends there until the stream is positioned anew. (Wine's runtime forgets this when the next 64 KB are fetched; callers that
// read block by block stop at feof.)
// ftell gives the offset in the file as the desktop's runtime reckons it: the line feeds between the current place and
// the end of the block in memory count as two bytes, so offsets are exact in files whose lines end in CR LF. fseek to
// the start, the end and to any offset from ftell works.
// The buffer holds 64 KB. A write that fails (a full disk) shows in ferror, in fflush and in fclose.
// Null: no such file or folder, a folder, no permission, an unknown drive, a null, empty or over-long path, any other
// mode. errno then holds the reason. Child processes don't inherit the file.
// Threads: as for any FILE; different streams are independent.
inline std::FILE *OpenText(const char *path, const char *mode) {
    return services.open_text(path, mode);
}

// Position in bytes from the start of the file, 64 bits wide on every platform; -1 on failure.
std::int64_t TellStream(std::FILE *stream);

// As fseek, with 64 bits.
bool SeekStream(std::FILE *stream, std::int64_t offset, int whence);

} // namespace zr::platform

#endif
