// Tables of 100,000 names beside GHashTable and absl::flat_hash_map, all with one hash function, 32-bit FNV-1a.
//
// Insert fills a new table that has room for twice as many names; making and freeing tables is not timed. Each table owns
// copies of its names. Hit looks up all names in the order in which they were inserted, HitShuffled in another one, which
// the processor's caches like less. The rows of the default hash, the sum of characters, show what long chains cost.
#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <absl/container/flat_hash_map.h>
#include <benchmark/benchmark.h>
#include <glib.h>

#include <zrclb/zrclb.h>

namespace {

constexpr int name_count = 100000;
constexpr int slot_count = 2 * name_count;

const std::vector<std::string> &Names() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> made;
        for (int i = 0; i < name_count; ++i)
            made.push_back("name" + std::to_string(i));
        return made;
    }();
    return names;
}

const std::vector<std::string> &ShuffledNames() {
    static const std::vector<std::string> shuffled = [] {
        std::vector<std::string> made = Names();
        std::shuffle(made.begin(), made.end(), std::mt19937(1));
        return made;
    }();
    return shuffled;
}

std::uint32_t Fnv(const char *name) {
    std::uint32_t hash = 2166136261u;
    for (; *name != '\0'; ++name)
        hash = (hash ^ static_cast<unsigned char>(*name)) * 16777619u;
    return hash;
}

zr_long OwnHash(const char *name) {
    return static_cast<zr_long>(Fnv(name));
}

class OursWith {
public:
    explicit OursWith(hash_function fn) : m_table(hash_open(1, slot_count, fn, nullptr)) {}
    OursWith(const OursWith &) = delete;
    OursWith &operator=(const OursWith &) = delete;
    ~OursWith() { hash_close(m_table); }
    void Insert(const std::string &name, std::size_t value) { hash_put(m_table, name.c_str(), value); }
    std::size_t Get(const std::string &name) const {
        zr_value value = 0;
        hash_get(m_table, name.c_str(), &value, nullptr);
        return value;
    }

private:
    hash_table *m_table;
};

struct Ours : OursWith {
    Ours() : OursWith(OwnHash) {}
};

struct OursDefault : OursWith {
    OursDefault() : OursWith(nullptr) {}
};

class Glib {
public:
    Glib()
        : m_table(
              g_hash_table_new_full([](gconstpointer name) -> guint { return Fnv(static_cast<const char *>(name)); },
                                    g_str_equal, g_free, nullptr)) {}
    Glib(const Glib &) = delete;
    Glib &operator=(const Glib &) = delete;
    ~Glib() { g_hash_table_destroy(m_table); }
    void Insert(const std::string &name, std::size_t value) {
        g_hash_table_insert(m_table, g_strdup(name.c_str()), reinterpret_cast<gpointer>(value));
    }
    std::size_t Get(const std::string &name) const {
        return reinterpret_cast<std::size_t>(g_hash_table_lookup(m_table, name.c_str()));
    }

private:
    GHashTable *m_table;
};

class Absl {
public:
    Absl() { m_table.reserve(name_count); }
    void Insert(const std::string &name, std::size_t value) { m_table.insert_or_assign(name, value); }
    std::size_t Get(const std::string &name) const {
        const auto found = m_table.find(name);
        return found != m_table.end() ? found->second : 0;
    }

private:
    struct Hash {
        using is_transparent = void;
        // Bits of both halves, which the map takes for different ends.
        std::size_t operator()(const std::string &name) const { return Fnv(name.c_str()) * 0x9E3779B97F4A7C15u; }
    };
    absl::flat_hash_map<std::string, std::size_t, Hash> m_table;
};

template <class Table>
void Fill(Table &table) {
    std::size_t value = 0;
    for (const std::string &name : Names())
        table.Insert(name, ++value);
}

template <class Table>
void Insert(benchmark::State &state) {
    Names();
    for (auto _ : state) {
        state.PauseTiming();
        {
            Table table;
            state.ResumeTiming();
            Fill(table);
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    state.counters["each"] =
        benchmark::Counter(name_count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

template <class Table>
void LookUp(benchmark::State &state, const std::vector<std::string> &wanted) {
    Table table;
    Fill(table);
    std::size_t sum = 0;
    for (auto _ : state) {
        sum = 0;
        for (const std::string &name : wanted)
            sum += table.Get(name);
        benchmark::DoNotOptimize(sum);
    }
    if (sum != std::size_t{name_count} * (name_count + 1) / 2)
        state.SkipWithError("a name was not found");
    state.counters["each"] =
        benchmark::Counter(name_count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

template <class Table>
void Hit(benchmark::State &state) {
    LookUp<Table>(state, Names());
}

template <class Table>
void HitShuffled(benchmark::State &state) {
    LookUp<Table>(state, ShuffledNames());
}

BENCHMARK(Insert<Ours>)->Unit(benchmark::kMillisecond);
BENCHMARK(Insert<Glib>)->Unit(benchmark::kMillisecond);
BENCHMARK(Insert<Absl>)->Unit(benchmark::kMillisecond);
BENCHMARK(Hit<Ours>)->Unit(benchmark::kMillisecond);
BENCHMARK(Hit<Glib>)->Unit(benchmark::kMillisecond);
BENCHMARK(Hit<Absl>)->Unit(benchmark::kMillisecond);
BENCHMARK(HitShuffled<Ours>)->Unit(benchmark::kMillisecond);
BENCHMARK(HitShuffled<Glib>)->Unit(benchmark::kMillisecond);
BENCHMARK(HitShuffled<Absl>)->Unit(benchmark::kMillisecond);
BENCHMARK(Insert<OursDefault>)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(Hit<OursDefault>)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

BENCHMARK_MAIN();
