// From errno to the codes of system_error.h.
#include "platform/posix/posix_errors.h"

#include <cerrno>
#include <cstring>

#include <sys/stat.h>

namespace zr::platform::posix {

namespace {

struct CodePair {
    int error;
    SystemError code;
};

constexpr CodePair codes[] = {
    {ENOENT, file_not_found},      {ENOTDIR, path_not_found},     {EACCES, access_denied},
    {EPERM, access_denied},        {EISDIR, access_denied},       {EROFS, write_protected},
    {EEXIST, already_exists},      {ENOTEMPTY, folder_not_empty}, {EBUSY, sharing_violation},
    {ETXTBSY, sharing_violation},  {EAGAIN, lock_violation},      {EMFILE, too_many_open_files},
    {ENFILE, too_many_open_files}, {ENOMEM, out_of_memory},       {EXDEV, other_device},
    {ENOSPC, disk_full},           {EDQUOT, disk_full},           {EFBIG, disk_full},
    {EINVAL, invalid_parameter},   {ENAMETOOLONG, path_too_long}, {ELOOP, cannot_resolve_name},
    {EOPNOTSUPP, not_supported},   {ENOSYS, not_supported},
};

// Length of `host` without the separators at its end.
std::size_t TrimmedLength(const char *host) {
    std::size_t length = std::strlen(host);
    while (length > 1 && host[length - 1] == '/')
        --length;
    return length;
}

// Whether the first `length` characters of `host` name something.
bool Exists(const char *host, std::size_t length) {
    PathBuffer path;
    struct stat status;
    if (length >= sizeof path)
        return false;
    std::memcpy(path, host, length);
    path[length] = 0;
    return stat(path, &status) == 0;
}

bool ParentExists(const char *host) {
    std::size_t length = TrimmedLength(host);
    while (length != 0 && host[length - 1] != '/')
        --length;
    return length == 0 || Exists(host, length);
}

} // namespace

int SystemCode(int error) {
    for (const CodePair &pair : codes)
        if (pair.error == error)
            return pair.code;
    return io_failure;
}

int FailureCode(const char *host, int error) {
    if (error == ENOENT) {
        if (std::strpbrk(host, "*?<>|\"") != nullptr)
            return invalid_name;
        return ParentExists(host) ? file_not_found : path_not_found;
    }
    if (error == ENOTDIR) {
        const std::size_t length = TrimmedLength(host);
        return host[length] != 0 && Exists(host, length) ? invalid_name : path_not_found;
    }
    return SystemCode(error);
}

int Translate(const char *path, PathBuffer &host) {
    if (ToHost(path, host, sizeof host))
        return done;
    return errno == ENAMETOOLONG ? path_too_long : path_not_found;
}

} // namespace zr::platform::posix
