// Leads the system calls of the library to the faults of system_faults.h. The build leads the calls of a program whose
// test source includes this here; one source of a program only.
#ifndef TESTS_PLATFORM_POSIX_FAILING_SYSTEM_H
#define TESTS_PLATFORM_POSIX_FAILING_SYSTEM_H

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <set>

#include <fcntl.h>
#include <unistd.h>

#include "platform/system_faults.h"

// The library is built for large files and late times, whose calls have names of their own where they are not the usual.
#ifdef __LP64__
#define ZR_STATUS_CALL(kind, name) __##kind##_##name##64
#else
#define ZR_STATUS_CALL(kind, name) __##kind##___##name##64_time64
#endif
extern "C" {
int __real_open64(const char *path, int flags, ...);
off64_t __real_lseek64(int descriptor, off64_t offset, int whence);
int ZR_STATUS_CALL(real, stat)(const char *path, void *out);
int ZR_STATUS_CALL(real, fstat)(int descriptor, void *out);
ssize_t __real_read(int descriptor, void *buffer, size_t size);
ssize_t __real_write(int descriptor, const void *data, size_t size);
int __real_close(int descriptor);
}

namespace zr::test {

// Whether the C runtime may forget what it has read for a call when it cannot read the rest, and takes a write of fewer
// bytes for one that failed; whether signals interrupt calls.
inline constexpr bool failed_read_may_lose_a_block = false;
inline constexpr bool short_write_is_a_failure = false;
inline constexpr bool signals_interrupt_calls = true;

// How many calls a signal has interrupted, faults or not.
inline std::atomic<int> interruptions = 0;

// The descriptors of the file in question.
inline std::set<int> &FaultyDescriptors() {
    static std::set<int> descriptors;
    return descriptors;
}

// What the call on an open descriptor is to do; fault or failure is in errno.
inline SystemFaults::Answer NextOn(int descriptor, SystemCall call, int code = EIO) {
    SystemFaults *faults = SystemFaults::Current();
    if (faults == nullptr || !FaultyDescriptors().contains(descriptor))
        return SystemFaults::Answer::Pass;
    const auto answer = faults->Next(call, __real_lseek64(descriptor, 0, SEEK_CUR));
    if (answer == SystemFaults::Answer::Fail)
        errno = code;
    if (answer == SystemFaults::Answer::Interrupt)
        errno = EINTR;
    return answer;
}

inline bool IsRefused(SystemFaults::Answer answer) {
    return answer == SystemFaults::Answer::Fail || answer == SystemFaults::Answer::Interrupt;
}

inline ssize_t CountInterruption(ssize_t result) {
    if (result < 0 && errno == EINTR)
        ++interruptions;
    return result;
}

} // namespace zr::test

extern "C" {

int __wrap_open64(const char *path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    zr::test::SystemFaults *faults = zr::test::SystemFaults::Current();
    const bool mine = faults != nullptr && faults->IsMine(path);
    const auto answer = mine ? faults->Next(zr::test::SystemCall::Open) : zr::test::SystemFaults::Answer::Pass;
    if (zr::test::IsRefused(answer)) {
        errno = answer == zr::test::SystemFaults::Answer::Fail ? EMFILE : EINTR;
        return -1;
    }
    const int descriptor = __real_open64(path, flags, mode);
    if (mine && descriptor >= 0) {
        zr::test::FaultyDescriptors().insert(descriptor);
        faults->CountOpen(1);
    }
    return static_cast<int>(zr::test::CountInterruption(descriptor));
}

ssize_t __wrap_read(int descriptor, void *buffer, size_t size) {
    const auto answer = zr::test::NextOn(descriptor, zr::test::SystemCall::Read);
    if (zr::test::IsRefused(answer))
        return -1;
    return zr::test::CountInterruption(
        __real_read(descriptor, buffer, zr::test::SystemFaults::Shortened(answer, size)));
}

ssize_t __wrap_write(int descriptor, const void *data, size_t size) {
    const auto answer = zr::test::NextOn(descriptor, zr::test::SystemCall::Write, ENOSPC);
    if (zr::test::IsRefused(answer))
        return -1;
    return zr::test::CountInterruption(__real_write(descriptor, data, zr::test::SystemFaults::Shortened(answer, size)));
}

off64_t __wrap_lseek64(int descriptor, off64_t offset, int whence) {
    if (zr::test::IsRefused(zr::test::NextOn(descriptor, zr::test::SystemCall::Seek)))
        return -1;
    return __real_lseek64(descriptor, offset, whence);
}

int ZR_STATUS_CALL(wrap, stat)(const char *path, void *out) {
    zr::test::SystemFaults *faults = zr::test::SystemFaults::Current();
    if (faults != nullptr && faults->IsMine(path) && zr::test::IsRefused(faults->Next(zr::test::SystemCall::Status))) {
        errno = EIO;
        return -1;
    }
    return ZR_STATUS_CALL(real, stat)(path, out);
}

int ZR_STATUS_CALL(wrap, fstat)(int descriptor, void *out) {
    if (zr::test::IsRefused(zr::test::NextOn(descriptor, zr::test::SystemCall::Check)))
        return -1;
    return ZR_STATUS_CALL(real, fstat)(descriptor, out);
}

int __wrap_close(int descriptor) {
    const bool refused = zr::test::IsRefused(zr::test::NextOn(descriptor, zr::test::SystemCall::Close));
    const int code = errno;
    zr::test::SystemFaults *faults = zr::test::SystemFaults::Current(); // none while there are threads
    if (faults != nullptr && zr::test::FaultyDescriptors().erase(descriptor) != 0)
        faults->CountOpen(-1);
    const int result = __real_close(descriptor);
    if (!refused)
        return result;
    errno = code;
    return -1;
}
}

#undef ZR_STATUS_CALL

#endif
