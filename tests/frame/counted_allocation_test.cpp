// Counted allocation.
#include "frame/counted_allocation.h"

#include <climits>
#include <cstring>

#include <zrclb/heap.h>

#include "frame/report_fixture.h"

// Lets allocations that are too large fail under the sanitizers as they do without.
extern "C" const char *__asan_default_options() {
    return "allocator_may_return_null=1";
}
extern "C" const char *__tsan_default_options() {
    return "allocator_may_return_null=1";
}

namespace {

using zr::frame::heap_block_count;

class Heap : public ReportFixture {
protected:
    void SetUp() override {
        ReportFixture::SetUp();
        before = heap_block_count;
    }

    zr_long Change() const { return heap_block_count - before; }

    zr_long before = 0;
};

TEST_F(Heap, MallocAndFreeCount) {
    void *block = heap_malloc(100);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(Change(), 1);
    std::memset(block, 1, 100);
    heap_free(block);
    EXPECT_EQ(Change(), 0);
}

TEST_F(Heap, CallocGivesZeros) {
    auto *block = static_cast<unsigned char *>(heap_calloc(50, 3));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(Change(), 1);
    int set = 0;
    for (int i = 0; i < 150; ++i) {
        set += block[i] != 0;
    }
    EXPECT_EQ(set, 0);
    heap_free(block);
    EXPECT_EQ(Change(), 0);
}

TEST_F(Heap, FailureCountsToo) {
    EXPECT_EQ(heap_calloc(UINT_MAX, UINT_MAX), nullptr);
    EXPECT_EQ(Change(), 1);
    EXPECT_EQ(Log(), "");
    EXPECT_TRUE(debugger.empty());
    heap_block_count -= 1;
}

TEST_F(Heap, MallocCountsWhetherItSucceedsOrNot) {
    void *block = heap_malloc(UINT_MAX);
    EXPECT_EQ(Change(), 1);
    EXPECT_TRUE(debugger.empty());
    EXPECT_EQ(Log(), "");
    if (block != nullptr) {
        heap_free(block);
    } else {
        heap_block_count -= 1;
    }
    EXPECT_EQ(Change(), 0);
}

TEST_F(Heap, ReallocThatFailsLeavesTheBlock) {
    auto *block = static_cast<char *>(heap_malloc(4));
    ASSERT_NE(block, nullptr);
    std::memcpy(block, "abc", 4);
    auto *larger = static_cast<char *>(heap_realloc(block, UINT_MAX));
    if (larger != nullptr) {
        block = larger;
    }
    EXPECT_STREQ(block, "abc");
    EXPECT_EQ(Change(), 1);
    EXPECT_EQ(Log(), "");
    heap_free(block);
}

TEST_F(Heap, ReallocToNothingFrees) {
    void *block = heap_malloc(10);
    EXPECT_EQ(heap_realloc(block, 0), nullptr);
    EXPECT_EQ(Change(), 1);
    heap_block_count -= 1;
}

TEST_F(Heap, ReallocKeepsContentAndCount) {
    auto *block = static_cast<char *>(heap_malloc(4));
    std::memcpy(block, "abc", 4);
    block = static_cast<char *>(heap_realloc(block, 100000));
    ASSERT_NE(block, nullptr);
    EXPECT_STREQ(block, "abc");
    EXPECT_EQ(Change(), 1);
    heap_free(block);
    EXPECT_EQ(Change(), 0);
}

TEST_F(Heap, ReallocOfNullIsANewBlockUncounted) {
    void *block = heap_realloc(nullptr, 10);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(Change(), 0);
    heap_free(block);
    EXPECT_EQ(Change(), -1);
    heap_block_count += 1;
}

TEST_F(Heap, FreeOfNullIsNotCounted) {
    heap_free(nullptr);
    EXPECT_EQ(Change(), 0);
}

TEST_F(Heap, SmartFreeSetsThePlaceToNull) {
    void *block = heap_malloc(1);
    heap_smart_free(&block);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(Change(), 0);
    heap_smart_free(&block);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(Change(), 0);
    EXPECT_EQ(Log(), "");
}

TEST_F(Heap, SmartFreeReportsANullPlace) {
    heap_smart_free(nullptr);
    std::string log = TakeLog();
    EXPECT_EQ(log.find(Stamp() + "> MESSAGE in prog.exe \"Heap\" line "), 0u);
    EXPECT_NE(log.find(":\n  heap_smart_free: NIL-reference!\n\n\n"), std::string::npos);
    EXPECT_TRUE(debugger.empty());
}

} // namespace
