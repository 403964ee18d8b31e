// Finds the verb that a command line asks for, runs it, and tells how it went.
#include "dispatch.h"

#include <exception>
#include <iomanip>
#include <new>

#include <zrclb/version.h>

#include "session.h"
#include "verbs.h"

namespace zrtool {

namespace {

const std::vector<const Verb *> &Verbs() {
    static const std::vector<const Verb *> verbs = {&TreeVerb(), &GetVerb(), &SetVerb(), &CheckVerb(), &ConvertVerb()};
    return verbs;
}

const Verb *FindVerb(const std::string &name) {
    for (const Verb *verb : Verbs()) {
        if (name == verb->name)
            return verb;
    }
    return nullptr;
}

void PrintUsage(std::ostream &stream) {
    stream << "usage: zrtool env VERB ...\n\nWorks on files of the environment format.\n";
    for (const Verb *verb : Verbs())
        stream << "  " << std::left << std::setw(9) << verb->name << verb->summary << '\n';
    stream << "\nzrtool env VERB --help tells more; zrtool --version names the library.\n"
              "  --utf8    with every verb: words of the command line and printed texts are UTF-8, not code page 1252\n"
              "Exit codes: 0 done, 1 not found, 2 usage, 3 bad data, 4 input or output failed.\n";
}

bool AsksForHelp(const std::string &word) {
    return word == "--help" || word == "-h" || word == "help";
}

int RunVerb(const Verb &verb, const std::vector<std::string> &words, std::ostream &out, std::ostream &err) {
    try {
        std::vector<OptionRule> options = verb.options;
        options.insert(options.end(), {{"--utf8", false}, {"--help", false}, {"-h", false}});
        const Arguments arguments(words, options);
        if (arguments.Has("--help") || arguments.Has("-h")) {
            out << verb.usage;
            return Done;
        }
        return verb.run(Session{out, err, arguments.Has("--utf8")}, arguments);
    } catch (const Failure &failure) {
        if (failure.code == BadUsage)
            err << "zrtool env " << verb.name << ": " << failure.what() << '\n' << verb.usage;
        else if (failure.code == BadData) // starts with file, line and column, as editors expect it
            err << failure.what() << '\n';
        else
            err << "zrtool: " << failure.what() << '\n';
        return failure.code;
    }
}

int Dispatch(const std::vector<std::string> &words, std::ostream &out, std::ostream &err) {
    if (words.empty()) {
        PrintUsage(err);
        return BadUsage;
    }
    if (AsksForHelp(words[0]) || (words[0] == "env" && words.size() > 1 && AsksForHelp(words[1]))) {
        PrintUsage(out);
        return Done;
    }
    if (words[0] == "--version") {
        out << "zrtool " << zr_Version() << '\n';
        return Done;
    }
    const Verb *verb = words[0] == "env" && words.size() > 1 ? FindVerb(words[1]) : nullptr;
    if (verb == nullptr) {
        if (words[0] != "env" || words.size() > 1)
            err << "zrtool: unknown word '" << (words[0] != "env" ? words[0] : words[1]) << "'\n";
        PrintUsage(err);
        return BadUsage;
    }
    return RunVerb(*verb, std::vector<std::string>(words.begin() + 2, words.end()), out, err);
}

} // namespace

int Run(const std::vector<std::string> &words, std::ostream &out, std::ostream &err) {
    int code = InputOutput;
    try {
        code = Dispatch(words, out, err);
        out.flush();
    } catch (const std::bad_alloc &) {
        err << "zrtool: out of memory\n";
        code = InputOutput;
    } catch (const std::exception &fault) {
        err << "zrtool: " << fault.what() << '\n';
        code = InputOutput;
    }
    if (!out && code == Done) {
        err << "zrtool: the output cannot be written\n";
        code = InputOutput;
    }
    return code;
}

} // namespace zrtool
