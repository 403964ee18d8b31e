// The path variables, in the order of every walk over them.
#ifndef ZR_SETTINGS_PATH_VARIABLES_H
#define ZR_SETTINGS_PATH_VARIABLES_H

#include <cstddef>

#include "settings/installation_state.h"

namespace zr::settings {

struct PathVariable {
    const char *text;        // the name between two dollar signs
    const char *(*getter)(); // what it stands for; null or empty while nobody knows
};

inline constexpr std::size_t path_variable_count = 9;
extern const PathVariable path_var_table[path_variable_count];

// Bytes that hold the text of any path variable.
inline constexpr std::size_t path_variable_size = 80;

// Whether the path begins with the variable; case counts.
bool BeginsWith(const char *path, const PathVariable &variable);

// Replaces the variable in front of `text`, if there is one, by what it stands for; 1. A result without room is reported by str_repl, and
// the variable stays.
int expand_path_var(Path &text);

} // namespace zr::settings

#endif
