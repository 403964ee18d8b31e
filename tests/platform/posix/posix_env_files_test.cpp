// Environments on files that are none of the usual: pipes while signals come, a disk that is full, a limit of size.
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <thread>

#include <pthread.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "env/function_fixture.h"
#include "env/report_capture.h"
#include "env/text_support.h"
#include "env/tree_checker.h"
#include "failing_system.h"

namespace {

using zr::test::EnvHandle;
using zr::test::EnvIsSound;
using zr::test::ReportCapture;
using zr::test::TempFolder;
using zr::test::TextsOf;
using zr::test::WrittenText;

std::string TextOf(int leaves) {
    std::string text = "[Section]\n";
    for (int leaf = 0; leaf < leaves; ++leaf)
        text += "  leaf" + std::to_string(leaf) + " =value " + std::to_string(leaf) + "\n";
    return text;
}

// While it lives, a handler without restart takes SIGUSR1, and `Interrupt` sends it to the thread that made this.
class Signals {
public:
    Signals() {
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        sigaction(SIGUSR1, &action, &m_before);
        std::signal(SIGPIPE, SIG_IGN); // a write to a pipe whose reader has gone is a failure, not the end
        zr::test::interruptions = 0;
    }
    Signals(const Signals &) = delete;
    Signals &operator=(const Signals &) = delete;
    ~Signals() { sigaction(SIGUSR1, &m_before, nullptr); }

    // Sends signals until so many more calls have been interrupted. False when that takes too long.
    bool Interrupt(int calls) const {
        const int goal = zr::test::interruptions + calls;
        for (int tries = 0; zr::test::interruptions < goal; ++tries) {
            if (tries == 20000)
                return false;
            pthread_kill(m_thread, SIGUSR1);
            std::this_thread::sleep_for(std::chrono::microseconds(500));
        }
        return true;
    }

private:
    pthread_t m_thread = pthread_self();
    struct sigaction m_before = {};
};

class PosixEnvFiles : public testing::Test {
protected:
    const TempFolder folder;
    const std::string pipe = folder.File("pipe.env");

    void SetUp() override { ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0); }
};

} // namespace

// Each call of the reader waits for the other end, and signals interrupt it there: the opening, the reads, the last read.
TEST_F(PosixEnvFiles, SignalsDoNotDisturbTheReadingOfAPipe) {
    const std::string text = TextOf(8000);
    EnvHandle env("[Old]\nx =1\n");
    const Signals signals;
    std::atomic<int> interrupted = 0;
    std::thread other([&] {
        interrupted += signals.Interrupt(3);
        const int end = open(pipe.c_str(), O_WRONLY);
        for (std::size_t at = 0; at < text.size();) {
            const ssize_t count = write(end, text.data() + at, std::min<std::size_t>(text.size() - at, 50000));
            if (count <= 0)
                break;
            at += static_cast<std::size_t>(count);
            interrupted += signals.Interrupt(3); // the reader has taken all that came and waits for more
        }
        close(end);
    });
    const int result = env_read_file(pipe.c_str(), env);
    other.join();
    EXPECT_EQ(result, 0);
    EXPECT_EQ(interrupted, 1 + static_cast<int>((text.size() + 49999) / 50000));
    EXPECT_EQ(WrittenText(env), text);
    EXPECT_TRUE(EnvIsSound(*env.operator->()));
}

// A pipe cannot go back to the start of the first line, whether that is the mode line or not.
TEST_F(PosixEnvFiles, FirstLineOfAPipeIsNotLost) {
    for (const std::string head : {"", "__ZR_ENV_READ_MODE__=NOT_WRAPPED\n", ";\n", "[A] z=0\n"}) {
        EnvHandle env;
        std::thread other([&] { text_test::WriteBytes(pipe, head + "[S]\nx =a\\\nb\ny =2"); });
        EXPECT_EQ(env_read_file(pipe.c_str(), env), 0);
        other.join();
        const EnvHandle expected((head + "[S]\nx =a\\\nb\ny =2").c_str());
        EXPECT_EQ(WrittenText(env), WrittenText(expected)) << head;
    }
}

TEST_F(PosixEnvFiles, SignalsDoNotDisturbTheWritingToAPipe) {
    const std::string text = TextOf(20000);
    const EnvHandle env(text.c_str());
    const Signals signals;
    std::atomic<int> interrupted = 0;
    std::string came;
    std::thread other([&] {
        interrupted += signals.Interrupt(3);
        const int end = open(pipe.c_str(), O_RDONLY);
        interrupted += signals.Interrupt(3); // the pipe is full
        char block[5000];
        for (ssize_t count; (count = read(end, block, sizeof block)) > 0;)
            came.append(block, static_cast<std::size_t>(count));
        close(end);
    });
    const int result = env_write_file(pipe.c_str(), env);
    other.join();
    EXPECT_EQ(result, 1);
    EXPECT_EQ(interrupted, 2);
    std::erase(came, '\r');
    EXPECT_EQ(came, text);
}

TEST_F(PosixEnvFiles, FullDiskIsNotToldAndHarmsNothing) {
    ASSERT_TRUE(std::filesystem::is_character_file("/dev/full"));
    ReportCapture capture;
    const std::string text = TextOf(20000);
    const EnvHandle env(text.c_str());
    EXPECT_EQ(env_write_file("/dev/full", env), 1);
    EXPECT_EQ(env_write_file_ex("/dev/full", env, 0), 1);
    EXPECT_EQ(TextsOf(capture), std::vector<std::string>());
    EXPECT_EQ(WrittenText(env), text);
    EXPECT_TRUE(EnvIsSound(*env.operator->()));
}

// The system takes the front of the write that reaches the limit, and nothing of the next.
TEST_F(PosixEnvFiles, FileEndsWhereTheDiskDoes) {
    const std::string path = folder.File("limited.env");
    const EnvHandle env(TextOf(20000).c_str());
    EXPECT_EQ(env_write_file(path.c_str(), env), 1);
    const std::string whole = text_test::ReadBytes(path);
    rlimit before;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    for (const rlim_t limit : {rlim_t{0}, rlim_t{1}, rlim_t{70000}, rlim_t{131072}, rlim_t{200001}}) {
        const rlimit limited = {limit, before.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
        const int result = env_write_file(path.c_str(), env);
        setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_EQ(result, 1);
        EXPECT_TRUE(text_test::ReadBytes(path) == whole.substr(0, limit)) << limit;
    }
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(env_write_file(path.c_str(), env), 1);
    EXPECT_TRUE(text_test::ReadBytes(path) == whole);
}
