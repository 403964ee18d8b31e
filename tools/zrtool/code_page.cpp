// Code page 1252 and Unicode.
#include "code_page.h"

#include <array>

namespace zrtool {

namespace {

// Bytes 80 to 9F; all others are the code points of their own number.
constexpr std::array<char16_t, 32> high = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                           0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                           0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                           0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

unsigned At(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

} // namespace

char32_t PointOfByte(unsigned char byte) {
    return byte >= 0x80 && byte < 0xA0 ? high[byte - 0x80u] : byte;
}

bool ByteOfPoint(char32_t point, unsigned char &byte) {
    if (point < 0x80 || (point >= 0xA0 && point <= 0xFF)) {
        byte = static_cast<unsigned char>(point);
        return true;
    }
    for (std::size_t i = 0; i < high.size(); ++i) {
        if (high[i] == point) {
            byte = static_cast<unsigned char>(0x80 + i);
            return true;
        }
    }
    return false;
}

char32_t DecodeUtf8(std::string_view text, std::size_t &at) {
    const unsigned lead = At(text, at++);
    if (lead < 0x80)
        return lead;
    const unsigned more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    if (lead < 0xC2 || lead > 0xF4 || text.size() - at < more)
        return NoPoint;
    char32_t point = lead & (0x3Fu >> more);
    for (unsigned i = 0; i < more; ++i) {
        const unsigned next = At(text, at + i);
        if ((next & 0xC0u) != 0x80)
            return NoPoint;
        point = (point << 6) | (next & 0x3Fu);
    }
    constexpr std::array<char32_t, 4> least = {0, 0x80, 0x800, 0x10000};
    if (point < least[more] || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF))
        return NoPoint;
    at += more;
    return point;
}

void AppendUtf8(std::string &text, char32_t point) {
    const auto tail = [&](unsigned shift) { text += static_cast<char>(0x80 | ((point >> shift) & 0x3F)); };
    if (point < 0x80) {
        text += static_cast<char>(point);
    } else if (point < 0x800) {
        text += static_cast<char>(0xC0 | (point >> 6));
        tail(0);
    } else if (point < 0x10000) {
        text += static_cast<char>(0xE0 | (point >> 12));
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0 | (point >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

} // namespace zrtool
