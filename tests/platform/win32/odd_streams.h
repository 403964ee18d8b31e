// Streams without a position or without a descriptor, and what child processes get of a stream.
#ifndef TESTS_PLATFORM_WIN32_ODD_STREAMS_H
#define TESTS_PLATFORM_WIN32_ODD_STREAMS_H

#include <cstdio>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

// The reading end of a pipe on which nobody writes any more; null on failure.
inline std::FILE *StreamWithoutPosition() {
    int ends[2];
    if (_pipe(ends, 512, _O_BINARY) != 0)
        return nullptr;
    _close(ends[1]);
    return _fdopen(ends[0], "rb");
}

// Closes the descriptor below a stream.
inline void LoseDescriptor(std::FILE *stream) {
    _close(_fileno(stream));
}

// Whether the file below a stream is open in a child process that inherits what it may.
inline bool IsInherited(std::FILE *stream) {
    DWORD flags = HANDLE_FLAG_INHERIT;
    GetHandleInformation(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))), &flags);
    return (flags & HANDLE_FLAG_INHERIT) != 0;
}

#endif
