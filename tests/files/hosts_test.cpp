// Hosts, which are drives, and current folders.
#include <zrclb/files.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

#include <zrclb/heap.h>

#include "files/names_fixture.h"
#include "platform/drives.h"

namespace {

namespace fs = std::filesystem;

class Hosts : public NamesFixture {
protected:
    void SetUp() override {
        MakeFolders("sub/inner");
        Write("file");
        ASSERT_EQ(fio_chdir(LibraryForm(Dir()).c_str()), 0);
        m_here = Current();
        ASSERT_EQ(fio_gethostname(m_host, sizeof m_host), 0);
    }

    static std::string Current() {
        char folder[zr::platform::path_size];
        return fio_getcwd(folder, sizeof folder) == folder ? folder : "(none)";
    }

    static std::string CurrentOf(const std::string &host) {
        char folder[zr::platform::path_size] = "untouched";
        EXPECT_EQ(fio_get_host_cwd(host.c_str(), folder, sizeof folder), folder);
        return folder;
    }

    static std::string Host() {
        char host[3];
        return fio_gethostname(host, sizeof host) == 0 ? host : "(none)";
    }

    std::string m_here; // the test's folder as the library says it
    char m_host[3];     // its drive

private:
    CurrentFolder m_keeper{fs::current_path()};
};

// A second drive: one of the test's where drives can be had for the asking, else one that is there anyway.
class TwoHosts : public Hosts {
protected:
    void SetUp() override {
        static std::string variable; // belongs to the environment from here on
        variable = "ZR_DRIVE_D=" + m_second.Folder().string();
        fs::create_directory(m_second.Folder() / "there");
        putenv(variable.data());
        Hosts::SetUp();
        for (const char *drive : {"D:", "C:", "Z:"})
            if (m_other.empty() && std::strcmp(drive, m_host) != 0 && fio_host_exist(drive) == 1)
                m_other = drive;
        if (m_other.empty())
            GTEST_SKIP() << "only one drive on this host";
        m_other_folder = m_other + "\\" + AFolderOf(m_other + "\\");
        ASSERT_GT(m_other_folder.size(), 3U);
    }

    void TearDown() override {
        fio_chdir((m_other + "\\").c_str());
        fio_chdir(m_here.c_str());
        static char removed[] = "ZR_DRIVE_D=";
        putenv(removed);
        Hosts::TearDown();
    }

    static std::string AFolderOf(const std::string &root) {
        fio_dirent *entries = nullptr;
        int count = 0;
        fio_listdir(root.c_str(), nullptr, FIO_IS_DIR, &entries, &count);
        std::string name;
        for (int i = 0; i < count && name.empty(); ++i)
            if (entries[i].name[0] != '.' && (entries[i].flags & FIO_IS_HIDDEN) == 0)
                name = entries[i].name;
        heap_free(entries);
        return name;
    }

    TempFolder m_second;
    std::string m_other, m_other_folder;
};

// The current folder

TEST_F(Hosts, ChangeFolderGoesThere) {
    EXPECT_EQ(fio_chdir("sub"), 0);
    EXPECT_EQ(Current(), m_here + "\\sub");
    EXPECT_EQ(fio_exist("", "inner"), 1);
    EXPECT_EQ(fio_chdir("inner\\"), 0);
    EXPECT_EQ(Current(), m_here + "\\sub\\inner");
    EXPECT_EQ(fio_chdir("../.."), 0);
    EXPECT_EQ(Current(), m_here);
    EXPECT_EQ(fio_chdir("\\"), 0);
    EXPECT_EQ(Current(), std::string(m_host) + "\\");
    EXPECT_EQ(fio_chdir("..\\..\\.."), 0);
    EXPECT_EQ(Current(), std::string(m_host) + "\\");
    EXPECT_EQ(fio_chdir((m_here + "\\").c_str()), 0);
    EXPECT_EQ(Current(), m_here);
}

TEST_F(Hosts, ChangeFolderToNothing_ChangesNothing) {
    EXPECT_EQ(fio_chdir(""), 0);
    EXPECT_EQ(fio_chdir(nullptr), 0);
    EXPECT_EQ(Current(), m_here);
}

TEST_F(Hosts, ChangeFolderToBadPaths_GivesMinusOne) {
    for (const std::string &path : BadPaths()) {
        if (!path.empty()) {
            EXPECT_EQ(fio_chdir(path.c_str()), -1) << Short(path);
        }
    }
    m_reports.Take();
    EXPECT_EQ(fio_chdir("file"), -1);
    EXPECT_EQ(Current(), m_here);
}

TEST_F(Hosts, CurrentFolderNeedsRoom) {
    const int needed = static_cast<int>(m_here.size()) + 1;
    std::string room(m_here.size() + 1, 'x');
    EXPECT_EQ(fio_getcwd(room.data(), needed), room.data());
    EXPECT_STREQ(room.c_str(), m_here.c_str());
    EXPECT_EQ(fio_getcwd(room.data(), needed - 1), nullptr);
    EXPECT_STREQ(room.c_str(), "");
    for (const int size : {0, -1}) {
        room = "kept";
        EXPECT_EQ(fio_getcwd(room.data(), size), nullptr);
        EXPECT_EQ(room, "kept");
    }
    EXPECT_EQ(fio_getcwd(nullptr, 260), nullptr);
}

TEST_F(Hosts, CurrentFolderThatWasRemoved_IsNone) {
    std::error_code failure;
    ASSERT_EQ(fio_chdir("sub\\inner"), 0);
    fs::remove(m_folder.Folder() / "sub" / "inner", failure);
    const bool removed = !failure && !Exists("sub/inner");
    const std::string current = Current();
    EXPECT_EQ(fio_chdir(m_here.c_str()), 0);
    if (!removed)
        GTEST_SKIP() << "current folders can't be removed on this host";
    EXPECT_EQ(current, "(none)");
}

// Hosts

TEST_F(Hosts, HostNameIsTheCurrentDrive) {
    char host[4] = "###";
    EXPECT_EQ(fio_gethostname(host, sizeof host), 0);
    EXPECT_EQ(std::string(host), m_here.substr(0, 2));
    EXPECT_EQ(fio_gethostname(host, 3), 0);
    EXPECT_EQ(std::string(host), m_here.substr(0, 2));
    EXPECT_EQ(fio_gethostname(host, 2), 0);
    EXPECT_EQ(std::string(host), m_here.substr(0, 1));
    std::strcpy(host, "##");
    for (const int size : {1, 0, -1})
        EXPECT_EQ(fio_gethostname(host, size), -1);
    EXPECT_STREQ(host, "##");
    EXPECT_EQ(fio_gethostname(nullptr, 3), -1);
}

TEST_F(Hosts, SetHostTakesTheFirstCharacter) {
    const std::string letter(1, m_host[0]), small(1, static_cast<char>(m_host[0] - 'A' + 'a'));
    for (const std::string &host :
         {letter, small, letter + ":", small + ":\\x", "   " + letter, letter + std::string(10000, 'x')}) {
        EXPECT_EQ(fio_sethostname(host.c_str()), 0) << Short(host);
        EXPECT_EQ(fio_host_exist(host.c_str()), 1) << Short(host);
        EXPECT_EQ(CurrentOf(host), m_here) << Short(host);
    }
    for (const char *host : {"", " ", "     "}) {
        EXPECT_EQ(fio_sethostname(host), 0);
        EXPECT_EQ(fio_host_exist(host), 1);
        EXPECT_EQ(CurrentOf(host), m_here);
    }
    EXPECT_EQ(fio_sethostname(nullptr), 0);
    EXPECT_EQ(fio_host_exist(nullptr), 1);
    char folder[zr::platform::path_size];
    EXPECT_EQ(fio_get_host_cwd(nullptr, folder, sizeof folder), folder);
    EXPECT_STREQ(folder, m_here.c_str());
}

TEST_F(Hosts, SetHostThatDoesntExist_GivesMinusOne) {
    const std::string big(10000, 'Q');
    for (const char *host :
         {"Q", "q:", "Q:\\", "@", "1", "[", "{", "\\", "/", ":", "\t", "\xE4", "\xFF", "\x80", big.c_str()}) {
        EXPECT_EQ(fio_sethostname(host), -1) << Short(host);
        EXPECT_EQ(fio_host_exist(host), 0) << Short(host);
        EXPECT_EQ(CurrentOf(host), m_here) << Short(host);
        EXPECT_EQ(Current(), m_here) << Short(host);
    }
}

TEST_F(Hosts, FolderOfAHostNeedsRoom) {
    char folder[3] = "##";
    EXPECT_EQ(fio_get_host_cwd(m_host, folder, sizeof folder), folder);
    EXPECT_STREQ(folder, "");
    std::strcpy(folder, "##");
    EXPECT_EQ(fio_get_host_cwd(m_host, folder, 0), folder);
    EXPECT_STREQ(folder, "##");
    EXPECT_EQ(fio_get_host_cwd(m_host, nullptr, 260), nullptr);
}

TEST_F(TwoHosts, EachHasACurrentFolderOfItsOwn) {
    ASSERT_EQ(fio_chdir(m_other_folder.c_str()), 0);
    EXPECT_EQ(Host(), m_other);
    EXPECT_EQ(Current(), m_other_folder);
    EXPECT_EQ(CurrentOf(m_host), m_here);
    EXPECT_EQ(Host(), m_other);
    EXPECT_EQ(fio_sethostname(m_host), 0);
    EXPECT_EQ(Current(), m_here);
    EXPECT_EQ(CurrentOf(m_other), m_other_folder);
    EXPECT_EQ(Current(), m_here);
    EXPECT_EQ(fio_chdir("sub"), 0);
    EXPECT_EQ(CurrentOf(m_other), m_other_folder);
    EXPECT_EQ(fio_sethostname(m_other.c_str()), 0);
    EXPECT_EQ(Current(), m_other_folder);
    EXPECT_EQ(CurrentOf(m_host), m_here + "\\sub");
    EXPECT_EQ(CurrentOf(""), m_other_folder);
}

TEST_F(TwoHosts, AskingForAHostLeavesTheCurrentOne) {
    EXPECT_EQ(fio_host_exist(m_other.c_str()), 1);
    EXPECT_EQ(fio_host_exist("Q"), 0);
    EXPECT_EQ(Host(), m_host);
    EXPECT_EQ(Current(), m_here);
}

TEST_F(TwoHosts, RelativePathsStartAtTheCurrentOne) {
    ASSERT_EQ(fio_sethostname(m_other.c_str()), 0);
    EXPECT_EQ(fio_exist("", "file"), 0);
    EXPECT_EQ(fio_exist(m_here.c_str(), "file"), 1);
    ASSERT_EQ(fio_sethostname(m_host), 0);
    EXPECT_EQ(fio_exist("", "file"), 1);
}

TEST_F(TwoHosts, FilesMoveAndCopyFromOneToTheOther) {
    // A folder that both drives reach, or one of the second drive's own.
    const std::string there = m_other == "D:" ? m_other_folder : m_other + LibraryForm(Dir()).substr(2);
    if (fio_ispath(there.c_str()) == 0)
        GTEST_SKIP() << "nowhere to write on the second drive";
    EXPECT_EQ(fio_copy(m_here.c_str(), "file", there.c_str(), "copy"), 0);
    EXPECT_EQ(fio_move(m_here.c_str(), "file", there.c_str(), "moved"), 0);
    EXPECT_EQ(fio_exist(there.c_str(), "copy") + fio_exist(there.c_str(), "moved"), 2);
    EXPECT_EQ(fio_exist(m_here.c_str(), "file"), 0);
    EXPECT_EQ(fio_purge(there.c_str(), "copy"), 0);
    EXPECT_EQ(fio_purge(there.c_str(), "moved"), 0);
}

} // namespace
