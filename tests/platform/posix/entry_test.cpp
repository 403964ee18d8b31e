// What the loader of this back end calls.
#include "platform/modules.h"

#include <dlfcn.h>

#include <gtest/gtest.h>

#include "library/load.h"

namespace {

// The library's objects are part of this program, so the loader has loaded the library before main ran.
TEST(Entry, LoaderHandsOverTheModuleBeforeMain) {
    Dl_info information;
    ASSERT_NE(dladdr(reinterpret_cast<const void *>(&zr::library::LibraryLoad), &information), 0);
    EXPECT_NE(information.dli_fbase, nullptr);
    EXPECT_EQ(zr::platform::StoredModule(), information.dli_fbase);
}

} // namespace
