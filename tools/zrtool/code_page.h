// Code page 1252 and Unicode, byte by byte. The five bytes that the code page leaves open (81, 8D, 8F, 90, 9D) stand
// for the control characters of the same number, so that each of the 256 bytes has one code point of its own.
#ifndef ZRTOOL_CODE_PAGE_H
#define ZRTOOL_CODE_PAGE_H

#include <cstddef>
#include <string>
#include <string_view>

namespace zrtool {

constexpr char32_t NoPoint = 0xFFFFFFFF;

char32_t PointOfByte(unsigned char byte);

// False, with byte untouched, for a point that no byte stands for.
bool ByteOfPoint(char32_t point, unsigned char &byte);

// The code point at text[at], strictly: no overlong form, no surrogate, nothing above 10FFFF. Moves `at` behind it; on
// a fault the result is NoPoint and `at` moves by one byte. REQUIRES: at < text.size().
char32_t DecodeUtf8(std::string_view text, std::size_t &at);

void AppendUtf8(std::string &text, char32_t point);

} // namespace zrtool

#endif
