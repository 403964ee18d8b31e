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
    m_tokens.Start(text);
    m_stack.Clear();
    m_error = CALCULATOR_OK;
    m_evaluate = true;
    m_value = result;
    Fetch();
    Step next = Step::Operand;
    while (next != Step::Done) {
        next = ReadOperand();
        while (next == Step::Operator)
            next = ReadOperator();
    }
    if (m_error == CALCULATOR_OK && m_tokens.Kind() != SCAN_KIND_END)
        m_error = CALCULATOR_SYNTAX;
    if (m_error != CALCULATOR_OK)
        Unwind();
    result = m_value;
    return m_error;
}

// An error that stands already doesn't keep the operand from being read: it comes from its first token, or is a division by zero
// whose product goes on. A token at fault counts like the one before it.
inline Expression::Step Expression::ReadOperand() {
    switch (m_tokens.Kind()) {
    case SCAN_KIND_LONG:
    case SCAN_KIND_DOUBLE:
        return Take(m_tokens.Number());
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
    if (m_evaluate)
        m_value = value;
    Fetch();
    return Step::Operator;
}

inline Expression::Step Expression::ReadWord() {
    const Word word = m_tokens.Keyword();
    if (word == Word::Not)
        return Enter(Waiting::Not);
    if (word == Word::Pi)
        return Take(pi);
    Fetch();
    return m_tokens.Kind() == SCAN_KIND_LEFT_PARENTHESIS ? Enter(word) : Fail(CALCULATOR_LEFT_PARENTHESIS);
}

// Lets something in front of an operand wait for it.
inline Expression::Step Expression::Enter(Waiting what) {
    if (m_stack.Push(what, m_value) == nullptr)
        return Fail(CALCULATOR_SYNTAX);
    Fetch();
    return Step::Operand;
}

inline Expression::Step Expression::Enter(Word call) {
    WaitingPart *part = m_stack.Push(Waiting::Call, m_value);
    if (part == nullptr)
        return Fail(CALCULATOR_SYNTAX);
    part->word = static_cast<std::int8_t>(call);
    part->repeated = false;
    m_value = 0.0;
    Fetch();
    return Step::Operand;
}

// Behind an operand: applies what binds at least as tightly as what comes, and reads that.
inline Expression::Step Expression::ReadOperator() {
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
inline Expression::Step Expression::ReadRight(Waiting what) {
    if (m_stack.Push(what, m_value) == nullptr)
        return Fail(CALCULATOR_SYNTAX);
    m_value = 0.0;
    Fetch();
    return Step::Operand;
}

inline void Expression::Apply(const WaitingPart &part) {
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
        m_value = Quotient(left, m_value, m_error);
        break;
    case Waiting::Power:
        m_value = Power(left, m_value, m_error);
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
inline Expression::Step Expression::EndConditional() {
    for (;;) {
        if (m_tokens.Kind() == SCAN_KIND_QUESTION) { // never behind a second branch, which has taken it
            WaitingPart *choice = m_stack.Push(Waiting::Then, m_value);
            if (choice == nullptr)
                return Fail(CALCULATOR_SYNTAX);
            choice->evaluate = m_evaluate;
            m_evaluate = m_evaluate && m_value != 0;
            m_value = 0.0;
            Fetch();
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

inline Expression::Step Expression::EndParenthesis() {
    if (m_tokens.Kind() != SCAN_KIND_RIGHT_PARENTHESIS)
        return Fail(CALCULATOR_RIGHT_PARENTHESIS);
    m_stack.Pop();
    Fetch();
    return Step::Operator;
}

// Behind an argument.
inline Expression::Step Expression::EndCall() {
    WaitingPart &call = m_stack.Top();
    const auto word = static_cast<Word>(call.word);
    if (!call.repeated || (word == Word::Max ? m_value >= call.value : m_value <= call.value))
        call.value = m_value;
    if (m_tokens.Kind() == SCAN_KIND_COMMA && (word == Word::Min || word == Word::Max)) {
        call.repeated = true;
        m_value = 0.0;
        Fetch();
        return Step::Operand;
    }
    if (m_tokens.Kind() != SCAN_KIND_RIGHT_PARENTHESIS)
        return Fail(CALCULATOR_RIGHT_PARENTHESIS);
    Fetch();
    m_value = call.left;
    if (m_error == CALCULATOR_OK && m_evaluate)
        m_value = FunctionValue(word, call.value, m_value, m_error);
    m_stack.Pop();
    return Step::Operator;
}

// Behind the first branch.
inline Expression::Step Expression::EndThen() {
    if (m_tokens.Kind() != SCAN_KIND_COLON)
        return Fail(CALCULATOR_ELSE);
    WaitingPart &choice = m_stack.Top();
    choice.what = Waiting::Else;
    choice.value = m_value;
    Fetch();
    m_evaluate = choice.evaluate && choice.left == 0;
    m_value = 0.0;
    return Step::Operand;
}

// Behind the second branch.
inline void Expression::EndElse() {
    const WaitingPart &choice = m_stack.Top();
    m_evaluate = choice.evaluate;
    if (!m_evaluate)
        m_value = choice.left;
    else if (choice.left != 0)
        m_value = choice.value;
    m_stack.Pop();
}

// After a failure: the result is what the leftmost operand has come to.
void Expression::Unwind() {
    for (; m_stack.Top().what != Waiting::Bottom; m_stack.Pop()) {
        const Waiting what = m_stack.Top().what;
        if (what >= Waiting::Call && what <= Waiting::Power)
            m_value = m_stack.Top().left;
    }
}

} // namespace zr::expressions
