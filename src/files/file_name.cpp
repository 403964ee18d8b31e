// The file name value: how it comes to be, and the standard form of its directory.
#include <zrclb/file_name.hpp>

#include <cstddef>
#include <cstring>
#include <initializer_list>

#include "files/file_name_text.h"

using namespace zr::files;

CZrFileName::CZrFileName(const char *new_name, const char *new_ext, const char *new_dir, const char *new_drive) {
    Init(new_name, new_ext, new_dir, new_drive);
}

void CZrFileName::Init(const char *new_name, const char *new_ext, const char *new_dir, const char *new_drive) {
    for (char *text :
         {name, ext, dir, drive, path, relative_path, absolute_path, compact_path, full_name, drive_dir, last_dir})
        *text = '\0';
    name_set = ext_set = dir_set = drive_set = false;
    path_dirty = true;
    if (!IsEmpty(new_name))
        SetFileName(new_name, true);
    if (!IsEmpty(new_ext)) {
        char brought[sizeof ext];
        std::memcpy(brought, ext, sizeof brought);
        const std::size_t length = std::strlen(name);
        const std::size_t more = std::strlen(brought);
        if (SetExt(new_ext) && more > 0 && length + 1 + more < sizeof name) {
            name[length] = '.';
            std::memcpy(name + length + 1, brought, more + 1);
        }
    }
    if (!IsEmpty(new_dir))
        SetDir(new_dir);
    if (!IsEmpty(new_drive))
        SetDrive(new_drive);
}

void CZrFileName::TerminateDir(char *buffer) {
    char *text = buffer != nullptr ? buffer : dir;
    const std::size_t length = std::strlen(text);
    if (length == 0 || text[length - 1] == '\\' || text[length - 1] == '/')
        return;
    if (length + 1 > part_limit) {
        ReportFileName("TerminateDir() : length error", nullptr, __LINE__);
        return;
    }
    text[length] = '\\';
    text[length + 1] = '\0';
}

void CZrFileName::StandardizeDir(char *buffer) {
    char *text = buffer != nullptr ? buffer : dir;
    TerminateDir(text);
    char *out = text;
    for (const char *in = text; *in != '\0'; ++in) {
        const char c = *in == '/' ? '\\' : *in;
        // Two backslashes at the very start lead a path on the network.
        const bool doubled = c == '\\' && out - text > 1 && out[-1] == '\\';
        if (!doubled)
            *out++ = c;
    }
    *out = '\0';
}
