// The value sink: stores, overflow, and numbers read back as texts.
#include "env/value_sink.h"

#include <array>
#include <cstring>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace {

using Zr::CZrEnvValueSink;

TEST(ValueSink, OpensEmptyForWritingAndFullForReading) {
    std::array<double, 2> memory{1.5, 2.5};
    const CZrEnvValueSink writing = CZrEnvValueSink::ForWriting(memory.data(), sizeof memory);
    EXPECT_EQ(writing.Flags(), 6U);
    EXPECT_EQ(writing.BytesWritten(), 0U);
    EXPECT_TRUE(writing.HasRoom(sizeof memory));
    const CZrEnvValueSink reading = CZrEnvValueSink::ForReading(memory.data(), sizeof memory);
    EXPECT_EQ(reading.Flags(), 4U);
    EXPECT_EQ(reading.BytesWritten(), sizeof memory);
    EXPECT_FALSE(reading.HasRoom(1));
}

TEST(ValueSink, PutDoubleStoresTheStandardConversion) {
    std::array<double, 4> memory{};
    CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(memory.data(), sizeof memory);
    sink.PutDouble("1.5");
    sink.PutDouble(" 2d1x");
    sink.PutDouble("1e");
    sink.PutDouble("abc");
    EXPECT_EQ(memory, (std::array<double, 4>{1.5, 20.0, 1.0, 0.0}));
    EXPECT_EQ(sink.BytesWritten(), sizeof memory);
    EXPECT_FALSE(sink.Overflowed());
}

TEST(ValueSink, PutLongStoresTheStandardConversion) {
    std::array<zr_long, 4> memory{};
    CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(memory.data(), sizeof memory);
    sink.PutLong("-12");
    sink.PutLong(" 34x");
    sink.PutLong("99999999999");
    sink.PutLong("abc");
    EXPECT_EQ(memory, (std::array<zr_long, 4>{-12, 34, 2147483647, 0}));
}

TEST(ValueSink, OverflowStaysAndStoresNoMore) {
    std::array<unsigned char, 13> memory;
    memory.fill(0xA5);
    CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(memory.data(), 12);
    sink.PutDouble("1");
    EXPECT_EQ(sink.Flags(), 6U);
    sink.PutDouble("2");
    EXPECT_EQ(sink.Flags(), 14U);
    sink.PutLong("3"); // would fit, but comes too late
    EXPECT_EQ(sink.BytesWritten(), 8U);
    for (std::size_t i = 8; i < memory.size(); ++i)
        EXPECT_EQ(memory[i], 0xA5);
}

TEST(ValueSink, EachStoreNeedsItsWholeSize) {
    std::array<unsigned char, 12> memory;
    memory.fill(0xA5);
    CZrEnvValueSink longs = CZrEnvValueSink::ForWriting(memory.data(), 7);
    longs.PutLong("1"); // 4 of 7
    EXPECT_FALSE(longs.Overflowed());
    longs.PutLong("2"); // 3 are left
    EXPECT_TRUE(longs.Overflowed());
    EXPECT_EQ(longs.BytesWritten(), 4U);
    longs.PutString("");
    longs.PutDouble("1");
    EXPECT_EQ(longs.BytesWritten(), 4U);
    for (std::size_t i = 4; i < memory.size(); ++i)
        EXPECT_EQ(memory[i], 0xA5) << i;
    CZrEnvValueSink doubles = CZrEnvValueSink::ForWriting(memory.data(), 7);
    doubles.PutDouble("1");
    EXPECT_TRUE(doubles.Overflowed());
    EXPECT_EQ(doubles.BytesWritten(), 0U);
}

TEST(ValueSink, NullTextIsAnOverflow) {
    std::array<char, 16> memory{};
    for (const int kind : {0, 1, 2}) {
        CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(memory.data(), memory.size());
        if (kind == 0)
            sink.PutDouble(nullptr);
        else if (kind == 1)
            sink.PutLong(nullptr);
        else
            sink.PutString(nullptr);
        EXPECT_EQ(sink.Flags(), 14U) << kind;
        EXPECT_EQ(sink.BytesWritten(), 0U) << kind;
    }
}

TEST(ValueSink, NullMemoryHasNoRoom) {
    CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(nullptr, 100);
    EXPECT_FALSE(sink.StoreDouble(1.0));
    EXPECT_TRUE(sink.Overflowed());
    CZrEnvValueSink reading = CZrEnvValueSink::ForReading(nullptr, 100);
    char text[40];
    EXPECT_EQ(reading.GetDoubleText(text, 30), 0U);
    EXPECT_EQ(reading.Flags(), 20U);
}

TEST(ValueSink, PutStringLetsTheNextTextOverwriteTheTerminator) {
    std::array<char, 8> memory;
    memory.fill('#');
    CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(memory.data(), memory.size());
    sink.PutString("abc");
    EXPECT_STREQ(memory.data(), "abc");
    EXPECT_EQ(sink.BytesWritten(), 3U);
    sink.PutString("");
    sink.PutString("defg");
    EXPECT_STREQ(memory.data(), "abcdefg");
    EXPECT_FALSE(sink.Overflowed());
    sink.PutString(""); // one byte is left, and the terminator needs it
    EXPECT_FALSE(sink.Overflowed());
    sink.PutString("h");
    EXPECT_TRUE(sink.Overflowed());
    EXPECT_STREQ(memory.data(), "abcdefg");
}

TEST(ValueSink, PutStringNeedsRoomForTheTerminator) {
    std::array<char, 4> memory;
    memory.fill('#');
    CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(memory.data(), 3);
    sink.PutString("abc");
    EXPECT_TRUE(sink.Overflowed());
    EXPECT_EQ(memory[0], '#');
}

TEST(ValueSink, NumbersAreReadBackAsTexts) {
    std::array<double, 3> doubles{0.1, -0.0, 1e100};
    CZrEnvValueSink sink = CZrEnvValueSink::ForReading(doubles.data(), sizeof doubles);
    char text[40];
    EXPECT_EQ(sink.GetDoubleText(text, 39), 3U);
    EXPECT_STREQ(text, "0.1");
    EXPECT_EQ(sink.GetDoubleText(text, 39), 2U);
    EXPECT_STREQ(text, "-0");
    EXPECT_EQ(sink.GetDoubleText(text, 39), 6U);
    EXPECT_STREQ(text, "1e+100");
    EXPECT_EQ(sink.Flags(), 4U);
    EXPECT_EQ(sink.GetDoubleText(text, 39), 0U);
    EXPECT_EQ(sink.Flags(), 20U);

    std::array<zr_long, 2> longs{-5, std::numeric_limits<std::int32_t>::min()};
    CZrEnvValueSink longSink = CZrEnvValueSink::ForReading(longs.data(), sizeof longs);
    EXPECT_EQ(longSink.GetLongText(text, 39), 2U);
    EXPECT_STREQ(text, "-5");
    EXPECT_EQ(longSink.GetLongText(text, 39), 11U);
    EXPECT_STREQ(text, "-2147483648");
    EXPECT_EQ(longSink.GetDoubleText(text, 39), 0U);
}

TEST(ValueSink, ATextThatIsTooLongTellsItsLengthAndEndsTheReading) {
    zr_long value = 12345;
    char text[8] = "#######";
    CZrEnvValueSink fits = CZrEnvValueSink::ForReading(&value, sizeof value);
    EXPECT_EQ(fits.GetLongText(text, 5), 5U); // the terminator is not counted
    EXPECT_STREQ(text, "12345");
    std::strcpy(text, "#######");
    CZrEnvValueSink sink = CZrEnvValueSink::ForReading(&value, sizeof value);
    EXPECT_EQ(sink.GetLongText(text, 4), 5U);
    EXPECT_STREQ(text, "#######");
    EXPECT_EQ(sink.Flags(), 20U);
    EXPECT_EQ(sink.GetLongText(text, 7), 0U);
    EXPECT_STREQ(text, "#######");
    double number = 0.125;
    CZrEnvValueSink doubles = CZrEnvValueSink::ForReading(&number, sizeof number);
    EXPECT_EQ(doubles.GetDoubleText(text, 4), 5U);
    EXPECT_STREQ(text, "#######");
    EXPECT_EQ(doubles.Flags(), 20U);
    CZrEnvValueSink doubleFits = CZrEnvValueSink::ForReading(&number, sizeof number);
    EXPECT_EQ(doubleFits.GetDoubleText(text, 5), 5U);
    EXPECT_STREQ(text, "0.125");
}

TEST(ValueSink, APartOfANumberIsNotRead) {
    std::array<char, 8> memory{};
    char text[8] = "#######";
    CZrEnvValueSink longs = CZrEnvValueSink::ForReading(memory.data(), 3);
    EXPECT_EQ(longs.GetLongText(text, 7), 0U);
    EXPECT_EQ(longs.Flags(), 20U);
    CZrEnvValueSink doubles = CZrEnvValueSink::ForReading(memory.data(), 7);
    EXPECT_EQ(doubles.GetDoubleText(text, 7), 0U);
    EXPECT_EQ(doubles.Flags(), 20U);
    EXPECT_STREQ(text, "#######");
}

TEST(ValueSink, NullBufferEndsTheReading) {
    double value = 1.0;
    CZrEnvValueSink sink = CZrEnvValueSink::ForReading(&value, sizeof value);
    EXPECT_EQ(sink.GetDoubleText(nullptr, 100), 0U);
    EXPECT_EQ(sink.Flags(), 20U);
    CZrEnvValueSink longs = CZrEnvValueSink::ForReading(&value, sizeof value);
    EXPECT_EQ(longs.GetLongText(nullptr, 100), 0U);
    EXPECT_EQ(longs.Flags(), 20U);
}

TEST(ValueSink, WhatWasWrittenCanBeReadBack) {
    std::array<double, 2> memory{};
    CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(memory.data(), sizeof memory);
    sink.PutDouble("2.5");
    char text[20];
    EXPECT_EQ(sink.GetDoubleText(text, 19), 3U);
    EXPECT_STREQ(text, "2.5");
    EXPECT_EQ(sink.GetDoubleText(text, 19), 0U);
    EXPECT_EQ(sink.Flags(), 22U);
}

} // namespace
