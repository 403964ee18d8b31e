// The tokens of an expression in memory.
#include "expressions/expression_tokens.h"

#include <cstdint>

namespace zr::expressions {

namespace {

constexpr zr_long options = SCAN_UPPER | SCAN_COMPOSE_RELATIONS;

constexpr CalculatorKeywords keywords;
static_assert(keywords.IsDistinct());
constexpr CharacterTable characters(options);

} // namespace

ExpressionTokens::ExpressionTokens() : scanner_(TextSource{}, options, characters, keywords) {}

void ExpressionTokens::Start(const char *text) {
    next_ = token_ = line_ = text != nullptr ? text : "";
    row_ = 0;
    kind_ = SCAN_KIND_VOID;
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

// A relation of one character or two; the same one twice counts once.
bool ExpressionTokens::ReadRelation() {
    const char first = *token_;
    const char second = token_[1];
    if (StartOf(second) != start_relation)
        return End(CharacterTable::SymbolKind(first), token_ + 1);
    zr_long kind = CharacterTable::SymbolKind(first);
    if (first != second && first != '=' && second != '=')
        kind = SCAN_KIND_HASH;
    else if (first != second)
        kind = first == '<' || second == '<' ? SCAN_KIND_LESS_EQUAL : SCAN_KIND_GREATER_EQUAL;
    return End(kind, token_ + 2);
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
