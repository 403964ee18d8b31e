// The desktop's help control: a library that shows help files.
#ifndef ZR_PLATFORM_WIN32_HELP_CONTROL_H
#define ZR_PLATFORM_WIN32_HELP_CONTROL_H

#include <zrclb/types.h>

#include "platform/help_viewer.h"

namespace zr::platform::win32 {

// Loaded at the first use, and kept until the process ends. A failure is kept, too. For the thread of the user interface.
class HelpControl {
public:
    // Shows the file without an owner. False if the control can't be loaded, or shows nothing.
    bool Show(const char *path, HelpCommand command, zr_ulong id);

private:
    LibraryFunction m_function = nullptr;
    bool m_tried = false;
};

} // namespace zr::platform::win32

#endif
