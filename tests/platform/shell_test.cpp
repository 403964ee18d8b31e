// Missing folders: what holds on every platform.
#include "platform/shell.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "golden_table.h"
#include "platform/files.h"
#include "platform/shell_paths.h"

namespace {

using namespace zr::platform;

namespace fs = std::filesystem;

class MissingFolders : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directory(m_folder.Folder() / "have");
        m_folder.Write("file", "file");
    }
    std::string Root() const { return LibraryPath(m_folder.Folder()); }
    int Make(const std::string &path) const { return CreateMissingFolders(path.c_str()); }
    bool IsFolder(const std::string &name) const { return fs::is_directory(m_folder.Folder() / name); }

    ::TempFolder m_folder;
};

// A measured path moved to the folder of the test; one that was to have a certain length keeps it.
std::string Moved(const std::string &path, const std::string &root) {
    static const std::string measured = "C:\\woad\\sc";
    std::string moved = root + path.substr(measured.size());
    const std::size_t filler = moved.find("llll");
    if (filler != std::string::npos)
        moved.erase(filler, root.size() - measured.size());
    return moved;
}

TEST_F(MissingFolders, MeasuredCodesHold) {
    const GoldenTable table("win_shcreatedirectory.tsv");
    int rows = 0;
    for (const GoldenTable::Row &row : table.Rows()) {
        const std::string &path = row.at("path");
        const bool below_root = path.compare(0, 10, "C:\\woad\\sc") == 0;
        const std::string name = below_root ? path.substr(10) : "";
        if ((!below_root && row.at("ret") != "161") || // leaves folders outside, or asks for other drives
            name == "\\nul" || (!on_desktop && name.find('|') != std::string::npos)) // names are the host's matter
            continue;
        SCOPED_TRACE(path);
        ++rows;
        const bool too_long = row.at("windows_documented").find("ret 206") == 0;
        const std::string moved = below_root ? Moved(path, Root()) : path;
        EXPECT_EQ(Make(moved), too_long ? path_too_long : std::atoi(row.at("ret").c_str()));
        FileStatus status{};
        const bool is_folder = GetFileStatus(moved.c_str(), status) && status.folder;
        EXPECT_EQ(is_folder, !too_long && row.at("directory_exists_after") == "1" && below_root);
    }
    EXPECT_GT(rows, 25);
}

TEST_F(MissingFolders, NullAndOverlongPathsAreRefused) {
    EXPECT_EQ(CreateMissingFolders(nullptr), bad_path_name);
    for (const std::size_t length : {248U, 259U, 260U, 10000U})
        EXPECT_EQ(Make(Root() + "\\" + std::string(length - Root().size() - 1, 'x')), path_too_long) << length;
}

TEST_F(MissingFolders, SlashSeparatesOnlyWhatExists) {
    EXPECT_EQ(Make(Root() + "\\have/one"), 0);
    EXPECT_TRUE(IsFolder("have/one"));
    EXPECT_EQ(Make(Root() + "\\have/two\\three"), 0);
    EXPECT_TRUE(IsFolder("have/two/three"));
    EXPECT_EQ(Make(Root() + "\\have\\four/five"), path_not_found);
    EXPECT_FALSE(IsFolder("have/four"));
}

TEST_F(MissingFolders, MissingDriveAndFilesInTheWayAreNoFolders) {
    EXPECT_NE(Make("Q:\\a\\b"), 0);
    EXPECT_EQ(Make(Root() + "\\file\\a\\b"), path_not_found);
    EXPECT_EQ(m_folder.Read("file"), "file");
}

TEST_F(MissingFolders, RootsExist) {
    EXPECT_EQ(Make("C:\\"), already_exists);
    EXPECT_EQ(Make("C:"), already_exists);
}

TEST_F(MissingFolders, ManyLevelsAtOnce) {
    std::string path = Root();
    while (path.size() < 230)
        path += "\\ten_levels";
    EXPECT_EQ(Make(path), 0);
    EXPECT_EQ(Make(path), already_exists);
}

TEST(ShellNotices, TakeAnyPath) {
    NoticeNewFolder("C:\\no such folder");
    NoticeRename(false, "C:\\a", "C:\\b");
    NoticeRename(true, "C:\\a", "C:\\b");
    SUCCEED();
}

} // namespace
