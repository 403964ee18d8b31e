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

ExpressionTokens::ExpressionTokens() : m_scanner(TextSource{}, options, characters, keywords) {}

void ExpressionTokens::Start(const char *text) {
    m_next = m_token = m_line = text != nullptr ? text : "";
    m_row = 0;
    m_kind = SCAN_KIND_VOID;
}

void ExpressionTokens::SkipBlanks() {
    do {
        if (*m_next++ == '\n') {
            ++m_row;
            m_line = m_next;
        }
    } while (StartOf(*m_next) == start_blank);
}

// A name that is too long for a word is no word.
bool ExpressionTokens::ReadName() {
    constexpr char to_upper = '_'; // as a mask; it leaves itself alone, and makes no digit a letter of a word
    const char *p = m_token;
    std::uint32_t packed = 0;
    for (int start = start_letter; start == start_letter || start == start_digit; start = StartOf(*p))
        packed = packed << 8 | static_cast<unsigned char>(*p++ & to_upper);
    m_keyword = p - m_token <= std::ptrdiff_t{CalculatorKeywords::longest} ? keywords.Find(packed) : Word::None;
    return m_keyword != Word::None ? End(SCAN_KIND_KEYWORD, p) : ReadByScanner();
}

// A relation of one character or two; the same one twice counts once.
bool ExpressionTokens::ReadRelation() {
    const char first = *m_token;
    const char second = m_token[1];
    if (StartOf(second) != start_relation)
        return End(CharacterTable::SymbolKind(first), m_token + 1);
    zr_long kind = CharacterTable::SymbolKind(first);
    if (first != second && first != '=' && second != '=')
        kind = SCAN_KIND_HASH;
    else if (first != second)
        kind = first == '<' || second == '<' ? SCAN_KIND_LESS_EQUAL : SCAN_KIND_GREATER_EQUAL;
    return End(kind, m_token + 2);
}

bool ExpressionTokens::ReadByScanner() {
    m_scanner.GetSource().next = m_token;
    m_scanner.Reset();
    const bool good = m_scanner.NextToken(m_kind, m_scanned) == SCAN_ERROR_NONE;
    m_next = m_scanner.GetSource().next - 1; // it has read one character ahead
    m_keyword = m_kind == SCAN_KIND_KEYWORD ? static_cast<Word>(m_scanned.longValue) : Word::None;
    m_number = m_kind == SCAN_KIND_LONG ? static_cast<double>(m_scanned.longValue) : m_scanned.doubleValue;
    return good;
}

} // namespace zr::expressions
