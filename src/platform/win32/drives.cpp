// Drives, current folders, free space.
#include "platform/drives.h"

#include <cstring>

#include <windows.h>

#include "platform/files.h"
#include "platform/win32/windows_errors.h"

namespace zr::platform {

namespace {

constexpr int drive_count = 26;

// Number of the drive with which `path` begins, 0 if it begins with none.
int DriveOf(const char *path) {
    if (path[0] == 0 || path[1] != ':')
        return 0;
    const char letter = static_cast<char>(path[0] & ~('a' - 'A'));
    return letter >= 'A' && letter <= 'Z' ? letter - 'A' + 1 : 0;
}

// Makes `path` the current folder of the process and notes it as that of its drive, where the system looks for it when
// the drive is named alone: in variables like "=C:".
int Enter(const char *path) {
    if (!SetCurrentDirectoryA(path))
        return static_cast<int>(GetLastError());
    char folder[path_size];
    const DWORD length = GetCurrentDirectoryA(sizeof folder, folder);
    if (length == 0 || length >= sizeof folder || DriveOf(folder) == 0)
        return done;
    const char variable[] = {'=', static_cast<char>('A' + DriveOf(folder) - 1), ':', 0};
    SetEnvironmentVariableA(variable, folder);
    return done;
}

} // namespace

int CurrentDrive() {
    char folder[path_size];
    const DWORD length = GetCurrentDirectoryA(sizeof folder, folder);
    return length != 0 && length < sizeof folder ? DriveOf(folder) : 0;
}

bool SetCurrentDrive(int drive) {
    if (drive < 1 || drive > drive_count)
        return false;
    const char root[] = {static_cast<char>('A' + drive - 1), ':', 0};
    return Enter(root) == done;
}

bool CurrentFolder(char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return false;
    char folder[path_size];
    const DWORD length = GetCurrentDirectoryA(sizeof folder, folder);
    const bool fits = length != 0 && length < sizeof folder && length < size;
    std::strcpy(out, fits ? folder : "");
    return fits;
}

int ChangeFolder(const char *path) {
    const int code = windows::PathCode(path);
    return code != done ? code : Enter(path);
}

int DriveType(const char *path) {
    return static_cast<int>(GetDriveTypeA(path));
}

bool FreeSpace(const char *path, std::uint64_t &bytes) {
    if (path == nullptr)
        return false;
    ULARGE_INTEGER free;
    if (!GetDiskFreeSpaceExA(path[0] != 0 ? path : nullptr, &free, nullptr, nullptr))
        return false;
    bytes = free.QuadPart;
    return true;
}

} // namespace zr::platform
