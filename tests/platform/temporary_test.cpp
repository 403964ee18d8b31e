// Temporary folder, temporary names, the tick count and unique identifiers: what holds on every platform.
#include "platform/temporary.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "golden_table.h"
#include "platform/files.h"
#include "platform/temp_folder.h"

namespace {

using zr::platform::CreateUuid;
using zr::platform::FileStatus;
using zr::platform::GetFileStatus;
using zr::platform::path_size;
using zr::platform::Services;
using zr::platform::services;
using zr::platform::TempFileName;
using zr::platform::TickCount;
using zr::platform::Uuid;

std::string TempName(const char *folder, const char *prefix, unsigned unique, unsigned &number) {
    char out[path_size];
    std::memset(out, '#', sizeof out);
    number = TempFileName(folder, prefix, unique, out);
    EXPECT_NE(std::memchr(out, 0, sizeof out), nullptr);
    return out;
}

std::string TempName(const std::string &folder, const char *prefix, unsigned unique) {
    unsigned number = 0;
    return TempName(folder.c_str(), prefix, unique, number);
}

std::string UpperCase(std::string text) {
    for (char &c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

// A measured path, which lies in the folder of the measurement, moved to the folder of the test.
std::string Moved(std::string path, const std::string &folder) {
    for (const std::string root : {"C:\\woad", "C:/woad"})
        if (path.compare(0, root.size(), root) == 0)
            return folder + path.substr(root.size());
    return path;
}

class TempNames : public testing::Test {
protected:
    std::string Folder() const { return m_folder.Folder().string(); }
    std::ptrdiff_t FileCount() const {
        const std::filesystem::directory_iterator begin(m_folder.Folder()), end;
        return std::distance(begin, end);
    }

    TempFolder m_folder;
};

TEST(TempFolderPath, EndsWithOneSeparatorAndHasADrive) {
    char out[path_size];
    const std::size_t length = zr::platform::TempFolder(out, sizeof out);
    ASSERT_GT(length, 3U);
    EXPECT_EQ(std::strlen(out), length);
    EXPECT_EQ(out[1], ':');
    EXPECT_EQ(out[2], '\\');
    EXPECT_EQ(out[length - 1], '\\');
    EXPECT_NE(out[length - 2], '\\');
}

TEST(TempFolderPath, TooSmallBufferTellsTheSizeNeeded) {
    char out[path_size];
    const std::size_t length = zr::platform::TempFolder(out, sizeof out);
    char small[path_size];
    std::memset(small, '#', sizeof small);
    EXPECT_EQ(zr::platform::TempFolder(small, length), length + 1);
    EXPECT_STREQ(small, "");
    EXPECT_EQ(zr::platform::TempFolder(small, length + 1), length);
    EXPECT_STREQ(small, out);
    EXPECT_EQ(zr::platform::TempFolder(nullptr, 0), length + 1);
}

TEST_F(TempNames, MeasuredFormsHold) {
    std::filesystem::create_directory(m_folder.Folder() / "tmp");
    m_folder.Write("file.txt", "file");
    const CurrentFolder current(m_folder.Folder());
    int rows = 0;
    const GoldenTable table("win_gettempfilename.tsv");
    for (const GoldenTable::Row &row : table.Rows()) {
        const std::string path = Moved(row.at("path"), Folder());
        const bool made = row.at("exists_after") == "1";
        // Roots are no place to leave files in, and a folder with a point at its end is another one elsewhere.
        if (path == "C:" || path == Folder() + "\\tmp." || row.at("windows_documented").find("ret 0") == 0)
            continue;
        SCOPED_TRACE(row.at("path") + " " + row.at("unique"));
        ++rows;
        const unsigned unique = static_cast<unsigned>(std::strtoul(row.at("unique").c_str(), nullptr, 0));
        unsigned number = 0;
        const std::string name = TempName(path.c_str(), row.at("prefix").c_str(), unique, number);
        if (row.at("ret") == "0") {
            EXPECT_EQ(number, 0U);
            EXPECT_EQ(name, "");
            continue;
        }
        std::string form = Moved(row.at("name_form"), Folder());
        if (made) {
            EXPECT_NE(number, 0U);
            char digits[16];
            std::snprintf(digits, sizeof digits, "%X", number);
            form.replace(form.find("<unique>"), std::strlen("<unique>"), digits);
        } else {
            EXPECT_EQ(number, std::strtoul(row.at("ret").c_str(), nullptr, 10));
        }
        EXPECT_EQ(UpperCase(name), UpperCase(form));
        FileStatus status{};
        EXPECT_EQ(GetFileStatus(name.c_str(), status), made);
        EXPECT_TRUE(!made || (status.size == 0 && !status.folder));
    }
    EXPECT_GT(rows, 40);
}

TEST_F(TempNames, NumberLeavesNoFileAndMayBeTakenAlready) {
    const std::string name = TempName(Folder(), "zr_", 0x12);
    EXPECT_EQ(FileCount(), 0);
    m_folder.Write("zr_12.tmp", "taken");
    EXPECT_EQ(TempName(Folder(), "zr_", 0x12), name);
    EXPECT_EQ(m_folder.Read("zr_12.tmp"), "taken");
}

TEST_F(TempNames, PickedNamesAreDifferentAndTheirFilesEmpty) {
    std::set<std::string> names;
    for (int i = 0; i < 20; ++i)
        names.insert(TempName(Folder(), "zr_", 0));
    EXPECT_EQ(names.size(), 20U);
    EXPECT_EQ(FileCount(), 20);
    for (const std::string &name : names) {
        FileStatus status{};
        EXPECT_TRUE(GetFileStatus(name.c_str(), status));
        EXPECT_EQ(status.size, 0U);
    }
}

TEST_F(TempNames, NullAndEmptyAndOverlongFoldersFail) {
    unsigned number = 1;
    EXPECT_EQ(TempName(nullptr, "zr_", 1, number), "");
    EXPECT_EQ(number, 0U);
    EXPECT_EQ(TempName("", "zr_", 1), "");
    for (const std::size_t length : {259U, 260U, 10000U})
        EXPECT_EQ(TempName("C:\\" + std::string(length - 3, 'x'), "zr_", 1), "") << length;
}

TEST_F(TempNames, NullPrefixCountsAsEmpty) {
    EXPECT_EQ(TempName(Folder(), nullptr, 0x34), Folder() + "\\34.tmp");
}

// Up to 246 characters of folder have room for a name behind them.
TEST_F(TempNames, FolderMayHave246Characters) {
    std::string folder = Folder();
    while (folder.size() < 246) {
        const std::size_t length = std::min<std::size_t>(246 - folder.size() - 1, 60);
        folder += "/" + std::string(std::max<std::size_t>(length, 1), 'x');
        std::filesystem::create_directory(folder);
        if (folder.size() == 245) { // one character is no room for another level
            folder += "x";
            std::filesystem::create_directory(folder);
        }
    }
    ASSERT_EQ(folder.size(), 246U);
    EXPECT_EQ(TempName(folder, "zr_", 0x4321), folder + "\\zr_4321.tmp");
    EXPECT_EQ(TempName(folder + "\\", "zr_", 0x4321), "");
}

TEST(TickCounts, NeverRunBackwards) {
    const std::uint32_t before = TickCount();
    const std::uint32_t after = TickCount();
    EXPECT_LT(after - before, 60000U);
}

TEST(Uuids, AreRandomOnesAndDifferent) {
    std::set<std::string> seen;
    for (int i = 0; i < 50; ++i) {
        Uuid id{};
        ASSERT_EQ(CreateUuid(id), 0);
        EXPECT_EQ(id.data3 >> 12, 4);
        EXPECT_EQ(id.data4[0] >> 6, 2);
        seen.insert(std::string(reinterpret_cast<const char *>(&id), sizeof id));
    }
    EXPECT_EQ(seen.size(), 50U);
}

TEST(TemporaryServices, CanBeReplaced) {
    const Services before = services;
    services.temp_folder = [](char *, std::size_t) { return std::size_t{0}; };
    services.temp_file_name = [](const char *, const char *, unsigned unique, char *) { return unique; };
    services.tick_count = [] { return std::uint32_t{5}; };
    services.create_uuid = [](Uuid &) { return 1824; };
    Uuid id{};
    EXPECT_EQ(zr::platform::TempFolder(nullptr, 0), 0U);
    EXPECT_EQ(TempFileName(nullptr, nullptr, 7, nullptr), 7U);
    EXPECT_EQ(TickCount(), 5U);
    EXPECT_EQ(CreateUuid(id), 1824);
    services = before;
}

} // namespace
