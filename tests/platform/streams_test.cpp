// Text streams: translation, positions, modes and failures, the same on every platform.
#include "platform/streams.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "golden_table.h"
#include "platform/temp_folder.h"

namespace {

using zr::platform::OpenBinary;
using zr::platform::OpenText;
using Row = GoldenTable::Row;

constexpr std::size_t block_size = 65536;

class Streams : public testing::Test {
protected:
    std::FILE *Open(const std::string &name, const char *mode) const {
        return OpenText(m_folder.Path(name).c_str(), mode);
    }

    // As the mode of a table says: binary with a "b", text otherwise.
    std::FILE *OpenAs(const std::string &name, const std::string &mode) const {
        const std::string path = m_folder.Path(name);
        return mode.find('b') != std::string::npos ? OpenBinary(path.c_str(), mode.c_str())
                                                   : OpenText(path.c_str(), mode.c_str());
    }

    // All that a text stream gives for a file with these bytes, read in pieces of the given size.
    std::string ReadBack(const std::string &bytes, std::size_t piece) const {
        m_folder.Write("raw", bytes);
        std::FILE *stream = Open("raw", "r");
        if (stream == nullptr)
            return "not opened";
        std::string text;
        std::vector<char> block(piece);
        while (std::feof(stream) == 0)
            text.append(block.data(), std::fread(block.data(), 1, piece, stream));
        EXPECT_EQ(std::ferror(stream), 0);
        EXPECT_EQ(std::fclose(stream), 0);
        return text;
    }

    TempFolder m_folder;
};

// A run in a table, "4095*x + \r\ny", is written out.
std::string Expand(const std::string &text) {
    const std::size_t star = text.find('*');
    const std::size_t plus = text.find(" + ");
    if (star == std::string::npos || plus != star + 2)
        return text;
    return std::string(std::stoul(text.substr(0, star)), text[star + 1]) + text.substr(plus + 3);
}

// The plain meaning of a text file's bytes.
std::string Translated(const std::string &bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size() && bytes[i] != 0x1A; ++i)
        if (bytes[i] != '\r' || i + 1 == bytes.size() || bytes[i + 1] != '\n')
            text += bytes[i];
    return text;
}

std::string WithCarriageReturns(const std::string &text) {
    std::string bytes;
    for (const char c : text) {
        if (c == '\n')
            bytes += '\r';
        bytes += c;
    }
    return bytes;
}

std::string Lines(std::FILE *stream, int size) {
    std::string text;
    std::string line(static_cast<std::size_t>(size), '#');
    for (bool first = true; std::fgets(line.data(), size, stream) != nullptr; first = false) {
        text += std::string(first ? "" : " | ")
                    .append(line, 0, line.rfind('\0')); // NULs in front of the last are the file's
        line.assign(line.size(), '#');
    }
    return text;
}

std::string AllBy(const std::string &method, std::FILE *stream) {
    if (method == "fgets10")
        return Lines(stream, 10);
    if (method == "fgets254")
        return Lines(stream, 254);
    std::string text;
    if (method == "fgetc") {
        for (int c; (c = std::fgetc(stream)) != EOF;)
            text += static_cast<char>(c);
    } else {
        char block[64];
        for (std::size_t count; (count = std::fread(block, 1, sizeof block, stream)) != 0;)
            text.append(block, count);
    }
    return text;
}

// The file that a row of the table of writes ends with. Where a remark says what the desktop makes of the row, that
// counts.
std::string FileAfter(const Row &row) {
    const std::string remark = "a trailing 0x1A is removed before appending: ";
    const std::string &documented = row.at("windows_documented");
    const std::size_t place = documented.find(remark);
    EXPECT_EQ(place == std::string::npos, documented.empty()) << documented;
    return place == std::string::npos ? row.at("raw_file_after") : documented.substr(place + remark.size());
}

TEST_F(Streams, TableOfReadsHolds) {
    int checked = 0;
    const GoldenTable table("crt_text_read.tsv");
    for (const Row &row : table.Rows()) {
        const std::string bytes = Expand(row.at("raw_file_bytes"));
        const std::string &mode = row.at("open_mode");
        SCOPED_TRACE(testing::PrintToString(bytes.substr(0, 40)) + " " + mode + " " + row.at("method"));
        m_folder.Write("raw", bytes);
        std::FILE *stream = OpenAs("raw", mode);
        ASSERT_NE(stream, nullptr);
        const std::string text = AllBy(row.at("method"), stream);
        if (row.at("result") != "(long)") {
            EXPECT_EQ(text, Expand(row.at("result")));
        }
        EXPECT_EQ(std::feof(stream) != 0, row.at("feof") == "1");
        if (mode == "rb" || bytes.find('\x1A') == std::string::npos) {
            EXPECT_EQ(std::ftell(stream), std::stol(row.at("ftell_at_end")));
        }
        EXPECT_EQ(std::fclose(stream), 0);
        ++checked;
    }
    EXPECT_EQ(checked, 283);
}

TEST_F(Streams, TableOfWritesHolds) {
    int checked = 0;
    const GoldenTable table("crt_text_write.tsv");
    for (const Row &row : table.Rows()) {
        const std::string &mode = row.at("open_mode");
        SCOPED_TRACE(row.at("initial_file") + " " + mode + " " + testing::PrintToString(row.at("written")));
        std::filesystem::remove(m_folder.Folder() / "file");
        if (row.at("initial_file") != "\\N")
            m_folder.Write("file", row.at("initial_file"));
        std::FILE *stream = OpenAs("file", mode);
        ASSERT_NE(stream, nullptr);
        EXPECT_EQ(std::ftell(stream), std::stol(row.at("ftell_after_open")));
        const std::string &text = row.at("written");
        EXPECT_EQ(std::fwrite(text.data(), 1, text.size(), stream), text.size());
        EXPECT_EQ(std::ftell(stream), std::stol(row.at("ftell_after_write")));
        EXPECT_EQ(std::fclose(stream), 0);
        EXPECT_EQ(m_folder.Read("file"), FileAfter(row));
        ++checked;
    }
    EXPECT_EQ(checked, 237);
}

TEST_F(Streams, TableOfPositionsHolds) {
    int checked = 0;
    const GoldenTable table("crt_text_positions.tsv");
    for (const Row &row : table.Rows()) {
        SCOPED_TRACE(row.at("open_mode") + " " + testing::PrintToString(row.at("raw_file_bytes")));
        m_folder.Write("raw", row.at("raw_file_bytes"));
        std::FILE *stream = OpenAs("raw", row.at("open_mode"));
        ASSERT_NE(stream, nullptr);
        std::string offsets = std::to_string(std::ftell(stream));
        long first = -1;
        char line[254];
        while (std::fgets(line, sizeof line, stream) != nullptr) {
            const long offset = std::ftell(stream);
            EXPECT_EQ(zr::platform::TellStream(stream), offset);
            offsets.append(",").append(std::to_string(offset));
            first = first < 0 ? offset : first;
        }
        EXPECT_EQ(offsets, row.at("steps_fgets254_offset_after_each"));
        if (row.at("seek_to_first_offset_then_line") != "\\N") {
            ASSERT_EQ(std::fseek(stream, first, SEEK_SET), 0);
            ASSERT_NE(std::fgets(line, sizeof line, stream), nullptr);
            EXPECT_EQ(line, row.at("seek_to_first_offset_then_line"));
        }
        EXPECT_EQ(std::fclose(stream), 0);
        ++checked;
    }
    EXPECT_EQ(checked, 56);
}

TEST_F(Streams, TableOfAppendPositionsHolds) {
    int checked = 0;
    const GoldenTable table("crt_append_position.tsv");
    for (const Row &row : table.Rows()) {
        SCOPED_TRACE(row.at("open_mode") + " " + testing::PrintToString(row.at("initial_file")));
        m_folder.Write("file", row.at("initial_file"));
        std::FILE *stream = OpenAs("file", row.at("open_mode"));
        ASSERT_NE(stream, nullptr);
        EXPECT_EQ(std::ftell(stream), std::stol(row.at("ftell_after_open")));
        EXPECT_EQ(std::fgetc(stream), std::stoi(row.at("first_fgetc")));
        std::clearerr(stream);
        EXPECT_EQ(std::ftell(stream), std::stol(row.at("ftell_after_fgetc")));
        EXPECT_EQ(std::fseek(stream, 0, SEEK_SET), 0);
        EXPECT_EQ(std::fputc('X', stream), 'X');
        EXPECT_EQ(std::ftell(stream), std::stol(row.at("ftell_after")));
        EXPECT_EQ(std::fclose(stream), 0);
        EXPECT_EQ(m_folder.Read("file"), row.at("seek0_then_write_X_result"));
        ++checked;
    }
    EXPECT_EQ(checked, 17);
}

TEST_F(Streams, CarriageReturnAtEveryPlaceNearABlocksEnd) {
    for (const char *tail : {"\r\ny", "\r\r\ny", "\ry", "\r", "\r\n", "\r\n\x1A", "\r\r\r\n\n"})
        for (std::size_t length = block_size - 4; length <= block_size + 2; ++length) {
            const std::string bytes = std::string(length, 'x') + tail;
            SCOPED_TRACE(std::to_string(length) + testing::PrintToString(std::string(tail)));
            for (const std::size_t piece : {std::size_t{30000}, block_size, 3 * block_size})
                EXPECT_EQ(ReadBack(bytes, piece).compare(Translated(bytes)), 0) << piece;
        }
}

TEST_F(Streams, RandomBytesReadAsThePlainRuleSays) {
    std::mt19937 random(20130);
    const std::string alphabet = "\r\r\r\n\n\nab\xE4\xFF";
    for (int round = 0; round < 20; ++round) {
        std::string bytes;
        const std::size_t length = random() % (3 * block_size);
        while (bytes.size() < length)
            bytes += random() % 4 != 0 ? alphabet[random() % alphabet.size()] : '\0';
        const std::string text = Translated(bytes);
        EXPECT_EQ(ReadBack(bytes, 1 + random() % 100000).compare(text), 0);
        bytes.insert(length - std::min(length, random() % std::size_t{500}), 1, '\x1A');
        EXPECT_EQ(ReadBack(bytes, 30000).compare(Translated(bytes)), 0);
    }
}

TEST_F(Streams, RandomTextWritesAsThePlainRuleSays) {
    std::mt19937 random(77);
    const std::string alphabet = "\r\n\n\nabcdefgh\x1A\xFF";
    std::FILE *stream = Open("file", "w");
    ASSERT_NE(stream, nullptr);
    std::string all;
    for (int round = 0; round < 40; ++round) {
        std::string text;
        const std::size_t length = random() % 20000;
        while (text.size() < length)
            text += random() % 4 != 0 ? alphabet[random() % alphabet.size()] : '\0';
        ASSERT_EQ(std::fwrite(text.data(), 1, text.size(), stream), text.size());
        all += WithCarriageReturns(text);
        ASSERT_EQ(std::ftell(stream), static_cast<long>(all.size()));
    }
    EXPECT_EQ(std::fclose(stream), 0);
    EXPECT_EQ(m_folder.Read("file").compare(all), 0);
}

TEST_F(Streams, LineFeedsAloneFillTwiceTheSpace) {
    const std::string text(2 * block_size + 1, '\n');
    std::FILE *stream = Open("file", "w");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fwrite(text.data(), 1, text.size(), stream), text.size());
    EXPECT_EQ(std::fclose(stream), 0);
    EXPECT_EQ(m_folder.Read("file").compare(WithCarriageReturns(text)), 0);
}

// Offsets of lines, as ftell tells them while reading, find the lines again in any order.
TEST_F(Streams, RememberedOffsetsFindTheirLines) {
    std::mt19937 random(4);
    std::string bytes;
    std::vector<long> starts;
    std::vector<std::string> lines;
    while (bytes.size() < 5 * block_size) {
        starts.push_back(static_cast<long>(bytes.size()));
        lines.push_back(std::string(random() % 90, 'z') + std::to_string(starts.size()) + "\n");
        bytes += WithCarriageReturns(lines.back());
    }
    m_folder.Write("file", bytes);
    std::FILE *stream = Open("file", "r");
    ASSERT_NE(stream, nullptr);
    char line[254];
    for (std::size_t i = 0; i < lines.size(); ++i) {
        ASSERT_EQ(std::ftell(stream), starts[i]) << "line " << i;
        ASSERT_NE(std::fgets(line, sizeof line, stream), nullptr);
        ASSERT_EQ(line, lines[i]);
    }
    for (int round = 0; round < 500; ++round) {
        const std::size_t i = random() % lines.size();
        ASSERT_EQ(std::fseek(stream, starts[i], SEEK_SET), 0);
        ASSERT_EQ(std::ftell(stream), starts[i]);
        for (std::size_t k = i; k < lines.size() && k < i + random() % 3 + 1; ++k) {
            ASSERT_NE(std::fgets(line, sizeof line, stream), nullptr);
            ASSERT_EQ(line, lines[k]) << "sought " << starts[i];
        }
    }
    EXPECT_EQ(std::fclose(stream), 0);
}

TEST_F(Streams, SeekBeforeAnyReadGoesThere) {
    m_folder.Write("file", std::string(100, 'a') + "\r\n" + std::string(block_size, 'b') + "\r\nlast\r\n");
    for (const long offset : {0L, 1L, 99L, 102L, 103L, static_cast<long>(block_size) + 104L}) {
        std::FILE *stream = Open("file", "r");
        ASSERT_NE(stream, nullptr);
        ASSERT_EQ(std::fseek(stream, offset, SEEK_SET), 0);
        EXPECT_EQ(std::ftell(stream), offset);
        const int expected = offset < 100 ? 'a' : offset < static_cast<long>(block_size) + 102 ? 'b' : 'l';
        EXPECT_EQ(std::fgetc(stream), expected) << offset;
        EXPECT_EQ(std::ftell(stream), offset + 1);
        EXPECT_EQ(std::fclose(stream), 0);
    }
}

TEST_F(Streams, RewindAfterEndOfTextReadsAgain) {
    m_folder.Write("file", "one\r\ntwo\r\n\x1Ahidden");
    std::FILE *stream = Open("file", "r");
    ASSERT_NE(stream, nullptr);
    char line[20];
    for (int round = 0; round < 3; ++round) {
        ASSERT_NE(std::fgets(line, sizeof line, stream), nullptr);
        EXPECT_STREQ(line, "one\n");
        ASSERT_NE(std::fgets(line, sizeof line, stream), nullptr);
        EXPECT_STREQ(line, "two\n");
        EXPECT_EQ(std::fgets(line, sizeof line, stream), nullptr);
        EXPECT_EQ(std::fgetc(stream), EOF);
        ASSERT_EQ(std::fseek(stream, 0, SEEK_SET), 0);
    }
    EXPECT_EQ(std::fclose(stream), 0);
}

TEST_F(Streams, SeekToTheEndTellsTheSize) {
    m_folder.Write("file", "one\r\ntwo\r\n");
    std::FILE *stream = Open("file", "r");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fgetc(stream), 'o');
    ASSERT_EQ(std::fseek(stream, 0, SEEK_END), 0);
    EXPECT_EQ(std::ftell(stream), 10);
    EXPECT_EQ(std::fgetc(stream), EOF);
    std::rewind(stream);
    EXPECT_EQ(std::fgetc(stream), 'o');
    EXPECT_EQ(std::fclose(stream), 0);
}

TEST_F(Streams, UngetcAndFormattedCallsWork) {
    std::FILE *stream = Open("file", "w");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fprintf(stream, "%d %s\n", 42, "apples"), 10);
    EXPECT_EQ(std::fclose(stream), 0);
    EXPECT_EQ(m_folder.Read("file"), "42 apples\r\n");
    stream = Open("file", "r");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fgetc(stream), '4');
    EXPECT_EQ(std::ungetc('7', stream), '7');
    int number = 0;
    char word[20];
    EXPECT_EQ(std::fscanf(stream, "%d %19s", &number, word), 2);
    EXPECT_EQ(number, 72);
    EXPECT_STREQ(word, "apples");
    EXPECT_EQ(std::fclose(stream), 0);
}

TEST_F(Streams, WriteSeeksAndOverwrites) {
    std::FILE *stream = Open("file", "w");
    ASSERT_NE(stream, nullptr);
    std::fputs("a\nb\nc\n", stream);
    ASSERT_EQ(std::fseek(stream, 3, SEEK_SET), 0);
    std::fputs("X", stream);
    EXPECT_EQ(std::ftell(stream), 4);
    ASSERT_EQ(std::fseek(stream, 0, SEEK_END), 0);
    std::fputs("d\n", stream);
    EXPECT_EQ(std::fclose(stream), 0);
    EXPECT_EQ(m_folder.Read("file"), "a\r\nX\r\nc\r\nd\r\n");
}

TEST_F(Streams, FlushPutsTextIntoTheFile) {
    std::FILE *stream = Open("file", "w");
    ASSERT_NE(stream, nullptr);
    std::fputs("a\n", stream);
    EXPECT_EQ(m_folder.Read("file"), "");
    EXPECT_EQ(std::fflush(stream), 0);
    EXPECT_EQ(m_folder.Read("file"), "a\r\n");
    EXPECT_EQ(std::fclose(stream), 0);
}

TEST_F(Streams, TwoWritersAppendBehindEachOther) {
    std::FILE *one = Open("file", "a");
    std::FILE *two = Open("file", "a");
    ASSERT_NE(one, nullptr);
    ASSERT_NE(two, nullptr);
    for (int i = 0; i < 3; ++i) {
        std::fputs("one\n", one);
        std::fflush(one);
        std::fputs("two\n", two);
        std::fflush(two);
    }
    std::fclose(one);
    std::fclose(two);
    EXPECT_EQ(m_folder.Read("file"), "one\r\ntwo\r\none\r\ntwo\r\none\r\ntwo\r\n");
}

TEST_F(Streams, EmptyFileEndsAtOnce) {
    m_folder.Write("file", "");
    std::FILE *stream = Open("file", "r");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fgetc(stream), EOF);
    EXPECT_NE(std::feof(stream), 0);
    EXPECT_EQ(std::ftell(stream), 0);
    EXPECT_EQ(std::fclose(stream), 0);
}

TEST_F(Streams, LineOfTenMegabytesPasses) {
    const std::string line(10000000, 'l');
    EXPECT_EQ(ReadBack(line + "\r\n", 30000).compare(line + "\n"), 0);
}

TEST_F(Streams, WrongDirectionFails) {
    m_folder.Write("file", "a");
    std::FILE *stream = Open("file", "r");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fputc('x', stream), EOF);
    EXPECT_NE(std::ferror(stream), 0);
    std::fclose(stream);
    stream = Open("file", "w");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fgetc(stream), EOF);
    std::fclose(stream);
    EXPECT_EQ(m_folder.Read("file"), "");
}

TEST_F(Streams, BadModesFailAndTouchNothing) {
    m_folder.Write("file", "kept");
    for (const char *mode :
         {"", "x", "rb", "wb", "wx", "tr", "rr", "r t", "wtt", "+r", "r+b", "rt+", "r++", "a+tt", " w", "W"}) {
        errno = 0;
        EXPECT_EQ(Open("file", mode), nullptr) << mode;
        EXPECT_EQ(errno, EINVAL) << mode;
    }
    EXPECT_EQ(Open("file", nullptr), nullptr);
    EXPECT_EQ(m_folder.Read("file"), "kept");
}

TEST_F(Streams, BadPathsFailWithAReason) {
    const std::string file = m_folder.Path("file");
    const std::string missing = m_folder.Path("none/x");
    const std::string folder = m_folder.Folder().string();
    for (const char *mode : {"r", "w", "a"}) {
        for (const char *path : {static_cast<const char *>(nullptr), "", "?:\\x", "Q:\\x", "\\\\srv\\sh\\x",
                                 missing.c_str(), folder.c_str()}) {
            errno = 0;
            EXPECT_EQ(OpenText(path, mode), nullptr) << (path != nullptr ? path : "null") << " " << mode;
            EXPECT_NE(errno, 0);
        }
        EXPECT_EQ(OpenText((file + "/x").c_str(), mode), nullptr);
    }
    EXPECT_EQ(Open("missing", "r"), nullptr);
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(Streams, LongestPathOpensOneMoreFails) {
    std::string path = m_folder.Path("");
    while (path.size() + 2 <= 250)
        path += "./";
    path += std::string(259 - path.size(), 'n');
    std::FILE *stream = OpenText(path.c_str(), "w");
    ASSERT_NE(stream, nullptr);
    std::fclose(stream);
    EXPECT_EQ(OpenText((path + "n").c_str(), "w"), nullptr);
    EXPECT_EQ(errno, ENAMETOOLONG);
}

TEST_F(Streams, EitherSeparatorAndLettersOfTheCodePageWork) {
    std::filesystem::create_directory(m_folder.Folder() / "sub");
    const std::string back = m_folder.Path("sub") + "\\\xE4\xF6\xFC.txt";
    std::FILE *stream = OpenText(back.c_str(), "wt");
    ASSERT_NE(stream, nullptr);
    std::fputs("x\n", stream);
    std::fclose(stream);
    stream = OpenText((m_folder.Path("sub") + "/\xE4\xF6\xFC.txt").c_str(), "rt");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fgetc(stream), 'x');
    std::fclose(stream);
}

TEST_F(Streams, ManyStreamsAtOnceKeepApart) {
    std::vector<std::FILE *> streams;
    for (int i = 0; i < 100; ++i) {
        streams.push_back(Open("file" + std::to_string(i), "w"));
        ASSERT_NE(streams.back(), nullptr);
    }
    for (std::size_t i = 0; i < streams.size(); ++i)
        std::fprintf(streams[i], "%d\n", static_cast<int>(i));
    for (std::FILE *stream : streams)
        EXPECT_EQ(std::fclose(stream), 0);
    EXPECT_EQ(m_folder.Read("file0"), "0\r\n");
    EXPECT_EQ(m_folder.Read("file99"), "99\r\n");
}

} // namespace
