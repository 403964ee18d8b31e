// Starting other programs.
#include <zrclb/system.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/command_line.h"
#include "platform/files.h"
#include "platform/modules.h"
#include "platform/processes.h"
#include "platform/services.h"
#include "platform/system_error.h"
#include "platform/system_text.h"
#include "platform/temp_folder.h"
#include "settings/started_program.h"

namespace {

using namespace zr::platform;
using Texts = std::vector<std::string>;

const StartedProgram started_program;

class RunProgram : public testing::Test {
protected:
    void SetUp() override {
        s_debugger.clear();
        s_line.clear();
        s_answer = 0;
        services.debug_output = [](const char *text) { s_debugger.emplace_back(text); };
        StartedProgram::SetFolder(m_folder.Folder().string());
    }
    void TearDown() override {
        StartedProgram::SetFolder("");
        services = Services();
    }

    static std::string OwnPath() {
        char path[path_size];
        ProgramPath(path, sizeof path);
        return path;
    }

    // Another name for this program, below the test's folder; answers the library's form of its path.
    std::string Named(const std::string &below) const {
        std::filesystem::path path = m_folder.Folder() / below;
        std::filesystem::create_directories(path.parent_path());
        std::filesystem::copy_file(HostPath(), path);
        std::string text = path.string();
        if (text[0] == '/')
            text.insert(0, "C:");
        std::replace(text.begin(), text.end(), '/', '\\');
        return text;
    }

    static std::filesystem::path HostPath() {
        std::string path = OwnPath();
        if (std::filesystem::temp_directory_path().string()[0] == '/') {
            path.erase(0, 2);
            std::replace(path.begin(), path.end(), '\\', '/');
        }
        return path;
    }

    Texts Answer() const { return StartedProgram::Take(m_folder.Folder()); }

    // The report of a start that failed.
    static Texts Failure(const std::string &line, int code) {
        const SystemText reason(static_cast<unsigned long>(code));
        return {"CreateProcess is failed; The command line is", line, reason.Get() != nullptr ? reason.Get() : "",
                "\n\n"};
    }

    // The report's texts, its header's tag checked.
    static Texts TakeReport() {
        Texts report = s_debugger;
        s_debugger.clear();
        if (report.empty())
            return report;
        EXPECT_NE(report[0].find(" \"Zr\" line "), std::string::npos) << report[0];
        report.erase(report.begin());
        return report;
    }

    static inline Texts s_debugger;
    static inline std::string s_line;
    static inline int s_show = 0;
    static inline int s_answer = 0;
    TempFolder m_folder;
};

TEST_F(RunProgram, InQuotes_GetsItsArguments) {
    EXPECT_EQ(zr_WinExec(("\"" + OwnPath() + "\" a \"b c\" d\\\"e \"\" \"f\\\\\" g\\h").c_str(), 1), 40);
    EXPECT_EQ(Answer(), (Texts{"a", "b c", "d\"e", "", "f\\", "g\\h"}));
    EXPECT_EQ(TakeReport(), Texts{});
}

TEST_F(RunProgram, PathWithBlanks_NeedsNoQuotes) {
    const std::string path = Named("w o/p q.exe");
    EXPECT_EQ(zr_WinExec((path + " r  s").c_str(), 1), 40);
    EXPECT_EQ(Answer(), (Texts{"r", "s"}));
    EXPECT_EQ(zr_WinExec(("\"" + path + "\"").c_str(), 1), 40);
    EXPECT_EQ(Answer(), Texts{});
    EXPECT_EQ(TakeReport(), Texts{});
}

TEST_F(RunProgram, NameAlone_IsFoundInTheCurrentFolder) {
    Named("zr child.exe");
    const CurrentFolder current(m_folder.Folder());
    EXPECT_EQ(zr_WinExec("zr child.exe x", 1), 40);
    EXPECT_EQ(Answer(), Texts{"x"});
}

TEST_F(RunProgram, NameAlone_IsFoundBesideTheRunningProgram) {
    std::string name = OwnPath();
    name.erase(0, name.rfind('\\') + 1);
    const CurrentFolder current(m_folder.Folder());
    EXPECT_EQ(zr_WinExec((name + " y").c_str(), 1), 40);
    EXPECT_EQ(Answer(), Texts{"y"});
}

TEST_F(RunProgram, RelativePath_StartsAtTheCurrentFolder) {
    Named("sub/child.exe");
    const CurrentFolder current(m_folder.Folder());
    EXPECT_EQ(zr_WinExec("sub\\child.exe z", 1), 40);
    EXPECT_EQ(Answer(), Texts{"z"});
}

TEST_F(RunProgram, ThatItStarted_OutlivesIt) {
    EXPECT_EQ(zr_WinExec(("\"" + OwnPath() + "\" other").c_str(), 1), 40);
    EXPECT_TRUE(StartedProgram::Appears(m_folder.Folder() / "ended"));
    m_folder.Write("go", "");
    EXPECT_EQ(Answer(), Texts{"wait"});
}

TEST_F(RunProgram, IsNotWaitedFor) {
    EXPECT_EQ(zr_WinExec(("\"" + OwnPath() + "\" wait").c_str(), 1), 40);
    EXPECT_FALSE(std::filesystem::exists(m_folder.Folder() / "answer"));
    m_folder.Write("go", "");
    EXPECT_EQ(Answer(), Texts{"wait"});
}

TEST_F(RunProgram, ThatDoesNotExist_IsReportedWithTheSystemsReason) {
    for (const std::string line : {"zr_no_such_program", "zr_no_such_program a b", "C:\\zr_no_such\\program.exe x",
                                   "\"C:\\zr no such\\program.exe\" x", "\"zr no closing quote"}) {
        EXPECT_EQ(zr_WinExec(line.c_str(), 1), 0) << line;
        EXPECT_EQ(TakeReport(), Failure(line, file_not_found));
    }
}

TEST_F(RunProgram, EmptyLines_Fail) {
    for (const std::string line : {"", " ", "\t"}) {
        EXPECT_EQ(zr_WinExec(line.c_str(), 1), 0);
        const Texts report = TakeReport();
        ASSERT_EQ(report.size(), 4U);
        EXPECT_EQ(report[1], line);
    }
    EXPECT_EQ(zr_WinExec(nullptr, 1), 0);
    EXPECT_EQ(TakeReport().size(), 3U); // without a line
    EXPECT_EQ(zr_WinExec("\"\" a", 1), 0);
    EXPECT_EQ(TakeReport().at(1), "\"\" a");
}

TEST_F(RunProgram, FolderAndFileThatIsNone_AreReportedWithTheirReasons) {
    const std::string folder = "\"" + m_folder.Folder().string() + "\" x";
    EXPECT_EQ(zr_WinExec(folder.c_str(), 1), 0);
    EXPECT_EQ(TakeReport(), Failure(folder, access_denied));
    m_folder.Write("note.exe", "no program");
    std::filesystem::permissions(m_folder.Folder() / "note.exe", std::filesystem::perms::owner_all);
    const std::string note = "\"" + m_folder.Path("note.exe") + "\"";
    EXPECT_EQ(zr_WinExec(note.c_str(), 1), 0);
    EXPECT_EQ(TakeReport(), Failure(note, bad_program_format));
}

TEST_F(RunProgram, LongLine_IsCutForTheStartAndWholeInTheReport) {
    services.start_program = [](char *line, unsigned short show) {
        s_line = line;
        s_show = show;
        std::fill_n(line, s_line.size(), '!'); // as the system may do
        return s_answer;
    };
    for (const std::size_t length : {1U, 1022U, 1023U, 1024U, 10000U}) {
        const std::string line(length, 'l');
        s_answer = 0;
        EXPECT_EQ(zr_WinExec(line.c_str(), 65535), 40);
        EXPECT_EQ(s_line, line.substr(0, 1023));
        EXPECT_EQ(s_show, 65535);
        EXPECT_EQ(TakeReport(), Texts{});
        s_answer = access_denied;
        EXPECT_EQ(zr_WinExec(line.c_str(), 0), 0);
        EXPECT_EQ(s_show, 0);
        EXPECT_EQ(TakeReport(), Failure(line, access_denied));
    }
}

TEST_F(RunProgram, LongLine_ReachesTheProgramUpToTheLimit) {
    const std::string lead = "\"" + OwnPath() + "\" ";
    for (const std::size_t length : {1022U, 1023U, 1024U, 10000U}) {
        const std::string argument(length - lead.size(), 'a');
        EXPECT_EQ(zr_WinExec((lead + argument).c_str(), 1), 40);
        EXPECT_EQ(Answer(), Texts{argument.substr(0, 1023 - lead.size())}) << length;
    }
    const std::string name(10000, 'x');
    EXPECT_EQ(zr_WinExec(name.c_str(), 1), 0);
    EXPECT_EQ(TakeReport(), Failure(name, file_not_found));
}

TEST_F(RunProgram, ReasonThatTheSystemHasNoTextFor_IsLeftOut) {
    services.start_program = [](char *, unsigned short) { return 99999; };
    EXPECT_EQ(zr_WinExec("x", 1), 0);
    EXPECT_EQ(TakeReport(), (Texts{"CreateProcess is failed; The command line is", "x", "\n\n"}));
}

} // namespace
