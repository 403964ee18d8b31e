// Size of a folder and number of its entries.
#include <zrclb/files.h>
#include <zrclb/folders.h>

#include <filesystem>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

#include "env/refused_memory.h"
#include "platform/shell_paths.h"

namespace {

using zr::test::NthAllocation;

namespace fs = std::filesystem;

struct Info {
    int result;
    double size = -1.0;
    zr_long folders = -1, files = -1, items = -1;

    explicit Info(const char *dir, int recursive) {
        result = fio_GetFolderInfo(dir, recursive, &size, &folders, &files, &items);
    }
};

class FolderSums : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(At("one/two/three"));
        fs::create_directory(At("empty"));
        m_folder.Write("a", std::string(10, 'a'));
        m_folder.Write(".hidden", std::string(20, 'h'));
        m_folder.Write("one/b", std::string(100, 'b'));
        m_folder.Write("one/two/three/c", std::string(1000, 'c'));
    }
    fs::path At(const std::string &name) const { return m_folder.Folder() / name; }
    std::string Root() const { return LibraryPath(m_folder.Folder()); }

    TempFolder m_folder;
};

TEST_F(FolderSums, OneLevelCountsWhatLiesThere) {
    const Info info(Root().c_str(), 0);
    EXPECT_EQ(info.result, 1);
    EXPECT_EQ(info.size, 30.0);
    EXPECT_EQ(info.folders, 2);
    EXPECT_EQ(info.files, 2);
    EXPECT_EQ(info.items, 4);
    EXPECT_EQ(fio_GetFolderSize(Root().c_str(), 0), 30.0);
}

TEST_F(FolderSums, AllLevelsCountTogether) {
    const Info info((Root() + "\\").c_str(), 1);
    EXPECT_EQ(info.result, 1);
    EXPECT_EQ(info.size, 1130.0);
    EXPECT_EQ(info.folders, 4);
    EXPECT_EQ(info.files, 4);
    EXPECT_EQ(info.items, 8);
    EXPECT_EQ(fio_GetFolderSize(Root().c_str(), 7), 1130.0);
}

TEST_F(FolderSums, ItemsAreCountedAtOneLevel) {
    zr_long folders = -1, files = -1;
    EXPECT_EQ(fio_GetFolderItemsCount(Root().c_str(), &folders, &files), 4);
    EXPECT_EQ(folders, 2);
    EXPECT_EQ(files, 2);
}

TEST_F(FolderSums, EmptyFolderHasNothing) {
    zr_long folders = -1, files = -1;
    const std::string empty = Root() + "\\empty";
    EXPECT_EQ(fio_GetFolderItemsCount(empty.c_str(), &folders, &files), 0);
    EXPECT_EQ(folders, 0);
    EXPECT_EQ(files, 0);
    const Info info(empty.c_str(), 1);
    EXPECT_EQ(info.result, 1);
    EXPECT_EQ(info.items, 0);
}

TEST_F(FolderSums, OutputsMayBeNull) {
    EXPECT_EQ(fio_GetFolderInfo(Root().c_str(), 1, nullptr, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(fio_GetFolderItemsCount(Root().c_str(), nullptr, nullptr), 4);
}

TEST_F(FolderSums, WhatCannotBeReadHasZeros) {
    for (const std::string &path : {Root() + "\\missing", Root() + "\\a", std::string("Q:\\"), std::string(10000, 'x'),
                                    std::string(256, 'x'), Root() + "\\" + std::string(250, 'x')}) {
        const Info info(path.c_str(), 1);
        EXPECT_EQ(info.result, 0) << path;
        EXPECT_EQ(info.size, 0.0);
        EXPECT_EQ(info.folders, 0);
        EXPECT_EQ(info.files, 0);
        EXPECT_EQ(info.items, 0);
        EXPECT_EQ(fio_GetFolderSize(path.c_str(), 1), 0.0);
        zr_long folders = -1, files = -1;
        EXPECT_EQ(fio_GetFolderItemsCount(path.c_str(), &folders, &files), 0);
        EXPECT_EQ(folders + files, 0);
    }
}

TEST_F(FolderSums, NullAndEmptyAreTheCurrentFolder) {
    const CurrentFolder current(m_folder.Folder());
    EXPECT_EQ(fio_GetFolderSize("", 0), 30.0);
    EXPECT_EQ(fio_GetFolderSize(nullptr, 1), 1130.0);
    EXPECT_EQ(Info(nullptr, 1).items, 8);
    EXPECT_EQ(Info("", 0).items, 4);
    EXPECT_EQ(fio_GetFolderItemsCount(nullptr, nullptr, nullptr), 4);
}

TEST_F(FolderSums, RootsAndNamesBeyondAscii) {
    for (const char *root : {"C:\\", "\\", "C:\\..\\..", "C:"}) {
        EXPECT_EQ(Info(root, 0).result, 1) << root;
        EXPECT_GT(fio_GetFolderItemsCount(root, nullptr, nullptr), 0) << root;
    }
    for (const char *path : {"\\\\", "\xE4\x80\xFF\x01", "C:\\?"})
        EXPECT_EQ(Info(path, 1).result, 0) << path;
    const std::string letters = Root() + "\\\xE4\x80\xFF";
    ASSERT_EQ(fio_mkdir(letters.c_str()), 0);
    ASSERT_EQ(fio_copy(Root().c_str(), "a", letters.c_str(), "\xFE"), 0);
    EXPECT_EQ(fio_GetFolderSize(letters.c_str(), 1), 10.0);
    EXPECT_EQ(Info(Root().c_str(), 1).items, 10);
}

// Without memory for the search of a folder that one can't be read.
TEST_F(FolderSums, FolderThatCannotBeReadCountsAsEmpty) {
    const std::string root = Root();
    bool met = true;
    int less = 0;
    for (int others = 0; met; ++others) {
        const NthAllocation refused(others);
        const Info info(root.c_str(), 1);
        met = refused.Met();
        EXPECT_EQ(info.result, others == 0 ? 0 : 1);
        EXPECT_GE(info.folders, others == 0 ? 0 : 2);
        EXPECT_EQ(info.items, info.folders + info.files);
        EXPECT_TRUE(met || (info.size == 1130.0 && info.items == 8));
        less += info.items < 8 ? 1 : 0;
    }
    EXPECT_GE(less, 3); // the folder itself, and those that hold something
}

TEST_F(FolderSums, FolderMayVanishMeanwhile) {
    static fs::path one;
    one = At("one");
    const std::string root = Root();
    bool met = true;
    for (int others = 0; met; ++others) {
        fs::create_directories(At("one/two/three"));
        m_folder.Write("one/b", std::string(100, 'b'));
        const NthAllocation interrupted(others, [] {
            std::error_code ignored;
            fs::remove_all(one, ignored);
        });
        const Info info(root.c_str(), 1);
        met = interrupted.Met();
        EXPECT_EQ(info.result, 1);
        EXPECT_GE(info.folders, 1);
        EXPECT_GE(info.files, 2);
        EXPECT_EQ(info.items, info.folders + info.files);
        EXPECT_TRUE(info.size == 30.0 || info.size == 130.0) << info.size;
    }
}

TEST_F(FolderSums, BigFilesCountByTheLowWord) {
    m_folder.Write("empty/big", "");
    m_folder.Write("empty/just", "");
    fs::resize_file(At("empty/big"), (std::uintmax_t{5} << 30) + 7); // a hole, not data
    fs::resize_file(At("empty/just"), std::uintmax_t{4} << 30);
    const std::string folder = Root() + "\\empty";
    EXPECT_EQ(fio_GetFolderSize(folder.c_str(), 0), 1073741824.0 + 7.0);
    EXPECT_EQ(Info(folder.c_str(), 0).size, 1073741824.0 + 7.0);
    EXPECT_EQ(Info(folder.c_str(), 0).files, 2);
}

TEST_F(FolderSums, SizeOfMuchMoreThanAWordAddsUp) {
    for (const char *name : {"empty/1", "empty/2", "empty/3"}) {
        m_folder.Write(name, "");
        fs::resize_file(At(name), std::uintmax_t{0xFFFFFFFF});
    }
    EXPECT_EQ(fio_GetFolderSize((Root() + "\\empty").c_str(), 0), 3 * 4294967295.0);
}

TEST_F(FolderSums, LinksToFoldersAreNotEntered) {
    std::error_code refused;
    fs::create_directory_symlink(m_folder.Folder(), At("one/ring"), refused);
    if (refused)
        GTEST_SKIP() << "no links can be made here";
    fs::create_directory_symlink(At("one"), At("empty/link"));
    fs::create_symlink("nowhere", At("empty/dangling"));
    const Info info(Root().c_str(), 1);
    EXPECT_EQ(info.folders, 6); // the two links are folders
    EXPECT_EQ(info.files, 5);
    EXPECT_EQ(info.size, 1130.0);
}

TEST_F(FolderSums, DeepFoldersAreSummedAsFarAsPathsReach) {
    std::string path = m_folder.Folder().string();
    int levels = 0;
    for (; path.size() + 2 + 4 + 2 < 259; ++levels) { // a drive, the pattern
        path += "/" + std::string(9, 'd');
        ASSERT_TRUE(fs::create_directory(path));
    }
    EXPECT_EQ(Info((Root() + "\\" + std::string(9, 'd')).c_str(), 1).folders, levels - 1);
}

} // namespace
