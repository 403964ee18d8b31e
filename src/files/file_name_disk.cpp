// The file name value: what reaches the disk.
#include <zrclb/file_name.hpp>

#include <zrclb/files.h>

#include "platform/files.h"

bool CZrFileName::Exist() const {
    const char *folder = GetDir(true);
    const char *file = GetFileName(true);
    // Parts that have no room together give an empty text, which would ask for something else.
    if ((*drive != '\0' && *folder == '\0') || (*name != '\0' && *file == '\0'))
        return false;
    return fio_exist(folder, file) == 1;
}

bool CZrFileName::SetTemporaryFileName() {
    char buffer[zr::platform::path_size];
    return fio_tmpnam(buffer, static_cast<int>(sizeof buffer)) != nullptr && SetFileName(buffer, true);
}

CZrFileName CZrFileName::GetTemporaryFileName() {
    CZrFileName made;
    made.SetTemporaryFileName();
    return made;
}
