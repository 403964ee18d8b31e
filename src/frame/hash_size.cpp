// Sizes of hash tables.
#include "frame/hash_size.h"

#include <cstdint>

namespace zr::frame {
namespace {

bool IsOddPrime(std::int64_t number) {
    if (number < 3 || number % 2 == 0)
        return false;
    for (std::int64_t divisor = 3; divisor * divisor <= number; divisor += 2) {
        if (number % divisor == 0)
            return false;
    }
    return true;
}

} // namespace

zr_long HashSize(zr_long size) {
    std::int64_t number = size < 3 ? 3 : std::int64_t{size} | 1;
    while (!IsOddPrime(number))
        number += 2;
    return static_cast<zr_long>(number);
}

} // namespace zr::frame
