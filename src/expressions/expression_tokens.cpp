// The tokens of an expression in memory.
#include "expressions/expression_tokens.h"

#include <cfloat>
#include <cstdint>

namespace zr::expressions {

namespace {

constexpr zr_long options = SCAN_UPPER | SCAN_COMPOSE_RELATIONS;

constexpr CalculatorKeywords keywords;
static_assert(keywords.IsDistinct());
constexpr CharacterTable characters(options);

// What a byte begins. A symbol that is a token by itself has its kind, the others stand for more than one character.
enum Start : std::uint8_t {
    start_scanner = 0, // nothing that is read here
    start_blank = 101,
    start_digit,
    start_letter,
    start_relation
};

constexpr int SymbolKind(int symbol) {
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
            if (SymbolKind(c) != start_scanner)
                Fill(c, c, SymbolKind(c));
        Fill(0, 0, SCAN_KIND_END);
        Fill(0xFF, 0xFF, SCAN_KIND_END);
    }

    constexpr void Fill(int first, int last, int start) {
        for (int c = first; c <= last; ++c)
            starts[c] = static_cast<std::uint8_t>(start);
    }
};

constexpr StartTable table;

int StartOf(char c) {
    return table.starts[static_cast<unsigned char>(c)];
}

unsigned Digit(char c) {
    return static_cast<unsigned char>(c) - unsigned{'0'};
}

constexpr double powers[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
constexpr std::ptrdiff_t most_digits = std::size(powers) - 1; // a double holds them all

} // namespace

ExpressionTokens::ExpressionTokens() : scanner_(TextSource{}, options, characters, keywords) {}

void ExpressionTokens::Start(const char *text) {
    next_ = token_ = line_ = text != nullptr ? text : "";
    row_ = 0;
    kind_ = SCAN_KIND_VOID;
}

bool ExpressionTokens::Next() {
    int start = StartOf(*next_);
    if (start == start_blank) {
        SkipBlanks();
        start = StartOf(*next_);
    }
    token_ = next_;
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
        return End(SCAN_KIND_END, token_);
    default:
        return End(start, token_ + 1);
    }
}

bool ExpressionTokens::End(zr_long kind, const char *next) {
    kind_ = kind;
    next_ = next;
    return true;
}

void ExpressionTokens::SkipBlanks() {
    do {
        if (*next_++ == '\n') {
            ++row_;
            line_ = next_;
        }
    } while (StartOf(*next_) == start_blank);
}

// A name that is too long for a word is no word.
bool ExpressionTokens::ReadName() {
    constexpr char to_upper = '_'; // as a mask; it leaves itself alone, and makes no digit a letter of a word
    const char *p = token_;
    std::uint32_t packed = 0;
    for (int start = start_letter; start == start_letter || start == start_digit; start = StartOf(*p))
        packed = packed << 8 | static_cast<unsigned char>(*p++ & to_upper);
    keyword_ = p - token_ <= std::ptrdiff_t{CalculatorKeywords::longest} ? keywords.Find(packed) : Word::None;
    return keyword_ != Word::None ? End(SCAN_KIND_KEYWORD, p) : ReadByScanner();
}

// One division of exact doubles is rounded once, hence right, where the machine computes in doubles.
bool ExpressionTokens::ReadNumber() {
    const char *p = token_;
    std::uint64_t digits = 0;
    for (; Digit(*p) <= 9; ++p)
        digits = digits * 10 + Digit(*p);
    std::ptrdiff_t count = p - token_;
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
    number_ = static_cast<double>(static_cast<std::int64_t>(digits));
    if (decimals != 0)
        number_ /= powers[decimals];
    return End(SCAN_KIND_DOUBLE, p);
}

// Relations of two characters are composed by the scanner.
bool ExpressionTokens::ReadRelation() {
    if (StartOf(token_[1]) == start_relation)
        return ReadByScanner();
    return End(CharacterTable::SymbolKind(*token_), token_ + 1);
}

bool ExpressionTokens::ReadByScanner() {
    scanner_.GetSource().next = token_;
    scanner_.Reset();
    const bool good = scanner_.NextToken(kind_, scanned_) == SCAN_ERROR_NONE;
    next_ = scanner_.GetSource().next - 1; // it has read one character ahead
    keyword_ = kind_ == SCAN_KIND_KEYWORD ? static_cast<Word>(scanned_.longValue) : Word::None;
    number_ = kind_ == SCAN_KIND_LONG ? static_cast<double>(scanned_.longValue) : scanned_.doubleValue;
    return good;
}

} // namespace zr::expressions
