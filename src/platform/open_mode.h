// Mode texts of streams.
#ifndef ZR_PLATFORM_OPEN_MODE_H
#define ZR_PLATFORM_OPEN_MODE_H

namespace zr::platform {

struct OpenMode {
    char letter; // 'r', 'w' or 'a'
    bool update; // "+": reading and writing
};

// Takes "r", "w" or "a", behind it an optional "+" and an optional letter `kind` ('t' or 'b'). False for any other text
// and for null; `out` is then undefined.
bool ParseOpenMode(const char *mode, char kind, OpenMode &out);

} // namespace zr::platform

#endif
