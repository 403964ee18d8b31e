// File status, host paths and safe replacement: what holds on every platform.
#include "platform/files.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include <zrclb/paths.h>

#include "platform/clock.h"
#include "platform/streams.h"
#include "platform/temp_folder.h"
#include "platform/tree_of_names.h"

namespace {

using namespace zr::platform;

class Files : public testing::Test {
protected:
    TempFolder m_folder;
};

TEST_F(Files, TableOfStatusHoldsForNamesThatAllHostsTakeAlike) {
    const TreeOfNames tree(m_folder);
    const GoldenTable table("crt_stat.tsv");
    int checked = 0;
    for (const GoldenTable::Row &row : table.Rows())
        if (IsRowOfNewestRuntime(row) && !HostsDiffer(row.at("path")) && tree.CanHold(row.at("path"))) {
            tree.CheckStatus(row);
            ++checked;
        }
    EXPECT_EQ(checked, 59);
}

TEST_F(Files, TableOfOpensHoldsForNamesThatAllHostsTakeAlike) {
    const GoldenTable table("crt_fopen.tsv");
    int checked = 0;
    for (const GoldenTable::Row &row : table.Rows())
        if (IsTextMode(row.at("mode")) && !HostsDiffer(row.at("path"))) {
            const TempFolder folder;
            const TreeOfNames tree(folder);
            if (!tree.CanHold(row.at("path")))
                continue;
            tree.CheckOpen(row);
            ++checked;
        }
    EXPECT_EQ(checked, 30);
}

TEST_F(Files, StatusTellsSizeTimeAndKind) {
    m_folder.Write("file", "12345");
    FileStatus status{-1, 99, true};
    ASSERT_TRUE(GetFileStatus(m_folder.Path("file").c_str(), status));
    EXPECT_EQ(status.size, 5U);
    EXPECT_FALSE(status.folder);
    EXPECT_NEAR(static_cast<double>(status.modified), static_cast<double>(Now()), 100);
    ASSERT_TRUE(GetFileStatus(m_folder.Folder().string().c_str(), status));
    EXPECT_TRUE(status.folder);
    EXPECT_EQ(status.size, 0U);
}

TEST_F(Files, StatusTellsTheTimeThatWasSet) {
    m_folder.Write("file", "");
    const std::filesystem::path path = m_folder.Folder() / "file";
    FileStatus before{}, after{};
    ASSERT_TRUE(GetFileStatus(path.string().c_str(), before));
    const auto time = std::filesystem::last_write_time(path);
    std::filesystem::last_write_time(path, time - std::chrono::hours(24 * 400));
    ASSERT_TRUE(GetFileStatus(path.string().c_str(), after));
    EXPECT_EQ(before.modified - after.modified, 24 * 400 * 3600);
}

TEST_F(Files, StatusOfAFileAboveFourGigabytes) {
    m_folder.Write("file", "");
    const std::filesystem::path path = m_folder.Folder() / "file";
    constexpr std::uintmax_t size = 5000000000U; // without content on the disk
    std::filesystem::resize_file(path, size);
    FileStatus status{};
    ASSERT_TRUE(GetFileStatus(path.string().c_str(), status));
    EXPECT_EQ(status.size, size);
}

TEST_F(Files, FailedStatusLeavesTheRecord) {
    const std::string missing = m_folder.Path("missing");
    const std::string over_long(260, 'x');
    for (const char *path : {static_cast<const char *>(nullptr), "", missing.c_str(), over_long.c_str(), "C:", "Q:\\x",
                             "\\\\srv\\sh\\f.txt"}) {
        FileStatus status{-7, 77, true};
        errno = 0;
        EXPECT_FALSE(GetFileStatus(path, status)) << (path != nullptr ? path : "null");
        EXPECT_NE(errno, 0);
        EXPECT_EQ(status.modified, -7);
        EXPECT_EQ(status.size, 77U);
        EXPECT_TRUE(status.folder);
    }
}

TEST_F(Files, HostPathNamesTheSameFile) {
    m_folder.Write("file", "here");
    std::string path = m_folder.Path("file");
    for (char &c : path)
        c = c == '\\' ? '/' : c;
    char host[path_size];
    ASSERT_TRUE(HostPath(path.c_str(), host, sizeof host));
    std::FILE *file = std::fopen(host, "rb");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(std::fgetc(file), 'h');
    std::fclose(file);
}

TEST_F(Files, HostPathThatFailsIsEmpty) {
    const std::string over_long(260, 'x');
    char host[300];
    for (const char *path : {static_cast<const char *>(nullptr), "", over_long.c_str()}) {
        std::strcpy(host, "before");
        EXPECT_FALSE(HostPath(path, host, sizeof host));
        EXPECT_STREQ(host, "");
    }
    EXPECT_TRUE(HostPath(over_long.c_str() + 1, host, sizeof host));
    EXPECT_EQ(host, over_long.substr(1));
}

TEST_F(Files, HostPathStopsAtTheBuffersEnd) {
    char host[9] = "########";
    EXPECT_TRUE(HostPath("abcd", host, 5));
    EXPECT_STREQ(host, "abcd");
    EXPECT_EQ(host[5], '#');
    std::strcpy(host, "########");
    EXPECT_FALSE(HostPath("abcd", host, 4));
    EXPECT_STREQ(host, "");
    EXPECT_EQ(host[4], '#');
    EXPECT_FALSE(HostPath("abcd", host, 0));
    EXPECT_FALSE(HostPath("abcd", nullptr, 5));
}

TEST_F(Files, PublicHostPathAnswersOneOrZero) {
    char host[20] = "before";
    EXPECT_EQ(zr_HostPath("a", host, sizeof host), 1);
    EXPECT_STREQ(host, "a");
    EXPECT_EQ(zr_HostPath("", host, sizeof host), 0);
    EXPECT_STREQ(host, "");
    EXPECT_EQ(zr_HostPath(nullptr, host, sizeof host), 0);
    EXPECT_EQ(zr_HostPath("a", nullptr, sizeof host), 0);
    EXPECT_EQ(zr_HostPath("a", host, 0), 0);
    EXPECT_EQ(zr_HostPath("a", host, 1), 0);
}

TEST_F(Files, CreateBesideMakesANewEmptyFile) {
    char one[path_size], two[path_size];
    const std::string target = m_folder.Path("target");
    ASSERT_TRUE(CreateBeside(target.c_str(), one, sizeof one));
    ASSERT_TRUE(CreateBeside(target.c_str(), two, sizeof two));
    EXPECT_STRNE(one, two);
    const std::size_t folder = target.size() - std::strlen("target");
    EXPECT_EQ(std::string(one).substr(0, folder), target.substr(0, folder));
    FileStatus status{};
    ASSERT_TRUE(GetFileStatus(one, status));
    EXPECT_EQ(status.size, 0U);
    EXPECT_FALSE(status.folder);
    EXPECT_FALSE(std::filesystem::exists(m_folder.Folder() / "target"));
}

TEST_F(Files, CreateBesideANameAloneUsesTheCurrentFolder) {
    const CurrentFolder current(m_folder.Folder());
    char path[path_size];
    ASSERT_TRUE(CreateBeside("name", path, sizeof path));
    EXPECT_TRUE(std::filesystem::exists(m_folder.Folder() / path));
}

TEST_F(Files, CreateBesideFailsCleanly) {
    char path[path_size] = "before";
    EXPECT_FALSE(CreateBeside(m_folder.Path("none/target").c_str(), path, sizeof path));
    EXPECT_STREQ(path, "");
    EXPECT_FALSE(CreateBeside("", path, sizeof path));
    EXPECT_FALSE(CreateBeside(nullptr, path, sizeof path));
    EXPECT_FALSE(CreateBeside(std::string(260, 'x').c_str(), path, sizeof path));
    EXPECT_FALSE(CreateBeside(m_folder.Path("target").c_str(), path, 10));
    EXPECT_FALSE(CreateBeside(m_folder.Path("target").c_str(), nullptr, sizeof path));
    EXPECT_FALSE(CreateBeside(m_folder.Path("target").c_str(), path, 0));
    EXPECT_TRUE(std::filesystem::is_empty(m_folder.Folder()));
}

TEST_F(Files, FlushToDiskWritesWhatIsBuffered) {
    std::FILE *stream = OpenText(m_folder.Path("file").c_str(), "w");
    ASSERT_NE(stream, nullptr);
    std::fputs("line\n", stream);
    EXPECT_TRUE(FlushToDisk(stream));
    EXPECT_EQ(m_folder.Read("file"), "line\r\n");
    std::fputs("more\n", stream);
    EXPECT_EQ(std::fclose(stream), 0);
    EXPECT_EQ(m_folder.Read("file"), "line\r\nmore\r\n");
    EXPECT_FALSE(FlushToDisk(nullptr));
}

TEST_F(Files, FlushToDiskTakesPlainStreamsToo) {
    std::FILE *stream = std::fopen(m_folder.Path("file").c_str(), "wb");
    ASSERT_NE(stream, nullptr);
    std::fputs("line\n", stream);
    EXPECT_TRUE(FlushToDisk(stream));
    EXPECT_EQ(m_folder.Read("file"), "line\n");
    std::fclose(stream);
}

TEST_F(Files, MoveOverReplacesOrMakesTheTarget) {
    m_folder.Write("new", "new");
    m_folder.Write("old", "old");
    const std::string from = m_folder.Path("new"), to = m_folder.Path("old");
    EXPECT_TRUE(MoveOver(from.c_str(), to.c_str()));
    EXPECT_EQ(m_folder.Read("old"), "new");
    EXPECT_FALSE(std::filesystem::exists(from));
    EXPECT_TRUE(MoveOver(to.c_str(), from.c_str()));
    EXPECT_EQ(m_folder.Read("new"), "new");
}

TEST_F(Files, MoveOverThatFailsChangesNothing) {
    m_folder.Write("new", "new");
    m_folder.Write("guarded", "old");
    std::filesystem::create_directory(m_folder.Folder() / "sub");
    std::filesystem::permissions(m_folder.Folder() / "guarded", std::filesystem::perms::owner_read);
    const std::string from = m_folder.Path("new");
    EXPECT_FALSE(MoveOver(from.c_str(), m_folder.Path("sub").c_str()));
    EXPECT_FALSE(MoveOver(from.c_str(), m_folder.Path("guarded").c_str()));
    EXPECT_FALSE(MoveOver(from.c_str(), m_folder.Path("none/x").c_str()));
    EXPECT_FALSE(MoveOver(m_folder.Path("missing").c_str(), m_folder.Path("x").c_str()));
    EXPECT_FALSE(MoveOver(nullptr, from.c_str()));
    EXPECT_FALSE(MoveOver(from.c_str(), nullptr));
    EXPECT_FALSE(MoveOver(from.c_str(), ""));
    EXPECT_EQ(m_folder.Read("new"), "new");
    EXPECT_EQ(m_folder.Read("guarded"), "old");
    std::filesystem::permissions(m_folder.Folder() / "guarded", std::filesystem::perms::owner_all);
}

TEST_F(Files, FollowLinksGivesOtherPathsBack) {
    m_folder.Write("file", "");
    char out[path_size];
    for (const std::string &path : {m_folder.Path("file"), m_folder.Path("missing"), m_folder.Folder().string()}) {
        ASSERT_TRUE(FollowLinks(path.c_str(), out, sizeof out));
        EXPECT_EQ(out, path);
        EXPECT_FALSE(FollowLinks(path.c_str(), out, path.size()));
        EXPECT_STREQ(out, "");
    }
    EXPECT_FALSE(FollowLinks(nullptr, out, sizeof out));
    EXPECT_FALSE(FollowLinks("", out, sizeof out));
    EXPECT_FALSE(FollowLinks("x", nullptr, 5));
    EXPECT_FALSE(FollowLinks("x", out, 0));
}

TEST_F(Files, CopyModeHandsOnWriteProtection) {
    m_folder.Write("guarded", "");
    m_folder.Write("open", "");
    m_folder.Write("file", "");
    const std::filesystem::path guarded = m_folder.Folder() / "guarded", file = m_folder.Folder() / "file";
    const auto is_writable = [&] {
        return (std::filesystem::status(file).permissions() & std::filesystem::perms::owner_write) !=
               std::filesystem::perms::none;
    };
    std::filesystem::permissions(guarded, std::filesystem::perms::owner_read);
    EXPECT_TRUE(CopyMode(guarded.string().c_str(), file.string().c_str()));
    EXPECT_FALSE(is_writable());
    EXPECT_TRUE(CopyMode(m_folder.Path("open").c_str(), file.string().c_str()));
    EXPECT_TRUE(is_writable());
    EXPECT_FALSE(CopyMode(m_folder.Path("missing").c_str(), file.string().c_str()));
    EXPECT_FALSE(CopyMode(file.string().c_str(), m_folder.Path("missing").c_str()));
    EXPECT_FALSE(CopyMode(nullptr, file.string().c_str()));
    EXPECT_FALSE(CopyMode(file.string().c_str(), nullptr));
    std::filesystem::permissions(guarded, std::filesystem::perms::owner_all);
}

TEST_F(Files, RemoveFileRemovesFilesAlone) {
    m_folder.Write("file", "");
    m_folder.Write("guarded", "");
    std::filesystem::permissions(m_folder.Folder() / "guarded", std::filesystem::perms::owner_read);
    std::filesystem::create_directory(m_folder.Folder() / "sub");
    EXPECT_TRUE(RemoveFile(m_folder.Path("file").c_str()));
    EXPECT_TRUE(RemoveFile(m_folder.Path("guarded").c_str()));
    EXPECT_FALSE(std::filesystem::exists(m_folder.Folder() / "file"));
    EXPECT_FALSE(std::filesystem::exists(m_folder.Folder() / "guarded"));
    EXPECT_FALSE(RemoveFile(m_folder.Path("file").c_str()));
    EXPECT_FALSE(RemoveFile(m_folder.Path("sub").c_str()));
    EXPECT_TRUE(std::filesystem::exists(m_folder.Folder() / "sub"));
    EXPECT_FALSE(RemoveFile(nullptr));
    EXPECT_FALSE(RemoveFile(""));
}

TEST_F(Files, ASafeReplacementEndToEnd) {
    m_folder.Write("target", "old\r\n");
    const std::string target = m_folder.Path("target");
    char followed[path_size], fresh[path_size];
    ASSERT_TRUE(FollowLinks(target.c_str(), followed, sizeof followed));
    ASSERT_TRUE(CreateBeside(followed, fresh, sizeof fresh));
    std::FILE *stream = OpenText(fresh, "w");
    ASSERT_NE(stream, nullptr);
    std::fputs("new\n", stream);
    EXPECT_TRUE(FlushToDisk(stream));
    EXPECT_EQ(std::fclose(stream), 0);
    EXPECT_TRUE(CopyMode(followed, fresh));
    EXPECT_TRUE(MoveOver(fresh, followed));
    EXPECT_EQ(m_folder.Read("target"), "new\r\n");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder.Folder()), {}), 1);
}

} // namespace
