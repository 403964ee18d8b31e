// What the process keeps of the settings for help.
#ifndef ZR_DESKTOP_HELP_STATE_H
#define ZR_DESKTOP_HELP_STATE_H

#include <cstddef>

#include <zrclb/types.h>

namespace zr::desktop {

inline constexpr std::size_t help_url_size = 512; // with the terminator

// Not guarded: for the thread of the user interface.
struct HelpState {
    zr_long help_use_web = -1;         // below 0: not read yet
    char help_url[help_url_size] = ""; // empty: not read yet; the version is put in
};

inline constinit HelpState help_state;

} // namespace zr::desktop

#endif
