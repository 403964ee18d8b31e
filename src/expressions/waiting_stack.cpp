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
    const auto room = static_cast<std::size_t>(last_ - parts_) + 1;
    if (room > limit / 2)
        return false;
    auto *grown = static_cast<WaitingPart *>(heap_malloc(static_cast<unsigned>(room * 2 * sizeof(WaitingPart))));
    if (grown == nullptr)
        return false;
    std::memcpy(grown, parts_, room * sizeof(WaitingPart));
    if (parts_ != in_place_)
        heap_free(parts_);
    parts_ = grown;
    top_ = parts_ + room - 1;
    last_ = parts_ + room * 2 - 1;
    return true;
}

} // namespace zr::expressions
