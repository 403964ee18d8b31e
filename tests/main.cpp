// Entry of every test program: loads the library as its loader would, then runs the tests.
#include <gtest/gtest.h>

#include "library/load.h"

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    zr::library::LibraryLoad(nullptr);
    return RUN_ALL_TESTS();
}
