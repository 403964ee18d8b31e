// Help for an application and a topic, on the web or from a local file.
#include <zrclb/help.h>

#include <algorithm>
#include <climits>
#include <cstring>

#include <zrclb/file_name.hpp>
#include <zrclb/files.h>
#include <zrclb/ini.h>
#include <zrclb/installation.h>
#include <zrclb/report.h>
#include <zrclb/str.h>

#include "desktop/help_state.h"
#include "platform/files.h"
#include "platform/help_viewer.h"

namespace zr::desktop {
namespace {

constexpr char section[] = "System";
constexpr char use_web_entry[] = "UseWebHelp";

void Message(const char *text, int line) {
    zr_message(text, nullptr, nullptr, "zrHelp", line);
}

void MessageWithoutUrl(int line) {
    Message("HelpURL konnte nicht ermittelt werden.", line);
}

// Where help lies on the web; empty if that isn't known, and then looked for again the next time.
const char *UrlTemplate() {
    char *url = help_state.help_url;
    if (*url != '\0')
        return url;
    zr_long limit = help_url_size - 1;
    if (ini_read_string(nullptr, section, "HelpURL", url, &limit) != 0)
        *url = '\0'; // one that is too long has left its start
    str_repl(url, help_url_size, "$$VERSION", "2013");
    return url;
}

// Puts the application in small letters into the URL. What stands around it keeps its case.
void InsertApplication(char *url, int size, const char *application) {
    constexpr char place[] = "$$APP";
    char *start = std::strstr(url, place);
    if (start == nullptr || str_repl(url, size, place, application) == nullptr)
        return;
    char *end = start + std::strlen(application);
    const char behind = *end;
    *end = '\0';
    str_low(start);
    *end = behind;
}

void InsertId(char *url, int size, zr_ulong id) {
    char text[16];
    str_printf(text, sizeof text, "%d", static_cast<int>(id));
    str_repl(url, size, "$$ID", text);
}

bool OpenWebHelp(const char *application, zr_ulong id) {
    char url[help_url_size] = "";
    if (!zrHelp_GetHelpURL(application, id, url, sizeof url)) {
        MessageWithoutUrl(__LINE__);
        return false;
    }
    platform::OpenUrl(url);
    return true;
}

bool OpenLocalHelp(const char *application, zr_ulong id) {
    CZrFileName file(application, "chm");
    if (*file.GetFileName(true) == '\0')
        return false; // its path would be the folder itself, which exists
    char folder[platform::path_size] = "";
    zr_suche_pfad(section, "Help", folder);
    file.SetDir(folder);
    const char *path = file.GetPath();
    if (*path == '\0' || fio_exist("", path) == 0)
        return false;
    platform::ShowHelpFile(path, id == 0 ? platform::HelpCommand::start : platform::HelpCommand::topic, id);
    return true;
}

} // namespace
} // namespace zr::desktop

using namespace zr::desktop;
using namespace zr;

extern "C" {

bool zrHelp(const char *application, zr_ulong id, EZrHelpType type) noexcept {
    if (application == nullptr) {
        zr_error("Invalid parameter", nullptr, nullptr, "zrHelp", __LINE__);
        return false;
    }
    const bool web = type == ZR_HELP_WEB || (type == ZR_HELP_DEFAULT && zrHelp_GetHelpType() == ZR_HELP_WEB);
    if (web && platform::IsOnline() && OpenWebHelp(application, id))
        return true;
    return OpenLocalHelp(application, id);
}

EZrHelpType zrHelp_GetHelpType() noexcept {
    zr_long &use_web = help_state.help_use_web;
    if (use_web < 0 && ini_read_long(nullptr, section, use_web_entry, &use_web) != 0)
        use_web = 1;
    return use_web == 1 ? ZR_HELP_WEB : ZR_HELP_LOCAL;
}

void zrHelp_SetHelpType(EZrHelpType type) noexcept {
    if (type != ZR_HELP_WEB && type != ZR_HELP_LOCAL)
        Message("zrHelp_SetHelpType - falscher Help-Type", __LINE__);
    help_state.help_use_web = type == ZR_HELP_LOCAL ? 0 : 1;
    ini_write_long(nullptr, section, use_web_entry, help_state.help_use_web);
}

bool zrHelp_GetHelpURL(const char *application, zr_ulong id, char *buffer, zr_ulong size) noexcept {
    if (application == nullptr || buffer == nullptr || size == 0)
        return false;
    const char *url = UrlTemplate();
    if (*url == '\0') {
        MessageWithoutUrl(__LINE__);
        return *buffer != '\0';
    }
    const int room = static_cast<int>(std::min<zr_ulong>(size, INT_MAX));
    *buffer = '\0'; // of a size of 1 nothing is copied
    str_ncpy(buffer, url, room - 1);
    InsertApplication(buffer, room, application);
    InsertId(buffer, room, id);
    return *buffer != '\0';
}
}
