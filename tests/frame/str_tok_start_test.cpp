// str_tok before any text was given. A program of its own, since a place once set stays set.
#include <zrclb/str.h>

#include "frame/report_fixture.h"

namespace {

using StrTokStart = ReportFixture;

TEST_F(StrTokStart, GoingOnBeforeAnyStart) {
    EXPECT_EQ(str_tok(nullptr, ","), nullptr);
    EXPECT_TRUE(debugger.empty());
    EXPECT_EQ(str_tok(nullptr, nullptr), nullptr);
    ASSERT_EQ(debugger.size(), 3u);
    EXPECT_EQ(debugger[0].find("ZR_ERROR in prog.exe \"Str\" line "), 0u);
    EXPECT_EQ(debugger[1], "The str_tok was called with wrong parameter <source>.");
}

} // namespace
