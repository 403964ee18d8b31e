// The system's own texts for its error codes.
#include "platform/system_text.h"

#include <windows.h>

namespace zr::platform {

SystemText::SystemText(unsigned long code) {
    constexpr DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    char *text = nullptr;
    // With the first flag the address of the pointer stands for that of the text.
    if (FormatMessageA(flags, nullptr, code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<char *>(&text),
                       0, nullptr) != 0)
        m_text = text;
}

SystemText::~SystemText() {
    LocalFree(const_cast<char *>(m_text));
}

} // namespace zr::platform
