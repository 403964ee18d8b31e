// zrtool env convert: the same tree in another form.
#include <string>

#include "env_file.h"
#include "env_json.h"
#include "safe_write.h"
#include "verbs.h"

namespace zrtool {

namespace {

void ReadJson(const std::string &file, Zr::CZrEnv &env) {
    const std::string text = ReadBytes(file);
    try {
        FromJson(text, env);
    } catch (const JsonFault &fault) {
        const Place place = PlaceAt(text, fault.offset);
        throw Failure(BadData, file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column) + ": " +
                                   fault.what());
    }
}

std::string Converted(const Session &session, const std::string &file, const Zr::CZrEnv &env, const std::string &to) {
    if (to == "json")
        return ToJson(env);
    const ReadBack readBack(session, env, to == "wrapped");
    if (!readBack.Fault().empty())
        throw Failure(BadData, file + ": " + readBack.Fault());
    if (!readBack.Loss().empty())
        session.err << file << ": warning: does not read back as it is: " << readBack.Loss() << '\n';
    return readBack.Text();
}

int Run(const Session &session, const Arguments &arguments) {
    arguments.Expect(1);
    const std::string &file = arguments.Words()[0];
    const std::string from = arguments.One("--from", "env");
    const std::string to = arguments.One("--to", "");
    const std::string output = arguments.One("-o", "");
    if (from != "env" && from != "json")
        throw Failure(BadUsage, "--from is env or json");
    if (to != "wrapped" && to != "notwrapped" && to != "json")
        throw Failure(BadUsage, "--to is wrapped, notwrapped or json");
    if (arguments.Has("-o") && output.empty())
        throw Failure(BadUsage, "-o needs the name of a file");

    Chain chain;
    Zr::CZrEnv &env = chain.Add();
    if (from == "json")
        ReadJson(file, env);
    else
        WarnOfCut(session, file, ReadEnvironment(session, file, env));
    const std::string result = Converted(session, file, env, to);
    if (arguments.Has("-o"))
        ReplaceFile(output, result);
    else
        session.out << result;
    return Done;
}

} // namespace

const Verb &ConvertVerb() {
    static const Verb verb = {
        "convert",
        "write the same tree in another form",
        "usage: zrtool env convert FILE --to wrapped|notwrapped|json [--from env|json] [-o OUT]\n"
        "\n"
        "Writes the tree of FILE in another form to OUT, which is replaced in one step, or to the\n"
        "standard output.\n"
        "  --to wrapped     environment text, long lines folded\n"
        "  --to notwrapped  environment text, one line for each value, a mode line in front\n"
        "  --to json        JSON; the form is described in docs/tool.md\n"
        "  --from json      FILE is JSON of that form\n",
        {{"--to", true}, {"--from", true}, {"-o", true}},
        Run};
    return verb;
}

} // namespace zrtool
