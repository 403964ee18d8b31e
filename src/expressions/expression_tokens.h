// The tokens of an expression in memory.
//
// What ordinary expressions are made of is read here at once: blanks, short names, short numbers, symbols. Everything else, and
// all that is wrong, is left to the scanner, which starts anew at the token in question.
#ifndef ZR_EXPRESSIONS_EXPRESSION_TOKENS_H
#define ZR_EXPRESSIONS_EXPRESSION_TOKENS_H

#include <cfloat>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include <zrclb/scan.h>

#include "expressions/calculator_keywords.h"
#include "expressions/scanner_core.h"
#include "expressions/token_start.h"

namespace zr::expressions {

// A text in memory. Its bytes are signed, so that FF ends it too. Nothing is read behind the end.
struct TextSource {
    const char *next = "";

    int Next() { return static_cast<signed char>(*next++); }
    static bool HasUser() { return false; }
    static zr_long User() { return 0; }
    void Follow(const TextSource &copy) { next = copy.next; }
};

// Digits that a double holds, and the powers of ten that go with them.
inline constexpr double powers_of_ten[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                           1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
inline constexpr std::ptrdiff_t most_digits = std::size(powers_of_ten) - 1;

// What the scanner finds.
struct ScannedToken {
    bool good; // else the kind is that of the token before, or the token's own
    zr_long kind;
    Word keyword;
    double number;
    const char *end; // behind it
};

// The scanner, for tokens of any kind.
class ExpressionScanner {
public:
    ExpressionScanner();

    // Reads the token that begins at `text`, behind one of the kind `before`.
    ScannedToken Read(const char *text, zr_long before);

private:
    ScannerCore<TextSource, CalculatorKeywords> m_scanner;
    ZrScanToken m_token;
};

// Small, and inline in all its parts, so that it can live in registers while an expression is read.
class ExpressionTokens {
public:
    // `text` and `scanner` are borrowed; a null text is an empty one. There is no token yet.
    ExpressionTokens(const char *text, ExpressionScanner &scanner)
        : m_scanner(scanner), m_next(text != nullptr ? text : ""), m_token(m_next), m_line(m_next) {}

    // Reads the next token. False if the scanner finds fault with it; its kind is that of the token before then, or its own. Behind
    // a character literal, which no expression has, rows and columns no longer count: a line feed may stand in it.
    bool Next();

    // Kind of the token, SCAN_KIND_...; a number of either kind may be called a double.
    zr_long Kind() const { return m_kind; }

    // Value of a number.
    double Number() const { return m_number; }

    // The word, for a keyword.
    Word Keyword() const { return m_keyword; }

    // Place of the token, from 0.
    zr_long Row() const { return m_row; }
    zr_long Column() const { return static_cast<zr_long>(m_token - m_line); }

private:
    void SkipBlanks();
    bool ReadName();
    bool ReadNumber();
    bool ReadRelation();
    bool ReadByScanner();
    static unsigned Digit(char c) { return static_cast<unsigned char>(c) - unsigned{'0'}; }
    bool End(zr_long kind, const char *next);

    ExpressionScanner &m_scanner;
    const char *m_next;  // behind the token
    const char *m_token; // where the token begins
    const char *m_line;  // where its line begins
    zr_long m_row = 0;
    zr_long m_kind = SCAN_KIND_VOID;
    Word m_keyword = Word::None;
    double m_number = 0;
};

inline bool ExpressionTokens::End(zr_long kind, const char *next) {
    m_kind = kind;
    m_next = next;
    return true;
}

inline bool ExpressionTokens::Next() {
    int start = StartOf(*m_next);
    if (start == start_blank) {
        SkipBlanks();
        start = StartOf(*m_next);
    }
    m_token = m_next;
    switch (start) {
    case start_digit:
        return ReadNumber();
    case start_letter:
        return ReadName();
    case start_relation:
        return ReadRelation();
    case start_scanner:
        return ReadByScanner();
    case SCAN_KIND_END: // stays the next one
        return End(SCAN_KIND_END, m_token);
    default:
        return End(start, m_token + 1);
    }
}

// One division of exact doubles is rounded once, hence right, where the machine computes in doubles.
inline bool ExpressionTokens::ReadNumber() {
    const char *p = m_token;
    std::uint64_t digits = 0;
    for (; Digit(*p) <= 9; ++p)
        digits = digits * 10 + Digit(*p);
    std::ptrdiff_t count = p - m_token;
    std::ptrdiff_t decimals = 0;
    if (*p == '.') {
        const char *const point = p++;
        for (; Digit(*p) <= 9; ++p)
            digits = digits * 10 + Digit(*p);
        decimals = p - point - 1;
        count += decimals;
    }
    if (count > most_digits || *p == 'e' || *p == 'E' || (decimals != 0 && FLT_EVAL_METHOD != 0))
        return ReadByScanner();
    m_number = static_cast<double>(static_cast<std::int64_t>(digits));
    if (decimals != 0)
        m_number /= powers_of_ten[decimals];
    return End(SCAN_KIND_DOUBLE, p);
}

inline void ExpressionTokens::SkipBlanks() {
    do {
        if (*m_next++ == '\n') {
            ++m_row;
            m_line = m_next;
        }
    } while (StartOf(*m_next) == start_blank);
}

// A name that is too long for a word is no word.
inline bool ExpressionTokens::ReadName() {
    constexpr char to_upper = '_'; // as a mask; it leaves itself alone, and makes no digit a letter of a word
    const char *p = m_token;
    std::uint32_t packed = 0;
    for (int start = start_letter; start == start_letter || start == start_digit; start = StartOf(*p))
        packed = packed << 8 | static_cast<unsigned char>(*p++ & to_upper);
    m_keyword =
        p - m_token <= std::ptrdiff_t{CalculatorKeywords::longest} ? calculator_keywords.Find(packed) : Word::None;
    return m_keyword != Word::None ? End(SCAN_KIND_KEYWORD, p) : ReadByScanner();
}

// A relation of one character or two; the same one twice counts once.
inline bool ExpressionTokens::ReadRelation() {
    const char first = *m_token;
    const char second = m_token[1];
    if (StartOf(second) != start_relation)
        return End(KindOfRelation(first), m_token + 1);
    zr_long kind = KindOfRelation(first);
    if (first != second && first != '=' && second != '=')
        kind = SCAN_KIND_HASH;
    else if (first != second)
        kind = first == '<' || second == '<' ? SCAN_KIND_LESS_EQUAL : SCAN_KIND_GREATER_EQUAL;
    return End(kind, m_token + 2);
}

inline bool ExpressionTokens::ReadByScanner() {
    const ScannedToken scanned = m_scanner.Read(m_token, m_kind);
    m_keyword = scanned.keyword;
    m_number = scanned.number;
    End(scanned.kind, scanned.end);
    return scanned.good;
}

} // namespace zr::expressions

#endif
