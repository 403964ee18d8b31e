// The last step of a rewrite: the temporary file over the settings file.
#ifndef ZR_SETTINGS_INI_COPY_H
#define ZR_SETTINGS_INI_COPY_H

#include <string_view>

namespace zr::settings {

// Copies the temporary file over the settings file `path` in place, or to a new one: 0, or the code that fio_copy gives in
// the same case. Permissions of the settings file stay, and so does the temporary file. `whole` is what the temporary
// file holds, or empty if the caller no longer has it.
//
// First room is made sure of: without it nothing has changed. Then the new bytes are written, and last what the old file
// has behind them is cut off. Whoever dies in between leaves new bytes in front of old ones.
int CopyOverFile(const char *temporary, const char *path, std::string_view whole = {});

} // namespace zr::settings

#endif
