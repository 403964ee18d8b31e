// A second process that runs this very program, or another one.
#ifndef TESTS_PLATFORM_POSIX_CHILD_PROCESS_H
#define TESTS_PLATFORM_POSIX_CHILD_PROCESS_H

#include <cstdlib>
#include <stdexcept>
#include <string>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

class ChildProcess {
public:
    // Starts it. The program finds `argument` (not empty) with Argument(), before its tests run.
    explicit ChildProcess(const std::string &argument, const std::string &program = "/proc/self/exe") {
        m_process = fork();
        if (m_process < 0)
            throw std::runtime_error("no second process");
        if (m_process == 0) {
            setenv("ZR_TEST_ARGUMENT", argument.c_str(), 1);
            execl(program.c_str(), "child", nullptr);
            _exit(127);
        }
    }
    ~ChildProcess() { Kill(); }
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    // Empty in the first process.
    static std::string Argument() {
        const char *argument = std::getenv("ZR_TEST_ARGUMENT");
        return argument != nullptr ? argument : "";
    }

    // Waits for its end; true if it ended with code 0.
    bool Passes() { return Wait() && WIFEXITED(m_status) && WEXITSTATUS(m_status) == 0; }

    // Ends it without its doing and waits until it is gone.
    void Kill() {
        if (m_process > 0)
            kill(m_process, SIGKILL);
        Wait();
    }

private:
    bool Wait() {
        const bool ended = m_process > 0 && waitpid(m_process, &m_status, 0) == m_process;
        m_process = -1;
        return ended;
    }

    pid_t m_process = -1;
    int m_status = 0;
};

#endif
