// Paths at the border to the system: the one place that turns the library's form into the host's and back.
#include "platform/posix/posix_paths.h"

#include <cerrno>
#include <cstring>

#include "platform/files.h"
#include "platform/separator.h"

namespace zr::platform::posix {

namespace {

bool Fail(int code, char *out) {
    out[0] = 0;
    errno = code;
    return false;
}

bool IsDots(const char *element, std::size_t length) {
    return length == 1 ? element[0] == '.' : length == 2 && element[0] == '.' && element[1] == '.';
}

// Resolves "." and ".." in the host's path `path`. Below the first `floor` characters, which stay, a rooted rest never
// climbs; a relative one keeps the ".." that lead out of it.
void ResolveDots(char *path, std::size_t floor) {
    char *const begin = path + floor;
    const bool rooted = *begin == '/';
    char *to = begin;
    const char *from = begin;
    std::size_t named = 0; // elements written that a ".." can take back
    while (*from != 0) {
        const char *start = from;
        while (*start == '/')
            ++start;
        const std::size_t length = std::strcspn(start, "/");
        from = start + length;
        if (length == 0) { // separators at the end
            if (to != begin)
                *to++ = '/';
        } else if (length == 2 && IsDots(start, length) && named != 0) {
            do
                --to;
            while (to != begin && *to != '/');
            --named;
        } else if (!IsDots(start, length) || (length == 2 && !rooted)) {
            named += IsDots(start, length) ? 0 : 1;
            if (rooted || to != begin)
                *to++ = '/';
            std::memmove(to, start, length);
            to += length;
        }
    }
    if (to == begin && floor == 0)
        *to++ = rooted ? '/' : '.';
    *to = 0;
}

// Where the rest of a path starts: a host's folder in front of it, of which the first `floor` characters are the
// drive's root.
struct Start {
    PathBuffer folder;
    std::size_t length = 0;
    std::size_t floor = 0;
};

// Finds the start of `rest`, which followed a drive's letter or, for drive 0, stands alone. A start of no length is the
// working folder for a relative rest, and the host's root for another.
bool FindStart(int drive, const char *rest, bool dots, Start &start) {
    if (*rest == 0 || IsSeparator(*rest)) {
        const char *root = DriveRoot(drive != 0 ? drive : WorkingDrive());
        if (root == nullptr)
            return false;
        start.length = std::strlen(root);
        if (start.length >= sizeof start.folder)
            return false;
        std::memcpy(start.folder, root, start.length);
        while (start.length != 0 && root[start.length - 1] == '/')
            --start.length;
        start.floor = start.length;
        return true;
    }
    const int current = WorkingDrive();
    // The host alone knows no root but its own, at which ".." must end.
    if ((drive == 0 || drive == current) && (current == drive_c || !dots))
        return true;
    if (!FolderOfDrive(drive != 0 ? drive : current, start.folder, start.floor))
        return false;
    start.length = std::strlen(start.folder);
    return true;
}

} // namespace

bool HasDotElement(const char *path) {
    for (const char *dot = std::strchr(path, '.'); dot != nullptr; dot = std::strchr(dot, '.')) {
        const std::size_t length = std::strcspn(dot, "/\\");
        if ((dot == path || IsSeparator(dot[-1])) && IsDots(dot, length))
            return true;
        dot += length;
    }
    return false;
}

bool ToHost(const char *path, char *out, std::size_t size) {
    if (path == nullptr || path[0] == 0)
        return Fail(ENOENT, out);
    if (strnlen(path, path_size) > path_limit)
        return Fail(ENAMETOOLONG, out);
    if (IsSeparator(path[0]) && IsSeparator(path[1])) // names on the network don't exist
        return Fail(ENOENT, out);

    const char *rest = path;
    int drive = 0;
    if (path[1] == ':') {
        rest = path + 2;
        drive = DriveNumber(path[0]);
        if (drive == 0)
            return Fail(ENOENT, out);
    }
    const bool dots = HasDotElement(rest);
    Start start;
    if (!FindStart(drive, rest, dots, start))
        return Fail(ENOENT, out);
    if (*rest == 0 && start.length == 0)
        rest = "/";
    const bool join = start.length != 0 && *rest != 0 && !IsSeparator(*rest) && start.folder[start.length - 1] != '/';
    const std::size_t length = start.length + (join ? 1 : 0) + std::strlen(rest);
    if (length >= size)
        return Fail(ENAMETOOLONG, out);
    std::memcpy(out, start.folder, start.length);
    char *p = out + start.length;
    if (join)
        *p++ = '/';
    for (; *rest != 0; ++rest)
        *p++ = *rest == '\\' ? '/' : *rest;
    *p = 0;
    if (dots)
        ResolveDots(out, start.floor);
    return true;
}

bool ToAbsoluteHost(const char *path, PathBuffer &out, std::size_t &root_length) {
    PathBuffer host;
    Start start;
    if (!ToHost(path, host, sizeof host) || !FolderOfDrive(DriveOf(path), start.folder, root_length))
        return false;
    const std::size_t folder = host[0] == '/' ? 0 : std::strlen(start.folder);
    const std::size_t length = std::strlen(host);
    if (folder + 1 + length >= sizeof out)
        return Fail(ENAMETOOLONG, out);
    std::memcpy(out, start.folder, folder);
    out[folder] = '/';
    std::strcpy(out + (folder != 0 ? folder + 1 : 0), host);
    ResolveDots(out, root_length);
    for (std::size_t end = std::strlen(out); end > root_length && out[end - 1] == '/'; --end)
        out[end - 1] = 0;
    return true;
}

bool FromHost(const char *path, char *out, std::size_t size) {
    const std::size_t drive = path[0] == '/' ? 2 : 0;
    const std::size_t length = drive + std::strlen(path);
    if (length >= size)
        return Fail(ENAMETOOLONG, out);
    std::memcpy(out, "C:", drive);
    for (char *p = out + drive; *path != 0; ++path)
        *p++ = *path == '/' ? '\\' : *path;
    out[length] = 0;
    return true;
}

} // namespace zr::platform::posix
