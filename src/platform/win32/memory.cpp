// Windows has neither: it fills pages when they are touched, and what a process may use counts until it is given back.
#include "platform/memory.h"

namespace zr::platform {

void FillPagesAhead(void *, std::size_t) {}

bool ForgetContents(void *, std::size_t) {
    return false;
}

} // namespace zr::platform
