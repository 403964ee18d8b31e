// What a scanner's characters are: their normal form, what they begin, their kinds.
#include "expressions/character_table.h"

namespace zr::expressions {

namespace {

struct SymbolKindOf {
    char character;
    std::uint8_t kind;
};

constexpr SymbolKindOf kinds[] = {
    {'=', SCAN_KIND_EQUAL},
    {'#', SCAN_KIND_HASH},
    {',', SCAN_KIND_COMMA},
    {';', SCAN_KIND_SEMICOLON},
    {':', SCAN_KIND_COLON},
    {'+', SCAN_KIND_PLUS},
    {'-', SCAN_KIND_MINUS},
    {'*', SCAN_KIND_STAR},
    {'/', SCAN_KIND_SLASH},
    {'^', SCAN_KIND_POWER},
    {'<', SCAN_KIND_LESS},
    {'>', SCAN_KIND_GREATER},
    {'(', SCAN_KIND_LEFT_PARENTHESIS},
    {')', SCAN_KIND_RIGHT_PARENTHESIS},
    {'{', SCAN_KIND_LEFT_BRACE},
    {'}', SCAN_KIND_RIGHT_BRACE},
    {'[', SCAN_KIND_LEFT_BRACKET},
    {']', SCAN_KIND_RIGHT_BRACKET},
    {'$', SCAN_KIND_DOLLAR},
    {'@', SCAN_KIND_AT},
    {'%', SCAN_KIND_PERCENT},
    {'&', SCAN_KIND_AMPERSAND},
    {'?', SCAN_KIND_QUESTION},
    {'!', SCAN_KIND_EXCLAMATION},
    {'|', SCAN_KIND_BAR},
    {'~', SCAN_KIND_TILDE},
    {'"', SCAN_KIND_QUOTE},
    {'\n', SCAN_KIND_END_OF_LINE},
    {0, SCAN_KIND_END},
};

constexpr std::array<std::uint8_t, 256> KindsByCharacter() {
    std::array<std::uint8_t, 256> table = {};
    for (const SymbolKindOf &symbol : kinds)
        table[static_cast<unsigned char>(symbol.character)] = symbol.kind;
    return table;
}

} // namespace

constinit const std::array<std::uint8_t, 256> CharacterTable::s_symbolKinds = KindsByCharacter();

zr_long CharacterTable::CharacterKind(Character c) {
    if (c.IsDigit())
        return SCAN_KIND_DIGIT;
    switch (c.Value()) {
    case ' ':
        return SCAN_KIND_BLANK;
    case '\n':
        return SCAN_KIND_END_OF_LINE;
    case 0:
        return SCAN_KIND_END;
    case '_': // parts of names that are no letters
    case '\'':
        return SCAN_KIND_PRINTABLE;
    default:
        break;
    }
    if (c.GetStart() == Start::Name)
        return SCAN_KIND_LETTER;
    return c.Value() < ' ' ? SCAN_KIND_VOID : SCAN_KIND_PRINTABLE;
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
