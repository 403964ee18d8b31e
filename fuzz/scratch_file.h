// Files on the disk for targets that read or write them.
#ifndef FUZZ_SCRATCH_FILE_H
#define FUZZ_SCRATCH_FILE_H

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "byte_input.h"
#include "platform/temp_folder.h"

namespace fuzz {

// A file of a folder that goes with the process.
inline std::string PathOf(const char *name) {
    static const TempFolder folder;
    return folder.Path(name);
}

inline void Store(const std::string &path, const std::string &bytes) {
    std::FILE *file = std::fopen(path.c_str(), "wb");
    Require(file != nullptr, "no file");
    std::fwrite(bytes.data(), 1, bytes.size(), file);
    Require(std::fclose(file) == 0, "the file is not whole");
}

inline std::string Load(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace fuzz

#endif
