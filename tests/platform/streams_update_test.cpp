// Streams for reading and writing, binary streams, openings and positions, the same on every platform.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "golden_table.h"
#include "odd_streams.h"
#include "platform/files.h"
#include "platform/streams.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;
using Row = GoldenTable::Row;

constexpr std::size_t block_size = 65536;

// True where names and refusals are the system's own, not those that the library gives.
bool HostIsDesktop() {
    char host[16] = "";
    return HostPath("\\a", host, sizeof host) && std::string(host) != "/a";
}

std::FILE *OpenAs(const std::string &path, const std::string &mode) {
    return mode.find('b') != std::string::npos ? OpenBinary(path.c_str(), mode.c_str())
                                               : OpenText(path.c_str(), mode.c_str());
}

class StreamsUpdate : public testing::Test {
protected:
    // Opens the file of these bytes; the test fails where that fails.
    std::FILE *Open(const std::string &bytes, const char *mode) const {
        m_folder.Write("file", bytes);
        std::FILE *stream = OpenAs(m_folder.Path("file"), mode);
        EXPECT_NE(stream, nullptr) << mode;
        return stream;
    }

    static std::string Get(std::FILE *stream, std::size_t size) {
        std::string text(size, '#');
        text.resize(std::fread(text.data(), 1, size, stream));
        return text;
    }

    static std::string Rest(std::FILE *stream) {
        std::string text;
        for (std::string part = Get(stream, 5000); !part.empty(); part = Get(stream, 5000))
            text += part;
        return text;
    }

    static bool Put(std::FILE *stream, const std::string &text) {
        return std::fwrite(text.data(), 1, text.size(), stream) == text.size();
    }

    TempFolder m_folder;
};

TEST_F(StreamsUpdate, ReadSeekWriteSeekRead) {
    std::FILE *stream = Open("one\r\ntwo\r\nthree\r\n", "r+t");
    EXPECT_EQ(Get(stream, 4), "one\n");
    ASSERT_EQ(std::fseek(stream, 0, SEEK_CUR), 0);
    EXPECT_EQ(TellStream(stream), 5);
    EXPECT_TRUE(Put(stream, "TWO\n"));
    EXPECT_EQ(TellStream(stream), 10);
    ASSERT_EQ(std::fseek(stream, 0, SEEK_CUR), 0);
    EXPECT_EQ(Get(stream, 100), "three\n");
    std::rewind(stream);
    EXPECT_EQ(Rest(stream), "one\nTWO\nthree\n");
    EXPECT_EQ(std::fclose(stream), 0);
    EXPECT_EQ(m_folder.Read("file"), "one\r\nTWO\r\nthree\r\n");
}

TEST_F(StreamsUpdate, WriteRewindRead) {
    std::FILE *stream = Open("dropped", "w+t");
    EXPECT_TRUE(Put(stream, "a\nb\n"));
    std::rewind(stream);
    EXPECT_EQ(Rest(stream), "a\nb\n");
    EXPECT_EQ(TellStream(stream), 6);
    EXPECT_TRUE(Put(stream, "c\n")); // the end of the file was met
    EXPECT_EQ(std::fclose(stream), 0);
    EXPECT_EQ(m_folder.Read("file"), "a\r\nb\r\nc\r\n");
}

TEST_F(StreamsUpdate, WriteFlushRead) {
    for (const char *mode : {"r+t", "r+b"}) {
        SCOPED_TRACE(mode);
        std::FILE *stream = Open("one\r\ntwo\r\n", mode);
        EXPECT_TRUE(Put(stream, "ONE"));
        EXPECT_EQ(std::fflush(stream), 0);
        EXPECT_EQ(Rest(stream), mode[2] == 't' ? "\ntwo\n" : "\r\ntwo\r\n");
        EXPECT_EQ(std::fclose(stream), 0);
        EXPECT_EQ(m_folder.Read("file"), "ONE\r\ntwo\r\n");
    }
}

TEST_F(StreamsUpdate, ChildrenDoNotInheritFiles) {
    for (const char *mode : {"rt", "wt", "at", "r+t", "w+t", "a+t", "rb", "wb", "ab", "r+b", "w+b", "a+b"}) {
        std::FILE *stream = Open("", mode);
        EXPECT_FALSE(IsInherited(stream)) << mode;
        std::fclose(stream);
    }
}

TEST_F(StreamsUpdate, AppendReadsAnywhereAndWritesAtTheEnd) {
    std::FILE *stream = Open("one\r\ntwo\r\n\x1A", "a+t");
    EXPECT_EQ(m_folder.Read("file"), "one\r\ntwo\r\n");
    EXPECT_EQ(Get(stream, 4), "one\n");
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(std::fseek(stream, 0, SEEK_SET), 0);
        EXPECT_TRUE(Put(stream, "x\n"));
        EXPECT_EQ(std::fflush(stream), 0);
        EXPECT_EQ(TellStream(stream), 13 + 3 * i);
        ASSERT_EQ(std::fseek(stream, 5, SEEK_SET), 0);
        EXPECT_EQ(Get(stream, 4), "two\n");
    }
    EXPECT_EQ(std::fclose(stream), 0);
    EXPECT_EQ(m_folder.Read("file"), "one\r\ntwo\r\nx\r\nx\r\nx\r\n");
}

TEST_F(StreamsUpdate, OnlyAppendForReadingTakesOffAnEndOfText) {
    for (const char *mode : {"r+t", "at", "a+b", "r+b", "rt"}) {
        std::FILE *stream = Open("x\x1A", mode);
        EXPECT_EQ(std::fclose(stream), 0);
        EXPECT_EQ(m_folder.Read("file"), "x\x1A") << mode;
    }
    for (const char *bytes : {"\x1A", "x\x1A\x1A", "x\x1Ay", "", "x"}) {
        std::string left = bytes;
        if (left.ends_with('\x1A'))
            left.pop_back();
        std::FILE *stream = Open(bytes, "a+");
        EXPECT_EQ(std::fgetc(stream), left[0] == 'x' ? 'x' : EOF);
        EXPECT_EQ(std::fclose(stream), 0);
        EXPECT_EQ(m_folder.Read("file"), left);
    }
}

TEST_F(StreamsUpdate, EndOfTextEndsReadingUntilPositioned) {
    std::FILE *stream = Open("one\r\n\x1Ahidden", "r+t");
    EXPECT_EQ(Rest(stream), "one\n");
    EXPECT_EQ(std::fgetc(stream), EOF);
    ASSERT_EQ(std::fseek(stream, 5, SEEK_SET), 0);
    EXPECT_TRUE(Put(stream, "+"));
    std::rewind(stream);
    EXPECT_EQ(Rest(stream), "one\n+hidden");
    EXPECT_EQ(std::fclose(stream), 0);
}

// Lines of ten letters, in which nothing breaks a line end apart, against the bytes themselves.
TEST_F(StreamsUpdate, RandomReadsAndWritesDoAsThePlainRuleSays) {
    std::mt19937 random(1952);
    std::string bytes;
    while (bytes.size() < 3 * block_size)
        bytes += "abcdefghij\r\n";
    std::FILE *stream = Open(bytes, "r+t");
    for (int round = 0; round < 1500; ++round) {
        std::size_t place = random() % (bytes.size() + 1);
        if (place % 12 == 11)
            --place;
        const auto target = static_cast<std::int64_t>(place);
        const auto size = static_cast<std::int64_t>(bytes.size());
        ASSERT_TRUE(random() % 3 != 0   ? SeekStream(stream, target, SEEK_SET)
                    : random() % 2 == 0 ? SeekStream(stream, target - TellStream(stream), SEEK_CUR)
                                        : SeekStream(stream, target - size, SEEK_END));
        ASSERT_EQ(TellStream(stream), target);
        std::string text;
        const std::size_t length = random() % (round % 100 == 0 ? 2 * block_size : 40);
        const bool writes = random() % 2 == 0;
        while (text.size() < length && (writes || place < bytes.size())) {
            const std::size_t column = place % 12;
            text += column == 10 ? '\n' : writes ? static_cast<char>('A' + random() % 26) : bytes[place];
            if (writes)
                bytes.replace(place, column == 10 ? 2 : 1, column == 10 ? "\r\n" : text.substr(text.size() - 1));
            place += column == 10 ? 2 : 1;
        }
        if (writes)
            ASSERT_TRUE(Put(stream, text));
        else
            ASSERT_EQ(Get(stream, length).compare(text), 0) << round;
        ASSERT_EQ(TellStream(stream), static_cast<std::int64_t>(place)) << round;
    }
    EXPECT_EQ(std::fclose(stream), 0);
    EXPECT_EQ(m_folder.Read("file").compare(bytes), 0);
}

TEST_F(StreamsUpdate, AnyTurnsWithoutPositioningBreakNothing) {
    std::mt19937 random(6);
    for (const char *mode : {"r+t", "w+t", "a+t", "r+b", "w+b", "a+b"}) {
        std::string bytes;
        for (std::size_t i = 0; i < 2 * block_size; ++i)
            bytes += "\r\nx\r"[random() % 4];
        std::FILE *stream = Open(bytes, mode);
        for (int round = 0; round < 400; ++round) {
            switch (random() % 6) {
            case 0:
                Get(stream, random() % 300);
                break;
            case 1:
                Put(stream, std::string(random() % 300, random() % 2 == 0 ? '\n' : 'y'));
                break;
            case 2:
                if (!Get(stream, 1).empty()) // putting back what was never read is beyond the C library, too
                    std::ungetc('\n', stream);
                break;
            case 3:
                EXPECT_GE(TellStream(stream), -100);
                break;
            case 4:
                SeekStream(stream, static_cast<std::int64_t>(random() % 70000) - 35000, SEEK_CUR);
                break;
            default:
                Get(stream, random() % (2 * block_size));
            }
        }
        std::clearerr(stream);
        EXPECT_TRUE(SeekStream(stream, 0, SEEK_SET)) << mode;
        EXPECT_EQ(std::fclose(stream), 0);
    }
}

TEST_F(StreamsUpdate, CarriageReturnAtTheEndOfABlockIsWrittenBehind) {
    const std::string bytes = std::string(block_size - 1, 'x') + "\ryz";
    std::FILE *stream = Open(bytes, "r+t");
    EXPECT_EQ(Get(stream, block_size).compare(bytes.substr(0, block_size)), 0);
    ASSERT_TRUE(SeekStream(stream, 0, SEEK_CUR));
    EXPECT_TRUE(Put(stream, "Y"));
    EXPECT_EQ(std::fclose(stream), 0);
    EXPECT_EQ(m_folder.Read("file").substr(block_size - 1), "\rYz");
}

TEST_F(StreamsUpdate, PutBackBytesCountInThePosition) {
    for (const char *mode : {"rt", "r+t"}) {
        std::FILE *stream = Open("a\r\nb\r\nc\r\n", mode);
        EXPECT_EQ(Get(stream, 3), "a\nb");
        EXPECT_EQ(std::ungetc('Z', stream), 'Z');
        EXPECT_EQ(TellStream(stream), 3);
        EXPECT_EQ(Get(stream, 2), "Z\n");
        EXPECT_EQ(TellStream(stream), 6);
        EXPECT_EQ(std::ungetc('\n', stream), '\n');
        EXPECT_EQ(TellStream(stream), 4);
        ASSERT_TRUE(SeekStream(stream, 2, SEEK_CUR));
        EXPECT_EQ(Get(stream, 9), "c\n");
        EXPECT_EQ(std::fclose(stream), 0);
    }
}

TEST_F(StreamsUpdate, BinaryPassesEveryByte) {
    std::string bytes = "\r\n\x1A";
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    for (const char *mode : {"w+b", "a+b", "w+", "a+"}) {
        std::filesystem::remove(m_folder.Path("file"));
        std::FILE *stream = OpenBinary(m_folder.Path("file").c_str(), mode);
        ASSERT_NE(stream, nullptr);
        EXPECT_TRUE(Put(stream, bytes));
        EXPECT_EQ(TellStream(stream), 259);
        std::rewind(stream);
        EXPECT_EQ(Rest(stream), bytes);
        ASSERT_TRUE(SeekStream(stream, -2, SEEK_END));
        EXPECT_EQ(Rest(stream), "\xFE\xFF");
        EXPECT_EQ(std::fclose(stream), 0);
        EXPECT_EQ(m_folder.Read("file"), bytes);
    }
}

TEST_F(StreamsUpdate, BinaryAppendersWriteBehindEachOther) {
    std::FILE *one = Open("", "ab");
    std::FILE *two = OpenAs(m_folder.Path("file"), "a+b");
    ASSERT_NE(two, nullptr);
    for (const char *text : {"1\n", "22\n"}) {
        EXPECT_TRUE(Put(one, text));
        EXPECT_EQ(std::fflush(one), 0);
        EXPECT_TRUE(Put(two, "+"));
        EXPECT_EQ(std::fflush(two), 0);
    }
    EXPECT_EQ(TellStream(two), 7);
    std::fclose(one);
    std::fclose(two);
    EXPECT_EQ(m_folder.Read("file"), "1\n+22\n+");
}

TEST_F(StreamsUpdate, SeekBeforeTheStartFailsAndStays) {
    for (const char *mode : {"r+t", "rt", "r+b", "rb"}) {
        SCOPED_TRACE(mode);
        std::FILE *stream = Open("one\r\ntwo\r\n", mode);
        EXPECT_EQ(std::fgetc(stream), 'o');
        EXPECT_FALSE(SeekStream(stream, -1, SEEK_SET));
        EXPECT_EQ(TellStream(stream), 1);
        EXPECT_EQ(std::fgetc(stream), 'n');
        EXPECT_FALSE(SeekStream(stream, -3, SEEK_CUR));
        EXPECT_FALSE(SeekStream(stream, std::numeric_limits<std::int64_t>::min(), SEEK_CUR));
        EXPECT_FALSE(SeekStream(stream, std::numeric_limits<std::int64_t>::max(), SEEK_CUR));
        EXPECT_EQ(std::fgetc(stream), 'e');
        EXPECT_FALSE(SeekStream(stream, -11, SEEK_END));
        EXPECT_FALSE(SeekStream(stream, 0, 3));
        EXPECT_TRUE(SeekStream(stream, 0, SEEK_SET));
        EXPECT_EQ(std::fgetc(stream), 'o');
        EXPECT_EQ(std::fclose(stream), 0);
    }
    EXPECT_FALSE(SeekStream(nullptr, 0, SEEK_SET));
    EXPECT_EQ(TellStream(nullptr), -1);
}

TEST_F(StreamsUpdate, SeekBehindTheEndFillsWithZeros) {
    for (const char *mode : {"r+t", "r+b"}) {
        std::FILE *stream = Open("ab", mode);
        ASSERT_TRUE(SeekStream(stream, 5, SEEK_SET));
        EXPECT_EQ(TellStream(stream), 5);
        EXPECT_EQ(std::fgetc(stream), EOF);
        ASSERT_TRUE(SeekStream(stream, 0, SEEK_CUR));
        EXPECT_TRUE(Put(stream, "c"));
        EXPECT_EQ(std::fclose(stream), 0);
        EXPECT_EQ(m_folder.Read("file"), std::string("ab\0\0\0c", 6));
    }
}

TEST_F(StreamsUpdate, FilesOfThreeGigabytesArePositioned) {
    constexpr std::int64_t far_away = 3000000001;
    std::FILE *stream = Open("start\r\n", "r+b");
    ASSERT_TRUE(SeekStream(stream, far_away, SEEK_SET));
    EXPECT_TRUE(Put(stream, "one\r\ntwo\r\n"));
    EXPECT_EQ(TellStream(stream), far_away + 10);
    ASSERT_EQ(std::fclose(stream), 0);
    for (const char *mode : {"r+t", "rt", "r+b", "rb", "a+b"}) {
        SCOPED_TRACE(mode);
        const bool text = mode[std::strlen(mode) - 1] == 't';
        stream = OpenAs(m_folder.Path("file"), mode);
        ASSERT_NE(stream, nullptr);
        ASSERT_TRUE(SeekStream(stream, far_away, SEEK_SET));
        EXPECT_EQ(Get(stream, 4), text ? "one\n" : "one\r");
        EXPECT_EQ(TellStream(stream), far_away + (text ? 5 : 4));
        ASSERT_TRUE(SeekStream(stream, text ? 1 : 2, SEEK_CUR));
        EXPECT_EQ(std::fgetc(stream), 'w');
        ASSERT_TRUE(SeekStream(stream, -far_away - 10, SEEK_END));
        EXPECT_EQ(TellStream(stream), 0);
        EXPECT_EQ(Get(stream, 5), "start");
        ASSERT_TRUE(SeekStream(stream, 0, SEEK_END));
        EXPECT_EQ(TellStream(stream), far_away + 10);
        EXPECT_EQ(std::fclose(stream), 0);
    }
    stream = OpenAs(m_folder.Path("file"), "r+t");
    ASSERT_NE(stream, nullptr);
    ASSERT_TRUE(SeekStream(stream, -5, SEEK_END));
    EXPECT_TRUE(Put(stream, "2\n"));
    EXPECT_EQ(TellStream(stream), far_away + 8);
    ASSERT_TRUE(SeekStream(stream, far_away, SEEK_SET));
    EXPECT_EQ(Rest(stream), "one\n2\n\n");
    EXPECT_EQ(std::fclose(stream), 0);
}

TEST_F(StreamsUpdate, ModesOfBinaryStreams) {
    for (const char *mode : {"", "x", "rt", "r+t", "at", "wx", "br", "r b", "rbb", "rb+", "+b", "r+b ", "R"}) {
        m_folder.Write("file", "kept");
        errno = 0;
        EXPECT_EQ(OpenBinary(m_folder.Path("file").c_str(), mode), nullptr) << mode;
        EXPECT_EQ(errno, EINVAL) << mode;
        EXPECT_EQ(m_folder.Read("file"), "kept");
    }
    EXPECT_EQ(OpenBinary(m_folder.Path("file").c_str(), nullptr), nullptr);
    EXPECT_EQ(OpenBinary(nullptr, "rb"), nullptr);
    EXPECT_EQ(OpenBinary("", "wb"), nullptr);
    EXPECT_EQ(OpenBinary(std::string(10000, 'x').c_str(), "wb"), nullptr);
    EXPECT_EQ(errno, ENAMETOOLONG);
}

TEST_F(StreamsUpdate, FoldersAreRefusedInEveryMode) {
    std::filesystem::create_directory(m_folder.Path("sub"));
    for (const char *mode : {"rt", "wt", "at", "r+t", "w+t", "a+t", "rb", "wb", "ab", "r+b", "w+b", "a+b"}) {
        for (const char *name : {"sub", "sub/"}) {
            errno = 0;
            EXPECT_EQ(OpenAs(m_folder.Path(name), mode), nullptr) << mode;
            EXPECT_EQ(errno, EACCES) << mode;
        }
    }
}

// The files that the table of openings speaks of.
void MakeTree(const TempFolder &folder) {
    std::filesystem::create_directories(folder.Path("fs") + "/sub");
    for (const char *name : {"fs/file.txt", "fs/readonly.txt", "fs/hidden.txt", "fs/\xE4\xF6\xFC.txt"}) {
        std::FILE *stream = OpenBinary(folder.Path(name).c_str(), "wb");
        ASSERT_NE(stream, nullptr);
        std::fclose(stream);
    }
    std::filesystem::permissions(folder.Path("fs/readonly.txt"), std::filesystem::perms::owner_read);
}

// Rows that this library answers in its own way: modes that it doesn't know, paths that are too long, and a hidden
// file, which this tree doesn't hide. Off the desktop also what makes names special there: case, devices, dots and
// blanks at the end and letters that no name may have.
bool IsSpecial(const std::string &path, const std::string &mode) {
    const bool known_mode =
        mode == "x" || mode == "tr" || mode == "+r" || mode == "r" || mode == "w" ||
        (mode.find_first_of("NSxq ") == std::string::npos && mode != "rtb" && mode != "rt+" && mode != "rbt");
    if (!known_mode || path.size() > 200 || path == "hidden.txt")
        return true;
    const bool ends_special =
        path != "." && path != ".." && !path.empty() && (path.back() == '.' || path.back() == ' ');
    return !HostIsDesktop() &&
           (path == "FILE.TXT" || path == "nul" || ends_special || path.find_first_of("|*?") != std::string::npos);
}

TEST_F(StreamsUpdate, TableOfOpeningsHolds) {
    const GoldenTable table("crt_fopen.tsv");
    MakeTree(m_folder);
    const CurrentFolder inside(m_folder.Path("fs"));
    int checked = 0;
    for (const Row &row : table.Rows()) {
        const std::string &path = row.at("path");
        const std::string &mode = row.at("mode");
        if (IsSpecial(path, mode))
            continue;
        SCOPED_TRACE(path + " " + mode);
        std::filesystem::remove("missing.txt");
        errno = 0;
        std::FILE *stream = OpenAs(path, mode);
        EXPECT_EQ(stream != nullptr, row.at("opened") == "1");
        if (stream == nullptr)
            EXPECT_EQ(std::to_string(errno), row.at("errno"));
        else
            std::fclose(stream);
        ++checked;
    }
    std::filesystem::permissions("readonly.txt", std::filesystem::perms::owner_all);
    EXPECT_EQ(checked, HostIsDesktop() ? 161 : 100);
}

TEST_F(StreamsUpdate, TableOfSharedOpeningsHolds) {
    const GoldenTable table("crt_stream_share.tsv");
    for (const Row &row : table.Rows()) {
        std::FILE *first = Open("file", row.at("first_open").c_str());
        std::FILE *second = OpenAs(m_folder.Path("file"), row.at("second_open"));
        EXPECT_EQ(second != nullptr, row.at("second_opened") == "1");
        std::fclose(first);
        if (second != nullptr)
            std::fclose(second);
    }
    EXPECT_EQ(table.Rows().size(), 8U);
}

} // namespace
