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
#include "golden_table.h"
#include "platform/desktop_tables.h"
#include "platform/drives.h"
#include "platform/drives_table.h"

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
        putenv(variable.data());
        Hosts::SetUp();
        for (const char *drive : {"D:", "C:", "Z:"})
            if (m_other.empty() && std::strcmp(drive, m_host) != 0 && fio_host_exist(drive) == 1)
                m_other = drive;
        if (m_other.empty())
            GTEST_SKIP() << "only one drive on this host";
        MakeFolderThere();
        if (m_other_folder.empty())
            GTEST_SKIP() << "nowhere to write on the second drive";
    }

    void TearDown() override {
        fio_chdir((m_other + "\\").c_str());
        fio_chdir(m_here.c_str());
        if (!m_other_folder.empty()) {
            EXPECT_EQ(fio_rmdir_ex(m_other_folder.c_str()), 0);
        }
        static char removed[] = "ZR_DRIVE_D=";
        putenv(removed);
        Hosts::TearDown();
    }

    // With the name of the test's own folder, where the drive takes one.
    void MakeFolderThere() {
        for (const char *place : {"\\tmp\\", "\\"}) {
            const std::string folder = m_other + place + m_folder.Folder().filename().string() + "d";
            if (m_other_folder.empty() && fio_mkdir(folder.c_str()) == 0)
                m_other_folder = folder;
        }
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

// A host may keep it instead.
TEST_F(Hosts, CurrentFolderThatWasRemoved_IsNone) {
    std::error_code failure;
    ASSERT_EQ(fio_chdir("sub\\inner"), 0);
    fs::remove(m_folder.Folder() / "sub" / "inner", failure);
    const bool removed = !failure && !Exists("sub/inner");
    const std::string folder = m_here + "\\sub\\inner";
    EXPECT_EQ(Host(), m_host);
    EXPECT_EQ(Current(), removed ? "(none)" : folder);
    EXPECT_EQ(CurrentOf(""), removed ? "" : folder);
    EXPECT_EQ(fio_chdir(m_here.c_str()), 0);
    EXPECT_EQ(Current(), m_here);
}

TEST_F(Hosts, CurrentFolderIsNotRemovedByVerbs) {
    Write("sub/in");
    ASSERT_EQ(fio_chdir("sub\\inner"), 0);
    EXPECT_EQ(fio_rmdir("."), -1);
    EXPECT_EQ(fio_rmdir((m_here + "\\sub\\inner").c_str()), -1);
    EXPECT_EQ(fio_rmdir_ex((m_here + "\\sub").c_str()), -1);
    EXPECT_EQ(Current(), m_here + "\\sub\\inner");
    EXPECT_FALSE(Exists("sub/in")); // what could be removed is gone
}

TEST_F(Hosts, CurrentFolderMayBeChangedByOthers) {
    fs::current_path(m_folder.Folder() / "sub");
    EXPECT_EQ(Current(), m_here + "\\sub");
    EXPECT_EQ(CurrentOf(""), m_here + "\\sub");
    EXPECT_EQ(CurrentOf(m_host), m_here + "\\sub");
    EXPECT_EQ(fio_exist("", "inner"), 1);
    EXPECT_EQ(fio_chdir(".."), 0);
    EXPECT_EQ(fs::current_path().filename(), m_folder.Folder().filename());
}

TEST_F(Hosts, DriveMayBeASmallLetter) {
    std::string small = m_here;
    small[0] = static_cast<char>(small[0] - 'A' + 'a');
    EXPECT_EQ(fio_chdir((small + "\\sub").c_str()), 0);
    EXPECT_EQ(Host(), m_host);
    EXPECT_EQ(Current().substr(1), (m_here + "\\sub").substr(1));
    EXPECT_EQ(fio_exist("", small.c_str()), 1);
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
    const std::string &there = m_other_folder;
    EXPECT_EQ(fio_copy(m_here.c_str(), "file", there.c_str(), "copy"), 0);
    EXPECT_EQ(fio_copy(m_here.c_str(), "file", there.c_str(), "copy"), 0);
    EXPECT_EQ(fio_move(m_here.c_str(), "file", there.c_str(), "copy"), 183);
    EXPECT_EQ(fio_exist(m_here.c_str(), "file"), 1);
    EXPECT_EQ(fio_move(m_here.c_str(), "file", there.c_str(), "moved"), 0);
    EXPECT_EQ(fio_exist(there.c_str(), "copy") + fio_exist(there.c_str(), "moved"), 2);
    EXPECT_EQ(fio_exist(m_here.c_str(), "file"), 0);
    EXPECT_EQ(fio_rename(there.c_str(), "moved", (m_here + "\\file").c_str()), 0);
    EXPECT_EQ(fio_exist(m_here.c_str(), "file"), 1);
}

TEST_F(TwoHosts, ListingAndFoldersOfTheOther) {
    ASSERT_EQ(fio_chdir(m_other_folder.c_str()), 0);
    ASSERT_EQ(fio_mkdir("new"), 0);
    ASSERT_EQ(fio_sethostname(m_host), 0);
    EXPECT_EQ(fio_ispath((m_other + "new").c_str()), 1);
    for (const std::string &dir : {m_other_folder, m_other + "."}) {
        fio_dirent *entries = nullptr;
        int count = 0;
        EXPECT_EQ(fio_listdir(dir.c_str(), "n*", 0, &entries, &count), 0) << dir;
        ASSERT_EQ(count, 1);
        EXPECT_STREQ(entries[0].name, "new");
        heap_free(entries);
    }
    EXPECT_EQ(fio_rmdir((m_other_folder + "\\new").c_str()), 0);
}

// The steps with this folder in place of "C:\woad", and that of the other host in place of "D:\ddir".
class HostSteps : public TwoHosts {
protected:
    std::string Here(const std::string &path) const {
        if (path.rfind("D:", 0) == 0)
            return m_other_folder;
        return StepArgument(path, m_here);
    }

    // The host of a drive's number there.
    std::string HostOf(const std::string &drive) const {
        return drive == "4" ? m_other : std::string(1, static_cast<char>('A' - 1 + std::stoi(drive)));
    }

    void Do(const std::string &function, const std::string &argument, const std::string &result) const {
        const bool bare_drive = argument == "C:" || argument == "D:"; // means its root here
        const int expected = result == "0" ? 0 : -1;
        if (function == "_chdir" && bare_drive)
            EXPECT_EQ(fio_sethostname(argument == "D:" ? m_other.c_str() : "C:"), expected);
        else if (function == "_chdir")
            EXPECT_EQ(fio_chdir(Here(argument).c_str()), expected);
        else if (function == "_chdrive")
            EXPECT_EQ(fio_sethostname(HostOf(argument).c_str()), expected);
        else if (function == "_getdcwd") // the current folder for a host that there isn't
            EXPECT_EQ(UpperText(CurrentOf(HostOf(argument))), UpperText(result == "\\N" ? Current() : Here(result)));
        else {
            char small[8];
            EXPECT_EQ(fio_getcwd(small, std::stoi(argument)), nullptr);
        }
    }
};

TEST_F(HostSteps, AnswerTheTable) {
    ASSERT_STREQ(m_host, "C:");
    ASSERT_EQ(fio_chdir(m_other_folder.c_str()), 0);
    ASSERT_EQ(fio_sethostname("C"), 0);
    int before = 0, checked = 0;
    const GoldenTable table("crt_getdcwd_chdrive.tsv");
    for (const GoldenTable::Row &row : table.Rows()) {
        const std::string &argument = row.at("argument"), &documented = row.at("windows_documented");
        const int step = std::stoi(row.at("step"));
        if (step != before + 1) // a step is missing; it may have come back to C
            fio_sethostname("C");
        before = step;
        if (argument == "C:work" || (OnDesktop() && argument == "/")) // "C:\work" here; the machine's
            continue;
        SCOPED_TRACE("step " + row.at("step") + " " + row.at("function") + " " + argument);
        Do(row.at("function"), argument, row.at("ret"));
        const std::string after = documented.rfind("cwd_after", 0) == 0 ? "C:\\" : row.at("cwd_after");
        EXPECT_EQ(UpperText(Current()), UpperText(Here(after)));
        ++checked;
    }
    EXPECT_GE(checked, 24);
}

} // namespace
