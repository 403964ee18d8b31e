// The system's message box.
#ifndef ZR_PLATFORM_MESSAGE_BOX_H
#define ZR_PLATFORM_MESSAGE_BOX_H

#include "platform/services.h"

namespace zr::platform {

// Shows a box with `text` under `caption` and waits for the user; the answer is the number of the button, 1 for OK. `type`
// are the system's flags. Null texts count as empty. On Linux with a desktop (DISPLAY or WAYLAND_DISPLAY set) the dialog
// program that is installed shows the box, always with the OK button alone; without desktop or dialog program, caption
// and text go to standard error and the answer is 1 at once. `owner` is not used there. Threads: any.
inline int ShowMessageBox(zr_window owner, const char *text, const char *caption, unsigned type) {
    return services.show_message_box(owner, text, caption, type);
}

// The window that has the keyboard focus in the calling thread; null if there is none, and always on Linux.
inline zr_window FocusWindow() {
    return services.focus_window();
}

} // namespace zr::platform

#endif
