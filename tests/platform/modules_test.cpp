// Module handle, program path and the reporter of bad arguments.
#include "platform/modules.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "platform/files.h"

namespace {

using namespace zr::platform;

TEST(Modules, StoredHandleComesBack) {
    void *before = StoredModule();
    int module = 0;
    StoreModule(&module);
    EXPECT_EQ(StoredModule(), &module);
    StoreModule(before);
    EXPECT_EQ(StoredModule(), before);
}

TEST(Modules, ProgramPathNamesThisTest) {
    char path[path_size];
    const std::size_t length = ProgramPath(path, sizeof path);
    ASSERT_GT(length, 0U);
    EXPECT_EQ(length, std::strlen(path));
    EXPECT_NE(std::string(path).find("modules_test"), std::string::npos);
    EXPECT_EQ(std::string(path).substr(1, 2), ":\\");
    EXPECT_EQ(std::string(path).find('/'), std::string::npos);
    FileStatus status{};
    ASSERT_TRUE(GetFileStatus(path, status));
    EXPECT_GT(status.size, 1000U);
}

TEST(Modules, ProgramPathThatDoesNotFitIsEmpty) {
    char path[path_size], small[path_size];
    const std::size_t length = ProgramPath(path, sizeof path);
    EXPECT_EQ(ProgramPath(small, length + 1), length);
    EXPECT_STREQ(small, path);
    for (const std::size_t size : {length, std::size_t{5}, std::size_t{1}}) {
        std::strcpy(small, "before");
        EXPECT_EQ(ProgramPath(small, size), 0U);
        EXPECT_STREQ(small, "");
    }
    EXPECT_EQ(ProgramPath(small, 0), 0U);
    EXPECT_EQ(ProgramPath(nullptr, 100), 0U);
}

TEST(Modules, ReporterCanBeInstalledReplacedAndRemoved) {
    InstallInvalidParameterReporter([](const wchar_t *, const wchar_t *) {});
    InstallInvalidParameterReporter([](const wchar_t *, const wchar_t *) {});
    InstallInvalidParameterReporter(nullptr);
    InstallInvalidParameterReporter(nullptr);
    SUCCEED();
}

} // namespace
