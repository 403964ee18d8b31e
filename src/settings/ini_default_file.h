// The file that a call without one means.
#ifndef ZR_SETTINGS_INI_DEFAULT_FILE_H
#define ZR_SETTINGS_INI_DEFAULT_FILE_H

#include "platform/files.h"

namespace zr::settings {

// Where a settings file stands: `file`, or the default file if `file` is null or empty.
class IniPath {
public:
    explicit IniPath(const char *file);

    // Null if there is no default file.
    const char *Text() const { return m_text; }

private:
    const char *m_text;
    char m_default[platform::path_size] = {};
};

} // namespace zr::settings

#endif
