// Settings held in memory, 1000 entries in 20 sections: mini_ beside readers that keep the whole file as well.
//
// String<who>, Double<who>: one value by the names of its section and entry, for all entries in an order that jumps about.
// Load<who>: opens the file and ends what came of it, a 1000th of that. Save<who>: changes one value in memory and saves the file,
// for zrclb and GLib by way of a temporary file. The last lines print ratios of the shortest times; with --benchmark_repetitions
// they settle.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#define SI_NO_CONVERSION // texts stay bytes, the fastest way
#include <INIReader.h>
#include <SimpleIni.h>
#include <benchmark/benchmark.h>
#include <glib.h>

#include <zrclb/zrclb.h>

#include "shortest_times.h"

namespace {

constexpr int sections = 20;
constexpr int entries = 50; // of each
constexpr int all_entries = sections * entries;

void Check(bool holds) {
    if (!holds) {
        std::fputs("wrong answer\n", stderr);
        std::abort();
    }
}

struct Place {
    std::string section, entry, value;
    double number;
};

Place PlaceAt(int section, int entry) {
    const int index = section * entries + entry;
    const std::string value = std::to_string(index) + "." + std::to_string(100000 + index * 89);
    return {"Section" + std::to_string(section), "Entry_" + std::to_string(section) + "_" + std::to_string(entry),
            value, std::strtod(value.c_str(), nullptr)};
}

// All entries, in an order that jumps about.
const std::vector<Place> &Places() {
    static const std::vector<Place> places = [] {
        std::vector<Place> made;
        for (int i = 0; i < all_entries; ++i) {
            const int index = i * 389 % all_entries;
            made.push_back(PlaceAt(index / entries, index % entries));
        }
        return made;
    }();
    return places;
}

// A file in a folder in memory if the host has one, else in the temporary one; removed at the end.
class File {
public:
    File() : m_folder(std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path()) {
        m_folder /= "zr_bench_" + std::to_string(std::random_device()());
        std::filesystem::create_directory(m_folder);
        setenv("TMPDIR", m_folder.c_str(), 1); // for the library's temporary files
        m_path = (m_folder / "bench.ini").string();
    }
    ~File() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    // The path, with the content fresh.
    const std::string &Fresh() const {
        std::ofstream file(m_path, std::ios::binary);
        for (int section = 0; section < sections; ++section) {
            file << "[" << PlaceAt(section, 0).section << "]\r\n";
            for (int entry = 0; entry < entries; ++entry)
                file << PlaceAt(section, entry).entry << "=" << PlaceAt(section, entry).value << "\r\n";
            file << "\r\n";
        }
        return m_path;
    }

private:
    std::filesystem::path m_folder;
    std::string m_path;
};

const std::string &FreshFile() {
    static const File file;
    return file.Fresh();
}

// ---- Who is measured: each opens a file, reads values into memory of the caller's, changes and saves --------------------

class Zrclb {
public:
    explicit Zrclb(const std::string &path) : m_file(mini_open(nullptr, path.c_str(), 0)) {}
    ~Zrclb() { mini_close_ex(&m_file); }

    void String(const Place &place, char (&out)[64]) const {
        zr_long size = sizeof out - 1;
        mini_read_string(m_file, place.section.c_str(), place.entry.c_str(), out, &size);
    }
    double Double(const Place &place) const {
        double value = 0;
        mini_read_double(m_file, place.section.c_str(), place.entry.c_str(), &value);
        return value;
    }
    void Save(const Place &place, const char *value, const std::string &) const {
        mini_write_string(m_file, place.section.c_str(), place.entry.c_str(), value);
        Check(mini_update_file(m_file) == 1);
    }

private:
    mini_file *m_file;
};

class GKey {
public:
    explicit GKey(const std::string &path) : m_file(g_key_file_new()) {
        Check(g_key_file_load_from_file(m_file, path.c_str(), G_KEY_FILE_NONE, nullptr) != 0);
    }
    ~GKey() { g_key_file_free(m_file); }

    void String(const Place &place, char (&out)[64]) const {
        char *const text = g_key_file_get_value(m_file, place.section.c_str(), place.entry.c_str(), nullptr);
        g_strlcpy(out, text, sizeof out);
        g_free(text);
    }
    double Double(const Place &place) const {
        return g_key_file_get_double(m_file, place.section.c_str(), place.entry.c_str(), nullptr);
    }
    void Save(const Place &place, const char *value, const std::string &path) const {
        g_key_file_set_value(m_file, place.section.c_str(), place.entry.c_str(), value);
        Check(g_key_file_save_to_file(m_file, path.c_str(), nullptr) != 0);
    }

private:
    GKeyFile *m_file;
};

class Simple {
public:
    explicit Simple(const std::string &path) { Check(m_file.LoadFile(path.c_str()) == SI_OK); }

    void String(const Place &place, char (&out)[64]) const {
        g_strlcpy(out, m_file.GetValue(place.section.c_str(), place.entry.c_str(), ""), sizeof out);
    }
    double Double(const Place &place) const {
        return m_file.GetDoubleValue(place.section.c_str(), place.entry.c_str());
    }
    void Save(const Place &place, const char *value, const std::string &path) {
        m_file.SetValue(place.section.c_str(), place.entry.c_str(), value);
        Check(m_file.SaveFile(path.c_str(), false) == SI_OK);
    }

private:
    CSimpleIniCaseA m_file;
};

// Saves nothing.
class Inih {
public:
    explicit Inih(const std::string &path) : m_file(path) { Check(m_file.ParseError() == 0); }

    void String(const Place &place, char (&out)[64]) const {
        g_strlcpy(out, m_file.Get(place.section, place.entry, "").c_str(), sizeof out);
    }
    double Double(const Place &place) const { return m_file.GetReal(place.section, place.entry, 0); }

private:
    INIReader m_file;
};

// ---- Rows -----------------------------------------------------------------------------------------------------------

// Goes through all places again and again.
class Walk {
public:
    const Place &Next() {
        m_at = m_at + 1 == Places().size() ? 0 : m_at + 1;
        return Places()[m_at];
    }

private:
    std::size_t m_at = 0;
};

template <class Store>
void String(benchmark::State &state) {
    const Store store(FreshFile());
    char text[64];
    for (const Place &place : Places()) {
        store.String(place, text);
        Check(text == place.value);
    }
    Walk walk;
    for (auto _ : state) {
        store.String(walk.Next(), text);
        benchmark::DoNotOptimize(text);
    }
}

template <class Store>
void Double(benchmark::State &state) {
    const Store store(FreshFile());
    for (const Place &place : Places())
        Check(store.Double(place) == place.number);
    Walk walk;
    for (auto _ : state)
        benchmark::DoNotOptimize(store.Double(walk.Next()));
}

template <class Store>
void Load(benchmark::State &state) {
    const std::string path = FreshFile();
    while (state.KeepRunningBatch(all_entries)) {
        const Store store(path);
        benchmark::DoNotOptimize(&store);
    }
}

template <class Store>
void Save(benchmark::State &state) {
    const std::string path = FreshFile();
    Store store(path);
    const Place &place = Places()[all_entries / 2];
    bool turn = false;
    for (auto _ : state) {
        store.Save(place, turn ? "1.5" : "1.25", path);
        turn = !turn;
    }
    store.Save(place, "last", path);
    char text[64];
    Store(path).String(place, text);
    Check(std::string(text) == "last");
}

BENCHMARK(String<Zrclb>);
BENCHMARK(String<GKey>);
BENCHMARK(String<Simple>);
BENCHMARK(String<Inih>);
BENCHMARK(Double<Zrclb>);
BENCHMARK(Double<GKey>);
BENCHMARK(Double<Simple>);
BENCHMARK(Double<Inih>);
BENCHMARK(Load<Zrclb>);
BENCHMARK(Load<GKey>);
BENCHMARK(Load<Simple>);
BENCHMARK(Load<Inih>);
BENCHMARK(Save<Zrclb>)->UseRealTime();
BENCHMARK(Save<GKey>)->UseRealTime();
BENCHMARK(Save<Simple>)->UseRealTime();

class Summary : public bench::ShortestTimes {
public:
    void PrintRatio(const std::string &work, const std::string &peer) const {
        const std::optional<double> own = Time(work + "<Zrclb>"), other = Time(work + "<" + peer + ">");
        if (own && other)
            std::printf("%-8s ours %10.1f ns  %-7s %10.1f ns  ratio %.2f\n", work.c_str(), *own, peer.c_str(), *other,
                        *own / *other);
    }
};

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    Summary summary;
    benchmark::RunSpecifiedBenchmarks(&summary);
    for (const char *work : {"String", "Double", "Load", "Save"}) {
        for (const char *peer : {"GKey", "Simple", "Inih"})
            summary.PrintRatio(work, peer);
    }
}
