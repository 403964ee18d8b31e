// The suite's own key of the registry, for one test and the programs that it starts.
#ifndef TESTS_PLATFORM_WIN32_SUITE_REGISTRY_H
#define TESTS_PLATFORM_WIN32_SUITE_REGISTRY_H

#include <cstdlib>
#include <random>
#include <stdexcept>
#include <string>

#include <windows.h>

// A key of the test's own, which stands in for HKEY_CLASSES_ROOT in the programs that it starts: what other programs find there
// stays as it is. Empty at first; goes with the object.
class SuiteRegistry {
public:
    SuiteRegistry() : m_root("Software\\zr_test_" + std::to_string(std::random_device()())) {
        const std::string key = m_root + "\\Software\\Zr Works\\Zr Bench\\2013";
        if (RegCreateKeyExA(HKEY_CURRENT_USER, key.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                            &m_key, nullptr) != ERROR_SUCCESS)
            throw std::runtime_error("can't make the key");
        SetEnvironmentVariableA("ZR_TEST_CLASSES_ROOT", m_root.c_str());
    }
    ~SuiteRegistry() {
        SetEnvironmentVariableA("ZR_TEST_CLASSES_ROOT", nullptr);
        RegCloseKey(m_key);
        RegDeleteTreeA(HKEY_CURRENT_USER, m_root.c_str());
    }
    SuiteRegistry(const SuiteRegistry &) = delete;
    SuiteRegistry &operator=(const SuiteRegistry &) = delete;

    void Set(const std::string &name, const std::string &value) { SetBytes(name, REG_SZ, value + '\0'); }

    // Makes nonsense of all there is.
    void Garble() {
        std::string noise = "C:\\";
        for (unsigned i = 0, c = 1; i < 1000; ++i, c = c * 1103515245 + 12345)
            noise += static_cast<char>(c >> 16 | 1);
        SetBytes("zr.ini", REG_BINARY, noise);
        SetBytes("InstallDir", REG_MULTI_SZ, noise);
    }

    // Called by a program that the test has started, before it loads the library.
    static void Enter() {
        const char *root = std::getenv("ZR_TEST_CLASSES_ROOT");
        HKEY key = nullptr;
        if (root == nullptr || RegOpenKeyExA(HKEY_CURRENT_USER, root, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS ||
            RegOverridePredefKey(HKEY_CLASSES_ROOT, key) != ERROR_SUCCESS)
            throw std::runtime_error("can't enter the key");
        RegCloseKey(key);
    }

private:
    void SetBytes(const std::string &name, DWORD type, const std::string &bytes) {
        if (RegSetValueExA(m_key, name.c_str(), 0, type, reinterpret_cast<const BYTE *>(bytes.data()),
                           static_cast<DWORD>(bytes.size())) != ERROR_SUCCESS)
            throw std::runtime_error("can't write " + name);
    }

    std::string m_root;
    HKEY m_key = nullptr;
};

#endif
