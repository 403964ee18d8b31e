// Streams without a position or without a descriptor, and what child processes get of a stream.
#ifndef TESTS_PLATFORM_POSIX_ODD_STREAMS_H
#define TESTS_PLATFORM_POSIX_ODD_STREAMS_H

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

// The reading end of a pipe on which nobody writes any more; null on failure.
inline std::FILE *StreamWithoutPosition() {
    int ends[2];
    if (pipe(ends) != 0)
        return nullptr;
    close(ends[1]);
    return fdopen(ends[0], "rb");
}

// Closes the descriptor below a stream.
inline void LoseDescriptor(std::FILE *stream) {
    close(fileno(stream));
}

// Whether the file below a stream is open in a child process that runs another program.
inline bool IsInherited(std::FILE *stream) {
    return (fcntl(fileno(stream), F_GETFD) & FD_CLOEXEC) == 0;
}

#endif
