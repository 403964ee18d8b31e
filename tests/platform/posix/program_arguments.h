// The arguments that this very program was started with, before main is reached.
#ifndef TESTS_PLATFORM_POSIX_PROGRAM_ARGUMENTS_H
#define TESTS_PLATFORM_POSIX_PROGRAM_ARGUMENTS_H

#include <fstream>
#include <string>
#include <vector>

inline std::vector<std::string> ProgramArguments() {
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    std::vector<std::string> arguments;
    std::string argument;
    while (std::getline(file, argument, '\0'))
        arguments.push_back(argument);
    return arguments;
}

#endif
