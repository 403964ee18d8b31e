// The search in folders: against the tables, then what every platform promises.
#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "env/refused_memory.h"
#include "golden_table.h"
#include "platform/desktop_tables.h"
#include "platform/drives.h"
#include "platform/file_verbs.h"
#include "platform/folder_search.h"
#include "platform/streams.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;
namespace fs = std::filesystem;

std::string Joined(const std::vector<std::string> &names) {
    std::string text;
    for (const std::string &name : names)
        text += (text.empty() ? "" : "|") + name;
    return text;
}

std::vector<std::string> Split(const std::string &text) {
    std::vector<std::string> names;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('|', start), text.size());
        names.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return names;
}

std::vector<std::string> WithoutDots(std::vector<std::string> names) {
    names.erase(std::remove_if(names.begin(), names.end(), [](const std::string &n) { return n == "." || n == ".."; }),
                names.end());
    return names;
}

struct Listing {
    int code;
    std::vector<std::string> names;
};

Listing List(const std::string &pattern, SearchOrder order = SearchOrder::by_name) {
    FolderSearch search;
    FoundEntry entry;
    Listing listing{search.Start(pattern.c_str(), order, entry), {}};
    for (int code = listing.code; code == done; code = search.Next(entry))
        listing.names.push_back(entry.name);
    EXPECT_EQ(search.Next(entry), no_more_files);
    return listing;
}

class FolderSearches : public testing::Test {
protected:
    void TearDown() override { Unprotect(m_folder); }

    std::string Form(const std::string &name) const { return LibraryForm(m_folder.Folder()) + "\\" + name; }

    // An empty file; the name's bytes go through the library.
    void Touch(const std::string &name) const {
        std::FILE *stream = OpenText(Form(name).c_str(), "w");
        ASSERT_NE(stream, nullptr) << name;
        std::fclose(stream);
    }

    TempFolder m_folder;
};

// The folder of the table of patterns: its names are those that "*" finds.
void MakePatternTree(const TempFolder &folder, const std::string &form, const GoldenTable &table) {
    for (const char *name : {"ff/sub", "ff/dir.d", "ffempty"})
        fs::create_directories(folder.Folder() / name);
    for (const GoldenTable::Row &row : table.Rows())
        if (row.at("pattern") == "**")
            for (const std::string &name : WithoutDots(Split(row.at("names_in_order"))))
                if (name != "sub" && name != "dir.d")
                    if (std::FILE *stream = OpenText((form + "\\ff\\" + name).c_str(), "w"))
                        std::fclose(stream);
}

// The pattern of a row as one path; empty for rows on folders of another machine.
std::string PatternOf(const GoldenTable::Row &row, const std::string &form) {
    const std::string &folder = row.at("directory"), &pattern = row.at("pattern");
    if (folder == "C:\\ (root)")
        return pattern == "." ? "C:\\." : "";
    if (folder.compare(0, 5, "C:\\wo") == 0)
        return AtRoot(folder + "\\", form) + pattern;
    return AtRoot(pattern, form);
}

TEST_F(FolderSearches, PatternsAnswerTheTable) {
    const GoldenTable table("win_findfile.tsv");
    const std::string form = LibraryForm(m_folder.Folder());
    MakePatternTree(m_folder, form, table);
    const ::CurrentFolder current(m_folder.Folder() / "ff");
    int checked = 0;
    for (const GoldenTable::Row &row : table.Rows()) {
        const std::string &documented = row.at("windows_documented");
        const std::string pattern = PatternOf(row, form);
        const bool empty = row.at("directory").compare(0, 9, "(relative") == 0 && row.at("pattern").empty();
        if ((pattern.empty() && !empty) || pattern.find("srv") != std::string::npos)
            continue;
        SCOPED_TRACE(testing::PrintToString(pattern));
        const Listing listing = List(pattern);
        ++checked;
        const std::string rules = "without . and ..: ";
        const bool ruled = documented.find(rules) != std::string::npos;
        // "?" passes over a point; the table says nothing documented of "." and "..", and measured otherwise
        const bool dots_untold = row.at("pattern").find('?') != std::string::npos;
        std::string measured = row.at("names_in_order");
        if (row.at("pattern").size() >= 1 && row.at("pattern").back() == '.' && measured == "work")
            measured = m_folder.Folder().filename().string(); // the folder around, by its own name
        if (OnDesktop()) {                                    // short names, which a disk may have or not, match too
            if (!ruled && row.at("ok") == "1") {
                EXPECT_EQ(Joined(listing.names), measured);
            }
            continue;
        }
        if (ruled) {
            EXPECT_EQ(Joined(WithoutDots(listing.names)), documented.substr(documented.find(rules) + rules.size()));
            continue;
        }
        EXPECT_EQ(listing.code, row.at("ok") == "1" ? 0 : std::stoi(row.at("last_error")));
        EXPECT_EQ(Joined(dots_untold ? WithoutDots(listing.names) : listing.names),
                  Joined(dots_untold ? WithoutDots(Split(measured)) : Split(measured)));
    }
    RecordProperty("rows", checked);
    EXPECT_GT(checked, 100);
}

TEST_F(FolderSearches, SinglePathsAnswerTheTable) {
    MakeTableTree(m_folder);
    const ::CurrentFolder current(m_folder.Folder() / "fs");
    const std::string form = LibraryForm(m_folder.Folder());
    int checked = 0;
    const GoldenTable table("win_fileattributes.tsv");
    for (const GoldenTable::Row &row : table.Rows()) {
        const std::string &path = row.at("path"), &documented = row.at("windows_documented");
        const bool missing = !documented.empty() && documented.compare(0, 10, "attributes") != 0;
        if (path.size() > 100 || path.compare(0, 2, "D:") == 0 || path.compare(0, 2, "\\\\") == 0 || missing ||
            (!OnDesktop() && IsDesktopsOwn(AtRoot(path, form))))
            continue;
        SCOPED_TRACE(testing::PrintToString(path));
        FolderSearch search;
        FoundEntry entry;
        const int code = search.Start(AtRoot(path, form).c_str(), SearchOrder::by_name, entry);
        ++checked;
        if (row.at("findfirst_ok") != "1") {
            EXPECT_EQ(code, std::stoi(row.at("findfirst_last_error")));
            continue;
        }
        ASSERT_EQ(code, done);
        const std::string &name = row.at("find_name");
        EXPECT_EQ(std::string(entry.name), name == "work" ? m_folder.Folder().filename().string() : name);
        EXPECT_EQ(entry.attributes & attribute_folder,
                  std::stoul(row.at("find_attributes"), nullptr, 16) & attribute_folder);
    }
    RecordProperty("rows", checked);
    EXPECT_GT(checked, 40);
}

TEST_F(FolderSearches, UnusablePatternsFail) {
    FolderSearch search;
    FoundEntry entry;
    const std::string over(path_size, 'x'), huge(10000, '*');
    for (const char *pattern : {static_cast<const char *>(nullptr), "", over.c_str(), huge.c_str(), "\\\\", "\\\\*"})
        for (const SearchOrder order : {SearchOrder::any, SearchOrder::by_name}) {
            EXPECT_NE(search.Start(pattern, order, entry), done);
            EXPECT_EQ(search.Next(entry), no_more_files);
        }
    EXPECT_EQ(search.Start(over.c_str(), SearchOrder::any, entry), path_too_long);
}

TEST_F(FolderSearches, FactsAreThoseOfTheFile) {
    m_folder.Write("file", "12345");
    fs::create_directory(m_folder.Folder() / "folder");
    ASSERT_EQ(SetAttributes(Form("file").c_str(), attribute_read_only), done);
    FileStatus status{};
    ASSERT_TRUE(GetFileStatus(Form("file").c_str(), status));
    for (const SearchOrder order : {SearchOrder::any, SearchOrder::by_name}) {
        FolderSearch search;
        FoundEntry entry;
        ASSERT_EQ(search.Start(Form("fi*").c_str(), order, entry), done);
        EXPECT_EQ(entry.size, 5U);
        EXPECT_EQ(entry.modified, status.modified);
        EXPECT_EQ(entry.attributes & (attribute_read_only | attribute_folder | attribute_link), attribute_read_only);
        EXPECT_EQ(search.Next(entry), no_more_files);
        ASSERT_EQ(search.Start(Form("fo*").c_str(), order, entry), done);
        EXPECT_EQ(entry.size, 0U);
        EXPECT_EQ(entry.attributes & (attribute_read_only | attribute_folder | attribute_link), attribute_folder);
    }
}

TEST_F(FolderSearches, OrderIsThatOfCapitals) {
    for (const char *name : {"b", "A", "_", "a1", "Z", "~", "\xE4", "\xC3", "\x9E", "z-", "long name 2", "Long name 1"})
        Touch(name);
    EXPECT_EQ(Joined(List(Form("*")).names), ".|..|A|a1|b|Long name 1|long name 2|Z|z-|_|~|\x9E|\xC3|\xE4");
    std::vector<std::string> any = List(Form("*"), SearchOrder::any).names;
    std::vector<std::string> sorted = List(Form("*")).names;
    std::sort(any.begin(), any.end());
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(any, sorted);
}

TEST_F(FolderSearches, ManyEntriesComeOnceEach) {
    constexpr int count = 400;
    for (int i = 0; i < count; ++i)
        m_folder.Write("entry with a long name, so that they fill more than one block of memory " + std::to_string(i),
                       "");
    const std::vector<std::string> names = List(Form("ENTRY*")).names;
    ASSERT_EQ(names.size(), static_cast<std::size_t>(count));
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
}

TEST_F(FolderSearches, RootHasNoDots) {
    for (const SearchOrder order : {SearchOrder::any, SearchOrder::by_name}) {
        const std::vector<std::string> names = List("C:\\*", order).names;
        EXPECT_FALSE(names.empty());
        EXPECT_EQ(WithoutDots(names), names);
    }
    EXPECT_EQ(List("C:\\.").code, file_not_found);
}

TEST_F(FolderSearches, FolderMayVanishMeanwhile) {
    fs::create_directory(m_folder.Folder() / "gone");
    for (int i = 0; i < 100; ++i)
        m_folder.Write("gone/entry " + std::to_string(i), "");
    for (const SearchOrder order : {SearchOrder::any, SearchOrder::by_name}) {
        FolderSearch search;
        FoundEntry entry;
        ASSERT_EQ(search.Start(Form("gone\\*").c_str(), order, entry), done);
        std::error_code ignored;
        fs::remove_all(m_folder.Folder() / "gone", ignored);
        int found = 1;
        while (search.Next(entry) == done)
            ++found;
        EXPECT_LE(found, 102);
        EXPECT_EQ(search.Next(entry), no_more_files);
        fs::create_directory(m_folder.Folder() / "gone", ignored);
        Touch("gone\\x");
    }
}

TEST_F(FolderSearches, NewSearchEndsTheFormer) {
    m_folder.Write("a1", "");
    m_folder.Write("a2", "");
    m_folder.Write("b", "");
    FolderSearch search;
    FoundEntry entry;
    ASSERT_EQ(search.Start(Form("a*").c_str(), SearchOrder::any, entry), done);
    ASSERT_EQ(search.Start(Form("b").c_str(), SearchOrder::any, entry), done);
    EXPECT_STREQ(entry.name, "b");
    EXPECT_EQ(search.Next(entry), no_more_files);
    EXPECT_EQ(search.Start(Form("none").c_str(), SearchOrder::any, entry), file_not_found);
    EXPECT_EQ(search.Next(entry), no_more_files);
}

TEST_F(FolderSearches, EveryAllocationMayFail) {
    for (int i = 0; i < 100; ++i)
        m_folder.Write("entry with a name of some length, so that blocks fill " + std::to_string(i), "");
    const std::string pattern = Form("*");
    int refused = 0;
    for (std::size_t from = 1; from < 60000; from *= 2) {
        FolderSearch search;
        FoundEntry entry;
        zr::test::Refusal refusal(from);
        const int code = search.Start(pattern.c_str(), SearchOrder::by_name, entry);
        if (!refusal.Met()) {
            EXPECT_EQ(code, done);
            continue;
        }
        ++refused;
        EXPECT_EQ(code, out_of_memory);
        EXPECT_EQ(search.Next(entry), no_more_files);
    }
    EXPECT_GE(refused, 3);
}

} // namespace
