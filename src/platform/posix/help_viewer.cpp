// What shows help: programs that are installed, found in the folders of PATH.
#include "platform/help_viewer.h"

#include <cstdio>
#include <cstring>

#include <net/route.h>

#include "platform/posix/default_route.h"
#include "platform/posix/posix_paths.h"
#include "platform/posix/posix_programs.h"

namespace zr::platform {

namespace {

using posix::PathBuffer;

// A program that shows help files, and its option in front of a topic's id, null if it has none.
struct Viewer {
    const char *program;
    const char *topic_option;
};

constexpr Viewer viewers[] = {{"xchm", "-c"}, {"kchmviewer", nullptr}, {"okular", nullptr}, {"xdg-open", nullptr}};

// Starts the program if it is installed. `arguments` end with null, and begin with the program's name.
bool StartInstalled(const char *const *arguments) {
    PathBuffer path;
    // The array is only read; the type of the parameter is older than const.
    return posix::FindInSearchPath(arguments[0], path) &&
           posix::StartDetached(path, const_cast<char *const *>(arguments)) == 0;
}

bool StartViewer(const Viewer &viewer, const char *file, const char *topic) {
    const char *const with_topic[] = {viewer.program, viewer.topic_option, topic, file, nullptr};
    const char *const alone[] = {viewer.program, file, nullptr};
    return StartInstalled(topic != nullptr && viewer.topic_option != nullptr ? with_topic : alone);
}

// Whether a line of the file passes the test; false without the file.
bool AnyLine(const char *file, bool (*passes)(const char *line)) {
    std::FILE *table = std::fopen(file, "re");
    if (table == nullptr)
        return false;
    char line[256];
    bool found = false;
    while (!found && std::fgets(line, sizeof line, table) != nullptr)
        found = passes(line);
    std::fclose(table);
    return found;
}

bool CanBeUsed(unsigned flags) {
    return (flags & RTF_UP) != 0 && (flags & RTF_REJECT) == 0;
}

} // namespace

bool posix::HasDefaultRoute(const char *file) {
    return AnyLine(file, [](const char *line) {
        unsigned destination = 0, flags = 0, mask = 0;
        // Interface, destination, gateway, flags, three counts, mask.
        return std::sscanf(line, "%*s %8x %*8x %4x %*d %*d %*d %8x", &destination, &flags, &mask) == 3 &&
               destination == 0 && mask == 0 && CanBeUsed(flags);
    });
}

bool posix::HasDefaultRouteIpv6(const char *file) {
    return AnyLine(file, [](const char *line) {
        char destination[33];
        unsigned length = 0, flags = 0;
        // Destination and its length, source and its length, next hop, metric, two counts, flags.
        return std::sscanf(line, "%32s %2x %*32s %*2x %*32s %*8x %*8x %*8x %8x", destination, &length, &flags) == 3 &&
               std::strspn(destination, "0") == 32 && length == 0 && CanBeUsed(flags);
    });
}

bool backend::IsOnline() {
    return posix::HasDefaultRoute("/proc/net/route") || posix::HasDefaultRouteIpv6("/proc/net/ipv6_route");
}

void backend::OpenUrl(const char *url) {
    const char *const arguments[] = {"xdg-open", url, nullptr};
    StartInstalled(arguments);
}

bool backend::ShowHelpFile(const char *path, HelpCommand command, zr_ulong id) {
    PathBuffer file; // absolute, so that no viewer takes it for an option
    std::size_t root_length = 0;
    if (!posix::ToAbsoluteHost(path, file, root_length))
        return false;
    char topic[16];
    std::snprintf(topic, sizeof topic, "%lu", static_cast<unsigned long>(id));
    for (const Viewer &viewer : viewers) {
        if (StartViewer(viewer, file, command == HelpCommand::topic ? topic : nullptr))
            return true;
    }
    return false;
}

} // namespace zr::platform
