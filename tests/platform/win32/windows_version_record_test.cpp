// Version records of files on the desktop.
#include <string>

#include <gtest/gtest.h>

#include <zrclb/version.h>

#include "platform/library_record.h"
#include "platform/services.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;

std::string module_path;

class VersionRecord : public testing::Test {
protected:
    void SetUp() override {
        services.module_path = [](char *out, std::size_t size) -> std::size_t {
            const std::size_t length = module_path.copy(out, size - 1);
            out[length] = 0;
            return length;
        };
    }
    void TearDown() override { services = Services(); }
};

TEST_F(VersionRecord, OfTheSystemsOwnFilesIsRead) {
    module_path = "C:\\windows\\system32\\kernel32.dll";
    FileVersion version;
    ASSERT_TRUE(GetFileVersion(version));
    EXPECT_GE(version.a, 5);
    EXPECT_LE(version.a, 20);
}

TEST_F(VersionRecord, OfOtherFilesIsNotThere) {
    const TempFolder folder;
    FileVersion version;
    folder.Write("text", "no record");
    for (const std::string &path :
         {folder.Path("text"), folder.Path("missing"), folder.Folder().string(), std::string()}) {
        module_path = path;
        EXPECT_FALSE(GetFileVersion(version)) << path;
    }
    services = Services(); // this program's own
    EXPECT_FALSE(GetFileVersion(version));
}

} // namespace
