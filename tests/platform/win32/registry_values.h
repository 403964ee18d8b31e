// Values of the registry for one test.
#ifndef TESTS_PLATFORM_WIN32_REGISTRY_VALUES_H
#define TESTS_PLATFORM_WIN32_REGISTRY_VALUES_H

#include <random>
#include <stdexcept>
#include <string>

#include <windows.h>

// Puts values under a key of HKEY_CLASSES_ROOT. For this process HKEY_CLASSES_ROOT is meanwhile a fresh key of the
// user's, which goes with it: nothing else is in it, and programs beside this one see nothing of it. One at a time.
class RegistryValues {
public:
    explicit RegistryValues(const std::string &key)
        : m_root_path("Software\\zr_test_" + std::to_string(std::random_device{}())) {
        m_root = Make(HKEY_CURRENT_USER, m_root_path);
        if (RegOverridePredefKey(HKEY_CLASSES_ROOT, m_root) != ERROR_SUCCESS)
            throw std::runtime_error("can't put a key in the place of another");
        m_opened = Make(HKEY_CLASSES_ROOT, key);
    }
    ~RegistryValues() {
        RegCloseKey(m_opened);
        RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
        RegCloseKey(m_root);
        RegDeleteTreeA(HKEY_CURRENT_USER, m_root_path.c_str());
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
    static HKEY Make(HKEY parent, const std::string &path) {
        HKEY made;
        if (RegCreateKeyExA(parent, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &made,
                            nullptr) != ERROR_SUCCESS)
            throw std::runtime_error("can't make the key " + path);
        return made;
    }

    std::string m_root_path;
    HKEY m_root = nullptr;
    HKEY m_opened = nullptr;
};

#endif
