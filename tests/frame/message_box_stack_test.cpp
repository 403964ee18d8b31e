// Message boxes and their handlers.
#include <zrclb/report.h>

#include "frame/counted_allocation.h"
#include "frame/report_fixture.h"

namespace {

using MessageBoxStack = ReportFixture;

struct Call {
    zr_window owner;
    std::string text;
    std::string caption;
    zr_ulong type;
    zr_value user;
};

std::vector<Call> calls;

int Keep(zr_window owner, const char *text, const char *caption, zr_ulong type, zr_value user) {
    calls.push_back({owner, text, caption, type, user});
    return static_cast<int>(user) + 100;
}

int Other(zr_window, const char *, const char *, zr_ulong, zr_value user) {
    return static_cast<int>(user) + 200;
}

int RemovesItself(zr_window, const char *, const char *, zr_ulong, zr_value) {
    zr_SetMessageBoxHandler(nullptr, 0);
    return zr_MessageBox(nullptr, "inner", "", 0);
}

TEST_F(MessageBoxStack, WithoutAHandlerTheSystemShows) {
    int here = 0;
    EXPECT_EQ(zr_MessageBox(&here, "text", "caption", 0x40010), 1);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].owner, &here);
    EXPECT_EQ(boxes[0].text, "text");
    EXPECT_EQ(boxes[0].caption, "caption");
    EXPECT_EQ(boxes[0].type, 0x40010u);
}

TEST_F(MessageBoxStack, HandlerGetsAllArgumentsAndItsValue) {
    int here = 0;
    calls.clear();
    zr_SetMessageBoxHandler(Keep, 7);
    EXPECT_EQ(zr_MessageBox(&here, "text", "caption", 0x40010), 107);
    zr_SetMessageBoxHandler(nullptr, 0);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].owner, &here);
    EXPECT_EQ(calls[0].text, "text");
    EXPECT_EQ(calls[0].caption, "caption");
    EXPECT_EQ(calls[0].type, 0x40010u);
    EXPECT_EQ(calls[0].user, 7u);
    EXPECT_TRUE(boxes.empty());
}

TEST_F(MessageBoxStack, RemovingBringsTheOneBelowBackWithItsValue) {
    zr_SetMessageBoxHandler(Keep, 1);
    zr_SetMessageBoxHandler(Other, 2);
    EXPECT_EQ(zr_MessageBox(nullptr, "", "", 0), 202);
    zr_SetMessageBoxHandler(nullptr, 55);
    EXPECT_EQ(zr_MessageBox(nullptr, "", "", 0), 101);
    zr_SetMessageBoxHandler(nullptr, 0);
    EXPECT_EQ(zr_MessageBox(nullptr, "", "", 0), 1);
    EXPECT_EQ(boxes.size(), 1u);
}

TEST_F(MessageBoxStack, OneHandlerMayStandTwice) {
    zr_SetMessageBoxHandler(Keep, 1);
    zr_SetMessageBoxHandler(Keep, 2);
    EXPECT_EQ(zr_MessageBox(nullptr, "", "", 0), 102);
    zr_SetMessageBoxHandler(nullptr, 0);
    EXPECT_EQ(zr_MessageBox(nullptr, "", "", 0), 101);
    zr_SetMessageBoxHandler(nullptr, 0);
}

TEST_F(MessageBoxStack, RemovingFromTheEmptyStackDoesNothing) {
    zr_SetMessageBoxHandler(nullptr, 0);
    zr_SetMessageBoxHandler(nullptr, 0);
    EXPECT_EQ(zr_MessageBox(nullptr, "", "", 0), 1);
    zr_SetMessageBoxHandler(Keep, 3);
    EXPECT_EQ(zr_MessageBox(nullptr, "", "", 0), 103);
    zr_SetMessageBoxHandler(nullptr, 0);
}

TEST_F(MessageBoxStack, HandlerMayRemoveItselfAndShowBoxes) {
    zr_SetMessageBoxHandler(RemovesItself, 0);
    EXPECT_EQ(zr_MessageBox(nullptr, "outer", "", 0), 1);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, "inner");
}

TEST_F(MessageBoxStack, ValueIsAsWideAsAPointer) {
    calls.clear();
    zr_SetMessageBoxHandler(Keep, UINTPTR_MAX);
    zr_MessageBox(nullptr, "", "", 0);
    zr_SetMessageBoxHandler(nullptr, 0);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].user, UINTPTR_MAX);
}

TEST_F(MessageBoxStack, NodesDoNotCountAsBlocks) {
    zr_long before = zr::frame::heap_block_count;
    zr_SetMessageBoxHandler(Keep, 1);
    EXPECT_EQ(zr::frame::heap_block_count, before);
    zr_SetMessageBoxHandler(nullptr, 0);
    EXPECT_EQ(zr::frame::heap_block_count, before);
}

} // namespace
