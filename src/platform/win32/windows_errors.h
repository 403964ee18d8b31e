// From the codes of the system to those of errno, and the checks that every path passes.
#ifndef ZR_PLATFORM_WINDOWS_ERRORS_H
#define ZR_PLATFORM_WINDOWS_ERRORS_H

namespace zr::platform::windows {

// Sets errno and answers false.
bool Fail(int code);

// Sets errno for the calling thread's last error of the system and answers false.
bool FailWithLastError();

// False with errno set for a null, empty or over-long path.
bool IsUsablePath(const char *path);

// The code of system_error.h for a path that no call may get: path_not_found for null, path_too_long for more than 259 characters;
// else 0. What an empty path gives is the system's answer.
int PathCode(const char *path);

} // namespace zr::platform::windows

#endif
