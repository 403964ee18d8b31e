// Large pages: a process needs a right of its own for them, which users do not have.
#include "platform/memory.h"

namespace zr::platform {

std::size_t LargePageSize() {
    return 0;
}

void WantLargePages(void *, std::size_t) {}

} // namespace zr::platform
