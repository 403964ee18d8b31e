// Values of the registry for one test.
#ifndef TESTS_PLATFORM_WIN32_REGISTRY_VALUES_H
#define TESTS_PLATFORM_WIN32_REGISTRY_VALUES_H

#include <stdexcept>
#include <string>

#include <windows.h>

// Puts values under a key of HKEY_CLASSES_ROOT, which it makes and which goes with it. The key must be the test's own.
class RegistryValues {
public:
    explicit RegistryValues(const std::string &key) : m_key(key) {
        if (RegCreateKeyExA(HKEY_CLASSES_ROOT, key.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                            &m_opened, nullptr) != ERROR_SUCCESS)
            throw std::runtime_error("can't make the key");
    }
    ~RegistryValues() {
        RegCloseKey(m_opened);
        RegDeleteKeyA(HKEY_CLASSES_ROOT, m_key.c_str());
    }
    RegistryValues(const RegistryValues &) = delete;
    RegistryValues &operator=(const RegistryValues &) = delete;

    void Set(const std::string &name, const std::string &value) { SetBytes(name, REG_SZ, value + '\0'); }

    void SetBytes(const std::string &name, DWORD type, const std::string &bytes) {
        if (RegSetValueExA(m_opened, name.c_str(), 0, type, reinterpret_cast<const BYTE *>(bytes.data()),
                           static_cast<DWORD>(bytes.size())) != ERROR_SUCCESS)
            throw std::runtime_error("can't write " + name);
    }

private:
    std::string m_key;
    HKEY m_opened = nullptr;
};

#endif
