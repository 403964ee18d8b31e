// The data store beside pugixml and boost property_tree: reading a text, look-ups by path, writing, ending the tree.
//
// Items per second are leaves (look-ups for the look-up rows), so rows of one kind compare directly. Every library is asked
// for the same doubles, and the sum of the answers is checked once before it is timed.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include <benchmark/benchmark.h>
#include <boost/property_tree/info_parser.hpp>
#include <pugixml.hpp>
#include <zrclb/zrclb.h>

#include "model_text.h"

namespace {

const bench::ModelText &Model() {
    static const bench::ModelText model = bench::MakeModel(50);
    return model;
}

double WantedSum() {
    double sum = 0;
    for (const bench::Target &target : Model().targets)
        sum += target.value;
    return sum;
}

// The targets as path texts: all steps from `first` on, joined.
std::vector<std::string> Paths(std::size_t first, const char *start, char delimiter) {
    std::vector<std::string> paths;
    for (const bench::Target &target : Model().targets) {
        std::string path = start;
        for (std::size_t i = first; i < target.steps.size(); ++i)
            path += (path.empty() ? "" : std::string(1, delimiter)) + target.steps[i];
        paths.push_back(path);
    }
    return paths;
}

// One tree library: Read makes the tree, End ends it, Value looks one target up, Write gives the size of the text.
struct Store {
    zr_env env = nullptr;
    std::vector<std::string> paths = Paths(1, "", '@');
    void Read() {
        env = env_open(1, nullptr);
        if (env_read_from_string(Model().env.c_str(), env) != 0)
            std::abort();
    }
    void End() { env_close(env, 0); }
    double Value(std::size_t i) {
        double value = 0;
        env_get_double(env, Model().targets[i].steps[0].c_str(), paths[i].c_str(), 1, &value);
        return value;
    }
    std::size_t Write() {
        char *text = env_write_to_string_ex(env, 0);
        const std::size_t size = std::char_traits<char>::length(text);
        env_free_string(text);
        return size;
    }
};

struct Pugi {
    pugi::xml_document *document = nullptr;
    std::vector<std::string> paths = Paths(0, "model", '/');
    struct Sink : pugi::xml_writer {
        std::string text;
        void write(const void *data, std::size_t size) override { text.append(static_cast<const char *>(data), size); }
    };
    void Read() {
        document = new pugi::xml_document;
        if (!document->load_buffer(Model().xml.data(), Model().xml.size()))
            std::abort();
    }
    void End() { delete document; }
    double Value(std::size_t i) { return document->first_element_by_path(paths[i].c_str()).text().as_double(); }
    std::size_t Write() {
        Sink sink;
        document->save(sink, "  ");
        return sink.text.size();
    }
};

struct PropertyTree {
    boost::property_tree::ptree *tree = nullptr;
    std::vector<std::string> paths = Paths(0, "", '.');
    void Read() {
        tree = new boost::property_tree::ptree;
        std::istringstream text(Model().info);
        boost::property_tree::read_info(text, *tree);
    }
    void End() { delete tree; }
    double Value(std::size_t i) { return tree->get<double>(paths[i]); }
    std::size_t Write() {
        std::ostringstream text;
        boost::property_tree::write_info(text, *tree);
        return text.str().size();
    }
};

std::int64_t Leaves() {
    return static_cast<std::int64_t>(Model().leaves);
}

template <class Library>
void Read(benchmark::State &state) {
    Library library;
    for (auto _ : state) {
        library.Read();
        state.PauseTiming();
        library.End();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * Leaves());
}

template <class Library>
void End(benchmark::State &state) {
    Library library;
    for (auto _ : state) {
        state.PauseTiming();
        library.Read();
        state.ResumeTiming();
        library.End();
    }
    state.SetItemsProcessed(state.iterations() * Leaves());
}

template <class Library>
void Write(benchmark::State &state) {
    Library library;
    library.Read();
    for (auto _ : state)
        benchmark::DoNotOptimize(library.Write());
    library.End();
    state.SetItemsProcessed(state.iterations() * Leaves());
}

template <class Library>
void LookUp(benchmark::State &state) {
    Library library;
    library.Read();
    double sum = 0;
    for (std::size_t i = 0; i < library.paths.size(); ++i)
        sum += library.Value(i);
    if (std::fabs(sum - WantedSum()) > 1e-6 * std::fabs(WantedSum()))
        state.SkipWithError("the sum of the values differs");
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(library.Value(i));
        i = i + 1 < library.paths.size() ? i + 1 : 0;
    }
    library.End();
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(Read<Store>)->Unit(benchmark::kMillisecond);
BENCHMARK(Read<Pugi>)->Unit(benchmark::kMillisecond);
BENCHMARK(Read<PropertyTree>)->Unit(benchmark::kMillisecond);
BENCHMARK(LookUp<Store>);
BENCHMARK(LookUp<Pugi>);
BENCHMARK(LookUp<PropertyTree>);
BENCHMARK(Write<Store>)->Unit(benchmark::kMillisecond);
BENCHMARK(Write<Pugi>)->Unit(benchmark::kMillisecond);
BENCHMARK(Write<PropertyTree>)->Unit(benchmark::kMillisecond);
BENCHMARK(End<Store>)->Unit(benchmark::kMicrosecond)->Iterations(50);
BENCHMARK(End<Pugi>)->Unit(benchmark::kMicrosecond)->Iterations(50);
BENCHMARK(End<PropertyTree>)->Unit(benchmark::kMicrosecond)->Iterations(20);

} // namespace

BENCHMARK_MAIN();
