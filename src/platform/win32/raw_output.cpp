// Files that are written over in place.
#include "platform/raw_output.h"

#include <algorithm>

#include <windows.h>

#include "platform/win32/windows_errors.h"

namespace zr::platform {

namespace {

int CodeOf(BOOL success) {
    return success ? done : static_cast<int>(GetLastError());
}

HANDLE HandleOf(std::intptr_t file) {
    return reinterpret_cast<HANDLE>(file);
}

} // namespace

int backend::OpenOutput(const char *path, std::intptr_t &file, std::uint64_t &size) {
    const int code = windows::PathCode(path);
    if (code != done)
        return code;
    constexpr DWORD protecting = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_DIRECTORY;
    const DWORD attributes = GetFileAttributesA(path);
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & protecting) != 0)
        return access_denied;
    const HANDLE opened = CreateFileA(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
        return static_cast<int>(GetLastError());
    LARGE_INTEGER length = {};
    size = GetFileSizeEx(opened, &length) ? static_cast<std::uint64_t>(length.QuadPart) : 0;
    file = reinterpret_cast<std::intptr_t>(opened);
    return done;
}

void backend::MakePrivate(std::intptr_t) {}

// Less room than the file has would cut it.
int backend::ReserveOutput(std::intptr_t file, std::uint64_t size) {
    LARGE_INTEGER length = {};
    if (GetFileSizeEx(HandleOf(file), &length) && static_cast<std::uint64_t>(length.QuadPart) >= size)
        return done;
    FILE_ALLOCATION_INFO room = {};
    room.AllocationSize.QuadPart = static_cast<LONGLONG>(size);
    if (SetFileInformationByHandle(HandleOf(file), FileAllocationInfo, &room, sizeof room))
        return done;
    return GetLastError() == ERROR_DISK_FULL ? disk_full : not_supported;
}

int backend::WriteOutput(std::intptr_t file, std::uint64_t at, const char *bytes, std::size_t size) {
    constexpr std::size_t most = std::size_t{1} << 30;
    for (std::size_t written = 0; written < size;) {
        OVERLAPPED place = {};
        place.Offset = static_cast<DWORD>((at + written) & 0xFFFFFFFFU);
        place.OffsetHigh = static_cast<DWORD>((at + written) >> 32);
        DWORD count = 0;
        const DWORD wanted = static_cast<DWORD>(std::min(size - written, most));
        if (!WriteFile(HandleOf(file), bytes + written, wanted, &count, &place))
            return static_cast<int>(GetLastError());
        if (count == 0)
            return disk_full;
        written += count;
    }
    return done;
}

int backend::CutOutput(std::intptr_t file, std::uint64_t size) {
    LARGE_INTEGER place;
    place.QuadPart = static_cast<LONGLONG>(size);
    return CodeOf(SetFilePointerEx(HandleOf(file), place, nullptr, FILE_BEGIN) && SetEndOfFile(HandleOf(file)));
}

int backend::CloseOutput(std::intptr_t file) {
    return CodeOf(CloseHandle(HandleOf(file)));
}

} // namespace zr::platform
