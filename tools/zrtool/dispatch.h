// Finds the verb that a command line asks for, runs it, and tells how it went.
#ifndef ZRTOOL_DISPATCH_H
#define ZRTOOL_DISPATCH_H

#include <ostream>
#include <string>
#include <vector>

namespace zrtool {

// Runs the command line `words`, without the program's name. The result is an ExitCode. Help goes to `out`, everything
// about faults to `err`. An output that fails is an InputOutput fault like any other. Nothing throws.
int Run(const std::vector<std::string> &words, std::ostream &out, std::ostream &err);

} // namespace zrtool

#endif
