// Programs that serve documents of a class: the system's own calls.
#include "platform/server_programs.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include <windows.h>

#include <objbase.h>

namespace zr::platform {

namespace {

constexpr int title_size = 256;

struct WindowWalk {
    WindowVisitor visit;
    void *context;
};

BOOL CALLBACK VisitWindow(HWND window, LPARAM parameter) {
    const auto &walk = *reinterpret_cast<const WindowWalk *>(parameter);
    char title[title_size] = "";
    if (GetWindowTextA(window, title, title_size) == 0)
        title[0] = '\0';
    walk.visit(walk.context, window, title);
    return TRUE;
}

DWORD Limited(std::size_t size) {
    return size > MAXDWORD ? MAXDWORD : static_cast<DWORD>(size);
}

// A function of the object library. It is loaded only here: a process that never asks starts faster without it.
template <class Function>
Function ObjectFunction(HMODULE library, const char *name) {
    return reinterpret_cast<Function>(reinterpret_cast<void *>(GetProcAddress(library, name)));
}

bool AskForClassId(const wchar_t *program_id, wchar_t (&text)[class_id_size]) {
    const HMODULE library = LoadLibraryA("ole32.dll");
    if (library == nullptr)
        return false;
    const auto find = ObjectFunction<decltype(&CLSIDFromProgID)>(library, "CLSIDFromProgID");
    const auto write = ObjectFunction<decltype(&StringFromGUID2)>(library, "StringFromGUID2");
    CLSID id;
    const bool found = find != nullptr && write != nullptr && SUCCEEDED(find(program_id, &id)) &&
                       write(id, text, static_cast<int>(std::size(text))) != 0;
    FreeLibrary(library);
    return found;
}

} // namespace

bool backend::FindClassId(const char *program_id, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return false;
    out[0] = '\0';
    constexpr std::size_t longest_program_id = 255;
    wchar_t wide[longest_program_id + 1] = {};
    const std::string_view name(program_id != nullptr ? program_id : "");
    if (name.empty() || name.size() > longest_program_id)
        return false;
    std::copy(name.begin(), name.end(), wide); // ASCII
    wchar_t text[class_id_size];
    if (!AskForClassId(wide, text) || size < class_id_size)
        return false;
    std::transform(std::begin(text), std::end(text), out, [](wchar_t letter) { return static_cast<char>(letter); });
    return true;
}

std::size_t backend::VersionRecordSize(const char *path) {
    DWORD ignored = 0;
    return path != nullptr ? GetFileVersionInfoSizeA(path, &ignored) : 0;
}

bool backend::ReadVersionRecord(const char *path, void *record, std::size_t size) {
    return path != nullptr && record != nullptr && GetFileVersionInfoA(path, 0, Limited(size), record);
}

bool backend::FindProductVersion(const void *record, FileVersion &out) {
    void *found = nullptr;
    UINT found_size = 0;
    if (record == nullptr || !VerQueryValueA(record, "\\", &found, &found_size) ||
        found_size < sizeof(VS_FIXEDFILEINFO))
        return false;
    const auto *fixed = static_cast<const VS_FIXEDFILEINFO *>(found);
    out = {HIWORD(fixed->dwProductVersionMS), LOWORD(fixed->dwProductVersionMS), HIWORD(fixed->dwProductVersionLS),
           LOWORD(fixed->dwProductVersionLS)};
    return true;
}

void backend::VisitTopWindows(WindowVisitor visit, void *context) {
    WindowWalk walk{visit, context};
    EnumWindows(VisitWindow, reinterpret_cast<LPARAM>(&walk));
}

bool backend::IsWindowAlive(zr_window window) {
    return IsWindow(static_cast<HWND>(window)) != FALSE;
}

bool backend::StartServer(char *command_line, unsigned short show, std::uint32_t milliseconds) {
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESHOWWINDOW;
    start.wShowWindow = show;
    PROCESS_INFORMATION process;
    if (!CreateProcessA(nullptr, command_line, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process))
        return false;
    WaitForInputIdle(process.hProcess, milliseconds);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return true;
}

} // namespace zr::platform
