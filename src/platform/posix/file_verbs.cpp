// What can be done to files and folders by name.
#include "platform/file_verbs.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/posix_attributes.h"
#include "platform/posix/posix_copy.h"
#include "platform/posix/posix_errors.h"
#include "platform/posix/posix_paths.h"

namespace zr::platform {

namespace {

using posix::FailureCode;
using posix::PathBuffer;
using posix::Translate;

bool IsSameFile(const struct stat &a, const struct stat &b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool IsReadOnly(const struct stat &status) {
    return (posix::AttributesOf(status, "") & attribute_read_only) != 0;
}

bool IsEmpty(const char *path) {
    return path != nullptr && path[0] == 0;
}

// Cuts the separators at the end, behind which a link would be followed; true if there were any.
bool CutSeparators(PathBuffer &host) {
    std::size_t length = std::strlen(host);
    const std::size_t before = length;
    while (length > 1 && host[length - 1] == '/')
        --length;
    host[length] = 0;
    return length != before;
}

// Moves a file to where no rename reaches.
int MoveByCopy(const char *from, const char *to) {
    const int code = posix::CopyToNewFile(from, to);
    if (code != done)
        return code;
    if (unlink(from) == 0)
        return done;
    const int error = errno;
    unlink(to);
    return posix::SystemCode(error);
}

// Whether the two names are one, or differ by what the host takes for the same: then nothing is in the way of the move.
bool IsSameName(const char *from, const char *to, const struct stat &status) {
    struct stat other;
    return lstat(to, &other) == 0 && IsSameFile(status, other) &&
           (std::strcmp(from, to) == 0 || S_ISDIR(status.st_mode) || status.st_nlink == 1);
}

// A rename that replaces nothing; 0 or a value of errno.
int RenameToNew(const char *from, const char *to) {
    if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    // A file system without the flag: what comes to stand there between the look and the rename would be replaced.
    struct stat status;
    if (lstat(to, &status) == 0)
        return EEXIST;
    return rename(from, to) == 0 ? 0 : errno;
}

// Why a move failed, in the order in which the desktop looks.
int MoveFailure(const char *from, const char *to, const struct stat &status, int error) {
    if (error == EXDEV)
        return S_ISDIR(status.st_mode) ? access_denied : MoveByCopy(from, to);
    if (error == EINVAL && S_ISDIR(status.st_mode))
        return sharing_violation; // into itself
    if (error == ENOTDIR) {
        const int code = FailureCode(to, error);
        return code == path_not_found && to[std::strlen(to) - 1] == '/' ? not_a_folder : code;
    }
    return FailureCode(to, error);
}

} // namespace

int GetAttributes(const char *path, std::uint32_t &out) {
    PathBuffer host;
    const int code = Translate(path, host);
    if (code != done)
        return code;
    struct stat status;
    if (stat(host, &status) != 0)
        return FailureCode(host, errno);
    CutSeparators(host);
    const char *name = std::strrchr(host, '/');
    out = posix::AttributesOf(status, name != nullptr ? name + 1 : host);
    return done;
}

int SetAttributes(const char *path, std::uint32_t attributes) {
    PathBuffer host;
    const int code = Translate(path, host);
    if (code != done)
        return code;
    struct stat status;
    if (stat(host, &status) != 0)
        return FailureCode(host, errno);
    const bool read_only = (attributes & attribute_read_only) != 0;
    if (read_only == IsReadOnly(status))
        return done;
    const mode_t mode = status.st_mode & posix::all_permissions;
    return chmod(host, read_only ? mode & ~posix::any_write : mode | S_IWUSR) == 0 ? done : FailureCode(host, errno);
}

bool CanAccess(const char *path, int mode) {
    constexpr int may_write = 2, may_read = 4;
    PathBuffer host;
    struct stat status;
    if ((mode & ~(may_write | may_read)) != 0 || Translate(path, host) != done || stat(host, &status) != 0)
        return false;
    int rights = (mode & may_read) != 0 ? R_OK : F_OK;
    if ((mode & may_write) != 0 && !S_ISDIR(status.st_mode)) {
        if (IsReadOnly(status))
            return false;
        rights |= W_OK;
    }
    return faccessat(AT_FDCWD, host, rights, AT_EACCESS) == 0;
}

int RemoveUnprotectedFile(const char *path) {
    PathBuffer host;
    const int code = Translate(path, host);
    if (code != done)
        return code;
    struct stat status;
    if (lstat(host, &status) != 0)
        return FailureCode(host, errno);
    if (S_ISDIR(status.st_mode) || (!S_ISLNK(status.st_mode) && IsReadOnly(status)))
        return access_denied;
    return unlink(host) == 0 ? done : FailureCode(host, errno);
}

int CopyFileOver(const char *from, const char *to) {
    PathBuffer host_from, host_to;
    int code = Translate(from, host_from);
    if (code == done)
        code = Translate(to, host_to);
    return code != done ? code : posix::CopyOver(host_from, host_to);
}

int MoveToNewName(const char *from, const char *to) {
    PathBuffer host_from, host_to;
    int code = Translate(from, host_from);
    if (code == done)
        code = Translate(to, host_to);
    if (code != done)
        return code;
    struct stat status;
    if (lstat(host_from, &status) != 0)
        return FailureCode(host_from, errno);
    CutSeparators(host_from);
    if (IsSameName(host_from, host_to, status))
        return rename(host_from, host_to) == 0 ? done : FailureCode(host_to, errno);
    const bool far = posix::DriveOf(from) != posix::DriveOf(to);
    if (far && S_ISDIR(status.st_mode))
        return access_denied;
    const int error = RenameToNew(host_from, host_to);
    return error == 0 ? done : MoveFailure(host_from, host_to, status, error);
}

int MakeFolder(const char *path) {
    PathBuffer host;
    const int code = Translate(path, host);
    if (code != done)
        return code;
    if (mkdir(host, 0777) == 0)
        return done;
    const int error = errno;
    return error == ENOTDIR ? path_not_found : FailureCode(host, error);
}

int RemoveEmptyFolder(const char *path) {
    if (IsEmpty(path))
        return invalid_name;
    PathBuffer host;
    const int code = Translate(path, host);
    if (code != done)
        return code;
    CutSeparators(host);
    struct stat status, working;
    if (lstat(host, &status) != 0)
        return FailureCode(host, errno);
    if (!S_ISDIR(status.st_mode))
        return not_a_folder;
    if (stat(".", &working) == 0 && IsSameFile(status, working))
        return sharing_violation;
    if (IsReadOnly(status))
        return access_denied;
    return rmdir(host) == 0 ? done : FailureCode(host, errno);
}

} // namespace zr::platform
