// Reading and writing with little memory and none: what is told, what the result is, and that nothing leaks. Every
// allocation of the program goes through the counters below.
#include <climits>
#include <cstdint>
#include <string>

#include "env/chunks.h"
#include "env/reference_reader.h"
#include "env/refused_memory.h"
#include "env/text_support.h"
#include "env/tree_check.h"

namespace text_test {
namespace {

using zr::test::MemoryBalance;
using zr::test::NthAllocation;
using zr::test::Refusal;
using zr::test::Unrefused;

std::string told; // the texts of all errors, each with "|" in front

void Tell(const char *text) {
    const Unrefused unrefused;
    if (std::string(text) != "\n\n" && !std::string(text).starts_with("ZR_ERROR in "))
        told += std::string("|") + text;
}

class TextMemory : public TextTest {
protected:
    TextMemory() {
        told.reserve(1000); // no test counts its memory
        zr::platform::services.debug_output = Tell;
    }
    ~TextMemory() override {
        zr::platform::services = {};
        told.clear();
    }

    // Runs the call, and gives false if std::bad_alloc came out.
    template <class Call>
    static bool Ends(Call call) {
        told.clear();
        try {
            call();
        } catch (const std::bad_alloc &) {
            return false;
        }
        return true;
    }

    // The same without blocks of more than `size` bytes, up to `upTo`.
    template <class Call>
    static bool WithSmallBlocks(std::size_t size, Call call, std::size_t upTo = SIZE_MAX) {
        const Refusal refusal(size + 1, upTo, INT_MAX);
        return Ends(call);
    }
};

void ExpectSound(const Zr::CZrEnv &env) {
    EXPECT_EQ(Zr::CZrEnvTreeCheck::OfEnvironment(env, Zr::CZrEnvTreeCheck::Indexes::Build).what, "");
}

const std::string outOfMemory = "|CZrEnvReader::AccumulateString : Out of memory|";

TEST_F(TextMemory, TextThatCannotGrowIsCutAndReadingGoesOn) {
    Zr::EZrEnvError result = Zr::ENV_ERROR;
    const std::string large(70000, 'a');
    const std::string longer = "[A]\nx=" + large + "\\\n" + large + "\ny=1<<\\n>>2\nz=" + large + "\\\n" + large + "\n";
    ASSERT_TRUE(WithSmallBlocks(65536, [&] { result = env->ReadString(longer.c_str(), eEnvReadWrapped); }));
    EXPECT_EQ(result, Zr::ENV_OK);
    EXPECT_EQ(told, outOfMemory + outOfMemory) << "once for each text";
    const std::string cut(65535, 'a');
    EXPECT_TRUE(TreeOf(*env) == (Tree{Section("A", {Data("x", cut), Data("y", "1\n2"), Data("z", cut)})}));
}

TEST_F(TextMemory, EveryAllocationOfAReadingMayFail) {
    std::string text = "[A]\nx=1\ny={\nname\\\nfolded=" + std::string(9000, 'v') +
                       "\\\n2\nz=" + std::string(3000, 'w') + "\n" + std::string(3000, 'q') + "=" +
                       std::string(3000, 'r') + "\nm=a<<\\n>>b\n}\n[B]\n" + std::string(3000, 'n') + "={\n}\n";
    for (int i = 0; i < 3000; ++i)
        text += "leaf =" + std::to_string(i) + "\n";
    const ReferenceReader whole(text, false, eEnvReadAuto, "");
    WriteBytes(Path("a.env"), text);
    const std::string path = Path("a.env");
    for (const bool asFile : {false, true})
        for (const bool lasting : {false, true}) {
            int failures = 0;
            Zr::EZrEnvError result = Zr::ENV_ERROR;
            const auto read = [&] {
                result =
                    asFile ? env->ReadFile(path.c_str(), eEnvReadAuto) : env->ReadString(text.c_str(), eEnvReadAuto);
            };
            for (int others = 0;; ++others) {
                SCOPED_TRACE(others);
                env->DeleteEnvironmentSections();
                zr::env::DropSpareChunks();
                const MemoryBalance memory;
                bool ended = false;
                bool met = false;
                {
                    const NthAllocation refusal(others, lasting);
                    ended = Ends(read);
                    met = refusal.Met();
                }
                zr_long line = 0, column = 0;
                EXPECT_EQ(env->GetErrorPosition(line, column), ended && result == 0 ? Zr::ENV_NOT_FOUND : Zr::ENV_OK);
                if (ended && told.empty()) {
                    EXPECT_TRUE(TreeOf(*env) == whole.sections);
                }
                ExpectSound(*env);
                if (!met) {
                    EXPECT_TRUE(ended);
                    break;
                }
                failures += ended ? 0 : 1;
                EXPECT_TRUE(Ends(read));
                EXPECT_TRUE(TreeOf(*env) == whole.sections);
                env->DeleteEnvironmentSections();
                zr::env::DropSpareChunks();
                ASSERT_EQ(memory.Open(), 0);
            }
            EXPECT_GE(failures, 5);
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
    ASSERT_TRUE(WithSmallBlocks(15001, read, 30000)); // half of the block and one more is given
    EXPECT_EQ(result, Zr::ENV_OK);
    EXPECT_TRUE(TreeOf(*env) == tree);
    {
        const NthAllocation refusal(0);
        EXPECT_FALSE(Ends(read));
    }
    EXPECT_TRUE(TreeOf(*env) == tree) << "nothing was touched yet";
}

TEST_F(TextMemory, StringThatCannotGrowIsCutAndToldOnce) {
    Zr::CZrEnvSection *section = env->InsertSection("A");
    section->InsertElement(new Zr::CZrEnvDataElement("x", std::string(200000, 'v').c_str()));
    const std::string whole = Written(false);
    for (const std::size_t size : {std::size_t{65536}, std::size_t{131072}, std::size_t{40000}}) {
        const std::size_t capacity = size == 40000 ? 32769 : size; // half of 65536 and one more
        char *text = nullptr;
        ASSERT_TRUE(WithSmallBlocks(size, [&] { text = env->WriteString(false); }));
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
        const Unrefused unrefused;
        return zr::platform::backend::OpenText(name, mode);
    };
    bool done = false;
    for (const std::size_t size : {40000u, 300u}) {
        ASSERT_TRUE(WithSmallBlocks(size, [&] { done = env->WriteFile(path.c_str(), true); }));
        EXPECT_TRUE(done);
        EXPECT_TRUE(ReadBytes(path) == whole) << size;
    }
    EXPECT_EQ(told, "");
}

TEST_F(TextMemory, ChunksWaitForTheNextReading) {
    std::string text = "[A]\n";
    for (int i = 0; i < 5000; ++i)
        text += "x" + std::to_string(i) + "=1\n";
    zr::env::DropSpareChunks();
    const MemoryBalance memory;
    ASSERT_EQ(env->ReadString(text.c_str(), eEnvReadAuto), Zr::ENV_OK);
    const long long whileRead = memory.Open();
    env->DeleteEnvironmentSections();
    const long long kept = memory.Open();
    EXPECT_GE(kept, 4) << "64 KB each for 5000 leaves of 36 bytes or more, and one for the section";
    ASSERT_EQ(env->ReadString(text.c_str(), eEnvReadAuto), Zr::ENV_OK);
    EXPECT_EQ(memory.Open(), whileRead) << "the same chunks again";
    env->DeleteEnvironmentSections();
    EXPECT_EQ(memory.Open(), kept);
    zr::env::DropSpareChunks();
    EXPECT_EQ(memory.Open(), 0);
}

TEST_F(TextMemory, WritingWithoutMemoryLeaksNothing) {
    Zr::CZrEnvSection *section = env->InsertSection("A");
    section->InsertElement(new Zr::CZrEnvBlock("b"));
    const std::string path = Path("w.env");
    const std::string whole = Written(true);
    for (const bool lasting : {false, true})
        for (int others = 0;; ++others) {
            const MemoryBalance memory;
            char *text = nullptr;
            bool met = false;
            {
                const NthAllocation refusal(others, lasting);
                const bool ended = Ends([&] { text = env->WriteString(true); });
                met = refusal.Met();
                EXPECT_TRUE(ended == (text != nullptr));
                EXPECT_TRUE(!ended || text == whole);
                Zr::CZrEnv::FreeString(text);
            }
            {
                const NthAllocation refusal(others, lasting);
                Ends([&] { env->WriteFile(path.c_str(), true); }); // opening may have failed already
                met = met || refusal.Met();
            }
            EXPECT_EQ(memory.Open(), 0);
            EXPECT_EQ(Written(true), whole);
            if (!met)
                break;
        }
    EXPECT_EQ(whole, "[A]\r\n  b ={\r\n  }\r\n");
    EXPECT_TRUE(ReadBytes(path) == whole);
}

} // namespace
} // namespace text_test
