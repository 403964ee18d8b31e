// What only the back end of Linux promises of started programs, the user, and the texts of the desktop.
#include "platform/processes.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <zrclb/system.h>
#include <zrclb/version.h>

#include "golden_table.h"
#include "platform/environment.h"
#include "platform/library_record.h"
#include "platform/posix/posix_programs.h"
#include "platform/system_error.h"
#include "platform/system_text.h"
#include "platform/temp_folder.h"
#include "platform/users.h"
#include "settings/started_program.h"

namespace {

using namespace zr::platform;
using Texts = std::vector<std::string>;

// Of a program that was started: what its name is, its arguments, files, signals, the folder and the parent.
Texts State() {
    Texts state = {"name " + ProgramArguments().at(0)};
    std::string files;
    for (int i = 0; i < 256; ++i)
        files += fcntl(i, F_GETFD) >= 0 ? " " + std::to_string(i) : "";
    state.push_back("files" + files);
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("SigBlk:") || line.starts_with("SigIgn:"))
            state.push_back(line.substr(0, 7) + (line.find_first_not_of('0', 8) == std::string::npos ? "none" : line));
    state.push_back("folder " + std::filesystem::current_path().string());
    const char *variable = std::getenv("ZR_TEST_VARIABLE");
    state.push_back(variable != nullptr ? variable : "no variable");
    return state;
}

const StartedProgram started_program(State);

int StartLine(std::string line) {
    return StartProgram(line.data(), 1);
}

class PosixProcesses : public testing::Test {
protected:
    void SetUp() override {
        m_path = std::getenv("PATH");
        StartedProgram::SetFolder(m_folder.Folder().string());
    }
    void TearDown() override {
        StartedProgram::SetFolder("");
        SetVariable("PATH", m_path.c_str());
        SetVariable("ZR_TEST_VARIABLE", "");
    }

    static std::string OwnPath() { return std::filesystem::read_symlink("/proc/self/exe").string(); }

    Texts Answer() const { return StartedProgram::Take(m_folder.Folder()); }

    // Writes a script that leaves its name and arguments as the answer.
    void WriteScript(const std::string &name, const std::string &interpreter = "/bin/sh") const {
        std::filesystem::create_directories((m_folder.Folder() / name).parent_path());
        m_folder.Write(name, "#!" + interpreter + "\nfor i in \"$0\" \"$@\"; do printf '%s\\n' \"$i\"; done > " +
                                 m_folder.Path("part") + "\nmv " + m_folder.Path("part") + " " +
                                 m_folder.Path("answer") + "\n");
        std::filesystem::permissions(m_folder.Folder() / name, std::filesystem::perms::owner_all);
    }

    std::string m_path;
    TempFolder m_folder;
};

TEST_F(PosixProcesses, StartedProgram_IsNoChildAndLeavesNoZombie) {
    EXPECT_EQ(StartLine("\"" + OwnPath() + "\""), done);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
    EXPECT_FALSE(Answer().empty());
    EXPECT_EQ(StartLine("/zr_no_such_program"), file_not_found);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(PosixProcesses, StartedProgram_HasTheStandardStreamsAndNoOtherFile) {
    const int file = open("/dev/null", O_RDONLY); // inherited, if nothing is done about it
    const int far_one = fcntl(file, F_DUPFD, 200);
    ASSERT_GE(far_one, 200);
    EXPECT_EQ(StartLine("\"" + OwnPath() + "\""), done);
    EXPECT_EQ(Answer().at(1), "files 0 1 2");
    EXPECT_EQ(fcntl(file, F_GETFD), 0);
    close(file);
    close(far_one);
}

TEST_F(PosixProcesses, StartedProgram_HasNoSignalsHeldBackOrIgnored) {
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const auto reaction = std::signal(SIGPIPE, SIG_IGN);
    EXPECT_EQ(StartLine("\"" + OwnPath() + "\""), done);
    sigset_t now;
    pthread_sigmask(SIG_SETMASK, &before, &now);
    EXPECT_EQ(sigismember(&now, SIGUSR1), 1);
    EXPECT_EQ(std::signal(SIGPIPE, reaction), SIG_IGN);
    const Texts state = Answer();
    EXPECT_EQ(state.at(2), "SigBlk:none");
    EXPECT_EQ(state.at(3), "SigIgn:none");
}

TEST_F(PosixProcesses, StartedProgram_HasFolderAndVariablesOfThisOne) {
    SetVariable("ZR_TEST_VARIABLE", "a value");
    const CurrentFolder current(m_folder.Folder());
    EXPECT_EQ(StartLine("\"" + OwnPath() + "\""), done);
    const Texts state = Answer();
    EXPECT_EQ(state.at(4), "folder " + m_folder.Folder().string());
    EXPECT_EQ(state.at(5), "a value");
}

int signals_seen = 0;

TEST_F(PosixProcesses, ApplicationThatWaitsForAllChildrenItself_DoesNotDisturb) {
    // Both ways in which nothing is left to wait for.
    const auto before = std::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(StartLine("\"" + OwnPath() + "\""), done);
    EXPECT_EQ(Answer().size(), 6U);
    EXPECT_EQ(StartLine("/zr_no_such_program"), file_not_found);
    std::signal(SIGCHLD, [](int) {
        const int error = errno;
        ++signals_seen;
        while (waitpid(-1, nullptr, WNOHANG) > 0) {
        }
        errno = error;
    });
    EXPECT_EQ(StartLine("\"" + OwnPath() + "\""), done);
    EXPECT_EQ(Answer().size(), 6U);
    m_folder.Write("text", "no program");
    std::filesystem::permissions(m_folder.Folder() / "text", std::filesystem::perms::owner_all);
    EXPECT_EQ(StartLine(m_folder.Path("text")), bad_program_format);
    std::signal(SIGCHLD, before);
    EXPECT_GE(signals_seen, 1);
}

TEST_F(PosixProcesses, OtherChildrenOfTheApplicationAreLeftAlone) {
    const pid_t child = fork();
    if (child == 0)
        _exit(7);
    ASSERT_GT(child, 0);
    EXPECT_EQ(StartLine("\"" + OwnPath() + "\""), done);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 7);
    EXPECT_EQ(Answer().size(), 6U);
}

TEST_F(PosixProcesses, PathInEitherForm_IsTheNameThatTheProgramGets) {
    WriteScript("w o/tool");
    const std::string host = m_folder.Path("w o/tool");
    std::string own = "C:" + host;
    std::replace(own.begin(), own.end(), '/', '\\');
    for (const std::string &path : {host, own, own.substr(2)}) {
        EXPECT_EQ(StartLine(path + " a"), done) << path;
        EXPECT_EQ(Answer(), (Texts{host, "a"}));
    }
}

TEST_F(PosixProcesses, Name_IsLookedForInTheFoldersOfPath) {
    WriteScript("second/zr_tool");
    std::filesystem::create_directory(m_folder.Folder() / "first");
    m_folder.Write("first/zr_tool", "data of that name"); // may not be run
    std::filesystem::create_directories(m_folder.Folder() / "zeroth/zr_tool");
    SetVariable("PATH", (m_folder.Path("zeroth") + ":" + m_folder.Path("first") +
                         ":/nowhere:" + m_folder.Path("second") + ":" + m_path)
                            .c_str());
    EXPECT_EQ(StartLine("zr_tool a"), done);
    EXPECT_EQ(Answer(), (Texts{m_folder.Path("second/zr_tool"), "a"}));
    EXPECT_EQ(StartLine("\"zr_tool\""), done);
    EXPECT_EQ(Answer(), Texts{m_folder.Path("second/zr_tool")});
    SetVariable("PATH", "/nowhere");
    EXPECT_EQ(StartLine("zr_tool a"), file_not_found);
}

TEST_F(PosixProcesses, Name_EmptyElementOfPathIsTheCurrentFolder) {
    posix::PathBuffer host;
    SetVariable("PATH", "/nowhere::");
    EXPECT_EQ(posix::FindProgram("zr_tool", host), file_not_found);
    WriteScript("zr_tool");
    const CurrentFolder current(m_folder.Folder());
    EXPECT_EQ(posix::FindProgram("zr_tool", host), done);
    EXPECT_STREQ(host, "./zr_tool");
    EXPECT_EQ(posix::FindProgram("./zr_tool", host), done);
    EXPECT_STREQ(host, "./zr_tool");
}

TEST_F(PosixProcesses, Name_WithoutPathIsFoundWhereTheSystemLooks) {
    posix::PathBuffer host;
    SetVariable("PATH", "");
    EXPECT_EQ(posix::FindProgram("sh", host), done);
    EXPECT_TRUE(std::string(host).ends_with("/bin/sh")) << host;
}

TEST_F(PosixProcesses, Name_ThatIsTooLongOrEmptyIsNotFound) {
    posix::PathBuffer host;
    for (const std::size_t length : {0U, 255U, 256U, 259U, 260U, 1023U, 4095U, 5000U}) {
        EXPECT_EQ(posix::FindProgram(std::string(length, 'n'), host), file_not_found) << length;
        EXPECT_EQ(posix::FindProgram("/" + std::string(length, 'n'), host) == done, false) << length;
    }
    SetVariable("PATH", std::string(5000, 'p').c_str());
    EXPECT_EQ(posix::FindProgram("zr_tool", host), file_not_found);
}

TEST_F(PosixProcesses, Failures_HaveTheDesktopsCodes) {
    m_folder.Write("data", "text");
    EXPECT_EQ(StartLine(m_folder.Path("data")), access_denied); // no right to run it
    std::filesystem::permissions(m_folder.Folder() / "data", std::filesystem::perms::owner_all);
    EXPECT_EQ(StartLine(m_folder.Path("data")), bad_program_format);
    WriteScript("script", "/zr_no_such_interpreter");
    EXPECT_EQ(StartLine(m_folder.Path("script")), file_not_found);
    EXPECT_EQ(StartLine(m_folder.Folder().string()), access_denied);
    EXPECT_EQ(StartLine(m_folder.Path("data/below")), file_not_found);
    EXPECT_EQ(StartLine("Q:\\program"), file_not_found);
    EXPECT_EQ(StartLine("\\\\server\\share\\program"), file_not_found);
    EXPECT_EQ(StartLine(std::string(1024, 'x')), invalid_parameter);
}

TEST_F(PosixProcesses, WithoutFreeDescriptors_Fails) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none = {3, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const int code = StartLine("/bin/sh -c true");
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(code, too_many_open_files);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

TEST(PosixUsers, NamesAreThoseOfTheHost) {
    char user[512], login[512], host[256] = {};
    ASSERT_TRUE(GetSystemUser(user, sizeof user));
    const passwd *record = getpwuid(geteuid());
    ASSERT_NE(record, nullptr);
    EXPECT_STREQ(user, record->pw_name);
    ASSERT_TRUE(GetSystemLogin(login, sizeof login));
    ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
    std::string expected = host;
    expected.erase(std::min(expected.find('.'), expected.size()));
    for (char &letter : expected)
        letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 32) : letter;
    EXPECT_EQ(login, expected + "\\" + user);
}

TEST(PosixSystemKind, IsTheLatest) {
    EXPECT_EQ(zr_get_win32(), 11);
}

TEST(PosixLibraryRecord, VersionIsTheOneThatWasCompiledIn) {
    FileVersion version;
    ASSERT_TRUE(GetFileVersion(version));
    const std::string text =
        std::to_string(version.a) + "." + std::to_string(version.b) + "." + std::to_string(version.c);
    EXPECT_EQ(text, zr_Version());
    EXPECT_EQ(version.d, 0);
}

TEST(PosixSystemText, TextsAreTheDesktops) {
    const GoldenTable table("win_formatmessage.tsv");
    int compared = 0;
    for (const GoldenTable::Row &row : table.Rows()) {
        const std::string &told = row.at("windows_documented");
        const std::string &language = row.at("language");
        if (told.empty() || told == "unverified" || language == "1031")
            continue;
        const SystemText text(std::stoul(row.at("code")));
        ASSERT_NE(text.Get(), nullptr) << row.at("code");
        EXPECT_EQ(text.Get(), told) << row.at("code");
        ++compared;
    }
    EXPECT_GT(compared, 25);
    for (const GoldenTable::Row &row : table.Rows()) {
        const long code = std::stol(row.at("code"));
        if (row.at("ret_length") == "0" && code != 740) {
            EXPECT_EQ(SystemText(static_cast<unsigned long>(code)).Get(), nullptr) << code;
        }
    }
}

} // namespace
