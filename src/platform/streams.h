// Streams: the C library's FILE, as plain bytes or with the desktop's text translation below it, on every platform.
#ifndef ZR_PLATFORM_STREAMS_H
#define ZR_PLATFORM_STREAMS_H

#include <cstdint>
#include <cstdio>

#include "platform/services.h"

namespace zr::platform {

// Opens the file `path` (library's form, at most 259 characters) as a text stream, to be closed with fclose.
//
//   mode "r"   read from the start; the file must exist
//   mode "w"   write; an old content is dropped, a missing file is made
//   mode "a"   write at the end of what the file holds at each write; a missing file is made
//   mode "r+", "w+", "a+"  the same, for reading and writing; "a+" first takes off an 0x1A that ends the file
//
// Each may end in "t", which changes nothing.
//
// Reading turns CR LF into LF and ends at a byte 0x1A or at the end of the file; every other byte, a lone CR or LF and
// NUL among them, passes as it is. Writing turns LF into CR LF and passes everything else. Once an 0x1A was met,
// reading ends there until the stream is positioned anew. (Wine's runtime forgets this when the next 64 KB are fetched;
// callers that read block by block stop at feof.)
//
// Between reading and writing the stream must be positioned (fseek, SeekStream, rewind); from writing to reading a
// flush does as well, and from reading to writing the end of the file. Without that the desktop loses bytes or puts
// them elsewhere; on Linux the second call goes on at the place of the first. Memory is safe either way.
//
// The buffer holds 64 KB. A write that fails (a full disk) shows in ferror, in fflush and in fclose.
//
// Null: no such file or folder, a folder (EACCES), a file that is read-only by attribute opened for writing (EACCES),
// no permission, an unknown drive, a null, empty or over-long path, any other mode (EINVAL). errno holds the reason.
// Child processes don't inherit the file. Threads: as for any FILE; different streams are independent.
inline std::FILE *OpenText(const char *path, const char *mode) {
    return services.open_text(path, mode);
}

// The same without translation: 0x1A is a byte like others, each mode may end in "b" in place of "t", and the buffer is
// as large as the system likes it.
inline std::FILE *OpenBinary(const char *path, const char *mode) {
    return services.open_binary(path, mode);
}

// Position in bytes from the start of the file, 64 bits wide on every platform; -1 on failure. On a text stream it is
// the offset in the file as the desktop's runtime reckons it: the line feeds between the current place and the end of
// the block in memory count as two bytes, so it is exact in files whose lines end in CR LF. Unwritten bytes count from
// the place where the file was left: behind opening for append or a seek that is not yet the end of the file. ftell
// gives the same number.
std::int64_t TellStream(std::FILE *stream);

// As fseek, with 64 bits: writes what is unwritten, forgets that an end was met and goes to `offset` bytes from the
// start (SEEK_SET), the present position (SEEK_CUR) or the end (SEEK_END). Text streams take any number of bytes of the
// file, those of TellStream above all; a place between CR and LF is one. Behind the end: true, and a write there fills
// the gap with zeros. False: before the start (the position then stays, unless counted from the end), a null stream, an
// unknown `whence`, an unwritten rest that can't be written.
bool SeekStream(std::FILE *stream, std::int64_t offset, int whence);

} // namespace zr::platform

#endif
