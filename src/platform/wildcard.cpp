// Matching of names with wildcards.
//
// Every sign except the stars takes a fixed stretch of the name from a given place, and one that starts further on
// never ends earlier. So what stands between two stars is best matched as early as possible, and only the last star met
// so far need ever be tried again: no stack, and at most one round through the name for each sign of the pattern.
#include "platform/wildcard.h"

#include "platform/files.h"
#include "platform/letter_case.h"

namespace zr::platform {
namespace {

// The pattern without the points and blanks at its end. "*.*" alone means "*".
std::string_view Trimmed(std::string_view pattern) {
    if (pattern == "*.*")
        return "*";
    return pattern.substr(0, pattern.find_last_not_of(". ") + 1);
}

constexpr std::size_t mismatch = static_cast<std::size_t>(-1);

// Where the match goes on in the name if sign `at` of the pattern, no star, stands at `place`; or `mismatch`.
std::size_t MatchSign(std::string_view pattern, std::size_t at, std::string_view name, std::size_t place) {
    const bool at_end = place == name.size();
    const char sign = pattern[at];
    if (sign == '?')
        return at_end || name[place] == '.' ? place : place + 1;
    if (!at_end)
        return Capital(sign) == Capital(name[place]) ? place + 1 : mismatch;
    const bool wildcard_follows = at + 1 < pattern.size() && (pattern[at + 1] == '?' || pattern[at + 1] == '*');
    return sign == '.' && wildcard_follows ? place : mismatch;
}

} // namespace

bool MatchWildcard(const char *pattern, const char *name) {
    return name != nullptr && Wildcard(pattern).Match(name);
}

Wildcard::Wildcard(const char *pattern) : m_ends_in_dos_star(false), m_kind(Kind::none) {
    const std::string_view whole = pattern == nullptr ? std::string_view{} : std::string_view(pattern);
    m_pattern = Trimmed(whole);
    if (m_pattern.empty() || whole.size() > path_limit)
        return;
    m_ends_in_dos_star = m_pattern.back() == '*' && whole.back() == '.';
    m_kind = m_pattern == "*" && !m_ends_in_dos_star ? Kind::all : Kind::some;
}

bool Wildcard::Match(std::string_view name) const {
    if (m_kind != Kind::some)
        return m_kind == Kind::all;
    std::size_t star = mismatch; // the last star met, and where in the name its stretch ends
    std::size_t star_end = 0;
    std::size_t at = 0;
    std::size_t place = 0;
    for (;;) {
        if (at == m_pattern.size()) {
            if (place == name.size())
                return true;
        } else if (m_pattern[at] == '*' && at + 1 == m_pattern.size()) {
            if (!m_ends_in_dos_star || name.find('.', place) == std::string_view::npos)
                return true;
        } else if (m_pattern[at] == '*') {
            star = at++;
            star_end = place;
            continue;
        } else {
            const std::size_t next = MatchSign(m_pattern, at, name, place);
            if (next != mismatch) {
                place = next;
                ++at;
                continue;
            }
        }
        if (star == mismatch || star_end == name.size())
            return false;
        at = star + 1;
        place = ++star_end;
    }
}

} // namespace zr::platform
