// File handles: typed values, their bytes, and what is refused.
#include <zrclb/file_handle.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "files/handle_fixture.h"

namespace {

class HandleValues : public HandleFixture {
protected:
    // A new file, binary without header, with this byte order set by hand.
    fio_handle *NewFile(int byte_order, int mode = FIO_WRITE | FIO_UPDATE) const {
        fio_handle *handle = Open("file", mode);
        if (handle != nullptr)
            handle->byte_order = byte_order;
        return handle;
    }
};

constexpr const char *no_other_order = "HPUX/AIX - not yet implemented";

TEST_F(HandleValues, EachLiesInTheFileWithItsLowestByteFirst) {
    fio_handle *handle = NewFile(0);
    EXPECT_EQ(fio_putchar(handle, '\xFE'), 0);
    EXPECT_EQ(fio_putshort(handle, -2), 0);
    EXPECT_EQ(fio_putlong(handle, 0x01020304), 0);
    EXPECT_EQ(fio_putfloat(handle, 1.5F), 0);
    EXPECT_EQ(fio_putdouble(handle, -2.0), 0);
    const std::string bytes("\xFE"
                            "\xFE\xFF"
                            "\x04\x03\x02\x01"
                            "\0\0\xC0\x3F"
                            "\0\0\0\0\0\0\0\xC0",
                            19);
    EXPECT_EQ(CloseAndRead(handle, "file"), bytes);

    handle = OpenBytes(bytes);
    char a_char = 0;
    short a_short = 0;
    zr_long a_long = 0;
    float a_float = 0;
    double a_double = 0;
    EXPECT_EQ(fio_getchar(handle, &a_char), 0);
    EXPECT_EQ(fio_getshort(handle, &a_short), 0);
    EXPECT_EQ(fio_getlong(handle, &a_long), 0);
    EXPECT_EQ(fio_getfloat(handle, &a_float), 0);
    EXPECT_EQ(fio_getdouble(handle, &a_double), 0);
    EXPECT_EQ(a_char, '\xFE');
    EXPECT_EQ(a_short, -2);
    EXPECT_EQ(a_long, 0x01020304);
    EXPECT_EQ(a_float, 1.5F);
    EXPECT_EQ(a_double, -2.0);
    EXPECT_EQ(fio_getchar(handle, nullptr), -1);
    EXPECT_EQ(fio_close(handle), 0);
}

// The file that the description of the format shows.
TEST_F(HandleValues, ExampleOfTheDescriptionIsWrittenByteByByte) {
    fio_handle *handle = Open("example.dat", FIO_WRITE | FIO_BYTEORDER);
    EXPECT_EQ(fio_putlong(handle, 2013), 0);
    EXPECT_EQ(fio_putshort(handle, -2), 0);
    EXPECT_EQ(fio_putchar(handle, 'A'), 0);
    EXPECT_EQ(fio_putstring(handle, "Bolt", 8), 0);
    EXPECT_EQ(fio_putdouble(handle, 1.5), 0);
    EXPECT_EQ(fio_putfloat(handle, 0.25F), 0);
    const std::string data("\xDD\x07\0\0"
                           "\xFE\xFF"
                           "A"
                           "Bolt    "
                           "\0\0\0\0\0\0\xF8\x3F"
                           "\0\0\x80\x3E",
                           27);
    EXPECT_EQ(CloseAndRead(handle, "example.dat"), native_header + data);
}

TEST_F(HandleValues, EveryByteOfAValueHasItsPlaceInEitherOrder) {
    const double pi = 3.141592653589793; // eight different bytes
    const std::string native("\x18\x2D\x44\x54\xFB\x21\x09\x40\x78\x56\x34\x12", 12);
    const std::string foreign("\x40\x09\x21\xFB\x54\x44\x2D\x18\x12\x34\x56\x78", 12);
    fio_handle *handle = NewFile(0);
    EXPECT_EQ(fio_putdouble(handle, pi), 0);
    EXPECT_EQ(fio_putlong(handle, 0x12345678), 0);
    EXPECT_EQ(CloseAndRead(handle, "file"), native);
    for (const std::string &bytes : {native_header + native, foreign_header + foreign}) {
        handle = OpenBytes(bytes, FIO_READ | FIO_BYTEORDER);
        double a_double = 0;
        zr_long a_long = 0;
        EXPECT_EQ(fio_getdouble(handle, &a_double), 0);
        EXPECT_EQ(fio_getlong(handle, &a_long), 0);
        EXPECT_EQ(a_double, pi);
        EXPECT_EQ(a_long, 0x12345678);
        EXPECT_EQ(fio_close(handle), 0);
    }
}

TEST_F(HandleValues, ExtremesOfShortsAndFloatsComeBackBitForBit) {
    const short shorts[] = {0, -1, 32767, -32768};
    const float floats[] = {0.0F, -0.0F, std::numeric_limits<float>::max(), std::numeric_limits<float>::denorm_min(),
                            -std::numeric_limits<float>::infinity()};
    fio_handle *handle = NewFile(0);
    for (short value : shorts)
        EXPECT_EQ(fio_putshort(handle, value), 0);
    for (float value : floats)
        EXPECT_EQ(fio_putfloat(handle, value), 0);
    EXPECT_EQ(fio_seek(handle, 0, 0), 0);
    for (short value : shorts) {
        short back = 7;
        EXPECT_EQ(fio_getshort(handle, &back), 0);
        EXPECT_EQ(back, value);
    }
    for (float value : floats) {
        float back = 7;
        EXPECT_EQ(fio_getfloat(handle, &back), 0);
        EXPECT_EQ(std::memcmp(&back, &value, sizeof value), 0) << value;
    }
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleValues, ExtremesComeBackBitForBit) {
    const double doubles[] = {0.0,
                              -0.0,
                              std::numeric_limits<double>::max(),
                              std::numeric_limits<double>::denorm_min(),
                              std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity()};
    const zr_long longs[] = {0, -1, 2147483647, -2147483647 - 1};
    fio_handle *handle = NewFile(0);
    for (double value : doubles)
        EXPECT_EQ(fio_putdouble(handle, value), 0);
    EXPECT_EQ(fio_putdouble(handle, std::nan("")), 0);
    for (zr_long value : longs)
        EXPECT_EQ(fio_putlong(handle, value), 0);
    EXPECT_EQ(fio_seek(handle, 0, 0), 0);
    double a_double = 1;
    for (double value : doubles) {
        EXPECT_EQ(fio_getdouble(handle, &a_double), 0);
        EXPECT_EQ(std::memcmp(&a_double, &value, sizeof value), 0) << value;
    }
    EXPECT_EQ(fio_getdouble(handle, &a_double), 0);
    EXPECT_TRUE(std::isnan(a_double));
    zr_long a_long = 1;
    for (zr_long value : longs) {
        EXPECT_EQ(fio_getlong(handle, &a_long), 0);
        EXPECT_EQ(a_long, value);
    }
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleValues, LongsAndDoublesOfTheOtherOrderAreReversedWhenRead) {
    fio_handle *handle =
        OpenBytes(foreign_header + std::string("\x01\x02\x03\x04\xC0\0\0\0\0\0\0\0\x01\x02\x03\x04", 16),
                  FIO_READ | FIO_BYTEORDER);
    zr_long a_long = 0;
    double a_double = 0;
    EXPECT_EQ(fio_getlong(handle, &a_long), 0);
    EXPECT_EQ(a_long, 0x01020304);
    EXPECT_EQ(fio_getdouble(handle, &a_double), 0);
    EXPECT_EQ(a_double, -2.0);
    EXPECT_EQ(m_reports.Take(), Reports{});
    short a_short = 7;
    float a_float = 7;
    EXPECT_EQ(fio_getshort(handle, &a_short), -1);
    EXPECT_EQ(m_reports.Take(), Refusal(no_other_order));
    EXPECT_EQ(fio_getfloat(handle, &a_float), -1);
    EXPECT_EQ(m_reports.Take(), Refusal(no_other_order));
    EXPECT_EQ(a_short, 7);
    EXPECT_EQ(a_float, 7);
    EXPECT_EQ(fio_tell(handle), 16 + 12) << "refused without reading";
    EXPECT_EQ(fio_getchar(handle, nullptr), 1) << "single bytes have no order";
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleValues, FileWithoutTheWantedHeaderHasLongsAndDoublesOnly) {
    fio_handle *handle = OpenBytes(std::string("\x04\x03\x02\x01\0\0\0\0\0\0\0\xC0\x07", 13), FIO_READ | FIO_BYTEORDER);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(handle->byte_order, -1);
    EXPECT_EQ(fio_tell(handle), 0);
    zr_long a_long = 0;
    double a_double = 0;
    short a_short = 7;
    float a_float = 7;
    EXPECT_EQ(fio_getlong(handle, &a_long), 0);
    EXPECT_EQ(a_long, 0x01020304);
    EXPECT_EQ(fio_getdouble(handle, &a_double), 0);
    EXPECT_EQ(a_double, -2.0);
    EXPECT_EQ(m_reports.Take(), Reports{});
    EXPECT_EQ(fio_getshort(handle, &a_short), -1);
    EXPECT_EQ(m_reports.Take(), Refusal(no_other_order));
    EXPECT_EQ(fio_getfloat(handle, &a_float), -1);
    EXPECT_EQ(m_reports.Take(), Refusal(no_other_order));
    EXPECT_EQ(fio_tell(handle), 12) << "refused without reading";
    EXPECT_EQ(fio_getchar(handle, nullptr), 7);
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleValues, UpdatedFileWithoutHeaderTakesLongsAndDoublesOnly) {
    fio_handle *handle = OpenBytes("plain data and more", FIO_READ | FIO_UPDATE | FIO_BYTEORDER);
    ASSERT_EQ(handle->byte_order, -1);
    EXPECT_EQ(fio_putlong(handle, 0x01020304), 0);
    EXPECT_EQ(fio_putdouble(handle, -2.0), 0);
    EXPECT_EQ(m_reports.Take(), Reports{});
    EXPECT_EQ(fio_putshort(handle, 1), -1);
    EXPECT_EQ(m_reports.Take(), Refusal(no_other_order));
    EXPECT_EQ(fio_putfloat(handle, 1), -1);
    EXPECT_EQ(m_reports.Take(), Refusal(no_other_order));
    EXPECT_EQ(CloseAndRead(handle, "bytes"), std::string("\x04\x03\x02\x01\0\0\0\0\0\0\0\xC0", 12) + "nd more");
}

TEST_F(HandleValues, UpdatedFileOfTheOtherOrderTakesValuesAsTheyAre) {
    fio_handle *handle = OpenBytes(foreign_header, FIO_READ | FIO_UPDATE | FIO_BYTEORDER);
    ASSERT_EQ(handle->byte_order, 1);
    EXPECT_EQ(fio_putlong(handle, 0x01020304), 0);
    EXPECT_EQ(fio_putdouble(handle, -2.0), 0);
    EXPECT_EQ(m_reports.Take(), Reports{});
    EXPECT_EQ(fio_putshort(handle, 1), -1);
    EXPECT_EQ(fio_putfloat(handle, 1), -1);
    EXPECT_EQ(m_reports.Take(),
              (Reports{zr::test::Error("Fio", no_other_order), zr::test::Error("Fio", no_other_order)}));
    EXPECT_EQ(fio_putstring(handle, "ab", 3), 0) << "characters have no order";
    EXPECT_EQ(CloseAndRead(handle, "bytes"),
              foreign_header + std::string("\x04\x03\x02\x01\0\0\0\0\0\0\0\xC0", 12) + "ab ");
}

TEST_F(HandleValues, AppendModeRefusesLongsAndDoublesOfAnyOtherOrder) {
    for (int order : {1, -1, 5}) {
        fio_handle *handle = NewFile(order, FIO_APPEND);
        EXPECT_EQ(fio_putdouble(handle, 1), -1);
        EXPECT_EQ(m_reports.Take(), Refusal("fio_putdouble: not yet implemented in append-mode"));
        EXPECT_EQ(fio_putlong(handle, 1), -1);
        EXPECT_EQ(m_reports.Take(), Refusal("fio_putlong: not yet implemented in append-mode"));
        EXPECT_EQ(fio_putfloat(handle, 1), -1);
        EXPECT_EQ(m_reports.Take(), Refusal(no_other_order));
        EXPECT_EQ(fio_putshort(handle, 1), -1);
        EXPECT_EQ(m_reports.Take(), Refusal(no_other_order));
        EXPECT_EQ(CloseAndRead(handle, "file"), "");
    }
    fio_handle *handle = NewFile(0, FIO_APPEND);
    EXPECT_EQ(fio_putlong(handle, 1), 0);
    EXPECT_EQ(fio_putdouble(handle, 0), 0);
    EXPECT_EQ(CloseAndRead(handle, "file").size(), 12u);
    EXPECT_EQ(m_reports.Take(), Reports{});
}

TEST_F(HandleValues, TextModeRefusesLongsAndDoublesInSilence) {
    for (int order : {0, 1, -1, 5}) {
        fio_handle *handle = NewFile(order, FIO_WRITE | FIO_TEXT);
        EXPECT_EQ(fio_putdouble(handle, 1), -1);
        EXPECT_EQ(fio_putlong(handle, 1), -1);
        EXPECT_EQ(CloseAndRead(handle, "file"), "");
        handle = NewFile(order, FIO_APPEND | FIO_TEXT);
        EXPECT_EQ(fio_putdouble(handle, 1), -1);
        EXPECT_EQ(fio_putlong(handle, 1), -1);
        EXPECT_EQ(CloseAndRead(handle, "file"), "");
        handle = OpenBytes("01234567", FIO_READ | FIO_TEXT | FIO_BYTEORDER);
        handle->byte_order = order;
        double a_double = 7;
        zr_long a_long = 7;
        EXPECT_EQ(fio_getdouble(handle, &a_double), -1);
        EXPECT_EQ(fio_getlong(handle, &a_long), -1);
        EXPECT_EQ(a_double, 7);
        EXPECT_EQ(a_long, 7);
        EXPECT_EQ(fio_getchar(handle, nullptr), '0') << "nothing was read";
        EXPECT_EQ(fio_close(handle), 0);
    }
    EXPECT_EQ(m_reports.Take(), Reports{});
}

TEST_F(HandleValues, TextModeTakesFloatsAndShorts) {
    fio_handle *handle = NewFile(0, FIO_WRITE | FIO_TEXT);
    EXPECT_EQ(fio_putfloat(handle, 1.5F), 0);
    EXPECT_EQ(fio_putshort(handle, 0x0A41), 0) << "with a byte that is a line end there";
    EXPECT_EQ(CloseAndRead(handle, "file"), std::string("\0\0\xC0\x3F\x41\x0D\x0A", 7));
    handle = Open("file", FIO_READ | FIO_TEXT);
    float a_float = 0;
    short a_short = 0;
    EXPECT_EQ(fio_getfloat(handle, &a_float), 0);
    EXPECT_EQ(fio_getshort(handle, &a_short), 0);
    EXPECT_EQ(a_float, 1.5F);
    EXPECT_EQ(a_short, 0x0A41);
    EXPECT_EQ(fio_close(handle), 0);
    handle = NewFile(-1, FIO_WRITE | FIO_TEXT);
    EXPECT_EQ(fio_putfloat(handle, 1), -1);
    EXPECT_EQ(fio_putshort(handle, 1), -1);
    EXPECT_EQ(m_reports.Take(),
              (Reports{zr::test::Error("Fio", no_other_order), zr::test::Error("Fio", no_other_order)}));
    EXPECT_EQ(fio_close(handle), 0);
    handle = OpenBytes("0123", FIO_READ | FIO_TEXT);
    handle->byte_order = 1;
    EXPECT_EQ(fio_getfloat(handle, &a_float), -1);
    EXPECT_EQ(m_reports.Take(), Refusal(no_other_order));
    EXPECT_EQ(fio_getshort(handle, &a_short), -1);
    EXPECT_EQ(m_reports.Take(), Refusal(no_other_order));
    EXPECT_EQ(fio_getchar(handle, nullptr), '0') << "nothing was read";
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleValues, UnknownOrderIsReportedAndTheReadFails) {
    for (int order : {2, -2, 2147483647}) {
        fio_handle *handle = OpenBytes(std::string(12, '\1'));
        handle->byte_order = order;
        double a_double = 7;
        zr_long a_long = 7;
        EXPECT_EQ(fio_getdouble(handle, &a_double), -1);
        EXPECT_EQ(m_reports.Take(), Refusal("file system undefined"));
        EXPECT_EQ(fio_tell(handle), 8);
        EXPECT_EQ(fio_getlong(handle, &a_long), -1);
        EXPECT_EQ(m_reports.Take(), Refusal("file system undefined"));
        EXPECT_EQ(a_double, 7);
        EXPECT_EQ(a_long, 7);
        EXPECT_EQ(fio_close(handle), 0);
    }
}

TEST_F(HandleValues, ValueCutByTheEndOfTheFileIsNoneAndLeavesTheTargetAlone) {
    for (int order : {0, -1, 1}) {
        for (std::size_t length = 0; length < 8; ++length) {
            fio_handle *handle = OpenBytes(std::string(length, '\1'));
            handle->byte_order = order;
            double a_double = 7;
            EXPECT_EQ(fio_getdouble(handle, &a_double), -1);
            EXPECT_EQ(a_double, 7);
            if (length < 4) {
                zr_long a_long = 7;
                EXPECT_EQ(fio_seek(handle, 0, 0), 0);
                EXPECT_EQ(fio_getlong(handle, &a_long), -1);
                EXPECT_EQ(a_long, 7);
            }
            EXPECT_EQ(fio_close(handle), 0);
        }
    }
    fio_handle *handle = OpenBytes("\1");
    float a_float = 7;
    short a_short = 7;
    EXPECT_EQ(fio_getshort(handle, &a_short), -1);
    EXPECT_EQ(fio_getfloat(handle, &a_float), -1);
    EXPECT_EQ(a_short, 7);
    EXPECT_EQ(a_float, 7);
    EXPECT_EQ(fio_close(handle), 0);
    EXPECT_EQ(m_reports.Take(), Reports{});
}

TEST_F(HandleValues, AnyBufferingOfTheStreamGivesTheSameBytes) {
    std::string expected;
    for (int buffering : {_IOFBF, _IOLBF, _IONBF}) {
        fio_handle *handle = NewFile(0);
        ASSERT_EQ(std::setvbuf(fio_fp(handle), nullptr, buffering, buffering == _IONBF ? 0 : 64), 0);
        for (zr_long i = 0; i < 100; ++i) {
            EXPECT_EQ(fio_putlong(handle, i), 0); // 10 looks like a line feed
            EXPECT_EQ(fio_putchar(handle, '\n'), 0);
            EXPECT_EQ(fio_putstring(handle, "text\n", 7), 0);
        }
        EXPECT_EQ(fio_length(handle), 1200);
        for (zr_long i = 0; i < 100; ++i) {
            zr_long value = -1;
            char text[8] = "";
            EXPECT_EQ(fio_seek(handle, 12 * i, 0), 0);
            EXPECT_EQ(fio_getlong(handle, &value), 0);
            EXPECT_EQ(value, i);
            EXPECT_EQ(fio_getchar(handle, nullptr), '\n');
            EXPECT_EQ(fio_getstring(handle, 7, text), 0);
            EXPECT_STREQ(text, "text");
        }
        const std::string bytes = CloseAndRead(handle, "file");
        EXPECT_TRUE(expected.empty() || bytes == expected) << buffering;
        expected = bytes;
    }
}

TEST_F(HandleValues, NullTargetFailsWithoutReading) {
    fio_handle *handle = OpenBytes("01234567");
    EXPECT_EQ(fio_getdouble(handle, nullptr), -1);
    EXPECT_EQ(fio_getlong(handle, nullptr), -1);
    EXPECT_EQ(fio_getfloat(handle, nullptr), -1);
    EXPECT_EQ(fio_getshort(handle, nullptr), -1);
    EXPECT_EQ(fio_tell(handle), 0);
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleValues, SingleByteIsGivenAsNumberOrStored) {
    fio_handle *handle = OpenBytes(std::string("\xFF\0x\x80", 4));
    char value = 'v';
    EXPECT_EQ(fio_getchar(handle, nullptr), 255);
    EXPECT_EQ(fio_getchar(handle, nullptr), 0);
    EXPECT_EQ(fio_getchar(handle, &value), 0);
    EXPECT_EQ(value, 'x');
    EXPECT_EQ(fio_getchar(handle, &value), 0);
    EXPECT_EQ(value, '\x80');
    EXPECT_EQ(fio_getchar(handle, nullptr), -1);
    EXPECT_EQ(fio_getchar(handle, &value), -1);
    EXPECT_EQ(value, '\xFF') << "the low byte of -1";
    EXPECT_EQ(fio_close(handle), 0);
}

} // namespace
