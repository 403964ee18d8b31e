// Programs that serve documents of a class: there are none.
#include "platform/server_programs.h"

namespace zr::platform {

bool backend::FindClassId(const char *, char *out, std::size_t size) {
    if (out != nullptr && size != 0)
        out[0] = '\0';
    return false;
}

std::size_t backend::VersionRecordSize(const char *) {
    return 0;
}

bool backend::ReadVersionRecord(const char *, void *, std::size_t) {
    return false;
}

bool backend::FindProductVersion(const void *, FileVersion &) {
    return false;
}

void backend::VisitTopWindows(WindowVisitor, void *) {}

bool backend::IsWindowAlive(zr_window) {
    return false;
}

bool backend::StartServer(char *, unsigned short, std::uint32_t) {
    return false;
}

} // namespace zr::platform
