// Temporary folder and names, and the number that no other call gives.
#include "platform/temporary.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include "platform/files.h"
#include "platform/posix/posix_descriptors.h"
#include "platform/posix/posix_paths.h"

namespace zr::platform {

namespace {

using posix::PathBuffer;

constexpr unsigned number_mask = 0xffff;
constexpr std::size_t room_for_name = 14; // what is kept free behind the folder

bool IsFolder(const char *path) {
    PathBuffer host;
    struct stat status;
    return posix::ToHost(path, host, sizeof host) && stat(host, &status) == 0 && S_ISDIR(status.st_mode);
}

// Random bytes of the system; false only where it has none to give.
bool FillRandom(void *out, std::size_t size) {
    ssize_t count = -1;
    do
        count = getrandom(out, size, 0); // requests of up to 256 bytes are never cut short
    while (count < 0 && errno == EINTR);
    return count == static_cast<ssize_t>(size);
}

// A number to start the search for a free name with.
unsigned FirstNumber() {
    unsigned number = 0;
    return FillRandom(&number, sizeof number) ? number : backend::TickCount();
}

// Puts the name behind the folder in path[0..length-1].
void ComposeName(char (&path)[path_size], std::size_t length, const char *prefix, unsigned number) {
    std::snprintf(path + length, sizeof path - length, "%.3s%X.tmp", prefix, number);
}

// Makes the file, which must not exist, with the rights that any new file gets: what is copied from it later must not
// be closed to others.
int CreateNew(const char *path) {
    PathBuffer host;
    if (!posix::ToHost(path, host, sizeof host))
        return errno;
    constexpr mode_t everybody = 0666;
    const int descriptor = posix::Open(host, O_WRONLY | O_CREAT | O_EXCL, everybody);
    if (descriptor < 0)
        return errno;
    close(descriptor);
    return 0;
}

// Host form, absolute, of what TMPDIR names.
bool HostTempFolder(PathBuffer &out) {
    const char *folder = std::getenv("TMPDIR");
    if (folder == nullptr || folder[0] == 0)
        folder = "/tmp";
    std::size_t start = 0;
    if (folder[0] != '/') {
        if (getcwd(out, sizeof out - 1) == nullptr)
            return false;
        start = std::strlen(out);
        out[start++] = '/';
    }
    const std::size_t length = std::strlen(folder);
    if (length >= sizeof out - start)
        return false;
    std::memcpy(out + start, folder, length + 1);
    return true;
}

// Resolves "." and ".." and runs of separators in an absolute path in the library's form, and puts one separator at its
// end: paths composed below the folder begin with it then. Answers the length.
std::size_t ResolveFolder(char *folder) {
    constexpr std::size_t drive = 2; // "C:"
    std::size_t length = drive;
    for (const char *from = folder + drive; *from != 0;) {
        from += std::strspn(from, "\\");
        const std::size_t element = std::strcspn(from, "\\");
        const bool current = element == 0 || (element == 1 && from[0] == '.');
        const bool above = element == 2 && from[0] == '.' && from[1] == '.';
        if (above && length > drive) {
            do
                --length;
            while (folder[length] != '\\');
        } else if (!current && !above) {
            folder[length++] = '\\';
            std::memmove(folder + length, from, element);
            length += element;
        }
        from += element;
    }
    folder[length++] = '\\';
    folder[length] = 0;
    return length;
}

} // namespace

std::size_t backend::TempFolder(char *out, std::size_t size) {
    if (out != nullptr && size != 0)
        out[0] = 0;
    PathBuffer host;
    char folder[sizeof host + 3]; // the drive, and a separator at the end
    if (!HostTempFolder(host) || !posix::FromHost(host, folder, sizeof folder - 1))
        return 0;
    const std::size_t length = ResolveFolder(folder);
    if (out == nullptr || size <= length)
        return length + 1;
    std::memcpy(out, folder, length + 1);
    return length;
}

unsigned backend::TempFileName(const char *folder, const char *prefix, unsigned unique, char *out) {
    out[0] = 0;
    if (folder == nullptr || strnlen(folder, path_size) > path_size - room_for_name || !IsFolder(folder))
        return 0;
    char path[path_size];
    std::size_t length = std::strlen(folder);
    std::memcpy(path, folder, length);
    if (path[length - 1] != '\\')
        path[length++] = '\\';
    if (prefix == nullptr)
        prefix = "";
    unsigned number = unique & number_mask;
    if (number != 0) {
        ComposeName(path, length, prefix, number);
        std::strcpy(out, path);
        return number;
    }
    number = FirstNumber() & number_mask;
    for (unsigned tries = 0; tries <= number_mask; ++tries, number = (number + 1) & number_mask) {
        if (number == 0)
            continue;
        ComposeName(path, length, prefix, number);
        const int code = CreateNew(path);
        if (code == 0) {
            std::strcpy(out, path);
            return number;
        }
        if (code != EEXIST)
            return 0;
    }
    return 0;
}

std::uint32_t backend::TickCount() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    constexpr std::uint64_t milliseconds_per_second = 1000;
    constexpr std::uint64_t nanoseconds_per_millisecond = 1000000;
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(now.tv_sec) * milliseconds_per_second +
                                      static_cast<std::uint64_t>(now.tv_nsec) / nanoseconds_per_millisecond);
}

int backend::CreateUuid(Uuid &out) {
    constexpr int no_address = 1739; // the desktop's status for a machine that has nothing to make one from
    if (!FillRandom(&out, sizeof out))
        return no_address;
    out.data3 = static_cast<std::uint16_t>((out.data3 & 0x0fff) | 0x4000); // version 4: random
    out.data4[0] = static_cast<std::uint8_t>((out.data4[0] & 0x3f) | 0x80);
    return 0;
}

} // namespace zr::platform
