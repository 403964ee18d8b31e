// A fresh folder for the files of a benchmark, removed at the end. TMPDIR says where.
#ifndef ZR_BENCH_TEMP_FOLDER_H
#define ZR_BENCH_TEMP_FOLDER_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

namespace bench {

class TempFolder {
public:
    TempFolder() : m_path(std::filesystem::temp_directory_path() / ("zrclb_bench_" + std::to_string(::getpid()))) {
        std::filesystem::create_directories(m_path);
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;

    std::string Path(const std::string &name) const { return (m_path / name).string(); }

    // The path of a file with this text.
    std::string File(const std::string &name, const std::string &text) const {
        std::ofstream(Path(name), std::ios::binary) << text;
        return Path(name);
    }

private:
    std::filesystem::path m_path;
};

} // namespace bench

#endif
