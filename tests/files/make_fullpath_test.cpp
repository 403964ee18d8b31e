// Absolute paths.
#include <zrclb/paths.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

#include <zrclb/files.h>

#include "env/report_capture.h"
#include "platform/temp_folder.h"

namespace {

using zr::test::Message;
using zr::test::ReportCapture;
using zr::test::Reports;

std::string FullPath(const char *default_dir, const char *dir, const char *name) {
    const auto out = std::make_unique<char[]>(260);
    std::memset(out.get(), '#', 260);
    EXPECT_EQ(fio_make_fullpath(out.get(), default_dir, dir, name), out.get());
    return out.get();
}

std::string CurrentFolderOf(const char *host) {
    char folder[260];
    return fio_get_host_cwd(host, folder, sizeof folder) != nullptr ? folder : "";
}

// `name` below `folder`, which ends in a separator if it is a root.
std::string Below(const std::string &folder, const std::string &name) {
    return folder + (folder.ends_with('\\') ? "" : "\\") + name;
}

// Runs in a folder of its own, so that the current one is no root.
class MakeFullpath : public testing::Test {
protected:
    std::string Here() const { return CurrentFolderOf(""); }
    std::string Drive() const { return Here().substr(0, 2); }

private:
    TempFolder m_folder;
    CurrentFolder m_current{m_folder.Folder()};
};

TEST_F(MakeFullpath, AbsolutePath_StaysAsItIs) {
    EXPECT_EQ(FullPath("", "C:\\a", "x.txt"), "C:\\a\\x.txt");
    EXPECT_EQ(FullPath("C:\\base", "rel", "x"), "C:\\base\\rel\\x");
    EXPECT_EQ(FullPath("", "", "c:/a/../b"), "c:\\a\\..\\b");
    EXPECT_EQ(FullPath(nullptr, nullptr, "Q:\\no\\such\\drive"), "Q:\\no\\such\\drive");
}

TEST_F(MakeFullpath, RelativePath_LiesUnderTheCurrentFolder) {
    EXPECT_EQ(FullPath("", "", "x.txt"), Below(Here(), "x.txt"));
    EXPECT_EQ(FullPath("", "sub", "x.txt"), Below(Here(), "sub\\x.txt"));
    EXPECT_EQ(FullPath("base", "sub/", "x.txt"), Below(Here(), "base\\sub\\x.txt"));
    EXPECT_EQ(FullPath("", "", "..\\x"), Below(Here(), "..\\x"));
    EXPECT_EQ(FullPath("", "a\\", ""), Below(Here(), "a"));
    EXPECT_EQ(FullPath("", "", (Drive() + "x.txt").c_str()), Below(Here(), "x.txt"));
}

TEST_F(MakeFullpath, NothingGiven_IsTheCurrentFolder) {
    EXPECT_EQ(FullPath("", "", ""), Here());
    EXPECT_EQ(FullPath(nullptr, nullptr, nullptr), Here());
    EXPECT_EQ(FullPath("", "", Drive().c_str()), Here());
}

TEST_F(MakeFullpath, PathWithoutDrive_GetsTheCurrentOne) {
    EXPECT_EQ(FullPath("", "", "\\a\\b"), Drive() + "\\a\\b");
    EXPECT_EQ(FullPath("", "/a", "b"), Drive() + "\\a\\b");
    EXPECT_EQ(FullPath("", "", "\\"), Drive() + "\\");
}

TEST_F(MakeFullpath, SeparatorAtTheEnd_StandsAtARootOnly) {
    EXPECT_EQ(FullPath("", "C:\\", ""), "C:\\");
    EXPECT_EQ(FullPath("", "C:", ""), "C:\\");
    EXPECT_EQ(FullPath("", "C:\\a\\", ""), "C:\\a");
    EXPECT_EQ(FullPath("", "C:a\\", ""), "C:\\a");
    EXPECT_EQ(FullPath("", "C:\\a\\\\", ""), "C:\\a");
    EXPECT_EQ(FullPath("", "C:\\\\", ""), "C:\\");
    EXPECT_EQ(FullPath("", "", "\\\\"), "\\");
    EXPECT_EQ(FullPath("", "", "\\a\\"), Drive() + "\\a");
    EXPECT_EQ(FullPath("", "", "b/"), Below(Here(), "b"));
}

TEST_F(MakeFullpath, UnderARoot_OneSeparatorIsPut) {
    const std::string here = Here();
    ASSERT_EQ(fio_chdir("\\"), 0);
    EXPECT_EQ(FullPath("", "", "x"), Drive() + "\\x");
    EXPECT_EQ(FullPath("", "", "a\\"), Drive() + "\\a");
    EXPECT_EQ(FullPath("", "", ""), Drive() + "\\");
    EXPECT_EQ(FullPath("", "", (Drive() + "x\\y").c_str()), Drive() + "\\x\\y");
    ASSERT_EQ(fio_chdir(here.c_str()), 0);
}

// Where the host lets it be removed.
TEST_F(MakeFullpath, NoCurrentFolder_LeavesRelativePathsEmpty) {
    const std::string here = Here();
    std::error_code failure;
    std::filesystem::create_directory("gone");
    ASSERT_EQ(fio_chdir("gone"), 0);
    std::filesystem::remove(std::filesystem::current_path(), failure);
    const bool removed = CurrentFolderOf("").empty();
    const std::string relative = FullPath("", "sub", "x");
    const std::string absolute = FullPath("", "C:\\a", "x");
    ASSERT_EQ(fio_chdir(here.c_str()), 0);
    EXPECT_EQ(absolute, "C:\\a\\x");
    EXPECT_EQ(relative, removed ? "" : here + "\\gone\\sub\\x");
}

TEST_F(MakeFullpath, LengthAtTheLimit_Passes) {
    ReportCapture reports;
    const std::string name = "C:\\" + std::string(200, 'a') + "\\" + std::string(55, '\xE4');
    EXPECT_EQ(FullPath("", "", name.c_str()), name);
    EXPECT_EQ(FullPath("", name.c_str(), ""), name);
    const std::string here = Here();
    const std::string relative = std::string(100, 'r') + "\\" + std::string(259 - here.size() - 102, 's');
    EXPECT_EQ(FullPath("", "", relative.c_str()), here + "\\" + relative);
    EXPECT_EQ(reports.Take(), Reports{});
    EXPECT_EQ(FullPath("", "", (relative + "s").c_str()), "");
    EXPECT_EQ(FullPath("", "", (name + "b").c_str()), "");
    EXPECT_EQ(reports.Take(), (Reports{Message("Fio", "Buffer zu klein"), Message("Fio", "Buffer zu klein")}));
}

TEST_F(MakeFullpath, NetworkPath_GetsNoDrive) {
    EXPECT_EQ(FullPath("", "", "\\\\srv\\sh\\f.txt"), "\\\\srv\\sh\\f.txt");
    EXPECT_EQ(FullPath("", "\\\\srv\\sh", "f.txt"), "\\\\srv\\sh\\f.txt");
    EXPECT_EQ(FullPath("", "\\\\srv\\sh\\", ""), "\\\\srv\\sh");
}

TEST_F(MakeFullpath, DriveThatDoesNotExist_TakesTheCurrentFolder) {
    EXPECT_EQ(FullPath("", "", "Q:x.txt"), Below(Here(), "x.txt"));
}

// On a second drive: one of the test's where drives can be had for the asking, else one that is there anyway.
TEST_F(MakeFullpath, SecondDrive_HasAFolderOfItsOwn) {
    const TempFolder second;
    static std::string variable; // belongs to the environment from here on
    variable = "ZR_DRIVE_D=" + second.Folder().string();
    static char removed[] = "ZR_DRIVE_D=";
    std::filesystem::create_directory(second.Folder() / "there");
    putenv(variable.data());
    const std::string here = Here();
    const std::string first = Drive();
    std::string other;
    for (const char *drive : {"D:", "C:", "Z:"})
        if (other.empty() && first != drive && fio_host_exist(drive) == 1)
            other = drive;
    if (other.empty())
        GTEST_SKIP() << "only one drive on this host";
    if (fio_ispath((other + "\\there").c_str()) == 1) {
        EXPECT_EQ(fio_chdir((other + "\\there").c_str()), 0);
        EXPECT_EQ(CurrentFolderOf(other.c_str()), other + "\\there");
    } else {
        EXPECT_EQ(fio_sethostname(other.c_str()), 0);
    }
    // The other drive is current.
    EXPECT_EQ(FullPath("", "", "x.txt"), Below(CurrentFolderOf(other.c_str()), "x.txt"));
    EXPECT_EQ(FullPath("", "", "\\a\\b"), other + "\\a\\b");
    EXPECT_EQ(FullPath("", "", (first + "x.txt").c_str()), Below(here, "x.txt"));
    EXPECT_EQ(fio_sethostname(first.c_str()), 0);
    // It is not, and keeps its folder.
    EXPECT_EQ(FullPath("", "", (other + "sub\\x.txt").c_str()), Below(CurrentFolderOf(other.c_str()), "sub\\x.txt"));
    EXPECT_EQ(FullPath("", "", "x.txt"), Below(here, "x.txt"));
    EXPECT_EQ(FullPath("", (other + "sub").c_str(), "x.txt"),
              other + "\\sub\\x.txt"); // a bare drive in dir means its root
    putenv(removed);
}

TEST_F(MakeFullpath, FirstCompositionTooLong_LeavesAnEmptyPath) {
    const std::string long_name = "C:\\" + std::string(200, 'a') + "\\" + std::string(60, 'b');
    ReportCapture reports;
    EXPECT_EQ(FullPath("", "", long_name.c_str()), "");
    EXPECT_EQ(reports.Take(), Reports{Message("Fio", "Buffer zu klein")});
    EXPECT_EQ(FullPath("", (long_name + std::string(10000, 'c')).c_str(), "x"), "");
    EXPECT_EQ(reports.Take(), Reports{Message("Fio", "Buffer zu klein")});
}

TEST_F(MakeFullpath, SecondCompositionTooLong_LeavesAnEmptyPath) {
    ReportCapture reports;
    const std::string relative = std::string(200, 'a') + "\\" + std::string(55, 'b'); // 256 characters
    EXPECT_EQ(FullPath("", "", relative.c_str()), "");
    EXPECT_EQ(reports.Take(), Reports{Message("Fio", "Buffer zu klein")});
}

TEST_F(MakeFullpath, NullOutput_GivesNull) {
    EXPECT_EQ(fio_make_fullpath(nullptr, "", "C:\\a", "x"), nullptr);
}

TEST_F(MakeFullpath, OutputMayBeAnArgument) {
    char path[260] = "C:\\a";
    EXPECT_STREQ(fio_make_fullpath(path, "", path, "x"), "C:\\a\\x");
    std::strcpy(path, "y");
    EXPECT_EQ(fio_make_fullpath(path, "", path, path), path);
    EXPECT_EQ(path, Below(Here(), "y\\y"));
}

} // namespace
