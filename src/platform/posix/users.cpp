// The user who runs the program.
#include "platform/users.h"

#include <cstring>
#include <memory>
#include <new>

#include <pwd.h>
#include <unistd.h>

namespace zr::platform {

namespace {

constexpr std::size_t longest_host = 255;
constexpr std::size_t record_size = 16384; // more than any record that the host's own tools make

char CapitalLetter(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

// The host's name without its domain, in capital letters as computers are named on the desktop. False if it has none.
bool GetHost(char (&out)[longest_host + 1]) {
    if (gethostname(out, sizeof out) != 0)
        return false;
    out[longest_host] = 0; // a name that is cut need not have its end
    char *end = out;
    for (; *end != 0 && *end != '.'; ++end)
        *end = CapitalLetter(*end);
    *end = 0;
    return end != out;
}

void Append(char *out, std::size_t size, const char *text) {
    const std::size_t start = std::strlen(out);
    const std::size_t length = strnlen(text, size - 1 - start);
    std::memcpy(out + start, text, length);
    out[start + length] = 0;
}

} // namespace

bool backend::SystemUser(char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return false;
    out[0] = 0;
    const std::unique_ptr<char[]> text(new (std::nothrow) char[record_size]);
    passwd record;
    passwd *found = nullptr;
    if (text == nullptr || getpwuid_r(geteuid(), &record, text.get(), record_size, &found) != 0 || found == nullptr)
        return false;
    const std::size_t length = std::strlen(found->pw_name);
    if (length == 0 || length >= size)
        return false;
    std::memcpy(out, found->pw_name, length + 1);
    return true;
}

bool backend::SystemLogin(char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return false;
    out[0] = 0;
    char host[longest_host + 1];
    char user[512];
    if (!GetHost(host) || !SystemUser(user, sizeof user))
        return false;
    Append(out, size, host);
    Append(out, size, "\\");
    Append(out, size, user);
    return true;
}

} // namespace zr::platform
