// Free space and kind of a drive.
#include <zrclb/folders.h>

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "platform/drives.h"
#include "platform/shell_paths.h"

namespace {

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
    EXPECT_EQ(free_bytes, static_cast<double>(static_cast<long long>(free_bytes)));
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

TEST(DriveTypes, NullIsUnknown) {
    EXPECT_EQ(fio_GetDriveType(nullptr), 0);
}

TEST(DriveTypes, RootsAreAskedAsTheyStand) {
    EXPECT_EQ(fio_GetDriveType("C:\\"), zr::platform::DriveType("C:\\"));
    EXPECT_GE(fio_GetDriveType("C:\\"), 2);
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
    EXPECT_EQ(fio_GetDriveType(std::string(10000, 'x').c_str()), 1);
}

} // namespace
