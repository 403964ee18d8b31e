// Any text as an expression: value, error and place are those of the plain recursive reference, on a calculator that is used again
// and again and through the plain function.
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <zrclb/zrclb.hpp>

#include "expressions/reference_calculator.h"

namespace {

constexpr std::size_t longest = 4096; // the reference's stack holds as many levels
constexpr double callers_value = 77.0;

void Check(bool holds) {
    if (!holds)
        std::abort();
}

bool Same(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (std::isnan(a) && std::isnan(b));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size > longest)
        return 0;
    const std::unique_ptr<char[]> text = std::make_unique<char[]>(size + 1);
    if (size > 0)
        std::memcpy(text.get(), data, size);

    zr::test::ReferenceCalculator reference(text.get());
    double expected = callers_value;
    const bool good = reference.Calculate(expected);

    static CZrCalculator calculator;
    double result = callers_value;
    Check(calculator.Calculate(text.get(), &result) == good && Same(result, expected));
    const CZrCalculatorError &error = calculator.GetLastError();
    Check(error.GetErrorType() == reference.error && error.GetErrorRow() == reference.Row() &&
          error.GetErrorColumn() == reference.Column());

    double plain_result = callers_value;
    char ok = 7;
    calc_expression(text.get(), &plain_result, &ok);
    Check(ok == (good ? 1 : 0) && Same(plain_result, expected));
    return 0;
}
