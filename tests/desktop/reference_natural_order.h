// The order of names and of dates done slowly, one told step after the other, to hold the library's way against.
#ifndef TESTS_DESKTOP_REFERENCE_NATURAL_ORDER_H
#define TESTS_DESKTOP_REFERENCE_NATURAL_ORDER_H

#include <algorithm>
#include <array>
#include <string>

#include <zrclb/str.h>

namespace reference {

inline bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
inline bool IsCapital(char c) {
    return c >= 'A' && c <= 'Z';
}
inline bool IsSmall(char c) {
    return c >= 'a' && c <= 'z';
}
inline bool IsSeparator(char c) {
    return !IsDigit(c) && !IsCapital(c) && !IsSmall(c);
}

inline int Icmp(const std::string &a, const std::string &b) {
    return str_icmp(a.c_str(), b.c_str());
}

// Up to and including the first separator.
inline std::string NextToken(const std::string &text, std::size_t &pos) {
    const std::size_t start = pos;
    while (pos < text.size() && !IsSeparator(text[pos]))
        ++pos;
    if (pos < text.size())
        ++pos;
    return text.substr(start, pos - start);
}

// The first and the third case: parts that are compared, and the digits beside them. `ends` says that the result holds.
inline int CompareParts(const std::string &ta, const std::string &tb, const std::string &pa, const std::string &pb,
                        const std::string &digits_a, const std::string &digits_b, bool &ends) {
    ends = true;
    if (Icmp(pa, pb) != 0) {
        const int result = Icmp(ta, tb);
        ends = result != 0;
        return result;
    }
    for (std::size_t i = 0; i < pa.size(); ++i) {
        if (IsCapital(pa[i]) && IsSmall(pb[i]))
            return -1;
        if (IsSmall(pa[i]) && IsCapital(pb[i]))
            return 1;
    }
    const zr_long number_a = convert_stol(digits_a.c_str()), number_b = convert_stol(digits_b.c_str());
    if (number_a != number_b)
        return number_a > number_b ? 1 : -1;
    ends = false;
    return 0;
}

inline int ANCmp(const std::string &a, const std::string &b) {
    if (a.empty() || b.empty())
        return Icmp(a, b);
    std::size_t ia = 0, ib = 0;
    int result = 0;
    while (ia < a.size() || ib < b.size()) {
        std::string ta = NextToken(a, ia), tb = NextToken(b, ib);
        if (ta.empty() || tb.empty())
            return Icmp(ta, tb);
        for (std::string *token : {&ta, &tb})
            if (IsSeparator(token->back()))
                token->pop_back();
        const auto last_of = [](const std::string &token) { // index of the last that is no digit
            int last = static_cast<int>(token.size()) - 1;
            while (last >= 0 && IsDigit(token[static_cast<std::size_t>(last)]))
                --last;
            return last;
        };
        const auto first_of = [](const std::string &token) { // number of leading digits
            std::size_t first = 0;
            while (first < token.size() && IsDigit(token[first]))
                ++first;
            return first;
        };
        const int last_a = last_of(ta), last_b = last_of(tb);
        const std::size_t first_a = first_of(ta), first_b = first_of(tb);
        bool ends = false;
        if (last_a < static_cast<int>(ta.size()) - 1 && last_b < static_cast<int>(tb.size()) - 1) {
            const auto cut_a = static_cast<std::size_t>(last_a + 1), cut_b = static_cast<std::size_t>(last_b + 1);
            result = CompareParts(ta, tb, ta.substr(0, cut_a), tb.substr(0, cut_b), ta.substr(cut_a), tb.substr(cut_b),
                                  ends);
        } else if (first_a < 1 || first_b < 1) {
            result = Icmp(ta, tb);
            ends = result != 0;
        } else {
            result = CompareParts(ta, tb, ta.substr(first_a), tb.substr(first_b), ta.substr(0, first_a),
                                  tb.substr(0, first_b), ends);
        }
        if (ends)
            return result;
    }
    return result;
}

inline std::array<zr_long, 6> Date(const std::string &whole) {
    std::array<zr_long, 6> numbers{};
    std::size_t count = 0;
    std::string piece;
    const std::string text = whole.substr(0, 80);
    for (std::size_t i = 0; i <= text.size() && count < numbers.size(); ++i) {
        const bool at_end = i == text.size();
        if (!at_end && text[i] != '.' && text[i] != ' ' && text[i] != ':') {
            piece += text[i];
            continue;
        }
        numbers[count++] = convert_stol(piece.c_str());
        piece.clear();
    }
    if (numbers[2] >= 80)
        numbers[2] -= 100;
    return {numbers[2], numbers[1], numbers[0], numbers[3], numbers[4], numbers[5]};
}

inline int DateCmp(const std::string &a, const std::string &b) {
    const auto date_a = Date(a), date_b = Date(b);
    return date_a < date_b ? -1 : date_a > date_b ? 1 : 0;
}

} // namespace reference

#endif
