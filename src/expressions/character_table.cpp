// What a scanner's characters are: their normal form, their classes, their kinds.
#include "expressions/character_table.h"

namespace zr::expressions {

namespace {

// The letters of the DOS code page that German has beyond the alphabet; the last one has no capital.
struct Umlaut {
    std::uint8_t lower;
    std::uint8_t upper;
};
constexpr Umlaut umlauts[] = {{0x84, 0x8E}, {0x94, 0x99}, {0x81, 0x9A}, {0xE1, 0xE1}};

bool IsLower(int c) {
    return c >= 'a' && c <= 'z';
}

bool IsUpper(int c) {
    return c >= 'A' && c <= 'Z';
}

bool IsDigit(int c) {
    return c >= '0' && c <= '9';
}

std::uint8_t Fold(int c, zr_long options) {
    constexpr int distance = 'a' - 'A';
    if ((options & SCAN_LOWER) != 0)
        return static_cast<std::uint8_t>(IsUpper(c) ? c + distance : c);
    if ((options & SCAN_UPPER) != 0)
        return static_cast<std::uint8_t>(IsLower(c) ? c - distance : c);
    return static_cast<std::uint8_t>(c);
}

std::uint8_t Classes(int c) {
    const bool letter = IsLower(c) || IsUpper(c);
    const bool hexadecimal = IsDigit(c) || ((c | 0x20) >= 'a' && (c | 0x20) <= 'f' && letter);
    unsigned classes = 0;
    if (letter)
        classes |= CharacterTable::letter;
    if (letter || c == '_')
        classes |= CharacterTable::name_start;
    if (letter || c == '_' || IsDigit(c))
        classes |= CharacterTable::name;
    if (IsDigit(c))
        classes |= CharacterTable::digit;
    if (hexadecimal)
        classes |= CharacterTable::hexadecimal;
    if (c == '<' || c == '>' || c == '=')
        classes |= CharacterTable::relation;
    return static_cast<std::uint8_t>(classes);
}

constexpr std::uint8_t letter_of_names = CharacterTable::name_start | CharacterTable::name;

} // namespace

CharacterTable::CharacterTable(zr_long options) {
    for (int c = 0; c < 256; ++c) {
        normal_[c] = c > 0 && c < ' ' && c != '\n' ? ' ' : Fold(c, options);
        classes_[c] = Classes(c);
    }
    if ((options & SCAN_APOSTROPHE_NAMES) != 0)
        classes_['\''] |= letter_of_names;
    if ((options & SCAN_UMLAUTS) == 0)
        return;
    for (const Umlaut &umlaut : umlauts) {
        classes_[umlaut.lower] |= letter_of_names | letter;
        classes_[umlaut.upper] |= letter_of_names | letter;
        if ((options & SCAN_LOWER) != 0)
            normal_[umlaut.upper] = umlaut.lower;
        else if ((options & SCAN_UPPER) != 0)
            normal_[umlaut.lower] = umlaut.upper;
    }
}

zr_long CharacterTable::SymbolKind(int c) {
    switch (c) {
    case '=':
        return SCAN_KIND_EQUAL;
    case '#':
        return SCAN_KIND_HASH;
    case ',':
        return SCAN_KIND_COMMA;
    case ';':
        return SCAN_KIND_SEMICOLON;
    case ':':
        return SCAN_KIND_COLON;
    case '^':
        return SCAN_KIND_POWER;
    case '<':
        return SCAN_KIND_LESS;
    case '>':
        return SCAN_KIND_GREATER;
    case '(':
        return SCAN_KIND_LEFT_PARENTHESIS;
    case ')':
        return SCAN_KIND_RIGHT_PARENTHESIS;
    case '{':
        return SCAN_KIND_LEFT_BRACE;
    case '}':
        return SCAN_KIND_RIGHT_BRACE;
    case '[':
        return SCAN_KIND_LEFT_BRACKET;
    case ']':
        return SCAN_KIND_RIGHT_BRACKET;
    case '$':
        return SCAN_KIND_DOLLAR;
    case '@':
        return SCAN_KIND_AT;
    case '%':
        return SCAN_KIND_PERCENT;
    case '&':
        return SCAN_KIND_AMPERSAND;
    case '?':
        return SCAN_KIND_QUESTION;
    case '|':
        return SCAN_KIND_BAR;
    case '~':
        return SCAN_KIND_TILDE;
    case '\n':
        return SCAN_KIND_END_OF_LINE;
    case 0:
        return SCAN_KIND_END;
    default:
        return SCAN_KIND_VOID;
    }
}

zr_long CharacterTable::CharacterKind(int c) const {
    if (Is(c, letter))
        return SCAN_KIND_LETTER;
    if (Is(c, digit))
        return SCAN_KIND_DIGIT;
    switch (c) {
    case ' ':
        return SCAN_KIND_BLANK;
    case '\n':
        return SCAN_KIND_END_OF_LINE;
    case 0:
        return SCAN_KIND_END;
    default:
        return c < ' ' ? SCAN_KIND_VOID : SCAN_KIND_PRINTABLE;
    }
}

int CharacterTable::EscapeValue(int c) {
    switch (c) {
    case 'a':
        return 7;
    case 'b':
        return 8;
    case 'f':
        return 12;
    case 'n':
        return 10;
    case 'r':
        return 13;
    case 't':
        return 9;
    case 'v':
        return 11;
    case '\'':
    case '"':
    case '\\':
        return c;
    default:
        return ' ';
    }
}

} // namespace zr::expressions
