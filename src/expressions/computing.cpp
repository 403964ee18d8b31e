// The arithmetic of the calculator.
#include "expressions/computing.h"

#include <cmath>

#include <zrclb/report.h>

namespace zr::expressions {

namespace {

constexpr double pi = 3.141592653589793;
constexpr double half_turn = 180.0;

double ToRadians(double degrees) {
    return degrees * pi / half_turn;
}

double ToDegrees(double radians) {
    return radians / pi * half_turn;
}

bool IsWhole(double value) {
    constexpr double lowest = -2147483648.0;
    constexpr double highest = 2147483647.0;
    return value >= lowest && value <= highest && value == std::trunc(value);
}

Computed Root(double value) {
    return value >= 0 ? Computed{std::sqrt(value)} : Computed{0.0, CALCULATOR_NEGATIVE_ROOT};
}

} // namespace

Computed Power(double base, double exponent) {
    if (base < 0 && !IsWhole(exponent))
        return {0.0, CALCULATOR_NEGATIVE_POWER};
    const double power = std::pow(base, exponent);
    return std::isfinite(power) ? Computed{power} : Computed{0.0, CALCULATOR_TOO_LARGE};
}

Computed FunctionValue(Word word, double x, double otherwise) {
    switch (word) {
    case Word::Sin:
        return {std::sin(ToRadians(x))};
    case Word::Cos:
        return {std::cos(ToRadians(x))};
    case Word::Tan:
        return {std::tan(ToRadians(x))};
    case Word::Cot:
        return {1 / std::tan(ToRadians(x))};
    case Word::Asn:
        return {ToDegrees(std::asin(x))};
    case Word::Acs:
        return {ToDegrees(std::acos(x))};
    case Word::Atn:
        return {ToDegrees(std::atan(x))};
    case Word::Act:
        return {ToDegrees(std::atan(1 / x))};
    case Word::Abs:
        return {std::fabs(x)};
    case Word::Sqrt:
        return Root(x);
    case Word::Exp:
        return {std::exp(x)};
    case Word::Lgt:
        return {std::log(x)};
    case Word::Log:
        return {std::log10(x)};
    case Word::Min:
    case Word::Max:
        return {x};
    default:
        zr_switch_error(static_cast<int>(word), "Calc", __LINE__);
        return {otherwise};
    }
}

} // namespace zr::expressions
