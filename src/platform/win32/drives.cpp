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

// GetDiskFreeSpaceEx, looked up at run time: not every system has it.
using FreeSpaceFunction = BOOL(WINAPI *)(const char *, ULARGE_INTEGER *, ULARGE_INTEGER *, ULARGE_INTEGER *);

FreeSpaceFunction FindFreeSpaceCall(HMODULE library) {
    FARPROC entry = GetProcAddress(library, "GetDiskFreeSpaceEx");
    if (entry == nullptr)
        entry = GetProcAddress(library, "GetDiskFreeSpaceExA");
    FreeSpaceFunction call;
    static_assert(sizeof call == sizeof entry);
    std::memcpy(&call, &entry, sizeof call);
    return call;
}

const char *OrCurrentDrive(const char *path) {
    return path[0] != 0 ? path : nullptr;
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

bool CurrentFolderOf(int drive, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return false;
    out[0] = 0;
    if (drive < 1 || drive > drive_count)
        return false;
    const char path[] = {static_cast<char>('A' + drive - 1), ':', '.', 0};
    char folder[path_size];
    const DWORD length = GetFullPathNameA(path, sizeof folder, folder, nullptr);
    if (length == 0 || length >= sizeof folder || length >= size)
        return false;
    std::strcpy(out, folder);
    return true;
}

int ChangeFolder(const char *path) {
    const int code = windows::PathCode(path);
    return code != done ? code : Enter(path);
}

int backend::DriveType(const char *path) {
    return static_cast<int>(GetDriveTypeA(path));
}

SpaceAnswer backend::FreeSpace(const char *path, std::uint64_t &bytes) {
    if (path == nullptr)
        return SpaceAnswer::failed;
    const HMODULE library = LoadLibraryA("KERNEL32.DLL");
    if (library == nullptr)
        return SpaceAnswer::failed;
    SpaceAnswer answer = SpaceAnswer::no_call;
    if (const FreeSpaceFunction call = FindFreeSpaceCall(library)) {
        ULARGE_INTEGER free;
        const bool told = call(OrCurrentDrive(path), &free, nullptr, nullptr) != FALSE;
        answer = told ? SpaceAnswer::told : SpaceAnswer::failed;
        if (told)
            bytes = free.QuadPart;
    }
    FreeLibrary(library);
    return answer;
}

bool backend::FreeClusters(const char *path, ClusterSpace &out) {
    DWORD sectors, bytes, clusters, all_clusters;
    if (path == nullptr || !GetDiskFreeSpaceA(OrCurrentDrive(path), &sectors, &bytes, &clusters, &all_clusters))
        return false;
    out = {sectors, bytes, clusters};
    return true;
}

} // namespace zr::platform
