// File handles: advisory locks.
#include <zrclb/file_handle.h>

#include "files/handle_parts.h"
#include "platform/file_locks.h"

namespace zr::files {
namespace {

constexpr int lock_held = -1;
constexpr int lock_bad_descriptor = -4;
constexpr int lock_failed = -5;
constexpr int unlock_no_file = -1;
constexpr int unlock_failed = -2;

} // namespace
} // namespace zr::files

using namespace zr::files;
using zr::platform::LockOutcome;

extern "C" {

int fio_lock(fio_handle *handle) noexcept {
    if (StreamOf(handle) == nullptr)
        return lock_bad_descriptor;
    switch (zr::platform::LockFile(handle->stream)) {
    case LockOutcome::done:
        return 0;
    case LockOutcome::held:
        return lock_held;
    case LockOutcome::bad_descriptor:
        return lock_bad_descriptor;
    case LockOutcome::no_length:
    case LockOutcome::failed:
        break;
    }
    return lock_failed;
}

int fio_unlock(fio_handle *handle) noexcept {
    if (StreamOf(handle) == nullptr)
        return unlock_no_file;
    switch (zr::platform::UnlockFile(handle->stream)) {
    case LockOutcome::done:
        return 0;
    case LockOutcome::bad_descriptor:
    case LockOutcome::no_length:
        return unlock_no_file;
    case LockOutcome::held:
    case LockOutcome::failed:
        break;
    }
    return unlock_failed;
}

int fio_islock(fio_handle *handle) noexcept {
    if (handle == nullptr)
        return 0;
    const int result = fio_lock(handle);
    if (result == 0)
        fio_unlock(handle);
    return result == lock_held ? 1 : 0;
}

int fio_fileislock(const char *dir, const char *name) noexcept {
    fio_handle *handle = fio_open(dir, name, FIO_READ);
    const int locked = fio_islock(handle);
    fio_close(handle);
    return locked;
}
}
