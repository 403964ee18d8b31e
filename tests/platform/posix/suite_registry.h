// The suite's own key of the registry, for one test and the programs that it starts.
#ifndef TESTS_PLATFORM_POSIX_SUITE_REGISTRY_H
#define TESTS_PLATFORM_POSIX_SUITE_REGISTRY_H

#include <cstdlib>
#include <string>

#include "platform/temp_folder.h"

// Stands in for the registry while it lives. Empty at first.
class SuiteRegistry {
public:
    SuiteRegistry() { Write(m_content); }
    ~SuiteRegistry() { unsetenv("ZR_REGISTRY"); }
    SuiteRegistry(const SuiteRegistry &) = delete;
    SuiteRegistry &operator=(const SuiteRegistry &) = delete;

    void Set(const std::string &name, const std::string &value) { Write(m_content += name + "=" + value + "\n"); }

    // Makes nonsense of all there is.
    void Garble() {
        std::string noise = "[HKEY_CLASSES_ROOT\\Software\\Zr Works\nInstallDir\n=\n[\0]\n";
        for (unsigned i = 0, c = 1; i < 100000; ++i, c = c * 1103515245 + 12345)
            noise += static_cast<char>(c >> 16);
        Write(noise);
    }

    // Called by a program that the test has started, before it loads the library.
    static void Enter() {}

private:
    void Write(const std::string &content) {
        m_folder.Write("registry.ini", content);
        setenv("ZR_REGISTRY", m_folder.Path("registry.ini").c_str(), 1);
    }

    TempFolder m_folder;
    std::string m_content = "[HKEY_CLASSES_ROOT\\Software\\Zr Works\\Zr Bench\\2013]\n";
};

#endif
