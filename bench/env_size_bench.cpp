// What a leaf costs in trees of 10,000 to 4,000,000 leaves, and in one block of a million: reading, writing, look-ups,
// ending.
//
// Items per second are leaves or look-ups. A row's argument is the number of leaves of a tree in thousands. Rows `model`
// have one tree and nothing else at work, so that small ones stay in the processor's caches and in memory that was used
// before; rows `among` have as many such trees as make 4,000,000 leaves, so that all sizes meet the same memory; `wide`
// rows have one tree with all leaves in one block.
#include <cmath>
#include <map>
#include <utility>

#include <benchmark/benchmark.h>

#include "env_stores.h"

namespace {

using namespace bench;

const ModelText &Model(std::int64_t thousands, bool wide) {
    static std::map<std::pair<std::int64_t, bool>, ModelText> models;
    const auto [found, fresh] = models.try_emplace({thousands, wide});
    if (fresh)
        found->second = wide ? MakeWideBlock(static_cast<std::size_t>(thousands) * 1000)
                             : MakeModel(static_cast<int>(thousands), ModelParts::OwnText);
    return found->second;
}

enum class Kind {
    Model,
    Among,
    Wide
};

// So many trees of one size, each with a text of its own.
struct Forest {
    const ModelText &model;
    std::vector<std::string> texts;
    std::vector<Store> stores;

    Forest(const benchmark::State &state, Kind kind)
        : model(Model(state.range(0), kind == Kind::Wide)),
          texts(static_cast<std::size_t>(kind == Kind::Among ? 4000 / state.range(0) : 1), model.env),
          stores(texts.size()) {}
    void Read() {
        for (std::size_t i = 0; i != stores.size(); ++i)
            stores[i].Read(texts[i]);
    }
    void End() {
        for (Store &store : stores)
            store.End();
    }
    std::int64_t Leaves(const benchmark::State &state) const {
        return static_cast<std::int64_t>(model.leaves * stores.size() * state.iterations());
    }
};

// The first time is not counted: a host may have to give the machine its memory first.
void Read(benchmark::State &state, Kind kind) {
    Forest forest(state, kind);
    forest.Read();
    forest.End();
    for (auto _ : state) {
        forest.Read();
        state.PauseTiming();
        forest.End();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(forest.Leaves(state));
}

void End(benchmark::State &state, Kind kind) {
    Forest forest(state, kind);
    forest.Read();
    forest.End();
    for (auto _ : state) {
        state.PauseTiming();
        forest.Read();
        state.ResumeTiming();
        forest.End();
    }
    state.SetItemsProcessed(forest.Leaves(state));
}

void Write(benchmark::State &state, Kind kind) {
    Forest forest(state, kind);
    forest.Read();
    std::vector<char *> written(forest.stores.size());
    const auto write = [&] {
        for (std::size_t i = 0; i != written.size(); ++i)
            written[i] = env_write_to_string_ex(forest.stores[i].env, 0);
    };
    const auto forget = [&] {
        for (char *text : written)
            env_free_string(text);
    };
    write();
    forget();
    for (auto _ : state) {
        write();
        state.PauseTiming();
        forget();
        state.ResumeTiming();
    }
    forest.End();
    state.SetItemsProcessed(forest.Leaves(state));
}

void LookUp(benchmark::State &state, Kind kind) {
    Forest forest(state, kind);
    forest.Read();
    std::vector<std::pair<Store, Question>> questions;
    for (std::size_t i = 0; i != 100000; ++i) {
        const Target &target = forest.model.targets[i % forest.model.targets.size()];
        questions.emplace_back(forest.stores[i * 7919 % forest.stores.size()], Store::Ask(target.steps));
        Store &store = questions.back().first;
        Require(std::fabs(store.Value(questions.back().second) - target.value) <= 1e-9 * std::fabs(target.value));
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(questions[i].first.Value(questions[i].second));
        i = i + 1 < questions.size() ? i + 1 : 0;
    }
    forest.End();
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

void Rows(std::int64_t thousands, Kind kind) {
    const std::string name = kind == Kind::Wide ? "wide" : kind == Kind::Among ? "among" : "model";
    const auto ms = benchmark::kMillisecond;
    benchmark::RegisterBenchmark(("Read/" + name).c_str(), Read, kind)->Arg(thousands)->Unit(ms);
    benchmark::RegisterBenchmark(("Write/" + name).c_str(), Write, kind)->Arg(thousands)->Unit(ms);
    benchmark::RegisterBenchmark(("LookUp/" + name).c_str(), LookUp, kind)->Arg(thousands);
    benchmark::RegisterBenchmark(("End/" + name).c_str(), End, kind)
        ->Arg(thousands)
        ->Unit(ms)
        ->Iterations(static_cast<benchmark::IterationCount>(kind == Kind::Among ? 3 : 1000 / thousands + 3));
}

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    for (const std::int64_t thousands : {10, 50, 200, 1000, 4000}) {
        Rows(thousands, Kind::Model);
        Rows(thousands, Kind::Among);
    }
    Rows(1000, Kind::Wide);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
