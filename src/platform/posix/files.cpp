// File status and the steps of a safe replacement.
#include "platform/files.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/posix_descriptors.h"
#include "platform/posix/posix_paths.h"

namespace zr::platform {

namespace {

using posix::PathBuffer;
using posix::ToHost;

constexpr mode_t all_permissions = 07777;
constexpr mode_t any_write = 0222;

bool IsBareDrive(const char *path) {
    return path != nullptr && path[0] != 0 && path[1] == ':' && path[2] == 0;
}

bool Fail(int code) {
    errno = code;
    return false;
}

// Length of the folder part of `path`, its last separator or drive colon included.
std::size_t FolderLength(const char *path) {
    std::size_t length = 0;
    for (std::size_t i = 0; path[i] != 0; ++i)
        if (path[i] == '\\' || path[i] == '/' || (i == 1 && path[i] == ':'))
            length = i + 1;
    return length;
}

// Makes the system write the entry of the folder in which `host` lies, so that a rename outlives a power failure. Some file
// systems refuse this for folders, which is no failure of the rename.
void FlushFolderOf(const char *host) {
    PathBuffer folder;
    const char *name = std::strrchr(host, '/');
    const std::size_t length = name == nullptr ? 0 : static_cast<std::size_t>(name - host);
    std::memcpy(folder, host, length);
    std::strcpy(folder + length, name == nullptr ? "." : "/");
    const int descriptor = posix::Open(folder, O_RDONLY | O_DIRECTORY, 0);
    if (descriptor >= 0) {
        fsync(descriptor);
        close(descriptor);
    }
}

// Makes `target`, to which the link `host` leads, absolute and free of ".." as the host does it, one link after the other: in the
// library's form ".." is a matter of the text. Only the last element need not exist.
bool ResolveTarget(const char *host, PathBuffer &target) {
    const char *link = std::strrchr(host, '/');
    const std::size_t folder = target[0] == '/' || link == nullptr ? 0 : static_cast<std::size_t>(link - host) + 1;
    PathBuffer joined;
    if (folder + std::strlen(target) >= sizeof joined)
        return Fail(ENAMETOOLONG);
    std::memcpy(joined, host, folder);
    std::strcpy(joined + folder, target);
    char *slash = std::strrchr(joined, '/');
    if (slash == nullptr || posix::HasDotElement(slash + 1))
        return realpath(joined, target) != nullptr;
    char name[path_size];
    if (std::strlen(slash + 1) >= sizeof name)
        return Fail(ENAMETOOLONG);
    std::strcpy(name, slash + 1);
    slash[1] = 0;
    if (realpath(joined, target) == nullptr)
        return false;
    if (std::strlen(target) + 1 + std::strlen(name) >= sizeof target)
        return Fail(ENAMETOOLONG);
    if (target[1] != 0)
        std::strcat(target, "/");
    std::strcat(target, name);
    return true;
}

// Replaces `path` (library's form) by the target of the link that `host` is.
bool StepAlongLink(char (&path)[path_size], const char *host) {
    PathBuffer target;
    const ssize_t length = readlink(host, target, sizeof target - 1);
    if (length < 0)
        return false;
    target[length] = 0;
    if (posix::HasDotElement(target))
        return ResolveTarget(host, target) && posix::FromHost(target, path, sizeof path);
    char form[path_size];
    if (!posix::FromHost(target, form, sizeof form))
        return false;
    const std::size_t folder = target[0] == '/' ? 0 : FolderLength(path);
    if (folder + std::strlen(form) > path_limit)
        return Fail(ENAMETOOLONG);
    std::strcpy(path + folder, form);
    return true;
}

} // namespace

bool backend::GetFileStatus(const char *path, FileStatus &out) {
    if (IsBareDrive(path))
        return Fail(ENOENT);
    PathBuffer host;
    struct stat status;
    if (!ToHost(path, host, sizeof host) || stat(host, &status) != 0)
        return false;
    out.folder = S_ISDIR(status.st_mode);
    out.modified = status.st_mtime;
    out.size = out.folder ? 0 : static_cast<std::uint64_t>(status.st_size);
    return true;
}

bool HostPath(const char *path, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return Fail(EINVAL);
    return ToHost(path, out, size);
}

bool CreateBeside(const char *target, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return Fail(EINVAL);
    out[0] = 0;
    PathBuffer host;
    if (!ToHost(target, host, sizeof host))
        return false;
    static constexpr char pattern[] = "zr_XXXXXX";
    const std::size_t folder = FolderLength(target);
    char path[path_size];
    if (folder + sizeof pattern > sizeof path || folder + sizeof pattern > size)
        return Fail(ENAMETOOLONG);
    std::memcpy(path, target, folder);
    std::strcpy(path + folder, pattern);
    if (!ToHost(path, host, sizeof host))
        return false;
    const int descriptor = mkostemp(host, O_CLOEXEC);
    if (descriptor < 0)
        return false;
    close(descriptor);
    std::memcpy(out, target, folder);
    std::strcpy(out + folder, host + std::strlen(host) - (sizeof pattern - 1));
    return true;
}

bool FlushToDisk(std::FILE *stream) {
    if (stream == nullptr)
        return Fail(EINVAL);
    if (std::fflush(stream) != 0)
        return false;
    const int descriptor = posix::DescriptorOf(stream);
    return descriptor >= 0 && fsync(descriptor) == 0;
}

bool MoveOver(const char *from, const char *to) {
    PathBuffer host_from, host_to;
    if (!ToHost(from, host_from, sizeof host_from) || !ToHost(to, host_to, sizeof host_to))
        return false;
    struct stat status;
    if (lstat(host_to, &status) == 0 && !S_ISLNK(status.st_mode)) {
        if (S_ISDIR(status.st_mode))
            return Fail(EISDIR);
        if ((status.st_mode & any_write) == 0)
            return Fail(EACCES);
    }
    if (rename(host_from, host_to) != 0)
        return false;
    FlushFolderOf(host_to);
    return true;
}

bool FollowLinks(const char *path, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return Fail(EINVAL);
    out[0] = 0;
    constexpr int link_limit = 40;
    char current[path_size];
    PathBuffer host;
    if (!ToHost(path, host, sizeof host))
        return false;
    std::strcpy(current, path);
    struct stat status;
    for (int links = 0; lstat(host, &status) == 0 && S_ISLNK(status.st_mode); ++links) {
        if (links == link_limit)
            return Fail(ELOOP);
        if (!StepAlongLink(current, host) || !ToHost(current, host, sizeof host))
            return false;
    }
    if (std::strlen(current) >= size)
        return Fail(ENAMETOOLONG);
    std::strcpy(out, current);
    return true;
}

bool CopyMode(const char *from, const char *to) {
    PathBuffer host_from, host_to;
    struct stat status;
    return ToHost(from, host_from, sizeof host_from) && ToHost(to, host_to, sizeof host_to) &&
           stat(host_from, &status) == 0 && chmod(host_to, status.st_mode & all_permissions) == 0;
}

bool RemoveFile(const char *path) {
    PathBuffer host;
    return ToHost(path, host, sizeof host) && unlink(host) == 0;
}

} // namespace zr::platform
