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

    explicit constexpr CharacterTable(zr_long options);

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

    constexpr void Add(int first, int last, unsigned classes) {
        for (int c = first; c <= last; ++c)
            classes_[c] = static_cast<std::uint8_t>(classes_[c] | classes);
    }
    constexpr void FoldTo(int c, int folded) { normal_[c] = static_cast<std::uint8_t>(folded); }
    constexpr void AddPair(int lower, int upper, zr_long options, unsigned classes);

    std::uint8_t normal_[256] = {};
    std::uint8_t classes_[256] = {};
};

// A letter in both cases; the same twice for one without a partner.
constexpr void CharacterTable::AddPair(int lower, int upper, zr_long options, unsigned classes) {
    Add(lower, lower, classes);
    Add(upper, upper, classes);
    if ((options & SCAN_LOWER) != 0)
        FoldTo(upper, lower);
    else if ((options & SCAN_UPPER) != 0)
        FoldTo(lower, upper);
}

constexpr CharacterTable::CharacterTable(zr_long options) {
    constexpr unsigned letter_of_names = name_start | name;
    for (int c = 1; c < 256; ++c)
        FoldTo(c, c < ' ' && c != '\n' ? ' ' : c);
    for (int c = 'a'; c <= 'z'; ++c)
        AddPair(c, c - 'a' + 'A', options, letter | letter_of_names);
    Add('_', '_', letter_of_names);
    Add('0', '9', digit | hexadecimal | name);
    Add('a', 'f', hexadecimal);
    Add('A', 'F', hexadecimal);
    Add('<', '>', relation); // "=" lies between them
    if ((options & SCAN_APOSTROPHE_NAMES) != 0)
        Add('\'', '\'', letter_of_names);
    if ((options & SCAN_UMLAUTS) != 0) { // the letters of the DOS code page that German has beyond the alphabet
        AddPair(0x84, 0x8E, options, letter | letter_of_names);
        AddPair(0x94, 0x99, options, letter | letter_of_names);
        AddPair(0x81, 0x9A, options, letter | letter_of_names);
        AddPair(0xE1, 0xE1, options, letter | letter_of_names);
    }
}

} // namespace zr::expressions

#endif
