// The scratch buffer: fixed block, allocated block, and the reported faults.
#include "env/std_alloc_buffer.h"

#include <cstring>

#include <gtest/gtest.h>

#include <zrclb/heap.h>

#include "env/report_capture.h"

namespace {

using namespace zr::env;
using zr::test::Error;
using zr::test::ReportCapture;
using zr::test::Reports;

TEST(StdAllocBuffer, SmallRequestsShareTheFixedBlock) {
    ReportCapture reports;
    void *first = StdAllocBuffer(0, 0);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(StdAllocBuffer(10000, 1), first);
    EXPECT_EQ(StdAllocBuffer(1250, 8), first);
    std::memset(first, 1, 10001);
    EXPECT_EQ(g_StdAllocBuff, nullptr);
    StdFreeBuffer();
    EXPECT_EQ(StdAllocBuffer(1, 1), first);
    EXPECT_EQ(reports.Take(), Reports{});
}

TEST(StdAllocBuffer, LargerRequestsAreAllocated) {
    ReportCapture reports;
    void *fixed = StdAllocBuffer(1, 1);
    void *block = StdAllocBuffer(10001, 1);
    ASSERT_NE(block, nullptr);
    EXPECT_NE(block, fixed);
    EXPECT_EQ(block, g_StdAllocBuff);
    std::memset(block, 1, 10002);
    StdFreeBuffer();
    EXPECT_EQ(g_StdAllocBuff, nullptr);
    StdFreeBuffer();
    EXPECT_EQ(reports.Take(), Reports{});
}

TEST(StdAllocBuffer, ABlockThatWasNotFreedIsReportedAndForgotten) {
    ReportCapture reports;
    void *forgotten = StdAllocBuffer(20000, 1);
    ASSERT_NE(forgotten, nullptr);
    EXPECT_NE(StdAllocBuffer(1, 1), nullptr);
    EXPECT_EQ(g_StdAllocBuff, nullptr);
    EXPECT_EQ(reports.Take(), Reports{Error("ZrEnvDataConvert", "g_StdAllocBuff !=  NIL")});
    heap_free(forgotten);
}

TEST(StdAllocBuffer, ASecondLargeRequestKeepsTheNewBlock) {
    ReportCapture reports;
    void *forgotten = StdAllocBuffer(20000, 1);
    void *kept = StdAllocBuffer(20001, 1);
    ASSERT_NE(kept, nullptr);
    EXPECT_NE(kept, forgotten);
    EXPECT_EQ(g_StdAllocBuff, kept);
    EXPECT_EQ(reports.Take(), Reports{Error("ZrEnvDataConvert", "g_StdAllocBuff !=  NIL")});
    StdFreeBuffer();
    EXPECT_EQ(g_StdAllocBuff, nullptr);
    heap_free(forgotten);
}

TEST(StdAllocBuffer, NoMemoryIsReported) {
    ReportCapture reports;
    EXPECT_EQ(StdAllocBuffer(0xFFFFFFFF, 0xFFFFFFFF), nullptr);
    EXPECT_EQ(g_StdAllocBuff, nullptr);
    EXPECT_EQ(reports.Take(), Reports{Error("ZrEnvDataConvert", "heap_malloc")});
    StdFreeBuffer();
}

} // namespace
