// Loading and unloading the library, beside a library with nothing in it. What comes on top is the search for the settings file,
// and what is read there.
//
// The library lies in the bin of an installation of its own, in a temporary folder, without and with a settings file; the
// registry is empty. A copy that stays loaded holds what the library needs, so that only the library itself comes and goes.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <system_error>

#include <benchmark/benchmark.h>

#include "loaded_library.h"
#include "suite_registry.h"

namespace {

namespace fs = std::filesystem;

class Installation {
public:
    // With `settings` in its settings file, or, if null, without one.
    explicit Installation(const char *settings) {
        m_root = fs::temp_directory_path() / ("zr_load_bench_" + std::to_string(std::random_device()()));
        fs::create_directories(m_root / "bin");
        fs::copy_file(ZR_LIBRARY_FILE, Library());
        if (settings != nullptr)
            std::ofstream(m_root / "zr.zrini") << settings;
    }
    ~Installation() {
        std::error_code ignored;
        fs::remove_all(m_root, ignored);
    }
    Installation(const Installation &) = delete;
    Installation &operator=(const Installation &) = delete;

    std::string Library() const { return (m_root / "bin" / fs::path(ZR_LIBRARY_FILE).filename()).string(); }

private:
    fs::path m_root;
};

void LoadAndUnload(benchmark::State &state, const std::string &path) {
    for (auto _ : state)
        const LoadedLibrary library(path);
}

// Keeps the processor time of each row, in nanoseconds.
class Times : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration || run.aggregate_name == "median")
                m_times[run.run_name.function_name] = run.GetAdjustedCPUTime();
        }
        ConsoleReporter::ReportRuns(runs);
    }
    double Of(const std::string &name) { return m_times[name]; }

private:
    std::map<std::string, double> m_times;
};

} // namespace

int main(int argc, char **argv) {
    const SuiteRegistry registry;
    SuiteRegistry::Enter();
    const Installation without(nullptr);
    const Installation with("[System]\nZrLog=0\nAllocMByte=0\n[Beep]\nTick=1,2\n");
    const LoadedLibrary held(ZR_LIBRARY_FILE);
    benchmark::RegisterBenchmark("Load<Empty>", LoadAndUnload, ZR_EMPTY_LIBRARY);
    benchmark::RegisterBenchmark("Load<NoSettings>", LoadAndUnload, without.Library());
    benchmark::RegisterBenchmark("Load<Settings>", LoadAndUnload, with.Library());
    benchmark::Initialize(&argc, argv);
    Times times;
    benchmark::RunSpecifiedBenchmarks(&times);
    for (const char *name : {"Load<NoSettings>", "Load<Settings>"})
        std::printf("%s: %.0f us over the empty library\n", name, (times.Of(name) - times.Of("Load<Empty>")) / 1000);
}
