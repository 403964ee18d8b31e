// The verbs of `zrtool env`, one source file each.
#ifndef ZRTOOL_VERBS_H
#define ZRTOOL_VERBS_H

#include <vector>

#include "arguments.h"
#include "session.h"

namespace zrtool {

struct Verb {
    const char *name;
    const char *summary;                                            // one line for the list of verbs
    const char *usage;                                              // the command line, and what its words mean
    std::vector<OptionRule> options;                                // besides --utf8 and --help, which every verb has
    int (*run)(const Session &session, const Arguments &arguments); // an ExitCode; may throw a Failure
};

const Verb &TreeVerb();
const Verb &GetVerb();
const Verb &SetVerb();
const Verb &CheckVerb();
const Verb &ConvertVerb();

} // namespace zrtool

#endif
