// Files read block by block.
#include "platform/raw_file.h"

#include <windows.h>

#include "platform/win32/windows_errors.h"

namespace zr::platform {

std::intptr_t backend::OpenRaw(const char *path) {
    if (!windows::IsUsablePath(path))
        return -1;
    const HANDLE file = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        windows::FailWithLastError();
    return reinterpret_cast<std::intptr_t>(file);
}

std::ptrdiff_t backend::ReadRaw(std::intptr_t file, char *out, std::size_t size) {
    DWORD count = 0;
    if (ReadFile(reinterpret_cast<HANDLE>(file), out, static_cast<DWORD>(size), &count, nullptr))
        return static_cast<std::ptrdiff_t>(count);
    if (GetLastError() == ERROR_BROKEN_PIPE)
        return 0; // the end of a pipe
    windows::FailWithLastError();
    return -1;
}

void backend::CloseRaw(std::intptr_t file) {
    CloseHandle(reinterpret_cast<HANDLE>(file));
}

} // namespace zr::platform
