// Advisory locks of whole files.
#ifndef ZR_PLATFORM_FILE_LOCKS_H
#define ZR_PLATFORM_FILE_LOCKS_H

#include <cstdio>

namespace zr::platform {

enum class LockOutcome {
    done,
    held,           // somebody else holds a lock
    bad_descriptor, // the stream has no descriptor
    no_length,      // position or length of the file can't be told
    failed,
};

// Takes, without waiting, the lock of the file below `stream`: on Windows of its bytes from 0 to its present length, on Linux of the file as a
// whole. It works between processes and between streams of one process, on streams opened for reading too, and ends with the
// stream or the process. The offset of the descriptor is what it was.
LockOutcome LockFile(std::FILE *stream);

// Gives the lock back; not holding one is `failed` on Windows and `done` on Linux.
LockOutcome UnlockFile(std::FILE *stream);

} // namespace zr::platform

#endif
