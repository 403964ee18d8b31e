// Names under the rules of Windows, and what else only its back end promises.
#include <cstdio>
#include <string>

#include <io.h>
#include <windows.h>

#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/modules.h"
#include "platform/streams.h"
#include "platform/temp_folder.h"
#include "platform/tree_of_names.h"

namespace {

using namespace zr::platform;

// Whether the system itself refuses to write a read-only file: an emulation run by a superuser doesn't.
bool WriteProtectionHolds() {
    const TempFolder folder;
    folder.Write("file", "");
    const std::string path = folder.Path("file");
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    const bool holds = file == INVALID_HANDLE_VALUE;
    if (!holds)
        CloseHandle(file);
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    return holds;
}

TEST(WindowsNames, TableOfStatusHolds) {
    const TempFolder folder;
    const TreeOfNames tree(folder);
    const GoldenTable table("crt_stat.tsv");
    int checked = 0;
    for (const GoldenTable::Row &row : table.Rows())
        if (IsRowOfNewestRuntime(row) && tree.CanHold(row.at("path"))) {
            tree.CheckStatus(row);
            ++checked;
        }
    EXPECT_EQ(checked, 85);
}

TEST(WindowsNames, TableOfOpensHolds) {
    const GoldenTable table("crt_fopen.tsv");
    const bool holds = WriteProtectionHolds();
    int checked = 0;
    for (const GoldenTable::Row &row : table.Rows())
        // Rows with a known difference can't be shown on a system that has it.
        if (IsTextMode(row.at("mode")) && row.at("windows_documented").empty() &&
            (holds || row.at("path") != "readonly.txt" || row.at("mode") == "rt")) {
            const TempFolder folder;
            const TreeOfNames tree(folder);
            if (!tree.CanHold(row.at("path")))
                continue;
            tree.CheckOpen(row);
            ++checked;
        }
    EXPECT_EQ(checked, holds ? 55 : 53);
}

TEST(WindowsNames, HostPathHasBackslashes) {
    char host[path_size];
    ASSERT_TRUE(HostPath("c:/a\\b/\xE4", host, sizeof host));
    EXPECT_STREQ(host, "c:\\a\\b\\\xE4");
    ASSERT_TRUE(HostPath("//srv/share", host, sizeof host));
    EXPECT_STREQ(host, "\\\\srv\\share");
}

TEST(WindowsNames, CopyModeTakesTheAttributesOfProtection) {
    const TempFolder folder;
    folder.Write("from", "");
    folder.Write("to", "");
    const std::string from = folder.Path("from"), to = folder.Path("to");
    ASSERT_TRUE(SetFileAttributesA(from.c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN));
    EXPECT_TRUE(CopyMode(from.c_str(), to.c_str()));
    constexpr DWORD copied = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    EXPECT_EQ(GetFileAttributesA(to.c_str()) & copied, DWORD{FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN});
    ASSERT_TRUE(SetFileAttributesA(from.c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_TRUE(CopyMode(from.c_str(), to.c_str()));
    EXPECT_EQ(GetFileAttributesA(to.c_str()) & copied, 0U);
}

TEST(WindowsNames, ChildProcessesInheritNothing) {
    const TempFolder folder;
    std::FILE *stream = OpenText(folder.Path("file").c_str(), "w");
    ASSERT_NE(stream, nullptr);
    DWORD flags = HANDLE_FLAG_INHERIT;
    ASSERT_TRUE(GetHandleInformation(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))), &flags));
    EXPECT_EQ(flags & HANDLE_FLAG_INHERIT, 0U);
    std::fclose(stream);
}

int reports = 0;

TEST(WindowsNames, ReporterOfBadArgumentsIsTheRuntimesHandler) {
    InstallInvalidParameterReporter(nullptr); // what the library installed at load, if it did
    const auto before = _get_invalid_parameter_handler();
    InstallInvalidParameterReporter([](const wchar_t *, const wchar_t *) { ++reports; });
    const auto handler = _get_invalid_parameter_handler();
    ASSERT_NE(handler, nullptr);
    ASSERT_NE(handler, before);
    handler(nullptr, L"function", nullptr, 0, 0);
    EXPECT_EQ(reports, 1);
    InstallInvalidParameterReporter([](const wchar_t *, const wchar_t *) { reports += 10; });
    EXPECT_EQ(_get_invalid_parameter_handler(), handler);
    handler(nullptr, nullptr, nullptr, 0, 0);
    EXPECT_EQ(reports, 11);
    InstallInvalidParameterReporter(nullptr);
    EXPECT_EQ(_get_invalid_parameter_handler(), before);
}

} // namespace
