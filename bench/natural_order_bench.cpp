// The order of names beside orders that other libraries have: plain, without case, by versions, by GLib's file names.
//
// Items per second are comparisons. GLib's keys are made ahead of the loop for one row and inside it for the other.
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <glib.h>
#include <zrclb/str.h>
#include <zrclb/window_utilities.h>

namespace {

constexpr std::size_t name_count =
    1024; // a power of two; they stay in the cache, as those of a list do while it is sorted

using Names = std::vector<std::string>;

const Names &RandomNames() {
    static const Names names = [] {
        std::mt19937 random(2013);
        const std::string signs = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 _-.";
        Names made(name_count);
        for (std::string &name : made)
            for (std::size_t length = 8 + random() % 17; name.size() < length;)
                name += signs[random() % signs.size()];
        return made;
    }();
    return names;
}

const Names &NumberedNames() {
    static const Names names = [] {
        std::mt19937 random(2014);
        Names made(name_count);
        for (std::string &name : made)
            name = "Pos " + std::to_string(random() % 20) + ".D" + std::to_string(random() % 1000);
        return made;
    }();
    return names;
}

// Each name with the one that stands 7 places further.
template <class Compare>
void Run(benchmark::State &state, const Names &names, const Compare &compare) {
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(compare(names[i].c_str(), names[(i + 7) % name_count].c_str()));
        i = (i + 1) % name_count;
    }
    state.SetItemsProcessed(state.iterations());
}

int CompareKeys(const char *a, const char *b) {
    gchar *const key_a = g_utf8_collate_key_for_filename(a, -1);
    gchar *const key_b = g_utf8_collate_key_for_filename(b, -1);
    const int order = std::strcmp(key_a, key_b);
    g_free(key_a);
    g_free(key_b);
    return order;
}

Names KeysOf(const Names &names) {
    Names keys;
    for (const std::string &name : names) {
        gchar *const key = g_utf8_collate_key_for_filename(name.c_str(), -1);
        keys.emplace_back(key);
        g_free(key);
    }
    return keys;
}

void Random_Natural(benchmark::State &state) {
    Run(state, RandomNames(), wu_ANCmp);
}
void Random_Version(benchmark::State &state) {
    Run(state, RandomNames(), strverscmp);
}
void Random_WithoutCase(benchmark::State &state) {
    Run(state, RandomNames(), str_icmp);
}
void Random_GlibKeys(benchmark::State &state) {
    Run(state, RandomNames(), CompareKeys);
}
void Random_GlibKeysMadeBefore(benchmark::State &state) {
    Run(state, KeysOf(RandomNames()), [](const char *a, const char *b) { return std::strcmp(a, b); });
}
void Numbered_Natural(benchmark::State &state) {
    Run(state, NumberedNames(), wu_ANCmp);
}
void Numbered_Version(benchmark::State &state) {
    Run(state, NumberedNames(), strverscmp);
}
void Numbered_WithoutCase(benchmark::State &state) {
    Run(state, NumberedNames(), str_icmp);
}
void Numbered_GlibKeys(benchmark::State &state) {
    Run(state, NumberedNames(), CompareKeys);
}
void Numbered_GlibKeysMadeBefore(benchmark::State &state) {
    Run(state, KeysOf(NumberedNames()), [](const char *a, const char *b) { return std::strcmp(a, b); });
}
void Dates(benchmark::State &state) {
    Names dates(name_count);
    std::mt19937 random(2015);
    for (std::string &date : dates)
        date = "01.0" + std::to_string(1 + random() % 9) + ".13 10:0" + std::to_string(random() % 10) + ":00";
    Run(state, dates, wu_DateCmp);
}

BENCHMARK(Random_Natural);
BENCHMARK(Random_Version);
BENCHMARK(Random_WithoutCase);
BENCHMARK(Random_GlibKeys);
BENCHMARK(Random_GlibKeysMadeBefore);
BENCHMARK(Numbered_Natural);
BENCHMARK(Numbered_Version);
BENCHMARK(Numbered_WithoutCase);
BENCHMARK(Numbered_GlibKeys);
BENCHMARK(Numbered_GlibKeysMadeBefore);
BENCHMARK(Dates);

} // namespace

BENCHMARK_MAIN();
