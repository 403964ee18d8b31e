// Text streams: a FILE of the C library over functions of ours that translate line ends between its buffer and the file.
//
// The C library believes that a byte in its buffer is a byte of the file. That holds for none of its reckonings of position
// here, so the functions below look at the FILE's own pointers (public in this C library) and answer what makes the result
// of the reckoning right:
//   ftell      asks for the present offset and takes off the unread bytes of the buffer (adds the unwritten ones).
//   fseek      goes to a block boundary in front of the wanted offset, reads a block and goes forward in it by bytes. This
//              read is answered with "nothing there": then the library asks us to move on by the missing bytes.
#include "platform/streams.h"

#include <cerrno>
#include <cstring>
#include <mutex>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/posix_descriptors.h"
#include "platform/posix/posix_paths.h"
#include "platform/posix/text_translation.h"

namespace zr::platform {

namespace {

constexpr char end_of_text = 0x1A;
constexpr std::size_t buffer_size = 65536;

// The stream below a FILE. All open ones form a list, by which the descriptor of a FILE is found.
struct TextStream {
    std::FILE *file = nullptr;
    TextStream *next = nullptr;
    TextStream *previous = nullptr;
    int descriptor = -1;
    bool reading = false;
    bool ended = false;     // 0x1A was met
    bool has_ahead = false; // `ahead` was read behind a CR at the end of a block and isn't delivered yet
    char ahead = 0;
    bool sought = false;   // positioned, nothing read since
    bool stepping = false; // the read inside fseek was refused, the step by the missing bytes comes next
    char buffer[buffer_size];
    char staging[buffer_size]; // text on its way out, line ends made
};

constinit std::mutex list_mutex;
constinit TextStream *first_stream = nullptr;

void Enlist(TextStream *stream) {
    const std::lock_guard guard(list_mutex);
    stream->next = first_stream;
    if (first_stream != nullptr)
        first_stream->previous = stream;
    first_stream = stream;
}

void Delist(TextStream *stream) {
    const std::lock_guard guard(list_mutex);
    (stream->previous != nullptr ? stream->previous->next : first_stream) = stream->next;
    if (stream->next != nullptr)
        stream->next->previous = stream->previous;
}

// Whether the C library reads within fseek. An ordinary read into its buffer finds the buffer empty and wants to fill it.
bool IsReadOfSeek(const TextStream &stream, const char *target, std::size_t size) {
    const std::FILE &file = *stream.file;
    return stream.sought && target == file._IO_buf_base &&
           (size < static_cast<std::size_t>(file._IO_buf_end - file._IO_buf_base) ||
            file._IO_read_end != file._IO_read_base);
}

// Fetches a raw block, beginning with the byte that was read ahead. Like read.
ssize_t ReadRaw(TextStream &stream, char *block, std::size_t size) {
    const std::size_t held = stream.has_ahead ? 1 : 0;
    ssize_t count = 0;
    if (size > held) {
        count = posix::Read(stream.descriptor, block + held, size - held);
        if (count < 0)
            return count;
    }
    if (held != 0)
        block[0] = stream.ahead;
    stream.has_ahead = false;
    return count + static_cast<ssize_t>(held);
}

// A CR ends the block: joins it with an LF behind it, or keeps what else is there for the next block.
void ResolveLastCarriageReturn(TextStream &stream, char &last) {
    char c;
    if (posix::Read(stream.descriptor, &c, 1) != 1)
        return;
    if (c == '\n') {
        last = '\n';
    } else {
        stream.ahead = c;
        stream.has_ahead = true;
    }
}

ssize_t ReadText(void *cookie, char *block, std::size_t size) {
    auto &stream = *static_cast<TextStream *>(cookie);
    if (IsReadOfSeek(stream, block, size)) {
        stream.stepping = true;
        return 0;
    }
    stream.sought = false;
    if (stream.ended || size == 0)
        return 0;
    const ssize_t raw = ReadRaw(stream, block, size);
    if (raw <= 0)
        return raw;
    auto count = static_cast<std::size_t>(raw);
    const void *end = std::memchr(block, end_of_text, count);
    if (end != nullptr) {
        count = static_cast<std::size_t>(static_cast<const char *>(end) - block);
        stream.ended = true;
    }
    count = posix::DropCarriageReturns(block, count);
    if (!stream.ended && block[count - 1] == '\r')
        ResolveLastCarriageReturn(stream, block[count - 1]);
    return static_cast<ssize_t>(count);
}

// Answers `size`, or 0 after a failure: the C library knows no error in between.
ssize_t WriteText(void *cookie, const char *data, std::size_t size) {
    auto &stream = *static_cast<TextStream *>(cookie);
    std::size_t used = 0;
    for (std::size_t done = 0; done < size; done += used) {
        const std::size_t count =
            posix::AddCarriageReturns(data + done, size - done, stream.staging, buffer_size, used);
        if (posix::WriteAll(stream.descriptor, stream.staging, count) != count)
            return 0;
    }
    return static_cast<ssize_t>(size);
}

// Line ends between the file's offset and the caller's place, each of which the C library counts as one byte too few:
// unread ones lie in front of the offset, unwritten ones behind it.
off_t UncountedBytes(const TextStream &stream) {
    const std::FILE &file = *stream.file;
    if (stream.reading)
        return -static_cast<off_t>(
            posix::CountLineFeeds(file._IO_read_ptr, static_cast<std::size_t>(file._IO_read_end - file._IO_read_ptr)));
    return static_cast<off_t>(
        posix::CountLineFeeds(file._IO_write_base, static_cast<std::size_t>(file._IO_write_ptr - file._IO_write_base)));
}

int SeekText(void *cookie, off64_t *offset, int whence) {
    auto &stream = *static_cast<TextStream *>(cookie);
    off_t target = *offset;
    if (whence == SEEK_CUR) {
        off_t present = lseek(stream.descriptor, 0, SEEK_CUR);
        if (present < 0)
            return -1;
        if (stream.has_ahead)
            --present;
        if (!stream.stepping)
            present += UncountedBytes(stream);
        if (*offset == 0) {
            *offset = present;
            return 0;
        }
        target += present;
        whence = SEEK_SET;
    }
    stream.stepping = false;
    target = lseek(stream.descriptor, target, whence);
    if (target < 0)
        return -1;
    stream.has_ahead = false;
    stream.ended = false;
    stream.sought = true;
    *offset = target;
    return 0;
}

int CloseText(void *cookie) {
    auto *stream = static_cast<TextStream *>(cookie);
    Delist(stream);
    const int result = close(stream->descriptor);
    delete stream;
    return result;
}

// Flags of open for the mode, or -1 for a mode that isn't known.
int OpenFlags(const char *mode) {
    if (mode == nullptr || mode[0] == 0 || (mode[1] != 0 && (mode[1] != 't' || mode[2] != 0)))
        return -1;
    switch (mode[0]) {
    case 'r':
        return O_RDONLY;
    case 'w':
        return O_WRONLY | O_CREAT | O_TRUNC;
    case 'a':
        return O_WRONLY | O_CREAT | O_APPEND;
    default:
        return -1;
    }
}

int OpenFile(const char *path, int flags) {
    posix::PathBuffer host;
    if (!posix::ToHost(path, host, sizeof host))
        return -1;
    const int descriptor = posix::Open(host, flags, 0666);
    struct stat status;
    if (descriptor >= 0 && (fstat(descriptor, &status) != 0 || S_ISDIR(status.st_mode))) {
        close(descriptor);
        errno = EACCES;
        return -1;
    }
    return descriptor;
}

} // namespace

std::FILE *backend::OpenText(const char *path, const char *mode) {
    const int flags = OpenFlags(mode);
    if (flags < 0) {
        errno = EINVAL;
        return nullptr;
    }
    const int descriptor = OpenFile(path, flags);
    if (descriptor < 0)
        return nullptr;
    auto *stream = new (std::nothrow) TextStream;
    if (stream != nullptr) {
        stream->descriptor = descriptor;
        stream->reading = flags == O_RDONLY;
        stream->file = fopencookie(stream, stream->reading ? "r" : "w", {ReadText, WriteText, SeekText, CloseText});
    }
    if (stream == nullptr || stream->file == nullptr) {
        delete stream;
        close(descriptor);
        errno = ENOMEM;
        return nullptr;
    }
    std::setvbuf(stream->file, stream->buffer, _IOFBF, buffer_size);
    Enlist(stream);
    return stream->file;
}

int posix::DescriptorOf(std::FILE *stream) {
    {
        const std::lock_guard guard(list_mutex);
        for (const TextStream *open = first_stream; open != nullptr; open = open->next)
            if (open->file == stream)
                return open->descriptor;
    }
    return fileno(stream);
}

std::int64_t TellStream(std::FILE *stream) {
    return ftello(stream);
}

bool SeekStream(std::FILE *stream, std::int64_t offset, int whence) {
    return fseeko(stream, offset, whence) == 0;
}

} // namespace zr::platform
