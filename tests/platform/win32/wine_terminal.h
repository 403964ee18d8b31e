// Under Wine: a pseudo-terminal of the host, which Wine takes for a serial port, with a process at its other end that writes
// down what arrives.
#ifndef TESTS_PLATFORM_WIN32_WINE_TERMINAL_H
#define TESTS_PLATFORM_WIN32_WINE_TERMINAL_H

#include <algorithm>
#include <filesystem>
#include <string>

#include <windows.h>

#include "platform/temp_folder.h"

class WineTerminal {
public:
    // Check Port(): it is empty where this is not Wine, or the host can't.
    WineTerminal() {
        if (HostFolder().empty())
            return;
        // `script` makes the pair and copies what comes to its file.
        Run("script -qfc 'tty >name; cp name device; echo $PPID >reader; mv name port; exec sleep 60' out </dev/null >/dev/null 2>&1");
        m_port = FirstLine("port");
        if (!m_port.empty())
            m_port.insert(0, "Z:");
        std::replace(m_port.begin(), m_port.end(), '/', '\\');
    }
    ~WineTerminal() { HangUp(); }
    WineTerminal(const WineTerminal &) = delete;
    WineTerminal &operator=(const WineTerminal &) = delete;

    const std::string &Port() const { return m_port; }

    // Whether `bytes` arrive, in one piece, within some seconds.
    bool Arrives(const std::string &bytes) const {
        return Waits([&] { return HasArrived(bytes); });
    }
    bool HasArrived(const std::string &bytes) const { return m_folder.Read("out").find(bytes) != std::string::npos; }

    // The process at the other end reads no more, until it goes on.
    void Pause() { Signal("STOP"); }
    void GoOn() { Signal("CONT"); }

    // The settings of the line, in the host's words, with blanks around each.
    std::string Settings() {
        Do("stty -a -F $(cat device) >settings");
        std::string settings = " " + m_folder.Read("settings");
        std::replace_if(
            settings.begin(), settings.end(), [](char c) { return c == ';' || c == '\n'; }, ' ');
        return settings;
    }

    // The process at the other end goes away; returns when it is gone.
    void HangUp() {
        if (m_port.empty())
            return;
        Do("kill -KILL $(cat reader); while test -e $(cat device); do sleep 0.02; done");
        m_port.clear();
    }

private:
    void Signal(const std::string &name) { Do("kill -" + name + " $(cat reader)"); }

    // Runs a command of the host and waits for its end.
    void Do(const std::string &command) {
        const std::string done = "done" + std::to_string(++m_commands);
        Run(command + "; echo x >" + done);
        Waits([&] { return std::filesystem::exists(m_folder.Path(done)); });
    }

    template <typename Condition>
    static bool Waits(const Condition &condition) {
        for (int i = 0; i < 500; ++i) {
            if (condition())
                return true;
            Sleep(20);
        }
        return false;
    }

    // The host's name of the test's folder.
    std::string HostFolder() const {
        using HostName = char *(CDECL *)(const wchar_t *);
        const auto function = GetProcAddress(GetModuleHandleA("kernel32.dll"), "wine_get_unix_file_name");
        if (function == nullptr)
            return "";
        char *name = reinterpret_cast<HostName>(reinterpret_cast<void (*)()>(function))(m_folder.Folder().c_str());
        const std::string host = name != nullptr ? name : "";
        HeapFree(GetProcessHeap(), 0, name);
        return host;
    }

    // Starts a command of the host in the test's folder and does not wait for its end.
    bool Run(const std::string &command) const {
        std::string line = "sh -c \"cd '" + HostFolder() + "' && " + command + "\"";
        STARTUPINFOA start = {};
        start.cb = sizeof start;
        PROCESS_INFORMATION process = {};
        if (!CreateProcessA("Z:\\bin\\sh", line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process))
            return false;
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
        return true;
    }

    std::string FirstLine(const std::string &name) const {
        if (!Waits([&] { return std::filesystem::exists(m_folder.Path(name)); }))
            return "";
        const std::string text = m_folder.Read(name);
        return text.substr(0, text.find('\n'));
    }

    TempFolder m_folder;
    std::string m_port;
    int m_commands = 0;
};

#endif
