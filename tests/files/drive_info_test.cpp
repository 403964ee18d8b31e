// Free space and kind of a drive.
#include <zrclb/folders.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/drives.h"
#include "platform/services.h"
#include "platform/shell_paths.h"

namespace {

using zr::platform::ClusterSpace;
using zr::platform::services;
using zr::platform::SpaceAnswer;

class StandardOutput {
public:
    StandardOutput() { testing::internal::CaptureStdout(); }
    std::string Text() {
        std::string text = testing::internal::GetCapturedStdout();
        text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
        return text;
    }
};

constexpr char trace[] = "\nGetDiskFreeSpaceEx:\n";

TEST(DiskFree, TellsTheSpaceOfTheDriveAndItsTrace) {
    StandardOutput output;
    const double free_bytes = fio_getdiskfree("C");
    EXPECT_EQ(output.Text(), trace);
    EXPECT_GT(free_bytes, 0.0);
}

TEST(DiskFree, NullAndEmptyAreTheCurrentDrive) {
    StandardOutput output;
    EXPECT_GT(fio_getdiskfree(nullptr), 0.0);
    EXPECT_GT(fio_getdiskfree(""), 0.0);
    EXPECT_EQ(output.Text(), std::string(trace) + trace);
}

TEST(DiskFree, TakesFoldersWithAndWithoutBackslash) {
    const TempFolder folder;
    const std::string path = LibraryPath(folder.Folder());
    StandardOutput output;
    EXPECT_GT(fio_getdiskfree(path.c_str()), 0.0);
    EXPECT_GT(fio_getdiskfree((path + "\\").c_str()), 0.0);
    EXPECT_EQ(output.Text(), std::string(trace) + trace);
}

TEST(DiskFree, MissingDrivesAndFoldersHaveNoneAndNoTrace) {
    StandardOutput output;
    EXPECT_EQ(fio_getdiskfree("Q"), 0.0);
    EXPECT_EQ(fio_getdiskfree("1"), 0.0);
    EXPECT_EQ(fio_getdiskfree("C:\\no such folder\\at all"), 0.0);
    EXPECT_EQ(fio_getdiskfree(std::string(10000, 'x').c_str()), 0.0);
    EXPECT_EQ(output.Text(), "");
}

// The first 255 characters alone count.
TEST(DiskFree, EndOfAnOverlongPathIsNotLookedAt) {
    std::string path = "C:\\";
    while (path.size() < 255)
        path += ".\\";
    ASSERT_EQ(path.size(), 255U);
    StandardOutput output;
    EXPECT_GT(fio_getdiskfree((path + "no such folder").c_str()), 0.0);
    EXPECT_EQ(fio_getdiskfree((path.substr(2) + "no such folder").c_str()), 0.0);
    EXPECT_EQ(output.Text(), trace);
}

// The system's answers in place of the system.
class SystemAnswers : public testing::Test {
protected:
    void SetUp() override {
        asked.clear();
        answer = SpaceAnswer::told;
        has_clusters = true;
        type = 1;
        services.free_space = [](const char *path, std::uint64_t &bytes) {
            asked.push_back(path);
            bytes = 0x123456789AB;
            return answer;
        };
        services.free_clusters = [](const char *path, ClusterSpace &out) {
            asked.push_back(path);
            out = {8, 512, 4000000000};
            return has_clusters;
        };
        services.drive_type = [](const char *path) {
            asked.push_back(path);
            return asked.size() == 1 ? first_type : type;
        };
    }
    void TearDown() override { services = m_services; }

    static int TypeOf(const char *path) {
        asked.clear();
        return fio_GetDriveType(path);
    }

    using Paths = std::vector<std::string>;
    static inline Paths asked;
    static inline SpaceAnswer answer;
    static inline bool has_clusters;
    static inline int first_type, type;
    const zr::platform::Services m_services = services;
};

TEST_F(SystemAnswers, FreeBytesAreMoreThanAWordHolds) {
    StandardOutput output;
    EXPECT_EQ(fio_getdiskfree("D"), 0x123 * 65536.0 * 65536.0 + 0x456789AB);
    EXPECT_EQ(asked, Paths{"D:\\"});
    answer = SpaceAnswer::failed;
    EXPECT_EQ(fio_getdiskfree("D"), 0.0);
    EXPECT_EQ(asked, (Paths{"D:\\", "D:\\"})); // nor in clusters then
    EXPECT_EQ(output.Text(), trace);
}

TEST_F(SystemAnswers, OldSystemsAnswerInClusters) {
    answer = SpaceAnswer::no_call;
    StandardOutput output;
    EXPECT_EQ(fio_getdiskfree("D"), 8.0 * 512.0 * 4000000000.0);
    EXPECT_EQ(asked, (Paths{"D:\\", "D:\\"}));
    has_clusters = false;
    EXPECT_EQ(fio_getdiskfree("D"), 0.0);
    EXPECT_EQ(output.Text(), "\nGetDiskFreeSpace:\n");
}

TEST_F(SystemAnswers, RootsAreMadeOfWhatIsGiven) {
    const std::string x254(254, 'x'), x255(255, 'x'), x300(300, 'x');
    const struct {
        std::string path, root;
    } cases[] = {{"", ""},
                 {"D", "D:\\"},
                 {"\\", "\\:\\"},
                 {"\x80", "\x80:\\"},
                 {"D:", "D:\\"},
                 {"D:\\", "D:\\"},
                 {"C:\\a/", "C:\\a/\\"},
                 {"\\\\", "\\\\"},
                 {x254, x254 + "\\"},
                 {x255, x255 + "\\"},
                 {x300, x255 + "\\"},
                 {x254 + "\\more", x254 + "\\"},
                 {std::string(10000, '\\'), std::string(255, '\\')}};
    StandardOutput output;
    for (const auto &[path, root] : cases) {
        asked.clear();
        fio_getdiskfree(path.c_str());
        EXPECT_EQ(asked, Paths{root});
    }
    asked.clear();
    fio_getdiskfree(nullptr);
    EXPECT_EQ(asked, Paths{""});
    output.Text();
}

TEST_F(SystemAnswers, KindsPassThroughIfKnown) {
    for (const int known : {-1, 0, 2, 3, 4, 5, 6, 7, 8}) {
        first_type = known;
        EXPECT_EQ(TypeOf("D:\\a"), known >= 2 && known <= 6 ? known : 0);
    }
    EXPECT_EQ(asked, Paths{"D:\\a"});
    first_type = 1;
    for (type = -1; type <= 8; ++type)
        EXPECT_EQ(TypeOf("D:\\a"), type >= 1 && type <= 6 ? type : 0);
    EXPECT_EQ(asked, (Paths{"D:\\a", "D:"}));
    EXPECT_EQ(TypeOf("\\\\server\\share"), 4);
    EXPECT_EQ(asked, Paths{"\\\\server\\share"});
    first_type = 2;
    EXPECT_EQ(TypeOf("\\\\server\\share"), 2); // the system knows it
    EXPECT_EQ(TypeOf(nullptr), 0);
    EXPECT_EQ(asked, Paths{});
}

TEST(DriveTypes, NullIsUnknown) {
    EXPECT_EQ(fio_GetDriveType(nullptr), 0);
}

TEST(DriveTypes, RootsAreAskedAsTheyStand) {
    EXPECT_EQ(fio_GetDriveType("C:\\"), zr::platform::DriveType("C:\\"));
    EXPECT_GE(fio_GetDriveType("C:\\"), 2);
    EXPECT_EQ(fio_GetDriveType("\\"), fio_GetDriveType("C:\\"));
    EXPECT_EQ(fio_GetDriveType("C:\\..\\.."), fio_GetDriveType("C:\\"));
}

TEST(DriveTypes, WhatIsNoRootIsAskedByItsDrive) {
    EXPECT_EQ(fio_GetDriveType("C:\\no such folder\\file.txt"), fio_GetDriveType("C:"));
    EXPECT_GE(fio_GetDriveType("C:\\no such folder\\file.txt"), 2);
}

TEST(DriveTypes, NetworkNamesAreRemote) {
    EXPECT_EQ(fio_GetDriveType("\\\\no such server\\share"), 4);
    EXPECT_EQ(fio_GetDriveType("\\\\no such server\\share\\folder\\"), 4);
    EXPECT_EQ(fio_GetDriveType("\\\\"), 4);
}

TEST(DriveTypes, MissingDrivesHaveNoRoot) {
    EXPECT_EQ(fio_GetDriveType("Q:\\"), 1);
    EXPECT_EQ(fio_GetDriveType("Q:\\folder"), 1);
    EXPECT_EQ(fio_GetDriveType("relative\\path"), 1);
    EXPECT_EQ(fio_GetDriveType(""), 1);
    EXPECT_EQ(fio_GetDriveType("\x80:\\"), 1);
    EXPECT_EQ(fio_GetDriveType(std::string(259, 'x').c_str()), 1);
    EXPECT_EQ(fio_GetDriveType(std::string(260, 'x').c_str()), 1);
    EXPECT_EQ(fio_GetDriveType(std::string(10000, 'x').c_str()), 1);
}

} // namespace
