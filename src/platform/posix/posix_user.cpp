// Folders of the present user by the host's rules.
#include "platform/posix/posix_user.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <pwd.h>
#include <unistd.h>

namespace zr::platform::posix {

namespace {

// The value of the environment variable if it is an absolute path, else null.
const char *AbsoluteValue(const char *variable) {
    const char *value = std::getenv(variable);
    return value != nullptr && value[0] == '/' ? value : nullptr;
}

bool Compose(const char *folder, const char *below, PathBuffer &out) {
    const int length = std::snprintf(out, sizeof out, "%s%s", folder, below);
    return length > 0 && static_cast<std::size_t>(length) < sizeof out;
}

} // namespace

bool BaseFolder(const char *variable, const char *below_home, PathBuffer &out) {
    if (const char *folder = AbsoluteValue(variable))
        return Compose(folder, "", out);
    if (const char *home = AbsoluteValue("HOME"))
        return Compose(home, below_home, out);
    passwd record;
    passwd *found = nullptr;
    char texts[PATH_MAX * 2];
    return getpwuid_r(getuid(), &record, texts, sizeof texts, &found) == 0 && found != nullptr &&
           found->pw_dir[0] == '/' && Compose(found->pw_dir, below_home, out);
}

} // namespace zr::platform::posix
