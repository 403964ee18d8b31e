// Copying a folder of 10,000 small files: fio_CopyDirectory beside "cp -r" as a process of its own.
//
// Both copy the same tree, 100 folders of 100 files of 200 bytes, to a fresh folder each time; making and removing
// targets is not timed. The folder for it is that of temporary files: TMPDIR=/dev/shm keeps the disk out of it.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <system_error>

#include <benchmark/benchmark.h>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <zrclb/zrclb.h>

namespace {

namespace fs = std::filesystem;

constexpr int folder_count = 100;
constexpr int files_each = 100;

class Trees {
public:
    Trees() : m_path(fs::temp_directory_path() / ("zr_bench_" + std::to_string(std::random_device()()))) {
        for (int folder = 0; folder < folder_count; ++folder) {
            const fs::path path = Source() / ("part_" + std::to_string(folder));
            fs::create_directories(path);
            for (int file = 0; file < files_each; ++file)
                std::ofstream(path / (std::to_string(file) + ".dat")) << std::string(200, 'x');
        }
    }
    ~Trees() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }

    fs::path Source() const { return m_path / "source"; }
    fs::path FreshTarget() const {
        fs::remove_all(m_path / "target");
        fs::create_directory(m_path / "target");
        return m_path / "target";
    }
    bool IsWhole() const {
        std::uintmax_t files = 0;
        for (const fs::directory_entry &entry : fs::recursive_directory_iterator(m_path / "target"))
            files += entry.is_regular_file() && entry.file_size() == 200 ? 1 : 0;
        return files == folder_count * files_each;
    }

private:
    fs::path m_path;
};

const Trees &TheTrees() {
    static const Trees trees;
    return trees;
}

template <class Copy>
void CopyTrees(benchmark::State &state, Copy copy) {
    const Trees &trees = TheTrees();
    for (auto _ : state) {
        state.PauseTiming();
        const fs::path target = trees.FreshTarget();
        state.ResumeTiming();
        const bool copied = copy(target, trees.Source());
        state.PauseTiming();
        if (!copied || !trees.IsWhole())
            state.SkipWithError("not all files were copied");
        state.ResumeTiming();
    }
}

void CopyFioCopyDirectory(benchmark::State &state) {
    CopyTrees(state, [](const fs::path &to, const fs::path &from) {
        return fio_CopyDirectory(to.c_str(), from.c_str()) == 1;
    });
}

void CopyCpProcess(benchmark::State &state) {
    CopyTrees(state, [](const fs::path &to, const fs::path &from) {
        std::string program = "cp", recursive = "-r", source = from.string() + "/.", target = to.string();
        char *arguments[] = {program.data(), recursive.data(), source.data(), target.data(), nullptr};
        pid_t process = 0;
        int status = -1;
        return posix_spawnp(&process, "cp", nullptr, nullptr, arguments, environ) == 0 &&
               waitpid(process, &status, 0) == process && status == 0;
    });
}

BENCHMARK(CopyFioCopyDirectory)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(CopyCpProcess)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
