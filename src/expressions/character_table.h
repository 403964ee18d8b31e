// What a scanner's characters are: their normal form, their classes, their kinds.
#ifndef ZR_EXPRESSIONS_CHARACTER_TABLE_H
#define ZR_EXPRESSIONS_CHARACTER_TABLE_H

#include <cstdint>

#include <zrclb/scan.h>

namespace zr::expressions {

// Tables of all bytes for one word of options. Characters are ints: a source may deliver any, and what is no byte has no class.
class CharacterTable {
public:
    enum Class : std::uint8_t {
        name_start = 1,
        name = 2,
        digit = 4,
        letter = 8,
        hexadecimal = 16,
        relation = 32
    };

    explicit CharacterTable(zr_long options);

    bool Is(int c, unsigned classes) const { return IsByte(c) && (classes_[c] & classes) != 0; }

    // -1 is the end; what lies below a blank is one, but for line feeds; letters fold as the options say.
    int Normalise(int c) const { return IsByte(c) ? normal_[c] : c == -1 ? 0 : c; }

    // Kind of a token of one character that stands for itself.
    static zr_long SymbolKind(int c);

    // Kind of a character for scan_character.
    zr_long CharacterKind(int c) const;

    // Value of a hexadecimal digit.
    static int HexadecimalValue(int c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; }

    // What a backslash and `c` stand for in a character literal; a blank if there is no such escape.
    static int EscapeValue(int c);

private:
    static bool IsByte(int c) { return static_cast<unsigned>(c) < 256; }

    std::uint8_t normal_[256];
    std::uint8_t classes_[256];
};

} // namespace zr::expressions

#endif
