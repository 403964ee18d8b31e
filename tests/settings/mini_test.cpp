// Settings files held in memory: opening, reading, listing, unloading.
#include <zrclb/mini.h>

#include <climits>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/files.h>

#include "platform/raw_file.h"
#include "settings/mini_fixture.h"

namespace {

using namespace std::string_literals;
using zr::platform::services;
using zr::test::Error;
using Taken = zr::test::Reports;

class Mini : public MiniFixture {
protected:
    // The content of an empty file.
    static std::list<Reference::Section> OnlyTop() { return {{"", {}}}; }
};

const auto malformed_text = "Incorrect entry's format. '=' is not found. Dir,File=";
const auto nameless_text = "Section's name is not defined. Description is ignored";

// ---- Records ------------------------------------------------------------------------------------------------------

TEST_F(Mini, Records_HaveTheirFieldsInTheToldOrder) {
    constexpr std::size_t pointer = sizeof(char *);
    EXPECT_EQ(offsetof(mini_file, dir), 0U);
    EXPECT_EQ(offsetof(mini_file, name), pointer);
    EXPECT_EQ(offsetof(mini_file, flags), 2 * pointer);
    EXPECT_GT(offsetof(mini_file, sections), offsetof(mini_file, flags));
    EXPECT_EQ(offsetof(mini_section, prev), 0U);
    EXPECT_EQ(offsetof(mini_section, next), pointer);
    EXPECT_EQ(offsetof(mini_section, name), 2 * pointer);
    EXPECT_EQ(offsetof(mini_section, entries), 3 * pointer);
    EXPECT_EQ(offsetof(mini_section, state), 3 * pointer + sizeof(list_descriptor));
    EXPECT_EQ(offsetof(mini_entry, prev), 0U);
    EXPECT_EQ(offsetof(mini_entry, next), pointer);
    EXPECT_EQ(offsetof(mini_entry, name), 2 * pointer);
    EXPECT_EQ(offsetof(mini_entry, value), 3 * pointer);
    EXPECT_EQ(sizeof(mini_file::flags), 4U);
    EXPECT_EQ(sizeof(mini_section::state), 4U);
}

// ---- Opening ------------------------------------------------------------------------------------------------------

TEST_F(Mini, OpenWithoutArguments_TakesTheSettingsFileOfTheInstallation) {
    Write("zr\\zr.zrini", "[A]\r\nx=1\r\n");
    m_handle = mini_open(nullptr, nullptr, 0);
    ASSERT_NE(m_handle, nullptr);
    EXPECT_EQ(m_handle->dir, Path("zr\\"));
    EXPECT_STREQ(m_handle->name, "zr.zrini");
    EXPECT_EQ(Value("A", "x"), "1");
    EXPECT_EQ(mini_write_string(m_handle, "A", "x", "2"), 0);
    EXPECT_EQ(mini_close(&m_handle), 1);
    EXPECT_EQ(m_folder.Read("zr/zr.zrini"), "[A]\r\nx=2");
    EXPECT_EQ(m_reports.Take(), Taken());
}

TEST_F(Mini, OpenWithoutName_TakesTheSettingsFileOfTheInstallation) {
    Write("zr\\bin\\zr.zrini", "[A]\r\nx=1\r\n");
    const std::string folder = Path("other\\");
    for (const char *name : {static_cast<const char *>(nullptr), "", folder.c_str()}) {
        mini_close_ex(&m_handle);
        m_handle = mini_open(folder.c_str(), name, MINI_READONLY);
        ASSERT_NE(m_handle, nullptr);
        EXPECT_EQ(m_handle->dir, Path("zr\\bin\\"));
        EXPECT_STREQ(m_handle->name, "zr.zrini");
        EXPECT_EQ(Value("A", "x"), "1");
    }
    EXPECT_EQ(m_reports.Take(), Taken());
}

TEST_F(Mini, OpenWithoutNameAndInstallation_HasNoFile) {
    const std::string folder = Path("temporary");
    m_handle = mini_open(folder.c_str(), nullptr, 0);
    ASSERT_NE(m_handle, nullptr);
    const Taken reports = m_reports.Take();
    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.back(), Error("Mini", "zr_suche_datei did not find ZRINIFILE"));
    EXPECT_EQ(m_handle->dir, folder);
    EXPECT_STREQ(m_handle->name, "");
    EXPECT_EQ(Sections(), "-");
    EXPECT_EQ(mini_write_string(m_handle, "A", "x", "1"), 0);
    EXPECT_EQ(mini_update_file(m_handle), 0);
    EXPECT_EQ(mini_open(folder.c_str(), nullptr, MINI_READONLY), nullptr);
    EXPECT_EQ(m_reports.Take(), reports);
}

TEST_F(Mini, Open_TakesTheFolderOfTheNameFirst) {
    Write("one\\a.ini", "x=1");
    Write("two\\a.ini", "x=2");
    const struct {
        std::string dir, name, expected_dir, value;
    } rows[] = {{Path("one"), Path("two\\a.ini"), Path("two\\"), "2"},
                {Path("one"), "a.ini", Path("one"), "1"},
                {Path("one\\"), "a.ini", Path("one\\"), "1"},
                {"", Path("one\\a.ini"), Path("one\\"), "1"}};
    for (const auto &row : rows) {
        m_handle = mini_open(row.dir.c_str(), row.name.c_str(), MINI_READONLY);
        ASSERT_NE(m_handle, nullptr) << row.name;
        EXPECT_EQ(m_handle->dir, row.expected_dir);
        EXPECT_STREQ(m_handle->name, "a.ini");
        EXPECT_EQ(Value("", "x"), row.value);
        EXPECT_EQ(mini_close_ex(&m_handle), 1);
    }
    const CurrentFolder folder(m_folder.Folder() / "one");
    char current[260];
    ASSERT_NE(fio_getcwd(current, sizeof current), nullptr);
    for (const char *dir : {static_cast<const char *>(nullptr), ""}) {
        m_handle = mini_open(dir, "a.ini", MINI_READONLY);
        ASSERT_NE(m_handle, nullptr);
        EXPECT_STREQ(m_handle->dir, current);
        EXPECT_EQ(Value("", "x"), "1");
        EXPECT_EQ(mini_close_ex(&m_handle), 1);
    }
}

TEST_F(Mini, OpenOfANameWithAFolder_TakesNothingOfTheOther) {
    const struct {
        const char *name, *expected_dir, *expected_name;
    } rows[] = {{"D:\\y\\z.ini", "D:\\y\\", "z.ini"},
                {"y\\z", "y\\", "z"},
                {"\\z.ini", "\\", "z.ini"},
                {"C:z.ini", "C:", "z.ini"}};
    for (const auto &row : rows) {
        m_handle = mini_open("C:\\x", row.name, 0);
        ASSERT_NE(m_handle, nullptr) << row.name;
        EXPECT_STREQ(m_handle->dir, row.expected_dir);
        EXPECT_STREQ(m_handle->name, row.expected_name);
        EXPECT_EQ(mini_close_ex(&m_handle), 1);
    }
}

TEST_F(Mini, OpenWithLongFolder_NeverGetsToTheCurrentOne) {
    const CurrentFolder folder(m_folder.Folder());
    m_folder.Write("a.ini", "x=1");
    for (const std::size_t size : {255U, 256U, 258U, 259U, 260U, 100000U}) {
        for (const std::string &dir : {"C:\\" + std::string(size - 3, 'd'), std::string(size, 'd')}) {
            EXPECT_EQ(mini_open(dir.c_str(), "a.ini", MINI_READONLY), nullptr) << size;
            m_handle = mini_open(dir.c_str(), "a.ini", 0);
            ASSERT_NE(m_handle, nullptr) << size;
            EXPECT_EQ(m_handle->dir, dir.substr(0, 255));
            EXPECT_EQ(mini_write_string(m_handle, "A", "a", "1"), 0);
            EXPECT_EQ(mini_update_file(m_handle), 0) << size;
            EXPECT_EQ(mini_delete_section(m_handle, "B"), -1) << size;
            EXPECT_EQ(mini_delete_entry(m_handle, "B", "b"), -1) << size;
            EXPECT_EQ(mini_close(&m_handle), 0);
        }
    }
    EXPECT_EQ(m_folder.Read("a.ini"), "x=1");
}

TEST_F(Mini, OpenWithLongName_TakesWhatIsLeftOfIt) {
    Write("zr\\zr.zrini", "x=1");
    for (const std::size_t size : {255U, 256U, 260U, 100000U}) {
        const std::string name(size, 'n');
        m_handle = mini_open(Path("none").c_str(), name.c_str(), 0);
        ASSERT_NE(m_handle, nullptr) << size;
        EXPECT_EQ(m_handle->name, size > 255 ? "zr.zrini" : name) << size; // too long is no name
        EXPECT_EQ(m_handle->dir, Path(size > 255 ? "zr\\" : "none")) << size;
        EXPECT_EQ(mini_close_ex(&m_handle), 1);
    }
}

TEST_F(Mini, Open_SetsTheFlagsOfAWholeLoad) {
    EXPECT_EQ(Open("x=1")->flags, 3);
    EXPECT_EQ(Reopen(MINI_READONLY)->flags, 7);
    EXPECT_EQ(Reopen(3)->flags, 3);
    EXPECT_EQ(Reopen(8)->flags, 11);
    EXPECT_EQ(MINI_ALL_LOADED, 1);
    EXPECT_EQ(MINI_PRELOAD, 2);
    EXPECT_EQ(MINI_READONLY, 4);
}

TEST_F(Mini, OpenOfWhatIsNoFile_NeedsThePermissionToWrite) {
    const std::string folder = Path("temporary"), missing = Path("none\\x.ini");
    for (const std::string &path : {m_path, folder, missing, Path(std::string(256, 'n')), "Q:\\x.ini"s}) {
        EXPECT_EQ(mini_open(nullptr, path.c_str(), MINI_READONLY), nullptr) << path;
        m_handle = mini_open(nullptr, path.c_str(), 0);
        ASSERT_NE(m_handle, nullptr) << path;
        EXPECT_EQ(Sections(), "-");
        EXPECT_EQ(m_handle->sections.count, 0);
        EXPECT_EQ(mini_close_ex(&m_handle), 1);
    }
    EXPECT_FALSE(FileExists());
}

TEST_F(Mini, Records_HoldTheFileInItsOrder) {
    Open("t = 0\n;note\n[ A ] text\n x = 1 \nx=2\n\n[B]\n[A]\n=v\nempty=\n");
    const std::list<Reference::Section> expected = {
        {"", {{"t", " 0"}}}, {"A", {{"x", " 1"}, {"x", "2"}}}, {"B", {}}, {"A", {{"", "v"}, {"empty", ""}}}};
    EXPECT_EQ(Content(), expected);
    EXPECT_EQ(Sections(), ",A,B,A");
    Open("");
    EXPECT_EQ(Content(), OnlyTop());
}

TEST_F(Mini, FaultyLines_AreReportedAndPassedOver) {
    const std::string folder = Path("");
    Open("bad\n[A]\nx=1\nworse\n[]\nlost=1\nlost\n[ ]\n[B]\ny=2\n[\t]text\nz=3");
    const auto malformed = Error("Mini", malformed_text, (folder + "\\").c_str(), "test.ini");
    const auto nameless = Error("Mini", nameless_text);
    EXPECT_EQ(m_reports.Take(), (Taken{malformed, malformed, nameless, nameless, nameless}));
    EXPECT_EQ(Content(), (std::list<Reference::Section>{{"", {}}, {"A", {{"x", "1"}}}, {"B", {{"y", "2"}}}}));
}

TEST_F(Mini, Lines_ComeApartAt2047Characters) {
    for (const std::size_t size : {2045U, 2046U, 2047U, 2048U, 2049U, 4094U, 4095U, 5000U}) {
        const std::string line = "[S]\r\na=" + std::string(size - 2, 'v');
        for (const std::string &end : {"\r\nb=1\r\n"s, "\nb=1"s, ""s}) {
            Open(line + end);
            EXPECT_EQ(Value("S", "a"), std::string(std::min<std::size_t>(size, 2047) - 2, 'v')) << size;
            EXPECT_EQ(ResultOf("S", "b"), end.empty() ? 2 : 0);
            EXPECT_EQ(m_reports.Take().size(), (size - 1) / 2047) << size; // what was cut off has no sign
        }
    }
    // The first character behind the cut belongs to the next line, and stays there.
    Open("a=" + std::string(2045, 'v') + "b=" + std::string(2045, 'w') + "[" + std::string(2046, 's') + "c=1\r\nd=2");
    EXPECT_EQ(Value("", "a"), std::string(2045, 'v'));
    EXPECT_EQ(Value("", "b"), std::string(2045, 'w'));
    EXPECT_EQ(Content().back().name, std::string(2046, 's'));
    EXPECT_EQ(Content().back().entries.size(), 2U);
    Open(std::string(100000, ' ') + "a=1");
    EXPECT_EQ(Value("", "a"), "1");
    Open("a=" + std::string(99998, 'x'));
    EXPECT_EQ(Value("", "a").size(), 2045U);
    EXPECT_EQ(m_reports.Take().size(), 48U);
}

TEST_F(Mini, BytesOfStreams_CountAsTheStreamHasThem) {
    Open("a=1\rb=2\r\nc=3\r\r\nd=4\0e=5\nf=\0\n\0g=6\n\xFFh\xA0=\xE4 \x80\ni=7\x1Aj=8\n"s);
    const Reference::Section top = Content().front();
    const std::list<Reference::Entry> expected = {
        {"a", "1\rb=2"}, {"c", "3"}, {"d", "4"}, {"e", "5"}, {"f", ""}, {"g", "6"}, {"\xFFh\xA0", "\xE4 \x80"},
        {"i", "7"}};
    EXPECT_EQ(top.entries, expected);
    Open("\x1A\nx=1");
    EXPECT_EQ(Content(), OnlyTop());
}

TEST_F(Mini, EndOfText_EndsTheFileAlsoIfMoreWasToBeRead) {
    services.read_raw = [](std::intptr_t file, char *out, std::size_t size) {
        return zr::platform::backend::ReadRaw(file, out, std::min<std::size_t>(size, 3));
    };
    Open("a=1\nb\x1A=2\nc=3\n");
    EXPECT_EQ(Content().front().entries, (std::list<Reference::Entry>{{"a", "1"}}));
    EXPECT_EQ(m_reports.Take().size(), 1U);
    Open("a=1\nb=2\x1A");
    EXPECT_EQ(Entries(""), "a,b");
}

TEST_F(Mini, FailedRead_CutsTheFileAndNoUpdateWritesOverIt) {
    const std::string bytes = "[A]\r\nx=1\r\n[B]\r\ny=" + std::string(3000, ' ') + "2\r\n[C]\r\n";
    static int reads;
    reads = 0;
    services.read_raw = [](std::intptr_t file, char *out, std::size_t size) -> std::ptrdiff_t {
        return ++reads > 1 ? -1 : zr::platform::backend::ReadRaw(file, out, std::min<std::size_t>(size, 20));
    };
    Open(bytes);
    EXPECT_EQ(Sections(), ",A,B");
    EXPECT_EQ(mini_update_file(m_handle), 0);
    EXPECT_EQ(mini_close(&m_handle), 0);
    EXPECT_EQ(Bytes(), bytes);
    reads = 1; // nothing is read at all, as of a folder
    EXPECT_EQ(Reopen(MINI_READONLY), nullptr);
    services.read_raw = zr::platform::backend::ReadRaw;
    Reopen();
    EXPECT_EQ(mini_unload_one_section(m_handle, "C"), 0);
    reads = 0;
    services.read_raw = [](std::intptr_t file, char *out, std::size_t size) -> std::ptrdiff_t {
        return ++reads > 1 ? -1 : zr::platform::backend::ReadRaw(file, out, std::min<std::size_t>(size, 20));
    };
    EXPECT_EQ(mini_write_string(m_handle, "C", "z", "3"), 0); // it may well be there
    EXPECT_EQ(mini_update_file(m_handle), 0);
    EXPECT_EQ(Bytes(), bytes);
}

TEST_F(Mini, FileThatGrowsWhileItIsRead_IsReadToItsEnd) {
    services.file_status = [](const char *, zr::platform::FileStatus &) { return false; };
    std::string bytes;
    for (int i = 0; i < 2000; ++i)
        bytes += "e" + std::to_string(i) + "=" + std::to_string(i * 7) + "\r\n";
    Open(bytes);
    for (int i = 0; i < 2000; i += 13)
        EXPECT_EQ(Value("", "e" + std::to_string(i)), std::to_string(i * 7));
    EXPECT_EQ(m_handle->sections.count, 1);
}

TEST_F(Mini, RandomFiles_AnswerAsThePlainReference) {
    std::mt19937 random(20131);
    const std::vector<std::string> pieces = {"[",        "]",      "=",
                                             ";",        "\n",     "\r\n",
                                             "\r",       " ",      "a",
                                             "b",        "s",      "\t",
                                             "\n[s]\n",  "\na=",   "\xE4",
                                             "\n[a]x\n", "a=1",    "\r\n b = 2\r\n",
                                             "\n;x\n",   "\n[]\n", std::string(1, '\0')};
    const std::vector<std::string> rare = {std::string(2040, 'v'),  std::string(2047, ' '),
                                           std::string(700, 'w'),   "\x1A",
                                           std::string(8000, '\n'), "\na=" + std::string(2044, 'u')};
    const auto below = [&](std::size_t count) { return static_cast<std::size_t>(random() % count); };
    const std::string reference_path = Path("reference.ini");
    for (int round = 0; round < 120; ++round) {
        std::string bytes;
        for (std::size_t left = below(60); left != 0; --left)
            bytes += below(24) == 0 ? rare[below(rare.size())] : pieces[below(pieces.size())];
        Open(bytes);
        m_folder.Write("reference.ini", bytes);
        Reference reference(reference_path);
        ASSERT_EQ(Content(), reference.sections) << testing::PrintToString(bytes);
        int malformed = 0, nameless = 0;
        for (const auto &report : m_reports.Take())
            ++(report.texts.front() == nameless_text ? nameless : malformed);
        ASSERT_EQ(malformed, reference.malformed) << testing::PrintToString(bytes);
        ASSERT_EQ(nameless, reference.nameless) << testing::PrintToString(bytes);
        const Text section = std::vector<Text>{{}, "s", "a", " s", ""}[below(5)];
        const Text entry = std::vector<Text>{{}, "a", "b", ""}[below(4)];
        const int size = static_cast<int>(below(3) == 0 ? below(2100) : below(8));
        ASSERT_EQ(Read(section, entry, size), reference.Read(section, entry, size)) << testing::PrintToString(bytes);
        EXPECT_EQ(mini_update_file(m_handle), reference.Update());
        ASSERT_EQ(Bytes(), m_folder.Read("reference.ini")) << testing::PrintToString(bytes);
    }
}

// ---- Reading ------------------------------------------------------------------------------------------------------

TEST_F(Mini, FirstSectionAndFirstEntry_Win) {
    Open("[s]\nx=1\nx=2\n[t]\nx=3\n[s]\nx=4\ny=5");
    EXPECT_EQ(Value("s", "x"), "1");
    EXPECT_EQ(ResultOf("s", "y"), 2);
    EXPECT_EQ(ResultOf("u", "x"), 1);
    EXPECT_EQ(ResultOf({}, "x"), 2);
    // Also when there are so many that they are no longer walked along.
    std::string bytes;
    for (int i = 0; i < 300; ++i)
        bytes += "[s" + std::to_string(i % 100) + "]\nx=" + std::to_string(i) + "\n" + "y=1\nx=0\nz=1\nu=1\nu=2\n";
    Open(bytes);
    for (int round = 0; round < 20; ++round) {
        for (int i = 0; i < 100; ++i) {
            const std::string section = "s" + std::to_string(i);
            ASSERT_EQ(Value(section, "x"), std::to_string(i));
            ASSERT_EQ(Value(section, "u"), "1");
            ASSERT_EQ(ResultOf(section, "xx"), 2);
        }
        ASSERT_EQ(ResultOf("s100", "x"), 1);
    }
}

TEST_F(Mini, Value_KeepsTheBlankBehindTheSign) {
    Open("[s]\nname = value \nx=1 ; note\n;y=1\nz==\nnone=\n");
    EXPECT_EQ(Value("s", "name"), " value");
    EXPECT_EQ(Value("s", "x"), "1 ; note");
    EXPECT_EQ(ResultOf("s", ";y"), 2);
    EXPECT_EQ(ResultOf("s", "y"), 2);
    EXPECT_EQ(Value("s", "z"), "=");
    EXPECT_EQ(Value("s", "none"), "");
}

TEST_F(Mini, SectionName_IsTrimmedAndTheEntrysIsNot) {
    Open("t=0\n[s s]\nx y=1\nZ=2");
    EXPECT_EQ(Value(" \ts s\r\n", "x y"), "1");
    EXPECT_EQ(ResultOf("s s", " x y"), 2);
    EXPECT_EQ(ResultOf("s s", "z"), 2);
    EXPECT_EQ(ResultOf("S s", "Z"), 1);
    for (const Text &blank : {Text(), Text(""), Text(" \t")})
        EXPECT_EQ(Value(blank, "t"), "0");
    EXPECT_EQ(Entries("\ts s "), "x y,Z");
}

TEST_F(Mini, NamesOfSections_CountUpTo255Characters) {
    const auto name = [](std::size_t size) { return std::string(size, 'n'); };
    Open("[" + name(254) + "]\nx=254\n[" + name(255) + "]\nx=255\n[" + name(256) + "]\nx=256\n");
    EXPECT_EQ(Value(name(254), "x"), "254");
    EXPECT_EQ(Value(name(255), "x"), "255");
    EXPECT_EQ(Value(name(256), "x"), "255"); // the rest doesn't count
    EXPECT_EQ(Value(name(257), "x"), "255");
    EXPECT_EQ(Value(std::string(1, ' ') + name(254), "x"), "254");
    EXPECT_EQ(ResultOf(std::string(2, ' ') + name(254), "x"), 1); // 253 are left
}

TEST_F(Mini, ValueLongerThanTheBuffer_IsCut) {
    Open("[s]\nx=abcd\ny=abc\nz=");
    EXPECT_EQ(Read("s", "x", 3), (Reference::Answer{3, "abc", 3}));
    EXPECT_EQ(Read("s", "y", 3), (Reference::Answer{0, "abc", 3}));
    EXPECT_EQ(Read("s", "x", 4), (Reference::Answer{0, "abcd", 4}));
    EXPECT_EQ(Read("s", "x", 5), (Reference::Answer{0, "abcd", 4}));
    EXPECT_EQ(Read("s", "x", 0), (Reference::Answer{3, "", 0}));
    EXPECT_EQ(Read("s", "z", 0), (Reference::Answer{0, "", 0}));
    char buffer[] = "~";
    zr_long size = -1;
    EXPECT_EQ(mini_read_string(m_handle, "s", "z", buffer, &size), -1);
    size = LONG_MIN < INT_MIN ? -2147483647 : INT_MIN;
    EXPECT_EQ(mini_read_string(m_handle, "s", "z", buffer, &size), -1);
    EXPECT_STREQ(buffer, "~");
}

TEST_F(Mini, NullBuffer_GivesTheLengthUpTo9999) {
    Open("[s]\nx=abc\nyy=1\n");
    zr_long size = -5;
    EXPECT_EQ(mini_read_string(m_handle, "s", "x", nullptr, &size), 0);
    EXPECT_EQ(size, 3);
    EXPECT_EQ(mini_rw_string(0, m_handle, "s", "x", nullptr, &size), 0);
    EXPECT_EQ(size, 3);
    EXPECT_EQ(mini_read_string(m_handle, "s", nullptr, nullptr, &size), 0);
    EXPECT_EQ(size, 5);
    EXPECT_EQ(mini_read_string(m_handle, "s", "none", nullptr, &size), 2);
    EXPECT_EQ(mini_read_string(m_handle, "none", "x", nullptr, &size), 1);
    EXPECT_EQ(size, 5);
    for (const std::size_t length : {9998U, 9999U, 10000U}) {
        mini_write_string(m_handle, "s", "long", std::string(length, 'v').c_str());
        size = 1;
        EXPECT_EQ(mini_read_string(m_handle, "s", "long", nullptr, &size), length > 9999 ? 3 : 0);
        EXPECT_EQ(size, std::min<zr_long>(static_cast<zr_long>(length), 9999));
    }
}

TEST_F(Mini, NameList_HoldsATerminatorForEach) {
    Open("[s]\na=1\nb=2\n[t]\n");
    const std::string list = "a\0b\0"s;
    EXPECT_EQ(Read("s", {}, 100), (Reference::Answer{0, list, 4}));
    EXPECT_EQ(Read("s", {}, 5), (Reference::Answer{0, list, 4}));
    EXPECT_EQ(Read("s", {}, 4), (Reference::Answer{3, "a\0b"s, 3}));
    EXPECT_EQ(Read("s", {}, 3), (Reference::Answer{3, "a\0"s, 2}));
    EXPECT_EQ(Read("s", {}, 1), (Reference::Answer{3, "", 0}));
    EXPECT_EQ(Read("s", {}, 0), (Reference::Answer{3, "", 0}));
    EXPECT_EQ(Read("t", {}, 0), (Reference::Answer{0, "", 0}));
    EXPECT_EQ(Read("u", {}, 9), (Reference::Answer{1, "", 9}));
}

TEST_F(Mini, Numbers_AreConvertedAsInLists) {
    Open("[s]\na= 42\nb=-7.5e2xx\nc=text\nd=99999999999\ne=\nf=1,2\ng=0x10\n");
    const struct {
        const char *entry;
        zr_long number;
        double real;
    } rows[] = {{"a", 42, 42}, {"b", -7, -750}, {"c", 0, 0}, {"d", 2147483647, 99999999999.0},
                {"e", 0, 0},   {"f", 1, 1},     {"g", 0, 16}};
    for (const auto &row : rows) {
        zr_long number = 77;
        double real = 77;
        EXPECT_EQ(mini_read_long(m_handle, "s", row.entry, &number), 0);
        EXPECT_EQ(mini_read_double(m_handle, "s", row.entry, &real), 0);
        EXPECT_EQ(number, row.number) << row.entry;
        EXPECT_EQ(real, row.real) << row.entry;
    }
    for (const std::size_t size : {2046U, 2047U, 2048U}) {
        mini_write_string(m_handle, "s", "long", (std::string(size - 1, ' ') + "5").c_str());
        zr_long number = 77;
        double real = 77;
        EXPECT_EQ(mini_read_long(m_handle, "s", "long", &number), size > 2047 ? 3 : 0);
        EXPECT_EQ(mini_read_double(m_handle, "s", "long", &real), size > 2047 ? 3 : 0);
        EXPECT_EQ(number, size > 2047 ? 77 : 5);
        EXPECT_EQ(real, size > 2047 ? 77 : 5);
    }
}

TEST_F(Mini, NumbersThatAreNotThere_LeaveTheOutputsAlone) {
    Open("t=1\n[s]\na=2\n");
    zr_long number = 77, count = 1;
    double real = 77;
    for (const auto &[section, entry, result] :
         {std::tuple("u", "a", 1), std::tuple("s", "b", 2), std::tuple("s", " a", 2), std::tuple("S", "a", 1)}) {
        EXPECT_EQ(mini_read_long(m_handle, section, entry, &number), result) << section << entry;
        EXPECT_EQ(mini_read_double(m_handle, section, entry, &real), result) << section << entry;
        EXPECT_EQ(mini_read_longs(m_handle, section, entry, &number, &count), result) << section << entry;
        EXPECT_EQ(mini_read_doubles(m_handle, section, entry, &real, &count), result) << section << entry;
    }
    EXPECT_EQ(number, 77);
    EXPECT_EQ(real, 77);
    EXPECT_EQ(count, 1);
    mini_write_string(m_handle, "s", "long", (std::string(2046, '1') + ",2").c_str());
    count = 5;
    EXPECT_EQ(mini_read_doubles(m_handle, "s", "long", &real, &count), 3);
    EXPECT_EQ(count, 5);
}

TEST_F(Mini, NumbersOfASection_NeedItsNameTrimmedOnly) {
    Open("t=1\n[s]\na=2\n");
    for (const auto &[section, entry, expected] :
         {std::tuple(" s\t", "a", 2), std::tuple("s", "a", 2), std::tuple(" ", "t", 1),
          std::tuple(static_cast<const char *>(nullptr), "t", 1)}) {
        zr_long number = 0, count = 1;
        double real = 0;
        EXPECT_EQ(mini_read_long(m_handle, section, entry, &number), 0);
        EXPECT_EQ(number, expected);
        EXPECT_EQ(mini_read_double(m_handle, section, entry, &real), 0);
        EXPECT_EQ(real, expected);
        number = 0;
        EXPECT_EQ(mini_read_longs(m_handle, section, entry, &number, &count), 0);
        EXPECT_EQ(number, expected);
        real = 0;
        EXPECT_EQ(mini_read_doubles(m_handle, section, entry, &real, &count), 0);
        EXPECT_EQ(real, expected);
    }
}

TEST_F(Mini, NumberLists_EndWithTheTextOrTheArray) {
    Open("[s]\na=1,2,3\nb=1,2,\nc=1,,2\nd=\ne=,\n");
    const struct {
        const char *entry;
        zr_long room;
        int result;
        std::vector<zr_long> numbers;
    } rows[] = {{"a", 2, 3, {1, 2}}, {"b", 2, 0, {1, 2}}, {"b", 9, 0, {1, 2}}, {"c", 9, 0, {1, 0, 2}},
                {"d", 9, 0, {}},     {"e", 9, 0, {0}},    {"a", 0, 3, {}},     {"d", 0, 0, {}}};
    for (const auto &row : rows) {
        zr_long numbers[9], count = row.room, real_count = row.room;
        double reals[9];
        EXPECT_EQ(mini_read_longs(m_handle, "s", row.entry, numbers, &count), row.result) << row.entry;
        EXPECT_EQ(mini_read_doubles(m_handle, "s", row.entry, reals, &real_count), row.result) << row.entry;
        EXPECT_EQ(std::vector<zr_long>(numbers, numbers + count), row.numbers) << row.entry;
        EXPECT_EQ(std::vector<zr_long>(reals, reals + real_count), row.numbers) << row.entry;
    }
    std::string longest = std::string(2046, '1') + ",";
    zr_long number = 0, count = 1;
    mini_write_string(m_handle, "s", "long", longest.c_str());
    EXPECT_EQ(mini_read_longs(m_handle, "s", "long", &number, &count), 0);
    EXPECT_EQ(count, 1);
    longest += "2";
    mini_write_string(m_handle, "s", "long", longest.c_str());
    count = 5;
    EXPECT_EQ(mini_read_longs(m_handle, "s", "long", &number, &count), 3);
    EXPECT_EQ(count, 5); // it stays, as with every failure
    double real = 0;
    EXPECT_EQ(mini_read_doubles(m_handle, "s", "none", &real, &count), 2);
    EXPECT_EQ(mini_read_doubles(m_handle, "none", "a", &real, &count), 1);
    EXPECT_EQ(count, 5);
    count = -1;
    EXPECT_EQ(mini_read_longs(m_handle, "s", "a", &number, &count), -1);
    EXPECT_EQ(mini_read_doubles(m_handle, "s", "a", &real, &count), -1);
    EXPECT_EQ(count, -1);
}

TEST_F(Mini, Path_IsExpandedUnderTheFolderOfTheHandle) {
    const std::string root = Path("zr");
    Open("[s]\na=.\\sub\\x.txt\nb=C:\\y\nc=$INSTALLDIR$\\z\ne=\nlong=" + std::string(261, 'p'));
    const auto read = [&](const char *entry, zr_long size) {
        std::vector<char> buffer(static_cast<std::size_t>(size) + 1, '~');
        zr_long length = size;
        const int result = mini_read_path(m_handle, "s", entry, buffer.data(), &length);
        EXPECT_EQ(length, result == 0 ? static_cast<zr_long>(std::strlen(buffer.data())) : size);
        return std::to_string(result) + (result == 0 ? buffer.data() : "");
    };
    EXPECT_EQ(read("a", 259), "0" + Path("sub\\x.txt"));
    EXPECT_EQ(read("b", 259), "0C:\\y");
    EXPECT_EQ(read("c", 259), "0" + root + "\\z");
    EXPECT_EQ(read("e", 259), "0");
    EXPECT_EQ(read("b", 5), "0C:\\y");
    EXPECT_EQ(read("b", 4), "0C:\\"); // one of just the size loses its last character
    EXPECT_EQ(read("b", 3), "3");
    EXPECT_EQ(read("long", 259), "3");
    EXPECT_EQ(read("none", 259), "2");
    zr_long size = 100;
    EXPECT_EQ(mini_read_path(m_handle, "s", "b", nullptr, &size), 0);
    EXPECT_EQ(size, 4);
    EXPECT_EQ(mini_read_path(m_handle, "t", "b", nullptr, &size), 1);
    EXPECT_EQ(mini_read_path(m_handle, "s", "b", nullptr, nullptr), 3);
    EXPECT_EQ(mini_read_path(m_handle, "s", nullptr, nullptr, &size), 2);
    EXPECT_EQ(mini_read_path(nullptr, "s", "b", nullptr, &size), -1);
    size = -1;
    EXPECT_EQ(mini_read_path(m_handle, "s", "b", nullptr, &size), -1);
}

// Both families on one file: values as long as may be, outputs as short as may be.
TEST_F(Mini, Paths_AreThoseOfTheOtherFamily) {
    std::string bytes = "[s]\nempty=\nname=x\nup=..\\x\ndot=.\nvar=$INSTALLDIR$\n";
    for (const std::size_t size : {255U, 256U, 258U, 259U, 260U, 261U})
        bytes += "p" + std::to_string(size) + "=C:\\" + std::string(size - 3, 'p') + "\n";
    for (const std::size_t size : {100U, 240U, 255U, 259U})
        bytes += "r" + std::to_string(size) + "=.\\" + std::string(size - 2, 'r') + "\n";
    Open(bytes);
    int found = 0;
    const auto sections = Content();
    for (const auto &entry : sections.back().entries) {
        for (const zr_long room : {0, 1, 2, 3, 257, 258, 259, 260, 261, 300}) {
            char text[302], expected[302];
            std::memset(text, '~', sizeof text);
            std::memset(expected, '~', sizeof expected);
            zr_long size = room, expected_size = room;
            const int result = ini_read_path(m_path.c_str(), "s", entry.name.c_str(), expected, &expected_size);
            EXPECT_EQ(mini_read_path(m_handle, " s ", entry.name.c_str(), text, &size), result) << entry.name << room;
            EXPECT_EQ(size, expected_size) << entry.name << room;
            EXPECT_EQ(std::string(text, sizeof text), std::string(expected, sizeof expected)) << entry.name << room;
            found += result == 0 && size > 0 ? 1 : 0;
        }
    }
    EXPECT_GT(found, 20);
}

TEST_F(Mini, PathUnderAFolderWithoutSeparator_IsExpandedAllTheSame) {
    Write("one\\a.ini", "[s]\na=.\\x\nb=y\n");
    m_handle = mini_open(Path("one").c_str(), "a.ini", 0);
    ASSERT_NE(m_handle, nullptr);
    char text[260];
    for (const auto &[entry, expected] : {std::pair("a", "one\\x"), std::pair("b", "one\\y")}) {
        zr_long size = 259;
        EXPECT_EQ(mini_read_path(m_handle, "s", entry, text, &size), 0);
        EXPECT_EQ(text, Path(expected));
    }
    EXPECT_EQ(mini_write_path(m_handle, "s", "a", Path("one\\sub\\z").c_str()), 0);
    EXPECT_EQ(Value("s", "a"), ".\\sub\\z");
}

TEST_F(Mini, GetString_IsNeverNull) {
    Open("t=0\n[s]\nx=1\ny=long\n[ u ]\nz=2");
    char buffer[4] = "~";
    zr_long size = 3;
    EXPECT_EQ(mini_get_string(m_handle, " s ", "x", buffer, &size), buffer);
    EXPECT_STREQ(buffer, "1");
    EXPECT_EQ(size, 1);
    size = 3;
    for (const char *entry : {"none", "y"}) { // neither what is missing nor what is cut
        std::strcpy(buffer, "~");
        EXPECT_EQ(mini_get_string(m_handle, "s", entry, buffer, &size), buffer);
        EXPECT_STREQ(buffer, "");
    }
    std::strcpy(buffer, "~");
    EXPECT_EQ(mini_get_string(m_handle, "s", "x", buffer, nullptr), buffer);
    EXPECT_STREQ(buffer, "");
    std::strcpy(buffer, "~");
    EXPECT_EQ(mini_get_string(nullptr, "s", "x", buffer, &size), buffer);
    EXPECT_STREQ(buffer, "");

    size = 3;
    EXPECT_STREQ(mini_get_string(m_handle, nullptr, "t", buffer, &size), "0");
    size = 3;
    EXPECT_STREQ(mini_get_string(m_handle, "u", nullptr, buffer, &size), "z"); // the list of names
    EXPECT_EQ(size, 2);
    EXPECT_EQ(buffer[2], 0);

    const char *const text = mini_get_string(m_handle, "s", "x", nullptr, nullptr);
    EXPECT_STREQ(text, "1");
    EXPECT_EQ(mini_get_string(m_handle, "s", "x", nullptr, &size), text);
    EXPECT_STREQ(mini_get_string(m_handle, "", "t", nullptr, nullptr), "0");
    EXPECT_STREQ(mini_get_string(m_handle, " ", "t", nullptr, nullptr), "");
    EXPECT_STREQ(mini_get_string(m_handle, " s ", "x", nullptr, nullptr), "");
    EXPECT_STREQ(mini_get_string(m_handle, "s", " x", nullptr, nullptr), "");
    EXPECT_STREQ(mini_get_string(m_handle, "s", nullptr, nullptr, nullptr), "");
    EXPECT_STREQ(mini_get_string(m_handle, nullptr, "t", nullptr, nullptr), "");
    EXPECT_STREQ(mini_get_string(nullptr, "s", "x", nullptr, nullptr), "");
    EXPECT_EQ(m_handle->sections.count, 3); // a look in the file for what isn't there adds nothing
    EXPECT_STREQ(text, "1");
    mini_write_string(m_handle, "s", "other", "v");
    EXPECT_EQ(mini_delete_entry(m_handle, "s", "y"), 0);
    EXPECT_EQ(mini_rename_entry(m_handle, "s", "x", "new"), 0);
    EXPECT_EQ(mini_rename_section(m_handle, "s", "n"), 0);
    EXPECT_EQ(mini_unload_one_section(m_handle, "u"), 0);
    EXPECT_EQ(mini_update_file(m_handle), 1);
    EXPECT_EQ(mini_get_string(m_handle, "n", "new", nullptr, nullptr), text); // as long as nobody changes its value
    EXPECT_STREQ(text, "1");
}

// ---- Listing ------------------------------------------------------------------------------------------------------

TEST_F(Mini, Listing_PutsTheDelimiterBetweenNames) {
    Open("[A]\nx=1\nyy=2\nx=3\n[B]\n");
    EXPECT_EQ(Sections(), ",A,B");
    EXPECT_EQ(Sections(5), ",A,B");
    EXPECT_EQ(Sections(4, 3), ",A");
    EXPECT_EQ(Sections(3, 3), ",A"); // with their ends the names take 1, 3 and 5
    EXPECT_EQ(Sections(2, 3), "");
    EXPECT_EQ(Sections(1, 3), "");
    EXPECT_EQ(Sections(0, 3), "-");
    EXPECT_EQ(Sections(-1, 3), "-");
    EXPECT_EQ(Entries("A"), "x,yy,x");
    EXPECT_EQ(Entries("A", 7), "x,yy,x");
    EXPECT_EQ(Entries("A", 6, 3), "x,yy");
    EXPECT_EQ(Entries("A", 2, 3), "x");
    EXPECT_EQ(Entries("A", 1, 3), "-");
    EXPECT_EQ(Entries("B"), "-");
    EXPECT_EQ(Entries("B", 0), "-");
    EXPECT_EQ(Entries(""), "-");
    EXPECT_EQ(Entries("C", 100, 1), "-");
    EXPECT_EQ(mini_unload_all_sections(m_handle), 0);
    EXPECT_EQ(Sections(0), "-");
    mini_write_string(m_handle, "A", "x", "1");
    mini_write_string(m_handle, "B", "x", "1");
    char buffer[] = "~~~~";
    EXPECT_EQ(mini_get_sections(m_handle, buffer, 4, '\0'), 0);
    EXPECT_EQ(std::string(buffer, 5), "A\0B\0\0"s);
}

TEST_F(Mini, SectionExists_TakesTheNameAsItIs) {
    Open("[A]\n");
    EXPECT_EQ(mini_section_exists(m_handle, "A"), 1);
    EXPECT_EQ(mini_section_exists(m_handle, ""), 1);
    EXPECT_EQ(mini_section_exists(m_handle, " A"), 0);
    EXPECT_EQ(mini_section_exists(m_handle, " "), 0);
    EXPECT_EQ(mini_section_exists(m_handle, "a"), 0);
    EXPECT_EQ(mini_section_exists(m_handle, nullptr), 3);
    EXPECT_EQ(mini_section_exists(nullptr, "A"), -1);
    EXPECT_EQ(mini_section_exists(nullptr, nullptr), -1);
}

// ---- Unloading ----------------------------------------------------------------------------------------------------

TEST_F(Mini, UnloadedSection_ComesBackFromTheFileOnlyWhereItIsTold) {
    Open("t=0\n[A]\nx=1\n[B]\ny=2\n[A]\nz=3\n");
    EXPECT_EQ(mini_unload_one_section(m_handle, " B"), 1);
    EXPECT_EQ(mini_unload_one_section(m_handle, nullptr), 1);
    EXPECT_EQ(mini_unload_one_section(nullptr, "B"), -1);
    EXPECT_EQ(mini_unload_one_section(m_handle, "B"), 0);
    EXPECT_EQ(mini_unload_one_section(m_handle, "B"), 1);
    EXPECT_EQ(ResultOf("B", "y"), 1);
    EXPECT_STREQ(mini_get_string(m_handle, "B", "y", nullptr, nullptr), "2");
    EXPECT_EQ(Value("B", "y"), "2");
    EXPECT_EQ(Sections(), ",A,A,B");
    EXPECT_EQ(mini_unload_one_section(m_handle, "A"), 0); // the first of the two
    EXPECT_EQ(ResultOf("A", "x"), 2);
    EXPECT_EQ(Value("A", "z"), "3");
    EXPECT_EQ(mini_unload_one_section(m_handle, "A"), 0);
    EXPECT_EQ(mini_write_string(m_handle, "A", "new", "4"), 0);
    EXPECT_EQ(Entries("A"), "x,new"); // the first in the file
    EXPECT_EQ(mini_unload_one_section(m_handle, ""), 0);
    EXPECT_EQ(ResultOf("", "t"), 1);
    EXPECT_STREQ(mini_get_string(m_handle, "", "t", nullptr, nullptr), "0");
    EXPECT_EQ(Sections(), ",B,A");
}

TEST_F(Mini, SectionThatComesBack_IsReadAsAtTheLoad) {
    Open("bad\n[A]\nx=1\n[]\nlost\n[B]\n;note\ny=2\nworse\n y = 3 \n[C]\nz\n");
    m_reports.Take();
    const auto before = Content();
    EXPECT_EQ(mini_unload_one_section(m_handle, "B"), 0);
    char buffer[9] = "~";
    zr_long size = 8;
    EXPECT_STREQ(mini_get_string(m_handle, "B", "y", buffer, &size), ""); // into a buffer from memory only
    EXPECT_EQ(Sections(), ",A,C");
    EXPECT_STREQ(mini_get_string(m_handle, "B", "y", nullptr, nullptr), "2");
    const std::string folder = Path("") + "\\";
    EXPECT_EQ(m_reports.Take(), (Taken{Error("Mini", malformed_text, folder.c_str(), "test.ini")})); // its own line
    EXPECT_EQ(Content().back(), *std::next(before.begin(), 2)); // and not as a changed one
    EXPECT_STREQ(mini_get_string(m_handle, "B", "y", nullptr, nullptr), "2");
    EXPECT_EQ(m_reports.Take(), Taken()); // it was there now
    EXPECT_EQ(mini_unload_one_section(m_handle, "B"), 0);
    EXPECT_EQ(mini_write_string(m_handle, "B", " ", "v"), 2); // comes back all the same
    EXPECT_EQ(Entries("B"), "y,y");
    EXPECT_EQ(Sections(), ",A,C,B");
    EXPECT_FALSE(Content().back().changed);
    for (const char *other : {"delete", "rename", "list"}) {
        EXPECT_EQ(mini_unload_one_section(m_handle, "C"), *other == 'd' ? 0 : 1);
        EXPECT_EQ(*other == 'd'   ? mini_delete_entry(m_handle, "C", "none")
                  : *other == 'r' ? mini_rename_entry(m_handle, "C", "none", "n")
                                  : mini_get_entries(m_handle, "C", buffer, 8, ','),
                  *other == 'l' ? 1 : 2);
        EXPECT_EQ(mini_section_exists(m_handle, "C"), 0) << other;
    }
}

TEST_F(Mini, UnloadedFile_IsWrittenEmpty) {
    Open("[A]\nx=1\n");
    EXPECT_EQ(mini_unload_all_sections(nullptr), -1);
    EXPECT_EQ(mini_unload_all_sections(m_handle), 0);
    EXPECT_EQ(mini_unload_all_sections(m_handle), 0);
    EXPECT_EQ(m_handle->sections.count, 0);
    EXPECT_EQ(ResultOf("A", "x"), 1);
    EXPECT_EQ(mini_close(&m_handle), 1);
    EXPECT_EQ(m_handle, nullptr);
    EXPECT_EQ(Bytes(), "");
    Open("[A]\nx=1\n", MINI_READONLY);
    EXPECT_EQ(mini_unload_all_sections(m_handle), 0);
    EXPECT_EQ(mini_close(&m_handle), 1);
    EXPECT_EQ(Bytes(), "[A]\nx=1\n");
}

TEST_F(Mini, Cache_DoesNotSeeTheDisk) {
    Open("[A]\nx=1\n");
    m_folder.Write("test.ini", "[A]\nx=2\n[B]\ny=3\n");
    EXPECT_EQ(Value("A", "x"), "1");
    EXPECT_EQ(mini_section_exists(m_handle, "B"), 0);
    EXPECT_STREQ(mini_get_string(m_handle, "B", "y", nullptr, nullptr), "3"); // which looks there
}

// ---- Arguments ----------------------------------------------------------------------------------------------------

TEST_F(Mini, NullArguments_AreTestedInTheirOrder) {
    Open("[s]\nx=1\n");
    zr_long number = 7, count = 1, size = 3;
    double real = 7;
    char buffer[] = "~~~~";
    EXPECT_EQ(mini_read_string(nullptr, "s", "x", buffer, nullptr), -1);
    EXPECT_EQ(mini_read_string(nullptr, "s", "x", buffer, &size), -1);
    EXPECT_EQ(mini_read_string(nullptr, "s", "x", nullptr, &size), -1);
    EXPECT_EQ(mini_read_string(m_handle, "s", "x", buffer, nullptr), 3);
    EXPECT_EQ(mini_read_string(m_handle, "s", "x", nullptr, nullptr), 3);
    EXPECT_EQ(mini_read_string(m_handle, "s", nullptr, buffer, nullptr), 3);
    EXPECT_EQ(mini_read_long(nullptr, "s", nullptr, nullptr), -1);
    EXPECT_EQ(mini_read_long(m_handle, "s", nullptr, nullptr), 3);
    EXPECT_EQ(mini_read_long(m_handle, "s", nullptr, &number), 2);
    EXPECT_EQ(mini_read_double(nullptr, "s", nullptr, nullptr), -1);
    EXPECT_EQ(mini_read_double(m_handle, "s", nullptr, nullptr), 3);
    EXPECT_EQ(mini_read_double(m_handle, "s", nullptr, &real), 2);
    EXPECT_EQ(mini_read_longs(nullptr, "s", "x", &number, &count), -1);
    EXPECT_EQ(mini_read_longs(m_handle, "s", nullptr, nullptr, &count), 3);
    EXPECT_EQ(mini_read_longs(m_handle, "s", nullptr, &number, nullptr), 3);
    EXPECT_EQ(mini_read_longs(m_handle, "s", nullptr, &number, &count), 2);
    EXPECT_EQ(mini_read_doubles(nullptr, "s", "x", &real, &count), -1);
    EXPECT_EQ(mini_read_doubles(m_handle, "s", nullptr, nullptr, &count), 3);
    EXPECT_EQ(mini_read_doubles(m_handle, "s", nullptr, &real, nullptr), 3);
    EXPECT_EQ(mini_read_doubles(m_handle, "s", nullptr, &real, &count), 2);
    EXPECT_EQ(mini_get_sections(nullptr, buffer, 4, ','), -1);
    EXPECT_EQ(mini_get_sections(m_handle, nullptr, 4, ','), 3);
    EXPECT_EQ(mini_get_entries(nullptr, "s", buffer, 4, ','), -1);
    EXPECT_EQ(mini_get_entries(m_handle, nullptr, buffer, 4, ','), 3);
    EXPECT_EQ(mini_get_entries(m_handle, "s", nullptr, 4, ','), 3);
    EXPECT_EQ(mini_get_entries(m_handle, "none", nullptr, 4, ','), 3);
    EXPECT_EQ(mini_get_sections(nullptr, nullptr, 4, ','), -1);
    EXPECT_EQ(mini_get_entries(nullptr, nullptr, nullptr, 4, ','), -1);
    EXPECT_EQ(mini_unload_one_section(nullptr, nullptr), -1);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(real, 7);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(size, 3);
    EXPECT_STREQ(buffer, "~~~~");
}

TEST_F(Mini, Close_OfNoHandleGivesZero) {
    mini_file *none = nullptr;
    EXPECT_EQ(mini_close(&none), 0);
    EXPECT_EQ(mini_close_ex(&none), 0);
    EXPECT_EQ(mini_close(nullptr), 0);
    EXPECT_EQ(mini_close_ex(nullptr), 0);
    EXPECT_EQ(mini_update_file(nullptr), 0);
    Open("x=1");
    EXPECT_EQ(mini_close_ex(&m_handle), 1);
    EXPECT_EQ(m_handle, nullptr);
}

} // namespace
