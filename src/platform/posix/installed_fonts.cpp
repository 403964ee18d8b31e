// The list of installed fonts: there is none with names like those of the desktop.
#include "platform/installed_fonts.h"

namespace zr::platform {

void backend::VisitInstalledFonts(FontVisitor, void *) {}

} // namespace zr::platform
