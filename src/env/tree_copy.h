// The quick way of copying all leaves of one environment into another.
#ifndef ZR_ENV_TREE_COPY_H
#define ZR_ENV_TREE_COPY_H

#include <zrclb/env.hpp>

namespace Zr {

// Copies all leaves of rSource into rTarget, with the result that a put of each to its path has, one after the other;
// but walks the two trees side by side instead of looking paths up. True if done. False, with nothing done, where the
// two ways might differ: a target that has sections, defaults or a root; a source without sections, with a root or with
// a negative id; sections of one name; names that a path does not lead to; blocks without leaves; leaves without value;
// nodes whose class or order among namesakes is another than the library reads them with; paths too long for a walk.
// std::bad_alloc on no memory: the leaves before that have been copied. Threads: under the lock.
bool CopyPlainTree(CZrEnv &rTarget, const CZrEnv &rSource);

} // namespace Zr

#endif
