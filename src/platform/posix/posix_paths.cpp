// Paths at the border to the system: the one place that turns the library's form into the host's and back.
#include "platform/posix/posix_paths.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <sys/stat.h>

#include "platform/files.h"

namespace zr::platform::posix {

namespace {

bool IsSeparator(char c) {
    return c == '\\' || c == '/';
}

bool Fail(int code, char *out) {
    out[0] = 0;
    errno = code;
    return false;
}

// Upper-case letter of a drive, or 0 for what is no letter.
char DriveLetter(char c) {
    if (c >= 'a' && c <= 'z')
        return static_cast<char>(c - 'a' + 'A');
    return c >= 'A' && c <= 'Z' ? c : '\0';
}

// The folder that ZR_DRIVE_<letter> names, or null if the drive doesn't exist.
const char *MappedRoot(char letter) {
    char variable[] = "ZR_DRIVE_?";
    variable[sizeof variable - 2] = letter;
    const char *root = std::getenv(variable);
    struct stat status;
    if (root == nullptr || root[0] == 0 || stat(root, &status) != 0 || !S_ISDIR(status.st_mode))
        return nullptr;
    return root;
}

} // namespace

bool ToHost(const char *path, char *out, std::size_t size) {
    if (path == nullptr || path[0] == 0)
        return Fail(ENOENT, out);
    if (strnlen(path, path_size) > path_limit)
        return Fail(ENAMETOOLONG, out);
    if (IsSeparator(path[0]) && IsSeparator(path[1])) // names on the network don't exist
        return Fail(ENOENT, out);

    const char *root = "";
    const char *rest = path;
    if (path[1] == ':') {
        rest = path + 2;
        const char letter = DriveLetter(path[0]);
        if (letter == 'C') {
            root = *rest == 0 ? "/" : ""; // "C:a" is relative to the current folder, which lies on this drive
        } else {
            root = letter != 0 ? MappedRoot(letter) : nullptr;
            if (root == nullptr)
                return Fail(ENOENT, out);
        }
    }

    const std::size_t root_length = std::strlen(root);
    const bool mapped = root_length != 0 && *rest != 0;
    const std::size_t slash = mapped && !IsSeparator(*rest) ? 1 : 0; // a mapped drive's current folder is its root
    const std::size_t length = root_length + slash + std::strlen(rest);
    if (length >= size)
        return Fail(ENAMETOOLONG, out);
    std::memcpy(out, root, root_length);
    if (slash != 0)
        out[root_length] = '/';
    for (char *p = out + root_length + slash; *rest != 0; ++rest)
        *p++ = *rest == '\\' ? '/' : *rest;
    out[length] = 0;
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
