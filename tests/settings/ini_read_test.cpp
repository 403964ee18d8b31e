// Reading single values of settings files.
#include <zrclb/ini.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "env/report_capture.h"
#include "platform/raw_file.h"
#include "platform/temp_folder.h"
#include "settings/reference_ini.h"

namespace {

using zr::test::IniAnswer;
using zr::test::ReferenceIni;
using Section = ReferenceIni::Section;

const char *OrNull(const Section &text) {
    return text ? text->c_str() : nullptr;
}

class IniRead : public testing::Test {
protected:
    // The file holds these bytes.
    const char *File(const std::string &bytes) {
        m_folder.Write("test.ini", bytes);
        return m_path.c_str();
    }

    std::string Value(const std::string &bytes, const Section &section, const std::string &entry, int expected = 0) {
        char buffer[2049] = "-";
        zr_long size = 2048;
        EXPECT_EQ(ini_read_string(File(bytes), OrNull(section), entry.c_str(), buffer, &size), expected);
        EXPECT_EQ(size, expected == 0 ? static_cast<zr_long>(std::strlen(buffer)) : 2048);
        return buffer;
    }

    // In a buffer that has not a byte more than told.
    IniAnswer Read(const Section &section, const Section &entry, int size) {
        std::vector<char> buffer(static_cast<std::size_t>(size) + 1, '~');
        zr_long length = size;
        IniAnswer answer;
        answer.result = ini_read_string(m_path.c_str(), OrNull(section), OrNull(entry), buffer.data(), &length);
        answer.size = static_cast<int>(length);
        const bool stored = answer.result == 0 || answer.result == 3;
        if (stored && !entry) {
            answer.text.assign(buffer.data(), static_cast<std::size_t>(length));
            EXPECT_EQ(buffer[static_cast<std::size_t>(length)], 0);
            EXPECT_TRUE(answer.result == 0 || buffer.back() == 0); // a name that was cut has its end, too
        } else if (stored) {
            answer.text = buffer.data();
        } else {
            EXPECT_EQ(buffer, std::vector<char>(buffer.size(), '~'));
        }
        const auto texts = TextsOf(m_reports);
        for (std::size_t i = 0; i < texts.size(); i += 2)
            EXPECT_EQ(texts[i], "Incorrect entry's format. '=' is not found. File below:");
        answer.malformed = static_cast<int>(texts.size() / 2);
        return answer;
    }

    TempFolder m_folder;
    const std::string m_path = m_folder.Path("test.ini");
    zr::test::ReportCapture m_reports;
};

TEST_F(IniRead, FirstEntryAndFirstSection_Win) {
    EXPECT_EQ(Value("[s]\nx=1\nx=2\n[s]\nx=3\ny=4\n", "s", "x"), "1");
    EXPECT_EQ(Value("[s]\nx=1\nx=2\n[s]\nx=3\ny=4\n", "s", "y", 2), "-");
}

TEST_F(IniRead, Value_KeepsTheBlankBehindTheSign) {
    EXPECT_EQ(Value("[s]\n \tname = value \t\r\n", "s", "name"), " value");
    zr_long number = -1;
    EXPECT_EQ(ini_read_long(File("[s]\nn= 42\n"), "s", "n", &number), 0);
    EXPECT_EQ(number, 42);
    EXPECT_EQ(Value("[s]\na=\n", "s", "a"), "");
    EXPECT_EQ(Value("[s]\na==b=\n", "s", "a"), "=b=");
}

TEST_F(IniRead, NamesInTheFile_AreTrimmedAndThoseGivenAreNot) {
    const std::string bytes = "[ sec ]x\na=1\n";
    EXPECT_EQ(Value(bytes, "sec", "a"), "1");
    EXPECT_EQ(Value(bytes, " sec ", "a", 1), "-");
    EXPECT_EQ(Value(bytes, "SEC", "a", 1), "-");
    EXPECT_EQ(Value(bytes, "sec", "A", 2), "-");
    EXPECT_EQ(Value(bytes, "sec", " a", 2), "-");
    EXPECT_EQ(Value("[open\na=1\n", "open", "a"), "1");
    EXPECT_EQ(Value("[a]b]\na=1\n", "a", "a"), "1");
    EXPECT_EQ(Value("[s]\n=1\n", "s", ""), "1");
    EXPECT_EQ(Value("[s]\n\xA0 a \xE4 = 1\n", "s", "\xA0 a \xE4"), " 1"); // bytes above 127 are no blanks
}

TEST_F(IniRead, TopArea_IsNullAndBlank) {
    const std::string bytes = "a=1\n[]\nb=2\n[s]\na=3\n";
    EXPECT_EQ(Value(bytes, {}, "a"), "1");
    EXPECT_EQ(Value(bytes, "", "a"), "1");
    EXPECT_EQ(Value(bytes, " \t\r\n\x01", "a"), "1");
    EXPECT_EQ(Value(bytes, "", "b", 2), "-");
    EXPECT_EQ(Value("", "", "b", 2), "-");
    EXPECT_EQ(Value("", "s", "b", 1), "-");
}

TEST_F(IniRead, SectionName_BlankInItsFirst79CharactersIsTheTopArea) {
    const std::string bytes = "a=1\n[x]\na=2\n";
    EXPECT_EQ(Value(bytes, std::string(78, ' ') + "x", "a", 1), "-");
    EXPECT_EQ(Value(bytes, std::string(79, ' ') + "x", "a"), "1");
    // A header may be as long as a line; behind that it is cut.
    for (const std::size_t length : {78U, 79U, 80U, 81U, 2044U, 2045U, 2046U}) {
        const std::string name(length, 'n');
        EXPECT_EQ(Value("[" + name + "]\na=1\n", name, "a", length < 2046 ? 0 : 1), length < 2046 ? "1" : "-");
        EXPECT_EQ(Value("[" + name + "n]\na=1\n", name, "a", length == 2045 ? 0 : 1), length == 2045 ? "1" : "-");
    }
}

TEST_F(IniRead, Comments_TakeAWholeLineOnly) {
    const std::string bytes = "[s]\n; x=1\n\t;x=2\nx=1 ; note\n;[t]\ny=3\n";
    EXPECT_EQ(Value(bytes, "s", "x"), "1 ; note");
    EXPECT_EQ(Value(bytes, "s", "y"), "3");
    EXPECT_EQ(Value(bytes, "s", "; x", 2), "-");
}

TEST_F(IniRead, Value_LongerThanTheBufferIsCut) {
    const char *file = File("[s]\na=abcd\nb=abc\n");
    char buffer[5] = "~~~~";
    zr_long size = 3;
    EXPECT_EQ(ini_read_string(file, "s", "a", buffer, &size), 3);
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(buffer[4], 0);
    EXPECT_EQ(size, 3);
    EXPECT_EQ(ini_read_string(file, "s", "b", buffer, &size), 0);
    EXPECT_EQ(size, 3);
    for (const int room : {0, 2, 3, 4})
        EXPECT_EQ(Read("s", "b", room), ReferenceIni().Read(m_path, "s", "b", room)) << room;
    size = 9;
    EXPECT_EQ(ini_read_string(file, "s", "a", nullptr, &size), 0);
    EXPECT_EQ(size, 4);
    EXPECT_EQ(ini_read_string(file, "s", "a", nullptr, &(size = 3)), 3);
    EXPECT_EQ(size, 3);
}

TEST_F(IniRead, BadArguments_GiveNoFile) {
    const char *file = File("[s]\na=1\n");
    char buffer[9] = "~";
    zr_long size = -1;
    EXPECT_EQ(ini_read_string(file, "s", "a", buffer, &size), -1);
    EXPECT_EQ(size, -1);
    EXPECT_EQ(ini_read_string(file, "s", "a", buffer, nullptr), -1);
    size = 8;
    EXPECT_EQ(ini_read_string(file, "s", nullptr, nullptr, &size), -1);
    EXPECT_EQ(ini_read_string(m_folder.Path("none").c_str(), "s", "a", buffer, &size), -1);
    EXPECT_EQ(ini_read_string(m_folder.Folder().string().c_str(), "s", "a", buffer, &size), -1);
    EXPECT_EQ(ini_read_string(std::string(300, 'x').c_str(), "s", "a", buffer, &size), -1);
    EXPECT_EQ(ini_read_long(file, "s", "a", nullptr), -1);
    EXPECT_EQ(ini_read_double(file, "s", "a", nullptr), -1);
    EXPECT_STREQ(buffer, "~");
    zr_long values[1], count = -1;
    EXPECT_EQ(ini_read_longs(file, "s", "a", values, &count), -1);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(ini_read_longs(file, "s", "a", values, nullptr), -1);
    count = 1;
    EXPECT_EQ(ini_read_longs(file, "s", "a", nullptr, &count), -1);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(TextsOf(m_reports), std::vector<std::string>());
}

TEST_F(IniRead, NameList_HoldsATerminatorForEach) {
    File("[s]\na=1\n;c\n b = 2\n[t]\nc=3\n");
    EXPECT_EQ(Read("s", {}, 100), (IniAnswer{0, std::string("a\0b\0", 4), 4, 0}));
    EXPECT_EQ(Read("t", {}, 100), (IniAnswer{0, std::string("c\0", 2), 2, 0}));
    EXPECT_EQ(Read("u", {}, 100), (IniAnswer{1, "", 100, 0}));
    EXPECT_EQ(Read("", {}, 100), (IniAnswer{0, "", 0, 0}));
    File("[s]\nname=1\nlonger=2\n=3\n");
    for (int size = 0; size < 18; ++size)
        EXPECT_EQ(Read("s", {}, size), ReferenceIni().Read(m_path, "s", {}, size)) << size;
}

TEST_F(IniRead, LineWithoutSign_IsReportedTwiceAndPassedOver) {
    using zr::test::Error;
    const char *file = File("lost\n[t]\nx\n[s]\n\nbad line\na=1\nworse\n");
    char buffer[9];
    zr_long size = 8;
    EXPECT_EQ(ini_read_string(file, "s", "a", buffer, &size), 0);
    const auto first = Error("Ini", "Incorrect entry's format. '=' is not found. File below:");
    EXPECT_EQ(m_reports.Take(), (zr::test::Reports{first, Error("Ini", file, "s", "a")}));
    size = 8;
    EXPECT_EQ(ini_read_string(file, "s", nullptr, buffer, &size), 0);
    EXPECT_EQ(m_reports.Take(), (zr::test::Reports{first, Error("Ini", file, "s"), first, Error("Ini", file, "s")}));
    EXPECT_EQ(ini_read_string(file, "u", "a", buffer, &size), 1);
    EXPECT_EQ(m_reports.Take(), zr::test::Reports());
}

TEST_F(IniRead, Numbers_AreConvertedAsTheyStand) {
    const char *file = File("[s]\nl=-17x\nbig=99999999999\nno=abc\nd= 1.5e3\ne=\n");
    zr_long number = 1;
    EXPECT_EQ(ini_read_long(file, "s", "l", &number), 0);
    EXPECT_EQ(number, -17);
    EXPECT_EQ(ini_read_long(file, "s", "big", &number), 0);
    EXPECT_EQ(number, INT32_MAX);
    EXPECT_EQ(ini_read_long(file, "s", "no", &number), 0);
    EXPECT_EQ(number, 0);
    double real = 1.0;
    EXPECT_EQ(ini_read_double(file, "s", "d", &real), 0);
    EXPECT_EQ(real, 1500.0);
    EXPECT_EQ(ini_read_double(file, "s", "e", &real), 0);
    EXPECT_EQ(real, 0.0);
    number = 7;
    real = 7.0;
    EXPECT_EQ(ini_read_long(file, "s", "none", &number), 2);
    EXPECT_EQ(ini_read_long(file, "none", "l", &number), 1);
    EXPECT_EQ(ini_read_double(m_folder.Path("none").c_str(), "s", "d", &real), -1);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(real, 7.0);
}

TEST_F(IniRead, NumberLists_EndWithTheTextOrTheArray) {
    const char *file = File("[s]\na=1,2,3\nb=1,2,\nc=,,5\nd=\ne=1.5,x, 2e1\n");
    zr_long values[4] = {9, 9, 9, 9}, count = 2;
    EXPECT_EQ(ini_read_longs(file, "s", "a", values, &count), 3);
    EXPECT_EQ(count, 2);
    EXPECT_THAT(values, testing::ElementsAre(1, 2, 9, 9));
    EXPECT_EQ(ini_read_longs(file, "s", "b", values, &count), 0);
    EXPECT_EQ(count, 2);
    count = 3;
    EXPECT_EQ(ini_read_longs(file, "s", "a", values, &count), 0);
    EXPECT_EQ(count, 3);
    count = 4;
    EXPECT_EQ(ini_read_longs(file, "s", "c", values, &count), 0);
    EXPECT_EQ(count, 3);
    EXPECT_THAT(values, testing::ElementsAre(0, 0, 5, 9));
    EXPECT_EQ(ini_read_longs(file, "s", "d", values, &count), 0);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(ini_read_longs(file, "s", "d", values, &count), 0);
    EXPECT_EQ(ini_read_longs(file, "s", "a", values, &count), 3);
    EXPECT_EQ(count, 0);
    count = 4;
    EXPECT_EQ(ini_read_longs(file, "s", "none", values, &count), 2);
    EXPECT_EQ(count, 0);
    double reals[3];
    count = 3;
    EXPECT_EQ(ini_read_doubles(file, "s", "e", reals, &count), 0);
    EXPECT_THAT(reals, testing::ElementsAre(1.5, 0.0, 20.0));
    count = 3;
    EXPECT_EQ(ini_read_doubles(file, "t", "e", reals, &count), 1);
    EXPECT_EQ(count, 0);
}

TEST_F(IniRead, DataVersion_IsZeroWhereItIsMissing) {
    zr_long a = 9, b = 9, c = 9, d = 9;
    EXPECT_EQ(ini_get_data_version(m_folder.Path("none").c_str(), &a, &b, &c, &d), 0);
    EXPECT_EQ(a + b + c + d, 0);
    EXPECT_EQ(ini_get_data_version(File("[_Zr_Data_Version_Info_]\nVersion=3,14\n"), &a, &b, &c, &d), 0);
    EXPECT_EQ(a, 3);
    EXPECT_EQ(b, 14);
    EXPECT_EQ(c + d, 0);
    EXPECT_EQ(ini_get_data_version(File("[_Zr_Data_Version_Info_]\nVersion=1,2,3,4,5\n"), nullptr, nullptr, &c, &d), 0);
    EXPECT_EQ(c, 3);
    EXPECT_EQ(d, 4);
    EXPECT_EQ(ini_get_data_version(m_path.c_str(), nullptr, nullptr, nullptr, nullptr), 0);
}

TEST_F(IniRead, LongLines_ComeApartAt2046Characters) {
    // "a=" and the value's characters, then what would be an entry of its own.
    for (const int length : {2044, 2045, 2046, 2047, 2048, 2049, 4093}) {
        for (const char *end : {"\n", "\r\n", ""}) {
            const std::string line = "a=" + std::string(static_cast<std::size_t>(length) - 2, 'v');
            File("[s]\n" + line + end + (*end != 0 ? "z=1" : ""));
            for (const char *entry : {"a", "z"})
                EXPECT_EQ(Read("s", entry, 3000), ReferenceIni().Read(m_path, "s", entry, 3000)) << length;
        }
        // What is behind the split is a line of its own, be it an entry or a header.
        for (const char *rest : {"b=2\n", "[t]\nb=2\n", "\r\nb=2\n", "  [t]\r\nb=2"}) {
            File("[s]\na=" + std::string(static_cast<std::size_t>(length) - 2, 'v') + rest);
            for (const char *section : {"s", "t"})
                EXPECT_EQ(Read(section, "b", 3000), ReferenceIni().Read(m_path, section, "b", 3000)) << length << rest;
        }
    }
    File("[s]\na=" + std::string(100000, 'v') + "\nz=1");
    EXPECT_EQ(Read("s", "z", 3000), ReferenceIni().Read(m_path, "s", "z", 3000));
    EXPECT_EQ(Value("[s]\na=" + std::string(2044, 'v') + "b=2\n", "s", "b"), "2");
    EXPECT_EQ(Value(std::string(2046, ' ') + "[t]\nb=2\n", "t", "b"), "2");
}

// In front of the section, where nothing but headers is looked for.
TEST_F(IniRead, LongLinesInFrontOfTheSection_ArePassedOver) {
    for (const std::size_t length : {2046U, 8190U, 16384U, 18431U, 18432U, 100000U, 2046U * 50, 2046U * 50 + 1}) {
        const std::string line(length, 'v');
        for (const char *rest : {"\n[t]\nb=2\n", "[t]\nb=2\n", "  [t]\r\nb=2", "\r\n[t]\r\nb=2"}) {
            File("[s]\n" + line + rest);
            EXPECT_EQ(Read("t", "b", 9), ReferenceIni().Read(m_path, "t", "b", 9)) << length << rest;
        }
    }
    EXPECT_EQ(Value("[s]\na=" + std::string(100000, 'v') + "\n[t]\nb=2\n", "t", "b"), "2");
    EXPECT_EQ(Value(std::string(2046 * 50, 'v') + "[t]\nb=2\n", "t", "b"), "2");
}

TEST_F(IniRead, BytesOfStreams_CountAsTheStreamHasThem) {
    EXPECT_EQ(Value("[s]\r\na=1\r\n", "s", "a"), "1");
    EXPECT_EQ(Value("[s]\na=1\rb=2\n", "s", "a"), "1\rb=2");
    EXPECT_EQ(Value("[s]\na=1\x1A\nb=2\n", "s", "b", 2), "-");
    EXPECT_EQ(Value("[s]\na=1\x1A\nb=2\n", "s", "a"), "1");
    EXPECT_EQ(Value(std::string("[s]\na=1\0x\nb\0=2\nb=3\n", 20), "s", "a"), "1");
    EXPECT_EQ(Value(std::string("[s]\na=1\0x\nb\0=2\nb=3\n", 20), "s", "b"), "3");
    EXPECT_EQ(Value(std::string("\0[s]\na=1\n[s]\na=2", 16), "s", "a"), "2");
    EXPECT_EQ(Value("[s]\na=last", "s", "a"), "last");
}

// Blocks end at every place of a line, line ends and headers among them.
TEST_F(IniRead, EndsOfBlocks_ChangeNothing) {
    const std::string tail = "; c\r\n [t] \r\na = 1\r\n\r\n[u]\r\nb=\r2\r\n";
    for (std::size_t first = 8192 - tail.size() - 4; first < 8194; ++first) {
        File("[s]\n" + std::string(first / 2, '\n') + std::string(first - first / 2, '\r') + tail);
        EXPECT_EQ(Read("t", "a", 9), (IniAnswer{0, " 1", 2, 0})) << first;
        EXPECT_EQ(Read("u", "b", 9), (IniAnswer{0, "\r2", 2, 0})) << first;
    }
}

TEST_F(IniRead, RandomFiles_AnswerAsThePlainReference) {
    std::mt19937 random(20131);
    const std::vector<std::string> pieces = {
        "[",       "]",    "=",    ";",   "\n",  "\r\n",           "\r",    " ", "a", "b", "s", "\t",
        "\n[s]\n", "\na=", "\xE4", "[s]", "a=1", "\r\n b = 2\r\n", "\n;x\n"};
    const std::vector<std::string> rare = {
        std::string(1, '\0'),   std::string(2040, 'v'), std::string(2046, ' '), std::string(700, 'w'), "\x1A",
        std::string(8000, '\n')};
    const auto below = [&](std::size_t count) { return static_cast<std::size_t>(random() % count); };
    for (int round = 0; round < 80; ++round) {
        std::string bytes;
        for (std::size_t left = below(60); left != 0; --left)
            bytes += below(16) == 0 ? rare[below(rare.size())] : pieces[below(pieces.size())];
        File(bytes);
        for (const Section &section : {Section(), Section("s"), Section("a")}) {
            for (const Section &entry : {Section(), Section("a"), Section("b")}) {
                const int size = static_cast<int>(below(2) == 0 ? below(12) : 3000);
                ASSERT_EQ(Read(section, entry, size), ReferenceIni().Read(m_path, section, entry, size))
                    << testing::PrintToString(bytes) << " " << section.value_or("null") << " "
                    << entry.value_or("null");
            }
        }
    }
}

TEST_F(IniRead, TwoThreads_ReadTheSameFileAtOnce) {
    const char *file = File("[s]\na=1\nb=2\n[t]\na=3\n" + std::string(20000, '\n') + "b=4\n");
    const auto read = [file](const char *section, zr_long a, zr_long b, int *wrong) {
        for (int i = 0; i < 200; ++i) {
            zr_long value = 0;
            *wrong += ini_read_long(file, section, "a", &value) != 0 || value != a;
            *wrong += ini_read_long(file, section, "b", &value) != 0 || value != b;
        }
    };
    int wrong = 0, wrong_there = 0;
    std::thread other(read, "t", 3, 4, &wrong_there);
    read("s", 1, 2, &wrong);
    other.join();
    EXPECT_EQ(wrong + wrong_there, 0);
}

TEST_F(IniRead, FailedRead_IsTheEndOfTheFile) {
    static int reads;
    reads = 0;
    File("[s]\n" + std::string(9000, '\n') + "a=1\n");
    zr::platform::services.read_raw = [](std::intptr_t file, char *out, std::size_t size) -> std::ptrdiff_t {
        return ++reads == 2 ? -1 : zr::platform::backend::ReadRaw(file, out, size);
    };
    EXPECT_EQ(Read("s", "a", 9), (IniAnswer{2, "", 9, 0}));
    reads = 1;
    EXPECT_EQ(Read("s", "a", 9), (IniAnswer{-1, "", 9, 0}));
    zr::platform::services = {};
}

} // namespace
