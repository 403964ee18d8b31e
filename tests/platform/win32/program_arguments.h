// The arguments that this very program was started with, before main is reached.
#ifndef TESTS_PLATFORM_WIN32_PROGRAM_ARGUMENTS_H
#define TESTS_PLATFORM_WIN32_PROGRAM_ARGUMENTS_H

#include <cstdlib>
#include <string>
#include <vector>

inline std::vector<std::string> ProgramArguments() {
    return {__argv, __argv + __argc};
}

#endif
