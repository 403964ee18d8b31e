// The search for an installed Word, and what it has found.
#ifndef ZR_DESKTOP_WORD_SEARCH_H
#define ZR_DESKTOP_WORD_SEARCH_H

#include <zrclb/winword.h>

namespace zr::desktop {

// Fills *info from the system's registry and gives the version number (winword.h). 0 after a report for null.
int SearchWord(winword_info *info);

// The major version that the version record of a program tells; -2 if it tells none, with a message unless the
// system has no record for it.
int ProgramVersion(const char *path);

// What the first search has found, valid once winword_info_loaded is set. Not guarded.
struct FoundWord {
    winword_info info;
    int number;
};

inline constinit FoundWord found_word = {};
inline constinit bool winword_info_loaded = false;

} // namespace zr::desktop

#endif
