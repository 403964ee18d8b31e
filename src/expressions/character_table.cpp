// What a scanner's characters are: their normal form, their classes, their kinds.
#include "expressions/character_table.h"

namespace zr::expressions {

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
