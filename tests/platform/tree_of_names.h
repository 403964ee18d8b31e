// The files and folders that the tables of status and opening were measured on, built in a folder of a test.
#ifndef TESTS_PLATFORM_TREE_OF_NAMES_H
#define TESTS_PLATFORM_TREE_OF_NAMES_H

#include <cstdio>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "golden_table.h"
#include "platform/files.h"
#include "platform/streams.h"
#include "platform/temp_folder.h"

// The newest runtime's row, where the runtimes differ.
inline bool IsRowOfNewestRuntime(const GoldenTable::Row &row) {
    return row.at("dll").find("ucrtbase") != std::string::npos;
}

inline bool IsTextMode(const std::string &mode) {
    return mode == "r" || mode == "rt" || mode == "w" || mode == "wt" || mode == "a" || mode == "at";
}

// Whether hosts have rules of their own for this name: case, blanks and points at the end of a name, signs that a name may
// not have, devices, write protection and hidden names.
inline bool HostsDiffer(const std::string &path) {
    const std::string name = path.substr(path.find_last_of("\\/:") + 1);
    for (const char *part : {"FILE", "File", "SUB", "WORK", "PROG", "nul", "NUL", "con", "com", "COM", "\\\\?\\",
                             "readonly", "hidden", "|", "*", "?"})
        if (path.find(part) != std::string::npos)
            return true;
    const bool points_alone = name.find_first_not_of('.') == std::string::npos;
    return !name.empty() && !points_alone && (name.back() == '.' || name.back() == ' ');
}

class TreeOfNames {
public:
    explicit TreeOfNames(const TempFolder &folder) : m_root(folder.Folder()), m_current(Make(folder)) {}

    // Whether the row makes sense here: the table's folders are those of the tree, and names are far from the limit of a
    // path, which depends on where the tree stands.
    bool CanHold(const std::string &path) const { return path.size() < 100 && path.find("D:") == std::string::npos; }

    void CheckStatus(const GoldenTable::Row &row) const {
        const std::string path = Here(row.at("path"));
        SCOPED_TRACE(testing::PrintToString(path));
        zr::platform::FileStatus status{};
        ASSERT_EQ(zr::platform::GetFileStatus(path.c_str(), status), row.at("ret") == "0");
        if (row.at("ret") != "0")
            return;
        EXPECT_EQ(status.folder, row.at("kind") == "dir");
        EXPECT_EQ(status.size, status.folder ? 0 : std::stoull(row.at("size")));
    }

    void CheckOpen(const GoldenTable::Row &row) const {
        const std::string path = Here(row.at("path"));
        SCOPED_TRACE(testing::PrintToString(path) + " " + row.at("mode"));
        std::FILE *stream = zr::platform::OpenText(path.c_str(), row.at("mode").c_str());
        EXPECT_EQ(stream != nullptr, row.at("opened") == "1");
        if (stream != nullptr)
            std::fclose(stream);
    }

private:
    // The tree's own path for one of the table.
    std::string Here(const std::string &path) const {
        const std::string exact = "\\\\?\\";
        if (path.rfind(exact, 0) == 0)
            return exact + Here(path.substr(exact.size()));
        const std::string root = m_root.string();
        const std::string drive = root[1] == ':' ? "" : "C:";
        for (const char *table_root : {"C:\\woad", "c:/woad", "c:\\WORK", "\\woad"})
            if (path.rfind(table_root, 0) == 0) {
                const bool has_drive = path[1] == ':';
                const std::string here = has_drive ? drive + root : root.substr(drive.empty() ? 2 : 0);
                return here + path.substr(std::string(table_root).size());
            }
        return path;
    }

    static std::filesystem::path Make(const TempFolder &folder) {
        namespace fs = std::filesystem;
        const fs::path tree = folder.Folder() / "fs";
        for (const char *name : {"sub/inner", "rodir", "dir.d", "dir with blank"})
            fs::create_directories(tree / name);
        for (const char *name : {"file.txt", "readonly.txt", "hidden.txt", "system.txt", "noext", "sub/in.txt",
                                 "prog.exe", "script.bat", "script.cmd", "prog.com"})
            folder.Write(std::string("fs/") + name, "content");
        folder.Write("fs/empty", "");
        fs::permissions(tree / "readonly.txt", fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
        // Names beyond ASCII go through the library, which passes their bytes on.
        for (const char *name : {"/\xE4\xF6\xFC.txt", "/\x80.bin"})
            if (std::FILE *stream = zr::platform::OpenText((tree.string() + name).c_str(), "w")) {
                std::fputs("content", stream);
                std::fclose(stream);
            }
        return tree;
    }

    std::filesystem::path m_root;
    CurrentFolder m_current;
};

#endif
