// The version that a caller finds at run time.
#include <zrclb/version.h>

extern "C" const char *zr_Version(void) noexcept {
    return ZR_VERSION;
}
