// The version: one text, the same in the header's numbers and at run time.
#include <string>

#include <gtest/gtest.h>

#include <zrclb/version.h>

TEST(Version, TextIsMadeOfTheThreeNumbers) {
    const std::string expected = std::to_string(ZR_VERSION_MAJOR) + "." + std::to_string(ZR_VERSION_MINOR) + "." +
                                 std::to_string(ZR_VERSION_PATCH);
    EXPECT_EQ(expected, ZR_VERSION);
}

TEST(Version, LibraryInUseIsTheOneCompiledAgainst) {
    EXPECT_STREQ(ZR_VERSION, zr_Version());
}
