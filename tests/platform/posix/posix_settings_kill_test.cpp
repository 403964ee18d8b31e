// A process that is killed at each of its system calls, while it rewrites a settings file; what this host has beside files.
#include <zrclb/ini.h>
#include <zrclb/mini.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include <csignal>
#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/raw_output.h"
#include "platform/services.h"
#include "platform/system_error.h"
#include "platform/temp_folder.h"
#include "settings/ini_on_the_way.h"

namespace {

enum class Ending {
    killed,
    by_itself,
    not_allowed
};

// Runs `work` in a process of its own, which dies in front of the system call that comes after so many others.
Ending RunUntilCall(int others, const std::function<void()> &work) {
    constexpr int no_trace = 77;
    const pid_t process = fork();
    if (process == 0) {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
            _exit(no_trace);
        raise(SIGSTOP);
        work();
        _exit(0);
    }
    int status = 0;
    waitpid(process, &status, 0);
    if (!WIFSTOPPED(status))
        return Ending::not_allowed;
    for (int stops = 0; stops < 2 * others + 1; ++stops) { // a call has two: before and behind
        ptrace(PTRACE_SYSCALL, process, nullptr, nullptr);
        waitpid(process, &status, 0);
        if (!WIFSTOPPED(status))
            return Ending::by_itself;
    }
    kill(process, SIGKILL);
    waitpid(process, &status, 0);
    return Ending::killed;
}

const TempFolder *watched_folder;

class SettingsKill : public testing::Test {
protected:
    SettingsKill() {
        watched_folder = &m_temporary;
        zr::platform::services.temp_folder = [](char *out, std::size_t size) {
            const std::string folder = watched_folder->Path("");
            return folder.copy(out, size - 1) == folder.size() ? (out[folder.size()] = 0, folder.size()) : 0;
        };
    }
    ~SettingsKill() override { zr::platform::services = {}; }

    std::string Bytes() const { return std::filesystem::exists(m_path) ? m_folder.Read("test.ini") : "none"; }

    std::vector<std::string> TakeTemporary() const {
        std::vector<std::string> contents;
        for (const auto &entry : std::filesystem::directory_iterator(m_temporary.Folder())) {
            std::ifstream file(entry.path(), std::ios::binary);
            contents.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
            std::filesystem::remove(entry.path());
        }
        return contents;
    }

    void Restore(const std::string &before) const {
        if (before == "none")
            std::filesystem::remove(m_path);
        else
            m_folder.Write("test.ini", before);
    }

    // Kills the change at every call that it makes.
    void KillEverywhere(const std::string &before, const std::string &after) {
        KillEverywhere(before, after, [this] { ini_write_string(m_path.c_str(), "S", "x", "new"); });
    }
    void KillEverywhere(const std::string &before, const std::string &after, const std::function<void()> &change) {
        bool begun = false, complete = false;
        for (int others = 0;; ++others) {
            ASSERT_LT(others, 1000);
            Restore(before);
            const Ending ending = RunUntilCall(others, change);
            if (ending == Ending::not_allowed)
                GTEST_SKIP() << "this host lets no process watch another";
            const std::string bytes = Bytes();
            const auto temporary = TakeTemporary();
            begun = begun || bytes != before;
            complete = complete || bytes == after;
            if (complete) {
                ASSERT_EQ(bytes, after) << others;
            } else if (begun) {
                ASSERT_TRUE(zr::test::IsOnTheWay(bytes, before == "none" ? "" : before, after)) << others;
                ASSERT_EQ(temporary, std::vector<std::string>{after}) << others;
            } else {
                ASSERT_EQ(bytes, before) << others;
            }
            if (ending == Ending::by_itself)
                break;
        }
        EXPECT_TRUE(complete);
    }

    TempFolder m_folder;
    TempFolder m_temporary;
    const std::string m_path = m_folder.Path("test.ini");
};

TEST_F(SettingsKill, FileThatShrinks_IsOldThenNewInFrontThenNew) {
    KillEverywhere("[S]\r\n\r\n\r\nx=what was here\r\ny=1\r\n", "[S]\r\nx=new\r\ny=1\r\n");
}

TEST_F(SettingsKill, FileThatGrows_IsOldThenNew) {
    KillEverywhere("[S]\r\nx=\r\ny=1\r\n", "[S]\r\nx=new\r\ny=1\r\n");
}

TEST_F(SettingsKill, FileThatIsCopiedInPieces_IsNewInFrontMeanwhile) {
    const std::string rest = std::string(70000, 'r') + "\r\n";
    KillEverywhere("[S]\r\nx=\r\n" + rest, "[S]\r\nx=new\r\n" + rest);
}

TEST_F(SettingsKill, FileThatComesToBe_IsMissingOrAPartMeanwhile) {
    KillEverywhere("none", "[S]\r\nx=new");
}

TEST_F(SettingsKill, FileHeldInMemory_IsOldThenNewInFrontThenNew) {
    const auto update = [this] {
        mini_file *settings = mini_open(nullptr, m_path.c_str(), 0);
        mini_write_string(settings, "S", "x", "new");
        mini_close(&settings);
    };
    KillEverywhere("; note\r\n\r\n[S]\r\nx=what was here\r\ny=1\r\n", "[S]\r\nx=new\r\ny=1", update);
    KillEverywhere("[S]\r\nx=\r\ny=1", "[S]\r\nx=new\r\ny=1", update);
    KillEverywhere("none", "[S]\r\nx=new", update);
}

// The host refuses room for the longer file; the shorter one had its own.
TEST_F(SettingsKill, LimitOfTheProcess_CountsAsAFullDisk) {
    m_folder.Write("test.ini", "[S]\r\nx=old");
    rlimit before;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit tight = {12, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
    const auto old_action = std::signal(SIGXFSZ, SIG_IGN);
    const int result = ini_write_string(m_path.c_str(), "S", "x", "longer");
    const int too_large_on_the_way = ini_write_string(m_path.c_str(), "S", "x", std::string(100, 'v').c_str());
    std::signal(SIGXFSZ, old_action);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    EXPECT_EQ(result, -1); // the temporary file is the first that has no room
    EXPECT_EQ(too_large_on_the_way, -1);
    EXPECT_EQ(Bytes(), "[S]\r\nx=old");
    EXPECT_TRUE(TakeTemporary().empty());
}

TEST_F(SettingsKill, TemporaryFile_IsReadByItsOwnerAlone) {
    static mode_t seen;
    seen = 0;
    zr::platform::services.write_output = [](std::intptr_t file, std::uint64_t at, const char *bytes,
                                             std::size_t size) {
        struct stat status;
        if (seen == 0 && fstat(static_cast<int>(file), &status) == 0)
            seen = status.st_mode;
        return zr::platform::backend::WriteOutput(file, at, bytes, size);
    };
    m_folder.Write("test.ini", "[S]\r\nx=old");
    ASSERT_EQ(chmod(m_path.c_str(), 0640), 0);
    ASSERT_EQ(ini_write_string(m_path.c_str(), "S", "x", "new"), 0);
    EXPECT_EQ(seen & 0777, 0600U);
    struct stat status;
    ASSERT_EQ(stat(m_path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640U);
}

// One that comes to be is nobody's secret yet: it has the permissions of any new file.
TEST_F(SettingsKill, NewFile_HasTheUsualPermissions) {
    m_folder.Write("ordinary", "");
    ASSERT_EQ(ini_write_string(m_path.c_str(), "S", "x", "new"), 0);
    struct stat ordinary, made;
    ASSERT_EQ(stat(m_folder.Path("ordinary").c_str(), &ordinary), 0);
    ASSERT_EQ(stat(m_path.c_str(), &made), 0);
    EXPECT_EQ(made.st_mode & 0777, ordinary.st_mode & 0777);
}

// A link stays one, and so does the second name of a file.
TEST_F(SettingsKill, LinksToTheFile_Stay) {
    m_folder.Write("test.ini", "[S]\r\nx=old");
    const std::string link = m_folder.Path("link.ini"), name = m_folder.Path("name.ini");
    std::filesystem::create_symlink(m_path, link);
    std::filesystem::create_hard_link(m_path, name);
    EXPECT_EQ(ini_write_string(link.c_str(), "S", "x", "new"), 0);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(Bytes(), "[S]\r\nx=new\r\n");
    EXPECT_EQ(m_folder.Read("name.ini"), Bytes());
}

TEST_F(SettingsKill, DeviceAndPipe_AreNotWaitedFor) {
    const std::string pipe = m_folder.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    zr::platform::RawOutput output;
    EXPECT_NE(output.Open(pipe.c_str()), zr::platform::done);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(output.Open(pipe.c_str()), zr::platform::access_denied);
    close(reader);
    ASSERT_EQ(output.Open("/dev/null"), zr::platform::done);
    EXPECT_EQ(output.Reserve(100), zr::platform::done);
    EXPECT_EQ(output.Write("x", 1), zr::platform::done);
    EXPECT_EQ(output.Cut(), zr::platform::done);
    EXPECT_EQ(output.Close(), zr::platform::done);
    ASSERT_EQ(output.Open("/dev/full"), zr::platform::done);
    EXPECT_EQ(output.Write("x", 1), zr::platform::disk_full);
}

} // namespace
