// Files by name on a host with links, devices, pipes and permissions.
#include <cerrno>
#include <csignal>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <zrclb/folders.h>

#include "platform/desktop_tables.h"
#include "platform/file_verbs.h"
#include "platform/folder_search.h"
#include "platform/posix/posix_errors.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;
namespace fs = std::filesystem;

// Lowers a limit of the process for its life.
class Limit {
public:
    Limit(__rlimit_resource kind, rlim_t value) : m_kind(kind) {
        getrlimit(kind, &m_before);
        const rlimit limit{value, m_before.rlim_max};
        setrlimit(kind, &limit);
    }
    ~Limit() { setrlimit(m_kind, &m_before); }
    Limit(const Limit &) = delete;
    Limit &operator=(const Limit &) = delete;

private:
    __rlimit_resource m_kind;
    rlimit m_before{};
};

class PosixVerbs : public testing::Test {
protected:
    void TearDown() override { Unprotect(m_folder); }

    fs::path Host(const std::string &name) const { return m_folder.Folder() / name; }
    std::string Form(const std::string &name) const { return LibraryForm(Host(name)); }
    mode_t Mode(const std::string &name) const {
        struct stat status;
        return stat(Host(name).c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
    }
    int Copy(const std::string &from, const std::string &to) const {
        return CopyFileOver(Form(from).c_str(), Form(to).c_str());
    }
    int Move(const std::string &from, const std::string &to) const {
        return MoveToNewName(Form(from).c_str(), Form(to).c_str());
    }

    TempFolder m_folder;
};

TEST_F(PosixVerbs, ReadOnlyIsNoWritePermissionAtAll) {
    m_folder.Write("f", "");
    std::uint32_t attributes = 0;
    for (const auto &[mode, read_only] : std::vector<std::pair<mode_t, bool>>{
             {0444, true}, {0555, true}, {0000, true}, {0644, false}, {0464, false}, {0446, false}}) {
        chmod(Host("f").c_str(), mode);
        ASSERT_EQ(GetAttributes(Form("f").c_str(), attributes), done);
        EXPECT_EQ(attributes, read_only ? attribute_read_only : 0U) << mode;
    }
    chmod(Host("f").c_str(), 0754);
    ASSERT_EQ(SetAttributes(Form("f").c_str(), attribute_read_only | attribute_hidden), done);
    EXPECT_EQ(Mode("f"), 0554U);
    ASSERT_EQ(SetAttributes(Form("f").c_str(), attribute_archive), done);
    EXPECT_EQ(Mode("f"), 0754U & ~0022U);
    chmod(Host("f").c_str(), 0666);
    ASSERT_EQ(SetAttributes(Form("f").c_str(), 0), done);
    EXPECT_EQ(Mode("f"), 0666U); // nothing to change
}

TEST_F(PosixVerbs, HiddenIsALeadingDot) {
    m_folder.Write(".f", "");
    fs::create_directories(Host(".d"));
    std::uint32_t attributes = 0;
    ASSERT_EQ(GetAttributes(Form(".f").c_str(), attributes), done);
    EXPECT_EQ(attributes, attribute_hidden);
    for (const char *name : {".d", ".d/", "./.d", ".d/."}) {
        ASSERT_EQ(GetAttributes(Form(name).c_str(), attributes), done);
        EXPECT_EQ(attributes, attribute_hidden | attribute_folder) << name;
    }
    const ::CurrentFolder current(m_folder.Folder());
    for (const char *name : {".", "..", ".d\\.."}) {
        ASSERT_EQ(GetAttributes(name, attributes), done);
        EXPECT_EQ(attributes, attribute_folder) << name;
    }
    m_folder.Write("f", "new");
    EXPECT_EQ(Copy("f", ".f"), done); // nobody could take the dot off first
    EXPECT_EQ(m_folder.Read(".f"), "new");
}

TEST_F(PosixVerbs, ForbiddenSignsOfTheDesktopArePartOfNames) {
    m_folder.Write("a*b", "x");
    EXPECT_TRUE(CanAccess(Form("a*b").c_str(), 6));
    EXPECT_EQ(Copy("a*b", "c|d"), done);
    EXPECT_EQ(Move("c|d", "e?\"<>"), done);
    EXPECT_EQ(RemoveUnprotectedFile(Form("e?\"<>").c_str()), done);
    EXPECT_EQ(RemoveUnprotectedFile(Form("e?\"<>").c_str()), invalid_name); // nothing bears it
    m_folder.Write("point.", "");
    EXPECT_TRUE(CanAccess(Form("point.").c_str(), 0));
    EXPECT_FALSE(CanAccess(Form("point").c_str(), 0));
}

TEST_F(PosixVerbs, LinksAreFollowedOnlyForContent) {
    m_folder.Write("file", "x");
    fs::create_directory(Host("folder"));
    fs::create_symlink("file", Host("to_file"));
    fs::create_directory_symlink("folder", Host("to_folder"));
    std::uint32_t attributes = 0;
    ASSERT_EQ(GetAttributes(Form("to_folder").c_str(), attributes), done);
    EXPECT_EQ(attributes, attribute_folder);
    EXPECT_EQ(RemoveEmptyFolder(Form("to_folder").c_str()), not_a_folder);
    EXPECT_EQ(RemoveEmptyFolder(Form("to_folder\\").c_str()), not_a_folder);
    chmod(Host("file").c_str(), 0444);
    EXPECT_FALSE(CanAccess(Form("to_file").c_str(), 2));
    EXPECT_EQ(Move("to_file", "moved"), done);
    EXPECT_TRUE(fs::is_symlink(Host("moved")));
    EXPECT_EQ(Copy("moved", "copy"), done);
    EXPECT_FALSE(fs::is_symlink(Host("copy")));
    EXPECT_EQ(RemoveUnprotectedFile(Form("moved").c_str()), done);
    EXPECT_EQ(RemoveUnprotectedFile(Form("to_folder").c_str()), done);
    EXPECT_TRUE(fs::exists(Host("file")) && fs::exists(Host("folder")));
}

TEST_F(PosixVerbs, DanglingAndLoopingLinks) {
    m_folder.Write("f", "content");
    fs::create_symlink("nowhere", Host("dangling"));
    fs::create_symlink("loop2", Host("loop1"));
    fs::create_symlink("loop1", Host("loop2"));
    std::uint32_t attributes = 0;
    EXPECT_EQ(GetAttributes(Form("dangling").c_str(), attributes), file_not_found);
    EXPECT_EQ(GetAttributes(Form("loop1").c_str(), attributes), cannot_resolve_name);
    EXPECT_FALSE(CanAccess(Form("dangling").c_str(), 0));
    EXPECT_FALSE(CanAccess(Form("loop1").c_str(), 0));
    EXPECT_EQ(Copy("dangling", "new"), file_not_found);
    EXPECT_EQ(Copy("f", "loop1"), cannot_resolve_name);
    EXPECT_EQ(Copy("loop1", "new"), cannot_resolve_name);
    EXPECT_FALSE(fs::exists(Host("new")));
    EXPECT_EQ(Move("f", "dangling"), already_exists);
    EXPECT_EQ(MakeFolder(Form("dangling").c_str()), already_exists);
    EXPECT_EQ(Copy("f", "dangling"), done); // the file that the link waited for
    EXPECT_EQ(m_folder.Read("nowhere"), "content");
    EXPECT_TRUE(fs::is_symlink(Host("dangling")));
    EXPECT_EQ(Move("loop1", "loop3"), done);
    EXPECT_EQ(RemoveUnprotectedFile(Form("loop3").c_str()), done);
    EXPECT_EQ(RemoveUnprotectedFile(Form("dangling").c_str()), done);
}

TEST_F(PosixVerbs, CopyOntoItselfLeavesTheFile) {
    m_folder.Write("f", "content");
    fs::create_hard_link(Host("f"), Host("hard"));
    fs::create_symlink("f", Host("soft"));
    for (const char *target : {"f", "hard", "soft", "./f"})
        EXPECT_EQ(Copy("f", target), sharing_violation) << target;
    EXPECT_EQ(m_folder.Read("f"), "content");
    EXPECT_EQ(Move("f", "hard"), already_exists);
    EXPECT_EQ(Move("f", "f"), done);
    EXPECT_TRUE(fs::exists(Host("f")) && fs::exists(Host("hard")));
}

TEST_F(PosixVerbs, CopyTakesPermissionsWithoutThoseOfOthers) {
    m_folder.Write("f", "x");
    chmod(Host("f").c_str(), 04751);
    ASSERT_EQ(Copy("f", "new"), done);
    EXPECT_EQ(Mode("new"), 0751U);
    chmod(Host("f").c_str(), 0440);
    ASSERT_EQ(Copy("f", "new"), done);
    EXPECT_EQ(Mode("new"), 0440U);
}

TEST_F(PosixVerbs, PipesAndDevicesHoldNothingUp) {
    m_folder.Write("f", "x");
    ASSERT_EQ(mkfifo(Host("pipe").c_str(), 0666), 0);
    EXPECT_EQ(Copy("pipe", "new"), access_denied);
    EXPECT_EQ(Copy("f", "pipe"), access_denied);
    EXPECT_EQ(CopyFileOver("C:\\dev\\zero", Form("new").c_str()), access_denied);
    EXPECT_FALSE(fs::exists(Host("new")));
    EXPECT_EQ(CopyFileOver(Form("f").c_str(), "C:\\dev\\null"), done);
    EXPECT_EQ(CopyFileOver(Form("f").c_str(), "C:\\dev\\full"), disk_full);
    EXPECT_TRUE(fs::exists("/dev/full"));
    EXPECT_EQ(RemoveUnprotectedFile(Form("pipe").c_str()), done);
}

TEST_F(PosixVerbs, FilesThatTellNoSizeAreCopiedWhole) {
    ASSERT_EQ(CopyFileOver("C:\\proc\\self\\status", Form("status").c_str()), done);
    EXPECT_NE(m_folder.Read("status").find("Name:"), std::string::npos);
}

TEST_F(PosixVerbs, CopyThatFindsNoRoomLeavesNoNewFile) {
    m_folder.Write("f", std::string(200000, 'x'));
    m_folder.Write("former", "former content");
    fs::create_symlink("target", Host("link"));
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    {
        const Limit limit(RLIMIT_FSIZE, 100000);
        EXPECT_EQ(Copy("f", "new"), disk_full);
        EXPECT_EQ(Copy("f", "link"), disk_full);
        EXPECT_EQ(Copy("f", "former"), disk_full);
    }
    std::signal(SIGXFSZ, before);
    EXPECT_FALSE(fs::exists(Host("new")));
    EXPECT_FALSE(fs::exists(Host("target")));
    EXPECT_TRUE(fs::is_symlink(Host("link")));
    EXPECT_TRUE(fs::exists(Host("former"))); // its name stays, its content is lost
    EXPECT_EQ(Copy("f", "new"), done);
}

TEST_F(PosixVerbs, FolderCopyGoesOnWhereAFileFindsNoRoom) {
    fs::create_directories(Host("from/sub"));
    fs::create_directory(Host("to"));
    m_folder.Write("from/1_big", std::string(200000, 'x'));
    m_folder.Write("from/2_small", "small");
    m_folder.Write("from/sub/big", std::string(200000, 'x'));
    const std::string from = Form("from"), to = Form("to");
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    {
        const Limit limit(RLIMIT_FSIZE, 100000);
        EXPECT_EQ(fio_CopyDirectory(to.c_str(), from.c_str()), 1);
    }
    std::signal(SIGXFSZ, before);
    EXPECT_FALSE(fs::exists(Host("to/1_big")));
    EXPECT_TRUE(fs::is_empty(Host("to/sub")));
    EXPECT_EQ(m_folder.Read("to/2_small"), "small");
}

TEST_F(PosixVerbs, GroupOperationEndsWhereAFileFindsNoRoom) {
    m_folder.Write("1_small", "small");
    m_folder.Write("2_big", std::string(200000, 'x'));
    m_folder.Write("3_small", "small");
    const std::string from = m_folder.Folder().string(), to = from + "/new";
    const char *names[] = {"1_small", "2_big", "3_small", nullptr};
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    {
        const Limit limit(RLIMIT_FSIZE, 100000);
        EXPECT_EQ(fio_group_operation(from.c_str(), names, to.c_str(), nullptr, FIO_GROUP_COPY, 0, nullptr, nullptr),
                  2);
    }
    std::signal(SIGXFSZ, before);
    EXPECT_TRUE(fs::exists(Host("new/1_small")));
    EXPECT_FALSE(fs::exists(Host("new/2_big")) || fs::exists(Host("new/3_small")));
    EXPECT_EQ(m_folder.Read("2_big").size(), 200000U);
}

TEST_F(PosixVerbs, MovesToAnotherFileSystemCopyFiles) {
    const fs::path shm = "/dev/shm";
    struct stat here, there;
    if (stat(shm.c_str(), &there) != 0 || stat(m_folder.Folder().c_str(), &here) != 0 || here.st_dev == there.st_dev)
        GTEST_SKIP() << "one file system alone";
    const fs::path far = shm / m_folder.Folder().filename();
    fs::create_directory(far);
    m_folder.Write("f", "content");
    fs::create_directory(Host("d"));
    fs::create_symlink("f", Host("link"));
    EXPECT_EQ(MoveToNewName(Form("f").c_str(), LibraryForm(far / "f").c_str()), done);
    EXPECT_FALSE(fs::exists(Host("f")));
    EXPECT_TRUE(fs::exists(far / "f"));
    m_folder.Write("f", "second");
    EXPECT_EQ(MoveToNewName(Form("f").c_str(), LibraryForm(far / "f").c_str()), already_exists);
    EXPECT_EQ(MoveToNewName(Form("d").c_str(), LibraryForm(far / "d").c_str()), access_denied);
    EXPECT_EQ(MoveToNewName(Form("link").c_str(), LibraryForm(far / "link").c_str()), done);
    EXPECT_TRUE(fs::is_symlink(far / "link"));
    fs::remove_all(far);
}

TEST_F(PosixVerbs, FolderOfTheProcessStays) {
    fs::create_directory(Host("d"));
    const ::CurrentFolder current(Host("d"));
    EXPECT_EQ(RemoveEmptyFolder("."), sharing_violation);
    EXPECT_EQ(RemoveEmptyFolder(Form("d").c_str()), sharing_violation);
    EXPECT_EQ(RemoveEmptyFolder(".."), folder_not_empty);
}

TEST_F(PosixVerbs, NoDescriptorsLeft) {
    m_folder.Write("f", "x");
    const std::string from = Form("f"), to = Form("new"), pattern = Form("*");
    FolderSearch search;
    FoundEntry entry;
    const int next = dup(0);
    ASSERT_GE(next, 0);
    close(next);
    int codes[3]; // looked at afterwards: a sanitizer's own checks need descriptors too
    {
        const Limit limit(RLIMIT_NOFILE, static_cast<rlim_t>(next));
        codes[0] = CopyFileOver(from.c_str(), to.c_str());
        codes[1] = search.Start(pattern.c_str(), SearchOrder::any, entry);
    }
    {
        const Limit limit(RLIMIT_NOFILE, static_cast<rlim_t>(next) + 1); // enough for the source alone
        codes[2] = CopyFileOver(from.c_str(), to.c_str());
    }
    for (const int code : codes)
        EXPECT_EQ(code, too_many_open_files);
    EXPECT_FALSE(fs::exists(Host("new")));
    EXPECT_EQ(Copy("f", "new"), done);
}

TEST_F(PosixVerbs, SearchTellsLinksApart) {
    m_folder.Write("file", "12345");
    fs::create_directory(Host("folder"));
    fs::create_symlink("file", Host("to_file"));
    fs::create_directory_symlink("folder", Host("to_folder"));
    fs::create_symlink("nowhere", Host("to_nothing"));
    fs::create_symlink("to_self", Host("to_self"));
    mkfifo(Host("to_pipe").c_str(), 0666);
    FolderSearch search;
    FoundEntry entry;
    ASSERT_EQ(search.Start(Form("to_*").c_str(), SearchOrder::by_name, entry), done);
    EXPECT_STREQ(entry.name, "to_file");
    EXPECT_EQ(entry.attributes, attribute_link);
    EXPECT_EQ(entry.size, 5U);
    ASSERT_EQ(search.Next(entry), done);
    EXPECT_STREQ(entry.name, "to_folder");
    EXPECT_EQ(entry.attributes, attribute_link | attribute_folder);
    ASSERT_EQ(search.Next(entry), done);
    EXPECT_STREQ(entry.name, "to_nothing");
    EXPECT_EQ(entry.attributes, attribute_link);
    EXPECT_EQ(entry.size, 0U);
    ASSERT_EQ(search.Next(entry), done);
    EXPECT_STREQ(entry.name, "to_pipe");
    EXPECT_EQ(entry.attributes, 0U);
    ASSERT_EQ(search.Next(entry), done);
    EXPECT_STREQ(entry.name, "to_self");
    EXPECT_EQ(search.Next(entry), no_more_files);
}

TEST_F(PosixVerbs, SearchFindsEveryCaseOfAName) {
    for (const char *name : {"readme", "README", "ReadMe", "other"})
        m_folder.Write(name, "");
    FolderSearch search;
    FoundEntry entry;
    std::string names;
    for (int code = search.Start(Form("readme").c_str(), SearchOrder::by_name, entry); code == done;
         code = search.Next(entry))
        names += std::string(entry.name) + "|";
    EXPECT_EQ(names, "README|ReadMe|readme|");
}

TEST_F(PosixVerbs, CodesOfTheHost) {
    using posix::SystemCode;
    EXPECT_EQ(SystemCode(ENOENT), file_not_found);
    EXPECT_EQ(SystemCode(EACCES), access_denied);
    EXPECT_EQ(SystemCode(EROFS), write_protected);
    EXPECT_EQ(SystemCode(ENOSPC), disk_full);
    EXPECT_EQ(SystemCode(EDQUOT), disk_full);
    EXPECT_EQ(SystemCode(EMFILE), too_many_open_files);
    EXPECT_EQ(SystemCode(ENOMEM), out_of_memory);
    EXPECT_EQ(SystemCode(EIO), io_failure);
    EXPECT_EQ(SystemCode(99999), io_failure); // any other
}

} // namespace
