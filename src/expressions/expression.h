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
    zr_long Row() const { return tokens_.Row(); }
    zr_long Column() const { return tokens_.Column(); }

private:
    // What is read next.
    enum class Step {
        Operand,
        Operator,
        Done
    };

    void Fetch() {
        if (!tokens_.Next())
            error_ = CALCULATOR_SYNTAX;
    }
    Step Fail(CalculatorErrorType error) {
        error_ = error;
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

    ExpressionTokens tokens_;
    WaitingStack stack_;
    bool evaluate_ = true;
    CalculatorErrorType error_ = CALCULATOR_OK;
    double value_ = 0; // of the operand at work
};

} // namespace zr::expressions

#endif
