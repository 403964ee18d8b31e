// Hosts, which are drives, and the current folder.
#include <cstddef>
#include <cstring>

#include <zrclb/files.h>
#include <zrclb/paths.h>

#include "platform/drives.h"
#include "platform/files.h"

namespace {

using namespace zr::platform;

// Puts the drive back that was current when it was made.
class DriveKeeper {
public:
    DriveKeeper() : m_drive(CurrentDrive()) {}
    ~DriveKeeper() {
        if (m_drive != 0)
            SetCurrentDrive(m_drive);
    }
    DriveKeeper(const DriveKeeper &) = delete;
    DriveKeeper &operator=(const DriveKeeper &) = delete;

private:
    int m_drive;
};

// The number of the drive with that letter; of other characters a number that is no drive's.
int DriveOf(char letter) {
    constexpr int before_first = 'A' - 1;
    const int upper = letter >= 'a' && letter <= 'z' ? letter - 'a' + 'A' : static_cast<unsigned char>(letter);
    return upper - before_first;
}

} // namespace

extern "C" {

int fio_chdir(const char *dir) noexcept {
    if (dir == nullptr || *dir == 0)
        return 0;
    char path[path_size] = {};
    fio_makepath(path, "", dir, "");
    return ChangeFolder(path) == done ? 0 : -1; // a path that is too long has become an empty one
}

char *fio_getcwd(char *buffer, int size) noexcept {
    if (buffer == nullptr || size < 1)
        return nullptr;
    return CurrentFolder(buffer, static_cast<std::size_t>(size)) ? buffer : nullptr;
}

int fio_gethostname(char *buffer, int size) noexcept {
    const int drive = CurrentDrive();
    if (buffer == nullptr || size < 2 || drive == 0)
        return -1;
    const char host[] = {static_cast<char>('A' + drive - 1), ':'};
    const std::size_t length = size == 2 ? 1 : 2;
    std::memcpy(buffer, host, length);
    buffer[length] = 0;
    return 0;
}

int fio_sethostname(const char *host) noexcept {
    const char *letter = host != nullptr ? host + std::strspn(host, " ") : "";
    if (*letter == 0)
        return 0;
    const int drive = DriveOf(*letter);
    if (drive > 0)
        SetCurrentDrive(drive);
    return CurrentDrive() == drive ? 0 : -1;
}

int fio_host_exist(const char *host) noexcept {
    const DriveKeeper keeper;
    return fio_sethostname(host) == 0 ? 1 : 0;
}

char *fio_get_host_cwd(const char *host, char *buffer, int size) noexcept {
    const DriveKeeper keeper;
    fio_sethostname(host);
    fio_getcwd(buffer, size);
    return buffer;
}
}
