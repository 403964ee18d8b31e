// What an expression that is being read keeps for later, on a stack of its own.
#include "expressions/waiting_stack.h"

#include <cstring>

#include <zrclb/heap.h>

namespace zr::expressions {

WaitingStack::~WaitingStack() {
    if (m_parts != m_in_place)
        heap_free(m_parts);
}

bool WaitingStack::Grow() {
    constexpr std::size_t limit = 0xFFFFFFFF / sizeof(WaitingPart); // of an allocation
    const auto room = static_cast<std::size_t>(m_last - m_parts) + 1;
    if (room > limit / 2)
        return false;
    auto *grown = static_cast<WaitingPart *>(heap_malloc(static_cast<unsigned>(room * 2 * sizeof(WaitingPart))));
    if (grown == nullptr)
        return false;
    std::memcpy(grown, m_parts, room * sizeof(WaitingPart));
    if (m_parts != m_in_place)
        heap_free(m_parts);
    m_parts = grown;
    m_top = m_parts + room - 1;
    m_last = m_parts + room * 2 - 1;
    return true;
}

} // namespace zr::expressions
