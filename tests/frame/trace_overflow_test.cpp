// The end of tracing. One test alone, since tracing does not come back in a process.
#include <zrclb/report.h>

#include "frame/report_fixture.h"

namespace {

using TraceOverflow = ReportFixture;

TEST_F(TraceOverflow, TwentyFirstNameEndsTracingForGood) {
    for (int i = 1; i <= 20; ++i) {
        zr_begin(("f" + std::to_string(i)).c_str());
    }
    EXPECT_TRUE(debugger.empty());
    zr_begin("f21");
    // The record already comes without a traceback.
    std::string log = TakeLog();
    std::string head = Stamp() + ">ERROR  in prog.exe \"Zr\" line ";
    EXPECT_EQ(log.substr(0, head.size()), head);
    std::string tail = ":\n  zr_begin: runtime stack overflow!\n\n\n\n\n";
    EXPECT_EQ(log.substr(log.find(":\n  ")), tail);
    ASSERT_EQ(debugger.size(), 3u);
    EXPECT_EQ(debugger[1], "zr_begin: runtime stack overflow");

    zr_begin("f22");
    for (int i = 0; i < 30; ++i) {
        zr_end();
    }
    zr_begin("g");
    EXPECT_TRUE(boxes.empty());
    EXPECT_EQ(debugger.size(), 3u);
    zr_switch_error(1, "T", 1);
    EXPECT_EQ(TakeLog(), "SWITCH ERROR in \"T\" line 1:\n  switch value = 1!\n\n\n\n");
}

} // namespace
