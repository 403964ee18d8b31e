// Drives, current folders, free space.
#include "platform/drives.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/vfs.h>
#include <unistd.h>

#include "platform/posix/posix_drives.h"
#include "platform/posix/posix_errors.h"
#include "platform/posix/posix_paths.h"

namespace zr::platform {

namespace {

using posix::PathBuffer;

enum DriveKind {
    kind_unknown,
    kind_no_root,
    kind_removable,
    kind_fixed,
    kind_remote,
    kind_cd,
    kind_memory
};

// Kinds of file systems that are no fixed disk, by the numbers that the host gives them.
struct FileSystemKind {
    unsigned long magic;
    DriveKind kind;
};

constexpr unsigned long cifs_magic = 0xFF534D42;
constexpr unsigned long udf_magic = 0x15013346;

constexpr FileSystemKind file_system_kinds[] = {
    {NFS_SUPER_MAGIC, kind_remote}, {SMB_SUPER_MAGIC, kind_remote},  {SMB2_SUPER_MAGIC, kind_remote},
    {cifs_magic, kind_remote},      {CODA_SUPER_MAGIC, kind_remote}, {AFS_SUPER_MAGIC, kind_remote},
    {V9FS_MAGIC, kind_remote},      {CEPH_SUPER_MAGIC, kind_remote}, {ISOFS_SUPER_MAGIC, kind_cd},
    {udf_magic, kind_cd},           {RAMFS_MAGIC, kind_memory},      {TMPFS_MAGIC, kind_memory},
};

bool IsBareDrive(const char *path) {
    return path != nullptr && path[0] != 0 && path[1] == ':' && path[2] == 0;
}

// The host's form of a path that must be a folder.
bool ToHostFolder(const char *path, PathBuffer &host) {
    struct stat status;
    return posix::ToHost(path, host, sizeof host) && stat(host, &status) == 0 && S_ISDIR(status.st_mode);
}

bool LookAtSpace(const char *path, struct statvfs &status) {
    PathBuffer host;
    return path != nullptr && ToHostFolder(path[0] != 0 ? path : ".", host) && statvfs(host, &status) == 0;
}

} // namespace

int CurrentDrive() {
    return posix::WorkingDrive();
}

bool SetCurrentDrive(int drive) {
    if (drive == posix::WorkingDrive())
        return true;
    PathBuffer folder;
    std::size_t root_length;
    if (!posix::FolderOfDrive(drive, folder, root_length))
        return false;
    // A folder that is gone by now leaves the root.
    return posix::EnterFolder(drive, folder) || posix::EnterFolder(drive, posix::DriveRoot(drive));
}

bool CurrentFolder(char *out, std::size_t size) {
    return CurrentFolderOf(posix::WorkingDrive(), out, size);
}

bool CurrentFolderOf(int drive, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return false;
    out[0] = 0;
    PathBuffer folder;
    std::size_t root_length;
    if (!posix::FolderOfDrive(drive, folder, root_length) || !posix::FromHost(folder + root_length, out, size))
        return false;
    out[0] = static_cast<char>('A' + drive - 1);
    return true;
}

int ChangeFolder(const char *path) {
    if (IsBareDrive(path))
        return SetCurrentDrive(posix::DriveNumber(path[0])) ? done : path_not_found;
    PathBuffer host;
    const int code = posix::Translate(path, host);
    if (code != done)
        return code;
    if (posix::EnterFolder(posix::DriveOf(path), host))
        return done;
    const int error = errno;
    struct stat status;
    if (error == ENOTDIR && stat(host, &status) == 0)
        return not_a_folder;
    return posix::FailureCode(host, error);
}

int backend::DriveType(const char *path) {
    PathBuffer host;
    struct statfs status;
    if (!ToHostFolder(path != nullptr ? path : "\\", host) || statfs(host, &status) != 0)
        return kind_no_root;
    const auto magic = static_cast<unsigned long>(status.f_type) & 0xFFFFFFFF;
    for (const FileSystemKind &known : file_system_kinds)
        if (known.magic == magic)
            return known.kind;
    return kind_fixed;
}

SpaceAnswer backend::FreeSpace(const char *path, std::uint64_t &bytes) {
    struct statvfs status;
    if (!LookAtSpace(path, status))
        return SpaceAnswer::failed;
    bytes = static_cast<std::uint64_t>(status.f_bavail) * status.f_frsize;
    return SpaceAnswer::told;
}

bool backend::FreeClusters(const char *path, ClusterSpace &out) {
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
    struct statvfs status;
    if (!LookAtSpace(path, status))
        return false;
    out = {1, static_cast<std::uint32_t>(status.f_frsize),
           static_cast<std::uint32_t>(std::min<std::uint64_t>(status.f_bavail, most))};
    return true;
}

} // namespace zr::platform
