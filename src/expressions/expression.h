// Reads an expression and computes while reading, on a stack of its own: nesting has no limit but memory.
#ifndef ZR_EXPRESSIONS_EXPRESSION_H
#define ZR_EXPRESSIONS_EXPRESSION_H

#include <cstddef>
#include <cstdint>

#include <zrclb/calc.h>
#include <zrclb/scan.h>

#include "expressions/calculator_keywords.h"
#include "expressions/scanner_core.h"

namespace zr::expressions {

// A text in memory. Its bytes are signed, so that FF ends it too; null is an empty one. Nothing is read behind the end.
struct TextSource {
    const char *next = nullptr;

    int Next() { return next != nullptr ? static_cast<signed char>(*next++) : 0; }
    static zr_long User() { return 0; }
};

// What waits on the stack for the value being computed.
enum class Waiting : std::uint8_t {
    Parenthesis,
    Negation,
    Not,
    Call,
    Then,
    Else,
    Power,
    Product,
    Sum,
    Relation,
    Logic
};

// Everything up to Else holds an operand open on its right only; the others are left operands with their operators.
struct WaitingPart {
    Waiting what;
    bool evaluate; // of the surroundings, for Then and Else
    bool repeated; // Call: `value` is the least or greatest argument so far
    zr_long token; // kind of the operator, or word of the call or of AND and OR
    double left;   // left operand, condition, or for Call what the output held before
    double value;  // first branch for Else
};

// A stack with room for ordinary expressions in place.
class WaitingStack {
public:
    WaitingStack() = default;
    ~WaitingStack();
    WaitingStack(const WaitingStack &) = delete;
    WaitingStack &operator=(const WaitingStack &) = delete;

    bool Empty() const { return size_ == 0; }
    WaitingPart &Top() { return parts_[size_ - 1]; }
    void Pop() { --size_; }
    void Clear() { size_ = 0; }

    // False if memory runs out.
    bool Push(const WaitingPart &part) {
        if (size_ == capacity_ && !Grow())
            return false;
        parts_[size_++] = part;
        return true;
    }

private:
    static constexpr std::size_t room_in_place = 32;

    bool Grow();

    WaitingPart in_place_[room_in_place];
    WaitingPart *parts_ = in_place_;
    std::size_t size_ = 0;
    std::size_t capacity_ = room_in_place;
};

class Expression {
public:
    Expression();

    // Computes `text`. `result` goes in as the caller's value, which stands if the computation fails before the first value.
    CalculatorErrorType Compute(const char *text, double &result);

    // Place of the token at which reading stopped.
    zr_long Row() const { return token_.row; }
    zr_long Column() const { return token_.column; }

private:
    enum class Step {
        Operand,
        Operator,
        Done
    };

    void Fetch();
    bool IsWord(Word word) const;
    void Fail(CalculatorErrorType error) { error_ = error; }
    bool Wait(Waiting what, zr_long token, double left);

    Step ReadOperand();
    Step ReadWord();
    Step Take(double value);
    Step Enter(Waiting what);
    Step ReadOperator();
    Step ReadBinary(Waiting what, zr_long token);
    void ApplyPrefixes();
    void ApplyPowers();
    void ApplyOperators(Waiting weakest);
    void Apply(const WaitingPart &part);
    Step EndConditional();
    Step EndParenthesis();
    Step EndCall();
    Step EndThen();
    void EndElse();
    void Unwind();

    ScannerCore<TextSource, CalculatorKeywords> scanner_;
    WaitingStack stack_;
    zr_long kind_ = 0;
    bool evaluate_ = true;
    CalculatorErrorType error_ = CALCULATOR_OK;
    double value_ = 0; // of the operand at work
    ZrScanToken token_;
};

} // namespace zr::expressions

#endif
