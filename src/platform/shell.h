// The shell's part in file work: missing folders, operations on groups of files, notices of changes.
#ifndef ZR_PLATFORM_SHELL_H
#define ZR_PLATFORM_SHELL_H

#include <cstddef>

#include <zrclb/types.h>

#include "platform/services.h"
#include "platform/system_error.h"

namespace zr::platform {

// Characters that the path of a folder to be made may have: a name of the old short kind must still fit behind it.
inline constexpr std::size_t longest_folder = 247;

// Makes the folder `path` and all that is missing above it. `path` begins with a backslash or a drive, and has
// backslashes between the folders that are missing: a slash separates only what exists already. A code of
// system_error.h: 0; already_exists or file_exists if something bears that name already; path_not_found if a file or a
// missing drive stands in the way; bad_path_name for a relative, empty or null path; path_too_long above
// `longest_folder`. What was made before a failure stays.
int CreateMissingFolders(const char *path);

enum class GroupVerb {
    copy,
    move,
    remove,
    rename
};

// How a group operation is done. No form of it asks anything.
struct GroupOptions {
    bool several_targets =
        false; // `to` holds a target for each source; otherwise it holds one, a folder if there are several
    bool files_only = false;              // with wildcards, files alone
    const char *progress_title = nullptr; // null: silent; else the title of the progress box, where there is a desktop
    zr_window owner = nullptr;
};

// `from` and `to` are lists of paths in the library's form, each with its terminator, and one more terminator at the
// end; `to` is null for remove. Sources may hold wildcards in their last element. Missing folders of targets are made.
// 0 for done, else a code that isn't 0; `aborted` tells that the user ended it, or that something was left out.
inline int DoGroupOperation(GroupVerb verb, const char *from, const char *to, const GroupOptions &options,
                            bool &aborted) {
    return services.do_group_operation(verb, from, to, options, aborted);
}

// Tell the shell what has changed. No effect where there is no shell.
void NoticeRename(bool folder, const char *from, const char *to);
void NoticeNewFolder(const char *path);

} // namespace zr::platform

#endif
