// Changing the environment variables of the process.
#include "platform/environment.h"

#include <cstdlib>

namespace zr::platform {

int SetVariable(const char *name, const char *value) {
    return _putenv_s(name, value);
}

} // namespace zr::platform
