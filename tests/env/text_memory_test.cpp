// Reading and writing with little memory and none: what is told, what the result is, and that nothing leaks. Every
// allocation of the program goes through the counters below.
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>

#include "env/node_store.h"
#include "env/reference_reader.h"
#include "env/text_support.h"

namespace {

bool limited = false;           // the two limits hold
std::size_t largest = 0;        // larger blocks are refused,
std::size_t largestRefused = 0; // unless they are still larger than this
std::size_t remaining = 0;      // so many blocks are still given
long long blocks = 0;           // given and not yet back

void *Allocate(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) noexcept {
    if (limited && ((size > largest && size <= largestRefused) || remaining == 0))
        return nullptr;
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

namespace text_test {
namespace {

constexpr std::size_t NoLimit = SIZE_MAX;

std::string told; // the texts of all errors, each with "|" in front

void Tell(const char *text) {
    const bool before = limited;
    limited = false;
    if (std::string(text) != "\n\n" && !std::string(text).starts_with("ZR_ERROR in "))
        told += std::string("|") + text;
    limited = before;
}

class TextMemory : public TextTest {
protected:
    TextMemory() { zr::platform::services.debug_output = Tell; }
    ~TextMemory() override {
        limited = false;
        zr::platform::services = {};
        told.clear();
    }

    // Runs the call without blocks of more than `size`, and with at most `count` of the others. Blocks beyond `upTo`
    // aren't refused. False if std::bad_alloc came out.
    template <class Call>
    static bool With(std::size_t size, std::size_t count, Call call, std::size_t upTo = NoLimit) {
        told.clear();
        largest = size;
        largestRefused = upTo;
        remaining = count;
        limited = true;
        bool ended = true;
        try {
            call();
        } catch (const std::bad_alloc &) {
            ended = false;
        }
        limited = false;
        return ended;
    }
};

// Blocks that nobody has given back, without those that only wait for the next reading.
long long BlocksInUse() {
    Zr::CZrEnvNodeStore::DropSpareChunks();
    return blocks;
}

const std::string outOfMemory = "|CZrEnvReader::AccumulateString : Out of memory|";

TEST_F(TextMemory, TextThatCannotGrowIsCutAndReadingGoesOn) {
    Zr::EZrEnvError result = Zr::ENV_ERROR;
    const std::string large(70000, 'a');
    const std::string longer = "[A]\nx=" + large + "\\\n" + large + "\ny=1\nz=" + large + "\\\n" + large + "\n";
    ASSERT_TRUE(With(65536, NoLimit, [&] { result = env->ReadString(longer.c_str(), eEnvReadWrapped); }));
    EXPECT_EQ(result, Zr::ENV_OK);
    EXPECT_EQ(told, outOfMemory + outOfMemory) << "once for each text";
    const std::string cut(65535, 'a');
    EXPECT_TRUE(TreeOf(*env) == (Tree{Section("A", {Data("x", cut), Data("y", "1"), Data("z", cut)})}));
}

TEST_F(TextMemory, EveryAllocationOfAReadingMayFail) {
    std::string text = "[A]\nx=1\ny={\nname\\\nfolded=" + std::string(9000, 'v') +
                       "\\\n2\nz=" + std::string(3000, 'w') + "\nm=a<<\\n>>b\n}\n[B]\n" + std::string(3000, 'n') +
                       "={\n}\n";
    for (int i = 0; i < 3000; ++i)
        text += "leaf =" + std::to_string(i) + "\n";
    const ReferenceReader whole(text, false, eEnvReadAuto, "");
    WriteBytes(Path("a.env"), text);
    const std::string path = Path("a.env");
    for (const bool asFile : {false, true}) {
        std::size_t failures = 0;
        for (std::size_t count = 0;; ++count) {
            env->DeleteEnvironmentSections();
            const long long before = BlocksInUse();
            Zr::EZrEnvError result = Zr::ENV_ERROR;
            const bool ended = With(NoLimit, count, [&] {
                result =
                    asFile ? env->ReadFile(path.c_str(), eEnvReadAuto) : env->ReadString(text.c_str(), eEnvReadAuto);
            });
            const bool untouched = remaining != 0;
            zr_long line = 0, column = 0;
            EXPECT_EQ(env->GetErrorPosition(line, column), ended && result == 0 ? Zr::ENV_NOT_FOUND : Zr::ENV_OK);
            if (untouched) {
                EXPECT_TRUE(ended);
                EXPECT_TRUE(TreeOf(*env) == whole.sections);
                break;
            }
            failures += ended ? 0 : 1;
            env->DeleteEnvironmentSections();
            ASSERT_EQ(BlocksInUse() - before, 0) << count;
        }
        EXPECT_GE(failures, 5u);
    }
}

TEST_F(TextMemory, SmallerBlockReadsTheSame) {
    std::string text = "[A]\n";
    for (int i = 0; i < 5000; ++i)
        text += "leaf =" + std::to_string(i) + "\n";
    WriteBytes(Path("a.env"), text);
    const std::string path = Path("a.env");
    ASSERT_EQ(env->ReadFile(path.c_str(), eEnvReadAuto), Zr::ENV_OK);
    const Tree tree = TreeOf(*env);

    Zr::EZrEnvError result = Zr::ENV_ERROR;
    const auto read = [&] { result = env->ReadFile(path.c_str(), eEnvReadAuto); };
    ASSERT_TRUE(With(15001, NoLimit, read, 30000)); // half of the block and one more is given
    EXPECT_EQ(result, Zr::ENV_OK);
    EXPECT_TRUE(TreeOf(*env) == tree);
    EXPECT_FALSE(With(8192, 0, read));
    EXPECT_TRUE(TreeOf(*env) == tree) << "nothing was touched yet";
}

TEST_F(TextMemory, StringThatCannotGrowIsCutAndToldOnce) {
    Zr::CZrEnvSection *section = env->InsertSection("A");
    section->InsertElement(new Zr::CZrEnvDataElement("x", std::string(200000, 'v').c_str()));
    const std::string whole = Written(false);
    for (const std::size_t size : {std::size_t{65536}, std::size_t{131072}, std::size_t{40000}}) {
        const std::size_t capacity = size == 40000 ? 32769 : size; // half of 65536 and one more
        char *text = nullptr;
        ASSERT_TRUE(With(size, NoLimit, [&] { text = env->WriteString(false); }));
        EXPECT_EQ(told, "|Can not allocate buffer");
        EXPECT_TRUE(text == whole.substr(0, capacity - 1)) << size;
        Zr::CZrEnv::FreeString(text);
    }
}

TEST_F(TextMemory, FileIsWrittenThroughASmallBuffer) {
    Zr::CZrEnvSection *section = env->InsertSection("A");
    for (int i = 0; i < 3000; ++i)
        section->InsertElement(new Zr::CZrEnvDataElement("x", std::string(50, 'v').c_str()));
    const std::string whole = Written(true);
    const std::string path = Path("w.env");
    zr::platform::services.open_text = [](const char *name,
                                          const char *mode) { // the stream's own memory is no matter here
        limited = false;
        std::FILE *stream = zr::platform::backend::OpenText(name, mode);
        limited = true;
        return stream;
    };
    bool done = false;
    for (const std::size_t size : {40000u, 300u}) {
        ASSERT_TRUE(With(size, NoLimit, [&] { done = env->WriteFile(path.c_str(), true); }));
        EXPECT_TRUE(done);
        EXPECT_TRUE(ReadBytes(path) == whole) << size;
    }
    EXPECT_EQ(told, "");
}

TEST_F(TextMemory, ChunksWaitForTheNextReading) {
    std::string text = "[A]\n";
    for (int i = 0; i < 5000; ++i)
        text += "x" + std::to_string(i) + "=1\n";
    const long long before = BlocksInUse();
    ASSERT_EQ(env->ReadString(text.c_str(), eEnvReadAuto), Zr::ENV_OK);
    const long long whileRead = blocks;
    env->DeleteEnvironmentSections();
    const long long kept = blocks - before;
    EXPECT_GE(kept, 4) << "64 KB each for 5000 leaves of 36 bytes or more, and one for the section";
    ASSERT_EQ(env->ReadString(text.c_str(), eEnvReadAuto), Zr::ENV_OK);
    EXPECT_EQ(blocks, whileRead) << "the same chunks again";
    env->DeleteEnvironmentSections();
    EXPECT_EQ(blocks - before, kept);
    EXPECT_EQ(BlocksInUse(), before);
}

TEST_F(TextMemory, NoMoreThanEightMegabytesWait) {
    std::string text = "[A]\n";
    for (int i = 0; i < 400000; ++i)
        text += "x=1\n";
    const long long before = BlocksInUse();
    ASSERT_EQ(env->ReadString(text.c_str(), eEnvReadAuto), Zr::ENV_OK);
    EXPECT_GT(blocks - before, 128);
    env->DeleteEnvironmentSections();
    EXPECT_EQ(blocks - before, 128);
    EXPECT_EQ(BlocksInUse(), before);
}

TEST_F(TextMemory, WritingWithoutMemoryLeaksNothing) {
    Zr::CZrEnvSection *section = env->InsertSection("A");
    section->InsertElement(new Zr::CZrEnvBlock("b"));
    const std::string path = Path("w.env");
    for (const std::size_t count : {0u, 1u}) {
        const long long before = BlocksInUse();
        char *text = nullptr;
        EXPECT_FALSE(With(NoLimit, count, [&] { text = env->WriteString(false); })) << count;
        EXPECT_EQ(text, nullptr);
        With(NoLimit, count, [&] { env->WriteFile(path.c_str(), false); }); // opening may have failed already
        EXPECT_EQ(BlocksInUse() - before, 0);
    }
    EXPECT_EQ(Written(true), "[A]\r\n  b ={\r\n  }\r\n");
}

} // namespace
} // namespace text_test
