// Timers in windows of the application's own, and other messages than those of timers.
#include <zrclb/timer.hpp>

#include <windows.h>

#include <gtest/gtest.h>

#include "platform/window_timers.h"

namespace {

class WindowsMessagePump : public testing::Test {
protected:
    void SetUp() override {
        WNDCLASSEXA own_class{};
        own_class.cbSize = sizeof own_class;
        own_class.lpfnWndProc = Procedure;
        own_class.hInstance = GetModuleHandleA(nullptr);
        own_class.lpszClassName = "application";
        RegisterClassExA(&own_class);
        own = CreateWindowExA(0, "application", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, own_class.hInstance, nullptr);
        ASSERT_NE(own, nullptr);
        runs = 0;
        posted = 0;
    }
    void TearDown() override {
        for (int slot = 0; slot < 100; ++slot)
            zrTimerDel(slot);
        DestroyWindow(own);
    }

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM identifier, LPARAM parameter) {
        if (message == WM_TIMER)
            zrTimerExecute(reinterpret_cast<zrTimer *>(identifier));
        else if (message == WM_APP)
            ++posted;
        return DefWindowProcA(window, message, identifier, parameter);
    }
    static zr_window Current() { return own; }
    static void Run(void *) { ++runs; }

    static inline HWND own = nullptr;
    static inline int runs = 0;
    static inline int posted = 0;
};

TEST_F(WindowsMessagePump, ApplicationsWindow_GetsTheTimer) {
    EXPECT_EQ(zrTimerSet(Current, 10, Run, nullptr), 0);
    EXPECT_LE(zrPumpNextDue(), 10);
    Sleep(40);
    EXPECT_EQ(zrPumpNextDue(), 0);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_GE(runs, 1);
}

TEST_F(WindowsMessagePump, ApplicationsWindow_IsNotOursToEnd) {
    EXPECT_EQ(zrWindowDestroy(own), 0);
    EXPECT_EQ(zrWindowDestroy(GetDesktopWindow()), 0);
    EXPECT_TRUE(IsWindow(own));
}

TEST_F(WindowsMessagePump, ApplicationsWindow_EndsWithItsTimer) {
    EXPECT_EQ(zrTimerSet(Current, 60000, Run, nullptr), 0);
    EXPECT_GT(zrPumpNextDue(), 50000);
    DestroyWindow(own);
    EXPECT_EQ(zrPumpNextDue(), -1);
}

TEST_F(WindowsMessagePump, ApplicationsLoop_TakesTheMessages) {
    EXPECT_EQ(zrTimerSet(Current, 100, Run, nullptr), 0);
    MSG message;
    for (int i = 0; i < 2; ++i) {
        ASSERT_GT(GetMessageA(&message, nullptr, 0, 0), 0);
        DispatchMessageA(&message);
    }
    EXPECT_EQ(runs, 2);
    Sleep(30); // longer than a message may be late: it is known to be taken
    const int due = zrPumpNextDue();
    EXPECT_GT(due, 1);
    EXPECT_LE(due, 100);
}

TEST_F(WindowsMessagePump, OtherMessages_AreDispatched) {
    PostMessageA(own, WM_APP, 0, 0);
    EXPECT_EQ(zrPumpNextDue(), 0);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(posted, 1);
    EXPECT_EQ(zrPumpNextDue(), -1);
}

TEST_F(WindowsMessagePump, OtherMessages_WaitWhileThePumpIsOff) {
    switch_Yield_and_PeekMessage(0);
    PostMessageA(own, WM_APP, 0, 0);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(posted, 0);
    switch_Yield_and_PeekMessage(1);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(posted, 1);
}

TEST_F(WindowsMessagePump, Quit_IsSwallowed) {
    PostMessageA(own, WM_APP, 0, 0);
    PostQuitMessage(3);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(posted, 1);
    MSG message;
    EXPECT_EQ(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE), 0);
}

TEST_F(WindowsMessagePump, MadeWindow_SeesTimerMessagesOnly) {
    static int seen;
    seen = 0;
    const zr_window made = zrWindowCreate([](zr_window, unsigned, zr_value, void *) { ++seen; }, nullptr);
    PostMessageA(static_cast<HWND>(made), WM_APP, 0, 0);
    PostMessageA(static_cast<HWND>(made), WM_TIMER, 5, 0);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(zrWindowDestroy(made), 1);
    EXPECT_EQ(seen, 1);
    EXPECT_FALSE(IsWindow(static_cast<HWND>(made)));
}

TEST_F(WindowsMessagePump, End_WindowsCanBeMadeAgain) {
    for (int i = 0; i < 2; ++i) {
        const zr_window made = zrWindowCreate([](zr_window, unsigned, zr_value, void *) {}, nullptr);
        ASSERT_NE(made, nullptr);
        EXPECT_NE(zr::platform::StartWindowTimer(made, 5, 60000), 0u);
        EXPECT_GT(zrPumpNextDue(), 50000);
        EXPECT_EQ(zrWindowDestroy(made), 1);
        zr::platform::EndMessagePumps();
        zr::platform::EndMessagePumps();
        EXPECT_EQ(zrPumpNextDue(), -1);
    }
}

} // namespace
