// Escape sequences to the characters they stand for, and back.
#include <zrclb/str.h>

#include <cstring>

#include <zrclb/heap.h>

namespace zr::frame {
namespace {

// The letter behind the backslash and the character meant, one below the other.
constexpr char escape_letters[] = "abtnvfr\"'\\";
constexpr char escape_bytes[] = "\a\b\t\n\v\f\r\"'\\";

// The character in `to` that stands below `ch` in `from`; 0 if there is none.
char Translate(char ch, const char *from, const char *to) {
    const char *place = ch != '\0' ? std::strchr(from, ch) : nullptr;
    return place != nullptr ? to[place - from] : '\0';
}

void ReadEscapes(char *target, const char *source) {
    while (*source != '\0') {
        char byte = *source == '\\' ? Translate(source[1], escape_letters, escape_bytes) : '\0';
        *target++ = byte != '\0' ? byte : *source;
        source += byte != '\0' ? 2 : 1;
    }
    *target = '\0';
}

void WriteEscapes(char *target, const char *source) {
    for (; *source != '\0'; ++source) {
        char letter = Translate(*source, escape_bytes, escape_letters);
        if (letter != '\0') {
            *target++ = '\\';
        }
        *target++ = letter != '\0' ? letter : *source;
    }
    *target = '\0';
}

// Converts from a private copy, so that the target may be the source.
char *Convert(char *dst, char *src, void (*convert)(char *target, const char *source)) {
    if (src == nullptr) {
        return dst;
    }
    void *copy = str_alloc(src);
    if (copy == nullptr) {
        return nullptr;
    }
    char *target = dst != nullptr ? dst : src;
    convert(target, static_cast<const char *>(copy));
    heap_smart_free(&copy);
    return target;
}

} // namespace
} // namespace zr::frame

extern "C" {

char *str_stoe(char *dst, char *src) noexcept {
    return zr::frame::Convert(dst, src, zr::frame::ReadEscapes);
}

char *str_etos(char *dst, char *src) noexcept {
    return zr::frame::Convert(dst, src, zr::frame::WriteEscapes);
}
}
