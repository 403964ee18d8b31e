// The env_ functions without memory: what is told, what the result is, that nothing leaks, and that the tree stays sound.
// Every allocation of the program goes through the counters below.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "env/node_store.h"
#include "function_fixture.h"
#include "platform/services.h"

namespace {

bool limited = false;      // the limit holds
std::size_t remaining = 0; // so many blocks are still given
bool refused = false;      // and this one was not
long long blocks = 0;      // given and not yet back

void *Allocate(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) noexcept {
    if (limited && remaining == 0) {
        refused = true;
        return nullptr;
    }
    if (limited)
        --remaining;
    // In front of the block lies the address of the memory that it is a part of.
    void *memory = std::malloc(size + alignment + sizeof(void *));
    if (!memory)
        return nullptr;
    const auto first = reinterpret_cast<std::uintptr_t>(memory) + sizeof(void *);
    void **block = reinterpret_cast<void **>((first + alignment - 1) / alignment * alignment);
    block[-1] = memory;
    ++blocks;
    return block;
}

void *AllocateOrThrow(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) {
    void *block = Allocate(size, alignment);
    if (!block)
        throw std::bad_alloc();
    return block;
}

void Release(void *block) noexcept {
    if (!block)
        return;
    --blocks;
    std::free(static_cast<void **>(block)[-1]);
}

} // namespace

void *operator new(std::size_t size) {
    return AllocateOrThrow(size);
}
void *operator new[](std::size_t size) {
    return AllocateOrThrow(size);
}
void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    return Allocate(size);
}
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept {
    return Allocate(size);
}
void *operator new(std::size_t size, std::align_val_t alignment) {
    return AllocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void operator delete(void *block) noexcept {
    Release(block);
}
void operator delete[](void *block) noexcept {
    Release(block);
}
void operator delete(void *block, std::size_t) noexcept {
    Release(block);
}
void operator delete[](void *block, std::size_t) noexcept {
    Release(block);
}
void operator delete(void *block, const std::nothrow_t &) noexcept {
    Release(block);
}
void operator delete[](void *block, const std::nothrow_t &) noexcept {
    Release(block);
}
void operator delete(void *block, std::align_val_t) noexcept {
    Release(block);
}
void operator delete(void *block, std::size_t, std::align_val_t) noexcept {
    Release(block);
}

using namespace zr::test;

namespace {

const char *kModel = "[Model of a long name]\n"
                     "Title of a long name =Frame A\n"
                     "outer ={\nmiddle ={\ninner ={\na long name at the end =1\na long name at the end =2\n}\n}\n}\n"
                     "[Other]\nx =1\nblock ={\ny =2\n}\nvalue =3\n";
const char *kSection = "Model of a long name";
const char *kPath = "outer@middle@inner";
const char *kLeaf = "a long name at the end"; // searched for through all blocks

std::string told; // what zr_error says to the debugger

void Tell(const char *text) {
    const bool before = limited;
    limited = false;
    told += text;
    limited = before;
}

// A call with two environments of the model at hand, the second one being the default of none.
using Call = std::function<int(zr_env env, zr_env other)>;

struct Case {
    const char *function;
    const char *tag; // of the report; null where the tree below tells, or none is due
    int done;        // the result with enough memory
    int failure;     // and without
    Call call;
};

int Closed(zr_env env) {
    return env ? env_close(env, 0) + 1 : 0;
}

void Ignore(zr_env, const char *, const char *, void *) {}

// A report with the given tag about the lack of memory.
bool IsTold(const char *tag) {
    const std::size_t at = told.find(std::string("\"") + tag + "\" line ");
    return at != std::string::npos && told.compare(told.find('\n', at) + 1, 13, "Out of memory") == 0;
}

// Blocks that nobody has given back, without those that only wait for the next reading.
long long BlocksInUse() {
    Zr::CZrEnvNodeStore::DropSpareChunks();
    return blocks;
}

// Runs the case with 0, 1, 2, ... allocations until it needs no more.
void RunWithEveryLimit(const Case &rCase) {
    SCOPED_TRACE(rCase.function);
    bool anyTold = false;
    for (std::size_t count = 0;; ++count) {
        ASSERT_LT(count, 10000u);
        const long long before = BlocksInUse();
        {
            EnvHandle env(kModel, 3);
            EnvHandle other(kModel, 4);
            const std::string text = WrittenText(env);
            Zr::CZrEnvNodeStore::DropSpareChunks();
            told.clear();
            refused = false;
            remaining = count;
            limited = true;
            const int result = rCase.call(env, other);
            limited = false;
            const bool toldNow = rCase.tag && IsTold(rCase.tag);
            anyTold = anyTold || toldNow;
            EXPECT_TRUE(result == rCase.done || (refused && result == rCase.failure)) << result << " with " << count;
            EXPECT_TRUE(!toldNow || result == rCase.failure) << result << " with " << count;
            // What was there is still there, and all of it can be used.
            for (const zr_env each : {static_cast<zr_env>(env), static_cast<zr_env>(other)}) {
                EXPECT_EQ(ValueOf(each, "Other", "x"), "1");
                EXPECT_EQ(ValueOf(each, kSection, "outer@middle@inner@a long name at the end@2"), "2");
                EXPECT_EQ(env_put(each, kSection, "later@a@b", "y"), 0);
                EXPECT_EQ(ValueOf(each, kSection, "later@a@b"), "y");
                EXPECT_EQ(env_delete(each, kSection, "later"), 0);
            }
            if (!refused)
                count = SIZE_MAX - 1;
        }
        std::string().swap(told);
        EXPECT_EQ(BlocksInUse(), before) << "leak with " << count;
        if (count == SIZE_MAX - 1)
            break;
    }
    EXPECT_EQ(anyTold, rCase.tag != nullptr);
}

class EnvMemory : public testing::Test {
protected:
    EnvMemory() { zr::platform::services.debug_output = Tell; }
    ~EnvMemory() override {
        limited = false;
        zr::platform::services = {};
        std::string().swap(told);
    }
};

TEST_F(EnvMemory, CoreFunctionsReportAndGiveTheirErrorValue) {
    const char *name = nullptr;
    const Case cases[] = {
        {"env_open", nullptr, 1, 0, [](zr_env env, zr_env) { return Closed(env_open(1, env)); }},
        {"env_open_subenv", nullptr, 1, 0,
         [](zr_env env, zr_env) { return Closed(env_open_subenv(env, kSection, kPath, 1)); }},
        {"env_create_subenv", nullptr, 1, 0,
         [](zr_env env, zr_env) { return Closed(env_create_subenv(env, kSection, "new@of a long name indeed")); }},
        {"env_attach_as_last_default", "Env_core", 1, 0,
         [](zr_env env, zr_env other) {
             env_attach_as_last_default(env, other);
             return env_detach_default_chain(env) == other ? 1 : 0;
         }},
        {"env_exist", "Env_core", 1, 0, [](zr_env env, zr_env) { return env_exist(env, kSection, kLeaf, 0); }},
        {"env_exist_data", "Env_core", 1, 0,
         [](zr_env env, zr_env) { return env_exist_data(env, kSection, kLeaf, 0); }},
        {"env_exist_block", "Env_core", 1, 0,
         [](zr_env env, zr_env) { return env_exist_block(env, kSection, "inner", 0); }},
        {"env_check", "Env_core", -1, -10, [](zr_env env, zr_env) { return env_check(env, kSection, kLeaf, 0); }},
        {"env_count_path", "Env_core", 2, -10,
         [](zr_env env, zr_env) { return env_count_path(env, kSection, kLeaf, 0); }},
        {"env_count_elements", "Env_core", 2, -10,
         [](zr_env env, zr_env) { return env_count_elements(env, kSection, "inner", 0); }},
        {"env_get_core", "Env_core", -1, -10,
         [&name](zr_env env, zr_env) { return env_get_core(env, kSection, "inner", 0, 1, nullptr, &name, nullptr); }},
        {"env_rename", "Env_core", 0, -10,
         [](zr_env env, zr_env) { return env_rename(env, kSection, "Title of a long name", "x"); }},
        {"env_insert_before", "Env_core", 0, -10,
         [](zr_env env, zr_env) { return env_insert_before(env, kSection, "outer", "a new one of a long name"); }},
        {"env_insert_before, of a section", "Env_core", 0, -10,
         [](zr_env env, zr_env) { return env_insert_before(env, "Other", nullptr, "a new one of a long name"); }},
        {"env_traverse", "Env_core", 0, -10,
         [](zr_env env, zr_env) { return env_traverse(env, kSection, kPath, 1, Ignore, nullptr); }},
    };
    for (const Case &rCase : cases)
        RunWithEveryLimit(rCase);
}

TEST_F(EnvMemory, AccessFunctionsReportAndGiveTheirErrorValue) {
    char buffer[50];
    const Case cases[] = {
        {"env_get", "Env_pg", 3, -10, [&](zr_env env, zr_env) { return env_get(env, kSection, kLeaf, 0, 50, buffer); }},
        {"env_put", nullptr, 0, -10,
         [](zr_env env, zr_env) { return env_put(env, kSection, "new@of a long name indeed", "a new value"); }},
        {"env_put, in place of a block", "Env_pg", 0, -10,
         [](zr_env env, zr_env) { return env_put(env, "Other", "block", "a new value"); }},
        {"env_put, through a value", "Env_pg", 0, -10,
         [](zr_env env, zr_env) { return env_put(env, "Other", "value@a@b", "a new value"); }},
        {"env_put, through the root of a subenvironment", "Env_pg", 0, -10,
         [](zr_env env, zr_env) {
             const zr_env sub = env_open_subenv(env, "Other", "value", 1);
             const int result = sub ? env_put(sub, nullptr, "a@b", "a new value") : -10;
             env_close(sub, 0);
             return result;
         }},
        {"env_put, where names are in order already", "Env_pg", 0, -10,
         [](zr_env env, zr_env) {
             const int result = env_rename(env, "Other", "value", "v");
             return result ? result : env_put(env, "Other", "new@4@b", "a new value");
         }},
        {"env_get_pos", "Env_pg", -2, -10,
         [&](zr_env env, zr_env) {
             return env_get_pos(env, kSection, "middle", 0, 1, nullptr, 50, buffer, 0, nullptr);
         }},
        {"env_get_first_core", "Env_pg", -2, -10,
         [&](zr_env env, zr_env) {
             return env_get_first_core(env, kSection, "middle", 1, nullptr, 50, buffer, 0, nullptr) == -4
                        ? env_get_first_core(env, nullptr, nullptr, 1, nullptr, 50, buffer, 0, nullptr)
                        : env_get_first_core(env, kSection, "outer", 1, nullptr, 50, buffer, 0, nullptr);
         }},
    };
    for (const Case &rCase : cases)
        RunWithEveryLimit(rCase);
}

TEST_F(EnvMemory, IterationThatCannotStartIsNone) {
    EnvHandle env(kModel);
    char name[50] = "?";
    remaining = 0;
    limited = true;
    const int first = env_get_first(env, nullptr, nullptr, 1, nullptr, 50, name, 0, nullptr, 0);
    limited = false;
    EXPECT_EQ(first, -10);
    EXPECT_STREQ(name, "?");
    EXPECT_TRUE(IsTold("Env_pg"));
    EXPECT_EQ(env_get_next(env, 50, name, 0, nullptr, 0), -10);
    EXPECT_EQ(env_get_first(env, nullptr, nullptr, 1, nullptr, 50, name, 0, nullptr, 0), -2);
    EXPECT_EQ(env_get_next(env, 50, name, 0, nullptr, 0), -2);
}

TEST_F(EnvMemory, TypedFunctionsReportAndGiveTheirErrorValue) {
    zr_long number = 0;
    double real = 0;
    char buffer[50];
    const char *text = nullptr;
    const Case cases[] = {
        {"env_get_long", "Env_uti2", 3, -10,
         [&](zr_env env, zr_env) { return env_get_long(env, kSection, kLeaf, 0, &number); }},
        {"env_get_double", "Env_uti2", 3, -10,
         [&](zr_env env, zr_env) { return env_get_double(env, kSection, kLeaf, 0, &real); }},
        {"env_get_bin", "Env_uti2", 3, -10,
         [&](zr_env env, zr_env) {
             zr_long size = 50;
             return env_get_bin(env, kSection, kLeaf, 0, buffer, &size);
         }},
        {"env_get_longs", "Env_uti2", 3, -10,
         [&](zr_env env, zr_env) {
             zr_long count = 1;
             return env_get_longs(env, kSection, kLeaf, 0, &count, &number);
         }},
        {"env_get_doubles", "Env_uti2", 3, -10,
         [&](zr_env env, zr_env) {
             zr_long count = 1;
             return env_get_doubles(env, kSection, kLeaf, 0, &count, &real);
         }},
        {"env_get_strings", "Env_uti2", 3, -10,
         [&](zr_env env, zr_env) {
             zr_long count = 1;
             char *items[] = {buffer};
             return env_get_strings(env, kSection, kLeaf, 0, &count, 50, items);
         }},
        {"env_get_reference", "Env_uti2", 3, -10,
         [&](zr_env env, zr_env) { return env_get_reference(env, kSection, kLeaf, 0, &text); }},
        {"env_get_array_size", "Env_uti2", 0, -10,
         [&](zr_env env, zr_env) {
             zr_long count = 9;
             zr_long width = 9;
             const int result = env_get_array_size(env, kSection, kLeaf, 0, &count, &width);
             EXPECT_EQ(count, result == 0 ? 1 : 0);
             EXPECT_EQ(width, result == 0 ? 1 : 0);
             return result;
         }},
        {"env_data_length", "Env_uti2", 1, -10,
         [](zr_env env, zr_env) { return env_data_length(env, kSection, kLeaf, 0); }},
        {"env_put_long", nullptr, 0, -10,
         [](zr_env env, zr_env) { return env_put_long(env, kSection, "new@of a long name indeed", 5); }},
        {"env_put_long, in place of a block", "Env_uti2", 0, -10,
         [](zr_env env, zr_env) { return env_put_long(env, "Other", "block", 5); }},
        {"env_put_bin", nullptr, 0, -10,
         [](zr_env env, zr_env) { return env_put_bin(env, kSection, "new@of a long name indeed", "abc", 3); }},
        {"env_set_data_version", nullptr, 0, -10,
         [](zr_env env, zr_env) { return env_set_data_version(env, 1, 2, 3, 4); }},
        {"env_write_to_string", "Env_uti2", 1, 0,
         [](zr_env env, zr_env) {
             char *written = env_write_to_string(env);
             env_free_string(written);
             return written ? 1 : 0;
         }},
    };
    for (const Case &rCase : cases)
        RunWithEveryLimit(rCase);
}

TEST_F(EnvMemory, WalksReportAndGiveTheirErrorValue) {
    char names[200];
    const Case cases[] = {
        {"env_traverse_leafs", "Env_uti2", 0, -10,
         [](zr_env env, zr_env) { return env_traverse_leafs(env, Ignore, nullptr); }},
        {"env_sink", "Env_uti2", 0, -10, [](zr_env env, zr_env other) { return env_sink(env, other, 2); }},
        {"env_copy_block_to", "Env_uti2", 0, -10,
         [](zr_env env, zr_env other) { return env_copy_block_to(env, other, "New", "to@here", kSection, kPath, 0); }},
        {"env_list_elem_names", "Env_uti2", 0, -10,
         [&](zr_env env, zr_env) {
             std::strcpy(names, "kept");
             const int result = env_list_elem_names(env, kSection, nullptr, 1, ',', 200, names);
             EXPECT_STREQ(names, result == 0 ? "Title of a long name,outer," : "");
             return result;
         }},
    };
    for (const Case &rCase : cases)
        RunWithEveryLimit(rCase);
}

TEST_F(EnvMemory, ReadingReportsAndGivesItsErrorValue) {
    EnvHandle env(kModel);
    bool anyTold = false;
    for (std::size_t count = 0;; ++count) {
        told.clear();
        refused = false;
        remaining = count;
        limited = true;
        const int result = env_read_from_string(kModel, env);
        limited = false;
        if (!refused) {
            EXPECT_EQ(result, 0);
            break;
        }
        anyTold = anyTold || IsTold("Env_uti2");
        EXPECT_TRUE(result == -10 || result == 0) << result;
        EXPECT_EQ(IsTold("Env_uti2"), result == -10) << count;
    }
    EXPECT_TRUE(anyTold);
}

TEST_F(EnvMemory, EnvironmentThatCannotBeMadeIsNull) {
    remaining = 0;
    limited = true;
    const zr_env none = env_open(1, nullptr);
    limited = false;
    EXPECT_EQ(none, nullptr);
}

TEST_F(EnvMemory, CloseWithAllEndsTheWholeChain) {
    const long long before = BlocksInUse();
    const zr_env last = env_open(1, nullptr);
    const zr_env middle = env_open(2, last);
    const zr_env env = env_open(3, middle);
    EXPECT_EQ(env_read_from_string(kModel, last), 0);
    EXPECT_EQ(env_read_from_string(kModel, middle), 0);
    EXPECT_EQ(env_close(env, 1), 0);
    EXPECT_EQ(BlocksInUse(), before);
}

} // namespace
