// A fresh folder, and the paths in it in the library's own form, with backslashes and a drive.
#ifndef TESTS_PLATFORM_SHELL_PATHS_H
#define TESTS_PLATFORM_SHELL_PATHS_H

#include <algorithm>
#include <filesystem>
#include <string>

#include "platform/temp_folder.h"

// Whether the tests run on the desktop itself, where some names and letters mean something else.
inline constexpr bool on_desktop = std::filesystem::path::preferred_separator == '\\';

inline std::string LibraryPath(const std::filesystem::path &path) {
    std::string text = path.string();
    std::replace(text.begin(), text.end(), '/', '\\');
    return text[0] == '\\' ? "C:" + text : text;
}

#endif
