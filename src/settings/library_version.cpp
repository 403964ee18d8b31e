// The version of the library's file as a text.
#include <cstdio>

#include <zrclb/str.h>
#include <zrclb/system.h>

#include "platform/library_record.h"
#include "settings/system_answers.h"
#include "settings/version_text.h"

namespace zr::settings {

namespace {

constexpr char version_without_record[] = "2013";

char VersionLetter(int b, int c) {
    constexpr int first_small = 500;
    constexpr int first_capital = 526;
    const int n = b * 10 + c;
    const int letter = n >= first_capital ? 'A' + n - first_capital : 'a' + n - first_small;
    return static_cast<char>(static_cast<unsigned char>(letter));
}

} // namespace

void WriteVersionText(const platform::FileVersion &version, char *out, std::size_t size) {
    constexpr int first_of_letters = 50;
    constexpr int last_of_letters = 55;
    const int a = version.a, b = version.b, c = version.c, d = version.d;
    if (b > last_of_letters)
        std::snprintf(out, size, "%d.%02d%02d%02d", a, b / 100, b % 100, c);
    else if (b >= first_of_letters)
        std::snprintf(out, size, "%d.000 V%c", a, VersionLetter(b, c));
    else if (d != 0)
        std::snprintf(out, size, "%d.%02d%d%d", a, b, c, d);
    else
        std::snprintf(out, size, "%d.%02d%d", a, b, c);
}

} // namespace zr::settings

using namespace zr::settings;

extern "C" char *zr_get_tek_version(char *out, unsigned int size) noexcept {
    char *const text = system_answers.tek_version_text;
    zr::platform::FileVersion version;
    if (*text == 0 && zr::platform::GetFileVersion(version))
        WriteVersionText(version, text, SystemAnswers::version_size);
    if (*text == 0)
        str_cpy(text, version_without_record);
    return str_ncpy(out, text, static_cast<int>(size - 1));
}
