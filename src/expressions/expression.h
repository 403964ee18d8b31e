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
    zr_long Row() const { return m_tokens.Row(); }
    zr_long Column() const { return m_tokens.Column(); }

private:
    // What is read next.
    enum class Step {
        Operand,
        Operator,
        Done
    };

    void Fetch() {
        if (!m_tokens.Next())
            m_error = CALCULATOR_SYNTAX;
    }
    Step Fail(CalculatorErrorType error) {
        m_error = error;
        return Step::Done;
    }

    Step ReadOperand();
    Step ReadWord();
    Step Take(double value);
    Step Enter(Waiting what);
    Step Enter(Word call);
    Step ReadOperator();
    Step ReadRight(Waiting what);
    void Apply(const WaitingPart &part);
    Step EndConditional();
    Step EndParenthesis();
    Step EndCall();
    Step EndThen();
    void EndElse();
    void Unwind();

    ExpressionTokens m_tokens;
    WaitingStack m_stack;
    bool m_evaluate = true;
    CalculatorErrorType m_error = CALCULATOR_OK;
    double m_value = 0; // of the operand at work
};

} // namespace zr::expressions

#endif
