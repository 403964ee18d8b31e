// What can be done to files and folders by name.
#include "platform/file_verbs.h"

#include <windows.h>

#include "platform/win32/windows_errors.h"

namespace zr::platform {

namespace {

int LastCode() {
    return static_cast<int>(GetLastError());
}

int CodeOf(BOOL success) {
    return success ? done : LastCode();
}

bool Has(DWORD attributes, DWORD bits) {
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & bits) != 0;
}

bool IsReadOnlyFile(DWORD attributes) {
    return Has(attributes, FILE_ATTRIBUTE_READONLY) &&
           !Has(attributes, FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT);
}

// Attributes of what the link `path` leads to.
int AttributesBehindLink(const char *path, DWORD &out) {
    const HANDLE file = CreateFileA(path, FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return LastCode();
    BY_HANDLE_FILE_INFORMATION information;
    const int code = CodeOf(GetFileInformationByHandle(file, &information));
    if (code == done)
        out = information.dwFileAttributes;
    CloseHandle(file);
    return code;
}

} // namespace

int GetAttributes(const char *path, std::uint32_t &out) {
    int code = windows::PathCode(path);
    if (code != done)
        return code;
    DWORD attributes = GetFileAttributesA(path);
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return LastCode();
    if (Has(attributes, FILE_ATTRIBUTE_REPARSE_POINT))
        code = AttributesBehindLink(path, attributes);
    if (code == done)
        out = attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_REPARSE_POINT); // the target is no link
    return code;
}

int SetAttributes(const char *path, std::uint32_t attributes) {
    const int code = windows::PathCode(path);
    return code != done ? code : CodeOf(SetFileAttributesA(path, attributes));
}

bool CanAccess(const char *path, int mode) {
    constexpr int may_write = 2, may_read = 4;
    std::uint32_t attributes;
    if ((mode & ~(may_write | may_read)) != 0 || GetAttributes(path, attributes) != done)
        return false;
    return (mode & may_write) == 0 || !IsReadOnlyFile(attributes);
}

int RemoveUnprotectedFile(const char *path) {
    const int code = windows::PathCode(path);
    if (code != done)
        return code;
    const DWORD attributes = GetFileAttributesA(path);
    if (IsReadOnlyFile(attributes))
        return access_denied;
    if (Has(attributes, FILE_ATTRIBUTE_REPARSE_POINT) && Has(attributes, FILE_ATTRIBUTE_DIRECTORY))
        return CodeOf(RemoveDirectoryA(path)); // a link to a folder: the link alone
    return CodeOf(DeleteFileA(path));
}

int CopyFileOver(const char *from, const char *to) {
    int code = windows::PathCode(from);
    if (code == done)
        code = windows::PathCode(to);
    if (code != done)
        return code;
    constexpr DWORD protecting = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_DIRECTORY;
    if (GetFileAttributesA(from) != INVALID_FILE_ATTRIBUTES && Has(GetFileAttributesA(to), protecting))
        return access_denied;
    return CodeOf(CopyFileA(from, to, FALSE));
}

int MoveToNewName(const char *from, const char *to) {
    int code = windows::PathCode(from);
    if (code == done)
        code = windows::PathCode(to);
    return code != done ? code : CodeOf(MoveFileExA(from, to, MOVEFILE_COPY_ALLOWED));
}

int MakeFolder(const char *path) {
    const int code = windows::PathCode(path);
    return code != done ? code : CodeOf(CreateDirectoryA(path, nullptr));
}

int RemoveEmptyFolder(const char *path) {
    const int code = windows::PathCode(path);
    if (code != done)
        return code;
    const DWORD attributes = GetFileAttributesA(path);
    if (Has(attributes, FILE_ATTRIBUTE_DIRECTORY)) {
        if (Has(attributes, FILE_ATTRIBUTE_REPARSE_POINT))
            return not_a_folder;
        if (Has(attributes, FILE_ATTRIBUTE_READONLY))
            return access_denied;
    }
    return CodeOf(RemoveDirectoryA(path));
}

} // namespace zr::platform
