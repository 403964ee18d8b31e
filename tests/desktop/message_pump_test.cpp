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
#include "platform/window_timers.h"

namespace {

using zr::test::PassTime;

class MessagePump : public testing::Test {
protected:
    void SetUp() override {
        zr::test::HoldTime();
        steps.clear();
        runs = 0;
        last_window = nullptr;
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
        if (target == window)
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

    // What zrPumpNextDue tells when the messages are taken. Where time is not held, the next one may come meanwhile.
    static int NextDueAfterYield() {
        int due = 0;
        for (int i = 0; i < 10 && due <= 1; ++i) {
            RunsOfYield();
            due = zrPumpNextDue();
        }
        return due;
    }

    // From here on runs are counted against the time.
    static void Mark() {
        runs = 0;
        marked = zr::platform::SteadyNanoseconds();
    }

    // Lets a period pass, after which a message waits.
    static void PassTimeUntilDue(int milliseconds) {
        PassTime(milliseconds);
        EXPECT_TRUE(zr::test::time_is_held || zr::test::WaitForMessage(30000)); // the system may be slow
    }

    // Lets a period pass and takes the messages. Where time is not held, until as many functions have run as are expected.
    static void PumpAfter(int milliseconds, int expected) {
        if (zr::test::time_is_held)
            PassTime(milliseconds);
        EXPECT_EQ(Yield_and_PeekMessage(), 0);
        for (int i = 0; !zr::test::time_is_held && runs < expected && i < 1000; ++i) {
            zr::test::WaitForMessage(30);
            EXPECT_EQ(Yield_and_PeekMessage(), 0);
        }
    }

    // Since Mark the functions of `timers` timers of this period have run at least `expected` times, and not more often than
    // time has allowed: where that is held, as often.
    static void ExpectRuns(int expected, int timers, int period) {
        const std::int64_t passed = zr::platform::SteadyNanoseconds() - marked;
        const std::int64_t early = zr::test::time_is_held ? 0 : 2; // by the system's own measure of time
        EXPECT_GE(runs, expected);
        EXPECT_LE(runs, timers * ((passed / 1000000 + early) / period));
    }

    static inline zr_window window = nullptr;
    static inline zr_window last_window = nullptr;
    static inline int user = 0;
    static inline int runs = 0;
    static inline std::int64_t marked = 0;
    static inline std::vector<std::string> steps;
};

// What holds before anything was called.
struct AtStart {
    int pump_is_on = switch_Yield_and_PeekMessage(-1);
    int answer = Yield_and_PeekMessage(); // without a hook
    int next_due = zrPumpNextDue();
    int slot = zrTimerSetWithoutHwnd(50, nullptr, nullptr);
    int deleted = zrTimerDel(slot);
};
const AtStart at_start;

TEST_F(MessagePump, Start_PumpIsOnAndThereIsNothingElse) {
    EXPECT_EQ(at_start.pump_is_on, 1);
    EXPECT_EQ(at_start.answer, 0);
    EXPECT_EQ(at_start.next_due, -1);
    EXPECT_EQ(at_start.slot, 0);
    EXPECT_EQ(at_start.deleted, 1);
}

TEST_F(MessagePump, Timer_RunsWhenItsPeriodHasPassed) {
    EXPECT_EQ(zrTimerSet(Current, 60000, Run, nullptr), 0);
    PassTime(10);
    EXPECT_EQ(RunsOfYield(), 0);
    Mark();
    zrTimerChangeTimeOut(0, 20);
    Yield_and_PeekMessage();
    ExpectRuns(0, 1, 20);
    for (int expected = 1; expected <= 2; ++expected) {
        PumpAfter(20, expected);
        EXPECT_EQ(last_window, window);
        Yield_and_PeekMessage();
        ExpectRuns(expected, 1, 20);
    }
}

TEST_F(MessagePump, Timer_CountsItsRuns) {
    zrTimer timer(window, 10, Run, nullptr);
    EXPECT_EQ(timer.timer_id, reinterpret_cast<zr_value>(&timer));
    PumpAfter(10, 1);
    EXPECT_EQ(timer.run_count, runs);
    EXPECT_GE(runs, 1);
}

TEST_F(MessagePump, Timer_LateMessagesAreOne) {
    EXPECT_EQ(zrTimerSet(Current, 10, Run, nullptr), 0);
    PassTimeUntilDue(75);
    Mark();
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_GE(runs, 1);
    // Of the periods that have passed only one counts; where time is not held, the next one may have passed meanwhile.
    const std::int64_t meanwhile = (zr::platform::SteadyNanoseconds() - marked) / 10000000;
    EXPECT_LE(runs, zr::test::time_is_held ? 1 : 2 + meanwhile);
}

TEST_F(MessagePump, Timer_MovesToTheNewWindow) {
    EXPECT_EQ(zrTimerSet(Current, 50, Run, nullptr), 0);
    const zr_window old = window;
    PassTimeUntilDue(50); // its message waits
    window = zrWindowCreate(HandOn, &user);
    ASSERT_NE(window, nullptr);
    EXPECT_NE(window, old);
    Mark();
    Yield_and_PeekMessage(); // it moves, and its message in the old window is gone
    ExpectRuns(0, 1, 50);
    PumpAfter(50, 1);
    ExpectRuns(1, 1, 50);
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
    PumpAfter(10, 1);
    PassTime(10);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(zrPumpNextDue(), -1);
}

TEST_F(MessagePump, Timer_DeletesAnotherThatIsDue) {
    const auto other = [](void *) {
        ++runs;
        EXPECT_EQ(zrTimerDel(0) + zrTimerDel(1), 2);
    };
    EXPECT_EQ(zrTimerSet(Current, 10, other, nullptr), 0);
    EXPECT_EQ(zrTimerSet(Current, 10, other, nullptr), 1);
    PassTimeUntilDue(10);
    EXPECT_EQ(RunsOfYield(), 1);
    EXPECT_EQ(zrPumpNextDue(), -1);
}

TEST_F(MessagePump, Timer_DeletedWhileItsMessageWaits) {
    EXPECT_EQ(zrTimerSet(Current, 10, Run, nullptr), 0);
    PassTimeUntilDue(10);
    EXPECT_EQ(zrTimerDel(0), 1);
    EXPECT_EQ(RunsOfYield(), 0);
}

TEST_F(MessagePump, Timer_DesktopKeepsItWithoutAWindow) {
    static zr_window given;
    given = window;
    EXPECT_EQ(zrTimerSet([] { return given; }, 10, Run, nullptr), 0);
    given = nullptr;
    zrTimerUpdateHwnd();
    PumpAfter(10, 1);
    EXPECT_GE(runs, 1);
    EXPECT_EQ(zrTimerDel(0), 1);
    PassTime(10);
    EXPECT_EQ(RunsOfYield(), 0); // its message says nothing any more
    EXPECT_GE(zrPumpNextDue(), 0);
}

TEST_F(MessagePump, Window_DestroyedWithItsTimerRunning) {
    zrTimer timer(window, 10, Run, nullptr);
    PassTimeUntilDue(10);
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
    const zrTimer first(other, 10, Run, nullptr);
    const zrTimer second(other, 10, Run, nullptr); // due, too
    PassTimeUntilDue(10);
    EXPECT_EQ(RunsOfYield(), 1);
    EXPECT_EQ(zrPumpNextDue(), -1);
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
    EXPECT_EQ(zrTimerSet(Current, 10, Run, nullptr), 0);
    std::thread([] {
        EXPECT_EQ(zrWindowDestroy(window), 0);
        EXPECT_EQ(zrPumpNextDue(), -1);
        static int messages;
        messages = 0;
        const auto count = [](zr_window, unsigned, zr_value, void *) { ++messages; };
        const zr_window own = zrWindowCreate(count, nullptr);
        const zrTimer timer(own, 10, nullptr, nullptr);
        PassTimeUntilDue(10);
        EXPECT_EQ(RunsOfYield(), 0); // not those of the other thread
        EXPECT_GE(messages, 1);
        EXPECT_EQ(zrPumpDescriptor() >= 0, zr::test::has_pump_descriptor);
        // The window ends with its thread, as does all that belongs to it.
    }).join();
    PassTimeUntilDue(0);
    EXPECT_GE(RunsOfYield(), 1);
}

TEST_F(MessagePump, Threads_PumpSideBySide) {
    zr::platform::services = zr::platform::Services(); // the time that really passes
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([] {
            const auto count = [](void *own_runs) { ++*static_cast<int *>(own_runs); };
            int own_runs = 0;
            const zr_window own = zrWindowCreate(HandOn, &user);
            for (int timers = 0; timers < 3; ++timers) {
                own_runs = 0;
                const zrTimer timer(own, 10, count, &own_runs);
                while (own_runs == 0 && zr::test::WaitForMessage(60000))
                    Yield_and_PeekMessage();
                EXPECT_GE(own_runs, 1);
                EXPECT_EQ(timer.run_count, own_runs);
            }
            EXPECT_EQ(zrWindowDestroy(own), 1);
        });
    for (std::thread &thread : threads)
        thread.join();
}

TEST_F(MessagePump, Period_ZeroIsTheShortest) {
    EXPECT_EQ(zrTimerSet(Current, 0, Run, nullptr), 0);
    EXPECT_GE(zrPumpNextDue(), 0);
    EXPECT_LE(zrPumpNextDue(), 10);
    PassTimeUntilDue(10);
    EXPECT_GE(RunsOfYield(), 1); // and comes to an end
}

TEST_F(MessagePump, Period_Longest) {
    for (const zr_long period : {2147483647, -1, -2147483647 - 1}) {
        EXPECT_GE(zrTimerSet(Current, period, Run, nullptr), 0);
        EXPECT_GT(zrPumpNextDue(), 2147483647 - 10000) << period;
    }
    PassTime(10);
    EXPECT_EQ(RunsOfYield(), 0);
}

TEST_F(MessagePump, NextDue_IsThatOfTheFirstTimer) {
    EXPECT_EQ(zrPumpNextDue(), -1);
    const zrTimer late(window, 60000, Run, nullptr);
    EXPECT_GT(zrPumpNextDue(), 50000);
    EXPECT_LE(zrPumpNextDue(), 60000);
    zrTimer early(window, 20, Run, nullptr);
    EXPECT_GE(zrPumpNextDue(), 0);
    EXPECT_LE(zrPumpNextDue(), 20);
    PassTimeUntilDue(20);
    EXPECT_EQ(zrPumpNextDue(), 0);
    const int due = NextDueAfterYield();
    EXPECT_GT(due, 1);
    EXPECT_LE(due, 20);
    early.ChangeTimeOut(30000);
    EXPECT_GT(zrPumpNextDue(), 20000);
    EXPECT_LE(zrPumpNextDue(), 30000);
}

TEST_F(MessagePump, Wait_EndsWhenAMessageIsDue) {
    zr::platform::services = zr::platform::Services(); // the time that really passes
    EXPECT_EQ(zrPumpDescriptor() >= 0, zr::test::has_pump_descriptor);
    EXPECT_TRUE(zr::test::has_pump_descriptor || zrPumpDescriptor() == -1);
    EXPECT_EQ(zrPumpDescriptor(), zrPumpDescriptor());
    EXPECT_FALSE(zr::test::WaitForMessage(0));
    EXPECT_EQ(zrTimerSet(Current, 20, Run, nullptr), 0);
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(zr::test::WaitForMessage(60000));
        EXPECT_GE(RunsOfYield(), 1);
        EXPECT_GT(NextDueAfterYield(), 1); // known at once, not only when it is late
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
                  10, [](void *) { steps.emplace_back("timer"); }, nullptr),
              0);
    SetYieldCallback([] { steps.emplace_back("hook"); });
    PassTimeUntilDue(10);
    steps.clear();
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    ASSERT_GE(steps.size(), 3u);
    EXPECT_EQ(steps[0], "window");
    EXPECT_EQ(steps[1], "hook");
    EXPECT_EQ(steps[2], "timer");
}

TEST_F(MessagePump, Switch_StopsTheMessagesOnly) {
    EXPECT_EQ(switch_Yield_and_PeekMessage(-1), 1);
    EXPECT_EQ(zrTimerSet(
                  [] {
                      steps.emplace_back("window");
                      return window;
                  },
                  10, Run, nullptr),
              0);
    SetYieldCallback([] { steps.emplace_back("hook"); });
    EXPECT_EQ(switch_Yield_and_PeekMessage(0), 0);
    for (const int mode : {-1, 2, INT_MAX, INT_MIN})
        EXPECT_EQ(switch_Yield_and_PeekMessage(mode), 0);
    PassTimeUntilDue(10);
    steps.clear();
    EXPECT_EQ(RunsOfYield(), 0);
    EXPECT_EQ(steps, (std::vector<std::string>{"window", "hook"}));
    EXPECT_EQ(switch_Yield_and_PeekMessage(1), 1);
    for (const int mode : {-1, 2, INT_MAX, INT_MIN})
        EXPECT_EQ(switch_Yield_and_PeekMessage(mode), 1);
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
    Mark();
    EXPECT_EQ(zrTimerSet(Current, 30, Run, nullptr), 0);
    SetYieldCallback([] {
        steps.emplace_back("hook");
        if (steps.size() == 1)
            Yield_and_PeekMessage();
    });
    PassTimeUntilDue(30);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    ExpectRuns(1, 1, 30);
    EXPECT_EQ(steps.size(), 2u);
}

TEST_F(MessagePump, Hook_EndsTimersAndItself) {
    EXPECT_EQ(zrTimerSet(Current, 10, Run, nullptr), 0);
    SetYieldCallback([] {
        steps.emplace_back("hook");
        EXPECT_EQ(zrTimerDel(0), 1);
        SetYieldCallback(nullptr);
    });
    PassTimeUntilDue(10);
    EXPECT_EQ(RunsOfYield(), 0);
    EXPECT_EQ(RunsOfYield(), 0);
    EXPECT_EQ(steps.size(), 1u);
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
    Mark();
    EXPECT_EQ(zrTimerSet(Current, 30, pumps, nullptr), 0);
    EXPECT_EQ(zrTimerSet(Current, 30, pumps, nullptr), 1);
    PumpAfter(30, 2);
    ExpectRuns(2, 2, 30);
}

TEST_F(MessagePump, HundredTimers_AllRun) {
    Mark();
    for (int slot = 0; slot < 100; ++slot)
        ASSERT_EQ(zrTimerSet(Current, 60, Run, nullptr), slot);
    Yield_and_PeekMessage();
    ExpectRuns(0, 100, 60);
    Mark();
    for (int slot = 0; slot < 100; ++slot)
        zrTimerChangeTimeOut(slot, 60);
    PumpAfter(60, 100);
    ExpectRuns(100, 100, 60);
}

TEST_F(MessagePump, Window_GetsItsOwnValue) {
    static int values[2];
    std::fill(values, values + 2, 0);
    const auto count = [](zr_window, unsigned, zr_value, void *value) { ++*static_cast<int *>(value); };
    const zr_window first = zrWindowCreate(count, &values[0]);
    const zr_window second = zrWindowCreate(count, &values[1]);
    const zrTimer timer(second, 10, nullptr, nullptr);
    PassTimeUntilDue(10);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(values[0], 0);
    EXPECT_GE(values[1], 1);
    EXPECT_EQ(zrWindowDestroy(first), 1);
    EXPECT_EQ(zrWindowDestroy(second), 1);
}

} // namespace
