// Debugger channel, message box, sound and list of fonts on a host without them.
#include <cstdio>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <zrclb/numbers.h>
#include <zrclb/window_utilities.h>

#include "platform/debug.h"
#include "platform/message_box.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;

class Desktop : public testing::Test {
protected:
    void SetUp() override {
        for (const char *variable : {"ZR_DEBUG", "DISPLAY", "WAYLAND_DISPLAY"})
            unsetenv(variable);
        m_search_path = std::getenv("PATH") != nullptr ? std::getenv("PATH") : "";
    }
    void TearDown() override {
        for (const char *variable : {"ZR_DEBUG", "DISPLAY", "WAYLAND_DISPLAY"})
            unsetenv(variable);
        setenv("PATH", m_search_path.c_str(), 1);
    }

    // Installs a dialog program that writes its arguments, a line each, to "shown".
    void InstallDialog(const std::string &name) const {
        m_folder.Write(name, "#!/bin/sh\nfor a in \"$0\" \"$@\"; do echo \"${a##*/}\"; done > " +
                                 m_folder.Path("shown") + "\nexit 1\n");
        ASSERT_EQ(chmod(m_folder.Path(name).c_str(), 0755), 0);
    }

    TempFolder m_folder;
    std::string m_search_path;
};

// In a process without a terminal there is no sound; the first terminal that it opens becomes its own.
TEST_F(Desktop, SoundIsTheBellOfTheControllingTerminal) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0)
        GTEST_SKIP() << "no terminals to be had on this host";
    const std::string name = ptsname(terminal);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        setsid();
        const int without = zr_beep();
        const bool opened = open(name.c_str(), O_RDWR) >= 0;
        _exit(without == 0 && opened && zr_beep() != 0 && zr_tone() != 0 ? 0 : 1);
    }
    std::string heard;
    pollfd wait{terminal, POLLIN, 0};
    for (char c = 0; heard.size() < 2 && poll(&wait, 1, 10000) == 1 && read(terminal, &c, 1) == 1;)
        heard += c;
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(heard, "\a\a");
    close(terminal);
}

TEST_F(Desktop, DebugTextsGoNowhereByThemselves) {
    testing::internal::CaptureStderr();
    DebugOutput("text");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Desktop, DebugTextsAreAppendedToTheNamedFile) {
    m_folder.Write("debug", "before ");
    setenv("ZR_DEBUG", m_folder.Path("debug").c_str(), 1);
    DebugOutput("one");
    DebugOutput("two\n");
    DebugOutput(nullptr);
    EXPECT_EQ(m_folder.Read("debug"), "before onetwo\n");
    setenv("ZR_DEBUG", m_folder.Path("none/debug").c_str(), 1);
    DebugOutput("lost");
    setenv("ZR_DEBUG", m_folder.Path("new").c_str(), 1);
    DebugOutput("made");
    EXPECT_EQ(m_folder.Read("new"), "made");
}

TEST_F(Desktop, DebugTextsGoToStandardError) {
    setenv("ZR_DEBUG", "stderr", 1);
    testing::internal::CaptureStderr();
    DebugOutput("one");
    DebugOutput("two\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "onetwo\n");
}

TEST_F(Desktop, ListOfFontsIsEmpty) {
    char buffer[20] = "before";
    EXPECT_EQ(wu_GetFontFile("Arial", buffer, sizeof buffer), 0);
    EXPECT_STREQ(buffer, "");
}

TEST_F(Desktop, BoxWithoutADesktopAnswersAtOnce) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(ShowMessageBox(nullptr, "text", "caption", 0x40000), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "caption\ntext\n");
    testing::internal::CaptureStderr();
    EXPECT_EQ(ShowMessageBox(nullptr, nullptr, nullptr, 0), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "\n\n");
}

TEST_F(Desktop, BoxWithoutADialogProgramGoesToStandardError) {
    setenv("DISPLAY", ":99", 1);
    setenv("PATH", m_folder.Folder().c_str(), 1);
    testing::internal::CaptureStderr();
    EXPECT_EQ(ShowMessageBox(nullptr, "text", "caption", 0), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "caption\ntext\n");
}

TEST_F(Desktop, FirstInstalledDialogProgramShowsTheBox) {
    setenv("WAYLAND_DISPLAY", "wayland-9", 1);
    setenv("PATH", m_folder.Folder().c_str(), 1);
    testing::internal::CaptureStderr();
    InstallDialog("xmessage");
    EXPECT_EQ(ShowMessageBox(nullptr, "a $(b) 'c'", "my caption", 0), 1);
    EXPECT_EQ(m_folder.Read("shown"), "xmessage\n-center\n-title\nmy caption\n-buttons\nOK:0\na $(b) 'c'\n");
    InstallDialog("kdialog");
    EXPECT_EQ(ShowMessageBox(nullptr, "text", "caption", 0), 1);
    EXPECT_EQ(m_folder.Read("shown"), "kdialog\n--title\ncaption\n--msgbox\ntext\n");
    InstallDialog("zenity");
    EXPECT_EQ(ShowMessageBox(nullptr, "text", "caption", 0), 1);
    EXPECT_EQ(m_folder.Read("shown"), "zenity\n--info\n--no-markup\n--title\ncaption\n--text\ntext\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Desktop, NoWindowHasTheFocus) {
    EXPECT_EQ(FocusWindow(), nullptr);
}

} // namespace
