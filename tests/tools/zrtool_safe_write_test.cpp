// Replacing a file: the new content whole, or the old one untouched, and never a temporary file left.
#include <cerrno>
#include <filesystem>
#include <string>

#include "safe_write.h"
#include "session.h"
#include "zrtool_fixture.h"

namespace {

using namespace zrtool;
namespace fs = std::filesystem;

class SafeWrite : public ZrtoolFixture {
protected:
    void TearDown() override {
        file_steps = m_steps;
        ZrtoolFixture::TearDown();
    }

    // The message of the failure; empty when there was none.
    static std::string Replace(const std::string &path, const std::string &bytes) {
        try {
            ReplaceFile(path, bytes);
        } catch (const Failure &failure) {
            EXPECT_EQ(failure.code, InputOutput);
            return failure.what();
        }
        return "";
    }

    void ExpectUntouched(const std::string &path) {
        const std::string message = Replace(path, "new");
        EXPECT_NE(message.find(path), std::string::npos) << message;
        EXPECT_EQ(Bytes(path), "old");
        EXPECT_EQ(FolderContent().size(), 1u);
    }

    const FileSteps m_steps = file_steps;
};

TEST_F(SafeWrite, ExistingFile_HasTheNewBytes) {
    const std::string path = File("a", "old");
    EXPECT_EQ(Replace(path, std::string("one\ntwo\r\n\0\x1A", 11)), "");
    EXPECT_EQ(Bytes(path), std::string("one\ntwo\r\n\0\x1A", 11));
    EXPECT_EQ(Replace(path, ""), "");
    EXPECT_EQ(Bytes(path), "");
    EXPECT_EQ(FolderContent().size(), 1u);
}

TEST_F(SafeWrite, MissingFile_IsMade) {
    EXPECT_EQ(Replace(Path("fresh"), "new"), "");
    EXPECT_EQ(Bytes(Path("fresh")), "new");
    EXPECT_EQ(FolderContent().size(), 1u);
}

TEST_F(SafeWrite, RelativeName_WorksAsItIs) {
    const fs::path before = fs::current_path();
    fs::current_path(m_folder);
    EXPECT_EQ(Replace("relative", "new"), "");
    fs::create_directory("sub");
    EXPECT_EQ(Replace("sub/relative", "new"), "");
    fs::current_path(before);
    EXPECT_EQ(Bytes(Path("relative")), "new");
    EXPECT_EQ(Bytes(Path("sub/relative")), "new");
}

TEST_F(SafeWrite, NoTemporaryFile_LeavesTheOldOne) {
    const std::string path = File("a", "old");
    file_steps.create_beside = [](const char *, char *, std::size_t) {
        errno = EACCES;
        return false;
    };
    ExpectUntouched(path);
}

TEST_F(SafeWrite, FailedWrite_LeavesTheOldOne) {
    const std::string path = File("a", "old");
    file_steps.write = [](std::FILE *stream, std::string_view bytes) { // a disk that is full after the first byte
        std::fwrite(bytes.data(), 1, 1, stream);
        errno = ENOSPC;
        return false;
    };
    ExpectUntouched(path);
}

TEST_F(SafeWrite, FailedFlush_LeavesTheOldOne) {
    const std::string path = File("a", "old");
    file_steps.flush_to_disk = [](std::FILE *) {
        errno = EIO;
        return false;
    };
    ExpectUntouched(path);
}

TEST_F(SafeWrite, ModeThatCannotBeKept_LeavesTheOldOne) {
    const std::string path = File("a", "old");
    file_steps.copy_mode = [](const char *, const char *) {
        errno = EPERM;
        return false;
    };
    ExpectUntouched(path);
}

TEST_F(SafeWrite, FailedMove_LeavesTheOldOne) {
    const std::string path = File("a", "old");
    file_steps.move_over = [](const char *, const char *) {
        errno = EACCES;
        return false;
    };
    ExpectUntouched(path);
}

TEST_F(SafeWrite, WriteProtectedFile_StaysAsItIs) {
    const std::string path = File("a", "old");
    fs::permissions(path, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    ExpectUntouched(path);
    fs::permissions(path, fs::perms::owner_write, fs::perm_options::add);
}

TEST_F(SafeWrite, FolderOrMissingFolder_IsAFailure) {
    fs::create_directory(Path("folder"));
    EXPECT_NE(Replace(Path("folder"), "new").find("is a folder"), std::string::npos);
    EXPECT_NE(Replace(Path("missing/a"), "new"), "");
    EXPECT_NE(Replace("", "new"), "");
    EXPECT_NE(Replace(Path(std::string(300, 'x')), "new"), "");
    EXPECT_EQ(FolderContent(), std::vector<std::string>{"folder"});
}

TEST_F(SafeWrite, Mode_IsKept) {
    if (HostIsDesktop())
        GTEST_SKIP() << "this host has no permissions to keep";
    const std::string path = File("a", "old");
    const fs::perms mode = fs::perms::owner_all | fs::perms::group_read | fs::perms::others_exec;
    fs::permissions(path, mode);
    EXPECT_EQ(Replace(path, "new"), "");
    EXPECT_EQ(fs::status(path).permissions(), mode);

    // A new file has the mode of any other file that the user makes.
    const std::string plain = File("plain", "");
    EXPECT_EQ(Replace(Path("fresh"), "new"), "");
    EXPECT_EQ(fs::status(Path("fresh")).permissions(), fs::status(plain).permissions());
}

TEST_F(SafeWrite, SymbolicLink_StaysAndItsTargetIsReplaced) {
    std::error_code error;
    fs::create_directory(Path("sub"));
    const std::string target = File("sub/target", "old");
    fs::create_symlink("sub/target", Path("link"), error);
    if (error)
        GTEST_SKIP() << "this host makes no links: " << error.message();
    fs::create_symlink("link", Path("second"));
    EXPECT_EQ(Replace(Path("second"), "new"), "");
    EXPECT_TRUE(fs::is_symlink(Path("second")));
    EXPECT_TRUE(fs::is_symlink(Path("link")));
    EXPECT_EQ(Bytes(target), "new");
    EXPECT_FALSE(fs::is_symlink(target));

    fs::create_symlink("round", Path("round"), error);
    EXPECT_NE(Replace(Path("round"), "new"), "");
    fs::create_symlink("later", Path("dangling"));
    EXPECT_EQ(Replace(Path("dangling"), "new"), "");
    EXPECT_EQ(Bytes(Path("later")), "new");
}

TEST_F(SafeWrite, FullDevice_IsAFailureAndStaysADevice) {
    if (!fs::exists("/dev/full"))
        GTEST_SKIP() << "this host has no device that is always full";
    EXPECT_NE(Replace("/dev/full", "new"), "");
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST_F(SafeWrite, NameThatTheLibraryWouldMisread_IsRefused) {
    if (HostIsDesktop())
        GTEST_SKIP() << "a backslash separates folders here";
    EXPECT_NE(Replace(Path("a\\b"), "new"), "");
    EXPECT_TRUE(FolderContent().empty());
}

} // namespace
