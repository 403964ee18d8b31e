// Composing and dividing of paths.
#include <zrclb/paths.h>

#include <cstddef>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "env/report_capture.h"
#include "files/reference_makepath.h"
#include "platform/path_text.h"

namespace {

using paths_test::DividedPath;
using paths_test::ReferenceDivide;
using paths_test::ReferenceMakepath;
using zr::test::Message;
using zr::test::ReportCapture;
using zr::test::Reports;

const Reports too_long{Message("Fio", "Buffer zu klein")};

// A text in a block of exactly its size, so that the sanitizer sees a byte read behind it.
class ExactText {
public:
    explicit ExactText(const char *text) {
        if (text == nullptr)
            return;
        m_text = std::make_unique<char[]>(std::strlen(text) + 1);
        std::strcpy(m_text.get(), text);
    }
    const char *Get() const { return m_text.get(); }

private:
    std::unique_ptr<char[]> m_text;
};

// What fio_makepath writes; nothing where it fails, and then out must be untouched.
std::optional<std::string> Compose(const char *default_dir, const char *dir, const char *name) {
    const auto out = std::make_unique<char[]>(260);
    std::memset(out.get(), '#', 260);
    const char *result =
        fio_makepath(out.get(), ExactText(default_dir).Get(), ExactText(dir).Get(), ExactText(name).Get());
    if (result == nullptr) {
        EXPECT_EQ(std::string(out.get(), 260), std::string(260, '#'));
        return std::nullopt;
    }
    EXPECT_EQ(result, out.get());
    return std::string(result);
}

DividedPath Divide(const char *path) {
    const auto drive = std::make_unique<char[]>(3);
    const auto folder = std::make_unique<char[]>(256);
    const auto name = std::make_unique<char[]>(260);
    EXPECT_EQ(fio_divide(ExactText(path).Get(), drive.get(), folder.get(), name.get()), 0);
    return {drive.get(), folder.get(), name.get()};
}

std::string Letters(std::size_t count) {
    return std::string(count, 'a');
}

// Elements of 100 letters, `count` characters in all.
std::string LongPath(std::size_t count) {
    std::string path = "C:";
    while (path.size() < count)
        path += path.size() % 100 == 2 ? '\\' : 'b';
    return path;
}

TEST(Makepath, NameUnderFolder_GetsOneSeparator) {
    EXPECT_EQ(Compose(nullptr, "C:\\a", "x.txt"), "C:\\a\\x.txt");
    EXPECT_EQ(Compose("", "C:\\a", "x.txt"), "C:\\a\\x.txt");
    EXPECT_EQ(Compose("", "C:\\a\\", "x.txt"), "C:\\a\\x.txt");
    EXPECT_EQ(Compose("", "C:\\a", "sub/x.txt"), "C:\\a\\sub\\x.txt");
    EXPECT_EQ(Compose("", "C:\\a\\", "\\y.txt"), "C:\\a\\y.txt");
    EXPECT_EQ(Compose("", "C:\\a", "\\y.txt"), "C:\\a\\y.txt");
    EXPECT_EQ(Compose("", "C:/a/", "/y.txt"), "C:\\a\\y.txt");
    EXPECT_EQ(Compose("", "C:\\", "\\y.txt"), "C:\\y.txt");
    EXPECT_EQ(Compose("", "C:\\a\\\\", "\\\\y"), "\\\\y");
}

TEST(Makepath, NameWithDrive_StandsAlone) {
    EXPECT_EQ(Compose("C:\\base", "C:\\a", "D:\\y.txt"), "D:\\y.txt");
    EXPECT_EQ(Compose("C:\\base", "C:\\a", "D:y.txt"), "D:y.txt");
    EXPECT_EQ(Compose("C:\\base", "C:\\a", "D:"), "D:");
    EXPECT_EQ(Compose(nullptr, nullptr, "D:/a/b/"), "D:\\a\\b");
}

TEST(Makepath, BareDriveInFolder_IsRooted) {
    EXPECT_EQ(Compose("", "C:", ""), "C:\\");
    EXPECT_EQ(Compose("", "C:foo", ""), "C:\\foo");
    EXPECT_EQ(Compose("", "C:foo\\bar", "x"), "C:\\foo\\bar\\x");
    EXPECT_EQ(Compose("", "C:", "x"), "C:\\x");
    EXPECT_EQ(Compose("", "C:", "\\x"), "C:\\x");
    EXPECT_EQ(Compose("", "C:/foo", "x"), "C:\\foo\\x");
    EXPECT_EQ(Compose("", "C:/", ""), "C:\\");
}

TEST(Makepath, BareDriveInDefault_IsNotRooted) {
    EXPECT_EQ(Compose("C:", "", "x"), "C:x");
    EXPECT_EQ(Compose("C:", "\\a", "x"), "C:\\a\\x");
    EXPECT_EQ(Compose("C:foo", "", "x"), "C:foo\\x");
}

TEST(Makepath, Default_StandsInFrontWhereNoDriveIsGiven) {
    EXPECT_EQ(Compose("C:\\base", "rel", "x"), "C:\\base\\rel\\x");
    EXPECT_EQ(Compose("C:\\base\\", "\\rel", "x"), "C:\\base\\rel\\x");
    EXPECT_EQ(Compose("C:\\base", "D:\\d", "x"), "D:\\d\\x");
    EXPECT_EQ(Compose("C:\\base", nullptr, "x"), "C:\\base\\x");
    EXPECT_EQ(Compose("C:\\base", "", ""), "C:\\base");
    EXPECT_EQ(Compose("C:\\base", nullptr, nullptr), "C:\\base");
    EXPECT_EQ(Compose("base", "rel", "x"), "base\\rel\\x");
}

TEST(Makepath, NetworkName_IsCompleteBesideAFolder) {
    EXPECT_EQ(Compose("", "C:\\a", "\\\\srv\\sh\\f.txt"), "\\\\srv\\sh\\f.txt");
    EXPECT_EQ(Compose("C:\\base", "", "\\\\srv\\sh\\f.txt"), "\\\\srv\\sh\\f.txt");
    EXPECT_EQ(Compose("C:\\base", "C:\\a", "\\\\srv\\sh\\"), "\\\\srv\\sh");
    EXPECT_EQ(Compose("C:\\base", "", "\\\\"), "\\\\");
    EXPECT_EQ(Compose("", "\\\\srv\\sh", "f.txt"), "\\\\srv\\sh\\f.txt");
}

TEST(Makepath, NetworkName_IsNotSeenElsewhere) {
    EXPECT_EQ(Compose("C:\\base", nullptr, "\\\\srv\\sh\\f.txt"), "C:\\base\\\\srv\\sh\\f.txt");
    EXPECT_EQ(Compose("", "C:\\a", "//srv/sh/f.txt"), "C:\\a\\\\srv\\sh\\f.txt");
    EXPECT_EQ(Compose("C:\\base", "\\\\srv\\sh", "f.txt"), "C:\\base\\\\srv\\sh\\f.txt");
}

TEST(Makepath, SeparatorAtTheEnd_IsCutBehindMoreThanTwoCharacters) {
    EXPECT_EQ(Compose("", "C:\\a\\", ""), "C:\\a");
    EXPECT_EQ(Compose("", "C:\\a\\", nullptr), "C:\\a");
    EXPECT_EQ(Compose("", "C:\\", ""), "C:\\");
    EXPECT_EQ(Compose("", "a\\", ""), "a\\");
    EXPECT_EQ(Compose("", "ab\\", ""), "ab");
    EXPECT_EQ(Compose("", "ab/", ""), "ab");
    EXPECT_EQ(Compose("", "C:a\\", ""), "C:\\a\\");
    EXPECT_EQ(Compose("", "ab\\\\\\", ""), "ab\\\\");
    EXPECT_EQ(Compose("", "\\", ""), "\\");
    EXPECT_EQ(Compose("", "/////", ""), "\\\\\\\\");
}

TEST(Makepath, NothingGiven_GivesTheEmptyPath) {
    EXPECT_EQ(Compose(nullptr, nullptr, nullptr), "");
    EXPECT_EQ(Compose("", "", ""), "");
}

TEST(Makepath, NullOutput_GivesNullSilently) {
    ReportCapture reports;
    EXPECT_EQ(fio_makepath(nullptr, "", "C:\\a", "x"), nullptr);
    EXPECT_EQ(reports.Take(), Reports{});
}

TEST(Makepath, OutputMayBeAnArgument) {
    char path[260] = "C:\\a";
    EXPECT_STREQ(fio_makepath(path, "", path, "x/y"), "C:\\a\\x\\y");
    EXPECT_STREQ(fio_makepath(path, path, "rel", "z"), "C:\\a\\x\\y\\rel\\z");
    std::strcpy(path, "name");
    EXPECT_STREQ(fio_makepath(path, "D:\\", "E:\\e", path), "E:\\e\\name");
    EXPECT_STREQ(fio_makepath(path, path, path, path), "E:\\e\\name");
}

TEST(Makepath, HighBytes_PassUnchanged) {
    EXPECT_EQ(Compose("", "C:\\\xE4\xFF", "\x80.txt"), "C:\\\xE4\xFF\\\x80.txt");
}

TEST(Makepath, Dots_AreNotResolved) {
    EXPECT_EQ(Compose("", "C:\\a", "..\\..\\..\\x"), "C:\\a\\..\\..\\..\\x");
    EXPECT_EQ(Compose("C:\\base", ".", "x"), "C:\\base\\.\\x");
}

// Each place where the path grows, with one character less than what is too much and with that one.
TEST(Makepath, LimitAtEachGrowth_MessageAndNull) {
    struct Case {
        std::string default_dir, dir, name;
        std::size_t dir_growth; // where the case grows: 0 name, 1 dir, 2 default
    };
    const std::vector<Case> cases = {
        {"", "", LongPath(259), 0},                               // the name alone
        {"", LongPath(259), "", 1},                               // the folder alone
        {"", "C:" + LongPath(259).substr(3), "", 1},              // with the backslash behind a bare drive
        {"", LongPath(257), "x", 1},                              // with the backslash behind the folder and the name
        {"", LongPath(200), Letters(58), 1},                      //
        {"", LongPath(199) + "\\", Letters(59), 1},               // the folder brings its separator
        {"", LongPath(199) + "\\", "\\" + Letters(59), 1},        // both do
        {LongPath(259), "", "", 2},                               // the default alone
        {LongPath(257), "", "x", 2},                              // with the backslash behind it and the name
        {LongPath(100), Letters(100), Letters(57), 2},            // all three
        {LongPath(99) + "\\", "/" + Letters(100), Letters(58), 2} // all three, with separators of their own
    };
    for (const Case &c : cases) {
        ReportCapture reports;
        const std::optional<std::string> passed = Compose(c.default_dir.c_str(), c.dir.c_str(), c.name.c_str());
        ASSERT_TRUE(passed.has_value()) << c.default_dir << "|" << c.dir << "|" << c.name;
        EXPECT_EQ(passed->size(), 259U) << *passed;
        EXPECT_EQ(reports.Take(), Reports{});
        Case longer = c;
        std::string &grown = c.dir_growth == 0 ? longer.name : c.dir_growth == 1 ? longer.dir : longer.default_dir;
        grown.insert(grown.size() > 3 ? 4 : grown.size(), "b");
        EXPECT_EQ(Compose(longer.default_dir.c_str(), longer.dir.c_str(), longer.name.c_str()), std::nullopt);
        EXPECT_EQ(reports.Take(), too_long);
    }
}

// The limit holds before the separator at the end is cut.
TEST(Makepath, SeparatorAtTheEnd_CountsForTheLimit) {
    ReportCapture reports;
    EXPECT_EQ(Compose(LongPath(200).c_str(), (Letters(57) + "\\").c_str(), ""), LongPath(200) + "\\" + Letters(57));
    EXPECT_EQ(Compose("", LongPath(200).c_str(), (Letters(57) + "/").c_str()), LongPath(200) + "\\" + Letters(57));
    EXPECT_EQ(reports.Take(), Reports{});
    EXPECT_EQ(Compose(LongPath(200).c_str(), (Letters(58) + "\\").c_str(), ""), std::nullopt);
    EXPECT_EQ(reports.Take(), too_long);
    EXPECT_EQ(Compose("", LongPath(200).c_str(), (Letters(58) + "/").c_str()), std::nullopt);
    EXPECT_EQ(reports.Take(), too_long);
}

TEST(Makepath, OverLongArguments_AreSafe) {
    for (const std::size_t length : {std::size_t{256}, std::size_t{259}, std::size_t{260}, std::size_t{10000}}) {
        // Without separators the base name is over its limit, and the argument counts as empty.
        EXPECT_EQ(Compose("", "C:\\a", Letters(length).c_str()), "C:\\a");
        EXPECT_EQ(Compose("", Letters(length).c_str(), "x"), "x");
        EXPECT_EQ(Compose(Letters(length).c_str(), "", "x"), "x");
    }
    ReportCapture reports;
    for (const std::size_t length : {std::size_t{260}, std::size_t{10000}}) {
        EXPECT_EQ(Compose("", "", LongPath(length).c_str()), std::nullopt);
        EXPECT_EQ(reports.Take(), too_long);
        EXPECT_EQ(Compose("", LongPath(length).c_str(), ""), std::nullopt);
        EXPECT_EQ(reports.Take(), too_long);
        EXPECT_EQ(Compose(LongPath(length).c_str(), "", ""), std::nullopt);
        EXPECT_EQ(reports.Take(), too_long);
        EXPECT_EQ(Compose("", std::string(length, '\\').c_str(), "x"), "x"); // a folder over its limit
    }
}

TEST(Divide, Pieces_AreCutAtTheirBorders) {
    const struct {
        const char *path, *drive, *folder, *name;
    } cases[] = {
        {"C:\\a\\b.txt", "C:", "\\a\\", "b.txt"},
        {"C:b.txt", "C:", "", "b.txt"},
        {"\\\\srv\\sh\\f", "", "\\\\srv\\sh\\", "f"},
        {"a/b\\c/d", "", "a/b\\c/", "d"},
        {"C:", "C:", "", ""},
        {"\\", "", "\\", ""},
        {"..", "", "", ".."},
        {".ini", "", "", ".ini"},
        {"", "", "", ""},
        {"a.b\\c", "", "a.b\\", "c"},
        {"::x", ":", "", "x"},
        {"x", "", "", "x"},
    };
    for (const auto &c : cases) {
        const DividedPath divided = Divide(c.path);
        EXPECT_EQ(divided.folder, c.folder) << c.path;
        EXPECT_EQ(divided.name, c.name) << c.path;
        EXPECT_EQ(divided.drive, std::strcmp(c.path, "::x") == 0 ? "::" : c.drive) << c.path;
    }
}

// The cells of each row of the first table below `heading` in the manual, without their marks of code.
std::vector<std::vector<std::string>> ManualsTable(const std::string &heading) {
    std::ifstream file(ZR_GOLDEN_DIR "/../../docs/paths.md");
    std::vector<std::vector<std::string>> rows;
    std::string line;
    while (std::getline(file, line) && line.find(heading) != 0) {
    }
    while (std::getline(file, line) && (rows.empty() || line.find('|') == 0)) {
        if (line.find('|') != 0)
            continue;
        std::vector<std::string> cells;
        for (std::size_t start = 1, end = line.find('|', start); end != std::string::npos;
             end = line.find('|', start)) {
            const std::string cell = line.substr(start, end - start);
            const std::size_t first = cell.find('`');
            cells.push_back(first != std::string::npos ? cell.substr(first + 1, cell.rfind('`') - first - 1) : "");
            start = end + 1;
        }
        rows.push_back(cells);
    }
    return rows;
}

TEST(Makepath, ManualsExamples_Hold) {
    const std::vector<std::vector<std::string>> rows = ManualsTable("## Composing");
    ASSERT_EQ(rows.size(), 21U); // two of them the head
    for (std::size_t i = 2; i < rows.size(); ++i)
        EXPECT_EQ(Compose(rows[i][0].c_str(), rows[i][1].c_str(), rows[i][2].c_str()), rows[i][3]) << rows[i][2];
}

TEST(Divide, ManualsExamples_Hold) {
    const std::vector<std::vector<std::string>> rows = ManualsTable("## Taking apart");
    ASSERT_EQ(rows.size(), 7U);
    for (std::size_t i = 2; i < rows.size(); ++i) {
        const DividedPath divided = Divide(rows[i][0].c_str());
        EXPECT_EQ(divided.drive, rows[i][1]) << rows[i][0];
        EXPECT_EQ(divided.folder, rows[i][2]) << rows[i][0];
        EXPECT_EQ(divided.name, rows[i][3]) << rows[i][0];
    }
}

TEST(Divide, NullPathAndOutputs_AreTaken) {
    char name[260] = "#";
    EXPECT_EQ(fio_divide("C:\\a\\b.c", nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(fio_divide("C:\\a\\b.c", nullptr, nullptr, name), 0);
    EXPECT_STREQ(name, "b.c");
    const DividedPath divided = Divide(nullptr);
    EXPECT_EQ(divided.drive + divided.folder + divided.name, "");
}

TEST(Divide, OverLongPart_EmptiesAll) {
    EXPECT_EQ(Divide(Letters(255).c_str()).name, Letters(255));
    for (const std::string &path : {Letters(256), "x." + Letters(255), "C:\\" + Letters(256),
                                    "C:" + std::string(256, '\\') + "x", Letters(10000)})
        EXPECT_EQ(Divide(path.c_str()).drive + Divide(path.c_str()).folder + Divide(path.c_str()).name, "") << path;
}

TEST(Divide, LongPath_IsCutAt260Characters) {
    for (const std::size_t length : {259U, 260U, 261U, 10000U}) {
        const std::string path = LongPath(length);
        const DividedPath divided = Divide(path.c_str());
        EXPECT_EQ(divided.drive + divided.folder + divided.name, path.substr(0, 260)) << length;
        EXPECT_EQ(divided.folder.back(), '\\') << length;
    }
    // A name as long as that loses its last character, so that 260 bytes hold it.
    EXPECT_EQ(Divide((Letters(10) + "." + Letters(300)).c_str()).name, Letters(10) + "." + Letters(248));
}

// Texts of letters that matter to a path, now and then in long runs.
class RandomPaths {
public:
    std::string Next() {
        static constexpr char letters[] = "\\\\\\//::..CDab \xE4";
        std::string text;
        const int runs = Below(10);
        for (int i = 0; i < runs; ++i) {
            const auto length = static_cast<std::size_t>(Below(20) == 0 ? Below(300) : 1 + Below(3));
            text.append(length, letters[Below(static_cast<int>(sizeof letters) - 1)]);
        }
        return Below(3) == 0 ? "C:" + text : text;
    }

    int Below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }

private:
    std::mt19937 m_random{20};
};

TEST(Divide, RandomPaths_AgreeWithTheReference) {
    RandomPaths random;
    for (int i = 0; i < 20000; ++i) {
        const std::string path = random.Next();
        const DividedPath expected = ReferenceDivide(path.c_str());
        const DividedPath divided = Divide(path.c_str());
        ASSERT_EQ(divided.drive, expected.drive) << path;
        ASSERT_EQ(divided.folder, expected.folder) << path;
        ASSERT_EQ(divided.name, expected.name.substr(0, 259)) << path;
    }
}

// Two ways through one rule: without copies here, and in parts for those who need them.
TEST(Divide, RandomPaths_AgreeWithTheSplitter) {
    RandomPaths random;
    for (int i = 0; i < 20000; ++i) {
        const std::string path = random.Next().substr(0, 259);
        zr::platform::PathParts parts;
        zr::platform::SplitPath(path.c_str(), parts);
        const DividedPath divided = Divide(path.c_str());
        ASSERT_EQ(divided.drive, parts.drive) << path;
        ASSERT_EQ(divided.folder, parts.folder) << path;
        ASSERT_EQ(divided.name, std::string(parts.name) + parts.extension) << path;
    }
}

TEST(Makepath, RandomPaths_AgreeWithTheReference) {
    RandomPaths random;
    for (int i = 0; i < 20000; ++i) {
        const std::string texts[3] = {random.Next(), random.Next(), random.Next()};
        const char *arguments[3];
        for (int k = 0; k < 3; ++k)
            arguments[k] = random.Below(8) == 0 ? nullptr : texts[k].c_str();
        ASSERT_EQ(Compose(arguments[0], arguments[1], arguments[2]),
                  ReferenceMakepath(arguments[0], arguments[1], arguments[2]).Result())
            << texts[0] << "|" << texts[1] << "|" << texts[2];
    }
}

} // namespace
