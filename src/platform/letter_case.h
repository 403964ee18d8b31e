// Capital letters of code page 1252, for comparing names without regard to case.
#ifndef ZR_PLATFORM_LETTER_CASE_H
#define ZR_PLATFORM_LETTER_CASE_H

#include <array>
#include <cstddef>

namespace zr::platform {

// The capital letter of every byte; bytes that are no small letter, or whose capital the code page lacks, stand for
// themselves.
inline constexpr std::array<unsigned char, 256> capital_letters = [] {
    std::array<unsigned char, 256> capitals{};
    for (std::size_t i = 0; i < capitals.size(); ++i) {
        const bool small = (i >= 'a' && i <= 'z') || (i >= 0xE0 && i <= 0xFE && i != 0xF7);
        const bool small_caron_or_ligature = i == 0x9A || i == 0x9C || i == 0x9E;
        capitals[i] = static_cast<unsigned char>(small ? i - 0x20 : small_caron_or_ligature ? i - 0x10 : i);
    }
    capitals[0xFF] = 0x9F; // y with diaeresis
    return capitals;
}();

inline unsigned char Capital(char c) {
    return capital_letters[static_cast<unsigned char>(c)];
}

} // namespace zr::platform

#endif
