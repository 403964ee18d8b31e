// The calculator's grammar as plain recursion over the public scanner, one function for each rule. Slow, and no deeper than the
// machine's stack; the library's reader must agree with it in value, error, place, and in what a failure leaves behind.
#ifndef TESTS_EXPRESSIONS_REFERENCE_CALCULATOR_H
#define TESTS_EXPRESSIONS_REFERENCE_CALCULATOR_H

#include <cmath>
#include <string>

#include <zrclb/calc.h>

#include "expressions/scanner.h"

namespace zr::test {

class ReferenceCalculator {
public:
    explicit ReferenceCalculator(const char *text) : m_source(text), m_scanner(&m_source, 0xA0, words) {}

    int error = 0;
    zr_long Row() const { return m_token.row; }
    zr_long Column() const { return m_token.column; }

    bool Calculate(double &result) {
        Fetch();
        Conditional(result);
        if (error == 0 && m_kind != 44)
            error = 1;
        return error == 0;
    }

private:
    static constexpr int and_word = 13, or_word = 14, not_word = 15, pi_word = 16, min_word = 17, max_word = 18;
    static inline const char *words[] = {"SIN", "COS", "TAN", "COT", "ASN", "ACS", "ATN", "ACT", "ABS", "SQRT",
                                         "EXP", "LGT", "LOG", "AND", "OR",  "NOT", "PI",  "MIN", "MAX", nullptr};

    class Source : public IZrScannerGetChar {
    public:
        explicit Source(const char *text) : m_text(text) {}
        int GetChar() override { return m_text != nullptr ? static_cast<signed char>(*m_text++) : 0; }

    private:
        const char *m_text;
    };

    void Fetch() {
        if (m_scanner.NextToken(m_kind, m_token) != 0)
            error = 1;
    }
    bool IsWord(zr_long word) const { return m_kind == 5 && m_token.longValue == word; }

    void Conditional(double &value) {
        Logic(value);
        if (error != 0 || m_kind != 37)
            return;
        const bool outer = m_evaluate;
        Fetch();
        m_evaluate = outer && value != 0;
        double first = 0, second = 0;
        Conditional(first);
        if (error != 0)
            return;
        if (m_kind != 17) {
            error = 7;
            m_evaluate = outer;
            return;
        }
        Fetch();
        m_evaluate = outer && value == 0;
        Conditional(second);
        if (error != 0)
            return;
        if (outer)
            value = value == 0 ? second : first;
        m_evaluate = outer;
    }

    void Logic(double &value) {
        Relation(value);
        while (error == 0 && (IsWord(and_word) || IsWord(or_word))) {
            const bool conjunction = IsWord(and_word);
            double right = 0;
            Fetch();
            Relation(right);
            if (error == 0 && m_evaluate)
                value = (conjunction ? value != 0 && right != 0 : value != 0 || right != 0) ? 1 : 0;
        }
    }

    bool IsRelation() const { return m_kind == 12 || m_kind == 13 || (m_kind >= 23 && m_kind <= 26); }

    static bool Compare(zr_long relation, double left, double right) {
        switch (relation) {
        case 12:
            return left == right;
        case 13:
            return left != right;
        case 23:
            return left < right;
        case 24:
            return left > right;
        case 25:
            return left <= right;
        default:
            return left >= right;
        }
    }

    void Relation(double &value) {
        Sum(value);
        while (error == 0 && IsRelation()) {
            const zr_long relation = m_kind;
            double right = 0;
            Fetch();
            Sum(right);
            if (error == 0 && m_evaluate)
                value = Compare(relation, value, right) ? 1 : 0;
        }
    }

    void Sum(double &value) {
        Term(value);
        while (error == 0 && (m_kind == 18 || m_kind == 19)) {
            const bool plus = m_kind == 18;
            double right = 0;
            Fetch();
            Term(right);
            if (error == 0 && m_evaluate)
                value = plus ? value + right : value - right;
        }
    }

    // The one loop that doesn't look for the error at its top.
    void Term(double &value) {
        Power(value);
        if (error != 0)
            return;
        while (m_kind == 20 || m_kind == 21) {
            const bool times = m_kind == 20;
            double right = 0;
            Fetch();
            Factor(right);
            if (error != 0)
                return;
            RaiseIfAsked(right);
            if (error != 0)
                return;
            if (!m_evaluate)
                continue;
            if (times) {
                value *= right;
            } else if (right == 0) {
                error = 16;
                value = 0;
            } else {
                value /= right;
            }
        }
    }

    void Power(double &value) {
        Factor(value);
        if (error == 0)
            RaiseIfAsked(value);
    }

    void RaiseIfAsked(double &value) {
        if (m_kind != 22)
            return;
        double exponent = 0;
        Fetch();
        Power(exponent);
        if (error == 0 && m_evaluate)
            value = RaiseTo(value, exponent);
    }

    double RaiseTo(double base, double exponent) {
        const bool whole = exponent >= -2147483648.0 && exponent <= 2147483647.0 && std::floor(exponent) == exponent;
        if (base < 0 && !whole) {
            error = 14;
            return 0;
        }
        const double power = std::pow(base, exponent);
        if (!std::isfinite(power)) {
            error = 15;
            return 0;
        }
        return power;
    }

    void Factor(double &value) {
        if (m_kind == 27) {
            Fetch();
            Conditional(value);
            if (error == 0)
                Close();
        } else if (m_kind == 7 || m_kind == 8) {
            Constant(value, m_kind == 8 ? m_token.doubleValue : m_token.longValue);
        } else if (m_kind == 19) {
            Fetch();
            Factor(value);
            if (error == 0 && m_evaluate)
                value = -value;
        } else if (IsWord(not_word)) {
            Fetch();
            Factor(value);
            if (error == 0 && m_evaluate)
                value = value == 0 ? 1 : 0;
        } else if (IsWord(pi_word)) {
            Constant(value, 3.141592653589793);
        } else if (m_kind == 5) {
            Function(value);
        } else {
            error = 1;
        }
    }

    void Constant(double &value, double constant) {
        if (m_evaluate)
            value = constant;
        Fetch();
    }

    void Close() {
        if (m_kind == 28)
            Fetch();
        else
            error = 3;
    }

    void Function(double &value) {
        const zr_long word = m_token.longValue;
        Fetch();
        if (m_kind != 27) {
            error = 2;
            return;
        }
        double x = 0;
        Fetch();
        Conditional(x);
        while (error == 0 && (word == min_word || word == max_word) && m_kind == 14) {
            double second = 0;
            Fetch();
            Conditional(second);
            if (error == 0 && (word == max_word ? second >= x : second <= x))
                x = second;
        }
        if (error != 0)
            return;
        Close();
        if (error == 0 && m_evaluate)
            value = FunctionValue(word, x, value);
    }

    double FunctionValue(zr_long word, double x, double otherwise) {
        constexpr double pi = 3.141592653589793;
        if (word == 9 && !(x >= 0)) {
            error = 17;
            return 0;
        }
        const double values[] = {std::sin(x * pi / 180.0),
                                 std::cos(x * pi / 180.0),
                                 std::tan(x * pi / 180.0),
                                 1 / std::tan(x * pi / 180.0),
                                 std::asin(x) / pi * 180.0,
                                 std::acos(x) / pi * 180.0,
                                 std::atan(x) / pi * 180.0,
                                 std::atan(1 / x) / pi * 180.0,
                                 std::fabs(x),
                                 std::sqrt(x),
                                 std::exp(x),
                                 std::log(x),
                                 std::log10(x),
                                 otherwise,
                                 otherwise,
                                 0,
                                 0,
                                 x,
                                 x};
        return values[word];
    }

    Source m_source;
    CZrScanner m_scanner;
    zr_long m_kind = 0;
    ZrScanToken m_token = {};
    bool m_evaluate = true;
};

} // namespace zr::test

#endif
