// Composing a path beside std::filesystem and GLib: a relative name under a folder, with regular separators.
//
// Items per second are paths, so rows compare directly. The peers also resolve "." and "..", which composing leaves alone; the
// row ComposeAndResolve does both.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>
#include <glib.h>
#include <zrclb/paths.h>

#include "platform/path_text.h"

namespace {

constexpr const char *folder = "/home/user/projects/bench";
constexpr const char *relative = "data/model";
constexpr const char *name = "results/table_2013.txt";
constexpr const char *joined = "data/model/results/table_2013.txt";

void Want(const char *result, const char *wanted) {
    if (std::strcmp(result, wanted) == 0)
        return;
    std::fprintf(stderr, "got %s, wanted %s\n", result, wanted);
    std::exit(1);
}

constexpr const char *ours = "C:\\home\\user\\projects\\bench\\data\\model\\results\\table_2013.txt";
constexpr const char *theirs = "/home/user/projects/bench/data/model/results/table_2013.txt";

void Compose(benchmark::State &state) {
    char out[260];
    Want(fio_makepath(out, "C:\\home\\user\\projects\\bench", relative, name), ours);
    for (auto _ : state) {
        benchmark::DoNotOptimize(fio_makepath(out, "C:\\home\\user\\projects\\bench", relative, name));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
}

void ComposeAndResolve(benchmark::State &state) {
    char out[260];
    char full[260];
    const zr::platform::CurrentFolders none{[](void *, int, char *, std::size_t) { return false; }, nullptr};
    const auto work = [&] {
        fio_makepath(out, "C:\\home\\user\\projects\\bench", relative, name);
        zr::platform::FullPath(out, none, full, sizeof full, nullptr);
        return full;
    };
    Want(work(), ours);
    for (auto _ : state) {
        benchmark::DoNotOptimize(work());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
}

void StdFilesystem(benchmark::State &state) {
    const std::filesystem::path base(folder);
    Want((base / relative / name).lexically_normal().c_str(), theirs);
    for (auto _ : state) {
        const std::filesystem::path path = (base / relative / name).lexically_normal();
        benchmark::DoNotOptimize(path.native().data());
    }
    state.SetItemsProcessed(state.iterations());
}

void Glib(benchmark::State &state) {
    char *first = g_canonicalize_filename(joined, folder);
    Want(first, theirs);
    g_free(first);
    for (auto _ : state) {
        char *path = g_canonicalize_filename(joined, folder);
        benchmark::DoNotOptimize(path);
        g_free(path);
    }
    state.SetItemsProcessed(state.iterations());
}

void Divide(benchmark::State &state) {
    char drive[3];
    char dir[256];
    char file[260];
    for (auto _ : state) {
        fio_divide(ours, drive, dir, file);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(Compose);
BENCHMARK(ComposeAndResolve);
BENCHMARK(StdFilesystem);
BENCHMARK(Glib);
BENCHMARK(Divide);

} // namespace

BENCHMARK_MAIN();
