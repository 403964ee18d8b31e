// The file of an installed font.
#include <cstddef>
#include <cstring>

#include <zrclb/str.h>
#include <zrclb/window_utilities.h>

#include "platform/installed_fonts.h"

namespace zr::desktop {
namespace {

constexpr std::size_t name_size = 260; // with the terminator

struct FontSearch {
    const char *wanted;
    char *buffer;
    int size;
    bool found;
};

// Cuts the kind from the end of a font's name: "Arial (TrueType)" becomes "Arial".
void CutKind(char *name) {
    char *open = std::strrchr(name, '(');
    if (open != nullptr && open != name && std::strchr(open, ')') != nullptr)
        *open = '\0';
    str_trim(name);
}

// Whether the walk over the fonts goes on.
bool VisitFont(void *context, const char *name, const char *file) {
    auto &search = *static_cast<FontSearch *>(context);
    char plain[name_size];
    str_ncpy(plain, name, static_cast<int>(sizeof plain) - 1);
    CutKind(plain);
    if (str_ieq(plain, search.wanted) == 0)
        return true;
    if (search.size > 1)
        str_ncpy(search.buffer, file, search.size - 1);
    search.found = true;
    return false;
}

} // namespace
} // namespace zr::desktop

using namespace zr::desktop;

extern "C" {

int wu_GetFontFile(const char *font_name, char *buffer, int size) noexcept {
    if (font_name == nullptr || buffer == nullptr)
        return 0;
    if (size > 0)
        *buffer = '\0';
    if (std::memchr(font_name, '\0', name_size) == nullptr)
        return 0;
    FontSearch search{font_name, buffer, size, false};
    zr::platform::VisitInstalledFonts(VisitFont, &search);
    return search.found ? 1 : 0;
}
}
