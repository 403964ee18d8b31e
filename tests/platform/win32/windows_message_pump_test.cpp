// Timers in windows of the application's own, on the screen or for messages only, and other messages than those of timers.
#include <zrclb/timer.hpp>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include <windows.h>

#include <gtest/gtest.h>

#include "env/refused_memory.h"
#include "own_desktop.h"
#include "platform/window_timers.h"

namespace {

class WindowsMessagePump : public testing::Test {
protected:
    void SetUp() override {
        runs = 0;
        posted = 0;
        characters.clear();
        identifiers.clear();
    }
    void TearDown() override {
        for (int slot = 0; slot < 100; ++slot)
            zrTimerDel(slot);
    }

    // A window of the application; on the screen, or for messages only.
    static HWND Make(bool on_screen) {
        WNDCLASSEXA own_class{};
        own_class.cbSize = sizeof own_class;
        own_class.lpfnWndProc = Procedure;
        own_class.hInstance = GetModuleHandleA(nullptr);
        own_class.lpszClassName = "application";
        RegisterClassExA(&own_class);
        const DWORD style = on_screen ? WS_OVERLAPPEDWINDOW | WS_VISIBLE : 0;
        return CreateWindowExA(0, "application", "title", style, 0, 0, 100, 100, on_screen ? nullptr : HWND_MESSAGE,
                               nullptr, own_class.hInstance, nullptr);
    }

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM identifier, LPARAM parameter) {
        if (message == WM_TIMER) {
            EXPECT_EQ(parameter, 0); // no procedure of the timer's own
            last_window = window;
            identifiers.push_back(identifier);
            zrTimerExecute(reinterpret_cast<zrTimer *>(identifier));
        } else if (message == WM_APP) {
            ++posted;
        } else if (message == WM_CHAR) {
            characters += static_cast<char>(identifier);
        }
        return DefWindowProcA(window, message, identifier, parameter);
    }
    static zr_window Current() { return own; }
    static void Run(void *) { ++runs; }

    // Waits until a timer's message waits.
    static void WaitForTimer() {
        EXPECT_EQ(MsgWaitForMultipleObjectsEx(0, nullptr, 30000, QS_TIMER, MWMO_INPUTAVAILABLE), WAIT_OBJECT_0);
    }

    // Takes messages until the functions have run so often; false if that takes more than half a minute.
    static bool YieldUntilRuns(int expected) {
        for (const ULONGLONG start = GetTickCount64(); runs < expected; Sleep(1)) {
            if (GetTickCount64() - start > 30000)
                return false;
            EXPECT_EQ(Yield_and_PeekMessage(), 0);
        }
        return true;
    }

    static void TakeAll() {
        for (int i = 0; i < 1000 && zrPumpNextDue() == 0; ++i)
            Yield_and_PeekMessage();
    }

    static inline HWND own = nullptr;
    static inline HWND last_window = nullptr;
    static inline int runs = 0;
    static inline int posted = 0;
    static inline std::string characters;
    static inline std::vector<WPARAM> identifiers;
};

// The same for both kinds of windows.
class WindowsMessagePumpOf : public WindowsMessagePump, public testing::WithParamInterface<bool> {
protected:
    void SetUp() override {
        WindowsMessagePump::SetUp();
        own = Make(GetParam());
        ASSERT_NE(own, nullptr);
        EXPECT_EQ(IsWindowVisible(own) != 0, GetParam());
        TakeAll(); // what its making has left
    }
    void TearDown() override {
        WindowsMessagePump::TearDown();
        DestroyWindow(own);
    }
};

INSTANTIATE_TEST_SUITE_P(Kinds, WindowsMessagePumpOf, testing::Bool(),
                         [](const auto &kind) { return std::string(kind.param ? "OnScreen" : "ForMessages"); });

TEST_P(WindowsMessagePumpOf, Timer_ItsMessageCarriesIt) {
    const zrTimer timer(own, 10, Run, nullptr);
    const zr_value address = reinterpret_cast<zr_value>(&timer);
    EXPECT_EQ(timer.timer_id, address);
    EXPECT_GE(zrPumpNextDue(), 0);
    EXPECT_LE(zrPumpNextDue(), 10);
    WaitForTimer();
    EXPECT_EQ(zrPumpNextDue(), 0);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_GE(runs, 1);
    EXPECT_EQ(timer.run_count, runs);
    EXPECT_EQ(identifiers, std::vector<WPARAM>(static_cast<std::size_t>(runs), address));
    EXPECT_EQ(last_window, own);
}

TEST_P(WindowsMessagePumpOf, Timer_MovesBetweenWindowsOfBothKinds) {
    const HWND first = own;
    const HWND second = Make(!GetParam());
    EXPECT_EQ(zrTimerSet(Current, 10, Run, nullptr), 0);
    ASSERT_TRUE(YieldUntilRuns(1));
    EXPECT_EQ(last_window, first);
    WaitForTimer(); // its message waits in the first one
    own = second;
    zrTimerUpdateHwnd();
    MSG message;
    EXPECT_EQ(PeekMessageA(&message, first, WM_TIMER, WM_TIMER, PM_NOREMOVE), 0);
    runs = 0;
    ASSERT_TRUE(YieldUntilRuns(2));
    EXPECT_EQ(last_window, second);
    own = first;
    DestroyWindow(second);
}

TEST_P(WindowsMessagePumpOf, Timer_KilledWithTheObject) {
    {
        const zrTimer timer(own, 10, Run, nullptr);
        WaitForTimer();
    }
    EXPECT_EQ(zrPumpNextDue(), -1);
    Sleep(40);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(identifiers.size(), 0U); // not even a message that is ignored
}

TEST_P(WindowsMessagePumpOf, Window_IsNotOursToEnd) {
    EXPECT_EQ(zrWindowDestroy(own), 0);
    EXPECT_EQ(zrWindowDestroy(GetDesktopWindow()), 0);
    EXPECT_TRUE(IsWindow(own));
}

TEST_P(WindowsMessagePumpOf, Window_EndsWithItsTimer) {
    EXPECT_EQ(zrTimerSet(Current, 60000, Run, nullptr), 0);
    EXPECT_GT(zrPumpNextDue(), 50000);
    DestroyWindow(own);
    TakeAll(); // the screen may have messages of it
    EXPECT_EQ(zrPumpNextDue(), -1);
    EXPECT_EQ(runs, 0);
}

TEST_P(WindowsMessagePumpOf, ApplicationsLoop_TakesTheMessages) {
    EXPECT_EQ(zrTimerSet(Current, 60, Run, nullptr), 0);
    MSG message;
    while (runs < 2) {
        ASSERT_GT(GetMessageA(&message, nullptr, 0, 0), 0);
        DispatchMessageA(&message);
    }
    EXPECT_EQ(runs, 2);
    zrTimerChangeTimeOut(0, 10000);
    const ULONGLONG start = GetTickCount64();
    EXPECT_GT(zrPumpNextDue(), 1);
    EXPECT_LE(zrPumpNextDue(), 10000);
    EXPECT_GE(zrPumpNextDue(), 10000 - static_cast<int>(GetTickCount64() - start) - 1000);
}

TEST_P(WindowsMessagePumpOf, ApplicationsLoop_NextDueKnowsThatTheMessageWasTaken) {
    EXPECT_EQ(zrTimerSet(Current, 100, Run, nullptr), 0);
    int due = 0;
    for (int i = 0; i < 100 && due == 0; ++i) { // a late test finds the next message
        MSG message;
        for (runs = 0; runs == 0;) {
            ASSERT_GT(GetMessageA(&message, nullptr, 0, 0), 0);
            DispatchMessageA(&message);
        }
        Sleep(30); // longer than a message may be late
        due = zrPumpNextDue();
    }
    EXPECT_GT(due, 1);
    EXPECT_LE(due, 100);
}

TEST_P(WindowsMessagePumpOf, OtherMessages_AreTranslatedAndDispatched) {
    PostMessageA(own, WM_APP, 0, 0);
    PostMessageA(own, WM_KEYDOWN, 'A', 0x1E0001);
    EXPECT_EQ(zrPumpNextDue(), 0);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(posted, 1);
    EXPECT_EQ(characters, "a"); // only the translation of the key makes it
    EXPECT_EQ(zrPumpNextDue(), -1);
}

TEST_P(WindowsMessagePumpOf, OtherMessages_WaitWhileThePumpIsOff) {
    switch_Yield_and_PeekMessage(0);
    PostMessageA(own, WM_APP, 0, 0);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(posted, 0);
    switch_Yield_and_PeekMessage(1);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(posted, 1);
}

TEST_P(WindowsMessagePumpOf, Quit_IsSwallowedAndTheRestTaken) {
    {
        const zrTimer timer(own, 10, Run, nullptr);
        WaitForTimer();
        PostQuitMessage(3);
        PostMessageA(own, WM_APP, 0, 0);
        EXPECT_EQ(Yield_and_PeekMessage(), 0);
        EXPECT_EQ(posted, 1);
        EXPECT_GE(runs, 1); // its message comes behind that of the quit
    }
    MSG message;
    EXPECT_EQ(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE), 0);
    PostMessageA(nullptr, WM_APP, 0, 0); // to the thread, which has no procedure
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE), 0);
}

// The message comes in the window's thread, as the system has it.
TEST_P(WindowsMessagePumpOf, Timer_OfAnotherThreadsWindow) {
    std::thread([] {
        EXPECT_EQ(zrTimerSet(Current, 10, Run, nullptr), 0);
        EXPECT_EQ(zrPumpNextDue(), -1); // none of this thread's
    }).join();
    ASSERT_TRUE(YieldUntilRuns(1));
    EXPECT_EQ(last_window, own);
}

TEST_P(WindowsMessagePumpOf, Messages_EndlesslyInOneAnother) {
    const zrTimer timer(own, 60000, Run, nullptr);
    static int depth, deepest;
    depth = deepest = 0;
    const auto again = [](HWND window, UINT message, WPARAM identifier, LPARAM parameter) -> LRESULT {
        if (message != WM_APP)
            return DefWindowProcA(window, message, identifier, parameter);
        deepest = std::max(deepest, ++depth);
        if (++posted < 200)
            PostMessageA(window, WM_APP, 0, 0);
        Yield_and_PeekMessage();
        --depth;
        return 0;
    };
    SetWindowLongPtrA(own, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(static_cast<WNDPROC>(again)));
    PostMessageA(own, WM_APP, 0, 0);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(posted, 200); // none is lost
    EXPECT_EQ(deepest, zr::platform::pump_limit);
}

TEST_F(WindowsMessagePump, MadeWindow_SeesTimerMessagesOnly) {
    static int seen;
    seen = 0;
    const zr_window made = zrWindowCreate([](zr_window, unsigned, zr_value, void *) { ++seen; }, nullptr);
    PostMessageA(static_cast<HWND>(made), WM_APP, 0, 0);
    PostMessageA(static_cast<HWND>(made), WM_TIMER, 5, 0);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(seen, 1);
    EXPECT_FALSE(IsWindowVisible(static_cast<HWND>(made)));
    EXPECT_EQ(zrWindowDestroy(made), 1);
    EXPECT_EQ(seen, 1);
    EXPECT_FALSE(IsWindow(static_cast<HWND>(made)));
}

TEST_F(WindowsMessagePump, MadeWindow_EndsWithItsThread) {
    static zr_window made;
    std::thread([] {
        made = zrWindowCreate([](zr_window, unsigned, zr_value, void *) {}, nullptr);
        EXPECT_TRUE(IsWindow(static_cast<HWND>(made)));
        EXPECT_EQ(zr::platform::StartWindowTimer(made, 5, 60000), 5U);
    }).join();
    EXPECT_FALSE(IsWindow(static_cast<HWND>(made)));
    EXPECT_EQ(zr::platform::StartWindowTimer(made, 5, 60000), 0U);
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

// The thread's own schedule, and the timer's places in it; each time in a thread that has nothing yet.
TEST_F(WindowsMessagePump, Timer_WithoutMemory) {
    static bool met;
    static int allocations;
    met = true;
    for (allocations = 0; met; ++allocations) {
        std::thread([] {
            const zr_window made = zrWindowCreate([](zr_window, unsigned, zr_value, void *) {}, nullptr);
            const zr::test::NthAllocation refusal(allocations);
            const zr_value id = zr::platform::StartWindowTimer(made, 5, 60000);
            met = refusal.Met();
            EXPECT_EQ(id, met ? 0U : 5U);
            EXPECT_EQ(zrPumpNextDue() == -1, met);
            EXPECT_EQ(KillTimer(static_cast<HWND>(made), 5) != 0, !met); // nor does the system have one
            EXPECT_EQ(zrWindowDestroy(made), 1);
        }).join();
    }
    EXPECT_EQ(allocations, 4); // three that were refused, and none
}

// The process has given out all of its places for what belongs to threads.
TEST_F(WindowsMessagePump, Threads_WithoutAPlace) {
    const zr_window made = zrWindowCreate([](zr_window, unsigned, zr_value, void *) {}, nullptr);
    zr::platform::EndMessagePumps(); // gives back the library's own
    std::vector<DWORD> taken;
    for (DWORD place = FlsAlloc(nullptr); place != FLS_OUT_OF_INDEXES; place = FlsAlloc(nullptr))
        taken.push_back(place);
    EXPECT_EQ(zr::platform::StartWindowTimer(made, 5, 60000), 0U);
    EXPECT_EQ(KillTimer(static_cast<HWND>(made), 5), 0);
    EXPECT_EQ(zrPumpNextDue(), -1);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    for (const DWORD place : taken)
        FlsFree(place);
    EXPECT_GE(taken.size(), 1U);
    EXPECT_EQ(zr::platform::StartWindowTimer(made, 5, 60000), 5U);
    EXPECT_EQ(zrWindowDestroy(made), 1);
}

TEST_F(WindowsMessagePump, Timer_RefusedByTheSystemIsNotDue) {
    const HWND ended = Make(false);
    DestroyWindow(ended);
    EXPECT_EQ(zr::platform::StartWindowTimer(ended, 5, 60000), 0U);
    EXPECT_EQ(zrPumpNextDue(), -1);
    EXPECT_FALSE(zr::platform::StopWindowTimer(ended, 5));
    EXPECT_EQ(zr::platform::StartWindowTimer(nullptr, 5, 60000), 0U); // would be one of the thread's
    EXPECT_FALSE(zr::platform::StopWindowTimer(nullptr, 5));
}

} // namespace
