// Computing one expression, and rounding it.
#include "expressions/calculator_impl.h"

#include <algorithm>
#include <limits>

#include <zrclb/numbers.h>

#include "expressions/rounding.h"

bool CZrCalculatorImpl::Calculate(const char *text, double *result) {
    double own_result = 0.0;
    double &out = result != nullptr ? *result : own_result;
    m_error = m_expression.Compute(text, out);
    const zr_long digits = zr::expressions::rounding_digits;
    if (digits != 0)
        out = pround(out, -std::max(digits, -std::numeric_limits<zr_long>::max()));
    return m_error == CALCULATOR_OK;
}

const CZrCalculatorError &CZrCalculatorImpl::GetLastError() {
    m_last_error = CZrCalculatorError(m_error, m_expression.Row(), m_expression.Column());
    return m_last_error;
}
