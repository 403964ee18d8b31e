// Texts with computed places, character by character and by the C library's formats. Slow; the library must agree in result, text and
// what is reported.
#ifndef TESTS_EXPRESSIONS_REFERENCE_STRING_EXPRESSION_H
#define TESTS_EXPRESSIONS_REFERENCE_STRING_EXPRESSION_H

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "expressions/reference_calculator.h"

namespace zr::test {

class ReferenceStringExpression {
public:
    std::string out;    // empty after a failure
    std::string report; // what is reported; empty if nothing is
    std::string detail; // the report's second text

    bool Fill(const std::string &text, std::size_t size) {
        if (text.size() >= 1024)
            return Fail("calc_string_expression(): falscher Parameter", "");
        for (std::size_t i = 0; i < text.size(); ++i) {
            const std::size_t close = text.compare(i, 2, "[!") == 0 ? text.find(']', i) : std::string::npos;
            std::string piece(1, text[i]);
            if (close != std::string::npos) {
                piece = text.substr(i + 2, close - i - 2);
                if (!Replace(piece))
                    return Fail("calc_string_expression(): \"Fehler beim Berechnen des Ausdrucks:", piece);
                i = close;
            }
            for (const char c : piece) {
                out += c;
                if (out.size() == size)
                    return Fail("calc_string_expression(): \"Buffer zu klein", "");
            }
        }
        return size > 0 || Fail("calc_string_expression(): \"Buffer zu klein", "");
    }

private:
    bool Fail(const char *text, const std::string &about) {
        out.clear();
        report = text;
        detail = about;
        return false;
    }

    static std::string Trimmed(const std::string &text) {
        const std::size_t first = text.find_first_not_of(' ');
        return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
    }

    // The place by its value; on failure by its expression.
    static bool Replace(std::string &place) {
        place = Trimmed(place);
        const int digits = TakeDigits(place);
        double value = 0;
        ReferenceCalculator calculator(place.c_str());
        if (!calculator.Calculate(value))
            return false;
        place = Formatted(value, digits);
        return true;
    }

    static int TakeDigits(std::string &expression) {
        const std::size_t open = expression.rfind('(');
        if (open == std::string::npos || expression.compare(open, 2, "(.") != 0 ||
            expression.find(')', open) != expression.size() - 1)
            return -1;
        std::string wish = expression.substr(open + 2);
        while (!wish.empty() && (wish[0] == ' ' || (wish[0] >= '\t' && wish[0] <= '\r')))
            wish.erase(0, 1);
        expression.erase(open);
        const double number = std::strtod(Whole(wish).c_str(), nullptr); // which may be long
        return static_cast<int>(std::clamp(number, -1.0, 300.0));
    }

    // The sign and the digits at the start of a text.
    static std::string Whole(const std::string &text) {
        const std::size_t sign = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
        return text.substr(0, std::min(text.find_first_not_of("0123456789", sign), text.size()));
    }

    static std::string Printed(double value, int decimals) {
        char text[1024];
        std::snprintf(text, sizeof text, "%15.*f", decimals, value);
        return Trimmed(text);
    }

    static std::string Formatted(double value, int digits) {
        if (digits >= 0)
            return Printed(value, digits);
        const int length = static_cast<int>(Printed(value, 0).size());
        std::string text = Printed(value, std::max(0, 15 - length));
        while (!text.empty() && text.back() == '0')
            text.pop_back();
        if (!text.empty() && text.back() == '.')
            text.pop_back();
        return text;
    }
};

} // namespace zr::test

#endif
