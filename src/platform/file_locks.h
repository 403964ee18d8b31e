// Advisory locks of whole files.
#ifndef ZR_PLATFORM_FILE_LOCKS_H
#define ZR_PLATFORM_FILE_LOCKS_H

#include <cstdio>

namespace zr::platform {

enum class LockOutcome {
    done,
    held,           // the file is locked already, by somebody else or by this stream
    bad_descriptor, // the stream has no descriptor
    no_length,      // position or length of the file can't be told
    failed,
};

// Takes, without waiting, the lock of the file below `stream`: on Windows of its bytes from 0 to its present length,
// which keeps others from reading and writing them, on Linux of the file as a whole, which keeps nobody from anything
// but this lock. It works between processes and between streams of one process, on streams opened for reading too, and
// ends with the stream or the process. An empty file: on Windows a lock of no bytes, which is had but shuts nobody out.
// The position of the stream and the offset of its descriptor stay as they are; nothing is flushed. errno holds the
// reason of a failure. Threads: any; a stream's calls are its owner's to order.
LockOutcome LockFile(std::FILE *stream);

// Gives the lock back; `failed` where the stream holds none. On Windows the file must have the length that it had when
// it was locked, else the lock is not found (`failed`) and ends with the stream.
LockOutcome UnlockFile(std::FILE *stream);

} // namespace zr::platform

#endif
