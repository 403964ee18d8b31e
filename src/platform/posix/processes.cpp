// Starting other programs: by two forks, so that the program is nobody's child here.
#include "platform/processes.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <string_view>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/command_line.h"
#include "platform/posix/posix_errors.h"
#include "platform/posix/posix_programs.h"
#include "platform/system_error.h"

extern char **environ;

namespace zr::platform {

namespace {

constexpr int first_own_descriptor = 3; // behind the standard streams

// What the child needs, made before the fork: behind it only calls are allowed that a signal handler may do too.
struct Launch {
    const char *program;
    char *const *arguments;
    int report; // here goes the error number of what failed
    int descriptor_limit;
};

int DescriptorLimit() {
    constexpr long most = 65536; // where the system sets no limit, nobody has used so many
    const long limit = sysconf(_SC_OPEN_MAX);
    return static_cast<int>(limit < 0 ? most : std::min(limit, most));
}

// Lets the new program have none of this process's files.
void CloseFilesAtExec(int descriptor_limit) {
#ifdef CLOSE_RANGE_CLOEXEC
    if (close_range(first_own_descriptor, ~0U, CLOSE_RANGE_CLOEXEC) == 0)
        return;
#endif
    for (int i = first_own_descriptor; i < descriptor_limit; ++i)
        fcntl(i, F_SETFD, FD_CLOEXEC);
}

// The program starts with the system's own reaction to every signal, and none held back, whatever the application has
// set.
void ResetSignals() {
    struct sigaction reaction = {};
    reaction.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal)
        sigaction(signal, &reaction, nullptr); // refused for some of them
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

void Report(const Launch &launch, int error) {
    ssize_t written = 0;
    do
        written = write(launch.report, &error, sizeof error);
    while (written < 0 && errno == EINTR);
}

[[noreturn]] void RunProgram(const Launch &launch) {
    CloseFilesAtExec(launch.descriptor_limit);
    ResetSignals();
    execve(launch.program, launch.arguments, environ);
    Report(launch, errno);
    _exit(1);
}

// The process in between: its end gives the program to the system's first process, which waits for it.
[[noreturn]] void RunBetween(const Launch &launch) {
    const pid_t child = fork();
    if (child == 0)
        RunProgram(launch);
    if (child < 0)
        Report(launch, errno);
    _exit(0);
}

// A fork during which no signal reaches a handler of the application, neither here nor in the child.
pid_t ForkQuietly(const Launch &launch) {
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const pid_t child = fork();
    if (child == 0)
        RunBetween(launch);
    const int error = errno;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return child;
}

// What came through the pipe: 0 if it was closed, as a program that has started does, without anything.
int ReadReport(int descriptor) {
    int error = 0;
    ssize_t length = 0;
    do
        length = read(descriptor, &error, sizeof error);
    while (length < 0 && errno == EINTR);
    return length == static_cast<ssize_t>(sizeof error) ? error : 0;
}

} // namespace

int posix::StartDetached(const char *program, char *const *arguments) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return errno;
    const pid_t child = ForkQuietly({program, arguments, ends[1], DescriptorLimit()});
    int error = child < 0 ? errno : 0;
    close(ends[1]);
    if (child > 0) {
        error = ReadReport(ends[0]);
        // Where the application waits for every child itself, there is nothing left to wait for.
        while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    close(ends[0]);
    return error;
}

namespace {

int CodeOf(int error) {
    switch (error) {
    case ENOEXEC:
    case ELIBBAD:
        return bad_program_format;
    case EAGAIN: // no more processes
        return out_of_memory;
    default:
        return posix::SystemCode(error);
    }
}

} // namespace

int backend::StartProgram(char *command_line, unsigned short) {
    const std::string_view line(command_line, strnlen(command_line, longest_command_line + 1));
    if (line.size() > longest_command_line)
        return invalid_parameter;
    ProgramNames names(line);
    std::string_view name, rest;
    posix::PathBuffer program;
    int code = file_not_found;
    bool found = false;
    while (!found && names.Next(name, rest)) {
        const int answer = posix::FindProgram(name, program);
        found = answer == done;
        if (answer == access_denied)
            code = access_denied;
    }
    if (!found)
        return code;
    ArgumentList list;
    const bool is_path = name.find_first_of("\\/:") != std::string_view::npos;
    if (!list.Split(is_path ? std::string_view(program) : name, rest))
        return path_too_long;
    const int error = posix::StartDetached(program, list.Values());
    return error != 0 ? CodeOf(error) : done;
}

} // namespace zr::platform
