// Single values of the data store: elements in hand, puts to paths that are there, a tree that is built put by put, and
// one that is copied into another, beside boost property_tree.
//
// Items per second are values, leaves for the rows that build and copy. The model has 50,000 leaves.
#include <benchmark/benchmark.h>
#include <zrclb/zrclb.hpp>

#include "env_stores.h"

namespace {

using namespace bench;

const ModelText &Model() {
    static const ModelText model = MakeModel(50, ModelParts::AllAndValues);
    return model;
}

std::string PathOf(const Leaf &leaf) {
    return Joined(leaf.steps, 1, leaf.steps.size(), '@');
}

// The elements of one kind, in the order of the model.
std::vector<Zr::CZrEnvDataElement *> Elements(zr_env env, Leaf::Kind kind) {
    std::vector<Zr::CZrEnvDataElement *> elements;
    const auto *pEnv = reinterpret_cast<Zr::CZrEnv *>(env);
    for (const Leaf &leaf : Model().values)
        if (leaf.kind == kind)
            elements.push_back(pEnv->GetDataElement(leaf.steps[0].c_str(), PathOf(leaf).c_str(), true, false));
    return elements;
}

// One block of elements over and over: they stay near the processor, so what is measured is the conversion.
constexpr std::size_t InHand = 20;

void GetDouble(benchmark::State &state) {
    Store store;
    store.Read(Model().env);
    const auto elements = Elements(store.env, Leaf::Double);
    std::size_t i = 0;
    for (auto _ : state) {
        double value = 0;
        benchmark::DoNotOptimize(elements[i]->GetDouble(value));
        benchmark::DoNotOptimize(value);
        i = i + 1 < InHand ? i + 1 : 0;
    }
    store.End();
    state.SetItemsProcessed(state.iterations());
}

void GetDoubles(benchmark::State &state) {
    Store store;
    store.Read(Model().env);
    const auto elements = Elements(store.env, Leaf::Doubles);
    std::size_t i = 0;
    for (auto _ : state) {
        double values[8];
        zr_long count = 8;
        if (elements[i]->GetDoubles(count, values) != Zr::ENV_OK || count != 8)
            state.SkipWithError("not a list of eight");
        benchmark::DoNotOptimize(values);
        i = i + 1 < InHand ? i + 1 : 0;
    }
    store.End();
    state.SetItemsProcessed(state.iterations());
}

void CountItems(benchmark::State &state, std::size_t each) {
    state.SetItemsProcessed(static_cast<std::int64_t>(each) * static_cast<std::int64_t>(state.iterations()));
}

// Values that change from round to round, so that no text stays as it was.
double Changed(std::size_t i) {
    return 0.001 * static_cast<double>(i % 9973) + 1.5;
}

void PutDouble(benchmark::State &state) {
    Store store;
    store.Read(Model().env);
    std::vector<Question> questions;
    for (const Target &target : Model().targets)
        questions.push_back(Store::Ask(target.steps));
    std::size_t i = 0;
    std::size_t round = 0;
    for (auto _ : state) {
        Require(env_put_double(store.env, questions[i].head.c_str(), questions[i].tail.c_str(), Changed(round++)) == 0);
        i = i + 1 < questions.size() ? i + 1 : 0;
    }
    store.End();
    state.SetItemsProcessed(state.iterations());
}

void PutDoubleTree(benchmark::State &state) {
    PropertyTree library;
    library.Read(Model().info);
    std::vector<Question> questions;
    for (const Target &target : Model().targets)
        questions.push_back(PropertyTree::Ask(target.steps));
    std::size_t i = 0;
    std::size_t round = 0;
    for (auto _ : state) {
        library.tree->put(questions[i].head, Changed(round++));
        i = i + 1 < questions.size() ? i + 1 : 0;
    }
    library.End();
    state.SetItemsProcessed(state.iterations());
}

void PutLeaf(zr_env env, const Leaf &leaf, const Question &question) {
    const char *section = question.head.c_str();
    const char *path = question.tail.c_str();
    int result = 0;
    switch (leaf.kind) {
    case Leaf::Double:
        result = env_put_double(env, section, path, leaf.values[0]);
        break;
    case Leaf::Long:
        result = env_put_long(env, section, path, static_cast<zr_long>(leaf.values[0]));
        break;
    case Leaf::Text:
        result = env_put(env, section, path, leaf.text.c_str());
        break;
    case Leaf::Doubles:
        result = env_put_doubles(env, section, path, static_cast<zr_long>(leaf.values.size()), leaf.values.data());
        break;
    }
    Require(result == 0);
}

void Build(benchmark::State &state) {
    std::vector<Question> questions;
    for (const Leaf &leaf : Model().values)
        questions.push_back(Store::Ask(leaf.steps));
    for (auto _ : state) {
        const zr_env env = env_open(1, nullptr);
        for (std::size_t i = 0; i < questions.size(); ++i)
            PutLeaf(env, Model().values[i], questions[i]);
        state.PauseTiming();
        env_close(env, 0);
        state.ResumeTiming();
    }
    CountItems(state, questions.size());
}

// A list has no form of its own there: its text is put.
void BuildTree(benchmark::State &state) {
    std::vector<Question> questions;
    for (const Leaf &leaf : Model().values)
        questions.push_back(PropertyTree::Ask(leaf.steps));
    for (auto _ : state) {
        auto *tree = new boost::property_tree::ptree;
        for (std::size_t i = 0; i < questions.size(); ++i) {
            const Leaf &leaf = Model().values[i];
            if (leaf.kind == Leaf::Double)
                tree->put(questions[i].head, leaf.values[0]);
            else if (leaf.kind == Leaf::Long)
                tree->put(questions[i].head, static_cast<int>(leaf.values[0]));
            else
                tree->put(questions[i].head, leaf.text);
        }
        state.PauseTiming();
        delete tree;
        state.ResumeTiming();
    }
    CountItems(state, questions.size());
}

void Sink(benchmark::State &state) {
    Store store;
    store.Read(Model().env);
    for (auto _ : state) {
        const zr_env target = env_open(2, nullptr);
        Require(env_sink(target, store.env, 2) == 0);
        state.PauseTiming();
        env_close(target, 0);
        state.ResumeTiming();
    }
    store.End();
    CountItems(state, Model().leaves);
}

void ReadAgain(benchmark::State &state) {
    Store store;
    for (auto _ : state) {
        store.Read(Model().env);
        state.PauseTiming();
        store.End();
        state.ResumeTiming();
    }
    CountItems(state, Model().leaves);
}

} // namespace

BENCHMARK(GetDouble)->Name("GetDouble/zrclb");
BENCHMARK(GetDoubles)->Name("GetDoubles/zrclb");
BENCHMARK(PutDouble)->Name("PutDouble/zrclb");
BENCHMARK(PutDoubleTree)->Name("PutDouble/property_tree");
BENCHMARK(Build)->Name("Build/zrclb")->Unit(benchmark::kMillisecond);
BENCHMARK(BuildTree)->Name("Build/property_tree")->Unit(benchmark::kMillisecond);
BENCHMARK(Sink)->Name("Sink/zrclb")->Unit(benchmark::kMillisecond);
BENCHMARK(ReadAgain)->Name("Sink/reading")->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
