// Finding the program that a command line names.
#include "platform/posix/posix_programs.h"

#include <cstdlib>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

#include "platform/files.h"
#include "platform/modules.h"
#include "platform/posix/posix_paths.h"
#include "platform/system_error.h"

namespace zr::platform::posix {

namespace {

// Where the system looks without PATH.
constexpr char default_search_path[] = "/usr/local/bin:/usr/bin:/bin";

bool IsPath(std::string_view name) {
    return name.find_first_of("\\/:") != std::string_view::npos;
}

int FindPath(std::string_view name, PathBuffer &host) {
    char path[path_size];
    PathBuffer translated;
    struct stat status;
    if (name.size() >= sizeof path)
        return file_not_found;
    std::memcpy(path, name.data(), name.size());
    path[name.size()] = 0;
    if (!ToHost(path, translated, sizeof translated) || stat(translated, &status) != 0)
        return file_not_found;
    if (S_ISDIR(status.st_mode))
        return access_denied;
    const bool plain = std::strchr(translated, '/') == nullptr; // in the current folder
    const std::string_view lead = plain ? "./" : "";
    const std::size_t length = std::strlen(translated);
    if (lead.size() + length >= sizeof host)
        return file_not_found;
    std::memcpy(host, lead.data(), lead.size());
    std::memcpy(host + lead.size(), translated, length + 1);
    return done;
}

// Whether folder/name may be run; `host` gets its path.
bool IsRunnable(std::string_view folder, std::string_view name, PathBuffer &host) {
    struct stat status;
    if (folder.empty())
        folder = ".";
    if (folder.size() + 1 + name.size() >= sizeof host)
        return false;
    std::memcpy(host, folder.data(), folder.size());
    host[folder.size()] = '/';
    std::memcpy(host + folder.size() + 1, name.data(), name.size());
    host[folder.size() + 1 + name.size()] = 0;
    return stat(host, &status) == 0 && S_ISREG(status.st_mode) && access(host, X_OK) == 0;
}

// The folder of the running program, as the host's path; empty if it isn't known.
std::string_view ProgramFolder(PathBuffer &buffer) {
    const ssize_t length = readlink("/proc/self/exe", buffer, sizeof buffer);
    const std::string_view path(buffer, length > 0 ? static_cast<std::size_t>(length) : 0);
    const std::size_t slash = path.rfind('/');
    return slash != std::string_view::npos ? path.substr(0, slash == 0 ? 1 : slash) : std::string_view();
}

} // namespace

bool FindInSearchPath(std::string_view name, PathBuffer &host) {
    const char *variable = std::getenv("PATH");
    std::string_view folders = variable != nullptr ? variable : default_search_path;
    for (;;) {
        const std::size_t end = folders.find(':');
        if (IsRunnable(folders.substr(0, end), name, host))
            return true;
        if (end == std::string_view::npos)
            return false;
        folders.remove_prefix(end + 1);
    }
}

int FindProgram(std::string_view name, PathBuffer &host) {
    if (name.empty())
        return file_not_found;
    if (IsPath(name))
        return FindPath(name, host);
    PathBuffer buffer;
    const std::string_view own = ProgramFolder(buffer);
    const bool found =
        (!own.empty() && IsRunnable(own, name, host)) || IsRunnable(".", name, host) || FindInSearchPath(name, host);
    return found ? done : file_not_found;
}

} // namespace zr::platform::posix
