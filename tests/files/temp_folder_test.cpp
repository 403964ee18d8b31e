// Making and deleting temporary folders, with the system's part replaced: nothing waits.
#include <zrclb/files.h>
#include <zrclb/folders.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

#include "env/report_capture.h"
#include "files/temp_folder.h"
#include "golden_table.h"
#include "platform/file_verbs.h"
#include "platform/files.h"
#include "platform/services.h"
#include "platform/shell_paths.h"
#include "platform/temporary.h"

namespace {

using zr::platform::path_size;
using zr::platform::services;
using zr::platform::Uuid;
using zr::test::Error;
using zr::test::Message;
using zr::test::ReportCapture;
using zr::test::Reports;

namespace fs = std::filesystem;

std::string system_folder; // what the system calls its temporary folder
std::uint32_t ticks = 0;   // of the clock that goes on with each look
std::uint32_t step = 1;
std::vector<zr_ulong> waits;

std::size_t FixedFolder(char *out, std::size_t size) {
    if (system_folder.size() >= size)
        return system_folder.size() + 1;
    std::strcpy(out, system_folder.c_str());
    return system_folder.size();
}

int FixedUuid(Uuid &out) {
    out = {0x12AB34, 0x5CD, 0xEF01, {0x0A, 0x02, 0x03, 0x04, 0x05, 0x06, 0xFF, 0x00}};
    return 0;
}

class TempDirectories : public testing::Test {
protected:
    void SetUp() override {
        system_folder = LibraryPath(m_folder.Folder()) + "\\";
        ticks = 0x100;
        step = 1;
        waits.clear();
        services.temp_folder = FixedFolder;
        services.tick_count = [] { return (ticks += step) - step; };
        services.create_uuid = FixedUuid;
        zr::files::temp_folder_calls.wait = [](zr_ulong milliseconds) noexcept { waits.push_back(milliseconds); };
    }
    void TearDown() override {
        services = m_services;
        zr::files::temp_folder_calls = m_calls;
    }

    int Create() {
        std::memset(m_buffer, 0, sizeof m_buffer);
        return fio_CreateTempDirectory(m_buffer, sizeof m_buffer);
    }
    bool IsFolder(const std::string &name) const { return fs::is_directory(m_folder.Folder() / name); }
    std::ptrdiff_t EntryCount() const {
        return std::distance(fs::directory_iterator(m_folder.Folder()), fs::directory_iterator());
    }
    // Takes the only name that the clock has.
    void BlockTheClock() {
        step = 0;
        m_folder.Write("zr_100.tmp", "taken");
    }
    Reports Taken() { return m_capture.Take(); }

    TempFolder m_folder;
    ReportCapture m_capture;
    char m_buffer[path_size];
    const zr::platform::Services m_services = services;
    const zr::files::TempFolderCalls m_calls = zr::files::temp_folder_calls;
};

std::string UuidName() {
    const GoldenTable table("win_uuid.tsv");
    for (const GoldenTable::Row &row : table.Rows())
        if (row.at("call").find("format ") == 0)
            return row.at("text_form");
    return "no such row";
}

TEST_F(TempDirectories, AreNamedByTheTickCount) {
    EXPECT_EQ(Create(), 1);
    EXPECT_EQ(m_buffer, system_folder + "zr_100.tmp");
    EXPECT_TRUE(IsFolder("zr_100.tmp"));
    EXPECT_TRUE(waits.empty());
    EXPECT_EQ(Create(), 1);
    EXPECT_TRUE(IsFolder("zr_101.tmp"));
    EXPECT_EQ(Taken(), Reports{});
}

TEST_F(TempDirectories, WaitWhileNamesAreTaken) {
    for (const char *name : {"zr_100.tmp", "zr_101.tmp", "zr_102.tmp"})
        m_folder.Write(name, "taken");
    EXPECT_EQ(Create(), 1);
    EXPECT_EQ(m_buffer, system_folder + "zr_103.tmp");
    EXPECT_EQ(waits, std::vector<zr_ulong>(3, 100));
    EXPECT_EQ(m_folder.Read("zr_100.tmp"), "taken");
}

TEST_F(TempDirectories, GoOverToAnIdentifierAfterFiftyTries) {
    BlockTheClock();
    EXPECT_EQ(Create(), 1);
    EXPECT_EQ(waits, std::vector<zr_ulong>(50, 100));
    EXPECT_EQ(m_buffer, system_folder + UuidName());
    EXPECT_TRUE(IsFolder(UuidName()));
    EXPECT_EQ(Create(), 0); // that one is taken now, too
    EXPECT_STREQ(m_buffer, "");
    EXPECT_EQ(Taken(), Reports{});
}

TEST_F(TempDirectories, IdentifierOfThisMachineWillDo) {
    BlockTheClock();
    services.create_uuid = [](Uuid &out) { return FixedUuid(out) + 1824; };
    EXPECT_EQ(Create(), 1);
    EXPECT_EQ(m_buffer, system_folder + UuidName());
}

TEST_F(TempDirectories, FailWithoutIdentifier) {
    BlockTheClock();
    services.create_uuid = [](Uuid &out) { return FixedUuid(out) + 1739; };
    EXPECT_EQ(Create(), 0);
    EXPECT_EQ(EntryCount(), 1);
    EXPECT_EQ(Taken(), Reports{});
}

TEST_F(TempDirectories, NameThatNeverComesIsReportedEachTime) {
    services.temp_file_name = [](const char *, const char *, unsigned, char *out) {
        out[0] = 0;
        return 0U;
    };
    EXPECT_EQ(Create(), 1);
    EXPECT_EQ(m_buffer, system_folder + UuidName());
    EXPECT_TRUE(waits.empty());
    Reports reports = Taken();
    EXPECT_EQ(std::erase(reports, Message("Fio", "Can't receive temporary file name.")), 50U);
    EXPECT_EQ(std::erase(reports, Error("Fio", "Failed GetTempFileName call")), 50U);
    EXPECT_EQ(reports, Reports{});
}

TEST_F(TempDirectories, EmptyNameCountsAsNone) {
    services.temp_file_name = [](const char *, const char *, unsigned, char *out) {
        out[0] = 0;
        return 1U;
    };
    EXPECT_EQ(Create(), 1);
    EXPECT_EQ(Taken(), Reports(50, Message("Fio", "Can't receive temporary file name.")));
}

TEST_F(TempDirectories, NoSystemFolderMeansNone) {
    services.temp_folder = [](char *, std::size_t) { return std::size_t{0}; };
    EXPECT_EQ(Create(), 0);
    services.temp_folder = [](char *, std::size_t) { return std::size_t{260}; };
    EXPECT_EQ(Create(), 0);
    Reports reports = Taken();
    EXPECT_EQ(std::erase(reports, Message("Fio", "Can't receive temporary file name.")), 100U);
    EXPECT_EQ(std::erase(reports, Error("Fio", "Failed GetTempPath call")), 100U);
    EXPECT_EQ(reports, Reports{});
}

TEST_F(TempDirectories, SmallBufferLeavesTheFolder) {
    char small[4] = "abc";
    EXPECT_EQ(fio_CreateTempDirectory(small, sizeof small), 0);
    EXPECT_STREQ(small, "abc");
    EXPECT_TRUE(IsFolder("zr_100.tmp"));
    EXPECT_EQ(fio_CreateTempDirectory(small, 0), 0);
    EXPECT_EQ(fio_CreateTempDirectory(small, -5), 0);
    EXPECT_STREQ(small, "abc");
    EXPECT_EQ(Taken(), Reports(3, Message("Fio", "Puffer zu klein.")));
}

TEST_F(TempDirectories, BufferHoldsNameAndTerminatorExactly) {
    const int length = static_cast<int>(system_folder.size() + std::strlen("zr_100.tmp"));
    EXPECT_EQ(fio_CreateTempDirectory(m_buffer, length), 0);
    EXPECT_EQ(fio_CreateTempDirectory(m_buffer, length + 1), 1);
    EXPECT_EQ(m_buffer, system_folder + "zr_101.tmp");
    EXPECT_EQ(Taken(), Reports{Message("Fio", "Puffer zu klein.")});
}

TEST_F(TempDirectories, IdentifierThatDoesNotFitLeavesNoFolder) {
    BlockTheClock();
    EXPECT_EQ(fio_CreateTempDirectory(m_buffer, 20), 0);
    EXPECT_EQ(EntryCount(), 1);
    EXPECT_EQ(Taken(), Reports{Message("Fio", "Puffer zu klein.")});
}

TEST_F(TempDirectories, IdentifierThatNoPathHoldsMakesNone) {
    system_folder += std::string(238 - system_folder.size(), 'x') + "\\";
    services.temp_file_name = [](const char *, const char *, unsigned, char *out) {
        out[0] = 0;
        return 1U;
    };
    EXPECT_EQ(Create(), 0);
    EXPECT_STREQ(m_buffer, "");
    EXPECT_EQ(EntryCount(), 0);
    Reports reports = Taken();
    std::erase(reports, Message("Fio", "Can't receive temporary file name."));
    EXPECT_EQ(reports, Reports{Message("Fio", "Buffer zu klein")});
}

TEST_F(TempDirectories, PathOfThreeCharactersCountsAsNone) {
    const CurrentFolder current(m_folder.Folder());
    services.temp_file_name = [](const char *, const char *, unsigned, char *out) {
        std::strcpy(out, "abc");
        return 1U;
    };
    EXPECT_EQ(Create(), 0);
    EXPECT_STREQ(m_buffer, "abc");
    EXPECT_TRUE(IsFolder("abc"));
}

TEST_F(TempDirectories, PausesAreThoseOfTheClock) {
    EXPECT_EQ(m_calls.wait, zr_wait);
}

TEST_F(TempDirectories, NullBufferMakesNone) {
    EXPECT_EQ(fio_CreateTempDirectory(nullptr, 260), 0);
    EXPECT_EQ(EntryCount(), 0);
}

TEST_F(TempDirectories, AreDeletedWithAllThatLiesInThem) {
    ASSERT_EQ(Create(), 1);
    fs::create_directories(m_folder.Folder() / "zr_100.tmp" / "sub");
    m_folder.Write("zr_100.tmp/sub/x", "X");
    EXPECT_EQ(fio_DeleteTempDirectory(m_buffer), 1);
    EXPECT_FALSE(IsFolder("zr_100.tmp"));
    EXPECT_EQ(fio_DeleteTempDirectory(m_buffer), 0); // there is none any more
    EXPECT_EQ(Taken(), Reports{});
}

TEST_F(TempDirectories, FoldersElsewhereAreRefused) {
    const TempFolder other;
    other.Write("kept", "kept");
    fs::create_directory(m_folder.Folder() / "sub");
    m_folder.Write("sub/kept", "kept");
    const std::string own = system_folder.substr(0, system_folder.size() - 1);
    const std::string name = m_folder.Folder().filename().string();
    std::string slashes = system_folder + "sub";
    std::replace(slashes.begin(), slashes.end(), '\\', '/');
    const std::vector<std::string> refused = {LibraryPath(other.Folder()),
                                              own,
                                              system_folder,
                                              system_folder + "\\",
                                              system_folder + ".",
                                              system_folder + "..",
                                              system_folder + "sub\\..",
                                              system_folder + "sub/../.",
                                              system_folder + "..\\" + name + "\\sub",
                                              system_folder + "sub\\..\\..\\" + other.Folder().filename().string(),
                                              system_folder + "...",
                                              system_folder + ".. ",
                                              system_folder + " \\sub",
                                              slashes,
                                              own + "x",
                                              "C:\\",
                                              "",
                                              "sub",
                                              std::string(10000, 'x')};
    for (const std::string &dir : refused) {
        EXPECT_EQ(fio_DeleteTempDirectory(dir.c_str()), 0);
        Reports expected{Message("Fio", "Directory is not a temporary directory! ", dir.c_str())};
        if (dir.size() < 200)
            EXPECT_EQ(Taken(), expected);
        else
            EXPECT_EQ(Taken().size(), 1U);
    }
    EXPECT_EQ(other.Read("kept") + m_folder.Read("sub/kept"), "keptkept");
}

TEST_F(TempDirectories, ThatHoldWhatIsReadOnlyStay) {
    ASSERT_EQ(Create(), 1);
    m_folder.Write("zr_100.tmp/guarded", "kept");
    const std::string guarded = std::string(m_buffer) + "\\guarded";
    ASSERT_EQ(zr::platform::SetAttributes(guarded.c_str(), zr::platform::attribute_read_only), 0);
    EXPECT_EQ(fio_DeleteTempDirectory(m_buffer), 0);
    EXPECT_EQ(m_folder.Read("zr_100.tmp/guarded"), "kept");
    ASSERT_EQ(fio_RemoveFileAttributes(m_buffer, zr::platform::attribute_read_only), 1);
    EXPECT_EQ(fio_DeleteTempDirectory(m_buffer), 1);
    EXPECT_EQ(Taken(), Reports{});
}

TEST_F(TempDirectories, LinkGoesWithoutItsTarget) {
    const TempFolder other;
    other.Write("kept", "kept");
    std::error_code refused;
    fs::create_directory_symlink(other.Folder(), m_folder.Folder() / "link", refused);
    if (refused)
        GTEST_SKIP() << "no links can be made here";
    EXPECT_EQ(fio_DeleteTempDirectory((system_folder + "link").c_str()), 1);
    EXPECT_FALSE(fs::is_symlink(m_folder.Folder() / "link"));
    EXPECT_EQ(other.Read("kept"), "kept");
}

TEST_F(TempDirectories, NamesBeyondAsciiAndOverlongOnes) {
    const std::string letters = system_folder + "\xE4\x80\xFF";
    ASSERT_EQ(fio_mkdir(letters.c_str()), 0);
    EXPECT_EQ(fio_DeleteTempDirectory(letters.c_str()), 1);
    EXPECT_EQ(EntryCount(), 0);
    fs::create_directory(m_folder.Folder() / "sub");
    for (const std::size_t length : {255U, 256U, 259U, 260U, 10000U})
        EXPECT_EQ(fio_DeleteTempDirectory((system_folder + std::string(length - system_folder.size(), 'x')).c_str()),
                  0);
    EXPECT_EQ(fio_DeleteTempDirectory((system_folder + "sub\\" + std::string(300, 'x')).c_str()), 0);
    EXPECT_TRUE(IsFolder("sub"));
    Taken();
}

TEST_F(TempDirectories, CaseOfTheSystemFolderCounts) {
    fs::create_directory(m_folder.Folder() / "sub");
    std::string path = system_folder + "sub";
    path[0] = 'c';
    EXPECT_EQ(fio_DeleteTempDirectory(path.c_str()), 0);
    EXPECT_TRUE(IsFolder("sub"));
    EXPECT_EQ(Taken(), Reports{Message("Fio", "Directory is not a temporary directory! ", path.c_str())});
}

TEST_F(TempDirectories, WayThatComesBackIsNoWayOut) {
    fs::create_directory(m_folder.Folder() / "sub");
    EXPECT_EQ(fio_DeleteTempDirectory((system_folder + "other\\..\\sub").c_str()), 1);
    EXPECT_FALSE(IsFolder("sub"));
}

TEST_F(TempDirectories, DeletionWithoutSystemFolderIsReported) {
    EXPECT_EQ(fio_DeleteTempDirectory(nullptr), 0);
    EXPECT_EQ(Taken(), Reports{});
    services.temp_folder = [](char *, std::size_t) { return std::size_t{0}; };
    EXPECT_EQ(fio_DeleteTempDirectory(system_folder.c_str()), 0);
    services.temp_folder = [](char *, std::size_t) { return std::size_t{260}; };
    EXPECT_EQ(fio_DeleteTempDirectory(system_folder.c_str()), 0);
    EXPECT_EQ(Taken(), Reports(2, Message("Fio", "GetTempPath failed")));
    system_folder = "C:\\" + std::string(255, 'x') + "\\"; // 259 characters
    services.temp_folder = FixedFolder;
    EXPECT_EQ(fio_DeleteTempDirectory("C:\\x"), 0);
    EXPECT_EQ(Taken(), Reports{Message("Fio", "Directory is not a temporary directory! ", "C:\\x")});
}

TEST(TempDirectoriesOfTheSystem, AreMadeAndDeleted) {
    char path[path_size] = "";
    ASSERT_EQ(fio_CreateTempDirectory(path, sizeof path), 1);
    char host[path_size];
    ASSERT_TRUE(zr::platform::HostPath(path, host, sizeof host));
    EXPECT_TRUE(fs::is_directory(host));
    EXPECT_EQ(fio_DeleteTempDirectory(path), 1);
    EXPECT_FALSE(fs::exists(host));
}

} // namespace
