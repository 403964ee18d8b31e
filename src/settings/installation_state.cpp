// What the process knows of its installation.
#include "settings/installation_state.h"

#include <cstring>

namespace zr::settings {

constinit InstallationState installation = {};

void ForgetInstallation() {
    installation = {};
}

void StoreText(char *out, const char *text, std::size_t limit) {
    const std::size_t length = text != nullptr ? strnlen(text, limit) : 0;
    if (length > 0)
        std::memmove(out, text, length);
    out[length] = '\0';
}

} // namespace zr::settings
