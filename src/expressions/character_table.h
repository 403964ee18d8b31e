// What a scanner's characters are: their normal form, their classes, their kinds.
#ifndef ZR_EXPRESSIONS_CHARACTER_TABLE_H
#define ZR_EXPRESSIONS_CHARACTER_TABLE_H

#include <array>
#include <cstdint>

#include <zrclb/scan.h>

namespace zr::expressions {

// What a token is that begins with a character.
enum class Start : std::uint8_t {
    Symbol, // the character alone; it has a user field
    Mark,   // the same without one
    Blank,  // no token: passed over
    Name,
    Number,
    Relation, // a symbol that another may be joined to
    Dot,
    Sign, // a mark, or part of a number
    Star, // a mark, or with another one a power
    Slash,
    LineComment,
    Backslash,
    Character,
    String,
    Quoted
};

// Tables of all bytes for one word of options. Characters are ints: a source may deliver any, and what is no byte has no class.
class CharacterTable {
public:
    // Characters have them alike as they are read and in their normal form.
    enum Class : std::uint8_t {
        name = 1,
        digit = 2,
        letter = 4,
        hexadecimal = 8,
        relation = 16
    };

    explicit constexpr CharacterTable(zr_long options);

    bool Is(int c, unsigned classes) const { return IsByte(c) && (classes_[c] & classes) != 0; }

    // Alike for a character as it is read and in its normal form.
    Start StartOf(int c) const { return IsByte(c) ? starts_[c] : Start::Symbol; }

    // -1 is the end; what lies below a blank is one, but for line feeds; letters fold as the options say.
    int Normalise(int c) const { return IsByte(c) ? normal_[c] : c == -1 ? 0 : c; }

    // The same into `c`; whether it has one of `classes`.
    bool Normalise(int read, unsigned classes, int &c) const {
        c = Normalise(read);
        return Is(read, classes);
    }

    // Kind of a token of one character that stands for itself.
    static zr_long SymbolKind(int c) {
        return IsByte(c) ? symbol_kinds[static_cast<unsigned>(c)] : zr_long{SCAN_KIND_VOID};
    }

    // Kind of a character for scan_character.
    zr_long CharacterKind(int c) const;

    // Value of a hexadecimal digit.
    static int HexadecimalValue(int c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; }

    // What a backslash and `c` stand for in a character literal; a blank if there is no such escape.
    static int EscapeValue(int c);

private:
    static const std::array<std::uint8_t, 256> symbol_kinds; // void where there is none

    static bool IsByte(int c) { return static_cast<unsigned>(c) < 256; }

    constexpr void Add(int first, int last, unsigned classes) {
        for (int c = first; c <= last; ++c)
            classes_[c] = static_cast<std::uint8_t>(classes_[c] | classes);
    }
    constexpr void AddName(int c, unsigned classes) {
        Add(c, c, classes | name);
        starts_[c] = Start::Name;
    }
    constexpr void AddPair(int lower, int upper, zr_long options);
    constexpr void SetStart(char c, Start start) { starts_[static_cast<unsigned char>(c)] = start; }
    constexpr void FoldTo(int c, int folded) { normal_[c] = static_cast<std::uint8_t>(folded); }
    constexpr void SetSymbolStarts(zr_long options);

    std::uint8_t normal_[256] = {};
    std::uint8_t classes_[256] = {};
    Start starts_[256] = {};
};

// A letter in both cases; the same twice for one without a partner.
constexpr void CharacterTable::AddPair(int lower, int upper, zr_long options) {
    AddName(lower, letter);
    AddName(upper, letter);
    if ((options & SCAN_LOWER) != 0)
        FoldTo(upper, lower);
    else if ((options & SCAN_UPPER) != 0)
        FoldTo(lower, upper);
}

constexpr void CharacterTable::SetSymbolStarts(zr_long options) {
    const auto choose = [&](zr_long option, Start with, Start without) {
        return (options & option) != 0 ? with : without;
    };
    SetStart(' ', Start::Blank);
    SetStart('\n', choose(SCAN_KEEP_EOL, Start::Symbol, Start::Blank));
    for (const char c : {'<', '=', '>'})
        SetStart(c, choose(SCAN_COMPOSE_RELATIONS, Start::Relation, Start::Symbol));
    SetStart('.', Start::Dot);
    for (const char c : {'+', '-'})
        SetStart(c, choose(SCAN_SIGNED_NUMBERS, Start::Sign, Start::Mark));
    SetStart('*', choose(SCAN_STAR_POWER, Start::Star, Start::Mark));
    SetStart('/', choose(SCAN_BLOCK_COMMENT | SCAN_LINE_COMMENT, Start::Slash, Start::Mark));
    SetStart('!', choose(SCAN_BANG_COMMENT, Start::LineComment, Start::Mark));
    SetStart('#', choose(SCAN_HASH_STYLE, Start::LineComment, Start::Symbol));
    SetStart('`', choose(SCAN_HASH_STYLE, Start::Quoted, Start::Symbol));
    SetStart('"', choose(SCAN_HASH_STYLE, Start::Mark, Start::String));
    SetStart('\\', Start::Backslash);
    SetStart('\'', Start::Character);
}

constexpr CharacterTable::CharacterTable(zr_long options) {
    for (int c = 1; c < 256; ++c)
        FoldTo(c, c);
    for (int c = 1; c < ' '; ++c) {
        FoldTo(c, ' ');
        starts_[c] = Start::Blank;
    }
    FoldTo('\n', '\n');
    SetSymbolStarts(options);
    for (int c = 'a'; c <= 'z'; ++c)
        AddPair(c, c - 'a' + 'A', options);
    AddName('_', 0);
    Add('0', '9', digit | hexadecimal | name);
    for (int c = '0'; c <= '9'; ++c)
        starts_[c] = Start::Number;
    Add('a', 'f', hexadecimal);
    Add('A', 'F', hexadecimal);
    Add('<', '>', relation); // "=" lies between them
    if ((options & SCAN_APOSTROPHE_NAMES) != 0)
        AddName('\'', 0);
    if ((options & SCAN_UMLAUTS) != 0) { // the letters of the DOS code page that German has beyond the alphabet
        AddPair(0x84, 0x8E, options);
        AddPair(0x94, 0x99, options);
        AddPair(0x81, 0x9A, options);
        AddPair(0xE1, 0xE1, options);
    }
}

} // namespace zr::expressions

#endif
