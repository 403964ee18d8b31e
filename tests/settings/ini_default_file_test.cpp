// Calls without a file: they mean the settings file of the installation.
#include <zrclb/ini.h>

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "settings/installation_fixture.h"

namespace {

class IniDefaultFile : public InstallationFixture {
protected:
    std::string Settings() const { return m_folder.Read("zr/zr.zrini"); }
};

constexpr const char *no_file[] = {"", nullptr};

TEST_F(IniDefaultFile, EveryReadAndWrite_GoesToTheSettingsFile) {
    for (const char *file : no_file) {
        Write("zr\\zr.zrini");
        zr_long longs[] = {1, 2}, count = 2, number = 0, size = 9;
        double doubles[] = {1.5, 2.5}, real = 0;
        char text[10];
        EXPECT_EQ(ini_write_string(file, "S", "t", "x"), 0);
        EXPECT_EQ(ini_write_long(file, "S", "l", 7), 0);
        EXPECT_EQ(ini_write_double(file, "S", "d", 0.5), 0);
        EXPECT_EQ(ini_write_longs(file, "S", "ls", longs, 2), 0);
        EXPECT_EQ(ini_write_doubles(file, "S", "ds", doubles, 2), 0);
        EXPECT_EQ(ini_set_data_version(file, 1, 2, 3, 4), 0);
        EXPECT_EQ(Settings(), "[S]\r\nt=x\r\nl=7\r\nd=0.500000\r\nls=1,2\r\nds=1.5,2.5\r\n\r\n"
                              "[_Zr_Data_Version_Info_]\r\nVersion=1,2,3,4");
        EXPECT_EQ(ini_read_string(file, "S", "t", text, &size), 0);
        EXPECT_STREQ(text, "x");
        EXPECT_EQ(ini_read_long(file, "S", "l", &number), 0);
        EXPECT_EQ(number, 7);
        EXPECT_EQ(ini_read_double(file, "S", "d", &real), 0);
        EXPECT_EQ(real, 0.5);
        longs[1] = 0;
        EXPECT_EQ(ini_read_longs(file, "S", "ls", longs, &count), 0);
        EXPECT_EQ(longs[1], 2);
        doubles[1] = 0;
        EXPECT_EQ(ini_read_doubles(file, "S", "ds", doubles, &count), 0);
        EXPECT_EQ(doubles[1], 2.5);
        EXPECT_EQ(ini_get_data_version(file, nullptr, nullptr, nullptr, &number), 0);
        EXPECT_EQ(number, 4);
    }
    EXPECT_EQ(Reports(), Texts{});
}

// The file is missing, and a call without one does not make it.
TEST_F(IniDefaultFile, WithoutASettingsFile_NothingIsReadOrWritten) {
    for (const char *file : no_file) {
        zr_long number = 7, count = 1, size = 9;
        double real = 7;
        char text[10] = "-";
        EXPECT_EQ(ini_read_string(file, "S", "t", text, &size), INI_NO_FILE);
        EXPECT_EQ(ini_write_string(file, "S", "t", "x"), INI_NO_FILE);
        EXPECT_EQ(Reports(), (Texts{not_found, not_found, not_found, not_found})); // two for each call
        EXPECT_EQ(ini_read_long(file, "S", "l", &number), INI_NO_FILE);
        EXPECT_EQ(ini_read_double(file, "S", "l", &real), INI_NO_FILE);
        EXPECT_EQ(ini_read_longs(file, "S", "l", &number, &count), INI_NO_FILE);
        EXPECT_EQ(count, 0);
        EXPECT_EQ(ini_write_long(file, "S", "l", 7), INI_NO_FILE);
        EXPECT_STREQ(text, "-");
        EXPECT_EQ(number, 7);
        EXPECT_EQ(ini_get_data_version(file, &number, nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(number, 0);
        Reports();
    }
    EXPECT_FALSE(std::filesystem::exists(m_folder.Folder() / "zr" / "zr.zrini"));
}

// Nothing is deleted or renamed in a file that nobody named.
TEST_F(IniDefaultFile, DeletingAndRenaming_NeedAFile) {
    Write("zr\\zr.zrini", "[S]\na=1\n");
    for (const char *file : no_file) {
        EXPECT_EQ(ini_delete_entry(file, "S", "a"), INI_NO_FILE);
        EXPECT_EQ(ini_delete_section(file, "S"), INI_NO_FILE);
        EXPECT_EQ(ini_rename_section(file, "S", "T"), INI_NO_FILE);
        EXPECT_EQ(ini_rename_entry(file, "S", "a", "b"), INI_NO_FILE);
    }
    EXPECT_EQ(Settings(), "[S]\na=1\n");
    EXPECT_EQ(Reports(), Texts{});
}

TEST_F(IniDefaultFile, MalformedLine_IsReportedWithWhatTheCallerGave) {
    Write("zr\\zr.zrini", "[S]\nbad\na=1\n");
    zr_long number = 0;
    for (const char *file : no_file)
        EXPECT_EQ(ini_read_long(file, "S", "a", &number), 0);
    const std::string first = "Incorrect entry's format. '=' is not found. File below:";
    EXPECT_EQ(Reports(), (Texts{first, "|S|a", first, "S|a"}));
}

} // namespace
