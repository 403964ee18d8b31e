// The pump of a thread: on a clock that stands still until it is moved, and its descriptor.
#include <zrclb/timer.hpp>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include "env/refused_memory.h"
#include "message_time.h"
#include "platform/window_timers.h"

namespace {

constexpr std::int64_t millisecond = 1000000;

class PosixMessagePump : public testing::Test {
protected:
    void SetUp() override {
        zr::test::HoldTime();
        messages.clear();
        window = zrWindowCreate(Note, nullptr);
        ASSERT_NE(window, nullptr);
    }
    void TearDown() override {
        EXPECT_EQ(zrWindowDestroy(window), 1);
        zr::platform::services = zr::platform::Services();
    }

    static void Note(zr_window, unsigned, zr_value identifier, void *) { messages += static_cast<char>(identifier); }
    static void Start(char name, zr_long period) {
        EXPECT_EQ(zr::platform::StartWindowTimer(window, static_cast<zr_value>(name), period),
                  static_cast<zr_value>(name));
    }
    static std::string MessagesAt(std::int64_t time) {
        zr::test::message_clock = time;
        messages.clear();
        EXPECT_EQ(Yield_and_PeekMessage(), 0);
        return messages;
    }
    static bool CanBeRead(int descriptor, int wait = 0) {
        pollfd item{descriptor, POLLIN, 0};
        return poll(&item, 1, wait) == 1;
    }

    static inline zr_window window = nullptr;
    static inline std::string messages;
};

TEST_F(PosixMessagePump, Message_IsDueToTheNanosecond) {
    zr::test::message_clock = 0;
    Start('a', 10);
    EXPECT_EQ(zrPumpNextDue(), 10);
    EXPECT_EQ(MessagesAt(1), "");
    EXPECT_EQ(zrPumpNextDue(), 10); // rounded up
    EXPECT_EQ(MessagesAt(10 * millisecond - 1), "");
    EXPECT_EQ(zrPumpNextDue(), 1);
    zr::test::message_clock = 10 * millisecond;
    EXPECT_EQ(zrPumpNextDue(), 0);
    EXPECT_EQ(MessagesAt(10 * millisecond), "a");
}

TEST_F(PosixMessagePump, Messages_ComeInTheOrderOfTheirTimes) {
    zr::test::message_clock = 0;
    Start('c', 30);
    Start('a', 10);
    Start('b', 20);
    Start('A', 10);
    EXPECT_EQ(MessagesAt(30 * millisecond), "aAbc");
    EXPECT_EQ(MessagesAt(40 * millisecond), "aAb");
    EXPECT_EQ(MessagesAt(1000 * millisecond), "aAcb"); // those of 50 and 60 ms
}

// A function that takes longer than its period and pumps.
TEST_F(PosixMessagePump, Messages_EndlesslyInOneAnother) {
    static int depth, deepest, calls;
    depth = deepest = calls = 0;
    const auto slow = [](zr_window own, unsigned, zr_value identifier, void *) {
        deepest = std::max(deepest, ++depth);
        zr::test::PassTime(10);
        if (++calls == 1000) {
            EXPECT_TRUE(zr::platform::StopWindowTimer(own, identifier));
        }
        EXPECT_EQ(Yield_and_PeekMessage(), 0);
        --depth;
    };
    const zr_window own = zrWindowCreate(slow, nullptr);
    EXPECT_EQ(zr::platform::StartWindowTimer(own, 'a', 10), static_cast<zr_value>('a'));
    zr::test::PassTime(10);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    EXPECT_EQ(calls, 1000);
    EXPECT_EQ(deepest, zr::platform::pump_limit);
    EXPECT_EQ(depth, 0);
    EXPECT_EQ(zrWindowDestroy(own), 1);
    Start('b', 10); // and all is as before
    EXPECT_EQ(MessagesAt(zr::test::message_clock + 10 * millisecond), "b");
}

TEST_F(PosixMessagePump, Time_IsThatOfTheMonotonicClock) {
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_MONOTONIC, &time);
        return time.tv_sec * 1000 * millisecond + time.tv_nsec;
    };
    zr::platform::services = zr::platform::Services();
    const std::int64_t before = now();
    const std::int64_t time = zr::platform::SteadyNanoseconds();
    EXPECT_LE(before, time);
    EXPECT_LE(time, now());
}

TEST_F(PosixMessagePump, Threads_NoneOfItsOwn) {
    const auto threads = [] {
        const std::filesystem::directory_iterator tasks("/proc/self/task");
        return std::distance(begin(tasks), end(tasks));
    };
    EXPECT_EQ(zrWindowDestroy(window), 1);
    zr::platform::EndMessagePumps(); // as if the library had just been loaded
    const auto before = threads();
    EXPECT_GE(before, 1);
    window = zrWindowCreate(Note, nullptr);
    Start('a', 10);
    EXPECT_GE(zrPumpDescriptor(), 0);
    EXPECT_EQ(MessagesAt(zr::test::message_clock + 10 * millisecond), "a");
    EXPECT_EQ(threads(), before);
}

TEST_F(PosixMessagePump, LongestPeriod_FitsTheAnswer) {
    zr::test::message_clock = 0;
    Start('a', 2147483647);
    EXPECT_EQ(zrPumpNextDue(), 2147483647);
    EXPECT_EQ(MessagesAt(2147483646 * millisecond), "");
    EXPECT_EQ(MessagesAt(2147483647 * millisecond), "a");
}

TEST_F(PosixMessagePump, Descriptor_CanBeReadUntilTheMessageIsTaken) {
    zr::platform::services = zr::platform::Services();
    const int descriptor = zrPumpDescriptor();
    EXPECT_EQ(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    EXPECT_FALSE(CanBeRead(descriptor));
    Start('a', 10);
    EXPECT_FALSE(CanBeRead(descriptor));
    EXPECT_TRUE(CanBeRead(descriptor, 60000));
    EXPECT_EQ(zrPumpNextDue(), 0);
    EXPECT_TRUE(CanBeRead(descriptor));
    EXPECT_TRUE(zr::platform::PumpMessage());
    Start('a', 60000);
    EXPECT_FALSE(CanBeRead(descriptor, 30));
    Start('b', 10); // an earlier one
    EXPECT_TRUE(CanBeRead(descriptor, 60000));
    EXPECT_TRUE(zr::platform::StopWindowTimer(window, 'b'));
    EXPECT_FALSE(CanBeRead(descriptor));
    Start('b', 10);
    EXPECT_TRUE(CanBeRead(descriptor, 60000));
    EXPECT_EQ(zrWindowDestroy(window), 1);
    EXPECT_FALSE(CanBeRead(descriptor));
    window = zrWindowCreate(Note, nullptr);
}

TEST_F(PosixMessagePump, Descriptor_OfATimerThatIsDueAlready) {
    std::thread([] {
        const zr_window own = zrWindowCreate(Note, nullptr);
        zr::test::message_clock = 0;
        EXPECT_EQ(zr::platform::StartWindowTimer(own, 'a', 10), static_cast<zr_value>('a'));
        zr::test::message_clock = 50 * millisecond;
        const int descriptor = zrPumpDescriptor();
        EXPECT_TRUE(CanBeRead(descriptor, 60000));
        EXPECT_TRUE(zr::platform::PumpMessage());
        EXPECT_EQ(zrWindowDestroy(own), 1);
    }).join();
}

TEST_F(PosixMessagePump, Descriptor_ClosedAtTheEndOfTheThread) {
    int descriptor = -1;
    std::thread([&descriptor] {
        descriptor = zrPumpDescriptor();
        EXPECT_NE(fcntl(descriptor, F_GETFD), -1);
    }).join();
    EXPECT_NE(descriptor, -1);
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
}

TEST_F(PosixMessagePump, Descriptor_NoneLeft) {
    std::thread([] {
        rlimit before{};
        ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
        rlimit none = before;
        none.rlim_cur = 0;
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
        EXPECT_EQ(zrPumpDescriptor(), -1);
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
        EXPECT_GE(zrPumpDescriptor(), 0); // another try
    }).join();
}

TEST_F(PosixMessagePump, Window_OfAnotherThreadGetsNoTimer) {
    std::thread([] {
        EXPECT_EQ(zr::platform::StartWindowTimer(window, 'a', 10), 0u);
        const zr_window own = zrWindowCreate(Note, nullptr);
        EXPECT_EQ(zr::platform::StartWindowTimer(window, 'a', 10), 0u);
        EXPECT_FALSE(zr::platform::StopWindowTimer(window, 'a'));
        EXPECT_EQ(zrWindowDestroy(own), 1);
    }).join();
}

TEST_F(PosixMessagePump, Window_WithoutMemory) {
    int allocations = 0;
    std::thread([&allocations] { // with nothing of its own yet
        for (bool met = true; met; ++allocations) {
            const zr::test::NthAllocation refusal(allocations);
            const zr_window own = zrWindowCreate(Note, nullptr);
            met = refusal.Met();
            EXPECT_EQ(own == nullptr, met);
        }
    })
        .join();
    EXPECT_GE(allocations, 2);
}

TEST_F(PosixMessagePump, Timer_WithoutMemory) {
    int allocations = 0;
    for (bool met = true; met; ++allocations) {
        const zr::test::NthAllocation refusal(allocations);
        const zr_value id = zr::platform::StartWindowTimer(window, 5, 60000);
        met = refusal.Met();
        EXPECT_EQ(id, met ? 0U : 5U);
        EXPECT_EQ(zrPumpNextDue(), met ? -1 : 60000);
        EXPECT_EQ(zr::platform::StopWindowTimer(window, 5), !met);
    }
    EXPECT_EQ(allocations, 3); // two that were refused, and none
}

TEST_F(PosixMessagePump, Descriptor_WithoutMemory) {
    std::thread([] { // with nothing of its own yet
        const zr::test::NthAllocation refusal(0);
        EXPECT_EQ(zrPumpDescriptor(), -1);
        EXPECT_TRUE(refusal.Met());
        EXPECT_GE(zrPumpDescriptor(), 0); // another try
    })
        .join();
}

// The process has given out all of its keys for what belongs to threads.
TEST_F(PosixMessagePump, Threads_WithoutAKey) {
    EXPECT_EQ(zrWindowDestroy(window), 1);
    zr::platform::EndMessagePumps();
    std::vector<pthread_key_t> taken;
    for (pthread_key_t key; pthread_key_create(&key, nullptr) == 0;)
        taken.push_back(key);
    EXPECT_EQ(zrWindowCreate(Note, nullptr), nullptr);
    EXPECT_EQ(zrPumpDescriptor(), -1);
    EXPECT_EQ(zrPumpNextDue(), -1);
    EXPECT_EQ(Yield_and_PeekMessage(), 0);
    for (const pthread_key_t key : taken)
        pthread_key_delete(key);
    EXPECT_GE(taken.size(), 1U);
    window = zrWindowCreate(Note, nullptr);
    EXPECT_NE(window, nullptr);
}

TEST_F(PosixMessagePump, End_WindowsCanBeMadeAgain) {
    EXPECT_EQ(zrWindowDestroy(window), 1);
    const int descriptor = zrPumpDescriptor();
    zr::platform::EndMessagePumps();
    zr::platform::EndMessagePumps();
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
    EXPECT_EQ(zrPumpNextDue(), -1);
    EXPECT_FALSE(zr::platform::PumpMessage());
    EXPECT_FALSE(zr::platform::StopWindowTimer(window, 1));
    window = zrWindowCreate(Note, nullptr);
    EXPECT_NE(window, nullptr);
}

} // namespace
