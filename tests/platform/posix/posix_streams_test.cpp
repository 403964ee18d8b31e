// Streams of this back end: turns between reading and writing, full disks, links, permissions and descriptors.
#include "platform/streams.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/file_locks.h"
#include "platform/posix/posix_descriptors.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;

constexpr std::size_t block_size = 65536;

std::FILE *OpenAs(const std::string &path, const std::string &mode) {
    return mode.find('b') != std::string::npos ? OpenBinary(path.c_str(), mode.c_str())
                                               : OpenText(path.c_str(), mode.c_str());
}

bool Put(std::FILE *stream, const std::string &text) {
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size();
}

std::string Get(std::FILE *stream, std::size_t size) {
    std::string text(size, '#');
    text.resize(std::fread(text.data(), 1, size, stream));
    return text;
}

// Files of this process end at so many bytes as long as it lives; no signal comes of it.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t size) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit = {size, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit m_before{};
    void (*m_handler)(int);
};

class PosixStreams : public testing::Test {
protected:
    std::string Path() const { return m_folder.Path("file"); }

    std::FILE *Open(const std::string &bytes, const char *mode) const {
        m_folder.Write("file", bytes);
        std::FILE *stream = OpenAs(Path(), mode);
        EXPECT_NE(stream, nullptr) << mode;
        return stream;
    }

    TempFolder m_folder;
};

TEST_F(PosixStreams, UnpositionedWriteGoesOnWhereReadingStopped) {
    const std::string lines(3 * block_size, '\n');
    for (const std::string &bytes : {std::string("a\r\nb\r\nc\r\n"), std::string(2 * block_size, 'x') + "\r\n"})
        for (const std::string &text : {std::string("Z"), std::string("\nZ\n"), lines}) {
            std::FILE *stream = Open(bytes, "r+t");
            EXPECT_EQ(Get(stream, 2).size(), 2U);
            const std::int64_t place = TellStream(stream);
            EXPECT_TRUE(Put(stream, text));
            std::string written;
            for (const char c : text)
                written += c == '\n' ? std::string("\r\n") : std::string(1, c);
            EXPECT_EQ(TellStream(stream), place + static_cast<std::int64_t>(written.size()));
            EXPECT_EQ(std::fclose(stream), 0);
            std::string expected = bytes;
            expected.replace(static_cast<std::size_t>(place), written.size(), written);
            EXPECT_EQ(m_folder.Read("file").compare(expected), 0);
        }
}

TEST_F(PosixStreams, UnpositionedTurnsTellWhereTheyAre) {
    std::FILE *stream = Open("a\r\nb\r\nc\r\nd\r\n", "r+t");
    EXPECT_EQ(Get(stream, 2), "a\n");
    EXPECT_TRUE(Put(stream, "Z\n"));
    EXPECT_EQ(TellStream(stream), 6);
    EXPECT_EQ(Get(stream, 2), "c\n");
    EXPECT_EQ(TellStream(stream), 9);
    ASSERT_TRUE(SeekStream(stream, 0, SEEK_SET));
    EXPECT_EQ(Get(stream, 100), "a\nZ\nc\nd\n");
    EXPECT_EQ(std::fclose(stream), 0);
}

TEST_F(PosixStreams, FlushBehindReadPutsTheDescriptorThere) {
    std::FILE *stream = Open("a\r\nb\r\nc\r\n", "r+t");
    EXPECT_EQ(Get(stream, 2), "a\n");
    EXPECT_EQ(std::fflush(stream), 0);
    EXPECT_EQ(lseek(posix::DescriptorOf(stream), 0, SEEK_CUR), 3);
    EXPECT_EQ(TellStream(stream), 3);
    EXPECT_TRUE(Put(stream, "B"));
    EXPECT_EQ(std::fflush(stream), 0);
    EXPECT_EQ(Get(stream, 9), "\nc\n");
    EXPECT_EQ(std::fclose(stream), 0);
    EXPECT_EQ(m_folder.Read("file"), "a\r\nB\r\nc\r\n");
}

TEST_F(PosixStreams, FullDiskShows) {
    for (const char *mode : {"wt", "at", "w+t", "r+t", "wb", "ab", "w+b", "a+b", "r+b"}) {
        SCOPED_TRACE(mode);
        std::FILE *stream = OpenAs("/dev/full", mode);
        ASSERT_NE(stream, nullptr);
        EXPECT_TRUE(Put(stream, "fits the buffer\n"));
        errno = 0;
        EXPECT_NE(std::fflush(stream), 0);
        EXPECT_EQ(errno, ENOSPC);
        EXPECT_NE(std::ferror(stream), 0);
        EXPECT_FALSE(Put(stream, std::string(3 * block_size, '\n')));
        std::fclose(stream);
        stream = OpenAs("/dev/full", mode);
        ASSERT_NE(stream, nullptr);
        EXPECT_TRUE(Put(stream, "fits the buffer\n"));
        EXPECT_NE(std::fclose(stream), 0);
        for (const int whence : {SEEK_SET, SEEK_CUR, SEEK_END}) {
            stream = OpenAs("/dev/full", mode);
            ASSERT_NE(stream, nullptr);
            EXPECT_TRUE(Put(stream, "fits the buffer\n"));
            EXPECT_FALSE(SeekStream(stream, 0, whence)) << whence;
            std::fclose(stream);
        }
    }
}

TEST_F(PosixStreams, ShortWriteShows) {
    for (const char *mode : {"wt", "at", "r+t", "wb", "ab", "r+b"}) {
        SCOPED_TRACE(mode);
        std::FILE *stream = Open("", mode);
        const FileSizeLimit limit(1000);
        EXPECT_TRUE(Put(stream, std::string(700, '\n')));
        const bool fits = std::fflush(stream) == 0; // 1400 bytes as text
        EXPECT_EQ(fits, mode[std::string(mode).size() - 1] == 'b');
        EXPECT_FALSE(Put(stream, std::string(2 * block_size, 'x')) && std::fflush(stream) == 0);
        EXPECT_NE(std::ferror(stream), 0);
        std::fclose(stream);
        EXPECT_EQ(std::filesystem::file_size(Path()), 1000U);
    }
}

TEST_F(PosixStreams, LinksToNothingAndInCircles) {
    std::filesystem::create_symlink(m_folder.Path("target"), m_folder.Path("dangling"));
    std::filesystem::create_symlink(m_folder.Path("two"), m_folder.Path("one"));
    std::filesystem::create_symlink(m_folder.Path("one"), m_folder.Path("two"));
    std::filesystem::create_directory(m_folder.Path("sub"));
    std::filesystem::create_symlink(m_folder.Path("sub"), m_folder.Path("folder"));
    for (const char *mode : {"rt", "r+t", "rb", "r+b"}) {
        EXPECT_EQ(OpenAs(m_folder.Path("dangling"), mode), nullptr) << mode;
        EXPECT_EQ(errno, ENOENT);
    }
    for (const char *mode : {"rt", "wt", "a+t", "rb", "w+b", "ab"}) {
        EXPECT_EQ(OpenAs(m_folder.Path("one"), mode), nullptr) << mode;
        EXPECT_EQ(errno, ELOOP);
        EXPECT_EQ(OpenAs(m_folder.Path("folder"), mode), nullptr) << mode;
        EXPECT_EQ(errno, EACCES);
    }
    for (const char *mode : {"wt", "ab"}) { // made where the link leads to
        std::FILE *stream = OpenAs(m_folder.Path("dangling"), mode);
        ASSERT_NE(stream, nullptr);
        EXPECT_EQ(std::fclose(stream), 0);
        EXPECT_TRUE(std::filesystem::remove(m_folder.Path("target"))) << mode;
    }
}

TEST_F(PosixStreams, NoWritePermissionAtAllRefusesEverybody) {
    m_folder.Write("file", "kept");
    std::filesystem::permissions(Path(), std::filesystem::perms::owner_read);
    for (const char *mode : {"wt", "at", "r+t", "w+t", "a+t", "wb", "ab", "r+b", "w+b", "a+b"}) {
        errno = 0;
        EXPECT_EQ(OpenAs(Path(), mode), nullptr) << mode;
        EXPECT_EQ(errno, EACCES) << mode;
    }
    for (const char *mode : {"rt", "rb"}) {
        std::FILE *stream = OpenAs(Path(), mode);
        ASSERT_NE(stream, nullptr);
        EXPECT_EQ(Get(stream, 10), "kept");
        std::fclose(stream);
    }
}

// What the library's own buffer holds is the library's to know: a caller may give the stream another one.
TEST_F(PosixStreams, OtherBuffersWork) {
    char small[7];
    for (const int kind : {_IOFBF, _IOLBF, _IONBF}) {
        std::FILE *stream = Open("one\r\ntwo\r\nthree\r\n", "r+t");
        ASSERT_EQ(std::setvbuf(stream, small, kind, sizeof small), 0);
        EXPECT_EQ(Get(stream, 4), "one\n");
        EXPECT_EQ(TellStream(stream), 5);
        ASSERT_TRUE(SeekStream(stream, 10, SEEK_SET));
        EXPECT_EQ(Get(stream, 2), "th");
        ASSERT_TRUE(SeekStream(stream, 5, SEEK_SET));
        EXPECT_TRUE(Put(stream, "TWO\nT"));
        EXPECT_EQ(TellStream(stream), 11);
        ASSERT_TRUE(SeekStream(stream, 0, SEEK_CUR));
        EXPECT_EQ(Get(stream, 3), "hre");
        EXPECT_TRUE(SeekStream(stream, 0, SEEK_SET));
        EXPECT_EQ(Get(stream, 100), "one\nTWO\nThree\n");
        EXPECT_EQ(std::fclose(stream), 0);
    }
}

TEST_F(PosixStreams, LockKeepsNobodyFromReadingAndWriting) {
    std::FILE *holder = Open("0123456789", "r+b");
    EXPECT_EQ(LockFile(holder), LockOutcome::done);
    std::FILE *other = OpenAs(Path(), "r+t");
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(Get(other, 10), "0123456789");
    ASSERT_TRUE(SeekStream(other, 0, SEEK_SET));
    EXPECT_TRUE(Put(other, "x"));
    EXPECT_EQ(std::fclose(other), 0);
    EXPECT_EQ(m_folder.Read("file"), "x123456789");
    EXPECT_EQ(std::fclose(holder), 0);
}

TEST_F(PosixStreams, PipesAndMemoryHaveNoLock) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::FILE *stream = fdopen(ends[0], "r");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(LockFile(stream), LockOutcome::no_length);
    EXPECT_EQ(UnlockFile(stream), LockOutcome::no_length);
    std::fclose(stream);
    close(ends[1]);
    char text[] = "text";
    stream = fmemopen(text, sizeof text, "r");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(LockFile(stream), LockOutcome::bad_descriptor);
    EXPECT_EQ(UnlockFile(stream), LockOutcome::bad_descriptor);
    std::fclose(stream);
}

} // namespace
