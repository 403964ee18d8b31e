// Message box of the system.
#include "platform/services.h"

#include <windows.h>

namespace zr::platform {

int backend::ShowMessageBox(zr_window owner, const char *text, const char *caption, unsigned type) {
    return MessageBoxA(static_cast<HWND>(owner), text != nullptr ? text : "", caption != nullptr ? caption : "", type);
}

zr_window backend::FocusWindow() {
    return GetFocus();
}

} // namespace zr::platform
