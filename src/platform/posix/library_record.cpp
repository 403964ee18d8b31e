// Version and string table of the library: the same data that the desktop's file carries as resources.
#include "platform/library_record.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include <zrclb/version.h>

#include "platform/library_texts.h"

namespace zr::platform {

namespace {

std::string_view TextOf(LibraryText text) {
    switch (text) {
    case LibraryText::data_of_later_minor:
        return ZR_LIBRARY_TEXT_1;
    case LibraryText::data_of_later_major:
        return ZR_LIBRARY_TEXT_2;
    default:
        return "";
    }
}

} // namespace

bool backend::GetFileVersion(FileVersion &out) {
    out = {ZR_VERSION_MAJOR, ZR_VERSION_MINOR, ZR_VERSION_PATCH, 0};
    return true;
}

std::size_t backend::GetLibraryText(LibraryText text, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return 0;
    const std::string_view whole = TextOf(text);
    const std::size_t length = std::min(whole.size(), size - 1);
    std::memcpy(out, whole.data(), length);
    out[length] = 0;
    return length;
}

} // namespace zr::platform
