// Large pages.
#include "platform/memory.h"

#include <cerrno>
#include <cstdint>

#include <sys/mman.h>

namespace zr::platform {

namespace {
constexpr std::size_t large_page = 2 * 1024 * 1024;
}

std::size_t LargePageSize() {
#ifdef MADV_HUGEPAGE
    return large_page;
#else
    return 0;
#endif
}

void WantLargePages([[maybe_unused]] void *memory, [[maybe_unused]] std::size_t size) {
#ifdef MADV_HUGEPAGE
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (address + large_page - 1) & ~std::uintptr_t{large_page - 1};
    const std::uintptr_t last = (address + size) & ~std::uintptr_t{large_page - 1};
    if (last <= first)
        return;
    const int kept = errno;
    madvise(reinterpret_cast<void *>(first), last - first, MADV_HUGEPAGE);
    errno = kept;
#endif
}

} // namespace zr::platform
