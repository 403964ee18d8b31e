// Two drives of the system itself.
#include <string>

#include <windows.h>

#include <gtest/gtest.h>

#include "platform/drives.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;

std::string FolderNow() {
    char folder[260];
    return zr::platform::CurrentFolder(folder, sizeof folder) ? folder : "(none)";
}

// The highest drive that there is beside C.
int OtherDrive() {
    for (int drive = 26; drive > 3; --drive)
        if ((GetLogicalDrives() & 1U << (drive - 1)) != 0)
            return drive;
    return 0;
}

// A folder below the root of the drive.
std::string AnyFolder(const std::string &root) {
    WIN32_FIND_DATAA data;
    const HANDLE search = FindFirstFileA((root + "*").c_str(), &data);
    std::string folder;
    if (search == INVALID_HANDLE_VALUE)
        return folder;
    do {
        const bool fits = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 && data.cFileName[0] != '.';
        if (fits && SetCurrentDirectoryA((root + data.cFileName).c_str()))
            folder = root + data.cFileName;
    } while (folder.empty() && FindNextFileA(search, &data));
    FindClose(search);
    return folder;
}

TEST(WindowsDrives, EveryDriveKeepsItsFolder) {
    const TempFolder temp;
    const ::CurrentFolder current(temp.Folder());
    const int other = OtherDrive();
    ASSERT_NE(other, 0) << "the test needs a second drive";
    const std::string letter = std::string(1, static_cast<char>('A' + other - 1)) + ":";
    const std::string folder = AnyFolder(letter + "\\");
    ASSERT_FALSE(folder.empty());
    std::filesystem::current_path(temp.Folder());

    EXPECT_EQ(ChangeFolder(temp.Folder().string().c_str()), done);
    const std::string before = FolderNow();
    ASSERT_EQ(CurrentDrive(), 3);
    ASSERT_EQ(ChangeFolder(folder.c_str()), done);
    EXPECT_EQ(CurrentDrive(), other);
    EXPECT_EQ(FolderNow(), folder);
    ASSERT_TRUE(SetCurrentDrive(3));
    EXPECT_EQ(FolderNow(), before);
    ASSERT_TRUE(SetCurrentDrive(other));
    EXPECT_EQ(FolderNow(), folder);
    ASSERT_EQ(ChangeFolder("C:"), done);
    EXPECT_EQ(FolderNow(), before);
    ASSERT_EQ(ChangeFolder(letter.c_str()), done);
    EXPECT_EQ(FolderNow(), folder);
    ASSERT_EQ(ChangeFolder("\\"), done);
    EXPECT_EQ(FolderNow(), letter + "\\");
    EXPECT_TRUE(SetCurrentDrive(3));
}

} // namespace
