// What a leaf costs in trees of 10,000 to 4,000,000 leaves, and in one block of a million: reading, writing, look-ups,
// ending.
//
// Items per second are leaves or look-ups. A row's argument is the number of leaves in thousands; `wide` rows have all
// of them in one block.
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

std::int64_t Leaves(const benchmark::State &state, const ModelText &model) {
    return static_cast<std::int64_t>(model.leaves) * static_cast<std::int64_t>(state.iterations());
}

void Read(benchmark::State &state, bool wide) {
    const ModelText &model = Model(state.range(0), wide);
    Store store;
    for (auto _ : state) {
        store.Read(model.env);
        state.PauseTiming();
        store.End();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(Leaves(state, model));
}

void End(benchmark::State &state, bool wide) {
    const ModelText &model = Model(state.range(0), wide);
    Store store;
    for (auto _ : state) {
        state.PauseTiming();
        store.Read(model.env);
        state.ResumeTiming();
        store.End();
    }
    state.SetItemsProcessed(Leaves(state, model));
}

void Write(benchmark::State &state, bool wide) {
    const ModelText &model = Model(state.range(0), wide);
    Store store;
    store.Read(model.env);
    for (auto _ : state)
        benchmark::DoNotOptimize(store.Write());
    store.End();
    state.SetItemsProcessed(Leaves(state, model));
}

void LookUp(benchmark::State &state, bool wide) {
    const ModelText &model = Model(state.range(0), wide);
    std::vector<Question> questions;
    Store store;
    store.Read(model.env);
    for (const Target &target : model.targets) {
        questions.push_back(Store::Ask(target.steps));
        Require(std::fabs(store.Value(questions.back()) - target.value) <= 1e-9 * std::fabs(target.value));
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(store.Value(questions[i]));
        i = i + 1 < questions.size() ? i + 1 : 0;
    }
    store.End();
    state.SetItemsProcessed(state.iterations());
}

void Rows(std::int64_t thousands, bool wide) {
    const std::string kind = wide ? "wide" : "model";
    const auto ms = benchmark::kMillisecond;
    benchmark::RegisterBenchmark(("Read/" + kind).c_str(), Read, wide)->Arg(thousands)->Unit(ms);
    benchmark::RegisterBenchmark(("Write/" + kind).c_str(), Write, wide)->Arg(thousands)->Unit(ms);
    benchmark::RegisterBenchmark(("LookUp/" + kind).c_str(), LookUp, wide)->Arg(thousands);
    benchmark::RegisterBenchmark(("End/" + kind).c_str(), End, wide)
        ->Arg(thousands)
        ->Unit(ms)
        ->Iterations(static_cast<benchmark::IterationCount>(1000 / thousands + 3));
}

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    for (const std::int64_t thousands : {10, 50, 200, 1000, 4000})
        Rows(thousands, false);
    Rows(1000, true);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
