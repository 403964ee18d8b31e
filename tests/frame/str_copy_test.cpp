// Copying and joining of texts.
#include <zrclb/heap.h>
#include <zrclb/str.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "frame/counted_allocation.h"
#include "golden_table.h"

namespace {

// A buffer whose bytes are all '#' until something writes them.
struct Buffer {
    Buffer() {
        std::memset(bytes, '#', sizeof bytes);
        bytes[sizeof bytes - 1] = '\0';
    }
    explicit Buffer(const char *text) : Buffer() { std::strcpy(bytes, text); }
    char bytes[32];
};

TEST(StrCopy, CpyCopiesWhole) {
    Buffer dst;
    EXPECT_EQ(str_cpy(dst.bytes, "abc"), dst.bytes);
    EXPECT_STREQ(dst.bytes, "abc");
    EXPECT_EQ(dst.bytes[4], '#');
}

TEST(StrCopy, CpyToleratesNull) {
    Buffer dst("old");
    EXPECT_EQ(str_cpy(nullptr, "abc"), nullptr);
    EXPECT_EQ(str_cpy(dst.bytes, nullptr), dst.bytes);
    EXPECT_STREQ(dst.bytes, "");
    EXPECT_EQ(str_cpy(nullptr, nullptr), nullptr);
}

TEST(StrCopy, NcpyCountsCharactersAndTerminatesBehindThem) {
    Buffer dst;
    EXPECT_EQ(str_ncpy(dst.bytes, "abcdefghij", 4), dst.bytes);
    EXPECT_STREQ(dst.bytes, "abcd");
    EXPECT_EQ(dst.bytes[5], '#');
}

TEST(StrCopy, NcpyOfAShorterTextWritesNoFurther) {
    Buffer dst;
    EXPECT_EQ(str_ncpy(dst.bytes, "ab", 20), dst.bytes);
    EXPECT_STREQ(dst.bytes, "ab");
    EXPECT_EQ(dst.bytes[3], '#');
    EXPECT_EQ(str_ncpy(dst.bytes, "xyz", INT_MAX), dst.bytes);
    EXPECT_STREQ(dst.bytes, "xyz");
}

TEST(StrCopy, NcpyReadsNoFurtherThanItsCount) {
    const char source[3] = {'a', 'b', 'c'}; // without a terminator
    Buffer dst;
    str_ncpy(dst.bytes, source, 3);
    EXPECT_STREQ(dst.bytes, "abc");
}

TEST(StrCopy, NcpyWithoutACountDoesNothing) {
    Buffer dst("old");
    EXPECT_EQ(str_ncpy(dst.bytes, "abc", 0), nullptr);
    EXPECT_EQ(str_ncpy(dst.bytes, "abc", -1), nullptr);
    EXPECT_EQ(str_ncpy(dst.bytes, nullptr, 0), nullptr);
    EXPECT_EQ(str_ncpy(dst.bytes, "abc", INT_MIN), nullptr);
    EXPECT_STREQ(dst.bytes, "old");
    EXPECT_EQ(str_ncpy(nullptr, "abc", 3), nullptr);
    EXPECT_EQ(str_ncpy(dst.bytes, nullptr, 3), dst.bytes);
    EXPECT_STREQ(dst.bytes, "");
}

TEST(StrCopy, PcpyCopiesARange) {
    struct {
        int first;
        int last;
        const char *result;
    } rows[] = {{0, 0, "a"},
                {0, 5, "abcdef"},
                {2, 3, "cd"},
                {2, 99, "cdef"},
                {5, 5, "f"},
                {5, INT_MAX, "f"},
                {4, 2, ""},
                {-1, 3, ""},
                {0, -1, ""},
                {6, 6, ""},
                {7, 9, ""},
                {99, 100, ""},
                {INT_MIN, 2, ""},
                {0, INT_MAX, "abcdef"},
                {INT_MAX, INT_MAX, ""}};
    for (const auto &row : rows) {
        Buffer dst("old");
        EXPECT_EQ(str_pcpy(dst.bytes, "abcdef", row.first, row.last), dst.bytes);
        EXPECT_STREQ(dst.bytes, row.result) << row.first << " to " << row.last;
    }
}

TEST(StrCopy, PcpyInPlace) {
    Buffer text("abcdef");
    EXPECT_EQ(str_pcpy(text.bytes, text.bytes, 2, 4), text.bytes);
    EXPECT_STREQ(text.bytes, "cde");
}

TEST(StrCopy, PcatAppendsARangeOrNothing) {
    struct {
        int first;
        int last;
        const char *result;
    } rows[] = {{0, 0, "olda"},           {2, 99, "oldcdef"}, {4, 2, "old"},  {-1, 3, "old"},      {6, 6, "old"},
                {99, 100, "old"},         {5, 5, "oldf"},     {0, -1, "old"}, {INT_MIN, 2, "old"}, {5, INT_MAX, "oldf"},
                {INT_MAX, INT_MAX, "old"}};
    for (const auto &row : rows) {
        Buffer dst("old");
        EXPECT_EQ(str_pcat(dst.bytes, "abcdef", row.first, row.last), dst.bytes);
        EXPECT_STREQ(dst.bytes, row.result) << row.first << " to " << row.last;
    }
}

TEST(StrCopy, CatAppendsWhole) {
    Buffer dst("old");
    EXPECT_EQ(str_cat(dst.bytes, "new"), dst.bytes);
    EXPECT_STREQ(dst.bytes, "oldnew");
    EXPECT_STREQ(str_cat(dst.bytes, ""), "oldnew");
}

TEST(StrCopy, NcatFollowsTheTable) {
    GoldenTable table("crt_strncat_strncpy.tsv");
    int checked = 0;
    for (const auto &row : table.Rows()) {
        if (row.at("function") != "strncat") {
            continue;
        }
        char buffer[33];
        std::memset(buffer, '#', sizeof buffer);
        std::strcpy(buffer, row.at("dst_before").c_str());
        EXPECT_EQ(str_ncat(buffer, row.at("src").c_str(), static_cast<short>(std::stoi(row.at("n")))), buffer);
        EXPECT_EQ(std::string(buffer, 16), row.at("buffer_after_16_bytes")) << row.at("src") << ' ' << row.at("n");
        ++checked;
    }
    EXPECT_GE(checked, 10);
}

TEST(StrCopy, NcatTakesSixteenBits) {
    std::string source(40000, 'x');
    std::string dst(40010, '\0');
    str_ncat(dst.data(), source.c_str(), SHRT_MAX);
    EXPECT_EQ(std::strlen(dst.c_str()), 32767u);
    dst.assign(40010, '\0');
    str_ncat(dst.data(), source.c_str(), -1);
    EXPECT_EQ(std::strlen(dst.c_str()), 40000u);
}

TEST(StrCopy, AllocGivesACountedCopy) {
    zr_long before = zr::frame::heap_block_count;
    char *copy = str_alloc("text");
    ASSERT_NE(copy, nullptr);
    EXPECT_STREQ(copy, "text");
    EXPECT_EQ(zr::frame::heap_block_count, before + 1);
    heap_free(copy);
    EXPECT_EQ(zr::frame::heap_block_count, before);
    copy = str_alloc("");
    ASSERT_NE(copy, nullptr);
    EXPECT_STREQ(copy, "");
    heap_free(copy);
    EXPECT_EQ(str_alloc(nullptr), nullptr);
}

TEST(StrCopy, NullElsewhereDoesNothing) {
    Buffer dst("old");
    EXPECT_EQ(str_cat(nullptr, "a"), nullptr);
    EXPECT_EQ(str_cat(dst.bytes, nullptr), dst.bytes);
    EXPECT_EQ(str_ncat(nullptr, "a", 1), nullptr);
    EXPECT_EQ(str_ncat(dst.bytes, nullptr, 1), dst.bytes);
    EXPECT_EQ(str_pcat(nullptr, "a", 0, 0), nullptr);
    EXPECT_EQ(str_pcat(dst.bytes, nullptr, 0, 0), dst.bytes);
    EXPECT_STREQ(dst.bytes, "old");
    EXPECT_EQ(str_pcpy(nullptr, "a", 0, 0), nullptr);
    EXPECT_STREQ(str_pcpy(dst.bytes, nullptr, 0, 0), "");
}

} // namespace
