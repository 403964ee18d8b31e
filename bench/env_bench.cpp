// The data store beside pugixml, GKeyFile, boost property_tree and rapidjson: reading a text and a file, look-ups by
// path and by name, writing, ending the tree.
//
// Items per second are leaves (look-ups for the look-up rows), so rows of one kind compare directly. Every library is
// asked for the same doubles, and the sum of the answers is checked once before it is timed. A row's argument is the
// number of sections, of a thousand leaves each.
#include <cmath>
#include <map>

#include <benchmark/benchmark.h>

#include "env_stores.h"
#include "temp_folder.h"

namespace {

using namespace bench;

const ModelText &Model(std::int64_t sections) {
    static std::map<std::int64_t, ModelText> models;
    const auto found = models.find(sections);
    return found != models.end() ? found->second
                                 : models.emplace(sections, MakeModel(static_cast<int>(sections))).first->second;
}

const TempFolder &Folder() {
    static const TempFolder folder;
    return folder;
}

std::int64_t Leaves(const benchmark::State &state) {
    return static_cast<std::int64_t>(Model(state.range(0)).leaves) * static_cast<std::int64_t>(state.iterations());
}

template <class Library>
void Read(benchmark::State &state) {
    const std::string &text = Library::Text(Model(state.range(0)));
    Library library;
    for (auto _ : state) {
        library.Read(text);
        state.PauseTiming();
        library.End();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(Leaves(state));
}

template <class Library>
void ReadFile(benchmark::State &state) {
    const std::string path = Folder().File("model", Library::Text(Model(state.range(0))));
    Library library;
    for (auto _ : state) {
        library.ReadFile(path);
        state.PauseTiming();
        library.End();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(Leaves(state));
}

template <class Library>
void End(benchmark::State &state) {
    const std::string &text = Library::Text(Model(state.range(0)));
    Library library;
    for (auto _ : state) {
        state.PauseTiming();
        library.Read(text);
        state.ResumeTiming();
        library.End();
    }
    state.SetItemsProcessed(Leaves(state));
}

template <class Library>
void Write(benchmark::State &state) {
    Library library;
    library.Read(Library::Text(Model(state.range(0))));
    for (auto _ : state)
        benchmark::DoNotOptimize(library.Write());
    library.End();
    state.SetItemsProcessed(Leaves(state));
}

template <class Library>
void WriteFile(benchmark::State &state) {
    const std::string path = Folder().Path("written");
    Library library;
    library.Read(Library::Text(Model(state.range(0))));
    for (auto _ : state)
        library.WriteFile(path);
    library.End();
    state.SetItemsProcessed(Leaves(state));
}

// Asks for all targets over and over, each in its form for the library.
template <class Library, class Ask, class Look>
void LookUps(benchmark::State &state, const std::vector<Target> &targets, Ask ask, Look look) {
    std::vector<Question> questions;
    double wanted = 0;
    for (const Target &target : targets) {
        questions.push_back(ask(target.steps));
        wanted += target.value;
    }
    Library library;
    library.Read(Library::Text(Model(state.range(0))));
    double sum = 0;
    for (const Question &question : questions)
        sum += look(library, question);
    if (std::fabs(sum - wanted) > 1e-6 * std::fabs(wanted))
        state.SkipWithError("the sum of the values differs");
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(look(library, questions[i]));
        i = i + 1 < questions.size() ? i + 1 : 0;
    }
    library.End();
    state.SetItemsProcessed(state.iterations());
}

template <class Library>
void LookUp(benchmark::State &state) {
    LookUps<Library>(state, Model(state.range(0)).targets, Library::Ask,
                     [](Library &library, const Question &question) { return library.Value(question); });
}

// A double that lies in the last of twenty blocks, by its name alone.
template <class Library>
void SearchName(benchmark::State &state) {
    LookUps<Library>(state, Model(state.range(0)).hidden, Library::AskName,
                     [](Library &library, const Question &question) { return library.ValueOfName(question); });
}

template <class Library>
void CommonRows(const std::string &name) {
    for (const int sections : {50, 1000}) {
        const auto ms = benchmark::kMillisecond;
        benchmark::RegisterBenchmark(("Read/" + name).c_str(), Read<Library>)->Arg(sections)->Unit(ms);
        benchmark::RegisterBenchmark(("LookUp/" + name).c_str(), LookUp<Library>)->Arg(sections);
        benchmark::RegisterBenchmark(("Write/" + name).c_str(), Write<Library>)->Arg(sections)->Unit(ms);
        benchmark::RegisterBenchmark(("End/" + name).c_str(), End<Library>)
            ->Arg(sections)
            ->Unit(ms)
            ->Iterations(1000 / sections + 3);
    }
}

template <class Library>
void FileAndSearchRows(const std::string &name) {
    for (const int sections : {50, 1000}) {
        const auto ms = benchmark::kMillisecond;
        benchmark::RegisterBenchmark(("ReadFile/" + name).c_str(), ReadFile<Library>)->Arg(sections)->Unit(ms);
        benchmark::RegisterBenchmark(("WriteFile/" + name).c_str(), WriteFile<Library>)->Arg(sections)->Unit(ms);
        benchmark::RegisterBenchmark(("SearchName/" + name).c_str(), SearchName<Library>)->Arg(sections);
    }
}

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    CommonRows<Store>("zrclb");
    FileAndSearchRows<Store>("zrclb");
    CommonRows<Pugi>("pugixml");
    FileAndSearchRows<Pugi>("pugixml");
    CommonRows<KeyFile>("GKeyFile");
    CommonRows<PropertyTree>("property_tree");
    CommonRows<RapidJson>("rapidjson");
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
