// The data store beside pugixml, GKeyFile and boost property_tree: reading a text, look-ups by path, writing, ending the tree.
//
// Items per second are leaves (look-ups for the look-up rows), so rows of one kind compare directly. Every library is asked
// for the same doubles, and the sum of the answers is checked once before it is timed. A row's argument is the number of
// sections, of a thousand leaves each.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>

#include <benchmark/benchmark.h>
#include <boost/property_tree/info_parser.hpp>
#include <glib.h>
#include <pugixml.hpp>
#include <zrclb/zrclb.h>

#include "model_text.h"

namespace {

using bench::ModelText;

const ModelText &Model(std::int64_t sections) {
    static std::map<std::int64_t, ModelText> models;
    const auto found = models.find(sections);
    return found != models.end() ? found->second
                                 : models.emplace(sections, bench::MakeModel(static_cast<int>(sections))).first->second;
}

double WantedSum(const ModelText &model) {
    double sum = 0;
    for (const bench::Target &target : model.targets)
        sum += target.value;
    return sum;
}

// The steps from `first` to `last`, joined.
std::string Joined(const std::vector<std::string> &steps, std::size_t first, std::size_t last, char delimiter) {
    std::string path;
    for (std::size_t i = first; i < last; ++i)
        path += (i == first ? "" : std::string(1, delimiter)) + steps[i];
    return path;
}

// What a look-up asks for: one text or two, in the form of each library.
struct Question {
    std::string head;
    std::string tail;
};

template <class Make>
std::vector<Question> Questions(const ModelText &model, Make make) {
    std::vector<Question> questions;
    for (const bench::Target &target : model.targets)
        questions.push_back(make(target.steps));
    return questions;
}

// One tree library: Read makes the tree, End ends it, Value looks one target up, Write gives the size of the text.
struct Store {
    zr_env env = nullptr;
    static Question Ask(const std::vector<std::string> &steps) {
        return {steps[0], Joined(steps, 1, steps.size(), '@')};
    }
    void Read(const ModelText &model) {
        env = env_open(1, nullptr);
        if (env_read_from_string(model.env.c_str(), env) != 0)
            std::abort();
    }
    void End() { env_close(env, 0); }
    double Value(const Question &question) {
        double value = 0;
        env_get_double(env, question.head.c_str(), question.tail.c_str(), 1, &value);
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
    struct Sink : pugi::xml_writer {
        std::string text;
        void write(const void *data, std::size_t size) override { text.append(static_cast<const char *>(data), size); }
    };
    static Question Ask(const std::vector<std::string> &steps) {
        return {"model/" + Joined(steps, 0, steps.size(), '/'), ""};
    }
    void Read(const ModelText &model) {
        document = new pugi::xml_document;
        if (!document->load_buffer(model.xml.data(), model.xml.size()))
            std::abort();
    }
    void End() { delete document; }
    double Value(const Question &question) {
        return document->first_element_by_path(question.head.c_str()).text().as_double();
    }
    std::size_t Write() {
        Sink sink;
        document->save(sink, "  ");
        return sink.text.size();
    }
};

struct KeyFile {
    GKeyFile *file = nullptr;
    static Question Ask(const std::vector<std::string> &steps) {
        return {Joined(steps, 0, steps.size() - 1, '/'), steps.back()};
    }
    void Read(const ModelText &model) {
        file = g_key_file_new();
        if (!g_key_file_load_from_data(file, model.key_file.data(), model.key_file.size(), G_KEY_FILE_NONE, nullptr))
            std::abort();
    }
    void End() { g_key_file_free(file); }
    double Value(const Question &question) {
        return g_key_file_get_double(file, question.head.c_str(), question.tail.c_str(), nullptr);
    }
    std::size_t Write() {
        gsize size = 0;
        g_free(g_key_file_to_data(file, &size, nullptr));
        return size;
    }
};

struct PropertyTree {
    boost::property_tree::ptree *tree = nullptr;
    static Question Ask(const std::vector<std::string> &steps) { return {Joined(steps, 0, steps.size(), '.'), ""}; }
    void Read(const ModelText &model) {
        tree = new boost::property_tree::ptree;
        std::istringstream text(model.info);
        boost::property_tree::read_info(text, *tree);
    }
    void End() { delete tree; }
    double Value(const Question &question) { return tree->get<double>(question.head); }
    std::size_t Write() {
        std::ostringstream text;
        boost::property_tree::write_info(text, *tree);
        return text.str().size();
    }
};

std::int64_t Leaves(const benchmark::State &state) {
    return static_cast<std::int64_t>(Model(state.range(0)).leaves) * static_cast<std::int64_t>(state.iterations());
}

template <class Library>
void Read(benchmark::State &state) {
    const ModelText &model = Model(state.range(0));
    Library library;
    for (auto _ : state) {
        library.Read(model);
        state.PauseTiming();
        library.End();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(Leaves(state));
}

template <class Library>
void End(benchmark::State &state) {
    const ModelText &model = Model(state.range(0));
    Library library;
    for (auto _ : state) {
        state.PauseTiming();
        library.Read(model);
        state.ResumeTiming();
        library.End();
    }
    state.SetItemsProcessed(Leaves(state));
}

template <class Library>
void Write(benchmark::State &state) {
    Library library;
    library.Read(Model(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(library.Write());
    library.End();
    state.SetItemsProcessed(Leaves(state));
}

template <class Library>
void LookUp(benchmark::State &state) {
    const ModelText &model = Model(state.range(0));
    const std::vector<Question> questions = Questions(model, Library::Ask);
    Library library;
    library.Read(model);
    double sum = 0;
    for (const Question &question : questions)
        sum += library.Value(question);
    if (std::fabs(sum - WantedSum(model)) > 1e-6 * std::fabs(WantedSum(model)))
        state.SkipWithError("the sum of the values differs");
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(library.Value(questions[i]));
        i = i + 1 < questions.size() ? i + 1 : 0;
    }
    library.End();
    state.SetItemsProcessed(state.iterations());
}

template <class Library>
void AllRows(const std::string &name) {
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

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    AllRows<Store>("zrclb");
    AllRows<Pugi>("pugixml");
    AllRows<KeyFile>("GKeyFile");
    AllRows<PropertyTree>("property_tree");
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
