// A second process that runs this very program, or another one.
#ifndef TESTS_PLATFORM_WIN32_CHILD_PROCESS_H
#define TESTS_PLATFORM_WIN32_CHILD_PROCESS_H

#include <cstdlib>
#include <stdexcept>
#include <string>

#include <windows.h>

class ChildProcess {
public:
    // Starts it. The program finds `argument` (not empty) with Argument(), before its tests run.
    explicit ChildProcess(const std::string &argument, const std::string &program = OwnProgram()) {
        char line[] = "child";
        STARTUPINFOA start = {};
        start.cb = sizeof start;
        SetEnvironmentVariableA("ZR_TEST_ARGUMENT", argument.c_str());
        const BOOL started =
            CreateProcessA(program.c_str(), line, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &m_process);
        SetEnvironmentVariableA("ZR_TEST_ARGUMENT", nullptr);
        if (!started)
            throw std::runtime_error("no second process");
        CloseHandle(m_process.hThread);
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
    bool Passes() { return Wait() == 0; }

    // Ends it without its doing and waits until it is gone.
    void Kill() {
        if (m_process.hProcess != nullptr)
            TerminateProcess(m_process.hProcess, 9);
        Wait();
    }

private:
    static std::string OwnProgram() {
        char program[MAX_PATH];
        const DWORD length = GetModuleFileNameA(nullptr, program, sizeof program);
        return {program, length < sizeof program ? length : 0};
    }

    DWORD Wait() {
        DWORD code = 127;
        if (m_process.hProcess == nullptr)
            return code;
        WaitForSingleObject(m_process.hProcess, INFINITE);
        GetExitCodeProcess(m_process.hProcess, &code);
        CloseHandle(m_process.hProcess);
        m_process.hProcess = nullptr;
        return code;
    }

    PROCESS_INFORMATION m_process = {};
};

#endif
