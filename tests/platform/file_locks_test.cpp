// Locks of whole files: between streams of one process and between processes.
#include "platform/file_locks.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "child_process.h"
#include "platform/files.h"
#include "platform/streams.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;

// True where the lock is one of bytes, as the desktop has it.
bool LocksBytes() {
    char host[16] = "";
    return HostPath("\\a", host, sizeof host) && std::string(host) != "/a";
}

bool Appears(const std::string &path) {
    constexpr int tries = 4000; // 20 seconds
    for (int i = 0; i < tries; ++i) {
        if (std::filesystem::exists(path))
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
}

// What the second process does: locks the file, says what came out by making a file, and holds on until another one is
// made.
bool HoldOn(const std::string &folder) {
    std::FILE *stream = OpenText((folder + "/file").c_str(), "r");
    if (stream == nullptr)
        return false;
    const bool done = LockFile(stream) == LockOutcome::done;
    std::FILE *answer = OpenBinary((folder + (done ? "/done" : "/refused")).c_str(), "wb");
    return answer != nullptr && std::fclose(answer) == 0 && (!done || Appears(folder + "/go")) &&
           std::fclose(stream) == 0;
}

// It never gets to the tests.
const struct SecondProcess {
    SecondProcess() {
        if (!ChildProcess::Argument().empty())
            std::_Exit(HoldOn(ChildProcess::Argument()) ? 0 : 1);
    }
} second_process;

class FileLocks : public testing::Test {
protected:
    void SetUp() override {
        m_folder.Write("file", "ten bytes\n");
        m_one = OpenBinary(m_folder.Path("file").c_str(), "r+b");
        m_two = OpenText(m_folder.Path("file").c_str(), "r");
        ASSERT_NE(m_one, nullptr);
        ASSERT_NE(m_two, nullptr);
    }
    void TearDown() override {
        for (std::FILE *stream : {m_one, m_two})
            if (stream != nullptr)
                std::fclose(stream);
    }

    TempFolder m_folder;
    std::FILE *m_one = nullptr;
    std::FILE *m_two = nullptr; // a text stream for reading only
};

TEST_F(FileLocks, OneOfTwoStreamsHasIt) {
    EXPECT_EQ(LockFile(m_one), LockOutcome::done);
    EXPECT_EQ(LockFile(m_two), LockOutcome::held);
    EXPECT_EQ(UnlockFile(m_two), LockOutcome::failed);
    EXPECT_EQ(LockFile(m_two), LockOutcome::held);
    EXPECT_EQ(UnlockFile(m_one), LockOutcome::done);
    EXPECT_EQ(LockFile(m_two), LockOutcome::done);
    EXPECT_EQ(LockFile(m_one), LockOutcome::held);
    EXPECT_EQ(UnlockFile(m_two), LockOutcome::done);
}

TEST_F(FileLocks, OwnLockCountsAsHeldAndStays) {
    for (std::FILE *stream : {m_one, m_two}) {
        EXPECT_EQ(LockFile(stream), LockOutcome::done);
        EXPECT_EQ(LockFile(stream), LockOutcome::held);
        EXPECT_EQ(LockFile(stream == m_one ? m_two : m_one), LockOutcome::held);
        EXPECT_EQ(UnlockFile(stream), LockOutcome::done);
        EXPECT_EQ(UnlockFile(stream), LockOutcome::failed);
    }
}

TEST_F(FileLocks, CloseGivesItBack) {
    EXPECT_EQ(LockFile(m_two), LockOutcome::done);
    EXPECT_EQ(LockFile(m_one), LockOutcome::held);
    std::fclose(m_two);
    m_two = nullptr;
    EXPECT_EQ(LockFile(m_one), LockOutcome::done);
}

TEST_F(FileLocks, PositionsStay) {
    ASSERT_TRUE(SeekStream(m_one, 4, SEEK_SET));
    EXPECT_EQ(std::fgetc(m_two), 't');
    for (std::FILE *stream : {m_one, m_two}) {
        const std::int64_t position = TellStream(stream);
        EXPECT_EQ(LockFile(stream), LockOutcome::done);
        EXPECT_EQ(TellStream(stream), position);
        EXPECT_EQ(LockFile(stream == m_one ? m_two : m_one), LockOutcome::held);
        EXPECT_EQ(UnlockFile(stream), LockOutcome::done);
        EXPECT_EQ(TellStream(stream), position);
    }
    EXPECT_EQ(std::fgetc(m_one), 'b');
    EXPECT_EQ(std::fgetc(m_two), 'e');
}

// Behind what the buffers hold reading goes on where the descriptor stands.
TEST_F(FileLocks, DescriptorsStayWhateverComesOut) {
    std::string bytes;
    while (bytes.size() < 300000)
        bytes += std::to_string(bytes.size()) + " ";
    m_folder.Write("file", bytes);
    for (std::FILE *stream : {m_one, m_two}) {
        std::FILE *other = stream == m_one ? m_two : m_one;
        std::string text(1, static_cast<char>(std::fgetc(stream)));
        EXPECT_EQ(LockFile(stream), LockOutcome::done);
        EXPECT_EQ(LockFile(stream), LockOutcome::held);
        EXPECT_EQ(UnlockFile(stream), LockOutcome::done);
        EXPECT_EQ(UnlockFile(stream), LockOutcome::failed);
        EXPECT_EQ(LockFile(other), LockOutcome::done);
        EXPECT_EQ(LockFile(stream), LockOutcome::held);
        EXPECT_EQ(UnlockFile(stream), LockOutcome::failed);
        EXPECT_EQ(UnlockFile(other), LockOutcome::done);
        for (int c; (c = std::fgetc(stream)) != EOF;)
            text += static_cast<char>(c);
        EXPECT_EQ(text.compare(bytes), 0);
    }
}

TEST_F(FileLocks, WhatIsInMemoryStaysThere) {
    ASSERT_TRUE(SeekStream(m_one, 4, SEEK_SET));
    EXPECT_EQ(std::fputc('B', m_one), 'B');
    EXPECT_EQ(LockFile(m_one), LockOutcome::done);
    EXPECT_EQ(UnlockFile(m_one), LockOutcome::done);
    EXPECT_EQ(m_folder.Read("file"), "ten bytes\n");
    EXPECT_EQ(TellStream(m_one), 5);
    EXPECT_EQ(std::fflush(m_one), 0);
    EXPECT_EQ(m_folder.Read("file"), "ten Bytes\n");
}

TEST_F(FileLocks, FileOfThreeGigabytesIsLocked) {
    std::filesystem::resize_file(m_folder.Path("file"), 3221225472U);
    ASSERT_TRUE(SeekStream(m_one, 3000000000, SEEK_SET));
    EXPECT_EQ(LockFile(m_one), LockOutcome::done);
    EXPECT_EQ(LockFile(m_two), LockOutcome::held);
    EXPECT_EQ(TellStream(m_one), 3000000000);
    EXPECT_EQ(UnlockFile(m_one), LockOutcome::done);
    EXPECT_EQ(LockFile(m_two), LockOutcome::done);
}

TEST_F(FileLocks, HolderReadsAndWrites) {
    ASSERT_EQ(LockFile(m_one), LockOutcome::done);
    EXPECT_EQ(std::fgetc(m_one), 't');
    ASSERT_TRUE(SeekStream(m_one, 0, SEEK_SET));
    EXPECT_EQ(std::fputc('T', m_one), 'T');
    EXPECT_EQ(std::fflush(m_one), 0);
    EXPECT_EQ(UnlockFile(m_one), LockOutcome::done);
    EXPECT_EQ(m_folder.Read("file"), "Ten bytes\n");
}

TEST_F(FileLocks, FileThatGrewIsUnlockedWhereTheLockIsTheFiles) {
    ASSERT_EQ(LockFile(m_one), LockOutcome::done);
    ASSERT_TRUE(SeekStream(m_one, 0, SEEK_END));
    EXPECT_EQ(std::fputc('x', m_one), 'x');
    EXPECT_EQ(std::fflush(m_one), 0);
    EXPECT_EQ(UnlockFile(m_one), LocksBytes() ? LockOutcome::failed : LockOutcome::done);
}

TEST_F(FileLocks, EmptyFileIsLocked) {
    std::FILE *stream = OpenBinary(m_folder.Path("empty").c_str(), "wb");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(LockFile(stream), LockOutcome::done);
    std::fclose(stream);
}

TEST_F(FileLocks, FailuresHaveAReason) {
    errno = 0;
    EXPECT_EQ(LockFile(nullptr), LockOutcome::bad_descriptor);
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(UnlockFile(nullptr), LockOutcome::bad_descriptor);
    errno = 0;
    EXPECT_EQ(UnlockFile(m_one), LockOutcome::failed);
    EXPECT_NE(errno, 0) << "the reason";
    EXPECT_EQ(LockFile(m_one), LockOutcome::done);
    errno = 0;
    EXPECT_EQ(LockFile(m_two), LockOutcome::held);
    EXPECT_NE(errno, 0) << "the reason";
}

TEST_F(FileLocks, OtherProcessHoldsUntilItEnds) {
    ChildProcess child(m_folder.Folder().string());
    ASSERT_TRUE(Appears(m_folder.Path("done")));
    EXPECT_EQ(LockFile(m_one), LockOutcome::held);
    EXPECT_EQ(LockFile(m_two), LockOutcome::held);
    EXPECT_EQ(UnlockFile(m_one), LockOutcome::failed);
    m_folder.Write("go", "");
    EXPECT_TRUE(child.Passes());
    EXPECT_EQ(LockFile(m_one), LockOutcome::done);
}

TEST_F(FileLocks, KilledProcessHoldsNothing) {
    ChildProcess child(m_folder.Folder().string());
    ASSERT_TRUE(Appears(m_folder.Path("done")));
    EXPECT_EQ(LockFile(m_two), LockOutcome::held);
    child.Kill();
    EXPECT_EQ(LockFile(m_two), LockOutcome::done);
}

TEST_F(FileLocks, OtherProcessIsRefused) {
    ASSERT_EQ(LockFile(m_one), LockOutcome::done);
    ChildProcess child(m_folder.Folder().string());
    EXPECT_TRUE(Appears(m_folder.Path("refused")));
    EXPECT_TRUE(child.Passes());
}

} // namespace
