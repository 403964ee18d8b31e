// Paths as values of settings files: how they are read, and in which form they are kept.
#ifndef ZR_SETTINGS_PATH_VALUES_H
#define ZR_SETTINGS_PATH_VALUES_H

#include <zrclb/types.h>

#include "settings/installation_state.h"

namespace zr::settings {

// Characters of a path's value.
inline constexpr zr_long path_value_limit = 260;

// The folder in which the file lies, with its drive; empty if the path is a bare name.
void FolderOf(const char *file, Path &out);

// Makes the value of a file in `folder` a full path in buffer[0..size-1]: INI_DONE with its length in `size`, or INI_NO_ROOM. A path of just
// `size` characters loses its last one. A null buffer only gives the length.
int ExpandPathValue(const char *value, const char *folder, char *buffer, zr_long &size);

// The text under which `value` is kept in a file in `folder`. It takes the form of `old_value`, the one before: relative to the folder if
// that begins with ".", behind its path variable, else as it is. With a null `old_value` it is behind a path variable, else relative
// to the folder, as long as neither form goes up, else as it is. Answers `value` or `out`.
const char *PathValueToKeep(const char *old_value, const char *value, const char *folder, Path &out);

} // namespace zr::settings

#endif
