// Reads an expression and computes while reading, on a stack of its own: nesting has no limit but memory.
#ifndef ZR_EXPRESSIONS_EXPRESSION_H
#define ZR_EXPRESSIONS_EXPRESSION_H

#include <zrclb/calc.h>

#include "expressions/expression_tokens.h"
#include "expressions/waiting_stack.h"

namespace zr::expressions {

class Expression {
public:
    // Computes `text`. `result` goes in as the caller's value, which stands if the computation fails before the first value.
    CalculatorErrorType Compute(const char *text, double &result);

    // Place of the token at which reading stopped.
    zr_long Row() const { return m_row; }
    zr_long Column() const { return m_column; }

private:
    ExpressionScanner m_scanner;
    WaitingStack m_stack;
    zr_long m_row = 0;
    zr_long m_column = 0;
};

} // namespace zr::expressions

#endif
