// The lock of the env_ functions: threads on shared environments, and calls from within callbacks.
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <future>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "env/env_lock.h"
#include "env/tree_check.h"
#include "function_fixture.h"

using namespace zr::test;

namespace {

void CountStep(zr_env, const char *, const char *, void *user) {
    ++*static_cast<int *>(user);
}

// Eight threads on one chain of environments. What each writes is a function of its number and of how often it wrote, so
// that all of it can be done again by one thread:
//
//   own blocks   each thread changes its own blocks as it likes, in front and in the default; done again thread by thread
//   contended    in a callback, thus under the lock, one block is changed by all, and the order noted; done again in it
//   counter      in a callback, read and written back larger; must have counted all
//   last         written by all without more ado; a reader must not see a thread's writes in the wrong order
class Chain {
public:
    static constexpr int Threads = 8;

    struct Turn {
        int thread;
        std::uint32_t step;
        bool operator==(const Turn &) const = default;
    };

    // The steps that threads have taken, and what came out.
    struct Record {
        std::uint32_t steps = 0;
        std::uint64_t results = 0; // all of them, mixed
        std::uint32_t counted = 0;
        std::uint32_t wrong = 0;    // readings that cannot be
        zr_long seen[Threads] = {}; // the latest step of each thread that was found in `last`
    };

    Chain() {
        const std::string text =
            "[Stable]\ntree ={\nfirst =1\nsecond =2\ninner ={\nthird =3\n}\n}\n[Shared]\ncounter =0\n";
        std::string own;
        for (int thread = 0; thread < Threads; ++thread)
            own += "own" + std::to_string(thread) + " ={\nkept =1\n}\n";
        EXPECT_EQ(env_read_from_string((text + own + "contended ={\nkept =1\n}\n").c_str(), m_env), 0);
        EXPECT_EQ(env_read_from_string(("[Far]\nfar =7\n[Stable]\nfar =8\n[Back]\n" + own).c_str(), m_default), 0);
        m_sub = env_open_subenv(m_env, "Shared", nullptr, 1);
        m_back_sub = env_open_subenv(m_default, "Back", nullptr, 1);
    }
    Chain(const Chain &) = delete;
    Chain &operator=(const Chain &) = delete;
    ~Chain() {
        EXPECT_EQ(env_close(m_sub, 0), 0);
        EXPECT_EQ(env_close(m_back_sub, 0), 0);
    }

    // One thread's work until it is told to end, or for so many steps.
    void Work(int thread, std::uint32_t steps, const std::atomic<bool> &end, std::atomic<std::uint64_t> &progress) {
        Record record;
        for (; record.steps < steps && !end; ++record.steps, ++progress) {
            ChangeOwn(thread, record.steps, record.results);
            if (record.steps % 4 == 0)
                ChangeContended({thread, record.steps});
            if (record.steps % 4 == 1)
                Count(record);
            WriteAndReadLast(thread, record);
            Read(thread, record);
            if (record.steps % 8 == 2)
                UseDefault(record);
            if (record.steps % 16 == 3)
                Walk(record);
        }
        m_records[thread] = record;
    }

    // Does again what the threads of another chain did.
    void Replay(const Chain &other) {
        for (int thread = 0; thread < Threads; ++thread) {
            Record record;
            for (; record.steps < other.m_records[thread].steps; ++record.steps)
                ChangeOwn(thread, record.steps, record.results);
            m_records[thread] = record;
        }
        for (const Turn &turn : other.m_turns)
            ChangeContended(turn);
        zr_long last = 0;
        EXPECT_EQ(env_get_long(other.m_env, "Shared", "last", 1, &last), 1);
        EXPECT_EQ(env_put_long(m_env, "Shared", "last", last), 0);
        EXPECT_EQ(env_put_long(m_env, "Shared", "counter", other.Counter()), 0);
    }

    void ExpectEqual(const Chain &other) const {
        for (int thread = 0; thread < Threads; ++thread) {
            EXPECT_EQ(m_records[thread].results, other.m_records[thread].results) << thread;
            EXPECT_EQ(other.m_records[thread].wrong, 0u) << thread;
        }
        EXPECT_TRUE(m_turns == other.m_turns);
        EXPECT_EQ(WrittenText(m_env), WrittenText(other.m_env));
        EXPECT_EQ(WrittenText(m_default), WrittenText(other.m_default));
    }

    const EnvHandle &Env() const { return m_env; }
    const EnvHandle &Default() const { return m_default; }
    std::uint64_t Steps() const {
        std::uint64_t steps = 0;
        for (const Record &record : m_records)
            steps += record.steps;
        return steps;
    }
    std::uint64_t Counted() const {
        std::uint64_t counted = 0;
        for (const Record &record : m_records)
            counted += record.counted;
        return counted;
    }
    // Who wrote `last`, and when.
    Turn Last() const {
        zr_long last = 0;
        EXPECT_EQ(env_get_long(m_sub, nullptr, "last", 1, &last), 1);
        last += Threads / 2 * PerThread;
        return {last / PerThread & (Threads - 1), static_cast<std::uint32_t>(last % PerThread)};
    }
    std::uint32_t StepsOf(int thread) const { return m_records[thread].steps; }

    zr_long Counter() const {
        zr_long counter = -1;
        env_get_long(m_env, "Shared", "counter", 1, &counter);
        return counter;
    }

private:
    static constexpr zr_long PerThread = 1 << 28;

    static std::uint32_t Mixed(int thread, std::uint32_t step) {
        std::uint32_t mixed = step * 2654435761u + static_cast<std::uint32_t>(thread) * 40503u + 1;
        mixed ^= mixed >> 15;
        mixed *= 2246822519u;
        return mixed ^ mixed >> 13;
    }

    // A section that threads change, by way of its environment or of a view of it.
    struct Place {
        zr_env env;
        zr_env sub;
        const char *section;
    };

    // A change in a block of the section, of a few names.
    int Change(const Place &place, const std::string &block, std::uint32_t random) {
        const zr_env env = random & 1 ? place.env : place.sub;
        const char *section = place.section;
        const std::string key = block + "@k" + std::to_string(random >> 1 & 3);
        const std::string inner = block + "@b@k" + std::to_string(random >> 3 & 3);
        const double numbers[] = {1.5, 2.5, static_cast<double>(random & 0xFF)};
        switch (random >> 8 & 7) {
        case 0:
            return env_put_long(env, section, key.c_str(), static_cast<zr_long>(random & 0xFFFF));
        case 1:
            return env_put(env, section, inner.c_str(), std::string(random & 63, 'v').c_str());
        case 2: {
            int deleted = 0; // all of that name, so that the block does not grow
            while (env_delete(env, section, key.c_str()) == 0)
                ++deleted;
            return deleted;
        }
        case 3:
            return env_rename(env, section, inner.c_str(), "k1");
        case 4:
            return env_put_doubles(env, section, inner.c_str(), 3, numbers);
        case 5:
            return env_insert_before(env, section, (block + "@kept").c_str(), "k2");
        case 6:
            return env_copy_block_to(env, m_env, section, (block + "@copy").c_str(), "Stable", "tree", 2);
        default: {
            const int result = env_delete(env, section, (block + "@b").c_str());
            const zr_env sub = env_create_subenv(env, section, inner.c_str());
            return result * 100 + env_put(sub, nullptr, "x", "1") * 10 + env_close(sub, 0);
        }
        }
    }

    void ChangeOwn(int thread, std::uint32_t step, std::uint64_t &results) {
        const Place front{m_env, m_sub, "Shared"};
        const Place back{m_default, m_back_sub, "Back"};
        const int result = Change(step % 4 == 2 ? back : front, "own" + std::to_string(thread), Mixed(thread, step));
        results = results * 31 + static_cast<std::uint64_t>(static_cast<std::int64_t>(result));
    }

    // Under the lock while callback runs; for one child.
    template <class Callback>
    void InCallback(Callback callback) {
        const auto call = [](zr_env, const char *, const char *, void *user) { (*static_cast<Callback *>(user))(); };
        env_traverse(m_env, "Stable", nullptr, 1, call, &callback);
    }

    void ChangeContended(Turn turn) {
        InCallback([&] {
            Change({m_env, m_sub, "Shared"}, "contended", Mixed(turn.thread + Threads, turn.step));
            m_turns.push_back(turn);
        });
    }

    void Count(Record &record) {
        InCallback([&] {
            zr_long counter = -1;
            record.wrong += env_get_long(m_env, "Shared", "counter", 1, &counter) != 1;
            record.wrong += env_put_long(m_env, "Shared", "counter", counter + 1) != 0;
            ++record.counted;
        });
    }

    void WriteAndReadLast(int thread, Record &record) {
        const auto step = static_cast<zr_long>(record.steps);
        record.wrong += env_put_long(m_env, "Shared", "last", (thread - Threads / 2) * PerThread + step) != 0;
        const Turn last = Last();
        zr_long &rSeen = record.seen[last.thread];
        record.wrong += static_cast<zr_long>(last.step) < rSeen;
        rSeen = static_cast<zr_long>(last.step);
        record.wrong += last.thread == thread && rSeen != step;
    }

    void Read(int thread, Record &record) const {
        const std::string own = "own" + std::to_string(thread);
        zr_long value = 0;
        record.wrong += env_get_long(m_env, "Shared", (own + "@kept").c_str(), 1, &value) != 1 || value != 1;
        record.wrong += env_get_long(m_env, "Back", (own + "@kept").c_str(), 1, &value) != 2 || value != 1;
        record.wrong += env_check(m_sub, nullptr, own.c_str(), 1) != -2;
        record.wrong += env_count_path(m_env, "Shared", own.c_str(), 1) != 1;
        record.wrong += env_count_elements(m_env, "Stable", "tree", 1) != 3;
        char names[200];
        record.wrong += env_list_elem_names(m_env, "Stable", "tree", 1, ',', sizeof names, names) != 0 ||
                        std::string(names) != "first,second,inner,";

        const zr_env tree = env_open_subenv(m_env, "Stable", "tree", 1);
        char name[40];
        char text[40];
        int seen = 0;
        for (int kind = env_get_first_core(tree, nullptr, nullptr, 1, nullptr, 40, name, 40, text); kind > -3; ++seen)
            kind = env_get_next_core(tree, 40, name, 40, text);
        record.wrong += seen != 3;
        record.wrong += env_close(tree, 0) != 0;
    }

    // Through the chain, and through a chain of its own for a moment.
    void UseDefault(Record &record) const {
        zr_long value = 0;
        record.wrong += env_get_long(m_env, "Far", "far", 1, &value) != 2 || value != 7;
        const zr_env own = env_open(3, nullptr);
        env_attach_as_last_default(own, m_default);
        record.wrong += env_get_long(own, "Far", "far", 1, &value) != 2;
        record.wrong += env_detach_default_chain(own) != static_cast<zr_env>(m_default);
        const int sunk = env_sink(own, m_default, 2); // ends at an element that has no value yet
        record.wrong += (sunk != 0 && sunk != -10) || ValueOf(own, "Far", "far") != "7";
        record.wrong += env_close(own, 0) != 0;
    }

    // A walk ends at a name that is not found since another one was renamed; the leaves in front of that come always.
    void Walk(Record &record) const {
        int leaves = 0;
        int result = env_traverse_leafs(m_env, ReadLeaf, &leaves);
        record.wrong += (result != 0 && result != -10) || leaves < (result == 0 ? Threads + 3 : 3);
        leaves = 0;
        result = env_traverse_leafs(m_sub, ReadLeaf, &leaves);
        record.wrong += (result != 0 && result != -10) || leaves < (result == 0 ? Threads : 1);
        leaves = 0;
        record.wrong += env_traverse(m_env, "Stable", "tree", 1, CountStep, &leaves) != 0 || leaves != 3;
    }

    static void ReadLeaf(zr_env sub, const char *, const char *, void *user) {
        const char *text = nullptr;
        *static_cast<int *>(user) +=
            env_check(sub, nullptr, nullptr, 1) == -1 && env_get_reference(sub, nullptr, nullptr, 1, &text) >= 0;
    }

    EnvHandle m_default{"", 2};
    EnvHandle m_env{"", 1, m_default};
    zr_env m_sub = nullptr;
    zr_env m_back_sub = nullptr;
    std::vector<Turn> m_turns; // guarded by nothing but the lock
    Record m_records[Threads];
};

// Waits until the threads have ended; tells and gives up the process if they come to a stop.
void Watch(const std::atomic<int> &running, const std::atomic<std::uint64_t> &progress, std::atomic<bool> &end,
           std::chrono::seconds most) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    auto moved = start;
    std::uint64_t seen = 0;
    while (running != 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        const auto now = Clock::now();
        if (now - start > most)
            end = true;
        if (progress != seen) {
            seen = progress;
            moved = now;
        } else if (now - moved > std::chrono::seconds(60)) {
            std::fputs("the threads have come to a stop\n", stderr);
            std::abort();
        }
    }
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

// ZR_TEST_LONG makes it a minute.
TEST(EnvThreads, EightThreadsOnOneChain_EqualAReplay) {
    const bool isLong = std::getenv("ZR_TEST_LONG") != nullptr;
    const std::uint32_t steps = isLong ? 1u << 28 : 300;
    Chain chain;
    std::atomic<int> running = Chain::Threads;
    std::atomic<std::uint64_t> progress = 0;
    std::atomic<bool> end = false;
    std::vector<std::thread> threads;
    for (int i = 0; i < Chain::Threads; ++i)
        threads.emplace_back([&, i] {
            chain.Work(i, steps, end, progress);
            --running;
        });
    Watch(running, progress, end, isLong ? std::chrono::seconds(60) : std::chrono::hours(1));
    for (std::thread &thread : threads)
        thread.join();

    RecordProperty("steps", std::to_string(chain.Steps()));
    using Check = Zr::CZrEnvTreeCheck; // knows what renames leave behind
    for (const EnvHandle *env : {&chain.Env(), &chain.Default()})
        EXPECT_EQ(Check::OfEnvironment(*env->operator->(), Check::Indexes::Build).what, "");
    EXPECT_GE(chain.Steps(), Chain::Threads * std::uint64_t{300});
    EXPECT_EQ(chain.Last().step + 1, chain.StepsOf(chain.Last().thread));
    EXPECT_EQ(chain.Counter(), static_cast<zr_long>(chain.Counted()));
    Chain replay;
    replay.Replay(chain);
    replay.ExpectEqual(chain);
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
