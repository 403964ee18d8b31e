// Drives on a host without: their roots, the current drive, the folder that each drive keeps.
//
// The working folder of the process is the current folder of the current drive. The folders of the other drives are
// kept here, as they were when their drive was left. Drive numbers: 1 is A, 3 is C. Threads: any, as long as none
// changes the environment.
#ifndef ZR_PLATFORM_POSIX_DRIVES_H
#define ZR_PLATFORM_POSIX_DRIVES_H

#include <climits>
#include <cstddef>

namespace zr::platform::posix {

// Host path of one call. The mapped drive's root comes in front of up to 259 characters, hence the size.
using PathBuffer = char[PATH_MAX];

inline constexpr int drive_c = 3;

// Number of the drive whose letter, of either case, is `letter`; 0 for what is no letter.
int DriveNumber(char letter);

// The host's path of the drive's root: "/" for C; null if the drive doesn't exist. It may end in a separator. The text
// belongs to the environment.
const char *DriveRoot(int drive);

// The current drive. It is C again if the process has left the folder of the drive that was current by other means.
int WorkingDrive();

// Number of the drive on which `path` (library's form) lies: that of its letter, else the current one; 0 if it names
// none.
int DriveOf(const char *path);

// Current folder of a drive, as the host's path into out[0..PATH_MAX-1]. `root_length` is the length of the root in
// front, its separators at the end not counted. False with errno set.
bool FolderOfDrive(int drive, PathBuffer &out, std::size_t &root_length);

// Makes the host's folder `host` the working folder and `drive`, on which it lies, the current drive. The folder of the
// drive that is left is kept. False with errno set and nothing changed.
bool EnterFolder(int drive, const char *host);

} // namespace zr::platform::posix

#endif
