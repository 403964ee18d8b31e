// Folders of the user and of the machine, and the long form of a path.
#include "platform/known_folders.h"

#include <cstring>

#include <windows.h>

#include <shlobj.h>

#include "platform/files.h"

namespace zr::platform {

namespace {

bool IsKnown(int number) {
    return number == user_data_folder || number == local_user_data_folder || number == common_data_folder;
}

bool Store(const char *path, char *out, std::size_t size) {
    const std::size_t length = std::strlen(path);
    if (length >= size)
        return false;
    std::memcpy(out, path, length + 1);
    return true;
}

} // namespace

bool backend::KnownFolder(int number, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return false;
    out[0] = 0;
    char path[path_size];
    return IsKnown(number) && SHGetFolderPathA(nullptr, number, nullptr, SHGFP_TYPE_CURRENT, path) == S_OK &&
           Store(path, out, size);
}

bool backend::KnownFolderBelow(int number, const char *below, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return false;
    out[0] = 0;
    char path[path_size];
    if (!IsKnown(number) || below == nullptr || below[0] == 0 || strnlen(below, path_size) == path_size ||
        SHGetFolderPathAndSubDirA(nullptr, number, nullptr, SHGFP_TYPE_CURRENT, below, path) != S_OK)
        return false;
    // Not every system leaves the separator that `below` ends in.
    const std::size_t length = std::strlen(path);
    const bool cut = below[std::strlen(below) - 1] == '\\' && path[length - 1] != '\\';
    if (cut && length < path_limit)
        std::strcpy(path + length, "\\");
    return Store(path, out, size);
}

std::size_t backend::WindowsFolder(char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return 0;
    const UINT length = GetWindowsDirectoryA(out, size > MAX_PATH ? MAX_PATH : static_cast<UINT>(size));
    if (length > 0 && length < size)
        return length;
    out[0] = 0;
    return 0;
}

std::size_t backend::LongPath(const char *path, char *out, std::size_t size) {
    return GetLongPathNameA(path, out, size > MAXDWORD ? MAXDWORD : static_cast<DWORD>(size));
}

} // namespace zr::platform
