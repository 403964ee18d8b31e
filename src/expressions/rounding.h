// The decimals to which computed values are rounded.
#ifndef ZR_EXPRESSIONS_ROUNDING_H
#define ZR_EXPRESSIONS_ROUNDING_H

#include <zrclb/types.h>

namespace zr::expressions {

// 0 for no rounding. Of the process, without a guard.
extern zr_long rounding_digits;

} // namespace zr::expressions

#endif
