// The user who runs the program.
#include "platform/users.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include <windows.h>

namespace zr::platform {

namespace {

// A library that is loaded for as long as this lives.
class LoadedLibrary {
public:
    explicit LoadedLibrary(const char *name) : m_module(LoadLibraryA(name)) {}
    ~LoadedLibrary() {
        if (m_module != nullptr)
            FreeLibrary(m_module);
    }
    LoadedLibrary(const LoadedLibrary &) = delete;
    LoadedLibrary &operator=(const LoadedLibrary &) = delete;

    FARPROC Function(const char *name) const { return m_module != nullptr ? GetProcAddress(m_module, name) : nullptr; }

private:
    HMODULE m_module;
};

using GetUserNameExFunction = BOOLEAN(WINAPI *)(int format, char *out, ULONG *size);
constexpr int domain_and_user = 2;

void CopyCut(const char *text, char *out, std::size_t size) {
    const std::size_t length = strnlen(text, size - 1);
    std::memcpy(out, text, length);
    out[length] = 0;
}

} // namespace

bool backend::SystemUser(char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return false;
    out[0] = 0;
    DWORD room = size > MAXDWORD ? MAXDWORD : static_cast<DWORD>(size);
    if (GetUserNameA(out, &room))
        return true;
    out[0] = 0;
    return false;
}

bool backend::SystemLogin(char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return false;
    out[0] = 0;
    const LoadedLibrary library("Secur32.DLL");
    const auto get_name =
        reinterpret_cast<GetUserNameExFunction>(reinterpret_cast<void (*)()>(library.Function("GetUserNameExA")));
    ULONG length = 0;
    if (get_name == nullptr || get_name(domain_and_user, nullptr, &length) || GetLastError() != ERROR_MORE_DATA)
        return false;
    // Some systems tell the length without the terminator.
    const ULONG room = ++length;
    const std::unique_ptr<char[]> name(new (std::nothrow) char[room]);
    if (name == nullptr || !get_name(domain_and_user, name.get(), &length))
        return false;
    name[room - 1] = 0;
    CopyCut(name.get(), out, size);
    return true;
}

} // namespace zr::platform
