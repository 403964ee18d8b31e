// The arithmetic of the calculator.
#ifndef ZR_EXPRESSIONS_COMPUTING_H
#define ZR_EXPRESSIONS_COMPUTING_H

#include <zrclb/calc.h>

#include "expressions/calculator_keywords.h"

namespace zr::expressions {

struct Computed {
    double value; // 0 if it failed
    CalculatorErrorType error = CALCULATOR_OK;
};

Computed Power(double base, double exponent);

inline Computed Quotient(double left, double right) {
    return right != 0 ? Computed{left / right} : Computed{0.0, CALCULATOR_DIVISION};
}

// Value of a function of x; for MIN and MAX it is x. A word that is no function is reported, and gives `otherwise`.
Computed FunctionValue(Word word, double x, double otherwise);

} // namespace zr::expressions

#endif
