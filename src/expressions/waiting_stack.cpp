// What an expression that is being read keeps for later, on a stack of its own.
#include "expressions/waiting_stack.h"

#include <cstring>

#include <zrclb/heap.h>

namespace zr::expressions {

WaitingStack::~WaitingStack() {
    if (parts_ != in_place_)
        heap_free(parts_);
}

bool WaitingStack::Grow() {
    constexpr std::size_t limit = 0xFFFFFFFF / sizeof(WaitingPart); // of an allocation
    if (capacity_ > limit / 2)
        return false;
    const auto bytes = static_cast<unsigned>(capacity_ * 2 * sizeof(WaitingPart));
    auto *grown = static_cast<WaitingPart *>(heap_malloc(bytes));
    if (grown == nullptr)
        return false;
    std::memcpy(grown, parts_, capacity_ * sizeof(WaitingPart));
    if (parts_ != in_place_)
        heap_free(parts_);
    parts_ = grown;
    capacity_ *= 2;
    return true;
}

} // namespace zr::expressions
