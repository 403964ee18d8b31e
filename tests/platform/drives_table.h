// Replays the steps of the table of drives and current folders.
#ifndef TESTS_PLATFORM_DRIVES_TABLE_H
#define TESTS_PLATFORM_DRIVES_TABLE_H

#include <algorithm>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "golden_table.h"
#include "platform/desktop_tables.h"
#include "platform/drives.h"

// The value of errno that the desktop's runtime has for a code.
inline int RuntimeErrorOf(int code) {
    using namespace zr::platform;
    switch (code) {
    case done:
        return 0;
    case file_not_found:
    case path_not_found:
        return 2;
    case not_a_folder:
    case invalid_name:
        return 22;
    default:
        return 13;
    }
}

inline std::string FolderNow() {
    char folder[zr::platform::path_size];
    return zr::platform::CurrentFolder(folder, sizeof folder) ? folder : "(none)";
}

// The current folder of a drive, found as the runtime finds it.
inline std::string FolderOf(int drive) {
    const int before = zr::platform::CurrentDrive();
    if (!zr::platform::SetCurrentDrive(drive))
        return "(none)";
    const std::string folder = FolderNow();
    zr::platform::SetCurrentDrive(before);
    return folder;
}

// An argument of the table with the folder `base`, "C:\..." in place of "C:\woad" and of the same folder named "work"
// below the root.
inline std::string StepArgument(std::string argument, const std::string &base) {
    if (argument == "..") { // from the folder, which may lie deeper here, to the root
        std::string up = "..";
        for (std::size_t i = 3; i < base.size(); ++i)
            up += base[i] == '\\' ? "\\.." : "";
        return up;
    }
    const std::string upper = UpperText(argument);
    for (const char *name : {"WORK", "WOAD"})
        if (const std::size_t at = upper.find(name); at != std::string::npos)
            return argument.replace(at, 4, base.substr(3));
    return argument;
}

// Does the steps with `folder` in place of "C:\woad", those on drive D only if `with_d` (its folder "ddir" is current
// there), and answers how many it did.
inline int CheckDriveSteps(const std::filesystem::path &folder, bool with_d) {
    using namespace zr::platform;
    const std::string base = LibraryForm(folder);
    std::ofstream(folder / "file.txt") << "content";
    int steps = 0;
    int before = 0;
    EXPECT_EQ(ChangeFolder(base.c_str()), done);
    const GoldenTable table("crt_getdcwd_chdrive.tsv");
    for (const GoldenTable::Row &row : table.Rows()) {
        const std::string &function = row.at("function"), &argument = row.at("argument");
        const bool on_d = argument == "D:" || argument == "4" || row.at("cwd_after")[0] == 'D';
        const int step = std::stoi(row.at("step"));
        if (step != before + 1) { // a step is missing; it may have come back to C
            EXPECT_EQ(ChangeFolder("C:"), done);
        }
        before = step;
        if ((on_d && !with_d) || (OnDesktop() && argument == "/"))
            continue;
        SCOPED_TRACE("step " + row.at("step") + " " + function + " " + argument);
        const std::string &documented = row.at("windows_documented");
        ++steps;
        if (function == "_chdir") {
            EXPECT_EQ(RuntimeErrorOf(ChangeFolder(StepArgument(argument, base).c_str())), std::stoi(row.at("errno")));
        } else if (function == "_chdrive") {
            EXPECT_EQ(SetCurrentDrive(std::stoi(argument)), row.at("ret") == "0");
        } else if (function == "_getdcwd") {
            const std::string expected = row.at("ret")[0] == 'D' ? "D:\\ddir" : StepArgument(row.at("ret"), base);
            EXPECT_EQ(UpperText(FolderOf(std::stoi(argument))), expected == "\\N" ? "(NONE)" : UpperText(expected));
        } else {
            char small[16];
            EXPECT_EQ(zr::platform::CurrentFolder(small, std::stoul(argument)), row.at("ret") != "\\N");
        }
        const std::string after = documented.compare(0, 9, "cwd_after") == 0 ? "C:\\" : row.at("cwd_after");
        EXPECT_EQ(UpperText(FolderNow()), UpperText(StepArgument(after, base)));
    }
    return steps;
}

#endif
