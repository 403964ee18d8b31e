// Any command line: which parts may name its program, and the arguments for each, as the plain reference has them.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/command_line.h"
#include "platform/reference_command_line.h"

namespace {

void Check(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

// The text up to its first zero byte is the line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string line(std::string(reinterpret_cast<const char *>(data), size).c_str());
    zr::platform::ProgramNames names(line);
    std::string_view name, arguments;
    int split = 0; // some of them show it; all would take long
    for (const auto &[wanted_name, wanted_arguments] : reference::ProgramNames(line)) {
        Check(names.Next(name, arguments) && name == wanted_name && arguments == wanted_arguments);
        if (++split > 3)
            continue;
        zr::platform::ArgumentList list;
        const bool fits =
            name.size() <= zr::platform::longest_command_line && arguments.size() <= zr::platform::longest_command_line;
        Check(list.Split(name, arguments) == fits);
        if (!fits)
            continue;
        std::vector<std::string> wanted = reference::Arguments(wanted_arguments);
        wanted.insert(wanted.begin(), wanted_name);
        Check(std::vector<std::string>(list.Values(), list.Values() + list.Count()) == wanted);
        Check(list.Values()[list.Count()] == nullptr);
    }
    Check(!names.Next(name, arguments));
    return 0;
}
