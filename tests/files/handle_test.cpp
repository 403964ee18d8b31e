// File handles: opening, header, closing, position, blocks, and what fails.
#include <zrclb/file_handle.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>
#include <system_error>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/heap.h>
#include <zrclb/paths.h>

#include "env/refused_memory.h"
#include "files/handle_fixture.h"
#include "frame/counted_allocation.h"
#include "frame/refused_heap.h"
#include "platform/streams.h"
#include "process_measures.h"

namespace {

using zr::frame::heap_block_count;
using zr::test::HeapRefusal;

class Handle : public HandleFixture {
protected:
    // What a handle opened in this mode does to a file "0123456789" when it reads a byte and writes one.
    struct Conduct {
        bool reads;
        bool writes;
        std::string after;
        bool operator==(const Conduct &) const = default;
    };
    Conduct Try(int mode) const {
        m_folder.Write("conduct", "0123456789");
        fio_handle *handle = Open("conduct", mode);
        if (handle == nullptr)
            return {false, false, "(not opened)"};
        Conduct conduct = {};
        conduct.reads = fio_getchar(handle, nullptr) >= 0;
        std::clearerr(fio_fp(handle));
        EXPECT_EQ(fio_seek(handle, 1, 0), 0);
        conduct.writes = fio_putchar(handle, '#') == 0 && fio_flush(handle) == 0;
        fio_close(handle);
        conduct.after = m_folder.Read("conduct");
        return conduct;
    }
};

// ---- Record and modes -------------------------------------------------------------------------------------------

TEST(HandleRecord, FieldsStandInTheirOrder) {
    EXPECT_EQ(offsetof(fio_handle, stream), 0u);
    EXPECT_EQ(offsetof(fio_handle, byte_order), sizeof(void *));
    EXPECT_EQ(offsetof(fio_handle, mode), sizeof(void *) + 4);
    EXPECT_EQ(offsetof(fio_handle, name), sizeof(void *) + 8);
    EXPECT_EQ(sizeof(fio_handle), 2 * sizeof(void *) + 8);
    EXPECT_TRUE((std::is_same_v<decltype(fio_handle::stream), std::FILE *>));
    EXPECT_TRUE((std::is_same_v<decltype(fio_handle::byte_order), std::int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(fio_handle::mode), std::uint32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(fio_handle::name), char *>));
}

TEST(HandleRecord, ModeBitsHaveTheirValues) {
    EXPECT_EQ(FIO_READ, 1);
    EXPECT_EQ(FIO_WRITE, 2);
    EXPECT_EQ(FIO_APPEND, 4);
    EXPECT_EQ(FIO_UPDATE, 8);
    EXPECT_EQ(FIO_TEXT, 16);
    EXPECT_EQ(FIO_BYTEORDER, 32);
}

TEST_F(Handle, OpenNeedsExactlyOneOfReadWriteAndAppend) {
    m_folder.Write("file", "content");
    for (int others : {0, 8, 16, 24, 32, 63 - 7, 64, 1 << 30}) {
        for (int base : {0, 3, 5, 6, 7})
            EXPECT_EQ(Open("file", base + others), nullptr) << base << "+" << others;
    }
    EXPECT_EQ(Open("file", -1), nullptr);
    EXPECT_EQ(m_folder.Read("file"), "content");
    EXPECT_EQ(m_reports.Take(), Reports{});
}

TEST_F(Handle, ModesReadAndWriteAsTheirLetters) {
    EXPECT_EQ(Try(1), (Conduct{true, false, "0123456789"}));  // rb
    EXPECT_EQ(Try(2), (Conduct{false, true, {"\0#", 2}}));    // wb
    EXPECT_EQ(Try(4), (Conduct{false, true, "0123456789#"})); // ab
    EXPECT_EQ(Try(9), (Conduct{true, true, "0#23456789"}));   // r+b
    EXPECT_EQ(Try(10), (Conduct{false, true, {"\0#", 2}}));   // w+b
    EXPECT_EQ(Try(17), (Conduct{true, false, "0123456789"})); // rt
    EXPECT_EQ(Try(25), (Conduct{true, true, "0#23456789"}));  // r+t
    EXPECT_EQ(Try(1 + 64), (Conduct{true, false, "0123456789"}));
}

TEST_F(Handle, TextBitTranslatesInEveryModeAndWithoutItNothingDoes) {
    const std::string bytes = "a\r\nb\r\n\x1A";
    for (int mode : {2, 4, 9, 10, 12, 18, 20, 25, 26, 28}) {
        SCOPED_TRACE(mode);
        m_folder.Write("file", bytes);
        fio_handle *handle = Open("file", mode);
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(fio_seek(handle, 0, 2), 0);
        EXPECT_EQ(fio_putchar(handle, '\n'), 0);
        std::string expected = (mode & FIO_WRITE) != 0 ? "" : bytes;
        if (mode == (FIO_APPEND | FIO_UPDATE | FIO_TEXT))
            expected.pop_back(); // the end of the text gives way
        expected += (mode & FIO_TEXT) != 0 ? "\r\n" : "\n";
        EXPECT_EQ(CloseAndRead(handle, "file"), expected);
    }
    for (int mode : {1, 9, 12, 17, 25, 28}) {
        SCOPED_TRACE(mode);
        fio_handle *handle = OpenBytes("a\r\nb\x1A", mode);
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(fio_seek(handle, 0, 0), 0);
        char text[10] = "";
        EXPECT_EQ(fio_fread(text, 1, 9, handle), (mode & FIO_TEXT) != 0 ? 3u : 5u);
        EXPECT_STREQ(text, (mode & FIO_TEXT) != 0 ? "a\nb" : "a\r\nb\x1A");
        EXPECT_EQ(fio_close(handle), 0);
    }
}

TEST_F(Handle, AppendWithUpdateReadsFromAnywhereAndWritesAtTheEnd) {
    m_folder.Write("file", "abc");
    fio_handle *handle = Open("file", FIO_APPEND | FIO_UPDATE);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(fio_seek(handle, 0, 0), 0);
    EXPECT_EQ(fio_getchar(handle, nullptr), 'a');
    EXPECT_EQ(fio_seek(handle, 0, 0), 0);
    EXPECT_EQ(fio_putchar(handle, 'd'), 0);
    EXPECT_EQ(CloseAndRead(handle, "file"), "abcd");
}

TEST_F(Handle, WriteWithUpdateReadsWhatItWrote) {
    fio_handle *handle = Open("file", FIO_WRITE | FIO_UPDATE);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(fio_putlong(handle, 77), 0);
    EXPECT_EQ(fio_seek(handle, 0, 0), 0);
    zr_long value = 0;
    EXPECT_EQ(fio_getlong(handle, &value), 0);
    EXPECT_EQ(value, 77);
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(Handle, MissingFileIsMadeForWritingAndAppendingOnly) {
    EXPECT_EQ(Open("read", FIO_READ), nullptr);
    EXPECT_EQ(Open("read", FIO_READ | FIO_UPDATE), nullptr);
    EXPECT_FALSE(std::filesystem::exists(m_folder.Path("read")));
    EXPECT_EQ(CloseAndRead(Open("written", FIO_WRITE), "written"), "");
    EXPECT_EQ(CloseAndRead(Open("appended", FIO_APPEND), "appended"), "");
    EXPECT_EQ(m_reports.Take(), Reports{});
}

TEST_F(Handle, RecordHoldsModeAndPath) {
    fio_handle *handle = Open("file", FIO_WRITE | FIO_TEXT | FIO_BYTEORDER | 1024);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(handle->mode, 2u + 16 + 32 + 1024);
    EXPECT_EQ(handle->byte_order, 0);
    EXPECT_EQ(handle->stream, fio_fp(handle));
    char path[260];
    fio_makepath(path, "", m_folder.Folder().string().c_str(), "file");
    EXPECT_STREQ(fio_filename(handle), path);
    EXPECT_EQ(fio_filename(handle), handle->name);
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(Handle, TextModeTranslatesLineEnds) {
    fio_handle *handle = Open("file", FIO_WRITE | FIO_TEXT);
    EXPECT_EQ(fio_putstring(handle, "a\nb", 0), 0);
    EXPECT_EQ(CloseAndRead(handle, "file"), "a\r\nb");
    handle = Open("file", FIO_READ | FIO_TEXT);
    char text[10] = "";
    EXPECT_EQ(fio_fread(text, 1, 9, handle), 3u);
    EXPECT_STREQ(text, "a\nb");
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(Handle, BinaryModeLeavesBytesAlone) {
    const std::string bytes("a\nb\r\nc\x1A\0\xFF", 9);
    fio_handle *handle = Open("file", FIO_WRITE);
    EXPECT_EQ(fio_fwrite(bytes.data(), 1, bytes.size(), handle), bytes.size());
    EXPECT_EQ(CloseAndRead(handle, "file"), bytes);
    handle = Open("file", FIO_READ);
    std::string back(20, '-');
    EXPECT_EQ(fio_fread(back.data(), 1, back.size(), handle), bytes.size());
    EXPECT_EQ(back.substr(0, bytes.size()), bytes);
    EXPECT_EQ(fio_close(handle), 0);
}

// ---- Names ------------------------------------------------------------------------------------------------------

TEST_F(Handle, FolderIsNoFile) {
    std::filesystem::create_directory(m_folder.Folder() / "sub");
    for (int mode : {1, 2, 4, 9, 10, 12, 17, 18, 20, 33})
        EXPECT_EQ(Open("sub", mode), nullptr) << mode;
    EXPECT_EQ(Open("", FIO_READ), nullptr);
    EXPECT_EQ(fio_open("", "", FIO_READ), nullptr);
    EXPECT_EQ(fio_open(nullptr, nullptr, FIO_READ), nullptr);
    EXPECT_EQ(m_reports.Take(), Reports{});
}

TEST_F(Handle, FileIsNoFolder) {
    m_folder.Write("file", "");
    EXPECT_EQ(fio_open(m_folder.Path("file").c_str(), "inner", FIO_READ), nullptr);
    EXPECT_EQ(fio_open(m_folder.Path("file").c_str(), "inner", FIO_WRITE), nullptr);
    EXPECT_EQ(fio_open(m_folder.Path("nowhere").c_str(), "inner", FIO_WRITE), nullptr);
}

TEST_F(Handle, NullAndEmptyPartsOfThePathAreLeftOut) {
    const std::string path = m_folder.Path("file");
    for (const char *nothing : {"", static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(CloseAndRead(fio_open(nothing, path.c_str(), FIO_WRITE), "file"), "");
        EXPECT_EQ(CloseAndRead(fio_open(path.c_str(), nothing, FIO_WRITE), "file"), "");
    }
}

TEST_F(Handle, DriveThatDoesNotExistOpensNothing) {
    EXPECT_EQ(fio_open("Q:\\no\\such", "file", FIO_READ), nullptr);
    EXPECT_EQ(fio_open("Q:\\no\\such", "file", FIO_WRITE), nullptr);
    EXPECT_EQ(fio_open("", "\\\\server\\share\\no\\file", FIO_READ), nullptr);
    EXPECT_EQ(fio_open("Q:\\", "file", FIO_WRITE), nullptr);
    EXPECT_EQ(fio_open("Q:", "file", FIO_APPEND), nullptr);
}

TEST_F(Handle, SeparatorsAloneAreNoFile) {
    for (const char *name : {"\\", "/", "\\\\\\///\\"}) {
        for (int mode : {FIO_READ, FIO_WRITE, FIO_APPEND}) {
            EXPECT_EQ(fio_open("", name, mode), nullptr) << name << " " << mode;
            EXPECT_EQ(fio_open(name, "", mode), nullptr) << name << " " << mode;
        }
        EXPECT_EQ(fio_fileislock("", name), 0) << name;
        EXPECT_EQ(fio_fileislock(name, name), 0) << name;
    }
}

TEST_F(Handle, FolderAboveTheRootIsTheRoot) {
    const std::string path = m_folder.Path("file");
    const std::size_t root = path.find_first_of("\\/"); // behind the drive, where there is one
    ASSERT_NE(root, std::string::npos);
    std::string climbing = path.substr(0, root + 1);
    for (int i = 0; i < 20; ++i)
        climbing += "../";
    climbing += path.substr(root + 1);
    EXPECT_EQ(CloseAndRead(fio_open("", climbing.c_str(), FIO_WRITE), "file"), "");
    EXPECT_EQ(m_reports.Take(), Reports{});
}

TEST_F(Handle, PathsUpTo259CharactersOpen) {
    // A folder and a name that fill a path to the last character.
    char path[260] = "";
    ASSERT_NE(fio_makepath(path, "", m_folder.Folder().string().c_str(), ""), nullptr);
    const std::string folder(120, 'd');
    const std::string name(259 - std::strlen(path) - 1 - folder.size() - 1, 'n');
    const std::string dir = m_folder.Path(folder);
    std::filesystem::create_directory(dir);
    fio_handle *handle = fio_open(dir.c_str(), name.c_str(), FIO_WRITE);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(std::strlen(fio_filename(handle)), 259u);
    EXPECT_EQ(fio_close(handle), 0);
    EXPECT_EQ(m_reports.Take(), Reports{});

    EXPECT_EQ(fio_open(dir.c_str(), (name + "n").c_str(), FIO_WRITE), nullptr);
    EXPECT_EQ(TextsOf(m_reports), std::vector<std::string>{"Buffer zu klein"});
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir), {}), 1);
}

TEST_F(Handle, LongNamesAreRefused) {
    for (std::size_t length : {255u, 256u, 259u, 260u, 10000u}) {
        const std::string name(length, 'n');
        EXPECT_EQ(Open(name, FIO_READ), nullptr) << length;
        EXPECT_EQ(Open(name, FIO_WRITE), nullptr) << length;
        EXPECT_EQ(fio_open(name.c_str(), "no such file", FIO_READ), nullptr) << length;
        EXPECT_EQ(fio_fileislock(name.c_str(), name.c_str()), 0) << length;
        // What has more than 255 characters counts as empty when a path is composed.
        EXPECT_EQ(TextsOf(m_reports), std::vector<std::string>(length == 255 ? 4 : 0, "Buffer zu klein")) << length;
    }
    EXPECT_TRUE(std::filesystem::is_empty(m_folder.Folder()));
}

TEST_F(Handle, BytesAbove7FInNamesPass) {
    const std::string name = "geh\xF6rt \x80\x9F\xFF.txt";
    fio_handle *handle = Open(name, FIO_WRITE);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(fio_putchar(handle, 'x'), 0);
    EXPECT_EQ(std::string(fio_filename(handle)).substr(std::strlen(fio_filename(handle)) - name.size()), name);
    EXPECT_EQ(fio_close(handle), 0);
    handle = Open(name, FIO_READ);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(fio_getchar(handle, nullptr), 'x');
    EXPECT_EQ(fio_close(handle), 0);
    // By the library itself, since the host's own call takes names in another code page.
    EXPECT_EQ(std::filesystem::directory_iterator(m_folder.Folder())->file_size(), 1u);
}

TEST_F(Handle, ReadOnlyFileOpensForReadingOnly) {
    m_folder.Write("file", "content");
    using std::filesystem::perms;
    std::filesystem::permissions(m_folder.Path("file"), perms::owner_read | perms::group_read | perms::others_read);
    fio_handle *handle = Open("file", FIO_READ);
    EXPECT_NE(handle, nullptr);
    EXPECT_EQ(fio_close(handle), 0);
    for (int mode : {2, 4, 9, 10, 12, 18, 20, 25, 34})
        EXPECT_EQ(Open("file", mode), nullptr) << mode;
    EXPECT_EQ(m_folder.Read("file"), "content");
    std::filesystem::permissions(m_folder.Path("file"), perms::owner_all);
}

// ---- Header -----------------------------------------------------------------------------------------------------

TEST_F(Handle, WrittenHeaderStandsInFrontOfTheData) {
    fio_handle *handle = Open("file", FIO_WRITE | FIO_BYTEORDER);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(handle->byte_order, 0);
    EXPECT_EQ(fio_tell(handle), 16);
    EXPECT_EQ(fio_length(handle), 16);
    EXPECT_EQ(fio_tell(handle), 16);
    EXPECT_EQ(fio_putlong(handle, 0x01020304), 0);
    EXPECT_EQ(CloseAndRead(handle, "file"), native_header + "\x04\x03\x02\x01");
}

TEST_F(Handle, WrittenHeaderTakesThePlaceOfAnOlderOne) {
    for (int mode : {FIO_WRITE | FIO_BYTEORDER, FIO_WRITE | FIO_UPDATE | FIO_BYTEORDER}) {
        fio_handle *handle = OpenBytes(foreign_header + "data", mode);
        EXPECT_EQ(handle->byte_order, 0);
        EXPECT_EQ(CloseAndRead(handle, "bytes"), native_header);
    }
}

TEST_F(Handle, PositionsCountTheHeader) {
    fio_handle *handle = OpenBytes(foreign_header + "data", FIO_READ | FIO_BYTEORDER);
    EXPECT_EQ(fio_length(handle), 20);
    EXPECT_EQ(fio_seek(handle, 0, 0), 0);
    EXPECT_EQ(fio_getchar(handle, nullptr), '1');
    EXPECT_EQ(fio_seek(handle, 15, 1), 0);
    EXPECT_EQ(fio_tell(handle), 16);
    EXPECT_EQ(fio_getchar(handle, nullptr), 'd');
    EXPECT_EQ(fio_seek(handle, -20, 2), 0);
    EXPECT_EQ(fio_tell(handle), 0);
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(Handle, OwnHeaderIsReadAndPassed) {
    fio_handle *handle = OpenBytes(native_header + "\x04\x03\x02\x01", FIO_READ | FIO_BYTEORDER);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(handle->byte_order, 0);
    EXPECT_EQ(fio_tell(handle), 16);
    zr_long value = 0;
    EXPECT_EQ(fio_getlong(handle, &value), 0);
    EXPECT_EQ(value, 0x01020304);
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(Handle, WithoutTheFlagAHeaderIsData) {
    fio_handle *handle = OpenBytes(foreign_header, FIO_READ);
    EXPECT_EQ(handle->byte_order, 0);
    EXPECT_EQ(fio_tell(handle), 0);
    EXPECT_EQ(fio_close(handle), 0);
    EXPECT_EQ(CloseAndRead(Open("new", FIO_WRITE), "new"), "");
}

TEST_F(Handle, HeaderIsFoundByEitherMarkInItsFirstEightBytes) {
    struct {
        std::string start;
        int byte_order;
        zr_long position;
    } const rows[] = {
        {foreign_header, 1, 16},
        {native_header, 0, 16},
        {"xxxxx@zrMOTOROLA", 1, 16},
        {"@zrxxxxxMOTOROLA", 1, 16},
        {"1.1xxxxxMOTOROLA", 1, 16},
        {"V1.1.txtMOTOROLA", 1, 16},
        {"V1.1.txt and what follows", 0, 16},
        {"xxxxx1.1motorola", 0, 16},
        {"1.1  @zrMOTOROLX", 0, 16},
        {"1.1  @zrXMOTOROL", 0, 16},
        {{"1.1  @zrMOTOROL\0", 16}, 0, 16},
        {{"1.1  @zr\0OTOROLA", 16}, 0, 16},
        {"xxxxxx@zrMOTOROLA", -1, 0}, // the mark reaches beyond the word
        {"xxxxxx1.1MOTOROLA", -1, 0},
        {"1,1  @ZRMOTOROLA", -1, 0},
        {"1.2  @z MOTOROLA", -1, 0},
        {{"\0001.1 @zrMOTOROLA", 16}, -1, 0}, // a zero byte ends the search
        {{"1.\0001 @z\0MOTOROLA", 16}, -1, 0},
        {{"1.1\0\0\0\0\0MOTOROLA", 16}, 1, 16},
        {"", -1, 0},
        {"plain data without any header", -1, 0},
    };
    for (const auto &row : rows) {
        fio_handle *handle = OpenBytes(row.start, FIO_READ | FIO_BYTEORDER);
        ASSERT_NE(handle, nullptr) << row.start;
        EXPECT_EQ(handle->byte_order, row.byte_order) << row.start;
        EXPECT_EQ(fio_tell(handle), row.position) << row.start;
        EXPECT_EQ(fio_close(handle), 0);
    }
}

TEST_F(Handle, HeaderCutAtAnyByteIsTakenAsFarAsItGoes) {
    for (const std::string &header : {native_header, foreign_header}) {
        for (std::size_t length = 0; length <= header.size(); ++length) {
            fio_handle *handle = OpenBytes(header.substr(0, length), FIO_READ | FIO_BYTEORDER);
            ASSERT_NE(handle, nullptr);
            const int order = length < 3 ? -1 : length == 16 && header == foreign_header ? 1 : 0;
            EXPECT_EQ(handle->byte_order, order) << length;
            EXPECT_EQ(fio_tell(handle), length < 3 ? 0 : static_cast<zr_long>(length)) << length;
            EXPECT_EQ(fio_getchar(handle, nullptr), length < 3 && length > 0 ? header[0] : -1) << length;
            EXPECT_EQ(fio_close(handle), 0);
        }
    }
}

TEST_F(Handle, TextModeKnowsNoHeader) {
    fio_handle *handle = OpenBytes(foreign_header, FIO_READ | FIO_TEXT | FIO_BYTEORDER);
    EXPECT_EQ(handle->byte_order, 0);
    EXPECT_EQ(fio_tell(handle), 0);
    EXPECT_EQ(fio_close(handle), 0);
    EXPECT_EQ(CloseAndRead(Open("new", FIO_WRITE | FIO_TEXT | FIO_BYTEORDER), "new"), "");
}

TEST_F(Handle, AppendModeKnowsNoHeader) {
    EXPECT_EQ(CloseAndRead(Open("new", FIO_APPEND | FIO_BYTEORDER), "new"), "");
    fio_handle *handle = OpenBytes(foreign_header, FIO_APPEND | FIO_UPDATE | FIO_BYTEORDER);
    EXPECT_EQ(handle->byte_order, 0);
    EXPECT_EQ(fio_putlong(handle, 0x01020304), 0);
    EXPECT_EQ(CloseAndRead(handle, "bytes"), foreign_header + "\x04\x03\x02\x01");
}

TEST_F(Handle, UpdateModeGoesOnInEitherDirectionBehindTheHeader) {
    fio_handle *handle = OpenBytes(foreign_header + "abcd", FIO_READ | FIO_UPDATE | FIO_BYTEORDER);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(handle->byte_order, 1);
    EXPECT_EQ(fio_putchar(handle, 'X'), 0);
    EXPECT_EQ(CloseAndRead(handle, "bytes"), foreign_header + "Xbcd");
    handle = Open("bytes", FIO_READ | FIO_UPDATE | FIO_BYTEORDER);
    EXPECT_EQ(fio_getchar(handle, nullptr), 'X');
    EXPECT_EQ(fio_close(handle), 0);
    handle = OpenBytes("plain data", FIO_READ | FIO_UPDATE | FIO_BYTEORDER);
    EXPECT_EQ(handle->byte_order, -1);
    EXPECT_EQ(fio_putchar(handle, 'P'), 0) << "in front of everything";
    EXPECT_EQ(CloseAndRead(handle, "bytes"), "Plain data");
    handle = OpenBytes(native_header.substr(0, 12), FIO_READ | FIO_UPDATE | FIO_BYTEORDER);
    EXPECT_EQ(fio_putchar(handle, 'X'), 0) << "behind a header that the end of the file cut";
    EXPECT_EQ(CloseAndRead(handle, "bytes"), native_header.substr(0, 12) + "X");
    handle = Open("new", FIO_WRITE | FIO_UPDATE | FIO_BYTEORDER);
    EXPECT_EQ(handle->byte_order, 0);
    EXPECT_EQ(fio_getchar(handle, nullptr), -1);
    EXPECT_EQ(CloseAndRead(handle, "new"), native_header);
}

// ---- Position and length ----------------------------------------------------------------------------------------

TEST_F(Handle, SeekGoesFromStartPositionAndEnd) {
    fio_handle *handle = OpenBytes("0123456789");
    EXPECT_EQ(fio_seek(handle, 4, 0), 0);
    EXPECT_EQ(fio_tell(handle), 4);
    EXPECT_EQ(fio_seek(handle, -1, 1), 0);
    EXPECT_EQ(fio_tell(handle), 3);
    for (int whence : {2, 7, 3, -1, 2147483647}) {
        EXPECT_EQ(fio_seek(handle, -2, whence), 0) << whence;
        EXPECT_EQ(fio_tell(handle), 8) << whence;
        EXPECT_EQ(fio_getchar(handle, nullptr), '8') << whence;
    }
    EXPECT_EQ(fio_seek(handle, -1, 0), -1);
    EXPECT_EQ(fio_seek(handle, -2147483647 - 1, 0), -1);
    EXPECT_EQ(fio_seek(handle, -2147483647 - 1, 1), -1);
    EXPECT_EQ(fio_tell(handle), 9) << "where it was";
    EXPECT_EQ(fio_seek(handle, -11, 2), -1);
    EXPECT_EQ(fio_seek(handle, 100, 0), 0) << "behind the end";
    EXPECT_EQ(fio_getchar(handle, nullptr), -1);
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(Handle, LengthLeavesThePositionAndCountsWhatIsInMemory) {
    fio_handle *handle = OpenBytes("0123456789");
    EXPECT_EQ(fio_length(handle), 10);
    EXPECT_EQ(fio_tell(handle), 0);
    EXPECT_EQ(fio_getchar(handle, nullptr), '0');
    EXPECT_EQ(fio_length(handle), 10);
    EXPECT_EQ(fio_getchar(handle, nullptr), '1');
    EXPECT_EQ(fio_close(handle), 0);
    handle = Open("bytes", FIO_APPEND);
    EXPECT_EQ(fio_putchar(handle, 'a'), 0);
    EXPECT_EQ(fio_length(handle), 11);
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(Handle, LengthAndPositionOfATextCountBytesOfTheFile) {
    fio_handle *handle = OpenBytes("ab\r\ncd\r\n", FIO_READ | FIO_TEXT);
    EXPECT_EQ(fio_getchar(handle, nullptr), 'a');
    EXPECT_EQ(fio_length(handle), 8);
    EXPECT_EQ(fio_tell(handle), 1);
    EXPECT_EQ(fio_getchar(handle, nullptr), 'b');
    EXPECT_EQ(fio_getchar(handle, nullptr), '\n');
    EXPECT_EQ(fio_tell(handle), 4);
    EXPECT_EQ(fio_length(handle), 8);
    EXPECT_EQ(fio_getchar(handle, nullptr), 'c');
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(Handle, FlushHandsOverWhatWasWritten) {
    fio_handle *handle = Open("file", FIO_WRITE);
    EXPECT_EQ(fio_putchar(handle, 'a'), 0);
    EXPECT_EQ(m_folder.Read("file"), "");
    EXPECT_EQ(fio_flush(handle), 0);
    EXPECT_EQ(m_folder.Read("file"), "a");
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(Handle, PositionsUpTo2147483647AreTold) {
    m_folder.Write("big", "");
    std::filesystem::resize_file(m_folder.Path("big"), 3221225472u);
    fio_handle *handle = Open("big", FIO_READ | FIO_UPDATE);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(fio_length(handle), -1);
    EXPECT_EQ(fio_tell(handle), 0);
    EXPECT_EQ(fio_seek(handle, 2147483647, 0), 0);
    EXPECT_EQ(fio_tell(handle), 2147483647);
    EXPECT_EQ(fio_getchar(handle, nullptr), 0);
    EXPECT_EQ(fio_tell(handle), -1) << "one too far";
    EXPECT_EQ(fio_seek(handle, 2147483647, 1), 0) << "positions themselves are not limited";
    EXPECT_EQ(fio_tell(handle), -1);
    EXPECT_EQ(fio_seek(handle, -8, 2), 0);
    EXPECT_EQ(fio_tell(handle), -1);
    EXPECT_EQ(fio_putdouble(handle, 1.5), 0);
    EXPECT_EQ(fio_seek(handle, -8, 2), 0);
    double value = 0;
    EXPECT_EQ(fio_getdouble(handle, &value), 0);
    EXPECT_EQ(value, 1.5);
    EXPECT_EQ(fio_length(handle), -1);
    EXPECT_EQ(fio_getchar(handle, nullptr), -1) << "still at the end";
    EXPECT_EQ(fio_close(handle), 0);
    EXPECT_EQ(std::filesystem::file_size(m_folder.Path("big")), 3221225472u);
    std::filesystem::resize_file(m_folder.Path("big"), 2147483647u);
    handle = Open("big", FIO_READ);
    EXPECT_EQ(fio_length(handle), 2147483647);
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(Handle, BlocksMoveWholeItems) {
    fio_handle *handle = Open("file", FIO_WRITE | FIO_UPDATE);
    EXPECT_EQ(fio_fwrite("abcdefgh", 2, 4, handle), 4u);
    EXPECT_EQ(fio_seek(handle, 0, 0), 0);
    char buffer[9] = "";
    EXPECT_EQ(fio_fread(buffer, 3, 3, handle), 2u) << "a third item is only begun";
    EXPECT_EQ(std::string(buffer, 6), "abcdef");
    EXPECT_EQ(fio_seek(handle, 0, 0), 0);
    EXPECT_EQ(fio_fread(nullptr, 1, 1, handle), 0u);
    EXPECT_EQ(fio_fread(buffer, 0, 1, handle), 0u);
    EXPECT_EQ(fio_fread(buffer, 1, 0, handle), 0u);
    EXPECT_EQ(fio_fread(buffer, 1, 1, nullptr), 0u);
    EXPECT_EQ(fio_fwrite(nullptr, 1, 1, handle), 0u);
    EXPECT_EQ(fio_fwrite(buffer, 0, 1, handle), 0u);
    EXPECT_EQ(fio_fwrite(buffer, 1, 0, handle), 0u);
    EXPECT_EQ(fio_fwrite(buffer, 1, 1, nullptr), 0u);
    EXPECT_EQ(CloseAndRead(handle, "file"), "abcdefgh");
}

TEST_F(Handle, BlocksAreNeverReversed) {
    fio_handle *handle = OpenBytes(foreign_header + "\x01\x02\x03\x04", FIO_READ | FIO_BYTEORDER);
    char bytes[5] = "";
    EXPECT_EQ(fio_fread(bytes, 4, 1, handle), 1u);
    EXPECT_STREQ(bytes, "\x01\x02\x03\x04");
    EXPECT_EQ(fio_close(handle), 0);
    handle = OpenBytes(foreign_header, FIO_READ | FIO_UPDATE | FIO_BYTEORDER);
    EXPECT_EQ(fio_fwrite("\x01\x02\x03\x04", 4, 1, handle), 1u);
    EXPECT_EQ(CloseAndRead(handle, "bytes"), foreign_header + "\x01\x02\x03\x04");
}

// ---- Null handles -----------------------------------------------------------------------------------------------

void ExpectEveryCallFails(fio_handle *handle) {
    char text[4] = "abc";
    double a_double = 7;
    zr_long a_long = 7;
    float a_float = 7;
    short a_short = 7;
    char a_char = 'c';
    EXPECT_EQ(fio_length(handle), -1);
    EXPECT_EQ(fio_seek(handle, 0, 0), -1);
    EXPECT_EQ(fio_tell(handle), -1);
    EXPECT_EQ(fio_flush(handle), -1);
    EXPECT_EQ(fio_fread(text, 1, 1, handle), 0u);
    EXPECT_EQ(fio_fwrite(text, 1, 1, handle), 0u);
    EXPECT_EQ(fio_putdouble(handle, 1), -1);
    EXPECT_EQ(fio_putlong(handle, 1), -1);
    EXPECT_EQ(fio_putfloat(handle, 1), -1);
    EXPECT_EQ(fio_putshort(handle, 1), -1);
    EXPECT_EQ(fio_putchar(handle, 'x'), -1);
    EXPECT_EQ(fio_putstring(handle, "x", 1), -1);
    EXPECT_EQ(fio_putstring(handle, "", 0), -1);
    EXPECT_EQ(fio_getdouble(handle, &a_double), -1);
    EXPECT_EQ(fio_getlong(handle, &a_long), -1);
    EXPECT_EQ(fio_getfloat(handle, &a_float), -1);
    EXPECT_EQ(fio_getshort(handle, &a_short), -1);
    EXPECT_EQ(fio_getchar(handle, &a_char), -1);
    EXPECT_EQ(fio_getchar(handle, nullptr), -1);
    EXPECT_EQ(fio_getstring(handle, 3, text), -1);
    EXPECT_EQ(fio_getstringdel(handle, 3, ";", text), -1);
    EXPECT_EQ(fio_lock(handle), -4);
    EXPECT_EQ(fio_unlock(handle), -1);
    EXPECT_EQ(fio_islock(handle), 0);
    EXPECT_EQ(a_double + a_long + static_cast<double>(a_float) + a_short, 28);
    EXPECT_EQ(a_char, 'c');
    EXPECT_STREQ(text, "abc");
}

TEST_F(Handle, NullHandleFailsEverywhere) {
    ExpectEveryCallFails(nullptr);
    EXPECT_EQ(fio_close(nullptr), 0);
    EXPECT_EQ(fio_filename(nullptr), nullptr);
    EXPECT_EQ(m_reports.Take(), Reports{});
}

TEST_F(Handle, NullStreamFailsEverywhere) {
    auto *handle = static_cast<fio_handle *>(heap_calloc(1, sizeof(fio_handle)));
    ExpectEveryCallFails(handle);
    EXPECT_EQ(fio_fp(handle), nullptr);
    EXPECT_EQ(fio_filename(handle), nullptr);
    EXPECT_EQ(fio_close(handle), 0);
    EXPECT_EQ(m_reports.Take(), Reports{});
}

// ---- Faults -----------------------------------------------------------------------------------------------------

TEST_F(Handle, WithoutMemoryForTheRecordTheFileIsClosedAgain) {
    m_folder.Write("file", "content");
    const zr_long blocks = heap_block_count;
    const long long handles = ProcessMeasures::Now().handles;
    {
        HeapRefusal refusal(0);
        EXPECT_EQ(Open("file", FIO_READ), nullptr);
        EXPECT_TRUE(refusal.Met());
    }
    EXPECT_EQ(heap_block_count, blocks);
    EXPECT_EQ(ProcessMeasures::Now().handles, handles);
    std::error_code error;
    EXPECT_TRUE(std::filesystem::remove(m_folder.Path("file"), error)) << "an open file can't be removed everywhere";
    EXPECT_EQ(m_reports.Take(), Reports{});
}

TEST_F(Handle, WithoutMemoryForThePathTheHandleWorksUnderASharedName) {
    const zr_long blocks = heap_block_count;
    fio_handle *handle = nullptr;
    {
        HeapRefusal refusal(1);
        handle = Open("file", FIO_WRITE | FIO_BYTEORDER);
        EXPECT_TRUE(refusal.Met());
    }
    ASSERT_NE(handle, nullptr);
    EXPECT_STREQ(fio_filename(handle), "????");
    EXPECT_EQ(heap_block_count, blocks + 1) << "the record alone";
    EXPECT_EQ(fio_putchar(handle, 'x'), 0);
    EXPECT_EQ(CloseAndRead(handle, "file"), native_header + "x");
    EXPECT_EQ(heap_block_count, blocks);
}

TEST_F(Handle, WithoutMemoryForATextStreamNothingOpens) {
    m_folder.Write("file", "content");
    const long long handles = ProcessMeasures::Now().handles;
    const zr_long blocks = heap_block_count;
    for (int mode : {17, 18, 20, 25}) {
        const zr::test::Refusal refusal(100000);
        fio_handle *handle = Open("file", mode);
        EXPECT_EQ(handle == nullptr, refusal.Met()) << mode;
        EXPECT_EQ(refusal.Met(), !IsOnDesktop()) << "where text streams are the library's own";
        EXPECT_EQ(fio_close(handle), 0);
    }
    EXPECT_EQ(ProcessMeasures::Now().handles, handles);
    EXPECT_EQ(heap_block_count, blocks);
}

TEST_F(Handle, OpenAndCloseLeaveNothingBehind) {
    const zr_long blocks = heap_block_count;
    for (int mode : {2, 1, 4, 9, 10, 12, 17, 18, 20, 33, 34, 36}) {
        fio_handle *handle = Open("file", mode);
        ASSERT_NE(handle, nullptr) << mode;
        EXPECT_EQ(heap_block_count, blocks + 2);
        EXPECT_EQ(fio_close(handle), 0);
        EXPECT_EQ(heap_block_count, blocks);
    }
    std::error_code error;
    EXPECT_TRUE(std::filesystem::remove(m_folder.Path("file"), error));
}

TEST_F(Handle, StreamOfTheWrongDirectionFails) {
    fio_handle *handle = OpenBytes("0123456789");
    EXPECT_EQ(fio_putchar(handle, 'x'), -1);
    EXPECT_EQ(fio_putdouble(handle, 1), -1);
    EXPECT_EQ(fio_putlong(handle, 1), -1);
    EXPECT_EQ(fio_putfloat(handle, 1), -1);
    EXPECT_EQ(fio_putshort(handle, 1), -1);
    EXPECT_EQ(fio_putstring(handle, "x", 0), -1);
    EXPECT_EQ(fio_fwrite("x", 1, 1, handle), 0u);
    fio_close(handle); // some systems remember the failures until now
    EXPECT_EQ(m_folder.Read("bytes"), "0123456789");
    handle = Open("bytes", FIO_WRITE);
    double value = 3;
    char text[10] = "";
    zr_long a_long = 3;
    float a_float = 3;
    short a_short = 3;
    EXPECT_EQ(fio_getdouble(handle, &value), -1);
    EXPECT_EQ(fio_getlong(handle, &a_long), -1);
    EXPECT_EQ(fio_getfloat(handle, &a_float), -1);
    EXPECT_EQ(fio_getshort(handle, &a_short), -1);
    EXPECT_EQ(fio_getchar(handle, nullptr), -1);
    EXPECT_EQ(fio_getchar(handle, text), -1);
    EXPECT_EQ(fio_getstring(handle, 3, text), -1);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(fio_getstringdel(handle, 3, ";", text), -1);
    EXPECT_EQ(fio_fread(text, 1, 1, handle), 0u);
    EXPECT_EQ(value + a_long + static_cast<double>(a_float) + a_short, 12);
    EXPECT_EQ(fio_close(handle), 0);
}

// A device that takes nothing, where the host has one.
TEST_F(Handle, FullDiskShowsAtTheLatestWhenClosing) {
    fio_handle *handle = fio_open("\\dev", "full", FIO_WRITE);
    if (handle == nullptr)
        GTEST_SKIP() << "this host has no device that is always full";
    EXPECT_EQ(fio_putdouble(handle, 1.5), 0) << "kept in memory";
    EXPECT_EQ(fio_flush(handle), -1);
    EXPECT_EQ(fio_putdouble(handle, 1.5), 0);
    EXPECT_EQ(fio_seek(handle, 0, 0), -1) << "what is in memory goes first";
    EXPECT_EQ(fio_putdouble(handle, 1.5), 0);
    EXPECT_EQ(fio_length(handle), -1);
    EXPECT_EQ(fio_putdouble(handle, 1.5), 0);
    EXPECT_EQ(fio_close(handle), -1);
    handle = fio_open("\\dev", "full", FIO_WRITE | FIO_BYTEORDER);
    ASSERT_NE(handle, nullptr) << "failures to write the header don't show at once";
    EXPECT_EQ(fio_close(handle), -1);
    handle = fio_open("\\dev", "full", FIO_WRITE | FIO_TEXT);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(fio_putstring(handle, "a\n", 0), 0);
    EXPECT_EQ(fio_close(handle), -1);
}

TEST_F(Handle, FullDiskFailsEveryWriteOfAStreamWithoutBuffer) {
    fio_handle *handle = fio_open("\\dev", "full", FIO_WRITE);
    if (handle == nullptr)
        GTEST_SKIP() << "this host has no device that is always full";
    ASSERT_EQ(std::setvbuf(fio_fp(handle), nullptr, _IONBF, 0), 0);
    const zr_long blocks = heap_block_count;
    ExpectWritesToFail(handle);
    EXPECT_EQ(heap_block_count, blocks);
    fio_close(handle);
    EXPECT_EQ(heap_block_count, blocks - 2) << "freed whatever closing said";
}

TEST_F(Handle, ValuesCrossTheBoundariesOfBuffers) {
    fio_handle *handle = Open("file", FIO_WRITE | FIO_UPDATE);
    EXPECT_EQ(fio_putchar(handle, '!'), 0) << "values lie across the ends of blocks";
    constexpr int count = 30000;
    for (int i = 0; i < count; ++i)
        ASSERT_EQ(fio_putdouble(handle, i * 0.5), 0);
    EXPECT_EQ(fio_length(handle), 1 + 8 * count);
    EXPECT_EQ(fio_seek(handle, 1, 0), 0);
    for (int i = 0; i < count; ++i) {
        double value = -1;
        ASSERT_EQ(fio_getdouble(handle, &value), 0);
        ASSERT_EQ(value, i * 0.5);
    }
    EXPECT_EQ(fio_close(handle), 0);
}

} // namespace
