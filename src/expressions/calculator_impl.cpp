// Computing one expression, and rounding it.
#include "expressions/calculator_impl.h"

#include <zrclb/numbers.h>

zr_long zr::expressions::rounding_digits = 0;

bool CZrCalculatorImpl::Calculate(const char *text, double *result) {
    double own_result = 0.0;
    double &out = result != nullptr ? *result : own_result;
    const CalculatorErrorType error = expression_.Compute(text, out);
    last_error = CZrCalculatorError(error, expression_.Row(), expression_.Column());
    const zr_long digits = zr::expressions::rounding_digits;
    if (digits != 0)
        out = pround(out, -digits);
    return error == CALCULATOR_OK;
}
