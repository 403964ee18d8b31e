// What shows help: the browser for a URL, the viewer of help files, and whether the machine is online.
#ifndef ZR_PLATFORM_HELP_VIEWER_H
#define ZR_PLATFORM_HELP_VIEWER_H

#include <zrclb/types.h>

#include "platform/services.h"

namespace zr::platform {

// What a help file is shown for; the values are the commands of the desktop's help control.
enum class HelpCommand : unsigned {
    start = 0, // its start; the id isn't used
    topic = 15 // the topic with the id
};

// Whether the machine is connected to a network that leads further: on Linux, whether a default route exists. Threads: any.
inline bool IsOnline() {
    return services.is_online();
}

// Gives the URL to the program that the desktop has for it, and doesn't wait for that. What comes of it isn't told. On Linux
// that program is xdg-open, from the folders of PATH. Threads: any, as long as none changes the environment.
inline void OpenUrl(const char *url) {
    services.open_url(url);
}

// Shows the help file `path`, in the library's form. False if there is no viewer. On Windows that is the help control, which
// is loaded at the first call; where that fails, no call tries again. On Linux it is the first one installed in the folders
// of PATH of xchm, which alone knows topics, kchmviewer, okular, and xdg-open. Threads: that of the user interface.
inline bool ShowHelpFile(const char *path, HelpCommand command, zr_ulong id) {
    return services.show_help_file(path, command, id);
}

} // namespace zr::platform

#endif
