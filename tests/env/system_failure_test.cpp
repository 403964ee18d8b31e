// Reading and writing environments while the system fails: every single call on the file, short counts, signals, a full
// disk. What comes out is what is told, nothing stays open or allocated, and the environment goes on working.
#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "env/chunks.h"
#include "env/function_fixture.h"
#include "env/reference_reader.h"
#include "env/refused_memory.h"
#include "env/text_support.h"
#include "env/tree_checker.h"
#include "failing_system.h"

namespace {

using text_test::ReadBytes;
using text_test::ReferenceReader;
using text_test::Tree;
using text_test::TreeOf;
using text_test::WriteBytes;
using zr::test::EnvHandle;
using zr::test::EnvIsSound;
using zr::test::MemoryBalance;
using zr::test::ReportCapture;
using zr::test::SystemCall;
using zr::test::SystemFault;
using zr::test::SystemFaults;
using zr::test::TempFolder;
using zr::test::TextsOf;
using zr::test::ValueOf;

constexpr const char *FileName = "faulty.env";
constexpr int MostCalls = 200; // many times what a reading or writing takes

// Three blocks of every buffer between the file and the tree at least; the lines tell at which byte they begin.
std::string LongText(const std::string &lineEnd, bool modeLine) {
    std::string text = modeLine ? "__ZR_ENV_READ_MODE__=NOT_WRAPPED" + lineEnd : "";
    for (int section = 0; section < 4; ++section) {
        text += "[Section " + std::to_string(section) + "]" + lineEnd;
        for (int block = 0; block < 5; ++block) {
            text += "  block ={" + lineEnd;
            for (int leaf = 0; leaf < 50; ++leaf)
                text += "    leaf" + std::to_string(leaf) + " =at byte " + std::to_string(text.size()) +
                        std::string(130, '.') + lineEnd;
            text += "  }" + lineEnd;
        }
    }
    return text;
}

// What a reading or writing gave, and which calls failed on the way.
struct Outcome {
    int result;
    SystemCall met; // the call that had the fault first
    long long place;
    bool unopened;
    bool cut;
    bool without_status;
};

class SystemFailure : public testing::Test {
protected:
    const TempFolder folder;
    const std::string path = folder.File(FileName);

    Outcome RunWith(SystemFault fault, int others, const std::function<int()> &work) {
        const SystemFaults faults(FileName, fault, others);
        const int result = work();
        EXPECT_EQ(faults.OpenFiles(), 0);
        m_met.insert(faults.Met());
        return {result,
                faults.Met(),
                faults.Place(),
                faults.Failed(SystemCall::Open) || faults.Failed(SystemCall::Check),
                faults.Failed(SystemCall::Read) || faults.Failed(SystemCall::Write),
                faults.Failed(SystemCall::Status)};
    }

    // Does work for every number of calls that go well before the fault, up to the first number that is never reached;
    // twice each: the second time nothing more may stay allocated than the first time. Answers how many were reached.
    static int ForEveryCall(const std::function<bool(int)> &work) {
        for (int others = 0; others < MostCalls; ++others) {
            work(others);
            zr::env::DropSpareChunks();
            const MemoryBalance memory;
            const bool met = work(others);
            zr::env::DropSpareChunks();
            EXPECT_EQ(memory.Open(), 0) << others;
            if (!met || HasFailure())
                return others;
        }
        ADD_FAILURE() << "there is always one more call";
        return MostCalls;
    }

    // The environment is whole and takes and gives what it always does.
    void ExpectUsable(const EnvHandle &env, const Tree &whole) const {
        EXPECT_TRUE(EnvIsSound(*env.operator->()));
        EXPECT_EQ(env_put(env, "After", "a@b", "1"), 0);
        EXPECT_EQ(ValueOf(env, "After", "a@b"), "1");
        EXPECT_EQ(env_read_file(path.c_str(), env), 0);
        EXPECT_TRUE(TreeOf(*env.operator->()) == whole);
    }

    ReferenceReader ReferenceOf(const std::string &text) const { return {text, true, eEnvReadAuto, path}; }

    // The calls that can have a fault: `moving` reads or writes, `byPath` needs no open file.
    static std::set<SystemCall> CallsWith(SystemFault fault, SystemCall moving, SystemCall byPath) {
        switch (fault) {
        case SystemFault::FullDisk:
        case SystemFault::Short:
            return {moving};
        case SystemFault::Signal:
            return {SystemCall::Open, moving, SystemCall::Close};
        default:
            return {SystemCall::Open, moving, SystemCall::Close, byPath};
        }
    }

    // Each of these calls had the fault at its turn.
    void ExpectMet(const std::set<SystemCall> &calls) const {
        for (const SystemCall call : calls)
            EXPECT_TRUE(m_met.contains(call)) << call;
    }

private:
    std::set<SystemCall> m_met;
};

class Reading : public SystemFailure {
protected:
    // One reading with a fault. False if the fault was not met.
    bool ReadWith(const std::string &bytes, const Tree &whole, SystemFault fault, int others) {
        ReportCapture capture;
        const EnvHandle env("[Old]\nx =1\n");
        const zr_long time = env_get_file_mtime(env);
        const Outcome out = RunWith(fault, others, [&] { return env_read_file(path.c_str(), env); });
        SCOPED_TRACE(testing::Message() << others << " calls before a fault of " << out.met);
        if (out.unopened) {
            EXPECT_EQ(out.result, Zr::ENV_ERROR);
            EXPECT_TRUE(TreeOf(*env.operator->()) == Tree());
            EXPECT_EQ(TextsOf(capture), std::vector<std::string>{"Can't open to read:|" + path});
        } else if (out.cut) {
            ExpectCut(*env.operator->(), bytes, out, TextsOf(capture));
        } else {
            EXPECT_EQ(out.result, 0);
            EXPECT_TRUE(TreeOf(*env.operator->()) == whole);
            EXPECT_EQ(TextsOf(capture), std::vector<std::string>(out.without_status ? 1 : 0, "_stat failed"));
        }
        EXPECT_EQ(env_get_file_mtime(env) == time, out.result != 0 || out.without_status);
        ExpectUsable(env, whole);
        return out.met != SystemCall::None;
    }

    // A read that fails is the end of the file, also when a later one would go well.
    void ExpectCut(Zr::CZrEnv &tree, const std::string &bytes, const Outcome &out,
                   const std::vector<std::string> &reports) const {
        std::string text = text_test::AsTextStreamReads(bytes.substr(0, static_cast<std::size_t>(out.place)));
        if (zr::test::failed_read_may_lose_a_block)
            text.resize(UsedOf(text, tree));
        EXPECT_EQ(DifferencesFrom(text, tree, out, reports), "")
            << testing::PrintToString(reports) << " of a text of " << text.size();
    }

    // How much of the text was used, as the environment tells it: at most one buffer less.
    static std::size_t UsedOf(const std::string &text, Zr::CZrEnv &tree) {
        zr_long line = 1, column = 1;
        std::size_t at = 0;
        if (tree.GetErrorPosition(line, column) == Zr::ENV_OK) {
            while (--line > 0)
                at = text.find('\n', at) + 1;
            at += static_cast<std::size_t>(column) - 1;
        } else {
            const zr_long sections = tree.CountElements(nullptr, nullptr, true);
            at = std::min(text.size(), text.find("[Section " + std::to_string(sections)));
        }
        EXPECT_LE(at, text.size());
        EXPECT_LE(text.size() - at, 65536u);
        return at;
    }

    std::string DifferencesFrom(const std::string &text, Zr::CZrEnv &tree, const Outcome &out,
                                std::vector<std::string> reports) const {
        ReferenceReader reference = ReferenceOf(text);
        if (reference.result == 0 && out.without_status)
            reference.reports.push_back("_stat failed");
        return std::string(reference.result == out.result ? "" : "result ") +
               (reference.sections == TreeOf(tree) ? "" : "tree ") + (reference.reports == reports ? "" : "reports ");
    }

    // A fault at every call, on every form of a file; so many calls at least.
    void ReadAll(SystemFault fault, int fewest) {
        for (const bool windows : {true, false}) {
            const std::string bytes = LongText(windows ? "\r\n" : "\n", windows);
            const Tree whole = ReferenceOf(text_test::AsTextStreamReads(bytes)).sections;
            WriteBytes(path, bytes);
            EXPECT_GE(ForEveryCall([&](int others) { return ReadWith(bytes, whole, fault, others); }), fewest);
        }
        ExpectMet(CallsWith(fault, SystemCall::Read, SystemCall::Status));
    }
};

class Writing : public SystemFailure {
protected:
    const std::string old = "[Old]\r\nx =1\r\n";

    // One writing over an old file with a fault. False if the fault was not met.
    bool WriteWith(const EnvHandle &env, bool wrap, const std::string &whole, SystemFault fault, int others) {
        ReportCapture capture;
        WriteBytes(path, old);
        const Outcome out = RunWith(fault, others, [&] { return env_write_file_ex(path.c_str(), env, wrap); });
        SCOPED_TRACE(testing::Message() << others << " calls before a fault of " << out.met);
        const std::string written = ReadBytes(path);
        EXPECT_EQ(out.result, out.unopened ? 0 : 1) << "a file that could be opened is a success, also on a full disk";
        if (out.unopened) {
            EXPECT_TRUE(written == old || written.empty()) << written; // the opening itself empties it
            EXPECT_EQ(TextsOf(capture), std::vector<std::string>{"Can't open to write:|" + path});
            return true;
        }
        EXPECT_EQ(TextsOf(capture), std::vector<std::string>());
        const bool tooShort = fault == SystemFault::Short && zr::test::short_write_is_a_failure;
        if (out.cut || (tooShort && out.met != SystemCall::None))
            ExpectFront(written, whole, out, fault);
        else
            EXPECT_TRUE(written == whole) << written.size();
        return out.met != SystemCall::None;
    }

    // The text up to the write that failed, and nothing behind that.
    static void ExpectFront(const std::string &written, const std::string &whole, const Outcome &out,
                            SystemFault fault) {
        const auto place = static_cast<std::size_t>(out.place);
        EXPECT_TRUE(whole.starts_with(written)) << written.size();
        if (fault == SystemFault::FullDisk)
            EXPECT_THAT(written.size(), testing::AllOf(testing::Gt(place), testing::Lt(whole.size())));
        else
            EXPECT_EQ(written.size(), std::min(whole.size(), place + (fault == SystemFault::Short ? 7 : 0)));
    }

    void WriteAll(SystemFault fault, bool wrap, int fewest) {
        const std::string text = LongText("\n", false);
        const EnvHandle env(text.c_str());
        const Tree tree = TreeOf(*env.operator->());
        char *string = env_write_to_string_ex(env, wrap);
        const std::string whole = string;
        env_free_string(string);
        EXPECT_GE(ForEveryCall([&](int others) { return WriteWith(env, wrap, whole, fault, others); }), fewest);
        ExpectMet(CallsWith(fault, SystemCall::Write, SystemCall::None));
        EXPECT_TRUE(TreeOf(*env.operator->()) == tree);
        EXPECT_TRUE(EnvIsSound(*env.operator->()));
        EXPECT_EQ(env_write_file_ex(path.c_str(), env, wrap), 1);
        EXPECT_TRUE(ReadBytes(path) == whole);
    }
};

} // namespace

TEST_F(Reading, EveryCallFailsOnce) {
    ReadAll(SystemFault::Once, 6);
}

TEST_F(Reading, EveryCallAndAllBehindItFail) {
    ReadAll(SystemFault::Lasting, 6);
}

TEST_F(Reading, ShortCounts) {
    ReadAll(SystemFault::Short, 3);
}

TEST_F(Reading, EveryCallIsInterrupted) {
    if (!zr::test::signals_interrupt_calls)
        GTEST_SKIP() << "no signal interrupts a call on this system";
    ReadAll(SystemFault::Signal, 5);
}

TEST_F(Writing, EveryCallFailsOnce) {
    WriteAll(SystemFault::Once, true, 4);
}

TEST_F(Writing, EveryCallAndAllBehindItFail) {
    WriteAll(SystemFault::Lasting, false, 4);
}

TEST_F(Writing, DiskIsFull) {
    WriteAll(SystemFault::FullDisk, false, 2);
}

TEST_F(Writing, ShortCounts) {
    WriteAll(SystemFault::Short, true, 2);
}

TEST_F(Writing, EveryCallIsInterrupted) {
    if (!zr::test::signals_interrupt_calls)
        GTEST_SKIP() << "no signal interrupts a call on this system";
    WriteAll(SystemFault::Signal, true, 4);
}
