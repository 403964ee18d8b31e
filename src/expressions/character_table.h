// What a scanner's characters are: their normal form, what they begin, their kinds.
#ifndef ZR_EXPRESSIONS_CHARACTER_TABLE_H
#define ZR_EXPRESSIONS_CHARACTER_TABLE_H

#include <array>
#include <cstdint>

#include <zrclb/scan.h>

namespace zr::expressions {

// What a token is that begins with a character. The first two are what names go on with, the last two are bytes that stand for
// themselves.
enum class Start : std::uint8_t {
    Number,
    Name,
    Blank,    // no token: passed over
    Relation, // a symbol that another may be joined to
    Dot,
    Sign, // a mark, or part of a number
    Star, // a mark, or with another one a power
    Slash,
    LineComment,
    Backslash,
    Character,
    String,
    Quoted,
    Special, // the end, a line feed that is a token, what is no byte: as a symbol, but each looked at
    Symbol,  // the character alone; it has a user field
    Mark     // the same without one
};

// A character as it was read and normalised: the end is 0, what lies below a blank is one, but for line feeds; letters fold as the
// options say. A source may deliver any int. Value and start share a word, so that loops over characters carry one.
class Character {
public:
    constexpr Character(int value, Start start) : m_bits(std::int64_t{value} * 256 + static_cast<int>(start)) {}

    // What CharacterTable keeps of a byte.
    constexpr explicit Character(std::uint16_t packed) : m_bits(packed) {}
    constexpr std::uint16_t Packed() const { return static_cast<std::uint16_t>(m_bits); }

    constexpr int Value() const { return static_cast<int>(m_bits >> 8); }
    constexpr Start GetStart() const { return static_cast<Start>(m_bits & 0xFF); }
    constexpr bool IsBlank() const { return GetStart() == Start::Blank; }
    constexpr bool IsDigit() const { return GetStart() == Start::Number; }
    constexpr bool IsOfName() const { return GetStart() <= Start::Name; }

private:
    std::int64_t m_bits;
};

// Table of all bytes for one word of options.
class CharacterTable {
public:
    explicit constexpr CharacterTable(zr_long options);

    Character Classify(int read) const {
        const auto byte = static_cast<unsigned>(read);
        if (byte < 256) [[likely]]
            return Character(m_bytes[byte]);
        return {read == -1 ? 0 : read, Start::Special};
    }

    // Kind of a token of one character that stands for itself.
    static zr_long SymbolKind(int c) {
        return static_cast<unsigned>(c) < 256 ? s_symbolKinds[static_cast<unsigned>(c)] : zr_long{SCAN_KIND_VOID};
    }

    // Kind of a character for scan_character.
    static zr_long CharacterKind(Character c);

    static bool IsHexadecimal(int c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
    }

    // Value of a hexadecimal digit.
    static int HexadecimalValue(int c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; }

    static bool IsRelation(int c) { return c == '<' || c == '=' || c == '>'; }

    // What a backslash and `c` stand for in a character literal; a blank if there is no such escape.
    static int EscapeValue(int c);

private:
    static const std::array<std::uint8_t, 256> s_symbolKinds; // void where there is none

    constexpr void Set(int c, int normal, Start start) { m_bytes[c] = Character(normal, start).Packed(); }
    constexpr void SetStart(char c, Start start) { Set(c, c, start); }
    constexpr void SetLetters(int lower, int upper, zr_long options);
    constexpr void SetSymbolStarts(zr_long options);

    std::uint16_t m_bytes[256] = {};
};

// A letter in both cases; the same twice for one without a partner.
constexpr void CharacterTable::SetLetters(int lower, int upper, zr_long options) {
    const bool to_lower = (options & SCAN_LOWER) != 0;
    const bool to_upper = !to_lower && (options & SCAN_UPPER) != 0;
    Set(lower, to_upper ? upper : lower, Start::Name);
    Set(upper, to_lower ? lower : upper, Start::Name);
}

constexpr void CharacterTable::SetSymbolStarts(zr_long options) {
    const auto choose = [&](zr_long option, Start with, Start without) {
        return (options & option) != 0 ? with : without;
    };
    SetStart(' ', Start::Blank);
    SetStart('\n', choose(SCAN_KEEP_EOL, Start::Special, Start::Blank));
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
    SetStart('\'', choose(SCAN_APOSTROPHE_NAMES, Start::Name, Start::Character));
}

constexpr CharacterTable::CharacterTable(zr_long options) {
    Set(0, 0, Start::Special);
    for (int c = ' '; c < 256; ++c)
        Set(c, c, Start::Symbol);
    for (int c = 1; c < ' '; ++c)
        Set(c, ' ', Start::Blank);
    SetSymbolStarts(options);
    for (int c = '0'; c <= '9'; ++c)
        Set(c, c, Start::Number);
    for (int c = 'a'; c <= 'z'; ++c)
        SetLetters(c, c - 'a' + 'A', options);
    SetStart('_', Start::Name);
    if ((options & SCAN_UMLAUTS) != 0) { // the letters of the DOS code page that German has beyond the alphabet
        SetLetters(0x84, 0x8E, options);
        SetLetters(0x94, 0x99, options);
        SetLetters(0x81, 0x9A, options);
        SetLetters(0xE1, 0xE1, options);
    }
}

} // namespace zr::expressions

#endif
