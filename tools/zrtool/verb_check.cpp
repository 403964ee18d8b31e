// zrtool env check: tells whether a file is sound, and what a write would lose.
#include <new>
#include <string>

#include "env_file.h"
#include "verbs.h"

namespace zrtool {

namespace {

// That a file cannot be written again, for it is deep and its indentation fills the memory, makes it no worse to read.
void WarnOfLoss(const Session &session, const std::string &file, const Zr::CZrEnv &env, bool wrap) {
    const auto warn = [&](const std::string &text) { session.err << file << ": warning: " << text << '\n'; };
    try {
        const ReadBack readBack(session, env, wrap);
        if (!readBack.Loss().empty())
            warn("changes when it is written and read again: " + readBack.Loss());
    } catch (const Failure &failure) {
        warn(std::string("cannot be written: ") + failure.what());
    } catch (const std::bad_alloc &) {
        warn("cannot be written: out of memory");
    }
}

int Run(const Session &session, const Arguments &arguments) {
    arguments.Expect(1);
    const std::string &file = arguments.Words()[0];
    Chain chain;
    Zr::CZrEnv &env = chain.Add();
    const std::string bytes = ReadEnvironment(session, file, env);
    const std::string text = TextOf(bytes);
    if (arguments.Has("--deep"))
        CheckTree(session, file, env);

    Place place;
    const char *unkept = nullptr;
    if (FindUnkept(text, place, unkept))
        session.err << file << ':' << place.line << ':' << place.column << ": warning: " << unkept << '\n';
    WarnOfCut(session, file, bytes);
    WarnOfLoss(session, file, env, !IsNotWrapped(text));
    session.out << file << ": ok\n";
    return Done;
}

} // namespace

const Verb &CheckVerb() {
    static const Verb verb = {
        "check",
        "tell whether a file is sound",
        "usage: zrtool env check FILE [--deep]\n"
        "\n"
        "Reads FILE. A fault is told as FILE:LINE:COLUMN: TEXT, and the exit code is 3. Warnings name\n"
        "what would not outlive a write: comments, and values that do not read back as they are.\n"
        "  --deep    builds the index of names of every block and looks at all links, counts and\n"
        "            indexes of the tree in memory; a fault there is one of the library\n",
        {{"--deep", false}},
        Run};
    return verb;
}

} // namespace zrtool
