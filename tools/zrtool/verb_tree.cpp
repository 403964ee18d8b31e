// zrtool env tree: shows what stands in a file.
#include <algorithm>
#include <string>

#include "env_file.h"
#include "tree_walk.h"
#include "verbs.h"

namespace zrtool {

namespace {

constexpr std::size_t longestValue = 60;  // characters
constexpr std::size_t deepestIndent = 40; // levels; deeper ones carry their number instead

// One line, whatever the text holds.
std::string Shortened(std::string_view text) {
    std::string shown;
    for (const char c : text) {
        if (shown.size() > longestValue)
            break;
        if (c == '\n' || c == '\r' || c == '\t')
            shown += c == '\n' ? "\\n" : c == '\r' ? "\\r" : "\\t";
        else
            shown += static_cast<unsigned char>(c) < ' ' || c == '\x7F' ? '?' : c;
    }
    if (shown.size() > longestValue)
        shown = shown.substr(0, longestValue - 3) + "...";
    return shown;
}

std::string Line(const Zr::CZrEnvElement &elem, std::size_t level) {
    std::string line(2 * std::min(level, deepestIndent), ' ');
    if (level > deepestIndent)
        line += "<" + std::to_string(level) + "> ";
    const std::string name = Shortened(NameOf(elem));
    line += level == 0 ? "[" + name + "]" : name;
    if (const Zr::CZrEnvBlock *block = elem.ToEnvBlock())
        return line + " (" + std::to_string(block->GetElemCount()) + ")";
    const bool hasValue = elem.ToEnvDataElement()->GetString() != nullptr;
    return line + (hasValue ? " = " + Shortened(ValueOf(elem)) : " without value");
}

int Run(const Session &session, const Arguments &arguments) {
    arguments.Expect(1);
    const long depth = arguments.Number("--depth");
    const bool oneSection = arguments.Has("--section");
    const std::string section = session.FromUser(arguments.One("--section", ""));
    const std::string &file = arguments.Words()[0];

    Chain chain;
    Zr::CZrEnv &env = chain.Add();
    ReadEnvironment(session, file, env);
    bool found = !oneSection;
    TreeWalk walk(env);
    for (TreeWalk::Step step = walk.Next(); step != TreeWalk::Step::End; step = walk.Next()) {
        if (step == TreeWalk::Step::Leave)
            continue;
        const std::size_t level = walk.Level();
        const bool wanted = level > 0 || !oneSection || section == NameOf(*walk.Element());
        if (!wanted || (depth >= 0 && level >= static_cast<std::size_t>(depth)))
            walk.PassChildren();
        if (!wanted)
            continue;
        found = true;
        session.out << session.ToUser(Line(*walk.Element(), level)) << '\n';
    }
    if (!found)
        throw Failure(NotFound, file + ": no section [" + session.ToUser(section) + "]");
    return Done;
}

} // namespace

const Verb &TreeVerb() {
    static const Verb verb = {
        "tree",
        "show sections, blocks and values",
        "usage: zrtool env tree FILE [--section NAME] [--depth N]\n"
        "\n"
        "Shows the tree of FILE: a section in brackets, a block with the number of its children, a\n"
        "value shortened to one line.\n"
        "  --section NAME  only the sections of this name\n"
        "  --depth N       N levels below the sections; 0 shows the sections alone\n",
        {{"--section", true}, {"--depth", true}},
        Run};
    return verb;
}

} // namespace zrtool
