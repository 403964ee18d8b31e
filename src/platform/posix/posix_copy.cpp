// Copies of single files.
#include "platform/posix/posix_copy.h"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/posix_attributes.h"
#include "platform/posix/posix_descriptors.h"
#include "platform/posix/posix_errors.h"

namespace zr::platform::posix {

namespace {

constexpr mode_t copied_permissions = 0777; // not those by which a program gains its owner's rights

// An open file, closed at the end at the latest.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    // False with errno set if the host tells only now that the content could not be stored.
    bool Close() {
        const int descriptor = m_descriptor;
        m_descriptor = -1;
        return descriptor < 0 || close(descriptor) == 0 || errno == EINTR;
    }
    void Set(int descriptor) {
        Close();
        m_descriptor = descriptor;
    }
    bool IsOpen() const { return m_descriptor >= 0; }
    int Get() const { return m_descriptor; }

private:
    int m_descriptor = -1;
};

// A pipe or a device at which nobody waits must not hold the copy up.
constexpr int no_waiting = O_NONBLOCK | O_NOCTTY;

constexpr std::size_t buffer_size = 65536;

bool CopyThroughMemory(int from, int to) {
    char buffer[buffer_size];
    ssize_t count;
    while ((count = Read(from, buffer, sizeof buffer)) > 0)
        if (WriteAll(to, buffer, static_cast<std::size_t>(count)) != static_cast<std::size_t>(count))
            return false;
    return count == 0;
}

// Whether the host merely can't copy between these two files by itself.
bool NeedsMemory(int error) {
    return error == EXDEV || error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == EPERM ||
           error == EBADF;
}

// Copies everything, from where the two files stand. False with errno set. For a small file the host's own copying is
// the longer way.
bool CopyContent(int from, int to, off_t size) {
    if (size <= static_cast<off_t>(buffer_size))
        return CopyThroughMemory(from, to);
    constexpr std::size_t chunk = std::size_t{1} << 30;
    for (bool first = true;; first = false) {
        const ssize_t count = copy_file_range(from, nullptr, to, nullptr, chunk, 0);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return NeedsMemory(errno) && CopyThroughMemory(from, to);
        if (count == 0) // some files tell their size only to whoever reads them
            return first ? CopyThroughMemory(from, to) : true;
    }
}

// Permissions and time. Some file systems know neither and refuse; the copy is none the worse.
void CopyFacts(const struct stat &source, int to) {
    const int ignored = fchmod(to, source.st_mode & copied_permissions);
    const timespec times[] = {{0, UTIME_OMIT}, source.st_mtim};
    static_cast<void>(ignored | futimens(to, times));
}

// The file at `host` goes; if a link leads there, the link stays.
void RemoveCopy(const char *host) {
    PathBuffer target;
    if (realpath(host, target) != nullptr)
        unlink(target);
}

int OpenSource(const char *host, Descriptor &source, struct stat &status) {
    source.Set(Open(host, O_RDONLY | no_waiting, 0));
    if (!source.IsOpen())
        return FailureCode(host, errno);
    if (fstat(source.Get(), &status) != 0)
        return SystemCode(errno);
    return S_ISREG(status.st_mode) ? done : access_denied;
}

// Opens an existing target and empties it, if it may be written over.
int OpenExisting(const char *host, const struct stat &source, Descriptor &target) {
    struct stat status;
    if (stat(host, &status) != 0)
        return FailureCode(host, errno);
    if (status.st_dev == source.st_dev && status.st_ino == source.st_ino)
        return sharing_violation;
    if (!S_ISREG(status.st_mode) && !S_ISCHR(status.st_mode))
        return access_denied;
    if ((AttributesOf(status, "") & attribute_read_only) != 0)
        return access_denied;
    target.Set(Open(host, O_WRONLY | no_waiting, 0));
    if (!target.IsOpen())
        return FailureCode(host, errno);
    if (fstat(target.Get(), &status) != 0)
        return SystemCode(errno);
    if (S_ISCHR(status.st_mode))
        return fcntl(target.Get(), F_SETFL, 0) == 0 ? done : SystemCode(errno);
    return ftruncate(target.Get(), 0) == 0 ? done : SystemCode(errno);
}

// Opens a target that doesn't exist yet. `existed` tells that there is one.
int OpenNew(const char *host, const struct stat &source, Descriptor &target, bool &existed) {
    const mode_t mode = source.st_mode & copied_permissions;
    existed = false;
    target.Set(Open(host, O_WRONLY | O_CREAT | O_EXCL, mode));
    if (target.IsOpen())
        return done;
    int error = errno;
    struct stat status;
    if (error == EISDIR) { // a separator at the end
        existed = stat(host, &status) == 0;
        return existed ? already_exists : invalid_name;
    }
    if (error == EEXIST && stat(host, &status) != 0 && errno == ENOENT) { // a link to a file that is still to come
        target.Set(Open(host, O_WRONLY | O_CREAT | no_waiting, mode));
        if (target.IsOpen())
            return done;
        error = errno;
    }
    existed = error == EEXIST;
    return FailureCode(host, error);
}

// Fills the new or emptied target.
int Fill(Descriptor &source, const struct stat &status, Descriptor &target) {
    if (!CopyContent(source.Get(), target.Get(), status.st_size))
        return SystemCode(errno);
    CopyFacts(status, target.Get());
    return target.Close() ? done : SystemCode(errno);
}

int Copy(const char *from, const char *to, bool over) {
    Descriptor source, target;
    struct stat status;
    int code = OpenSource(from, source, status);
    if (code != done)
        return code;
    bool existed;
    code = OpenNew(to, status, target, existed);
    if (existed && over)
        code = OpenExisting(to, status, target);
    if (code != done)
        return code;
    code = Fill(source, status, target);
    if (code != done && !existed)
        RemoveCopy(to);
    return code;
}

} // namespace

int CopyOver(const char *from, const char *to) {
    return Copy(from, to, true);
}

int CopyToNewFile(const char *from, const char *to) {
    PathBuffer target;
    const ssize_t length = readlink(from, target, sizeof target - 1);
    if (length < 0)
        return Copy(from, to, false);
    target[length] = 0;
    return symlink(target, to) == 0 ? done : FailureCode(to, errno);
}

} // namespace zr::platform::posix
