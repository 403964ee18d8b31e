// Sizes of hash tables.
#ifndef ZR_FRAME_HASH_SIZE_H
#define ZR_FRAME_HASH_SIZE_H

#include <zrclb/types.h>

namespace zr::frame {

// The smallest odd prime that is not below `size`. There is one for every size: the greatest zr_long is a prime.
zr_long HashSize(zr_long size);

} // namespace zr::frame

#endif
