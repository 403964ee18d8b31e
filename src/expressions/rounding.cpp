// The decimals to which computed values are rounded: given, or read from the settings.
#include "expressions/rounding.h"

#include <zrclb/calc.h>
#include <zrclb/ini.h>

zr_long zr::expressions::rounding_digits = 0;

namespace {

constexpr zr_long as_in_settings = -1;

} // namespace

extern "C" zr_long calc_init(zr_long digits) noexcept {
    zr_long &in_force = zr::expressions::rounding_digits;
    if (digits != as_in_settings)
        in_force = digits;
    else
        ini_read_long(nullptr, "Calculator", "Nachkommastellen", &in_force); // keeps them if it finds none
    return in_force;
}
