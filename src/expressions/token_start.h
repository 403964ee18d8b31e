// What the bytes of an expression begin.
#ifndef ZR_EXPRESSIONS_TOKEN_START_H
#define ZR_EXPRESSIONS_TOKEN_START_H

#include <cstdint>

#include <zrclb/scan.h>

namespace zr::expressions {

// What a byte begins. A symbol that is a token by itself has its kind, the others stand for more than one character.
enum TokenStart : std::uint8_t {
    start_scanner = 0, // nothing that is read here
    start_blank = 101,
    start_digit,
    start_letter,
    start_relation
};

constexpr int KindOfSymbol(int symbol) {
    switch (symbol) {
    case '(':
        return SCAN_KIND_LEFT_PARENTHESIS;
    case ')':
        return SCAN_KIND_RIGHT_PARENTHESIS;
    case '+':
        return SCAN_KIND_PLUS;
    case '-':
        return SCAN_KIND_MINUS;
    case '*':
        return SCAN_KIND_STAR;
    case '/':
        return SCAN_KIND_SLASH;
    case '^':
        return SCAN_KIND_POWER;
    case ',':
        return SCAN_KIND_COMMA;
    case '?':
        return SCAN_KIND_QUESTION;
    case ':':
        return SCAN_KIND_COLON;
    case '#':
        return SCAN_KIND_HASH;
    default:
        return start_scanner;
    }
}

constexpr int KindOfRelation(char relation) {
    return relation == '<' ? SCAN_KIND_LESS : relation == '>' ? SCAN_KIND_GREATER : SCAN_KIND_EQUAL;
}

struct StartTable {
    std::uint8_t starts[256] = {};

    constexpr StartTable() {
        Fill(1, ' ', start_blank);
        Fill('0', '9', start_digit);
        Fill('a', 'z', start_letter);
        Fill('A', 'Z', start_letter);
        Fill('_', '_', start_letter);
        Fill('<', '>', start_relation); // "=" lies between them
        for (int c = '!'; c <= '~'; ++c)
            if (KindOfSymbol(c) != start_scanner)
                Fill(c, c, KindOfSymbol(c));
        Fill(0, 0, SCAN_KIND_END);
        Fill(0xFF, 0xFF, SCAN_KIND_END);
    }

    constexpr void Fill(int first, int last, int start) {
        for (int c = first; c <= last; ++c)
            starts[c] = static_cast<std::uint8_t>(start);
    }
};

inline constexpr StartTable token_starts;

inline int StartOf(char c) {
    return token_starts.starts[static_cast<unsigned char>(c)];
}

} // namespace zr::expressions

#endif
