// Changing the environment variables of the process.
#include "platform/environment.h"

#include <cerrno>
#include <cstdlib>

namespace zr::platform {

int SetVariable(const char *name, const char *value) {
    const int failed = *value != 0 ? setenv(name, value, 1) : unsetenv(name);
    return failed != 0 ? errno : 0;
}

} // namespace zr::platform
