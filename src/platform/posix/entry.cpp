// What the loader calls when it brings the library in and takes it out.
#include "platform/entry.h"

#include <dlfcn.h>

namespace {

// Address at which the module that holds this function is loaded; its handle here.
void *OwnModule() {
    Dl_info information;
    const bool known = dladdr(reinterpret_cast<const void *>(&OwnModule), &information) != 0;
    return known ? information.dli_fbase : nullptr;
}

[[gnu::constructor]] void Attach() {
    zr::library::LibraryLoad(OwnModule());
}

[[gnu::destructor]] void Detach() {
    zr::library::LibraryUnload();
}

} // namespace
