// Files that are written over in place.
#include "platform/raw_output.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/posix_attributes.h"
#include "platform/posix/posix_descriptors.h"
#include "platform/posix/posix_errors.h"

namespace zr::platform {

namespace {

int CodeOf(int result) {
    return result == 0 ? done : posix::SystemCode(errno);
}

// Files, and devices that swallow what they get. A pipe is none.
int CheckKind(const struct stat &status) {
    if (!S_ISREG(status.st_mode) && !S_ISCHR(status.st_mode))
        return access_denied;
    return (posix::AttributesOf(status, "") & attribute_read_only) != 0 ? access_denied : done;
}

// What would be refused later, and by default end the process.
bool IsAboveLimit(std::uint64_t size) {
    rlimit limit;
    return getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY && size > limit.rlim_cur;
}

} // namespace

int backend::OpenOutput(const char *path, std::intptr_t &file, std::uint64_t &size) {
    posix::PathBuffer host;
    int code = posix::Translate(path, host);
    if (code != done)
        return code;
    // A pipe or a device at which nobody waits must not hold this up.
    const int descriptor = posix::Open(host, O_WRONLY | O_NONBLOCK | O_NOCTTY, 0);
    if (descriptor < 0)
        return posix::FailureCode(host, errno);
    struct stat status;
    code = fstat(descriptor, &status) == 0 ? CheckKind(status) : posix::SystemCode(errno);
    if (code != done) {
        close(descriptor);
        return code;
    }
    file = descriptor;
    size = S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
    return done;
}

void backend::MakePrivate(std::intptr_t file) {
    static_cast<void>(fchmod(static_cast<int>(file), S_IRUSR | S_IWUSR)); // some file systems know no permissions
}

int backend::ReserveOutput(std::intptr_t file, std::uint64_t size) {
    if (size == 0)
        return done;
    if (IsAboveLimit(size))
        return disk_full;
    int result;
    do
        result = fallocate(static_cast<int>(file), FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size));
    while (result != 0 && errno == EINTR);
    return result != 0 && errno == ENODEV ? int{done} : CodeOf(result); // a device has no room
}

int backend::WriteOutput(std::intptr_t file, std::uint64_t at, const char *bytes, std::size_t size) {
    for (std::size_t written = 0; written < size;) {
        const ssize_t count =
            pwrite(static_cast<int>(file), bytes + written, size - written, static_cast<off_t>(at + written));
        if (count > 0)
            written += static_cast<std::size_t>(count);
        else if (count == 0 || errno != EINTR)
            return count == 0 ? int{disk_full} : posix::SystemCode(errno);
    }
    return done;
}

int backend::CutOutput(std::intptr_t file, std::uint64_t size) {
    const int code = CodeOf(ftruncate(static_cast<int>(file), static_cast<off_t>(size)));
    struct stat status;
    const bool has_length = code == done || fstat(static_cast<int>(file), &status) != 0 || S_ISREG(status.st_mode);
    return has_length ? code : int{done}; // a device keeps nothing
}

int backend::CloseOutput(std::intptr_t file) {
    return close(static_cast<int>(file)) == 0 || errno == EINTR ? int{done} : posix::SystemCode(errno);
}

} // namespace zr::platform
