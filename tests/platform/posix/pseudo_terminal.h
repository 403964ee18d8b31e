// A pseudo-terminal pair: a port for the library, and the device at its other end for the test.
#ifndef TESTS_PLATFORM_POSIX_PSEUDO_TERMINAL_H
#define TESTS_PLATFORM_POSIX_PSEUDO_TERMINAL_H

#include <cstdlib>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

class PseudoTerminal {
public:
    PseudoTerminal() : m_device(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        if (m_device == -1 || grantpt(m_device) != 0 || unlockpt(m_device) != 0)
            throw std::runtime_error("no pseudo-terminal");
        m_port = ptsname(m_device);
    }
    ~PseudoTerminal() { HangUp(); }
    PseudoTerminal(const PseudoTerminal &) = delete;
    PseudoTerminal &operator=(const PseudoTerminal &) = delete;

    // The host's path of the port.
    const std::string &Port() const { return m_port; }

    termios Settings() const {
        termios settings = {};
        if (tcgetattr(m_device, &settings) != 0)
            throw std::runtime_error("no settings");
        return settings;
    }

    // What arrives, until so many bytes are there or none has come for ten seconds.
    std::string Receive(std::size_t size) const {
        std::string bytes;
        char block[4096];
        pollfd wait = {m_device, POLLIN, 0};
        while (bytes.size() < size && poll(&wait, 1, 10000) == 1) {
            const ssize_t count = read(m_device, block, std::min(sizeof block, size - bytes.size()));
            if (count <= 0)
                break;
            bytes.append(block, static_cast<std::size_t>(count));
        }
        return bytes;
    }

    // Whether nothing has arrived that was not received.
    bool IsQuiet() const {
        pollfd wait = {m_device, POLLIN, 0};
        return poll(&wait, 1, 0) == 0 || (wait.revents & POLLIN) == 0;
    }

    // The device goes away.
    void HangUp() {
        if (m_device != -1)
            close(m_device);
        m_device = -1;
    }

private:
    int m_device;
    std::string m_port;
};

#endif
