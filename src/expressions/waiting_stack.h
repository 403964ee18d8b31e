// What an expression that is being read keeps for later, on a stack of its own.
#ifndef ZR_EXPRESSIONS_WAITING_STACK_H
#define ZR_EXPRESSIONS_WAITING_STACK_H

#include <cstddef>
#include <cstdint>

#include "expressions/calculator_keywords.h"

namespace zr::expressions {

// What waits for the value at work, from what binds least to what binds most.
enum class Waiting : std::uint8_t {
    Bottom,
    Parenthesis,
    Call,
    Then,
    Else,
    And,
    Or,
    Less,
    LessEqual,
    Greater,
    GreaterEqual,
    Equal,
    Different,
    Plus,
    Minus,
    Times,
    Over,
    Power,
    Negation,
    Not
};

struct WaitingPart {
    Waiting what;
    bool evaluate;    // of the surroundings, for Then and Else
    bool repeated;    // Call: `value` is the least or greatest argument so far
    std::int8_t word; // of the call
    double left;      // left operand; condition; for Call what the output held before
    double value;     // first branch for Else
};

// A stack with room for ordinary expressions in place. Its bottom is always there.
class WaitingStack {
public:
    WaitingStack() { m_parts[0].what = Waiting::Bottom; }
    ~WaitingStack();
    WaitingStack(const WaitingStack &) = delete;
    WaitingStack &operator=(const WaitingStack &) = delete;

    WaitingPart &Top() { return *m_top; }
    void Pop() { --m_top; }
    void Clear() { m_top = m_parts; }

    // A new part on top, whose `what` and `left` are set; null if memory runs out.
    WaitingPart *Push(Waiting what, double left) {
        if (m_top == m_last && !Grow())
            return nullptr;
        ++m_top;
        m_top->what = what;
        m_top->left = left;
        return m_top;
    }

private:
    static constexpr std::size_t room_in_place = 32;

    bool Grow();

    WaitingPart m_in_place[room_in_place];
    WaitingPart *m_parts = m_in_place;
    WaitingPart *m_top = m_parts;
    WaitingPart *m_last = m_parts + room_in_place - 1; // that there is room for
};

} // namespace zr::expressions

#endif
