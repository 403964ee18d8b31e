// File status and the steps of a safe replacement.
#include "platform/files.h"

#include <cerrno>
#include <cstring>
#include <cwchar>

#include <io.h>
#include <windows.h>

#include "platform/win32/windows_errors.h"
#include "platform/win32/windows_time.h"

namespace zr::platform {

namespace {

using windows::Fail;
using windows::FailWithLastError;
using windows::IsUsablePath;
using windows::Join;
using windows::UnixTime;

constexpr DWORD share_all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD copied_attributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;

// A file opened for its status, its final path or nothing but to exist.
class FileHandle {
public:
    // Folders open too; links are followed.
    explicit FileHandle(const char *path)
        : m_handle(CreateFileA(path, FILE_READ_ATTRIBUTES, share_all, nullptr, OPEN_EXISTING,
                               FILE_FLAG_BACKUP_SEMANTICS, nullptr)) {}
    ~FileHandle() {
        if (IsOpen())
            CloseHandle(m_handle);
    }
    FileHandle(const FileHandle &) = delete;
    FileHandle &operator=(const FileHandle &) = delete;

    bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return m_handle; }

private:
    HANDLE m_handle;
};

bool IsBareDrive(const char *path) {
    return path[1] == ':' && path[2] == 0;
}

// Length of the folder part of `path`, its last separator or drive colon included.
std::size_t FolderLength(const char *path) {
    std::size_t length = 0;
    for (std::size_t i = 0; path[i] != 0; ++i)
        if (path[i] == '\\' || path[i] == '/' || (i == 1 && path[i] == ':'))
            length = i + 1;
    return length;
}

bool PutPath(const char *path, char *out, std::size_t size) {
    if (std::strlen(path) >= size)
        return Fail(ENAMETOOLONG);
    std::strcpy(out, path);
    return true;
}

// Writes the six last characters of a temporary name: digits and capital letters for `number`.
void PutNumber(char *out, DWORD number) {
    static constexpr char digits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    constexpr DWORD base = sizeof digits - 1;
    for (int i = 0; i < 6; ++i, number /= base)
        out[i] = digits[number % base];
}

} // namespace

bool backend::GetFileStatus(const char *path, FileStatus &out) {
    if (!IsUsablePath(path))
        return false;
    if (IsBareDrive(path))
        return Fail(ENOENT);
    const FileHandle file(path);
    if (!file.IsOpen())
        return FailWithLastError();
    BY_HANDLE_FILE_INFORMATION information;
    if (GetFileType(file.Get()) != FILE_TYPE_DISK || !GetFileInformationByHandle(file.Get(), &information))
        return Fail(ENOENT); // devices have no status
    out.folder = (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    out.modified = UnixTime(information.ftLastWriteTime);
    out.size = out.folder ? 0 : Join(information.nFileSizeHigh, information.nFileSizeLow);
    return true;
}

bool HostPath(const char *path, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return Fail(EINVAL);
    out[0] = 0;
    if (!IsUsablePath(path) || !PutPath(path, out, size))
        return false;
    for (char *p = out; *p != 0; ++p)
        if (*p == '/')
            *p = '\\';
    return true;
}

bool CreateBeside(const char *target, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return Fail(EINVAL);
    out[0] = 0;
    static constexpr char pattern[] = "zr_XXXXXX";
    static constexpr std::size_t prefix = 3;
    if (!IsUsablePath(target))
        return false;
    const std::size_t folder = FolderLength(target);
    char path[path_size];
    if (folder + sizeof pattern > sizeof path || folder + sizeof pattern > size)
        return Fail(ENAMETOOLONG);
    std::memcpy(path, target, folder);
    std::strcpy(path + folder, pattern);
    constexpr int tries = 1000;
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    for (int i = 0; i < tries; ++i) {
        PutNumber(path + folder + prefix,
                  counter.LowPart ^ GetCurrentProcessId() * 2654435761U ^ static_cast<DWORD>(i));
        const HANDLE file = CreateFileA(path, GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            CloseHandle(file);
            return PutPath(path, out, size);
        }
        if (GetLastError() != ERROR_FILE_EXISTS)
            return FailWithLastError();
    }
    return Fail(EEXIST);
}

bool FlushToDisk(std::FILE *stream) {
    if (stream == nullptr)
        return Fail(EINVAL);
    return std::fflush(stream) == 0 && _commit(_fileno(stream)) == 0;
}

bool MoveOver(const char *from, const char *to) {
    if (!IsUsablePath(from) || !IsUsablePath(to))
        return false;
    const DWORD attributes = GetFileAttributesA(to);
    if (attributes != INVALID_FILE_ATTRIBUTES &&
        (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0)
        return Fail(EACCES);
    return MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0 || FailWithLastError();
}

bool FollowLinks(const char *path, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return Fail(EINVAL);
    out[0] = 0;
    if (!IsUsablePath(path))
        return false;
    const DWORD attributes = GetFileAttributesA(path);
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
        return PutPath(path, out, size);
    const FileHandle file(path);
    static constexpr char long_prefix[] = "\\\\?\\";
    static constexpr char server_prefix[] = "\\\\?\\UNC\\";
    char final_path[path_size + sizeof server_prefix];
    if (!file.IsOpen())
        return FailWithLastError();
    const DWORD length = GetFinalPathNameByHandleA(file.Get(), final_path, sizeof final_path, FILE_NAME_NORMALIZED);
    if (length == 0 || length >= sizeof final_path)
        return Fail(ENAMETOOLONG);
    const char *start = final_path;
    if (std::strncmp(final_path, server_prefix, sizeof server_prefix - 1) == 0) {
        final_path[sizeof server_prefix - 3] = '\\'; // "\\?\UNC\server" is "\\server"
        start = final_path + sizeof server_prefix - 3;
    } else if (std::strncmp(final_path, long_prefix, sizeof long_prefix - 1) == 0) {
        start = final_path + sizeof long_prefix - 1;
    }
    return IsUsablePath(start) && PutPath(start, out, size);
}

bool CopyMode(const char *from, const char *to) {
    if (!IsUsablePath(from) || !IsUsablePath(to))
        return false;
    const DWORD source = GetFileAttributesA(from);
    const DWORD target = source == INVALID_FILE_ATTRIBUTES ? source : GetFileAttributesA(to);
    if (target == INVALID_FILE_ATTRIBUTES)
        return FailWithLastError();
    return SetFileAttributesA(to, (target & ~copied_attributes) | (source & copied_attributes)) != 0 ||
           FailWithLastError();
}

bool RemoveFile(const char *path) {
    if (!IsUsablePath(path))
        return false;
    const DWORD attributes = GetFileAttributesA(path);
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0 &&
        (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
        SetFileAttributesA(path, attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
    return DeleteFileA(path) != 0 || FailWithLastError();
}

} // namespace zr::platform
