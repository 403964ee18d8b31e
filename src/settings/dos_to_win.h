// Whether texts of the old code page are converted.
#ifndef ZR_SETTINGS_DOS_TO_WIN_H
#define ZR_SETTINGS_DOS_TO_WIN_H

#include <atomic>

#include <zrclb/types.h>

namespace zr::settings {

inline constexpr zr_long dos_to_win_unread = -1;

// 0 is off, all else but dos_to_win_unread is on. Two threads that find it unread both read the setting, which does no harm.
inline constinit std::atomic<zr_long> dos_to_win_mode = dos_to_win_unread;

} // namespace zr::settings

#endif
