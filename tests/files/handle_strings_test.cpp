// File handles: text fields of a width, and lines.
#include <zrclb/file_handle.h>

#include <climits>
#include <string>

#include <gtest/gtest.h>

#include "files/handle_fixture.h"

namespace {

class HandleStrings : public HandleFixture {
protected:
    // What fio_putstring leaves in a file.
    std::string Written(const char *text, int width, int mode = FIO_WRITE, int result = 0) const {
        fio_handle *handle = Open("file", mode);
        EXPECT_EQ(fio_putstring(handle, text, width), result);
        return CloseAndRead(handle, "file");
    }

    // One read of at most `max` characters: its text, with "=-1" behind where it failed.
    static std::string Line(fio_handle *handle, int max) {
        std::string buffer(static_cast<std::size_t>(max) + 2, '~');
        const int result = fio_getstring(handle, max, buffer.data());
        EXPECT_EQ(buffer[static_cast<std::size_t>(max) + 1], '~') << "written beyond max + 1 characters";
        return buffer.c_str() + (result == 0 ? std::string() : "=" + std::to_string(result));
    }
    static std::string Piece(fio_handle *handle, int max, const char *delimiters) {
        std::string buffer(static_cast<std::size_t>(max) + 2, '~');
        const int result = fio_getstringdel(handle, max, delimiters, buffer.data());
        EXPECT_EQ(buffer[static_cast<std::size_t>(max) + 1], '~') << "written beyond max + 1 characters";
        return buffer.c_str() + (result == 0 ? std::string() : "=" + std::to_string(result));
    }
};

TEST_F(HandleStrings, FieldIsFilledWithBlanksOrCut) {
    EXPECT_EQ(Written("abc", 5), "abc  ");
    EXPECT_EQ(Written("abcdef", 3), "abc");
    EXPECT_EQ(Written("abc", 3), "abc");
    EXPECT_EQ(Written("", 4), "    ");
    EXPECT_EQ(Written("geh\xF6rt", 8), "geh\xF6rt  ");
    EXPECT_EQ(Written("x", 100), "x" + std::string(99, ' '));
    EXPECT_EQ(Written("x", 65), "x" + std::string(64, ' '));
    EXPECT_EQ(Written("x", 10000), "x" + std::string(9999, ' '));
}

TEST_F(HandleStrings, WidthZeroIsTheLengthOfTheText) {
    EXPECT_EQ(Written("abc", 0), "abc");
    EXPECT_EQ(Written("", 0), "");
    const std::string longer(70000, 'x');
    EXPECT_EQ(Written(longer.c_str(), 0), longer);
    EXPECT_EQ(Written(longer.c_str(), 69999), longer.substr(1));
}

TEST_F(HandleStrings, FieldWithoutRoomTakesNothing) {
    EXPECT_EQ(Written("abc", -1), "");
    EXPECT_EQ(Written("abc", INT_MIN), "");
}

TEST_F(HandleStrings, NullTextFails) {
    EXPECT_EQ(Written(nullptr, 0, FIO_WRITE, -1), "");
    EXPECT_EQ(Written(nullptr, 5, FIO_WRITE, -1), "");
}

TEST_F(HandleStrings, TextReadOnlyUpToTheWidth) {
    const char unterminated[] = {'a', 'b', 'c'};
    EXPECT_EQ(Written(unterminated, 3), "abc");
}

TEST_F(HandleStrings, FieldInTextModeTranslatesLineFeeds) {
    EXPECT_EQ(Written("a\nb", 5, FIO_WRITE | FIO_TEXT), "a\r\nb  ");
}

TEST_F(HandleStrings, LineEndsAtLineFeedZeroByteAndEndOfFile) {
    fio_handle *handle = OpenBytes(std::string("ab\n\ncd\0ef", 9));
    EXPECT_EQ(Line(handle, 10), "ab");
    EXPECT_EQ(Line(handle, 10), "") << "an empty line is read";
    EXPECT_EQ(Line(handle, 10), "cd");
    EXPECT_EQ(Line(handle, 10), "ef");
    EXPECT_EQ(Line(handle, 10), "=-1");
    EXPECT_EQ(Line(handle, 10), "=-1");
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleStrings, ZeroBytesAloneAreEmptyLines) {
    fio_handle *handle = OpenBytes(std::string("\0\0;\0", 4));
    EXPECT_EQ(Line(handle, 10), "");
    EXPECT_EQ(Piece(handle, 10, ";"), "");
    EXPECT_EQ(Piece(handle, 10, ";"), ";");
    EXPECT_EQ(Line(handle, 1), "");
    EXPECT_EQ(Line(handle, 1), "=-1");
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleStrings, CharactersHaveNoByteOrder) {
    fio_handle *handle = OpenBytes(foreign_header + "ab;cd\nef", FIO_READ | FIO_BYTEORDER);
    ASSERT_EQ(handle->byte_order, 1);
    EXPECT_EQ(Piece(handle, 10, ";"), "ab;");
    EXPECT_EQ(Line(handle, 10), "cd");
    EXPECT_EQ(Line(handle, 10), "ef");
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleStrings, LineOfTheExampleThenTheEnd) {
    fio_handle *handle = OpenBytes("ab\n");
    EXPECT_EQ(Line(handle, 10), "ab");
    EXPECT_EQ(Line(handle, 10), "=-1");
    EXPECT_EQ(fio_seek(handle, 0, 0), 0);
    EXPECT_EQ(Line(handle, 1), "a");
    EXPECT_EQ(Line(handle, 1), "b");
    EXPECT_EQ(Line(handle, 1), "") << "the line feed is left for the next read";
    EXPECT_EQ(Line(handle, 1), "=-1");
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleStrings, CarriageReturnStaysInBinaryAndGoesInTextMode) {
    fio_handle *handle = OpenBytes("ab\r\ncd\r");
    EXPECT_EQ(Line(handle, 10), "ab\r");
    EXPECT_EQ(Line(handle, 10), "cd\r");
    EXPECT_EQ(fio_close(handle), 0);
    handle = OpenBytes("ab\r\ncd\r\x1A"
                       "ef",
                       FIO_READ | FIO_TEXT);
    EXPECT_EQ(Line(handle, 10), "ab");
    EXPECT_EQ(Line(handle, 10), "cd\r");
    EXPECT_EQ(Line(handle, 10), "=-1");
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleStrings, BytesAbove7FAreCharacters) {
    fio_handle *handle = OpenBytes("\xFF\x80\x1A\x01\n");
    EXPECT_EQ(Line(handle, 10), "\xFF\x80\x1A\x01");
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleStrings, LineLongerThanABufferOfTheStreamIsRead) {
    const std::string line(200000, 'x');
    fio_handle *handle = OpenBytes(line + "\nend");
    EXPECT_EQ(Line(handle, 300000), line);
    EXPECT_EQ(Line(handle, 300000), "end");
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleStrings, MaxBelowOneReadsNothing) {
    fio_handle *handle = OpenBytes("ab");
    char buffer[] = "before";
    for (int max : {0, -1, INT_MIN}) {
        EXPECT_EQ(fio_getstring(handle, max, buffer), -1);
        EXPECT_STREQ(buffer, "before");
    }
    for (int max : {0, -1, INT_MIN}) {
        buffer[0] = 'x';
        EXPECT_EQ(fio_getstringdel(handle, max, ",", buffer), -1);
        EXPECT_STREQ(buffer, "");
    }
    EXPECT_EQ(fio_tell(handle), 0);
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleStrings, NullBufferOrDelimitersReadNothing) {
    fio_handle *handle = OpenBytes("ab");
    char buffer[] = "before";
    EXPECT_EQ(fio_getstring(handle, 5, nullptr), -1);
    EXPECT_EQ(fio_getstringdel(handle, 5, ",", nullptr), -1);
    EXPECT_EQ(fio_getstringdel(handle, 5, nullptr, buffer), -1);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(fio_tell(handle), 0);
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleStrings, DelimiterEndsThePieceAndStaysInIt) {
    fio_handle *handle = OpenBytes("12;34");
    EXPECT_EQ(Piece(handle, 10, ",;"), "12;");
    EXPECT_EQ(Piece(handle, 10, ",;"), "34");
    EXPECT_EQ(Piece(handle, 10, ",;"), "=-1");
    EXPECT_EQ(fio_close(handle), 0);
    handle = OpenBytes(",,;\n;a\0;\xE4|", FIO_READ);
    EXPECT_EQ(Piece(handle, 10, ",;"), ",");
    EXPECT_EQ(Piece(handle, 10, ",;"), ",");
    EXPECT_EQ(Piece(handle, 10, ",;"), ";");
    EXPECT_EQ(Piece(handle, 10, ",;"), "") << "the line feed alone";
    EXPECT_EQ(Piece(handle, 10, ",;"), ";");
    EXPECT_EQ(Piece(handle, 10, ",;"), "a");
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleStrings, DelimitersMayBeAnyByte) {
    fio_handle *handle = OpenBytes("a\xE4"
                                   "b\rc\nd");
    EXPECT_EQ(Piece(handle, 10, "\xE4\r\n"), "a\xE4");
    EXPECT_EQ(Piece(handle, 10, "\xE4\r\n"), "b\r");
    EXPECT_EQ(Piece(handle, 10, "\xE4\r\n"), "c") << "a line feed ends the text and is never stored";
    EXPECT_EQ(Piece(handle, 10, "\xE4\r\n"), "d");
    EXPECT_EQ(fio_close(handle), 0);
    handle = OpenBytes("12;34");
    EXPECT_EQ(Piece(handle, 10, (std::string(10000, ',') + ';').c_str()), "12;");
    EXPECT_EQ(Piece(handle, 10, std::string(10000, ',').c_str()), "34");
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleStrings, DelimitersEndThePieceInTextModeToo) {
    fio_handle *handle = OpenBytes("a;b\r\nc\x1A;", FIO_READ | FIO_TEXT);
    EXPECT_EQ(Piece(handle, 10, ";\r"), "a;");
    EXPECT_EQ(Piece(handle, 10, ";\r"), "b");
    EXPECT_EQ(Piece(handle, 10, ";\r"), "c");
    EXPECT_EQ(Piece(handle, 10, ";\r"), "=-1");
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleStrings, MaxEndsThePieceBeforeItsDelimiter) {
    fio_handle *handle = OpenBytes("123;4");
    EXPECT_EQ(Piece(handle, 3, ";"), "123");
    EXPECT_EQ(Piece(handle, 1, ";"), ";");
    EXPECT_EQ(Piece(handle, 1, ";"), "4");
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleStrings, WithoutDelimitersAPieceIsALine) {
    fio_handle *handle = OpenBytes(std::string("a,b\nc\0d", 7));
    EXPECT_EQ(Piece(handle, 10, ""), "a,b");
    EXPECT_EQ(Piece(handle, 10, ""), "c");
    EXPECT_EQ(Piece(handle, 10, ""), "d");
    EXPECT_EQ(Piece(handle, 10, ""), "=-1");
    EXPECT_EQ(fio_close(handle), 0);
}

} // namespace
