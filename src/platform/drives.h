// Drives, current folders, free space.
//
// A drive is a number: 1 is A, 3 is C. On Linux C is the root folder, and another drive exists if ZR_DRIVE_<letter>
// names a folder by an absolute path. Every drive has a current folder of its own; relative paths start at that of the
// current drive.
//
// On Linux the working folder of the process is the current folder of the current drive; the folders of the other
// drives are kept in the library, as they were when the drive was left, at first the root. If the process itself has
// gone to where the root of its drive no longer lies above, C is the current drive again.
//
// All of it belongs to the process: changes race with relative paths of other threads, but never corrupt memory. On
// Linux no thread may change the environment meanwhile.
#ifndef ZR_PLATFORM_DRIVES_H
#define ZR_PLATFORM_DRIVES_H

#include <cstddef>
#include <cstdint>

#include "platform/services.h"
#include "platform/system_error.h"

namespace zr::platform {

// Number of the current drive, 0 if there is none (the current folder lies on the network).
int CurrentDrive();

// Makes a drive current, with the folder that is current there, or its root if that is gone; false if the drive doesn't
// exist.
bool SetCurrentDrive(int drive);

// The current folder of the process, of the current drive, in the library's form with its drive ("C:\home\me", "D:\").
// False with `out` empty (if size is not 0) if it doesn't fit in `size` bytes or has been removed.
bool CurrentFolder(char *out, std::size_t size);

// The same of the drive with this number, whether it is current or not.
bool CurrentFolderOf(int drive, char *out, std::size_t size);

// Makes the folder current on its drive. A path with a drive other than the current one changes that drive's folder and
// makes the drive current too, as the desktop's runtime does; a bare drive ("D:") goes to the folder that is current
// there. A code of system_error.h: not_a_folder for a file, file_not_found or path_not_found for what is missing.
int ChangeFolder(const char *path);

// What the system says of the drive of the folder `path` ("C:\"): 0 unknown, 1 no such folder, 2 removable, 3 fixed, 4
// remote, 5 CD-ROM, 6 RAM disk. Null means the current drive. On Linux the kind of the file system decides; what it
// doesn't tell is fixed.
inline int DriveType(const char *path) {
    return services.drive_type(path);
}

// What the question for the free space came to.
enum class SpaceAnswer {
    told,
    failed,  // no such folder, or null
    no_call, // the system is too old for the question; it is told in clusters
};

// Bytes free to the present user on the drive of the folder `path`; the empty text means the current drive.
inline SpaceAnswer FreeSpace(const char *path, std::uint64_t &bytes) {
    return services.free_space(path, bytes);
}

// Room on a drive as old systems tell it: the product of the three is in bytes.
struct ClusterSpace {
    std::uint32_t sectors_per_cluster;
    std::uint32_t bytes_per_sector;
    std::uint32_t free_clusters; // at most 4294967295, whatever the drive has
};

// The same in clusters.
inline bool FreeClusters(const char *path, ClusterSpace &out) {
    return services.free_clusters(path, out);
}

} // namespace zr::platform

#endif
