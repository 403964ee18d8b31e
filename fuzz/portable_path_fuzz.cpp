// Any path in its portable form: what was built expands to the same path again, and what was not built is the path
// itself; whatever the folders behind the variables are called, no answer leaves its limits.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include <zrclb/file_name.hpp>
#include <zrclb/installation.h>

#include "platform/drives.h"
#include "platform/files.h"
#include "platform/letter_case.h"
#include "platform/path_text.h"
#include "platform/services.h"
#include "settings/installation_state.h"

namespace {

using namespace zr::platform;

constexpr const char *bases[] = {"",          "$INSTALLDIR$", "$PROJDIR$", "$PROJDOCDIR$", "$COMMON_DIR$",
                                 "$APPDATA$", "$USER_DIR$"};

std::size_t Give(const std::string &text, char *out, std::size_t size) {
    const bool fits = text.size() < size;
    std::strcpy(out, fits ? text.c_str() : "");
    return fits ? text.size() : 0;
}

// An installation that touches no disk: its settings file is there and can't be read.
void SetInstallation() {
    services.module_path = [](char *out, std::size_t size) { return Give("C:\\zr\\bin\\zrclb.dll", out, size); };
    services.registry_text = [](RegistryHive, const char *, const char *, char *, std::size_t) { return false; };
    services.long_path = [](const char *, char *, std::size_t) { return std::size_t{0}; };
    services.known_folder_below = [](int number, const char *below, char *out, std::size_t size) {
        return Give("C:\\data\\" + std::to_string(number) + "\\" + below, out, size) != 0;
    };
    services.file_status = [](const char *path, FileStatus &out) {
        out = {};
        return std::strcmp(path, "C:\\zr\\zr.zrini") == 0;
    };
    services.open_raw = [](const char *) { return std::intptr_t{-1}; };
    zr::settings::ForgetInstallation();
}

std::string Full(const std::string &path, const char *base = nullptr) {
    char out[path_size + 1];
    out[path_size] = '#';
    if (zr_BuildFullPath(path.c_str(), base, out) != 1 || std::strlen(out) > path_limit || out[path_size] != '#')
        std::abort();
    return out;
}

// Normal form: a path on a drive that making it full leaves alone, with a name at its end, no variable in front and no
// second ":", behind which the desktop sees a drive wherever it stands.
bool IsNormal(const std::string &path) {
    return path.size() > 3 && path.find(':') == 1 && path.rfind(':') == 1 && path.back() != '\\' &&
           path.find('/') == std::string::npos && Full(path) == path;
}

// The same of a folder, which may have a separator at its end.
bool IsNormalFolder(std::string path) {
    if (!path.empty() && path.back() == '\\')
        path.pop_back();
    return IsNormal(path);
}

bool SameWithoutCase(const std::string &a, const std::string &b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return Capital(x) == Capital(y); });
}

// The text up to the next line feed, which is taken away.
std::string TakeLine(std::string &text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string line(text.substr(0, end).c_str());
    text.erase(0, end + 1);
    return line;
}

} // namespace

// The first byte tells the base and whether the form may go up; then lines: the project folder, its document folder, a
// plain base, the path.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0)
        return 0;
    SetInstallation();
    std::string text(reinterpret_cast<const char *>(data) + 1, size - 1);
    const int allow_up = data[0] & 1;
    const std::size_t choice = data[0] / 2 % (std::size(bases) + 1);
    const std::string project = TakeLine(text);
    const std::string document = TakeLine(text);
    const std::string plain = TakeLine(text);
    const std::string path(text.c_str());
    zr_SetProjDir(project.c_str());
    zr_SetProjDocFolder(document.c_str());

    const std::string base = choice < std::size(bases) ? bases[choice] : plain;
    char out[path_size + 1];
    out[path_size] = '#';
    const int result = zr_BuildRelativePathEx(path.c_str(), base.c_str(), out, allow_up);
    const std::string form = out;
    if (form.size() > path_limit || out[path_size] != '#' || (result != 0 && result != 1))
        std::abort();
    Full(path, plain.c_str());

    const CZrFileName name(path.c_str());
    const std::string absolute = name.GetAbsolutePath(nullptr);
    char variable[80] = "";
    const bool behind_variable = zr_FindPathVar(out, variable, sizeof variable) == 1;
    const bool seen_from_variable = zr_FindPathVar(base.c_str(), nullptr, 0) == 1;
    // Without a base the path itself may be shorter than a form that was found.
    const bool is_path = form == path.substr(0, path_limit) || form == absolute;
    if (result == 0 || (base.empty() && is_path)) {
        if (!form.empty() && !is_path)
            std::abort();
        return 0;
    }
    if (behind_variable != (seen_from_variable || base.empty()))
        std::abort();
    // The folders that the form is seen from must be normal too: what the desktop sees in others is its own matter.
    const std::string from = Full(behind_variable ? variable : base.c_str());
    const bool normal =
        behind_variable ? IsNormalFolder(project) && IsNormalFolder(Full("$PROJDOCDIR$")) : IsNormalFolder(base);
    const bool plain_with_variable = choice == std::size(bases) && behind_variable; // what stands behind it is lost
    if (!normal || plain_with_variable || !IsNormal(absolute) || !IsNormalFolder(from))
        return 0;
    if (from.size() + 1 + form.size() > path_limit)
        return 0; // no room for both while it is expanded
    if (!SameWithoutCase(Full(form, from.c_str()), absolute))
        std::abort();
    return 0;
}
