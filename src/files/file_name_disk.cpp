// The file name value: what reaches the disk.
#include <zrclb/file_name.hpp>

#include <zrclb/files.h>

#include "platform/files.h"

bool CZrFileName::Exist() const {
    return fio_exist(GetDir(true), GetFileName(true)) == 1;
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
