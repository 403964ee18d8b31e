// Drives on a host without: their roots, the current drive, the folder that each drive keeps.
#include "platform/posix/posix_drives.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include <sys/stat.h>
#include <unistd.h>

namespace zr::platform::posix {

namespace {

constexpr int drive_count = 26;

// The drive that was made current last. Reading it takes no lock: a path that names C absolutely needs nothing else.
constinit std::atomic<int> current_drive = drive_c;

// Folders of the drives that were left, below their roots, without a separator in front; empty for the root.
constinit std::mutex folders_mutex;
constinit PathBuffer folders[drive_count + 1] = {};

bool Fail(int code) {
    errno = code;
    return false;
}

std::size_t LengthWithoutSeparators(const char *path) {
    std::size_t length = std::strlen(path);
    while (length != 0 && path[length - 1] == '/')
        --length;
    return length;
}

// The part of the working folder `folder` below the drive's root; null if it lies elsewhere. For a drive that is
// mapped, links are resolved, as the host has resolved those of the working folder.
const char *BelowRoot(int drive, const char *folder) {
    PathBuffer root;
    root[0] = 0;
    if (drive != drive_c) {
        const char *mapped = DriveRoot(drive);
        if (mapped == nullptr || realpath(mapped, root) == nullptr)
            return nullptr;
    }
    const std::size_t length = LengthWithoutSeparators(root);
    if (std::strncmp(folder, root, length) != 0 || (folder[length] != '/' && folder[length] != 0))
        return nullptr;
    return folder[length] == '/' ? folder + length + 1 : folder + length;
}

// Puts root and folder together.
bool Join(const char *root, const char *folder, PathBuffer &out, std::size_t &root_length) {
    root_length = LengthWithoutSeparators(root);
    const std::size_t length = std::strlen(folder);
    if (root_length + 1 + length >= sizeof out)
        return Fail(ENAMETOOLONG);
    std::memcpy(out, root, root_length);
    out[root_length] = '/';
    std::memcpy(out + root_length + 1, folder, length + 1);
    return true;
}

} // namespace

int DriveNumber(char letter) {
    if (letter >= 'a' && letter <= 'z')
        return letter - 'a' + 1;
    return letter >= 'A' && letter <= 'Z' ? letter - 'A' + 1 : 0;
}

const char *DriveRoot(int drive) {
    if (drive == drive_c)
        return "/";
    if (drive < 1 || drive > drive_count)
        return nullptr;
    char variable[] = "ZR_DRIVE_?";
    variable[sizeof variable - 2] = static_cast<char>('A' + drive - 1);
    const char *root = std::getenv(variable);
    struct stat status;
    // A root that were relative itself would move with the working folder.
    if (root == nullptr || root[0] != '/' || stat(root, &status) != 0 || !S_ISDIR(status.st_mode))
        return nullptr;
    return root;
}

int WorkingDrive() {
    int drive = current_drive.load();
    if (drive == drive_c)
        return drive;
    PathBuffer folder;
    // A working folder that has been removed has no path and so can't be told to lie elsewhere.
    if (getcwd(folder, sizeof folder) == nullptr || BelowRoot(drive, folder) != nullptr)
        return drive;
    return current_drive.compare_exchange_strong(drive, drive_c) ? drive_c : drive;
}

int DriveOf(const char *path) {
    return path[0] != 0 && path[1] == ':' ? DriveNumber(path[0]) : WorkingDrive();
}

bool FolderOfDrive(int drive, PathBuffer &out, std::size_t &root_length) {
    const char *root = DriveRoot(drive);
    if (root == nullptr)
        return Fail(ENOENT);
    if (drive != WorkingDrive()) {
        const std::lock_guard<std::mutex> guard(folders_mutex);
        return Join(root, folders[drive], out, root_length);
    }
    PathBuffer folder;
    if (getcwd(folder, sizeof folder) == nullptr)
        return false;
    const char *below = BelowRoot(drive, folder);
    return below != nullptr ? Join(root, below, out, root_length) : Fail(ENOENT);
}

bool EnterFolder(int drive, const char *host) {
    const std::lock_guard<std::mutex> guard(folders_mutex);
    const int left = WorkingDrive();
    PathBuffer folder;
    const char *below = nullptr;
    if (left != drive && getcwd(folder, sizeof folder) != nullptr)
        below = BelowRoot(left, folder);
    if (chdir(host) != 0)
        return false;
    if (left != drive)
        std::strcpy(folders[left], below != nullptr ? below : "");
    current_drive.store(drive);
    return true;
}

} // namespace zr::platform::posix
