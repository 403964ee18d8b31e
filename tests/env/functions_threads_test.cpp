// The lock of the env_ functions: threads on shared environments, and calls from within callbacks.
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <iterator>
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
        const int first = env_get_first_core(sub, nullptr, nullptr, 1, nullptr, 40, name, 40, text);
        int seen = first == -1 || first == -2;
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

TEST(EnvLock, FilesTextsAndDelimitersDoNotWaitForIt) {
    const TempFolder folder;
    const std::string file = folder.File("model.env");
    EnvHandle env("[S]\na =1\n");
    std::promise<std::vector<int>> promise;
    std::future<std::vector<int>> results = promise.get_future();
    std::thread outsider;
    bool inTime = false;
    {
        const zr::env::SectionGuard guard;
        outsider = std::thread([&] {
            std::vector<int> result = {
                env_write_file(file.c_str(), env),        env_write_file_ex(file.c_str(), env, 0),
                env_read_file(file.c_str(), env),         env_read_file_ex(file.c_str(), env, 0),
                env_read_from_string("[S]\na =2\n", env), env_read_from_string_ex("[S]\na =2\n", env, 0)};
            env_free_string(env_write_to_string(env));
            env_free_string(env_write_to_string_ex(env, 0));
            char path[10];
            result.push_back(env_put_bin(env, "S", "b", "x", 1));
            result.push_back(env_get_delimiter(env) == '@' && *env_get_str_delimiter(env) == '@');
            result.push_back(env_create_path(env, 10, path, "a", static_cast<const char *>(nullptr)));
            result.push_back(env_CheckSectionName("S"));
            promise.set_value(result);
        });
        inTime = results.wait_for(std::chrono::seconds(60)) == std::future_status::ready;
    }
    outsider.join();
    EXPECT_TRUE(inTime);
    EXPECT_EQ(results.get(), (std::vector<int>{1, 1, 0, 0, 0, 0, 0, 1, 0, 1}));
}

TEST(EnvLock, AllOtherCallsWaitForIt) {
    EnvHandle env("[S]\na =1\n");
    EnvHandle deflt;
    EnvHandle target;
    const zr_env e = env;
    char b[20][40];
    zr_long n[20] = {};
    double d[2] = {};
    const char *lent[3] = {};
    char *items[] = {b[0]};
    const char *texts[] = {"t"};
    const zr_long longs[] = {1};
    const double d2[] = {1};
    zr_long c[5] = {1, 1, 1, 1, 1};
    const std::function<void()> calls[] = {
        [&] { env_close(env_open(1, nullptr), 0); },
        [&] { env_close(env_open_subenv(e, "S", "a", 1), 0); },
        [&] { env_close(env_create_subenv(e, "S", "b"), 0); },
        [&] { env_attach_as_last_default(e, deflt); },
        [&] { env_detach_default_chain(target); },
        [&] { env_set_delimiter(target, '@'); },
        [&] { env_get_file_mtime(e); },
        [&] { env_get_error_position(e, &n[0], &n[1]); },
        [&] { env_get(e, "S", "a", 1, 40, b[1]); },
        [&] { env_get_string(e, "S", "a", 1, 40, b[2]); },
        [&] { env_get_bin(e, "S", "a", 1, b[3], &c[0]); },
        [&] { env_get_double(e, "S", "a", 1, &d[0]); },
        [&] { env_get_long(e, "S", "a", 1, &n[2]); },
        [&] { env_get_doubles(e, "S", "a", 1, &c[1], &d[1]); },
        [&] { env_get_longs(e, "S", "a", 1, &c[2], &n[3]); },
        [&] { env_get_strings(e, "S", "a", 1, &c[3], 40, items); },
        [&] { env_get_reference(e, "S", "a", 1, &lent[0]); },
        [&] { env_get_array_size(e, "S", "a", 1, &n[4], &n[5]); },
        [&] { env_data_length(e, "S", "a", 1); },
        [&] { env_exist(e, "S", "a", 1); },
        [&] { env_exist_data(e, "S", "a", 1); },
        [&] { env_exist_block(e, "S", "a", 1); },
        [&] { env_count_path(e, "S", "a", 1); },
        [&] { env_count_elements(e, "S", nullptr, 1); },
        [&] { env_check(e, "S", "a", 1); },
        [&] { env_put(e, "S", "p1", "1"); },
        [&] { env_put_string(e, "S", "p2", "1"); },
        [&] { env_put_double(e, "S", "p3", 1); },
        [&] { env_put_long(e, "S", "p4", 1); },
        [&] { env_put_doubles(e, "S", "p5", 1, d2); },
        [&] { env_put_longs(e, "S", "p6", 1, longs); },
        [&] { env_put_strings(e, "S", "p7", 1, texts); },
        [&] { env_rename(e, "S", "none", "n"); },
        [&] { env_delete(e, "S", "none"); },
        [&] { env_insert_before(e, "S", "a", "i"); },
        [&] { env_get_core(e, "S", nullptr, 1, 1, &n[6], &lent[1], &lent[2]); },
        [&] { env_get_pos(e, "S", nullptr, 1, 1, &n[7], 40, b[4], 40, b[5]); },
        [&] { env_get_first_core(e, "S", nullptr, 1, &n[8], 40, b[6], 40, b[7]); },
        [&] { env_get_next_core(e, 40, b[8], 40, b[9]); },
        [&] { env_get_first(e, "S", nullptr, 1, &n[9], 40, b[10], 40, b[11], 0); },
        [&] { env_get_next(e, 40, b[12], 40, b[13], 0); },
        [&] { env_traverse(e, "S", nullptr, 1, CountStep, &n[10]); },
        [&] { env_traverse_leafs(e, CountStep, &n[11]); },
        [&] { env_sink(target, deflt, 2); },
        [&] { env_copy_block(target, e, "S", nullptr, 2); },
        [&] { env_copy_block_to(target, e, "T", nullptr, "S", nullptr, 2); },
        [&] { env_list_elem_names(e, "S", nullptr, 1, ',', 40, b[14]); },
        [&] { env_set_data_version(e, 1, 2, 3, 4); },
        [&] { env_get_data_version(e, &n[12], &n[13], &n[14], &n[15]); },
    };
    std::atomic<int> started{0};
    std::atomic<int> done{0};
    std::vector<std::thread> threads;
    {
        const zr::env::SectionGuard guard;
        for (const auto &call : calls)
            threads.emplace_back([&] {
                ++started;
                call();
                ++done;
            });
        while (started != static_cast<int>(std::size(calls)))
            std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        EXPECT_EQ(done, 0);
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(done, static_cast<int>(std::size(calls)));
    EXPECT_EQ(env_detach_default_chain(env), static_cast<zr_env>(deflt));
}

TEST(EnvLock, IsReentrant) {
    EnvHandle env("[S]\na =1\n");
    const zr::env::SectionGuard outer;
    const zr::env::SectionGuard inner;
    EXPECT_EQ(ValueOf(env, "S", "a"), "1");
}
