// The one lock of all environments.
#include "env/env_lock.h"

namespace zr::env {

namespace {
constinit platform::Lock environmentSection;
}

platform::Lock &Section() {
    return environmentSection;
}

} // namespace zr::env
