// Values of the registry for one test.
#ifndef TESTS_PLATFORM_POSIX_REGISTRY_VALUES_H
#define TESTS_PLATFORM_POSIX_REGISTRY_VALUES_H

#include <cstdlib>
#include <string>

#include "platform/temp_folder.h"

// Puts values under keys of HKEY_CLASSES_ROOT, which alone are there, in a file in the registry's place that goes with it.
class RegistryValues {
public:
    explicit RegistryValues(const std::string &key) : m_content("[HKEY_CLASSES_ROOT\\" + key + "]\n") {
        m_folder.Write("registry.ini", m_content);
        setenv("ZR_REGISTRY", m_folder.Path("registry.ini").c_str(), 1);
    }
    ~RegistryValues() { unsetenv("ZR_REGISTRY"); }
    RegistryValues(const RegistryValues &) = delete;
    RegistryValues &operator=(const RegistryValues &) = delete;

    // The values that are set from now on stand under this key.
    void AddKey(const std::string &key) { m_content += "[HKEY_CLASSES_ROOT\\" + key + "]\n"; }

    void Set(const std::string &name, const std::string &value) {
        m_content += (name.empty() ? "@" : name) + "=" + value + "\n";
        m_folder.Write("registry.ini", m_content);
    }

private:
    TempFolder m_folder;
    std::string m_content;
};

#endif
