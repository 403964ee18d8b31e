// Free space and kind of a drive.
#include <zrclb/folders.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include <zrclb/paths.h>

#include "platform/drives.h"

namespace {

using zr::platform::ClusterSpace;
using zr::platform::SpaceAnswer;

constexpr std::size_t longest_root = 255;

// The root folder that `path` stands for; the empty text is the current drive.
void PutRoot(const char *path, char (&out)[longest_root + 2]) {
    std::size_t length = path == nullptr ? 0 : strnlen(path, longest_root);
    if (length != 0)
        std::memcpy(out, path, length);
    if (length == 1)
        out[length++] = ':';
    if (length != 0 && out[length - 1] != '\\')
        out[length++] = '\\';
    out[length] = 0;
}

// The answer of a system that can only tell it in clusters.
double FreeByClusters(const char *root) {
    ClusterSpace space;
    if (!zr::platform::FreeClusters(root, space))
        return 0.0;
    std::fputs("\nGetDiskFreeSpace:\n", stdout); // like the other trace
    return static_cast<double>(space.sectors_per_cluster) * static_cast<double>(space.bytes_per_sector) *
           static_cast<double>(space.free_clusters);
}

bool IsNetworkName(const char *path) {
    return path[0] == '\\' && path[1] == '\\';
}

} // namespace

extern "C" {

double fio_getdiskfree(const char *path) noexcept {
    char root[longest_root + 2];
    PutRoot(path, root);
    std::uint64_t bytes = 0;
    const SpaceAnswer answer = zr::platform::FreeSpace(root, bytes);
    if (answer == SpaceAnswer::no_call)
        return FreeByClusters(root);
    if (answer == SpaceAnswer::failed)
        return 0.0;
    std::fputs("\nGetDiskFreeSpaceEx:\n", stdout); // a trace that callers have come to expect
    return static_cast<double>(bytes);
}

int fio_GetDriveType(const char *path) noexcept {
    constexpr int unknown = 0, no_root = 1, remote = 4, last_type = 6;
    if (path == nullptr)
        return unknown;
    int type = zr::platform::DriveType(path);
    if (type == no_root && IsNetworkName(path))
        return remote;
    if (type == no_root) {
        char drive[3];
        fio_divide(path, drive, nullptr, nullptr);
        type = zr::platform::DriveType(drive);
    }
    return type >= no_root && type <= last_type ? type : unknown;
}
}
