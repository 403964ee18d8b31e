// Advisory locks of whole files: flock, which belongs to the open file and not to the process.
#include "platform/file_locks.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/posix_descriptors.h"

namespace zr::platform {

namespace {

enum class Holding {
    no,
    yes,
    unknown
};

// Whether this open file holds the lock. flock itself doesn't tell: it grants an open file its own lock again. The
// system's notes on a descriptor name it, within the first lines.
Holding HoldsLock(int descriptor) {
    char name[48];
    std::snprintf(name, sizeof name, "/proc/self/fdinfo/%d", descriptor);
    const int notes = posix::Open(name, O_RDONLY, 0);
    if (notes < 0)
        return Holding::unknown;
    char text[4096];
    const ssize_t size = posix::Read(notes, text, sizeof text - 1);
    close(notes);
    if (size < 0)
        return Holding::unknown;
    text[size] = 0;
    return std::strstr(text, "FLOCK") != nullptr ? Holding::yes : Holding::no;
}

LockOutcome CheckDescriptor(int descriptor) {
    struct stat status;
    if (descriptor < 0) {
        errno = EBADF;
        return LockOutcome::bad_descriptor;
    }
    if (fstat(descriptor, &status) != 0)
        return errno == EBADF ? LockOutcome::bad_descriptor : LockOutcome::no_length;
    return lseek(descriptor, 0, SEEK_CUR) < 0 ? LockOutcome::no_length : LockOutcome::done;
}

LockOutcome Change(int descriptor, int operation) {
    int result;
    do
        result = flock(descriptor, operation);
    while (result != 0 && errno == EINTR);
    if (result == 0)
        return LockOutcome::done;
    return errno == EWOULDBLOCK ? LockOutcome::held : LockOutcome::failed;
}

} // namespace

LockOutcome LockFile(std::FILE *stream) {
    const int descriptor = posix::DescriptorOf(stream);
    const LockOutcome usable = CheckDescriptor(descriptor);
    if (usable != LockOutcome::done)
        return usable;
    if (HoldsLock(descriptor) == Holding::yes) {
        errno = EACCES;
        return LockOutcome::held;
    }
    return Change(descriptor, LOCK_EX | LOCK_NB);
}

LockOutcome UnlockFile(std::FILE *stream) {
    const int descriptor = posix::DescriptorOf(stream);
    const LockOutcome usable = CheckDescriptor(descriptor);
    if (usable != LockOutcome::done)
        return usable;
    if (HoldsLock(descriptor) == Holding::no) {
        errno = EACCES;
        return LockOutcome::failed;
    }
    return Change(descriptor, LOCK_UN);
}

} // namespace zr::platform
