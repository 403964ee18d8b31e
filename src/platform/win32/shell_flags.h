// How the shell is told to do an operation on a group of files.
#ifndef ZR_PLATFORM_SHELL_FLAGS_H
#define ZR_PLATFORM_SHELL_FLAGS_H

#include <windows.h>

#include <shellapi.h>

#include "platform/shell.h"

namespace zr::platform::windows {

// The shell's flags. Errors show in the result alone: without this flag a box would wait for somebody.
inline FILEOP_FLAGS FlagsOf(GroupVerb verb, const GroupOptions &options) {
    unsigned flags = FOF_NOCONFIRMATION | FOF_NOERRORUI;
    if (verb == GroupVerb::rename)
        flags |= FOF_SIMPLEPROGRESS;
    else
        flags |= FOF_NOCONFIRMMKDIR;
    if (options.several_targets)
        flags |= FOF_MULTIDESTFILES;
    if (options.files_only)
        flags |= FOF_FILESONLY;
    if (options.progress_title == nullptr)
        flags |= FOF_SILENT;
    return static_cast<FILEOP_FLAGS>(flags);
}

} // namespace zr::platform::windows

#endif
