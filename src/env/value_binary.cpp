// Encoder and decoder of ENV_BIN.
#include "env/value_binary.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include <zrclb/report.h>

#include "env/number_text.h"

namespace zr::env {

namespace {

constexpr const char *SourceTag = "ZrEnvDataConvert";
constexpr char Separator = '\xD0';
constexpr char Mark = '_';
constexpr char Header[] = {'2', Separator};

struct Pair {
    unsigned char byte;
    unsigned char letter;
    bool sinceVersion2;
};

constexpr Pair Pairs[] = {
    {0x00, '0', false}, {0x0A, 'n', false}, {0x0D, 'r', false}, {0x1A, 'A', true},  {0x20, 'p', false},
    {0x2C, 'm', false}, {0x3B, 's', false}, {0x3D, 'e', false}, {0x5B, 'O', false}, {0x5C, 'b', false},
    {0x5D, 'C', false}, {0x5F, '_', false}, {0x7B, 'o', false}, {0x7D, 'c', false}, {0xFF, 'F', false},
};

// The letter for each byte, 0 for a byte that stands for itself.
constexpr std::array<char, 256> Letters = [] {
    std::array<char, 256> letters{};
    for (const Pair &pair : Pairs)
        letters[pair.byte] = static_cast<char>(pair.letter);
    return letters;
}();

// The byte for each letter, -1 for a letter without one.
constexpr std::array<std::int16_t, 256> MakeBytes(bool version2) {
    std::array<std::int16_t, 256> bytes{};
    bytes.fill(-1);
    for (const Pair &pair : Pairs) {
        if (version2 || !pair.sinceVersion2)
            bytes[pair.letter] = pair.byte;
    }
    return bytes;
}
constexpr std::array<std::int16_t, 256> BytesVersion1 = MakeBytes(false);
constexpr std::array<std::int16_t, 256> BytesVersion2 = MakeBytes(true);

char LetterOf(char byte) {
    return Letters[static_cast<unsigned char>(byte)];
}

Zr::EZrEnvError SmallBuffer() {
    zr_message("Small buffer", nullptr, nullptr, SourceTag, __LINE__);
    return Zr::ENV_TOO_SMALL;
}

// A text that is not ENV_BIN stands for its own bytes.
Zr::EZrEnvError CopyPlain(const char *text, char *target, zr_long *size) {
    const std::size_t length = std::strlen(text);
    const std::size_t capacity = static_cast<std::size_t>(*size);
    std::memmove(target, text, std::min(length + 1, capacity));
    if (length > capacity)
        return SmallBuffer();
    *size = static_cast<zr_long>(length);
    return Zr::ENV_OK;
}

// Decodes the body of an ENV_BIN text: plain stretches as blocks, pairs one by one.
Zr::EZrEnvError DecodeBody(const char *body, const std::array<std::int16_t, 256> &bytes, char *target, zr_long *size) {
    const char *end = body + std::strlen(body);
    const std::size_t capacity = static_cast<std::size_t>(*size);
    std::size_t count = 0;
    for (const char *p = body; p != end;) {
        const void *found = std::memchr(p, Mark, static_cast<std::size_t>(end - p));
        const char *mark = found != nullptr ? static_cast<const char *>(found) : end;
        const std::size_t plain = std::min(static_cast<std::size_t>(mark - p), capacity - count);
        std::memcpy(target + count, p, plain);
        count += plain;
        if (count == capacity)
            return SmallBuffer();
        if (mark == end)
            break;
        // A mark at the very end has no letter behind it and is itself all that is consumed.
        const std::int16_t byte = bytes[static_cast<unsigned char>(mark[1])];
        if (byte >= 0)
            target[count] = static_cast<char>(byte);
        else
            zr_message("Unknown '_'-symbol", nullptr, nullptr, SourceTag, __LINE__);
        p = mark + (mark + 1 == end ? 1 : 2);
        if (++count == capacity)
            return SmallBuffer();
    }
    *size = static_cast<zr_long>(count);
    return Zr::ENV_OK;
}

} // namespace

std::size_t EncodedLength(const char *source, zr_long length) {
    std::size_t total = sizeof Header;
    for (zr_long i = 0; i < length; ++i)
        total += LetterOf(source[i]) != '\0' ? 2 : 1;
    return total;
}

int EncodeBinary(const char *source, char *target, zr_long length) {
    char *out = std::copy(std::begin(Header), std::end(Header), target);
    for (zr_long i = 0; i < length; ++i) {
        const char letter = LetterOf(source[i]);
        if (letter != '\0') {
            *out++ = Mark;
            *out++ = letter;
        } else {
            *out++ = source[i];
        }
    }
    *out = '\0';
    return 0;
}

Zr::EZrEnvError DecodeBinary(const char *text, char *target, zr_long *size) {
    if (text == nullptr || target == nullptr || size == nullptr)
        return Zr::ENV_ERROR;
    const char *stop = text;
    const zr_long version = ReadLong(text, &stop);
    const bool plain = *stop != Separator;
    if (!plain && version != 1 && version != 2) {
        zr_message("Incorrect version of ENV_BIN", nullptr, nullptr, SourceTag, __LINE__);
        return Zr::ENV_ERROR;
    }
    if (*size <= 0)
        return SmallBuffer();
    if (plain)
        return CopyPlain(text, target, size);
    return DecodeBody(stop + 1, version == 2 ? BytesVersion2 : BytesVersion1, target, size);
}

} // namespace zr::env
