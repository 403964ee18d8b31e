// Version record and string table of the library's file.
#include "platform/library_record.h"

#include <memory>
#include <new>

#include <windows.h>

#include "platform/files.h"
#include "platform/modules.h"

namespace zr::platform {

bool backend::GetFileVersion(FileVersion &out) {
    char path[path_size];
    if (platform::ModulePath(path, sizeof path) == 0) // not the back end's own, which tests replace
        return false;
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeA(path, &ignored);
    if (size == 0)
        return false;
    const std::unique_ptr<unsigned char[]> record(new (std::nothrow) unsigned char[size]);
    void *found = nullptr;
    UINT found_size = 0;
    if (record == nullptr || !GetFileVersionInfoA(path, 0, size, record.get()) ||
        !VerQueryValueA(record.get(), "\\", &found, &found_size) || found_size < sizeof(VS_FIXEDFILEINFO))
        return false;
    const auto *fixed = static_cast<const VS_FIXEDFILEINFO *>(found);
    out = {HIWORD(fixed->dwFileVersionMS), LOWORD(fixed->dwFileVersionMS), HIWORD(fixed->dwFileVersionLS),
           LOWORD(fixed->dwFileVersionLS)};
    return true;
}

std::size_t backend::GetLibraryText(LibraryText text, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return 0;
    out[0] = 0;
    const int room = size > MAXLONG ? MAXLONG : static_cast<int>(size);
    const int length = LoadStringA(static_cast<HINSTANCE>(StoredModule()), static_cast<UINT>(text), out, room);
    return length > 0 ? static_cast<std::size_t>(length) : 0;
}

} // namespace zr::platform
