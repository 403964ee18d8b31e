// Typed values through a file handle beside the plain calls of the C library, one value a call, in a file in memory.
//
// Items per second are values, so rows of one direction compare directly. The sum of what was read is checked each time.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <system_error>

#include <benchmark/benchmark.h>
#include <zrclb/zrclb.h>

namespace {

constexpr int values = 10000000;
constexpr std::size_t header_size = 16;

double ValueAt(int i) {
    return i * 0.5;
}

double WantedSum() {
    return 0.25 * values * (values - 1.0);
}

// A folder in memory if the host has one, else the temporary one; removed at the end.
struct Folder {
    Folder() : path(std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path()) {
        path /= "zr_bench_" + std::to_string(std::random_device()());
        std::filesystem::create_directory(path);
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    std::filesystem::path path;
};

std::string Path(const char *name) {
    static const Folder folder;
    return (folder.path / name).string();
}

void Check(bool holds) {
    if (!holds)
        std::abort();
}

void WriteFile(const std::string &path, const char *header, double (*order)(double)) {
    std::FILE *stream = std::fopen(path.c_str(), "wb");
    Check(stream != nullptr && std::fwrite(header, 1, header_size, stream) == header_size);
    for (int i = 0; i < values; ++i) {
        const double value = order(ValueAt(i));
        std::fwrite(&value, sizeof value, 1, stream);
    }
    Check(std::fclose(stream) == 0);
}

double Native(double value) {
    return value;
}

double Foreign(double value) {
    double reversed;
    for (std::size_t i = 0; i < sizeof value; ++i)
        reinterpret_cast<char *>(&reversed)[i] = reinterpret_cast<const char *>(&value)[sizeof value - 1 - i];
    return reversed;
}

const std::string &NativeFile() {
    static const std::string path = Path("native");
    static const bool written = (WriteFile(path, "1.1  @zrINTEL   ", Native), true);
    Check(written);
    return path;
}

const std::string &ForeignFile() {
    static const std::string path = Path("foreign");
    static const bool written = (WriteFile(path, "1.1  @zrMOTOROLA", Foreign), true);
    Check(written);
    return path;
}

void WritePlain(benchmark::State &state) {
    const std::string path = Path("plain");
    for (auto _ : state) {
        std::FILE *stream = std::fopen(path.c_str(), "wb");
        bool done = true;
        for (int i = 0; i < values; ++i) {
            const double value = ValueAt(i);
            done &= std::fwrite(&value, sizeof value, 1, stream) == 1;
        }
        Check(std::fclose(stream) == 0 && done);
    }
    state.SetItemsProcessed(state.iterations() * values);
}

void WriteTyped(benchmark::State &state) {
    const std::string path = Path("typed");
    for (auto _ : state) {
        fio_handle *handle = fio_open("", path.c_str(), FIO_WRITE | FIO_BYTEORDER);
        bool done = true;
        for (int i = 0; i < values; ++i)
            done &= fio_putdouble(handle, ValueAt(i)) == 0;
        Check(fio_close(handle) == 0 && done);
    }
    state.SetItemsProcessed(state.iterations() * values);
}

void ReadPlain(benchmark::State &state) {
    const std::string &path = NativeFile();
    for (auto _ : state) {
        std::FILE *stream = std::fopen(path.c_str(), "rb");
        std::fseek(stream, header_size, SEEK_SET);
        double sum = 0;
        double value;
        while (std::fread(&value, sizeof value, 1, stream) == 1)
            sum += value;
        std::fclose(stream);
        Check(sum == WantedSum());
    }
    state.SetItemsProcessed(state.iterations() * values);
}

void ReadTypedFrom(benchmark::State &state, const std::string &path) {
    for (auto _ : state) {
        fio_handle *handle = fio_open("", path.c_str(), FIO_READ | FIO_BYTEORDER);
        double sum = 0;
        double value;
        while (fio_getdouble(handle, &value) == 0)
            sum += value;
        fio_close(handle);
        Check(sum == WantedSum());
    }
    state.SetItemsProcessed(state.iterations() * values);
}

void ReadTyped(benchmark::State &state) {
    ReadTypedFrom(state, NativeFile());
}

void ReadTypedReversed(benchmark::State &state) {
    ReadTypedFrom(state, ForeignFile());
}

BENCHMARK(WritePlain)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteTyped)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadPlain)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadTyped)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadTypedReversed)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
