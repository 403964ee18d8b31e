// The replaceable calls: box, debugger channel, clock, opening and status of files.
#include "platform/services.h"

#include <cerrno>
#include <string>

#include <gtest/gtest.h>

#include "platform/clock.h"
#include "platform/debug.h"
#include "platform/files.h"
#include "platform/message_box.h"
#include "platform/streams.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;

std::string seen; // what the replaced calls got

// Puts the table back as it was.
class Services : public testing::Test {
protected:
    void SetUp() override { seen.clear(); }
    void TearDown() override { services = m_before; }

    zr::platform::Services m_before = services;
};

TEST_F(Services, TableStartsWithTheBackEnd) {
    EXPECT_EQ(services.open_text, backend::OpenText);
    EXPECT_EQ(services.open_binary, backend::OpenBinary);
    EXPECT_EQ(services.file_status, backend::GetFileStatus);
    EXPECT_EQ(services.show_message_box, backend::ShowMessageBox);
    EXPECT_EQ(services.focus_window, backend::FocusWindow);
    EXPECT_EQ(services.debug_output, backend::DebugOutput);
    EXPECT_EQ(services.now, backend::Now);
    EXPECT_EQ(services.now_milliseconds, backend::NowMilliseconds);
    EXPECT_EQ(services.simple_sound, backend::SimpleSound);
    EXPECT_EQ(services.temp_folder, backend::TempFolder);
    EXPECT_EQ(services.temp_file_name, backend::TempFileName);
    EXPECT_EQ(services.tick_count, backend::TickCount);
    EXPECT_EQ(services.create_uuid, backend::CreateUuid);
    EXPECT_EQ(services.installed_fonts, backend::VisitInstalledFonts);
    EXPECT_EQ(services.is_online, backend::IsOnline);
    EXPECT_EQ(services.open_url, backend::OpenUrl);
    EXPECT_EQ(services.show_help_file, backend::ShowHelpFile);
}

TEST_F(Services, ReplacedBoxAnswersInstead) {
    services.focus_window = [] { return static_cast<zr_window>(&seen); };
    services.show_message_box = [](zr_window owner, const char *text, const char *caption, unsigned type) {
        seen = std::string(text) + "|" + caption + "|" + std::to_string(type) + (owner == &seen ? "|focus" : "");
        return 6;
    };
    EXPECT_EQ(ShowMessageBox(FocusWindow(), "text", "caption", 0x40000), 6);
    EXPECT_EQ(seen, "text|caption|262144|focus");
}

TEST_F(Services, ReplacedDebuggerChannelGetsTheTexts) {
    services.debug_output = [](const char *text) { seen += text; };
    DebugOutput("one");
    DebugOutput(" two");
    EXPECT_EQ(seen, "one two");
}

TEST_F(Services, DebuggerChannelTakesNullAndEmpty) {
    DebugOutput(nullptr);
    DebugOutput("");
    SUCCEED();
}

TEST_F(Services, ReplacedClockTellsItsTime) {
    services.now = [] { return std::int64_t{86400}; };
    EXPECT_EQ(Now(), 86400);
}

TEST_F(Services, ReplacedOpeningFails) {
    const TempFolder folder;
    services.open_text = [](const char *, const char *mode) -> std::FILE * {
        seen = mode;
        errno = ENOSPC;
        return nullptr;
    };
    EXPECT_EQ(OpenText(folder.Path("file").c_str(), "wt"), nullptr);
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_EQ(seen, "wt");
    EXPECT_FALSE(std::filesystem::exists(folder.Folder() / "file"));
}

TEST_F(Services, ReplacedBinaryOpeningFails) {
    const TempFolder folder;
    services.open_binary = [](const char *, const char *mode) -> std::FILE * {
        seen = mode;
        errno = EMFILE;
        return nullptr;
    };
    EXPECT_EQ(OpenBinary(folder.Path("file").c_str(), "w+b"), nullptr);
    EXPECT_EQ(errno, EMFILE);
    EXPECT_EQ(seen, "w+b");
    EXPECT_FALSE(std::filesystem::exists(folder.Folder() / "file"));
}

TEST_F(Services, ReplacedStatusAnswersInstead) {
    services.file_status = [](const char *path, FileStatus &out) {
        seen = path;
        out = {-5, 7, false};
        return true;
    };
    FileStatus status{};
    EXPECT_TRUE(GetFileStatus("no such file", status));
    EXPECT_EQ(seen, "no such file");
    EXPECT_EQ(status.modified, -5);
}

} // namespace
