// Drives and current folders on a host without: two drives in temporary folders.
#include <cstdlib>
#include <string>
#include <thread>

#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/desktop_tables.h"
#include "platform/drives.h"
#include "platform/drives_table.h"
#include "platform/file_verbs.h"
#include "platform/files.h"
#include "platform/folder_search.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;
namespace fs = std::filesystem;

constexpr int drive_d = 4;

std::string HostOf(const std::string &path) {
    char host[4096];
    return HostPath(path.c_str(), host, sizeof host) ? host : "(failed)";
}

class PosixDrives : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(m_d.Folder() / "ddir" / "deep");
        fs::create_directories(m_c.Folder() / "cdir");
        setenv("ZR_DRIVE_D", m_d.Folder().c_str(), 1);
        ASSERT_EQ(ChangeFolder("D:\\"), done); // what another test left there
        ASSERT_EQ(ChangeFolder(LibraryForm(m_c.Folder()).c_str()), done);
    }
    void TearDown() override {
        SetCurrentDrive(3);
        unsetenv("ZR_DRIVE_D");
        unsetenv("ZR_DRIVE_E");
    }

    std::string Root() const { return m_d.Folder().string(); }

    TempFolder m_c, m_d;
    ::CurrentFolder m_before{fs::current_path()};
};

TEST_F(PosixDrives, StepsOnTwoDrivesAnswerTheTable) {
    ASSERT_EQ(ChangeFolder("D:\\ddir"), done);
    RecordProperty("rows", CheckDriveSteps(m_c.Folder(), true));
}

TEST_F(PosixDrives, EveryDriveKeepsItsFolder) {
    EXPECT_EQ(CurrentDrive(), 3);
    ASSERT_EQ(ChangeFolder("D:\\ddir"), done);
    EXPECT_EQ(CurrentDrive(), drive_d);
    EXPECT_EQ(FolderNow(), "D:\\ddir");
    EXPECT_EQ(fs::current_path(), m_d.Folder() / "ddir");
    ASSERT_TRUE(SetCurrentDrive(3));
    EXPECT_EQ(FolderNow(), LibraryForm(m_c.Folder()));
    ASSERT_TRUE(SetCurrentDrive(drive_d));
    EXPECT_EQ(FolderNow(), "D:\\ddir");
    ASSERT_EQ(ChangeFolder("deep"), done);
    EXPECT_EQ(FolderNow(), "D:\\ddir\\deep");
    ASSERT_EQ(ChangeFolder("C:cdir"), done);
    EXPECT_EQ(FolderNow(), LibraryForm(m_c.Folder() / "cdir"));
    ASSERT_EQ(ChangeFolder("d:"), done);
    EXPECT_EQ(FolderNow(), "D:\\ddir\\deep");
    ASSERT_EQ(ChangeFolder("\\"), done);
    EXPECT_EQ(FolderNow(), "D:\\");
}

TEST_F(PosixDrives, PathsStartAtTheFolderOfTheirDrive) {
    EXPECT_EQ(HostOf("a"), "a");
    EXPECT_EQ(HostOf("C:a"), "a");
    EXPECT_EQ(HostOf("D:a"), Root() + "/a");
    ASSERT_EQ(ChangeFolder("D:\\ddir"), done);
    EXPECT_EQ(HostOf("a"), "a");
    EXPECT_EQ(HostOf("D:a\\b"), "a/b");
    EXPECT_EQ(HostOf("\\a"), Root() + "/a");
    EXPECT_EQ(HostOf("/a"), Root() + "/a");
    EXPECT_EQ(HostOf("C:\\a"), "/a");
    EXPECT_EQ(HostOf("C:a"), m_c.Folder().string() + "/a");
    EXPECT_EQ(HostOf("C:..\\a"), m_c.Folder().parent_path().string() + "/a");
    EXPECT_EQ(HostOf("C:"), "/");
    EXPECT_EQ(HostOf("D:"), Root());
    ASSERT_TRUE(SetCurrentDrive(3));
    EXPECT_EQ(HostOf("D:a"), Root() + "/ddir/a");
    EXPECT_EQ(HostOf("D:..\\a"), Root() + "/a");
}

TEST_F(PosixDrives, NothingLeadsAboveARoot) {
    EXPECT_EQ(HostOf("D:\\..\\..\\a"), Root() + "/a");
    EXPECT_EQ(HostOf("D:\\..\\"), Root());
    EXPECT_EQ(HostOf("D:\\a\\..\\.."), Root());
    EXPECT_EQ(HostOf("C:\\..\\..\\a"), "/a");
    EXPECT_EQ(HostOf("C:\\a\\.."), "/");
    ASSERT_EQ(ChangeFolder("D:\\ddir\\deep"), done);
    EXPECT_EQ(HostOf("..\\..\\..\\..\\a"), Root() + "/a");
    EXPECT_EQ(HostOf("..\\a"), Root() + "/ddir/a");
    ASSERT_EQ(ChangeFolder("..\\..\\..\\.."), done);
    EXPECT_EQ(FolderNow(), "D:\\");
    EXPECT_EQ(fs::current_path(), m_d.Folder());
}

TEST_F(PosixDrives, DotsAreResolvedInTheText) {
    EXPECT_EQ(HostOf("a\\..\\b"), "b");
    EXPECT_EQ(HostOf("a\\..\\..\\b"), "../b");
    EXPECT_EQ(HostOf("..\\..\\b"), "../../b");
    EXPECT_EQ(HostOf("a\\.."), ".");
    EXPECT_EQ(HostOf(".\\"), ".");
    EXPECT_EQ(HostOf(".\\a\\.\\b\\"), "a/b/");
    EXPECT_EQ(HostOf("a\\\\..\\b"), "b");
    EXPECT_EQ(HostOf("...\\..a\\a..\\.b"), ".../..a/a../.b");
    EXPECT_EQ(HostOf("C:\\file.txt\\."), "/file.txt");
    EXPECT_EQ(HostOf("C:\\a\\b\\..\\..\\..\\c"), "/c");
}

TEST_F(PosixDrives, LeavingByOtherMeansMakesDriveCCurrent) {
    ASSERT_EQ(ChangeFolder("D:\\ddir"), done);
    ASSERT_EQ(chdir((m_d.Folder() / "ddir" / "deep").c_str()), 0);
    EXPECT_EQ(FolderNow(), "D:\\ddir\\deep"); // still below the root
    ASSERT_EQ(chdir(m_c.Folder().c_str()), 0);
    EXPECT_EQ(CurrentDrive(), 3);
    EXPECT_EQ(FolderNow(), LibraryForm(m_c.Folder()));
    EXPECT_EQ(HostOf("\\a"), "/a");
    ASSERT_EQ(chdir(m_d.Folder().c_str()), 0); // the same folder is on drive C too
    EXPECT_EQ(FolderNow(), LibraryForm(m_d.Folder()));
}

TEST_F(PosixDrives, NeighbourOfARootIsNotBelowIt) {
    const fs::path neighbour = Root() + "x";
    fs::create_directory(neighbour);
    ASSERT_EQ(ChangeFolder("D:\\"), done);
    ASSERT_EQ(chdir(neighbour.c_str()), 0);
    EXPECT_EQ(CurrentDrive(), 3);
    fs::current_path(m_c.Folder());
    fs::remove(neighbour);
}

TEST_F(PosixDrives, RootMayBeALinkOrEndInSeparators) {
    fs::create_directory_symlink(m_d.Folder(), m_c.Folder() / "link");
    for (const std::string &root : {(m_c.Folder() / "link").string(), Root() + "//"}) {
        setenv("ZR_DRIVE_E", root.c_str(), 1);
        ASSERT_EQ(ChangeFolder("E:\\ddir"), done);
        EXPECT_EQ(FolderNow(), "E:\\ddir");
        EXPECT_EQ(CurrentDrive(), 5);
        ASSERT_EQ(ChangeFolder("..\\.."), done);
        EXPECT_EQ(FolderNow(), "E:\\");
        ASSERT_TRUE(SetCurrentDrive(3));
    }
    setenv("ZR_DRIVE_E", "/", 1);
    ASSERT_EQ(ChangeFolder("E:\\"), done);
    EXPECT_EQ(FolderNow(), "E:\\");
    EXPECT_EQ(HostOf("\\a"), "/a");
    EXPECT_EQ(HostOf("E:"), "/");
}

TEST_F(PosixDrives, DriveMustBeAFolderOfAFixedPlace) {
    m_c.Write("file", "");
    for (const std::string &root :
         {std::string(), std::string("cdir"), std::string("."), (m_c.Folder() / "file").string(),
          (m_c.Folder() / "none").string(), "/" + std::string(5000, 'x')}) {
        setenv("ZR_DRIVE_E", root.c_str(), 1);
        EXPECT_FALSE(SetCurrentDrive(5)) << root;
        EXPECT_EQ(ChangeFolder("E:"), path_not_found);
        EXPECT_EQ(ChangeFolder("E:\\"), path_not_found);
        EXPECT_EQ(DriveType("E:\\"), 1);
        EXPECT_EQ(MakeFolder("E:\\x"), path_not_found);
    }
    EXPECT_EQ(CurrentDrive(), 3);
}

TEST_F(PosixDrives, DriveMayDisappearWhileItIsCurrent) {
    m_c.Write("file", "");
    const std::string file = (m_c.Folder() / "file").string(), missing = (m_c.Folder() / "none").string();
    for (const char *root : {"", "ddir", ".", file.c_str(), missing.c_str()}) {
        setenv("ZR_DRIVE_D", Root().c_str(), 1);
        ASSERT_EQ(ChangeFolder("D:\\ddir"), done);
        ASSERT_EQ(CurrentDrive(), drive_d);
        setenv("ZR_DRIVE_D", root, 1);
        EXPECT_EQ(CurrentDrive(), 3) << root; // the folder is one of drive C, too
        EXPECT_EQ(FolderNow(), LibraryForm(m_d.Folder() / "ddir"));
        EXPECT_EQ(HostOf("\\a"), "/a");
        EXPECT_FALSE(SetCurrentDrive(drive_d));
        EXPECT_EQ(ChangeFolder("D:"), path_not_found);
        EXPECT_EQ(HostOf("D:a"), "(failed)");
    }
}

TEST_F(PosixDrives, RootMayBeRemovedWhileItIsCurrent) {
    const fs::path root = m_c.Folder() / "e";
    setenv("ZR_DRIVE_E", root.c_str(), 1);
    for (const char *leave : {"C:\\", "C:"}) {
        fs::create_directories(root / "deep");
        ASSERT_EQ(ChangeFolder("E:\\deep"), done);
        fs::remove_all(root);
        EXPECT_EQ(FolderNow(), "(none)");
        EXPECT_NE(MakeFolder("x"), done);
        EXPECT_EQ(HostOf("\\a"), "(failed)");
        ASSERT_EQ(ChangeFolder(leave), done);
        EXPECT_EQ(CurrentDrive(), 3);
        EXPECT_FALSE(SetCurrentDrive(5));
        fs::create_directories(root);
        EXPECT_TRUE(SetCurrentDrive(5));
        EXPECT_EQ(FolderNow(), "E:\\");
        EXPECT_TRUE(SetCurrentDrive(3));
    }
}

TEST_F(PosixDrives, FolderThatIsGoneLeavesTheRoot) {
    ASSERT_EQ(ChangeFolder("D:\\ddir\\deep"), done);
    ASSERT_TRUE(SetCurrentDrive(3));
    fs::remove_all(m_d.Folder() / "ddir");
    ASSERT_TRUE(SetCurrentDrive(drive_d));
    EXPECT_EQ(FolderNow(), "D:\\");
    ASSERT_EQ(MakeFolder("gone"), done);
    ASSERT_EQ(ChangeFolder("gone"), done);
    fs::remove(m_d.Folder() / "gone");
    EXPECT_EQ(FolderNow(), "(none)"); // the process stands in a folder that has been removed
    EXPECT_EQ(CurrentDrive(), drive_d);
}

TEST_F(PosixDrives, DeepFolderSurvivesAChangeOfDrive) {
    fs::path deep = m_c.Folder();
    for (int i = 0; i < 5; ++i)
        deep /= std::string(100, static_cast<char>('a' + i));
    fs::create_directories(deep);
    fs::current_path(deep);
    EXPECT_EQ(FolderNow(), "(none)"); // longer than a path of the library
    ASSERT_TRUE(SetCurrentDrive(drive_d));
    ASSERT_TRUE(SetCurrentDrive(3));
    EXPECT_EQ(fs::current_path(), deep);
}

TEST_F(PosixDrives, FilesMoveBetweenDrivesAndFoldersDoNot) {
    m_c.Write("f", "content");
    const std::string from = LibraryForm(m_c.Folder());
    EXPECT_EQ(MoveToNewName((from + "\\cdir").c_str(), "D:\\cdir"), access_denied);
    ASSERT_EQ(MoveToNewName((from + "\\f").c_str(), "D:\\f"), done);
    EXPECT_EQ(m_d.Read("f"), "content");
    EXPECT_FALSE(fs::exists(m_c.Folder() / "f"));
    ASSERT_EQ(ChangeFolder("D:\\ddir"), done);
    EXPECT_EQ(MoveToNewName("deep", (from + "\\deep").c_str()), access_denied);
    EXPECT_EQ(MoveToNewName("deep", "D:\\deep"), done);
}

TEST_F(PosixDrives, SearchesKnowTheirDrive) {
    FolderSearch search;
    FoundEntry entry;
    ASSERT_EQ(search.Start("D:*", SearchOrder::by_name, entry), done);
    EXPECT_STREQ(entry.name, "ddir"); // no "." in a root
    EXPECT_EQ(search.Next(entry), no_more_files);
    ASSERT_EQ(ChangeFolder("D:\\ddir"), done);
    for (const char *pattern : {"*", "D:*", "D:\\ddir\\*", ".\\*", "\\ddir\\*"}) {
        ASSERT_EQ(search.Start(pattern, SearchOrder::by_name, entry), done) << pattern;
        EXPECT_STREQ(entry.name, ".");
        ASSERT_EQ(search.Next(entry), done);
        ASSERT_EQ(search.Next(entry), done);
        EXPECT_STREQ(entry.name, "deep");
    }
    ASSERT_EQ(search.Start(".", SearchOrder::any, entry), done);
    EXPECT_STREQ(entry.name, "ddir");
    EXPECT_EQ(search.Start("..", SearchOrder::any, entry), file_not_found); // the root has no name
    ASSERT_TRUE(SetCurrentDrive(3));
    ASSERT_EQ(search.Start("D:.", SearchOrder::any, entry), done);
    EXPECT_STREQ(entry.name, "ddir");
}

TEST_F(PosixDrives, KindsOnTwoDrivesAnswerTheTable) {
    const int fixed = DriveType("D:\\"); // the kind of the disk that holds temporary folders
    ASSERT_GT(fixed, 1);
    const GoldenTable table("win_drivetype.tsv");
    int checked = 0;
    for (const GoldenTable::Row &row : table.Rows()) {
        const std::string &path = row.at("path");
        if (!row.at("windows_documented").empty() || path == "nul" || path.find("windows") != std::string::npos ||
            path.compare(0, 4, "\\\\.\\") == 0 || path.compare(0, 4, "\\\\?\\") == 0 || path[0] == 'Z')
            continue;
        const bool on_d = row.at("cwd")[0] == 'D';
        ASSERT_EQ(ChangeFolder((on_d ? "D:\\" : LibraryForm(m_c.Folder())).c_str()), done);
        const std::string here = AtRoot(path, path == "\\woad" && on_d ? "C:\\none" : LibraryForm(m_c.Folder()));
        const int type = DriveType(path == "\\N" ? nullptr : here.c_str());
        SCOPED_TRACE(testing::PrintToString(path) + " at " + row.at("cwd"));
        if (row.at("result") == "3") {
            EXPECT_GT(type, 2);
        } else {
            EXPECT_EQ(type, std::stoi(row.at("result")));
        }
        ++checked;
    }
    RecordProperty("rows", checked);
    EXPECT_GT(checked, 35);
}

TEST_F(PosixDrives, LinksAreFollowedAsTheHostFollowsThem) {
    fs::create_directories(m_d.Folder() / "far" / "inner");
    fs::create_directory_symlink(m_d.Folder() / "far" / "inner", m_c.Folder() / "cdir" / "link");
    fs::create_symlink("../target", m_d.Folder() / "far" / "inner" / "file"); // far/target, not cdir/target
    m_d.Write("far/target", "x");
    char out[path_size];
    ASSERT_TRUE(FollowLinks((LibraryForm(m_c.Folder()) + "\\cdir\\link\\file").c_str(), out, sizeof out));
    EXPECT_EQ(std::string(out), LibraryForm(m_d.Folder() / "far" / "target"));
    fs::remove(m_d.Folder() / "far" / "target"); // the target of the last link need not exist
    ASSERT_TRUE(FollowLinks("D:\\far\\inner\\file", out, sizeof out));
    EXPECT_EQ(std::string(out), LibraryForm(m_d.Folder() / "far" / "target"));
    fs::create_symlink("none/../target", m_d.Folder() / "bad");
    EXPECT_FALSE(FollowLinks("D:\\bad", out, sizeof out));
    EXPECT_STREQ(out, "");
    fs::create_symlink("..", m_d.Folder() / "ddir" / "up");
    ASSERT_TRUE(FollowLinks("D:\\ddir\\up", out, sizeof out));
    EXPECT_EQ(std::string(out), LibraryForm(m_d.Folder()));
}

TEST_F(PosixDrives, ThreadsMayChangeAndAskAtOnce) {
    std::thread changing([] {
        for (int i = 0; i < 300; ++i) {
            ChangeFolder(i % 2 == 0 ? "D:\\ddir" : "D:\\");
            SetCurrentDrive(3);
        }
    });
    for (int i = 0; i < 300; ++i) {
        const std::string host = HostOf("D:a");
        EXPECT_TRUE(host == "a" || host == Root() + "/a" || host == Root() + "/ddir/a") << host;
        EXPECT_EQ(HostOf("C:\\a"), "/a");
        const int drive = CurrentDrive();
        EXPECT_TRUE(drive == 3 || drive == drive_d);
        FolderNow();
    }
    changing.join();
}

} // namespace
