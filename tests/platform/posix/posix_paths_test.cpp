// The library's paths on a host without drives.
#include <cerrno>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/posix/posix_paths.h"
#include "platform/streams.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;

std::string HostOf(const std::string &path) {
    char host[4096];
    return HostPath(path.c_str(), host, sizeof host) ? host : "(failed)";
}

std::string LibraryFormOf(const char *path) {
    char form[path_size];
    return posix::FromHost(path, form, sizeof form) ? form : "(failed)";
}

class PosixPaths : public testing::Test {
protected:
    void SetUp() override {
        setenv("ZR_DRIVE_D", m_folder.Folder().c_str(), 1);
        m_folder.Write("file", "content");
    }
    void TearDown() override {
        for (const char *variable : {"ZR_DRIVE_D", "ZR_DRIVE_C", "ZR_DRIVE_E"})
            unsetenv(variable);
    }

    TempFolder m_folder;
};

TEST_F(PosixPaths, DriveCIsTheRoot) {
    EXPECT_EQ(HostOf("C:"), "/");
    EXPECT_EQ(HostOf("C:\\"), "/");
    EXPECT_EQ(HostOf("C:\\a\\b"), "/a/b");
    EXPECT_EQ(HostOf("c:/a\\b"), "/a/b");
    EXPECT_EQ(HostOf("\\a\\b"), "/a/b");
    EXPECT_EQ(HostOf("/a/b"), "/a/b");
    EXPECT_EQ(HostOf("C:\\a\\"), "/a/");
}

TEST_F(PosixPaths, OtherPathsStayRelative) {
    EXPECT_EQ(HostOf("a"), "a");
    EXPECT_EQ(HostOf("a\\b/c"), "a/b/c");
    EXPECT_EQ(HostOf("..\\a"), "../a");
    EXPECT_EQ(HostOf("C:a\\b"), "a/b");
    EXPECT_EQ(HostOf("."), ".");
    EXPECT_EQ(HostOf(" \xE4\xFF"), " \xE4\xFF");
}

TEST_F(PosixPaths, MappedDriveLiesUnderItsFolder) {
    const std::string root = m_folder.Folder();
    EXPECT_EQ(HostOf("D:\\a\\b"), root + "/a/b");
    EXPECT_EQ(HostOf("d:/a"), root + "/a");
    EXPECT_EQ(HostOf("D:a"), root + "/a");
    EXPECT_EQ(HostOf("D:\\"), root + "/");
    EXPECT_EQ(HostOf("D:"), root);
}

TEST_F(PosixPaths, DriveWithoutAFolderDoesNotExist) {
    EXPECT_EQ(HostOf("E:\\a"), "(failed)");
    EXPECT_EQ(errno, ENOENT);
    setenv("ZR_DRIVE_E", "", 1);
    EXPECT_EQ(HostOf("E:\\a"), "(failed)");
    setenv("ZR_DRIVE_E", (m_folder.Folder() / "none").c_str(), 1);
    EXPECT_EQ(HostOf("E:\\a"), "(failed)");
    setenv("ZR_DRIVE_E", (m_folder.Folder() / "file").c_str(), 1);
    EXPECT_EQ(HostOf("E:\\a"), "(failed)");
    EXPECT_EQ(HostOf("?:\\a"), "(failed)");
    EXPECT_EQ(HostOf("1:"), "(failed)");
    EXPECT_EQ(HostOf("\xE4:\\a"), "(failed)");
}

TEST_F(PosixPaths, NoVariableMovesDriveC) {
    setenv("ZR_DRIVE_C", m_folder.Folder().c_str(), 1);
    EXPECT_EQ(HostOf("C:\\a"), "/a");
}

TEST_F(PosixPaths, NetworkNamesDoNotExist) {
    for (const char *path : {"\\\\srv\\share\\a", "//srv/share", "\\/a", "\\\\"})
        EXPECT_EQ(HostOf(path), "(failed)") << path;
}

TEST_F(PosixPaths, LengthOfThePathCountsNotThatOfTheRoot) {
    EXPECT_EQ(HostOf("D:\\" + std::string(256, 'x')), m_folder.Folder().string() + "/" + std::string(256, 'x'));
    EXPECT_EQ(HostOf("D:\\" + std::string(257, 'x')), "(failed)");
    EXPECT_EQ(errno, ENAMETOOLONG);
    EXPECT_EQ(HostOf(std::string(100000, 'x')), "(failed)");
    char host[8];
    EXPECT_FALSE(HostPath("D:\\a", host, sizeof host)); // the root alone is longer
    EXPECT_STREQ(host, "");
}

TEST_F(PosixPaths, FilesOpenThroughEveryForm) {
    const CurrentFolder current(m_folder.Folder());
    std::string back = m_folder.Path("file");
    for (char &c : back)
        c = c == '/' ? '\\' : c;
    for (const std::string &path :
         {std::string("D:\\file"), std::string("d:file"), "C:" + back, back, std::string("file"),
          std::string(".\\file"), std::string("C:file"), std::string("D:\\..\\file")}) {
        std::FILE *stream = OpenText(path.c_str(), "r");
        ASSERT_NE(stream, nullptr) << path;
        EXPECT_EQ(std::fgetc(stream), 'c');
        std::fclose(stream);
        FileStatus status{};
        ASSERT_TRUE(GetFileStatus(path.c_str(), status)) << path;
        EXPECT_EQ(status.size, 7U);
    }
}

TEST_F(PosixPaths, NewFilesLandOnTheMappedDrive) {
    char path[path_size];
    ASSERT_TRUE(CreateBeside("D:\\target", path, sizeof path));
    EXPECT_EQ(std::string(path).substr(0, 6), "D:\\zr_");
    EXPECT_TRUE(MoveOver(path, "D:\\target"));
    EXPECT_TRUE(std::filesystem::exists(m_folder.Folder() / "target"));
    EXPECT_TRUE(RemoveFile("d:/target"));
    EXPECT_FALSE(std::filesystem::exists(m_folder.Folder() / "target"));
}

TEST_F(PosixPaths, HostPathsComeBackInTheLibrarysForm) {
    EXPECT_EQ(LibraryFormOf("/home/me"), "C:\\home\\me");
    EXPECT_EQ(LibraryFormOf("/"), "C:\\");
    EXPECT_EQ(LibraryFormOf("a/b"), "a\\b");
    EXPECT_EQ(LibraryFormOf(("/" + std::string(256, 'x')).c_str()), "C:\\" + std::string(256, 'x'));
    EXPECT_EQ(LibraryFormOf(("/" + std::string(257, 'x')).c_str()), "(failed)");
}

} // namespace
