// Letters of code page 1252.
#ifndef ZR_PLATFORM_CODE_PAGE_H
#define ZR_PLATFORM_CODE_PAGE_H

namespace zr::platform {

// The capital letter of `byte`; what has none in the code page (sharp s, the micro sign and others) stays as it is.
constexpr unsigned char UpperByte(unsigned char byte) {
    if ((byte >= 'a' && byte <= 'z') || (byte >= 0xE0 && byte <= 0xFE && byte != 0xF7))
        return static_cast<unsigned char>(byte - 0x20);
    if (byte == 0x9A || byte == 0x9C || byte == 0x9E)
        return static_cast<unsigned char>(byte - 0x10);
    return byte == 0xFF ? 0x9F : byte;
}

} // namespace zr::platform

#endif
