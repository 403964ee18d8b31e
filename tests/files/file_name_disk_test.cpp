// The file name value: whether its file exists, and names of temporary files.
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/file_name.hpp>
#include <zrclb/paths.h>

#include "env/report_capture.h"
#include "platform/services.h"
#include "platform/temp_folder.h"

namespace {

using Texts = std::vector<std::string>;

TEST(FileNameDisk, Exist_LooksAtTheDisk) {
    const TempFolder folder;
    folder.Write("a.txt", "x");
    CZrFileName file;
    EXPECT_TRUE(file.SetFileName(folder.Path("a.txt").c_str(), true));
    EXPECT_TRUE(file.Exist());
    EXPECT_TRUE(file.SetExt("no"));
    EXPECT_FALSE(file.Exist());
    file.SetFileName("", true);
    EXPECT_TRUE(file.Exist()) << "the folder itself";
    EXPECT_TRUE(file.AddDir("no"));
    EXPECT_FALSE(file.Exist());
}

TEST(FileNameDisk, TemporaryFileName_NamesAFileThatTheSystemMade) {
    CZrFileName file = CZrFileName::GetTemporaryFileName();
    EXPECT_EQ(file.GetError(), ZR_FILE_NAME_OK);
    EXPECT_TRUE(file.Exist());
    EXPECT_EQ(std::string(file.GetFileName(false)).substr(0, 3), "zr_");
    const std::string first = file.GetPath();
    EXPECT_TRUE(file.SetTemporaryFileName());
    EXPECT_NE(file.GetPath(), first);
    EXPECT_TRUE(file.Exist());
    for (const std::string &path : {first, std::string(file.GetPath())}) {
        char host[1024];
        ASSERT_EQ(zr_HostPath(path.c_str(), host, sizeof host), 1);
        EXPECT_EQ(std::filesystem::file_size(host), 0U);
        EXPECT_TRUE(std::filesystem::remove(host));
    }
    EXPECT_FALSE(file.Exist());
}

TEST(FileNameDisk, TemporaryFileName_FailureChangesNothing) {
    zr::platform::services.temp_folder = [](char *, std::size_t) -> std::size_t { return 0; };
    zr::test::ReportCapture capture;
    CZrFileName file("a", "b", "c", "D:");
    EXPECT_FALSE(file.SetTemporaryFileName());
    EXPECT_EQ(TextsOf(capture), Texts({"Failed GetTempPath call"}));
    EXPECT_STREQ(file.GetPath(), "D:\\c\\a.b");
    EXPECT_STREQ(CZrFileName::GetTemporaryFileName().GetPath(), "");
    EXPECT_EQ(TextsOf(capture), Texts({"Failed GetTempPath call"}));
    zr::platform::services = zr::platform::Services();
}

} // namespace
