// The public face of the host's form of a path.
#include <zrclb/paths.h>

#include "platform/files.h"

int zr_HostPath(const char *path, char *out, zr_ulong size) ZR_NOEXCEPT {
    return zr::platform::HostPath(path, out, size) ? 1 : 0;
}
