// Random expressions for the calculator: mostly right, sometimes damaged.
#ifndef TESTS_EXPRESSIONS_RANDOM_EXPRESSION_H
#define TESTS_EXPRESSIONS_RANDOM_EXPRESSION_H

#include <cstddef>
#include <random>
#include <string>

namespace zr::test {

class RandomExpression {
public:
    explicit RandomExpression(unsigned seed) : m_random(seed) {}

    // Parts nest at most `depth` levels deep; in long chains rather than in bushes.
    std::string Make(int depth) {
        std::string text = Conditional(depth);
        for (int damages = Below(4) == 0 ? 1 + Below(3) : 0; damages > 0; --damages)
            Damage(text);
        return text;
    }

private:
    int Below(int n) { return static_cast<int>(m_random() % static_cast<unsigned>(n)); }

    template <std::size_t n>
    std::string OneOf(const char *const (&texts)[n]) {
        return texts[m_random() % n];
    }

    std::string Number() {
        static constexpr const char *numbers[] = {"0",      "1",     "2",    "3",   "10",  "0.5",
                                                  "1.25",   ".75",   "100.", "7e2", "1E3", "12345678",
                                                  "1e-200", "1e200", "PI",   "pi",  "0.0", "30"};
        return OneOf(numbers);
    }

    std::string Blank() {
        static constexpr const char *blanks[] = {" ", "  ", "\t", "\n", " \r\n "};
        return Below(6) == 0 ? OneOf(blanks) : "";
    }

    std::string Conditional(int depth) {
        if (depth <= 0)
            return Number();
        if (Below(8) != 0)
            return Chain(depth);
        const int branch = Below(2);
        return Chain(Below(3)) + "?" + Conditional(branch == 0 ? depth - 1 : Below(3)) + Blank() + ":" +
               Conditional(branch == 1 ? depth - 1 : Below(3));
    }

    std::string Chain(int depth) {
        static constexpr const char *operators[] = {"+",  "-",  "*",  "/",  "^", "<", ">",     "=",
                                                    "<=", ">=", "<>", "=>", "#", "=", " AND ", " or "};
        const int operands = 1 + Below(4);
        const int deep = Below(operands);
        std::string text;
        for (int i = 0; i < operands; ++i) {
            if (i > 0)
                text += Blank() + OneOf(operators) + Blank();
            text += Factor(i == deep ? depth - 1 : Below(2));
        }
        return text;
    }

    std::string Factor(int depth) {
        static constexpr const char *functions[] = {"SIN", "cos",  "Tan", "COT", "ASN", "acs", "ATN", "act", "ABS",
                                                    "abs", "SQRT", "EXP", "LGT", "LOG", "MIN", "max", "MIN", "MAX"};
        if (depth <= 0)
            return Number();
        switch (Below(6)) {
        case 0:
            return "-" + Factor(depth - 1);
        case 1:
            return "NOT " + Factor(depth - 1);
        case 2: {
            const std::string name = OneOf(functions);
            std::string text = name + Blank() + "(" + Conditional(depth - 1);
            for (int more = (name[0] | 0x20) == 'm' ? Below(3) : 0; more > 0; --more)
                text += "," + Conditional(Below(2));
            return text + ")";
        }
        default:
            return "(" + Conditional(depth - 1) + Blank() + ")";
        }
    }

    void Damage(std::string &text) {
        static constexpr const char *pieces[] = {
            "(",     ")",   ",",   ":",      "?", "1/0", "SQRT(-1)", "(-8)^.5", "10^999", "x", "\\",   "1e",  "\"", "'",
            "1e999", "AND", "SIN", "and(1)", "$", "1 1", "\xE4",     "**",      "//",     "-", "\xFF", "/0*", "''"};
        const std::size_t place = m_random() % (text.size() + 1);
        if (Below(3) == 0)
            text.erase(place, 1 + m_random() % 3);
        else
            text.insert(place, OneOf(pieces));
    }

    std::mt19937 m_random;
};

} // namespace zr::test

#endif
