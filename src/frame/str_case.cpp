// Capital and small letters of code page 1252.
#include <zrclb/str.h>

namespace zr::frame {
namespace {

// The letters below 0xC0 stand where the code page differs from Latin-1. The letters that have no partner in the code page
// stay as they are: sharp s, the florin sign, the micro sign, the two ordinals.
unsigned char UpperByte(unsigned char byte) {
    if ((byte >= 'a' && byte <= 'z') || (byte >= 0xE0 && byte <= 0xFE && byte != 0xF7)) {
        return static_cast<unsigned char>(byte - 0x20);
    }
    if (byte == 0x9A || byte == 0x9C || byte == 0x9E) {
        return static_cast<unsigned char>(byte - 0x10);
    }
    return byte == 0xFF ? 0x9F : byte;
}

unsigned char LowerByte(unsigned char byte) {
    if ((byte >= 'A' && byte <= 'Z') || (byte >= 0xC0 && byte <= 0xDE && byte != 0xD7)) {
        return static_cast<unsigned char>(byte + 0x20);
    }
    if (byte == 0x8A || byte == 0x8C || byte == 0x8E) {
        return static_cast<unsigned char>(byte + 0x10);
    }
    return byte == 0x9F ? 0xFF : byte;
}

template <typename Map>
char *MapBytes(char *s, Map map) {
    for (char *place = s; place != nullptr && *place != '\0'; ++place) {
        *place = static_cast<char>(map(static_cast<unsigned char>(*place)));
    }
    return s;
}

} // namespace
} // namespace zr::frame

extern "C" {

char *str_cap(char *s) noexcept {
    return zr::frame::MapBytes(s, zr::frame::UpperByte);
}

char *str_low(char *s) noexcept {
    return zr::frame::MapBytes(s, zr::frame::LowerByte);
}
}
