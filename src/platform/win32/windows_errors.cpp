// From the codes of the system to those of errno, and the checks that every path passes.
#include "platform/win32/windows_errors.h"

#include <cerrno>
#include <cstring>

#include <windows.h>

#include "platform/files.h"
#include "platform/system_error.h"

namespace zr::platform::windows {

namespace {

struct CodePair {
    DWORD system;
    int code;
};

constexpr CodePair codes[] = {
    {ERROR_ACCESS_DENIED, EACCES},
    {ERROR_SHARING_VIOLATION, EACCES},
    {ERROR_LOCK_VIOLATION, EACCES},
    {ERROR_WRITE_PROTECT, EACCES},
    {ERROR_FILE_EXISTS, EEXIST},
    {ERROR_ALREADY_EXISTS, EEXIST},
    {ERROR_DISK_FULL, ENOSPC},
    {ERROR_HANDLE_DISK_FULL, ENOSPC},
    {ERROR_TOO_MANY_OPEN_FILES, EMFILE},
    {ERROR_NOT_ENOUGH_MEMORY, ENOMEM},
    {ERROR_OUTOFMEMORY, ENOMEM},
    {ERROR_NOT_SAME_DEVICE, EXDEV},
    {ERROR_FILENAME_EXCED_RANGE, ENAMETOOLONG},
};

} // namespace

bool Fail(int code) {
    errno = code;
    return false;
}

bool FailWithLastError() {
    const DWORD last = GetLastError();
    for (const CodePair &pair : codes)
        if (pair.system == last)
            return Fail(pair.code);
    return Fail(ENOENT); // no such file, folder, drive or server, and names that no file can have
}

bool IsUsablePath(const char *path) {
    if (path == nullptr || path[0] == 0)
        return Fail(ENOENT);
    return strnlen(path, path_size) <= path_limit || Fail(ENAMETOOLONG);
}

int PathCode(const char *path) {
    if (path == nullptr)
        return path_not_found;
    return strnlen(path, path_size) <= path_limit ? done : path_too_long;
}

} // namespace zr::platform::windows
