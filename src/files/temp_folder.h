// The pause between two tries to make a temporary folder.
#ifndef ZR_FILES_TEMP_FOLDER_H
#define ZR_FILES_TEMP_FOLDER_H

#include <zrclb/numbers.h>

namespace zr::files {

// A test puts a function here that doesn't wait. Not guarded.
struct TempFolderCalls {
    void (*wait)(zr_ulong milliseconds) noexcept = zr_wait;
};

inline constinit TempFolderCalls temp_folder_calls;

} // namespace zr::files

#endif
