// The text of paths: taken apart, put together, made full, relative and short, by the tables of measured answers and
// beyond.
#include <cctype>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "golden_table.h"
#include "platform/files.h"
#include "platform/path_rows.h"
#include "platform/path_text.h"

using namespace zr::platform;
using path_rows::Answer;
using path_rows::Folders;
using path_rows::IsVerified;
using path_rows::Number;
using path_rows::TextOrNull;

namespace {

std::string Repeat(const std::string &text, std::size_t times) {
    std::string result;
    for (std::size_t i = 0; i < times; ++i)
        result += text;
    return result;
}

// A full path and its facts. The buffer is a block of just the size that is passed, so that an overrun is seen.
struct Full {
    std::size_t length;
    std::size_t file_part;
    std::string text;
};

Full FullOf(const char *path, std::size_t size = 2000, const std::string &current = "C:\\woad") {
    Folders folders{current, "D:\\ddir"};
    const std::unique_ptr<char[]> out(new char[size + 1]);
    out[0] = '#';
    Full result{};
    result.file_part = 99;
    result.length = FullPath(path, folders.Seam(), size == 0 ? nullptr : out.get(), size, &result.file_part);
    result.text = size == 0 ? "" : out.get();
    return result;
}

std::string FullText(const std::string &path, const std::string &current = "C:\\woad") {
    return FullOf(path.c_str(), 2000, current).text;
}

std::string Relative(const std::string &from, std::uint32_t from_attributes, const std::string &to,
                     std::uint32_t to_attributes) {
    char out[260] = "#";
    const bool found = RelativePath(out, from.c_str(), from_attributes, to.c_str(), to_attributes);
    EXPECT_TRUE(found || out[0] == '\0');
    return found ? out : "(none)";
}

std::string Compact(const std::string &path, unsigned width) {
    const std::unique_ptr<char[]> out(new char[width]);
    EXPECT_EQ(CompactPath(out.get(), path.c_str(), width, 0), 1);
    return out.get();
}

} // namespace

TEST(SplitPath, TableRows_AsMeasured) {
    const GoldenTable table("crt_splitpath.tsv");
    for (const auto &row : table.Rows()) {
        PathParts parts;
        const bool split = SplitPath(row.at("path").c_str(), parts);
        EXPECT_EQ(parts.drive, Answer(row, "drive")) << row.at("path");
        EXPECT_EQ(parts.folder, Answer(row, "dir")) << row.at("path");
        EXPECT_EQ(parts.name, Answer(row, "fname")) << row.at("path");
        EXPECT_EQ(parts.extension, Answer(row, "ext")) << row.at("path");
        const std::string whole = row.at("drive") + row.at("dir") + row.at("fname") + row.at("ext");
        EXPECT_EQ(split, whole == row.at("path")) << row.at("path");
    }
}

TEST(SplitPath, PartAtItsLimit_FitsAndOneMoreEmptiesAll) {
    PathParts parts;
    for (const std::string folder : {"C:", "C:\\a\\"}) {
        EXPECT_TRUE(SplitPath((folder + std::string(255, 'x')).c_str(), parts));
        EXPECT_EQ(parts.name, std::string(255, 'x'));
        EXPECT_FALSE(SplitPath((folder + std::string(256, 'x')).c_str(), parts));
        EXPECT_STREQ(parts.drive, "");
        EXPECT_STREQ(parts.folder, "");
        EXPECT_STREQ(parts.name, "");
        EXPECT_STREQ(parts.extension, "");
    }
    EXPECT_TRUE(SplitPath((std::string(254, 'd') + "\\n." + std::string(254, 'e')).c_str(), parts));
    EXPECT_EQ(parts.folder, std::string(254, 'd') + "\\");
    EXPECT_EQ(parts.extension, "." + std::string(254, 'e'));
    EXPECT_FALSE(SplitPath((std::string(255, 'd') + "\\n").c_str(), parts));
    EXPECT_FALSE(SplitPath(("n." + std::string(255, 'e')).c_str(), parts));
    EXPECT_STREQ(parts.name, "");
}

TEST(SplitPath, NullEmptyAndHuge_GiveFourEmptyParts) {
    PathParts parts;
    const std::string huge(10000, 'x');
    const std::string separators(10000, '/');
    for (const char *path : {static_cast<const char *>(nullptr), "", huge.c_str(), separators.c_str()}) {
        parts = {"x", "x", "x", "x"};
        EXPECT_EQ(SplitPath(path, parts), path != nullptr && *path == '\0');
        EXPECT_STREQ(parts.drive, "");
        EXPECT_STREQ(parts.folder, "");
        EXPECT_STREQ(parts.name, "");
        EXPECT_STREQ(parts.extension, "");
    }
}

TEST(SplitPath, BytesAboveAscii_AreLetters) {
    PathParts parts;
    EXPECT_TRUE(SplitPath("\xE4:\x80\\\xFF.\xA0", parts));
    EXPECT_STREQ(parts.drive, "\xE4:");
    EXPECT_STREQ(parts.folder, "\x80\\");
    EXPECT_STREQ(parts.name, "\xFF");
    EXPECT_STREQ(parts.extension, ".\xA0");
}

TEST(MakePath, TableRows_AsMeasured) {
    const GoldenTable table("crt_makepath.tsv");
    for (const auto &row : table.Rows()) {
        char out[1024];
        EXPECT_TRUE(MakePath(out, sizeof out, TextOrNull(row.at("drive")), TextOrNull(row.at("dir")),
                             TextOrNull(row.at("fname")), TextOrNull(row.at("ext"))));
        EXPECT_EQ(out, Answer(row, "path"));
    }
}

TEST(MakePath, SizeOneTooSmall_GivesEmptyText) {
    const std::string path = "C:\\d\\n.e";
    for (std::size_t size = 0; size <= path.size() + 2; ++size) {
        const std::unique_ptr<char[]> out(new char[size + 1]);
        out[0] = '#';
        EXPECT_EQ(MakePath(out.get(), size, "C:", "\\d", "n", "e"), size > path.size()) << size;
        EXPECT_EQ(std::string(out.get(), 1), size == 0 ? "#" : size > path.size() ? "C" : std::string(1, '\0')) << size;
    }
    char out[260];
    EXPECT_TRUE(MakePath(out, sizeof out, "C", nullptr, std::string(257, 'n').c_str(), nullptr));
    EXPECT_FALSE(MakePath(out, sizeof out, "C", nullptr, std::string(258, 'n').c_str(), nullptr));
    EXPECT_STREQ(out, "");
    EXPECT_FALSE(MakePath(out, sizeof out, nullptr, std::string(10000, 'd').c_str(), "n", "e"));
    EXPECT_STREQ(out, "");
}

TEST(MakePath, NullOutAndNoParts_GiveFalseAndEmptyText) {
    EXPECT_FALSE(MakePath(nullptr, 260, "C", "d", "n", "e"));
    char out[4] = "#";
    EXPECT_TRUE(MakePath(out, sizeof out, nullptr, nullptr, nullptr, nullptr));
    EXPECT_STREQ(out, "");
}

TEST(MakePath, PartsOfSplitPath_GiveThePathAgain) {
    const GoldenTable table("crt_splitpath.tsv");
    for (const auto &row : table.Rows()) {
        PathParts parts;
        char out[1024];
        if (!SplitPath(row.at("path").c_str(), parts))
            continue;
        EXPECT_TRUE(MakePath(out, sizeof out, parts.drive, parts.folder, parts.name, parts.extension));
        EXPECT_EQ(out, row.at("path"));
    }
}

// Rows of more than 259 characters were measured where such paths fail; the system that they stand for has no such
// limit.
TEST(FullPath, RuntimeTableRows_AsMeasuredOrDocumented) {
    const GoldenTable table("crt_fullpath.tsv");
    for (const auto &row : table.Rows()) {
        if (!IsVerified(row))
            continue;
        const std::string &path = row.at("path");
        const bool is_long = row.at("cwd").size() + 1 + path.size() > path_limit;
        const std::size_t limit = Number(row.at("maxlen"));
        std::string expected = Answer(row, "result");
        if (is_long)
            expected = path_rows::PlainFullPath(row.at("cwd"), path);
        const Full full = FullOf(path.c_str(), limit, row.at("cwd"));
        if (expected == "\\N" || expected.size() >= limit) {
            EXPECT_GT(full.length, limit) << path;
            EXPECT_EQ(full.text, "") << path;
        } else {
            EXPECT_EQ(full.text, expected) << path;
            EXPECT_EQ(full.length, expected.size()) << path;
        }
    }
}

TEST(FullPath, SystemTableRows_AsMeasuredOrDocumented) {
    const GoldenTable table("win_fullpathname.tsv");
    for (const auto &row : table.Rows()) {
        if (!IsVerified(row))
            continue;
        const std::string &path = row.at("path");
        const std::string &documented = row.at("windows_documented");
        const bool without_limit = documented.rfind("documented: no 259 limit", 0) == 0;
        const std::size_t limit = Number(row.at("buflen"));
        const Full full = FullOf(path.c_str(), limit, row.at("cwd"));
        std::string expected = Answer(row, "result");
        if (without_limit)
            expected = path_rows::PlainFullPath(row.at("cwd"), path);
        if (expected == "\\N" || expected.size() >= limit) {
            EXPECT_EQ(full.length, without_limit ? expected.size() + 1 : Number(row.at("ret"))) << path;
            EXPECT_EQ(full.text, "") << path;
            EXPECT_EQ(full.file_part, no_file_part) << path;
            continue;
        }
        EXPECT_EQ(full.text, expected) << path;
        EXPECT_EQ(full.length, expected.size()) << path;
        if (without_limit) {
            EXPECT_EQ(full.file_part, expected.rfind('\\') + 1) << path;
        } else if (documented.empty()) {
            EXPECT_EQ(full.file_part,
                      row.at("filepart_offset") == "\\N" ? no_file_part : Number(row.at("filepart_offset")))
                << path;
        }
    }
}

TEST(FullPath, NullEmptyAndBlanks_GiveZero) {
    for (const char *path : {static_cast<const char *>(nullptr), "", " ", "     "}) {
        const Full full = FullOf(path);
        EXPECT_EQ(full.length, 0U);
        EXPECT_EQ(full.text, "");
        EXPECT_EQ(full.file_part, no_file_part);
    }
}

TEST(FullPath, DriveAlone_IsItsCurrentFolder) {
    EXPECT_EQ(FullText("C:"), "C:\\woad");
    EXPECT_EQ(FullText("d:"), "D:\\ddir");
    EXPECT_EQ(FullText("x:"), "x:\\");
    EXPECT_EQ(FullText("1:y"), "1:\\y");
    EXPECT_EQ(FullText("\xE4:y"), "\xE4:\\y");
}

TEST(FullPath, NoCurrentFolder_GivesZeroForRelativePathsOnly) {
    const CurrentFolders none{[](void *, int, char *, std::size_t) { return false; }, nullptr};
    char out[20] = "#";
    for (const char *path : {"a", ".", "..\\a", "\\a"}) {
        EXPECT_EQ(FullPath(path, none, out, sizeof out, nullptr), 0U) << path;
        EXPECT_STREQ(out, "") << path;
    }
    EXPECT_EQ(FullPath("C:a", none, out, sizeof out, nullptr), 4U);
    EXPECT_STREQ(out, "C:\\a");
    EXPECT_EQ(FullPath("//s/t/a", none, out, sizeof out, nullptr), 7U);
    EXPECT_STREQ(out, "\\\\s\\t\\a");
}

TEST(FullPath, CurrentFolderOnTheNetwork_KeepsItsShare) {
    EXPECT_EQ(FullText("a", "\\\\srv\\sh\\x"), "\\\\srv\\sh\\x\\a");
    EXPECT_EQ(FullText("..\\..\\..\\a", "\\\\srv\\sh\\x"), "\\\\srv\\sh\\a");
    EXPECT_EQ(FullText("\\a", "\\\\srv\\sh\\x"), "\\\\srv\\sh\\a");
    EXPECT_EQ(FullText("a", "\\\\srv\\sh"), "\\\\srv\\sh\\a");
    EXPECT_EQ(FullText("..", "C:\\"), "C:\\");
}

TEST(FullPath, LastElement_LosesPointsAndBlanksWhateverLedToIt) {
    EXPECT_EQ(FullText("C:\\a. .\\."), "C:\\a");
    EXPECT_EQ(FullText("C:\\a \\b\\.."), "C:\\a");
    EXPECT_EQ(FullText("C:\\a\\..  "), "C:\\a\\");
    EXPECT_EQ(FullText("C:\\a..\\b"), "C:\\a..\\b");
    EXPECT_EQ(FullText("C:\\a.\\..\\b.\\c"), "C:\\b\\c");
}

TEST(FullPath, ParentOfTheRoot_IsTheRoot) {
    EXPECT_EQ(FullText(Repeat("..\\", 5000)), "C:\\");
    EXPECT_EQ(FullText(Repeat("a\\", 5000) + Repeat("..\\", 4999) + "b"), "C:\\woad\\a\\b");
    EXPECT_EQ(FullText("\\\\srv\\sh" + Repeat("\\..", 100) + "\\a"), "\\\\srv\\sh\\a");
    EXPECT_EQ(FullText("\\\\?\\C:\\..\\..\\a"), "\\\\?\\a");
}

TEST(FullPath, SeparatorsOnly_GiveARoot) {
    EXPECT_EQ(FullText("/"), "C:\\");
    EXPECT_EQ(FullText("C:" + std::string(10000, '/')), "C:\\");
    EXPECT_EQ(FullText("//"), "\\\\");
    EXPECT_EQ(FullText(std::string(10000, '/')), "\\\\");
}

TEST(FullPath, Devices_AreFoundBehindFoldersAndInFrontOfExtensions) {
    EXPECT_EQ(FullText("C:\\a\\Lpt1  .x.y"), "\\\\.\\Lpt1");
    EXPECT_EQ(FullText("C:conin$"), "\\\\.\\conin$");
    EXPECT_EQ(FullText("..\\prn:"), "\\\\.\\prn");
    EXPECT_EQ(FullText("lpt0"), "C:\\woad\\lpt0");
    EXPECT_EQ(FullText("nul\\a"), "C:\\woad\\nul\\a");
    EXPECT_EQ(FullText("\\\\srv\\sh\\nul"), "\\\\srv\\sh\\nul");
    EXPECT_EQ(FullOf("nul", 7).length, 8U);
    EXPECT_EQ(FullOf("nul", 8).length, 7U);
}

// In rooms of all sizes, since a path is built at the end of its room.
TEST(FullPath, RandomPaths_AgreeWithThePlainWay) {
    const std::vector<std::string> pieces{"\\", "\\", "/", "..", ".", "..\\", "a", "b.", " ", "\xE4", "long name"};
    std::mt19937 random(20);
    for (int i = 0; i < 20000; ++i) {
        std::string path = random() % 2 == 0 ? "C:\\" : "x";
        for (std::size_t k = random() % 12; k > 0; --k)
            path += pieces[random() % pieces.size()];
        const std::string expected = path_rows::PlainFullPath("C:\\woad\\b. .", path);
        const std::size_t size = random() % 2 == 0 ? 300 : random() % 20;
        const bool fits = expected.size() < size;
        const Full full = FullOf(path.c_str(), size, "C:\\woad\\b. .");
        ASSERT_EQ(full.text, fits ? expected : "") << path;
        ASSERT_EQ(full.length, expected.size() + (fits ? 0 : 1)) << path;
    }
}

TEST(FullPath, SizeOneTooSmall_GivesTheSizeNeeded) {
    for (const std::string path : {"C:\\a\\b.c", "b\\..\\x", "\\\\srv\\sh\\a", "."}) {
        const std::size_t length = FullText(path).size();
        for (std::size_t size = 0; size <= length; ++size) {
            const Full full = FullOf(path.c_str(), size);
            EXPECT_EQ(full.length, length + 1) << path;
            EXPECT_EQ(full.text, "") << path;
        }
        EXPECT_EQ(FullOf(path.c_str(), length + 1).length, length);
    }
    EXPECT_EQ(FullOf(("C:\\" + std::string(256, 'a')).c_str(), 260).length, 259U);
    EXPECT_EQ(FullOf(("C:\\" + std::string(257, 'a')).c_str(), 260).length, 261U);
    EXPECT_EQ(FullOf(std::string(10000, 'a').c_str(), 260).length, 10009U);
}

TEST(RelativePath, TableRows_AsMeasured) {
    const GoldenTable table("win_relativepath.tsv");
    for (const auto &row : table.Rows()) {
        char out[260] = "#";
        const bool found =
            RelativePath(out, row.at("from").c_str(), static_cast<std::uint32_t>(Number(row.at("from_attributes"))),
                         row.at("to").c_str(), static_cast<std::uint32_t>(Number(row.at("to_attributes"))));
        const std::string text =
            row.at("from") + " -> " + row.at("to") + " " + row.at("from_attributes") + " " + row.at("to_attributes");
        EXPECT_EQ(found, row.at("ret") == "1") << text;
        EXPECT_EQ(out, Answer(row, "result")) << text;
    }
}

TEST(RelativePath, Null_GivesFalse) {
    char out[260] = "#";
    EXPECT_FALSE(RelativePath(nullptr, "C:\\a", 0, "C:\\b", 0));
    EXPECT_FALSE(RelativePath(out, nullptr, 0, "C:\\b", 0));
    EXPECT_STREQ(out, "");
    EXPECT_FALSE(RelativePath(out, "C:\\b", 0, nullptr, 0));
    EXPECT_FALSE(RelativePath(out, nullptr, 0, nullptr, 0));
}

TEST(RelativePath, LongResultsAndPaths_GiveFalse) {
    const std::string at_limit = "C:\\" + std::string(256, 'x');
    EXPECT_EQ(Relative("C:\\a", 0, at_limit, 0), ".\\" + std::string(256, 'x'));
    EXPECT_EQ(Relative("C:\\a", 16, at_limit, 0), "..\\" + std::string(256, 'x'));
    EXPECT_EQ(Relative("C:\\a\\b", 16, at_limit, 0), "(none)");
    EXPECT_EQ(Relative("C:\\a", 0, at_limit + "x", 0), "(none)");
    EXPECT_EQ(Relative(at_limit + "x", 0, "C:\\a", 0), "(none)");
    EXPECT_EQ(Relative("C:\\" + std::string(10000, 'x'), 0, "C:\\a", 0), "(none)");
    EXPECT_EQ(Relative("C:\\" + Repeat("a\\", 86) + "a", 16, "C:\\", 16), "(none)");
    EXPECT_EQ(Relative("C:\\" + Repeat("a\\", 85) + "a", 16, "C:\\", 16), Repeat("..\\", 85) + "..");
}

TEST(RelativePath, SeparatorsOnly_AreSafe) {
    for (const std::string from : {"\\", "\\\\", "\\\\\\", "\\\\\\\\\\", "/", "//", ":", "::", ":\\", "\\:"}) {
        for (const std::string to : {"\\", "\\\\", "\\\\\\", "\\\\\\\\\\", "/", "//", ":", "::", ":\\", "\\:"}) {
            for (const std::uint32_t attributes : {0U, 16U}) {
                const std::string result = Relative(from, attributes, to, attributes);
                EXPECT_LE(result.size(), 10U);
            }
        }
    }
}

TEST(RelativePath, LettersAboveAscii_MatchWithoutRegardToCase) {
    EXPECT_EQ(Relative("C:\\\xE4\x9A\xFF\\a", 0, "c:\\\xC4\x8A\x9F\\b", 0), ".\\b");
    EXPECT_EQ(Relative("C:\\\xF7\\a", 0, "C:\\\xD7\\b", 0), "..\\\xD7\\b");
}

// What longer paths give was measured as well, but there the function promises nothing.
TEST(CompactPath, TableRows_AsMeasured) {
    const GoldenTable table("win_compactpath.tsv");
    for (const auto &row : table.Rows()) {
        if (row.at("path").size() > path_limit)
            continue;
        const auto width = static_cast<unsigned>(Number(row.at("width")));
        const std::unique_ptr<char[]> out(new char[width + 1]());
        EXPECT_EQ(
            CompactPath(out.get(), row.at("path").c_str(), width, static_cast<std::uint32_t>(Number(row.at("flags")))),
            static_cast<int>(Number(row.at("ret"))));
        EXPECT_EQ(out.get(), Answer(row, "result")) << row.at("path") << " " << width;
        EXPECT_EQ(std::string(out.get()).size(), Number(row.at("result_length")));
    }
}

TEST(CompactPath, NullAndWidthZero_WriteNothing) {
    char out[4] = "#";
    EXPECT_EQ(CompactPath(nullptr, "C:\\a", 10, 0), 0);
    EXPECT_EQ(CompactPath(out, nullptr, 4, 0), 0);
    EXPECT_EQ(CompactPath(out, "C:\\a", 0, 0), 1);
    EXPECT_STREQ(out, "#");
}

TEST(CompactPath, EveryWidth_StaysInsideAndIsFilled) {
    for (const std::string &path :
         {std::string("C:\\dir\\\xE4\x80\\f.t"), std::string(10000, 'a'), std::string(300, '\\'),
          "C:\\" + std::string(300, 'd') + "\\n", "C:\\d\\" + std::string(10000, 'n')}) {
        for (unsigned width = 1; width <= 400; ++width) {
            const std::string result = Compact(path, width);
            EXPECT_EQ(result.size(), path.size() < width - 1 ? path.size() : width - 1);
        }
    }
}

TEST(CompactPath, LongPath_KeepsItsName) {
    EXPECT_EQ(Compact("C:\\" + std::string(9000, 'd') + "\\name.txt", 20), "C:\\dddd...\\name.txt");
    EXPECT_EQ(Compact("C:\\" + std::string(9000, 'n'), 12), "...\\nnnn...");
}
