// Advisory locks of whole files: the system's lock of a range of bytes.
#include "platform/file_locks.h"

#include <cerrno>

#include <io.h>
#include <windows.h>

#include "platform/win32/windows_errors.h"

namespace zr::platform {

namespace {

struct Range {
    HANDLE file;
    LARGE_INTEGER length;
};

// The whole file as it is now. The system's own calls are told where the range begins, so no descriptor moves; the C
// runtime's counts 31 bits and doesn't set errno everywhere.
LockOutcome WholeFile(std::FILE *stream, Range &out) {
    const int descriptor = stream == nullptr ? -1 : _fileno(stream);
    if (descriptor < 0) {
        errno = EBADF;
        return LockOutcome::bad_descriptor;
    }
    out.file = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
    if (out.file == INVALID_HANDLE_VALUE) {
        errno = EBADF;
        return LockOutcome::bad_descriptor;
    }
    if (GetFileType(out.file) != FILE_TYPE_DISK || !GetFileSizeEx(out.file, &out.length)) {
        errno = ESPIPE;
        return LockOutcome::no_length;
    }
    return LockOutcome::done;
}

LockOutcome OutcomeOfFailure() {
    const DWORD last = GetLastError();
    windows::FailWithLastError();
    if (last == ERROR_LOCK_VIOLATION || last == ERROR_IO_PENDING)
        return LockOutcome::held;
    return last == ERROR_INVALID_HANDLE ? LockOutcome::bad_descriptor : LockOutcome::failed;
}

} // namespace

LockOutcome LockFile(std::FILE *stream) {
    Range range;
    const LockOutcome usable = WholeFile(stream, range);
    if (usable != LockOutcome::done)
        return usable;
    OVERLAPPED start = {};
    if (LockFileEx(range.file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, range.length.LowPart,
                   static_cast<DWORD>(range.length.HighPart), &start))
        return LockOutcome::done;
    return OutcomeOfFailure();
}

LockOutcome UnlockFile(std::FILE *stream) {
    Range range;
    const LockOutcome usable = WholeFile(stream, range);
    if (usable != LockOutcome::done)
        return usable;
    OVERLAPPED start = {};
    if (UnlockFileEx(range.file, 0, range.length.LowPart, static_cast<DWORD>(range.length.HighPart), &start))
        return LockOutcome::done;
    const LockOutcome outcome = OutcomeOfFailure();
    return outcome == LockOutcome::held ? LockOutcome::failed : outcome;
}

} // namespace zr::platform
