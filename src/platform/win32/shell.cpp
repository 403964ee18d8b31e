// The shell's part in file work: missing folders, operations on groups of files, notices of changes.
#include "platform/shell.h"

#include <cstring>

#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

#include "platform/files.h"
#include "platform/win32/shell_flags.h"

namespace zr::platform {

namespace {

UINT FunctionOf(GroupVerb verb) {
    switch (verb) {
    case GroupVerb::copy:
        return FO_COPY;
    case GroupVerb::move:
        return FO_MOVE;
    case GroupVerb::remove:
        return FO_DELETE;
    default:
        return FO_RENAME;
    }
}

} // namespace

int CreateMissingFolders(const char *path) {
    if (path == nullptr || path[0] == 0)
        return bad_path_name;
    if (strnlen(path, path_size) > longest_folder) // not every version of the system keeps to its own limit
        return path_too_long;
    return SHCreateDirectoryExA(nullptr, path, nullptr);
}

int backend::DoGroupOperation(GroupVerb verb, const char *from, const char *to, const GroupOptions &options,
                              bool &aborted) {
    aborted = false;
    if (from == nullptr || (to == nullptr && verb != GroupVerb::remove))
        return invalid_parameter;
    SHFILEOPSTRUCTA operation = {};
    operation.hwnd = static_cast<HWND>(options.owner);
    operation.wFunc = FunctionOf(verb);
    operation.pFrom = from;
    operation.pTo = to;
    operation.fFlags = windows::FlagsOf(verb, options);
    operation.lpszProgressTitle = options.progress_title;
    const int code = SHFileOperationA(&operation);
    aborted = operation.fAnyOperationsAborted != 0;
    return code;
}

void NoticeRename(bool folder, const char *from, const char *to) {
    SHChangeNotify(folder ? SHCNE_RENAMEFOLDER : SHCNE_RENAMEITEM, SHCNF_PATHA, from, to);
}

void NoticeNewFolder(const char *path) {
    SHChangeNotify(SHCNE_MKDIR, SHCNF_PATHA, path, nullptr);
}

} // namespace zr::platform
