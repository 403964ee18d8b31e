// zrtool env set: changes one value in a file, or makes it.
#include <cctype>
#include <string>
#include <vector>

#include "env_file.h"
#include "safe_write.h"
#include "verbs.h"

namespace zrtool {

namespace {

// A write forces the tree into the shape that the path demands. What it destroys on the way is worth a word.
std::vector<std::string> FindReplacements(const Session &session, Zr::CZrEnv &env, const std::string &section,
                                          const std::string &path) {
    std::vector<std::string> found;
    if (const Zr::CZrEnvBlock *block = env.GetBlock(section.c_str(), path.c_str(), true, false)) {
        if (block->ToEnvSection() == nullptr && block->GetElemCount() > 0)
            found.push_back("a block with " + std::to_string(block->GetElemCount()) + " elements becomes a value");
    }
    const auto isStep = [&](std::size_t at) { return std::isdigit(static_cast<unsigned char>(path[at])) == 0; };
    for (std::size_t at = path.find('@'); at != std::string::npos && at + 1 < path.size();
         at = path.find('@', at + 1)) {
        const std::string front = path.substr(0, at);
        if (isStep(at + 1) && env.GetDataElement(section.c_str(), front.c_str(), true, false) != nullptr)
            found.push_back("the value of " + session.ToUser(front) + " gives way to a block");
    }
    return found;
}

bool EndsInPosition(const std::string &path) {
    const std::size_t at = path.find_last_not_of("0123456789");
    return at != std::string::npos && path[at] == '@' && at + 1 < path.size();
}

int Run(const Session &session, const Arguments &arguments) {
    arguments.Expect(4);
    const std::string &file = arguments.Words()[0];
    const std::string section = session.FromUser(arguments.Words()[1]);
    const std::string path = session.FromUser(arguments.Words()[2]);
    const std::string value = session.FromUser(arguments.Words()[3]);

    Chain chain;
    Zr::CZrEnv &env = chain.Add();
    const std::string bytes = ReadEnvironment(session, file, env);
    const std::string text = TextOf(bytes);
    const bool wrap = !IsNotWrapped(text);
    const std::string target = "[" + session.ToUser(section) + "] '" + session.ToUser(path) + "'";
    std::vector<std::string> warnings = FindReplacements(session, env, section, path);
    if (env.SetString(section.c_str(), path.c_str(), value.c_str()) != Zr::ENV_OK)
        throw Failure(BadUsage, "nothing can be set at " + target);
    ReadBack readBack(session, env, wrap);
    if (!readBack.Fault().empty())
        throw Failure(BadUsage, "a file cannot hold this value: " + readBack.Fault());
    if (readBack.Env().GetString(section.c_str(), path.c_str()) == nullptr)
        throw Failure(BadUsage, "the value could not be read at " + target + " afterwards" +
                                    (EndsInPosition(path) ? ": the position skips elements" : ""));
    Place place;
    const char *unkept = nullptr;
    if (FindUnkept(text, place, unkept))
        warnings.emplace_back(unkept);
    if (!readBack.Loss().empty())
        warnings.push_back("does not read back as it was set: " + readBack.Loss());
    for (const std::string &warning : warnings)
        session.err << file << ": warning: " << warning << '\n';
    WarnOfCut(session, file, bytes);
    ReplaceFile(file, readBack.Text());
    return Done;
}

} // namespace

const Verb &SetVerb() {
    static const Verb verb = {
        "set",
        "change one value, or make it",
        "usage: zrtool env set FILE SECTION PATH VALUE\n"
        "\n"
        "Sets the value at PATH in SECTION, and makes section, blocks and element where they are missing. An\n"
        "element of another kind that stands in the way is replaced. The file keeps its form, wrapped or not\n"
        "wrapped, and is replaced in one step; comments in it are lost. Write -- in front of a VALUE that\n"
        "starts with two dashes.\n",
        {},
        Run};
    return verb;
}

} // namespace zrtool
