// What a fresh process finds. One test alone, since the first calls change it.
#include <zrclb/report.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/counted_allocation.h"
#include "platform/services.h"
#include "platform/temp_folder.h"

namespace {

std::vector<std::string> debugger;
int boxes;

TEST(Start, FindsTheProgramsNameNoBracketNoHandlerNoEndingNoLogAndErrorsOn) {
    const TempFolder folder;
    const CurrentFolder current(folder.Folder());
    zr::platform::services.debug_output = [](const char *text) { debugger.emplace_back(text); };
    zr::platform::services.show_message_box = [](zr_window, const char *, const char *, unsigned) {
        ++boxes;
        return 1;
    };
    EXPECT_EQ(zr::frame::heap_block_count, 0);
    EXPECT_EQ(zr_error_onoff(-1), 1);
    zr_error(nullptr, nullptr, nullptr, "T", 1);
    ASSERT_EQ(debugger.size(), 1U);
    EXPECT_EQ(debugger[0].find("ZR_ERROR in start_test"), 0U);
    EXPECT_NE(debugger[0].find(" \"T\" line 1:\n"), std::string::npos);
    zr_end(); // no bracket is open
    EXPECT_EQ(boxes, 1);
    EXPECT_EQ(zr_MessageBox(nullptr, "", "", 0), 1); // no handler takes it
    EXPECT_EQ(boxes, 2);
    EXPECT_EQ(zr_atexit(), 0);
    EXPECT_EQ(zr::frame::heap_block_count, 0);
    EXPECT_TRUE(std::filesystem::is_empty(folder.Folder()));
    zr::platform::services = zr::platform::Services();
}

} // namespace
