// The runtime's full path call.
#ifndef ZR_SETTINGS_FULL_PATH_H
#define ZR_SETTINGS_FULL_PATH_H

#include "platform/files.h"

namespace zr::settings {

// Writes the full path of `path`, which starts at the current folders of the process, to out[0..259]; that of null or the empty text
// is the current folder. False with an empty `out` if there is none or it has more than 259 characters. `path` may be `out`.
bool FullPath(const char *path, char (&out)[platform::path_size]);

} // namespace zr::settings

#endif
