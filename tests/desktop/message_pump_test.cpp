// Real windows, timers and messages.
#include <zrclb/timer.hpp>

#include <algorithm>
#include <climits>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "message_time.h"
#include "platform/services.h"

namespace {

using zr::test::PassTime;

class MessagePump : public testing::Test {
protected:
    void SetUp() override {
        zr::test::HoldTime();
        steps.clear();
        runs = 0;
        window = zrWindowCreate(HandOn, &user);
        ASSERT_NE(window, nullptr);
    }
    void TearDown() override {
        for (int slot = 0; slot < 100; ++slot)
            zrTimerDel(slot);
        if (window != nullptr) {
            EXPECT_EQ(zrWindowDestroy(window), 1);
        }
        SetYieldCallback(nullptr);
        switch_Yield_and_PeekMessage(1);
        EXPECT_EQ(zrPumpNextDue(), -1);
        zr::platform::services = zr::platform::Services();
    }

    // As an application's procedure does it.
    static void HandOn(zr_window target, unsigned message, zr_value identifier, void *value) {
        EXPECT_EQ(message, 0x113u);
        EXPECT_EQ(value, &user);
        last_window = target;
        if (message == 0x113)
            zrTimerExecute(reinterpret_cast<zrTimer *>(identifier));
    }
    static zr_window Current() { return window; }
    static void Run(void *) { ++runs; }

    // The runs of one call of the pump.
    static int RunsOfYield() {
        runs = 0;
        EXPECT_EQ(Yield_and_PeekMessage(), 0);
        return runs;
    }

    // One call of the pump runs as many functions; where time is not held, more may have become due.
    static void ExpectRuns(int expected) {
        if (zr::test::time_is_held)
            EXPECT_EQ(RunsOfYield(), expected);
        else
            EXPECT_GE(RunsOfYield(), expected);
    }

    static inline zr_window window = nullptr;
    static inline zr_window last_window = nullptr;
    static inline int user = 0;
    static inline int runs = 0;
    static inline std::vector<std::string> steps;
};

TEST_F(MessagePump, Timer_RunsWhenItsPeriodHasPassed) {
    EXPECT_EQ(zrTimerSet(Current, 60000, Run, nullptr), 0);
    PassTime(30);
    EXPECT_EQ(RunsOfYield(), 0);
    zrTimerChangeTimeOut(0, 30);
    for (int i = 0; i < 2; ++i) {
        PassTime(30);
        ExpectRuns(1);
        EXPECT_EQ(last_window, window);
        ExpectRuns(0);
    }
}

TEST_F(MessagePump, Timer_CountsItsRuns) {
    zrTimer timer(window, 10, Run, nullptr);
    EXPECT_EQ(timer.timer_id, reinterpret_cast<zr_value>(&timer));
    PassTime(10);
    RunsOfYield();
    EXPECT_EQ(timer.run_count, runs);
    EXPECT_GE(runs, 1);
}

TEST_F(MessagePump, Timer_LateMessagesAreOne) {
    EXPECT_EQ(zrTimerSet(Current, 40, Run, nullptr), 0);
    PassTime(130);
    ExpectRuns(1);
}

TEST_F(MessagePump, Timer_MovesToTheNewWindow) {
    EXPECT_EQ(zrTimerSet(Current, 50, Run, nullptr), 0);
    const zr_window old = window;
    window = zrWindowCreate(HandOn, &user);
    ASSERT_NE(window, nullptr);
    EXPECT_NE(window, old);
    PassTime(50);
    ExpectRuns(0); // it moves, and its message in the old window is gone
    PassTime(50);
    ExpectRuns(1);
    EXPECT_EQ(last_window, window);
    EXPECT_EQ(zrWindowDestroy(old), 1);
}

TEST_F(MessagePump, Timer_DeletesItselfInItsFunction) {
    EXPECT_EQ(zrTimerSet(
                  Current, 10,
                  [](void *) {
                      ++runs;
                      EXPECT_EQ(zrTimerDel(0), 1);
                  },
                  nullptr),
              0);
    PassTime(10);
    EXPECT_EQ(RunsOfYield(), 1);
    PassTime(10);
    EXPECT_EQ(RunsOfYield(), 0);
    EXPECT_EQ(zrPumpNextDue(), -1);
}

TEST_F(MessagePump, Timer_DeletedWhileItsMessageWaits) {
    EXPECT_EQ(zrTimerSet(Current, 10, Run, nullptr), 0);
    PassTime(10);
    EXPECT_EQ(zrTimerDel(0), 1);
    EXPECT_EQ(RunsOfYield(), 0);
}

TEST_F(MessagePump, Timer_DesktopKeepsItWithoutAWindow) {
    static zr_window given;
    given = window;
    EXPECT_EQ(zrTimerSet([] { return given; }, 10, Run, nullptr), 0);
    given = nullptr;
    zrTimerUpdateHwnd();
    PassTime(10);
    EXPECT_GE(RunsOfYield(), 1);
    EXPECT_EQ(zrTimerDel(0), 1);
    PassTime(10);
    EXPECT_EQ(RunsOfYield(), 0); // its message says nothing any more
    EXPECT_GE(zrPumpNextDue(), 0);
}

TEST_F(MessagePump, Window_DestroyedWithItsTimerRunning) {
    zrTimer timer(window, 10, Run, nullptr);
    PassTime(10);
    EXPECT_EQ(zrWindowDestroy(window), 1);
    EXPECT_EQ(RunsOfYield(), 0);
    EXPECT_EQ(zrPumpNextDue(), -1);
    EXPECT_EQ(timer.hwnd, window);
    timer.ChangeTimeOut(20); // the window is none any more
    EXPECT_EQ(timer.timer_id, 0u);
    window = nullptr;
}

TEST_F(MessagePump, Window_DestroyedInItsProcedure) {
    const auto procedure = [](zr_window own, unsigned, zr_value, void *) {
        ++runs;
        EXPECT_EQ(zrWindowDestroy(own), 1);
        EXPECT_EQ(zrWindowDestroy(own), 0);
    };
    const zr_window other = zrWindowCreate(procedure, nullptr);
    const zrTimer timer(other, 10, Run, nullptr);
    PassTime(10);
    EXPECT_EQ(RunsOfYield(), 1);
    PassTime(10);
    EXPECT_EQ(RunsOfYield(), 0);
}

TEST_F(MessagePump, Window_NullForeignAndEnded) {
    EXPECT_EQ(zrWindowCreate(nullptr, &user), nullptr);
    EXPECT_EQ(zrWindowDestroy(nullptr), 0);
    EXPECT_EQ(zrWindowDestroy(&user), 0);
    EXPECT_EQ(zrWindowDestroy(reinterpret_cast<zr_window>(zr_value{1})), 0);
    const zr_window other = zrWindowCreate(HandOn, nullptr);
    EXPECT_EQ(zrWindowDestroy(other), 1);
    EXPECT_EQ(zrWindowDestroy(other), 0);
}

TEST_F(MessagePump, Window_ForeignOnesGetNoTimer) {
    for (zr_window other : {static_cast<zr_window>(&user), reinterpret_cast<zr_window>(zr_value{1})}) {
        zrTimer timer(other, 10, Run, nullptr);
        EXPECT_EQ(timer.timer_id, 0u);
        EXPECT_EQ(timer.hwnd, other);
    }
    EXPECT_EQ(zrPumpNextDue(), -1);
}

TEST_F(MessagePump, Threads_HaveTheirOwnWindows) {
    EXPECT_EQ(zrTimerSet(Current, 30, Run, nullptr), 0);
    std::thread([] {
        EXPECT_EQ(zrWindowDestroy(window), 0);
        EXPECT_EQ(zrPumpNextDue(), -1);
        static int messages;
        messages = 0;
        const auto count = [](zr_window, unsigned, zr_value, void *) { ++messages; };
        const zr_window own = zrWindowCreate(count, nullptr);
        const zrTimer timer(own, 30, nullptr, nullptr);
        PassTime(30);
        runs = 0;
        switch_Yield_and_PeekMessage(1);
        EXPECT_EQ(Yield_and_PeekMessage(), 0);
        EXPECT_GE(messages, 1);
        EXPECT_EQ(runs, 0); // not those of the other thread
        if (zr::test::has_pump_descriptor) {
            EXPECT_GE(zrPumpDescriptor(), 0);
        }
        // The window ends with its thread, as does all that belongs to it.
    }).join();
    PassTime(30);
    EXPECT_GE(RunsOfYield(), 1);
}

TEST_F(MessagePump, Period_ZeroIsTheShortest) {
    EXPECT_EQ(zrTimerSet(Current, 0, Run, nullptr), 0);
    EXPECT_LE(zrPumpNextDue(), 10);
    PassTime(10);
    EXPECT_GE(RunsOfYield(), 1); // and comes to an end
}

TEST_F(MessagePump, Period_Longest) {
    for (const zr_long period : {2147483647, -1, -2147483647 - 1}) {
        EXPECT_EQ(zrTimerSet(Current, period, Run, nullptr), 0);
        EXPECT_GT(zrPumpNextDue(), 2147483647 - 10000) << period;
        PassTime(30);
        EXPECT_EQ(RunsOfYield(), 0) << period;
        EXPECT_EQ(zrTimerDel(0), 1);
    }
}

TEST_F(MessagePump, NextDue_IsThatOfTheFirstTimer) {
    EXPECT_EQ(zrPumpNextDue(), -1);
    const zrTimer late(window, 60000, Run, nullptr);
    EXPECT_GT(zrPumpNextDue(), 50000);
    EXPECT_LE(zrPumpNextDue(), 60000);
    zrTimer early(window, 40, Run, nullptr);
    EXPECT_LE(zrPumpNextDue(), 40);
    PassTime(40);
    EXPECT_EQ(zrPumpNextDue(), 0);
    RunsOfYield();
    EXPECT_GT(zrPumpNextDue(), 0);
    early.ChangeTimeOut(30000);
    EXPECT_GT(zrPumpNextDue(), 20000);
    EXPECT_LE(zrPumpNextDue(), 30000);
}

TEST_F(MessagePump, Wait_EndsWhenAMessageIsDue) {
    zr::platform::services = zr::platform::Services(); // the time that really passes
    EXPECT_EQ(zrPumpDescriptor() >= 0, zr::test::has_pump_descriptor);
    EXPECT_EQ(zrPumpDescriptor(), zrPumpDescriptor());
    EXPECT_FALSE(zr::test::WaitForMessage(0));
    EXPECT_EQ(zrTimerSet(Current, 20, Run, nullptr), 0);
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(zr::test::WaitForMessage(60000));
        EXPECT_GE(RunsOfYield(), 1);
    }
    EXPECT_EQ(zrTimerDel(0), 1);
    EXPECT_FALSE(zr::test::WaitForMessage(0));
}

TEST_F(MessagePump, Yield_UpdatesThenHookThenMessages) {
    EXPECT_EQ(zrTimerSet(
                  [] {
                      steps.emplace_back("window");
                      return window;
                  },
                  100, [](void *) { steps.emplace_back("timer"); }, nullptr),
              0);
    SetYieldCallback([] { steps.emplace_back("hook"); });
    PassTime(100);
    steps.clear();
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    ASSERT_GE(steps.size(), 3u);
    EXPECT_EQ(steps[0], "window");
    EXPECT_EQ(steps[1], "hook");
    EXPECT_EQ(steps[2], "timer");
}

TEST_F(MessagePump, Switch_StopsTheMessagesOnly) {
    EXPECT_EQ(switch_Yield_and_PeekMessage(-1), 1);
    EXPECT_EQ(zrTimerSet(Current, 50, Run, nullptr), 0);
    SetYieldCallback([] { steps.emplace_back("hook"); });
    EXPECT_EQ(switch_Yield_and_PeekMessage(0), 0);
    for (const int mode : {-1, 2, INT_MAX, INT_MIN})
        EXPECT_EQ(switch_Yield_and_PeekMessage(mode), 0);
    PassTime(50);
    EXPECT_EQ(RunsOfYield(), 0);
    EXPECT_EQ(steps.size(), 1u);
    EXPECT_EQ(switch_Yield_and_PeekMessage(1), 1);
    EXPECT_EQ(switch_Yield_and_PeekMessage(2), 1);
    EXPECT_GE(RunsOfYield(), 1);
}

TEST_F(MessagePump, Hook_GivesWhatIsGiven) {
    const zr_yield_hook hook = [] { steps.emplace_back("hook"); };
    EXPECT_TRUE(SetYieldCallback(hook) == hook);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_TRUE(SetYieldCallback(nullptr) == nullptr);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(steps.size(), 1u);
}

TEST_F(MessagePump, Hook_PumpsAgain) {
    EXPECT_EQ(zrTimerSet(Current, 100, Run, nullptr), 0);
    SetYieldCallback([] {
        steps.emplace_back("hook");
        if (steps.size() == 1)
            Yield_and_PeekMessage();
    });
    PassTime(100);
    ExpectRuns(1);
    EXPECT_EQ(steps.size(), 2u);
}

TEST_F(MessagePump, Hook_AlwaysPumpsAgain) {
    SetYieldCallback([] {
        steps.emplace_back("hook");
        Yield_and_PeekMessage();
    });
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(steps.size(), 64u);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(steps.size(), 128u);
}

TEST_F(MessagePump, Function_PumpsAgain) {
    const auto pumps = [](void *) {
        ++runs;
        Yield_and_PeekMessage();
    };
    EXPECT_EQ(zrTimerSet(Current, 200, pumps, nullptr), 0);
    EXPECT_EQ(zrTimerSet(Current, 200, pumps, nullptr), 1);
    PassTime(200);
    ExpectRuns(2);
}

TEST_F(MessagePump, HundredTimers_AllRun) {
    for (int slot = 0; slot < 100; ++slot)
        ASSERT_EQ(zrTimerSet(Current, 400, Run, nullptr), slot);
    ExpectRuns(0);
    PassTime(400);
    ExpectRuns(100);
}

TEST_F(MessagePump, Window_GetsItsOwnValue) {
    static int values[2];
    std::fill(values, values + 2, 0);
    const auto count = [](zr_window, unsigned, zr_value, void *value) { ++*static_cast<int *>(value); };
    const zr_window first = zrWindowCreate(count, &values[0]);
    const zr_window second = zrWindowCreate(count, &values[1]);
    const zrTimer timer(second, 50, nullptr, nullptr);
    PassTime(50);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(values[0], 0);
    EXPECT_GE(values[1], 1);
    EXPECT_EQ(zrWindowDestroy(first), 1);
    EXPECT_EQ(zrWindowDestroy(second), 1);
}

} // namespace
