// Copying folders, and clearing attributes in a tree.
#include <zrclb/folders.h>

#include <filesystem>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

#include "frame/counted_allocation.h"
#include "frame/refused_heap.h"
#include "platform/file_verbs.h"
#include "platform/shell_paths.h"

namespace {

using zr::platform::GetAttributes;
using zr::platform::SetAttributes;
using zr::test::HeapRefusal;

namespace fs = std::filesystem;

constexpr std::uint32_t read_only = zr::platform::attribute_read_only;

class FolderTree : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(At("from/one/two"));
        fs::create_directory(At("from/empty"));
        fs::create_directory(At("to"));
        m_folder.Write("from/a", "A");
        m_folder.Write("from/one/b", "B");
        m_folder.Write("from/one/two/c", "C");
        m_blocks = zr::frame::heap_block_count;
    }
    void TearDown() override {
        EXPECT_EQ(zr::frame::heap_block_count, m_blocks);
        fio_RemoveFileAttributes(LibraryPath(m_folder.Folder()).c_str(), read_only);
    }

    fs::path At(const std::string &name) const { return m_folder.Folder() / name; }
    std::string Path(const std::string &name) const { return LibraryPath(At(name)); }
    bool Exists(const std::string &name) const { return fs::exists(At(name)); }
    int Copy(const std::string &to, const std::string &from) const {
        return fio_CopyDirectory(Path(to).c_str(), Path(from).c_str());
    }
    void Protect(const std::string &name) const {
        std::uint32_t attributes = 0;
        ASSERT_EQ(GetAttributes(Path(name).c_str(), attributes), 0);
        ASSERT_EQ(SetAttributes(Path(name).c_str(), attributes | read_only), 0);
    }
    bool IsProtected(const std::string &name) const {
        std::uint32_t attributes = 0;
        EXPECT_EQ(GetAttributes(Path(name).c_str(), attributes), 0);
        return (attributes & read_only) != 0;
    }
    int Clear(const std::string &name) const { return fio_RemoveFileAttributes(Path(name).c_str(), read_only); }

    TempFolder m_folder;
    zr_long m_blocks = 0;
};

TEST_F(FolderTree, CopyTakesAllAlong) {
    EXPECT_EQ(Copy("to", "from"), 1);
    EXPECT_EQ(m_folder.Read("to/a") + m_folder.Read("to/one/b") + m_folder.Read("to/one/two/c"), "ABC");
    EXPECT_TRUE(fs::is_directory(At("to/empty")));
    EXPECT_EQ(m_folder.Read("from/one/two/c"), "C");
}

TEST_F(FolderTree, FolderThatExistsEndsTheCopyBeforeItsFiles) {
    fs::create_directory(At("to/one"));
    EXPECT_EQ(Copy("to", "from"), 0);
    EXPECT_TRUE(Exists("to/empty")); // came first
    EXPECT_FALSE(Exists("to/a"));
    EXPECT_TRUE(fs::is_empty(At("to/one")));
}

TEST_F(FolderTree, FileInTheWayOfAFolderEndsTheCopy) {
    m_folder.Write("to/one", "file");
    EXPECT_EQ(Copy("to", "from"), 0);
    EXPECT_EQ(m_folder.Read("to/one"), "file");
    EXPECT_FALSE(Exists("to/a"));
}

TEST_F(FolderTree, FileThatCannotBeCopiedDoesNotFail) {
    m_folder.Write("to/a", "old");
    Protect("to/a");
    EXPECT_EQ(Copy("to", "from"), 1);
    EXPECT_EQ(m_folder.Read("to/a"), "old");
    EXPECT_EQ(m_folder.Read("to/one/b"), "B");
}

TEST_F(FolderTree, FilesAreOverwritten) {
    m_folder.Write("to/a", "older and longer");
    EXPECT_EQ(Copy("to", "from"), 1);
    EXPECT_EQ(m_folder.Read("to/a"), "A");
}

TEST_F(FolderTree, CopyNeedsBothFolders) {
    EXPECT_EQ(Copy("to", "missing"), 0);
    EXPECT_EQ(Copy("to", "from/a"), 0);
    EXPECT_EQ(Copy("missing", "from"), 0);
    EXPECT_FALSE(Exists("missing"));
    EXPECT_EQ(fio_CopyDirectory(nullptr, Path("from").c_str()), 0);
    EXPECT_EQ(fio_CopyDirectory(Path("to").c_str(), nullptr), 0);
    EXPECT_EQ(fio_CopyDirectory(std::string(10000, 'x').c_str(), Path("from").c_str()), 0);
    EXPECT_EQ(fio_CopyDirectory(std::string(256, 'x').c_str(), Path("from").c_str()), 0);
    EXPECT_EQ(fio_CopyDirectory(Path("to").c_str(), std::string(260, 'x').c_str()), 0);
    EXPECT_TRUE(fs::is_empty(At("to")));
}

TEST_F(FolderTree, EmptyFolderCopiesAsNothing) {
    EXPECT_EQ(Copy("to", "from/empty"), 1);
    EXPECT_TRUE(fs::is_empty(At("to")));
}

TEST_F(FolderTree, PathThatGetsTooLongFailsTheCopy) {
    std::string path = m_folder.Folder().string() + "/to";
    while (path.size() < 240)
        fs::create_directory(path += "/" + std::string(9, 'd'));
    fs::create_directories(At("from/" + std::string(30, 'n')));
    EXPECT_EQ(fio_CopyDirectory(LibraryPath(path).c_str(), Path("from").c_str()), 0);
    EXPECT_FALSE(fs::exists(path + "/a"));
}

TEST_F(FolderTree, RingOfLinksFailsAndDanglingOnesAreLeftOut) {
    std::error_code refused;
    fs::create_symlink("nowhere", At("from/dangling"), refused);
    if (refused)
        GTEST_SKIP() << "no links can be made here";
    EXPECT_EQ(Copy("to", "from"), 1);
    EXPECT_FALSE(fs::is_symlink(At("to/dangling")));
    fs::create_directory(At("to2"));
    fs::create_directory_symlink("..", At("from/one/ring"));
    EXPECT_EQ(Copy("to2", "from"), 0);
    EXPECT_FALSE(Exists("to2/a"));
}

TEST_F(FolderTree, RefusedListingFailsTheCopy) {
    for (int others = 0; others < 10; ++others) {
        const std::string to = "refused" + std::to_string(others);
        fs::create_directory(At(to));
        int result = 0;
        bool met = false;
        {
            const HeapRefusal refusal(others, true);
            result = Copy(to, "from");
            met = refusal.Met();
        }
        const bool whole = Exists(to + "/one/two/c") && Exists(to + "/one/b") && Exists(to + "/a");
        EXPECT_TRUE(met || whole) << others;
        EXPECT_TRUE(result == 0 || whole || met) << others;
    }
}

TEST_F(FolderTree, PlainFileLosesItsProtection) {
    Protect("from/a");
    EXPECT_EQ(Clear("from/a"), 1);
    EXPECT_FALSE(IsProtected("from/a"));
    EXPECT_EQ(Clear("from/a"), 1); // nothing left to clear
}

TEST_F(FolderTree, OtherBitsStayAsTheyAre) {
    Protect("from/a");
    EXPECT_EQ(fio_RemoveFileAttributes(Path("from/a").c_str(), 4), 1);
    EXPECT_EQ(fio_RemoveFileAttributes(Path("from/a").c_str(), 0), 1);
    EXPECT_TRUE(IsProtected("from/a"));
}

TEST_F(FolderTree, WholeTreeLosesItsProtection) {
    for (const char *name : {"from/a", "from/one/b", "from/one/two/c", "from/one/two", "from/empty", "from"})
        Protect(name);
    EXPECT_EQ(Clear("from"), 1);
    for (const char *name : {"from/a", "from/one/b", "from/one/two/c", "from/one/two", "from/empty", "from"})
        EXPECT_FALSE(IsProtected(name)) << name;
}

TEST_F(FolderTree, MissingPathsCannotBeCleared) {
    EXPECT_EQ(fio_RemoveFileAttributes(nullptr, 1), 0);
    EXPECT_EQ(Clear("missing"), 0);
    EXPECT_EQ(fio_RemoveFileAttributes("Q:\\", 1), 0);
    EXPECT_EQ(fio_RemoveFileAttributes(std::string(10000, 'x').c_str(), 1), 0);
    EXPECT_EQ(fio_RemoveFileAttributes(std::string(260, 'x').c_str(), 1), 0);
}

TEST_F(FolderTree, LinksAreNotEnteredForClearing) {
    std::error_code refused;
    fs::create_directory_symlink(m_folder.Folder(), At("from/one/ring"), refused);
    if (refused)
        GTEST_SKIP() << "no links can be made here";
    fs::create_directory_symlink("..", At("from/one/two/ring"));
    fs::create_symlink("nowhere", At("from/dangling"));
    Protect("from/one/b");
    m_folder.Write("to/kept", "kept");
    Protect("to/kept");
    EXPECT_EQ(Clear("from"), 0); // the dangling link has no attributes
    EXPECT_FALSE(IsProtected("from/one/b"));
    EXPECT_TRUE(IsProtected("to/kept"));
}

} // namespace
