// Copying folders, and clearing attributes in a tree.
#include <zrclb/files.h>
#include <zrclb/folders.h>

#include <filesystem>
#include <string>
#include <system_error>

#include <gtest/gtest.h>

#include "env/refused_memory.h"
#include "frame/counted_allocation.h"
#include "frame/refused_heap.h"
#include "platform/file_verbs.h"
#include "platform/shell_paths.h"

namespace {

using zr::platform::GetAttributes;
using zr::platform::SetAttributes;
using zr::test::HeapInterruption;
using zr::test::HeapRefusal;
using zr::test::NthAllocation;

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

    // Makes a target of its own and copies to it, while a test's means are at work. `met` gets whether they met anything.
    template <class Means>
    void CopyUnder(int number, bool &met) {
        const std::string to = "to" + std::to_string(number);
        fs::create_directory(At(to));
        const std::string from_path = Path("from"), to_path = Path(to);
        int result = 0;
        {
            const Means means(number);
            result = fio_CopyDirectory(to_path.c_str(), from_path.c_str());
            met = means.Met();
        }
        const bool whole = Exists(to + "/one/two/c") && Exists(to + "/one/b") && Exists(to + "/a");
        EXPECT_TRUE(result == 0 || whole) << number;
        EXPECT_TRUE(result == 1 || met) << number;
    }

    TempFolder m_folder;
    zr_long m_blocks = 0;
};

class LastingRefusal : public HeapRefusal {
public:
    explicit LastingRefusal(int others) : HeapRefusal(others, true) {}
};

// Takes a folder away in the middle of a walk.
fs::path folder_to_vanish;
void Vanish() {
    std::error_code ignored;
    fs::remove_all(folder_to_vanish, ignored);
}

TEST_F(FolderTree, CopyTakesAllAlong) {
    EXPECT_EQ(Copy("to", "from"), 1);
    EXPECT_EQ(m_folder.Read("to/a") + m_folder.Read("to/one/b") + m_folder.Read("to/one/two/c"), "ABC");
    EXPECT_TRUE(fs::is_directory(At("to/empty")));
    EXPECT_EQ(m_folder.Read("from/one/two/c"), "C");
}

TEST_F(FolderTree, FolderThatExistsEndsTheCopyBeforeItsFiles) {
    fs::create_directory(At("to/one"));
    fs::create_directory(At("from/zz"));
    fs::create_directory(At("from/early"));
    m_folder.Write("from/early/f", "");
    EXPECT_EQ(Copy("to", "from"), 0);
    EXPECT_TRUE(Exists("to/early/f")); // came first, with what lies in it
    EXPECT_FALSE(Exists("to/zz"));
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

TEST_F(FolderTree, CopyOfFilesAloneIsContentWithAnyTarget) {
    EXPECT_EQ(Copy("missing", "from/one/two"), 1); // no file could be copied, which doesn't count
    EXPECT_EQ(Copy("from/a", "from/one/two"), 1);
    EXPECT_EQ(Copy("from/one/two", "from/one/two"), 1);
    EXPECT_FALSE(Exists("missing"));
    EXPECT_EQ(m_folder.Read("from/a") + m_folder.Read("from/one/two/c"), "AC");
}

TEST_F(FolderTree, CopyRefusesPlacesThatAreNone) {
    for (const std::string &path :
         {std::string("Q:\\"), std::string("Q:\\x"), std::string("\\\\"), std::string(259, 'x'), Path("from/a"),
          Path("from/a") + "\\x", std::string("\xE4\x80\xFF\x01")}) {
        EXPECT_EQ(fio_CopyDirectory(path.c_str(), Path("from").c_str()), 0) << path;
        EXPECT_EQ(fio_CopyDirectory(Path("to").c_str(), path.c_str()), 0) << path;
    }
    EXPECT_TRUE(fs::is_empty(At("to")));
    EXPECT_EQ(m_folder.Read("from/a"), "A");
}

TEST_F(FolderTree, CopyIntoItselfEnds) {
    EXPECT_EQ(Copy("from/one", "from"), 0);
    EXPECT_FALSE(Exists("from/one/a"));
    EXPECT_EQ(m_folder.Read("from/a") + m_folder.Read("from/one/b"), "AB");
}

TEST_F(FolderTree, HiddenAndLettersBeyondAsciiAreCopied) {
    const std::string name = "\xE4\x80\xFF";
    m_folder.Write("from/.hidden", "H");
    ASSERT_EQ(SetAttributes(Path("from/.hidden").c_str(), zr::platform::attribute_hidden), 0);
    ASSERT_EQ(fio_mkdir((Path("from") + "\\" + name).c_str()), 0);
    ASSERT_EQ(fio_copy(Path("from").c_str(), "a", Path("from").c_str(), (name + "\\" + name).c_str()), 0);
    EXPECT_EQ(Copy("to", "from"), 1);
    EXPECT_EQ(m_folder.Read("to/.hidden"), "H");
    EXPECT_EQ(fio_exist(Path("to").c_str(), (name + "\\" + name).c_str()), 1);
}

TEST_F(FolderTree, EmptyTextIsTheCurrentFolder) {
    {
        const CurrentFolder current(At("to"));
        EXPECT_EQ(fio_CopyDirectory("", Path("from/one").c_str()), 1);
    }
    EXPECT_EQ(m_folder.Read("to/b") + m_folder.Read("to/two/c"), "BC");
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

TEST_F(FolderTree, EveryAllocationOfACopyMayFail) {
    int failed = 0;
    bool met = true;
    for (int others = 0; met; ++others, failed += met ? 1 : 0)
        CopyUnder<LastingRefusal>(others, met);
    EXPECT_GE(failed, 4); // one for each folder at least
}

TEST_F(FolderTree, EveryAllocationOfASearchMayFail) {
    int failed = 0;
    bool met = true;
    for (int others = 0; met; ++others, failed += met ? 1 : 0)
        CopyUnder<NthAllocation>(others, met);
    EXPECT_GE(failed, 4);
}

TEST_F(FolderTree, FolderMayVanishDuringACopy) {
    int failed = 0;
    bool met = true;
    for (int others = 0; met; ++others) {
        fs::create_directories(At("from/one/two"));
        m_folder.Write("from/one/b", "B");
        const std::string to = Path("to" + std::to_string(others)), from = Path("from");
        fs::create_directory(At("to" + std::to_string(others)));
        folder_to_vanish = At("from/one");
        const HeapInterruption interruption(others, Vanish);
        const int result = fio_CopyDirectory(to.c_str(), from.c_str());
        met = interruption.Met();
        EXPECT_EQ(fio_exist(to.c_str(), "a"), result); // files come behind all folders
        failed += result == 0 ? 1 : 0;
    }
    EXPECT_GE(failed, 1);
    EXPECT_EQ(m_folder.Read("from/a"), "A");
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

TEST_F(FolderTree, PlacesThatAreNoneCannotBeCleared) {
    for (const std::string &path : {std::string(259, 'x'), std::string("Q:\\x"), std::string("\\\\"),
                                    Path("from/a") + "\\x", std::string("\xE4\x80\xFF\x01")})
        EXPECT_EQ(fio_RemoveFileAttributes(path.c_str(), 1), 0) << path;
}

TEST_F(FolderTree, AllBitsMayBeCleared) {
    Protect("from/a");
    EXPECT_EQ(fio_RemoveFileAttributes(Path("from").c_str(), 0xFFFFFFFF), 1);
    EXPECT_FALSE(IsProtected("from/a"));
    EXPECT_TRUE(fs::is_directory(At("from/one")));
}

// A dot in front of a name can't be taken off.
TEST_F(FolderTree, HiddenFilesAreShownWhereThatIsAnAttribute) {
    using namespace zr::platform;
    const std::string name = on_desktop ? "from/h" : "from/.h", path = Path(name);
    m_folder.Write(name, "H");
    ASSERT_EQ(SetAttributes(path.c_str(), attribute_hidden | attribute_archive | read_only), 0);
    EXPECT_EQ(fio_RemoveFileAttributes(path.c_str(), attribute_hidden | attribute_archive), 1);
    std::uint32_t attributes = 0;
    ASSERT_EQ(GetAttributes(path.c_str(), attributes), 0);
    EXPECT_EQ(attributes & (attribute_hidden | read_only), on_desktop ? read_only : (attribute_hidden | read_only));
}

TEST_F(FolderTree, EveryAllocationOfAClearingMayFail) {
    int failed = 0;
    for (const bool heap : {true, false}) {
        bool met = true;
        for (int others = 0; met; ++others) {
            Protect("from/one/two/c");
            const std::string path = Path("from");
            int result = 0;
            {
                const HeapRefusal refused_block(heap ? others : -1);
                const NthAllocation refused(heap ? -1 : others);
                result = fio_RemoveFileAttributes(path.c_str(), read_only);
                met = heap ? refused_block.Met() : refused.Met();
            }
            EXPECT_TRUE(result == 1 || met) << others;
            EXPECT_TRUE(result == 0 || !IsProtected("from/one/two/c")) << others;
            failed += result == 0 ? 1 : 0;
        }
    }
    EXPECT_GE(failed, 8); // four folders, a list and a search each
}

TEST_F(FolderTree, FolderMayVanishDuringAClearing) {
    int failed = 0;
    bool met = true;
    for (int others = 0; met; ++others) {
        fs::create_directories(At("from/one/two"));
        m_folder.Write("from/one/b", "B");
        Protect("from/a");
        const std::string path = Path("from");
        folder_to_vanish = At("from/one");
        const HeapInterruption interruption(others, Vanish);
        failed += fio_RemoveFileAttributes(path.c_str(), read_only) == 0 ? 1 : 0;
        met = interruption.Met();
        EXPECT_FALSE(IsProtected("from/a"));
    }
    EXPECT_GE(failed, 1);
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
    Protect("from/one/two/c");
    fs::create_directory_symlink("from", At("entry")); // the path itself may be a link, or lead through one
    EXPECT_EQ(Clear("entry/one"), 1);
    EXPECT_FALSE(IsProtected("from/one/two/c"));
}

} // namespace
