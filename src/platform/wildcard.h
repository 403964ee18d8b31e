// Matching of names with "*" and "?" by the rules of the desktop's search for files.
//
// A search rewrites its pattern first. "*.*" alone means "*"; points and blanks at the end go; then "?" stands for one
// character, or for none at a point or at the end of the name; a point in front of "?" or "*" is also matched by the
// end of the name; and the star of a pattern that ended in "*." takes everything up to the last point and never across
// it. Letters match without regard to case, by code page 1252. Threads: no state; any thread.
#ifndef ZR_PLATFORM_WILDCARD_H
#define ZR_PLATFORM_WILDCARD_H

#include <cstddef>
#include <string_view>

namespace zr::platform {

// Does `name` match `pattern`, both without a folder? Null matches nothing and is matched by nothing, and so does a
// pattern of more than 259 characters, which no search takes. Work is at most in proportion to length of pattern times
// length of name.
bool MatchWildcard(const char *pattern, const char *name);

// A pattern looked at once for many names. It keeps the pointer: the text must live as long.
class Wildcard {
public:
    explicit Wildcard(const char *pattern);

    // As MatchWildcard. Doesn't change the object: any number of threads at once.
    bool Match(std::string_view name) const;

private:
    // Matches nothing, everything, or one has to look.
    enum class Kind {
        none,
        all,
        some
    };

    std::string_view m_pattern; // without the points and blanks at its end
    bool m_ends_in_dos_star;    // the star at its end doesn't cross the last point
    Kind m_kind;
};

} // namespace zr::platform

#endif
