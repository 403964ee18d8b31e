// Finds what is wrong in the structure of a tree that should be sound whatever was done to it before: links, parents, kinds,
// counts, and the indexes of names against the sequences.
//
// Nothing is followed before it has been found to lead where it should, as far as a program can tell: a ring is found, a
// pointer to memory that is gone is not. The depth of the tree needs no memory; a block with an index needs some bytes for
// each of its children.
#ifndef ZR_ENV_TREE_CHECK_H
#define ZR_ENV_TREE_CHECK_H

#include <string>

#include <zrclb/env.hpp>

namespace Zr {

struct CZrEnvTreeFault {
    const CZrEnvElement *pWhere = nullptr; // the block that the fault is in; null when it is in the environment itself
    std::string what;                      // in words; empty when all is sound

    explicit operator bool() const { return !what.empty(); }
};

class CZrEnvTreeCheck {
public:
    // An index that is not there yet is none to check, unless it is built first, as a look-up would. Of a name index that
    // has an entry left behind by a rename only what such an index still promises is asked for.
    enum class Indexes {
        AsTheyAre,
        Build
    };

    // The first fault of one block, of a block and all below it, of an environment with all its sections (a
    // subenvironment: of its place in the environment that it is a view of, and of what is below its root). Copies are
    // views and are not looked into. A count of sections that DeleteSection of a foreign section has made wrong is told, too.
    // std::bad_alloc on no memory.
    static CZrEnvTreeFault OfBlock(const CZrEnvBlock &block, Indexes indexes);
    static CZrEnvTreeFault OfTree(const CZrEnvBlock &root, Indexes indexes);
    static CZrEnvTreeFault OfEnvironment(const CZrEnv &env, Indexes indexes);

private:
    class Work;
};

} // namespace Zr

#endif
