// Entry of every test program: loads the library as its loader would, then runs the tests.
#include <gtest/gtest.h>

#include "library/load.h"

int main(int argc, char **argv) {
    zr::library::LibraryLoad(nullptr);
    testing::InitGoogleTest(&argc, argv);
    int result = RUN_ALL_TESTS();
    zr::library::LibraryUnload();
    return result;
}
