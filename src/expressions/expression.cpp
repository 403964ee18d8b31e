// Reads an expression and computes while reading, on a stack of its own.
//
// From the lowest precedence to the highest: a ? b : c (from the right), AND and OR (alike), relations, sums, products, powers (from
// the right), signs. An operator waits on the stack with its left operand until one comes that binds no tighter. The first error
// ends the reading at the end of the operand at work.
#include "expressions/expression.h"

#include <cmath>
#include <cstring>

#include <zrclb/heap.h>
#include <zrclb/report.h>

namespace zr::expressions {

namespace {

constexpr double pi = 3.141592653589793;
constexpr double half_turn = 180.0;
constexpr zr_long options = SCAN_UPPER | SCAN_COMPOSE_RELATIONS;

constexpr CalculatorKeywords keywords;
constexpr CharacterTable characters(options);

double ToRadians(double degrees) {
    return degrees * pi / half_turn;
}

double ToDegrees(double radians) {
    return radians / pi * half_turn;
}

double ToNumber(bool truth) {
    return truth ? 1.0 : 0.0;
}

bool IsWhole(double value) {
    constexpr double lowest = -2147483648.0;
    constexpr double highest = 2147483647.0;
    return value >= lowest && value <= highest && value == std::trunc(value);
}

double Power(double base, double exponent, CalculatorErrorType &error) {
    if (base < 0 && !IsWhole(exponent)) {
        error = CALCULATOR_NEGATIVE_POWER;
        return 0.0;
    }
    const double power = std::pow(base, exponent);
    if (std::isfinite(power))
        return power;
    error = CALCULATOR_TOO_LARGE;
    return 0.0;
}

double Quotient(double left, double right, CalculatorErrorType &error) {
    if (right != 0)
        return left / right;
    error = CALCULATOR_DIVISION;
    return 0.0;
}

double Root(double value, CalculatorErrorType &error) {
    if (value >= 0)
        return std::sqrt(value);
    error = CALCULATOR_NEGATIVE_ROOT;
    return 0.0;
}

bool IsRelation(zr_long kind) {
    return (kind >= SCAN_KIND_LESS && kind <= SCAN_KIND_GREATER_EQUAL) || kind == SCAN_KIND_EQUAL ||
           kind == SCAN_KIND_HASH;
}

bool Compare(zr_long relation, double left, double right) {
    switch (relation) {
    case SCAN_KIND_LESS:
        return left < right;
    case SCAN_KIND_GREATER:
        return left > right;
    case SCAN_KIND_LESS_EQUAL:
        return left <= right;
    case SCAN_KIND_GREATER_EQUAL:
        return left >= right;
    case SCAN_KIND_EQUAL:
        return left == right;
    default:
        return left != right;
    }
}

// `result` stays as it was for a word that is no function.
void Call(Word word, double x, double &result, CalculatorErrorType &error) {
    switch (word) {
    case Word::Sin:
        result = std::sin(ToRadians(x));
        break;
    case Word::Cos:
        result = std::cos(ToRadians(x));
        break;
    case Word::Tan:
        result = std::tan(ToRadians(x));
        break;
    case Word::Cot:
        result = 1 / std::tan(ToRadians(x));
        break;
    case Word::Asn:
        result = ToDegrees(std::asin(x));
        break;
    case Word::Acs:
        result = ToDegrees(std::acos(x));
        break;
    case Word::Atn:
        result = ToDegrees(std::atan(x));
        break;
    case Word::Act:
        result = ToDegrees(std::atan(1 / x));
        break;
    case Word::Abs:
        result = std::fabs(x);
        break;
    case Word::Sqrt:
        result = Root(x, error);
        break;
    case Word::Exp:
        result = std::exp(x);
        break;
    case Word::Lgt:
        result = std::log(x);
        break;
    case Word::Log:
        result = std::log10(x);
        break;
    case Word::Min:
    case Word::Max:
        result = x;
        break;
    default:
        zr_switch_error(static_cast<zr_long>(word), "Calc", __LINE__);
        break;
    }
}

// How tightly what waits binds; a sign and a power are applied by themselves.
bool BindsAtLeast(Waiting what, Waiting weakest) {
    return what >= Waiting::Product && what <= weakest;
}

} // namespace

WaitingStack::~WaitingStack() {
    if (parts_ != in_place_)
        heap_free(parts_);
}

bool WaitingStack::Grow() {
    constexpr std::size_t limit = 0xFFFFFFFF / sizeof(WaitingPart); // of an allocation
    if (capacity_ > limit / 2)
        return false;
    const auto bytes = static_cast<unsigned>(capacity_ * 2 * sizeof(WaitingPart));
    auto *grown = static_cast<WaitingPart *>(parts_ == in_place_ ? heap_malloc(bytes) : heap_realloc(parts_, bytes));
    if (grown == nullptr)
        return false;
    if (parts_ == in_place_)
        std::memcpy(grown, in_place_, sizeof in_place_);
    parts_ = grown;
    capacity_ *= 2;
    return true;
}

Expression::Expression() : scanner_(TextSource{}, options, characters, keywords) {
    token_.row = 0;
    token_.column = 0;
}

CalculatorErrorType Expression::Compute(const char *text, double &result) {
    scanner_.GetSource().next = text;
    scanner_.Reset();
    stack_.Clear();
    error_ = CALCULATOR_OK;
    evaluate_ = true;
    value_ = result;
    Fetch();
    for (Step step = Step::Operand; step != Step::Done;)
        step = step == Step::Operand ? ReadOperand() : ReadOperator();
    if (error_ == CALCULATOR_OK && kind_ != SCAN_KIND_END)
        error_ = CALCULATOR_SYNTAX;
    Unwind();
    result = value_;
    return error_;
}

// A token that the scanner finds fault with counts all the same; its kind may be that of the one before.
void Expression::Fetch() {
    if (scanner_.NextToken(kind_, token_) != SCAN_ERROR_NONE)
        error_ = CALCULATOR_SYNTAX;
}

bool Expression::IsWord(Word word) const {
    return kind_ == SCAN_KIND_KEYWORD && token_.longValue == static_cast<zr_long>(word);
}

// Lets the value at work wait. False, with an error, if memory runs out.
bool Expression::Wait(Waiting what, zr_long token, double left) {
    if (stack_.Push({what, evaluate_, false, token, left, 0.0}))
        return true;
    Fail(CALCULATOR_SYNTAX);
    return false;
}

// An error that stands already doesn't keep the operand from being read.
Expression::Step Expression::ReadOperand() {
    switch (kind_) {
    case SCAN_KIND_DOUBLE:
        return Take(token_.doubleValue);
    case SCAN_KIND_LONG:
        return Take(token_.longValue);
    case SCAN_KIND_LEFT_PARENTHESIS:
        return Enter(Waiting::Parenthesis);
    case SCAN_KIND_MINUS:
        return Enter(Waiting::Negation);
    case SCAN_KIND_KEYWORD:
        return ReadWord();
    default:
        Fail(CALCULATOR_SYNTAX);
        return Step::Done;
    }
}

Expression::Step Expression::Take(double value) {
    if (evaluate_)
        value_ = value;
    Fetch();
    return Step::Operator;
}

Expression::Step Expression::Enter(Waiting what) {
    if (!Wait(what, 0, 0.0))
        return Step::Done;
    Fetch();
    return Step::Operand;
}

Expression::Step Expression::ReadWord() {
    if (IsWord(Word::Not))
        return Enter(Waiting::Not);
    if (IsWord(Word::Pi))
        return Take(pi);
    const zr_long word = token_.longValue;
    Fetch();
    if (kind_ != SCAN_KIND_LEFT_PARENTHESIS) {
        Fail(CALCULATOR_LEFT_PARENTHESIS);
        return Step::Done;
    }
    if (!Wait(Waiting::Call, word, value_))
        return Step::Done;
    value_ = 0.0;
    Fetch();
    return Step::Operand;
}

// Behind an operand: applies what binds tighter than what comes, and reads that.
Expression::Step Expression::ReadOperator() {
    if (error_ != CALCULATOR_OK)
        return Step::Done;
    ApplyPrefixes();
    if (kind_ == SCAN_KIND_POWER)
        return ReadBinary(Waiting::Power, kind_);
    ApplyPowers();
    if (error_ != CALCULATOR_OK)
        return Step::Done;
    switch (kind_) {
    case SCAN_KIND_STAR:
    case SCAN_KIND_SLASH:
        ApplyOperators(Waiting::Product);
        return ReadBinary(Waiting::Product, kind_);
    case SCAN_KIND_PLUS:
    case SCAN_KIND_MINUS:
        ApplyOperators(Waiting::Sum);
        return error_ == CALCULATOR_OK ? ReadBinary(Waiting::Sum, kind_) : Step::Done;
    default:
        break;
    }
    ApplyOperators(Waiting::Sum);
    if (IsRelation(kind_)) {
        ApplyOperators(Waiting::Relation);
        return error_ == CALCULATOR_OK ? ReadBinary(Waiting::Relation, kind_) : Step::Done;
    }
    ApplyOperators(Waiting::Logic);
    if (error_ != CALCULATOR_OK)
        return Step::Done;
    if (IsWord(Word::And) || IsWord(Word::Or))
        return ReadBinary(Waiting::Logic, token_.longValue);
    return EndConditional();
}

// A division by zero ends the reading only behind one more factor: the caller asks for it with the error standing.
Expression::Step Expression::ReadBinary(Waiting what, zr_long token) {
    if (!Wait(what, token, value_))
        return Step::Done;
    value_ = 0.0;
    Fetch();
    return Step::Operand;
}

void Expression::ApplyPrefixes() {
    for (; !stack_.Empty(); stack_.Pop()) {
        const Waiting what = stack_.Top().what;
        if (what != Waiting::Negation && what != Waiting::Not)
            return;
        if (evaluate_)
            value_ = what == Waiting::Negation ? -value_ : ToNumber(value_ == 0);
    }
}

void Expression::ApplyPowers() {
    while (error_ == CALCULATOR_OK && !stack_.Empty() && stack_.Top().what == Waiting::Power) {
        if (evaluate_)
            value_ = Power(stack_.Top().left, value_, error_);
        stack_.Pop();
    }
}

// Applies what waits and binds at least as tightly as `weakest`, as long as all goes well.
void Expression::ApplyOperators(Waiting weakest) {
    while (error_ == CALCULATOR_OK && !stack_.Empty() && BindsAtLeast(stack_.Top().what, weakest)) {
        if (evaluate_)
            Apply(stack_.Top());
        stack_.Pop();
    }
}

void Expression::Apply(const WaitingPart &part) {
    switch (part.what) {
    case Waiting::Product:
        value_ = part.token == SCAN_KIND_STAR ? part.left * value_ : Quotient(part.left, value_, error_);
        break;
    case Waiting::Sum:
        value_ = part.token == SCAN_KIND_PLUS ? part.left + value_ : part.left - value_;
        break;
    case Waiting::Relation:
        value_ = ToNumber(Compare(part.token, part.left, value_));
        break;
    default: // both sides of AND and OR are always computed
        value_ = part.token == static_cast<zr_long>(Word::And) ? ToNumber(part.left != 0 && value_ != 0)
                                                               : ToNumber(part.left != 0 || value_ != 0);
        break;
    }
}

// A whole expression stands between what waits and the token.
Expression::Step Expression::EndConditional() {
    for (;;) {
        if (kind_ == SCAN_KIND_QUESTION) { // never behind a second branch, which has taken it
            if (!Wait(Waiting::Then, 0, value_))
                return Step::Done;
            evaluate_ = evaluate_ && value_ != 0;
            value_ = 0.0;
            Fetch();
            return Step::Operand;
        }
        if (stack_.Empty())
            return Step::Done;
        switch (stack_.Top().what) {
        case Waiting::Parenthesis:
            return EndParenthesis();
        case Waiting::Call:
            return EndCall();
        case Waiting::Then:
            return EndThen();
        default:
            EndElse();
            break;
        }
    }
}

Expression::Step Expression::EndParenthesis() {
    if (kind_ != SCAN_KIND_RIGHT_PARENTHESIS) {
        Fail(CALCULATOR_RIGHT_PARENTHESIS);
        return Step::Done;
    }
    stack_.Pop();
    Fetch();
    return Step::Operator;
}

// Behind an argument.
Expression::Step Expression::EndCall() {
    WaitingPart &call = stack_.Top();
    const auto word = static_cast<Word>(call.token);
    if (!call.repeated || (word == Word::Max ? value_ >= call.value : value_ <= call.value))
        call.value = value_;
    if (kind_ == SCAN_KIND_COMMA && (word == Word::Min || word == Word::Max)) {
        call.repeated = true;
        value_ = 0.0;
        Fetch();
        return Step::Operand;
    }
    if (kind_ != SCAN_KIND_RIGHT_PARENTHESIS) {
        Fail(CALCULATOR_RIGHT_PARENTHESIS);
        return Step::Done;
    }
    Fetch();
    value_ = call.left;
    if (error_ == CALCULATOR_OK && evaluate_)
        Call(word, call.value, value_, error_);
    stack_.Pop();
    return Step::Operator;
}

// Behind the first branch.
Expression::Step Expression::EndThen() {
    if (kind_ != SCAN_KIND_COLON) {
        Fail(CALCULATOR_ELSE);
        return Step::Done;
    }
    WaitingPart &choice = stack_.Top();
    choice.what = Waiting::Else;
    choice.value = value_;
    Fetch();
    evaluate_ = choice.evaluate && choice.left == 0;
    value_ = 0.0;
    return Step::Operand;
}

// Behind the second branch.
void Expression::EndElse() {
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
    for (; !stack_.Empty(); stack_.Pop())
        if (stack_.Top().what >= Waiting::Call)
            value_ = stack_.Top().left;
}

} // namespace zr::expressions
