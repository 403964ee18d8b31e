// Streams. Text is a FILE of the C library over functions of ours that translate line ends between its buffer and the
// file.
//
// The C library believes that a byte in its buffer is a byte of the file. That holds for none of its reckonings of
// position here, so the functions below look at the FILE's own pointers (public in this C library) and answer what
// makes the result of the reckoning right:
//   ftell      asks for the present offset and takes off the unread bytes of the buffer (adds the unwritten ones).
//   fseek      with a place counted from the start goes to a block boundary in front of it, reads a block and goes
//              forward in it by bytes. This read is answered with "nothing there": then the library asks us to move on
//              by the missing bytes. The other directions ask us to move by the wanted bytes less the unread ones.
//   writing    behind a read that left unread bytes goes back by those bytes first. What they were is known from a copy
//              of the block, since the caller's bytes have been put over them by then.
// Appending in binary has functions of ours too, since the C library would tell positions that include the file's end
// before a byte is written. Other binary streams are the C library's alone.
#include "platform/streams.h"

#include <cerrno>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/open_mode.h"
#include "platform/posix/posix_descriptors.h"
#include "platform/posix/posix_paths.h"
#include "platform/posix/text_translation.h"

namespace zr::platform {

namespace {

constexpr char end_of_text = 0x1A;
constexpr std::size_t buffer_size = 65536;

// The stream below a FILE. All open ones form a list, by which the descriptor of a FILE is found.
struct Stream {
    std::FILE *file = nullptr;
    Stream *next = nullptr;
    Stream *previous = nullptr;
    int descriptor = -1;
    bool update = false;    // read and written
    bool ended = false;     // 0x1A was met
    bool has_ahead = false; // `ahead` was read behind a CR at the end of a block and isn't delivered yet
    char ahead = 0;
    std::size_t copied = 0; // of an update stream: bytes of the FILE's buffer that `staging` holds as they were read
    char buffer[buffer_size];
    char staging[buffer_size]; // text on its way out, line ends made; or a copy of the block that was read last
};

constinit std::mutex list_mutex;
constinit Stream *first_stream = nullptr;

void Enlist(Stream *stream) {
    const std::lock_guard guard(list_mutex);
    stream->next = first_stream;
    if (first_stream != nullptr)
        first_stream->previous = stream;
    first_stream = stream;
}

void Delist(Stream *stream) {
    const std::lock_guard guard(list_mutex);
    (stream->previous != nullptr ? stream->previous->next : first_stream) = stream->next;
    if (stream->next != nullptr)
        stream->next->previous = stream->previous;
}

// While the C library seeks from the start, its read pointers are put to a place that none of its other reads finds
// them at: those begin with the pointers at the buffer's start, and whatever the seek does next puts them there again.
void MarkSeek(std::FILE &file) {
    if (file._IO_buf_base != file._IO_buf_end)
        file._IO_read_base = file._IO_read_ptr = file._IO_read_end = file._IO_buf_base + 1;
}

bool IsReadOfSeek(const std::FILE &file) {
    return file._IO_buf_base != nullptr && file._IO_read_base == file._IO_buf_base + 1;
}

// Fetches a raw block, beginning with the byte that was read ahead. Like read.
ssize_t ReadRaw(Stream &stream, char *block, std::size_t size) {
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
void ResolveLastCarriageReturn(Stream &stream, char &last) {
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

void CopyBlock(Stream &stream, const char *block, std::size_t size) {
    stream.copied = block == stream.file->_IO_buf_base && size <= buffer_size ? size : 0;
    std::memcpy(stream.staging, block, stream.copied);
}

ssize_t ReadText(void *cookie, char *block, std::size_t size) {
    auto &stream = *static_cast<Stream *>(cookie);
    if (stream.ended || size == 0 || IsReadOfSeek(*stream.file))
        return 0;
    // Where nothing is written, what writing needs is free for the raw block.
    char *const raw = stream.update ? block : stream.staging;
    const ssize_t fetched = ReadRaw(stream, raw, stream.update ? size : std::min(size, buffer_size));
    if (fetched <= 0)
        return fetched;
    auto count = static_cast<std::size_t>(fetched);
    const void *end = std::memchr(raw, end_of_text, count);
    if (end != nullptr) {
        count = static_cast<std::size_t>(static_cast<const char *>(end) - raw);
        stream.ended = true;
    }
    count =
        stream.update ? posix::DropCarriageReturns(block, count) : posix::CopyWithoutCarriageReturns(raw, count, block);
    if (!stream.ended && block[count - 1] == '\r')
        ResolveLastCarriageReturn(stream, block[count - 1]);
    if (stream.update)
        CopyBlock(stream, block, count);
    return static_cast<ssize_t>(count);
}

// Answers `size`, or 0 after a failure: the C library knows no error in between.
ssize_t WriteText(void *cookie, const char *data, std::size_t size) {
    auto &stream = *static_cast<Stream *>(cookie);
    if (stream.has_ahead && lseek(stream.descriptor, -1, SEEK_CUR) < 0)
        return 0;
    stream.has_ahead = false;
    stream.copied = 0;
    std::size_t used = 0;
    for (std::size_t done = 0; done < size; done += used) {
        const std::size_t count =
            posix::AddCarriageReturns(data + done, size - done, stream.staging, buffer_size, used);
        if (posix::WriteAll(stream.descriptor, stream.staging, count) != count)
            return 0;
    }
    return static_cast<ssize_t>(size);
}

off_t LineFeeds(const char *from, const char *end) {
    return static_cast<off_t>(posix::CountLineFeeds(from, static_cast<std::size_t>(end - from)));
}

bool HasUnwritten(const std::FILE &file) {
    return file._IO_write_ptr > file._IO_write_base;
}

// While the FILE is read there is no room to write; the first byte written makes some.
bool IsWriting(const std::FILE &file) {
    return file._IO_write_end > file._IO_write_base || HasUnwritten(file);
}

// Bytes that were put back and differ from those read lie outside the buffer; what the buffer holds is laid aside
// meanwhile.
bool HasPutBack(const std::FILE &file) {
    return file._IO_read_ptr < file._IO_buf_base || file._IO_read_ptr > file._IO_buf_end;
}

// Line ends among the bytes between the caller's place and the file's offset that were read and not taken. Those that
// the caller wrote over are in the copy.
off_t UnreadLineFeeds(const Stream &stream) {
    const std::FILE &file = *stream.file;
    if (!IsWriting(file))
        return LineFeeds(file._IO_read_ptr, file._IO_read_end) +
               (HasPutBack(file) ? LineFeeds(file._IO_save_base, file._IO_save_end) : 0);
    const auto end = static_cast<std::size_t>(file._IO_read_end - file._IO_buf_base);
    if (file._IO_write_base >= file._IO_read_end || end > stream.copied)
        return 0;
    return LineFeeds(stream.staging + (file._IO_write_base - file._IO_buf_base), stream.staging + end);
}

// The offset from which the C library's count of bytes (unread ones back, unwritten ones forward) ends at the right
// place: it takes each line end for one byte. -1 on failure. `telling`: unwritten bytes are about to be added to the
// answer.
off_t PresentOffset(const Stream &stream, bool telling) {
    off_t present = lseek(stream.descriptor, 0, SEEK_CUR);
    if (present < 0)
        return -1;
    if (stream.has_ahead)
        --present;
    present -= UnreadLineFeeds(stream);
    if (telling && HasUnwritten(*stream.file))
        present += LineFeeds(stream.file->_IO_write_base, stream.file->_IO_write_ptr);
    return present;
}

int SeekText(void *cookie, off64_t *offset, int whence) {
    auto &stream = *static_cast<Stream *>(cookie);
    off_t target = *offset;
    if (whence == SEEK_CUR) {
        const bool telling = *offset == 0;
        const off_t present = PresentOffset(stream, telling);
        if (present < 0)
            return -1;
        if (telling) {
            *offset = present;
            return 0;
        }
        if (target > std::numeric_limits<off_t>::max() - present) {
            errno = EOVERFLOW;
            return -1;
        }
        target += present;
    }
    target = lseek(stream.descriptor, target, whence == SEEK_END ? SEEK_END : SEEK_SET);
    if (target < 0)
        return -1;
    stream.has_ahead = false;
    stream.ended = false;
    if (whence == SEEK_SET)
        MarkSeek(*stream.file);
    *offset = target;
    return 0;
}

ssize_t ReadBytes(void *cookie, char *block, std::size_t size) {
    return posix::Read(static_cast<Stream *>(cookie)->descriptor, block, size);
}

ssize_t WriteBytes(void *cookie, const char *data, std::size_t size) {
    const bool done = posix::WriteAll(static_cast<Stream *>(cookie)->descriptor, data, size) == size;
    return done ? static_cast<ssize_t>(size) : 0;
}

int SeekBytes(void *cookie, off64_t *offset, int whence) {
    *offset = lseek(static_cast<Stream *>(cookie)->descriptor, static_cast<off_t>(*offset), whence);
    return *offset < 0 ? -1 : 0;
}

int CloseStream(void *cookie) {
    auto *stream = static_cast<Stream *>(cookie);
    Delist(stream);
    const int result = close(stream->descriptor);
    delete stream;
    return result;
}

int OpenFlags(const OpenMode &mode) {
    int flags = mode.update ? O_RDWR : mode.letter == 'r' ? O_RDONLY : O_WRONLY;
    if (mode.letter == 'w')
        flags |= O_CREAT | O_TRUNC;
    if (mode.letter == 'a')
        flags |= O_CREAT | O_APPEND;
    return flags;
}

int Refuse(int code) {
    errno = code;
    return -1;
}

// Decided by the permission bits themselves, which don't stop every user.
bool IsReadOnly(const char *host) {
    struct stat status;
    return stat(host, &status) == 0 && S_ISREG(status.st_mode) && (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

// The reason for a failed opening, as the desktop tells it.
int OpeningError(const char *host, int code) {
    if (code != ENOTDIR && code != EISDIR)
        return code;
    struct stat status;
    if (stat(host, &status) == 0 && S_ISDIR(status.st_mode))
        return EACCES;
    return host[std::strlen(host) - 1] == '/' ? EINVAL : ENOENT; // a file named as a folder, or used as one
}

// Answers a descriptor or -1.
int OpenFile(const char *path, int flags) {
    posix::PathBuffer host;
    if (!posix::ToHost(path, host, sizeof host))
        return -1;
    if ((flags & O_ACCMODE) != O_RDONLY && IsReadOnly(host))
        return Refuse(EACCES);
    const int descriptor = posix::Open(host, flags, 0666);
    if (descriptor < 0)
        return Refuse(OpeningError(host, errno));
    struct stat status;
    if (fstat(descriptor, &status) != 0 || S_ISDIR(status.st_mode)) {
        close(descriptor);
        return Refuse(EACCES);
    }
    return descriptor;
}

// Takes off an 0x1A that ends the file. Answers whether it did.
bool DropEndOfText(int descriptor) {
    struct stat status;
    char c;
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0 &&
           pread(descriptor, &c, 1, status.st_size - 1) == 1 && c == end_of_text &&
           ftruncate(descriptor, status.st_size - 1) == 0;
}

// Modes for the C library: never append, the descriptor sees to that.
const char *LibraryMode(const OpenMode &mode) {
    return mode.update ? "r+" : mode.letter == 'r' ? "r" : "w";
}

// Takes over the descriptor; closes it on failure.
std::FILE *MakeStream(int descriptor, const OpenMode &mode, const cookie_io_functions_t &functions) {
    auto *stream = new (std::nothrow) Stream;
    if (stream != nullptr) {
        stream->descriptor = descriptor;
        stream->update = mode.update;
        stream->file = fopencookie(stream, LibraryMode(mode), functions);
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

int OpenFor(const char *path, const char *mode_text, char kind, OpenMode &mode) {
    return ParseOpenMode(mode_text, kind, mode) ? OpenFile(path, OpenFlags(mode)) : Refuse(EINVAL);
}

} // namespace

std::FILE *backend::OpenText(const char *path, const char *mode_text) {
    OpenMode mode;
    const int descriptor = OpenFor(path, mode_text, 't', mode);
    if (descriptor < 0)
        return nullptr;
    if (mode.letter == 'a' && mode.update)
        static_cast<void>(DropEndOfText(descriptor)); // a file that can't be cut is opened as it is
    return MakeStream(descriptor, mode, {ReadText, WriteText, SeekText, CloseStream});
}

std::FILE *backend::OpenBinary(const char *path, const char *mode_text) {
    OpenMode mode;
    const int descriptor = OpenFor(path, mode_text, 'b', mode);
    if (descriptor < 0)
        return nullptr;
    if (mode.letter == 'a')
        return MakeStream(descriptor, mode, {ReadBytes, WriteBytes, SeekBytes, CloseStream});
    std::FILE *stream = fdopen(descriptor, LibraryMode(mode));
    if (stream == nullptr)
        close(descriptor);
    return stream;
}

int posix::DescriptorOf(std::FILE *stream) {
    if (stream == nullptr)
        return -1;
    {
        const std::lock_guard guard(list_mutex);
        for (const Stream *open = first_stream; open != nullptr; open = open->next)
            if (open->file == stream)
                return open->descriptor;
    }
    return fileno(stream);
}

std::int64_t TellStream(std::FILE *stream) {
    return stream == nullptr ? -1 : ftello(stream);
}

bool SeekStream(std::FILE *stream, std::int64_t offset, int whence) {
    return stream != nullptr && fseeko(stream, offset, whence) == 0;
}

} // namespace zr::platform
