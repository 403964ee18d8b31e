// The arithmetic of the calculator.
#ifndef ZR_EXPRESSIONS_COMPUTING_H
#define ZR_EXPRESSIONS_COMPUTING_H

#include <zrclb/calc.h>

#include "expressions/calculator_keywords.h"

namespace zr::expressions {

// What fails gives 0 and sets `error`, which is untouched otherwise.
double Power(double base, double exponent, CalculatorErrorType &error);
double Quotient(double left, double right, CalculatorErrorType &error);

// Value of a function of x; for MIN and MAX it is x. A word that is no function is reported, and gives `otherwise`.
double FunctionValue(Word word, double x, double otherwise, CalculatorErrorType &error);

} // namespace zr::expressions

#endif
