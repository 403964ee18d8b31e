// The temporary folder as the environment names it, and the rights of temporary files.
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include "platform/files.h"
#include "platform/temp_folder.h"
#include "platform/temporary.h"

namespace {

using zr::platform::HostPath;
using zr::platform::path_size;
using zr::platform::TempFileName;

class PosixTemporary : public testing::Test {
protected:
    void SetUp() override {
        if (const char *value = std::getenv("TMPDIR"))
            m_before = value;
    }
    void TearDown() override {
        if (m_before)
            setenv("TMPDIR", m_before->c_str(), 1);
        else
            unsetenv("TMPDIR");
    }
    static std::string With(const char *value) {
        setenv("TMPDIR", value, 1);
        char out[path_size];
        const std::size_t length = zr::platform::TempFolder(out, sizeof out);
        EXPECT_EQ(std::strlen(out), length);
        return out;
    }

    std::optional<std::string> m_before;
};

TEST_F(PosixTemporary, FolderIsTmpdirInTheLibrarysForm) {
    EXPECT_EQ(With("/var/tmp"), "C:\\var\\tmp\\");
    EXPECT_EQ(With("/var/tmp/"), "C:\\var\\tmp\\");
    EXPECT_EQ(With("/var/tmp///"), "C:\\var\\tmp\\");
    EXPECT_EQ(With("/no such/folder"), "C:\\no such\\folder\\");
    EXPECT_EQ(With("/"), "C:\\");
}

TEST_F(PosixTemporary, FolderIsResolvedInTheText) {
    EXPECT_EQ(With("/var//tmp"), "C:\\var\\tmp\\");
    EXPECT_EQ(With("/var/./x/../tmp/."), "C:\\var\\tmp\\");
    EXPECT_EQ(With("/../../var"), "C:\\var\\");
    EXPECT_EQ(With("/var/.."), "C:\\");
    EXPECT_EQ(With("//"), "C:\\");
    EXPECT_EQ(With("/.../a..b/.c"), "C:\\...\\a..b\\.c\\");
}

TEST_F(PosixTemporary, FolderIsTmpWithoutTmpdir) {
    EXPECT_EQ(With(""), "C:\\tmp\\");
    unsetenv("TMPDIR");
    char out[path_size];
    EXPECT_EQ(zr::platform::TempFolder(out, sizeof out), 7U);
    EXPECT_STREQ(out, "C:\\tmp\\");
}

TEST_F(PosixTemporary, RelativeFolderStartsAtTheCurrentOne) {
    const CurrentFolder current("/usr");
    EXPECT_EQ(With("tmp"), "C:\\usr\\tmp\\");
}

TEST_F(PosixTemporary, OverlongFolderTellsItsSize) {
    const std::string path = "/" + std::string(300, 'x');
    setenv("TMPDIR", path.c_str(), 1);
    char out[path_size];
    EXPECT_EQ(zr::platform::TempFolder(out, sizeof out), 2 + path.size() + 1 + 1);
    EXPECT_STREQ(out, "");
    const std::string endless = "/" + std::string(10000, 'x');
    setenv("TMPDIR", endless.c_str(), 1);
    EXPECT_EQ(zr::platform::TempFolder(out, sizeof out), 0U);
}

TEST_F(PosixTemporary, MadeFilesHaveTheRightsOfAnyNewFile) {
    const TempFolder folder;
    char out[path_size];
    const mode_t before = umask(027);
    const unsigned number = TempFileName(folder.Folder().c_str(), "zr_", 0, out);
    umask(before);
    ASSERT_NE(number, 0U);
    char host[path_size];
    ASSERT_TRUE(HostPath(out, host, sizeof host));
    struct stat status;
    ASSERT_EQ(stat(host, &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640U);
}

TEST_F(PosixTemporary, DigitsAreCapitals) {
    char out[path_size];
    EXPECT_EQ(TempFileName("/tmp", "zr_", 0xabcd, out), 0xabcdU);
    EXPECT_STREQ(out, "/tmp\\zr_ABCD.tmp");
}

TEST_F(PosixTemporary, NoFileWhereNoneCanBeMade) {
    char out[path_size];
    EXPECT_EQ(TempFileName("/proc", "zr_", 0, out), 0U);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(TempFileName("D:\\", "zr_", 0, out), 0U);
}

} // namespace
