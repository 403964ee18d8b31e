// Entry of every test program: loads the library as its loader would, then runs the tests.
#include <gtest/gtest.h>

#if __has_include("library/load.h")
#include "library/load.h"
#endif

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
#if __has_include("library/load.h")
    zr::library::LibraryLoad(nullptr);
#endif
    return RUN_ALL_TESTS();
}
