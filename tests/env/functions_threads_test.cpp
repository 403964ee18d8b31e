// The lock of the env_ functions: threads on shared environments, and calls from within callbacks.
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "env/env_lock.h"
#include "function_fixture.h"

using namespace zr::test;

namespace {

void CountStep(zr_env, const char *, const char *, void *user) {
    ++*static_cast<int *>(user);
}

// Puts, reads, iterates and walks on one environment that others use at the same time; the number of wrong results.
int WorkOn(zr_env env, int thread, int rounds) {
    const std::string own = "own" + std::to_string(thread);
    int wrong = 0;
    for (int round = 0; round < rounds; ++round) {
        zr_long value = -1;
        wrong += env_put_long(env, "Shared", own.c_str(), round) != 0;
        wrong += env_get_long(env, "Shared", own.c_str(), 1, &value) < 0 || value != round;
        wrong += env_put(env, "Shared", ("block@" + own).c_str(), "x") != 0;
        wrong += env_exist(env, "Shared", ("block@" + own).c_str(), 1) != 1;
        wrong += env_check(env, "Shared", own.c_str(), 1) != -1;
        wrong += env_count_path(env, "Shared", own.c_str(), 1) != 1;

        const zr_env sub = env_open_subenv(env, "Shared", nullptr, 1);
        char name[40];
        char text[40];
        int seen = env_get_first_core(sub, nullptr, nullptr, 1, nullptr, 40, name, 40, text) < 0;
        while (env_get_next_core(sub, 40, name, 40, text) > -3)
            ++seen;
        wrong += seen < 2;
        wrong += env_close(sub, 0) != 0;

        int leafs = 0;
        wrong += env_traverse_leafs(env, CountStep, &leafs) != 0 || leafs < 2;
        char names[400];
        wrong += env_list_elem_names(env, "Shared", nullptr, 1, ',', 400, names) != 0;
        wrong += env_delete(env, "Shared", ("block@" + own).c_str()) != 0;
    }
    return wrong;
}

struct Outsider {
    zr_env env;
    std::thread thread;
    std::atomic<bool> done{false};
};

void StartOutsider(zr_env, const char *, const char *, void *user) {
    Outsider &outsider = *static_cast<Outsider *>(user);
    outsider.thread = std::thread([&outsider] {
        env_put(outsider.env, "S", "a", "late");
        outsider.done = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(outsider.done);
    EXPECT_EQ(ValueOf(outsider.env, "S", "a"), "1");
}

void Descend(zr_env sub, const char *section, const char *, void *user) {
    const auto call = reinterpret_cast<int (*)(zr_env, const char *)>(user);
    EXPECT_EQ(call(sub, section), 0);
}

} // namespace

TEST(EnvThreads, FourThreadsShareEnvironments) {
    EnvHandle deflt("[Shared]\nfar =1\n", 1);
    EnvHandle env("[Shared]\nnear =2\nblock ={\nfirst =3\n}\n", 2, deflt);
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&, i] { wrong += WorkOn(env, i, 200); });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(env_count_elements(env, "Shared", nullptr, 1), 6);
}

TEST(EnvThreads, SinksRunBesideEachOther) {
    EnvHandle source("[S]\na =1\nb ={\nx =2\ny =3\n}\n");
    EnvHandle shared;
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 100; ++round) {
                const zr_env own = env_open(0, nullptr);
                wrong += env_sink(own, source, 0) != 0;
                wrong += env_sink(shared, source, 2) != 0;
                wrong += env_copy_block_to(own, source, "T", nullptr, "S", "b", 1) != 0;
                wrong += ValueOf(own, "T", "y") != "3";
                wrong += env_close(own, 0) != 0;
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(WrittenText(shared), WrittenText(source));
}

TEST(EnvThreads, EnvironmentsOfTheirOwnAreReadAndWritten) {
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&, i] {
            for (int round = 0; round < 100; ++round) {
                const zr_env own = env_open(i, nullptr);
                wrong += env_read_from_string("[S]\na =1\nb ={\nx =2\n}\n", own) != 0;
                wrong += env_put_bin(own, "S", "bin", "abc", 3) != 0;
                wrong += env_delete(own, "S", "bin") != 0;
                wrong += WrittenText(own) != "[S]\n  a =1\n  b ={\n    x =2\n  }\n";
                wrong += env_close(own, 0) != 0;
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST(EnvLock, IsHeldThroughCallbacks) {
    EnvHandle env("[S]\na =1\n");
    Outsider outsider{env, {}, false};
    EXPECT_EQ(env_traverse(env, "S", nullptr, 1, StartOutsider, &outsider), 0);
    outsider.thread.join();
    EXPECT_TRUE(outsider.done);
    EXPECT_EQ(ValueOf(env, "S", "a"), "late");
}

TEST(EnvLock, CallbackMayCallBack) {
    EnvHandle env("[S]\na =1\nb ={\nx =2\n}\n");
    const auto call = +[](zr_env sub, const char *section) {
        int leafs = 0;
        env_traverse(sub, section, nullptr, 1, CountStep, &leafs);
        return env_put(sub, section, "new", "1") == 0 && leafs > 0 ? 0 : 1;
    };
    EXPECT_EQ(env_traverse(env, nullptr, nullptr, 1, Descend, reinterpret_cast<void *>(call)), 0);
    EXPECT_EQ(ValueOf(env, "S", "new"), "1");
}

TEST(EnvLock, IsReentrant) {
    EnvHandle env("[S]\na =1\n");
    const zr::env::SectionGuard outer;
    const zr::env::SectionGuard inner;
    EXPECT_EQ(ValueOf(env, "S", "a"), "1");
}
