// Files on a host with links, permissions and devices.
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/posix/posix_descriptors.h"
#include "platform/posix/text_translation.h"
#include "platform/streams.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;

class PosixFiles : public testing::Test {
protected:
    void Link(const std::string &target, const std::string &name) const {
        ASSERT_EQ(symlink(target.c_str(), m_folder.Path(name).c_str()), 0);
    }
    std::string Followed(const std::string &name) const {
        char out[path_size];
        return FollowLinks(m_folder.Path(name).c_str(), out, sizeof out) ? out : "(failed)";
    }
    mode_t Mode(const std::string &name) const {
        struct stat status = {};
        EXPECT_EQ(stat(m_folder.Path(name).c_str(), &status), 0);
        return status.st_mode & 07777;
    }

    TempFolder m_folder;
};

TEST_F(PosixFiles, LinksAreFollowedToTheirEnd) {
    m_folder.Write("file", "");
    Link("file", "one");
    Link("one", "two");
    Link(m_folder.Path("two"), "absolute");
    Link("missing", "dangling");
    EXPECT_EQ(Followed("one"), m_folder.Path("file"));
    EXPECT_EQ(Followed("two"), m_folder.Path("file"));
    std::string expected = "C:" + m_folder.Path("file");
    for (char &c : expected)
        c = c == '/' ? '\\' : c;
    EXPECT_EQ(Followed("absolute"), expected);
    EXPECT_EQ(Followed("dangling"), m_folder.Path("missing"));
}

TEST_F(PosixFiles, RingOfLinksFails) {
    Link("b", "a");
    Link("a", "b");
    EXPECT_EQ(Followed("a"), "(failed)");
    EXPECT_EQ(errno, ELOOP);
}

TEST_F(PosixFiles, ChainOfFortyLinksPassesOneMoreFails) {
    m_folder.Write("0", "");
    for (int i = 1; i <= 41; ++i)
        Link(std::to_string(i - 1), std::to_string(i));
    EXPECT_EQ(Followed("40"), m_folder.Path("0"));
    EXPECT_EQ(Followed("41"), "(failed)");
}

TEST_F(PosixFiles, ReplacementKeepsTheLink) {
    m_folder.Write("file", "old");
    m_folder.Write("new", "new");
    Link("file", "link");
    ASSERT_TRUE(MoveOver(m_folder.Path("new").c_str(), Followed("link").c_str()));
    EXPECT_TRUE(std::filesystem::is_symlink(m_folder.Path("link")));
    EXPECT_EQ(m_folder.Read("file"), "new");
    EXPECT_EQ(m_folder.Read("link"), "new");
}

TEST_F(PosixFiles, CopyModeTakesAllPermissions) {
    m_folder.Write("from", "");
    m_folder.Write("to", "");
    for (const mode_t mode : {mode_t{0644}, mode_t{0600}, mode_t{0755}, mode_t{0666}, mode_t{0440}}) {
        ASSERT_EQ(chmod(m_folder.Path("from").c_str(), mode), 0);
        EXPECT_TRUE(CopyMode(m_folder.Path("from").c_str(), m_folder.Path("to").c_str()));
        EXPECT_EQ(Mode("to"), mode);
    }
}

TEST_F(PosixFiles, FreshFileIsPrivate) {
    char path[path_size];
    ASSERT_TRUE(CreateBeside(m_folder.Path("target").c_str(), path, sizeof path));
    struct stat status = {};
    ASSERT_EQ(stat(path, &status), 0);
    EXPECT_EQ(status.st_mode & 07777, mode_t{0600});
}

// The superuser may do everything, so the test puts that right aside for a moment.
class WithoutPrivilege {
public:
    WithoutPrivilege() : m_before(geteuid()) {
        if (m_before == 0) {
            EXPECT_EQ(seteuid(nobody), 0);
        }
    }
    ~WithoutPrivilege() { EXPECT_EQ(seteuid(m_before), 0); }
    WithoutPrivilege(const WithoutPrivilege &) = delete;
    WithoutPrivilege &operator=(const WithoutPrivilege &) = delete;

private:
    static constexpr uid_t nobody = 65534;
    uid_t m_before;
};

TEST_F(PosixFiles, MissingPermissionFails) {
    m_folder.Write("guarded", "x");
    m_folder.Write("secret", "x");
    ASSERT_EQ(chmod(m_folder.Path("guarded").c_str(), 0444), 0);
    ASSERT_EQ(chmod(m_folder.Path("secret").c_str(), 0), 0);
    ASSERT_EQ(chmod(m_folder.Folder().c_str(), 0555), 0);
    {
        const WithoutPrivilege scope;
        std::FILE *stream = OpenText(m_folder.Path("guarded").c_str(), "r");
        EXPECT_NE(stream, nullptr);
        if (stream != nullptr)
            std::fclose(stream);
        for (const char *mode : {"w", "a"}) {
            EXPECT_EQ(OpenText(m_folder.Path("guarded").c_str(), mode), nullptr);
            EXPECT_EQ(errno, EACCES);
            EXPECT_EQ(OpenText(m_folder.Path("new").c_str(), mode), nullptr);
        }
        EXPECT_EQ(OpenText(m_folder.Path("secret").c_str(), "r"), nullptr);
        EXPECT_EQ(errno, EACCES);
        char path[path_size];
        EXPECT_FALSE(CreateBeside(m_folder.Path("x").c_str(), path, sizeof path));
        EXPECT_FALSE(RemoveFile(m_folder.Path("guarded").c_str()));
    }
    EXPECT_EQ(m_folder.Read("guarded"), "x");
}

TEST_F(PosixFiles, FullDiskShowsInFlushAndClose) {
    std::FILE *stream = OpenText("/dev/full", "w");
    ASSERT_NE(stream, nullptr);
    std::fputs("text\n", stream);
    EXPECT_NE(std::fflush(stream), 0);
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_NE(std::ferror(stream), 0);
    std::fclose(stream);

    stream = OpenText("/dev/full", "w");
    ASSERT_NE(stream, nullptr);
    std::fputs("text\n", stream);
    EXPECT_NE(std::fclose(stream), 0);

    stream = OpenText("/dev/full", "w");
    ASSERT_NE(stream, nullptr);
    const std::string text(200000, 'x');
    EXPECT_LT(std::fwrite(text.data(), 1, text.size(), stream), text.size());
    EXPECT_NE(std::ferror(stream), 0);
    std::fclose(stream);
}

TEST_F(PosixFiles, EndOfTextHoldsHoweverMuchFollows) {
    for (std::size_t place = 65530; place < 65545; ++place)
        for (const char *before : {"", "\r"}) {
            std::string bytes(place, 'x');
            bytes += before;
            const std::string text = bytes;
            bytes += "\x1A" + std::string(200000, 'y');
            m_folder.Write("file", bytes);
            std::FILE *stream = OpenText(m_folder.Path("file").c_str(), "r");
            ASSERT_NE(stream, nullptr);
            std::string read(300000, '#');
            read.resize(std::fread(read.data(), 1, read.size(), stream));
            EXPECT_EQ(read.compare(text), 0) << place;
            std::clearerr(stream);
            EXPECT_EQ(std::fgetc(stream), EOF);
            std::fclose(stream);
        }
}

TEST_F(PosixFiles, ChildProcessesInheritNothing) {
    std::FILE *stream = OpenText(m_folder.Path("file").c_str(), "w");
    ASSERT_NE(stream, nullptr);
    const int descriptor = posix::DescriptorOf(stream);
    ASSERT_GE(descriptor, 0);
    EXPECT_NE(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0);
    std::fclose(stream);
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
}

TEST_F(PosixFiles, DescriptorOfOtherStreamsIsTheirOwn) {
    EXPECT_EQ(posix::DescriptorOf(stdin), 0);
    char memory[10];
    std::FILE *stream = fmemopen(memory, sizeof memory, "w");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(posix::DescriptorOf(stream), -1);
    EXPECT_FALSE(FlushToDisk(stream));
    std::fclose(stream);
}

// A pipe that fills and empties while signals arrive: reads and writes are interrupted and short.
TEST_F(PosixFiles, SignalsAndShortWritesLoseNothing) {
    struct sigaction action = {}, before = {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(sigaction(SIGALRM, &action, &before), 0); // without SA_RESTART
    const itimerval often = {{0, 500}, {0, 500}}, never = {};
    const std::string pipe = m_folder.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::string text, read;
    for (int i = 0; i < 200000; ++i)
        text += std::to_string(i) + "\n";
    std::thread writer([&] {
        std::FILE *stream = OpenText(pipe.c_str(), "w");
        ASSERT_NE(stream, nullptr);
        EXPECT_EQ(std::fwrite(text.data(), 1, text.size(), stream), text.size());
        EXPECT_EQ(std::fclose(stream), 0);
    });
    std::FILE *stream = OpenText(pipe.c_str(), "r");
    ASSERT_NE(stream, nullptr);
    setitimer(ITIMER_REAL, &often, nullptr);
    char block[4096];
    for (std::size_t count; (count = std::fread(block, 1, sizeof block, stream)) != 0;)
        read.append(block, count);
    EXPECT_EQ(std::fclose(stream), 0);
    writer.join();
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &before, nullptr);
    EXPECT_EQ(read.compare(text), 0);
}

TEST(TextTranslation, EveryRoomTakesSomething) {
    const std::string text = "a\n\n\nbc\n\rd\n";
    const std::string expected = "a\r\n\r\n\r\nbc\r\n\rd\r\n";
    for (std::size_t room = 2; room <= 20; ++room) {
        std::string out;
        std::string piece(room, '#');
        for (std::size_t done = 0, used = 0; done < text.size(); done += used) {
            const std::size_t count =
                posix::AddCarriageReturns(text.data() + done, text.size() - done, piece.data(), room, used);
            ASSERT_GT(used, 0U);
            ASSERT_LE(count, room);
            out.append(piece, 0, count);
        }
        EXPECT_EQ(out, expected) << room;
    }
}

// Texts of few different bytes, with ends of lines at all distances from a stride's end; the plain way beside them.
TEST(TextTranslation, CarriageReturnsInFrontOfLineFeeds_Go) {
    std::mt19937 random{5};
    for (int round = 0; round < 3000; ++round) {
        const char *letters = round % 3 == 0   ? "\r\n"
                              : round % 3 == 1 ? "a\r\nb\n"
                                               : "abcdefghijklmnopqrs\rtuvwxyz\n\0";
        const std::size_t kinds = round % 3 == 0 ? 2 : round % 3 == 1 ? 5 : 29;
        std::string text;
        for (std::size_t size = random() % 120; text.size() < size;) {
            const char c = letters[random() % kinds];
            text += c;
            if (c == '\r' && random() % 4 != 0 && text.size() < size)
                text += '\n';
        }
        std::string expected;
        for (std::size_t i = 0; i < text.size(); ++i)
            if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n')
                expected += text[i];
        std::string copy(text.size(), '#');
        copy.resize(posix::CopyWithoutCarriageReturns(text.data(), text.size(), copy.data()));
        ASSERT_EQ(copy, expected);
        text.resize(posix::DropCarriageReturns(text.data(), text.size()));
        ASSERT_EQ(text, expected);
    }
}

} // namespace
