// Entry of zrtool: loads the library, runs one command line.
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "dispatch.h"
#include "library/load.h"
#include "platform/standard_streams.h"

int main(int argc, char **argv) {
    zr::library::LibraryLoad(nullptr);
    zr::platform::MakeBinary(stdout); // converted files carry their own line ends
    const std::vector<std::string> words(argv + (argc > 0 ? 1 : 0), argv + argc);
    const int code = zrtool::Run(words, std::cout, std::cerr);
    zr::library::LibraryUnload();
    return code;
}
