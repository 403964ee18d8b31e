// Re-entrant locks.
#include "platform/locks.h"

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using zr::platform::Lock;
using zr::platform::LockGuard;

constinit Lock static_lock; // needs no run-time initialisation

TEST(Locks, OneThreadEntersAgain) {
    Lock lock;
    lock.Create();
    for (int i = 0; i < 1000; ++i)
        lock.Enter();
    for (int i = 0; i < 1000; ++i)
        lock.Leave();
    bool entered = false;
    std::thread([&] {
        const LockGuard guard(lock);
        entered = true;
    }).join();
    EXPECT_TRUE(entered);
    lock.Delete();
}

TEST(Locks, OtherThreadsWaitUntilTheLastLeave) {
    static_lock.Create();
    static_lock.Enter();
    static_lock.Enter();
    std::atomic<bool> free{false}, entered_too_early{false};
    std::thread other([&] {
        const LockGuard guard(static_lock);
        entered_too_early = !free;
    });
    static_lock.Leave();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    free = true;
    static_lock.Leave();
    other.join();
    EXPECT_FALSE(entered_too_early);
    static_lock.Delete();
}

TEST(Locks, SumsOfManyThreadsAreWhole) {
    Lock lock;
    lock.Create();
    long sum = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int k = 0; k < 20000; ++k) {
                const LockGuard outer(lock);
                const LockGuard inner(lock);
                ++sum;
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(sum, 80000);
    lock.Delete();
}

TEST(Locks, LockThatIsNotMadeDoesNothing) {
    Lock lock;
    lock.Leave();
    lock.Enter();
    std::thread([&] { const LockGuard guard(lock); }).join(); // nobody waits
    lock.Delete();
    SUCCEED();
}

TEST(Locks, CanBeMadeAgain) {
    Lock lock;
    for (int i = 0; i < 3; ++i) {
        lock.Create();
        lock.Create();
        lock.Enter();
        lock.Leave();
        lock.Delete();
        lock.Delete();
    }
    SUCCEED();
}

} // namespace
