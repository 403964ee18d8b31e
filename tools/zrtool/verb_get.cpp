// zrtool env get: prints one value.
#include <string>

#include "env_file.h"
#include "verbs.h"

namespace zrtool {

namespace {

int Run(const Session &session, const Arguments &arguments) {
    arguments.Expect(3);
    std::vector<std::string> files = {arguments.Words()[0]};
    const std::string section = session.FromUser(arguments.Words()[1]);
    const std::string path = session.FromUser(arguments.Words()[2]);
    for (const std::string &file : arguments.All("--defaults"))
        files.push_back(file);

    Chain chain;
    for (const std::string &file : files)
        ReadEnvironment(session, file, chain.Add());
    const bool direct = !arguments.Has("--tree");
    const Zr::CZrEnvElement *elem = chain.Front().GetElement(section.c_str(), path.c_str(), direct, true);
    const std::string place = "[" + session.ToUser(section) + "] " + session.ToUser(path);
    if (elem == nullptr)
        throw Failure(NotFound, files[0] + ": " + place + ": not found");
    const Zr::CZrEnvDataElement *data = elem->ToEnvDataElement();
    const std::string &origin = files[static_cast<std::size_t>(elem->GetEnv()->GetID())];
    if (data == nullptr || data->GetString() == nullptr)
        throw Failure(NotFound, origin + ": " + place + ": has no value" + (data == nullptr ? ", it is a block" : ""));
    if (arguments.Has("--origin"))
        session.out << origin << ": ";
    session.out << session.ToUser(data->GetString()) << '\n';
    return Done;
}

} // namespace

const Verb &GetVerb() {
    static const Verb verb = {
        "get",
        "print one value",
        "usage: zrtool env get FILE SECTION PATH [--defaults FILE]... [--tree] [--origin]\n"
        "\n"
        "Prints the value at PATH in SECTION. The steps of a path are joined by '@'; a number behind a step\n"
        "chooses among elements of one name: Storey@2@Height.\n"
        "  --defaults FILE  a file to ask when FILE has no such element; may be given several times\n"
        "  --tree           look for each step anywhere below the one before it, nearest level first\n"
        "  --origin         print the name of the file that had the value in front of it\n",
        {{"--defaults", true}, {"--tree", false}, {"--origin", false}},
        Run};
    return verb;
}

} // namespace zrtool
