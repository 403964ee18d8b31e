// File descriptors: calls that outlast signals, and the descriptor below a stream.
#ifndef ZR_PLATFORM_POSIX_DESCRIPTORS_H
#define ZR_PLATFORM_POSIX_DESCRIPTORS_H

#include <cstdio>

#include <sys/types.h>

namespace zr::platform::posix {

// open, read and write, repeated as long as a signal interrupts them; opened files are not inherited by child processes.
// WriteAll writes everything or answers the number of bytes written before the failure that errno tells.
int Open(const char *host_path, int flags, mode_t mode);
ssize_t Read(int descriptor, char *buffer, size_t size);
size_t WriteAll(int descriptor, const char *data, size_t size);

// Descriptor of a text stream from OpenText or of any other FILE; -1 if it has none.
int DescriptorOf(std::FILE *stream);

} // namespace zr::platform::posix

#endif
