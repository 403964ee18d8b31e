// The rules of wildcards written down as they are told, for short texts: first the pattern is rewritten sign by sign,
// then every way to match it is tried.
#ifndef TESTS_PLATFORM_REFERENCE_WILDCARD_H
#define TESTS_PLATFORM_REFERENCE_WILDCARD_H

#include <cstddef>
#include <string>
#include <vector>

namespace reference {

enum class SignKind {
    literal,
    star,
    dos_star,
    dos_question_mark,
    dos_point
};

struct Sign {
    SignKind kind;
    char letter;
};

inline std::vector<Sign> Rewrite(std::string pattern) {
    if (pattern == "*.*")
        pattern = "*";
    const bool ended_in_point = !pattern.empty() && pattern.back() == '.';
    while (!pattern.empty() && (pattern.back() == '.' || pattern.back() == ' '))
        pattern.pop_back();
    std::vector<Sign> signs;
    for (const char c : pattern) {
        const bool wildcard = c == '?' || c == '*';
        if (wildcard && !signs.empty() && signs.back().kind == SignKind::literal && signs.back().letter == '.')
            signs.back().kind = SignKind::dos_point;
        signs.push_back({c == '?' ? SignKind::dos_question_mark : c == '*' ? SignKind::star : SignKind::literal, c});
    }
    if (ended_in_point && !signs.empty() && signs.back().kind == SignKind::star)
        signs.back().kind = SignKind::dos_star;
    return signs;
}

// Capital letters of code page 1252, as two texts of partners.
inline char CapitalOf(char c) {
    static const std::string small = "abcdefghijklmnopqrstuvwxyz"
                                     "\x9A\x9C\x9E\xFF\xE0\xE1\xE2\xE3\xE4\xE5\xE6\xE7\xE8\xE9\xEA\xEB\xEC\xED\xEE\xEF"
                                     "\xF0\xF1\xF2\xF3\xF4\xF5\xF6\xF8\xF9\xFA\xFB\xFC\xFD\xFE";
    static const std::string large = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                     "\x8A\x8C\x8E\x9F\xC0\xC1\xC2\xC3\xC4\xC5\xC6\xC7\xC8\xC9\xCA\xCB\xCC\xCD\xCE\xCF"
                                     "\xD0\xD1\xD2\xD3\xD4\xD5\xD6\xD8\xD9\xDA\xDB\xDC\xDD\xDE";
    const std::size_t place = small.find(c);
    return place == std::string::npos ? c : large[place];
}

inline bool MatchFrom(const std::vector<Sign> &signs, std::size_t sign, const std::string &name, std::size_t at) {
    if (sign == signs.size())
        return at == name.size();
    const bool finished = at == name.size();
    const bool at_point = !finished && name[at] == '.';
    const auto skip_sign = [&] { return MatchFrom(signs, sign + 1, name, at); };
    const auto take_both = [&] { return MatchFrom(signs, sign + 1, name, at + 1); };
    switch (signs[sign].kind) {
    case SignKind::literal:
        return !finished && CapitalOf(signs[sign].letter) == CapitalOf(name[at]) && take_both();
    case SignKind::dos_question_mark:
        return finished || at_point ? skip_sign() : take_both();
    case SignKind::dos_point:
        return finished ? skip_sign() : at_point && take_both();
    case SignKind::star:
        return skip_sign() || (!finished && MatchFrom(signs, sign, name, at + 1));
    case SignKind::dos_star:
        break;
    }
    const bool at_last_point = at_point && name.find('.', at + 1) == std::string::npos;
    return skip_sign() || (!finished && !at_last_point && MatchFrom(signs, sign, name, at + 1));
}

inline bool MatchWildcard(const std::string &pattern, const std::string &name) {
    const std::vector<Sign> signs = Rewrite(pattern);
    return !signs.empty() && MatchFrom(signs, 0, name, 0);
}

} // namespace reference

#endif
