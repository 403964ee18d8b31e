// The tokens of an expression that the scanner reads.
#include "expressions/expression_tokens.h"

namespace zr::expressions {

namespace {

constexpr zr_long options = SCAN_UPPER | SCAN_COMPOSE_RELATIONS;
constexpr CharacterTable characters(options);

} // namespace

ExpressionScanner::ExpressionScanner() : m_scanner(TextSource{}, options, characters, calculator_keywords) {}

ScannedToken ExpressionScanner::Read(const char *text, zr_long before) {
    m_scanner.GetSource().next = text;
    m_scanner.Reset();
    zr_long kind = before;
    const bool good = m_scanner.NextToken(kind, m_token) == SCAN_ERROR_NONE;
    return {good, kind, kind == SCAN_KIND_KEYWORD ? static_cast<Word>(m_token.longValue) : Word::None,
            kind == SCAN_KIND_LONG ? static_cast<double>(m_token.longValue) : m_token.doubleValue,
            m_scanner.GetSource().next - 1}; // it has read one character ahead
}

} // namespace zr::expressions
