// One made-up model, the same leaves in the notation of each library that is measured.
//
// A section has 20 blocks of 50 leaves; in every fifth block 25 of them lie one or two levels deeper. Of the leaves 40
// % are doubles, 30 % integers, 20 % texts and 10 % lists of eight doubles. The same seed gives the same model
// everywhere.
#ifndef ZR_BENCH_MODEL_TEXT_H
#define ZR_BENCH_MODEL_TEXT_H

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

// The way to one double of the model.
struct Target {
    std::vector<std::string> steps; // section first
    double value;
};

// One leaf as a program would put it.
struct Leaf {
    enum Kind {
        Double,
        Long,
        Text,
        Doubles
    };
    std::vector<std::string> steps; // section first
    Kind kind;
    std::string text;
    std::vector<double> values; // one, or those of a list; none for a text
};

struct ModelText {
    std::size_t leaves = 0;
    std::string env;      // the library's own format, not wrapped
    std::string xml;      // elements with text content
    std::string info;     // property_tree's INFO
    std::string key_file; // GKeyFile: a group for each block, its names joined by slashes
    std::string json;
    std::vector<Target> targets; // up to 100,000 of the doubles, in random order
    std::vector<Target> hidden;  // doubles in the last block of a section whose name no other leaf of it bears
    std::vector<Leaf> values;    // all leaves in order
};

// What of a model is made.
enum class ModelParts {
    OwnText,     // env and targets: for models that are large
    AllTexts,    // all but the values
    AllAndValues // everything: for models that are small
};

ModelText MakeModel(int sections, ModelParts parts = ModelParts::AllTexts);

// One section with one block of so many leaves: env and targets.
ModelText MakeWideBlock(std::size_t leaves);

} // namespace bench

#endif
