// What the process knows of its installation: the texts that are worked out once, and what each is used for.
#ifndef ZR_SETTINGS_INSTALLATION_STATE_H
#define ZR_SETTINGS_INSTALLATION_STATE_H

#include <cstddef>

#include <zrclb/report.h>

#include "platform/files.h"

namespace zr::settings {

using Path = char[platform::path_size];

// Characters of the project folder and of its document folder's name.
inline constexpr std::size_t proj_dir_limit = 260;
inline constexpr std::size_t proj_doc_folder_limit = 256;

// A text that is worked out at its first use; empty while it isn't known. `working` is set while that goes on: whoever asks
// meanwhile, for example a report's search for the log, gets the empty text instead of going round in a circle.
struct KnownText {
    Path text;
    bool working;
};

// All start empty. Not guarded: one thread at a time.
struct InstallationState {
    KnownText settings_file_path;
    KnownText install_dir;
    KnownText bin_dir;
    KnownText bin32_dir;
    KnownText bin64_dir;
    KnownText binext32_dir;
    KnownText binext64_dir;
    KnownText appdata_dir;
    KnownText local_appdata_dir;
    KnownText common_appdata_dir;
    KnownText common_dir;
    KnownText user_dir;
    char install_dir_projekte[platform::path_size + 1]; // as it was read last
    bool reading_install_dir_projekte;
    char proj_dir[proj_dir_limit + 1];
    char proj_doc_folder[proj_doc_folder_limit + 1];
    char proj_doc_dir[platform::path_size + 1]; // built from the two above each time
};

extern constinit InstallationState installation;

// Forgets everything, as at the start of the process; for tests. Texts got before become empty.
void ForgetInstallation();

// The text; found by `find(text)` first if it isn't known yet. What `find` leaves empty stays unknown.
template <class Find>
const char *KnownOrFound(KnownText &known, const Find &find) {
    if (known.working)
        return "";
    if (known.text[0] == '\0') {
        known.working = true;
        find(known.text);
        known.working = false;
    }
    return known.text;
}

// Copies at most `limit` characters and a terminator to out[0..limit]; the two may overlap, null is the empty text.
void StoreText(char *out, const char *text, std::size_t limit);

// Reports an error with the tag of this subject.
inline void ReportZr(const char *text, int line) {
    zr_error(text, nullptr, nullptr, "Zr", line);
}

// Getters of path variables that are no functions of the interface. That of the document folder answers null without memory.
const char *get_common_dir();
const char *get_user_dir();
const char *get_proj_doc_dir();

} // namespace zr::settings

#endif
