// A handle of a file name value for one scope.
#ifndef ZR_SETTINGS_FILE_NAME_OWNER_H
#define ZR_SETTINGS_FILE_NAME_OWNER_H

#include <zrclb/file_name.h>

namespace zr::settings {

class FileNameOwner {
public:
    explicit FileNameOwner(const char *name, const char *dir = nullptr)
        : m_handle(zrFileCreateFileHandle(name, nullptr, dir, nullptr)) {}
    ~FileNameOwner() { zrFileFreeFileHandle(m_handle); }
    FileNameOwner(const FileNameOwner &) = delete;
    FileNameOwner &operator=(const FileNameOwner &) = delete;

    // 0 if there was no memory, which has been reported.
    zr_value Handle() const { return m_handle; }

private:
    zr_value m_handle;
};

} // namespace zr::settings

#endif
