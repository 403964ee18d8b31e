// What a calculator is behind its face: the expression reader, the last error's record, and the number of objects that share it.
#ifndef ZR_EXPRESSIONS_CALCULATOR_IMPL_H
#define ZR_EXPRESSIONS_CALCULATOR_IMPL_H

#include <zrclb/calc.hpp>

#include "expressions/expression.h"

class CZrCalculatorImpl {
public:
    // Contracts of CZrCalculator.
    bool Calculate(const char *text, double *result);
    bool CalculateStringExpression(const char *text, char *out, zr_long size);
    const CZrCalculatorError &GetLastError();

    long owners = 1;

private:
    struct StringOutput;
    bool AddPlace(char *place, char *close, StringOutput &output);

    zr::expressions::Expression m_expression;
    CalculatorErrorType m_error = CALCULATOR_OK;
    CZrCalculatorError m_last_error; // as it was last asked for
};

#endif
