// The user's name as it is shown, and the name of the login.
#include <zrclb/ini.h>
#include <zrclb/str.h>
#include <zrclb/system.h>

#include "platform/users.h"
#include "settings/system_answers.h"

using namespace zr::settings;

namespace {

constexpr char user_section[] = "System";
constexpr char user_entry[] = "User";

} // namespace

extern "C" {

const char *zr_GetUserName(void) noexcept {
    char *const name = system_answers.user_name;
    if (*name != 0)
        return name;
    zr_long size = SystemAnswers::longest_user;
    ini_read_string(nullptr, user_section, user_entry, name, &size); // a name that is too long counts as far as it fits
    str_trim(name);
    if (*name == 0)
        zr::platform::GetSystemUser(name, SystemAnswers::user_size);
    return name;
}

void zr_SetUserName(const char *name) noexcept {
    if (name == nullptr || ini_write_string(nullptr, user_section, user_entry, name) != INI_DONE)
        return;
    str_ncpy(system_answers.user_name, name, SystemAnswers::user_size - 1);
    str_trim(system_answers.user_name);
}

const char *zr_GetUserLogin(void) noexcept {
    char *const login = system_answers.user_login;
    if (*login == 0 && !zr::platform::GetSystemLogin(login, SystemAnswers::user_size))
        zr::platform::GetSystemUser(login, SystemAnswers::user_size);
    return login;
}
}
