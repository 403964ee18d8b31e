// Loading settings files into memory.
#ifndef ZR_SETTINGS_MINI_LOAD_H
#define ZR_SETTINGS_MINI_LOAD_H

#include <string_view>

#include "platform/files.h"
#include "settings/mini_memory.h"

namespace zr::settings {

// The path of a handle's file; empty if it is too long, which is reported.
class MiniPath {
public:
    explicit MiniPath(const MiniFile &file);
    const char *Text() const { return m_text; }

private:
    char m_text[platform::path_size] = {};
};

// Loads the whole file behind the sections that are there. False if it can't be opened.
bool LoadFile(MiniFile &file);

// Loads the first section of the name, or the lines in front of the first header for the empty name. Null if the file
// can't be opened or has no such section.
MiniSection *LoadSection(MiniFile &file, std::string_view name);

} // namespace zr::settings

#endif
