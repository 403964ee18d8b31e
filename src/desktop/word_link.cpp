// The link to Microsoft Word.
#include <cstring>

#include <zrclb/report.h>
#include <zrclb/str.h>
#include <zrclb/winword.h>

#include "desktop/word_search.h"
#include "platform/command_line.h"
#include "platform/server_programs.h"

namespace zr::desktop {
namespace {

constexpr int line_limit = static_cast<int>(platform::longest_command_line);
constexpr unsigned short show_normally = 5;
constexpr std::uint32_t longest_wait = 60000; // milliseconds

const FoundWord &SearchOnce() {
    if (!winword_info_loaded) {
        found_word.number = SearchWord(&found_word.info);
        winword_info_loaded = true;
    }
    return found_word;
}

// Keeps the last window with Word's title: later ones take the place of earlier ones.
void NoteWordWindow(void *context, zr_window window, const char *title) {
    constexpr char word_title[] = "Microsoft Word";
    if (std::strncmp(title, word_title, sizeof word_title - 1) == 0)
        *static_cast<zr_window *>(context) = window;
}

// Writes path and arguments to line[0..line_limit] as a command line, cut if they are too long.
void MakeLine(char *line, const char *path, const char *arguments) {
    const bool quote = std::strchr(path, ' ') != nullptr && path[0] != '"';
    str_printf(line, line_limit + 1, quote ? "\"%s\"" : "%s", path);
    if (arguments == nullptr || *arguments == '\0')
        return;
    std::size_t length = std::strlen(line);
    line[length++] = ' ';
    str_ncpy(line + length, arguments, line_limit - static_cast<int>(length));
}

} // namespace
} // namespace zr::desktop

using namespace zr::desktop;
using namespace zr;

extern "C" {

int winword_GetInfo(winword_info *info) noexcept {
    if (info == nullptr)
        return SearchWord(nullptr);
    const FoundWord &found = SearchOnce();
    *info = found.info;
    return found.number;
}

int winword_GetVersion() noexcept {
    return SearchOnce().number;
}

int winword_GetPath(char *path) noexcept {
    winword_info info;
    const int number = winword_GetInfo(&info);
    if (path == nullptr || number == 0)
        return 0;
    std::strcpy(path, info.path);
    return number;
}

zr_window winword_FindWindow() noexcept {
    zr_window window = nullptr;
    platform::VisitTopWindows(NoteWordWindow, &window);
    return platform::IsWindowAlive(window) ? window : nullptr;
}

int winword_Run(int force, unsigned short show, const char *arguments) noexcept {
    if (force == 0 && winword_FindWindow() != nullptr)
        return 1;
    char path[sizeof winword_info::path];
    if (winword_GetPath(path) == 0) {
        zr_error("winword_GetPath FAILED", nullptr, nullptr, "winword", __LINE__);
        return 0;
    }
    char line[line_limit + 1]; // the system may write to it
    MakeLine(line, str_trim(path), arguments);
    if (!platform::StartServer(line, show, longest_wait)) {
        zr_error("CreateProcess FAILED", nullptr, nullptr, "winword", __LINE__);
        return 0;
    }
    return 1;
}

int winword_EnsureRunning() noexcept {
    return winword_Run(0, show_normally, nullptr);
}
}
