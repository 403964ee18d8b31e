// The portable path services beside the system's own, on the rows of the tables. Where the two differ a rule says why,
// and the number of rows that it excuses is fixed, so that no difference joins unseen.
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <stdlib.h>

#include <gtest/gtest.h>

#include "golden_table.h"
#include "platform/files.h"
#include "platform/path_rows.h"
#include "platform/path_text.h"
#include "platform/temp_folder.h"
#include "platform/wildcard.h"

using namespace zr::platform;
using path_rows::Number;
using path_rows::TextOrNull;

namespace {

// A function of a system library that the test is not linked to.
template <typename Function>
Function Load(const char *library, const char *name) {
    const FARPROC found = GetProcAddress(LoadLibraryA(library), name);
    if (found == nullptr)
        throw std::runtime_error(name);
    return reinterpret_cast<Function>(reinterpret_cast<void *>(found));
}

// The current folders as the system has them: those of other drives than the current one stand in hidden variables.
bool SystemFolder(void *, int drive, char *out, std::size_t size) {
    const auto room = static_cast<DWORD>(size);
    DWORD length = GetCurrentDirectoryA(room, out);
    if (drive != 0 && out[0] != 'A' + drive - 1) {
        const char variable[] = {'=', static_cast<char>('A' + drive - 1), ':', '\0'};
        length = GetEnvironmentVariableA(variable, out, room);
    }
    return length != 0 && length < room;
}

std::string SystemFullPath(const std::string &path, DWORD size, DWORD &length, std::size_t &file_part) {
    const std::unique_ptr<char[]> out(new char[size + 1]());
    char *part = nullptr;
    length = GetFullPathNameA(path.c_str(), size, out.get(), &part);
    const bool fits = length != 0 && length < size;
    file_part = fits && part != nullptr ? static_cast<std::size_t>(part - out.get()) : no_file_part;
    return fits ? out.get() : "";
}

// "a..\b": an element, not the last, with two points at its end.
bool HasPointsInTheMiddle(const std::string &path) {
    for (std::size_t i = path.find("..\\"); i != std::string::npos; i = path.find("..\\", i + 1)) {
        if (i != 0 && path[i - 1] != '\\' && path[i - 1] != ':')
            return true;
    }
    return false;
}

// Why the full path of this row is not the system's.
std::string KnownDifference(const std::string &path, std::size_t longest) {
    if (longest > path_limit)
        return "long: the system's single-byte call fails in place of telling the size";
    if (path[0] == '/' && path[1] != '/')
        return "slash: a path rooted by a slash lies on another drive there";
    if (path == "C:" || path == "D:" || path == "C: ")
        return "drive: its current folder gets a separator at the end";
    if (HasPointsInTheMiddle(path))
        return "points: an element in the middle loses the last one of several";
    return "";
}

bool IsAscii(const std::string &text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

// Makes an empty file in the current folder.
bool Create(const std::string &name) {
    const HANDLE file = CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    return file != INVALID_HANDLE_VALUE && CloseHandle(file) != 0;
}

// All entries of the current folder that the system's search finds.
std::set<std::string> SystemMatches(const std::string &pattern, std::map<std::string, std::string> &short_names) {
    std::set<std::string> names;
    WIN32_FIND_DATAA entry;
    const HANDLE search = FindFirstFileA(pattern.c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE)
        return names;
    do {
        names.insert(entry.cFileName);
        short_names[entry.cFileName] = entry.cAlternateFileName;
    } while (FindNextFileA(search, &entry) != 0);
    FindClose(search);
    return names;
}

// Why the system's answer to this pattern and name is another one.
std::string KnownDifference(const std::string &pattern, const std::string &short_name) {
    if (pattern.find('?') != std::string::npos)
        return "question mark: always one character, nothing behind a star";
    if (pattern.size() >= 2 && pattern.substr(pattern.size() - 2) == "*.")
        return "star and point: everything";
    if (pattern.find("*..") != std::string::npos)
        return "star and points: everything";
    if (!short_name.empty() && MatchWildcard(pattern.c_str(), short_name.c_str()))
        return "short name: it counts as well";
    return "";
}

using Counts = std::map<std::string, int>;

} // namespace

TEST(PathServices, SplitPath_IsTheRuntimes) {
    const GoldenTable table("crt_splitpath.tsv");
    for (const auto &row : table.Rows()) {
        char drive[2048];
        char folder[2048];
        char name[2048];
        char extension[2048];
        _splitpath(row.at("path").c_str(), drive, folder, name, extension);
        PathParts parts;
        SplitPath(row.at("path").c_str(), parts);
        EXPECT_STREQ(parts.drive, drive) << row.at("path");
        EXPECT_STREQ(parts.folder, folder) << row.at("path");
        EXPECT_STREQ(parts.name, name) << row.at("path");
        EXPECT_STREQ(parts.extension, extension) << row.at("path");
    }
}

TEST(PathServices, MakePath_IsTheRuntimes) {
    const GoldenTable table("crt_makepath.tsv");
    for (const auto &row : table.Rows()) {
        char expected[2048];
        char out[2048];
        const char *parts[] = {TextOrNull(row.at("drive")), TextOrNull(row.at("dir")), TextOrNull(row.at("fname")),
                               TextOrNull(row.at("ext"))};
        _makepath(expected, parts[0], parts[1], parts[2], parts[3]);
        EXPECT_TRUE(MakePath(out, sizeof out, parts[0], parts[1], parts[2], parts[3]));
        EXPECT_STREQ(out, expected);
    }
}

TEST(PathServices, FullPath_IsTheSystemsWithKnownDifferences) {
    char folder[path_size];
    ASSERT_NE(GetWindowsDirectoryA(folder, sizeof folder), 0U);
    const CurrentFolder current(folder);
    const GoldenTable table("win_fullpathname.tsv");
    Counts excused;
    for (const auto &row : table.Rows()) {
        const std::string &path = row.at("path");
        const auto size = static_cast<DWORD>(Number(row.at("buflen")));
        DWORD expected_length = 0;
        std::size_t expected_part = 0;
        const std::string expected = SystemFullPath(path, size, expected_length, expected_part);
        const std::unique_ptr<char[]> out(new char[size]);
        std::size_t file_part = 0;
        const std::size_t length = FullPath(path.c_str(), {SystemFolder, nullptr}, out.get(), size, &file_part);
        if (out.get() == expected && length == expected_length && file_part == expected_part)
            continue;
        const std::string reason = KnownDifference(path, std::max(path.size(), length) + std::strlen(folder) + 1);
        EXPECT_NE(reason, "") << path << ": " << out.get() << " for " << expected;
        ++excused[reason.substr(0, reason.find(':'))];
    }
    EXPECT_EQ(excused, (Counts{{"drive", 2}, {"long", 24}, {"points", 2}, {"slash", 1}}));
}

TEST(PathServices, RelativePath_IsTheSystems) {
    const auto system =
        Load<BOOL(WINAPI *)(char *, const char *, DWORD, const char *, DWORD)>("shlwapi.dll", "PathRelativePathToA");
    const GoldenTable table("win_relativepath.tsv");
    int skipped = 0;
    for (const auto &row : table.Rows()) {
        const std::string &from = row.at("from");
        const std::string &to = row.at("to");
        if (from.size() == 2 && to.substr(0, 2) == from) {
            ++skipped; // the system's function reads memory behind such a text: its answer changes from run to run
            continue;
        }
        const auto from_attributes = static_cast<std::uint32_t>(Number(row.at("from_attributes")));
        const auto to_attributes = static_cast<std::uint32_t>(Number(row.at("to_attributes")));
        char expected[1024] = "";
        const bool expected_found = system(expected, from.c_str(), from_attributes, to.c_str(), to_attributes) != 0;
        char out[260];
        EXPECT_EQ(RelativePath(out, from.c_str(), from_attributes, to.c_str(), to_attributes), expected_found);
        EXPECT_STREQ(out, expected) << from << " -> " << to << " " << from_attributes << " " << to_attributes;
    }
    EXPECT_EQ(skipped, 11);
}

TEST(PathServices, CompactPath_IsTheSystems) {
    const auto system = Load<BOOL(WINAPI *)(char *, const char *, UINT, DWORD)>("shlwapi.dll", "PathCompactPathExA");
    const GoldenTable table("win_compactpath.tsv");
    for (const auto &row : table.Rows()) {
        const std::string &path = row.at("path");
        if (path.size() > path_limit)
            continue; // the system's function promises nothing for these
        const auto width = static_cast<unsigned>(Number(row.at("width")));
        const auto flags = static_cast<std::uint32_t>(Number(row.at("flags")));
        char expected[1024] = "";
        char out[1024] = "";
        EXPECT_EQ(CompactPath(out, path.c_str(), width, flags), system(expected, path.c_str(), width, flags));
        EXPECT_STREQ(out, expected) << path << " " << width;
    }
}

TEST(PathServices, Wildcards_AreTheSearchsWithKnownDifferences) {
    const TempFolder folder;
    const CurrentFolder current(folder.Folder());
    const GoldenTable table("win_wildcard.tsv");
    std::set<std::string> names;
    std::set<std::string> patterns;
    for (const auto &row : table.Rows()) {
        patterns.insert(row.at("pattern"));
        if (row.at("name") != "." && row.at("name") != ".." && IsAscii(row.at("name")))
            names.insert(row.at("name"));
    }
    for (const std::string &name : names)
        ASSERT_TRUE(Create(name)) << name;
    std::map<std::string, std::string> short_names;
    EXPECT_EQ(SystemMatches("*", short_names).size(), names.size() + 2);
    Counts excused;
    for (const std::string &pattern : patterns) {
        const std::set<std::string> found = SystemMatches(pattern, short_names);
        for (const std::string &name : names) {
            if ((found.count(name) != 0) == MatchWildcard(pattern.c_str(), name.c_str()))
                continue;
            const std::string reason = KnownDifference(pattern, short_names[name]);
            EXPECT_NE(reason, "") << pattern << " | " << name;
            ++excused[reason.substr(0, reason.find(':'))];
        }
    }
    EXPECT_EQ(excused,
              (Counts{{"question mark", 337}, {"short name", 27}, {"star and point", 29}, {"star and points", 42}}));
}

TEST(PathServices, LettersAboveAscii_MatchAsInTheSystemsSearch) {
    const TempFolder folder;
    const CurrentFolder current(folder.Folder());
    const std::vector<std::string> names{"\xE4.a", "\xC5.a", "\x9A\xFF.a", "\xDF.a", "\xF7.a", "\x80.a"};
    for (const std::string &name : names) {
        if (!Create(name))
            GTEST_SKIP() << "the host's locale cannot hold these letters in names of files";
    }
    std::map<std::string, std::string> short_names;
    for (const std::string pattern : {"\xC4.*", "\xE5*", "\x8A\x9F.a", "*\xDF.A", "SS.a", "\xD7.a", "*\x80*", "S*"}) {
        const std::set<std::string> found = SystemMatches(pattern, short_names);
        for (const std::string &name : names)
            EXPECT_EQ(found.count(name) != 0, MatchWildcard(pattern.c_str(), name.c_str())) << pattern << " | " << name;
    }
}
