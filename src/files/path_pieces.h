// A path taken apart without copying: drive, folder and file name, as lengths along its text.
#ifndef ZR_FILES_PATH_PIECES_H
#define ZR_FILES_PATH_PIECES_H

#include <cstddef>

#include "platform/separator.h"

namespace zr::files {

// The three pieces stand behind one another from `text` on and are not terminated.
struct PathPieces {
    const char *text;
    std::size_t drive;  // 0, or 2: any character and a colon
    std::size_t folder; // up to the last separator, with it
    std::size_t file;   // base name and extension

    std::size_t Length() const { return drive + folder + file; }
};

using platform::IsSeparator;

// Takes apart the first 260 characters of `path`; a null path counts as empty. All pieces are empty if the folder, the
// base name or the extension has more than 255 characters. Reads no byte behind the terminator, nor behind the 260th.
PathPieces Divide(const char *path);

} // namespace zr::files

#endif
