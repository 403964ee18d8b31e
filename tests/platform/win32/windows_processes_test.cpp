// What only the back end of the desktop promises of started programs.
#include "platform/processes.h"

#include <cstdlib>
#include <string>
#include <vector>

#include <windows.h>

#include <gtest/gtest.h>

#include <zrclb/system.h>
#include <zrclb/window_utilities.hpp>

#include "platform/temp_folder.h"
#include "process_measures.h"
#include "settings/started_program.h"

namespace {

using Texts = std::vector<std::string>;

// Of a program that was started: how its window is to be shown, the folder, and a variable.
Texts State() {
    STARTUPINFOA start;
    GetStartupInfoA(&start);
    const bool tells_show = (start.dwFlags & STARTF_USESHOWWINDOW) != 0;
    const char *variable = std::getenv("ZR_TEST_VARIABLE");
    return {tells_show ? "show " + std::to_string(start.wShowWindow) : "not told",
            std::filesystem::current_path().string(), variable != nullptr ? variable : "no variable"};
}

const StartedProgram started_program(State);

class WindowsProcesses : public testing::Test {
protected:
    void SetUp() override { StartedProgram::SetFolder(m_folder.Folder().string()); }
    void TearDown() override {
        StartedProgram::SetFolder("");
        zr_putenv("ZR_TEST_VARIABLE", "");
    }

    // Starts this program once more.
    static int Start(const std::string &arguments, unsigned short show) {
        char path[MAX_PATH];
        GetModuleFileNameA(nullptr, path, sizeof path);
        return zr_WinExec(("\"" + std::string(path) + "\" " + arguments).c_str(), show);
    }

    Texts Answer() const { return StartedProgram::Take(m_folder.Folder()); }

    TempFolder m_folder;
};

TEST_F(WindowsProcesses, StartedProgram_IsToldHowToShowItsWindow) {
    for (const int show : {SW_HIDE, SW_SHOWNORMAL, SW_SHOWMINNOACTIVE, 65535}) {
        EXPECT_EQ(Start("", static_cast<unsigned short>(show)), 40);
        EXPECT_EQ(Answer().at(0), "show " + std::to_string(show));
    }
}

TEST_F(WindowsProcesses, StartedProgram_HasFolderAndVariablesOfThisOne) {
    zr_putenv("ZR_TEST_VARIABLE", "a value");
    const CurrentFolder current(m_folder.Folder());
    EXPECT_EQ(Start("", SW_HIDE), 40);
    const Texts state = Answer();
    EXPECT_TRUE(std::filesystem::equivalent(state.at(1), m_folder.Folder())) << state.at(1);
    EXPECT_EQ(state.at(2), "a value");
}

TEST_F(WindowsProcesses, StartedProgram_HasNoHandlesOfThisOne) {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    HANDLE read_end = nullptr, write_end = nullptr;
    ASSERT_TRUE(CreatePipe(&read_end, &write_end, &inherited, 0));
    EXPECT_EQ(Start("wait", SW_HIDE), 40);
    CloseHandle(write_end);
    DWORD available = 0;
    EXPECT_FALSE(PeekNamedPipe(read_end, nullptr, 0, nullptr, &available, nullptr)); // nobody else can write
    EXPECT_EQ(GetLastError(), DWORD{ERROR_BROKEN_PIPE});
    CloseHandle(read_end);
    m_folder.Write("go", "");
    EXPECT_EQ(Answer().size(), 3U);
}

TEST_F(WindowsProcesses, HandlesOfTheStartedProgram_StayOpen) {
    EXPECT_EQ(Start("", SW_HIDE), 40); // the first start may open what the system keeps
    Answer();
    const long long before = ProcessMeasures::OpenHandles();
    ASSERT_GT(before, 0);
    EXPECT_EQ(Start("", SW_HIDE), 40);
    Answer();
    EXPECT_EQ(ProcessMeasures::OpenHandles(), before + 2); // process and thread
    EXPECT_EQ(zr_WinExec("zr_no_such_program", SW_HIDE), 0);
    EXPECT_EQ(ProcessMeasures::OpenHandles(), before + 2);
}

TEST(WindowsSystemText, IsTheSystemsInTheUsersLanguage) {
    constexpr DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    for (const DWORD code : {0u, 2u, 5u, 193u, 1223u}) {
        char text[1000];
        ASSERT_GT(
            FormatMessageA(flags, nullptr, code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), text, sizeof text, nullptr),
            0u);
        EXPECT_EQ(CZrWinError::GetFormattedMsg(code), text) << code;
    }
}

} // namespace
