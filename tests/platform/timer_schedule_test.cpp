// When timers are due, beside a plain list.
#include "platform/timer_schedule.h"

#include <algorithm>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "env/refused_memory.h"
#include "platform/window_timers.h"

namespace {

using zr::platform::TimerSchedule;

constexpr std::int64_t millisecond = 1000000;

zr_window Window(zr_value number) {
    return reinterpret_cast<zr_window>(number);
}

TEST(TimerSchedule, Periods_AreBroughtIntoTheirLimits) {
    const struct {
        zr_long period;
        std::int64_t due; // in milliseconds
    } rows[] = {{0, 10},          {1, 10},
                {9, 10},          {10, 10},
                {11, 11},         {2147483647, 2147483647},
                {-1, 2147483647}, {-2147483647 - 1, 2147483647}};
    for (const auto &row : rows) {
        TimerSchedule schedule;
        EXPECT_TRUE(schedule.Start(Window(1), 2, row.period, 500));
        EXPECT_EQ(schedule.First()->due, row.due * millisecond + 500) << row.period;
    }
}

TEST(TimerSchedule, Repeat_KeepsTheMeasure) {
    TimerSchedule schedule;
    EXPECT_TRUE(schedule.Start(Window(1), 2, 10, 0));
    schedule.Repeat(Window(1), 2, 13 * millisecond);
    EXPECT_EQ(schedule.First()->due, 20 * millisecond);
    schedule.Repeat(Window(1), 2, 30 * millisecond); // the next one has come, too
    EXPECT_EQ(schedule.First()->due, 40 * millisecond);
    schedule.Repeat(Window(1), 3, 30 * millisecond); // no such timer
    EXPECT_EQ(schedule.First()->due, 40 * millisecond);
}

TEST(TimerSchedule, RepeatInStep_IsAWholeNumberOfPeriodsLater) {
    TimerSchedule schedule;
    EXPECT_TRUE(schedule.Start(Window(1), 2, 10, 0));
    const struct {
        std::int64_t now, due; // in milliseconds
    } rows[] = {{10, 20}, {23, 30}, {30, 40}, {45, 50}, {71, 80}, {80, 90}, {1000, 1010}, {1009, 1019}};
    for (const auto &row : rows) { // the last one comes early
        schedule.RepeatInStep(Window(1), 2, row.now * millisecond);
        EXPECT_EQ(schedule.First()->due, row.due * millisecond);
    }
    schedule.RepeatInStep(Window(1), 3, 2000 * millisecond); // no such timer
    EXPECT_EQ(schedule.First()->due, 1019 * millisecond);
    const zr::test::NthAllocation refusal(0);
    schedule.RepeatInStep(Window(1), 2, 2000 * millisecond);
    EXPECT_EQ(schedule.First()->due, 2009 * millisecond);
    EXPECT_FALSE(refusal.Met());
}

TEST(TimerSchedule, SameTime_EarlierStartStandsInFront) {
    TimerSchedule schedule;
    for (const zr_value id : {zr_value{5}, zr_value{3}, zr_value{4}})
        EXPECT_TRUE(schedule.Start(Window(1), id, 10, 0));
    for (const zr_value id : {zr_value{5}, zr_value{3}, zr_value{4}}) {
        EXPECT_EQ(schedule.First()->id, id);
        EXPECT_TRUE(schedule.Remove(Window(1), id));
        EXPECT_FALSE(schedule.Remove(Window(1), id));
    }
    EXPECT_EQ(schedule.First(), nullptr);
}

TEST(TimerSchedule, Start_WithoutMemoryLeavesAllAsItWas) {
    TimerSchedule schedule;
    EXPECT_TRUE(schedule.Start(Window(1), 1, 20, 0));
    int allocations = 0;
    for (bool met = true; met; ++allocations) {
        const zr::test::NthAllocation refusal(allocations);
        const bool started = schedule.Start(Window(1), 2, 10, 0);
        met = refusal.Met();
        EXPECT_EQ(started, !met);
        EXPECT_EQ(schedule.First()->id, met ? 1u : 2u);
    }
    EXPECT_EQ(allocations, 3);
    const zr::test::NthAllocation refusal(0); // what is there is started anew without any
    EXPECT_TRUE(schedule.Start(Window(1), 2, 30, 0));
    schedule.Repeat(Window(1), 1, 0);
    EXPECT_FALSE(refusal.Met());
}

// The same operations on a list that is searched from end to end.
class PlainSchedule {
public:
    void Start(zr_window window, zr_value id, std::int64_t period, std::int64_t now) {
        Remove(window, id);
        m_timers.push_back({now + period * millisecond, m_number++, period * millisecond, window, id});
    }
    bool Remove(zr_window window, zr_value id) {
        return std::erase_if(m_timers, [&](const auto &t) { return t.window == window && t.id == id; }) != 0;
    }
    void RemoveWindow(zr_window window) {
        std::erase_if(m_timers, [&](const auto &t) { return t.window == window; });
    }
    void Repeat(zr_window window, zr_value id, std::int64_t now) {
        for (auto &t : m_timers)
            if (t.window == window && t.id == id) {
                t.due = std::max(t.due + t.period, t.due + t.period > now ? 0 : now + t.period);
                t.number = m_number++;
            }
    }
    const TimerSchedule::Timer *First() const {
        const auto first = std::min_element(m_timers.begin(), m_timers.end(), [](const auto &a, const auto &b) {
            return a.due != b.due ? a.due < b.due : a.number < b.number;
        });
        return first != m_timers.end() ? &*first : nullptr;
    }

private:
    std::vector<TimerSchedule::Timer> m_timers;
    std::uint64_t m_number = 0;
};

TEST(TimerSchedule, RandomOperations_AsThePlainList) {
    std::mt19937 random(7);
    TimerSchedule schedule;
    PlainSchedule plain;
    std::int64_t now = 0;
    for (int i = 0; i < 20000; ++i) {
        const zr_window window = Window(random() % 4 + 1);
        const zr_value id = random() % 8;
        const auto period = static_cast<zr_long>(10 + random() % 30);
        now += static_cast<std::int64_t>(random() % 5) * millisecond;
        const unsigned action = random() % 16;
        if (action < 6) {
            EXPECT_TRUE(schedule.Start(window, id, period, now));
            plain.Start(window, id, period, now);
        } else if (action < 8) {
            EXPECT_EQ(schedule.Remove(window, id), plain.Remove(window, id));
        } else if (action < 9) {
            schedule.RemoveWindow(window);
            plain.RemoveWindow(window);
        } else {
            schedule.Repeat(window, id, now);
            plain.Repeat(window, id, now);
        }
        const auto *first = schedule.First();
        const auto *expected = plain.First();
        ASSERT_EQ(first == nullptr, expected == nullptr);
        if (first != nullptr) {
            ASSERT_EQ(first->due, expected->due);
            ASSERT_EQ(first->window, expected->window);
            ASSERT_EQ(first->id, expected->id);
        }
    }
}

} // namespace
