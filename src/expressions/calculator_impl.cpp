// Computing one expression, and rounding it.
#include "expressions/calculator_impl.h"

#include <algorithm>
#include <limits>

#include <zrclb/numbers.h>

zr_long zr::expressions::rounding_digits = 0;

bool CZrCalculatorImpl::Calculate(const char *text, double *result) {
    double own_result = 0.0;
    double &out = result != nullptr ? *result : own_result;
    error_ = expression_.Compute(text, out);
    const zr_long digits = zr::expressions::rounding_digits;
    if (digits != 0)
        out = pround(out, -std::max(digits, -std::numeric_limits<zr_long>::max()));
    return error_ == CALCULATOR_OK;
}

const CZrCalculatorError &CZrCalculatorImpl::GetLastError() {
    last_error_ = CZrCalculatorError(error_, expression_.Row(), expression_.Column());
    return last_error_;
}
