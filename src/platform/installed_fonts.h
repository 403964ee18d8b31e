// The list of fonts that the system keeps.
//
// Threads: any.
#ifndef ZR_PLATFORM_INSTALLED_FONTS_H
#define ZR_PLATFORM_INSTALLED_FONTS_H

#include "platform/services.h"

namespace zr::platform {

// Gives the name and the file of each font to `visit`, as they stand in the list and in its order, until that answers false
// or the list ends. It ends in front of the first entry whose name or file has more than 259 characters, too. Both texts
// are valid during the call only. Linux has no such list, which is then empty.
inline void VisitInstalledFonts(FontVisitor visit, void *context) {
    services.installed_fonts(visit, context);
}

} // namespace zr::platform

#endif
