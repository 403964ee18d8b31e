// Names in the system's temporary folder.
#include "files/temporary_name.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <list>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/files.h>

#include "files/names_fixture.h"
#include "golden_table.h"
#include "platform/desktop_tables.h"
#include "platform/temporary.h"

namespace {

namespace fs = std::filesystem;
using zr::files::NameByTickCount;
using zr::platform::services;
using zr::test::Error;
using zr::test::Message;
using zr::test::Reports;

std::string SmallLetters(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
    return text;
}

// The system's temporary folder is the test's, or whatever the test says.
class TemporaryName : public NamesFixture {
protected:
    void SetUp() override {
        s_folder = LibraryForm(Dir()) + "\\";
        s_length = 0;
        s_asked.clear();
        s_failures = 0;
        services.temp_folder = [](char *out, std::size_t size) {
            std::strncpy(out, s_folder.c_str(), size);
            return s_length != 0 ? s_length : s_folder.size();
        };
        services.temp_file_name = [](const char *folder, const char *prefix, unsigned unique, char *out) {
            s_asked.push_back(std::string(folder) + "|" + prefix + "|" + std::to_string(unique));
            if (s_failures > 0) {
                --s_failures;
                out[0] = 0;
                return 0U;
            }
            return zr::platform::backend::TempFileName(folder, prefix, unique, out);
        };
    }

    void TearDown() override {
        services = zr::platform::Services();
        NamesFixture::TearDown();
    }

    std::size_t Files() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(m_folder.Folder()), {}));
    }

    static inline std::string s_folder;
    static inline std::size_t s_length; // what the system answers; 0 for the length of the folder
    static inline std::vector<std::string> s_asked;
    static inline int s_failures; // how many names the system refuses
};

TEST_F(TemporaryName, IsThatOfANewEmptyFile) {
    char first[260], second[260];
    ASSERT_EQ(fio_tmpnam(first, sizeof first), first);
    ASSERT_EQ(fio_tmpnam(second, sizeof second), second);
    EXPECT_STRNE(first, second);
    EXPECT_EQ(Files(), 2U);
    const std::string path = first, name = path.substr(s_folder.size());
    EXPECT_EQ(path.substr(0, s_folder.size()), s_folder);
    EXPECT_EQ(Read(name), "");
    EXPECT_EQ(name.substr(0, 3), "zr_");
    EXPECT_EQ(name.substr(name.size() - 4), ".tmp");
    EXPECT_EQ(SmallLetters(name.substr(3, name.size() - 7)).find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_EQ(s_asked, std::vector<std::string>(2, s_folder + "|zr_|0"));
}

TEST_F(TemporaryName, IsCutToItsRoom) {
    char buffer[] = "########";
    EXPECT_EQ(fio_tmpnam(buffer, 5), buffer);
    EXPECT_EQ(std::string(buffer), s_folder.substr(0, 4));
    EXPECT_EQ(std::string(buffer + 5), "###");
    EXPECT_EQ(fio_tmpnam(buffer, 1), buffer);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(Files(), 2U); // they are the caller's
}

TEST_F(TemporaryName, WithoutRoom_MakesNothing) {
    for (const auto function : {zr::files::NameOfTemporaryFile, NameByTickCount}) {
        char buffer[] = "kept";
        EXPECT_EQ(function(buffer, 0), nullptr);
        EXPECT_EQ(function(buffer, -1), nullptr);
        EXPECT_STREQ(buffer, "kept");
    }
    EXPECT_EQ(Files(), 0U);
}

TEST_F(TemporaryName, WithoutBuffer_IsReported) {
    for (const auto function : {zr::files::NameOfTemporaryFile, NameByTickCount}) {
        EXPECT_EQ(function(nullptr, 260), nullptr);
        EXPECT_EQ(m_reports.Take(), Reports{Message("Fio", "NULL-Parameter")});
    }
    EXPECT_EQ(Files(), 0U);
}

TEST_F(TemporaryName, WithoutFolder_IsReported) {
    for (const std::size_t length : {std::size_t{260}, std::size_t{261}, std::size_t{100000}}) {
        char buffer[] = "text";
        s_length = length;
        EXPECT_EQ(fio_tmpnam(buffer, sizeof buffer), nullptr);
        EXPECT_STREQ(buffer, "");
        EXPECT_EQ(m_reports.Take(), Reports{Error("Fio", "Failed GetTempPath call")});
    }
    s_length = 0;
    s_folder.clear();
    char buffer[] = "text";
    EXPECT_EQ(fio_tmpnam(buffer, sizeof buffer), nullptr);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(m_reports.Take(), Reports{Error("Fio", "Failed GetTempPath call")});
    EXPECT_TRUE(s_asked.empty());
}

TEST_F(TemporaryName, FolderThatIsMissing_IsMade) {
    const std::string folder = s_folder;
    s_folder += "one\\two\\";
    char buffer[260];
    ASSERT_EQ(fio_tmpnam(buffer, sizeof buffer), buffer);
    EXPECT_EQ(fio_exist("", buffer), 1);
    EXPECT_EQ(std::string(buffer).substr(0, s_folder.size()), s_folder);
    EXPECT_EQ(s_asked.size(), 2U);
}

TEST_F(TemporaryName, SecondRefusal_IsReported) {
    char buffer[260] = "text";
    s_failures = 1;
    EXPECT_EQ(fio_tmpnam(buffer, sizeof buffer), buffer);
    s_failures = 2;
    EXPECT_EQ(fio_tmpnam(buffer, sizeof buffer), nullptr);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(m_reports.Take(), Reports{Error("Fio", "Failed GetTempFileName call")});
    EXPECT_EQ(s_asked.size(), 4U);
    EXPECT_EQ(Files(), 1U);
}

TEST_F(TemporaryName, FolderThatCantBe_IsReported) {
    Write("file");
    char buffer[260];
    for (const std::string &folder :
         {s_folder + "file\\", std::string("Q:\\x\\"), "C:\\" + std::string(255, 'x') + "\\"}) { // the last has 259
        s_folder = folder;
        EXPECT_EQ(fio_tmpnam(buffer, sizeof buffer), nullptr);
        EXPECT_STREQ(buffer, "");
        EXPECT_EQ(m_reports.Take(), Reports{Error("Fio", "Failed GetTempFileName call")});
        EXPECT_EQ(NameByTickCount(buffer, sizeof buffer), nullptr);
        EXPECT_EQ(m_reports.Take(), Reports{Error("Fio", "Failed GetTempFileName call")});
        SetUp();
    }
    EXPECT_EQ(Files(), 1U);
}

TEST_F(TemporaryName, ByTickCount_MakesNoFile) {
    char buffer[260];
    services.tick_count = [] { return std::uint32_t{0x7654ABCD}; };
    ASSERT_EQ(NameByTickCount(buffer, sizeof buffer), buffer);
    EXPECT_EQ(SmallLetters(std::string(buffer).substr(s_folder.size())), "zr_abcd.tmp");
    services.tick_count = [] { return std::uint32_t{0x10000}; };
    ASSERT_EQ(NameByTickCount(buffer, sizeof buffer), buffer);
    EXPECT_EQ(std::string(buffer), s_folder + "zr_1.tmp");
    EXPECT_EQ(Files(), 0U);
    services.tick_count = zr::platform::backend::TickCount;
    EXPECT_EQ(NameByTickCount(buffer, sizeof buffer), buffer);
    EXPECT_EQ(Files(), 0U);
}

// What was measured on the desktop, for our prefix and the numbers that make no file.
TEST_F(TemporaryName, MeasuredForms) {
    MakeFolders("tmp");
    static std::uint32_t ticks;
    services.tick_count = [] { return ticks; };
    const std::string measured = "C:\\woad\\tmp";
    int checked = 0;
    const GoldenTable table("win_gettempfilename.tsv");
    for (const GoldenTable::Row &row : table.Rows()) {
        const std::string folder = row.at("path"), name = row.at("name_form");
        const bool makes_file = row.at("ret") == "unique";
        ticks = static_cast<std::uint32_t>(std::stoul(row.at("unique"), nullptr, 0));
        if (row.at("prefix") != "zr_" || makes_file || folder.rfind(measured, 0) != 0 || name == "\\N")
            continue;
        if (folder.find_last_not_of(".\\") != measured.size() - 1 || folder.back() == '.')
            continue;
        s_folder = LibraryForm(Path("tmp")) + folder.substr(measured.size());
        char buffer[260];
        ASSERT_EQ(NameByTickCount(buffer, sizeof buffer), buffer);
        EXPECT_EQ(SmallLetters(buffer), SmallLetters(LibraryForm(Path("tmp")) + name.substr(measured.size())));
        ++checked;
    }
    EXPECT_GT(checked, 5);
}

// Variables of the environment, put back at the end.
class Environment {
public:
    ~Environment() {
        for (const auto &[name, value] : m_before)
            Put(name, value);
    }
    // The empty text is no value.
    void Set(const std::string &name, const std::string &value) {
        const char *before = std::getenv(name.c_str());
        m_before.emplace(name, before != nullptr ? before : "");
        Put(name, value);
    }

private:
    static void Put(const std::string &name, const std::string &value) {
        static std::list<std::string> variables; // the environment keeps their texts
        putenv(variables.emplace_back(name + "=" + value).data());
    }
    std::map<std::string, std::string> m_before;
};

// A path of the table with the folder `root` in place of "C:\woad".
std::string Moved(const std::string &path, const std::string &root) {
    std::string moved = AtRoot(path, root);
    const std::size_t inner = moved.find("woad", root.size());
    return inner == std::string::npos ? moved : moved.replace(inner, 4, root.substr(root.rfind('\\') + 1));
}

TEST_F(TemporaryName, MeasuredFoldersOfTheEnvironment) {
    services = zr::platform::Services();
    MakeFolders("tmp");
    const std::string root = LibraryForm(Dir());
    const CurrentFolder here(m_folder.Folder());
    Environment environment;
    int checked = 0;
    const GoldenTable table("win_gettemppath.tsv");
    for (const GoldenTable::Row &row : table.Rows()) {
        const std::string &variable = row.at("TMP"), &measured = row.at("result");
        if (OnDesktop()) {
            for (const char *name : {"TMP", "TEMP", "USERPROFILE"})
                environment.Set(name, row.at(name) == "\\N" ? "" : Moved(row.at(name), root));
        } else { // one variable, with a path of the host
            if (variable == "\\N" || variable == "C:")
                continue;
            std::string host = Moved(variable, root).substr(variable[1] == ':' ? 2 : 0);
            std::replace(host.begin(), host.end(), '\\', '/');
            environment.Set("TMPDIR", host);
        }
        SCOPED_TRACE(variable + " " + row.at("buflen"));
        char folder[260], name[260];
        const std::size_t length = zr::platform::TempFolder(folder, sizeof folder);
        if (row.at("buflen") != "260") { // a row on the room needed: its path has 12 characters
            const std::size_t size = row.at("buflen") == "0" ? 0 : std::stoul(row.at("buflen")) - 12 + length;
            char small[260];
            EXPECT_EQ(zr::platform::TempFolder(small, size), std::stoul(row.at("ret")) - 12 + length);
            EXPECT_TRUE(size == 0 || std::string(small) == (measured == "\\N" ? "" : folder));
        } else {
            EXPECT_EQ(UpperText(folder), UpperText(Moved(measured, root)));
        }
        if (UpperText(folder).rfind(UpperText(root), 0) == 0) { // others are not ours to write in
            ASSERT_EQ(fio_tmpnam(name, sizeof name), name);
            EXPECT_EQ(std::string(name).substr(0, length), folder);
            EXPECT_EQ(fio_exist("", name), 1);
        }
        ++checked;
    }
    EXPECT_EQ(checked, OnDesktop() ? 12 : 9);
}

} // namespace
