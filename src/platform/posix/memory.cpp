// Pages ahead of their first touch and after their last.
#include "platform/memory.h"

#include <cerrno>
#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

namespace zr::platform {

namespace {

// Of the whole pages. False if there are none, or if the system does not know the advice.
[[maybe_unused]] bool AdvisePages(void *memory, std::size_t size, int advice) {
    static const auto page = static_cast<std::uintptr_t>(getpagesize());
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (address + page - 1) & ~(page - 1);
    const std::uintptr_t last = (address + size) & ~(page - 1);
    if (last <= first)
        return false;
    const int kept = errno;
    const bool taken = madvise(reinterpret_cast<void *>(first), last - first, advice) == 0;
    errno = kept;
    return taken;
}

} // namespace

void FillPagesAhead([[maybe_unused]] void *memory, [[maybe_unused]] std::size_t size) {
#ifdef MADV_POPULATE_WRITE
    AdvisePages(memory, size, MADV_POPULATE_WRITE);
#endif
}

bool ForgetContents([[maybe_unused]] void *memory, [[maybe_unused]] std::size_t size) {
#ifdef MADV_FREE
    return AdvisePages(memory, size, MADV_FREE);
#else
    return false;
#endif
}

} // namespace zr::platform
