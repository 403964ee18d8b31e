// The exit list, short of the end of the process.
#include <zrclb/report.h>

#include <string>

#include <gtest/gtest.h>

#include "frame/counted_allocation.h"
#include "frame/refused_heap.h"

namespace {

std::string run;

void A() {
    run += 'a';
}
void B() {
    run += 'b';
}
void C() {
    run += 'c';
}
void RegistersC() {
    run += 'r';
    endprog_fkt(0, C);
}
void FreesTheList() {
    run += 'f';
    endprog_fkt(3, nullptr);
}

class ExitList : public testing::Test {
protected:
    void SetUp() override { run.clear(); }
    void TearDown() override { endprog_fkt(3, nullptr); }
};

TEST_F(ExitList, RunsInTheOrderOfRegistration) {
    EXPECT_EQ(endprog_fkt(0, A), 0);
    EXPECT_EQ(endprog_fkt(0, B), 0);
    EXPECT_EQ(endprog_fkt(0, C), 0);
    EXPECT_EQ(run, "");
    EXPECT_EQ(endprog_fkt(1, nullptr), 0);
    EXPECT_EQ(run, "abc");
    EXPECT_EQ(endprog_fkt(1, A), 0);
    EXPECT_EQ(run, "abcabc");
}

TEST_F(ExitList, RegisteredTwiceRunsTwice) {
    endprog_fkt(0, A);
    endprog_fkt(0, A);
    endprog_fkt(1, nullptr);
    EXPECT_EQ(run, "aa");
    EXPECT_EQ(endprog_fkt(2, A), 0);
    EXPECT_EQ(run, "aaa");
}

TEST_F(ExitList, RunOneKeepsTheNode) {
    endprog_fkt(0, A);
    endprog_fkt(0, B);
    EXPECT_EQ(endprog_fkt(2, B), 0);
    EXPECT_EQ(endprog_fkt(2, B), 0);
    EXPECT_EQ(run, "bb");
    EXPECT_EQ(endprog_fkt(2, C), -1);
    EXPECT_EQ(run, "bb");
}

TEST_F(ExitList, FreedListIsEmptyAndCanBeFilledAgain) {
    zr_long before = zr::frame::heap_block_count;
    endprog_fkt(0, A);
    endprog_fkt(0, B);
    EXPECT_EQ(zr::frame::heap_block_count, before + 2);
    EXPECT_EQ(endprog_fkt(3, nullptr), 0);
    EXPECT_EQ(zr::frame::heap_block_count, before);
    EXPECT_EQ(endprog_fkt(1, nullptr), 0);
    EXPECT_EQ(run, "");
    EXPECT_EQ(endprog_fkt(3, nullptr), 0);
    endprog_fkt(0, C);
    endprog_fkt(1, nullptr);
    EXPECT_EQ(run, "c");
}

TEST_F(ExitList, AtexitRunsAndFrees) {
    zr_long before = zr::frame::heap_block_count;
    endprog_fkt(0, A);
    endprog_fkt(0, B);
    EXPECT_EQ(zr_atexit(), 0);
    EXPECT_EQ(run, "ab");
    EXPECT_EQ(zr::frame::heap_block_count, before);
    EXPECT_EQ(zr_atexit(), 0);
    EXPECT_EQ(run, "ab");
}

TEST_F(ExitList, FunctionRegisteredWhileRunningIsReached) {
    endprog_fkt(0, RegistersC);
    endprog_fkt(0, A);
    EXPECT_EQ(zr_atexit(), 0);
    EXPECT_EQ(run, "rac");
}

TEST_F(ExitList, FunctionThatFreesTheListEndsTheWalk) {
    endprog_fkt(0, A);
    endprog_fkt(0, FreesTheList);
    endprog_fkt(0, B);
    EXPECT_EQ(endprog_fkt(1, nullptr), 0);
    EXPECT_EQ(run, "af");
    EXPECT_EQ(endprog_fkt(1, nullptr), 0);
    EXPECT_EQ(run, "af");
}

TEST_F(ExitList, NullFunctionIsRefused) {
    EXPECT_EQ(endprog_fkt(0, nullptr), -1);
    EXPECT_EQ(endprog_fkt(2, nullptr), -1);
    EXPECT_EQ(endprog_fkt(1, nullptr), 0);
}

TEST_F(ExitList, UnknownOperationIsRefused) {
    endprog_fkt(0, A);
    EXPECT_EQ(endprog_fkt(4, A), -1);
    EXPECT_EQ(endprog_fkt(-1, A), -1);
    EXPECT_EQ(endprog_fkt(-2147483647 - 1, A), -1);
    EXPECT_EQ(run, "");
}

TEST_F(ExitList, FunctionWithoutMemoryIsNotRegistered) {
    endprog_fkt(0, A);
    {
        const zr::test::HeapRefusal refusal(0);
        EXPECT_EQ(endprog_fkt(0, B), -1);
    }
    endprog_fkt(0, C);
    EXPECT_EQ(endprog_fkt(1, nullptr), 0);
    EXPECT_EQ(run, "ac");
}

} // namespace
