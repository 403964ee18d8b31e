// Listing a folder of 100,000 files: fio_listdir beside std::filesystem::directory_iterator that reads the same facts of each
// entry, name, kind, size, time of the last write and permissions, into an array of records.
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include <benchmark/benchmark.h>

#include <zrclb/zrclb.hpp>

namespace {

namespace fs = std::filesystem;

constexpr int file_count = 100000;

class FullFolder {
public:
    FullFolder() : m_path(fs::temp_directory_path() / ("zr_bench_" + std::to_string(std::random_device()()))) {
        fs::create_directory(m_path);
        for (int i = 0; i < file_count; ++i)
            std::ofstream(m_path / ("part_" + std::to_string(i * 7919 % file_count) + ".dat")).put('x');
    }
    ~FullFolder() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }

    const fs::path &Path() const { return m_path; }

private:
    fs::path m_path;
};

const fs::path &Folder() {
    static const FullFolder folder;
    return folder.Path();
}

void Check(benchmark::State &state, std::uint64_t files, std::uint64_t bytes) {
    if (files != file_count || bytes != file_count)
        state.SkipWithError("not all files were listed");
}

void ListFioListdir(benchmark::State &state) {
    const std::string folder = Folder().string();
    for (auto _ : state) {
        fio_dirent *entries = nullptr;
        int count = 0;
        fio_listdir(folder.c_str(), "*.*", FIO_IS_FILE, &entries, &count);
        std::uint64_t bytes = 0;
        for (int i = 0; i < count; ++i)
            bytes += entries[i].size;
        heap_free(entries);
        Check(state, static_cast<std::uint64_t>(count), bytes);
    }
}

struct Facts {
    std::string name;
    bool folder;
    std::uintmax_t size;
    fs::file_time_type modified;
    fs::perms permissions;
};

void ListDirectoryIterator(benchmark::State &state) {
    for (auto _ : state) {
        std::vector<Facts> entries;
        for (const fs::directory_entry &entry : fs::directory_iterator(Folder()))
            entries.push_back({entry.path().filename().string(), entry.is_directory(), entry.file_size(),
                               entry.last_write_time(), entry.status().permissions()});
        std::uint64_t bytes = 0;
        for (const Facts &facts : entries)
            bytes += facts.size;
        Check(state, entries.size(), bytes);
    }
}

BENCHMARK(ListFioListdir)->Unit(benchmark::kMillisecond);
BENCHMARK(ListDirectoryIterator)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
