// What has been found out about the program's surroundings, and is kept for the process.
#ifndef ZR_SETTINGS_SYSTEM_ANSWERS_H
#define ZR_SETTINGS_SYSTEM_ANSWERS_H

#include <cstddef>

namespace zr::settings {

// Empty or 0: not found out yet, or without an answer so far. Threads: one at a time.
struct SystemAnswers {
    static constexpr std::size_t version_size = 80;
    static constexpr int longest_user = 512; // as an entry of the settings file; where it is written it is one less
    static constexpr int user_size = 512;

    char tek_version_text[version_size] = {};
    int win32_kind = 0;
    char user_name[longest_user + 1] = {};
    char user_login[user_size] = {};
};

inline constinit SystemAnswers system_answers;

} // namespace zr::settings

#endif
