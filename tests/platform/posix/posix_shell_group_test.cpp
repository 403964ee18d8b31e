// Operations on groups of files without a shell: links, rings, other drives, special files, and little memory.
#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <zrclb/folders.h>

#include "env/refused_memory.h"
#include "platform/shell.h"
#include "platform/shell_paths.h"
#include "platform/system_error.h"

namespace {

using zr::platform::DoGroupOperation;
using zr::platform::GroupVerb;

namespace fs = std::filesystem;

class PosixGroupOperations : public testing::Test {
protected:
    fs::path At(const std::string &name) const { return m_folder.Folder() / name; }
    int Do(GroupVerb verb, const std::string &from, const std::string &to = "") {
        const std::string sources = LibraryPath(At(from)) + std::string(2, '\0');
        const std::string targets = LibraryPath(At(to)) + std::string(2, '\0');
        const int code = DoGroupOperation(verb, sources.c_str(), targets.c_str(), {}, m_aborted);
        EXPECT_FALSE(m_aborted);
        return code;
    }

    TempFolder m_folder;
    bool m_aborted = false;
};

TEST_F(PosixGroupOperations, MoveMakesMissingFolders) {
    m_folder.Write("a", "A");
    EXPECT_EQ(Do(GroupVerb::move, "a", "x/y/n"), 0);
    EXPECT_EQ(m_folder.Read("x/y/n"), "A");
    EXPECT_FALSE(fs::exists(At("a")));
}

TEST_F(PosixGroupOperations, MissingSourceDoesNotMove) {
    EXPECT_EQ(Do(GroupVerb::move, "missing", "x/n"), zr::platform::file_not_found);
    EXPECT_FALSE(fs::exists(At("x")));
}

TEST_F(PosixGroupOperations, DeletionNeverFollowsALink) {
    fs::create_directories(At("tree/sub"));
    fs::create_directory(At("outside"));
    m_folder.Write("outside/kept", "kept");
    fs::create_directory_symlink(At("outside"), At("tree/sub/link"));
    fs::create_symlink("nowhere", At("tree/dangling"));
    fs::create_directory_symlink("..", At("tree/sub/ring"));
    EXPECT_EQ(Do(GroupVerb::remove, "tree"), 0);
    EXPECT_FALSE(fs::exists(At("tree")));
    fs::create_directory_symlink(At("outside"), At("top"));
    EXPECT_EQ(Do(GroupVerb::remove, "top/"), 0);
    EXPECT_FALSE(fs::is_symlink(At("top")));
    EXPECT_EQ(m_folder.Read("outside/kept"), "kept");
}

TEST_F(PosixGroupOperations, CopiesLinksAsLinks) {
    fs::create_directories(At("tree/sub"));
    fs::create_symlink("nowhere", At("tree/dangling"));
    fs::create_directory_symlink("..", At("tree/sub/ring"));
    EXPECT_EQ(Do(GroupVerb::copy, "tree", "copy"), 0);
    EXPECT_EQ(fs::read_symlink(At("copy/dangling")), "nowhere");
    EXPECT_EQ(fs::read_symlink(At("copy/sub/ring")), "..");
    EXPECT_EQ(Do(GroupVerb::copy, "tree/dangling", "copy/dangling"), 0); // over the link that is there
    EXPECT_EQ(fs::read_symlink(At("copy/dangling")), "nowhere");
}

TEST_F(PosixGroupOperations, FolderDoesNotGoIntoItself) {
    fs::create_directories(At("d/s"));
    EXPECT_NE(Do(GroupVerb::copy, "d", "d/new/folder"), 0);
    EXPECT_NE(Do(GroupVerb::move, "d", "d/new/folder"), 0);
    EXPECT_NE(Do(GroupVerb::copy, "d", "d/s"), 0);
    EXPECT_FALSE(fs::exists(At("d/new")));
    EXPECT_TRUE(fs::is_empty(At("d/s")));
    EXPECT_EQ(Do(GroupVerb::copy, "d", "d2"), 0); // a name that only begins alike
    EXPECT_TRUE(fs::exists(At("d2/s")));
}

TEST_F(PosixGroupOperations, FileAndFolderNeverReplaceEachOther) {
    fs::create_directories(At("e/a"));
    fs::create_directory(At("d"));
    m_folder.Write("a", "A");
    EXPECT_NE(Do(GroupVerb::copy, "a", "e"), 0);
    EXPECT_NE(Do(GroupVerb::move, "a", "e"), 0);
    EXPECT_NE(Do(GroupVerb::copy, "d", "a"), 0);
    EXPECT_NE(Do(GroupVerb::move, "d", "a"), 0);
    EXPECT_EQ(m_folder.Read("a"), "A");
    EXPECT_TRUE(fs::is_empty(At("e/a")));
}

TEST_F(PosixGroupOperations, HiddenAndReadOnlyTargetsAreOverwritten) {
    m_folder.Write("a", "A");
    m_folder.Write(".hidden", "old");
    m_folder.Write("ro", "old");
    fs::permissions(At("ro"), fs::perms::owner_read);
    EXPECT_EQ(Do(GroupVerb::copy, "a", ".hidden"), 0);
    EXPECT_EQ(Do(GroupVerb::copy, "a", "ro"), 0);
    EXPECT_EQ(m_folder.Read(".hidden") + m_folder.Read("ro"), "AA");
}

TEST_F(PosixGroupOperations, MovedFoldersMeet) {
    fs::create_directories(At("d"));
    fs::create_directories(At("e/d"));
    m_folder.Write("d/x", "new");
    m_folder.Write("e/d/x", "old");
    m_folder.Write("e/d/y", "Y");
    EXPECT_EQ(Do(GroupVerb::move, "d", "e"), 0);
    EXPECT_FALSE(fs::exists(At("d")));
    EXPECT_EQ(m_folder.Read("e/d/x") + m_folder.Read("e/d/y"), "newY");
}

TEST_F(PosixGroupOperations, WholeTreesMoveToAnotherFileSystem) {
    if (!fs::is_directory("/dev/shm"))
        GTEST_SKIP() << "no second file system";
    fs::create_directories(At("tree/sub"));
    m_folder.Write("tree/sub/x", "X");
    fs::permissions(At("tree/sub"), fs::perms::owner_read | fs::perms::owner_exec);
    fs::create_symlink("sub/x", At("tree/link"));
    const fs::path far = fs::path("/dev/shm") / m_folder.Folder().filename();
    const std::string from = LibraryPath(At("tree")) + std::string(2, '\0');
    const std::string to = LibraryPath(far / "tree") + std::string(2, '\0');
    EXPECT_EQ(DoGroupOperation(GroupVerb::move, from.c_str(), to.c_str(), {}, m_aborted), 0);
    EXPECT_FALSE(fs::exists(At("tree")));
    EXPECT_TRUE(fs::exists(far / "tree" / "sub" / "x"));
    EXPECT_EQ(fs::status(far / "tree" / "sub").permissions() & fs::perms::owner_write, fs::perms::none);
    EXPECT_EQ(fs::read_symlink(far / "tree" / "link"), "sub/x");
    fs::remove_all(far);
}

TEST_F(PosixGroupOperations, SecondDriveIsAFolderLikeOthers) {
    fs::create_directories(At("second/tree"));
    m_folder.Write("second/tree/x", "X");
    const std::string list = std::string("D:\\tree") + std::string(2, '\0');
    const std::string target = LibraryPath(At("copy")) + std::string(2, '\0');
    EXPECT_NE(DoGroupOperation(GroupVerb::copy, list.c_str(), target.c_str(), {}, m_aborted), 0);
    EXPECT_EQ(fio_getdiskfree("D"), 0.0);
    EXPECT_EQ(fio_GetDriveType("D:\\tree"), 1);
    ASSERT_EQ(setenv("ZR_DRIVE_D", At("second").c_str(), 1), 0);
    EXPECT_EQ(DoGroupOperation(GroupVerb::move, list.c_str(), target.c_str(), {}, m_aborted), 0);
    testing::internal::CaptureStdout();
    EXPECT_GT(fio_getdiskfree("D"), 0.0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\nGetDiskFreeSpaceEx:\n");
    EXPECT_GE(fio_GetDriveType("D:\\tree"), 2);
    EXPECT_EQ(fio_CopyDirectory("D:\\", LibraryPath(At("copy")).c_str()), 1);
    EXPECT_EQ(fio_GetFolderSize("D:\\", 0), 1.0);
    unsetenv("ZR_DRIVE_D");
    EXPECT_EQ(m_folder.Read("copy/x") + m_folder.Read("second/x"), "XX");
    EXPECT_FALSE(fs::exists(At("second/tree")));
}

TEST_F(PosixGroupOperations, WhatIsNoFileIsNotCopied) {
    fs::create_directory(At("d"));
    ASSERT_EQ(mkfifo(At("d/pipe").c_str(), 0600), 0);
    EXPECT_NE(Do(GroupVerb::copy, "d", "n"), 0);
    EXPECT_EQ(Do(GroupVerb::remove, "d"), 0);
}

TEST_F(PosixGroupOperations, NamesThatLookLikePathsStayWhereTheyAre) {
    fs::create_directory(At("d"));
    m_folder.Write("d/back\\slash", "B");
    m_folder.Write("d/C:", "C");
    EXPECT_EQ(Do(GroupVerb::copy, "d", "n"), 0);
    EXPECT_EQ(m_folder.Read("n/back\\slash") + m_folder.Read("n/C:"), "BC");
    EXPECT_EQ(Do(GroupVerb::remove, "d"), 0);
    EXPECT_FALSE(fs::exists(At("d")));
}

TEST_F(PosixGroupOperations, WalksDoNotTakeNamesForPaths) {
    fs::create_directories(At("d/a/b"));
    fs::create_directory(At("d/a\\b"));
    m_folder.Write("d/a/b/x", "X");
    fs::create_directory(At("to"));
    const std::string d = LibraryPath(At("d")), to = LibraryPath(At("to"));
    zr_long folders = 0, files = 0;
    EXPECT_EQ(fio_GetFolderInfo(d.c_str(), 1, nullptr, &folders, &files, nullptr), 1);
    EXPECT_EQ(folders, 3);
    EXPECT_EQ(files, 1);
    EXPECT_EQ(fio_CopyDirectory(to.c_str(), d.c_str()), 0);
    EXPECT_TRUE(fs::exists(At("to/a/b/x"))); // came first
    EXPECT_FALSE(fs::exists(At("to/a\\b")));
    fs::permissions(At("d/a/b/x"), fs::perms::owner_read);
    EXPECT_EQ(fio_RemoveFileAttributes(d.c_str(), 1), 0); // of one folder nothing can be told
    EXPECT_NE(fs::status(At("d/a/b/x")).permissions() & fs::perms::owner_write, fs::perms::none);
}

TEST_F(PosixGroupOperations, VeryDeepTreeIsDeletedWhole) {
    fs::path path = At("deep");
    fs::create_directory(path);
    const fs::path before = fs::current_path();
    fs::current_path(path);
    for (int i = 0; i < 200; ++i) { // more than a path of the library may have
        fs::create_directory("d");
        fs::current_path("d");
    }
    fs::current_path(before);
    EXPECT_EQ(Do(GroupVerb::remove, "deep"), 0);
    EXPECT_FALSE(fs::exists(At("deep")));
}

TEST_F(PosixGroupOperations, SumsEndWherePathsDo) {
    const fs::path before = fs::current_path();
    fs::create_directory(At("deep"));
    fs::current_path(At("deep"));
    for (int i = 0; i < 200; ++i) {
        fs::create_directory("d");
        fs::current_path("d");
    }
    fs::current_path(before);
    const std::string deep = LibraryPath(At("deep"));
    zr_long folders = 0;
    EXPECT_EQ(fio_GetFolderInfo(deep.c_str(), 1, nullptr, &folders, nullptr, nullptr), 1);
    const std::size_t room = 259 - deep.size() - std::string("\\*.*").size();
    EXPECT_EQ(folders, static_cast<zr_long>(room / 2 + 1)); // each that is read holds the next
    fs::create_directory(At("to"));
    EXPECT_EQ(fio_CopyDirectory(LibraryPath(At("to")).c_str(), deep.c_str()), 0);
    EXPECT_EQ(Do(GroupVerb::remove, "deep"), 0);
}

TEST_F(PosixGroupOperations, RootOfADriveMayBeEmpty) {
    fs::create_directory(At("second"));
    fs::create_directory(At("to"));
    ASSERT_EQ(setenv("ZR_DRIVE_D", At("second").c_str(), 1), 0);
    const std::string to = LibraryPath(At("to"));
    EXPECT_EQ(fio_RemoveFileAttributes("D:\\", 1), 0); // it lists nothing, not even itself
    EXPECT_EQ(fio_CopyDirectory(to.c_str(), "D:\\"), 0);
    EXPECT_EQ(fio_GetFolderItemsCount("D:\\", nullptr, nullptr), 0);
    EXPECT_EQ(fio_CopyDirectory("D:\\", to.c_str()), 1);
    m_folder.Write("second/x", "X");
    EXPECT_EQ(fio_RemoveFileAttributes("D:\\", 1), 1);
    EXPECT_EQ(fio_CopyDirectory(to.c_str(), "D:\\"), 1);
    EXPECT_EQ(m_folder.Read("to/x"), "X");
    unsetenv("ZR_DRIVE_D");
}

TEST_F(PosixGroupOperations, ReadOnlyFolderIsRefusedAsAWhole) {
    fs::create_directory(At("d"));
    m_folder.Write("d/x", "X");
    fs::permissions(At("d"), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_EQ(Do(GroupVerb::remove, "d"), zr::platform::access_denied);
    EXPECT_EQ(m_folder.Read("d/x"), "X");
    fs::permissions(At("d"), fs::perms::owner_all);
}

TEST_F(PosixGroupOperations, AnyRefusedAllocationLeavesAllUndone) {
    m_folder.Write("a_file_with_a_long_name", "A");
    const std::string sources = LibraryPath(At("a_*")) + std::string(2, '\0');
    const std::string targets = LibraryPath(At("target")) + std::string(2, '\0');
    int refused = 0;
    for (const GroupVerb verb : {GroupVerb::copy, GroupVerb::move, GroupVerb::remove}) {
        bool met = true;
        for (int others = 0; met; ++others) {
            int code = 0;
            {
                const zr::test::NthAllocation refusal(others);
                code = DoGroupOperation(verb, sources.c_str(), targets.c_str(), {}, m_aborted);
                met = refusal.Met();
            }
            EXPECT_EQ(code, met ? zr::platform::out_of_memory : 0) << others;
            EXPECT_EQ(fs::exists(At("target")), !met && verb != GroupVerb::remove);
            EXPECT_EQ(fs::exists(At("a_file_with_a_long_name")), met || verb == GroupVerb::copy);
            refused += met ? 1 : 0;
        }
        m_folder.Write("a_file_with_a_long_name", "A");
        fs::remove_all(At("target"));
    }
    EXPECT_GT(refused, 6);
}

} // namespace
