// File handles: advisory locks between handles and between processes, and threads with handles of their own.
#include <zrclb/file_handle.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/heap.h>

#include "child_process.h"
#include "files/handle_fixture.h"
#include "frame/counted_allocation.h"
#include "odd_streams.h"

namespace {

bool Appears(const std::string &path) {
    constexpr int tries = 4000; // 20 seconds
    for (int i = 0; i < tries && !std::filesystem::exists(path); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return std::filesystem::exists(path);
}

// What the second process does: locks "file", says so by making "locked", and unlocks when "go" was made.
bool HoldTheLock(const std::string &folder) {
    fio_handle *handle = fio_open(folder.c_str(), "file", FIO_READ | FIO_UPDATE);
    const bool locked = fio_lock(handle) == 0 && fio_close(fio_open(folder.c_str(), "locked", FIO_WRITE)) == 0;
    const bool unlocked = locked && Appears(folder + "/go") && fio_unlock(handle) == 0;
    return fio_close(handle) == 0 && unlocked;
}

// It never gets to the tests.
const struct SecondProcess {
    SecondProcess() {
        if (!ChildProcess::Argument().empty())
            std::_Exit(HoldTheLock(ChildProcess::Argument()) ? 0 : 1);
    }
} second_process;

class HandleLocks : public HandleFixture {
protected:
    void SetUp() override {
        m_folder.Write("file", "0123456789");
        m_one = Open("file", FIO_READ | FIO_UPDATE);
        m_two = Open("file", FIO_READ | FIO_TEXT);
        ASSERT_NE(m_one, nullptr);
        ASSERT_NE(m_two, nullptr);
    }
    void TearDown() override {
        fio_close(m_one);
        fio_close(m_two);
        EXPECT_EQ(m_reports.Take(), Reports{});
    }

    int FileIsLock() const { return fio_fileislock(m_folder.Folder().string().c_str(), "file"); }

    fio_handle *m_one = nullptr;
    fio_handle *m_two = nullptr;
};

TEST_F(HandleLocks, OneHandleHasTheLock) {
    EXPECT_EQ(fio_islock(m_one), 0);
    EXPECT_EQ(FileIsLock(), 0);
    EXPECT_EQ(fio_lock(m_one), 0);
    EXPECT_EQ(fio_lock(m_two), -1);
    EXPECT_EQ(fio_islock(m_two), 1);
    EXPECT_EQ(FileIsLock(), 1);
    EXPECT_EQ(fio_unlock(m_one), 0);
    EXPECT_EQ(fio_islock(m_two), 0);
    EXPECT_EQ(FileIsLock(), 0);
    EXPECT_EQ(fio_lock(m_two), 0) << "on a handle for reading, in text mode";
    EXPECT_EQ(fio_lock(m_one), -1);
}

TEST_F(HandleLocks, AskingLeavesNoLockBehind) {
    EXPECT_EQ(fio_islock(m_one), 0);
    EXPECT_EQ(FileIsLock(), 0);
    EXPECT_EQ(fio_unlock(m_one), -2) << "there is none to give back";
    EXPECT_EQ(fio_lock(m_two), 0);
}

TEST_F(HandleLocks, HandleThatHoldsTheLockIsToldSoAndKeepsIt) {
    EXPECT_EQ(fio_lock(m_one), 0);
    EXPECT_EQ(fio_lock(m_one), -1);
    EXPECT_EQ(fio_islock(m_one), 1);
    EXPECT_EQ(fio_islock(m_two), 1) << "not dropped by asking";
    EXPECT_EQ(fio_unlock(m_one), 0);
    EXPECT_EQ(fio_islock(m_two), 0) << "and not there twice";
}

TEST_F(HandleLocks, UnlockOfWhatIsNotHeldFails) {
    EXPECT_EQ(fio_unlock(m_one), -2);
    EXPECT_EQ(fio_lock(m_one), 0);
    EXPECT_EQ(fio_unlock(m_two), -2);
    EXPECT_EQ(fio_islock(m_two), 1);
    EXPECT_EQ(fio_unlock(m_one), 0);
    EXPECT_EQ(fio_unlock(m_one), -2);
}

TEST_F(HandleLocks, LockEndsWithItsHandle) {
    EXPECT_EQ(fio_lock(m_one), 0);
    EXPECT_EQ(fio_close(m_one), 0);
    m_one = nullptr;
    EXPECT_EQ(fio_islock(m_two), 0);
    EXPECT_EQ(FileIsLock(), 0);
}

TEST_F(HandleLocks, PositionStaysAndReadingGoesOn) {
    EXPECT_EQ(fio_getchar(m_one, nullptr), '0');
    EXPECT_EQ(fio_lock(m_one), 0);
    EXPECT_EQ(fio_tell(m_one), 1);
    EXPECT_EQ(fio_getchar(m_one, nullptr), '1');
    EXPECT_EQ(fio_seek(m_one, 8, 0), 0);
    EXPECT_EQ(fio_unlock(m_one), 0);
    EXPECT_EQ(fio_tell(m_one), 8);
    EXPECT_EQ(fio_islock(m_one), 0);
    EXPECT_EQ(fio_getchar(m_one, nullptr), '8');
}

TEST_F(HandleLocks, RefusedLockLeavesThePositionToo) {
    EXPECT_EQ(fio_seek(m_one, 3, 0), 0);
    EXPECT_EQ(fio_lock(m_two), 0);
    EXPECT_EQ(fio_lock(m_one), -1);
    EXPECT_EQ(fio_islock(m_one), 1);
    EXPECT_EQ(fio_unlock(m_one), -2);
    EXPECT_EQ(fio_tell(m_one), 3);
    EXPECT_EQ(fio_unlock(m_two), 0);
    EXPECT_EQ(fio_getchar(m_one, nullptr), '3');
}

TEST_F(HandleLocks, WhatIsInMemoryStaysThere) {
    EXPECT_EQ(fio_seek(m_one, 8, 0), 0);
    EXPECT_EQ(fio_putchar(m_one, 'x'), 0);
    EXPECT_EQ(fio_lock(m_one), 0);
    EXPECT_EQ(fio_unlock(m_one), 0);
    EXPECT_EQ(fio_islock(m_one), 0);
    EXPECT_EQ(m_folder.Read("file"), "0123456789");
    EXPECT_EQ(fio_tell(m_one), 9);
    EXPECT_EQ(fio_flush(m_one), 0);
    EXPECT_EQ(m_folder.Read("file"), "01234567x9");
}

TEST_F(HandleLocks, BytesAppendedLaterAreCoveredOnlyWhereTheFileIs) {
    EXPECT_EQ(fio_lock(m_one), 0);
    EXPECT_EQ(fio_seek(m_one, 0, 2), 0);
    EXPECT_EQ(fio_putchar(m_one, 'x'), 0);
    EXPECT_EQ(fio_flush(m_one), 0);
    EXPECT_EQ(fio_islock(m_two), 1);
    fio_handle *writer = Open("file", FIO_APPEND); // may write behind the locked bytes everywhere
    EXPECT_EQ(fio_putchar(writer, 'y'), 0);
    EXPECT_EQ(fio_close(writer), 0);
    EXPECT_EQ(fio_seek(m_two, 10, 0), 0);
    EXPECT_EQ(fio_getchar(m_two, nullptr), 'x');
    EXPECT_EQ(fio_getchar(m_two, nullptr), 'y');
    EXPECT_EQ(fio_islock(m_two), 1) << "not dropped by the end of another handle";
    EXPECT_EQ(fio_unlock(m_one), IsOnDesktop() ? -2 : 0);
    EXPECT_EQ(fio_close(m_one), 0);
    m_one = nullptr;
    EXPECT_EQ(fio_islock(m_two), 0);
}

TEST_F(HandleLocks, EmptyFileCanBeLocked) {
    fio_handle *empty = Open("empty", FIO_WRITE);
    EXPECT_EQ(fio_lock(empty), 0);
    fio_handle *other = Open("empty", FIO_READ);
    // On the desktop a lock of no bytes shuts out nobody, or everybody, as the system has it.
    if (!IsOnDesktop()) {
        EXPECT_EQ(fio_islock(other), 1);
    }
    EXPECT_EQ(fio_close(other), 0);
    EXPECT_EQ(fio_close(empty), 0);
}

TEST_F(HandleLocks, FileThatCanNotBeOpenedIsNotLocked) {
    const std::string folder = m_folder.Folder().string();
    EXPECT_EQ(fio_fileislock(folder.c_str(), "nowhere"), 0);
    EXPECT_EQ(fio_fileislock(folder.c_str(), ""), 0);
    EXPECT_EQ(fio_fileislock("", ""), 0);
    EXPECT_EQ(fio_fileislock(nullptr, nullptr), 0);
    EXPECT_EQ(fio_fileislock("Q:\\no", "such"), 0);
    EXPECT_FALSE(std::filesystem::exists(m_folder.Path("nowhere")));
    const zr_long blocks = zr::frame::heap_block_count;
    EXPECT_EQ(FileIsLock(), 0);
    EXPECT_EQ(fio_lock(m_one), 0);
    EXPECT_EQ(FileIsLock(), 1);
    EXPECT_EQ(zr::frame::heap_block_count, blocks) << "its handle is closed in either case";
}

TEST_F(HandleLocks, ReadOnlyFileCanBeLocked) {
    using std::filesystem::perms;
    std::filesystem::permissions(m_folder.Path("file"), perms::owner_read | perms::group_read | perms::others_read);
    fio_handle *reader = Open("file", FIO_READ);
    EXPECT_EQ(fio_lock(reader), 0);
    EXPECT_EQ(FileIsLock(), 1);
    EXPECT_EQ(fio_close(reader), 0);
    std::filesystem::permissions(m_folder.Path("file"), perms::owner_all);
}

TEST_F(HandleLocks, StreamWithoutPositionHasNoLock) {
    auto *handle = static_cast<fio_handle *>(heap_calloc(1, sizeof(fio_handle)));
    handle->stream = StreamWithoutPosition();
    ASSERT_NE(handle->stream, nullptr);
    EXPECT_EQ(fio_lock(handle), -5);
    EXPECT_EQ(fio_unlock(handle), -1);
    EXPECT_EQ(fio_islock(handle), 0);
    EXPECT_EQ(fio_length(handle), -1);
    EXPECT_EQ(fio_tell(handle), -1);
    EXPECT_EQ(fio_seek(handle, 0, 0), -1);
    EXPECT_EQ(fio_getchar(handle, nullptr), -1);
    EXPECT_EQ(fio_close(handle), 0);
}

TEST_F(HandleLocks, WritesToALostDescriptorFail) {
    fio_handle *handle = Open("written", FIO_WRITE);
    EXPECT_EQ(fio_putlong(handle, 1), 0) << "kept in memory";
    LoseDescriptor(fio_fp(handle));
    EXPECT_EQ(fio_flush(handle), -1);
    EXPECT_EQ(fio_close(handle), -1);
    handle = Open("written", FIO_WRITE);
    ASSERT_EQ(std::setvbuf(fio_fp(handle), nullptr, _IONBF, 0), 0);
    LoseDescriptor(fio_fp(handle));
    ExpectWritesToFail(handle);
    EXPECT_EQ(fio_seek(handle, 0, 0), -1);
    EXPECT_EQ(fio_tell(handle), -1);
    EXPECT_EQ(fio_close(handle), -1);
    EXPECT_EQ(m_folder.Read("written"), "");
}

TEST_F(HandleLocks, LostDescriptorIsTold) {
    const zr_long blocks = zr::frame::heap_block_count;
    fio_handle *handle = Open("file", FIO_READ);
    LoseDescriptor(fio_fp(handle));
    EXPECT_EQ(fio_lock(handle), -4);
    EXPECT_EQ(fio_unlock(handle), -1);
    EXPECT_EQ(fio_islock(handle), 0);
    EXPECT_EQ(fio_length(handle), -1);
    EXPECT_EQ(fio_close(handle), -1);
    EXPECT_EQ(zr::frame::heap_block_count, blocks) << "freed all the same";
}

TEST_F(HandleLocks, ThreadsWithHandlesOfTheirOwnKeepApart) {
    constexpr zr_long count = 2000;
    const auto work = [this](zr_long which) {
        const std::string name = "file" + std::to_string(which);
        const int mode = FIO_WRITE | FIO_UPDATE | (which % 2 == 0 ? FIO_BYTEORDER : FIO_TEXT);
        fio_handle *handle = Open(name, mode);
        for (zr_long i = 0; i < count; ++i)
            fio_putstring(handle, (std::to_string(which * count + i) + "\n").c_str(), 0);
        fio_seek(handle, which % 2 == 0 ? 16 : 0, 0);
        for (zr_long i = 0; i < count; ++i) {
            char text[20] = "";
            fio_getstring(handle, 19, text);
            EXPECT_EQ(text, std::to_string(which * count + i));
        }
        EXPECT_EQ(fio_close(handle), 0);
    };
    std::vector<std::thread> threads;
    for (zr_long which = 0; which < 4; ++which)
        threads.emplace_back(work, which);
    for (std::thread &thread : threads)
        thread.join();
}

TEST_F(HandleLocks, SecondProcessKeepsTheLockUntilItGivesItBack) {
    ChildProcess child(m_folder.Folder().string());
    ASSERT_TRUE(Appears(m_folder.Path("locked")));
    EXPECT_EQ(fio_lock(m_one), -1);
    EXPECT_EQ(fio_islock(m_one), 1);
    EXPECT_EQ(fio_islock(m_two), 1);
    EXPECT_EQ(FileIsLock(), 1);
    EXPECT_EQ(fio_unlock(m_one), -2);
    m_folder.Write("go", "");
    EXPECT_TRUE(child.Passes());
    EXPECT_EQ(FileIsLock(), 0);
    EXPECT_EQ(fio_lock(m_one), 0);
}

TEST_F(HandleLocks, KilledProcessLosesItsLock) {
    ChildProcess child(m_folder.Folder().string());
    ASSERT_TRUE(Appears(m_folder.Path("locked")));
    EXPECT_EQ(fio_lock(m_one), -1);
    child.Kill();
    EXPECT_EQ(FileIsLock(), 0);
    EXPECT_EQ(fio_lock(m_one), 0);
}

} // namespace
