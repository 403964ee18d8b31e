// zrtool env check: tells whether a file is sound, and what a write would lose.
#include <string>

#include "env_file.h"
#include "verbs.h"

namespace zrtool {

namespace {

int Run(const Session &session, const Arguments &arguments) {
    arguments.Expect(1);
    const std::string &file = arguments.Words()[0];
    Chain chain;
    Zr::CZrEnv &env = chain.Add();
    const std::string text = ReadEnvironment(session, file, env);

    Place place;
    const char *unkept = nullptr;
    if (FindUnkept(text, place, unkept))
        session.err << file << ':' << place.line << ':' << place.column << ": warning: " << unkept << '\n';
    const ReadBack readBack(session, env, !IsNotWrapped(text));
    if (!readBack.Loss().empty())
        session.err << file << ": warning: changes when it is written and read again: " << readBack.Loss() << '\n';
    session.out << file << ": ok\n";
    return Done;
}

} // namespace

const Verb &CheckVerb() {
    static const Verb verb = {
        "check",
        "tell whether a file is sound",
        "usage: zrtool env check FILE\n"
        "\n"
        "Reads FILE. A fault is told as FILE:LINE:COLUMN: TEXT, and the exit code is 3. Warnings name\n"
        "what would not outlive a write: comments, and values that do not read back as they are.\n",
        {},
        Run};
    return verb;
}

} // namespace zrtool
