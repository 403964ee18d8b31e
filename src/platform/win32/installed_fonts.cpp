// The list of installed fonts, which stands in the registry.
#include "platform/installed_fonts.h"

#include <windows.h>

namespace zr::platform {

namespace {

constexpr DWORD text_size = 260; // bytes, with the terminator

// Reads entry number `index`. False behind the last one and for one with a text that is too long. A file may have been
// stored without its terminator.
bool ReadEntry(HKEY key, DWORD index, char *name, char *file) {
    DWORD name_size = text_size;
    DWORD file_size = text_size;
    if (RegEnumValueA(key, index, name, &name_size, nullptr, nullptr, reinterpret_cast<BYTE *>(file), &file_size) !=
        ERROR_SUCCESS)
        return false;
    file[file_size] = 0;
    return true;
}

} // namespace

void backend::VisitInstalledFonts(FontVisitor visit, void *context) {
    HKEY key;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Windows NT\\CurrentVersion\\Fonts", 0, KEY_READ,
                      &key) != ERROR_SUCCESS)
        return;
    char name[text_size];
    char file[text_size + 1];
    for (DWORD index = 0; ReadEntry(key, index, name, file) && visit(context, name, file);)
        ++index;
    RegCloseKey(key);
}

} // namespace zr::platform
