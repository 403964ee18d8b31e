// Fitting a long path into a line, or into several.
#include <zrclb/folders.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

#include <zrclb/report.h>

#include "platform/path_text.h"

namespace {

constexpr char source_tag[] = "Fio";
constexpr int width_limit = 255;

enum Result {
    wrapped = 0,
    bad_arguments = -1,
    too_small = -2,
    no_break = -3
};

int Fail(Result result, const char *message, int line) {
    zr_message(message, nullptr, nullptr, source_tag, line);
    return result;
}

int TooSmall(int line) {
    return Fail(too_small, "fio_WrapPath: Buffer zu klein", line);
}

// Offset of the last backslash in text[0..length-1], or -1.
int LastBackslash(const char *text, int length) {
    while (length > 0 && text[length - 1] != '\\')
        --length;
    return length - 1;
}

// Breaks a path that is longer than a line.
int WrapLongPath(char *out, const char *path, int out_size, int width) {
    const char *rest = path;
    int written = 0;
    int offset = 0;
    out[0] = 0;
    for (;;) {
        const int length = static_cast<int>(strnlen(rest, static_cast<std::size_t>(width)));
        if (length < width) {
            // The last piece goes by the break in front of it, and may lose its end.
            if (offset + 2 > out_size - written)
                return TooSmall(__LINE__);
            const int kept = std::min(length, offset + 1);
            std::memcpy(out + written, rest, static_cast<std::size_t>(kept));
            out[written + kept] = 0;
            return wrapped;
        }
        offset = LastBackslash(rest, length);
        if (offset < 0)
            return Fail(no_break, "fio_WrapPath: Umbruch nicht m\xF6glich", __LINE__);
        if (offset + 3 > out_size - written)
            return TooSmall(__LINE__);
        std::memcpy(out + written, rest, static_cast<std::size_t>(offset) + 1);
        written += offset + 1;
        out[written++] = '\n';
        out[written] = 0;
        rest += offset + 1;
    }
}

} // namespace

extern "C" {

int fio_CompactPath(char *out, const char *path, unsigned width, zr_ulong flags) noexcept {
    if (out == nullptr || path == nullptr)
        return 0;
    return zr::platform::CompactPath(out, path, width, static_cast<std::uint32_t>(flags));
}

int fio_WrapPath(char *out, const char *path, int out_size, int width) noexcept {
    if (out == nullptr || path == nullptr || out_size <= 0 || width <= 0 || width > width_limit)
        return Fail(bad_arguments, "fio_WrapPath: falsche Parameter", __LINE__);
    const std::size_t length = std::strlen(path);
    if (static_cast<std::size_t>(out_size) < length + 1)
        return TooSmall(__LINE__);
    if (length <= static_cast<std::size_t>(width)) {
        std::memcpy(out, path, length + 1);
        return wrapped;
    }
    return WrapLongPath(out, path, out_size, width);
}
}
