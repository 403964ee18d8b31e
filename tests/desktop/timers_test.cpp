// Timers and their slots, over a desktop that only notes what it is asked for.
#include <zrclb/timer.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <random>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/timer_table.h"
#include "env/refused_memory.h"
#include "platform/services.h"

namespace {

using zr::platform::services;

static_assert(!std::is_polymorphic_v<zrTimer> && std::is_standard_layout_v<zrTimer>);

// The fields, in their order.
static_assert(offsetof(zrTimer, timer_id) == 0 && offsetof(zrTimer, timer_id) < offsetof(zrTimer, timeout) &&
              offsetof(zrTimer, timeout) < offsetof(zrTimer, function) &&
              offsetof(zrTimer, function) < offsetof(zrTimer, user_data) &&
              offsetof(zrTimer, user_data) < offsetof(zrTimer, run_count) &&
              offsetof(zrTimer, run_count) < offsetof(zrTimer, hwnd) &&
              offsetof(zrTimer, hwnd) < offsetof(zrTimer, hwnd_function) &&
              sizeof(zrTimer) == offsetof(zrTimer, hwnd_function) + sizeof(void *));
static_assert(std::is_same_v<decltype(zrTimer::timer_id), zr_value> &&
              std::is_same_v<decltype(zrTimer::timeout), zr_long> &&
              std::is_same_v<decltype(zrTimer::run_count), std::int32_t>);

zr_window Window(char name) {
    return reinterpret_cast<zr_window>(static_cast<zr_value>(name));
}
const zr_window window_a = Window('A');
const zr_window window_b = Window('B');

class Timers : public testing::Test {
protected:
    void SetUp() override {
        calls.clear();
        asked = 0;
        runs = 0;
        current = nullptr;
        next_id = 0;
        services.start_window_timer = [](zr_window window, zr_value id, zr_long period) {
            Note("start", window, id);
            calls.back() += " " + std::to_string(period);
            started_ids.push_back(id);
            return next_id != 0 ? next_id : id;
        };
        services.stop_window_timer = [](zr_window window, zr_value id) {
            Note("stop", window, id);
            return false;
        };
    }
    void TearDown() override {
        for (int slot = 0; slot < 100; ++slot)
            zrTimerDel(slot);
        zrTimerSetHwndFunction(nullptr);
        services = zr::platform::Services();
    }

    // "stop A" or, with the identifier 0, "stop A 0".
    static void Note(const char *verb, zr_window window, zr_value id) {
        const char name = static_cast<char>(reinterpret_cast<zr_value>(window));
        calls.push_back(std::string(verb) + " " + name + (id == 0 ? " 0" : id == 77 ? " 77" : ""));
    }
    static std::vector<std::string> Calls() { return std::exchange(calls, {}); }

    static zr_window Current() {
        ++asked;
        return current;
    }
    static void Run(void *user_data) {
        ++runs;
        last_user = user_data;
    }

    using Texts = std::vector<std::string>;

    static inline Texts calls;
    static inline std::vector<zr_value> started_ids;
    static inline zr_window current = nullptr;
    static inline zr_value next_id = 0; // what the desktop calls the next timer; 0: as it was asked to
    static inline int asked = 0;
    static inline int runs = 0;
    static inline void *last_user = nullptr;
};

TEST_F(Timers, FixedWindow_StartsWithItsAddress) {
    {
        const zrTimer timer(window_a, 50, Run, &runs);
        EXPECT_EQ(Calls(), Texts{"start A 50"});
        EXPECT_EQ(started_ids.back(), reinterpret_cast<zr_value>(&timer));
        EXPECT_EQ(timer.timer_id, reinterpret_cast<zr_value>(&timer));
        EXPECT_EQ(timer.timeout, 50);
        EXPECT_TRUE(timer.function == Run);
        EXPECT_EQ(timer.user_data, &runs);
        EXPECT_EQ(timer.run_count, 0);
        EXPECT_EQ(timer.hwnd, window_a);
        EXPECT_TRUE(timer.hwnd_function == nullptr);
    }
    EXPECT_EQ(Calls(), Texts{"stop A"});
}

TEST_F(Timers, IdentifierIsWhatTheDesktopGives) {
    next_id = 77;
    {
        const zrTimer timer(window_a, 50, Run, nullptr);
        EXPECT_EQ(timer.timer_id, 77u);
    }
    EXPECT_EQ(Calls(), (Texts{"start A 50", "stop A 77"}));
}

TEST_F(Timers, IdentifierIsUsedToMoveAndToChange) {
    next_id = 77;
    current = window_a;
    zrTimer timer(Current, 50, Run, nullptr);
    Calls();
    next_id = 0;
    current = window_b;
    timer.UpdateHwndFunction();
    EXPECT_EQ(Calls(), (Texts{"stop A 77", "start B 50"}));
    EXPECT_EQ(timer.timer_id, reinterpret_cast<zr_value>(&timer));
    next_id = 77;
    timer.ChangeTimeOut(60);
    EXPECT_EQ(Calls(), (Texts{"stop B", "start B 60"}));
    timer.ChangeTimeOut(70);
    EXPECT_EQ(Calls(), (Texts{"stop B 77", "start B 70"}));
}

TEST_F(Timers, Period_GoesToTheDesktopAsItIs) {
    for (const zr_long period : {0, -1, 2147483647, -2147483647 - 1}) {
        Calls();
        zrTimer timer(window_a, period, Run, nullptr);
        EXPECT_EQ(timer.timeout, period);
        timer.ChangeTimeOut(50);
        timer.ChangeTimeOut(period);
        EXPECT_EQ(timer.timeout, period);
        const std::string start = "start A " + std::to_string(period);
        EXPECT_EQ(Calls(), (Texts{start, "stop A", "start A 50", "stop A", start}));
    }
}

TEST_F(Timers, DesktopRefuses_NothingToEnd) {
    services.start_window_timer = [](zr_window, zr_value, zr_long) { return zr_value{0}; };
    {
        const zrTimer timer(window_a, 50, Run, nullptr);
        EXPECT_EQ(timer.timer_id, 0u);
        EXPECT_EQ(timer.hwnd, window_a);
    }
    EXPECT_EQ(Calls(), Texts{});
}

TEST_F(Timers, NoWindow_IsIdle) {
    {
        const zrTimer timer(50, Run, nullptr);
        EXPECT_EQ(timer.timer_id, 0u);
        EXPECT_EQ(timer.hwnd, nullptr);
        EXPECT_TRUE(timer.hwnd_function == nullptr);
    }
    {
        const zrTimer timer(zr_window{nullptr}, 50, Run, nullptr);
        EXPECT_EQ(timer.timer_id, 0u);
    }
    EXPECT_EQ(Calls(), Texts{});
}

TEST_F(Timers, NoWindow_AsksTheGlobalFunction) {
    current = window_a;
    zrTimerSetHwndFunction(Current);
    zrTimer timer(50, Run, nullptr);
    EXPECT_EQ(timer.hwnd, window_a);
    EXPECT_TRUE(timer.hwnd_function == nullptr);
    EXPECT_EQ(Calls(), Texts{"start A 50"});
    EXPECT_EQ(asked, 2); // for the update and for the window
}

TEST_F(Timers, FixedWindow_GivesWayToTheGlobalFunction) {
    current = window_b;
    zrTimerSetHwndFunction(Current);
    const zrTimer timer(window_a, 50, Run, nullptr);
    EXPECT_EQ(timer.hwnd, window_b);
    EXPECT_EQ(Calls(), (Texts{"stop A 0", "start B 50", "start B 50"}));
    EXPECT_EQ(asked, 1);
}

TEST_F(Timers, OwnFunction_GoesBeforeTheGlobalOne) {
    current = window_a;
    zrTimerSetHwndFunction([] { return window_b; });
    const zrTimer timer(Current, 50, Run, nullptr);
    EXPECT_EQ(timer.hwnd, window_a);
    EXPECT_TRUE(timer.hwnd_function == Current);
    EXPECT_EQ(Calls(), Texts{"start A 50"});
}

TEST_F(Timers, OwnFunction_WindowChangesBetweenTheTwoQuestions) {
    const zrTimer timer([] { return ++asked == 1 ? window_a : window_b; }, 50, Run, nullptr);
    EXPECT_EQ(timer.hwnd, window_b);
    EXPECT_EQ(Calls(), (Texts{"stop A 0", "start B 50", "start B 50"}));
}

TEST_F(Timers, NoFunction_GetHwndDoesNotAsk) {
    current = window_a;
    zrTimer timer(Current, 50, nullptr, nullptr);
    EXPECT_EQ(asked, 1); // the update of the construction
    EXPECT_EQ(Calls(), Texts{"start A 50"});
    current = window_b;
    EXPECT_EQ(timer.GetHwnd(), window_a);
    timer.function = Run;
    EXPECT_EQ(timer.GetHwnd(), window_b);
    EXPECT_EQ(Calls(), (Texts{"stop A", "start B 50"}));
}

TEST_F(Timers, Update_MovesBetweenWindowsOnly) {
    current = window_a;
    {
        zrTimer timer(Current, 50, Run, nullptr);
        Calls();
        timer.UpdateHwndFunction();
        EXPECT_EQ(Calls(), Texts{});
        current = window_b;
        timer.UpdateHwndFunction();
        EXPECT_EQ(Calls(), (Texts{"stop A", "start B 50"}));
        current = nullptr;
        timer.UpdateHwndFunction();
        EXPECT_EQ(timer.hwnd, nullptr);
        EXPECT_NE(timer.timer_id, 0u);
        EXPECT_EQ(Calls(), Texts{});
        current = window_a;
        timer.UpdateHwndFunction();
        EXPECT_EQ(timer.hwnd, window_a);
        EXPECT_EQ(Calls(), Texts{}); // noted only
        current = nullptr;
        timer.UpdateHwndFunction();
    }
    EXPECT_EQ(Calls(), Texts{}); // no window, nothing to end
}

TEST_F(Timers, Update_WithoutAnyFunctionWindowStays) {
    zrTimer timer(window_a, 50, Run, nullptr);
    Calls();
    timer.UpdateHwndFunction();
    EXPECT_EQ(timer.GetHwnd(), window_a);
    EXPECT_EQ(Calls(), Texts{});
}

TEST_F(Timers, SetHwndFunction_OnlyIfNothingIsSet) {
    zrTimer fixed(window_a, 50, Run, nullptr);
    fixed.SetHwndFunction(Current);
    EXPECT_TRUE(fixed.hwnd_function == nullptr);

    zrTimer through([] { return zr_window{nullptr}; }, 50, Run, nullptr);
    through.SetHwndFunction(Current);
    EXPECT_FALSE(through.hwnd_function == Current);

    zrTimer none(50, Run, nullptr);
    none.SetHwndFunction(Current);
    EXPECT_TRUE(none.hwnd_function == Current);
    EXPECT_EQ(asked, 0);
}

TEST_F(Timers, SetHwndFunction_IsAskedFromThenOnInPlaceOfTheGlobalOne) {
    current = window_a;
    zrTimer timer(50, Run, nullptr);
    timer.SetHwndFunction(Current);
    zrTimerSetHwndFunction([] { return window_b; });
    EXPECT_EQ(Calls(), Texts{}); // nothing starts by that
    timer.ChangeTimeOut(50);
    EXPECT_EQ(Calls(), (Texts{"stop A 0", "start A 50"}));
    timer.SetHwndFunction(nullptr); // it stays
    EXPECT_TRUE(timer.hwnd_function == Current);
}

TEST_F(Timers, GlobalFunction_CanBeTakenAway) {
    current = window_a;
    zrTimerSetHwndFunction(Current);
    zrTimer timer(50, Run, nullptr);
    EXPECT_EQ(std::exchange(asked, 0), 2);
    zrTimerSetHwndFunction(nullptr);
    timer.UpdateHwndFunction();
    EXPECT_EQ(timer.GetHwnd(), window_a);
    EXPECT_EQ(zrTimer(50, Run, nullptr).hwnd, nullptr);
    EXPECT_EQ(asked, 0);
}

TEST_F(Timers, ChangeTimeOut_EndsAndStarts) {
    current = window_a;
    zrTimer timer(Current, 50, Run, nullptr);
    Calls();
    timer.ChangeTimeOut(70);
    EXPECT_EQ(timer.timeout, 70);
    EXPECT_EQ(Calls(), (Texts{"stop A", "start A 70"}));
    current = window_b; // moved with the old period first
    timer.ChangeTimeOut(90);
    EXPECT_EQ(Calls(), (Texts{"stop A", "start B 70", "stop B", "start B 90"}));
    timer.function = nullptr; // asks no more
    current = window_a;
    timer.ChangeTimeOut(100);
    EXPECT_EQ(Calls(), (Texts{"stop B", "start B 100"}));
}

TEST_F(Timers, InitTimer_DoesNotKeepTheWindow) {
    zrTimer timer(window_a, 50, Run, nullptr);
    Calls();
    timer.InitTimer(window_b);
    EXPECT_EQ(timer.hwnd, window_a);
    EXPECT_EQ(Calls(), Texts{"start B 50"});
    timer.InitTimer(nullptr);
    EXPECT_EQ(timer.timer_id, 0u);
    EXPECT_EQ(Calls(), Texts{});
}

TEST_F(Timers, ExecuteFunction_CallsAndCounts) {
    zrTimer timer(50, Run, &asked);
    timer.ExecuteFunction();
    timer.ExecuteFunction();
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(timer.run_count, 2);
    EXPECT_EQ(last_user, &asked);
    timer.function = nullptr;
    timer.ExecuteFunction();
    EXPECT_EQ(timer.run_count, 3);
    timer.run_count = 2147483647;
    timer.ExecuteFunction();
    EXPECT_EQ(timer.run_count, -2147483647 - 1);
}

TEST_F(Timers, ExecuteFunction_CountsBehindTheCall) {
    static zrTimer *self;
    static int seen;
    zrTimer timer(
        50, [](void *) { seen = self->run_count; }, nullptr);
    self = &timer;
    timer.ExecuteFunction();
    EXPECT_EQ(seen, 0);
    EXPECT_EQ(timer.run_count, 1);
}

TEST_F(Timers, Assignment_CopiesAllSevenFields) {
    const auto nothing = [] { return zr_window{nullptr}; };
    current = window_a;
    zrTimer source(Current, 50, Run, &runs);
    source.run_count = 9;
    {
        zrTimer target(nothing, 1, nullptr, nullptr);
        Calls();
        EXPECT_EQ(&(target = source), &target);
        EXPECT_EQ(target.timer_id, source.timer_id);
        EXPECT_EQ(target.timeout, 50);
        EXPECT_TRUE(target.function == Run);
        EXPECT_EQ(target.user_data, &runs);
        EXPECT_EQ(target.run_count, 9);
        EXPECT_EQ(target.hwnd, window_a);
        EXPECT_TRUE(target.hwnd_function == Current);
        zrTimer copy(source);
        EXPECT_EQ(copy.timer_id, source.timer_id);
        EXPECT_EQ(zrTimerExecute(&copy), 1);
        EXPECT_EQ(copy.run_count, 10);
        EXPECT_EQ(Calls(), Texts{});
    }
    EXPECT_EQ(Calls(), (Texts{"stop A", "stop A"}));
}

TEST_F(Timers, Assignment_LeavesWhatRanInTheTargetRunning) {
    const zrTimer source(window_a, 50, Run, nullptr);
    zrTimer target(window_b, 60, Run, nullptr);
    Calls();
    target = source;
    const zrTimer &same = target;
    target = same;
    EXPECT_EQ(Calls(), Texts{});
    EXPECT_EQ(target.hwnd, window_a);
    EXPECT_EQ(target.timeout, 50);
}

TEST_F(Timers, HundredAndFirst_RunsWithoutASlot) {
    current = window_a;
    for (int slot = 0; slot < 100; ++slot)
        ASSERT_EQ(zrTimerSet(Current, 50, Run, nullptr), slot);
    Calls();
    const zr_value ids = started_ids.size();
    asked = 0;
    EXPECT_EQ(zrTimerSet(Current, 60, Run, nullptr), -1);
    EXPECT_EQ(asked, 2); // by the new one, whose window is noted; the others aren't asked to
    EXPECT_EQ(Calls(), Texts{"start A 60"});
    zrTimerSetHwndFunction(Current);
    EXPECT_EQ(zrTimerSetWithoutHwnd(70, Run, nullptr), -1);
    EXPECT_EQ(Calls(), Texts{"start A 70"});

    for (const zr_value id : {started_ids[ids], started_ids[ids + 1]}) { // the window's messages bring them
        auto *left = reinterpret_cast<zrTimer *>(id);
        EXPECT_EQ(zrTimerExecute(left), 1);
        delete left;
    }
    EXPECT_EQ(runs, 2);

    EXPECT_EQ(zrTimerDel(42), 1);
    EXPECT_EQ(zrTimerDel(7), 1);
    EXPECT_EQ(zrTimerSetWithoutHwnd(50, Run, nullptr), 7); // the first empty one
    EXPECT_EQ(zrTimerSetWithoutHwnd(50, Run, nullptr), 42);
}

TEST_F(Timers, Del_OnlyOnceAndInRange) {
    EXPECT_EQ(zrTimerSetWithoutHwnd(50, Run, nullptr), 0);
    EXPECT_EQ(zrTimerDel(0), 1);
    for (const int slot : {0, -1, 100, 2147483647, -2147483647 - 1})
        EXPECT_EQ(zrTimerDel(slot), -1) << slot;
}

TEST_F(Timers, Del_EndsTheRunningTimer) {
    current = window_a;
    EXPECT_EQ(zrTimerSet(Current, 50, Run, nullptr), 0);
    Calls();
    EXPECT_EQ(zrTimerDel(0), 1);
    EXPECT_EQ(Calls(), Texts{"stop A"});
}

TEST_F(Timers, Set_AllOthersLookForTheirWindows) {
    current = window_a;
    EXPECT_EQ(zrTimerSet(Current, 50, Run, nullptr), 0);
    Calls();
    current = window_b;
    EXPECT_EQ(zrTimerSetWithoutHwnd(60, Run, nullptr), 1);
    EXPECT_EQ(Calls(), (Texts{"stop A", "start B 50"}));
    current = window_a;
    zrTimerUpdateHwnd();
    EXPECT_EQ(Calls(), (Texts{"stop B", "start A 50"}));
}

TEST_F(Timers, Set_EachIsAskedForItsWindow) {
    EXPECT_EQ(zrTimerSet(Current, 50, Run, nullptr), 0);
    EXPECT_EQ(asked, 3); // twice in its making, then among all
    EXPECT_EQ(zrTimerSet(Current, 50, Run, nullptr), 1);
    EXPECT_EQ(zrTimerSetWithoutHwnd(50, Run, nullptr), 2);
    EXPECT_EQ(zrTimerDel(1), 1);
    asked = 0;
    zrTimerUpdateHwnd();
    EXPECT_EQ(asked, 1);
    zrTimerSetHwndFunction(Current);
    zrTimerUpdateHwnd();
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(zrTimerDel(2), 1);
    EXPECT_EQ(zrTimerDel(0), 1);
    zrTimerUpdateHwnd();
    EXPECT_EQ(asked, 3);
}

TEST_F(Timers, Set_StartsInTheWindowOfTheGlobalFunction) {
    current = window_a;
    zrTimerSetHwndFunction(Current);
    EXPECT_EQ(zrTimerSetWithoutHwnd(50, Run, nullptr), 0);
    EXPECT_EQ(zrTimerSet(nullptr, 60, Run, nullptr), 1);
    EXPECT_EQ(Calls(), (Texts{"start A 50", "start A 60"}));
    current = window_b;
    zrTimerUpdateHwnd();
    EXPECT_EQ(Calls(), (Texts{"stop A", "start B 50", "stop A", "start B 60"}));
}

TEST_F(Timers, WithoutWindow_StartsWithANewPeriodOnly) {
    EXPECT_EQ(zrTimerSetWithoutHwnd(50, Run, nullptr), 0);
    current = window_a;
    zrTimerSetHwndFunction(Current);
    zrTimerUpdateHwnd();
    EXPECT_EQ(Calls(), Texts{});
    zrTimerChangeTimeOut(0, 60);
    EXPECT_EQ(Calls(), (Texts{"stop A 0", "start A 60"}));
}

TEST_F(Timers, ChangeTimeOut_NoSuchSlotDoesNothing) {
    for (const int slot : {0, 99, 100, -1, 2147483647, -2147483647 - 1})
        zrTimerChangeTimeOut(slot, 60);
    EXPECT_EQ(Calls(), Texts{});
}

TEST_F(Timers, Execute_CountsAndGivesOne) {
    zrTimer timer(50, Run, nullptr);
    EXPECT_EQ(zrTimerExecute(&timer), 1);
    EXPECT_EQ(timer.run_count, 1);
    EXPECT_EQ(runs, 1);
}

TEST_F(Timers, Execute_WhatIsNoTimerIsIgnored) {
    EXPECT_EQ(zrTimerExecute(nullptr), 1);
    int foreign = 0;
    EXPECT_EQ(zrTimerExecute(reinterpret_cast<zrTimer *>(&foreign)), 1);
    EXPECT_EQ(zrTimerExecute(reinterpret_cast<zrTimer *>(zr_value{1})), 1);
    auto ended = std::make_unique<zrTimer>(50, Run, nullptr);
    zrTimer *address = ended.get();
    ended.reset();
    EXPECT_EQ(zrTimerExecute(address), 1);
    EXPECT_EQ(runs, 0);
}

// A message that was on its way when its timer forgot the window and ended.
TEST_F(Timers, Execute_TimerThatTheDesktopStillHas) {
    current = window_a;
    EXPECT_EQ(zrTimerSet(Current, 50, Run, nullptr), 0);
    const zr_value id = started_ids.back();
    current = nullptr;
    zrTimerUpdateHwnd();
    EXPECT_EQ(zrTimerDel(0), 1);
    EXPECT_EQ(Calls(), Texts{"start A 50"});
    EXPECT_EQ(zrTimerExecute(reinterpret_cast<zrTimer *>(id)), 1);
    EXPECT_EQ(runs, 0);
}

TEST_F(Timers, Execute_TimerDeletesItself) {
    current = window_a;
    EXPECT_EQ(zrTimerSet(
                  Current, 50,
                  [](void *) {
                      ++runs;
                      EXPECT_EQ(zrTimerDel(0), 1);
                  },
                  nullptr),
              0);
    EXPECT_EQ(zrTimerExecute(reinterpret_cast<zrTimer *>(started_ids.back())), 1);
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(zrTimerDel(0), -1);
}

TEST_F(Timers, Execute_TimerIsReplacedInItsFunction) {
    current = window_a;
    EXPECT_EQ(zrTimerSet(
                  Current, 50,
                  [](void *) {
                      EXPECT_EQ(zrTimerDel(0), 1);
                      EXPECT_EQ(zrTimerSet(Current, 50, Run, nullptr), 0); // may get the same memory
                  },
                  nullptr),
              0);
    EXPECT_EQ(zrTimerExecute(reinterpret_cast<zrTimer *>(started_ids.back())), 1);
    EXPECT_EQ(reinterpret_cast<zrTimer *>(started_ids.back())->run_count, 0);
}

// A timer that ends within a call of its function's, with another one at the same place.
TEST_F(Timers, Object_IsReplacedInPlace) {
    static zrTimer *object;
    static bool replaces;
    alignas(zrTimer) static unsigned char place[sizeof(zrTimer)];
    const auto replace = [] {
        if (!std::exchange(replaces, false))
            return;
        object->~zrTimer();
        object = new (place) zrTimer(
            window_b, 90, [](void *) { ++runs; }, nullptr);
    };
    static void (*const replace_now)() = replace;
    for (const int way : {0, 1, 2, 3}) {
        replaces = false;
        object = new (place) zrTimer(
            [] {
                replace_now();
                return window_a;
            },
            50, [](void *) { replace_now(); }, nullptr);
        Calls();
        replaces = true;
        if (way == 0)
            EXPECT_EQ(zrTimerExecute(object), 1);
        else if (way == 1)
            object->UpdateHwndFunction();
        else if (way == 2)
            object->ChangeTimeOut(70);
        else
            EXPECT_EQ(object->GetHwnd(), nullptr);
        EXPECT_EQ(Calls(), (Texts{"stop A", "start B 90"})) << way;
        EXPECT_EQ(object->run_count, 0);
        EXPECT_EQ(object->timeout, 90);
        EXPECT_EQ(object->hwnd, window_b);
        object->~zrTimer();
        Calls();
    }
}

// Others that end, or begin, within the call are no matter.
TEST_F(Timers, Others_EndWithinTheCall) {
    current = window_a;
    const auto others = [](void *) {
        zrTimer(window_b, 60, nullptr, nullptr);
        EXPECT_EQ(zrTimerDel(1), 1);
    };
    EXPECT_EQ(zrTimerSet(Current, 50, others, nullptr), 0);
    auto *timer = reinterpret_cast<zrTimer *>(started_ids.back());
    EXPECT_EQ(zrTimerSet(Current, 50, Run, nullptr), 1);
    EXPECT_EQ(zrTimerExecute(timer), 1);
    EXPECT_EQ(timer->run_count, 1);
    timer->hwnd_function = [] {
        zrTimer(window_a, 60, nullptr, nullptr);
        return window_b;
    };
    Calls();
    timer->ChangeTimeOut(70);
    EXPECT_EQ(timer->hwnd, window_b);
    EXPECT_EQ(Calls(), (Texts{"start A 60", "stop A", "stop A", "start B 50", "stop B", "start B 70"}));
}

TEST_F(Timers, WindowFunction_DeletesItsTimer) {
    static bool deletes;
    deletes = false;
    const auto function = [] {
        if (deletes)
            zrTimerDel(0);
        return window_a;
    };
    for (const int way : {0, 1, 2}) {
        deletes = false;
        EXPECT_EQ(zrTimerSet(function, 50, Run, nullptr), 0);
        auto *timer = reinterpret_cast<zrTimer *>(started_ids.back());
        deletes = true;
        Calls();
        if (way == 0)
            zrTimerUpdateHwnd();
        else if (way == 1)
            zrTimerChangeTimeOut(0, 60);
        else
            EXPECT_EQ(timer->GetHwnd(), nullptr);
        EXPECT_EQ(Calls(), Texts{"stop A"});
        EXPECT_EQ(zrTimerDel(0), -1);
    }
}

TEST_F(Timers, WindowFunction_AddsATimer) {
    static bool adds;
    adds = true;
    const auto function = [] {
        if (std::exchange(adds, false)) {
            EXPECT_EQ(zrTimerSetWithoutHwnd(60, Run, nullptr), 0);
        }
        return window_a;
    };
    EXPECT_EQ(zrTimerSet(function, 50, Run, nullptr), 1);
    EXPECT_EQ(Calls(), Texts{"start A 50"});
}

TEST_F(Timers, Set_AllocationFails) {
    // The notes of the others take memory themselves.
    static int running;
    services.start_window_timer = [](zr_window, zr_value id, zr_long) {
        ++running;
        return id;
    };
    services.stop_window_timer = [](zr_window, zr_value) { return --running == 0; };
    current = window_a;
    running = 0;
    int allocations = 0;
    for (bool met = true; met; ++allocations) {
        const zr::test::NthAllocation refusal(allocations);
        const int slot = zrTimerSet(Current, 50, Run, nullptr);
        met = refusal.Met();
        EXPECT_EQ(slot, met ? -1 : 0);
        EXPECT_EQ(running, met ? 0 : 1);
        EXPECT_EQ(zrTimerDel(0), met ? -1 : 1);
        EXPECT_EQ(running, 0);
    }
    EXPECT_EQ(allocations, 3); // the timer, and that it is known
}

TEST_F(Timers, Object_AllocationFailsIsIdle) {
    const zr::test::NthAllocation refusal(0);
    zrTimer timer(window_a, 50, Run, nullptr);
    EXPECT_TRUE(refusal.Met());
    EXPECT_EQ(timer.timer_id, 0u);
    timer.ChangeTimeOut(60);
    EXPECT_EQ(timer.timer_id, 0u);
    EXPECT_EQ(zrTimerExecute(&timer), 1);
    EXPECT_EQ(runs, 0);
}

TEST_F(Timers, Many_AreAllKnown) {
    std::vector<std::unique_ptr<zrTimer>> timers;
    for (int i = 0; i < 300; ++i)
        timers.push_back(std::make_unique<zrTimer>(50, Run, nullptr));
    for (std::size_t i = 0; i < timers.size(); i += 2)
        timers[i].reset();
    for (const auto &timer : timers)
        zrTimerExecute(timer.get());
    EXPECT_EQ(runs, 150);
}

// Each thread has its own objects; which there are is known to the library alone.
TEST_F(Timers, Threads_HaveObjectsOfTheirOwn) {
    services.start_window_timer = [](zr_window, zr_value id, zr_long) { return id; };
    services.stop_window_timer = [](zr_window, zr_value) { return true; };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            const auto other = [](void *) { const zrTimer ends_at_once(window_b, 10, nullptr, nullptr); };
            for (int round = 0; round < 200; ++round) {
                zrTimer timers[] = {{window_a, 50, other, nullptr}, {[] { return window_b; }, 50, other, nullptr}};
                for (zrTimer &timer : timers) {
                    EXPECT_EQ(zrTimerExecute(&timer), 1);
                    EXPECT_EQ(timer.run_count, 1);
                    timer.UpdateHwndFunction();
                    EXPECT_EQ(timer.timer_id, reinterpret_cast<zr_value>(&timer));
                }
            }
        });
    for (std::thread &thread : threads)
        thread.join();
}

// ---- Beside a model that does all word for word ----

// The windows of three window functions, which the test changes.
zr_window given[3];
const zr_window_function window_functions[] = {nullptr, [] { return given[0]; }, [] { return given[1]; },
                                               [] { return given[2]; }};

// What the desktop was asked for, as the model has it.
std::string model_calls;
zr_value model_ids = 0;
zr_window_function model_global = nullptr;

std::string CallText(char verb, zr_window window, zr_value value) {
    return std::string(1, verb) + static_cast<char>(reinterpret_cast<zr_value>(window)) + std::to_string(value) + " ";
}

struct ModelTimer {
    zr_value timer_id = 0;
    zr_long timeout;
    bool has_function;
    int run_count = 0;
    zr_window hwnd;
    zr_window_function hwnd_function;

    ModelTimer(bool fixed, zr_window window, zr_window_function function, zr_long period, bool has)
        : timeout(period), has_function(has), hwnd(window), hwnd_function(function) {
        if (!fixed)
            Update();
        Init(GetHwnd());
    }
    void End() const {
        if (hwnd != nullptr && timer_id != 0)
            model_calls += CallText('-', hwnd, timer_id);
    }
    void Init(zr_window window) {
        timer_id = 0;
        if (window != nullptr) {
            model_calls += CallText('+', window, static_cast<zr_value>(timeout));
            timer_id = ++model_ids;
        }
    }
    void Update() {
        const zr_window old = hwnd;
        if (hwnd_function != nullptr)
            hwnd = hwnd_function();
        else if (model_global != nullptr)
            hwnd = model_global();
        if (old != nullptr && hwnd != nullptr && old != hwnd) {
            model_calls += CallText('-', old, timer_id);
            Init(hwnd);
        }
    }
    zr_window GetHwnd() {
        if (has_function)
            Update();
        return hwnd;
    }
    void SetHwndFunction(zr_window_function function) {
        if (hwnd == nullptr && hwnd_function == nullptr)
            hwnd_function = function;
    }
    void ChangeTimeOut(zr_long period) {
        const zr_window window = GetHwnd();
        timeout = period;
        model_calls += CallText('-', window, timer_id);
        Init(window);
    }
};

// Objects of the class, and slots, of the library and of the model.
struct Pair {
    std::unique_ptr<zrTimer> timer;
    std::unique_ptr<ModelTimer> model;
};

void ExpectSame(const Pair &pair) {
    EXPECT_EQ(pair.timer->timer_id, pair.model->timer_id);
    EXPECT_EQ(pair.timer->timeout, pair.model->timeout);
    EXPECT_EQ(pair.timer->run_count, pair.model->run_count);
    EXPECT_EQ(pair.timer->hwnd, pair.model->hwnd);
    EXPECT_EQ(pair.timer->hwnd_function, pair.model->hwnd_function);
}

class TimersAsTheModel : public Timers {
protected:
    void SetUp() override {
        Timers::SetUp();
        texts.clear();
        ids = model_ids = 0;
        model_calls.clear();
        model_global = nullptr;
        services.start_window_timer = [](zr_window window, zr_value, zr_long period) {
            texts += CallText('+', window, static_cast<zr_value>(period));
            return ++ids;
        };
        services.stop_window_timer = [](zr_window window, zr_value id) {
            texts += CallText('-', window, id);
            return true;
        };
        std::fill(given, given + 3, nullptr);
    }

    int Random(int below) { return static_cast<int>(m_random() % static_cast<unsigned>(below)); }
    zr_window RandomWindow() { return Random(3) == 0 ? nullptr : Window(static_cast<char>('A' + Random(2))); }
    zr_window_function RandomFunction() { return window_functions[Random(4)]; }

    void Renew(Pair &pair) {
        const bool fixed = Random(2) == 0;
        const zr_window window = fixed ? RandomWindow() : nullptr;
        const zr_window_function function = fixed ? nullptr : RandomFunction();
        const bool has = Random(4) != 0;
        const zr_long period = Random(100);
        void (*const called)(void *) = has ? Run : nullptr;
        if (pair.model != nullptr)
            pair.model->End();
        pair.timer.reset();
        pair.timer.reset(fixed                 ? new zrTimer(window, period, called, nullptr)
                         : function != nullptr ? new zrTimer(function, period, called, nullptr)
                                               : new zrTimer(period, called, nullptr));
        pair.model = std::make_unique<ModelTimer>(fixed, window, function, period, has);
    }

    // An action on one or two objects.
    void ActOn(Pair &pair, const Pair &other) {
        const zr_window window = RandomWindow();
        const zr_window_function function = RandomFunction();
        switch (Random(7)) {
        case 0:
            pair.timer->InitTimer(window);
            pair.model->Init(window);
            break;
        case 1:
            pair.timer->UpdateHwndFunction();
            pair.model->Update();
            break;
        case 2:
            EXPECT_EQ(pair.timer->GetHwnd(), pair.model->GetHwnd());
            break;
        case 3:
            pair.timer->SetHwndFunction(function);
            pair.model->SetHwndFunction(function);
            break;
        case 4:
            pair.timer->ChangeTimeOut(40);
            pair.model->ChangeTimeOut(40);
            break;
        case 5:
            EXPECT_EQ(zrTimerExecute(pair.timer.get()), 1);
            ++pair.model->run_count;
            break;
        default:
            *pair.timer = *other.timer;
            *pair.model = *other.model;
            break;
        }
    }

    // An action on the slots, and on what is none.
    void ActOnSlots() {
        const int slot = Random(104) - 2;
        const bool in_table = slot >= 0 && slot < 100;
        std::unique_ptr<ModelTimer> *place = in_table ? &m_table[slot] : nullptr;
        const zr_window_function function = RandomFunction();
        switch (Random(10)) {
        case 0:
        case 1:
        case 2:
        case 3:
            EXPECT_EQ(zrTimerDel(slot), in_table && *place != nullptr ? 1 : -1);
            if (in_table && *place != nullptr) {
                (*place)->End();
                place->reset();
            }
            break;
        case 4:
            zrTimerUpdateHwnd();
            UpdateModels();
            break;
        case 5:
            zrTimerSetHwndFunction(function);
            model_global = function;
            break;
        case 6:
            zrTimerChangeTimeOut(slot, 70);
            if (in_table && *place != nullptr)
                (*place)->ChangeTimeOut(70);
            break;
        default: {
            if (std::find(m_table, m_table + 100, nullptr) == m_table + 100)
                break; // one without a slot could never be deleted
            const bool has = Random(4) != 0;
            void (*const called)(void *) = has ? Run : nullptr;
            const int answer = function != nullptr ? zrTimerSet(function, 50, called, nullptr)
                                                   : zrTimerSetWithoutHwnd(50, called, nullptr);
            EXPECT_EQ(answer, AddModel(std::make_unique<ModelTimer>(false, nullptr, function, 50, has)));
        }
        }
    }

    int AddModel(std::unique_ptr<ModelTimer> model) {
        for (int slot = 0; slot < 100; ++slot)
            if (m_table[slot] == nullptr) {
                m_table[slot] = std::move(model);
                UpdateModels();
                return slot;
            }
        return -1;
    }
    void UpdateModels() {
        for (const auto &model : m_table)
            if (model != nullptr)
                model->Update();
    }

    std::mt19937 m_random{11};
    std::unique_ptr<ModelTimer> m_table[100];

    static inline std::string texts;
    static inline zr_value ids = 0;
};

TEST_F(TimersAsTheModel, Objects) {
    Pair pairs[3];
    for (Pair &pair : pairs)
        Renew(pair);
    for (int i = 0; i < 20000 && !HasFailure(); ++i) {
        given[Random(3)] = RandomWindow();
        if (Random(20) == 0)
            zrTimerSetHwndFunction(model_global = RandomFunction());
        Pair &pair = pairs[Random(3)];
        if (Random(10) == 0)
            Renew(pair);
        else
            ActOn(pair, pairs[Random(3)]);
        ExpectSame(pair);
        EXPECT_EQ(texts, model_calls) << i;
        texts.clear();
        model_calls.clear();
    }
}

TEST_F(TimersAsTheModel, Slots) {
    int most = 0;
    for (int i = 0; i < 3000 && !HasFailure(); ++i) {
        given[Random(3)] = RandomWindow();
        ActOnSlots();
        most = std::max(most, static_cast<int>(100 - std::count(m_table, m_table + 100, nullptr)));
        EXPECT_EQ(texts, model_calls) << i;
        texts.clear();
        model_calls.clear();
    }
    EXPECT_GE(most, 80);
}

TEST_F(Timers, Unload_DeletesWhatIsLeft) {
    current = window_a;
    EXPECT_EQ(zrTimerSet(Current, 50, Run, nullptr), 0);
    EXPECT_EQ(zrTimerSet(Current, 50, Run, nullptr), 1);
    Calls();
    zrTimer outside(window_b, 60, Run, nullptr);
    Calls();
    zr::desktop::DeleteTimers();
    EXPECT_EQ(Calls(), (Texts{"stop A", "stop A"}));
    EXPECT_EQ(zrTimerExecute(&outside), 1); // forgotten
    EXPECT_EQ(runs, 0);
    EXPECT_EQ(zrTimerDel(0), -1);
    EXPECT_EQ(zrTimerSetWithoutHwnd(50, Run, nullptr), 0); // in use again
}

} // namespace
