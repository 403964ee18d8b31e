// Reads an expression and computes while reading, on a stack of its own.
//
// From the lowest precedence to the highest: a ? b : c (from the right), AND and OR (alike), relations, sums, products, powers (from
// the right), signs and NOT. An operator waits on the stack with its left operand until one comes that binds no tighter. The first
// error ends the reading at the end of the operand at work. The steps are inline, since calls between them would take a quarter of
// the time.
#include "expressions/expression.h"

#include "expressions/computing.h"

namespace zr::expressions {

namespace {

constexpr double pi = 3.141592653589793;

double ToNumber(bool truth) {
    return truth ? 1.0 : 0.0;
}

// An operator between two operands: what it waits as, and what it lets be applied before it, which binds at least as tightly.
struct Operator {
    Waiting what;
    Waiting weakest;
};

// Of a kind of token; what is no operator ends all of them.
struct OperatorTable {
    Operator operators[SCAN_KIND_END + 1] = {};

    constexpr OperatorTable() {
        for (Operator &none : operators)
            none = {Waiting::Bottom, Waiting::And};
        operators[SCAN_KIND_LESS] = {Waiting::Less, Waiting::Less};
        operators[SCAN_KIND_LESS_EQUAL] = {Waiting::LessEqual, Waiting::Less};
        operators[SCAN_KIND_GREATER] = {Waiting::Greater, Waiting::Less};
        operators[SCAN_KIND_GREATER_EQUAL] = {Waiting::GreaterEqual, Waiting::Less};
        operators[SCAN_KIND_EQUAL] = {Waiting::Equal, Waiting::Less};
        operators[SCAN_KIND_HASH] = {Waiting::Different, Waiting::Less};
        operators[SCAN_KIND_PLUS] = {Waiting::Plus, Waiting::Plus};
        operators[SCAN_KIND_MINUS] = {Waiting::Minus, Waiting::Plus};
        operators[SCAN_KIND_STAR] = {Waiting::Times, Waiting::Times};
        operators[SCAN_KIND_SLASH] = {Waiting::Over, Waiting::Times};
        operators[SCAN_KIND_POWER] = {Waiting::Power, Waiting::Negation}; // from the right: not those that wait
    }
};

constexpr OperatorTable table;

Operator OperatorOf(zr_long kind, Word keyword) {
    if (kind == SCAN_KIND_KEYWORD && (keyword == Word::And || keyword == Word::Or))
        return {keyword == Word::And ? Waiting::And : Waiting::Or, Waiting::And};
    return table.operators[kind];
}

} // namespace

CalculatorErrorType Expression::Compute(const char *text, double &result) {
    tokens_.Start(text);
    stack_.Clear();
    error_ = CALCULATOR_OK;
    evaluate_ = true;
    value_ = result;
    Fetch();
    Step next = Step::Operand;
    while (next != Step::Done) {
        next = ReadOperand();
        while (next == Step::Operator)
            next = ReadOperator();
    }
    if (error_ == CALCULATOR_OK && tokens_.Kind() != SCAN_KIND_END)
        error_ = CALCULATOR_SYNTAX;
    if (error_ != CALCULATOR_OK)
        Unwind();
    result = value_;
    return error_;
}

// An error that stands already doesn't keep the operand from being read: it comes from its first token, or is a division by zero
// whose product goes on. A token at fault counts like the one before it.
inline Expression::Step Expression::ReadOperand() {
    switch (tokens_.Kind()) {
    case SCAN_KIND_LONG:
    case SCAN_KIND_DOUBLE:
        return Take(tokens_.Number());
    case SCAN_KIND_LEFT_PARENTHESIS:
        return Enter(Waiting::Parenthesis);
    case SCAN_KIND_MINUS:
        return Enter(Waiting::Negation);
    case SCAN_KIND_KEYWORD:
        return ReadWord();
    default:
        return Fail(CALCULATOR_SYNTAX);
    }
}

inline Expression::Step Expression::Take(double value) {
    if (evaluate_)
        value_ = value;
    Fetch();
    return Step::Operator;
}

inline Expression::Step Expression::ReadWord() {
    const Word word = tokens_.Keyword();
    if (word == Word::Not)
        return Enter(Waiting::Not);
    if (word == Word::Pi)
        return Take(pi);
    Fetch();
    return tokens_.Kind() == SCAN_KIND_LEFT_PARENTHESIS ? Enter(word) : Fail(CALCULATOR_LEFT_PARENTHESIS);
}

// Lets something in front of an operand wait for it.
inline Expression::Step Expression::Enter(Waiting what) {
    if (stack_.Push(what, value_) == nullptr)
        return Fail(CALCULATOR_SYNTAX);
    Fetch();
    return Step::Operand;
}

inline Expression::Step Expression::Enter(Word call) {
    WaitingPart *part = stack_.Push(Waiting::Call, value_);
    if (part == nullptr)
        return Fail(CALCULATOR_SYNTAX);
    part->word = static_cast<std::int8_t>(call);
    part->repeated = false;
    value_ = 0.0;
    Fetch();
    return Step::Operand;
}

// Behind an operand: applies what binds at least as tightly as what comes, and reads that.
inline Expression::Step Expression::ReadOperator() {
    if (error_ != CALCULATOR_OK)
        return Step::Done;
    const Operator next = OperatorOf(tokens_.Kind(), tokens_.Keyword());
    while (stack_.Top().what >= next.weakest) {
        if (evaluate_)
            Apply(stack_.Top());
        stack_.Pop();
        if (error_ == CALCULATOR_OK)
            continue;
        // A division by zero is seen only behind the next factor.
        if (error_ == CALCULATOR_DIVISION && next.weakest == Waiting::Times)
            break;
        return Step::Done;
    }
    return next.what != Waiting::Bottom ? ReadRight(next.what) : EndConditional();
}

// Behind the left operand of an operator.
inline Expression::Step Expression::ReadRight(Waiting what) {
    if (stack_.Push(what, value_) == nullptr)
        return Fail(CALCULATOR_SYNTAX);
    value_ = 0.0;
    Fetch();
    return Step::Operand;
}

inline void Expression::Apply(const WaitingPart &part) {
    const double left = part.left;
    switch (part.what) {
    case Waiting::Plus:
        value_ = left + value_;
        break;
    case Waiting::Minus:
        value_ = left - value_;
        break;
    case Waiting::Times:
        value_ = left * value_;
        break;
    case Waiting::Over:
        value_ = Quotient(left, value_, error_);
        break;
    case Waiting::Power:
        value_ = Power(left, value_, error_);
        break;
    case Waiting::Negation:
        value_ = -value_;
        break;
    case Waiting::Not:
        value_ = ToNumber(value_ == 0);
        break;
    case Waiting::Less:
        value_ = ToNumber(left < value_);
        break;
    case Waiting::LessEqual:
        value_ = ToNumber(left <= value_);
        break;
    case Waiting::Greater:
        value_ = ToNumber(left > value_);
        break;
    case Waiting::GreaterEqual:
        value_ = ToNumber(left >= value_);
        break;
    case Waiting::Equal:
        value_ = ToNumber(left == value_);
        break;
    case Waiting::Different:
        value_ = ToNumber(left != value_);
        break;
    case Waiting::And: // both sides are always computed
        value_ = ToNumber(left != 0 && value_ != 0);
        break;
    default:
        value_ = ToNumber(left != 0 || value_ != 0);
        break;
    }
}

// Behind a logical expression: a choice begins, or what waits ends.
inline Expression::Step Expression::EndConditional() {
    for (;;) {
        if (tokens_.Kind() == SCAN_KIND_QUESTION) { // never behind a second branch, which has taken it
            WaitingPart *choice = stack_.Push(Waiting::Then, value_);
            if (choice == nullptr)
                return Fail(CALCULATOR_SYNTAX);
            choice->evaluate = evaluate_;
            evaluate_ = evaluate_ && value_ != 0;
            value_ = 0.0;
            Fetch();
            return Step::Operand;
        }
        switch (stack_.Top().what) {
        case Waiting::Parenthesis:
            return EndParenthesis();
        case Waiting::Call:
            return EndCall();
        case Waiting::Then:
            return EndThen();
        case Waiting::Else:
            EndElse();
            break;
        default:
            return Step::Done;
        }
    }
}

inline Expression::Step Expression::EndParenthesis() {
    if (tokens_.Kind() != SCAN_KIND_RIGHT_PARENTHESIS)
        return Fail(CALCULATOR_RIGHT_PARENTHESIS);
    stack_.Pop();
    Fetch();
    return Step::Operator;
}

// Behind an argument.
inline Expression::Step Expression::EndCall() {
    WaitingPart &call = stack_.Top();
    const auto word = static_cast<Word>(call.word);
    if (!call.repeated || (word == Word::Max ? value_ >= call.value : value_ <= call.value))
        call.value = value_;
    if (tokens_.Kind() == SCAN_KIND_COMMA && (word == Word::Min || word == Word::Max)) {
        call.repeated = true;
        value_ = 0.0;
        Fetch();
        return Step::Operand;
    }
    if (tokens_.Kind() != SCAN_KIND_RIGHT_PARENTHESIS)
        return Fail(CALCULATOR_RIGHT_PARENTHESIS);
    Fetch();
    value_ = call.left;
    if (error_ == CALCULATOR_OK && evaluate_)
        value_ = FunctionValue(word, call.value, value_, error_);
    stack_.Pop();
    return Step::Operator;
}

// Behind the first branch.
inline Expression::Step Expression::EndThen() {
    if (tokens_.Kind() != SCAN_KIND_COLON)
        return Fail(CALCULATOR_ELSE);
    WaitingPart &choice = stack_.Top();
    choice.what = Waiting::Else;
    choice.value = value_;
    Fetch();
    evaluate_ = choice.evaluate && choice.left == 0;
    value_ = 0.0;
    return Step::Operand;
}

// Behind the second branch.
inline void Expression::EndElse() {
    const WaitingPart &choice = stack_.Top();
    evaluate_ = choice.evaluate;
    if (!evaluate_)
        value_ = choice.left;
    else if (choice.left != 0)
        value_ = choice.value;
    stack_.Pop();
}

// After a failure: the result is what the leftmost operand has come to.
void Expression::Unwind() {
    for (; stack_.Top().what != Waiting::Bottom; stack_.Pop()) {
        const Waiting what = stack_.Top().what;
        if (what >= Waiting::Call && what <= Waiting::Power)
            value_ = stack_.Top().left;
    }
}

} // namespace zr::expressions
