// What shows help: the shell for a URL, the help control for a file.
#include "platform/help_viewer.h"

#include <windows.h>

#include <shellapi.h>

#include "platform/libraries.h"
#include "platform/win32/help_control.h"

namespace zr::platform {

namespace {

using HelpFunction = HWND(WINAPI *)(HWND owner, const char *file, UINT command, DWORD_PTR data);
using ConnectedFunction = BOOL(WINAPI *)(DWORD *flags, DWORD reserved);

// The control's library as the system knows it. Empty if it doesn't.
void RegisteredControl(char (&out)[MAX_PATH]) {
    constexpr char key[] = "CLSID\\{ADB880A6-D8FF-11CF-9377-00AA003B7A11}\\InprocServer32";
    DWORD size = sizeof out;
    // A text that holds environment strings is expanded.
    if (RegGetValueA(HKEY_CLASSES_ROOT, key, nullptr, RRF_RT_REG_SZ, nullptr, out, &size) != ERROR_SUCCESS)
        out[0] = 0;
}

void *LoadControl() {
    char path[MAX_PATH];
    RegisteredControl(path);
    void *library = path[0] != 0 ? OpenLibrary(path) : nullptr;
    return library != nullptr ? library : OpenLibrary("hhctrl.ocx");
}

LibraryFunction LoadHelpFunction() {
    constexpr WORD entry_number = 14;
    void *library = LoadControl();
    return library != nullptr ? FindFunction(library, MAKEINTRESOURCEA(entry_number)) : nullptr;
}

} // namespace

bool win32::HelpControl::Show(const char *path, HelpCommand command, zr_ulong id) {
    if (!m_tried) {
        m_tried = true;
        m_function = LoadHelpFunction();
    }
    if (m_function == nullptr)
        return false;
    const auto show = reinterpret_cast<HelpFunction>(m_function);
    return show(nullptr, path, static_cast<UINT>(command), id) != nullptr;
}

// The library that knows is loaded at the first need only: it takes longer to load than this one. It stays.
bool backend::IsOnline() {
    static void *const library = OpenLibrary("wininet.dll");
    if (library == nullptr)
        return false;
    const auto connected = reinterpret_cast<ConnectedFunction>(FindFunction(library, "InternetGetConnectedState"));
    DWORD flags = 0;
    return connected != nullptr && connected(&flags, 0) != FALSE;
}

void backend::OpenUrl(const char *url) {
    ShellExecuteA(nullptr, "open", url, nullptr, nullptr, SW_SHOWNORMAL);
}

bool backend::ShowHelpFile(const char *path, HelpCommand command, zr_ulong id) {
    static win32::HelpControl control;
    return control.Show(path, command, id);
}

} // namespace zr::platform
