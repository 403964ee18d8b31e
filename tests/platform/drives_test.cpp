// Drives and current folders, as every platform has them.
#include <string>

#include <gtest/gtest.h>

#include "golden_table.h"
#include "platform/desktop_tables.h"
#include "platform/drives.h"
#include "platform/drives_table.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;

class Drives : public testing::Test {
protected:
    std::string Form() const { return LibraryForm(m_folder.Folder()); }

    TempFolder m_folder;
    ::CurrentFolder m_before{m_folder.Folder()}; // back to where the program was
};

TEST_F(Drives, StepsOnDriveCAnswerTheTable) {
    RecordProperty("rows", CheckDriveSteps(m_folder.Folder(), false));
}

TEST_F(Drives, KindsAnswerTheTable) {
    int checked = 0;
    const GoldenTable table("win_drivetype.tsv");
    for (const GoldenTable::Row &row : table.Rows()) {
        const std::string &path = row.at("path");
        const bool machine = !row.at("windows_documented").empty() || path.find_first_of("DZAx1") == 0 ||
                             path.find("windows") != std::string::npos || path.find("woad") != std::string::npos ||
                             row.at("cwd") == "D:\\" || path == "." || (!OnDesktop() && IsDesktopsOwn(path));
        if (machine)
            continue;
        EXPECT_EQ(DriveType(path == "\\N" ? nullptr : path.c_str()), std::stoi(row.at("result"))) << path;
        ++checked;
    }
    EXPECT_GT(checked, 10);
    EXPECT_EQ(DriveType("1:\\"), 1);
    EXPECT_EQ(DriveType(std::string(10000, 'x').c_str()), 1);
    EXPECT_NE(DriveType((Form() + "\\").c_str()), 1);
    EXPECT_EQ(DriveType((Form() + "\\missing\\").c_str()), 1);
}

TEST_F(Drives, FreeSpaceIsToldForFolders) {
    std::uint64_t here = 0, there = 0;
    ASSERT_EQ(FreeSpace("", here), SpaceAnswer::told);
    ASSERT_EQ(FreeSpace(Form().c_str(), there), SpaceAnswer::told);
    EXPECT_GT(here, 0U);
    EXPECT_GT(there, 0U);
    for (const std::string &path : {Form() + "\\missing\\x", std::string(10000, 'x'), std::string("?:\\")})
        EXPECT_EQ(FreeSpace(path.c_str(), there), SpaceAnswer::failed);
    EXPECT_EQ(FreeSpace(nullptr, there), SpaceAnswer::failed);
}

TEST_F(Drives, FreeSpaceInClustersIsOfTheSameOrder) {
    ClusterSpace space{};
    std::uint64_t bytes = 0;
    for (const char *root : {"C:\\", ""}) {
        ASSERT_TRUE(FreeClusters(root, space));
        ASSERT_EQ(FreeSpace(root, bytes), SpaceAnswer::told);
        const double told =
            static_cast<double>(space.sectors_per_cluster) * space.bytes_per_sector * space.free_clusters;
        EXPECT_GT(told, 0.0);
        EXPECT_LT(told, 2.0 * static_cast<double>(bytes));
    }
    for (const std::string &path : {Form() + "\\missing\\x", std::string(10000, 'x'), std::string("?:\\")})
        EXPECT_FALSE(FreeClusters(path.c_str(), space));
    EXPECT_FALSE(FreeClusters(nullptr, space));
}

TEST_F(Drives, CurrentFolderNeedsRoom) {
    char out[path_size];
    const std::string form = Form();
    for (std::size_t size = 1; size <= form.size(); ++size) {
        out[0] = 'x';
        EXPECT_FALSE(zr::platform::CurrentFolder(out, size));
        EXPECT_STREQ(out, "");
    }
    ASSERT_TRUE(zr::platform::CurrentFolder(out, form.size() + 1));
    EXPECT_EQ(UpperText(out), UpperText(form));
    EXPECT_FALSE(zr::platform::CurrentFolder(out, 0));
    EXPECT_FALSE(zr::platform::CurrentFolder(nullptr, 10));
}

TEST_F(Drives, WhatIsNoDriveOrFolderChangesNothing) {
    for (const int drive : {0, -1, 27, 1000, -2147483647})
        EXPECT_FALSE(SetCurrentDrive(drive)) << drive;
    m_folder.Write("file", "");
    EXPECT_EQ(ChangeFolder("file"), not_a_folder);
    const std::string over(path_size, 'x'), huge(10000, 'x');
    for (const char *path : {static_cast<const char *>(nullptr), "", over.c_str(), huge.c_str(), "?:", "1:\\",
                             "missing", "missing\\x", "file\\x"})
        EXPECT_NE(ChangeFolder(path), done);
    EXPECT_EQ(CurrentDrive(), 3);
    EXPECT_TRUE(SetCurrentDrive(3));
    EXPECT_EQ(std::filesystem::current_path(), m_folder.Folder());
}

} // namespace
