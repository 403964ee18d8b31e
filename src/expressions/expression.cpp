// Reads an expression and computes while reading, on a stack of its own.
//
// From the lowest precedence to the highest: a ? b : c (from the right), AND and OR (alike), relations, sums, products, powers (from
// the right), signs and NOT. An operator waits on the stack with its left operand until one comes that binds no tighter. The first
// error ends the reading at the end of the operand at work.
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

// The reading of one expression.
//
// What is used at every step lives in registers, which saves a quarter of the time. Therefore every part of this class is inline, each
// step is called from one place, and nothing but the stack and the scanner is handed out by reference.
class Reading {
public:
    Reading(const char *text, double value, ExpressionScanner &scanner, WaitingStack &stack)
        : m_tokens(text, scanner), m_stack(stack), m_value(value) {}

    void Run();

    CalculatorErrorType Error() const { return m_error; }
    double Value() const { return m_value; }
    const ExpressionTokens &Tokens() const { return m_tokens; }

private:
    // What is read next.
    enum class Step {
        Operand,
        Call,
        CallValue,
        Operator,
        Done
    };

    Step Fail(CalculatorErrorType error) {
        m_error = error;
        return Step::Done;
    }

    // Nothing has failed before.
    void Take(const Computed &computed) {
        m_value = computed.value;
        m_error = computed.error;
    }

    Step Read(Step what);
    Step ReadOperand();
    Step ReadWord();
    Step ReadNumber(double value);
    Step Enter(Waiting what);
    Step OpenCall();
    Step ReadOperator();
    Step ReadRight(Waiting what);
    void Apply(const WaitingPart &part);
    Step EndConditional();
    Step EndParenthesis();
    Step EndCall();
    Step EndThen();
    void ComputeCall();
    void EndElse();
    void Unwind();

    ExpressionTokens m_tokens;
    WaitingStack &m_stack;
    bool m_evaluate = true;
    Word m_called = Word::None; // the function whose parenthesis is to come
    CalculatorErrorType m_error = CALCULATOR_OK;
    double m_value; // of the operand at work
};

inline void Reading::Run() {
    m_stack.Clear();
    Step next = Step::Operand;
    do {
        if (!m_tokens.Next())
            m_error = CALCULATOR_SYNTAX;
        next = Read(next);
    } while (next != Step::Done);
    if (m_error == CALCULATOR_OK && m_tokens.Kind() != SCAN_KIND_END)
        m_error = CALCULATOR_SYNTAX;
    Unwind();
}

inline Reading::Step Reading::Read(Step what) {
    switch (what) {
    case Step::Operand:
        return ReadOperand();
    case Step::Call:
        return OpenCall();
    case Step::CallValue:
        ComputeCall();
        [[fallthrough]];
    default:
        return ReadOperator();
    }
}

// An error that stands already doesn't keep the operand from being read: it comes from its first token, or is a division by zero
// whose product goes on. A token at fault counts like the one before it.
inline Reading::Step Reading::ReadOperand() {
    switch (m_tokens.Kind()) {
    case SCAN_KIND_LONG:
    case SCAN_KIND_DOUBLE:
        return ReadNumber(m_tokens.Number());
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

inline Reading::Step Reading::ReadNumber(double value) {
    if (m_evaluate)
        m_value = value;
    return Step::Operator;
}

inline Reading::Step Reading::ReadWord() {
    const Word word = m_tokens.Keyword();
    if (word == Word::Not)
        return Enter(Waiting::Not);
    if (word == Word::Pi)
        return ReadNumber(pi);
    m_called = word;
    return Step::Call;
}

// Lets something in front of an operand wait for it.
inline Reading::Step Reading::Enter(Waiting what) {
    if (m_stack.Push(what, m_value) == nullptr)
        return Fail(CALCULATOR_SYNTAX);
    return Step::Operand;
}

// Behind the name of a function.
inline Reading::Step Reading::OpenCall() {
    if (m_tokens.Kind() != SCAN_KIND_LEFT_PARENTHESIS)
        return Fail(CALCULATOR_LEFT_PARENTHESIS);
    WaitingPart *part = m_stack.Push(Waiting::Call, m_value);
    if (part == nullptr)
        return Fail(CALCULATOR_SYNTAX);
    part->word = static_cast<std::int8_t>(m_called);
    part->repeated = false;
    m_value = 0.0;
    return Step::Operand;
}

// Behind an operand: applies what binds at least as tightly as what comes, and reads that.
inline Reading::Step Reading::ReadOperator() {
    if (m_error != CALCULATOR_OK)
        return Step::Done;
    const Operator next = OperatorOf(m_tokens.Kind(), m_tokens.Keyword());
    while (m_stack.Top().what >= next.weakest) {
        if (m_evaluate)
            Apply(m_stack.Top());
        m_stack.Pop();
        if (m_error == CALCULATOR_OK)
            continue;
        // A division by zero is seen only behind the next factor.
        if (m_error == CALCULATOR_DIVISION && next.weakest == Waiting::Times)
            break;
        return Step::Done;
    }
    return next.what != Waiting::Bottom ? ReadRight(next.what) : EndConditional();
}

// Behind the left operand of an operator.
inline Reading::Step Reading::ReadRight(Waiting what) {
    if (m_stack.Push(what, m_value) == nullptr)
        return Fail(CALCULATOR_SYNTAX);
    m_value = 0.0;
    return Step::Operand;
}

inline void Reading::Apply(const WaitingPart &part) {
    const double left = part.left;
    switch (part.what) {
    case Waiting::Plus:
        m_value = left + m_value;
        break;
    case Waiting::Minus:
        m_value = left - m_value;
        break;
    case Waiting::Times:
        m_value = left * m_value;
        break;
    case Waiting::Over:
        Take(Quotient(left, m_value));
        break;
    case Waiting::Power:
        Take(Power(left, m_value));
        break;
    case Waiting::Negation:
        m_value = -m_value;
        break;
    case Waiting::Not:
        m_value = ToNumber(m_value == 0);
        break;
    case Waiting::Less:
        m_value = ToNumber(left < m_value);
        break;
    case Waiting::LessEqual:
        m_value = ToNumber(left <= m_value);
        break;
    case Waiting::Greater:
        m_value = ToNumber(left > m_value);
        break;
    case Waiting::GreaterEqual:
        m_value = ToNumber(left >= m_value);
        break;
    case Waiting::Equal:
        m_value = ToNumber(left == m_value);
        break;
    case Waiting::Different:
        m_value = ToNumber(left != m_value);
        break;
    case Waiting::And: // both sides are always computed
        m_value = ToNumber(left != 0 && m_value != 0);
        break;
    default:
        m_value = ToNumber(left != 0 || m_value != 0);
        break;
    }
}

// Behind a logical expression: a choice begins, or what waits ends.
inline Reading::Step Reading::EndConditional() {
    for (;;) {
        if (m_tokens.Kind() == SCAN_KIND_QUESTION) { // never behind a second branch, which has taken it
            WaitingPart *choice = m_stack.Push(Waiting::Then, m_value);
            if (choice == nullptr)
                return Fail(CALCULATOR_SYNTAX);
            choice->evaluate = m_evaluate;
            m_evaluate = m_evaluate && m_value != 0;
            m_value = 0.0;
            return Step::Operand;
        }
        switch (m_stack.Top().what) {
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

inline Reading::Step Reading::EndParenthesis() {
    if (m_tokens.Kind() != SCAN_KIND_RIGHT_PARENTHESIS)
        return Fail(CALCULATOR_RIGHT_PARENTHESIS);
    m_stack.Pop();
    return Step::Operator;
}

// Behind an argument.
inline Reading::Step Reading::EndCall() {
    WaitingPart &call = m_stack.Top();
    const auto word = static_cast<Word>(call.word);
    if (!call.repeated || (word == Word::Max ? m_value >= call.value : m_value <= call.value))
        call.value = m_value;
    if (m_tokens.Kind() == SCAN_KIND_COMMA && (word == Word::Min || word == Word::Max)) {
        call.repeated = true;
        m_value = 0.0;
        return Step::Operand;
    }
    if (m_tokens.Kind() != SCAN_KIND_RIGHT_PARENTHESIS)
        return Fail(CALCULATOR_RIGHT_PARENTHESIS);
    return Step::CallValue;
}

// Behind the end of a call.
inline void Reading::ComputeCall() {
    const WaitingPart &call = m_stack.Top();
    m_value = call.left;
    if (m_error == CALCULATOR_OK && m_evaluate)
        Take(FunctionValue(static_cast<Word>(call.word), call.value, m_value));
    m_stack.Pop();
}

// Behind the first branch.
inline Reading::Step Reading::EndThen() {
    if (m_tokens.Kind() != SCAN_KIND_COLON)
        return Fail(CALCULATOR_ELSE);
    WaitingPart &choice = m_stack.Top();
    choice.what = Waiting::Else;
    choice.value = m_value;
    m_evaluate = choice.evaluate && choice.left == 0;
    m_value = 0.0;
    return Step::Operand;
}

// Behind the second branch.
inline void Reading::EndElse() {
    const WaitingPart &choice = m_stack.Top();
    m_evaluate = choice.evaluate;
    if (choice.left != 0) // never where nothing is evaluated
        m_value = choice.value;
    m_stack.Pop();
}

// What still waits, after a failure: the result is what the leftmost operand has come to.
inline void Reading::Unwind() {
    for (; m_stack.Top().what != Waiting::Bottom; m_stack.Pop()) {
        const Waiting what = m_stack.Top().what;
        if (what >= Waiting::Call && what <= Waiting::Power)
            m_value = m_stack.Top().left;
    }
}

} // namespace

CalculatorErrorType Expression::Compute(const char *text, double &result) {
    Reading reading(text, result, m_scanner, m_stack);
    reading.Run();
    m_row = reading.Tokens().Row();
    m_column = reading.Tokens().Column();
    result = reading.Value();
    return reading.Error();
}

} // namespace zr::expressions
