// Message box: the installed dialog program, or standard error where there is no desktop.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/services.h"

extern char **environ;

namespace zr::platform {

namespace {

constexpr int answer_ok = 1;
constexpr int not_started = 127; // exit status of a process whose program could not be run

bool IsSet(const char *variable) {
    const char *value = std::getenv(variable);
    return value != nullptr && value[0] != 0;
}

// Runs the program argv[0] from the search path, without a shell, and waits until it ends. False if it isn't there.
bool Run(const char *const *argv) {
    pid_t child;
    // The array is only read; the type of the parameter is older than const.
    if (posix_spawnp(&child, argv[0], nullptr, nullptr, const_cast<char *const *>(argv), environ) != 0)
        return false;
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            return true; // someone else has waited for it
    return !(WIFEXITED(status) && WEXITSTATUS(status) == not_started);
}

bool ShowDialog(const char *text, const char *caption) {
    const char *const zenity[] = {"zenity", "--info", "--no-markup", "--title", caption, "--text", text, nullptr};
    const char *const kdialog[] = {"kdialog", "--title", caption, "--msgbox", text, nullptr};
    const char *const xmessage[] = {"xmessage", "-center", "-title", caption, "-buttons", "OK:0", text, nullptr};
    return Run(zenity) || Run(kdialog) || Run(xmessage);
}

} // namespace

int backend::ShowMessageBox(zr_window, const char *text, const char *caption, unsigned) {
    if (text == nullptr)
        text = "";
    if (caption == nullptr)
        caption = "";
    const bool desktop = IsSet("DISPLAY") || IsSet("WAYLAND_DISPLAY");
    if (!desktop || !ShowDialog(text, caption))
        std::fprintf(stderr, "%s\n%s\n", caption, text);
    return answer_ok;
}

zr_window backend::FocusWindow() {
    return nullptr;
}

} // namespace zr::platform
